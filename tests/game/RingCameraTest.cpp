// The ring camera: wrapping, the seam, the slack margin, manual turns and easing.
#include "game/Pieces.h"
#include "game/RingCamera.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

namespace torvane {
namespace {

using testing_support::RingGame;

class RingCameraTest : public testing_support::RulesTest {
protected:
    // A ring game of 32 columns in a phase with no goal, and a camera that has
    // already seen it, so that Update only eases.
    Game Idle() {
        Game g = RingGame(1);
        g.phase = Phase::Eval;
        cam.level = g.level;
        cam.lastPhase = g.phase;
        cam.width = g.config.width;
        return g;
    }
    RingCamera cam;
};

TEST_F(RingCameraTest, WrapBringsColumnsIntoTheRing) {
    cam.width = 32;
    EXPECT_FLOAT_EQ(cam.Wrap(-1.0f), 31.0f);
    EXPECT_FLOAT_EQ(cam.Wrap(32.0f), 0.0f);
    EXPECT_FLOAT_EQ(cam.Wrap(70.5f), 6.5f);
    cam.SnapTo(-2.5f);
    EXPECT_FLOAT_EQ(cam.angle, 29.5f);
    EXPECT_FLOAT_EQ(cam.target, 29.5f);
}

TEST_F(RingCameraTest, EasingCrossesTheSeamTheShortWay) {
    Game g = Idle();
    ASSERT_EQ(g.config.width, 32);
    cam.angle = 31.0f;
    cam.target = 1.0f;
    // e = 2 columns up; 2 * 0.05 * 10 = 1.0 is cut to the speed limit 0.05 * 12 = 0.6.
    cam.Update(g, 0.05f);
    EXPECT_NEAR(cam.angle, 31.6f, 1e-4f);
    for (int i = 0; i < 100; ++i) {
        cam.Update(g, 0.05f);
        // Never on the long way down through 30, 29, ...
        EXPECT_TRUE(cam.angle >= 31.0f || cam.angle <= 1.0f) << cam.angle;
    }
    EXPECT_FLOAT_EQ(cam.angle, 1.0f);
    EXPECT_FLOAT_EQ(cam.target, 1.0f);
}

TEST_F(RingCameraTest, ZeroStepMovesNothingButLandsTheLastBit) {
    Game g = Idle();
    cam.angle = 5.0f;
    cam.target = 7.0f;
    cam.Update(g, 0.0f);
    EXPECT_FLOAT_EQ(cam.angle, 5.0f);
    EXPECT_FLOAT_EQ(cam.target, 7.0f);
    cam.angle = 6.999f;
    cam.Update(g, 0.0f);
    EXPECT_FLOAT_EQ(cam.angle, 7.0f);
}

TEST_F(RingCameraTest, LongStepDoesNotOvershoot) {
    Game g = Idle();
    // dt * ease = 2 >= 1: the step is e itself, limited to 0.2 * 12 = 2.4.
    cam.angle = 10.0f;
    cam.target = 12.0f;
    cam.Update(g, 0.2f);
    EXPECT_FLOAT_EQ(cam.angle, 12.0f);
    cam.target = 17.0f;
    cam.Update(g, 0.2f);
    EXPECT_NEAR(cam.angle, 14.4f, 1e-4f);
}

TEST_F(RingCameraTest, TurnMayLeadTheViewByATenthOfASecond) {
    cam.width = 32;
    cam.SnapTo(4.0f);
    cam.Turn(1.0f);  // lead 0
    cam.Turn(1.0f);  // lead 1 <= 1.2
    EXPECT_FLOAT_EQ(cam.target, 6.0f);
    cam.Turn(1.0f);  // lead 2 > 1.2: dropped
    EXPECT_FLOAT_EQ(cam.target, 6.0f);
    cam.Turn(-1.0f); // the other way at once
    EXPECT_FLOAT_EQ(cam.target, 5.0f);
    cam.SnapTo(0.5f);
    cam.Turn(-1.0f);
    EXPECT_FLOAT_EQ(cam.target, 31.5f);
}

TEST_F(RingCameraTest, NewLevelSnapsToThePieceInHand) {
    Game g = RingGame(1);
    ASSERT_EQ(g.phase, Phase::Build);
    const char type = g.SelectedType();
    ASSERT_NE(type, 0);
    g.cursorX = 20;
    cam.Update(g, 0.05f);
    const float goal = 20.0f + static_cast<float>(ShapeWidth(Rotated(type, g.rotation))) * 0.5f;
    EXPECT_FLOAT_EQ(cam.angle, goal);
    EXPECT_FLOAT_EQ(cam.target, goal);
    EXPECT_EQ(cam.level, g.level);
    EXPECT_EQ(cam.lastPhase, Phase::Build);
}

TEST_F(RingCameraTest, CursorInsideTheSlackLeavesTheTarget) {
    Game g = RingGame(1);
    g.cursorX = 10;
    cam.Update(g, 0.05f);
    const float start = cam.target;
    g.cursorX = 13; // 3 columns: inside the margin, boundary included
    cam.Update(g, 0.05f);
    EXPECT_FLOAT_EQ(cam.target, start);
    g.cursorX = 14; // 4 columns: dragged along at 3 exactly
    cam.Update(g, 0.05f);
    EXPECT_FLOAT_EQ(cam.target, start + 1.0f);
    g.cursorX = 6;  // 5 columns the other way
    cam.Update(g, 0.05f);
    EXPECT_FLOAT_EQ(cam.target, start - 4.0f + 3.0f);
}

TEST_F(RingCameraTest, AttackWithoutAutoRotateHoldsStill) {
    GetSettings().auto_rotate = false;
    Game g = RingGame(1);
    g.phase = Phase::Attack;
    g.supply.clear(); // no piece in hand
    g.holes.push_back(Hole{1, 0, {{20, 0}}, 0.0f, 3.0f, 0});
    g.focus = {Focus::Hole, 1};
    cam.level = g.level;
    cam.lastPhase = Phase::Attack;
    cam.width = 32;
    cam.SnapTo(4.0f);
    cam.Update(g, 0.05f);
    EXPECT_FLOAT_EQ(cam.target, 4.0f);
    EXPECT_FLOAT_EQ(cam.angle, 4.0f);

    // With auto_rotate the same far focus is centred: 20.5 lies 16.5 columns away.
    GetSettings().auto_rotate = true;
    cam.Update(g, 0.05f);
    EXPECT_FLOAT_EQ(cam.target, 20.5f);
}

TEST_F(RingCameraTest, LevelWithoutSectorsOrGoalStartsAtColumnZero) {
    Game g = RingGame(1);
    g.phase = Phase::Eval;
    g.config.sectors.clear();
    cam.angle = cam.target = 9.0f;
    cam.Update(g, 0.05f);
    EXPECT_FLOAT_EQ(cam.angle, 0.0f);

    // With sectors the first one's centre is taken.
    Game h = RingGame(2);
    h.phase = Phase::Eval;
    ASSERT_FALSE(h.config.sectors.empty());
    cam.Update(h, 0.05f);
    EXPECT_FLOAT_EQ(cam.angle, static_cast<float>(h.config.sectors.front().centre));
}

TEST_F(RingCameraTest, ClassicLevelsKeepTrackButDoNotMove) {
    Game g = testing_support::ClassicGame(2);
    cam.angle = cam.target = 3.0f;
    cam.level = g.level;
    cam.lastPhase = g.phase;
    g.cursorX = 7;
    cam.Update(g, 0.05f);
    EXPECT_FLOAT_EQ(cam.target, 3.0f);
    EXPECT_FLOAT_EQ(cam.angle, 3.0f);
    g.phase = Phase::Eval;
    cam.Update(g, 0.05f);
    EXPECT_EQ(cam.lastPhase, Phase::Eval);
}

} // namespace
} // namespace torvane
