#include "engine/Music.h"
#include "engine/Assets.h"
#include "engine/Sound.h"
#include "tests/engine/AudioTestSupport.h"
#include "tests/ScratchPath.h"
#include <SDL.h>
#include <gtest/gtest.h>
#include <filesystem>

namespace {

namespace Music = adv::Music;
namespace fs = std::filesystem;
using audiotest::Peak;

constexpr size_t kRate = 44100, kTenth = kRate / 10;
constexpr double kLevel = 0.5 * 0.65;                         // the fixtures' amplitude at the default music volume
const std::string kA = "tone440.mp3", kB = "tone1000.mp3"; // 440 and 1000 Hz, 1 s each

// Music and sound effects on an offline engine. The fixture tones as assets: a scratch working directory whose "assets" points at them.
class MusicTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(dir);
        fs::create_directory_symlink(audiotest::Fixtures(), dir / "assets");
        fs::current_path(dir);
        adv::Assets::Init("/nonexistent/torvane");
        adv::mixer::UseOffline(kRate);
        ASSERT_TRUE(Music::Init());
    }
    void TearDown() override {
        adv::Sound::SetVolume(0.8f);
        Music::SetVolume(0.65f);
        Music::Shutdown();
        adv::Sound::Clear();
        adv::mixer::UseOffline(0);
        fs::current_path(previous);
        fs::remove_all(dir);
    }
    static std::vector<float> Render(size_t frames) { return audiotest::Render(*Music::Engine(), frames); }
    // The level of a tone in the 0.05 s window w of out (22 whole periods of 440 Hz).
    static double Level(const std::vector<float>& out, size_t w, double hz) { return audiotest::Level(out, w * 2205, 2205, hz, kRate); }
    static float Frame() { return Render(1)[0]; } // left channel
    static int Constant(float value, size_t length = kRate) { return adv::Sound::Add(std::vector<float>(length, value), kRate); }
    // Updates every 10 ms until the track plays, at most 5 s; nothing plays before the device is there.
    static void WaitFor(const std::string& track) {
        for (int i = 0; i < 500 && Music::Current() != track; ++i) {
            if (!Music::Available()) { EXPECT_EQ(Music::Current(), ""); }
            usleep(10000), Music::Update(0.01f);
        }
    }
    fs::path previous = fs::current_path(), dir = fs::path(scratch::Path("music_test"));
};

} // namespace

TEST_F(MusicTest, OneEngineAndShutdownSilencesEffectsToo) {
    adv::mixer::Engine* first = Music::Engine();
    EXPECT_TRUE(Music::Init() && Music::Engine() == first);
    adv::Sound::Play(adv::Sound::Add(std::vector<float>(kRate, 0.5f), kRate), 1.0f);
    Music::Play(kA, true, 0.0f);
    Music::Shutdown();
    Music::Play(kA, true, 1.0f); // without an engine nothing happens
    EXPECT_EQ(Music::Current() + (Music::Available() ? "ready" : "") + std::to_string(adv::Sound::ActiveVoices()), "0");
}

// Disable is for good in a process, so it is tried in child processes; a running engine goes on.
TEST(MusicDevice, DisableNeverOpensOne) {
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    EXPECT_EXIT(const bool ok = Music::Init(); Music::Disable(); const bool on = Music::Init(); Music::Shutdown();
                std::exit(ok && on && !Music::Init() && SDL_WasInit(SDL_INIT_AUDIO) == 0 ? 0 : 1), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(Music::Disable(); std::exit(!Music::Init() && SDL_WasInit(SDL_INIT_AUDIO) == 0 ? 0 : 1),
                ::testing::ExitedWithCode(0), "");
    unsetenv("SDL_AUDIODRIVER");
}

// Opened in the background, the device keeps the caller from waiting; a track asked for
// meanwhile starts once Update has taken the engine over, and a missing device is told then.
// So are the tracks' files.
TEST_F(MusicTest, BackgroundOpeningPlaysWhatWasAskedForMeanwhile) {
    Music::Shutdown();
    adv::mixer::UseOffline(0);
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    Music::InitInBackground();
    Music::Play(kA, true, 0.0f);
    WaitFor(kA);
    EXPECT_EQ(Music::Current(), kA);
    // With a device, a track's file is opened on a thread of its own: the old one plays on
    // until an Update finds the new one there.
    Music::Play(kB, true, 0.0f);
    EXPECT_EQ(Music::Current(), kA);
    WaitFor(kB);
    EXPECT_EQ(Music::Current(), kB);
    Music::Shutdown();
    setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
    testing::internal::CaptureStderr();
    Music::InitInBackground();
    Music::Play(kB, true, 0.0f);
    EXPECT_FALSE(Music::Init()); // waits for the opener
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "[musik] Kein Tongeraet verfuegbar - das Spiel laeuft ohne Musik.\n");
    EXPECT_EQ(Music::Current(), "");
    unsetenv("SDL_AUDIODRIVER");
}

