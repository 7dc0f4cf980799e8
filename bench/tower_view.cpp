// The stage of one frame, TowerView::Draw at 640 by 368, for the ring in the build
// and the attack phase, five classic towers, and a paletted background that cycles.
#include "engine/Assets.h"
#include "game/rules/Pieces.h"
#include "game/stage/RingCamera.h"
#include "game/stage/TowerView.h"
#include "pge/Headless.h"
#include "tests/stage/PalettedTestImage.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>

namespace {

using namespace torvane;

struct DrawOnly : pge::PixelEngine {
    bool OnUserCreate() override { return true; }
};

const StageRect kStage{0, 18, 640, 368};

void Lay(Game& g, int tower, char type, int rotation, int x, int y) {
    std::vector<Cell> cells = Rotated(type, rotation);
    for (Cell& c : cells) {
        c.x = g.WrapX(c.x + x);
        c.y += y;
    }
    g.AddPiece(tower, type, cells, false);
}

// A wall about half built: pieces in every column up to the line and a little above.
void BuildUp(Game& g, int tower) {
    const int cols = g.config.width;
    for (int layer = 0; layer < 3; ++layer)
        for (int x = layer % 2; x + 1 < cols; x += 2) Lay(g, tower, 'O', 0, x, g.ColumnTop(tower, x));
}

// A fresh asset tree of the given name made the asset root; empty, the scenes
// paint their landscape by formula.
std::string UseAssets(const std::string& name) {
    const std::filesystem::path base = std::filesystem::temp_directory_path() / "torvane_bench_tower_view" / name;
    std::filesystem::remove_all(base);
    std::filesystem::create_directories(base / "bin");
    std::filesystem::create_directories(base / "Resources" / "assets" / "torvane");
    adv::Assets::Init((base / "bin" / "torvane").string());
    return adv::Assets::Root();
}

void RunFrames(benchmark::State& state, Game& g, float camera) {
    DrawOnly engine;
    pge::Headless run(engine);
    if (!run.Create()) {
        state.SkipWithError("headless engine declined");
        return;
    }
    TowerView view;
    float time = 0.0f;
    view.Draw(engine, g, kStage, time, camera); // builds the background once
    for (auto _ : state) {
        time += 1.0f / 60.0f;
        g.clock += 1.0f / 60.0f;
        view.Draw(engine, g, kStage, time, camera);
        benchmark::DoNotOptimize(engine.GetDrawTarget()->GetData());
    }
}

void BM_RingBuild(benchmark::State& state) {
    UseAssets("painted");
    GetSettings().classic = 0;
    Game g(7);
    g.StartLevel(1);
    BuildUp(g, 0);
    RingCamera camera;
    camera.Update(g, 0.0f);
    RunFrames(state, g, camera.angle);
}
BENCHMARK(BM_RingBuild)->Unit(benchmark::kMillisecond);

void BM_RingAttack(benchmark::State& state) {
    UseAssets("painted");
    GetSettings().classic = 0;
    Game g(11);
    g.StartLevel(2);
    BuildUp(g, 0);
    g.phase = Phase::Attack;
    const int line = g.config.line;
    const int hitId = g.CellAt(0, 4, line - 1);
    const int aimId = g.CellAt(0, 8, line - 1);
    if (hitId != 0) {
        const std::vector<Cell> cells = g.pieces.at(hitId).cells;
        for (const Cell& c : cells) g.RemoveCell(0, c.x, c.y);
        g.pieces.erase(hitId);
        g.holes.push_back(Hole{1, 0, cells, 0.0f, 1e6f, 0});
        g.focus = {Focus::Hole, 1};
    }
    if (aimId != 0) g.targets.push_back(Target{1, aimId, 0, 0.0f, 1e6f, g.pieces.at(aimId).cells, {}});
    RingCamera camera;
    camera.Update(g, 0.0f);
    RunFrames(state, g, camera.angle);
}
BENCHMARK(BM_RingAttack)->Unit(benchmark::kMillisecond);

void BM_ClassicFiveTowers(benchmark::State& state) {
    UseAssets("painted");
    GetSettings().classic = 1;
    Game g(3);
    g.StartLevel(7);
    for (int t = 0; t < g.config.towers; ++t) BuildUp(g, t);
    RunFrames(state, g, 0.0f);
    GetSettings().classic = 0;
}
BENCHMARK(BM_ClassicFiveTowers)->Unit(benchmark::kMillisecond);

// The ring in the build phase before a paletted picture whose water band cycles
// 4 times a second, so that some frames repaint the cycled pixels.
void BM_PalettedCycle(benchmark::State& state) {
    torvane::testing_support::WriteWaterBackground(UseAssets("paletted"));
    GetSettings().classic = 0;
    Game g(5);
    g.StartLevel(1);
    BuildUp(g, 0);
    RingCamera camera;
    camera.Update(g, 0.0f);
    RunFrames(state, g, camera.angle);
}
BENCHMARK(BM_PalettedCycle)->Unit(benchmark::kMillisecond);

// The yardstick of the frames above: one copy of a whole 640 by 400 frame. Their times are
// judged as multiples of it, measured in the same run.
void BM_FrameCopy(benchmark::State& state) {
    pge::Sprite from(640, 400), to(640, 400);
    for (auto _ : state) {
        std::memcpy(to.GetData(), from.GetData(), size_t(640) * 400 * sizeof(pge::Pixel));
        benchmark::DoNotOptimize(to.GetData());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_FrameCopy)->Unit(benchmark::kMicrosecond);

} // namespace
