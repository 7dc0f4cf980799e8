#include "RulesTestSupport.h"

#include "game/Pieces.h"

#include <cmath>
#include <random>
#include <set>

using namespace torvane;
using namespace torvane::testing_support;

namespace {
float Scaled(uint32_t u) { return static_cast<float>(std::ldexp(static_cast<double>(u), -32)); }
} // namespace

class GameRandom : public RulesTest {};

TEST_F(GameRandom, FirstTenValuesAreTheStandardTwisterTimesTwoToTheMinus32) {
    Game g(1);
    g.rng.seed(5489);
    std::mt19937 reference(5489);
    for (int i = 0; i < 10; ++i) EXPECT_FLOAT_EQ(g.Random(), Scaled(reference())) << "draw " << i;
}

TEST_F(GameRandom, ShuffleIsFisherYatesFromTheBackAndBagsHoldEachShapeOnce) {
    Game g(1);
    g.rng.seed(99);
    std::vector<char> list = {'a', 'b', 'c', 'd', 'e', 'f'}, expected = list;
    g.Shuffle(list);
    std::mt19937 reference(99);
    for (int i = 5; i >= 1; --i)
        std::swap(expected[i], expected[std::min(i, static_cast<int>(static_cast<float>(i + 1) * Scaled(reference())))]);
    EXPECT_EQ(list, expected);
    EXPECT_EQ(g.rng(), reference());  // both engines drew five numbers
    GetSettings().classic = 1;
    for (unsigned seed = 1; seed <= 10; ++seed) {
        Game c(seed);
        c.StartLevel(7);  // 87 pieces: twelve whole bags and three more
        ASSERT_EQ(static_cast<int>(c.supply.size()), c.config.pieces);
        for (size_t start = 0; start + 7 <= c.supply.size(); start += 7) {
            const std::string bag(c.supply.begin() + start, c.supply.begin() + start + 7);
            EXPECT_EQ(std::set<char>(bag.begin(), bag.end()).size(), 7u) << bag;
            EXPECT_EQ(bag.find_first_not_of(kTetrominoes), std::string::npos) << bag;
        }
    }
}

TEST(PiecesShapes, RotationsAreNormalisedQuarterTurnsModuloFour) {
    EXPECT_EQ(Rotated('I', 1), (std::vector<Cell>{{0, 3}, {0, 2}, {0, 1}, {0, 0}}));
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

class GameGeometry : public RulesTest {};

TEST_F(GameGeometry, WrapAndCentresOnTheRingOnly) {
    Game ring = RingGame(1);
    EXPECT_EQ(ring.WrapX(-1), 31);
    EXPECT_EQ(ring.WrapX(-65), 31);
    EXPECT_FLOAT_EQ(ring.WrapDiff(17.0f), -15.0f);
    EXPECT_FLOAT_EQ(ring.WrapDiff(16.0f), -16.0f);  // the half rounds away from zero
    EXPECT_FLOAT_EQ(ring.WrapDiff(-16.0f), 16.0f);
    EXPECT_FLOAT_EQ(ring.ColumnCentre({{30, 0}, {31, 0}, {0, 0}}), 31.5f);
    EXPECT_TRUE(ring.Free(0, BaseShape('I'), 30, 13));  // over the seam
    Fill(ring, 0, 1, 13);
    EXPECT_FALSE(ring.Free(0, BaseShape('I'), 30, 13));
    Game classic = ClassicGame(1);
    EXPECT_EQ(classic.WrapX(32), 32);
    EXPECT_FLOAT_EQ(classic.ColumnCentre({{7, 0}, {0, 0}}), 4.0f);
    EXPECT_FALSE(classic.Free(0, BaseShape('I'), 5, 13));  // leaves the tower
    EXPECT_FALSE(classic.Free(0, Rotated('I', 1), 0, -1));
    EXPECT_TRUE(classic.Free(0, Rotated('I', 1), 0, 12));  // may reach over the top, but is not inside
    EXPECT_FALSE(classic.Inside(Rotated('I', 1), 12));
}

TEST_F(GameGeometry, TopsAndFullRows) {
    Game g = ClassicGame(1);
    FillColumn(g, 0, 3, 0, 2);
    FillColumn(g, 0, 3, 3, 10);  // a gap at row 2
    EXPECT_EQ(g.ColumnTop(0, 3), 10);
    EXPECT_EQ(g.EvalTop(0, 3), 2);  // in the build the gap counts
    g.phase = Phase::Attack;
    EXPECT_EQ(g.EvalTop(0, 3), 10);
    for (int x = 0; x < 8; ++x)
        if (x != 3) FillColumn(g, 0, x, 0, 2);
    EXPECT_EQ(g.FullRows(0), 2);
    g.RemoveCell(0, 5, 0);
    EXPECT_EQ(g.FullRows(0), 1);
}

class GameShares : public RulesTest {};

TEST_F(GameShares, PercentagesRoundHalvesUpAndPoolAllTowers) {
    Game g = ClassicGame(3);  // two towers of 10 columns, line 7
    g.phase = Phase::Attack;
    for (int x = 0; x < 10; ++x) FillColumn(g, 0, x, 0, 7);
    FillColumn(g, 1, 0, 0, 7);
    FillColumn(g, 1, 1, 0, 6);  // one short of the line
    EXPECT_EQ(g.PctAbove(0), 100);
    EXPECT_EQ(g.PctAbove(1), 10);
    EXPECT_EQ(g.OverallPct(), 55);  // 11 of 20 pooled
    EXPECT_FALSE(g.LineComplete());
    Game one = ClassicGame(1);  // 8 columns, line 6
    one.phase = Phase::Attack;
    for (int x = 0; x < 3; ++x) FillColumn(one, 0, x, 0, 6);
    EXPECT_EQ(one.PctAbove(0), 38);  // 37.5
}

TEST_F(GameShares, SectorsDecideWhichColumnsCountAndWhichAreActive) {
    Game g = RingGame(3);  // north 28..3 and south 12..19, line 6
    GetSettings().difficulty = 0;
    EXPECT_FALSE(g.InActiveSector(0));  // no sector is active in the build
    g.phase = Phase::Attack;
    for (int x = 28; x < 36; ++x) FillColumn(g, 0, x % 32, 0, 6);
    FillColumn(g, 0, 8, 0, 6);  // outside every sector
    EXPECT_EQ(g.SectorPct(0), 100);
    EXPECT_EQ(g.SectorPct(1), 0);
    EXPECT_EQ(g.OverallPct(), 50);
    EXPECT_TRUE(g.IsAttackedColumn(3));
    EXPECT_FALSE(g.IsAttackedColumn(4));
    g.wave = 1;
    EXPECT_FALSE(g.SectorActive(0));
    EXPECT_TRUE(g.InActiveSector(16));
    EXPECT_EQ(g.WaveSectorCentre(), 16);
    GetSettings().difficulty = 1;  // all directions mixed
    EXPECT_TRUE(g.SectorActive(0));
    EXPECT_EQ(g.WaveSectorCentre(), -1);
}

TEST_F(GameShares, TheDefenceLineIsPraisedOnceWhenItFirstStands) {
    Game g = ClassicGame(1);
    for (int x = 0; x < 8; ++x) FillColumn(g, 0, x, 0, x == 7 ? 5 : 6);
    g.Placed(0, {});
    EXPECT_TRUE(Texts(g.TakeEvents(), Event::Say).empty());
    Fill(g, 0, 7, 5);
    g.Placed(0, {{7, 5}});
    g.Placed(0, {});
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say), std::vector<std::string>{"Verteidigungslinie steht!"});
}
