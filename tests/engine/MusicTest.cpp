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
#include <vector>

namespace {

namespace Music = adv::Music;
namespace fs = std::filesystem;
using audiotest::Level;

constexpr uint32_t kRate = 44100;
constexpr double kLevel = 0.5 * 0.65; // the fixtures' amplitude at the default music volume
const std::string kA = "tone440.mp3";  // 440 Hz, 1 s
const std::string kB = "tone1000.mp3"; // 1000 Hz, 1 s

// Plays the fixture tones as assets: a scratch folder with "assets" pointing at them is made the
// working directory, where the asset search finds it first.
class MusicTest : public ::testing::Test {
protected:
    void SetUp() override {
        previous = fs::current_path();
        dir = fs::path(TORVANE_BINARY_DIR) / ("music_test_" + std::to_string(getpid()));
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

    fs::path previous, dir;
};

using MusicEngine = MusicTest;
using MusicPlay = MusicTest;
using MusicStop = MusicTest;
using MusicVolume = MusicTest;

TEST_F(MusicEngine, InitTwiceKeepsOneEngine) {
    adv::mixer::Engine* first = Music::Engine();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(Music::Init());
    EXPECT_EQ(Music::Engine(), first);
    EXPECT_TRUE(Music::Available());
}

TEST_F(MusicEngine, WithoutEngineNothingHappens) {
    Music::Shutdown();
    EXPECT_FALSE(Music::Available());
    EXPECT_EQ(Music::Engine(), nullptr);
    Music::Play(kA, true, 1.0f);
    EXPECT_EQ(Music::Current(), "");
    Music::SetVolume(0.1f);
    EXPECT_FLOAT_EQ(Music::Volume(), 0.65f);
    Music::Stop(1.0f);
    Music::Update(1.0f);
    EXPECT_TRUE(Music::Init());
}

TEST_F(MusicEngine, ShutdownStopsTheEffectVoicesToo) {
    const int id = adv::Sound::Add(std::vector<float>(kRate, 0.5f), kRate);
    adv::Sound::Play(id, 1.0f);
    Music::Play(kA, true, 0.0f);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 1u);
    Music::Shutdown();
    EXPECT_EQ(adv::Sound::ActiveVoices(), 0u);
    EXPECT_EQ(Music::Current(), "");
    EXPECT_FALSE(Music::Available());
}

TEST(MusicDevice, NoDeviceIsToldAndInitMayBeTriedAgain) {
    setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(Music::Init());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "[musik] Kein Tongeraet verfuegbar - das Spiel laeuft ohne Musik.\n");
    EXPECT_EQ(Music::Engine(), nullptr);
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    EXPECT_TRUE(Music::Init());
    Music::Shutdown();
    unsetenv("SDL_AUDIODRIVER");
}

