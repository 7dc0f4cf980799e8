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
    EXPECT_FALSE(Step());
    EXPECT_EQ(trace.size(), 10u);
    trace.clear();
    runner.Start(Marks(300));
    EXPECT_TRUE(Step());
    EXPECT_EQ(trace.size(), size_t(ScriptRunner::kMaxSteps));
    EXPECT_FALSE(Step());
    EXPECT_EQ(trace.size(), 300u);
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
    EXPECT_FALSE(t.Player().Talking());
    Step();
    EXPECT_FALSE(Step());
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
    EXPECT_EQ(game.current->id, "room");
    // The room's entry script replaced the rest of the old one, and its first action ran.
    EXPECT_EQ(game.Flag("entered"), before + 1);
    EXPECT_EQ(trace, "");
}

TEST_F(ScriptRunnerTest, AScriptedWalkToNowhereTeleportsInsteadOfHanging) {
    game.current->walkArea.holes = {Polygon::Rect(300, 90, 20, 100)}; // cuts the floor in two
    game.current->walkArea.Bake();
    t.Player().Teleport({100, 150}, Facing::Left);
    runner.Start(Script().WalkTo("player", {350, 150}));
    Step();
    EXPECT_FALSE(Step());
    EXPECT_FLOAT_EQ(t.Player().position.x, 350);
    EXPECT_EQ(t.Player().facing, Facing::Left);
}

TEST(Actor, SpeechLastsByLengthAndTextSpeed) {
    Actor::SetTextSpeed(4);
    EXPECT_FLOAT_EQ(Actor::SpeechDuration(""), 1.2f);
    EXPECT_FLOAT_EQ(Actor::SpeechDuration(std::string(100, 'a')), 0.9f + 5.5f);
    Actor::SetTextSpeed(0);
    EXPECT_FLOAT_EQ(Actor::SpeechDuration(""), 1.2f * 2.2f);
    Actor::SetTextSpeed(99);
    EXPECT_EQ(Actor::TextSpeed(), 8);
    Actor::SetTextSpeed(-3);
    EXPECT_EQ(Actor::TextSpeed(), 0);
    Actor::SetTextSpeed(4);
}

} // namespace
} // namespace adv
