// What a pad's buttons stand for on each screen, as the hints show them, and the arcade
// name field's ring of letters.
#include "game/PadControls.h"

#include <gtest/gtest.h>

#include <string>

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
    EXPECT_EQ(StepLetter("", 1), "A");
    EXPECT_EQ(StepLetter("\xC3\xA9", 1), "A"); // é
    EXPECT_EQ(StepLetter("A", -1), " ");
    EXPECT_EQ(StepLetter(" ", -1), "9");
    EXPECT_EQ(StepLetter(" ", 1), "A");
    // The umlauts in the keyboard's UTF-8, after their alphabets.
    EXPECT_EQ(StepLetter("Z", 1), "\xC3\x84");
    EXPECT_EQ(StepLetter("z", 4), "\xC3\x9F");
    EXPECT_EQ(StepLetter("\xC3\x9F", 1), "0");
    EXPECT_EQ(StepLetter("A", 70), "A");
}

} // namespace
