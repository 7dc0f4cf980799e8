#include "engine/Mixer.h"

#include "tests/engine/AudioTestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

namespace mixer = adv::mixer;
using audiotest::Level;
using audiotest::Render;

constexpr uint32_t kRate = 44100;

class MixerTest : public ::testing::Test {
protected:
    mixer::EnginePtr engine = mixer::InitOffline(kRate);

    mixer::SoundPtr Clip(const std::vector<float>& samples, uint32_t rate = kRate) {
        return mixer::InitFromMemory(*engine, samples.data(), samples.size(), rate);
    }
    float Left(const std::vector<float>& out, size_t frame) { return out[frame * mixer::kChannels]; }
    float Right(const std::vector<float>& out, size_t frame) { return out[frame * mixer::kChannels + 1]; }
};

using MixerClip = MixerTest;
using MixerFade = MixerTest;
using MixerStream = MixerTest;

TEST_F(MixerClip, PlaysInPlaceOnBothChannelsAtItsVolumeUntilItsEnd) {
    std::vector<float> samples(1000, 0.5f);
    auto s = Clip(samples);
    ASSERT_TRUE(s);
    mixer::SetVolume(*s, 0.6f);
    EXPECT_EQ(audiotest::Peak(Render(*engine, 64), 0, 64), 0.0); // nothing before Start
    samples[500] = -0.25f; // read in place, not copied
    mixer::Start(*s);
    auto out = Render(*engine, 1000);
    EXPECT_FALSE(mixer::AtEnd(*s)); // the end is seen when the sample after the last is due
    const auto after = Render(*engine, 200);
    out.insert(out.end(), after.begin(), after.end());
    for (size_t j : {size_t(0), size_t(1), size_t(499), size_t(999)}) {
        EXPECT_FLOAT_EQ(Left(out, j), 0.3f) << j;
        EXPECT_FLOAT_EQ(Right(out, j), 0.3f) << j;
    }
    EXPECT_FLOAT_EQ(Left(out, 500), -0.15f);
    EXPECT_EQ(audiotest::Peak(out, 1000, 200), 0.0);
    EXPECT_TRUE(mixer::AtEnd(*s));
}

TEST_F(MixerClip, LoopingClipWrapsAround) {
    std::vector<float> ramp(100);
    for (size_t k = 0; k < ramp.size(); ++k) ramp[k] = float(k) / 100.0f;
    auto s = Clip(ramp);
    mixer::SetLooping(*s, true);
    mixer::Start(*s);
    const auto out = Render(*engine, 350);
    for (size_t j = 0; j < 350; ++j) ASSERT_FLOAT_EQ(Left(out, j), float(j % 100) / 100.0f) << j;
    EXPECT_FALSE(mixer::AtEnd(*s));
}

TEST_F(MixerClip, ResamplesToTheEngineRate) {
    // A 441 Hz sine stored at 22050 Hz and at 44100 Hz, played by engines of 44100 and 48000 Hz.
    for (uint32_t clipRate : {22050u, 44100u}) {
        for (uint32_t engineRate : {44100u, 48000u}) {
            auto e = mixer::InitOffline(engineRate);
            std::vector<float> sine(clipRate / 2);
            for (size_t k = 0; k < sine.size(); ++k) sine[k] = 0.5f * float(std::sin(2 * M_PI * 441.0 * double(k) / clipRate));
            auto s = mixer::InitFromMemory(*e, sine.data(), sine.size(), clipRate);
            mixer::Start(*s);
            const auto out = Render(*e, engineRate / 4);
            double worst = 0;
            for (size_t j = 4; j < engineRate / 4; ++j)
                worst = std::max(worst, std::abs(double(Left(out, j)) - 0.5 * std::sin(2 * M_PI * 441.0 * double(j) / engineRate)));
            EXPECT_LT(worst, 0.002) << clipRate << " -> " << engineRate;
        }
    }
}

TEST_F(MixerClip, FinalMixIsClipped) {
    const struct {
        float each, mix;
    } cases[] = {{0.8f, 1.0f}, {-0.8f, -1.0f}, {0.35f, 0.7f}};
    for (const auto& c : cases) {
        std::vector<float> samples(10, c.each);
        auto a = Clip(samples), b = Clip(samples);
        mixer::Start(*a);
        mixer::Start(*b);
        EXPECT_NEAR(Left(Render(*engine, 5), 2), c.mix, 1e-6) << c.each;
    }
}

TEST_F(MixerFade, FadeInRisesLinearlyFromSilence) {
    std::vector<float> samples(kRate, 0.5f);
    auto s = Clip(samples);
    mixer::FadeIn(*s, 10); // 441 frames
    mixer::Start(*s);
    const auto out = Render(*engine, 1000);
    for (size_t j = 0; j < 441; ++j) ASSERT_NEAR(Left(out, j), 0.5 * double(j) / 441.0, 1e-6) << j;
    for (size_t j = 441; j < 1000; ++j) ASSERT_FLOAT_EQ(Left(out, j), 0.5f) << j;
}

TEST_F(MixerFade, StopWithFadeFallsLinearlyFromThePresentLevelThenStops) {
    std::vector<float> samples(kRate, 0.5f);
    auto s = Clip(samples);
    mixer::FadeIn(*s, 10);
    mixer::Start(*s);
    Render(*engine, 220); // the fade-in stands at 220 / 441
    mixer::StopWithFade(*s, 20); // 882 frames
    const auto out = Render(*engine, 1000);
    const double from = 0.5 * 220.0 / 441.0;
    for (size_t j = 0; j < 882; ++j) ASSERT_NEAR(Left(out, j), from * (1.0 - double(j) / 882.0), 1e-6) << j;
    EXPECT_EQ(audiotest::Peak(out, 882, 118), 0.0);
    EXPECT_FALSE(mixer::AtEnd(*s)); // stopped, not played to its end
}

