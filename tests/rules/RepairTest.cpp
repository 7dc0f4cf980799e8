// Goals, the fit of a piece, and the two ways of placing in the attack.
#include "AttackFixture.h"

namespace torvane::testing {
namespace {

class RepairFixture : public AttackFixture {
protected:
    void SetUp() override {
        AttackFixture::SetUp();
        QuietAttack();
    }
    // A hole over empty cells, burning until `collapseAt`.
    Focus AddHole(const std::vector<Cell>& cells, float collapseAt = 3.0f) {
        Hole hole;
        hole.id = game.nextShotId++;
        hole.cells = cells;
        hole.collapseAt = collapseAt;
        game.holes.push_back(hole);
        return Focus{Focus::Hole, hole.id};
    }
    // A ball in the air at a new piece.
    Focus AddTarget(char type, const std::vector<Cell>& cells, float hitAt = 4.0f) {
        const int piece = Put(type, cells);
        game.FireAt(piece);
        game.targets.back().hitAt = hitAt;
        game.TakeEvents();
        return Focus{Focus::Target, game.targets.back().id};
    }
};

using RepairFitting = RepairFixture;

TEST_F(RepairFitting, TheLowestRowWinsThenTheSmallestColumn) {
    EXPECT_EQ(game.RepairFit('1', AddHole(Row(5, 3, 3))), (std::vector<Cell>{{5, 3}}));
    EXPECT_EQ(game.RepairFit('1', AddHole({{3, 5}, {9, 2}})), (std::vector<Cell>{{9, 2}}));
}

TEST_F(RepairFitting, AnUprightBarFillsAColumnHole) {
    EXPECT_EQ(Sorted(game.RepairFit('2', AddHole({{5, 3}, {5, 4}}))), (std::vector<Cell>{{5, 3}, {5, 4}}));
}

TEST_F(RepairFitting, AFitOverTheSeamRanksAsLeftmost) {
    const Focus hole = AddHole({{30, 2}, {31, 2}, {0, 2}});
    EXPECT_EQ(Sorted(game.RepairFit('2', hole)), (std::vector<Cell>{{0, 2}, {31, 2}}));
}

TEST_F(RepairFitting, NothingFitsThatHangsOverTheGoal) {
    const Focus hole = AddHole(Row(5, 3, 3));
    EXPECT_TRUE(game.RepairFit('O', hole).empty());
    EXPECT_TRUE(game.RepairFit(0, hole).empty());
    EXPECT_TRUE(game.RepairFit('1', Focus{}).empty());
    EXPECT_TRUE(game.RepairFit('1', Focus{Focus::Hole, 999}).empty());
}

TEST_F(RepairFitting, APrepCoversPartOfATarget) {
    const Focus target = AddTarget('I', Row(0, 0, 4));
    game.FindTarget(target.id)->preps.push_back(Prep{'2', Row(0, 0, 2)});
    EXPECT_EQ(game.TargetOpen(*game.FindTarget(target.id)), Row(2, 0, 2));
    EXPECT_EQ(Sorted(game.RepairFit('2', target)), Sorted(Row(2, 0, 2)));
}

using RepairFocus = RepairFixture;

TEST_F(RepairFocus, BurningHolesComeFirstThenTargetsByImpact) {
    const Focus late = AddHole({{1, 1}}, 5.0f);
    const Focus soon = AddHole({{2, 1}}, 3.0f);
    const Focus second = AddTarget('2', Row(0, 0, 2), 2.0f);
    const Focus first = AddTarget('2', Row(4, 0, 2), 1.0f);
    AddHole({{4, 0}}, 1.0f); // its cell is occupied: nothing open, not listed
    EXPECT_EQ(game.FocusList(), (std::vector<Focus>{soon, late, first, second}));
    GetSettings().difficulty = 2;
    EXPECT_EQ(game.FocusList(), (std::vector<Focus>{soon, late}));
}

TEST_F(RepairFocus, ValidateKeepsALiveGoalAndReplacesAGoneOne) {
    const Focus a = AddHole({{1, 1}}, 3.0f);
    const Focus b = AddHole({{2, 1}}, 4.0f);
    game.focus = b;
    game.ValidateFocus();
    EXPECT_EQ(game.focus, b);
    game.holes.pop_back();
    game.ValidateFocus();
    EXPECT_EQ(game.focus, a);
    game.holes.clear();
    game.ValidateFocus();
    EXPECT_EQ(game.focus, Focus{});
}

TEST_F(RepairFocus, SwitchingWrapsBothWays) {
    const Focus a = AddHole({{1, 1}}, 3.0f);
    const Focus b = AddHole({{2, 1}}, 4.0f);
    const Focus c = AddHole({{3, 1}}, 5.0f);
    game.focus = a;
    game.SwitchFocus(-1);
    EXPECT_EQ(game.focus, c);
    game.SwitchFocus(1);
    EXPECT_EQ(game.focus, a);
    game.SwitchFocus(1);
    EXPECT_EQ(game.focus, b);
    EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Tick), 3);
    game.holes.clear();
    game.SwitchFocus(1);
    EXPECT_TRUE(game.TakeEvents().empty());
}

TEST_F(RepairFocus, AGoalIsInViewWithinTheTolerance) {
    const Focus hole = AddHole(Row(0, 1, 2)); // centre at column 1.0
    EXPECT_TRUE(game.FocusInView(hole)); // the camera is not known yet
    game.viewKnown = true;
    game.viewCentre = 29.0f; // 4 columns round the seam
    EXPECT_TRUE(game.FocusInView(hole));
    game.viewCentre = 28.9f;
    EXPECT_FALSE(game.FocusInView(hole));
    EXPECT_TRUE(game.FocusInView(Focus{}));
}

