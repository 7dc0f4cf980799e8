#pragma once
// The audio engine under adv::Music and adv::Sound: the default output device through SDL2,
// MP3 streams decoded with mpg123 and in-memory mono clips, each with volume, looping and linear
// fades, resampled to the device rate and mixed in SDL's audio thread. Nothing above this header
// knows how the mixing is done.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace adv::mixer {

struct Engine;
struct Sound;

struct EngineDeleter {
    void operator()(Engine* engine) const;
};
struct SoundDeleter {
    void operator()(Sound* sound) const;
};
using EnginePtr = std::unique_ptr<Engine, EngineDeleter>;
// A sound must be destroyed before its engine.
using SoundPtr = std::unique_ptr<Sound, SoundDeleter>;

// Output is interleaved stereo float.
constexpr size_t kChannels = 2;

// Opens the default output device and starts mixing; null if no device opens.
EnginePtr Init();
// An engine without a device, for tests and measurements: nothing advances until Render pulls
// frames, and streams are decoded ahead only by Pump.
EnginePtr InitOffline(uint32_t sampleRate);
// From now on Init gives offline engines at sampleRate (0: the device again), so that tests and
// benchmarks drive adv::Music and adv::Sound through Render and Pump.
void UseOffline(uint32_t sampleRate);
// Whether Init gives offline engines now.
bool Offline();
uint32_t SampleRate(const Engine& engine);
// Mixes `frames` stereo frames into out, clipped to -1..1: the work of the device callback.
void Render(Engine& engine, float* out, size_t frames);
// Decodes every stream ahead until its buffer is full: the work of the decoder thread.
void Pump(Engine& engine);

// An MP3 file, read whole and decoded while it plays; null if it is no regular file of at
// most 64 MB, or cannot be decoded.
SoundPtr InitFromFile(Engine& engine, const std::string& path);
// Mono samples at sampleRate, read in place and never copied: they must outlive the sound.
SoundPtr InitFromMemory(Engine& engine, const float* samples, size_t count, uint32_t sampleRate);

void Start(Sound& sound);
// True once a sound that does not loop has played its last sample.
bool AtEnd(const Sound& sound);
void SetVolume(Sound& sound, float volume);
void SetLooping(Sound& sound, bool loop);
// A linear rise from silence to full level over ms milliseconds.
void FadeIn(Sound& sound, uint32_t ms);
// A linear fall from the present level to silence over ms milliseconds; then the sound stops.
void StopWithFade(Sound& sound, uint32_t ms);

} // namespace adv::mixer
