// The verdict of a level and the way to the next one.
#include "RulesTestSupport.h"

using namespace torvane;
using namespace torvane::testing_support;

namespace {

class LevelFlow : public AttackFixture {
protected:
    // Raises `count` columns from `first` (wrapped) to the defence line.
    void RaiseToLine(int first, int count) {
        for (int i = 0; i < count; ++i) {
            std::vector<Cell> column;
            for (int y = 0; y < game.config.line; ++y) column.push_back(Cell{game.WrapX(first + i), y});
            Put('I', column);
        }
    }
};

TEST_F(LevelFlow, HalfTheSectorPassesAtFiftyAndThreeOfEightFail) {
    RaiseToLine(28, 4);  // four of the eight north columns
    RaiseToLine(10, 6);  // outside the sector: does not count
    game.phase = Phase::Attack;
    game.level = 3;
    game.EndAttack();
    EXPECT_EQ(game.stats.sectorPct, (std::vector<int32_t>{50}));
    EXPECT_TRUE(game.stats.passed);
    EXPECT_EQ(game.stats.levelBonus, 300);  // a hundred a level
    EXPECT_EQ(game.phase, Phase::Eval);
    game.DebugClearTowers();
    RaiseToLine(0, 3);
    game.phase = Phase::Attack;
    game.EndAttack();
    EXPECT_EQ(game.stats.overallPct, 38);
    EXPECT_EQ(game.phase, Phase::Over);
}

TEST_F(LevelFlow, OneMorePieceForEachFourCellsLostAndTheWallStays) {
    const int id = Put('I', Row(0, 0, 4));
    for (const auto& [lost, bonus] : {std::pair<int, int>{0, 0}, {1, 1}, {4, 1}, {5, 2}}) {
        game.level = 1;
        game.phase = Phase::Eval;
        game.stats.lost = lost;
        game.NextLevel();
        EXPECT_EQ(static_cast<int>(game.supply.size()), ConfigFor(2).pieces + bonus) << lost;
    }
    EXPECT_EQ(game.pieces.count(id), 1u);
    LevelPack pack;
    pack.levels.resize(3);
    SetActivePack(&pack);
    EXPECT_FALSE(game.LastLevel());
    game.level = 3;
    EXPECT_TRUE(game.LastLevel());
}

} // namespace
