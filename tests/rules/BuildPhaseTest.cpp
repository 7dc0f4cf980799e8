#include "RulesTestSupport.h"

#include <cmath>
#include <random>

using namespace torvane;
using namespace torvane::testing_support;

namespace {

float Draw(std::mt19937& engine) { return static_cast<float>(std::ldexp(static_cast<double>(engine()), -32)); }

// The ruin (occupancy, row-major) and supply of a fresh level from a separate engine:
// per row, runs of one or two cells that stand when a >= the row's gap chance,
// then nothing left floating; then the letters of shuffled seven-piece bags.
std::pair<std::vector<bool>, std::vector<char>> ReferenceLevel(unsigned seed, int width, int rows,
                                                               const std::vector<float>& gap, int pieces) {
    std::mt19937 engine(seed);
    std::vector<bool> occupied(static_cast<size_t>(width * 14), false);
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < width;) {
            const float a = Draw(engine);
            const int length = std::min(Draw(engine) < 0.5f ? 2 : 1, width - x);
            for (int i = 0; i < length; ++i) occupied[static_cast<size_t>(x + i + y * width)] = a >= gap[y];
            x += length;
        }
    for (int y = 1; y < rows; ++y)
        for (int x = 0; x < width; ++x)
            if (!occupied[static_cast<size_t>(x + (y - 1) * width)])
                occupied[static_cast<size_t>(x + y * width)] = false;
    std::vector<char> bag, supply;
    for (int i = 0; i < pieces; ++i) {
        if (bag.empty()) {
            bag = {'I', 'O', 'T', 'L', 'J', 'S', 'Z'};
            for (int k = 6; k >= 1; --k)
                std::swap(bag[k], bag[std::min(k, static_cast<int>(static_cast<float>(k + 1) * Draw(engine)))]);
        }
        supply.push_back(bag.back());
        bag.pop_back();
    }
    return {occupied, supply};
}

std::vector<bool> Occupancy(const Game& g) {
    std::vector<bool> out;
    for (int id : g.towers[0].cells) out.push_back(id != 0);
    return out;
}

// Turns and steers the falling cursor by the player's operations, then drops.
void DropAt(Game& g, int x, int turns) {
    for (int i = 0; i < turns; ++i) g.Rotate();
    for (int guard = 0; g.cursorX != x && guard < 64; ++guard) g.Move(g.cursorX > x ? -1 : 1);
    ASSERT_EQ(g.cursorX, x);
    g.Drop();
}

} // namespace

using BuildPhaseTest = RulesTest;

TEST_F(BuildPhaseTest, RuinAndSupplyFollowTheDrawsInOrder) {
    const std::vector<float> ringGaps = {0.05f, 0.12f, 0.25f, 0.5f, 0.7f, 0.85f};
    for (unsigned seed : {1u, 77u, 5489u}) {
        GetSettings().classic = 1;
        Game c(seed);  // the constructor lays level 1 from a fresh engine
        EXPECT_EQ(std::make_pair(Occupancy(c), c.supply), ReferenceLevel(seed, 8, 2, {0.08f, 0.3f}, 17)) << seed;
        GetSettings().classic = 0;
        Game r(seed);
        EXPECT_EQ(std::make_pair(Occupancy(r), r.supply), ReferenceLevel(seed, 32, 4, ringGaps, 16)) << seed;
        EXPECT_TRUE(GridMatchesPieces(r));
        for (const auto& [id, piece] : r.pieces) EXPECT_TRUE(piece.ruin && piece.cells.size() <= 2u);
    }
    GetSettings().ruinRows = 9;  // limited to six rows
    EXPECT_EQ(Occupancy(Game(5)), ReferenceLevel(5, 32, 6, ringGaps, 16).first);
}

TEST_F(BuildPhaseTest, EdgesEnterTheNextTowerOrWrapOnTheRing) {
    Game two = ClassicGame(2);
    two.supply = {'O'};
    two.cursorX = 0;
    two.Move(-1);  // to the right edge of the other tower, for a shape of width 2
    EXPECT_EQ(std::make_tuple(two.activeTower, two.cursorX), std::make_tuple(1, 6));
    two.Act(Action::Switch);
    EXPECT_EQ(two.activeTower, 0);
    Game ring = EmptyGame(false, 1);
    ring.supply = {'I'};
    ring.cursorX = 31;
    ring.Move(1);
    EXPECT_EQ(ring.cursorX, 0);

    // Building in the attack, a switch keeps the cursor's row, here inside the other
    // tower's wall: the ghost shows where the drop puts the piece, on top of that wall.
    GetSettings().difficulty = 3;
    Game attack = ClassicGame(2);
    attack.phase = Phase::Attack;
    attack.supply = {'O'};
    for (int x = 0; x < 8; ++x) FillColumn(attack, 1, x, 0, 6);
    attack.cursorX = 2;
    attack.cursorY = 2;
    attack.SwitchTower(1);
    ASSERT_EQ(attack.cursorY, 2);
    EXPECT_EQ(attack.GhostY(), 6);
    attack.Drop();
    EXPECT_TRUE(Occupied(attack, 1, 2, 6) && Occupied(attack, 1, 3, 7));
}

