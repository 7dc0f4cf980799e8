#include "game/TorvaneSounds.h"

#include "engine/Assets.h"
#include "engine/Music.h"
#include "engine/Sound.h"
#include "game/SfxDefs.h"
#include "tests/engine/AudioTestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using torvane::Phase;
using torvane::Sfx;
namespace sounds = torvane::sounds;
namespace Music = adv::Music;
namespace fs = std::filesystem;

constexpr double kR = 44100.0;

std::vector<float> Built(Sfx effect) {
    adv::synth::Buffer b;
    torvane::sfx::Build(effect, b);
    return b.samples;
}

TEST(SoundsRecipes, EachEffectLastsAsLongAsItsLongestCall) {
    // Tones leave 0.01 s after their end, noise none.
    const struct {
        Sfx effect;
        double seconds;
    } lengths[] = {{Sfx::Tick, 0.06},  {Sfx::Place, 0.10},    {Sfx::Deny, 0.15},   {Sfx::Cannon, 0.70},
                   {Sfx::Impact, 0.55}, {Sfx::Bell, 0.41},     {Sfx::Collapse, 1.2}, {Sfx::Reward, 0.31},
                   {Sfx::Horn, 0.86}};
    for (const auto& l : lengths) {
        const auto samples = Built(l.effect);
        EXPECT_NEAR(double(samples.size()), l.seconds * kR, 1.5) << int(l.effect);
        double peak = 0;
        for (float s : samples) peak = std::max(peak, double(std::abs(s)));
        EXPECT_GT(peak, 0.01) << int(l.effect);
    }
    // The tick is a square wave at 0.03, the deny a saw at 0.05: their first samples show it.
    EXPECT_NEAR(Built(Sfx::Tick)[0], 0.03, 1e-6);
    EXPECT_NEAR(Built(Sfx::Deny)[0], 0.05 * (2.0 * 130.0 / kR - 1.0), 1e-6);
}

TEST(SoundsRecipes, WhistleAndUnknownValuesHaveNoFixedRecipe) {
    EXPECT_TRUE(Built(Sfx::Whistle).empty());
    EXPECT_TRUE(Built(Sfx(42)).empty());
    EXPECT_TRUE(Built(Sfx(-1)).empty());
}

TEST(SoundsRecipes, RewardsSecondNoteOverlapsTheFirst) {
    const auto reward = Built(Sfx::Reward);
    adv::synth::Buffer first;
    adv::synth::Tone(first, 660, 0.12f, adv::synth::Wave::Triangle, 0.18f, 0, 0, adv::synth::Envelope::Decay);
    const size_t secondFrom = 4410, firstEnd = 5292; // 0.1 s and 0.12 s
    for (size_t i = 0; i < secondFrom; ++i) ASSERT_EQ(reward[i], first.samples[i]) << i;
    EXPECT_NE(reward[secondFrom + 1], first.samples[secondFrom + 1]);
    EXPECT_NE(first.samples[firstEnd - 1], 0.0f);
    EXPECT_EQ(first.samples[firstEnd], 0.0f);
}

TEST(SoundsRecipes, WhistleFallsInPitchAndSwellsToItsEnd) {
    adv::synth::Buffer b;
    torvane::sfx::BuildWhistle(0.5f, b);
    EXPECT_EQ(b.samples.size(), size_t(std::ceil(0.51 * kR)));
    const size_t n = size_t(0.5 * kR);
    auto crossings = [&](size_t from, size_t to) {
        int c = 0;
        for (size_t i = from + 1; i < to; ++i) c += (b.samples[i - 1] < 0) != (b.samples[i] < 0);
        return c;
    };
    // 2100 Hz falling to 520 Hz: far more zero crossings early than late.
    EXPECT_GT(crossings(0, n / 10), 3 * crossings(n * 8 / 10, n * 9 / 10));
    size_t loudest = 0;
    for (size_t i = 0; i < n; ++i)
        if (std::abs(b.samples[i]) > std::abs(b.samples[loudest])) loudest = i;
    EXPECT_NEAR(double(loudest) / double(n), 0.9, 0.01);
    EXPECT_NEAR(std::abs(b.samples[loudest]), 0.06, 0.002);
}

// The next clip id, which tells how many clips were made.
int NextId() { return adv::Sound::Add({}, 44100); }

class SoundsPlay : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        adv::Music::Shutdown();
        sounds::Clear();
        sounds::Init(); // no engine: builds nothing
        s_idWithoutEngine = NextId();
        adv::mixer::UseOffline(44100);
        adv::Music::Init();
        sounds::Init();
        s_idAfterInit = NextId();
        sounds::Init();
        s_idAfterSecondInit = NextId();
    }
    static void TearDownTestSuite() {
        adv::Music::Shutdown();
        sounds::Clear();
        adv::mixer::UseOffline(0);
    }
    void TearDown() override { adv::Sound::StopAll(); }

    static inline int s_idWithoutEngine = -1, s_idAfterInit = -1, s_idAfterSecondInit = -1;
};

TEST_F(SoundsPlay, InitBuildsTheNineFixedClipsOnceAndOnlyWithAnEngine) {
    EXPECT_EQ(s_idWithoutEngine, 0);
    EXPECT_EQ(s_idAfterInit, s_idWithoutEngine + 1 + 9);
    EXPECT_EQ(s_idAfterSecondInit, s_idAfterInit + 1);
}

TEST_F(SoundsPlay, ClearForgetsTheClipsSoThatInitBuildsThemAnew) {
    sounds::Clear();
    adv::Sound::Play(0, 1.0f);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 0u);
    sounds::Play(Sfx::Tick, 0.0f);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 0u);
    sounds::Init();
    EXPECT_EQ(NextId(), 9);
    sounds::Play(Sfx::Tick, 0.0f);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 1u);
}

