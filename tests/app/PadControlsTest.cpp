// What a pad's buttons stand for on each screen, as the hints show them once the pad was
// used last, and the arcade name field's ring of letters.
#include "game/PadControls.h"
#include "tests/screens/ScreensFixture.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>

namespace {

using torvane::pad::Context;

std::string Shown(const std::string& keys, Context context) {
    std::string text;
    for (const auto& [name, button] : torvane::pad::ShownButtons(keys, context)) text += (text.empty() ? "" : " ") + name;
    return text;
}

TEST(PadControls, HintsNameTheButtonsThatStandForTheirKeys) {
    struct Case {
        Context context;
        const char* keys;
        const char* shown;
    };
    const Case cases[] = {
        // A as Space, B as Esc, X as Tab, Y as Up, RB (and RT) as Down, Start as Enter,
        // the D-pad as the arrows: a button before the D-pad, whose cross stands once.
        {Context::Play, "← →", "✚← →"},
        {Context::Play, "↑", "Y"},
        {Context::Play, "↓ Space Enter", "RB A Start"},
        {Context::Play, "Tab", "X"},
        {Context::Play, "Esc", "B"},
        // The title's pages on the shoulders; its letters on Back, X, Y and LT.
        {Context::Title, "← →", "LB RB"},
        {Context::Title, "S L P E Esc", "Back X Y LT B"},
        {Context::Settings, "D R A T", "A X Y RB"},
        {Context::Pause, "Esc Q", "A Y"},
        {Context::Editor, "↑↓ Enter T Del", "✚↑ ↓ Start X Y"},
        // What no button stands for keeps its name.
        {Context::EditorTyping, "T", "T"},
        // The name field reads the pad itself: Start saves, the D-pad moves.
        {Context::NameEntry, "Enter ← Space", "Start ✚← Space"},
        {Context::Play, "F12 Q", "F12 Q"},
    };
    for (const Case& c : cases) EXPECT_EQ(Shown(c.keys, c.context), c.shown) << c.keys << " in " << int(c.context);
}

TEST(PadControls, TheNameFieldsRingOfLetters) {
    using torvane::pad::StepLetter;
    // Up from nothing, or from a letter outside the ring, is A; down from A is the blank,
    // the ring's last, and below it the digits.
    // The umlauts in the keyboard's UTF-8 come after their alphabets (\xC3\xA9 is é).
    for (const auto& [from, by, to] : std::initializer_list<std::tuple<const char*, int, const char*>>{
             {"", 1, "A"}, {"\xC3\xA9", 1, "A"}, {"A", -1, " "}, {" ", -1, "9"}, {" ", 1, "A"},
             {"Z", 1, "\xC3\x84"}, {"z", 4, "\xC3\x9F"}, {"\xC3\x9F", 1, "0"}, {"A", 70, "A"}})
        EXPECT_EQ(StepLetter(from, by), to) << from << " by " << by;
}

} // namespace

namespace torvane::testing_support {
namespace {

using PadHintsTest = ScreensTest;

// On each screen a press on the pad, whatever it stands for there, turns the hints' key caps
// into the pad's buttons (round), and a key or a mouse button turns them back (square).
TEST_F(PadHintsTest, APadPressShowsItsButtonsAndAKeyOrAClickTheKeys) {
    Start({});
    pge::VirtualPad pad;
    ASSERT_TRUE(pad.Plug());
    ASSERT_TRUE(Frame()); // found
    struct Case {
        const char* screen;
        std::function<void()> open;
        pge::PadButton press; // one that does nothing there; PAD_BUTTONS: the stick
        const char* keys;
        const char* shown;  // (a button's cap) [a key's cap], or a text that names keys
        bool byClick;       // a mouse button gives the keys back, else a key
        bool inText = false; // keys named in a button's label or a line, not in caps
    };
    const auto play = [this](Phase phase) {
        app.game.StartLevel(1);
        app.game.phase = phase;
    };
    const Case cases[] = {
        {"title", [] {}, pge::PAD_RT, "← →", "(LB)(RB)", false},
        {"title", [] {}, pge::PAD_RT, "S", "(Back)", true},
        {"title", [] {}, pge::PAD_RT, "Space – Spiel starten", "A – Spiel starten", false, true},
        {"title page", [this] { app.titlePage = 1; }, pge::PAD_RT, "← → blättern · Esc zurück",
         "LB RB blättern · B zurück", true, true},
        {"build", [&] { play(Phase::Build); }, pge::PAD_BUTTONS, "← →", "(✚← →)", false},
        {"attack", [&] { play(Phase::Attack); }, pge::PAD_LT, "↓ Space Enter", "(RB)(A)(Start)", true},
        {"no button for a key", [&] { play(Phase::Build); }, pge::PAD_LT, "F12 Q ←", "[F12 Q](✚←)", false},
        {"announce card", [&] { play(Phase::Announce); }, pge::PAD_LT, "Angriff starten (Space)",
         "Angriff starten (A)", true, true},
        {"pause", [&] { play(Phase::Build), app.paused = true; }, pge::PAD_LT, "Esc Q", "(A)(Y)", false},
        {"settings", [this] { app.settingsOpen = true; }, pge::PAD_LT, "D R A T", "(A)(X)(Y)(RB)", false},
        {"name field", [&] { play(Phase::Over), app.nameEntry = true; }, pge::PAD_LT, "Eintragen (Enter)",
         "Eintragen (Start)", false, true},
        {"editor", [this] { app.Press(ButtonId::OpenEditor, 0); }, pge::PAD_LT, "↑↓ Enter T Del",
         "(✚↑ ↓)(Start)(X)(Y)", true},
    };
    const auto shown = [this](const Case& c) {
        if (c.inText) return app.WithShownKeys(c.keys);
        std::string caps;
        for (const TorvaneApp::HintCap& cap : app.HintCaps(c.keys))
            caps += (cap.pad ? "(" : "[") + cap.text + (cap.pad ? ")" : "]");
        return caps;
    };
    for (const Case& c : cases) {
        app.paused = app.settingsOpen = app.editorOpen = app.nameEntry = false;
        app.game.phase = Phase::Title;
        c.open();
        for (bool down : {true, false}) {
            if (c.press == pge::PAD_BUTTONS)
                pad.Stick(down ? 0.9f : 0.0f, 0.0f);
            else
                pad.Set(c.press, down);
            ASSERT_TRUE(Frame());
        }
        EXPECT_EQ(shown(c), c.shown) << c.screen;
        if (c.byClick)
            Click(639, 399);
        else
            ASSERT_TRUE(Tap(pge::SHIFT));
        EXPECT_EQ(shown(c), c.inText ? c.keys : "[" + std::string(c.keys) + "]") << c.screen;
    }
}

} // namespace
} // namespace torvane::testing_support
