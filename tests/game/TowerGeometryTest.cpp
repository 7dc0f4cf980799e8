// The cylinder projection and the stage layout, against numbers worked out by hand
// from the projection's formulas for the 640 by 368 stage at y 18.
#include "game/TowerView.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

namespace torvane {
namespace {

using testing_support::ClassicGame;
using testing_support::RingGame;

constexpr float kPi = 3.14159265f;
const StageRect kStage{0, 18, 640, 368};

class TowerGeometryTest : public testing_support::RulesTest {
protected:
    TowerView view;
};

TEST_F(TowerGeometryTest, RingLayoutOf32By14) {
    const Game g = RingGame(1);
    ASSERT_EQ(g.config.width, 32);
    ASSERT_EQ(g.config.height, 14);
    const TowerView::Layout l = view.ComputeLayout(g, kStage);
    // k = 1.35 * 0.18 * 32 / 2pi = 1.237589 rows of vertical radius.
    // c = floor((368 - 61) / (14 + 4.5 + 1.2 * 1.237589)) = floor(307 / 19.985107) = 15.
    EXPECT_FLOAT_EQ(l.cell, 15.0f);
    // baseY = 18 + round(368 - 15 * 1.5 - 1.2 * 15 * 1.237589) = 18 + round(323.2234) = 341.
    EXPECT_FLOAT_EQ(l.baseY, 341.0f);
    // originX = round((640 - 76) / 2) = 282.
    EXPECT_FLOAT_EQ(l.originX, 282.0f);
    EXPECT_FLOAT_EQ(l.stripHeight, 0.0f);
    EXPECT_TRUE(l.ring);
    EXPECT_FALSE(l.integrated);
    EXPECT_FLOAT_EQ(l.gap, 0.0f);

    const TowerView::Geo geo = view.TowerGeo(l, 3); // the index of a ring has no effect
    // rx = 32 * 1.35 * 15 / 2pi = 103.13240; ry = 0.18 rx = 18.563832.
    EXPECT_NEAR(geo.rx, 103.13240f, 1e-3f);
    EXPECT_NEAR(geo.ry, 18.563832f, 1e-3f);
    EXPECT_FLOAT_EQ(geo.cx, 282.0f);
    EXPECT_NEAR(geo.halfAngle, 80.0f * kPi / 180.0f, 1e-6f);
}

TEST_F(TowerGeometryTest, ClassicLayoutOfLevelsOneAndSeven) {
    {
        const Game g = ClassicGame(1);
        ASSERT_EQ(g.config.towers, 1);
        const TowerView::Layout l = view.ComputeLayout(g, kStage);
        // k = 8 * 0.18 / 1.8640782 = 0.772499.
        // byWidth = 601.6 / (8 + 4) = 50.13; byHeight = 308 / (22.3 + 1.699498) = 12.8336: cell 12.
        EXPECT_FLOAT_EQ(l.cell, 12.0f);
        // originX = round((640 - 96) / 2) = 272; baseY = 18 + round(368 - 18 - 11.12399) = 357.
        EXPECT_FLOAT_EQ(l.originX, 272.0f);
        EXPECT_FLOAT_EQ(l.baseY, 357.0f);
        EXPECT_FLOAT_EQ(l.stripHeight, 48.0f);
        EXPECT_FALSE(l.ring);
        const TowerView::Geo geo = view.TowerGeo(l, 0);
        // half = 48; rx = 48 / sin(1.2) = 51.5; cx = 48 + 272 = 320.
        EXPECT_NEAR(geo.rx, 51.5f, 1e-3f);
        EXPECT_FLOAT_EQ(geo.cx, 320.0f);
        // The silhouette is exactly cols * cell wide.
        EXPECT_NEAR(geo.P(8.0f, 0.0f, 1.0f).x - geo.P(0.0f, 0.0f, 1.0f).x, 96.0f, 1e-3f);
    }
    {
        const Game g = ClassicGame(7);
        ASSERT_EQ(g.config.towers, 5);
        const TowerView::Layout l = view.ComputeLayout(g, kStage);
        // spanCols = 5 * 8 + 4 * 2.5 = 50; byWidth = 601.6 / 51.5 = 11.68: cell 11.
        EXPECT_FLOAT_EQ(l.gap, 2.5f);
        EXPECT_FLOAT_EQ(l.cell, 11.0f);
        // originX = round((640 - 550) / 2) = 45; baseY = 18 + round(368 - 23.1 - 10.19699) = 353.
        EXPECT_FLOAT_EQ(l.originX, 45.0f);
        EXPECT_FLOAT_EQ(l.baseY, 353.0f);
        // half = 44; tower t stands at 44 + round(45 + 11 * 10.5 * t).
        EXPECT_FLOAT_EQ(view.TowerGeo(l, 0).cx, 89.0f);
        EXPECT_FLOAT_EQ(view.TowerGeo(l, 2).cx, 320.0f);
        EXPECT_FLOAT_EQ(view.TowerGeo(l, 4).cx, 551.0f);
    }
}

TEST_F(TowerGeometryTest, TinyStageKeepsTheSmallestCell) {
    const StageRect tiny{0, 0, 100, 60};
    EXPECT_FLOAT_EQ(view.ComputeLayout(RingGame(1), tiny).cell, 6.0f);
    EXPECT_FLOAT_EQ(view.ComputeLayout(ClassicGame(7), tiny).cell, 6.0f);
}

TEST_F(TowerGeometryTest, PaintedFrameFitsTheGrid) {
    const Game g = RingGame(1);
    view.frame = TowerFrame{true, 160.0f, 40.0f, 60.0f, 180.0f};
    view.frameScale = 2.0f;
    view.backgroundLevel = g.level;
    view.cachedStage = kStage;
    const TowerView::Layout l = view.ComputeLayout(g, kStage);
    ASSERT_TRUE(l.integrated);
    // radius = 80 / sin(80 deg) = 81.23414; cell = 120 * 2 / 14; lift = 8; originX = 320.
    EXPECT_NEAR(l.radius, 81.23414f, 1e-3f);
    EXPECT_NEAR(l.cell, 240.0f / 14.0f, 1e-4f);
    EXPECT_FLOAT_EQ(l.lift, 8.0f);
    EXPECT_FLOAT_EQ(l.originX, 320.0f);
    // The front column's foot lands on the painted base (360) and its top on the rim (120).
    const TowerView::Geo geo = view.TowerGeo(l, 0);
    EXPECT_NEAR(geo.P(geo.camera, 0.0f, 1.0f).y, 360.0f, 1e-3f);
    EXPECT_NEAR(geo.P(geo.camera, 14.0f, 1.0f).y, 120.0f, 1e-3f);
    // Its silhouette has the painted half width, in screen pixels.
    EXPECT_NEAR(std::sin(geo.halfAngle) * geo.rx, 80.0f, 1e-3f);

    // A stage of another width, or a classic level, ignores the frame.
    EXPECT_FALSE(view.ComputeLayout(g, StageRect{0, 18, 600, 368}).integrated);
    const Game classic = ClassicGame(1);
    view.backgroundLevel = classic.level;
    EXPECT_FALSE(view.ComputeLayout(classic, kStage).integrated);
}

TEST_F(TowerGeometryTest, AnglesWrapRoundTheRing) {
    TowerView::Geo geo;
    geo.ring = true;
    geo.cols = 32;
    geo.camera = 31.0f;
    // Column 1 lies 2 columns to the right of 31, across the seam: 2 * 2pi / 32.
    EXPECT_NEAR(geo.Angle(1.0f), kPi / 8.0f, 1e-5f);
    EXPECT_NEAR(geo.Angle(29.0f), -kPi / 8.0f, 1e-5f);
    // Directly behind: +-pi, never beyond, on either side of the seam.
    for (const float camera : {0.0f, 30.0f, 31.5f, 7.25f}) {
        geo.camera = camera;
        const float behind = std::fabs(geo.Angle(camera + 16.0f));
        EXPECT_NEAR(behind, kPi, 1e-5f);
        EXPECT_LE(behind, 3.1415927f);
        EXPECT_NEAR(geo.Column(geo.Angle(camera + 3.0f)), camera + 3.0f, 1e-4f);
    }
    TowerView::Geo classic;
    classic.cols = 8;
    EXPECT_FLOAT_EQ(classic.Angle(0.0f), -1.2f);
    EXPECT_FLOAT_EQ(classic.Angle(4.0f), 0.0f);
    EXPECT_FLOAT_EQ(classic.Column(-1.2f), 0.0f);
}

TEST_F(TowerGeometryTest, VisibleIncludesTheBoundary) {
    TowerView::Geo classic;
    classic.cols = 8;
    EXPECT_TRUE(classic.Visible(8.0f));  // exactly +1.2
    EXPECT_TRUE(classic.Visible(0.0f));  // exactly -1.2
    EXPECT_FALSE(classic.Visible(8.01f));
    TowerView::Geo ring;
    ring.ring = true;
    ring.cols = 32;
    ring.halfAngle = 80.0f * kPi / 180.0f;
    // 80 degrees are 7.11 columns of 32.
    EXPECT_TRUE(ring.Visible(7.1f));
    EXPECT_FALSE(ring.Visible(7.12f));
    EXPECT_TRUE(ring.Visible(32.0f - 7.1f));
    EXPECT_FALSE(ring.Visible(24.85f));
}

TEST_F(TowerGeometryTest, ProjectionPointsAndLight) {
    TowerView::Geo geo;
    geo.ring = true;
    geo.cols = 32;
    geo.cx = 282.0f;
    geo.rx = 100.0f;
    geo.ry = 18.0f;
    geo.baseY = 341.0f;
    geo.cellH = 15.0f;
    // The front of a ring lies ry below its centre line.
    EXPECT_NEAR(geo.P(0.0f, 0.0f, 1.0f).x, 282.0f, 1e-4f);
    EXPECT_NEAR(geo.P(0.0f, 0.0f, 1.0f).y, 359.0f, 1e-4f);
    // Column 4 at pi/4, row 2: (282 + 70.7107, 341 - 30 + 12.7279).
    EXPECT_NEAR(geo.P(4.0f, 2.0f, 1.0f).x, 352.7107f, 1e-3f);
    EXPECT_NEAR(geo.P(4.0f, 2.0f, 1.0f).y, 323.7279f, 1e-3f);
    // Half the radius halves both offsets.
    EXPECT_NEAR(geo.P(4.0f, 2.0f, 0.5f).x, 317.3553f, 1e-3f);
    EXPECT_NEAR(geo.P(4.0f, 2.0f, 0.5f).y, 317.3640f, 1e-3f);
    // Light: 0.7 + 0.42 cos(a + 0.55), kept to 0.5 .. 1.15.
    EXPECT_NEAR(geo.Light(0.0f), 0.7f + 0.42f * std::cos(0.55f), 1e-5f);
    // Brightest 0.55 rad to the left of the front: 1.12, under the cap.
    EXPECT_NEAR(geo.Light(-0.55f * 32.0f / (2.0f * kPi)), 1.12f, 1e-4f);
    // Behind the tower the floor of 0.5 holds.
    EXPECT_FLOAT_EQ(geo.Light(16.0f), 0.5f);
}

TEST_F(TowerGeometryTest, CellPathsAndCurves) {
    TowerView::Geo geo;
    geo.ring = true;
    geo.cols = 32;
    geo.cx = 300.0f;
    geo.rx = 100.0f;
    geo.ry = 18.0f;
    geo.baseY = 300.0f;
    geo.cellH = 10.0f;
    geo.halfAngle = 80.0f * kPi / 180.0f;

    const std::vector<pge::vf2d> full = geo.CellPath(2.0f, 3.0f, 0.0f);
    ASSERT_EQ(full.size(), 10u);
    // Top edge left to right from (2, 4), bottom edge right to left ending at (2, 3).
    EXPECT_NEAR(full[0].x, geo.P(2.0f, 4.0f, 1.0f).x, 1e-4f);
    EXPECT_NEAR(full[0].y, geo.P(2.0f, 4.0f, 1.0f).y, 1e-4f);
    EXPECT_NEAR(full[4].x, geo.P(3.0f, 4.0f, 1.0f).x, 1e-4f);
    EXPECT_NEAR(full[5].y, geo.P(3.0f, 3.0f, 1.0f).y, 1e-4f);
    EXPECT_NEAR(full[9].x, geo.P(2.0f, 3.0f, 1.0f).x, 1e-4f);
    EXPECT_NEAR(full[2].y, 300.0f - 40.0f + 18.0f * std::cos(2.5f * 2.0f * kPi / 32.0f), 1e-3f);

    // Shrink 0 and 1 agree; 0.5 pulls each point halfway to the centre.
    const std::vector<pge::vf2d> one = geo.CellPath(2.0f, 3.0f, 1.0f);
    const std::vector<pge::vf2d> half = geo.CellPath(2.0f, 3.0f, 0.5f);
    const pge::vf2d m = geo.P(2.5f, 3.5f, 1.0f);
    for (size_t i = 0; i < full.size(); ++i) {
        EXPECT_FLOAT_EQ(one[i].x, full[i].x);
        EXPECT_FLOAT_EQ(one[i].y, full[i].y);
        EXPECT_NEAR(half[i].x, (full[i].x + m.x) * 0.5f, 1e-3f);
        EXPECT_NEAR(half[i].y, (full[i].y + m.y) * 0.5f, 1e-3f);
    }

    // Centre 7.2 columns away is hidden even though the left corner at 6.7 is in view.
    EXPECT_TRUE(geo.CellPath(6.7f, 0.0f, 0.0f).empty());
    EXPECT_EQ(geo.CellPath(6.5f, 0.0f, 0.0f).size(), 10u);

    // The front curve spans the visible angles, independent of the camera.
    geo.camera = 11.0f;
    const std::vector<pge::vf2d> curve = geo.FrontCurve(2.0f, 1.0f, 0.0f);
    ASSERT_EQ(curve.size(), 65u);
    EXPECT_NEAR(curve.front().x, 300.0f - 100.0f * std::sin(geo.halfAngle), 1e-3f);
    EXPECT_NEAR(curve[32].x, 300.0f, 1e-3f);
    EXPECT_NEAR(curve[32].y, 300.0f - 20.0f + 18.0f, 1e-3f);
    EXPECT_NEAR(curve.back().x, 300.0f + 100.0f * std::sin(geo.halfAngle), 1e-3f);

    const std::vector<pge::vf2d> zone = geo.Zone();
    ASSERT_EQ(zone.size(), 130u);
    // The bottom curve left to right, then the top row right to left.
    EXPECT_NEAR(zone[64].y, zone[65].y + 14.0f * 10.0f, 1e-3f);
    EXPECT_NEAR(zone[64].x, zone[65].x, 1e-3f);
    EXPECT_NEAR(zone[129].x, zone[0].x, 1e-3f);
}

} // namespace
} // namespace torvane
