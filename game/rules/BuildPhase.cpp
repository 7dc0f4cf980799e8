#include "game/rules/Lang.h"
#include "game/rules/Pieces.h"
#include "game/rules/TorvaneGame.h"

#include <algorithm>

namespace torvane {

namespace {

// Chance of a gap per row of the ruin.
constexpr float kGapRing[6] = {0.05f, 0.12f, 0.25f, 0.5f, 0.7f, 0.85f};
constexpr float kGapClassic[2] = {0.08f, 0.3f};

constexpr int kKicks[5] = {0, -1, 1, -2, 2};

bool Contains(const std::vector<Cell>& cells, const Cell& c) {
    return std::find(cells.begin(), cells.end(), c) != cells.end();
}

} // namespace

void Game::StartLevel(int newLevel, bool keepTowers) {
    const int oldTowers = config.towers, oldWidth = config.width, oldHeight = config.height;
    level = newLevel;
    config = ConfigFor(newLevel);

    const bool keep = keepTowers && !config.newTower && !towers.empty() &&
                      oldTowers == config.towers && oldWidth == config.width &&
                      oldHeight == config.height;
    int count = config.pieces;
    if (keep) {
        count += bonusPieces;
    } else {
        pieces.clear();
        nextPieceId = 1;
        Tower empty;
        empty.width = config.width;
        empty.cells.assign(static_cast<size_t>(std::max(config.width * config.height, 0)), 0);
        empty.revision = Tower::NextRevision();
        towers.assign(static_cast<size_t>(std::max(config.towers, 0)), empty);
        for (int t = 0; t < static_cast<int>(towers.size()); ++t) LayRuin(t);
    }

    activeTower = 0;
    wave = -1;
    waveShotsLeft = 0;
    supply.clear();
    DrawSupply(count);
    selected = 0;

    targets.clear();
    holes.clear();
    focus = Focus{};
    attackEndAt = -1.0f;
    stats = RoundStats{};

    phase = Phase::Build;
    clock = 0.0f;
    shotsLeft = 0;
    buildLeft = config.buildTime;
    autoEndAt = -1.0f;

    // An inherited tower that already stands does not celebrate.
    lineStood = LineComplete();

    cursorX = config.sectors.empty() ? config.width / 2 - 1 : WrapX(config.sectors[0].centre - 1);
    cursorY = config.height;
    rotation = 0;
    ClampCursor();

    Say(Tr("Aufbau – der Angriff kommt gleich"));
}

void Game::LayRuin(int tower) {
    const float* chances = config.ring ? kGapRing : kGapClassic;
    const int maxRows = config.ring ? 6 : 2;
    const int rows = std::min(std::clamp(config.ruinRows, 1, maxRows), config.height);
    const int width = config.width;
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < width;) {
            const float a = Random();
            const float b = Random();
            const int length = std::min(b < 0.5f ? 2 : 1, width - x);
            if (a >= chances[y]) {
                std::vector<Cell> cells;
                for (int i = 0; i < length; ++i) cells.push_back({x + i, y});
                AddPiece(tower, length == 2 ? '2' : '1', cells, true);
            }
            x += length;
        }
    }
    // Nothing of the ruin floats.
    for (int y = 1; y < rows; ++y)
        for (int x = 0; x < width; ++x)
            if (CellAt(tower, x, y) != 0 && CellAt(tower, x, y - 1) == 0) RemoveCell(tower, x, y);
}

int Game::AddPiece(int tower, char type, const std::vector<Cell>& cells, bool ruin) {
    const int id = nextPieceId++;
    if (tower >= 0 && tower < static_cast<int>(towers.size())) {
        Tower& t = towers[tower];
        for (const Cell& c : cells) {
            // Only memory safety is checked here; bounds and occupancy are the caller's task.
            const long index = static_cast<long>(c.x) + static_cast<long>(c.y) * t.width;
            if (c.x >= 0 && c.x < t.width && index >= 0 && index < static_cast<long>(t.cells.size()))
                t.cells[static_cast<size_t>(index)] = id;
            t.revision = Tower::NextRevision();
        }
    }
    pieces[id] = Piece{type, ruin, cells, tower};
    return id;
}

