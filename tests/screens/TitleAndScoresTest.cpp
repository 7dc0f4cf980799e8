// The title screen's keys with and without a title picture, the idle score card, the
// over card's name field and the entry that lands in highscores.txt, and the settings
// that are kept for the next run.
#include "game/content/Highscores.h"
#include "game/content/Preferences.h"
#include "tests/screens/ScreensFixture.h"

#include <fstream>
#include <limits>
#include <sstream>

namespace torvane::testing_support {
namespace {

class TitleTest : public ScreensTest {
protected:
    std::string ReadData(const std::string& name) {
        std::ifstream in(dataFolder + "/" + name);
        std::ostringstream all;
        all << in.rdbuf();
        return all.str();
    }
    // A game at `level` lost with `score` points, its over card open with the name field.
    void OpenNameField(const char* level, int32_t score) {
        Start({level});
        app.game.phase = Phase::Over;
        app.game.score = score;
        Frame();
        ASSERT_TRUE(app.nameEntry); // an empty list takes any score
    }
};
using ScoresTest = TitleTest;

TEST_F(TitleTest, PictureOpensBareAndEscapeLeavesAPageFirst) {
    MakeTitlePicture();
    Start({"--page=3"});
    ASSERT_NE(app.titleImage, nullptr);
    EXPECT_EQ(app.titleImage->width, 640);
    EXPECT_EQ(app.titlePage, 3);
    ASSERT_TRUE(Tap(pge::ESCAPE));
    EXPECT_EQ(app.titlePage, -1);
    EXPECT_FALSE(app.quit);
    // RIGHT from the bare picture is page 0, LEFT from it page 3.
    ASSERT_TRUE(Tap(pge::RIGHT));
    EXPECT_EQ(app.titlePage, 0);
    ASSERT_TRUE(Tap(pge::ESCAPE));
    ASSERT_TRUE(Tap(pge::LEFT));
    EXPECT_EQ(app.titlePage, 3);
    ASSERT_TRUE(Tap(pge::ESCAPE));
    // The foot's buttons: the pages, the settings, the start over the blinking line.
    EXPECT_TRUE(HasButton(ButtonId::TitlePage));
    EXPECT_TRUE(HasButton(ButtonId::OpenSettings));
    EXPECT_TRUE(HasButton(ButtonId::NewGame));
    EXPECT_TRUE(HasButton(ButtonId::ToggleLanguage));
    // The blinking line is off for 0.4 s of 1.2; its button stays and starts the game.
    while (std::fmod(app.clock, 1.2f) < 0.85f) Frame();
    Click(320, 340);
    EXPECT_EQ(app.game.phase, Phase::Build);
    run->SetKey(pge::ESCAPE, true); // pause, not quit
    ASSERT_TRUE(Frame());
    EXPECT_TRUE(app.paused);
}

TEST_F(TitleTest, PageSevenShowsNoPageAndTheRingGoesOn) {
    MakeTitlePicture();
    Start({"--page=7"});
    EXPECT_EQ(app.titlePage, 7);
    ASSERT_TRUE(Frame());
    // The tabs are there, none lit, and nothing stands between the rule and the button.
    int tabs = 0;
    for (const Button& b : app.buttons) tabs += b.id == ButtonId::TitlePage ? 1 : 0;
    EXPECT_EQ(tabs, 4);
    const int top = (368 - 336) / 2 + 18;
    int ink = 0;
    for (int y = top + 70; y < top + 290; ++y)
        for (int x = 100; x < 540; ++x) ink += Screen().GetPixel(x, y) == kPanel ? 0 : 1;
    EXPECT_EQ(ink, 0);
    ASSERT_TRUE(Tap(pge::LEFT));
    EXPECT_EQ(app.titlePage, 6);
    app.titlePage = 7;
    ASSERT_TRUE(Tap(pge::RIGHT));
    EXPECT_EQ(app.titlePage, 0);
    // From the largest page there is, as "--page=2147483647" sets it: 2^31 modulo 4.
    app.titlePage = std::numeric_limits<int>::max();
    ASSERT_TRUE(Tap(pge::RIGHT));
    EXPECT_EQ(app.titlePage, 0);
}

TEST_F(TitleTest, IdleScoresAfterFifteenSecondsForTenAndConfirmStarts) {
    MakeTitlePicture();
    Start({});
    for (int i = 0; i < 140; ++i) ASSERT_TRUE(Frame(0.1f)); // 14 s
    EXPECT_FALSE(app.attractScores);
    for (int i = 0; i < 12; ++i) ASSERT_TRUE(Frame(0.1f));
    EXPECT_TRUE(app.attractScores);
    // Ten seconds later it goes by itself.
    for (int i = 0; i < 102; ++i) ASSERT_TRUE(Frame(0.1f));
    EXPECT_FALSE(app.attractScores);
    // A key takes it away and counts as input; it comes back only after 15 quiet seconds.
    for (int i = 0; i < 152; ++i) ASSERT_TRUE(Frame(0.1f));
    ASSERT_TRUE(app.attractScores);
    ASSERT_TRUE(Tap(pge::K));
    EXPECT_FALSE(app.attractScores);
    EXPECT_EQ(app.game.phase, Phase::Title);
    for (int i = 0; i < 152; ++i) ASSERT_TRUE(Frame(0.1f));
    ASSERT_TRUE(app.attractScores);
    ASSERT_TRUE(Tap(pge::SPACE));
    EXPECT_EQ(app.game.phase, Phase::Build);
    EXPECT_FALSE(app.attractScores);
    // On a page the idle card never comes.
    app.Press(ButtonId::ToTitle, 0);
    ASSERT_TRUE(Frame(0.1f));
    ASSERT_EQ(app.titlePage, -1);
    app.titlePage = 1;
    for (int i = 0; i < 200; ++i) ASSERT_TRUE(Frame(0.1f));
    EXPECT_FALSE(app.attractScores);
    app.titlePage = -1;
    for (int i = 0; i < 2; ++i) ASSERT_TRUE(Frame(0.1f));
    EXPECT_TRUE(app.attractScores);
}

TEST_F(ScoresTest, NameFieldTakesFourteenCodePointsAndNoLeadingBlank) {
    OpenNameField("--level=1", 500);
    ASSERT_TRUE(Tap(pge::SPACE));
    EXPECT_EQ(app.playerName, "");
    for (pge::Key k : {pge::A, pge::N, pge::K1, pge::SPACE, pge::B}) ASSERT_TRUE(Tap(k));
    EXPECT_EQ(app.playerName, "an1 b");
    // Backspace takes a whole code point, umlauts included.
    app.playerName = "Jö";
    ASSERT_TRUE(Tap(pge::BACK));
    EXPECT_EQ(app.playerName, "J");
    app.playerName = "ÄÖÜäöüßabcdef"; // 13 code points, 20 bytes
    ASSERT_TRUE(Tap(pge::X));
    ASSERT_TRUE(Tap(pge::Y));
    EXPECT_EQ(app.playerName, "ÄÖÜäöüßabcdefx");
    ASSERT_TRUE(Tap(pge::BACK));
    ASSERT_TRUE(Tap(pge::Y));
    EXPECT_EQ(app.playerName, "ÄÖÜäöüßabcdefy");
    // ESCAPE leaves the field without an entry; the list is shown with its button.
    ASSERT_TRUE(Tap(pge::ESCAPE));
    EXPECT_FALSE(app.nameEntry);
    EXPECT_FALSE(app.scoreSaved);
    EXPECT_EQ(ReadData("highscores.txt"), "");
    EXPECT_TRUE(HasButton(ButtonId::ToTitle));
}

TEST_F(ScoresTest, RawPressesTypeCapitalsAndUmlautsEachOnce) {
    OpenNameField("--level=1", 500);
    TypeText("Jürgen Ö");
    EXPECT_EQ(app.playerName, "Jürgen Ö");
    // Characters the font can't draw, control characters and Ctrl with a letter type nothing.
    for (uint32_t code : {0xE9u, 0x20ACu, 0x1F600u, 1u}) run->Type(code, code == 1u);
    for (int i = 0; i < 4; ++i) Frame(); // one press a frame
    EXPECT_EQ(app.playerName, "Jürgen Ö");
    TypeText("\b");
    EXPECT_EQ(app.playerName, "Jürgen ");
    TypeText("Öß\r");
    EXPECT_TRUE(app.scoreSaved);
    EXPECT_NE(ReadData("highscores.txt").find("\tJürgen Öß\n"), std::string::npos) << ReadData("highscores.txt");
}

TEST_F(ScoresTest, EnterSavesToDiskAndTheNextTitleReadsIt) {
    // Another run wrote in the meantime: the entry adds to the disk, not to the old copy.
    OpenNameField("--level=2", 700);
    ASSERT_TRUE(highscores::Save({{"Early", 900, 4, 10}, {"Late", 100, 1, 20}}));
    for (pge::Key k : {pge::J, pge::O}) ASSERT_TRUE(Tap(k));
    ASSERT_TRUE(Tap(pge::ENTER));
    EXPECT_TRUE(app.scoreSaved);
    EXPECT_EQ(app.highlightRow, 1);
    const auto list = highscores::Load();
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[1].name, "jo"); // no shifted letters on Linux
    EXPECT_EQ(list[1].score, 700);
    EXPECT_EQ(list[1].level, 2);
    EXPECT_GT(list[1].time, 1700000000);
    // The scores card, then SPACE after the lock: back to the title.
    ASSERT_TRUE(Frame());
    EXPECT_TRUE(HasButton(ButtonId::ToTitle));
    app.phaseStart = app.clock - 1.0f;
    ASSERT_TRUE(Tap(pge::SPACE));
    EXPECT_EQ(app.game.phase, Phase::Title);
    EXPECT_EQ(app.scores.size(), 3u);

