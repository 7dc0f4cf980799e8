// The title screen's keys with a title picture, the over card's name field and the entry
// that lands in highscores.txt, and a replay watched from the score table. (That the settings
// are kept for the next run, a first game's name in highscores.txt and the idle score
// card after 15 untouched seconds, the end-to-end tests show with real key presses.)
#include "game/content/Highscores.h"
#include "game/content/ReplayFiles.h"
#include "tests/screens/ScreensFixture.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace torvane::testing_support {
namespace {

class TitleTest : public ScreensTest {
protected:
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

// With a title picture the title opens bare, or on the page asked for, even one that is
// not there: then it shows none, its tabs unlit. Right and Left step round the four pages,
// from the bare picture too; Esc leaves a page for the picture before it quits.
TEST_F(TitleTest, PictureOpensBareArrowsStepRoundThePagesAndEscapeLeavesAPageFirst) {
    MakeTitlePicture();
    Start({"--page=7"});
    ASSERT_NE(app.titleImage, nullptr);
    EXPECT_EQ(std::tuple(app.titleImage->width, app.titlePage), std::tuple(640, 7));
    ASSERT_TRUE(Frame());
    int tabs = 0;
    for (const Button& b : app.buttons) tabs += b.id == ButtonId::TitlePage ? 1 : 0;
    EXPECT_EQ(tabs, 4);
    // From the largest page there is, as "--page=2147483647" sets it: 2^31 modulo 4.
    const int kMax = std::numeric_limits<int>::max();
    for (const auto& [from, key, to] : std::vector<std::tuple<int, pge::Key, int>>{
             {7, pge::LEFT, 6}, {7, pge::RIGHT, 0}, {kMax, pge::RIGHT, 0}, {-1, pge::RIGHT, 0}, {-1, pge::LEFT, 3}}) {
        app.titlePage = from;
        ASSERT_TRUE(Tap(key));
        EXPECT_EQ(app.titlePage, to) << from;
    }
    ASSERT_TRUE(Tap(pge::ESCAPE));
    EXPECT_EQ(std::tuple(app.titlePage, app.quit), std::tuple(-1, false));
    // The foot's buttons: the pages, the settings, the language, the start over the blinking line.
    EXPECT_TRUE(HasButton(ButtonId::TitlePage) && HasButton(ButtonId::OpenSettings) &&
                HasButton(ButtonId::NewGame) && HasButton(ButtonId::ToggleLanguage));
    // The blinking line is off for 0.4 s of 1.2; its button stays and starts the game.
    while (std::fmod(app.clock, 1.2f) < 0.85f) Frame();
    Click(320, 340);
    EXPECT_EQ(app.game.phase, Phase::Build);
}

// Keys alone type small letters, digits and blanks; fourteen code points at most, no leading
// blank. (Raw presses with capitals and umlauts the end-to-end test of a first game types.)
TEST_F(ScoresTest, NameFieldTakesFourteenCodePointsAndNoLeadingBlank) {
    OpenNameField("--level=1", 500);
    ASSERT_TRUE(Tap(pge::SPACE));
    EXPECT_EQ(app.playerName, "");
    for (pge::Key k : {pge::A, pge::N, pge::K1, pge::SPACE, pge::B}) ASSERT_TRUE(Tap(k));
    EXPECT_EQ(app.playerName, "an1 b");
    app.playerName = "Jö";
    ASSERT_TRUE(Tap(pge::BACK)); // a whole code point
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
    EXPECT_FALSE(app.nameEntry || app.scoreSaved || !highscores::Load().empty());
    EXPECT_TRUE(HasButton(ButtonId::ToTitle));
}

TEST_F(ScoresTest, EnterSavesToDiskAndTheNextTitleReadsIt) {
    // Another run wrote in the meantime: the entry adds to the disk, not to the old copy.
    OpenNameField("--level=2", 700);
    ASSERT_TRUE(highscores::Save({{"Early", 900, 4, 10}, {"Late", 100, 1, 20}}));
    for (pge::Key k : {pge::J, pge::O}) ASSERT_TRUE(Tap(k));
    ASSERT_TRUE(Tap(pge::ENTER));
    EXPECT_EQ(std::tuple(app.scoreSaved, app.highlightRow), std::tuple(true, 1));
    const auto list = highscores::Load();
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(std::tie(list[1].name, list[1].score, list[1].level), std::tuple("jo", 700, 2)); // no shifted letters
    EXPECT_GT(list[1].time, 1700000000);
    // The scores card, then SPACE after the lock: back to the title.
    ASSERT_TRUE(Frame());
    EXPECT_TRUE(HasButton(ButtonId::ToTitle));
    app.phaseStart = app.clock - 1.0f;
    ASSERT_TRUE(Tap(pge::SPACE));
    EXPECT_EQ(std::tuple(app.game.phase, app.scores.size()), std::tuple(Phase::Title, size_t(3)));

    // An empty name is saved as "Torvane".
    app.game.phase = Phase::Over;
    app.game.score = 50;
    Frame();
    ASSERT_TRUE(app.nameEntry);
    app.Press(ButtonId::SaveScore, 0);
    EXPECT_EQ(highscores::Load().back().name, "Torvane");
}

TEST_F(ScoresTest, AnEntryKeepsItsGamesReplayAndTheTablePlaysIt) {
    // A game lost by doing nothing: the build ended at once, the attack let be.
    Start({"--level=1"});
    ASSERT_TRUE(Tap(pge::ENTER));
    for (int n = 0; n < 400 && app.game.phase != Phase::Announce; ++n) ASSERT_TRUE(Frame(0.05f));
    app.phaseStart = app.clock - 1.0f;
    ASSERT_TRUE(Tap(pge::ENTER));
    for (int n = 0; n < 2000 && app.game.phase != Phase::Over; ++n) ASSERT_TRUE(Frame(0.05f));
    ASSERT_TRUE(app.nameEntry);
    const int score = app.game.score;
    ASSERT_TRUE(Tap(pge::ENTER));
    ASSERT_EQ(app.scoreReplays, std::vector<bool>{true});
    ASSERT_TRUE(replay::Has(app.scores[0]));

    // Down chooses the marked row, Enter plays it; faster, to its end card.
    ASSERT_TRUE(Tap(pge::DOWN));
    EXPECT_EQ(app.scoreRow, 0);
    ASSERT_TRUE(Tap(pge::ENTER));
    ASSERT_NE(app.watching, nullptr);
    for (int i = 0; i < 4; ++i) ASSERT_TRUE(Tap(pge::RIGHT));
    EXPECT_EQ(app.watching->speed, 16.0f);
    for (int n = 0; n < 2000 && !app.watching->player.Done(); ++n) ASSERT_TRUE(Frame(0.05f));
    ASSERT_TRUE(Frame());
    EXPECT_TRUE(app.watching->player.Result().Matches());
    EXPECT_TRUE(HasButton(ButtonId::EndWatch));
    // Esc returns to the list as it stood, the game's figures as they were.
    ASSERT_TRUE(Tap(pge::ESCAPE));
    EXPECT_EQ(app.watching, nullptr);
    EXPECT_EQ(std::tuple(app.game.phase, app.game.score, app.scoreSaved), std::tuple(Phase::Over, score, true));
    // A click on the row plays it too.
    const auto row = std::find_if(app.buttons.begin(), app.buttons.end(),
                                  [](const Button& b) { return b.id == ButtonId::WatchReplay; });
    ASSERT_NE(row, app.buttons.end());
    Click(row->x + 2, row->y + 2);
    EXPECT_NE(app.watching, nullptr);
}

} // namespace
} // namespace torvane::testing_support
