// Whole frames of the stage compared with reference pictures, and the marks on the
// wall, each drawn with and without its cause over the same landscape.
#include "game/Pieces.h"
#include "game/RingCamera.h"
#include "tests/game/TowerViewTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

namespace torvane {
namespace {

using testing_support::ExpectMatchesReference;

// Lays a piece of the given rotation moved by (x, y) on a tower.
int Lay(Game& g, int tower, char type, int rotation, int x, int y) {
    std::vector<Cell> cells = Rotated(type, rotation);
    for (Cell& c : cells) c = Cell{g.WrapX(c.x + x), c.y + y};
    return g.AddPiece(tower, type, cells, false);
}

class TowerViewFrameTest : public testing_support::TowerViewTest {
protected:
    // Draws at the camera's own start, or at `camera` when given.
    void DrawAt(const Game& g, float time, float camera = -1.0f) {
        RingCamera ring;
        ring.Update(g, 0.0f);
        view.Draw(engine, g, stage, time, camera >= 0.0f ? camera : ring.angle);
    }
    std::vector<pge::Pixel> Frame(const Game& g, float camera) {
        DrawAt(g, 1.0f, camera);
        return Screen().pColData;
    }
};
using TowerViewMarksTest = TowerViewFrameTest;

// The screen pixels that differ between two frames.
std::vector<pge::vi2d> Differences(const std::vector<pge::Pixel>& a, const std::vector<pge::Pixel>& b) {
    std::vector<pge::vi2d> out;
    for (int i = 0; i < static_cast<int>(a.size()); ++i)
        if (a[static_cast<size_t>(i)] != b[static_cast<size_t>(i)]) out.push_back({i % 640, i / 640});
    return out;
}

TEST_F(TowerViewFrameTest, RingBuildPhase) {
    GetSettings().classic = 0;
    Game g(7);
    g.StartLevel(1);
    ASSERT_EQ(g.phase, Phase::Build);
    const int top = g.ColumnTop(0, 0);
    Lay(g, 0, 'O', 0, 0, top);
    Lay(g, 0, 'T', 0, 2, top);
    Lay(g, 0, 'I', 1, 30, top);
    Lay(g, 0, 'L', 0, 5, top + 2); // over a gap
    const int flashed = Lay(g, 0, 'S', 0, 27, top);
    g.clock = 4.0f;
    view.flashes.push_back({g.pieces.at(flashed).cells, 3.7f, 0});
    g.cursorX = 1;
    DrawAt(g, 1.25f);
    ExpectMatchesReference(Screen(), "ring_build");
}

TEST_F(TowerViewFrameTest, RingAttackWithHoleAndTarget) {
    GetSettings().classic = 0;
    Game g(11);
    g.StartLevel(2);
    const int top = g.ColumnTop(0, 0);
    for (int x = 0; x < 32; x += 2) Lay(g, 0, 'O', 0, x, top);
    Lay(g, 0, 'I', 0, 0, top + 2);
    const int hit = Lay(g, 0, 'I', 0, 4, top + 2);
    const int aimed = Lay(g, 0, 'T', 0, 28, top + 2);
    const int prepped = Lay(g, 0, 'O', 0, 2, top + 3);
    g.phase = Phase::Attack;
    g.clock = 10.0f;
    // A hole where the piece at 4 was shot away, a target with no prep, one with a prep.
    const std::vector<Cell> holeCells = g.pieces.at(hit).cells;
    for (const Cell& c : holeCells) g.RemoveCell(0, c.x, c.y);
    g.pieces.erase(hit);
    g.holes.push_back(Hole{1, 0, holeCells, 8.0f, 11.0f, 0});
    g.targets.push_back(Target{1, aimed, 0, 9.0f, 12.0f, g.pieces.at(aimed).cells, {}});
    g.targets.push_back(Target{2, prepped, 0, 9.5f, 13.0f, g.pieces.at(prepped).cells,
                               {Prep{'1', {g.pieces.at(prepped).cells[0]}}}});
    g.focus = {Focus::Hole, 1};
    DrawAt(g, 2.0f);
    ExpectMatchesReference(Screen(), "ring_attack");
}

TEST_F(TowerViewFrameTest, ClassicLevelSevenWithFiveTowers) {
    GetSettings().classic = 1;
    Game g(3);
    g.StartLevel(7);
    ASSERT_EQ(g.config.towers, 5);
    for (int t = 0; t < 5; ++t) {
        const int top = g.ColumnTop(t, 0);
        Lay(g, t, 'J', t, t, top);
        Lay(g, t, 'Z', 0, 4, top + 1 + t % 2);
    }
    g.activeTower = 2;
    g.cursorX = 3;
    g.clock = 2.0f;
    DrawAt(g, 0.5f, 0.0f);
    ExpectMatchesReference(Screen(), "classic_level7");
}

TEST_F(TowerViewMarksTest, RedGapsEndBelowTheDefenceLine) {
    Game g = testing_support::RingGame(1);
    g.config.sectors.clear(); // every column is attacked
    g.phase = Phase::Eval;    // no marks outside the build and the attack
    const std::vector<pge::Pixel> plain = Frame(g, 0.0f);
    g.phase = Phase::Attack;
    const std::vector<pge::vi2d> diff = Differences(plain, Frame(g, 0.0f));
    ASSERT_FALSE(diff.empty());
    const TowerView::Geo geo = view.TowerGeo(view.layout, 0);
    for (const pge::vi2d& p : diff) {
        // The line's ring at this x: baseY - cellH * line + ry cos(asin((x - cx) / rx)).
        const float n = (static_cast<float>(p.x) + 0.5f - geo.cx) / geo.rx;
        ASSERT_LT(std::fabs(n), 1.0f);
        const float lineY = geo.baseY - geo.cellH * static_cast<float>(g.config.line) + geo.ry * std::cos(std::asin(n));
        EXPECT_GE(static_cast<float>(p.y) + 0.5f, lineY - 1.0f) << p.x << "," << p.y;
    }
}

TEST_F(TowerViewMarksTest, FlashesOlderThanTheirTimeOrOffTheTowersDrawNothing) {
    Game g = testing_support::RingGame(1);
    const std::vector<Cell> cells = g.pieces.at(Lay(g, 0, 'O', 0, 0, 0)).cells;
    g.clock = 10.0f;
    const std::vector<pge::Pixel> plain = Frame(g, 0.5f);
    view.flashes.push_back({cells, 8.7f, 0}); // 1.3 seconds old
    view.flashes.push_back({cells, 9.0f, 3}); // on a tower that does not exist
    EXPECT_TRUE(Differences(plain, Frame(g, 0.5f)).empty());
    view.flashes.push_back({cells, 9.5f, 0});
    EXPECT_FALSE(Differences(plain, Frame(g, 0.5f)).empty());
}

TEST_F(TowerViewMarksTest, GhostOnlyOnTheActiveTowerAndWhenItLands) {
    Game g = testing_support::ClassicGame(2);
    ASSERT_EQ(g.config.towers, 2);
    const std::vector<char> supply = g.supply;
    ASSERT_NE(g.SelectedType(), 0);
    g.cursorX = 2;
    const std::vector<pge::Pixel> withGhost = Frame(g, 0.0f);
    const TowerView::Geo right = view.TowerGeo(view.layout, 1);
    g.supply.clear(); // no piece in hand: no ghost
    const std::vector<pge::vi2d> diff = Differences(withGhost, Frame(g, 0.0f));
    ASSERT_FALSE(diff.empty());
    for (const pge::vi2d& p : diff) EXPECT_LT(p.x, right.cx - std::sin(right.halfAngle) * right.rx) << "off tower 0";
    // A tower filled to the top leaves no landing row: GhostY is negative, no ghost.
    g.supply = supply;
    for (int x = 0; x < g.config.width; ++x) testing_support::FillColumn(g, 0, x, 0, g.config.height);
    ASSERT_LT(g.GhostY(), 0);
    const std::vector<pge::Pixel> full = Frame(g, 0.0f);
    g.supply.clear();
    EXPECT_TRUE(Differences(full, Frame(g, 0.0f)).empty());
}

} // namespace
} // namespace torvane
