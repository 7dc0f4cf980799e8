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
    void SetUp() override { runner.Clear(); }
};

Script Counting(int n, int& count) {
    Script s;
    for (int i = 0; i < n; ++i) s.Do([&count](AdventureGame&) { ++count; });
    return s;
}

TEST_F(ScriptRunnerTest, InstantActionsRunInOneFrameUpTo256Steps) {
    int count = 0;
    runner.Start(Counting(10, count));
    runner.Update(game, 0.016f);
    EXPECT_EQ(count, 10);
    // The frame is popped in a further step.
    runner.Update(game, 0.016f);
    EXPECT_FALSE(runner.Running());

    count = 0;
    runner.Start(Counting(300, count));
    runner.Update(game, 0.016f);
    EXPECT_EQ(count, ScriptRunner::kMaxSteps);
    EXPECT_TRUE(runner.Running());
    runner.Update(game, 0.016f);
    EXPECT_EQ(count, 300);
    EXPECT_FALSE(runner.Running());
}

TEST_F(ScriptRunnerTest, AWaitAfterADoSeesNoTimeInTheFrameItStarts) {
    int count = 0;
    Script s = Counting(1, count);
    s.Wait(1.0f).Do([&count](AdventureGame&) { count += 10; });
    runner.Start(s);
    runner.Update(game, 0.6f); // the Do takes this frame's time; the wait gets 0
    runner.Update(game, 0.6f); // 0.6 of the second
    EXPECT_EQ(count, 1);
    runner.Update(game, 0.5f);
    EXPECT_EQ(count, 11);
}

TEST_F(ScriptRunnerTest, AnUnknownFlagTakesTheElseBranchAndAnEmptyBranchGoesOn) {
    std::string path;
    Script s;
    s.IfFlag("never_set", Script().Do([&](AdventureGame&) { path += "then"; }),
             Script().Do([&](AdventureGame&) { path += "else"; }))
        .IfFlag("never_set", Script().Do([&](AdventureGame&) { path += "!"; }))
        .Do([&](AdventureGame&) { path += "-after"; });
    runner.Start(s);
    runner.Update(game, 0.016f);
    EXPECT_EQ(path, "else-after");

    path.clear();
    game.SetFlag("set", 2);
    runner.Start(Script().IfFlag("set", Script().Do([&](AdventureGame&) { path += "then"; })));
    runner.Update(game, 0.016f);
    EXPECT_EQ(path, "then");
}

TEST_F(ScriptRunnerTest, SkipsOnlyCutAStartedLineOfSpeechAndNobodysSpeechTakesNoTime) {
    runner.Start(Script().Wait(1.0f));
    runner.Update(game, 0.1f);
    runner.Skip(game);
    runner.Update(game, 0.1f);
    EXPECT_TRUE(runner.Running()); // a wait is not skipped

    runner.Start(Script().Say("player", "Hallo"));
    runner.Skip(game); // not started yet
    runner.Update(game, 0.016f);
    EXPECT_TRUE(t.Player().Talking());
    runner.Skip(game);
    EXPECT_FALSE(t.Player().Talking());
    runner.Update(game, 0.016f);
    runner.Update(game, 0.016f);
    EXPECT_FALSE(runner.Running());
    // Speech of a figure that is not there finishes at once.
    int count = 0;
    runner.Start(Script().Say("nobody", "...").Append(Counting(1, count)));
    runner.Update(game, 0.016f);
    EXPECT_EQ(count, 1);
}

TEST_F(ScriptRunnerTest, ASceneChangeInAScriptRunsTheNewEntryScriptFromItsStart) {
    game.ChangeScene("hall", "default"); // the hall has no entry script
    ASSERT_FALSE(runner.Running());
    const int before = game.Flag("entered");
    runner.Start(Script().GoToScene("room", "default").Do([](AdventureGame& g) { g.SetFlag("left_over", 1); }));
    runner.Update(game, 0.016f);
    EXPECT_EQ(game.current->id, "room");
    // The room's entry script replaced the rest of the old one, and its first action ran.
    EXPECT_EQ(game.Flag("entered"), before + 1);
    EXPECT_EQ(game.Flag("left_over"), 0);
}

TEST_F(ScriptRunnerTest, AScriptedWalkToNowhereTeleportsInsteadOfHanging) {
    game.current->walkArea.holes = {Polygon::Rect(300, 90, 20, 100)}; // cuts the floor in two
    game.current->walkArea.Bake();
    t.Player().Teleport({100, 150}, Facing::Left);
    runner.Start(Script().WalkTo("player", {350, 150}));
    runner.Update(game, 0.016f);
    runner.Update(game, 0.016f);
    EXPECT_FALSE(runner.Running());
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
