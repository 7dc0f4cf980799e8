// What a ball does to the wall, the holes it tears and their fuse.
#include "AttackFixture.h"

namespace torvane::testing {
namespace {

class ImpactFixture : public AttackFixture {
protected:
    int base = 0; // an I on row 0, columns 0..3
    int load = 0; // an O on top of its left half

    void SetUp() override {
        AttackFixture::SetUp();
        base = Put('I', Row(0, 0, 4));
        load = Put('O', {{0, 1}, {1, 1}, {0, 2}, {1, 2}});
        QuietAttack();
        game.supply = {'T'};
    }
};

using ImpactTopLayer = AttackFixture;

TEST_F(ImpactTopLayer, APieceWithoutLoadComesBackAndOpensNoHole) {
    Put('I', Row(0, 0, 4));
    const int top = Put('L', {{0, 1}, {1, 1}, {2, 1}, {2, 2}});
    QuietAttack();
    game.supply = {'T', 'S'};
    const int lost = game.stats.lost;
    HitNow(top);
    EXPECT_EQ(game.stats.lost, lost + 4);
    EXPECT_EQ(game.supply, (std::vector<char>{'T', 'L', 'S'}));
    EXPECT_TRUE(game.holes.empty());
    EXPECT_EQ(game.pieces.count(top), 0u);
    const auto events = game.TakeEvents();
    EXPECT_TRUE(HasText(events, "Teil zurück"));
    EXPECT_EQ(CountSound(events, Sfx::Bell), 0);
    EXPECT_EQ(CountSound(events, Sfx::Impact), 1);
}

using ImpactHole = ImpactFixture;

TEST_F(ImpactHole, BellsStrikeEachSecondAndTheLoadFallsAtThree) {
    HitNow(base);
    const float opened = game.clock;
    ASSERT_EQ(game.holes.size(), 1u);
    EXPECT_FLOAT_EQ(game.holes[0].collapseAt, opened + 3.0f);
    EXPECT_EQ(Sorted(game.holes[0].cells), Sorted(Row(0, 0, 4)));
    EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Bell), 1);
    EXPECT_EQ(game.focus, (Focus{Focus::Hole, game.holes[0].id}));
    AdvanceTo(opened + 0.99f);
    EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Bell), 0);
    AdvanceTo(opened + 1.0f);
    EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Bell), 1);
    AdvanceTo(opened + 2.0f);
    EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Bell), 1);
    AdvanceTo(opened + 2.99f);
    EXPECT_EQ(game.holes.size(), 1u);
    EXPECT_EQ(game.pieces.count(load), 1u);
    AdvanceTo(opened + 3.0f);
    EXPECT_TRUE(game.holes.empty());
    EXPECT_EQ(game.pieces.count(load), 0u);
    EXPECT_EQ(game.stats.lost, 4 + 4);
    const auto events = game.TakeEvents();
    EXPECT_EQ(CountSound(events, Sfx::Bell), 0); // three strokes, no more
    EXPECT_EQ(CountSound(events, Sfx::Collapse), 1);
    EXPECT_TRUE(HasText(events, "Eingestürzt: 4 Felder"));
}

TEST_F(ImpactHole, AHoleFilledAtTwoPointNineSecondsIsHeld) {
    HitNow(base);
    const float opened = game.clock;
    const int score = game.score;
    AdvanceTo(opened + 2.9f);
    game.DebugPlace(0, 'I', Row(0, 0, 4));
    game.undo.valid = true;
    game.TakeEvents();
    game.Update(0.01f);
    EXPECT_TRUE(game.holes.empty());
    EXPECT_EQ(game.pieces.count(load), 1u);
    EXPECT_EQ(game.score, score + 100);
    EXPECT_EQ(game.stats.repairScore, 100);
    EXPECT_EQ(game.stats.held, 1);
    EXPECT_FALSE(game.undo.valid);
    const auto events = game.TakeEvents();
    EXPECT_TRUE(HasText(events, "Gehalten! +100"));
    EXPECT_EQ(CountSound(events, Sfx::Reward), 1);
    AdvanceTo(opened + 3.5f);
    EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Collapse), 0);
}

