// What a ball does to the wall, the holes it tears, and their fall.
#include "game/rules/Impacts.h"

#include "game/rules/Lang.h"
#include "game/rules/Pieces.h"

#include <cstdlib>

namespace torvane {

namespace {

// Whether some cell of `cells` carries a load: anything occupied above it in its column.
bool AnyLoaded(const Game& game, int tower, const std::vector<Cell>& cells) {
    for (const Cell& c : cells)
        if (game.Loaded(tower, c.x, c.y)) return true;
    return false;
}

void EraseHole(Game& game, size_t index) {
    game.holes.erase(game.holes.begin() + static_cast<std::ptrdiff_t>(index));
}

} // namespace

void AddRepairPoints(Game& game, int points) {
    game.score += points;
    game.stats.repairScore += points;
}

std::vector<Cell> Game::OpenCells(const Hole& hole) const {
    std::vector<Cell> open;
    for (const Cell& c : hole.cells)
        if (CellAt(hole.tower, c.x, c.y) == 0) open.push_back(c);
    return open;
}

void Game::Impact(const Target& target) {
    if (undo.valid && undo.target == target.id) undo.valid = false;

    char type = '1';
    std::vector<Cell> removed;
    if (const Piece* piece = GetPiece(target.piece)) {
        type = piece->type;
        for (const Cell& c : piece->cells)
            if (CellAt(piece->tower, c.x, c.y) == target.piece) removed.push_back(c);
    }
    Sound(Sfx::Impact, 0.0f);
    for (const Cell& c : removed) RemoveCell(target.tower, c.x, c.y);

    int placed = 0;
    for (const Prep& prep : target.preps) {
        std::vector<Cell> open;
        for (const Cell& c : prep.cells)
            if (CellAt(target.tower, c.x, c.y) == 0) open.push_back(c);
        if (open.empty()) {
            GiveBack({prep.type}); // its place was taken meanwhile
            continue;
        }
        AddPiece(target.tower, prep.type, open, false);
        ++placed;
        AddRepairPoints(*this, kCellPoints * static_cast<int>(open.size()));
    }

    if (removed.empty()) {
        Burst(target.tower, target.cells, 6);
        return;
    }
    const int n = static_cast<int>(removed.size());
    stats.lost += n;
    Burst(target.tower, removed, 14);

    // Only the count of cells decides whether the piece comes back whole.
    const bool whole = n == static_cast<int>(BaseShape(type).size());
    bool filled = true;
    for (const Cell& c : removed) filled = filled && CellAt(target.tower, c.x, c.y) != 0;
    if (placed > 0 && filled) {
        // The wall stood the whole time: no hole can open.
        GiveBack(whole ? std::vector<char>{type} : std::vector<char>(static_cast<size_t>(n), '1'));
        AddRepairPoints(*this, kInstantPoints);
        stats.held += 1;
        Flash(target.tower, removed);
        FloatAt(target.tower, removed, Tr("Sofort ersetzt! +150"));
        Sound(Sfx::Reward, 0.0f);
        return;
    }

    const bool neighbours = n == 2 && std::abs(removed[0].x - removed[1].x) + std::abs(removed[0].y - removed[1].y) == 1;
    if (whole)
        GiveBack({type});
    else if (neighbours)
        GiveBack({'2'});
    else
        GiveBack(std::vector<char>(static_cast<size_t>(n), '1'));
    FloatAt(target.tower, removed, Tr("Teil zurück"));

    // The load alone decides, not whether the breach is filled by now.
    if (!AnyLoaded(*this, target.tower, removed)) return;
    Hole hole;
    hole.id = nextShotId++;
    hole.tower = target.tower;
    hole.cells = removed;
    hole.openedAt = clock;
    hole.collapseAt = clock + kFuseSeconds;
    holes.push_back(hole);
    // A fresh hole takes the attention from a target, not from another hole.
    if (target.tower == activeTower && focus.kind != Focus::Hole) focus = Focus{Focus::Hole, hole.id};
}

void Game::Collapse(const Hole& hole) {
    std::vector<Cell> fallen;
    for (const Cell& c : hole.cells) {
        if (CellAt(hole.tower, c.x, c.y) != 0) continue;
        for (int y = c.y + 1; y < config.height; ++y) {
            if (CellAt(hole.tower, c.x, y) == 0) continue;
            fallen.push_back(Cell{c.x, y});
            RemoveCell(hole.tower, c.x, y);
        }
    }
    const int count = static_cast<int>(fallen.size());
    stats.lost += count;
    if (count == 0) return;
    Burst(hole.tower, fallen, std::min(3 * count, 40));
    Sound(Sfx::Collapse, 0.0f);
    Say(Trn("Eingestürzt: {0} Feld|Eingestürzt: {0} Felder", count));
}

void RunFuses(Game& game) {
    for (size_t i = 0; i < game.holes.size();) {
        const std::vector<Cell> open = game.OpenCells(game.holes[i]);
        if (open.empty()) {
            const Hole held = game.holes[i];
            EraseHole(game, i);
            game.stats.held += 1;
            AddRepairPoints(game, kHeldPoints);
            game.undo.valid = false; // the filling piece stays
            game.FloatAt(held.tower, held.cells, Tr("Gehalten! +100"));
            game.Sound(Sfx::Reward, 0.0f);
            continue;
        }
        if (!AnyLoaded(game, game.holes[i].tower, open)) {
            // Its load has fallen through another breach: nothing left to save.
            EraseHole(game, i);
            continue;
        }
        Hole& hole = game.holes[i];
        if (hole.bells <= 2 && hole.openedAt + static_cast<float>(hole.bells) <= game.clock) {
            hole.bells += 1;
            game.Sound(Sfx::Bell, 0.0f);
        }
        if (hole.collapseAt <= game.clock) {
            const Hole fuse = hole;
            EraseHole(game, i);
            game.Collapse(fuse);
            continue;
        }
        ++i;
    }
}

} // namespace torvane
