#pragma once
// The rules of the game: one plain object without drawing, sound or input,
// deterministic for a seed and a sequence of Update and Act calls.
#include "game/rules/Level.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace torvane {

struct Cell {
    int32_t x = 0;
    int32_t y = 0;

    bool operator==(const Cell& o) const { return x == o.x && y == o.y; }
    bool operator!=(const Cell& o) const { return !(*this == o); }
    // Row first, then column.
    bool operator<(const Cell& o) const { return y != o.y ? y < o.y : x < o.x; }
};

enum class Phase : int32_t { Title = 0, Build, Inspect, Announce, Attack, Eval, Over };

enum class Sfx : int32_t { Tick = 0, Place, Deny, Cannon, Whistle, Impact, Bell, Collapse, Reward, Horn };

enum class Action : int32_t { Left = 0, Right, Undo, Place, Rotate, Cycle, Done, Switch };

struct Tower {
    int32_t width = 0;
    std::vector<int32_t> cells;   // piece ids, row-major from row 0; 0 is empty
    uint32_t revision = 0;

    // A fresh stamp of the process-wide change counter.
    static uint32_t NextRevision();
    // The stamp the next call gives, and setting it: a replay stamps as its recording did.
    static uint32_t PeekRevision();
    static void SetNextRevision(uint32_t next);
};

struct Piece {
    char type = '1';
    bool ruin = false;
    std::vector<Cell> cells;
    int32_t tower = 0;
};

struct Prep {
    char type = '1';
    std::vector<Cell> cells;
};

struct Target {
    int32_t id = 0;
    int32_t piece = 0;
    int32_t tower = 0;
    float firedAt = 0.0f;
    float hitAt = 0.0f;
    std::vector<Cell> cells;
    std::vector<Prep> preps;
};

struct Hole {
    int32_t id = 0;
    int32_t tower = 0;
    std::vector<Cell> cells;
    float openedAt = 0.0f;
    float collapseAt = 0.0f;
    int32_t bells = 0;
};

struct Focus {
    enum Kind : int32_t { None = 0, Hole = 1, Target = 2 };
    Kind kind = None;
    int32_t id = 0;

    bool operator==(const Focus& o) const { return kind == o.kind && id == o.id; }
    bool operator!=(const Focus& o) const { return !(*this == o); }
};

struct RoundStats {
    int32_t buildScore = 0;
    int32_t repairScore = 0;
    int32_t held = 0;
    int32_t lost = 0;
    int32_t levelBonus = 0;
    int32_t timeBonus = 0;
    int32_t gapCells = 0;
    int32_t dropped = 0;
    std::vector<int32_t> towerPct;
    std::vector<int32_t> sectorPct;
    int32_t overallPct = 0;
    bool passed = false;
};

struct Event {
    enum Kind : int32_t { Sound = 0, Burst, Float, Flash, Say, Placed, Banner };
    Kind kind = Sound;
    Sfx sfx = Sfx::Tick;
    float value = 0.0f;
    int32_t tower = 0;
    std::vector<Cell> cells;
    int32_t count = 0;
    std::string text;
};

// The last act that can be taken back: a placed piece or a prep.
struct UndoRecord {
    bool valid = false;
    Phase phase = Phase::Build;
    int32_t tower = 0;
    int32_t piece = 0;    // 0 for a prep
    int32_t target = 0;   // 0 for a placed piece
    char type = '1';
    int32_t rotation = 0;
    int32_t x = 0;
    int32_t selected = 0;
    int32_t points = 0;
    float until = 0.0f;
    std::vector<Cell> cells;
};

class Game {
public:
    explicit Game(unsigned seed);

    // ---- state, in order ----
    std::mt19937 rng;
    Phase phase = Phase::Title;
    int32_t level = 1;
    int32_t score = 0;
    float clock = 0.0f;
    float buildLeft = 0.0f;
    LevelConfig config;
    RoundStats stats;
    std::vector<Tower> towers;
    std::map<int32_t, Piece> pieces;
    int32_t nextPieceId = 1;
    int32_t nextShotId = 1;
    int32_t activeTower = 0;
    std::vector<char> supply;
    int32_t selected = 0;
    int32_t cursorX = 0;
    int32_t cursorY = 0;
    int32_t rotation = 0;
    float autoEndAt = -1.0f;
    float inspectEndAt = 0.0f;
    std::vector<Target> targets;
    std::vector<Hole> holes;
    Focus focus;
    int32_t shotsLeft = 0;
    float nextShotAt = 0.0f;
    float attackEndAt = -1.0f;
    int32_t wave = -1;
    int32_t waveShotsLeft = 0;
    int32_t bonusPieces = 0;
    float viewCentre = 0.0f;
    bool viewKnown = false;
    std::vector<Event> events;
    UndoRecord undo;
    bool lineStood = false;

    // ---- frame step and queue ----
    void Update(float dt);
    std::vector<Event> TakeEvents();
    // One output of the engine as a float in [0, 1).
    float Random();

