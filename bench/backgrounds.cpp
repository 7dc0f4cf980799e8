// The painted landscapes: building the background at a level's start, one palette step
// (only the cycled pixels are repainted) and, for comparison, a frame in which no cycle
// steps (the row copy alone). Argument: the landscape, 0 to 4, on ring levels 1 to 5.
#include "engine/Assets.h"
#include "game/stage/TowerView.h"
#include "pge/Headless.h"

#include <benchmark/benchmark.h>

namespace {

using namespace torvane;

struct DrawOnly : pge::PixelEngine {
    bool OnUserCreate() override { return true; }
};

const StageRect kStage{0, 18, 640, 368};

// The committed pictures, as the game finds them from the build folder.
void UseCommittedAssets() { adv::Assets::Init(std::string(TORVANE_SOURCE_DIR) + "/torvane"); }

void BM_BuildBackground(benchmark::State& state) {
    UseCommittedAssets();
    GetSettings().classic = 0;
    Game g(7);
    g.StartLevel(static_cast<int>(state.range(0)) + 1);
    TowerView view;
    const TowerView::Layout layout = view.ComputeLayout(g, kStage);
    for (auto _ : state) {
        view.BuildBackground(g, layout);
        benchmark::DoNotOptimize(view.background->GetData());
    }
    state.counters["cycled_pixels"] = static_cast<double>(view.cyclePixels.size());
}
BENCHMARK(BM_BuildBackground)->DenseRange(0, 4)->Unit(benchmark::kMicrosecond);

// dt 0.125 s steps the fast cycles in every frame; dt 0 never steps any.
void Frames(benchmark::State& state, float dt) {
    UseCommittedAssets();
    GetSettings().classic = 0;
    Game g(7);
    g.StartLevel(static_cast<int>(state.range(0)) + 1);
    DrawOnly engine;
    pge::Headless run(engine);
    if (!run.Create()) {
        state.SkipWithError("headless engine declined");
        return;
    }
    TowerView view;
    const TowerView::Layout layout = view.ComputeLayout(g, kStage);
    view.BuildBackground(g, layout);
    float time = 0.0f;
    for (auto _ : state) {
        time += dt;
        view.DrawBackground(engine, g, layout, time);
        benchmark::DoNotOptimize(engine.GetDrawTarget()->GetData());
    }
    state.counters["cycled_pixels"] = static_cast<double>(view.cyclePixels.size());
}
void BM_PaletteStep(benchmark::State& state) { Frames(state, 0.125f); }
void BM_RowCopyOnly(benchmark::State& state) { Frames(state, 0.0f); }
BENCHMARK(BM_PaletteStep)->DenseRange(0, 4)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RowCopyOnly)->DenseRange(0, 4)->Unit(benchmark::kMicrosecond);

} // namespace
