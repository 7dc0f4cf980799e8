#include "RulesTestSupport.h"

#include "game/Pieces.h"

#include <cmath>
#include <random>

using namespace torvane;
using namespace torvane::testing_support;

namespace {

float Scaled(uint32_t u) { return static_cast<float>(std::ldexp(static_cast<double>(u), -32)); }

} // namespace

class GameRandom : public RulesTest {};

TEST_F(GameRandom, FirstTenValuesFollowTheStandardTwister) {
    Game g(1);
    g.rng.seed(5489);
    std::mt19937 reference(5489);
    for (int i = 0; i < 10; ++i) EXPECT_FLOAT_EQ(g.Random(), Scaled(reference())) << "draw " << i;
    // The standard seeding: the first output for the default seed.
    std::mt19937 fresh(5489);
    EXPECT_EQ(fresh(), 3499211612u);
}

TEST_F(GameRandom, TenThousandthDrawMatchesTheStandardValue) {
    Game g(1);
    g.rng.seed(5489);
    for (int i = 0; i < 9999; ++i) {
        const float r = g.Random();
        ASSERT_GE(r, 0.0f);
        ASSERT_LT(r, 1.0f);
    }
    EXPECT_FLOAT_EQ(g.Random(), Scaled(4123659995u));
}

class GameConstruction : public RulesTest {};

TEST_F(GameConstruction, StandsOnTheTitleWithTheFirstLevelLaid) {
    Game g(42);
    EXPECT_EQ(g.phase, Phase::Title);
    EXPECT_TRUE(g.events.empty());
    EXPECT_EQ(g.level, 1);
    EXPECT_EQ(g.score, 0);
    EXPECT_EQ(g.clock, 0.0f);
    EXPECT_EQ(g.nextShotId, 1);
    EXPECT_EQ(g.wave, -1);
    EXPECT_EQ(g.attackEndAt, -1.0f);
    EXPECT_EQ(g.autoEndAt, -1.0f);
    EXPECT_FALSE(g.undo.valid);
    EXPECT_EQ(g.undo.phase, Phase::Build);
    EXPECT_EQ(g.undo.type, '1');
    // Ring mode: one tower of the ring's size with a ruin and a full supply.
    EXPECT_TRUE(g.config.ring);
    ASSERT_EQ(g.towers.size(), 1u);
    EXPECT_EQ(g.towers[0].cells.size(), 32u * 14u);
    EXPECT_EQ(static_cast<int>(g.supply.size()), g.config.pieces);
    EXPECT_GT(g.nextPieceId, 1);
    EXPECT_EQ(g.buildLeft, g.config.buildTime);
    EXPECT_TRUE(GridMatchesPieces(g));
}

TEST_F(GameConstruction, TheSameSeedLaysTheSameLevelAndADifferentSeedAnother) {
    Game a(7), b(7), c(8);
    EXPECT_EQ(a.towers[0].cells, b.towers[0].cells);
    EXPECT_EQ(a.supply, b.supply);
    EXPECT_TRUE(a.towers[0].cells != c.towers[0].cells || a.supply != c.supply);
}

class GameEvents : public RulesTest {};

TEST_F(GameEvents, TakeEventsMovesTheQueueOut) {
    Game g(1);
    EXPECT_TRUE(g.TakeEvents().empty());
    EXPECT_TRUE(g.TakeEvents().empty());
    g.Say("a");
    g.Sound(Sfx::Whistle, 2.5f);
    g.Banner("b", 3.0f);
    const std::vector<Event> taken = g.TakeEvents();
    ASSERT_EQ(taken.size(), 3u);
    EXPECT_EQ(taken[0].kind, Event::Say);
    EXPECT_EQ(taken[0].text, "a");
    EXPECT_EQ(taken[1].kind, Event::Sound);
    EXPECT_EQ(taken[1].sfx, Sfx::Whistle);
    EXPECT_EQ(taken[1].value, 2.5f);
    EXPECT_EQ(taken[2].kind, Event::Banner);
    EXPECT_EQ(taken[2].value, 3.0f);
    EXPECT_TRUE(g.TakeEvents().empty());
}

TEST_F(GameEvents, DefenceLineIsPraisedOnceWhenItFirstStands) {
    Game g = ClassicGame(1);  // 8 columns, line 6, no sectors
    for (int x = 0; x < 7; ++x) FillColumn(g, 0, x, 0, 6);
    FillColumn(g, 0, 7, 0, 5);
    g.Placed(0, {});
    EXPECT_TRUE(Texts(g.TakeEvents(), Event::Say).empty());
    EXPECT_FALSE(g.lineStood);
    Fill(g, 0, 7, 5);
    g.Placed(0, {{7, 5}});
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say), std::vector<std::string>{"Verteidigungslinie steht!"});
    EXPECT_TRUE(g.lineStood);
    g.Placed(0, {});
    EXPECT_TRUE(Texts(g.TakeEvents(), Event::Say).empty());
}

