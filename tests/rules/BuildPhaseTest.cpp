#include "RulesTestSupport.h"

#include "game/Pieces.h"

#include <cmath>
#include <cstring>
#include <random>

using namespace torvane;
using namespace torvane::testing_support;

namespace {

float Draw(std::mt19937& engine) {
    return static_cast<float>(std::ldexp(static_cast<double>(engine()), -32));
}

// The ruin and the supply of a fresh level worked out with a separate engine:
// occupancy per cell (row-major) and the letters drawn.
struct Expected {
    std::vector<bool> occupied;
    std::vector<char> supply;
};

Expected ReferenceLevel(unsigned seed, int width, int height, int rows, const std::vector<float>& gap,
                        int pieces) {
    std::mt19937 engine(seed);
    Expected e;
    e.occupied.assign(static_cast<size_t>(width * height), false);
    auto at = [&](int x, int y) { return e.occupied[static_cast<size_t>(x + y * width)]; };
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < width;) {
            const float a = Draw(engine);
            const float b = Draw(engine);
            const int length = std::min(b < 0.5f ? 2 : 1, width - x);
            for (int i = 0; i < length; ++i) e.occupied[static_cast<size_t>(x + i + y * width)] = a >= gap[y];
            x += length;
        }
    }
    for (int y = 1; y < rows; ++y)
        for (int x = 0; x < width; ++x)
            if (at(x, y) && !at(x, y - 1)) e.occupied[static_cast<size_t>(x + y * width)] = false;
    std::vector<char> bag;
    for (int i = 0; i < pieces; ++i) {
        if (bag.empty()) {
            bag = {'I', 'O', 'T', 'L', 'J', 'S', 'Z'};
            for (int k = 6; k >= 1; --k) {
                const int j = std::min(k, static_cast<int>(static_cast<float>(k + 1) * Draw(engine)));
                std::swap(bag[k], bag[j]);
            }
        }
        e.supply.push_back(bag.back());
        bag.pop_back();
    }
    return e;
}

std::vector<bool> Occupancy(const Game& g, int tower) {
    std::vector<bool> out;
    for (int id : g.towers[tower].cells) out.push_back(id != 0);
    return out;
}

// Turns and steers the falling cursor by the player's operations, then drops.
void DropAt(Game& g, int x, int turns) {
    for (int i = 0; i < turns; ++i) g.Rotate();
    for (int guard = 0; g.cursorX > x && guard < 64; ++guard) g.Move(-1);
    for (int guard = 0; g.cursorX < x && guard < 64; ++guard) g.Move(1);
    ASSERT_EQ(g.cursorX, x);
    g.Drop();
}

} // namespace

class BuildStartLevel : public RulesTest {};

TEST_F(BuildStartLevel, ClassicRuinAndSupplyFollowTheDrawsInOrder) {
    GetSettings().classic = 1;
    for (unsigned seed : {1u, 2u, 77u, 5489u}) {
        Game g(seed);  // the constructor lays level 1 from a fresh engine
        const Expected e = ReferenceLevel(seed, 8, 14, 2, {0.08f, 0.3f}, 17);
        EXPECT_EQ(Occupancy(g, 0), e.occupied) << seed;
        EXPECT_EQ(g.supply, e.supply) << seed;
    }
}

TEST_F(BuildStartLevel, RingRuinAndSupplyFollowTheDrawsInOrder) {
    GetSettings().classic = 0;
    for (unsigned seed : {3u, 4u, 1234u}) {
        Game g(seed);
        const Expected e =
            ReferenceLevel(seed, 32, 14, 4, {0.05f, 0.12f, 0.25f, 0.5f, 0.7f, 0.85f}, 16);
        EXPECT_EQ(Occupancy(g, 0), e.occupied) << seed;
        EXPECT_EQ(g.supply, e.supply) << seed;
    }
    GetSettings().ruinRows = 9;  // limited to six rows
    Game tall(5);
    const Expected e = ReferenceLevel(5, 32, 14, 6, {0.05f, 0.12f, 0.25f, 0.5f, 0.7f, 0.85f}, 16);
    EXPECT_EQ(Occupancy(tall, 0), e.occupied);
}