    // An empty name is saved as "Torvane"; a score that doesn't make a full list gets no field.
    app.game.phase = Phase::Over;
    app.game.score = 50;
    Frame();
    ASSERT_TRUE(app.nameEntry);
    app.Press(ButtonId::SaveScore, 0);
    EXPECT_EQ(highscores::Load().back().name, "Torvane");
    std::vector<highscores::Entry> full(10, {"x", 1000, 1, 0});
    ASSERT_TRUE(highscores::Save(full));
    app.game.phase = Phase::Title;
    Frame();
    app.game.phase = Phase::Over;
    app.game.score = 1000;
    Frame();
    EXPECT_FALSE(app.nameEntry);
}

TEST_F(ScoresTest, SettingsAndLanguageAreKeptForTheNextRun) {
    SetLanguage(Language::English);
    Start({});
    ASSERT_TRUE(Tap(pge::L));
    EXPECT_EQ(CurrentLanguage(), Language::German);
    ASSERT_TRUE(Tap(pge::S));
    ASSERT_TRUE(app.settingsOpen);
    GetSettings().difficulty = 0;
    for (pge::Key k : {pge::D, pge::R, pge::A, pge::T}) ASSERT_TRUE(Tap(k));
    const Settings after = GetSettings();
    const std::string text = ReadData("settings.txt");
    EXPECT_NE(text.find("language=de\n"), std::string::npos);
    EXPECT_NE(text.find("difficulty=medium\n"), std::string::npos);
    // A fresh start reads them back.
    GetSettings() = Settings{};
    SetLanguage(Language::English);
    preferences::Load();
    EXPECT_EQ(CurrentLanguage(), Language::German);
    EXPECT_EQ(GetSettings().difficulty, 1);
    EXPECT_EQ(GetSettings().repair_mode, after.repair_mode);
    EXPECT_EQ(GetSettings().auto_rotate, after.auto_rotate);
    EXPECT_EQ(GetSettings().piece_choice, after.piece_choice);
}

} // namespace
} // namespace torvane::testing_support
