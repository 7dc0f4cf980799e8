// Goals, the fit of a piece, and the two ways of placing in the attack.
#include "RulesTestSupport.h"

using namespace torvane;
using namespace torvane::testing_support;

namespace {

class RepairFixture : public AttackFixture {
protected:
    void SetUp() override {
        AttackFixture::SetUp();
        QuietAttack();
    }
    Focus AddHole(const std::vector<Cell>& cells, float collapseAt = 3.0f) {
        game.holes.push_back(Hole{game.nextShotId++, 0, cells, 0.0f, collapseAt, 0});
        return Focus{Focus::Hole, game.holes.back().id};
    }
    // A ball in the air at a new piece.
    Focus AddTarget(char type, const std::vector<Cell>& cells, float hitAt = 4.0f) {
        game.FireAt(Put(type, cells));
        game.targets.back().hitAt = hitAt;
        game.TakeEvents();
        return Focus{Focus::Target, game.targets.back().id};
    }
};

using RepairTest = RepairFixture;

TEST_F(RepairTest, LowestRowThenLeftmostColumnAndTheSeamRanksAsLeftmost) {
    EXPECT_EQ(game.RepairFit('1', AddHole({{3, 5}, {9, 2}})), (std::vector<Cell>{{9, 2}}));
    EXPECT_EQ(Sorted(game.RepairFit('2', AddHole({{5, 3}, {5, 4}}))), (std::vector<Cell>{{5, 3}, {5, 4}}));
    EXPECT_EQ(Sorted(game.RepairFit('2', AddHole({{30, 2}, {31, 2}, {0, 2}}))), (std::vector<Cell>{{0, 2}, {31, 2}}));
    const Focus hole = AddHole(Row(5, 6, 3));
    EXPECT_TRUE(game.RepairFit('O', hole).empty());  // nothing may hang over the goal
    EXPECT_TRUE(game.RepairFit(0, hole).empty());
    EXPECT_TRUE(game.RepairFit('1', Focus{Focus::Hole, 999}).empty());
    const Focus target = AddTarget('I', Row(0, 0, 4));
    game.FindTarget(target.id)->preps.push_back(Prep{'2', Row(0, 0, 2)});
    EXPECT_EQ(Sorted(game.RepairFit('2', target)), Sorted(Row(2, 0, 2)));  // a prep covers part of a target
}

TEST_F(RepairTest, BurningHolesComeFirstThenTargetsByImpactAndSwitchingWraps) {
    const Focus late = AddHole({{1, 1}}, 5.0f);
    const Focus soon = AddHole({{2, 1}}, 3.0f);
    const Focus second = AddTarget('2', Row(0, 0, 2), 2.0f);
    const Focus first = AddTarget('2', Row(4, 0, 2), 1.0f);
    AddHole({{4, 0}}, 1.0f);  // its cell is occupied: nothing open, not listed
    EXPECT_EQ(game.FocusList(), (std::vector<Focus>{soon, late, first, second}));
    game.focus = soon;
    game.SwitchFocus(-1);
    EXPECT_EQ(game.focus, second);
    game.SwitchFocus(1);
    EXPECT_EQ(game.focus, soon);
    GetSettings().difficulty = 2;  // no preps: targets are no goals
    EXPECT_EQ(game.FocusList(), (std::vector<Focus>{soon, late}));
    game.holes.erase(game.holes.begin() + 1);
    game.ValidateFocus();
    EXPECT_EQ(game.focus, late);
}

TEST_F(RepairTest, RefusalsSayWhyHolesEarnTenACellPrepsOnlyAtTheImpact) {
    game.supply = {'1'};
    game.focus = AddHole({{20, 1}});
    game.viewKnown = true;
    game.viewCentre = 2.0f;
    game.Repair();
    EXPECT_TRUE(HasText(game.TakeEvents(), "Turm dreht noch"));
    EXPECT_FALSE(Occupied(game, 0, 20, 1));
    game.supply.clear();
    game.Repair();
    const auto events = game.TakeEvents();
    EXPECT_TRUE(HasText(events, "Keine Teile mehr"));
    EXPECT_EQ(Sounds(events), std::vector<Sfx>{Sfx::Deny});
    game.holes.clear();
    game.viewKnown = false;
    game.focus = AddHole({{5, 3}, {5, 4}});
    game.supply = {'2', '2', 'T'};
    game.Act(Action::Place);
    EXPECT_TRUE(Occupied(game, 0, 5, 3) && Occupied(game, 0, 5, 4));  // the automatic way has no undo
    EXPECT_EQ(std::make_tuple(game.score, game.stats.repairScore, game.undo.valid), std::make_tuple(20, 20, false));
    const Focus first = AddTarget('2', Row(0, 0, 2), 2.0f);
    const Focus next = AddTarget('1', {{6, 0}}, 3.0f);
    game.focus = first;
    game.Act(Action::Rotate);  // a fully prepped target hands the focus on
    EXPECT_EQ(std::make_tuple(game.FindTarget(first.id)->preps.size(), game.score, game.focus),
              std::make_tuple(1u, 20, next));
    game.Act(Action::Place);
    EXPECT_TRUE(HasText(game.TakeEvents(), "Dieses Teil passt hier nicht"));
    EXPECT_EQ(game.supply, (std::vector<char>{'T'}));
}

TEST_F(RepairTest, TheBotTriesEveryPieceThenGoesOnToTheNextGoal) {
    const Focus first = AddHole({{5, 3}});
    const Focus second = AddHole({{9, 3}}, 4.0f);
    game.supply = {'O', 'T'};  // neither fits a single cell
    game.focus = first;
    AutoPlayer bot;
    for (int step = 0; step < 2; ++step) bot.Step(game);
    EXPECT_EQ(game.focus, first);
    bot.Step(game);
    EXPECT_EQ(game.focus, second);
}

TEST_F(RepairTest, PlacesSupportedPiecesAndPrepsAndTheCursorGoesToTheFit) {
    GetSettings().repair_mode = 0;
    game.supply = {'2', '2', '1', '2'};
    game.cursorX = 10;
    game.cursorY = game.rotation = 0;
    game.Act(Action::Place);
    EXPECT_EQ(std::make_tuple(Occupied(game, 0, 11, 0), game.score, game.undo.points), std::make_tuple(true, 20, 20));
    game.Act(Action::Undo);  // placing in the attack can be taken back too
    EXPECT_EQ(std::make_tuple(Occupied(game, 0, 11, 0), game.score), std::make_tuple(false, 0));
    game.Act(Action::Place);
    const Focus target = AddTarget('2', Row(20, 0, 2));
    game.cursorX = 20;
    game.cursorY = 0;
    game.PlaceFree();
    ASSERT_EQ(game.FindTarget(target.id)->preps.size(), 1u);
    EXPECT_EQ(std::make_tuple(game.undo.target, game.score), std::make_tuple(target.id, 20));
    game.cursorY = 3;  // floating
    game.PlaceFree();
    EXPECT_TRUE(HasText(game.TakeEvents(), "Passt hier nicht"));
    game.selected = 1;
    game.focus = Focus{Focus::Hole, 999};  // gone: the most urgent goal takes its place
    AddHole({{5, 3}, {5, 4}});
    game.cursorY = 0;
    game.CursorToFocus();
    EXPECT_EQ(std::make_tuple(game.rotation, game.cursorX, game.cursorY), std::make_tuple(1, 5, 3));
}

} // namespace
