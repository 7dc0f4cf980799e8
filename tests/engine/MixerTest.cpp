#include "engine/Mixer.h"
#include "tests/ChildProcess.h"
#include "tests/ScratchPath.h"
#include "tests/engine/AudioTestSupport.h"
#include <gtest/gtest.h>
#include <chrono>
#include <cstdio>
#include <thread>
#include <sys/stat.h>

namespace {

namespace mixer = adv::mixer;
using audiotest::Peak;
using audiotest::Render;
constexpr uint32_t kRate = 44100;

class Mixer : public ::testing::Test {
protected:
    mixer::SoundPtr Clip(const std::vector<float>& v) { return mixer::InitFromMemory(*engine, v.data(), v.size(), kRate); }
    mixer::SoundPtr Track(const char* name) { return mixer::InitFromFile(*engine, audiotest::Fixtures() + name); }
    // The level of a 440 Hz (or hz) tone over 0.1 s of out from frame at.
    static double Level(const std::vector<float>& o, size_t at, double hz = 440) { return audiotest::Level(o, at, 4410, hz, kRate); }
    mixer::EnginePtr engine = mixer::InitOffline(kRate);
};

} // namespace

TEST_F(Mixer, ClipPlaysInPlaceAtItsVolumeLoopsExactlyAndTheMixIsClipped) {
    std::vector<float> samples(1000, 0.5f), ramp(100), loud(10, 0.8f), one{0.25f}, two{0.1f, 0.3f};
    auto s = Clip(samples);
    mixer::SetVolume(*s, 0.6f);
    EXPECT_EQ(Peak(Render(*engine, 64), 0, 64), 0.0); // nothing before Start
    samples[500] = -0.25f;                            // read in place, not copied
    mixer::Start(*s);
    auto out = Render(*engine, 1000);
    EXPECT_FALSE(mixer::AtEnd(*s)); // the end is seen when the sample after the last is due
    EXPECT_EQ(std::vector<float>({out[0], out[1], out[1000], out[1001], out[1998], out[1999]}),
              std::vector<float>({0.3f, 0.3f, -0.15f, -0.15f, 0.3f, 0.3f}));
    EXPECT_EQ(Peak(Render(*engine, 200), 0, 200), 0.0);
    EXPECT_TRUE(mixer::AtEnd(*s));
    // A looped clip repeats itself exactly, one or two samples long too, though the neighbours
    // that the interpolation reads then reach past its end more than once.
    for (size_t k = 0; k < ramp.size(); ++k) ramp[k] = float(k) / 100.0f;
    for (const std::vector<float>* v : {&ramp, &one, &two}) {
        auto loop = Clip(*v);
        mixer::SetLooping(*loop, true);
        mixer::Start(*loop);
        out = Render(*engine, 350);
        for (size_t j = 0; j < 350; ++j) ASSERT_FLOAT_EQ(out[2 * j], (*v)[j % v->size()]) << j;
        mixer::StopWithFade(*loop, 0);
    }
    auto a = Clip(loud), b = Clip(loud);
    mixer::Start(*a);
    mixer::Start(*b);
    EXPECT_EQ(Render(*engine, 5)[4], 1.0f);
}

TEST_F(Mixer, FadesAreLinearAndStopWithoutFadeSilencesAtOnce) {
    std::vector<float> samples(kRate, 0.5f);
    auto s = Clip(samples), t = Clip(samples);
    mixer::FadeIn(*s, 10); // 441 frames
    mixer::Start(*s);
    auto out = Render(*engine, 220);
    for (size_t j = 0; j < 220; ++j) ASSERT_NEAR(out[2 * j], 0.5 * double(j) / 441.0, 1e-6) << j;
    mixer::StopWithFade(*s, 20); // 882 frames down from the present 220 / 441
    out = Render(*engine, 1000);
    for (size_t j = 0; j < 882; ++j) ASSERT_NEAR(out[2 * j], 0.5 * 220.0 / 441.0 * (1.0 - double(j) / 882.0), 1e-6);
    EXPECT_EQ(Peak(out, 882, 118), 0.0);
    EXPECT_FALSE(mixer::AtEnd(*s)); // stopped, not played to its end
    mixer::FadeIn(*t, 10);
    mixer::Start(*t);
    out = Render(*engine, 1000);
    EXPECT_EQ(out[2 * 441] + out[2 * 999], 1.0f); // full level once the fade is done
    mixer::StopWithFade(*t, 0);
    EXPECT_EQ(Peak(Render(*engine, 100), 0, 100), 0.0);
}

TEST_F(Mixer, StreamsPlayToTheirEndLoopResampleAndWaitForTheDecoder) {
    EXPECT_FALSE(Track("/missing.mp3") || Track("/broken.mp3") || mixer::InitFromMemory(*engine, nullptr, 0, kRate));
    // A FIFO in a track's place is no track, and is not waited on for a writer.
    const std::string fifo = scratch::Path("mixer_fifo.mp3");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(child::Run([&] { return !mixer::InitFromFile(*engine, fifo); }, 10), 0);
    std::remove(fifo.c_str());
    auto once = Track("/tone440.mp3"), looped = Track("/tone440.mp3"), other = Track("/tone1000.mp3");
    ASSERT_TRUE(once && looped && other);
    mixer::Start(*once);
    // Without Pump only the half second decoded at the start is there; then it resumes where it stood.
    std::vector<float> out(kRate * mixer::kChannels);
    mixer::Render(*engine, out.data(), kRate);
    EXPECT_NEAR(Level(out, 4410), 0.5, 0.03);
    EXPECT_EQ(Peak(out, kRate * 6 / 10, kRate * 4 / 10), 0.0);
    out = Render(*engine, kRate * 7 / 10);
    EXPECT_NEAR(Level(out, 4410), 0.5, 0.03);
    EXPECT_LT(Peak(out, kRate * 6 / 10, kRate / 10), 0.01); // ends after its full second
    EXPECT_TRUE(mixer::AtEnd(*once));
    // The file holds exactly 440 periods, so the seams do not break the tone.
    mixer::SetLooping(*looped, true);
    mixer::Start(*looped);
    out = Render(*engine, kRate * 5 / 2);
    for (size_t at : {kRate - 2205, 2 * kRate - 2205, kRate * 2 + 4410}) EXPECT_NEAR(Level(out, at), 0.5, 0.03);
    EXPECT_FALSE(mixer::AtEnd(*looped));
    mixer::StopWithFade(*looped, 0);
    mixer::Start(*other); // 48000 Hz, stereo
    out = Render(*engine, kRate / 2);
    EXPECT_NEAR(Level(out, 4410, 1000), 0.5, 0.03);
    EXPECT_LT(Level(out, 4410), 0.01);
}

TEST(MixerDevice, DummyDriverPlaysInItsOwnThreadAndNoDeviceGivesNoEngine) {
    setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
    EXPECT_FALSE(mixer::Init());
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    auto engine = mixer::Init();
    unsetenv("SDL_AUDIODRIVER");
    ASSERT_TRUE(engine);
    auto track = mixer::InitFromFile(*engine, audiotest::Fixtures() + "/tone440.mp3");
    mixer::Start(*track);
    for (int tries = 0; tries < 300 && !mixer::AtEnd(*track); ++tries) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(mixer::AtEnd(*track)); // the decoder thread kept the stream fed to its end
}
