// The inspection of the build, the verdict of a level and the way to the next one.
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

TEST_F(LevelFlow, GroupsStartAtTheLowestRowAndJoinOverTheRingSeamOnly) {
    Game g = ClassicGame(1);
    FillColumn(g, 0, 2, 0, 2);
    Fill(g, 0, 2, 4);
    Fill(g, 0, 5, 3);  // a lone cell over three gaps
    Fill(g, 0, 7, 1);
    Fill(g, 0, 0, 1);  // no seam in the classic tower: two groups
    const auto groups = g.GapGroups(0);
    ASSERT_EQ(groups.size(), 4u);
    EXPECT_EQ(groups[0], (std::vector<Cell>{{0, 0}}));
    EXPECT_EQ(groups[1], (std::vector<Cell>{{5, 0}, {5, 1}, {5, 2}}));
    EXPECT_EQ(groups[3], (std::vector<Cell>{{2, 2}, {2, 3}}));
    Game ring = EmptyGame(false, 1);
    Fill(ring, 0, 31, 1);
    Fill(ring, 0, 0, 1);
    ASSERT_EQ(ring.GapGroups(0).size(), 1u);
    EXPECT_EQ(ring.GapGroups(0)[0].size(), 2u);
}

TEST_F(LevelFlow, EndingTheBuildDropsWhatHangsOnEveryTowerWithCappedBursts) {
    Game g = ClassicGame(2);
    Fill(g, 0, 0, 1);
    FillColumn(g, 1, 4, 1, 14);
    Fill(g, 1, 5, 1);  // 14 cells over one group of two gaps: 42 sparks, capped at 40
    g.Update(g.buildLeft - 0.5f);
    EXPECT_EQ(g.phase, Phase::Build);
    g.Update(0.6f);  // the clock runs out: no bonus
    EXPECT_EQ(std::make_tuple(g.phase, g.buildLeft, g.stats.gapCells, g.stats.dropped, g.stats.timeBonus),
              std::make_tuple(Phase::Inspect, 0.0f, 1 + 2, 1 + 14, 0));
    EXPECT_EQ(CountCells(g, 0) + CountCells(g, 1), 0);
    const std::vector<Event> events = g.TakeEvents();
    ASSERT_EQ(events.size(), 4u);  // bursts, then sound and message
    EXPECT_EQ(std::make_tuple(events[0].count, events[1].tower, events[1].count, events[2].sfx),
              std::make_tuple(3, 1, 40, Sfx::Collapse));
    EXPECT_EQ(events[3].text, "Bauabnahme: 15 Felder eingestürzt");
    EXPECT_FLOAT_EQ(g.inspectEndAt, g.clock + 1.8f);
}

TEST_F(LevelFlow, ACleanWallIsShortlyInspectedAndEarlyEndsEarnTwoPerWholeSecondOverOne) {
    for (const auto& [left, bonus] : {std::pair<float, int>{1.0f, 0}, {1.5f, 2}, {10.9f, 20}, {0.5f, 0}}) {
        Game g = ClassicGame(1);
        g.clock = 10.0f;
        g.buildLeft = left;
        g.EndBuild(true);
        EXPECT_EQ(std::make_tuple(g.stats.timeBonus, g.score), std::make_tuple(bonus, bonus)) << left;
        EXPECT_EQ(Texts(g.TakeEvents(), Event::Say), std::vector<std::string>{"Bauabnahme: sauber gemauert!"});
        EXPECT_FLOAT_EQ(g.inspectEndAt, 10.9f);
    }
    Game g = ClassicGame(1);
    g.phase = Phase::Attack;
    g.EndBuild(true);  // only the build can end
    EXPECT_EQ(g.phase, Phase::Attack);
    EXPECT_TRUE(g.TakeEvents().empty());
}

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
