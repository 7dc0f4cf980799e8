#include "engine/Synth.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

using adv::synth::Buffer;
using adv::synth::Envelope;
using adv::synth::Wave;

constexpr double kR = 44100.0;
constexpr double kTwoPi = 6.283185307179586;

// One period of each wave, from the wave table, in double precision.
double WaveOf(Wave wave, double p) {
    switch (wave) {
    case Wave::Sine: return std::sin(p * kTwoPi);
    case Wave::Square: return p < 0.5 ? 1.0 : -1.0;
    case Wave::Saw: return 2.0 * p - 1.0;
    case Wave::Triangle: return p < 0.5 ? 4.0 * p - 1.0 : 3.0 - 4.0 * p;
    }
    return 0.0;
}

double DecayAt(double v, double t) { return v * std::pow(0.0001 / v, t); }

double SwellAt(double v, double t) {
    if (t < 0.9) return 0.0001 * std::pow(v / 0.0001, t / 0.9);
    return v * std::pow(0.0001 / v, std::min(1.0, (t - 0.9) / 0.1));
}

// Sample i of a held tone: the phase has advanced i + 1 steps of hz / R when it is read.
double HeldToneAt(Wave wave, double hz, double v, size_t i, size_t n) {
    const double p = std::fmod(double(i + 1) * hz / kR, 1.0);
    return DecayAt(v, double(i) / double(n)) * WaveOf(wave, p);
}

TEST(SynthBuffer, EnsureSecondsGrowsToTheCeilingAndNeverShrinks) {
    Buffer b;
    b.EnsureSeconds(0.0f);
    b.EnsureSeconds(-1.0f);
    EXPECT_TRUE(b.samples.empty());
    b.EnsureSeconds(0.01001f); // 441.44 samples
    EXPECT_EQ(b.samples.size(), 442u);
    b.samples[3] = 0.5f;
    b.EnsureSeconds(0.005f);
    EXPECT_EQ(b.samples.size(), 442u);
    b.EnsureSeconds(0.02f);
    EXPECT_EQ(b.samples.size(), 882u);
    EXPECT_EQ(b.samples[3], 0.5f);
    EXPECT_EQ(b.samples[881], 0.0f);
}

TEST(SynthTone, EachWaveFollowsItsPeriodUnderTheDecayEnvelope) {
    const double hz = 523.0, v = 0.4, seconds = 0.25;
    const size_t n = size_t(seconds * kR);
    for (Wave wave : {Wave::Sine, Wave::Square, Wave::Saw, Wave::Triangle}) {
        Buffer b;
        adv::synth::Tone(b, float(hz), float(seconds), wave, float(v), 0.0f, 0.0f, Envelope::Decay);
        ASSERT_EQ(b.samples.size(), size_t(std::ceil((seconds + 0.01) * kR)));
        for (size_t i : {size_t(0), size_t(1), size_t(37), n / 3, n / 2, n - 1}) {
            const double p = std::fmod(double(i + 1) * hz / kR, 1.0);
            // Square and triangle jump at p = 0.5; float phase rounding may land on either side.
            if (std::abs(p - 0.5) < 1e-3 || p < 1e-3 || p > 1 - 1e-3) continue;
            EXPECT_NEAR(b.samples[i], HeldToneAt(wave, hz, v, i, n), 2e-4) << "wave " << int(wave) << " i " << i;
        }
        // About 0.01 s of silence follows the tone.
        for (size_t i = n; i < b.samples.size(); ++i) ASSERT_EQ(b.samples[i], 0.0f);
    }
}