bool Game::RemoveCell(int tower, int x, int y) {
    const int id = CellAt(tower, x, y);
    if (id == 0) return false;
    Tower& t = towers[tower];
    t.cells[static_cast<size_t>(x + y * t.width)] = 0;
    t.revision = Tower::NextRevision();
    const auto found = pieces.find(id);
    if (found != pieces.end()) {
        std::vector<Cell>& cells = found->second.cells;
        cells.erase(std::remove(cells.begin(), cells.end(), Cell{x, y}), cells.end());
        if (cells.empty()) pieces.erase(found);
    }
    return true;
}

std::vector<Cell> Game::CursorShape() const {
    const char letter = SelectedType();
    return letter == 0 ? std::vector<Cell>{} : Rotated(letter, rotation);
}

int Game::ClampColumn(int x, int shapeWidth) const {
    if (config.ring) return WrapX(x);
    return std::max(0, std::min(x, config.width - shapeWidth));
}

std::vector<Cell> Game::CursorCells() const {
    std::vector<Cell> cells = CursorShape();
    for (Cell& c : cells) c = Cell{WrapX(cursorX + c.x), cursorY + c.y};
    return cells;
}

void Game::ClampCursor() {
    const std::vector<Cell> shape = CursorShape();
    if (shape.empty()) return;
    cursorX = ClampColumn(cursorX, ShapeWidth(shape));
    if (!Free(activeTower, shape, cursorX, cursorY)) cursorY = config.height;
}

void Game::Move(int direction) {
    const std::vector<Cell> shape = CursorShape();
    if (shape.empty()) return;
    const int x = cursorX + direction;
    if (Free(activeTower, shape, x, cursorY)) {
        cursorX = WrapX(x);
    } else if (!config.ring && (x < 0 || x + ShapeWidth(shape) > config.width)) {
        EnterTower(direction);
    }
}

void Game::EnterTower(int direction) {
    if (towers.size() < 2) return;
    SwitchTower(direction);
    const std::vector<Cell> shape = CursorShape();
    const int shapeWidth = shape.empty() ? 1 : ShapeWidth(shape);
    cursorX = direction > 0 ? 0 : config.width - shapeWidth;
    if (phase == Phase::Build)
        ClampCursor();
    else
        ClampFree();
}

void Game::SwitchTower(int direction) {
    if (config.ring) return;
    const int n = static_cast<int>(towers.size());
    if (n < 2) {
        Say(Tr("Nur ein Turm in diesem Level"));
        return;
    }
    activeTower = (((activeTower + direction) % n) + n) % n;
    if (phase == Phase::Build) {
        cursorY = config.height;
        ClampCursor();
    } else {
        ClampFree();
    }
    focus = Focus{};
    Sound(Sfx::Tick, 0.0f);
}

void Game::Rotate() {
    const char letter = SelectedType();
    if (letter == 0) return;
    const int turned = (rotation + 1) % 4;
    const std::vector<Cell> shape = Rotated(letter, turned);
    const int shapeWidth = ShapeWidth(shape);
    for (int kick : kKicks) {
        const int x = ClampColumn(cursorX + kick, shapeWidth);
        if (Free(activeTower, shape, x, cursorY)) {
            cursorX = x;
            rotation = turned;
            Sound(Sfx::Tick, 0.0f);
            return;
        }
    }
    Sound(Sfx::Deny, 0.0f);
}

int Game::LandingRow(const std::vector<Cell>& shape) const {
    // Switching towers in the attack clamps the cursor the free way, which can leave it
    // inside the wall; a drop, and so the ghost, always starts from a free position.
    int y = Free(activeTower, shape, cursorX, cursorY) ? cursorY : config.height;
    while (Free(activeTower, shape, cursorX, y - 1)) --y;
    return y;
}

