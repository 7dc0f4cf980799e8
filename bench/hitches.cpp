// What each frame of a ten-level game costs the engine thread: the bot plays from the title
// with sound on (SDL's dummy driver, so that the mixer, its threads and the decoder run as
// with a sound card), ring and classic, at 60 frames a second of game time, as fast as the
// frames go. Reported in microseconds of the thread's own CPU time: the median, the 99th
// percentile and the worst frame, how many frames passed 4 ms (a quarter of a 60 Hz frame),
// and in the label where the worst one was.
#include "engine/Assets.h"
#include "engine/Music.h"
#include "game/rules/Level.h"
#include "game/TorvaneApp.h"
#include "pge/Headless.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int kLevels = 10;
constexpr float kFrame = 1.0f / 60.0f;
constexpr double kHitchMicros = 4000.0;
// A lost game costs the bot its levels; this caps a run that never gets anywhere.
constexpr int kMaxFrames = 400000;

double ThreadMicros() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e6 + double(t.tv_nsec) / 1e3;
}

const char* const kPhases[] = {"title", "build", "inspect", "announce", "attack", "eval", "over"};

struct Cost {
    double micros = 0.0;
    int level = 0;
    torvane::Phase phase = torvane::Phase::Title;
    int index = 0;
};

void BM_TenLevels(benchmark::State& state) {
    const bool classic = state.range(0) != 0;
    setenv("SDL_AUDIODRIVER", "dummy", 0);
    const fs::path data = fs::temp_directory_path() / ("torvane_bench_hitches_" + std::to_string(getpid()));
    fs::remove_all(data);
    setenv("XDG_DATA_HOME", data.c_str(), 1);
    adv::Assets::Init(adv::Assets::ProgramPath(nullptr));

    for (auto _ : state) {
        torvane::GetSettings().classic = classic ? 1 : 0;
        torvane::TorvaneApp app;
        const char* args[] = {"torvane", "--skip-intro", "--autoplay", "--seed=7"};
        torvane::ApplyRunOptions(app, 4, args);
        pge::Headless run(app);
        if (!run.Create()) {
            state.SkipWithError("OnUserCreate declined");
            break;
        }
        // The device opens in the background and a frame takes it over; the game starts once
        // it is there, as it would with a sound card that answers quickly.
        for (int i = 0; i < 500 && !adv::Music::Available(); ++i) {
            usleep(2000);
            run.Frame(0.0f);
        }
        if (!adv::Music::Available()) {
            state.SkipWithError("no dummy audio device");
            break;
        }

        std::vector<Cost> costs;
        int finished = 0;
        torvane::Phase seen = app.game.phase;
        while (finished < kLevels && int(costs.size()) < kMaxFrames) {
            const double before = ThreadMicros();
            run.Frame(kFrame);
            const double spent = ThreadMicros() - before;
            costs.push_back({spent, app.game.level, app.game.phase, int(costs.size())});
            const torvane::Phase now = app.game.phase;
            if (now != seen && (now == torvane::Phase::Eval || now == torvane::Phase::Over)) ++finished;
            seen = now;
        }
        run.Close();
        run.Frame(kFrame);

        std::vector<Cost> sorted = costs;
        std::sort(sorted.begin(), sorted.end(), [](const Cost& a, const Cost& b) { return a.micros < b.micros; });
        const auto at = [&](double q) { return sorted[size_t(q * double(sorted.size() - 1))].micros; };
        const Cost& worst = sorted.back();
        state.counters["frames"] = double(costs.size());
        state.counters["median_us"] = at(0.5);
        state.counters["p99_us"] = at(0.99);
        state.counters["max_us"] = worst.micros;
        state.counters["over_4ms"] = double(std::count_if(
            costs.begin(), costs.end(), [](const Cost& c) { return c.micros > kHitchMicros; }));
        state.SetLabel(std::string("worst: level ") + std::to_string(worst.level) + " " +
                       kPhases[int(worst.phase)] + ", frame " + std::to_string(worst.index));
        // The ten worst frames with their place, for finding what they do.
        if (std::getenv("TORVANE_HITCHES_LIST")) {
            for (size_t i = sorted.size(); i-- > 0 && i + 10 >= sorted.size();) {
                const Cost& c = sorted[i];
                std::fprintf(stderr, "%8.0f us  level %2d %-8s frame %d\n", c.micros, c.level,
                             kPhases[int(c.phase)], c.index);
            }
        }
    }
    torvane::GetSettings().classic = 0;
    fs::remove_all(data);
}
BENCHMARK(BM_TenLevels)->ArgName("classic")->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kSecond);

} // namespace