TEST_F(BuildStartLevel, RuinPiecesAreSmallGroundedAndMarked) {
    GetSettings().classic = 0;
    for (unsigned seed = 1; seed <= 10; ++seed) {
        Game g(seed);
        EXPECT_TRUE(GridMatchesPieces(g));
        for (const auto& [id, piece] : g.pieces) {
            EXPECT_TRUE(piece.ruin);
            EXPECT_TRUE(piece.type == '1' || piece.type == '2');
            EXPECT_LE(piece.cells.size(), piece.type == '2' ? 2u : 1u);
            for (const Cell& c : piece.cells)
                if (c.y > 0) {
                    EXPECT_TRUE(Occupied(g, 0, c.x, c.y - 1)) << "floating ruin cell";
                }
        }
        EXPECT_TRUE(g.GapCells(0).empty());
    }
}

TEST_F(BuildStartLevel, ResetsTheLevelAndPlacesTheCursor) {
    GetSettings().classic = 0;
    Game g(9);
    g.score = 55;
    g.stats.lost = 7;
    g.targets.push_back(Target{});
    g.holes.push_back(Hole{});
    g.focus = Focus{Focus::Hole, 3};
    g.clock = 12.0f;
    g.autoEndAt = 4.0f;
    g.StartLevel(3);
    EXPECT_EQ(g.phase, Phase::Build);
    EXPECT_EQ(g.level, 3);
    EXPECT_EQ(g.score, 55);  // the game's total survives
    EXPECT_EQ(g.stats.lost, 0);
    EXPECT_TRUE(g.targets.empty());
    EXPECT_TRUE(g.holes.empty());
    EXPECT_EQ(g.focus, Focus{});
    EXPECT_EQ(g.clock, 0.0f);
    EXPECT_EQ(g.autoEndAt, -1.0f);
    EXPECT_EQ(g.buildLeft, g.config.buildTime);
    EXPECT_EQ(g.wave, -1);
    EXPECT_EQ(g.selected, 0);
    EXPECT_EQ(g.cursorX, 31);  // one left of the north centre, wrapped
    EXPECT_EQ(g.cursorY, g.config.height);
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say), std::vector<std::string>{"Aufbau – der Angriff kommt gleich"});

    GetSettings().classic = 1;
    g.StartLevel(1);
    EXPECT_EQ(g.cursorX, 3);
    EXPECT_EQ(g.activeTower, 0);
}

TEST_F(BuildStartLevel, KeptTowersCarryTheirDamageAndTheBonus) {
    GetSettings().classic = 0;
    Game g(11);
    g.StartLevel(1);
    const std::vector<int32_t> cells = g.towers[0].cells;
    const int nextId = g.nextPieceId;
    g.bonusPieces = 3;
    g.StartLevel(2, true);
    EXPECT_EQ(g.towers[0].cells, cells);
    EXPECT_EQ(g.nextPieceId, nextId);
    EXPECT_EQ(static_cast<int>(g.supply.size()), g.config.pieces + 3);
    g.StartLevel(3, false);
    EXPECT_EQ(static_cast<int>(g.supply.size()), g.config.pieces);
    EXPECT_TRUE(GridMatchesPieces(g));
    EXPECT_EQ(g.pieces.begin()->first, 1);  // fresh ids
}

TEST_F(BuildStartLevel, APackLevelAskingForANewTowerLaysAFreshRuinWithoutBonus) {
    GetSettings().classic = 0;
    LevelPack pack;
    pack.levels.resize(2);
    pack.levels[1].newTower = true;
    pack.levels[1].pieces = 20;
    SetActivePack(&pack);
    Game g(12);
    g.StartLevel(1);
    g.DebugPlace(0, 'O', {{10, 10}, {11, 10}, {10, 11}, {11, 11}});
    g.bonusPieces = 4;
    g.StartLevel(2, true);
    EXPECT_EQ(g.supply.size(), 20u);
    EXPECT_FALSE(Occupied(g, 0, 10, 10));
    EXPECT_EQ(g.pieces.begin()->first, 1);
}