// A new track fades in over its time while the old one fades out (the fades' shape is the mixer's).
TEST_F(MusicTest, ANewTrackCrossFades) {
    Music::Play(kA, true, 0.0f);
    Render(kTenth);
    Music::Play(kB, true, 0.5f);
    EXPECT_EQ(Music::Current(), kB);
    const auto out = Render(7 * kTenth);
    for (size_t w = 0; w < 12; ++w) {
        const double share = std::min((double(w) + 0.5) / 10.0, 1.0);
        EXPECT_NEAR(Level(out, w, 440), kLevel * (1.0 - share), 0.02) << "old, window " << w;
        EXPECT_NEAR(Level(out, w, 1000), kLevel * share, 0.02) << "new, window " << w;
    }
}

TEST_F(MusicTest, SameTrackGoesOnEndedTrackRestartsBadPathKeepsTheOld) {
    Music::Play(kA, false, 0.0f);
    const auto whole = Render(12 * kTenth);
    EXPECT_LT(Peak(whole, 11 * kTenth, kTenth), 0.01);
    EXPECT_EQ(Music::Current(), kA); // at rest after its end, still current
    Music::Play(kA, false, 0.0f);
    auto split = Render(3 * kTenth);
    Music::Play(kA, true, 2.0f); // other loop and fade: still the same track, not restarted
    const auto rest = Render(3 * kTenth);
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
    EXPECT_NEAR(Level(Render(2 * kTenth), 2, 440), kLevel, 0.02);
}

TEST_F(MusicTest, StopSilencesAtOnceOrFadesAndVolumeIsForTheCurrentTrackOnly) {
    Music::Play(kA, true, 0.0f);
    Music::SetVolume(-1.0f);
    EXPECT_EQ(Peak(Render(kTenth), 0, kTenth) + Music::Volume(), 0.0);
    Music::SetVolume(0.65f);
    Music::Stop(0.0f);
    EXPECT_EQ(std::pair(Music::Current(), Peak(Render(kTenth), 0, kTenth)), std::pair(std::string(), 0.0));
    Music::Play(kA, true, 0.0f);
    Render(kTenth);
    Music::Stop(1.0f);
    EXPECT_NEAR(Level(Render(kTenth), 0, 440), kLevel * (1.0 - 1102.5 / 44100.0), 0.02);
    Music::SetVolume(2.0f); // limited, and not for a fading track
    EXPECT_EQ(Music::Volume(), 1.0f);
    Music::Update(1.2f); // 0.05 s of the 1.25 s remain
    EXPECT_NEAR(Level(Render(kTenth), 0, 440), kLevel * (1.0 - 5512.5 / 44100.0), 0.02);
    Music::Update(0.06f);
    EXPECT_EQ(Peak(Render(kTenth), 0, kTenth), 0.0);
}

TEST_F(MusicTest, SoundClipsVoicesAndTheMasterVolume) {
    EXPECT_EQ((std::vector{Constant(0.1f, 100), adv::Sound::Add({}, kRate), Constant(0.2f, 1000)}), std::vector({0, 1, 2}));
    for (int id : {-1, 3, 1}) adv::Sound::Play(id, 1.0f); // unknown or empty
    EXPECT_EQ(adv::Sound::ActiveVoices(), 0u);
    adv::Sound::Play(0, 1.0f);
    adv::Sound::Play(2, 1.0f);
    adv::Sound::PlayOnce(std::vector<float>(100, 0.5f), kRate, 0.5f); // not kept as a clip
    EXPECT_FLOAT_EQ(Frame(), (0.1f + 0.2f + 0.25f) * 0.8f);
    audiotest::Render(*adv::Music::Engine(), 200);
    adv::Sound::Update(); // removes only the finished voices
    EXPECT_EQ(adv::Sound::ActiveVoices(), 1u);
    adv::Sound::StopAll();
    EXPECT_EQ(Frame(), 0.0f);
    adv::Sound::SetVolume(-1.0f);
    const float low = adv::Sound::Volume();
    adv::Sound::SetVolume(2.0f);
    EXPECT_EQ(std::pair(low, adv::Sound::Volume()), std::pair(0.0f, 1.0f));
    adv::Sound::Play(2, 0.5f); // StopAll keeps the clips; the volume is taken when a voice starts
    adv::Sound::SetVolume(0.5f);
    adv::Sound::Play(2, 0.5f);
    EXPECT_FLOAT_EQ(Frame(), 0.2f * 0.5f * (1.0f + 0.5f));
    adv::Sound::Clear();
    adv::Sound::Play(2, 1.0f);
    EXPECT_EQ(adv::Sound::ActiveVoices() + Constant(0.5f), 0u);
    adv::Music::Shutdown(); // without an engine clips are kept but nothing plays
    adv::Sound::Play(0, 1.0f);
    adv::Sound::PlayOnce(std::vector<float>(100, 0.5f), kRate, 1.0f);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 0u);
    ASSERT_TRUE(Music::Init());
    adv::Sound::Play(0, 1.0f);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 1u);
}

TEST_F(MusicTest, ATwentyFifthSoundPushesOutTheOldest) {
    // Clip k holds the constant (k + 1) / 1024, so the mix tells which voices sound.
    for (int k = 0; k < 25; ++k) adv::Sound::Play(Constant(float(k + 1) / 1024.0f), 1.0f);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 24u);
    EXPECT_NEAR(Frame(), 0.8 * (25.0 * 26.0 / 2.0 - 1.0) / 1024.0, 1e-5); // 2 + ... + 25
}
