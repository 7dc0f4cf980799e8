#pragma once
// Sample generator for the sound effects: tones and filtered noise, mono, 44100 samples a second.
#include <cstdint>
#include <vector>

namespace adv::synth {

constexpr float kRate = 44100.0f;

enum class Wave : int32_t { Sine = 0, Square = 1, Saw = 2, Triangle = 3 };
enum class Envelope : int32_t { Decay = 0, Swell = 1 };

struct Buffer {
    std::vector<float> samples;

    // At least ceil(seconds * 44100) samples, new ones 0; never shrinks.
    void EnsureSeconds(float seconds);
};

// Adds one tone; endHz above 0 glides exponentially from hz to endHz. start is in seconds.
void Tone(Buffer& buffer, float hz, float seconds, Wave wave, float volume, float endHz, float start,
          Envelope envelope);
// Adds one burst of low-passed noise with a (1 - t)^2 envelope; same arguments, same samples.
void Noise(Buffer& buffer, float seconds, float cutoff, float volume, float start, uint32_t seed);
// Hard-limits every sample to -1..1.
void Clip(Buffer& buffer);

} // namespace adv::synth
