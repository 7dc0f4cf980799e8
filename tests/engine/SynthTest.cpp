#include "engine/Synth.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <random>

namespace {

namespace synth = adv::synth;
using synth::Envelope;
using synth::Wave;
constexpr double kR = 44100.0, kTwoPi = 6.283185307179586;

// The noise burst from its recipe: uniform words from MT19937, a (1 - t)^2 envelope, a biquad low pass.
std::vector<double> ExpectedNoise(double seconds, double cutoff, double volume, uint32_t seed) {
    const double w = cutoff * kTwoPi / kR, c = std::cos(w), alpha = std::sin(w) / 1.4142, a0 = 1 + alpha;
    double b0 = (1 - c) * 0.5 / a0, b1 = (1 - c) / a0, a1 = -2 * c / a0, a2 = (1 - alpha) / a0;
    if (cutoff > 19845.0) b0 = 0.800591, b1 = 1.601182, a1 = 1.5610152, a2 = 0.64134866; // pinned at 0.45 of the rate
    std::mt19937 mt(seed);
    const size_t n = size_t(seconds * kR);
    std::vector<double> out;
    for (double i = 0, x1 = 0, x2 = 0, y1 = 0, y2 = 0; i < double(n); ++i) {
        const double e = 1.0 - i / double(n), x = e * e * (2.0 * (double(mt()) / 4294967296.0) - 1.0);
        out.push_back(b1 * x1 + b0 * x + b0 * x2 - a1 * y1 - a2 * y2);
        x2 = x1, x1 = x, y2 = y1, y1 = out.back();
    }
    for (double& y : out) y *= volume;
    return out;
}

} // namespace

TEST(SynthTone, BufferGrowthOffsetsEmptyArgumentsAndClip) {
    synth::Buffer b;
    b.EnsureSeconds(0.01001f); // 441.44 samples
    b.samples[3] = 0.5f;
    b.EnsureSeconds(0.005f); // never shrinks
    EXPECT_EQ(b.samples.size(), 442u);
    synth::Tone(b, 300.0f, 0.2f, Wave::Square, 0.5f, 0.0f, 1.0f, Envelope::Decay);
    EXPECT_EQ(b.samples.size(), size_t(std::ceil(1.21 * kR)));
    EXPECT_EQ(b.samples[3], 0.5f);
    EXPECT_EQ(std::count(b.samples.begin() + 4, b.samples.begin() + long(kR), 0.0f), long(kR) - 4);
    EXPECT_NEAR(b.samples[size_t(kR)], 0.5, 1e-6); // the square starts at full level
    synth::Buffer none;
    synth::Tone(none, 0.0f, 0.2f, Wave::Sine, 0.5f, 0.0f, 0.0f, Envelope::Decay);
    synth::Tone(none, 300.0f, 0.2f, Wave::Sine, -0.5f, 0.0f, 0.0f, Envelope::Decay);
    synth::Noise(none, 0.0f, 650.0f, 0.7f, 0.0f, 1u);
    EXPECT_TRUE(none.samples.empty());
    synth::Tone(none, 300.0f, 0.2f, Wave(7), 0.5f, 0.0f, 0.0f, Envelope::Decay); // unknown wave: silence
    EXPECT_EQ(none.samples, std::vector<float>(size_t(std::ceil(0.21 * kR)), 0.0f));
    b.samples = {1.5f, -3.0f, 0.25f};
    synth::Clip(b);
    EXPECT_EQ(b.samples, (std::vector<float>{1.0f, -1.0f, 0.25f}));
}

TEST(SynthNoise, FollowsTheGeneratorEnvelopeAndFilterForItsSeed) {
    for (double cutoff : {280.0, 1300.0, 30000.0}) {
        synth::Buffer b;
        synth::Noise(b, 0.05f, float(cutoff), 0.9f, 0.0f, 23u);
        const std::vector<double> want = ExpectedNoise(0.05, cutoff, 0.9, 23u);
        for (size_t i : {size_t(0), size_t(1), size_t(2), size_t(100), want.size() / 2, want.size() - 1})
            EXPECT_NEAR(b.samples[i], want[i], 1e-4) << "cutoff " << cutoff << " i " << i;
    }
    // 542.43 samples after an offset of 441: exactly 542 written; a second burst adds on, another seed differs.
    synth::Buffer b, twice, other;
    synth::Noise(b, 0.0123f, 900.0f, 0.5f, 0.01f, 11u);
    EXPECT_EQ(b.samples.size(), size_t(std::ceil(0.0223 * kR)));
    EXPECT_EQ(b.samples[440], 0.0f);
    EXPECT_NEAR(b.samples[441 + 5], ExpectedNoise(0.0123, 900.0, 0.5, 11u)[5], 1e-4);
    EXPECT_NE(b.samples[441 + 541], 0.0f);
    EXPECT_EQ(b.samples[441 + 542], 0.0f);
    for (int k = 0; k < 2; ++k) synth::Noise(twice, 0.0123f, 900.0f, 0.5f, 0.01f, 11u);
    for (size_t i = 0; i < b.samples.size(); ++i) ASSERT_EQ(twice.samples[i], 2.0f * b.samples[i]);
    synth::Noise(other, 0.0123f, 900.0f, 0.5f, 0.01f, 12u);
    EXPECT_NE(other.samples, b.samples);
}
