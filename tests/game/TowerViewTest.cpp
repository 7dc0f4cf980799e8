// Whole frames of the stage, compared with reference pictures, and the rules of
// the marks on the wall that can be checked pixel by pixel.
#include "game/Pieces.h"
#include "game/RingCamera.h"
#include "tests/game/TowerViewTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

namespace torvane {
namespace {

using testing_support::ExpectMatchesReference;
using testing_support::MakeAssetRoot;

// Lays a piece of the given cells moved by (x, y) on a tower.
int Lay(Game& g, int tower, char type, int rotation, int x, int y, bool ruin = false) {
    std::vector<Cell> cells = Rotated(type, rotation);
    for (Cell& c : cells) {
        c.x = g.WrapX(c.x + x);
        c.y += y;
    }
    return g.AddPiece(tower, type, cells, ruin);
}

class TowerViewFrameTest : public testing_support::TowerViewTest {
protected:
    void SetUp() override {
        TowerViewTest::SetUp();
        MakeAssetRoot("painted"); // no images: the painted landscape
    }
};

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
    RingCamera camera;
    camera.Update(g, 0.0f);
    view.Draw(engine, g, stage, 1.25f, camera.angle);
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
    Target withPrep{2, prepped, 0, 9.5f, 13.0f, g.pieces.at(prepped).cells, {}};
    withPrep.preps.push_back(Prep{'1', {g.pieces.at(prepped).cells[0]}});
    g.targets.push_back(withPrep);
    g.focus = {Focus::Hole, 1};
    RingCamera camera;
    camera.Update(g, 0.0f);
    view.Draw(engine, g, stage, 2.0f, camera.angle);
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
    view.Draw(engine, g, stage, 0.5f, 0.0f);
    ExpectMatchesReference(Screen(), "classic_level7");
}

// The marks on the wall, each drawn once with and once without its cause; the
// landscape is the same in both, so only the mark can make a difference.
class TowerMarksTest : public TowerViewFrameTest {
protected:
    // Pixels of the screen that differ between two pictures.
    static std::vector<pge::vi2d> Differences(const pge::Sprite& a, const pge::Sprite& b) {
        std::vector<pge::vi2d> out;
        for (int y = 0; y < a.height; ++y)
            for (int x = 0; x < a.width; ++x)
                if (a.GetPixel(x, y) != b.GetPixel(x, y)) out.push_back({x, y});
        return out;
    }
    pge::Sprite Frame(const Game& g, float camera) {
        view.Draw(engine, g, stage, 1.0f, camera);
        pge::Sprite copy(Screen().width, Screen().height);
        copy.pColData = Screen().pColData;
        return copy;
    }
};

TEST_F(TowerMarksTest, RedGapsEndBelowTheDefenceLine) {
    GetSettings().classic = 0;
    Game g = testing_support::RingGame(1);
    g.config.sectors.clear(); // every column is attacked
    g.phase = Phase::Eval;    // no marks outside the build and the attack
    const pge::Sprite plain = Frame(g, 0.0f);
    g.phase = Phase::Attack;
    const pge::Sprite marked = Frame(g, 0.0f);
    const std::vector<pge::vi2d> diff = Differences(plain, marked);
    ASSERT_FALSE(diff.empty());
    const TowerView::Geo geo = view.TowerGeo(view.layout, 0);
    const float line = static_cast<float>(g.config.line);
    for (const pge::vi2d& p : diff) {
        // The line's ring at this x: baseY - cellH * line + ry cos(asin((x - cx) / rx)).
        const float n = (static_cast<float>(p.x) + 0.5f - geo.cx) / geo.rx;
        ASSERT_LT(std::fabs(n), 1.0f);
        const float lineY = geo.baseY - geo.cellH * line + geo.ry * std::cos(std::asin(n));
        EXPECT_GE(static_cast<float>(p.y) + 0.5f, lineY - 1.0f) << p.x << "," << p.y;
    }
}

TEST_F(TowerMarksTest, OldFlashesDrawNothing) {
    GetSettings().classic = 0;
    Game g = testing_support::RingGame(1);
    const int id = Lay(g, 0, 'O', 0, 0, 0);
    g.clock = 10.0f;
    const pge::Sprite plain = Frame(g, 0.5f);
    view.flashes.push_back({g.pieces.at(id).cells, 8.7f, 0}); // 1.3 seconds old
    view.flashes.push_back({g.pieces.at(id).cells, 9.0f, 3}); // on a tower that does not exist
    EXPECT_TRUE(Differences(plain, Frame(g, 0.5f)).empty());
    view.flashes.push_back({g.pieces.at(id).cells, 9.5f, 0});
    EXPECT_FALSE(Differences(plain, Frame(g, 0.5f)).empty());
}

TEST_F(TowerMarksTest, GhostOnlyOnTheActiveTowerAndWhenItLands) {
    GetSettings().classic = 1;
    Game g = testing_support::ClassicGame(2);
    ASSERT_EQ(g.config.towers, 2);
    ASSERT_NE(g.SelectedType(), 0);
    g.cursorX = 2;
    const pge::Sprite withGhost = Frame(g, 0.0f);
    const TowerView::Geo right = view.TowerGeo(view.layout, 1);
    const float rightEdge = right.cx - std::sin(right.halfAngle) * right.rx;
    // Without a piece in hand nothing of the ghost is drawn.
    std::vector<char> supply = g.supply;
    g.supply.clear();
    std::vector<pge::vi2d> diff = Differences(withGhost, Frame(g, 0.0f));
    ASSERT_FALSE(diff.empty());
    for (const pge::vi2d& p : diff) EXPECT_LT(static_cast<float>(p.x), rightEdge) << "ghost off the active tower";
    // A column filled to the top leaves no landing row: GhostY is negative, no ghost.
    g.supply = supply;
    for (int x = 0; x < g.config.width; ++x)
        for (int y = 0; y < g.config.height; ++y) g.AddPiece(0, '1', {{x, y}}, false);
    ASSERT_LT(g.GhostY(), 0);
    const pge::Sprite full = Frame(g, 0.0f);
    g.supply.clear();
    EXPECT_TRUE(Differences(full, Frame(g, 0.0f)).empty());
}

} // namespace
} // namespace torvane