using RepairAuto = RepairFixture;

TEST_F(RepairAuto, RefusalsSayWhy) {
    game.supply = {'1'};
    game.Repair();
    auto events = game.TakeEvents();
    EXPECT_TRUE(HasText(events, "Gerade nichts zu reparieren"));
    EXPECT_EQ(CountSound(events, Sfx::Deny), 0);

    game.focus = AddHole({{20, 1}});
    game.viewKnown = true;
    game.viewCentre = 2.0f;
    game.Repair();
    events = game.TakeEvents();
    EXPECT_TRUE(HasText(events, "Turm dreht noch"));
    EXPECT_EQ(game.supply, (std::vector<char>{'1'}));
    EXPECT_EQ(game.CellAt(0, 20, 1), 0);

    game.supply.clear();
    game.Repair();
    events = game.TakeEvents();
    EXPECT_TRUE(HasText(events, "Keine Teile mehr"));
    EXPECT_EQ(CountSound(events, Sfx::Deny), 1);
}

TEST_F(RepairAuto, AHoleIsFilledForTenPointsACell) {
    game.focus = AddHole({{5, 3}, {5, 4}});
    game.supply = {'2', 'T'};
    const int score = game.score;
    game.Act(Action::Place);
    EXPECT_NE(game.CellAt(0, 5, 3), 0);
    EXPECT_NE(game.CellAt(0, 5, 4), 0);
    EXPECT_EQ(game.score, score + 20);
    EXPECT_EQ(game.stats.repairScore, 20);
    EXPECT_EQ(game.supply, (std::vector<char>{'T'}));
    EXPECT_FALSE(game.undo.valid); // the automatic way has no undo
    EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Place), 1);
}

TEST_F(RepairAuto, AFullPrepMovesOnAndAFinishedTargetIsReady) {
    const Focus first = AddTarget('2', Row(0, 0, 2), 2.0f);
    const Focus second = AddTarget('1', {{6, 0}}, 3.0f);
    game.focus = first;
    game.supply = {'2', 'T'};
    game.Act(Action::Rotate);
    ASSERT_EQ(game.FindTarget(first.id)->preps.size(), 1u);
    EXPECT_EQ(game.score, 0); // a prep earns at the impact
    EXPECT_EQ(game.focus, second);
    game.focus = first;
    game.Act(Action::Done);
    EXPECT_TRUE(HasText(game.TakeEvents(), "Ersatz liegt schon bereit"));
    game.focus = second;
    game.Act(Action::Place); // a T has no place in a single cell
    EXPECT_TRUE(HasText(game.TakeEvents(), "Dieses Teil passt hier nicht"));
    EXPECT_EQ(game.supply, (std::vector<char>{'T'}));
}

using RepairActions = RepairFixture;

TEST_F(RepairActions, TheTableDependsOnPhaseAndMode) {
    game.focus = AddHole({{5, 3}});
    game.supply = {'1', '1'};
    GetSettings().repair_mode = 0;
    game.Act(Action::Done); // nothing in free repair
    EXPECT_EQ(game.CellAt(0, 5, 3), 0);
    EXPECT_EQ(game.supply.size(), 2u);
    GetSettings().repair_mode = 1;
    game.Act(Action::Left); // the ring has no second tower to step to
    EXPECT_TRUE(game.TakeEvents().empty());
    game.Act(Action::Done);
    EXPECT_NE(game.CellAt(0, 5, 3), 0);
    game.supply = {'1', '2'};
    game.Act(Action::Cycle);
    EXPECT_EQ(game.selected, 1);
    game.phase = Phase::Eval; // no action outside the build and the attack
    game.TakeEvents();
    game.Act(Action::Cycle);
    EXPECT_EQ(game.selected, 1);
    EXPECT_TRUE(game.TakeEvents().empty());
}

using RepairFree = RepairFixture;

TEST_F(RepairFree, PlacesSupportedPiecesAndPreps) {
    GetSettings().repair_mode = 0;
    game.supply = {'2', '2', '1'};
    game.rotation = 0;
    game.cursorX = 10;
    game.cursorY = 0;
    const int score = game.score;
    game.Act(Action::Place);
    EXPECT_NE(game.CellAt(0, 10, 0), 0);
    EXPECT_NE(game.CellAt(0, 11, 0), 0);
    EXPECT_EQ(game.score, score + 20);
    ASSERT_TRUE(game.undo.valid);
    EXPECT_EQ(game.undo.points, 20);

    const Focus target = AddTarget('2', Row(20, 0, 2));
    game.cursorX = 20;
    game.cursorY = 0;
    game.rotation = 0;
    game.PlaceFree();
    ASSERT_EQ(game.FindTarget(target.id)->preps.size(), 1u);
    EXPECT_EQ(game.undo.target, target.id);
    EXPECT_EQ(game.score, score + 20);

    game.cursorX = 15;
    game.cursorY = 3; // floating
    game.PlaceFree();
    EXPECT_TRUE(HasText(game.TakeEvents(), "Passt hier nicht"));
    EXPECT_EQ(game.supply, (std::vector<char>{'1'}));
}

TEST_F(RepairFree, TheCursorGoesToTheFit) {
    GetSettings().repair_mode = 0;
    game.supply = {'2'};
    game.focus = AddHole({{5, 3}, {5, 4}});
    game.CursorToFocus();
    EXPECT_EQ(game.rotation, 1);
    EXPECT_EQ(game.cursorX, 5);
    EXPECT_EQ(game.cursorY, 3);
}

} // namespace
} // namespace torvane::testing
