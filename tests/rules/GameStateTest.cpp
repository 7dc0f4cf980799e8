#include "RulesTestSupport.h"

#include "game/rules/Pieces.h"
#include "game/rules/StateHash.h"

#include <set>

using namespace torvane;
using namespace torvane::testing_support;

TEST(PiecesShapes, RotationsAreNormalisedQuarterTurnsModuloFour) {
    EXPECT_EQ(Rotated('T', 1), (std::vector<Cell>{{0, 2}, {0, 1}, {0, 0}, {1, 1}}));
    for (char p : std::string("IOTLJSZ21")) {
        EXPECT_EQ(Rotated(p, -1), Rotated(p, 3)) << p;
        EXPECT_EQ(Rotated(p, 4), BaseShape(p)) << p;
        for (int r = 0; r < 4; ++r) {
            const std::vector<Cell> cells = Rotated(p, r);
            int minX = 99, minY = 99;
            for (const Cell& c : cells) minX = std::min(minX, c.x), minY = std::min(minY, c.y);
            EXPECT_EQ(minX + minY, 0) << p << r;
            EXPECT_EQ(std::set<Cell>(cells.begin(), cells.end()).size(), BaseShape(p).size());
            EXPECT_EQ(ShapeWidth(Rotated(p, r + 1)), ShapeHeight(cells)) << p << r;
        }
    }
    EXPECT_EQ(BaseShape('x'), (std::vector<Cell>{{0, 0}}));  // unknown letters are the single cell
}

using GameStateTest = RulesTest;

TEST_F(GameStateTest, WrapAndCentresOnTheRingOnly) {
    Game ring = EmptyGame(false, 1);
    EXPECT_EQ(ring.WrapX(-65), 31);
    EXPECT_FLOAT_EQ(ring.WrapDiff(16.0f), -16.0f);  // the half rounds away from zero
    EXPECT_FLOAT_EQ(ring.ColumnCentre({{30, 0}, {31, 0}, {0, 0}}), 31.5f);
    EXPECT_NEAR(ring.ColumnCentre({{0, 0}, {10, 0}, {20, 0}}), 32.0f - 1.0f / 6.0f, 1e-4);  // measured from the first
    EXPECT_TRUE(ring.Free(0, BaseShape('I'), 30, 13));  // over the seam
    Fill(ring, 0, 3, 0);
    EXPECT_EQ(ring.ColumnTop(0, 3), 1);
    Fill(ring, 0, 1, 13);
    EXPECT_EQ(ring.ColumnTop(0, 1), 14);
    EXPECT_FALSE(ring.Free(0, BaseShape('I'), 30, 13));
    Game classic = ClassicGame(1);
    EXPECT_EQ(classic.WrapX(32), 32);
    EXPECT_FLOAT_EQ(classic.ColumnCentre({{7, 0}, {0, 0}}), 4.0f);
    EXPECT_FALSE(classic.Free(0, BaseShape('I'), 5, 13));  // leaves the tower
    EXPECT_TRUE(classic.Free(0, Rotated('I', 1), 0, 12));  // may reach over the top, but is not inside
    EXPECT_FALSE(classic.Inside(Rotated('I', 1), 12));
}

TEST_F(GameStateTest, PercentagesRoundHalvesUpAndPoolAllTowers) {
    Game g = ClassicGame(3);  // two towers of 10 columns, line 7
    g.phase = Phase::Attack;
    for (int x = 0; x < 10; ++x) FillColumn(g, 0, x, 0, 7);
    FillColumn(g, 1, 0, 0, 7);
    FillColumn(g, 1, 1, 0, 6);  // one short of the line
    EXPECT_EQ(g.PctAbove(0), 100);
    EXPECT_EQ(g.PctAbove(1), 10);
    EXPECT_EQ(g.OverallPct(), 55);  // 11 of 20 pooled
    EXPECT_FALSE(g.LineComplete());
    Fill(g, 1, 1, 6);
    for (int x = 2; x < 10; ++x) FillColumn(g, 1, x, 0, 7);
    EXPECT_TRUE(g.LineComplete());
    g.towers.clear();  // nothing counted: nothing reaches the line
    EXPECT_EQ(g.OverallPct(), 0);
    EXPECT_FALSE(g.LineComplete());
}

// The state hash, by which replays and the simulator compare games, must see every field.
TEST_F(GameStateTest, SeesNumbersTextsAndTheGameOfAnotherSeed) {
    // The towers' stamps come from one counter of the process: both games start from the same.
    const uint32_t stamp = Tower::PeekRevision();
    const Game game(1);
    const uint64_t hash = StateHash(game);
    Tower::SetNextRevision(stamp);
    EXPECT_EQ(StateHash(Game(1)), hash);
    EXPECT_NE(StateHash(Game(2)), hash);
    Game later = game;
    later.clock += 0.25f;  // a number of seconds
    EXPECT_NE(StateHash(later), hash);
    Game renamed = game;
    ASSERT_FALSE(renamed.config.sectors.empty());
    renamed.config.sectors[0].label[0] ^= 1;  // a text of the same length
    EXPECT_NE(StateHash(renamed), hash);
    Game moved = game;
    moved.cursorX ^= 1;
    EXPECT_NE(StateHash(moved), hash);
}
