#include "engine/Synth.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace adv::synth {
namespace {

constexpr float kTwoPi = 6.2831855f;
constexpr float kFloor = 0.0001f;

float WaveAt(Wave wave, float p) {
    switch (wave) {
    case Wave::Sine: return std::sin(p * kTwoPi);
    case Wave::Square: return p < 0.5f ? 1.0f : -1.0f;
    case Wave::Saw: return 2.0f * p - 1.0f;
    case Wave::Triangle: return p < 0.5f ? 4.0f * p - 1.0f : 3.0f - 4.0f * p;
    }
    return 0.0f; // unknown waves make a silent tone of their length
}

float Clamp01(float v) { return std::clamp(v, 0.0f, 1.0f); }

float Amplitude(Envelope envelope, float volume, float t) {
    if (envelope == Envelope::Decay) return volume * std::pow(kFloor / volume, Clamp01(t));
    if (t < 0.9f) return kFloor * std::pow(volume / kFloor, Clamp01(t / 0.9f));
    return volume * std::pow(kFloor / volume, Clamp01((t - 0.9f) / 0.1f));
}

struct LowPass {
    float b0, b1, a1, a2;
};

LowPass LowPassFor(float cutoff) {
    // Above 0.45 of the rate the filter is pinned to the coefficients of 19845 Hz.
    if (cutoff > 0.45f * kRate) return {0.800591f, 1.601182f, 1.5610152f, 0.64134866f};
    const float w = cutoff * kTwoPi / kRate;
    const float c = std::cos(w);
    const float alpha = std::sin(w) / 1.4142f;
    const float a0 = 1.0f + alpha;
    return {(1.0f - c) * 0.5f / a0, (1.0f - c) / a0, -2.0f * c / a0, (1.0f - alpha) / a0};
}

} // namespace

void Buffer::EnsureSeconds(float seconds) {
    if (seconds <= 0.0f) return;
    const size_t want = size_t(std::ceil(seconds * kRate));
    if (want > samples.size()) samples.resize(want, 0.0f);
}

void Tone(Buffer& buffer, float hz, float seconds, Wave wave, float volume, float endHz, float start,
          Envelope envelope) {
    if (seconds <= 0.0f || hz <= 0.0f || volume <= 0.0f) return;
    buffer.EnsureSeconds(seconds + start + 0.01f);
    const size_t n = size_t(seconds * kRate);
    const size_t offset = size_t(start * kRate);
    if (n == 0) return;
    float p = 0.0f;
    for (size_t i = 0; i < n && offset + i < buffer.samples.size(); ++i) {
        const float t = float(i) / float(n);
        const float f = endHz > 0.0f ? hz * std::pow(endHz / hz, Clamp01(t)) : hz;
        p += f / kRate; // advanced before the sample is taken
        p -= std::floor(p);
        buffer.samples[offset + i] += Amplitude(envelope, volume, t) * WaveAt(wave, p);
    }
}

void Noise(Buffer& buffer, float seconds, float cutoff, float volume, float start, uint32_t seed) {
    if (seconds <= 0.0f || volume <= 0.0f) return;
    buffer.EnsureSeconds(seconds + start);
    const LowPass lp = LowPassFor(cutoff);
    std::mt19937 random(seed);
    const size_t n = size_t(seconds * kRate);
    const size_t offset = size_t(start * kRate);
    float x1 = 0, x2 = 0, y1 = 0, y2 = 0;
    for (size_t i = 0; i < n && offset + i < buffer.samples.size(); ++i) {
        const float e = 1.0f - float(i) / float(n);
        const float u = float(random()) * 0x1p-32f;
        const float r = u >= 1.0f ? 0.99999988f : 2.0f * u - 1.0f;
        const float x = e * r * e;
        const float y = lp.b1 * x1 + lp.b0 * x + lp.b0 * x2 - lp.a1 * y1 - lp.a2 * y2;
        buffer.samples[offset + i] += volume * y;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
    }
}

void Clip(Buffer& buffer) {
    for (float& s : buffer.samples) s = std::clamp(s, -1.0f, 1.0f);
}

} // namespace adv::synth