int Game::GhostY() const {
    const std::vector<Cell> shape = CursorShape();
    if (shape.empty()) return -1;
    const int y = LandingRow(shape);
    return Inside(shape, y) ? y : -1;
}

void Game::Drop() {
    const std::vector<Cell> shape = CursorShape();
    if (shape.empty()) {
        Say(Tr("Keine Bauteile mehr – Enter startet den Angriff"));
        Sound(Sfx::Deny, 0.0f);
        return;
    }
    cursorY = LandingRow(shape);
    PlaceHere();
}

void Game::PlaceHere() {
    const char letter = SelectedType();
    if (letter == 0) return;
    if (!Inside(CursorShape(), cursorY)) {
        cursorY = config.height;
        Say(Tr("Kein Platz mehr in dieser Spalte"));
        Sound(Sfx::Deny, 0.0f);
        return;
    }
    const int before = FullRows(activeTower);
    const std::vector<Cell> cells = CursorCells();
    const int id = AddPiece(activeTower, letter, cells, false);
    Placed(activeTower, cells);

    const int gain = FullRows(activeTower) - before;
    const int points = 10 * static_cast<int>(cells.size()) + 50 * std::max(gain, 0);
    if (gain >= 1) FloatAt(activeTower, cells, Trf("+{0} Reihe!", {std::to_string(points)}));
    score += points;
    (phase == Phase::Build ? stats.buildScore : stats.repairScore) += points;

    RememberForUndo(id, 0, letter, cells, points);

    TakeSelected();
    cursorY = config.height;
    rotation = 0;
    ClampCursor();
    Sound(Sfx::Place, 0.0f);

    if (supply.empty() && phase == Phase::Build) {
        autoEndAt = clock + GetSettings().autoEndDelay;
        Say(Tr("Alle Teile verbaut"));
    }
}

void Game::ClampFree() {
    const std::vector<Cell> shape = CursorShape();
    if (shape.empty()) return;
    cursorX = ClampColumn(cursorX, ShapeWidth(shape));
    cursorY = std::max(0, std::min(cursorY, config.height - ShapeHeight(shape)));
}

void Game::MoveFree(int direction) {
    const std::vector<Cell> shape = CursorShape();
    if (shape.empty()) return;
    if (config.ring) {
        cursorX = WrapX(cursorX + direction);
    } else {
        const int x = cursorX + direction;
        if (x >= 0 && x + ShapeWidth(shape) <= config.width)
            cursorX = x;
        else
            EnterTower(direction);
    }
    UpdateFreeY();
}

void Game::RotateFree() {
    if (SelectedType() == 0) return;
    rotation = (rotation + 1) % 4;
    ClampFree();
    UpdateFreeY();
    Sound(Sfx::Tick, 0.0f);
}

int Game::PlacementAt(int x, int y, int turns) const {
    const char letter = SelectedType();
    if (letter == 0) return 0;
    std::vector<Cell> cells = Rotated(letter, turns);
    for (Cell& c : cells) {
        c = Cell{WrapX(x + c.x), y + c.y};
        if (c.x < 0 || c.x >= config.width || c.y < 0 || c.y >= config.height) return 0;
    }
    bool empty = true, supported = false;
    for (const Cell& c : cells) {
        if (CellAt(activeTower, c.x, c.y) != 0) empty = false;
        if (c.y == 0 ||
            (CellAt(activeTower, c.x, c.y - 1) != 0 && !Contains(cells, Cell{c.x, c.y - 1})))
            supported = true;
    }
    if (empty) return supported ? 1 : 0;
    if (!PrepAllowed()) return 0;
    for (const Target& target : targets) {
        if (target.tower != activeTower) continue;
        const std::vector<Cell> open = TargetOpen(target);
        if (std::all_of(cells.begin(), cells.end(),
                        [&](const Cell& c) { return Contains(open, c); }))
            return 2;
    }
    return 0;
}

int Game::FreePlacement() const { return PlacementAt(cursorX, cursorY, rotation); }