TEST_F(BuildPhaseTest, RotationKicksTryZeroLeftRightThenTwoLeftTwoRight) {
    // Only the listed columns are open at rows 0..3; the upright I takes the first kick that fits.
    const std::vector<std::pair<std::vector<int>, int>> cases = {
        {{3}, 3}, {{2, 4}, 2}, {{4}, 4}, {{1, 5}, 1}, {{5}, 5}, {{}, -1}};
    for (const auto& [open, expected] : cases) {
        Game g = ClassicGame(1);
        for (int x = 0; x < 8; ++x)
            if (std::find(open.begin(), open.end(), x) == open.end()) FillColumn(g, 0, x, 0, 4);
        g.supply = {'I'};
        g.cursorX = 3;
        g.cursorY = 0;
        g.Rotate();
        EXPECT_EQ(std::make_tuple(g.rotation, g.cursorX),
                  expected < 0 ? std::make_tuple(0, 3) : std::make_tuple(1, expected));
        EXPECT_EQ(Sounds(g.TakeEvents()), std::vector<Sfx>{expected < 0 ? Sfx::Deny : Sfx::Tick});
    }
    Game edge = ClassicGame(1);
    edge.supply = {'I'};
    edge.rotation = 1;
    edge.cursorX = 7;
    edge.Rotate();  // lying flat at the right edge is pushed back inside
    EXPECT_EQ(edge.cursorX, 4);
}

TEST_F(BuildPhaseTest, RefusalsSayWhyAndTheLastPieceEndsTheBuildSoon) {
    Game g = ClassicGame(1);
    g.supply = {'O'};
    FillColumn(g, 0, 3, 0, 13);  // one free row: too little for the O
    g.cursorX = 3;
    g.Drop();
    EXPECT_EQ(g.supply.size(), 1u);
    const auto events = g.TakeEvents();
    EXPECT_EQ(Texts(events, Event::Say), std::vector<std::string>{"Kein Platz mehr in dieser Spalte"});
    EXPECT_EQ(Sounds(events), std::vector<Sfx>{Sfx::Deny});
    GetSettings().piece_choice = false;
    g.supply = {'I', 'O'};
    g.Cycle();
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say), std::vector<std::string>{"Teile aussuchen ist ausgeschaltet"});
    g = ClassicGame(1);  // the last piece ends the build soon unless taken back
    g.supply = {'O'};
    g.cursorX = 0;
    g.Update(2.0f);
    g.Drop();
    EXPECT_FLOAT_EQ(g.autoEndAt, 3.0f);
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say).back(), "Alle Teile verbaut");
    g.Undo();  // taking it back stops the countdown
    EXPECT_EQ(g.autoEndAt, -1.0f);
    g.Drop();
    g.Update(0.99f);
    EXPECT_EQ(g.phase, Phase::Build);
    g.Update(0.02f);  // the ended build keeps no countdown
    EXPECT_EQ(std::make_tuple(g.phase, g.autoEndAt), std::make_tuple(Phase::Inspect, -1.0f));
}

TEST_F(BuildPhaseTest, UndoOfAPrepAndOfAPieceThatLostACell) {
    Game g = ClassicGame(1);
    g.supply = {'O', 'T'};
    g.cursorX = 0;
    g.Drop();
    g.RemoveCell(0, 1, 1);
    g.TakeEvents();
    g.Undo();  // the piece has lost a cell
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say), std::vector<std::string>{"Das Teil steht nicht mehr"});
    g.phase = Phase::Attack;
    Target t;
    t.id = 8;
    t.preps = {Prep{'1', {{0, 0}}}, Prep{'2', {{1, 0}, {2, 0}}}, Prep{'1', {{0, 0}}}};
    g.targets.push_back(t);
    g.supply = {'I'};
    g.undo = UndoRecord{true, Phase::Attack, 0, 0, 8, '1', 0, 0, 1, 0, 5.0f, {{0, 0}}};
    g.Undo();
    ASSERT_EQ(g.targets[0].preps.size(), 2u);
    EXPECT_EQ(g.targets[0].preps[1].type, '2');  // the last matching prep went
    EXPECT_EQ(g.supply, (std::vector<char>{'I', '1'}));

    // A record left from a level of three towers, the game left in its build phase: it
    // names a piece that stands here with as many cells, but its tower is no tower here.
    Game h = ClassicGame(1);
    ASSERT_EQ(h.towers.size(), 1u);
    const std::vector<Cell> cells = {{3, 0}, {4, 0}};
    const int id = h.AddPiece(0, '2', cells, true);
    h.undo = UndoRecord{true, Phase::Build, 2, id, 0, '2', 0, 0, 0, 10, 5.0f, cells};
    h.TakeEvents();
    h.Undo();
    EXPECT_EQ(Texts(h.TakeEvents(), Event::Say), std::vector<std::string>{"Das Teil steht nicht mehr"});
    EXPECT_EQ(std::make_tuple(h.activeTower, h.CellAt(0, cells[0].x, cells[0].y)), std::make_tuple(0, id));
}

