// The cost of one application frame, without and with the real window.
#include "game/TorvaneApp.h"
#include "pge/Headless.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>

namespace {

using Clock = std::chrono::steady_clock;

// One frame of the application's logic and drawing, no window, no card.
void BM_AppFrameHeadless(benchmark::State& state) {
    torvane::TorvaneApp app;
    app.skipIntro = true;
    pge::Headless run(app);
    if (!run.Create()) state.SkipWithError("OnUserCreate declined");
    for (auto _ : state) run.Frame(0.016f);
}
BENCHMARK(BM_AppFrameHeadless);

// The application in its real window, timed from Start() for two seconds.
class TimedApp : public torvane::TorvaneApp {
public:
    bool OnUserUpdate(float elapsed) override {
        const Clock::time_point now = Clock::now();
        // The second update begins once the first frame has been swapped to the screen.
        if (frames == 1) firstFrame = now;
        ++frames;
        TorvaneApp::OnUserUpdate(elapsed);
        return now - started < std::chrono::seconds(2);
    }
    Clock::time_point started;
    Clock::time_point firstFrame;
    int frames = 0;
};

void BM_WindowFrameLoop(benchmark::State& state) {
    if (!std::getenv("DISPLAY")) {
        state.SkipWithError("needs an X server (DISPLAY)");
        return;
    }
    for (auto _ : state) {
        TimedApp app;
        app.skipIntro = true;
        app.Construct(640, 400, 2, 2, false, false, false, false);
        app.started = Clock::now();
        if (!app.Start() || app.frames < 2) {
            state.SkipWithError("the window did not run");
            return;
        }
        const double total = std::chrono::duration<double>(Clock::now() - app.started).count();
        const double first = std::chrono::duration<double>(app.firstFrame - app.started).count();
        state.counters["first_frame_ms"] = first * 1000.0;
        state.counters["fps"] = double(app.frames - 1) / (total - first);
    }
}
BENCHMARK(BM_WindowFrameLoop)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
