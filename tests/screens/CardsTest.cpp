// The card toolkit and the strips around the stage where the screens' pictures do not
// show them: a card cut to the stage, the buttons a frame registers, the HUD's end button,
// the sentence of parts and the help bar's hints.
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

// A card is measured by a first pass and drawn by a second, its panel centred on the stage
// and at least as high as asked (every card's picture shows it). One taller than the stage's
// 360 is cut: its panel at 22, 360 high, its content from 36.
TEST_F(CardTest, ACardTallerThanTheStageIsCut) {
    Start({"--level=1"});
    std::vector<int> starts;
    app.Clear(kBg);
    app.DrawCard([&](TorvaneApp::Card& c) { starts.push_back(c.y), c.y += 400; }, 200, 0);
    EXPECT_EQ(std::tuple(starts, PanelTop(Screen())), std::tuple(std::vector<int>{starts.at(0), 36}, 22));
    EXPECT_EQ(Screen().GetPixel(320, 22 + 359), kPanel);
    EXPECT_NE(Screen().GetPixel(320, 22 + 360), kPanel);
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

TEST_F(CardTest, HeldTextSaysAHarderAttackFollowsUnlessThePackIsDone) {
    SetLanguage(Language::German);
    const LevelPack pack{"Burg", "Burg.tpack", {PackLevel{}, PackLevel{}}};
    SetActivePack(&pack);
    Game game(1);
    game.NewGame();
    const std::string next = " Der nächste Angriff wird härter: weniger Vorwarnung, mehr Schüsse.";
    const std::string done = " Das war das letzte Level des Levelpacks.";
    std::string text = TorvaneApp::HeldText(game);
    EXPECT_EQ(text.rfind(next), text.size() - next.size()) << text;
    game.StartLevel(2);
    text = TorvaneApp::HeldText(game);
    SetActivePack(nullptr);
    EXPECT_EQ(text.rfind(done), text.size() - done.size()) << text;
    EXPECT_EQ(text.find("nächste"), std::string::npos);
}

// The hints of the pause, the settings, the build and the cards stand in the screens'
// pictures; here what changes with time and with the settings of the automatic repair.
TEST_F(CardTest, HelpBarCountsTheUndoDownAndTurnsTheRingByHandOnlyWithoutAutoRotate) {
    SetLanguage(Language::German);
    Start({"--level=1"});
    ASSERT_TRUE(Tap(pge::DOWN));
    // Five seconds to take it back, counted in whole seconds, as the third hint.
    ASSERT_GE(app.HelpPairs().size(), 3u);
    EXPECT_EQ(app.HelpPairs()[2], (std::pair<std::string, std::string>{"↑", "zurücklegen (5 s)"}));
    app.game.clock += 3.5f;
    EXPECT_EQ(app.HelpPairs()[2].second, "zurücklegen (2 s)");
    app.game.clock += 1.6f;
    for (const auto& pair : app.HelpPairs()) EXPECT_NE(pair.first, "↑");
    app.game.phase = Phase::Attack;
    GetSettings().difficulty = 0;
    GetSettings().repair_mode = 1;
    GetSettings().auto_rotate = true;
    std::vector<std::string> keys;
    for (const auto& p : app.HelpPairs()) keys.push_back(p.first);
    EXPECT_EQ(keys, (std::vector<std::string>{"↑", "↓ Space Enter", "Tab"}));
    GetSettings().auto_rotate = false;
    EXPECT_EQ(app.HelpPairs()[0], (std::pair<std::string, std::string>{"← →", "Turm drehen"}));
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
                    EXPECT_TRUE(takingBack || line.nameFits) << c.name << ", " << line.name;
                }
            }
        }
    }
}

} // namespace
} // namespace torvane::testing_support