// Disable is for good in a process, so it is tried in a child process.
TEST(MusicDevice, DisableKeepsTheDeviceClosed) {
    EXPECT_EXIT(
        {
            setenv("SDL_AUDIODRIVER", "dummy", 1);
            bool ok = Music::Init();   // a running engine is not stopped by Disable
            Music::Disable();
            ok = ok && Music::Init() && Music::Available();
            Music::Shutdown();
            ok = ok && !Music::Init() && !Music::Engine() && SDL_WasInit(SDL_INIT_AUDIO) == 0;
            std::exit(ok ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            setenv("SDL_AUDIODRIVER", "dummy", 1);
            Music::Disable();
            std::exit(!Music::Init() && SDL_WasInit(SDL_INIT_AUDIO) == 0 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(MusicPlay, FadeInRisesLinearlyToTheMusicVolume) {
    Music::Play(kA, true, 0.5f);
    EXPECT_EQ(Music::Current(), kA);
    const auto out = Render(kRate * 7 / 10);
    // Windows of 0.05 s hold 22 whole periods; the level at the middle of each is expected.
    for (size_t w = 0; w < 10; ++w) {
        const double mid = (double(w) + 0.5) * 2205.0;
        EXPECT_NEAR(Level(out, w * 2205, 2205, 440, kRate), kLevel * mid / 22050.0, 0.02) << "window " << w;
    }
    EXPECT_NEAR(Level(out, 24255, 2205, 440, kRate), kLevel, 0.02);
}

TEST_F(MusicPlay, ChangeOfTrackCrossFades) {
    Music::Play(kA, true, 0.0f);
    const auto before = Render(kRate / 5);
    EXPECT_NEAR(Level(before, 4410, 4410, 440, kRate), kLevel, 0.02);
    Music::Play(kB, true, 0.5f);
    EXPECT_EQ(Music::Current(), kB);
    const auto out = Render(kRate * 7 / 10);
    for (size_t w = 0; w < 10; ++w) {
        const double share = (double(w) + 0.5) * 2205.0 / 22050.0;
        EXPECT_NEAR(Level(out, w * 2205, 2205, 440, kRate), kLevel * (1.0 - share), 0.02) << "old, window " << w;
        EXPECT_NEAR(Level(out, w * 2205, 2205, 1000, kRate), kLevel * share, 0.02) << "new, window " << w;
    }
    EXPECT_LT(Level(out, 24255, 2205, 440, kRate), 0.005);
    EXPECT_NEAR(Level(out, 24255, 2205, 1000, kRate), kLevel, 0.02);
}

TEST_F(MusicPlay, SameTrackGoesOnWithoutABreak) {
    Music::Play(kA, false, 0.0f);
    const auto whole = Render(kRate * 6 / 10);
    Music::Shutdown();
    ASSERT_TRUE(Music::Init());

    Music::Play(kA, false, 0.0f);
    auto split = Render(kRate * 3 / 10);
    Music::Play(kA, true, 2.0f); // other loop and fade: still the same track
    const auto rest = Render(kRate * 3 / 10);
    split.insert(split.end(), rest.begin(), rest.end());
    EXPECT_EQ(split, whole);
    EXPECT_EQ(Music::Current(), kA);
}

TEST_F(MusicPlay, TrackThatEndedStartsAnew) {
    Music::Play(kA, false, 0.0f);
    const auto out = Render(kRate * 12 / 10);
    EXPECT_LT(audiotest::Peak(out, kRate * 11 / 10, kRate / 10), 0.01);
    EXPECT_EQ(Music::Current(), kA); // at rest after its end, still current
    Music::Play(kA, false, 0.0f);
    EXPECT_NEAR(Level(Render(kRate / 5), 4410, 4410, 440, kRate), kLevel, 0.02);
}

TEST_F(MusicPlay, EmptyMissingOrBrokenPathKeepsTheOldTrack) {
    Music::Play(kA, true, 0.0f);
    Render(kRate / 10);
    Music::Play("", true, 0.0f);
    EXPECT_EQ(Music::Current(), kA);
    for (const std::string& bad : {std::string("missing.mp3"), std::string("broken.mp3")}) {
        testing::internal::CaptureStderr();
        Music::Play(bad, true, 0.0f);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "[musik] Konnte '" + adv::Assets::Root() + "/" + bad + "' nicht laden - die Musik laeuft weiter.\n");
        EXPECT_EQ(Music::Current(), kA);
    }
    EXPECT_NEAR(Level(Render(kRate / 5), 4410, 4410, 440, kRate), kLevel, 0.02);
}

TEST_F(MusicStop, StopWithoutFadeSilencesAtOnce) {
    Music::Play(kA, true, 0.0f);
    Render(kRate / 10);
    Music::Stop(0.0f);
    EXPECT_EQ(Music::Current(), "");
    EXPECT_EQ(audiotest::Peak(Render(kRate / 10), 0, kRate / 10), 0.0);
}

TEST_F(MusicStop, FadingTrackLivesUntilItsFadeAndMarginAreOver) {
    Music::Play(kA, true, 0.0f);
    Render(kRate / 10);
    Music::Stop(1.0f);
    EXPECT_EQ(Music::Current(), "");
    const auto falling = Render(kRate / 10);
    EXPECT_NEAR(Level(falling, 0, 2205, 440, kRate), kLevel * (1.0 - 1102.5 / 44100.0), 0.02);
    Music::Update(1.2f); // 0.05 s of the 1.25 s remain
    EXPECT_GT(Level(Render(kRate / 10), 0, 2205, 440, kRate), 0.15);
    Music::Update(0.06f);
    EXPECT_EQ(audiotest::Peak(Render(kRate / 10), 0, kRate / 10), 0.0);
}

TEST_F(MusicStop, LargeStepFreesEveryFadingTrack) {
    Music::Play(kA, true, 0.0f);
    Music::Play(kB, true, 5.0f);
    Music::Play(kA, true, 5.0f);
    Music::Stop(5.0f);
    EXPECT_GT(audiotest::Peak(Render(kRate / 10), 0, kRate / 10), 0.1);
    Music::Update(100.0f);
    EXPECT_EQ(audiotest::Peak(Render(kRate / 10), 0, kRate / 10), 0.0);
}

TEST_F(MusicVolume, ClampedAndAppliedToTheCurrentTrackOnly) {
    EXPECT_FLOAT_EQ(Music::Volume(), 0.65f);
    Music::Play(kA, true, 0.0f);
    Music::SetVolume(2.0f);
    EXPECT_FLOAT_EQ(Music::Volume(), 1.0f);
    const double full = Level(Render(kRate / 10), 2205, 2205, 440, kRate);
    EXPECT_NEAR(full, 0.5, 0.03);
    Music::SetVolume(-1.0f);
    EXPECT_FLOAT_EQ(Music::Volume(), 0.0f);
    EXPECT_EQ(audiotest::Peak(Render(kRate / 10), 0, kRate / 10), 0.0);
    Music::SetVolume(0.5f);
    EXPECT_NEAR(Level(Render(kRate / 10), 2205, 2205, 440, kRate), full / 2, 0.01);

    Music::Stop(10.0f); // a slow fade: the level hardly moves
    Music::SetVolume(0.1f);
    EXPECT_NEAR(Level(Render(kRate / 10), 2205, 2205, 440, kRate), full / 2, 0.01);
}

} // namespace
