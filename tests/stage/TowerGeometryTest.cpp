// The cylinder projection and the stage layout, against numbers worked out by hand
// from the projection's formulas for the 640 by 368 stage at y 18.
#include "game/stage/TowerView.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

namespace torvane {
namespace {

using testing_support::ClassicGame;
using testing_support::EmptyGame;

constexpr float kPi = 3.14159265f;
const StageRect kStage{0, 18, 640, 368};

TowerView::Geo RingGeo(float cx, float rx, float ry, float baseY, float cellH) { // 32 columns, 80 degrees seen
    return {cx, rx, ry, baseY, cellH, 32, 14, true, 0.0f, 80.0f * kPi / 180.0f};
}

class TowerGeometryTest : public testing_support::RulesTest {
protected:
    TowerView view;
};

TEST_F(TowerGeometryTest, LayoutOfTheRingAndOfClassicLevelsOneAndSeven) {
    const TowerView::Layout ring = view.ComputeLayout(EmptyGame(false, 1), kStage);
    // k = 1.35 * 0.18 * 32 / 2pi = 1.237589; cell = floor(307 / (14 + 4.5 + 1.2 k)) = 15.
    EXPECT_FLOAT_EQ(ring.cell, 15.0f);
    // baseY = 18 + round(368 - 22.5 - 18 k) = 341; originX = round((640 - 76) / 2) = 282.
    EXPECT_FLOAT_EQ(ring.baseY, 341.0f);
    EXPECT_FLOAT_EQ(ring.originX, 282.0f);
    const TowerView::Geo geo = view.TowerGeo(ring, 3); // the index of a ring has no effect
    // rx = 32 * 1.35 * 15 / 2pi; ry = 0.18 rx.
    EXPECT_NEAR(geo.rx, 103.13240f, 1e-3f);
    EXPECT_NEAR(geo.ry, 18.563832f, 1e-3f);

    const TowerView::Layout one = view.ComputeLayout(ClassicGame(1), kStage);
    // One tower, 4 columns of margin: byWidth 601.6 / 12 = 50.1; k = 1.44 / 1.8640782;
    // byHeight = 308 / (22.3 + 2.2 k) = 12.83: cell 12.
    EXPECT_FLOAT_EQ(one.cell, 12.0f);
    // originX = round((640 - 96) / 2) = 272; baseY = 18 + round(368 - 18 - 14.4 k) = 357.
    EXPECT_FLOAT_EQ(one.originX, 272.0f);
    EXPECT_FLOAT_EQ(one.baseY, 357.0f);
    // half = 48; rx = 48 / sin(1.2) = 51.5; cx = 48 + 272.
    EXPECT_NEAR(view.TowerGeo(one, 0).rx, 51.5f, 1e-3f);
    EXPECT_FLOAT_EQ(view.TowerGeo(one, 0).cx, 320.0f);
    const Game seven = ClassicGame(7);
    ASSERT_EQ(seven.config.towers, 5);
    const TowerView::Layout l = view.ComputeLayout(seven, kStage);
    // spanCols = 5 * 8 + 4 * 2.5 = 50; byWidth = 601.6 / 51.5 = 11.68: cell 11.
    EXPECT_FLOAT_EQ(l.gap, 2.5f);
    EXPECT_FLOAT_EQ(l.cell, 11.0f);
    // originX = round((640 - 550) / 2) = 45; baseY = 18 + round(368 - 23.1 - 10.197) = 353.
    EXPECT_FLOAT_EQ(l.originX, 45.0f);
    EXPECT_FLOAT_EQ(l.baseY, 353.0f);
    for (int t = 0; t < 5; ++t) // tower t stands at 44 + round(45 + 11 * 10.5 * t)
        EXPECT_FLOAT_EQ(view.TowerGeo(l, t).cx, 44.0f + std::round(45.0f + 115.5f * static_cast<float>(t))) << t;
    // A stage far too small keeps the smallest cell; the towers overflow rather than vanish.
    EXPECT_FLOAT_EQ(view.ComputeLayout(EmptyGame(false, 1), StageRect{0, 0, 100, 60}).cell, 6.0f);
    EXPECT_FLOAT_EQ(view.ComputeLayout(seven, StageRect{0, 0, 100, 60}).cell, 6.0f);
}

TEST_F(TowerGeometryTest, PaintedFrameFitsTheGridOnRingsOnly) {
    const Game g = EmptyGame(false, 1);
    view.frame = TowerFrame{true, 160.0f, 40.0f, 60.0f, 180.0f};
    view.frameScale = 2.0f;
    view.backgroundLevel = g.level;
    view.cachedStage = kStage;
    const TowerView::Layout l = view.ComputeLayout(g, kStage);
    ASSERT_TRUE(l.integrated);
    // radius = 80 / sin(80 deg); cell = 120 * 2 / 14. The front column's foot lands on the
    // painted base (360), its top on the rim (120), and the silhouette has the painted half width.
    EXPECT_NEAR(l.radius, 81.23414f, 1e-3f);
    EXPECT_NEAR(l.cell, 240.0f / 14.0f, 1e-4f);
    const TowerView::Geo geo = view.TowerGeo(l, 0);
    EXPECT_FLOAT_EQ(geo.cx, 320.0f);
    EXPECT_NEAR(geo.P(geo.camera, 0.0f, 1.0f).y, 360.0f, 1e-3f);
    EXPECT_NEAR(geo.P(geo.camera, 14.0f, 1.0f).y, 120.0f, 1e-3f);
    EXPECT_NEAR(std::sin(geo.halfAngle) * geo.rx, 80.0f, 1e-3f);
    // A stage of another width, or a classic level, ignores the frame.
    EXPECT_FALSE(view.ComputeLayout(g, StageRect{0, 18, 600, 368}).integrated);
    EXPECT_FALSE(view.ComputeLayout(ClassicGame(1), kStage).integrated);
}

TEST_F(TowerGeometryTest, AnglesWrapRoundTheRingAndVisibilityIncludesTheEdge) {
    TowerView::Geo geo = RingGeo(0, 1, 0, 0, 1);
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
    }
    // 80 degrees are 7.11 columns of 32.
    geo.camera = 0.0f;
    EXPECT_TRUE(geo.Visible(24.9f));
    EXPECT_FALSE(geo.Visible(7.12f));
    TowerView::Geo classic; // 8 columns from -1.2 to +1.2, both ends in view
    EXPECT_FLOAT_EQ(classic.Angle(0.0f), -1.2f);
    EXPECT_TRUE(classic.Visible(8.0f));
    EXPECT_FALSE(classic.Visible(8.01f));
}

TEST_F(TowerGeometryTest, ProjectionLightAndCellPaths) {
    const TowerView::Geo geo = RingGeo(300.0f, 100.0f, 18.0f, 300.0f, 10.0f);
    EXPECT_NEAR(geo.P(0.0f, 0.0f, 1.0f).y, 318.0f, 1e-4f); // the front lies ry below the centre line
    // Column 4 at pi/4, row 2: (300 + 70.7107, 300 - 20 + 12.7279); half the radius halves both offsets.
    EXPECT_NEAR(geo.P(4.0f, 2.0f, 1.0f).x, 370.7107f, 1e-3f);
    EXPECT_NEAR(geo.P(4.0f, 2.0f, 1.0f).y, 292.7279f, 1e-3f);
    EXPECT_NEAR(geo.P(4.0f, 2.0f, 0.5f).x, 335.3553f, 1e-3f);
    EXPECT_NEAR(geo.P(4.0f, 2.0f, 0.5f).y, 286.3640f, 1e-3f);
    EXPECT_NEAR(geo.Light(0.0f), 0.7f + 0.42f * std::cos(0.55f), 1e-5f); // 0.7 + 0.42 cos(a + 0.55) in 0.5 .. 1.15
    EXPECT_NEAR(geo.Light(-0.55f * 32.0f / (2.0f * kPi)), 1.12f, 1e-4f); // brightest 0.55 rad left of the front
    EXPECT_FLOAT_EQ(geo.Light(16.0f), 0.5f);

    const std::vector<pge::vf2d> full = geo.CellPath(2.0f, 3.0f, 0.0f);
    ASSERT_EQ(full.size(), 10u);
    // Top edge left to right from (2, 4), bottom edge back to (2, 3), on angles 2 * 2pi / 32 and so on.
    EXPECT_NEAR(full[0].x, 338.2683f, 1e-3f);
    EXPECT_NEAR(full[0].y, 276.6298f, 1e-3f);
    EXPECT_NEAR(full[2].y, 275.8746f, 1e-3f);
    EXPECT_NEAR(full[4].x, 355.5570f, 1e-3f);
    EXPECT_NEAR(full[5].y, 284.9665f, 1e-3f);
    EXPECT_NEAR(full[9].y, 286.6298f, 1e-3f);
    // Shrink 0 and 1 agree; 0.5 pulls each point halfway to the centre.
    const std::vector<pge::vf2d> one = geo.CellPath(2.0f, 3.0f, 1.0f), half = geo.CellPath(2.0f, 3.0f, 0.5f);
    const pge::vf2d m = geo.P(2.5f, 3.5f, 1.0f);
    for (size_t i = 0; i < full.size(); ++i) {
        EXPECT_TRUE(one[i].x == full[i].x && one[i].y == full[i].y) << i;
        EXPECT_NEAR(half[i].x, (full[i].x + m.x) * 0.5f, 1e-3f);
        EXPECT_NEAR(half[i].y, (full[i].y + m.y) * 0.5f, 1e-3f);
    }
    // A centre 7.2 columns away is hidden even though the left corner at 6.7 is in view.
    EXPECT_TRUE(geo.CellPath(6.7f, 0.0f, 0.0f).empty());
    EXPECT_EQ(geo.CellPath(6.5f, 0.0f, 0.0f).size(), 10u);
}

} // namespace
} // namespace torvane