    // ---- tower model and geometry ----
    int WrapX(int x) const;
    float WrapDiff(float d) const;
    int ColumnTop(int tower, int x) const;
    int EvalTop(int tower, int x) const;
    int FullRows(int tower) const;
    bool Free(int tower, const std::vector<Cell>& cells, int x, int y) const;
    bool Inside(const std::vector<Cell>& cells, int y) const;
    float ColumnCentre(const std::vector<Cell>& cells) const;
    bool IsAttackedColumn(int x) const;
    bool SectorActive(int index) const;
    bool InActiveSector(int x) const;
    int WaveSectorCentre() const;
    int PctAbove(int tower) const;
    int SectorPct(int index) const;
    int OverallPct() const;
    bool LineComplete() const;
    // Piece id in a grid cell, 0 when empty; no bounds check.
    int CellAt(int tower, int x, int y) const;

    Hole* FindHole(int id);
    const Hole* FindHole(int id) const;
    Target* FindTarget(int id);
    const Target* FindTarget(int id) const;
    const Piece* GetPiece(int id) const;

    // ---- events ----
    void Sound(Sfx sfx, float value);
    void Burst(int tower, const std::vector<Cell>& cells, int count);
    void FloatAt(int tower, const std::vector<Cell>& cells, const std::string& text);
    void Flash(int tower, const std::vector<Cell>& cells);
    void Say(const std::string& text);
    void Placed(int tower, const std::vector<Cell>& cells);
    void Banner(const std::string& text, float seconds);

    // ---- difficulty ----
    bool Waves() const;
    bool PrepAllowed() const;
    bool BuildsInAttack() const;
    bool FreeRepair() const;

    // ---- pieces and the supply ----
    char SelectedType() const;
    template <typename T>
    void Shuffle(std::vector<T>& list);
    void Cycle();
    void SelectStep(int delta);
    void GiveBack(const std::vector<char>& letters);
    bool PiecesLimited() const;

    // ---- build phase ----
    void StartLevel(int level, bool keepTowers);
    void StartLevel(int level) { StartLevel(level, false); }
    int AddPiece(int tower, char type, const std::vector<Cell>& cells, bool ruin);
    bool RemoveCell(int tower, int x, int y);
    void Move(int direction);
    void Rotate();
    void Drop();
    void PlaceHere();
    void ClampCursor();
    void MoveFree(int direction);
    void RotateFree();
    void ClampFree();
    void UpdateFreeY();
    void SwitchTower(int direction);
    void EnterTower(int direction);
    void Undo();
    bool Building() const;
    int GhostY() const;
    std::vector<Cell> CursorCells() const;
    int PlacementAt(int x, int y, int rotation) const;
    int FreePlacement() const;
    float UndoTimeLeft() const;
    void RememberForUndo(int piece, int target, char type, const std::vector<Cell>& cells, int points);

    // ---- inspection ----
    void EndBuild(bool early);
    std::vector<Cell> GapCells(int tower) const;
    std::vector<std::vector<Cell>> GapGroups(int tower) const;
    bool Loaded(int tower, int x, int y) const;

    // ---- attack ----
    void BeginAttack();
    void StartWave(int index);
    void FireShot();
    void FireAt(int pieceId);
    void UpdateAttack();

    // ---- impacts and holes ----
    void Impact(const Target& target);
    void Collapse(const Hole& hole);
    std::vector<Cell> OpenCells(const Hole& hole) const;

    // ---- repair ----
    void Act(Action action);
    std::vector<Focus> FocusList() const;
    bool IsInFocusList(const Focus& f) const;
    void ValidateFocus();
    void SwitchFocus(int direction);
    std::vector<Cell> FocusCells(const Focus& f) const;
    float FocusCentre(const Focus& f) const;
    bool FocusInView(const Focus& f) const;
    std::vector<Cell> TargetOpen(const Target& target) const;
    std::vector<Cell> FocusOpen(const Focus& f) const;
    std::vector<Cell> RepairFit(char letter, const Focus& f) const;
    void CursorToFocus();
    void Repair();
    void PlaceFree();

    // ---- evaluation and level flow ----
    void EndAttack();
    bool LastLevel() const;
    void NextLevel();
    void NewGame();
    void DebugClearTowers();
    void DebugPlace(int tower, char type, const std::vector<Cell>& cells);

private:
    // The supply bag: `count` letters, seven shapes per shuffled bag.
    void DrawSupply(int count);
    // Lays the ruin on one tower.
    void LayRuin(int tower);
    // Takes the letter at `selected` out of the supply; `selected` goes to 0
    // when it lies past the end.
    void TakeSelected();
    // The selected letter turned by `rotation`; empty without a piece.
    std::vector<Cell> CursorShape() const;
    // The lowest row the falling cursor reaches going straight down.
    int LandingRow(const std::vector<Cell>& shape) const;
    // Columns of the cursor brought into the tower for a shape of that width.
    int ClampColumn(int x, int shapeWidth) const;
};

template <typename T>
void Game::Shuffle(std::vector<T>& list) {
    for (int i = static_cast<int>(list.size()) - 1; i >= 1; --i) {
        const float r = Random();
        const int j = std::min(i, static_cast<int>(static_cast<float>(i + 1) * r));
        std::swap(list[i], list[j]);
    }
}

} // namespace torvane
