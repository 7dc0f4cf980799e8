// The ring camera with its default ease 10, speed limit 12 columns/s and slack 3.
#include "game/rules/Pieces.h"
#include "game/stage/RingCamera.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

using testing_support::EmptyGame;

class RingCameraTest : public testing_support::RulesTest {
protected:
    // A ring of 32 columns in a phase without a goal, already seen: Update only eases.
    Game Idle(float angle, float target) {
        Game g = EmptyGame(false, 1);
        g.phase = cam.lastPhase = Phase::Eval;
        cam.level = g.level;
        cam.angle = angle;
        cam.target = target;
        return g;
    }
    RingCamera cam;
};

TEST_F(RingCameraTest, EasingCrossesTheSeamTheShortWayAndTurnsLeadItALittle) {
    Game g = Idle(31.0f, 1.0f);
    cam.Update(g, 0.05f); // e = 2 columns up; 2 * 0.05 * 10 = 1.0 is cut to 0.05 * 12 = 0.6
    EXPECT_NEAR(cam.angle, 31.6f, 1e-4f);
    EXPECT_FLOAT_EQ(cam.Wrap(-1.0f), 31.0f);
    EXPECT_FLOAT_EQ(cam.Wrap(32.0f), 0.0f);
    for (int i = 0; i < 100; ++i) {
        cam.Update(g, 0.05f);
        ASSERT_TRUE(cam.angle >= 31.0f || cam.angle <= 1.0f) << cam.angle; // never down through 30
    }
    EXPECT_FLOAT_EQ(cam.angle, 1.0f);
    // dt 0 moves nothing but lands the last bit below 0.002.
    cam.angle = 5.0f;
    cam.target = 7.0f;
    cam.Update(g, 0.0f);
    EXPECT_FLOAT_EQ(cam.angle, 5.0f);
    EXPECT_FLOAT_EQ(cam.target, 7.0f);
    cam.angle = 6.999f;
    cam.Update(g, 0.0f);
    EXPECT_FLOAT_EQ(cam.angle, 7.0f);
    // dt * ease = 2: the step is e itself, never beyond, but limited to 0.2 * 12 = 2.4.
    cam.target = 9.0f;
    cam.Update(g, 0.2f);
    EXPECT_FLOAT_EQ(cam.angle, 9.0f);
    cam.target = 14.0f;
    cam.Update(g, 0.2f);
    EXPECT_NEAR(cam.angle, 11.4f, 1e-4f);
    // A manual turn may lead the view by a tenth of a second's way.
    cam.SnapTo(4.0f);
    for (int i = 0; i < 3; ++i) cam.Turn(1.0f); // leads 0 and 1 <= 1.2 taken, lead 2 dropped
    EXPECT_FLOAT_EQ(cam.target, 6.0f);
    cam.Turn(-1.0f); // the other way at once
    EXPECT_FLOAT_EQ(cam.target, 5.0f);
    cam.SnapTo(-31.5f); // wrapped to 0.5
    cam.Turn(-1.0f);
    EXPECT_FLOAT_EQ(cam.target, 31.5f);
}

// A new level snaps to the middle of the piece in hand, to its first sector without one,
// or to column 0 without sectors; the cursor drags the target only beyond the slack of 3.
TEST_F(RingCameraTest, NewLevelsSnapAndTheCursorDragsTheTargetOnlyBeyondTheSlack) {
    Game g = EmptyGame(false, 1);
    g.cursorX = 20;
    cam.Update(g, 0.05f);
    const float start = 20.0f + static_cast<float>(ShapeWidth(Rotated(g.SelectedType(), g.rotation))) * 0.5f;
    ASSERT_FLOAT_EQ(cam.angle, start);
    for (const auto& [cursor, target] : {std::pair{23, 0.0f}, std::pair{24, 1.0f}, std::pair{16, -1.0f}}) {
        g.cursorX = cursor;
        cam.Update(g, 0.05f);
        EXPECT_FLOAT_EQ(cam.target, start + target) << cursor;
    }
    g = EmptyGame(false, 2);
    g.phase = Phase::Eval;
    cam.Update(g, 0.05f);
    EXPECT_FLOAT_EQ(cam.angle, static_cast<float>(g.config.sectors.front().centre));
    g = EmptyGame(false, 1);
    g.phase = Phase::Eval;
    g.config.sectors.clear();
    cam.Update(g, 0.05f);
    EXPECT_FLOAT_EQ(cam.angle, 0.0f);
}

TEST_F(RingCameraTest, AttackFocusIsFollowedOnlyWithAutoRotate) {
    GetSettings().auto_rotate = false;
    Game g = Idle(4.0f, 4.0f);
    g.phase = cam.lastPhase = Phase::Attack;
    g.supply.clear(); // no piece in hand
    g.holes.push_back(Hole{1, 0, {{20, 0}}, 0.0f, 3.0f, 0});
    g.focus = {Focus::Hole, 1};
    cam.Update(g, 0.05f);
    EXPECT_FLOAT_EQ(cam.target, 4.0f);
    GetSettings().auto_rotate = true; // the far focus (20.5) is centred
    cam.Update(g, 0.05f);
    EXPECT_FLOAT_EQ(cam.target, 20.5f);
}

} // namespace
} // namespace torvane