TEST(SynthTone, SwellRisesOverNineTenthsAndFallsInTheLast) {
    const double hz = 1000.0, v = 0.3, seconds = 0.5;
    const size_t n = size_t(seconds * kR);
    Buffer b;
    adv::synth::Tone(b, float(hz), float(seconds), Wave::Saw, float(v), 0.0f, 0.0f, Envelope::Swell);
    for (size_t i : {size_t(5), n / 4, n / 2, size_t(0.85 * n), size_t(0.9 * n) + 3, size_t(0.95 * n), n - 2}) {
        const double t = double(i) / double(n);
        const double p = std::fmod(double(i + 1) * hz / kR, 1.0);
        EXPECT_NEAR(b.samples[i], SwellAt(v, t) * (2 * p - 1), 3e-4) << "i " << i;
    }
    // The loudest moment is at nine tenths of the tone.
    size_t loudest = 0;
    for (size_t i = 0; i < n; ++i)
        if (std::abs(b.samples[i]) > std::abs(b.samples[loudest])) loudest = i;
    EXPECT_NEAR(double(loudest) / double(n), 0.9, 0.01);
}

TEST(SynthTone, GlideIsExponentialInTime) {
    const double hz = 2100.0, end = 520.0, v = 0.06, seconds = 0.3;
    const size_t n = size_t(seconds * kR);
    Buffer b;
    adv::synth::Tone(b, float(hz), float(seconds), Wave::Sine, float(v), float(end), 0.0f, Envelope::Decay);
    double p = 0.0;
    for (size_t i = 0; i < n; ++i) {
        const double t = double(i) / double(n);
        p += hz * std::pow(end / hz, t) / kR;
        if (i == 0 || i == 10 || i == n / 2 || i == 3 * n / 4 || i == n - 1) {
            EXPECT_NEAR(b.samples[i], DecayAt(v, t) * std::sin(kTwoPi * p), 2e-4) << "i " << i;
        }
    }
}

TEST(SynthTone, StartOffsetExtendsTheBufferAndEmptyArgumentsAddNothing) {
    Buffer b;
    b.EnsureSeconds(0.1f);
    adv::synth::Tone(b, 300.0f, 0.2f, Wave::Square, 0.5f, 0.0f, 1.0f, Envelope::Decay);
    EXPECT_EQ(b.samples.size(), size_t(std::ceil(1.21 * kR)));
    const size_t offset = size_t(kR);
    for (size_t i = 0; i < offset; ++i) ASSERT_EQ(b.samples[i], 0.0f);
    EXPECT_NEAR(b.samples[offset], 0.5, 1e-6); // square, full level at its first sample

    Buffer none;
    adv::synth::Tone(none, 300.0f, 0.0f, Wave::Sine, 0.5f, 0.0f, 0.0f, Envelope::Decay);
    adv::synth::Tone(none, 0.0f, 0.2f, Wave::Sine, 0.5f, 0.0f, 0.0f, Envelope::Decay);
    adv::synth::Tone(none, 300.0f, 0.2f, Wave::Sine, -0.5f, 0.0f, 0.0f, Envelope::Decay);
    EXPECT_TRUE(none.samples.empty());

    Buffer silent;
    adv::synth::Tone(silent, 300.0f, 0.2f, Wave(7), 0.5f, 0.0f, 0.0f, Envelope::Decay);
    EXPECT_EQ(silent.samples.size(), size_t(std::ceil(0.21 * kR)));
    for (float s : silent.samples) ASSERT_EQ(s, 0.0f);
}

struct Filter {
    double b0, b1, a1, a2;
};

Filter LowPass(double cutoff) {
    if (cutoff > 19845.0) return {0.800591, 1.601182, 1.5610152, 0.64134866};
    const double w = cutoff * kTwoPi / kR, c = std::cos(w), alpha = std::sin(w) / 1.4142, a0 = 1 + alpha;
    return {(1 - c) * 0.5 / a0, (1 - c) / a0, -2 * c / a0, (1 - alpha) / a0};
}

