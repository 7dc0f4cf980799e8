// The built-in player: one act per step, through Game::Act like a person.
#include "game/rules/AutoPlayer.h"

#include "game/rules/Pieces.h"

namespace torvane {

bool AutoPlayer::StartsNewGame(const Game& game) {
    return game.phase == Phase::Title || (game.phase == Phase::Eval && game.LastLevel());
}

void AutoPlayer::Step(Game& game) {
    if (StartsNewGame(game)) {
        game.NewGame();
        return;
    }
    switch (game.phase) {
    case Phase::Title: break; // a new game, above
    case Phase::Build: StepBuild(game); break;
    case Phase::Announce:
        tries = 0;
        game.BeginAttack();
        break;
    case Phase::Attack:
        if (!repairs) break;
        if (game.BuildsInAttack())
            StepBuild(game);
        else
            StepAttack(game);
        break;
    case Phase::Eval: game.NextLevel(); break;
    case Phase::Inspect:
    case Phase::Over: break; // the end of a lost game is the application's affair
    }
}

int AutoPlayer::PreferredTower(const Game& game) const {
    if (game.towers.empty()) return game.activeTower;
    int best = 0;
    long bestCount = -1;
    for (int t = 0; t < static_cast<int>(game.towers.size()); ++t) {
        const auto& cells = game.towers[static_cast<size_t>(t)].cells;
        const long count = static_cast<long>(cells.size()) - std::count(cells.begin(), cells.end(), 0);
        if (bestCount < 0 || count < bestCount) {
            best = t;
            bestCount = count;
        }
    }
    return best;
}

Placement AutoPlayer::BestPlacement(const Game& game) const {
    Placement best;
    const char letter = game.SelectedType();
    if (letter == 0 || game.towers.empty()) return best;
    const int width = game.config.width;
    const int height = game.config.height;
    const int tower = game.activeTower;
    // Empty, or above the top; columns not wrapped here are checked by the caller.
    auto open = [&](int x, int y) { return y >= height || game.CellAt(tower, x, y) == 0; };
    int bestCost = 1 << 30;
    for (int r = 0; r < 4; ++r) {
        const std::vector<Cell> shape = Rotated(letter, r);
        const int shapeWidth = ShapeWidth(shape);
        const int shapeHeight = ShapeHeight(shape);
        const int lastX = game.config.ring ? width - 1 : width - shapeWidth;
        for (int x = 0; x <= lastX; ++x) {
            bool counted = true;
            for (const Cell& c : shape) counted = counted && game.IsAttackedColumn(game.WrapX(x + c.x));
            if (!counted) continue;
            int y = height;
            for (;;) {
                bool fits = true;
                for (const Cell& c : shape) {
                    const int cx = game.WrapX(x + c.x);
                    const int cy = y - 1 + c.y;
                    fits = fits && cx >= 0 && cx < width && cy >= 0 && open(cx, cy);
                }
                if (!fits) break;
                --y;
            }
            if (y + shapeHeight > height) continue;
            // Empty cells that this placement would roof over, below each column's lowest cell.
            int covered = 0;
            for (int dx = 0; dx < shapeWidth; ++dx) {
                int lowest = -1;
                for (const Cell& c : shape)
                    if (c.x == dx && (lowest < 0 || c.y < lowest)) lowest = c.y;
                if (lowest < 0) continue;
                const int cx = game.WrapX(x + dx);
                for (int cy = y + lowest - 1; cy >= 0 && game.CellAt(tower, cx, cy) == 0; --cy) ++covered;
            }
            const int cost = (y + shapeHeight) * 3 + covered * 40 + r;
            if (cost < bestCost) {
                bestCost = cost;
                best = Placement{r, x, true};
            }
        }
    }
    return best;
}

void AutoPlayer::StepBuild(Game& game) {
    if (game.SelectedType() == 0) {
        if (game.phase == Phase::Build) game.Act(Action::Done);
        return;
    }
    if (game.towers.size() > 1 && PreferredTower(game) != game.activeTower) {
        game.Act(Action::Switch);
        return;
    }
    const Placement p = BestPlacement(game);
    if (!p.found) {
        if (game.supply.size() > 1 && !game.PiecesLimited())
            game.Act(Action::Cycle);
        else
            game.Act(Action::Done);
        return;
    }
    if (p.rotation != game.rotation) {
        game.Act(Action::Rotate);
        return;
    }
    const float d = game.WrapDiff(static_cast<float>(p.x - game.cursorX));
    if (d > 0.0f)
        game.Act(Action::Right);
    else if (d < 0.0f)
        game.Act(Action::Left);
    else
        game.Act(Action::Place);
}

void AutoPlayer::StepAttack(Game& game) {
    if (game.focus.kind != Focus::None && !game.FocusOpen(game.focus).empty()) {
        if (game.RepairFit(game.SelectedType(), game.focus).empty()) {
            if (tries < static_cast<int>(game.supply.size())) {
                tries += 1;
                game.Act(Action::Cycle);
            } else {
                // Every piece tried: on to the next goal.
                tries = 0;
                game.Act(Action::Undo);
            }
            return;
        }
        if (!game.FocusInView(game.focus)) return; // the camera turns first
        tries = 0;
        game.Act(Action::Rotate);
        return;
    }
    for (const Hole& h : game.holes) {
        if (h.tower != game.activeTower) {
            game.Act(Action::Switch);
            return;
        }
    }
    for (const Target& t : game.targets) {
        if (t.tower != game.activeTower && !game.TargetOpen(t).empty()) {
            game.Act(Action::Switch);
            return;
        }
    }
    if (game.focus.kind != Focus::None) game.Act(Action::Undo);
}

} // namespace torvane
