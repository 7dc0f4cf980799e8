// Each screen against its reference picture: the HUD in the build and in the attack
// with the banner, every card, the title pages in both languages and the bare title
// picture with its foot. Drawn over a plain background instead of the stage.
#include "tests/screens/ScreensFixture.h"
#include "tests/stage/ReferencePicture.h"

namespace torvane::testing_support {
namespace {

class ScreenPictures : public ScreensTest {
protected:
    // Runs frames until the phase has come, at most a minute of game time.
    void RunTo(Phase phase) {
        for (int i = 0; i < 1200 && app.game.phase != phase; ++i) ASSERT_TRUE(Frame(0.05f));
        ASSERT_EQ(app.game.phase, phase);
    }
    // A level's figures as the end of an attack leaves them.
    void SetStats(bool passed) {
        RoundStats& s = app.game.stats;
        s.buildScore = 1240, s.timeBonus = 180, s.gapCells = 3, s.dropped = 2;
        s.repairScore = 650, s.held = 5, s.lost = 7, s.levelBonus = passed ? 500 : 0;
        s.sectorPct.clear();
        for (size_t i = 0; i < app.game.config.sectors.size(); ++i) s.sectorPct.push_back(passed ? 70 - 5 * int(i) : 40);
        s.overallPct = passed ? 66 : 38;
        s.passed = passed;
        app.game.score = 4570;
    }
    void Expect(const std::string& name) {
        Compose();
        ExpectMatchesReference(Screen(), name);
    }
};

TEST_F(ScreenPictures, HudInTheBuildAndInTheAttackWithTheBanner) {
    GetSettings().piece_choice = true;
    Start({"--level=1"});
    for (int i = 0; i < 10; ++i) Frame(0.05f);
    ASSERT_TRUE(Tap(pge::DOWN));
    Expect("screen_build");

    app.game.EndBuild(true);
    RunTo(Phase::Announce);
    app.Press(ButtonId::StartAttack, 0);
    RunTo(Phase::Attack);
    for (int i = 0; i < 6; ++i) Frame(0.05f);
    ASSERT_GT(app.bannerUntil, app.game.clock);
    Expect("screen_attack");
}

TEST_F(ScreenPictures, PhaseCardsInGerman) {
    SetLanguage(Language::German);
    Start({"--level=2"});
    app.game.EndBuild(true);
    RunTo(Phase::Announce);
    Expect("card_announce");

    SetStats(true);
    app.game.phase = Phase::Eval;
    Frame();
    SetStats(true);
    Expect("card_eval");

    app.game.phase = Phase::Over;
    Frame();
    SetStats(false);
    ASSERT_TRUE(app.nameEntry);
    app.playerName = "Anna";
    app.clock = 20.25f; // the cursor is lit
    Expect("card_over");
    app.playerName = ""; // the cursor before the placeholder
    Expect("card_over_empty");

    // A name too long for the table is cut before its level and score.
    app.scores = {{"Jörg" + std::string(300, 'W'), 9800, 5, 0}, {"Anna", 4570, 2, 0}, {"Torvane", 1200, 1, 0}};
    app.nameEntry = false;
    app.scoreSaved = true;
    app.highlightRow = 1;
    Expect("card_scores");
}

TEST_F(ScreenPictures, PauseAndSettingsInRingAndClassicMode) {
    GetSettings().difficulty = 1;
    Start({"--level=1"});
    app.paused = true;
    Expect("card_pause");
    app.settingsOpen = true;
    Expect("card_settings_ring");
    app.settingsOpen = false;
    app.paused = false;
    GetSettings().classic = 1;
    GetSettings().repair_mode = 0;
    app.game.StartLevel(3);
    app.settingsOpen = true;
    Expect("card_settings_classic");
    // While the pad was used last: its buttons in the help bar's caps and on the card.
    app.settingsOpen = false;
    app.paused = true;
    pge::VirtualPad pad;
    ASSERT_TRUE(pad.Plug());
    ASSERT_TRUE(Frame()); // found
    pad.Set(pge::PAD_LT, true);
    ASSERT_TRUE(Frame());
    Expect("card_pause_pad");
}

TEST_F(ScreenPictures, TitlePagesInBothLanguages) {
    Start({});
    for (Language language : {Language::German, Language::English}) {
        SetLanguage(language);
        for (int page = 0; page < 4; ++page) {
            app.titlePage = page;
            Expect("title_page" + std::to_string(page) + (language == Language::German ? "_de" : "_en"));
        }
    }
}

TEST_F(ScreenPictures, BareTitlePictureWithItsFoot) {
    MakeTitlePicture();
    SetLanguage(Language::German);
    Start({});
    ASSERT_NE(app.titleImage, nullptr);
    app.clock = 12.1f; // the blinking line is lit
    app.buttons.clear();
    app.DrawTitleScreen();
    ExpectMatchesReference(Screen(), "title_picture");
}

} // namespace
} // namespace torvane::testing_support