TEST_F(ImpactHole, APartlyFilledHoleDropsOnlyTheOpenColumns) {
    Put('2', {{2, 1}, {3, 1}}); // load over the right half too
    HitNow(base);
    game.DebugPlace(0, '2', Row(0, 0, 2)); // fill the left half only
    const float opened = game.holes[0].openedAt;
    AdvanceTo(opened + 3.0f);
    EXPECT_EQ(game.pieces.count(load), 1u); // its columns were filled
    EXPECT_EQ(game.CellAt(0, 2, 1), 0);
    EXPECT_EQ(game.CellAt(0, 3, 1), 0);
    EXPECT_TRUE(HasText(game.TakeEvents(), "Eingestürzt: 2 Felder"));
}

TEST_F(ImpactHole, AHoleWhoseLoadHasGoneIsDroppedWithoutPoints) {
    HitNow(base);
    for (const Cell& c : std::vector<Cell>{{0, 1}, {1, 1}, {0, 2}, {1, 2}}) game.RemoveCell(0, c.x, c.y);
    const int score = game.score;
    game.TakeEvents();
    game.Update(0.01f);
    EXPECT_TRUE(game.holes.empty());
    EXPECT_EQ(game.score, score);
    EXPECT_EQ(game.stats.held, 0);
    EXPECT_TRUE(game.TakeEvents().empty());
}

TEST_F(ImpactHole, AFreshHoleTakesTheFocusFromATargetButNotFromAHole) {
    const int other = Put('I', Row(8, 0, 4));
    Put('1', {{8, 1}});
    game.FireAt(base);
    AdvanceTo(1.0f);
    game.FireAt(other);
    game.focus = Focus{Focus::Target, game.targets[1].id};
    AdvanceTo(game.targets[0].hitAt);
    ASSERT_EQ(game.holes.size(), 1u);
    const Focus first{Focus::Hole, game.holes[0].id};
    EXPECT_EQ(game.focus, first);
    AdvanceTo(game.targets[0].hitAt);
    ASSERT_EQ(game.holes.size(), 2u);
    EXPECT_EQ(game.focus, first);
}

using ImpactPrep = ImpactFixture;

TEST_F(ImpactPrep, AFullPrepReplacesAtOnce) {
    const int score = game.score;
    const int shot = game.nextShotId;
    game.FireAt(base);
    game.targets[0].preps.push_back(Prep{'I', Row(0, 0, 4)});
    game.undo = UndoRecord{};
    game.undo.valid = true;
    game.undo.target = shot;
    AdvanceTo(game.targets[0].hitAt);
    EXPECT_TRUE(game.holes.empty());
    EXPECT_FALSE(game.undo.valid);
    EXPECT_EQ(game.score, score + 4 * 10 + 150);
    EXPECT_EQ(game.stats.held, 1);
    EXPECT_EQ(game.supply, (std::vector<char>{'T', 'I'}));
    for (const Cell& c : Row(0, 0, 4)) EXPECT_NE(game.CellAt(0, c.x, c.y), 0);
    const auto events = game.TakeEvents();
    EXPECT_TRUE(HasText(events, "Sofort ersetzt! +150"));
    EXPECT_EQ(CountSound(events, Sfx::Bell), 0);
    EXPECT_EQ(CountSound(events, Sfx::Reward), 1);
}

TEST_F(ImpactPrep, AHalfPrepStandsAndTheHoleKeepsTheRest) {
    Put('2', {{2, 1}, {3, 1}}); // the open half carries a load too
    const int score = game.score;
    game.FireAt(base);
    game.targets[0].preps.push_back(Prep{'2', Row(0, 0, 2)});
    AdvanceTo(game.targets[0].hitAt);
    EXPECT_EQ(game.score, score + 2 * 10);
    EXPECT_EQ(game.stats.held, 0);
    ASSERT_EQ(game.holes.size(), 1u);
    EXPECT_EQ(game.holes[0].cells.size(), 4u);
    EXPECT_EQ(Sorted(game.OpenCells(game.holes[0])), Sorted(Row(2, 0, 2)));
    EXPECT_FALSE(HasText(game.TakeEvents(), "Sofort ersetzt! +150"));
}

