// The costs of the canvas primitives and text on the 640 by 400 screen.
#include "engine/Canvas.h"
#include "engine/Text.h"
#include "pge/Headless.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

namespace {

namespace canvas = adv::canvas;

const pge::Pixel kHalfRed(200, 40, 30, 128);

class Idle : public pge::PixelEngine {
public:
    bool OnUserCreate() override { return true; }
    bool OnUserUpdate(float) override { return true; }
};

// One translucent pixel, walking over the screen so that the writes are not all cached.
void BM_Blend(benchmark::State& state) {
    pge::Sprite screen(640, 400);
    int i = 0;
    for (auto _ : state) {
        canvas::Blend(&screen, i % 640, (i / 640) % 400, kHalfRed);
        ++i;
    }
    benchmark::DoNotOptimize(screen.GetData());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Blend);

void BM_FillRectScreenHalfAlpha(benchmark::State& state) {
    pge::Sprite screen(640, 400);
    for (auto _ : state) {
        canvas::FillRect(&screen, 0, 0, 640, 400, kHalfRed);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * 640 * 400);
}
BENCHMARK(BM_FillRectScreenHalfAlpha);

// A wall cell as the stage draws it: a curved top and bottom edge of five points each.
std::vector<pge::vf2d> CellPath() {
    std::vector<pge::vf2d> path;
    for (int i = 0; i < 5; ++i) {
        const float a = -0.3f + 0.15f * float(i);
        path.emplace_back(320.0f + 180.0f * std::sin(a), 200.0f + 6.0f * std::cos(a));
    }
    for (int i = 4; i >= 0; --i) {
        const float a = -0.3f + 0.15f * float(i);
        path.emplace_back(320.0f + 180.0f * std::sin(a), 222.0f + 6.0f * std::cos(a));
    }
    return path;
}

void BM_FillPolygonCell(benchmark::State& state) {
    pge::Sprite screen(640, 400);
    const std::vector<pge::vf2d> path = CellPath();
    for (auto _ : state) {
        canvas::FillPolygon(&screen, path, kHalfRed);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_FillPolygonCell);

void BM_PolylineDashed(benchmark::State& state) {
    pge::Sprite screen(640, 400);
    const std::vector<pge::vf2d> path = CellPath();
    const float width = float(state.range(0));
    for (auto _ : state) {
        canvas::Polyline(&screen, path, kHalfRed, width, true, 4.0f, 3.0f);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_PolylineDashed)->Arg(1)->Arg(2);

void BM_TextLine(benchmark::State& state) {
    Idle app;
    pge::Headless run(app);
    if (!run.Create()) state.SkipWithError("engine not created");
    for (auto _ : state) {
        adv::text::Draw(app, 8, 4, "Stufe 12 \xC2\xB7 Punkte 4520 \xC2\xB7 Gr\xC3\xBC\xC3\x9F" "e aus der Vellmark",
                        pge::Pixel(240, 230, 200), 1, adv::text::Align::Left);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_TextLine);

void BM_Downscale1280x800(benchmark::State& state) {
    pge::Sprite big(1280, 800);
    for (int i = 0; i < 1280 * 800; ++i) big.pColData[size_t(i)] = pge::Pixel(uint32_t(i * 2654435761u));
    for (auto _ : state) benchmark::DoNotOptimize(canvas::Downscale(big, 640, 400));
}
BENCHMARK(BM_Downscale1280x800);

} // namespace
