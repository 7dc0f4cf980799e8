// The ray-cast wall on small pictures, where the cell seen at a pixel can be worked
// out by hand: angle = asin((x + 0.5 - cx) / rx), row = (baseY + ry cos(angle) - y - 0.5) / cellH.
#include "tests/game/TowerViewTestSupport.h"

#include <gtest/gtest.h>

#include <set>

namespace torvane {
namespace {

using testing_support::ClassicGame;
using testing_support::RingGame;

// cx 100, rx 50, ry 9, foot at 180, rows 10 pixels high.
TowerView::Geo SmallGeo(const Game& g, bool ring) {
    TowerView::Geo geo;
    geo.cx = 100.0f;
    geo.rx = 50.0f;
    geo.ry = 9.0f;
    geo.baseY = 180.0f;
    geo.cellH = 10.0f;
    geo.cols = g.config.width;
    geo.rows = g.config.height;
    geo.ring = ring;
    geo.halfAngle = ring ? 80.0f * 3.1415927f / 180.0f : 1.2f;
    return geo;
}

pge::Sprite Filled(pge::Pixel colour) {
    pge::Sprite s(200, 200);
    for (pge::Pixel& p : s.pColData) p = colour;
    return s;
}

class WallTest : public testing_support::RulesTest {
protected:
    TowerView view;
};

TEST_F(WallTest, EmptyTowerIsADarkenedGridWithoutFaces) {
    Game g = ClassicGame(1);
    pge::Sprite s = Filled(pge::Pixel(255, 255, 255));
    view.DrawWall(&s, g, SmallGeo(g, false), 0);
    // 255 darkened by 33/255 gives 222; a grid line of 28/255 white on that gives 225.
    std::set<int> seen;
    for (const pge::Pixel& p : s.pColData) {
        EXPECT_TRUE(p.r == p.g && p.g == p.b);
        seen.insert(p.r);
    }
    EXPECT_EQ(seen, (std::set<int>{222, 225, 255}));
    EXPECT_FALSE(view.FilledAt(100, 184));
}

TEST_F(WallTest, ClassicColumnsStayInsideTheGrid) {
    Game g = ClassicGame(1);
    ASSERT_EQ(g.config.width, 8);
    // Column 0 and column 7, rows 0 to 13, all filled.
    for (int y = 0; y < 14; ++y) {
        g.AddPiece(0, '1', {{0, y}}, false);
        g.AddPiece(0, '1', {{7, y}}, false);
    }
    pge::Sprite s = Filled(pge::Pixel(0, 0, 255));
    const TowerView::Geo geo = SmallGeo(g, false);
    view.DrawWall(&s, g, geo, 0);
    ASSERT_EQ(view.mapCols, 8);
    int rightmost = -1;
    for (int i = 0; i < view.mapW; ++i)
        for (int j = 0; j < view.mapH; ++j) {
            const int id = view.wallMap[static_cast<size_t>(j * view.mapW + i)];
            if (id < 0) continue;
            ASSERT_LT(id, 8 * 14);
            rightmost = std::max(rightmost, i);
        }
    // The last screen column of the wall (n just below sin 1.2) shows the last grid column.
    const int y = 180; // row 0 everywhere: (180 + 9 cos a - 180.5) / 10 lies in [0.1, 0.85]
    int lastX = view.mapX + rightmost;
    while (view.wallMap[static_cast<size_t>((y - view.mapY) * view.mapW + (lastX - view.mapX))] < 0) --lastX;
    EXPECT_EQ(view.wallMap[static_cast<size_t>((y - view.mapY) * view.mapW + (lastX - view.mapX))] % 8, 7);
    EXPECT_TRUE(view.FilledAt(lastX, y));
    // x 54: asin(-0.91) = -1.1433, column 8 * 0.0567 / 2.4 = 0.19: grid column 0.
    EXPECT_EQ(view.wallMap[static_cast<size_t>((y - view.mapY) * view.mapW + (54 - view.mapX))], 0);
    // x 100: asin(0.01), column 4.03: grid column 4, empty.
    EXPECT_EQ(view.wallMap[static_cast<size_t>((y - view.mapY) * view.mapW + (100 - view.mapX))], 4);
    EXPECT_FALSE(view.FilledAt(100, y));
}

TEST_F(WallTest, RingSeamShowsNoGap) {
    Game g = RingGame(1);
    ASSERT_EQ(g.config.width, 32);
    for (int x = 0; x < 32; ++x) g.AddPiece(0, '1', {{x, 0}}, false);
    for (const float camera : {0.0f, 31.9f, 16.0f}) {
        TowerView::Geo geo = SmallGeo(g, true);
        geo.camera = camera;
        pge::Sprite s = Filled(pge::Pixel(0, 0, 0));
        view.DrawWall(&s, g, geo, 0);
        // Every pixel of row 0 (y 180) across the visible width shows a filled cell.
        const float sinHalf = std::sin(geo.halfAngle);
        for (int x = 0; x < 200; ++x) {
            const float n = (static_cast<float>(x) + 0.5f - 100.0f) / 50.0f;
            if (std::fabs(n) < sinHalf - 1e-3f) {
                EXPECT_TRUE(view.FilledAt(x, 180)) << "camera " << camera << " x " << x;
            }
        }
    }
    // With the camera at 0, x 99 sees column -0.05, wrapped to 31, and x 100 column 0.
    TowerView::Geo geo = SmallGeo(g, true);
    pge::Sprite s = Filled(pge::Pixel(0, 0, 0));
    view.DrawWall(&s, g, geo, 0);
    EXPECT_EQ(view.wallMap[static_cast<size_t>((180 - view.mapY) * view.mapW + (99 - view.mapX))], 31);
    EXPECT_EQ(view.wallMap[static_cast<size_t>((180 - view.mapY) * view.mapW + (100 - view.mapX))], 0);
}

TEST_F(WallTest, RuinIsDarkerThanAPlacedPiece) {
    const auto draw = [&](bool ruin) {
        Game g = ClassicGame(1);
        g.AddPiece(0, 'O', {{4, 1}, {5, 1}, {4, 2}, {5, 2}}, ruin);
        pge::Sprite s = Filled(pge::Pixel(0, 0, 0));
        view.DrawWall(&s, g, SmallGeo(g, false), 0);
        // x 106: column 4.43; y 173: row 1.54, inside the piece.
        EXPECT_TRUE(view.FilledAt(106, 173));
        return s.GetPixel(106, 173);
    };
    const pge::Pixel placed = draw(false);
    const pge::Pixel ruin = draw(true);
    EXPECT_GT(ruin.r, 0);
    EXPECT_LT(ruin.r, placed.r);
    EXPECT_LT(ruin.g, placed.g);
    EXPECT_LT(ruin.b, placed.b);
}

TEST_F(WallTest, PiecesGetAnOutlineAndATopFace) {
    Game g = ClassicGame(1);
    g.AddPiece(0, 'O', {{4, 1}, {5, 1}, {4, 2}, {5, 2}}, false);
    pge::Sprite s = Filled(pge::Pixel(0, 0, 0));
    const TowerView::Geo geo = SmallGeo(g, false);
    view.DrawWall(&s, g, geo, 0);
    // The lowest pixel of the piece at x 106 borders an empty cell below: it carries the
    // dark outline and is darker than the pixel above it.
    int bottom = 200;
    while (!view.FilledAt(106, bottom)) --bottom;
    EXPECT_LT(s.GetPixel(106, bottom).r, s.GetPixel(106, bottom - 2).r);
    // Above the piece, on the empty cell of row 3, its upper face is lit.
    const pge::vf2d face = geo.P(4.5f, 3.0f, (1.0f + std::max(1.0f - 10.0f * 0.9f / 50.0f, 0.5f)) * 0.5f);
    const int fx = static_cast<int>(face.x), fy = static_cast<int>(face.y);
    EXPECT_FALSE(view.FilledAt(fx, fy));
    EXPECT_GT(s.GetPixel(fx, fy).r, 100);
}

TEST_F(WallTest, FilledAtOutsideTheMapOrBeforeAnyWall) {
    EXPECT_FALSE(view.FilledAt(100, 184)); // no map yet
    Game g = ClassicGame(1);
    g.AddPiece(0, '1', {{4, 0}}, false);
    pge::Sprite s = Filled(pge::Pixel(0, 0, 0));
    view.DrawWall(&s, g, SmallGeo(g, false), 0);
    EXPECT_TRUE(view.FilledAt(100, 184));
    EXPECT_FALSE(view.FilledAt(100, 189)); // below the foot of the front
    EXPECT_FALSE(view.FilledAt(100, 174)); // row 1, empty
    EXPECT_FALSE(view.FilledAt(-5000, 184));
    EXPECT_FALSE(view.FilledAt(100, 5000));
}

} // namespace
} // namespace torvane