// The noise burst from its recipe: uniform raw samples from MT19937, a (1 - t)^2 envelope, a biquad.
std::vector<double> ExpectedNoise(double seconds, double cutoff, double volume, uint32_t seed) {
    const Filter f = LowPass(cutoff);
    std::mt19937 mt(seed);
    const size_t n = size_t(seconds * kR);
    std::vector<double> out;
    double x1 = 0, x2 = 0, y1 = 0, y2 = 0;
    for (size_t i = 0; i < n; ++i) {
        const double e = 1.0 - double(i) / double(n);
        const double r = 2.0 * (double(mt()) / 4294967296.0) - 1.0;
        const double x = e * r * e;
        const double y = f.b1 * x1 + f.b0 * x + f.b0 * x2 - f.a1 * y1 - f.a2 * y2;
        out.push_back(volume * y);
        x2 = x1, x1 = x, y2 = y1, y1 = y;
    }
    return out;
}

TEST(SynthNoise, FollowsTheGeneratorEnvelopeAndFilter) {
    // The generator is the standard one: its 10000th word from the default seed is fixed.
    std::mt19937 check(5489u);
    check.discard(9999);
    EXPECT_EQ(check(), 4123659995u);

    for (double cutoff : {280.0, 1300.0, 30000.0}) {
        Buffer b;
        adv::synth::Noise(b, 0.05f, float(cutoff), 0.9f, 0.0f, 23u);
        const std::vector<double> want = ExpectedNoise(0.05, cutoff, 0.9, 23u);
        ASSERT_GE(b.samples.size(), want.size());
        for (size_t i : {size_t(0), size_t(1), size_t(2), size_t(100), want.size() / 2, want.size() - 1})
            EXPECT_NEAR(b.samples[i], want[i], 1e-4) << "cutoff " << cutoff << " i " << i;
    }
}

TEST(SynthNoise, WritesExactlyItsLengthAtItsOffset) {
    Buffer b;
    adv::synth::Noise(b, 0.0123f, 900.0f, 0.5f, 0.01f, 11u); // 542.43 samples after 441
    EXPECT_EQ(b.samples.size(), size_t(std::ceil(0.0223 * kR)));
    const std::vector<double> want = ExpectedNoise(0.0123, 900.0, 0.5, 11u);
    ASSERT_EQ(want.size(), 542u);
    for (size_t i = 0; i < 441; ++i) ASSERT_EQ(b.samples[i], 0.0f);
    EXPECT_NEAR(b.samples[441 + 5], want[5], 1e-4);
    EXPECT_NE(b.samples[441 + 541], 0.0f);
    EXPECT_EQ(b.samples[441 + 542], 0.0f);
}

TEST(SynthNoise, SameArgumentsGiveSameSamplesAndAddUp) {
    Buffer a, b;
    adv::synth::Noise(a, 0.1f, 650.0f, 0.7f, 0.0f, 51u);
    adv::synth::Noise(b, 0.1f, 650.0f, 0.7f, 0.0f, 51u);
    EXPECT_EQ(a.samples, b.samples);
    const std::vector<float> once = a.samples;
    adv::synth::Noise(a, 0.1f, 650.0f, 0.7f, 0.0f, 51u);
    for (size_t i = 0; i < once.size(); ++i) ASSERT_EQ(a.samples[i], 2.0f * once[i]);
    Buffer other;
    adv::synth::Noise(other, 0.1f, 650.0f, 0.7f, 0.0f, 52u);
    EXPECT_NE(other.samples, once);

    Buffer none;
    adv::synth::Noise(none, 0.0f, 650.0f, 0.7f, 0.0f, 1u);
    adv::synth::Noise(none, 0.1f, 650.0f, 0.0f, 0.0f, 1u);
    EXPECT_TRUE(none.samples.empty());
}

TEST(SynthClip, LimitsToPlusMinusOne) {
    Buffer empty;
    adv::synth::Clip(empty);
    EXPECT_TRUE(empty.samples.empty());
    Buffer b;
    b.samples = {1.5f, -3.0f, 0.25f, -1.0f, 1.0f};
    adv::synth::Clip(b);
    EXPECT_EQ(b.samples, (std::vector<float>{1.0f, -1.0f, 0.25f, -1.0f, 1.0f}));
}

} // namespace
