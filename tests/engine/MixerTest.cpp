#include "engine/Mixer.h"

#include "tests/engine/AudioTestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

namespace mixer = adv::mixer;
using audiotest::Peak;
using audiotest::Render;

constexpr uint32_t kRate = 44100;

// The amplitude of a tone in the output of a 44100 Hz engine.
double Level(const std::vector<float>& out, size_t from, size_t count, double hz) {
    return audiotest::Level(out, from, count, hz, kRate);
}

class Mixer : public ::testing::Test {
protected:
    mixer::SoundPtr Clip(const std::vector<float>& samples) {
        return mixer::InitFromMemory(*engine, samples.data(), samples.size(), kRate);
    }
    mixer::SoundPtr Track(const char* name) { return mixer::InitFromFile(*engine, audiotest::Fixtures() + name); }
    static float Left(const std::vector<float>& out, size_t frame) { return out[frame * mixer::kChannels]; }

    mixer::EnginePtr engine = mixer::InitOffline(kRate);
};

} // namespace

TEST_F(Mixer, ClipPlaysInPlaceAtItsVolumeLoopsAndTheMixIsClipped) {
    std::vector<float> samples(1000, 0.5f), ramp(100);
    auto s = Clip(samples);
    mixer::SetVolume(*s, 0.6f);
    EXPECT_EQ(Peak(Render(*engine, 64), 0, 64), 0.0); // nothing before Start
    samples[500] = -0.25f;                            // read in place, not copied
    mixer::Start(*s);
    auto out = Render(*engine, 1000);
    EXPECT_FALSE(mixer::AtEnd(*s)); // the end is seen when the sample after the last is due
    for (size_t j : {size_t(0), size_t(999)}) EXPECT_FLOAT_EQ(Left(out, j), 0.3f) << j;
    EXPECT_FLOAT_EQ(out[999 * 2 + 1], 0.3f); // right channel
    EXPECT_FLOAT_EQ(Left(out, 500), -0.15f);
    EXPECT_EQ(Peak(Render(*engine, 200), 0, 200), 0.0);
    EXPECT_TRUE(mixer::AtEnd(*s));

    for (size_t k = 0; k < ramp.size(); ++k) ramp[k] = float(k) / 100.0f;
    auto loop = Clip(ramp);
    mixer::SetLooping(*loop, true);
    mixer::Start(*loop);
    out = Render(*engine, 350);
    for (size_t j = 0; j < 350; ++j) ASSERT_FLOAT_EQ(Left(out, j), float(j % 100) / 100.0f) << j;
    EXPECT_FALSE(mixer::AtEnd(*loop));
    loop.reset();

    for (float each : {0.8f, -0.8f}) {
        const std::vector<float> loud(10, each);
        auto a = Clip(loud), b = Clip(loud);
        mixer::Start(*a);
        mixer::Start(*b);
        EXPECT_EQ(Left(Render(*engine, 5), 2), each > 0 ? 1.0f : -1.0f);
    }
    EXPECT_FALSE(mixer::InitFromMemory(*engine, nullptr, 0, kRate));
}

TEST_F(Mixer, ClipsAreResampledToTheEngineRate) {
    // A 441 Hz sine stored at 22050 Hz played by engines of 44100 and 48000 Hz.
    std::vector<float> sine(11025);
    for (size_t k = 0; k < sine.size(); ++k) sine[k] = 0.5f * float(std::sin(2 * M_PI * 441.0 * double(k) / 22050));
    for (uint32_t rate : {44100u, 48000u}) {
        auto e = mixer::InitOffline(rate);
        auto s = mixer::InitFromMemory(*e, sine.data(), sine.size(), 22050);
        mixer::Start(*s);
        const auto out = Render(*e, rate / 4);
        for (size_t j = 4; j < rate / 4; ++j)
            ASSERT_NEAR(Left(out, j), 0.5 * std::sin(2 * M_PI * 441.0 * double(j) / rate), 0.002) << rate << " " << j;
    }
}