TEST_F(ImpactPrep, APrepWhosePlaceIsTakenComesBack) {
    game.FireAt(base);
    game.targets[0].preps.push_back(Prep{'2', Row(4, 0, 2)});
    game.DebugPlace(0, '2', Row(4, 0, 2));
    AdvanceTo(game.targets[0].hitAt);
    EXPECT_EQ(std::count(game.supply.begin(), game.supply.end(), '2'), 1);
}

TEST_F(ImpactPrep, APieceGoneBeforeTheImpactLeavesOnlyThePreps) {
    game.FireAt(base);
    game.targets[0].preps.push_back(Prep{'2', {{2, 0}, {3, 0}}});
    for (const Cell& c : Row(0, 0, 4)) game.RemoveCell(0, c.x, c.y);
    const int lost = game.stats.lost;
    game.TakeEvents();
    AdvanceTo(game.targets[0].hitAt);
    EXPECT_EQ(game.supply, (std::vector<char>{'T'}));
    EXPECT_EQ(game.stats.lost, lost);
    EXPECT_NE(game.CellAt(0, 2, 0), 0);
    const auto events = game.TakeEvents();
    EXPECT_EQ(CountSound(events, Sfx::Impact), 1);
    const auto burst = std::find_if(events.begin(), events.end(), [](const Event& e) { return e.kind == Event::Burst; });
    ASSERT_NE(burst, events.end());
    EXPECT_EQ(burst->count, 6);
    EXPECT_EQ(burst->cells, Row(0, 0, 4));
}

// The letters that come back for a piece of `type` that has kept `cells`.
std::vector<char> Returned(Game& game, char type, const std::vector<Cell>& cells,
                           const std::vector<Cell>& prep = {}) {
    const int id = game.nextPieceId;
    game.DebugPlace(0, type, cells);
    game.supply.clear();
    game.FireAt(id);
    if (!prep.empty()) game.targets.back().preps.push_back(Prep{'2', prep});
    game.Update(game.targets.back().hitAt - game.clock);
    std::vector<char> back = game.supply;
    if (!prep.empty()) back.erase(std::remove(back.begin(), back.end(), '2'), back.end());
    return back;
}

using ImpactGiveBack = AttackFixture;

TEST_F(ImpactGiveBack, LettersFollowWhatIsLeftOfThePiece) {
    QuietAttack();
    EXPECT_EQ(Returned(game, 'I', Row(0, 0, 3)), (std::vector<char>{'1', '1', '1'}));
    EXPECT_EQ(Returned(game, 'I', Row(0, 1, 2)), (std::vector<char>{'2'}));
    EXPECT_EQ(Returned(game, 'I', {{0, 2}, {2, 2}}), (std::vector<char>{'1', '1'}));
    EXPECT_EQ(Returned(game, '2', Row(0, 3, 2)), (std::vector<char>{'2'}));
    EXPECT_EQ(Returned(game, '2', {{0, 4}}), (std::vector<char>{'1'}));
}

TEST_F(ImpactGiveBack, TheNeighbourTestDoesNotWrapButAWholeBarDoes) {
    QuietAttack();
    EXPECT_EQ(Returned(game, 'I', {{31, 0}, {0, 0}}), (std::vector<char>{'1', '1'}));
    EXPECT_EQ(Returned(game, '2', {{31, 1}, {0, 1}}), (std::vector<char>{'2'}));
}

TEST_F(ImpactGiveBack, AnInstantReplacementReturnsARestAsSingleCells) {
    QuietAttack();
    const std::vector<char> back = Returned(game, 'I', Row(0, 0, 2), Row(0, 0, 2));
    EXPECT_EQ(back, (std::vector<char>{'1', '1'}));
    EXPECT_EQ(game.stats.held, 1);
}

} // namespace
} // namespace torvane::testing
