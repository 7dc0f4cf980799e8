// The verdict of a level and the way to the next one.
#include "AttackFixture.h"

namespace torvane::testing {
namespace {

class LevelFlowFixture : public AttackFixture {
protected:
    // Raises columns first .. first + count - 1 (wrapped) to the Defence Line.
    void RaiseToLine(int first, int count) {
        for (int i = 0; i < count; ++i) {
            std::vector<Cell> column;
            for (int y = 0; y < game.config.line; ++y) column.push_back(Cell{game.WrapX(first + i), y});
            Put('I', column);
        }
    }
};

using LevelVerdict = LevelFlowFixture;

TEST_F(LevelVerdict, HalfOfTheSectorAtTheLinePassesAtFifty) {
    ASSERT_EQ(game.config.need, 50);
    RaiseToLine(28, 4); // four of the eight north columns
    RaiseToLine(10, 6); // outside the sector: does not count
    game.phase = Phase::Attack;
    game.level = 3;
    const int score = game.score;
    game.EndAttack();
    EXPECT_EQ(game.stats.overallPct, 50);
    EXPECT_EQ(game.stats.sectorPct, (std::vector<int32_t>{50}));
    EXPECT_EQ(game.stats.towerPct, (std::vector<int32_t>{50}));
    EXPECT_TRUE(game.stats.passed);
    EXPECT_EQ(game.stats.levelBonus, 300);
    EXPECT_EQ(game.score, score + 300);
    EXPECT_EQ(game.phase, Phase::Eval);
    EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Reward), 1);
}

TEST_F(LevelVerdict, ThreeOfEightFailWithThirtyEight) {
    RaiseToLine(0, 3);
    game.phase = Phase::Attack;
    game.EndAttack();
    EXPECT_EQ(game.stats.overallPct, 38);
    EXPECT_FALSE(game.stats.passed);
    EXPECT_EQ(game.stats.levelBonus, 0);
    EXPECT_EQ(game.phase, Phase::Over);
    EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Collapse), 1);
}

TEST_F(LevelVerdict, TheRoundedShareIsCompared) {
    // 99 of 200 columns is 49.5 percent, rounded to 50.
    game.config.sectors.clear();
    game.config.width = 200;
    game.config.height = 1;
    game.config.line = 1;
    game.config.ring = false;
    game.DebugClearTowers();
    for (int x = 0; x < 99; ++x) Put('1', {{x, 0}});
    game.phase = Phase::Attack;
    game.EndAttack();
    EXPECT_EQ(game.stats.overallPct, 50);
    EXPECT_TRUE(game.stats.passed);
    EXPECT_TRUE(game.stats.sectorPct.empty());
}

class LevelNext : public LevelFlowFixture, public ::testing::WithParamInterface<std::pair<int, int>> {};

TEST_P(LevelNext, OneMorePieceForEachFourCellsLost) {
    const auto [lost, bonus] = GetParam();
    game.phase = Phase::Eval;
    game.stats.lost = lost;
    game.NextLevel();
    EXPECT_EQ(game.level, 2);
    EXPECT_EQ(game.phase, Phase::Build);
    EXPECT_EQ(game.bonusPieces, 0);
    EXPECT_EQ(static_cast<int>(game.supply.size()), ConfigFor(2).pieces + bonus);
    EXPECT_EQ(game.stats.lost, 0);
}

INSTANTIATE_TEST_SUITE_P(Bonus, LevelNext,
                         ::testing::Values(std::make_pair(0, 0), std::make_pair(1, 1), std::make_pair(4, 1),
                                           std::make_pair(5, 2)));

using LevelFlow = LevelFlowFixture;

TEST_F(LevelFlow, TheWallOfTheLastLevelStays) {
    const int id = Put('I', Row(0, 0, 4));
    game.phase = Phase::Eval;
    game.NextLevel();
    EXPECT_EQ(game.pieces.count(id), 1u);
}

TEST_F(LevelFlow, APackOfThreeEndsAtItsThirdLevel) {
    LevelPack pack;
    pack.name = "Drei";
    pack.levels.resize(3);
    SetActivePack(&pack);
    for (int level : {1, 2, 3, 4}) {
        game.level = level;
        EXPECT_EQ(game.LastLevel(), level >= 3) << level;
    }
    SetActivePack(nullptr);
    game.level = 50;
    EXPECT_FALSE(game.LastLevel());
}

TEST_F(LevelFlow, ANewGameInMidAttackClearsTheAir) {
    game.level = 4;
    game.score = 900;
    game.phase = Phase::Attack;
    const int id = Put('I', Row(0, 0, 4));
    game.FireAt(id);
    game.holes.push_back(Hole{});
    const size_t queued = game.events.size();
    game.NewGame();
    EXPECT_EQ(game.level, 1);
    EXPECT_EQ(game.score, 0);
    EXPECT_EQ(game.phase, Phase::Build);
    EXPECT_TRUE(game.targets.empty());
    EXPECT_TRUE(game.holes.empty());
    EXPECT_GT(game.events.size(), queued); // the old events wait to be taken
    EXPECT_EQ(game.events[0].sfx, Sfx::Cannon);
}

TEST_F(LevelFlow, ClearingTheTowersKeepsTheIdCounter) {
    Put('I', Row(0, 0, 4));
    const int next = game.nextPieceId;
    game.DebugClearTowers();
    EXPECT_TRUE(game.pieces.empty());
    EXPECT_EQ(game.nextPieceId, next);
    ASSERT_EQ(game.towers.size(), 1u);
    EXPECT_EQ(game.towers[0].cells.size(), static_cast<size_t>(32 * 14));
    EXPECT_EQ(std::count(game.towers[0].cells.begin(), game.towers[0].cells.end(), 0), 32 * 14);
}

} // namespace
} // namespace torvane::testing
