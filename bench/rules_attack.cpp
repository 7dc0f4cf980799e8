// One frame of the attack with ten balls in the air and five holes burning.
#include "game/rules/Level.h"
#include "game/rules/TorvaneGame.h"

#include <benchmark/benchmark.h>

namespace {

using torvane::Cell;
using torvane::Game;
using torvane::Phase;

// A ring wall of five rows, with every piece a two-cell bar; ten of the bars are
// under fire and five holes burn under loaded bars. Nothing lands or falls while
// the clock stands, so every frame does the same work.
Game AttackInFlight() {
    torvane::GetSettings() = torvane::Settings{};
    Game game(1);
    game.NewGame();
    game.DebugClearTowers();
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < game.config.width; x += 2) game.DebugPlace(0, '2', {{x, y}, {x + 1, y}});
    game.supply = {'1', '2', 'T'};
    game.phase = Phase::Announce;
    game.config.spareOnes = game.config.spareTwos = 0;
    game.BeginAttack();
    game.nextShotAt = 1e9f;
    int fired = 0;
    for (const auto& [id, piece] : game.pieces) {
        if (piece.cells[0].y != 4 || fired == 10) continue;
        game.FireAt(id);
        game.targets.back().hitAt = 1e9f;
        ++fired;
    }
    for (int h = 0; h < 5; ++h) {
        const int x = 2 * h * 3;
        game.RemoveCell(0, x, 1);
        game.RemoveCell(0, x + 1, 1);
        torvane::Hole hole;
        hole.id = game.nextShotId++;
        hole.cells = {{x, 1}, {x + 1, 1}};
        hole.collapseAt = 1e9f;
        hole.bells = 3;
        game.holes.push_back(hole);
    }
    game.TakeEvents();
    return game;
}

void BM_AttackUpdate(benchmark::State& state) {
    Game game = AttackInFlight();
    for (auto _ : state) {
        game.Update(0.0f);
        benchmark::DoNotOptimize(game.focus);
    }
    if (game.targets.size() != 10 || game.holes.size() != 5) state.SkipWithError("the attack changed");
}
BENCHMARK(BM_AttackUpdate);

} // namespace
