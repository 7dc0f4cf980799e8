// Whole frames of the stage, compared with reference pictures, and the rules of
// the marks on the wall that can be checked pixel by pixel.
#include "game/Pieces.h"
#include "game/RingCamera.h"
#include "tests/game/TowerViewTestSupport.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace torvane
