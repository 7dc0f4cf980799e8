// The card toolkit and the strips around the stage: measuring and drawing agree, the
// panel's placement, the buttons a frame registers, the HUD's end button, the banner's
// fade, the sentence of parts and the help bar's hints.
#include "engine/Canvas.h"
#include "game/content/Highscores.h"
#include "game/rules/LevelPack.h"
#include "tests/screens/ScreensFixture.h"

#include <functional>

namespace torvane::testing_support {
namespace {

using CardTest = ScreensTest;

// Top of the panel: the first row of the chestnut stripe in the card's middle column.
int PanelTop(const pge::Sprite& s) {
    for (int y = 0; y < 400; ++y)
        if (s.GetPixel(320, y) == kChestnut) return y;
    return -1;
}

TEST_F(CardTest, MeasuredAndDrawnHeightsAgreeAndThePanelIsPlaced) {
    Start({"--level=1"});
    // A long paragraph in both passes, an empty one, a row and a button.
    std::vector<int> starts, ends;
    int emptyPara = 0;
    auto content = [&](TorvaneApp::Card& c) {
        starts.push_back(c.y);
        c.Title("Title", kChestnut);
        c.Para(std::string(40, 'x') + " " + std::string(300, ' ') + "wrapped words go on and on and on");
        const int before = c.y;
        c.Para("");
        emptyPara = c.y - before;
        c.Row("a", "b", kFg);
        c.Button("Go", ButtonId::Resume);
        ends.push_back(c.y);
    };
    app.Clear(kBg);
    app.buttons.clear();
    app.DrawCard(content, 300, 0);
    ASSERT_EQ(starts.size(), 2u);
    EXPECT_EQ(ends[0] - starts[0], ends[1] - starts[1]);
    EXPECT_EQ(emptyPara, 3);
    const int height = ends[0] - 0 + 14; // from the measuring pass's top 0
    ASSERT_LT(height, 360);
    EXPECT_EQ(PanelTop(Screen()), (368 - height) / 2 + 18);
    EXPECT_EQ(starts[1], PanelTop(Screen()) + 14);
    // Registered once, by the drawing pass, where it was drawn.
    ASSERT_EQ(app.buttons.size(), 1u);
    EXPECT_EQ(app.buttons[0].x, (640 - 300) / 2 + 14);
    EXPECT_EQ(app.buttons[0].y + 18, ends[1]);

    // From 360 on: cut, at top 22, the content from 36.
    starts.clear();
    app.DrawCard([&](TorvaneApp::Card& c) { starts.push_back(c.y), c.y += 400; }, 200, 0);
    EXPECT_EQ(starts[1], 36);
    app.Clear(kBg);
    app.DrawCard([&](TorvaneApp::Card& c) { c.y += 400; }, 200, 0);
    EXPECT_EQ(PanelTop(Screen()), 22);
    EXPECT_EQ(Screen().GetPixel(320, 22 + 359), kPanel);
    EXPECT_NE(Screen().GetPixel(320, 22 + 360), kPanel);

    // A least height above the content: the content starts at the panel's top.
    starts.clear();
    app.Clear(kBg);
    app.DrawCard([&](TorvaneApp::Card& c) { starts.push_back(c.y); }, 200, 336);
    EXPECT_EQ(PanelTop(Screen()), (368 - 336) / 2 + 18);
    EXPECT_EQ(starts[1], PanelTop(Screen()) + 14);
}

TEST_F(CardTest, AClickReadsTheButtonsOfTheFrameBefore) {
    Start({});
    ASSERT_EQ(app.game.phase, Phase::Title);
    ASSERT_EQ(app.titlePage, 0); // no title picture: the page card
    // The card's start button lies at a place known only from drawing it.
    Frame();
    Button start{};
    for (const Button& b : app.buttons)
        if (b.id == ButtonId::NewGame) start = b;
    ASSERT_GT(start.w, 0);
    // In a frame whose list is empty nothing is hit, though the button is drawn then.
    app.buttons.clear();
    run->MoveMouse(start.x + 2, start.y + 2);
    run->SetMouseButton(0, true);
    Frame();
    EXPECT_EQ(app.game.phase, Phase::Title);
    run->SetMouseButton(0, false);
    Frame();
    Click(start.x + 2, start.y + 2);
    EXPECT_EQ(app.game.phase, Phase::Build);
    // The tabs are buttons in drawing order, after the page number that was the card's.
    app.game.phase = Phase::Title;
    Frame();
    std::vector<int> tabs;
    for (const Button& b : app.buttons)
        if (b.id == ButtonId::TitlePage) tabs.push_back(b.arg);
    EXPECT_EQ(tabs, (std::vector<int>{0, 1, 2, 3}));
}

TEST_F(CardTest, HudEndButtonOnlyInTheBuildAndOnlyWithRoom) {
    Start({"--level=1"});
    Frame();
    EXPECT_TRUE(HasButton(ButtonId::EndBuild));
    app.paused = true;
    Frame();
    EXPECT_FALSE(HasButton(ButtonId::EndBuild));
    app.paused = false;

    // German, several towers and a long score: the fields need the room, the button goes.
    GetSettings().classic = 1;
    SetLanguage(Language::German);
    app.game.StartLevel(7);
    app.game.phase = Phase::Build;
    app.game.score = 2000000000;
    Frame();
    ASSERT_GT(app.game.towers.size(), 1u);
    EXPECT_FALSE(HasButton(ButtonId::EndBuild));
    // ENTER still ends the build.
    ASSERT_TRUE(Tap(pge::ENTER));
    EXPECT_EQ(app.game.phase, Phase::Inspect);
}

TEST_F(CardTest, BannerFadesOverItsLastTenthsOfASecond) {
    Start({"--level=1"});
    app.bannerText = "";
    const pge::Pixel back{8, 10, 14};
    for (const auto& [left, alpha] : std::vector<std::pair<float, int>>{{2.0f, 170}, {0.2f, 85}, {0.1f, 42}}) {
        app.Clear(kBg);
        app.bannerUntil = app.game.clock + left;
        app.DrawBanner();
        pge::Sprite expect(1, 1);
        expect.SetPixel(0, 0, kBg);
        adv::canvas::Blend(&expect, 0, 0, pge::Pixel(back.r, back.g, back.b, uint8_t(alpha)));
        EXPECT_EQ(Screen().GetPixel(5, 200), expect.GetPixel(0, 0)) << left;
        EXPECT_EQ(Screen().GetPixel(5, 179), kBg);
    }
}

TEST(PartList, ByDirectionByTowerOrNothing) {
    SetLanguage(Language::German);
    RoundStats stats;
    LevelConfig config;
    EXPECT_EQ(TorvaneApp::PartList(stats, config), "");
    stats.towerPct = {80};
    EXPECT_EQ(TorvaneApp::PartList(stats, config), "");
    stats.towerPct = {80, 45};
    EXPECT_EQ(TorvaneApp::PartList(stats, config), " Stand je Turm: 80 %, 45 %.");
    // Directions win; only as many as the level has sectors.
    config.sectors.resize(2);
    config.sectors[0].label = "Norden";
    config.sectors[1].label = "Osten";
    stats.sectorPct = {60, 30, 99};
    EXPECT_EQ(TorvaneApp::PartList(stats, config), " Stand je Richtung: Norden 60 %, Osten 30 %.");
    SetLanguage(Language::English);
    EXPECT_EQ(TorvaneApp::PartList(stats, config), " By direction: North 60 %, East 30 %.");
}

TEST_F(CardTest, AnEmptyNameFieldHasItsCursorBeforeThePlaceholder) {
    Start({"--level=1"});
    app.game.phase = Phase::Over;
    Frame();
    ASSERT_TRUE(app.nameEntry);
    ASSERT_TRUE(app.playerName.empty());
    app.clock = 20.25f; // the cursor is lit
    Compose();
    // The cursor: a column of ten lit pixels, 21 right of the card's edge.
    const int cursorX = (640 - 420) / 2 + 21;
    int top = -1;
    for (int y = 30; y < 380 && top < 0; ++y)
        if (Screen().GetPixel(cursorX, y) == kFg && Screen().GetPixel(cursorX, y + 9) == kFg &&
            Screen().GetPixel(cursorX - 1, y) == kBg)
            top = y;
    ASSERT_GE(top, 0);
    int before = 0, behind = 0;
    for (int y = top; y < top + 10; ++y)
        for (int x = cursorX - 8; x < cursorX + 60; ++x)
            (x <= cursorX + 1 ? before : behind) += Screen().GetPixel(x, y) == kMuted ? 1 : 0;
    EXPECT_EQ(before, 0);
    EXPECT_GT(behind, 20);
}

TEST_F(CardTest, ANameTooLongForTheScoreTableIsCutBeforeItsLevelAndScore) {
    Start({"--level=1"});
    app.game.phase = Phase::Over;
    Frame();
    app.nameEntry = false;
    app.scoreSaved = true;
    app.scores = highscores::Parse("9800\t5\t0\t" + std::string(300, 'W') + "\n4570\t2\t0\tAnna\n");
    ASSERT_EQ(app.scores.size(), 2u);
    Compose();
    // The scores card is 380 wide; the scores end 14 inside its right edge.
    const int right = (640 - 380) / 2 + 380 - 14;
    int beyond = 0, level = 0;
    for (int y = 30; y < 380; ++y) {
        for (int x = right; x < 640; ++x) beyond += Screen().GetPixel(x, y) == kFg ? 1 : 0;
        for (int x = right - 100; x < right; ++x) level += Screen().GetPixel(x, y) == kMuted ? 1 : 0;
    }
    EXPECT_EQ(beyond, 0);
    EXPECT_GT(level, 20); // "Level 5" still stands before the score
}

TEST(HeldText, AHarderAttackFollowsUnlessThePackIsDone) {
    const Language language = CurrentLanguage();
    SetLanguage(Language::German);
    const LevelPack pack{"Burg", "Burg.tpack", {PackLevel{}, PackLevel{}}};
    SetActivePack(&pack);
    Game game(1);
    game.NewGame();
    const std::string next = " Der nächste Angriff wird härter: weniger Vorwarnung, mehr Schüsse.";
    const std::string done = " Das war das letzte Level des Levelpacks.";
    const auto endsWith = [](const std::string& text, const std::string& end) {
        return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
    };
    EXPECT_TRUE(endsWith(TorvaneApp::HeldText(game), next));
    game.StartLevel(2);
    EXPECT_TRUE(endsWith(TorvaneApp::HeldText(game), done));
    EXPECT_EQ(TorvaneApp::HeldText(game).find("nächste"), std::string::npos);
    SetActivePack(nullptr);
    SetLanguage(language);
}

TEST_F(CardTest, HelpBarFollowsThePhaseAndCountsTheUndoDown) {
    SetLanguage(Language::German);
    GetSettings().piece_choice = true;
    Start({"--level=1"});
    using Pairs = std::vector<std::pair<std::string, std::string>>;
    auto keys = [this] {
        std::vector<std::string> out;
        for (const auto& p : app.HelpPairs()) out.push_back(p.first);
        return out;
    };
    EXPECT_EQ(keys(), (std::vector<std::string>{"← →", "↓", "Space", "Tab", "Enter"}));
    ASSERT_TRUE(Tap(pge::DOWN));
    // Five seconds to take it back, counted in whole seconds, as the third hint.
    ASSERT_GE(app.HelpPairs().size(), 3u);
    EXPECT_EQ(app.HelpPairs()[2], (std::pair<std::string, std::string>{"↑", "zurücklegen (5 s)"}));
    app.game.clock += 3.5f;
    EXPECT_EQ(app.HelpPairs()[2].second, "zurücklegen (2 s)");
    app.game.clock += 1.6f;
    EXPECT_EQ(keys(), (std::vector<std::string>{"← →", "↓", "Space", "Tab", "Enter"}));

    app.paused = true;
    EXPECT_EQ(app.HelpPairs(), (Pairs{{"Esc", "weiter"}, {"Q", "zurück zum Titel"}}));
    // The settings over the pause: their own keys.
    app.settingsOpen = true;
    EXPECT_EQ(app.HelpPairs(), (Pairs{{"D R A T", "ändern"}, {"Esc", "zurück"}}));
    GetSettings().classic = 1;
    EXPECT_EQ(app.HelpPairs()[0].first, "D R T");
    GetSettings().classic = 0;
    app.settingsOpen = app.paused = false;
    // The automatic repair on a ring: the turn by hand only with auto_rotate off.
    app.game.phase = Phase::Attack;
    GetSettings().difficulty = 0;
    GetSettings().repair_mode = 1;
    GetSettings().auto_rotate = true;
    EXPECT_EQ(keys(), (std::vector<std::string>{"↑", "↓ Space Enter", "Tab"}));
    GetSettings().auto_rotate = false;
    EXPECT_EQ(app.HelpPairs()[0], (std::pair<std::string, std::string>{"← →", "Turm drehen"}));
    // The cards show their own buttons: no hints, only the level's name.
    for (Phase p : {Phase::Inspect, Phase::Announce, Phase::Eval, Phase::Over}) {
        app.game.phase = p;
        EXPECT_TRUE(app.HelpPairs().empty()) << int(p);
    }
}

// Every case of the help bar, in both languages and beside each landscape's name: no hint
// is left out for lack of room, and neither is the level's name, but for the seconds in
// which the hint to take a piece back stands too.
TEST_F(CardTest, HelpBarKeepsEveryHintAndTheLevelsNameInBothLanguages) {
    Start({"--level=1"});
    Game& game = app.game;
    struct Case {
        const char* name;
        bool classic;
        std::function<void(Settings&)> set;
        size_t pairs;
        bool takesBack; // the hint to take the last piece back can show
    };
    const std::vector<Case> cases = {
        {"pause", false, [&](Settings&) { app.paused = true; }, 2, false},
        {"settings over the pause", false, [&](Settings&) { app.paused = app.settingsOpen = true; }, 2, false},
        {"settings over the pause, classic", true, [&](Settings&) { app.paused = app.settingsOpen = true; }, 2,
         false},
        {"build, choosing pieces", false, [&](Settings& s) { s.piece_choice = true; }, 5, true},
        {"free repair", false, [&](Settings& s) { s.repair_mode = 0, game.phase = Phase::Attack; }, 4, true},
        {"building in the attack", false, [&](Settings& s) { s.difficulty = 3, game.phase = Phase::Attack; }, 4,
         true},
        {"automatic repair, the ring turned by hand", false,
         [&](Settings& s) { s.repair_mode = 1, s.auto_rotate = false, game.phase = Phase::Attack; }, 4, false},
        {"automatic repair, classic", true, [&](Settings& s) { s.repair_mode = 1, game.phase = Phase::Attack; }, 4,
         false},
    };
    // While the pad was used last, with its buttons in the caps.
    pge::VirtualPad pad;
    ASSERT_TRUE(pad.Plug());
    ASSERT_TRUE(Frame()); // found
    const std::pair<Language, bool> columns[] = {
        {Language::German, false}, {Language::English, false}, {Language::German, true}, {Language::English, true}};
    for (const auto& [language, padUsed] : columns) {
        SetLanguage(language);
        if (padUsed && !app.PadUsedLast()) {
            pad.Set(pge::PAD_LT, true);
            ASSERT_TRUE(Frame());
            pad.Set(pge::PAD_LT, false);
            ASSERT_TRUE(Frame() && app.PadUsedLast());
        }
        SCOPED_TRACE(padUsed ? "pad" : "keys");
        for (const Case& c : cases) {
            for (bool undo : {false, true}) {
                GetSettings() = saved;
                GetSettings().classic = c.classic;
                app.paused = app.settingsOpen = false;
                game.StartLevel(c.classic ? 3 : 1);
                c.set(GetSettings());
                game.undo.valid = undo;
                game.undo.phase = game.phase;
                game.undo.until = game.clock + 5.0f;
                const bool takingBack = undo && c.takesBack;
                const size_t pairs = c.pairs + (takingBack ? 1 : 0);
                ASSERT_EQ(app.HelpPairs().size(), pairs) << c.name;
                for (int level = 1; level <= 5; ++level) {
                    game.level = level;
                    const TorvaneApp::HelpLine line = app.LayOutHelp();
                    EXPECT_EQ(line.pairs.size(), pairs) << c.name << (undo ? " with the undo" : "") << ", " << line.name;
                    if (!takingBack) {
                        EXPECT_TRUE(line.nameFits) << c.name << ", " << line.name;
                    }
                }
            }
        }
    }
}

} // namespace
} // namespace torvane::testing_support
