// The script runner: instantaneous chains, the step cap, timing, branches and skips.
#include "tests/engine/adventure/OfflineAudio.h"
#include "tests/engine/adventure/TestGame.h"

#include <gtest/gtest.h>

namespace adv {
namespace {

struct ScriptRunnerTest : ::testing::Test {
    testing::TestGame t;
    AdventureGame& game = t.game;
    ScriptRunner& runner = t.game.runner;
    std::string trace; // what the scripts' actions wrote, in order
    void SetUp() override { runner.Clear(); }
    // A script of n actions that each write mark.
    Script Marks(int n, const std::string& mark = ".") {
        Script s;
        for (int i = 0; i < n; ++i) s.Do([this, mark](AdventureGame&) { trace += mark; });
        return s;
    }
    // One frame of elapsed seconds; whether the script still runs after it.
    bool Step(float elapsed = 0.016f) { return runner.Update(game, elapsed), runner.Running(); }
};

TEST_F(ScriptRunnerTest, InstantActionsRunInOneFrameUpTo256StepsAndAWaitAfterThemGetsNoTime) {
    runner.Start(Marks(10));
    EXPECT_EQ((std::pair{Step(), trace.size()}), std::pair(false, size_t(10)));
    runner.Start(Marks(290));
    EXPECT_EQ((std::pair{Step(), trace.size()}), std::pair(true, size_t(10 + ScriptRunner::kMaxSteps)));
    EXPECT_EQ((std::pair{Step(), trace.size()}), std::pair(false, size_t(300)));
    trace.clear();
    runner.Start(Marks(1).Wait(1.0f).Append(Marks(1, "!")));
    Step(0.6f); // the mark takes this frame's time; the wait gets 0
    Step(0.6f); // 0.6 of the second
    EXPECT_EQ(trace, ".");
    Step(0.5f);
    EXPECT_EQ(trace, ".!");
}

TEST_F(ScriptRunnerTest, AnUnknownFlagTakesTheElseBranchAndAnEmptyBranchGoesOn) {
    game.SetFlag("set", 2);
    runner.Start(Script()
                     .IfFlag("never_set", Marks(1, "then"), Marks(1, "else"))
                     .IfFlag("never_set", Marks(1, "!"))
                     .IfFlag("set", Marks(1, "-set"))
                     .Append(Marks(1, "-after")));
    Step();
    EXPECT_EQ(trace, "else-set-after");
}

// A wait is never skipped, nor a line not yet started; speech of a figure that is not there
// finishes at once.
TEST_F(ScriptRunnerTest, SkipsOnlyCutAStartedLineOfSpeechAndNobodysSpeechTakesNoTime) {
    runner.Start(Script().Wait(1.0f));
    Step(0.1f);
    runner.Skip(game);
    EXPECT_TRUE(Step(0.1f));
    runner.Start(Script().Say("player", "Hallo"));
    runner.Skip(game);
    Step();
    EXPECT_TRUE(t.Player().Talking());
    runner.Skip(game);
    EXPECT_EQ((std::pair{t.Player().Talking(), Step()}), std::pair(false, false)); // the next frame ends the script
    runner.Start(Script().Say("nobody", "...").Append(Marks(1)));
    Step();
    EXPECT_EQ(trace, ".");
}

TEST_F(ScriptRunnerTest, ASceneChangeInAScriptRunsTheNewEntryScriptFromItsStart) {
    game.ChangeScene("hall", "default"); // the hall has no entry script
    ASSERT_FALSE(runner.Running());
    const int before = game.Flag("entered");
    runner.Start(Script().GoToScene("room", "default").Append(Marks(1)));
    Step();
    // The room's entry script replaced the rest of the old one, and its first action ran.
    EXPECT_EQ(std::tuple(game.current->id, game.Flag("entered"), trace), std::tuple("room", before + 1, ""));
}

TEST_F(ScriptRunnerTest, AScriptedWalkToNowhereTeleportsInsteadOfHanging) {
    game.current->walkArea.holes = {Polygon::Rect(300, 90, 20, 100)}; // cuts the floor in two
    game.current->walkArea.Bake();
    t.Player().Teleport({100, 150}, Facing::Left);
    runner.Start(Script().WalkTo("player", {350, 150}));
    Step();
    EXPECT_FALSE(Step());
    EXPECT_EQ(std::pair(t.Player().position.x, t.Player().facing), std::pair(350.0f, Facing::Left));
}

TEST(Actor, SpeechLastsByLengthAndTextSpeed) {
    // Speeds beyond 0 to 8 are limited.
    const struct { int speed, kept; size_t length; float seconds; } cases[] = {
        {4, 4, 0, 1.2f}, {4, 4, 100, 0.9f + 5.5f}, {0, 0, 0, 1.2f * 2.2f}, {-3, 0, 0, 1.2f * 2.2f}, {99, 8, 0, 0}};
    for (const auto& c : cases) {
        Actor::SetTextSpeed(c.speed);
        EXPECT_EQ(Actor::TextSpeed(), c.kept);
        if (c.seconds > 0) { EXPECT_FLOAT_EQ(Actor::SpeechDuration(std::string(c.length, 'a')), c.seconds) << c.speed; }
    }
    Actor::SetTextSpeed(4);
}

} // namespace
} // namespace adv
