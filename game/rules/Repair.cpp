// The attack from the player's side: the goals, the fit of a piece, the two ways
// of placing, and the one entry for all player actions.
#include "game/rules/Impacts.h"
#include "game/rules/Lang.h"
#include "game/rules/Pieces.h"

#include <climits>
#include <cmath>

namespace torvane {

namespace {

bool Contains(const std::vector<Cell>& cells, const Cell& cell) {
    return std::find(cells.begin(), cells.end(), cell) != cells.end();
}

} // namespace

void Game::Act(Action action) {
    if (phase == Phase::Build || (phase == Phase::Attack && BuildsInAttack())) {
        switch (action) {
        case Action::Left: Move(-1); break;
        case Action::Right: Move(1); break;
        case Action::Undo: Undo(); break;
        case Action::Place: Drop(); break;
        case Action::Rotate: Rotate(); break;
        case Action::Cycle: Cycle(); break;
        case Action::Done: EndBuild(true); break;
        case Action::Switch: SwitchTower(1); break;
        }
        return;
    }
    if (phase != Phase::Attack) return;
    if (GetSettings().repair_mode == 0) {
        switch (action) {
        case Action::Left: MoveFree(-1); break;
        case Action::Right: MoveFree(1); break;
        case Action::Undo: Undo(); break;
        case Action::Place: PlaceFree(); break;
        case Action::Rotate: RotateFree(); break;
        case Action::Cycle:
            SelectStep(1);
            ClampFree();
            UpdateFreeY();
            break;
        case Action::Done: break;
        case Action::Switch: SwitchTower(1); break;
        }
        return;
    }
    switch (action) {
    case Action::Left:
        if (!config.ring) SwitchTower(-1);
        break;
    case Action::Right:
        if (!config.ring) SwitchTower(1);
        break;
    case Action::Undo: SwitchFocus(1); break;
    case Action::Place:
    case Action::Rotate:
    case Action::Done: Repair(); break;
    case Action::Cycle: SelectStep(1); break;
    case Action::Switch: SwitchTower(1); break;
    }
}

std::vector<Focus> Game::FocusList() const {
    std::vector<const Hole*> burning;
    for (const Hole& h : holes)
        if (h.tower == activeTower && !OpenCells(h).empty()) burning.push_back(&h);
    std::stable_sort(burning.begin(), burning.end(),
                     [](const Hole* a, const Hole* b) { return a->collapseAt < b->collapseAt; });
    std::vector<Focus> list;
    for (const Hole* h : burning) list.push_back(Focus{Focus::Hole, h->id});
    if (!PrepAllowed()) return list;
    std::vector<const Target*> flying;
    for (const Target& t : targets)
        if (t.tower == activeTower) flying.push_back(&t);
    std::stable_sort(flying.begin(), flying.end(),
                     [](const Target* a, const Target* b) { return a->hitAt < b->hitAt; });
    for (const Target* t : flying) list.push_back(Focus{Focus::Target, t->id});
    return list;
}

bool Game::IsInFocusList(const Focus& f) const {
    const std::vector<Focus> list = FocusList();
    return std::find(list.begin(), list.end(), f) != list.end();
}

void Game::ValidateFocus() {
    if (focus.kind != Focus::None && IsInFocusList(focus)) return;
    const std::vector<Focus> list = FocusList();
    focus = list.empty() ? Focus{} : list.front();
}

void Game::SwitchFocus(int direction) {
    const std::vector<Focus> list = FocusList();
    if (list.empty()) return;
    const int n = static_cast<int>(list.size());
    const auto found = std::find(list.begin(), list.end(), focus);
    const int pos = found == list.end() ? 0 : static_cast<int>(found - list.begin());
    focus = list[static_cast<size_t>(((pos + direction) % n + n) % n)];
    Sound(Sfx::Tick, 0.0f);
}

std::vector<Cell> Game::FocusCells(const Focus& f) const {
    if (f.kind == Focus::Hole) {
        const Hole* hole = FindHole(f.id);
        return hole ? OpenCells(*hole) : std::vector<Cell>{};
    }
    if (f.kind == Focus::Target) {
        const Target* target = FindTarget(f.id);
        if (!target) return {};
        const Piece* piece = GetPiece(target->piece);
        return piece ? piece->cells : target->cells;
    }
    return {};
}

float Game::FocusCentre(const Focus& f) const { return ColumnCentre(FocusCells(f)); }

bool Game::FocusInView(const Focus& f) const {
    if (!config.ring || !viewKnown || f.kind == Focus::None) return true;
    return std::fabs(WrapDiff(FocusCentre(f) - viewCentre)) <= GetSettings().viewTolerance;
}

std::vector<Cell> Game::TargetOpen(const Target& target) const {
    const Piece* piece = GetPiece(target.piece);
    std::vector<Cell> open;
    for (const Cell& c : piece ? piece->cells : target.cells) {
        bool covered = false;
        for (const Prep& prep : target.preps) covered = covered || Contains(prep.cells, c);
        if (!covered) open.push_back(c);
    }
    return open;
}

std::vector<Cell> Game::FocusOpen(const Focus& f) const {
    if (f.kind == Focus::Hole) {
        const Hole* hole = FindHole(f.id);
        return hole ? OpenCells(*hole) : std::vector<Cell>{};
    }
    if (f.kind == Focus::Target) {
        const Target* target = FindTarget(f.id);
        return target ? TargetOpen(*target) : std::vector<Cell>{};
    }
    return {};
}

std::vector<Cell> Game::RepairFit(char letter, const Focus& f) const {
    const std::vector<Cell> open = FocusOpen(f);
    if (letter == 0 || open.empty()) return {};
    std::vector<std::vector<Cell>> tried;
    std::vector<Cell> best;
    int bestKey = INT_MAX;
    for (int r = 0; r < 4; ++r) {
        const std::vector<Cell> shape = Rotated(letter, r);
        if (std::find(tried.begin(), tried.end(), shape) != tried.end()) continue;
        tried.push_back(shape);
        for (const Cell& o : open) {
            for (const Cell& a : shape) {
                std::vector<Cell> laid;
                bool fits = true;
                int minX = INT_MAX, minY = INT_MAX;
                for (const Cell& s : shape) {
                    const Cell at{WrapX(o.x - a.x + s.x), o.y - a.y + s.y};
                    if (!Contains(open, at)) {
                        fits = false;
                        break;
                    }
                    laid.push_back(at);
                    minX = std::min(minX, at.x);
                    minY = std::min(minY, at.y);
                }
                // Only a fit has a key: a shape that left at once has no lowest row.
                if (!fits) continue;
                // The lowest row wins, then the smallest column, then the first found.
                const int key = minX + 100 * minY;
                if (key < bestKey) {
                    bestKey = key;
                    best = laid;
                }
            }
        }
    }
    return best;
}

void Game::CursorToFocus() {
    ValidateFocus();
    const char letter = SelectedType();
    if (letter == 0 || focus.kind == Focus::None) return;
    const std::vector<Cell> fit = RepairFit(letter, focus);
    for (int r = 0; r < 4 && !fit.empty(); ++r) {
        const std::vector<Cell> shape = Rotated(letter, r);
        for (const Cell& f : fit) {
            const Cell origin{f.x - shape[0].x, f.y - shape[0].y};
            bool inside = true;
            for (const Cell& s : shape) inside = inside && Contains(fit, Cell{WrapX(origin.x + s.x), origin.y + s.y});
            if (!inside) continue;
            rotation = r;
            cursorX = WrapX(origin.x);
            cursorY = origin.y;
            ClampFree();
            return;
        }
    }
    const std::vector<Cell> cells = FocusCells(focus);
    if (cells.empty()) return;
    int lowest = cells.front().y;
    for (const Cell& c : cells) lowest = std::min(lowest, c.y);
    cursorX = WrapX(static_cast<int>(std::floor(ColumnCentre(cells))));
    cursorY = lowest;
    ClampFree();
}

void Game::Repair() {
    ValidateFocus();
    if (focus.kind == Focus::None) {
        Say(Tr("Gerade nichts zu reparieren"));
        return;
    }
    const char letter = SelectedType();
    if (letter == 0) {
        Say(Tr("Keine Teile mehr"));
        Sound(Sfx::Deny, 0.0f);
        return;
    }
    if (!FocusInView(focus)) {
        Say(Tr("Turm dreht noch"));
        Sound(Sfx::Deny, 0.0f);
        return;
    }
    const std::vector<Cell> fit = RepairFit(letter, focus);
    if (fit.empty()) {
        const bool ready = focus.kind == Focus::Target && FocusOpen(focus).empty();
        Say(Tr(ready ? "Ersatz liegt schon bereit" : "Dieses Teil passt hier nicht"));
        Sound(Sfx::Deny, 0.0f);
        return;
    }
    if (focus.kind == Focus::Hole) {
        AddPiece(activeTower, letter, fit, false);
        Placed(activeTower, fit);
        AddRepairPoints(*this, kCellPoints * static_cast<int>(fit.size()));
        Flash(activeTower, fit);
        TakeSelected();
        Sound(Sfx::Place, 0.0f);
        return;
    }
    Target* target = FindTarget(focus.id);
    target->preps.push_back(Prep{letter, fit});
    Placed(activeTower, fit);
    TakeSelected();
    Sound(Sfx::Tick, 0.0f);
    if (!TargetOpen(*target).empty()) return;
    const Focus old = focus;
    for (const Focus& f : FocusList()) {
        if (f != old && !FocusOpen(f).empty()) {
            focus = f;
            return;
        }
    }
}

void Game::PlaceFree() {
    const char letter = SelectedType();
    if (letter == 0) {
        Say(Tr("Keine Teile mehr"));
        Sound(Sfx::Deny, 0.0f);
        return;
    }
    const std::vector<Cell> cells = CursorCells();
    if (config.ring && viewKnown &&
        std::fabs(WrapDiff(ColumnCentre(cells) - viewCentre)) > GetSettings().viewTolerance) {
        Say(Tr("Turm dreht noch"));
        Sound(Sfx::Deny, 0.0f);
        return;
    }
    const int kind = PlacementAt(cursorX, cursorY, rotation);
    if (kind == 0) {
        Say(Tr("Passt hier nicht"));
        Sound(Sfx::Deny, 0.0f);
        return;
    }
    if (kind == 1) {
        const int id = AddPiece(activeTower, letter, cells, false);
        Placed(activeTower, cells);
        const int points = kCellPoints * static_cast<int>(cells.size());
        AddRepairPoints(*this, points);
        RememberForUndo(id, 0, letter, cells, points);
        Flash(activeTower, cells);
        Sound(Sfx::Place, 0.0f);
    } else {
        for (Target& target : targets) {
            if (target.tower != activeTower) continue;
            const std::vector<Cell> open = TargetOpen(target);
            bool all = true;
            for (const Cell& c : cells) all = all && Contains(open, c);
            if (!all) continue;
            target.preps.push_back(Prep{letter, cells});
            RememberForUndo(0, target.id, letter, cells, 0);
            break;
        }
        Placed(activeTower, cells);
        Sound(Sfx::Tick, 0.0f);
    }
    TakeSelected();
    rotation = 0;
    ClampFree();
    if (GetSettings().auto_rotate) CursorToFocus();
    UpdateFreeY();
}

} // namespace torvane
