#include "engine/Music.h"

#include "engine/Assets.h"
#include "engine/Sound.h"
#include "tests/engine/AudioTestSupport.h"

#include <SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

namespace Music = adv::Music;
namespace fs = std::filesystem;
using audiotest::Peak;

constexpr uint32_t kRate = 44100;
constexpr double kLevel = 0.5 * 0.65; // the fixtures' amplitude at the default music volume
const std::string kA = "tone440.mp3";  // 440 Hz, 1 s
const std::string kB = "tone1000.mp3"; // 1000 Hz, 1 s

// The fixture tones as assets: a scratch working directory whose "assets" points at them.
class MusicTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(dir);
        if (!fs::exists(dir / "assets")) fs::create_directory_symlink(audiotest::Fixtures(), dir / "assets");
        fs::current_path(dir);
        adv::Assets::Init("/nonexistent/torvane");
        adv::mixer::UseOffline(kRate);
        ASSERT_TRUE(Music::Init());
    }
    void TearDown() override {
        Music::SetVolume(0.65f);
        Music::Shutdown();
        adv::Sound::Clear();
        adv::mixer::UseOffline(0);
        fs::current_path(previous);
        fs::remove_all(dir);
    }
    std::vector<float> Render(size_t frames) { return audiotest::Render(*Music::Engine(), frames); }
    // The level of a tone in 0.05 s window w (22 whole periods of 440 Hz) of out.
    static double Level(const std::vector<float>& out, size_t w, double hz) {
        return audiotest::Level(out, w * 2205, 2205, hz, kRate);
    }

    fs::path previous = fs::current_path();
    fs::path dir = fs::path(TORVANE_BINARY_DIR) / ("music_test_" + std::to_string(getpid()));
};

} // namespace

TEST_F(MusicTest, EngineIsKeptOnceAndShutdownSilencesEverything) {
    adv::mixer::Engine* first = Music::Engine();
    EXPECT_TRUE(Music::Init());
    EXPECT_EQ(Music::Engine(), first);
    adv::Sound::Play(adv::Sound::Add(std::vector<float>(kRate, 0.5f), kRate), 1.0f);
    Music::Play(kA, true, 0.0f);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 1u);
    Music::Shutdown();
    EXPECT_EQ(adv::Sound::ActiveVoices(), 0u);
    EXPECT_EQ(Music::Current(), "");
    EXPECT_FALSE(Music::Available());
    EXPECT_EQ(Music::Engine(), nullptr);
    // Without an engine nothing happens.
    Music::Play(kA, true, 1.0f);
    EXPECT_EQ(Music::Current(), "");
    Music::SetVolume(0.1f);
    EXPECT_FLOAT_EQ(Music::Volume(), 0.65f);
    Music::Stop(1.0f);
    Music::Update(1.0f);
    EXPECT_TRUE(Music::Init());
}