TEST_F(BuildPhaseTest, PlacementNeedsRoomSupportAndBoundsOrATargetForAPrep) {
    Game g = ClassicGame(1);
    g.phase = Phase::Attack;
    g.supply = {'O'};
    EXPECT_EQ(g.PlacementAt(0, 0, 0), 1);
    EXPECT_EQ(g.PlacementAt(0, 1, 0), 0);   // floating
    EXPECT_EQ(g.PlacementAt(7, 0, 0), 0);   // leaves the tower
    EXPECT_EQ(g.PlacementAt(0, 13, 0), 0);  // over the top
    Fill(g, 0, 1, 0);
    EXPECT_EQ(g.PlacementAt(0, 1, 0), 1);   // one cell resting on the wall is enough
    EXPECT_EQ(g.PlacementAt(0, 0, 0), 0);
    const int id = g.AddPiece(0, 'O', {{4, 0}, {5, 0}, {4, 1}, {5, 1}}, false);
    g.targets.push_back(Target{20, id, 0, 0.0f, 4.0f, g.pieces[id].cells, {}});
    g.supply = {'2'};
    GetSettings().difficulty = 0;
    EXPECT_EQ(g.PlacementAt(4, 0, 1), 2);   // upright on the target
    EXPECT_EQ(g.PlacementAt(5, 0, 0), 0);   // half outside it
    GetSettings().difficulty = 2;           // no preps
    EXPECT_EQ(g.PlacementAt(4, 0, 0), 0);
}

TEST_F(BuildPhaseTest, PlacingUndoingAndTheInspection) {
    Game g = ClassicGame(1);
    g.supply = {'I', 'I', 'O', 'T'};
    g.cursorX = 3;
    DropAt(g, 0, 0);  // I on row 0, columns 0..3: ten a cell
    DropAt(g, 4, 0);  // the row is full: fifty more
    EXPECT_EQ(g.score, 40 + 90);
    EXPECT_EQ(g.FullRows(0), 1);
    DropAt(g, 0, 0);  // O on rows 1..2
    g.Update(4.9f);
    g.Undo();  // inside the five-second window
    EXPECT_EQ(std::make_tuple(g.score, g.supply), std::make_tuple(130, std::vector<char>{'O', 'T'}));
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say).back(), "Zurückgelegt");
    DropAt(g, 6, 0);  // O on columns 6..7
    g.Update(5.0f);
    g.Undo();  // too late
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say).back(), "Zu spät zum Zurücklegen");
    EXPECT_EQ(std::make_tuple(g.score, Occupied(g, 0, 6, 1)), std::make_tuple(170, true));
    DropAt(g, 2, 2);  // an upside-down T on row 1 leaves gaps at (2, 1) and (4, 1) under its bar
    EXPECT_EQ(g.score, 210);
    EXPECT_EQ(g.GapCells(0), (std::vector<Cell>{{2, 1}, {4, 1}}));
    g.TakeEvents();
    ASSERT_FLOAT_EQ(g.buildLeft, 70.0f - 4.9f - 5.0f);
    g.EndBuild(true);  // two points per whole second left
    EXPECT_EQ(std::make_tuple(g.phase, g.stats.timeBonus, g.score, g.stats.gapCells, g.stats.dropped),
              std::make_tuple(Phase::Inspect, 2 * 60, 210 + 120, 2, 2));
    EXPECT_FALSE(Occupied(g, 0, 2, 2) || Occupied(g, 0, 4, 2));
    EXPECT_EQ(g.GetPiece(g.CellAt(0, 3, 2))->cells.size(), 2u);  // the middle of the bar stays on its stem
    EXPECT_TRUE(GridMatchesPieces(g));
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say), std::vector<std::string>{"Bauabnahme: 2 Felder eingestürzt"});
}