TEST_F(BuildStartLevel, AChangedTowerSizeLaysTheWallAnew) {
    GetSettings().classic = 1;
    Game g(13);
    g.StartLevel(1);
    g.bonusPieces = 5;
    g.StartLevel(2, true);  // one tower becomes two
    EXPECT_EQ(g.towers.size(), 2u);
    EXPECT_EQ(static_cast<int>(g.supply.size()), g.config.pieces);
}

class BuildCursor : public RulesTest {};

TEST_F(BuildCursor, MovingOffTheOnlyClassicTowerDoesNothing) {
    Game g = ClassicGame(1);
    g.supply = {'O'};
    g.cursorX = 0;
    g.Move(-1);
    EXPECT_EQ(g.cursorX, 0);
    EXPECT_TRUE(g.TakeEvents().empty());
    g.cursorX = 6;
    g.Move(1);
    EXPECT_EQ(g.cursorX, 6);
    g.Move(-1);
    EXPECT_EQ(g.cursorX, 5);
}

TEST_F(BuildCursor, MovingOffAnEdgeEntersTheNeighbouringTower) {
    Game g = ClassicGame(2);  // two towers of 8
    g.supply = {'O'};
    g.cursorX = 0;
    g.Move(-1);
    EXPECT_EQ(g.activeTower, 1);
    EXPECT_EQ(g.cursorX, 6);  // the right edge for a shape of width 2
    EXPECT_EQ(g.cursorY, 14);
    EXPECT_EQ(Sounds(g.TakeEvents()), std::vector<Sfx>{Sfx::Tick});
    g.Move(1);
    EXPECT_EQ(g.activeTower, 0);
    EXPECT_EQ(g.cursorX, 0);
}

TEST_F(BuildCursor, TheRingWrapsTheCursor) {
    Game g = RingGame(1);
    g.supply = {'I'};
    g.cursorX = 31;
    g.Move(1);
    EXPECT_EQ(g.cursorX, 0);
    g.Move(-1);
    EXPECT_EQ(g.cursorX, 31);
    g.SwitchTower(1);
    EXPECT_TRUE(g.TakeEvents().empty());  // the ring has no other towers and says nothing
}

TEST_F(BuildCursor, SwitchingNeedsASecondTower) {
    Game g = ClassicGame(1);
    g.SwitchTower(1);
    std::vector<Event> events = g.TakeEvents();
    EXPECT_EQ(Texts(events, Event::Say), std::vector<std::string>{"Nur ein Turm in diesem Level"});
    EXPECT_TRUE(Sounds(events).empty());
    Game two = ClassicGame(4);  // three towers
    two.focus = Focus{Focus::Target, 9};
    two.SwitchTower(-1);
    EXPECT_EQ(two.activeTower, 2);
    EXPECT_EQ(two.focus, Focus{});
    two.SwitchTower(2);
    EXPECT_EQ(two.activeTower, 1);
}

TEST_F(BuildCursor, AnUprightIAtTheRightEdgeIsKickedBackInside) {
    Game g = ClassicGame(1);
    g.supply = {'I'};
    g.rotation = 1;
    g.cursorX = 7;
    g.Rotate();
    EXPECT_EQ(g.rotation, 2);
    EXPECT_EQ(g.cursorX, 4);
    EXPECT_EQ(Sounds(g.TakeEvents()), std::vector<Sfx>{Sfx::Tick});
    g.Rotate();  // upright again at the same column
    EXPECT_EQ(g.rotation, 3);
    EXPECT_EQ(g.cursorX, 4);
}

TEST_F(BuildCursor, KicksTryNeighbouringColumnsInOrder) {
    Game g = ClassicGame(1);
    g.supply = {'I'};
    g.rotation = 0;
    g.cursorX = 3;
    g.cursorY = 0;
    // Only column 5 is open at rows 0..3: the kicks 0, -1, +1 fail, -2 fails, +2 takes it.
    for (int x = 0; x < 8; ++x)
        if (x != 5) FillColumn(g, 0, x, 0, 4);
    g.Rotate();
    EXPECT_EQ(g.rotation, 1);
    EXPECT_EQ(g.cursorX, 5);

    // With columns 2 and 4 open the left kick comes before the right one,
    // and with 1 and 5 open the left double kick before the right one.
    for (const auto& [left, right] : {std::pair<int, int>{2, 4}, std::pair<int, int>{1, 5}}) {
        Game h = ClassicGame(1);
        for (int x = 0; x < 8; ++x)
            if (x != left && x != right) FillColumn(h, 0, x, 0, 4);
        h.supply = {'I'};
        h.cursorX = 3;
        h.cursorY = 0;
        h.Rotate();
        EXPECT_EQ(h.cursorX, left);
    }
}

