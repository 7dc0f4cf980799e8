// What a ball does to the wall, the holes it tears and their fuse.
#include "RulesTestSupport.h"

using namespace torvane;
using namespace torvane::testing_support;

namespace {

// An I on row 0, columns 0..3, with an O on its left half, under a quiet attack.
class ImpactFixture : public AttackFixture {
protected:
    int base = 0;
    int load = 0;

    void SetUp() override {
        AttackFixture::SetUp();
        base = Put('I', Row(0, 0, 4));
        load = Put('O', {{0, 1}, {1, 1}, {0, 2}, {1, 2}});
        QuietAttack();
        game.supply = {'T'};
    }
};

using ImpactsTest = ImpactFixture;

TEST_F(ImpactsTest, BellsStrikeEachSecondAndTheLoadHoldsAt2_9AndFallsAt3_0) {
    HitNow(base);
    const float opened = game.clock;
    ASSERT_EQ(game.holes.size(), 1u);
    EXPECT_EQ(Sorted(game.holes[0].cells), Sorted(Row(0, 0, 4)));
    EXPECT_EQ(game.focus, (Focus{Focus::Hole, game.holes[0].id}));
    EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Bell), 1);
    for (float second : {1.0f, 2.0f}) {
        AdvanceTo(opened + second - 0.01f);
        EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Bell), 0);
        AdvanceTo(opened + second);
        EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Bell), 1);
    }
    AdvanceTo(opened + 2.99f);
    EXPECT_EQ(game.pieces.count(load), 1u);
    AdvanceTo(opened + 3.0f);
    EXPECT_EQ(std::make_tuple(game.holes.size(), game.pieces.count(load), game.stats.lost),
              std::make_tuple(0u, 0u, 4 + 4));
    const auto events = game.TakeEvents();
    EXPECT_EQ(Sounds(events), std::vector<Sfx>{Sfx::Collapse});  // three strokes, no more
    EXPECT_TRUE(HasText(events, "Eingestürzt: 4 Felder"));
}

TEST_F(ImpactsTest, AHoleFilledAt2_9SecondsIsHeld) {
    HitNow(base);
    const float opened = game.clock;
    AdvanceTo(opened + 2.9f);
    game.DebugPlace(0, 'I', Row(0, 0, 4));
    game.undo.valid = true;
    game.TakeEvents();
    game.Update(0.01f);
    EXPECT_EQ(std::make_tuple(game.holes.size(), game.score, game.stats.held, game.undo.valid),
              std::make_tuple(0u, 100, 1, false));
    const auto events = game.TakeEvents();
    EXPECT_TRUE(HasText(events, "Gehalten! +100"));
    EXPECT_EQ(Sounds(events), std::vector<Sfx>{Sfx::Reward});
    AdvanceTo(opened + 3.5f);
    EXPECT_EQ(game.pieces.count(load), 1u);
}

TEST_F(ImpactsTest, APartlyFilledHoleDropsOnlyTheOpenColumns) {
    Put('2', {{2, 1}, {3, 1}});
    HitNow(base);
    game.DebugPlace(0, '2', Row(0, 0, 2));
    AdvanceTo(game.holes[0].openedAt + 3.0f);
    EXPECT_EQ(std::make_tuple(game.pieces.count(load), game.CellAt(0, 2, 1)), std::make_tuple(1u, 0));
    EXPECT_TRUE(HasText(game.TakeEvents(), "Eingestürzt: 2 Felder"));
}

TEST_F(ImpactsTest, AHoleOnTheSecondTowerIsThatTowers) {
    Game g = ClassicGame(2);
    const int stem = g.AddPiece(1, 'I', {{0, 0}, {1, 0}, {2, 0}, {3, 0}}, false);
    g.AddPiece(1, 'O', {{0, 1}, {1, 1}, {0, 2}, {1, 2}}, false);
    g.phase = Phase::Announce;
    g.BeginAttack();
    g.FireAt(stem);
    g.Update(g.targets.back().hitAt - g.clock);
    ASSERT_EQ(g.holes.size(), 1u);
    EXPECT_EQ(g.holes[0].tower, 1);
}

TEST_F(ImpactsTest, AFullPrepReplacesAtOnce) {
    game.FireAt(base);
    game.targets[0].preps.push_back(Prep{'I', Row(0, 0, 4)});
    AdvanceTo(game.targets[0].hitAt);  // the hit piece comes back
    EXPECT_EQ(std::make_tuple(game.holes.size(), game.score, game.stats.held, game.supply),
              std::make_tuple(0u, 4 * 10 + 150, 1, std::vector<char>{'T', 'I'}));
    for (const Cell& c : Row(0, 0, 4)) EXPECT_TRUE(Occupied(game, 0, c.x, c.y));
    const auto events = game.TakeEvents();
    EXPECT_TRUE(HasText(events, "Sofort ersetzt! +150"));
    EXPECT_EQ(CountSound(events, Sfx::Bell), 0);
}

TEST_F(ImpactsTest, AHalfPrepStandsAndTheHoleKeepsTheRest) {
    Put('2', {{2, 1}, {3, 1}});
    game.FireAt(base);
    game.targets[0].preps.push_back(Prep{'2', Row(0, 0, 2)});
    AdvanceTo(game.targets[0].hitAt);
    EXPECT_EQ(std::make_tuple(game.score, game.stats.held), std::make_tuple(2 * 10, 0));
    ASSERT_EQ(game.holes.size(), 1u);
    EXPECT_EQ(Sorted(game.OpenCells(game.holes[0])), Sorted(Row(2, 0, 2)));
    EXPECT_FALSE(HasText(game.TakeEvents(), "Sofort ersetzt! +150"));
}

using ImpactGiveBack = AttackFixture;

TEST_F(ImpactGiveBack, LettersFollowWhatIsLeftOfThePieceAndDoNotJoinOverTheSeam) {
    QuietAttack();
    using Case = std::tuple<char, std::vector<Cell>, std::vector<char>>;
    const std::vector<Case> cases = {{'I', Row(0, 0, 3), {'1', '1', '1'}}, {'I', Row(0, 1, 2), {'2'}},
                                     {'I', {{0, 2}, {2, 2}}, {'1', '1'}},  {'2', {{0, 4}}, {'1'}},
                                     {'I', {{31, 5}, {0, 5}}, {'1', '1'}}, {'2', {{31, 6}, {0, 6}}, {'2'}}};
    for (const auto& [type, cells, back] : cases) {
        game.supply.clear();
        HitNow(Put(type, cells));
        EXPECT_EQ(game.supply, back) << type << cells.size();
        EXPECT_TRUE(game.holes.empty());  // nothing rests on it
    }
    const auto events = game.TakeEvents();
    EXPECT_TRUE(HasText(events, "Teil zurück"));
    EXPECT_EQ(CountSound(events, Sfx::Bell), 0);
}

} // namespace
