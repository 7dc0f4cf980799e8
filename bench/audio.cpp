// Costs of the audio: building the effects at start-up, mixing a second of a full scene, and the
// time from starting a voice until the device callback has mixed it.
#include "engine/Mixer.h"
#include "engine/Music.h"
#include "engine/Synth.h"
#include "game/SfxDefs.h"
#include "game/TorvaneSounds.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr uint32_t kRate = 44100;
constexpr size_t kBlock = 512;

// The test tone beside the sources; CMake compiles with absolute file names.
std::string TrackPath() {
    const std::string self = __FILE__;
    return self.substr(0, self.rfind('/')) + "/../tests/engine/audio/tone440.mp3";
}

// The work of torvane::sounds::Init: the nine fixed effects, synthesised and limited.
void BM_BuildFixedEffects(benchmark::State& state) {
    using torvane::Sfx;
    for (auto _ : state) {
        for (Sfx e : {Sfx::Tick, Sfx::Place, Sfx::Deny, Sfx::Cannon, Sfx::Impact, Sfx::Bell, Sfx::Collapse,
                      Sfx::Reward, Sfx::Horn}) {
            adv::synth::Buffer b;
            torvane::sfx::Build(e, b);
            adv::synth::Clip(b);
            benchmark::DoNotOptimize(b.samples.data());
        }
    }
}
BENCHMARK(BM_BuildFixedEffects)->Unit(benchmark::kMillisecond);

// torvane::sounds::Init itself, which runs once per process.
void BM_SoundsInitOnce(benchmark::State& state) {
    adv::mixer::UseOffline(kRate);
    adv::Music::Init();
    for (auto _ : state) torvane::sounds::Init();
    adv::Music::Shutdown();
    adv::mixer::UseOffline(0);
}
BENCHMARK(BM_SoundsInitOnce)->Iterations(1)->Unit(benchmark::kMillisecond);

// How long the frame thread waits for the audio at start-up where no device opens (run it
// on a machine without a sound card): Init opens and, failing, shuts SDL's audio down before
// it returns; InitInBackground leaves all of that to a thread of its own.
void BM_MusicInitWithoutDevice(benchmark::State& state) {
    for (auto _ : state) {
        if (state.range(0) == 0)
            adv::Music::Init();
        else
            adv::Music::InitInBackground();
        state.PauseTiming();
        adv::Music::Shutdown();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_MusicInitWithoutDevice)->ArgName("background")->Arg(0)->Arg(1)->Iterations(10)->UseRealTime()->Unit(benchmark::kMillisecond);

// One second of output with 24 looping voices and one streamed MP3, decoding included.
void BM_MixOneSecond(benchmark::State& state) {
    auto engine = adv::mixer::InitOffline(kRate);
    adv::synth::Buffer clip;
    torvane::sfx::Build(torvane::Sfx::Collapse, clip);
    std::vector<adv::mixer::SoundPtr> voices;
    for (int i = 0; i < 24; ++i) {
        voices.push_back(adv::mixer::InitFromMemory(*engine, clip.samples.data(), clip.samples.size(), kRate));
        adv::mixer::SetLooping(*voices.back(), true);
        adv::mixer::Start(*voices.back());
    }
    auto track = adv::mixer::InitFromFile(*engine, TrackPath());
    if (!track) {
        state.SkipWithError("no track");
        return;
    }
    adv::mixer::SetLooping(*track, true);
    adv::mixer::Start(*track);
    std::vector<float> out(kBlock * adv::mixer::kChannels);
    for (auto _ : state) {
        for (size_t done = 0; done < kRate; done += kBlock) {
            adv::mixer::Pump(*engine);
            adv::mixer::Render(*engine, out.data(), kBlock);
        }
        benchmark::DoNotOptimize(out.data());
    }
    voices.clear();
    track.reset();
}
BENCHMARK(BM_MixOneSecond)->Unit(benchmark::kMillisecond);

// From Start until the callback of SDL's dummy driver has mixed a one-sample clip: the wait for
// the next device buffer, without the output latency of a real sound card.
void BM_StartToMixedOnDummyDevice(benchmark::State& state) {
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    auto engine = adv::mixer::Init();
    if (!engine) {
        state.SkipWithError("no dummy device");
        return;
    }
    const float sample = 0.5f;
    for (auto _ : state) {
        auto s = adv::mixer::InitFromMemory(*engine, &sample, 1, kRate);
        adv::mixer::Start(*s);
        while (!adv::mixer::AtEnd(*s)) std::this_thread::yield();
    }
    engine.reset();
    unsetenv("SDL_AUDIODRIVER");
}
BENCHMARK(BM_StartToMixedOnDummyDevice)->Iterations(50)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