TEST_F(BuildCursor, RotationRefusedWhenNoKickFits) {
    Game g = ClassicGame(1);
    for (int x = 0; x < 8; ++x) FillColumn(g, 0, x, 0, 4);
    g.supply = {'I'};
    g.cursorX = 2;
    g.cursorY = 0;
    g.Rotate();
    EXPECT_EQ(g.rotation, 0);
    EXPECT_EQ(g.cursorX, 2);
    EXPECT_EQ(Sounds(g.TakeEvents()), std::vector<Sfx>{Sfx::Deny});
}

TEST_F(BuildCursor, WithoutAPieceTheCursorStaysAndDropSpeaks) {
    Game g = ClassicGame(1);
    g.supply.clear();
    g.cursorX = -5;
    g.cursorY = 99;
    g.ClampCursor();
    g.ClampFree();
    g.Rotate();
    g.Move(1);
    EXPECT_EQ(g.cursorX, -5);
    EXPECT_EQ(g.cursorY, 99);
    EXPECT_EQ(g.GhostY(), -1);
    EXPECT_TRUE(g.CursorCells().empty());
    EXPECT_TRUE(g.TakeEvents().empty());
    g.Drop();
    std::vector<Event> events = g.TakeEvents();
    EXPECT_EQ(Texts(events, Event::Say),
              std::vector<std::string>{"Keine Bauteile mehr – Enter startet den Angriff"});
    EXPECT_EQ(Sounds(events), std::vector<Sfx>{Sfx::Deny});
}

TEST_F(BuildCursor, GhostShowsTheLandingRow) {
    Game g = ClassicGame(1);
    g.supply = {'I'};
    g.cursorX = 0;
    g.cursorY = 14;
    EXPECT_EQ(g.GhostY(), 0);
    Fill(g, 0, 2, 5);
    EXPECT_EQ(g.GhostY(), 6);
    g.rotation = 1;
    g.cursorX = 2;
    EXPECT_EQ(g.GhostY(), 6);
    FillColumn(g, 0, 2, 6, 11);  // four free rows above row 10 make 11..14: over the top
    EXPECT_EQ(g.GhostY(), -1);
}

class BuildPlacing : public RulesTest {};

TEST_F(BuildPlacing, AFullColumnRefusesAndKeepsThePiece) {
    Game g = ClassicGame(1);
    g.supply = {'O'};
    FillColumn(g, 0, 3, 0, 13);  // one free row: too little for the O
    g.cursorX = 3;
    g.cursorY = 14;
    g.Drop();
    EXPECT_EQ(g.supply, std::vector<char>{'O'});
    EXPECT_EQ(g.cursorY, 14);
    std::vector<Event> events = g.TakeEvents();
    EXPECT_EQ(Texts(events, Event::Say), std::vector<std::string>{"Kein Platz mehr in dieser Spalte"});
    EXPECT_EQ(Sounds(events), std::vector<Sfx>{Sfx::Deny});
    EXPECT_EQ(g.score, 0);
    EXPECT_FALSE(g.undo.valid);
}

