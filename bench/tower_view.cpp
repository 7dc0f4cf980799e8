// The stage of one frame, TowerView::Draw at 640 by 368, for the ring in the build
// and the attack phase (also under heavy fire), five classic towers, and a paletted
// background that cycles.
#include "engine/Assets.h"
#include "game/rules/Impacts.h"
#include "game/rules/Pieces.h"
#include "game/stage/RingCamera.h"
#include "game/stage/TowerView.h"
#include "pge/Headless.h"
#include "tests/stage/PalettedTestImage.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
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

// Draws frame after frame, the clocks running at 60 a second; `load` may put effects on
// the view before each frame.
void RunFrames(benchmark::State& state, Game& g, float camera, const std::function<void(TowerView&)>& load = {}) {
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
        if (load) load(view);
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

// Level 2 of the ring, half built, in the attack.
Game AttackedRing() {
    UseAssets("painted");
    GetSettings().classic = 0;
    Game g(11);
    g.StartLevel(2);
    BuildUp(g, 0);
    g.phase = Phase::Attack;
    return g;
}

// A hole in the focus, its fuse kept burning with two seconds and more to go, and a ball in
// flight (fired long ago, hitting far ahead, so that it stays half way), with everything the
// stage draws over them.
void BM_RingAttack(benchmark::State& state) {
    Game g = AttackedRing();
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
    if (aimId != 0) g.targets.push_back(Target{1, aimId, 0, -1e5f, 1e5f, g.pieces.at(aimId).cells, {}});
    RingCamera camera;
    camera.Update(g, 0.0f);
    RunFrames(state, g, camera.angle, [&g](TowerView&) {
        for (Hole& hole : g.holes) hole.collapseAt = g.clock + kFuseSeconds - 0.5f;
    });
}
BENCHMARK(BM_RingAttack)->Unit(benchmark::kMillisecond);

// The ring under heavy fire: 10 balls in flight, 4 of them behind the tower (edge
// arrows), 5 open holes with their countdowns, and 100 particles that outlive the run.
void BM_RingAttackLoaded(benchmark::State& state) {
    Game g = AttackedRing();
    RingCamera camera;
    camera.Update(g, 0.0f);
    const int cols = g.config.width;
    const float half = GetSettings().fieldOfView / 360.0f * static_cast<float>(cols);
    int inView = 0, behind = 0, holes = 0, id = 1;
    for (int row = 0; row < g.config.height; ++row)
        for (int x = 0; x < cols; ++x) {
            const int piece = g.CellAt(0, x, row);
            if (piece == 0 || std::any_of(g.targets.begin(), g.targets.end(),
                                          [&](const Target& t) { return t.piece == piece; }))
                continue;
            const std::vector<Cell> cells = g.pieces.at(piece).cells;
            const bool seen = std::fabs(g.WrapDiff(g.ColumnCentre(cells) - camera.angle)) <= half;
            if (seen && holes < 5) {
                for (const Cell& c : cells) g.RemoveCell(0, c.x, c.y);
                g.pieces.erase(piece);
                g.holes.push_back(Hole{id++, 0, cells, 0.0f, 1e6f, 0});
                ++holes;
            } else if ((seen && inView < 6) || (!seen && behind < 4)) {
                g.targets.push_back(Target{id++, piece, 0, -1e5f, 1e5f, cells, {}});
                ++(seen ? inView : behind);
            }
        }
    if (holes < 5 || inView < 6 || behind < 4) state.SkipWithError("the wall has too few pieces");
    g.focus = {Focus::Hole, g.holes.empty() ? 0 : g.holes.front().id};
    RunFrames(state, g, camera.angle, [&g](TowerView& view) {
        if (view.particles.empty()) {
            Event burst;
            burst.kind = Event::Burst;
            burst.cells = {{4, 6}, {8, 7}, {12, 6}, {28, 7}};
            burst.count = 100;
            view.OnEvent(burst, g);
        }
        for (TowerView::Particle& p : view.particles) p.born = g.clock - 0.3f; // always in mid-flight
    });
}
BENCHMARK(BM_RingAttackLoaded)->Unit(benchmark::kMillisecond);

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