class GameGeometry : public RulesTest {};

TEST_F(GameGeometry, WrapOnTheRingOnly) {
    Game ring = RingGame(1);
    EXPECT_EQ(ring.WrapX(-1), 31);
    EXPECT_EQ(ring.WrapX(32), 0);
    EXPECT_EQ(ring.WrapX(-65), 31);
    EXPECT_FLOAT_EQ(ring.WrapDiff(17.0f), -15.0f);
    EXPECT_FLOAT_EQ(ring.WrapDiff(16.0f), -16.0f);   // the half rounds away from zero
    EXPECT_FLOAT_EQ(ring.WrapDiff(-16.0f), 16.0f);
    EXPECT_FLOAT_EQ(ring.WrapDiff(-3.5f), -3.5f);
    Game classic = ClassicGame(1);
    EXPECT_EQ(classic.WrapX(-1), -1);
    EXPECT_EQ(classic.WrapX(32), 32);
    EXPECT_FLOAT_EQ(classic.WrapDiff(17.0f), 17.0f);
}

TEST_F(GameGeometry, ColumnCentreAveragesAcrossTheSeam) {
    Game ring = RingGame(1);
    EXPECT_FLOAT_EQ(ring.ColumnCentre({{31, 0}, {0, 0}}), 0.0f);
    EXPECT_FLOAT_EQ(ring.ColumnCentre({{30, 0}, {31, 0}, {0, 0}}), 31.5f);
    EXPECT_FLOAT_EQ(ring.ColumnCentre({{4, 0}, {5, 0}}), 5.0f);
    EXPECT_FLOAT_EQ(ring.ColumnCentre({}), 0.0f);
    Game classic = ClassicGame(1);
    EXPECT_FLOAT_EQ(classic.ColumnCentre({{7, 0}, {0, 0}}), 4.0f);
}

TEST_F(GameGeometry, ColumnTopAndEvalTopAroundAGap) {
    Game g = ClassicGame(1);
    FillColumn(g, 0, 3, 0, 2);
    FillColumn(g, 0, 3, 3, 10);  // gap at row 2, cells up to row 9
    EXPECT_EQ(g.ColumnTop(0, 3), 10);
    EXPECT_EQ(g.EvalTop(0, 3), 2);
    g.phase = Phase::Attack;
    EXPECT_EQ(g.EvalTop(0, 3), 10);
    EXPECT_EQ(g.ColumnTop(0, 4), 0);
    EXPECT_EQ(g.EvalTop(0, 4), 0);
}

TEST_F(GameGeometry, FullRowsCountsOnlyCompleteRows) {
    Game g = ClassicGame(1);
    for (int x = 0; x < 8; ++x) FillColumn(g, 0, x, 0, 2);
    Fill(g, 0, 0, 2);
    EXPECT_EQ(g.FullRows(0), 2);
    g.RemoveCell(0, 5, 0);
    EXPECT_EQ(g.FullRows(0), 1);
}

TEST_F(GameGeometry, FreeAndInside) {
    Game g = ClassicGame(1);  // 8 by 14
    const std::vector<Cell> upright = Rotated('I', 1);
    EXPECT_TRUE(g.Free(0, upright, 0, 12));   // reaches over the top row
    EXPECT_FALSE(g.Inside(upright, 12));
    EXPECT_TRUE(g.Inside(upright, 10));
    EXPECT_TRUE(g.Inside(upright, -20));      // no lower bound
    Fill(g, 0, 0, 12);
    EXPECT_FALSE(g.Free(0, upright, 0, 12));
    EXPECT_FALSE(g.Free(0, upright, 0, -1));  // negative row
    EXPECT_FALSE(g.Free(0, BaseShape('I'), 5, 13));  // leaves the tower on the right
    EXPECT_FALSE(g.Free(0, BaseShape('I'), -1, 13));
    EXPECT_TRUE(g.Free(0, {}, -5, -5));
    Game ring = RingGame(1);
    EXPECT_TRUE(ring.Free(0, BaseShape('I'), 30, 13));  // wraps over the seam
    Fill(ring, 0, 1, 13);
    EXPECT_FALSE(ring.Free(0, BaseShape('I'), 30, 13));
}

class GameShares : public RulesTest {};