TEST_F(BuildPlacing, TwoRowsAtOnceEarnTenPerCellAndAHundred) {
    Game g = ClassicGame(1);
    for (int x = 2; x < 8; ++x) FillColumn(g, 0, x, 0, 2);
    g.supply = {'O', 'T'};
    g.cursorX = 0;
    g.Drop();
    EXPECT_EQ(g.score, 140);
    EXPECT_EQ(g.stats.buildScore, 140);
    EXPECT_EQ(g.FullRows(0), 2);
    EXPECT_EQ(g.supply, std::vector<char>{'T'});
    EXPECT_EQ(g.cursorY, 14);
    EXPECT_EQ(g.rotation, 0);
    const std::vector<Event> events = g.TakeEvents();
    ASSERT_GE(events.size(), 3u);
    EXPECT_EQ(events[0].kind, Event::Placed);
    EXPECT_EQ(events[0].cells, (std::vector<Cell>{{0, 0}, {1, 0}, {0, 1}, {1, 1}}));
    EXPECT_EQ(Texts(events, Event::Float), std::vector<std::string>{"+140 Reihe!"});
    EXPECT_EQ(Sounds(events), std::vector<Sfx>{Sfx::Place});
    EXPECT_TRUE(g.undo.valid);
    EXPECT_EQ(g.undo.points, 140);
    EXPECT_FLOAT_EQ(g.undo.until, 5.0f);
    EXPECT_TRUE(GridMatchesPieces(g));
}

TEST_F(BuildPlacing, PlacingInTheAttackCountsAsRepair) {
    Game g = ClassicGame(1);
    g.phase = Phase::Attack;
    g.supply = {'I', 'O'};
    g.cursorX = 0;
    g.Drop();
    EXPECT_EQ(g.stats.repairScore, 40);
    EXPECT_EQ(g.stats.buildScore, 0);
    EXPECT_EQ(g.autoEndAt, -1.0f);
}

TEST_F(BuildPlacing, TheLastPieceEndsTheBuildSoon) {
    Game g = ClassicGame(1);
    g.supply = {'O'};
    g.cursorX = 0;
    g.Update(2.0f);
    g.Drop();
    EXPECT_FLOAT_EQ(g.autoEndAt, 3.0f);
    std::vector<std::string> said = Texts(g.TakeEvents(), Event::Say);
    ASSERT_FALSE(said.empty());
    EXPECT_EQ(said.back(), "Alle Teile verbaut");
    g.Undo();  // taking it back stops the countdown
    EXPECT_EQ(g.autoEndAt, -1.0f);
    EXPECT_EQ(g.supply, std::vector<char>{'O'});
    g.Drop();
    g.Update(0.5f);
    EXPECT_EQ(g.phase, Phase::Build);
    g.Update(0.5f);
    EXPECT_EQ(g.phase, Phase::Inspect);
}

class BuildUndo : public RulesTest {};

TEST_F(BuildUndo, TakesBackOnceInsideTheWindow) {
    Game g = ClassicGame(1);
    g.supply = {'I', 'O', 'T'};
    g.selected = 1;
    g.cursorX = 2;
    g.Drop();  // the O
    EXPECT_EQ(g.score, 40);
    EXPECT_EQ(g.supply, (std::vector<char>{'I', 'T'}));
    g.TakeEvents();
    g.Update(4.9f);
    g.Undo();
    EXPECT_EQ(g.score, 0);
    EXPECT_EQ(g.stats.buildScore, 0);
    EXPECT_EQ(g.supply, (std::vector<char>{'I', 'O', 'T'}));
    EXPECT_EQ(g.selected, 1);
    EXPECT_EQ(g.cursorX, 2);
    EXPECT_EQ(CountCells(g, 0), 0);
    EXPECT_TRUE(g.pieces.empty());
    std::vector<Event> events = g.TakeEvents();
    EXPECT_EQ(Texts(events, Event::Say), std::vector<std::string>{"Zurückgelegt"});
    EXPECT_EQ(Sounds(events), std::vector<Sfx>{Sfx::Tick});
    EXPECT_EQ(g.UndoTimeLeft(), 0.0f);
    g.Undo();  // the second one finds nothing
    EXPECT_TRUE(g.TakeEvents().empty());
    EXPECT_EQ(g.supply.size(), 3u);
}

TEST_F(BuildUndo, TooLateSpeaksAndForgets) {
    Game g = ClassicGame(1);
    g.supply = {'O', 'T'};
    g.cursorX = 0;
    g.Drop();
    EXPECT_FLOAT_EQ(g.UndoTimeLeft(), 5.0f);
    g.Update(2.0f);
    EXPECT_FLOAT_EQ(g.UndoTimeLeft(), 3.0f);
    g.Update(3.0f);
    EXPECT_EQ(g.UndoTimeLeft(), 0.0f);
    g.TakeEvents();
    g.Undo();
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say), std::vector<std::string>{"Zu spät zum Zurücklegen"});
    EXPECT_FALSE(g.undo.valid);
    EXPECT_EQ(g.score, 40);
    EXPECT_EQ(CountCells(g, 0), 4);
    g.Undo();
    EXPECT_TRUE(g.TakeEvents().empty());
}

