// The cylinder projection and the stage layout, against numbers worked out by hand
// from the projection's formulas for the 640 by 368 stage at y 18, where the reference
// pictures of whole frames do not already pin them.
#include "game/stage/TowerView.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

namespace torvane {
namespace {

using testing_support::ClassicGame;
using testing_support::EmptyGame;

const StageRect kStage{0, 18, 640, 368};

class TowerGeometryTest : public testing_support::RulesTest {
protected:
    TowerView view;
};

// The ring of level 1 and the five classic towers of level 7 stand in the reference
// pictures; here the single classic tower and a stage far too small.
TEST_F(TowerGeometryTest, LayoutOfClassicLevelOneAndOfATooSmallStage) {
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
    // A stage far too small keeps the smallest cell; the towers overflow rather than vanish.
    EXPECT_FLOAT_EQ(view.ComputeLayout(EmptyGame(false, 1), StageRect{0, 0, 100, 60}).cell, 6.0f);
    EXPECT_FLOAT_EQ(view.ComputeLayout(ClassicGame(7), StageRect{0, 0, 100, 60}).cell, 6.0f);
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

} // namespace
} // namespace torvane