TEST_F(SoundsPlay, EveryEffectSounds) {
    for (int e = 0; e < 10; ++e) {
        adv::Sound::StopAll();
        sounds::Play(Sfx(e), 0.3f);
        ASSERT_EQ(adv::Sound::ActiveVoices(), 1u) << e;
        const auto out = audiotest::Render(*Music::Engine(), 13230); // 0.3 s: the whistle swells late
        EXPECT_GT(audiotest::Peak(out, 0, 13230), 0.01) << e;
    }
}

TEST_F(SoundsPlay, UnknownEffectsAndEmptyWhistlesAreSilent) {
    const int before = NextId();
    sounds::Play(Sfx(42), 1.0f);
    sounds::Play(Sfx::Whistle, 0.0f);
    sounds::Play(Sfx::Whistle, -1.0f);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 0u);
    EXPECT_EQ(NextId(), before + 1);
}

TEST_F(SoundsPlay, WhistlesAreKeptByWholeMilliseconds) {
    const int first = NextId();
    sounds::Play(Sfx::Whistle, 1.2004f); // key 1200: new
    const int second = NextId();
    EXPECT_EQ(second, first + 2);
    sounds::Play(Sfx::Whistle, 1.2f); // key 1200 again
    const int third = NextId();
    EXPECT_EQ(third, second + 1);
    sounds::Play(Sfx::Whistle, 1.2006f); // key 1201: new
    EXPECT_EQ(NextId(), third + 2);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 3u);
}

TEST_F(SoundsPlay, AllTenPlayToTheirEndOnTheDummyDevice) {
    Music::Shutdown();
    adv::mixer::UseOffline(0);
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    ASSERT_TRUE(Music::Init());
    for (int e = 0; e < 10; ++e) sounds::Play(Sfx(e), 0.4f);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 10u);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(4);
    while (adv::Sound::ActiveVoices() > 0 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        adv::Sound::Update();
        Music::Update(0.02f);
    }
    EXPECT_EQ(adv::Sound::ActiveVoices(), 0u);
    Music::Shutdown();
    unsetenv("SDL_AUDIODRIVER");
    adv::mixer::UseOffline(44100);
    ASSERT_TRUE(Music::Init());
}

// The phase music, with the test tones standing in for the game's tracks.
class SoundsMusic : public ::testing::Test {
protected:
    void SetUp() override {
        previous = fs::current_path();
        dir = fs::path(TORVANE_BINARY_DIR) / ("sounds_music_test_" + std::to_string(getpid()));
        fs::create_directories(dir / "assets/torvane/music");
        const fs::path fixtures = audiotest::Fixtures();
        for (const char* name : {"title", "build", "defend"})
            fs::copy_file(fixtures / "tone440.mp3", dir / "assets/torvane/music" / (std::string(name) + ".mp3"));
        for (const char* name : {"levelwon", "defeated"})
            fs::copy_file(fixtures / "tone1000.mp3", dir / "assets/torvane/music" / (std::string(name) + ".mp3"));
        fs::current_path(dir);
        adv::Assets::Init("/nonexistent/torvane");
        adv::mixer::UseOffline(44100);
        ASSERT_TRUE(Music::Init());
    }
    void TearDown() override {
        Music::Shutdown();
        adv::mixer::UseOffline(0);
        fs::current_path(previous);
        fs::remove_all(dir);
    }
    std::vector<float> Render(double seconds) { return audiotest::Render(*Music::Engine(), size_t(seconds * kR)); }

    fs::path previous, dir;
};

TEST_F(SoundsMusic, PhasesShareTracksAndOnlyTheLoopingOnesGoOn) {
    sounds::PlayMusicFor(Phase::Title);
    EXPECT_EQ(Music::Current(), "torvane/music/title.mp3");
    auto out = Render(1.5);
    EXPECT_LT(audiotest::Level(out, 0, 2205, 440, kR), 0.02); // fading in over 1.2 s
    EXPECT_GT(audiotest::Level(out, size_t(1.3 * kR), 2205, 440, kR), 0.25); // looped past its 1 s

    sounds::PlayMusicFor(Phase::Build);
    EXPECT_EQ(Music::Current(), "torvane/music/build.mp3");
    Render(0.2);
    sounds::PlayMusicFor(Phase::Inspect);
    EXPECT_EQ(Music::Current(), "torvane/music/build.mp3");
    sounds::PlayMusicFor(Phase::Announce);
    EXPECT_EQ(Music::Current(), "torvane/music/defend.mp3");
    sounds::PlayMusicFor(Phase::Attack);
    EXPECT_EQ(Music::Current(), "torvane/music/defend.mp3");
    out = Render(0.85);
    EXPECT_GT(audiotest::Level(out, size_t(0.8 * kR), 2205, 440, kR), 0.25); // 0.8 s fade done

    sounds::PlayMusicFor(Phase::Eval);
    EXPECT_EQ(Music::Current(), "torvane/music/levelwon.mp3");
    out = Render(1.3);
    EXPECT_GT(audiotest::Level(out, size_t(0.4 * kR), 2205, 1000, kR), 0.25);
    EXPECT_LT(audiotest::Peak(out, size_t(1.15 * kR), 4410), 0.01); // played once
    sounds::PlayMusicFor(Phase::Over);
    EXPECT_EQ(Music::Current(), "torvane/music/defeated.mp3");
    sounds::PlayMusicFor(Phase(99));
    EXPECT_EQ(Music::Current(), "torvane/music/defeated.mp3");
}

} // namespace