TEST_F(BuildUndo, APieceThatLostACellCannotComeBack) {
    Game g = ClassicGame(1);
    g.supply = {'O', 'T'};
    g.cursorX = 0;
    g.Drop();
    g.RemoveCell(0, 1, 1);
    g.TakeEvents();
    g.Undo();
    std::vector<Event> events = g.TakeEvents();
    EXPECT_EQ(Texts(events, Event::Say), std::vector<std::string>{"Das Teil steht nicht mehr"});
    EXPECT_EQ(Sounds(events), std::vector<Sfx>{Sfx::Deny});
    EXPECT_FALSE(g.undo.valid);
    EXPECT_EQ(CountCells(g, 0), 3);
}

TEST_F(BuildUndo, ARecordOfAnotherPhaseIsDroppedSilently) {
    Game g = ClassicGame(1);
    g.supply = {'O', 'T'};
    g.cursorX = 0;
    g.Drop();
    g.phase = Phase::Attack;
    EXPECT_EQ(g.UndoTimeLeft(), 0.0f);
    g.TakeEvents();
    g.Undo();
    EXPECT_TRUE(g.TakeEvents().empty());
    EXPECT_FALSE(g.undo.valid);
}

TEST_F(BuildUndo, APrepIsTakenOffItsTarget) {
    Game g = ClassicGame(1);
    g.phase = Phase::Attack;
    Target t;
    t.id = 8;
    t.preps = {Prep{'1', {{0, 0}}}, Prep{'2', {{1, 0}, {2, 0}}}, Prep{'1', {{0, 0}}}};
    g.targets.push_back(t);
    g.supply = {'I'};
    g.selected = 0;
    g.undo = UndoRecord{true, Phase::Attack, 0, 0, 8, '1', 0, 0, 1, 0, 5.0f, {{0, 0}}};
    g.Undo();
    ASSERT_EQ(g.targets[0].preps.size(), 2u);
    EXPECT_EQ(g.targets[0].preps[0].cells, (std::vector<Cell>{{0, 0}}));  // the last match went
    EXPECT_EQ(g.targets[0].preps[1].type, '2');
    EXPECT_EQ(g.supply, (std::vector<char>{'I', '1'}));
    EXPECT_EQ(g.selected, 1);
    // No prep with those cells: silently forgotten.
    g.undo = UndoRecord{true, Phase::Attack, 0, 0, 8, '1', 0, 0, 0, 0, 5.0f, {{5, 5}}};
    g.TakeEvents();
    g.Undo();
    EXPECT_TRUE(g.TakeEvents().empty());
    EXPECT_FALSE(g.undo.valid);
}

class BuildFreeCursor : public RulesTest {};

TEST_F(BuildFreeCursor, PlacementNeedsRoomSupportAndBounds) {
    Game g = ClassicGame(1);
    g.phase = Phase::Attack;
    g.supply = {'O'};
    EXPECT_EQ(g.PlacementAt(0, 0, 0), 1);
    EXPECT_EQ(g.PlacementAt(0, 1, 0), 0);   // floating
    EXPECT_EQ(g.PlacementAt(7, 0, 0), 0);   // leaves the tower
    EXPECT_EQ(g.PlacementAt(0, 13, 0), 0);  // over the top
    EXPECT_EQ(g.PlacementAt(0, -1, 0), 0);
    Fill(g, 0, 1, 0);
    EXPECT_EQ(g.PlacementAt(0, 1, 0), 1);   // one cell resting on the wall is enough
    EXPECT_EQ(g.PlacementAt(0, 0, 0), 0);   // occupied and no target
    g.supply.clear();
    EXPECT_EQ(g.PlacementAt(3, 0, 0), 0);
}