TEST_F(Mixer, FadesAreLinearAndStopWithoutFadeSilencesAtOnce) {
    std::vector<float> samples(kRate, 0.5f);
    auto s = Clip(samples);
    mixer::FadeIn(*s, 10); // 441 frames
    mixer::Start(*s);
    auto out = Render(*engine, 220);
    for (size_t j = 0; j < 220; ++j) ASSERT_NEAR(Left(out, j), 0.5 * double(j) / 441.0, 1e-6) << j;
    mixer::StopWithFade(*s, 20); // 882 frames down from the present 220 / 441
    out = Render(*engine, 1000);
    for (size_t j = 0; j < 882; ++j) ASSERT_NEAR(Left(out, j), 0.5 * 220.0 / 441.0 * (1.0 - double(j) / 882.0), 1e-6);
    EXPECT_EQ(Peak(out, 882, 118), 0.0);
    EXPECT_FALSE(mixer::AtEnd(*s)); // stopped, not played to its end

    auto t = Clip(samples);
    mixer::FadeIn(*t, 10);
    mixer::Start(*t);
    out = Render(*engine, 1000);
    EXPECT_FLOAT_EQ(Left(out, 441), 0.5f); // full level once the fade is done
    EXPECT_FLOAT_EQ(Left(out, 999), 0.5f);
    mixer::StopWithFade(*t, 0);
    EXPECT_EQ(Peak(Render(*engine, 100), 0, 100), 0.0);
}

TEST_F(Mixer, StreamsPlayToTheirEndLoopAndResample) {
    EXPECT_FALSE(Track("/missing.mp3"));
    EXPECT_FALSE(Track("/broken.mp3"));
    auto once = Track("/tone440.mp3"), looped = Track("/tone440.mp3"), other = Track("/tone1000.mp3");
    ASSERT_TRUE(once && looped && other);
    mixer::Start(*once);
    auto out = Render(*engine, kRate * 13 / 10);
    EXPECT_NEAR(Level(out, 4410, 4410, 440), 0.5, 0.03); // 4410 frames hold 44 periods
    EXPECT_NEAR(Level(out, 35280, 4410, 440), 0.5, 0.03);
    EXPECT_LT(Peak(out, kRate * 11 / 10, kRate / 10), 0.01);
    EXPECT_TRUE(mixer::AtEnd(*once));

    // The file holds exactly 440 periods, so the seams do not break the tone.
    mixer::SetLooping(*looped, true);
    mixer::Start(*looped);
    out = Render(*engine, kRate * 5 / 2);
    for (size_t at : {kRate - 2205, 2 * kRate - 2205, kRate * 2 + 4410}) EXPECT_NEAR(Level(out, at, 4410, 440), 0.5, 0.03);
    EXPECT_FALSE(mixer::AtEnd(*looped));
    mixer::StopWithFade(*looped, 0);

    mixer::Start(*other); // 48000 Hz, stereo
    out = Render(*engine, kRate / 2);
    EXPECT_NEAR(Level(out, 4410, 4410, 1000), 0.5, 0.03);
    EXPECT_LT(Level(out, 4410, 4410, 440), 0.01);
}

TEST_F(Mixer, StreamWaitsForTheDecoderInsteadOfSkipping) {
    auto s = Track("/tone440.mp3");
    mixer::Start(*s);
    // Without Pump only the half second decoded at the start is there.
    std::vector<float> out(kRate * mixer::kChannels);
    mixer::Render(*engine, out.data(), kRate);
    EXPECT_NEAR(Level(out, 4410, 4410, 440), 0.5, 0.03);
    EXPECT_EQ(Peak(out, kRate * 6 / 10, kRate * 4 / 10), 0.0);
    // Decoded on, it resumes where it stood, and still ends after its full second.
    EXPECT_NEAR(Level(Render(*engine, kRate * 4 / 10), 4410, 4410, 440), 0.5, 0.03);
    EXPECT_FALSE(mixer::AtEnd(*s));
    Render(*engine, kRate * 3 / 10);
    EXPECT_TRUE(mixer::AtEnd(*s));
}

TEST(MixerDevice, DummyDriverPlaysInItsOwnThreadAndNoDeviceGivesNoEngine) {
    setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
    EXPECT_FALSE(mixer::Init());
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    auto engine = mixer::Init();
    unsetenv("SDL_AUDIODRIVER");
    ASSERT_TRUE(engine);
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
}
