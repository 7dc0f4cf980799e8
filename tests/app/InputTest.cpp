// Key and pad sequences through the headless seam on a real application.
#include "tests/screens/ScreensFixture.h"

#include <tuple>

namespace torvane {
namespace {

constexpr float kDt = 0.033f; // the fixture's frame

class InputTest : public testing_support::ScreensTest {
protected:
    // ENTER ends the build; frames until the announce card is up.
    void ToAnnounce() {
        ASSERT_TRUE(Tap(pge::ENTER));
        for (int frame = 0; frame < 2000 && app.game.phase != Phase::Announce; ++frame) ASSERT_TRUE(Frame());
        ASSERT_EQ(app.game.phase, Phase::Announce);
    }
};

// Moves a held arrow has made after `frames` frames of kDt: one at the press, the
// first repeat 0.22 s after it, then one each 0.085 s.
int MovesAfter(int frames) {
    const double heldFor = frames * double(kDt);
    int moves = 1;
    for (double at = 0.22; at <= heldFor; at += 0.085) ++moves;
    return moves;
}

TEST_F(InputTest, HeldArrowMovesOnceThenRepeatsAtItsRate) {
    Start({"--level=1"});
    ASSERT_EQ(app.game.phase, Phase::Build);
    ASSERT_TRUE(app.game.config.ring); // the cursor wraps, no edge stops it
    const int startX = app.game.cursorX;
    run->SetKey(pge::LEFT, true);
    for (int frame = 1; frame <= 20; ++frame) {
        ASSERT_TRUE(Frame());
        EXPECT_EQ(app.game.cursorX, app.game.WrapX(startX - MovesAfter(frame))) << "frame " << frame;
    }
    // Let go: no further move, and the repeat is forgotten.
    run->SetKey(pge::LEFT, false);
    const int heldTo = app.game.cursorX;
    for (int frame = 0; frame < 10; ++frame) ASSERT_TRUE(Frame());
    EXPECT_EQ(std::tuple(app.game.cursorX, app.repeatKey), std::tuple(heldTo, pge::NONE));

    // A tap is exactly one column to the right.
    ASSERT_TRUE(Tap(pge::RIGHT));
    EXPECT_EQ(app.game.cursorX, app.game.WrapX(heldTo + 1));
}

TEST_F(InputTest, BuildKeysPlaceUndoRotateCycleAndEnd) {
    GetSettings().piece_choice = true;
    Start({"--level=1"});
    ASSERT_EQ(app.game.phase, Phase::Build);

    const size_t before = app.game.pieces.size();
    ASSERT_TRUE(Tap(pge::DOWN));
    EXPECT_EQ(app.game.pieces.size(), before + 1);
    ASSERT_TRUE(Tap(pge::UP)); // within the undo time: the piece comes back
    EXPECT_EQ(app.game.pieces.size(), before);

    const int rotation = app.game.rotation;
    ASSERT_TRUE(Tap(pge::SPACE));
    EXPECT_EQ(app.game.rotation, (rotation + 1) % 4);

    ASSERT_GE(app.game.supply.size(), 2u);
    const int selected = app.game.selected;
    ASSERT_TRUE(Tap(pge::TAB));
    EXPECT_EQ(app.game.selected, (selected + 1) % int(app.game.supply.size()));
    EXPECT_EQ(app.game.rotation, 0); // a new piece comes upright
    // Without the piece choice TAB says why and keeps the piece.
    GetSettings().piece_choice = false;
    ASSERT_TRUE(Tap(pge::TAB));
    EXPECT_EQ(app.game.selected, (selected + 1) % int(app.game.supply.size()));
    EXPECT_FALSE(app.message.empty());
    EXPECT_GT(app.messageUntil, app.clock);

    // ENTER ends the build at once: the confirm lock is for the cards only.
    ASSERT_TRUE(Tap(pge::ENTER));
    EXPECT_EQ(app.game.phase, Phase::Inspect);
}

TEST_F(InputTest, EscapePausesTheRulesAndQFromThePauseQuitsToTheTitle) {
    Start({"--level=2"});
    ASSERT_TRUE(Tap(pge::ESCAPE));
    ASSERT_TRUE(app.paused);
    const float gameClock = app.game.clock;
    const float realClock = app.clock;
    const int x = app.game.cursorX;
    for (int frame = 0; frame < 10; ++frame) ASSERT_TRUE(Frame());
    ASSERT_TRUE(Tap(pge::LEFT)); // the pause card takes the keys
    EXPECT_EQ(std::tuple(app.game.clock, app.game.cursorX), std::tuple(gameClock, x));
    EXPECT_NEAR(app.clock - realClock, 12 * kDt, 1e-4);

    // S opens the settings over the pause; closing them returns to the pause.
    ASSERT_TRUE(Tap(pge::S));
    EXPECT_TRUE(app.settingsOpen);
    ASSERT_TRUE(Tap(pge::ESCAPE));
    EXPECT_EQ(std::tuple(app.settingsOpen, app.paused), std::tuple(false, true));

    ASSERT_TRUE(Tap(pge::ESCAPE));
    EXPECT_FALSE(app.paused);
    EXPECT_GT(app.game.clock, gameClock);

    ASSERT_TRUE(Tap(pge::ESCAPE));
    ASSERT_TRUE(Tap(pge::Q));
    EXPECT_EQ(std::tuple(app.paused, app.game.phase, app.game.level, app.lastPhase),
              std::tuple(false, Phase::Title, 1, Phase::Title));
}

// Leaving the window in the build pauses the game, and F11 switches to full screen and back:
// both are played in the real window by an end-to-end script.
TEST_F(InputTest, OnTheTitleLosingTheFocusDoesNothingAndConfirmStartsAGame) {
    Start({});
    run->SetFocus(true);
    ASSERT_TRUE(Frame());
    run->SetFocus(false);
    ASSERT_TRUE(Frame());
    EXPECT_FALSE(app.paused);
    ASSERT_TRUE(Tap(pge::ENTER));
    EXPECT_EQ(std::tuple(app.game.phase, app.game.level, app.lastPhase, app.paused),
              std::tuple(Phase::Build, 1, Phase::Build, false));
}

TEST_F(InputTest, AnnounceConfirmIsLockedForItsFirstSixTenths) {
    Start({"--level=1"});
    ToAnnounce();
    const float start = app.phaseStart;
    EXPECT_NEAR(start, app.clock, 1e-6);
    // Enter down at once and held past the lock: no press is new. New ones before it end do nothing.
    run->SetKey(pge::ENTER, true);
    while (app.clock + 2 * kDt < start + 0.6f) {
        ASSERT_TRUE(Tap(pge::SPACE));
        ASSERT_EQ(app.game.phase, Phase::Announce) << "at " << app.clock - start;
    }
    while (app.clock < start + 0.6f) ASSERT_TRUE(Frame());
    ASSERT_TRUE(Frame());
    EXPECT_EQ(app.game.phase, Phase::Announce);
    run->SetKey(pge::ENTER, false);
    ASSERT_TRUE(Tap(pge::SPACE));
    EXPECT_EQ(app.game.phase, Phase::Attack);
}

// A click reads the buttons of the frame before (the screens' tests show that): a button
// takes its left and top edges, not its right and bottom ones; a miss falls through.
TEST_F(InputTest, AClickHitsAButtonWithinItsEdges) {
    Start({});
    const std::tuple<int, int, bool> clicks[] = {{20, 10, true},  {29, 14, true},  {30, 14, false},
                                                 {25, 15, false}, {19, 12, false}, {25, 9, false}};
    for (const auto& [x, y, hit] : clicks) {
        app.titlePage = 0;
        app.buttons = {{20, 10, 10, 5, ButtonId::TitlePage, 2}};
        Click(x, y);
        EXPECT_EQ(app.titlePage, hit ? 2 : 0) << x << "," << y;
    }
}

TEST_F(InputTest, SettingsTogglesCycleAndClassicKeepsTheTurn) {
    Start({"--level=1"});
    Settings& s = GetSettings();
    s.difficulty = 2;
    s.repair_mode = 1;
    s.classic = 0;
    s.auto_rotate = true;
    app.settingsOpen = true;
    // Each key steps its setting round; on classic towers A leaves the turn as it is.
    const std::tuple<pge::Key, int, int, int, bool> taps[] = {
        {pge::D, 0, 3, 1, true}, {pge::D, 0, 0, 1, true}, {pge::R, 0, 0, 0, true},
        {pge::R, 0, 0, 1, true}, {pge::A, 0, 0, 1, false}, {pge::A, 1, 0, 1, false}};
    for (const auto& [key, classic, difficulty, repair, turn] : taps) {
        s.classic = classic;
        ASSERT_TRUE(Tap(key));
        EXPECT_EQ(std::tuple(s.difficulty, s.repair_mode, bool(s.auto_rotate)), std::tuple(difficulty, repair, turn))
            << key;
    }
    // The card takes every key: the cursor stays.
    const int x = app.game.cursorX;
    ASSERT_TRUE(Tap(pge::LEFT));
    EXPECT_EQ(app.game.cursorX, x);
    ASSERT_TRUE(Tap(pge::S));
    EXPECT_FALSE(app.settingsOpen);
}

TEST_F(InputTest, ManualCameraTurnsWithTheArrowsInAnAutoRepairAttack) {
    Start({"--level=1"});
    GetSettings().auto_rotate = false;
    GetSettings().repair_mode = 1;
    ToAnnounce();
    while (app.clock < app.phaseStart + 0.6f) ASSERT_TRUE(Frame());
    ASSERT_TRUE(Tap(pge::ENTER));
    ASSERT_EQ(app.game.phase, Phase::Attack);
    ASSERT_FALSE(app.game.FreeRepair() || app.game.BuildsInAttack());

    const int x = app.game.cursorX;
    const float target = app.camera.target;
    run->SetKey(pge::RIGHT, true);
    ASSERT_TRUE(Frame());
    run->SetKey(pge::RIGHT, false);
    // The turn leads the camera's goal to the right, and the piece stays where it was.
    EXPECT_GT(app.camera.target - target, 0.0f);
    EXPECT_EQ(app.game.cursorX, x);
}

// A pad plays a whole game, its presses standing for keys: the title's pages and settings,
// the build with every action, a pause, the pad pulled out and plugged in again, the
// announce card, the attack with repairs and the over card's name field, arcade style.
TEST_F(InputTest, APadPlaysAWholeGame) {
    Start({"--skip-intro"});
    pge::VirtualPad pad;
    ASSERT_TRUE(pad.Plug());
    const auto frames = [&](int n) {
        for (int i = 0; i < n; ++i) ASSERT_TRUE(Frame());
    };
    const auto press = [&](pge::PadButton b) {
        pad.Set(b, true);
        frames(1);
        pad.Set(b, false);
        frames(1);
    };
    torvane::Settings& settings = torvane::GetSettings();
    settings.repair_mode = 1;
    settings.piece_choice = false;

    // Title (without a title picture it opens on page 0): the shoulders turn the pages.
    ASSERT_EQ(app.titlePage, 0);
    press(pge::PAD_RB);
    EXPECT_EQ(app.titlePage, 1);
    EXPECT_TRUE(app.PadUsedLast());
    press(pge::PAD_LB);
    press(pge::PAD_LB);
    EXPECT_EQ(app.titlePage, 3);
    // Back opens the settings, where A steps the difficulty and RB turns the piece choice on.
    press(pge::PAD_BACK);
    ASSERT_TRUE(app.settingsOpen);
    const int difficulty = settings.difficulty;
    press(pge::PAD_A);
    EXPECT_EQ(settings.difficulty, (difficulty + 1) % 4);
    settings.difficulty = 0;
    press(pge::PAD_RB);
    EXPECT_TRUE(settings.piece_choice);
    press(pge::PAD_B);
    EXPECT_FALSE(app.settingsOpen);
    press(pge::PAD_A);
    ASSERT_EQ(app.game.phase, Phase::Build);

    // The D-pad and the stick are the arrows, with their repeat; inside the dead zone nothing.
    const int startX = app.game.cursorX;
    press(pge::PAD_LEFT);
    EXPECT_EQ(app.game.cursorX, app.game.WrapX(startX - 1));
    pad.Stick(0.3f, 0.0f);
    frames(3);
    EXPECT_EQ(app.game.cursorX, app.game.WrapX(startX - 1));
    pad.Stick(0.9f, 0.0f);
    frames(10);
    pad.Stick(0.0f, 0.0f);
    frames(1);
    EXPECT_EQ(app.game.cursorX, app.game.WrapX(startX - 1 + MovesAfter(10)));
    // A turns, X takes the next piece, RB drops, Y takes it back, RT drops too.
    const int rotation = app.game.rotation;
    press(pge::PAD_A);
    EXPECT_EQ(app.game.rotation, (rotation + 1) % 4);
    const int selected = app.game.selected;
    press(pge::PAD_X);
    EXPECT_EQ(app.game.selected, (selected + 1) % int(app.game.supply.size()));
    const size_t pieces = app.game.pieces.size();
    press(pge::PAD_RB);
    EXPECT_EQ(app.game.pieces.size(), pieces + 1);
    press(pge::PAD_Y);
    EXPECT_EQ(app.game.pieces.size(), pieces);
    press(pge::PAD_RT);
    EXPECT_EQ(app.game.pieces.size(), pieces + 1);

    // A key on the keyboard hands the hints back to the keys; the next pad press takes them.
    ASSERT_TRUE(Tap(pge::SHIFT));
    EXPECT_FALSE(app.PadUsedLast());
    // B pauses. In the pause A stands for Esc; an A held since it turned the piece acts there
    // only once it has been let go.
    pad.Set(pge::PAD_A, true);
    frames(1);
    EXPECT_TRUE(app.PadUsedLast());
    press(pge::PAD_B);
    ASSERT_TRUE(app.paused);
    frames(3);
    EXPECT_TRUE(app.paused);
    pad.Set(pge::PAD_A, false);
    frames(1);
    press(pge::PAD_A);
    EXPECT_FALSE(app.paused);

    // Pulled out with the D-pad held: the arrow is let go, and no pad plays.
    pad.Set(pge::PAD_RIGHT, true);
    frames(1);
    const int held = app.game.cursorX;
    pad.Unplug();
    frames(20);
    EXPECT_EQ(app.game.cursorX, held);
    EXPECT_EQ(app.Pads().Count(), 0u);
    EXPECT_FALSE(app.GetKey(pge::RIGHT).bHeld);
    ASSERT_TRUE(pad.Plug());
    frames(1);
    EXPECT_EQ(app.Pads().Count(), 1u);
    press(pge::PAD_LEFT);
    EXPECT_EQ(app.game.cursorX, app.game.WrapX(held - 1));

    // Start ends the build; A on the announce card only after its lock.
    press(pge::PAD_START);
    EXPECT_EQ(app.game.phase, Phase::Inspect);
    for (int i = 0; i < 2000 && app.game.phase != Phase::Announce; ++i) frames(1);
    ASSERT_EQ(app.game.phase, Phase::Announce);
    press(pge::PAD_A);
    EXPECT_EQ(app.game.phase, Phase::Announce);
    while (app.clock < app.phaseStart + 0.6f) frames(1);
    press(pge::PAD_A);
    ASSERT_EQ(app.game.phase, Phase::Attack);

    // While a ball flies or a hole stands: Y picks the next goal, X the next piece, and RB
    // lays it out or puts it in where it fits.
    for (int i = 0; i < 3000 && app.game.phase == Phase::Attack; ++i) {
        if (app.game.focus.kind == torvane::Focus::None) {
            frames(1);
            continue;
        }
        press(pge::PAD_Y);
        press(pge::PAD_X);
        press(pge::PAD_RB);
    }
    EXPECT_GT(app.game.stats.held + app.game.stats.repairScore, 0);
    // Three pieces of wall don't hold the line: the tower falls and the name field opens.
    ASSERT_EQ(app.game.phase, Phase::Over);
    ASSERT_TRUE(app.nameEntry);

    // Up turns the letter under the cursor from nothing to A to B, right goes on with an A,
    // down turns it back past the blank, left erases it, and a held up runs through the
    // ring with the arrows' repeat, to the umlaut after Z in the keyboard's UTF-8.
    press(pge::PAD_UP);
    press(pge::PAD_UP);
    EXPECT_EQ(app.playerName, "B");
    press(pge::PAD_RIGHT);
    press(pge::PAD_DOWN);
    EXPECT_EQ(app.playerName, "B ");
    press(pge::PAD_DOWN);
    EXPECT_EQ(app.playerName, "B9");
    press(pge::PAD_LEFT);
    EXPECT_EQ(app.playerName, "B");
    press(pge::PAD_RIGHT);
    int hold = 1;
    while (MovesAfter(hold) < 26) ++hold;
    pad.Set(pge::PAD_UP, true);
    frames(hold);
    pad.Set(pge::PAD_UP, false);
    frames(1);
    EXPECT_EQ(app.playerName, "B\xC3\x84");
    press(pge::PAD_START);
    EXPECT_TRUE(app.scoreSaved);
    const std::vector<torvane::highscores::Entry> scores = torvane::highscores::Load();
    ASSERT_FALSE(scores.empty());
    EXPECT_EQ(scores[0].name, "B\xC3\x84");
}

} // namespace
} // namespace torvane