TEST_F(BuildFreeCursor, OccupiedCellsOfATargetTakeAPrep) {
    Game g = ClassicGame(1);
    g.phase = Phase::Attack;
    const int id = g.AddPiece(0, 'O', {{2, 0}, {3, 0}, {2, 1}, {3, 1}}, false);
    Target t;
    t.id = 20;
    t.piece = id;
    t.cells = g.pieces[id].cells;
    g.targets.push_back(t);
    g.supply = {'2'};
    GetSettings().difficulty = 0;
    EXPECT_EQ(g.PlacementAt(2, 0, 0), 2);
    EXPECT_EQ(g.PlacementAt(2, 0, 1), 2);   // upright in column 2
    EXPECT_EQ(g.PlacementAt(3, 0, 0), 0);   // half outside the target
    GetSettings().difficulty = 2;
    EXPECT_EQ(g.PlacementAt(2, 0, 0), 0);
}

TEST_F(BuildFreeCursor, ClampFreeKeepsTheShapeInsideTheTower) {
    Game g = ClassicGame(1);
    g.phase = Phase::Attack;
    g.supply = {'O'};
    g.cursorX = 7;
    g.cursorY = 14;
    g.ClampFree();
    EXPECT_EQ(g.cursorX, 6);
    EXPECT_EQ(g.cursorY, 12);
    g.cursorX = -3;
    g.cursorY = -3;
    g.ClampFree();
    EXPECT_EQ(g.cursorX, 0);
    EXPECT_EQ(g.cursorY, 0);
    Game ring = RingGame(1);
    ring.supply = {'O'};
    ring.cursorX = 33;
    ring.ClampFree();
    EXPECT_EQ(ring.cursorX, 1);
}

TEST_F(BuildFreeCursor, TheFreeCursorRestsOnTheWall) {
    Game g = ClassicGame(1);
    g.phase = Phase::Attack;
    g.supply = {'O'};
    g.cursorX = 0;
    g.UpdateFreeY();
    EXPECT_EQ(g.cursorY, 0);
    FillColumn(g, 0, 1, 0, 4);
    g.UpdateFreeY();
    EXPECT_EQ(g.cursorY, 4);
    g.MoveFree(1);
    EXPECT_EQ(g.cursorX, 1);
    EXPECT_EQ(g.cursorY, 4);
    g.MoveFree(1);
    EXPECT_EQ(g.cursorX, 2);
    EXPECT_EQ(g.cursorY, 0);
    g.cursorX = 6;
    g.MoveFree(1);  // one tower: nowhere to go
    EXPECT_EQ(g.cursorX, 6);
    g.phase = Phase::Build;
    g.cursorY = 9;
    g.UpdateFreeY();  // only in the attack
    EXPECT_EQ(g.cursorY, 9);
}

TEST_F(BuildFreeCursor, AnOpenHoleDrawsTheCursorDown) {
    Game g = ClassicGame(1);
    g.phase = Phase::Attack;
    for (int x = 0; x < 8; ++x) Fill(g, 0, x, 0);
    FillColumn(g, 0, 0, 3, 5);
    FillColumn(g, 0, 1, 3, 5);
    Hole h;
    h.id = 30;
    h.tower = 0;
    h.cells = {{0, 1}, {1, 1}, {0, 2}, {1, 2}};
    h.openedAt = 0.0f;
    h.collapseAt = 3.0f;
    g.holes.push_back(h);
    g.supply = {'O'};
    g.cursorX = 0;
    g.UpdateFreeY();
    EXPECT_EQ(g.cursorY, 1);
    g.cursorX = 4;
    g.UpdateFreeY();
    EXPECT_EQ(g.cursorY, 1);  // no hole there: rests on row 0
    g.cursorX = 1;
    g.UpdateFreeY();
    EXPECT_EQ(g.cursorY, 5);  // half over the hole: rests on the load
}

TEST_F(BuildFreeCursor, RotateFreeTurnsWithoutKicks) {
    Game g = ClassicGame(1);
    g.phase = Phase::Attack;
    g.supply = {'I'};
    g.rotation = 1;
    g.cursorX = 7;
    g.RotateFree();
    EXPECT_EQ(g.rotation, 2);
    EXPECT_EQ(g.cursorX, 4);
    EXPECT_EQ(g.cursorY, 0);
    EXPECT_EQ(Sounds(g.TakeEvents()), std::vector<Sfx>{Sfx::Tick});
}

