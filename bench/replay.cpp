// Replays: what recording costs a frame of the rules, and how many bytes a minute of play
// takes at a thousand frames a second.
#include "game/content/ReplayFiles.h"
#include "game/rules/Level.h"
#include "pge/PixelEngine.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

namespace {

using namespace torvane;

// The bot's game from seed 3.
struct Owner : replay::Members {
    Owner() : Members(Game(3)) { autoplay = true; }
};

// Frame times around 1 ms on the frame clock's grid, with a jitter of `ticks` ticks.
struct FrameTimes {
    explicit FrameTimes(double ticks) : jitter(100.0, ticks) {}
    float Next() { return pge::FrameSeconds(std::llround(jitter(engine))); }
    std::mt19937 engine{1};
    std::normal_distribution<double> jitter;
};

// The bot's game, frame after frame, as the application runs it: through the recorder,
// which records when range(0) is 1, or the same frame without it.
void BM_Frame(benchmark::State& state) {
    GetSettings() = Settings{};
    Owner o;
    replay::Recorder recorder;
    recorder.finished = [](std::string) {};
    FrameTimes times(2.0);
    const bool recording = state.range(0) != 0;
    if (recording) recorder.Do(o.S(), {replay::Op::NewGame}, 0.0f);
    frame::Hooks hooks;
    hooks.camera = [&o](float dt) { o.camera.Follow(o.game, dt); };
    for (auto _ : state) {
        const float dt = times.Next();
        if (recording) {
            benchmark::DoNotOptimize(recorder.Frame(o.S(), dt, {}));
            // A lost game ends its recording: the next one starts at once.
            if (!recorder.Recording()) recorder.Do(o.S(), {replay::Op::NewGame}, 0.0f);
        } else {
            frame::RunRules({o.game, o.autoPlayer, o.autoTimer, o.lastPhase, o.lastLevel, true, false}, dt, hooks);
            benchmark::DoNotOptimize(o.game.TakeEvents());
            if (o.game.phase == Phase::Over) o.game.NewGame();
        }
    }
}
BENCHMARK(BM_Frame)->Arg(0)->Arg(1)->ArgName("recording");

// One minute of the bot's game at a thousand frames a second, with a jitter of range(0)
// tenths of a tick (10 microseconds each): the replay file's bytes.
void BM_MinuteAtAThousandFrames(benchmark::State& state) {
    GetSettings() = Settings{};
    size_t bytes = 0;
    int frames = 0;
    for (auto _ : state) {
        Owner o;
        replay::Recorder recorder;
        std::string stream;
        recorder.finished = [&stream](std::string done) {
            if (stream.empty()) stream = std::move(done);
        };
        FrameTimes times(static_cast<double>(state.range(0)) / 10.0);
        recorder.Do(o.S(), {replay::Op::NewGame}, 0.0f);
        for (frames = 0; frames < 60000 && recorder.Recording(); ++frames) recorder.Frame(o.S(), times.Next(), {});
        recorder.End(o.S());
        bytes = replay::Pack(stream).size();
    }
    // A game lost before the minute is over counts for what it lasted.
    state.counters["frames"] = frames;
    state.counters["bytes_per_minute"] = static_cast<double>(bytes) * 60000.0 / frames;
    state.counters["MB_per_half_hour"] = static_cast<double>(bytes) * 60000.0 / frames * 30.0 / (1 << 20);
}
BENCHMARK(BM_MinuteAtAThousandFrames)->Arg(0)->Arg(10)->Arg(20)->Arg(50)->ArgName("jitter_tenths_of_tick")
    ->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