TEST_F(GameShares, PctAboveRoundsHalvesUp) {
    Game g = ClassicGame(1);  // 8 counted columns, line 6
    g.phase = Phase::Attack;
    for (int x = 0; x < 3; ++x) FillColumn(g, 0, x, 0, 6);
    EXPECT_EQ(g.PctAbove(0), 38);  // 37.5 rounds up
    FillColumn(g, 0, 3, 0, 6);
    EXPECT_EQ(g.PctAbove(0), 50);
    FillColumn(g, 0, 4, 0, 5);  // one short of the line
    EXPECT_EQ(g.PctAbove(0), 50);
    g.config.sectors = {Sector{0, 0, 'N', "Norden"}};  // a sector holding no column
    EXPECT_EQ(g.PctAbove(0), 0);
    EXPECT_FALSE(g.LineComplete());
}

TEST_F(GameShares, OverallPoolsAllTowers) {
    Game g = ClassicGame(3);  // two towers of 10 columns, line 7
    g.phase = Phase::Attack;
    for (int x = 0; x < 10; ++x) FillColumn(g, 0, x, 0, 7);
    FillColumn(g, 1, 0, 0, 7);
    EXPECT_EQ(g.PctAbove(0), 100);
    EXPECT_EQ(g.PctAbove(1), 10);
    EXPECT_EQ(g.OverallPct(), 55);  // 11 of 20 pooled
    EXPECT_FALSE(g.LineComplete());
    for (int x = 1; x < 10; ++x) FillColumn(g, 1, x, 0, 7);
    EXPECT_TRUE(g.LineComplete());
}

TEST_F(GameShares, SectorsDecideWhichColumnsCount) {
    Game g = RingGame(3);  // sectors north (28..3) and south (12..19), line 6
    g.phase = Phase::Attack;
    for (int x = 28; x < 36; ++x) FillColumn(g, 0, x % 32, 0, 6);
    EXPECT_EQ(g.SectorPct(0), 100);
    EXPECT_EQ(g.SectorPct(1), 0);
    EXPECT_EQ(g.SectorPct(2), 0);
    EXPECT_EQ(g.PctAbove(0), 50);
    EXPECT_EQ(g.OverallPct(), 50);
    EXPECT_TRUE(g.IsAttackedColumn(3));
    EXPECT_FALSE(g.IsAttackedColumn(4));
    EXPECT_FALSE(g.IsAttackedColumn(20));
    FillColumn(g, 0, 8, 0, 6);  // outside every sector: changes nothing
    EXPECT_EQ(g.PctAbove(0), 50);
}

TEST_F(GameShares, ActiveSectorsFollowThePhaseAndTheWaves) {
    Game g = RingGame(3);
    GetSettings().difficulty = 0;  // waves
    EXPECT_FALSE(g.InActiveSector(0));  // build phase: no sector is active
    EXPECT_EQ(g.WaveSectorCentre(), -1);
    g.phase = Phase::Attack;
    g.wave = 1;
    EXPECT_FALSE(g.SectorActive(0));
    EXPECT_TRUE(g.SectorActive(1));
    EXPECT_FALSE(g.SectorActive(2));
    EXPECT_FALSE(g.InActiveSector(0));
    EXPECT_TRUE(g.InActiveSector(16));
    EXPECT_EQ(g.WaveSectorCentre(), 16);
    GetSettings().difficulty = 1;  // mixed
    EXPECT_TRUE(g.SectorActive(0));
    EXPECT_TRUE(g.InActiveSector(0));
    EXPECT_EQ(g.WaveSectorCentre(), -1);
    Game classic = ClassicGame(1);
    EXPECT_TRUE(classic.InActiveSector(3));  // no sectors: every column
}

class GameUpdate : public RulesTest {};

TEST_F(GameUpdate, ClockRunsInBuildAndInspectOnly) {
    Game g = ClassicGame(1);
    g.buildLeft = 10.0f;
    g.Update(0.05f);
    EXPECT_FLOAT_EQ(g.clock, 0.05f);
    EXPECT_FLOAT_EQ(g.buildLeft, 9.95f);
    g.phase = Phase::Announce;
    g.Update(1.0f);
    EXPECT_FLOAT_EQ(g.clock, 0.05f);
    g.phase = Phase::Title;
    g.Update(1.0f);
    EXPECT_FLOAT_EQ(g.clock, 0.05f);
    g.phase = Phase::Inspect;
    g.inspectEndAt = 0.5f;
    g.Update(0.4f);
    EXPECT_EQ(g.phase, Phase::Inspect);
    g.Update(0.05f);
    EXPECT_EQ(g.phase, Phase::Announce);
}

TEST_F(GameUpdate, BuildEndsWhenTheTimeRunsOut) {
    Game g = ClassicGame(1);
    g.buildLeft = 0.08f;
    g.Update(0.05f);
    EXPECT_EQ(g.phase, Phase::Build);
    g.Update(0.05f);
    EXPECT_EQ(g.phase, Phase::Inspect);
    EXPECT_EQ(g.buildLeft, 0.0f);
}