class BuildWholePhase : public RulesTest {};

TEST_F(BuildWholePhase, PlacingUndoingAndTheInspection) {
    Game g = ClassicGame(1);
    GetSettings().piece_choice = false;
    g.supply = {'I', 'I', 'O', 'T'};
    g.selected = 0;
    g.cursorX = 3;

    DropAt(g, 0, 0);  // I on row 0, columns 0..3
    EXPECT_EQ(g.score, 40);
    DropAt(g, 4, 0);  // I on row 0, columns 4..7: the row is full
    EXPECT_EQ(g.score, 40 + 90);
    EXPECT_EQ(g.FullRows(0), 1);

    DropAt(g, 0, 0);  // O on rows 1..2
    EXPECT_EQ(g.score, 170);
    g.Update(1.0f);
    g.Undo();  // inside the window
    EXPECT_EQ(g.score, 130);
    EXPECT_EQ(g.supply, (std::vector<char>{'O', 'T'}));
    EXPECT_FALSE(Occupied(g, 0, 0, 1));

    DropAt(g, 6, 0);  // O on columns 6..7
    EXPECT_EQ(g.score, 170);
    g.Update(6.0f);
    g.Undo();  // too late
    EXPECT_EQ(g.score, 170);
    EXPECT_TRUE(Occupied(g, 0, 6, 1));

    // An upside-down T on row 1 leaves gaps at (2, 1) and (4, 1) under its bar.
    DropAt(g, 2, 2);
    EXPECT_EQ(g.score, 210);
    EXPECT_TRUE(Occupied(g, 0, 3, 1));
    EXPECT_TRUE(Occupied(g, 0, 2, 2));
    EXPECT_TRUE(g.supply.empty());
    EXPECT_FLOAT_EQ(g.autoEndAt, g.clock + 1.0f);
    EXPECT_EQ(g.GapCells(0), (std::vector<Cell>{{2, 1}, {4, 1}}));
    EXPECT_EQ(g.EvalTop(0, 2), 1);
    g.TakeEvents();

    const float left = g.buildLeft;
    ASSERT_FLOAT_EQ(left, 63.0f);
    g.EndBuild(true);
    EXPECT_EQ(g.phase, Phase::Inspect);
    EXPECT_EQ(g.stats.timeBonus, 126);
    EXPECT_EQ(g.score, 210 + 126);
    EXPECT_EQ(g.stats.buildScore, 210);
    EXPECT_EQ(g.stats.gapCells, 2);
    EXPECT_EQ(g.stats.dropped, 2);
    EXPECT_EQ(g.stats.lost, 2);
    EXPECT_FALSE(Occupied(g, 0, 2, 2));
    EXPECT_FALSE(Occupied(g, 0, 4, 2));
    EXPECT_TRUE(Occupied(g, 0, 3, 2));  // the middle of the bar stays on its stem
    EXPECT_EQ(g.GetPiece(g.CellAt(0, 3, 2))->cells.size(), 2u);
    EXPECT_TRUE(GridMatchesPieces(g));
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say),
              std::vector<std::string>{"Bauabnahme: 2 Felder eingestürzt"});
    EXPECT_FLOAT_EQ(g.inspectEndAt, g.clock + 1.8f);
}

TEST_F(BuildPlacing, ADropAfterSwitchingTowersInTheAttackNeverOverlapsTheWall) {
    Game g = ClassicGame(2);
    GetSettings().difficulty = 3;  // the falling cursor stays in the attack
    g.phase = Phase::Attack;
    FillColumn(g, 1, 0, 0, 13);
    FillColumn(g, 1, 1, 0, 13);
    g.supply = {'O', 'I'};
    g.cursorX = 0;
    g.SwitchTower(1);  // clamps the free way: the cursor lands inside the full columns
    ASSERT_EQ(g.activeTower, 1);
    g.TakeEvents();
    g.Drop();
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say), std::vector<std::string>{"Kein Platz mehr in dieser Spalte"});
    EXPECT_EQ(g.supply.size(), 2u);
    EXPECT_TRUE(GridMatchesPieces(g));
}