TEST(MusicDevice, NoDeviceIsToldAndDisableNeverOpensOne) {
    setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(Music::Init());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "[musik] Kein Tongeraet verfuegbar - das Spiel laeuft ohne Musik.\n");
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    EXPECT_TRUE(Music::Init()); // may be tried again
    Music::Shutdown();
    // Disable is for good in a process, so it is tried in child processes.
    EXPECT_EXIT(
        {
            bool ok = Music::Init(); // a running engine is not stopped by Disable
            Music::Disable();
            ok = ok && Music::Init() && Music::Available();
            Music::Shutdown();
            std::exit(ok && !Music::Init() && !Music::Engine() && SDL_WasInit(SDL_INIT_AUDIO) == 0 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            Music::Disable();
            std::exit(!Music::Init() && SDL_WasInit(SDL_INIT_AUDIO) == 0 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    unsetenv("SDL_AUDIODRIVER");
}

TEST_F(MusicTest, FadeInAndCrossFadeAreLinear) {
    Music::Play(kA, true, 0.5f);
    auto out = Render(kRate * 7 / 10);
    // The level at the middle of each window of the 0.5 s fade.
    for (size_t w = 0; w < 10; ++w) EXPECT_NEAR(Level(out, w, 440), kLevel * (double(w) + 0.5) / 10.0, 0.02) << w;
    EXPECT_NEAR(Level(out, 11, 440), kLevel, 0.02);

    Music::Play(kB, true, 0.5f);
    EXPECT_EQ(Music::Current(), kB);
    out = Render(kRate * 7 / 10);
    for (size_t w = 0; w < 10; ++w) {
        const double share = (double(w) + 0.5) / 10.0;
        EXPECT_NEAR(Level(out, w, 440), kLevel * (1.0 - share), 0.02) << "old, window " << w;
        EXPECT_NEAR(Level(out, w, 1000), kLevel * share, 0.02) << "new, window " << w;
    }
    EXPECT_LT(Level(out, 11, 440), 0.005);
    EXPECT_NEAR(Level(out, 11, 1000), kLevel, 0.02);
}

TEST_F(MusicTest, SameTrackGoesOnEndedTrackRestartsBadPathKeepsTheOld) {
    Music::Play(kA, false, 0.0f);
    const auto whole = Render(kRate * 12 / 10);
    EXPECT_LT(Peak(whole, kRate * 11 / 10, kRate / 10), 0.01);
    EXPECT_EQ(Music::Current(), kA); // at rest after its end, still current
    Music::Play(kA, false, 0.0f);
    auto split = Render(kRate * 3 / 10);
    Music::Play(kA, true, 2.0f); // other loop and fade: still the same track, not restarted
    const auto rest = Render(kRate * 3 / 10);
    split.insert(split.end(), rest.begin(), rest.end());
    EXPECT_EQ(split, std::vector<float>(whole.begin(), whole.begin() + long(split.size())));

    Music::Play("", true, 0.0f);
    for (const std::string bad : {"missing.mp3", "broken.mp3"}) {
        testing::internal::CaptureStderr();
        Music::Play(bad, true, 0.0f);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "[musik] Konnte '" + adv::Assets::Root() + "/" + bad + "' nicht laden - die Musik laeuft weiter.\n");
    }
    EXPECT_EQ(Music::Current(), kA);
    EXPECT_NEAR(Level(Render(kRate / 5), 2, 440), kLevel, 0.02);
}

TEST_F(MusicTest, StopSilencesAtOnceOrFadesUntilItsMarginIsOver) {
    Music::Play(kA, true, 0.0f);
    Render(kRate / 10);
    Music::Stop(0.0f);
    EXPECT_EQ(Music::Current(), "");
    EXPECT_EQ(Peak(Render(kRate / 10), 0, kRate / 10), 0.0);

    Music::Play(kA, true, 0.0f);
    Render(kRate / 10);
    Music::Stop(1.0f);
    EXPECT_NEAR(Level(Render(kRate / 10), 0, 440), kLevel * (1.0 - 1102.5 / 44100.0), 0.02);
    Music::Update(1.2f); // 0.05 s of the 1.25 s remain
    EXPECT_GT(Level(Render(kRate / 10), 0, 440), 0.15);
    Music::Update(0.06f);
    EXPECT_EQ(Peak(Render(kRate / 10), 0, kRate / 10), 0.0);

    Music::Play(kA, true, 0.0f);
    Music::Play(kB, true, 5.0f);
    Music::Play(kA, true, 5.0f);
    Music::Stop(5.0f);
    EXPECT_GT(Peak(Render(kRate / 10), 0, kRate / 10), 0.1);
    Music::Update(100.0f); // a large step frees every fading track
    EXPECT_EQ(Peak(Render(kRate / 10), 0, kRate / 10), 0.0);
}

TEST_F(MusicTest, VolumeIsClampedAndAppliesToTheCurrentTrackOnly) {
    Music::Play(kA, true, 0.0f);
    Music::SetVolume(2.0f);
    EXPECT_FLOAT_EQ(Music::Volume(), 1.0f);
    EXPECT_NEAR(Level(Render(kRate / 10), 1, 440), 0.5, 0.03);
    Music::SetVolume(-1.0f);
    EXPECT_FLOAT_EQ(Music::Volume(), 0.0f);
    EXPECT_EQ(Peak(Render(kRate / 10), 0, kRate / 10), 0.0);
    Music::SetVolume(0.5f);
    EXPECT_NEAR(Level(Render(kRate / 10), 1, 440), 0.25, 0.02);
    Music::Stop(10.0f); // a slow fade: the level hardly moves
    Music::SetVolume(0.1f);
    EXPECT_NEAR(Level(Render(kRate / 10), 1, 440), 0.25, 0.02);
}
