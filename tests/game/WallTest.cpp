// The ray-cast wall on small pictures, where the cell seen at a pixel can be worked
// out by hand: angle = asin((x + 0.5 - cx) / rx), row = (baseY + ry cos(angle) - y - 0.5) / cellH.
#include "tests/game/TowerViewTestSupport.h"

#include <gtest/gtest.h>

#include <set>

namespace torvane {
namespace {

using testing_support::ClassicGame;

class WallTest : public testing_support::RulesTest {
protected:
    // Draws tower 0 on a 200 by 200 picture of one colour: cx 100, rx 50, ry 9,
    // foot at 180, rows 10 pixels high.
    pge::Sprite Draw(const Game& g, pge::Pixel colour = pge::Pixel(0, 0, 0), float camera = 0.0f) {
        geo = {100.0f, 50.0f, 9.0f, 180.0f, 10.0f, g.config.width, g.config.height, g.config.ring, camera,
               g.config.ring ? 80.0f * 3.1415927f / 180.0f : 1.2f};
        pge::Sprite s(200, 200);
        for (pge::Pixel& p : s.pColData) p = colour;
        view.DrawWall(&s, g, geo, 0);
        return s;
    }
    // The grid cell the wall map shows at a screen pixel, -1 for none.
    int MapAt(int x, int y) const {
        return view.wallMap[static_cast<size_t>((y - view.mapY) * view.mapW + (x - view.mapX))];
    }
    TowerView view;
    TowerView::Geo geo;
};

TEST_F(WallTest, EmptyTowerIsADarkenedGridWithoutFaces) {
    EXPECT_FALSE(view.FilledAt(100, 184)); // no map yet
    const Game g = ClassicGame(1);
    const pge::Sprite s = Draw(g, pge::Pixel(255, 255, 255));
    // 255 darkened by 33/255 gives 222; a grid line of 28/255 white on that gives 225.
    std::set<int> seen;
    for (const pge::Pixel& p : s.pColData) {
        EXPECT_TRUE(p.r == p.g && p.g == p.b);
        seen.insert(p.r);
    }
    EXPECT_EQ(seen, (std::set<int>{222, 225, 255}));
    EXPECT_FALSE(view.FilledAt(100, 184));
}

TEST_F(WallTest, ClassicEdgeColumnsAreClampedIntoTheGrid) {
    Game g = ClassicGame(1);
    ASSERT_EQ(g.config.width, 8);
    testing_support::FillColumn(g, 0, 0, 0, 14);
    testing_support::FillColumn(g, 0, 7, 0, 14);
    Draw(g);
    ASSERT_EQ(view.mapCols, 8);
    int lastX = -1; // the rightmost pixel of the wall in row 0 (y 180: row 0 at every x)
    for (int i = 0; i < view.mapW * view.mapH; ++i) {
        ASSERT_LT(view.wallMap[static_cast<size_t>(i)], 8 * 14);
        if (view.wallMap[static_cast<size_t>(i)] >= 0 && i / view.mapW == 180 - view.mapY)
            lastX = std::max(lastX, view.mapX + i % view.mapW);
    }
    // There n lies just below sin 1.2 and the column computed may reach 8: it shows column 7.
    EXPECT_EQ(MapAt(lastX, 180), 7);
    EXPECT_TRUE(view.FilledAt(lastX, 180));
    // x 54: asin(-0.91) = -1.1433, column 8 * 0.0567 / 2.4 = 0.19; x 100: column 4.03, empty.
    EXPECT_EQ(MapAt(54, 180), 0);
    EXPECT_EQ(MapAt(100, 180), 4);
    EXPECT_FALSE(view.FilledAt(100, 180));
}

TEST_F(WallTest, RingSeamShowsNoGap) {
    Game g = testing_support::RingGame(1);
    ASSERT_EQ(g.config.width, 32);
    for (int x = 0; x < 32; ++x) testing_support::Fill(g, 0, x, 0);
    for (const float camera : {31.9f, 16.0f, 0.0f}) {
        Draw(g, pge::Pixel(0, 0, 0), camera);
        // Every pixel of row 0 (y 180) across the visible width shows a filled cell.
        for (int x = 0; x < 200; ++x)
            if (std::fabs((static_cast<float>(x) + 0.5f - 100.0f) / 50.0f) < std::sin(geo.halfAngle) - 1e-3f) {
                EXPECT_TRUE(view.FilledAt(x, 180)) << "camera " << camera << " x " << x;
            }
    }
    // With the camera at 0, x 99 sees column -0.05, wrapped to 31, and x 100 column 0.
    EXPECT_EQ(MapAt(99, 180), 31);
    EXPECT_EQ(MapAt(100, 180), 0);
}

TEST_F(WallTest, RuinIsDarkerThanAPlacedPieceAndPiecesAreOutlined) {
    std::vector<pge::Pixel> at;
    for (const bool ruin : {false, true}) {
        Game g = ClassicGame(1);
        g.AddPiece(0, 'O', {{4, 1}, {5, 1}, {4, 2}, {5, 2}}, ruin);
        const pge::Sprite s = Draw(g);
        // x 106: column 4.43; y 173: row 1.54, inside the piece.
        EXPECT_TRUE(view.FilledAt(106, 173));
        at.push_back(s.GetPixel(106, 173));
        // Its lowest pixel at x 106 borders an empty cell: the dark outline.
        int bottom = 199;
        while (!view.FilledAt(106, bottom)) --bottom;
        EXPECT_LT(s.GetPixel(106, bottom).r, s.GetPixel(106, bottom - 2).r);
    }
    EXPECT_GT(at[1].r, 0);
    EXPECT_LT(at[1].r, at[0].r);
    EXPECT_LT(at[1].g, at[0].g);
    EXPECT_LT(at[1].b, at[0].b);
}

TEST_F(WallTest, FilledAtBelowTheFootAndOutsideTheMap) {
    Game g = ClassicGame(1);
    testing_support::Fill(g, 0, 4, 0);
    Draw(g);
    EXPECT_TRUE(view.FilledAt(100, 184));
    EXPECT_FALSE(view.FilledAt(100, 189)); // below the foot of the front
    EXPECT_FALSE(view.FilledAt(100, 174)); // row 1, empty
    EXPECT_FALSE(view.FilledAt(-5000, 184));
    EXPECT_FALSE(view.FilledAt(100, 5000));
}

} // namespace
} // namespace torvane