TEST_F(MixerFade, StopWithoutFadeSilencesAtOnce) {
    std::vector<float> samples(kRate, 0.5f);
    auto s = Clip(samples);
    mixer::Start(*s);
    EXPECT_FLOAT_EQ(Left(Render(*engine, 10), 9), 0.5f);
    mixer::StopWithFade(*s, 0);
    EXPECT_EQ(audiotest::Peak(Render(*engine, 100), 0, 100), 0.0);
}

TEST_F(MixerStream, PlaysAnMp3ToItsEnd) {
    auto s = mixer::InitFromFile(*engine, audiotest::Fixtures() + "/tone440.mp3");
    ASSERT_TRUE(s);
    mixer::Start(*s);
    const auto out = Render(*engine, kRate * 13 / 10);
    // 4410 frames hold 44 periods of 440 Hz.
    EXPECT_NEAR(Level(out, 4410, 4410, 440, kRate), 0.5, 0.03);
    EXPECT_NEAR(Level(out, 35280, 4410, 440, kRate), 0.5, 0.03);
    EXPECT_LT(audiotest::Peak(out, kRate * 11 / 10, kRate / 10), 0.01);
    EXPECT_TRUE(mixer::AtEnd(*s));
}

TEST_F(MixerStream, LoopingStreamGoesOnPastItsEnd) {
    auto s = mixer::InitFromFile(*engine, audiotest::Fixtures() + "/tone440.mp3");
    ASSERT_TRUE(s);
    mixer::SetLooping(*s, true);
    mixer::Start(*s);
    const auto out = Render(*engine, kRate * 5 / 2);
    // The file holds exactly 440 periods, so the seams do not break the tone.
    EXPECT_NEAR(Level(out, kRate - 2205, 4410, 440, kRate), 0.5, 0.03);
    EXPECT_NEAR(Level(out, 2 * kRate - 2205, 4410, 440, kRate), 0.5, 0.03);
    EXPECT_NEAR(Level(out, kRate * 2 + 4410, 4410, 440, kRate), 0.5, 0.03);
    EXPECT_FALSE(mixer::AtEnd(*s));
}

TEST_F(MixerStream, ResamplesAStereoStreamOfAnotherRate) {
    auto s = mixer::InitFromFile(*engine, audiotest::Fixtures() + "/tone1000.mp3"); // 48000 Hz, stereo
    ASSERT_TRUE(s);
    mixer::Start(*s);
    const auto out = Render(*engine, kRate / 2);
    EXPECT_NEAR(Level(out, 4410, 4410, 1000, kRate), 0.5, 0.03);
    EXPECT_LT(Level(out, 4410, 4410, 440, kRate), 0.01);
}

TEST_F(MixerStream, WaitsForTheDecoderInsteadOfSkipping) {
    auto s = mixer::InitFromFile(*engine, audiotest::Fixtures() + "/tone440.mp3");
    ASSERT_TRUE(s);
    mixer::Start(*s);
    // Without Pump only the half second decoded at the start is there.
    std::vector<float> out(kRate * mixer::kChannels);
    mixer::Render(*engine, out.data(), kRate);
    EXPECT_NEAR(Level(out, 4410, 4410, 440, kRate), 0.5, 0.03);
    EXPECT_EQ(audiotest::Peak(out, kRate * 6 / 10, kRate * 4 / 10), 0.0);
    EXPECT_FALSE(mixer::AtEnd(*s));
    // Decoded on, it resumes where it stood, and still ends after its full second.
    const auto rest = Render(*engine, kRate * 4 / 10);
    EXPECT_NEAR(Level(rest, 4410, 4410, 440, kRate), 0.5, 0.03);
    EXPECT_FALSE(mixer::AtEnd(*s));
    Render(*engine, kRate * 3 / 10);
    EXPECT_TRUE(mixer::AtEnd(*s));
}

TEST_F(MixerStream, MissingOrBrokenFileGivesNoSound) {
    EXPECT_FALSE(mixer::InitFromFile(*engine, audiotest::Fixtures() + "/missing.mp3"));
    EXPECT_FALSE(mixer::InitFromFile(*engine, audiotest::Fixtures() + "/broken.mp3"));
    EXPECT_FALSE(mixer::InitFromMemory(*engine, nullptr, 0, kRate));
}

TEST(MixerDevice, PlaysThroughTheDummyDriverInItsOwnThread) {
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    auto engine = mixer::Init();
    ASSERT_TRUE(engine);
    EXPECT_GT(mixer::SampleRate(*engine), 0u);
    std::vector<float> samples(kRate / 20, 0.5f);
    auto s = mixer::InitFromMemory(*engine, samples.data(), samples.size(), kRate);
    auto track = mixer::InitFromFile(*engine, audiotest::Fixtures() + "/tone440.mp3");
    ASSERT_TRUE(track);
    mixer::Start(*s);
    mixer::Start(*track);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (!(mixer::AtEnd(*s) && mixer::AtEnd(*track)) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(mixer::AtEnd(*s));
    EXPECT_TRUE(mixer::AtEnd(*track)); // the decoder thread kept the stream fed to its end
    s.reset();
    track.reset();
    unsetenv("SDL_AUDIODRIVER");
}

TEST(MixerDevice, NoDeviceGivesNoEngine) {
    setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
    EXPECT_FALSE(mixer::Init());
    unsetenv("SDL_AUDIODRIVER");
}

} // namespace