void Game::UpdateFreeY() {
    const std::vector<Cell> shape = CursorShape();
    if (shape.empty() || phase != Phase::Attack) return;
    const int top = config.height - ShapeHeight(shape);
    std::vector<Cell> open;
    for (const Hole& h : holes) {
        if (h.tower != activeTower) continue;
        const std::vector<Cell> cells = OpenCells(h);
        open.insert(open.end(), cells.begin(), cells.end());
    }
    if (top < 0) {
        cursorY = 0;
        return;
    }
    const auto allOf = [&](int y, auto test) {
        return std::all_of(shape.begin(), shape.end(), [&](const Cell& c) {
            return test(Cell{WrapX(cursorX + c.x), y + c.y});
        });
    };
    int prepRow = -1;
    for (int y = 0; y <= top; ++y) {
        const int k = PlacementAt(cursorX, y, rotation);
        // The first row at which the piece drops into a hole wins.
        if (k == 1 && allOf(y, [&](const Cell& c) { return Contains(open, c); })) {
            cursorY = y;
            return;
        }
        if (k == 2 && prepRow < 0) prepRow = y;
    }
    if (prepRow >= 0) {
        cursorY = prepRow;
        return;
    }
    // Otherwise the piece rests on the wall.
    int y = top;
    while (y > 0 && allOf(y - 1, [&](const Cell& c) { return CellAt(activeTower, c.x, c.y) == 0; }))
        --y;
    cursorY = y;
}

void Game::RememberForUndo(int piece, int target, char type, const std::vector<Cell>& cells,
                           int points) {
    undo.valid = true;
    undo.phase = phase;
    undo.tower = activeTower;
    undo.piece = piece;
    undo.target = target;
    undo.type = type;
    undo.points = points;
    undo.rotation = rotation;
    undo.x = cursorX;
    undo.selected = selected;
    undo.until = clock + GetSettings().undoWindow;
    undo.cells = cells;
}

void Game::Undo() {
    if (!undo.valid || undo.phase != phase) {
        undo.valid = false;
        return;
    }
    if (!(undo.until - clock > 0.0f)) {
        Say(Tr("Zu spät zum Zurücklegen"));
        undo.valid = false;
        return;
    }
    if (undo.piece != 0) {
        const Piece* piece = GetPiece(undo.piece);
        if (piece == nullptr || piece->cells.size() != undo.cells.size()) {
            undo.valid = false;
            Say(Tr("Das Teil steht nicht mehr"));
            Sound(Sfx::Deny, 0.0f);
            return;
        }
        const int tower = piece->tower;
        for (const Cell& c : undo.cells) RemoveCell(tower, c.x, c.y);
    } else {
        bool found = false;
        for (Target& target : targets) {
            if (target.id != undo.target) continue;
            for (auto it = target.preps.rbegin(); it != target.preps.rend(); ++it) {
                if (it->cells == undo.cells) {
                    target.preps.erase(std::next(it).base());
                    found = true;
                    break;
                }
            }
        }
        if (!found) {
            undo.valid = false;
            return;
        }
    }

    score -= undo.points;
    (phase == Phase::Build ? stats.buildScore : stats.repairScore) -= undo.points;

    const int at = std::clamp(undo.selected, 0, static_cast<int>(supply.size()));
    supply.insert(supply.begin() + at, undo.type);
    selected = at;
    activeTower = undo.tower;
    cursorX = undo.x;
    rotation = undo.rotation;

    if (Building()) {
        cursorY = config.height;
        autoEndAt = -1.0f;
        ClampCursor();
    } else {
        ClampFree();
        UpdateFreeY();
    }

    undo.valid = false;
    if (phase == Phase::Build) lineStood = LineComplete();
    Say(Tr("Zurückgelegt"));
    Sound(Sfx::Tick, 0.0f);
}

float Game::UndoTimeLeft() const {
    if (!undo.valid || undo.phase != phase) return 0.0f;
    return std::max(undo.until - clock, 0.0f);
}

bool Game::Building() const {
    return phase == Phase::Build || (phase == Phase::Attack && BuildsInAttack());
}

} // namespace torvane
