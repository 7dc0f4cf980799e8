// Cost of laying a level and of one frame of the build phase with a drop.
#include "game/rules/Level.h"
#include "game/rules/TorvaneGame.h"

#include <benchmark/benchmark.h>

using namespace torvane;

namespace {

void StartLevelAt(benchmark::State& state, int classic, int level) {
    const Settings saved = GetSettings();
    GetSettings().classic = classic;
    Game g(1);
    for (auto _ : state) {
        g.StartLevel(level);
        g.events.clear();
        benchmark::DoNotOptimize(g.towers.data());
    }
    GetSettings() = saved;
}

void BM_StartLevelRing(benchmark::State& state) { StartLevelAt(state, 0, static_cast<int>(state.range(0))); }
BENCHMARK(BM_StartLevelRing)->Arg(1)->Arg(7)->Arg(30);

void BM_StartLevelClassic(benchmark::State& state) {
    StartLevelAt(state, 1, static_cast<int>(state.range(0)));
}
BENCHMARK(BM_StartLevelClassic)->Arg(1)->Arg(7);

// One frame's Update in the build phase followed by a drop. The supply is topped
// up in place; the level is laid anew, outside the timing, every 100 drops,
// before the wall is full.
void BM_BuildUpdateAndDrop(benchmark::State& state) {
    const Settings saved = GetSettings();
    GetSettings().classic = 0;
    Game g(1);
    g.StartLevel(1);
    int step = 0;
    for (auto _ : state) {
        if (step % 100 == 0) {
            state.PauseTiming();
            g.StartLevel(1);
            state.ResumeTiming();
        }
        if (g.supply.empty()) {
            g.supply = {'I', 'O', 'T', 'L', 'J', 'S', 'Z'};
            g.autoEndAt = -1.0f;
        }
        g.Update(1.0f / 60.0f);
        g.cursorX = (step++ * 5) % g.config.width;
        g.Drop();
        g.events.clear();
    }
    GetSettings() = saved;
}
BENCHMARK(BM_BuildUpdateAndDrop);

} // namespace
