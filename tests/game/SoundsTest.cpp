// The sound effects: their recipes, the clips made of them, and the music by phase.
#include "engine/Music.h"
#include "engine/Sound.h"
#include "game/SfxDefs.h"
#include "game/TorvaneSounds.h"
#include "tests/engine/AudioTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace torvane {
namespace {

constexpr double kR = 44100.0;

std::vector<float> Built(Sfx effect) {
    adv::synth::Buffer b;
    sfx::Build(effect, b);
    return b.samples;
}

TEST(SoundsRecipes, EachEffectLastsAsLongAsItsLongestCall) {
    // Tones leave 0.01 s after their end, noise none.
    const std::pair<Sfx, double> lengths[] = {{Sfx::Tick, 0.06},   {Sfx::Place, 0.10},   {Sfx::Deny, 0.15},
                                              {Sfx::Cannon, 0.70}, {Sfx::Impact, 0.55},  {Sfx::Bell, 0.41},
                                              {Sfx::Collapse, 1.2}, {Sfx::Reward, 0.31}, {Sfx::Horn, 0.86}};
    for (const auto& [effect, seconds] : lengths) {
        const std::vector<float> samples = Built(effect);
        EXPECT_NEAR(double(samples.size()), seconds * kR, 1.5) << int(effect);
        EXPECT_GT(audiotest::Peak(samples, 0, samples.size() / 2), 0.01) << int(effect);
    }
    // The tick is a square wave at 0.03, the deny a saw at 0.05: their first samples show it.
    EXPECT_NEAR(Built(Sfx::Tick)[0], 0.03, 1e-6);
    EXPECT_NEAR(Built(Sfx::Deny)[0], 0.05 * (2.0 * 130.0 / kR - 1.0), 1e-6);
    for (const Sfx none : {Sfx::Whistle, Sfx(42), Sfx(-1)}) EXPECT_TRUE(Built(none).empty());

    // The reward's second note comes in at 0.1 s, while the first sounds until 0.12 s.
    const std::vector<float> reward = Built(Sfx::Reward);
    adv::synth::Buffer first;
    adv::synth::Tone(first, 660, 0.12f, adv::synth::Wave::Triangle, 0.18f, 0, 0, adv::synth::Envelope::Decay);
    for (size_t i = 0; i < 4410; ++i) ASSERT_EQ(reward[i], first.samples[i]) << i;
    EXPECT_NE(reward[4411], first.samples[4411]);
    EXPECT_NE(first.samples[5291], 0.0f);
}

TEST(SoundsRecipes, WhistleFallsInPitchAndSwellsToItsEnd) {
    adv::synth::Buffer b;
    sfx::BuildWhistle(0.5f, b);
    EXPECT_EQ(b.samples.size(), size_t(std::ceil(0.51 * kR)));
    const size_t n = size_t(0.5 * kR);
    // 2100 Hz falling to 520 Hz: far more zero crossings in the first tenth than in the ninth.
    int early = 0, late = 0;
    size_t loudest = 0;
    for (size_t i = 1; i < n; ++i) {
        const int crossing = (b.samples[i - 1] < 0) != (b.samples[i] < 0);
        early += i < n / 10 ? crossing : 0;
        late += i >= n * 8 / 10 && i < n * 9 / 10 ? crossing : 0;
        if (std::abs(b.samples[i]) > std::abs(b.samples[loudest])) loudest = i;
    }
    EXPECT_GT(early, 3 * late);
    EXPECT_NEAR(double(loudest) / double(n), 0.9, 0.01);
    EXPECT_NEAR(std::abs(b.samples[loudest]), 0.06, 0.002);
}

// The next clip id, which tells how many clips were made.
int NextId() { return adv::Sound::Add({}, 44100); }

class SoundsPlay : public ::testing::Test {
protected:
    void SetUp() override {
        adv::Music::Shutdown();
        sounds::Clear();
        sounds::Init(); // no engine: builds nothing
        EXPECT_EQ(NextId(), 0);
        adv::mixer::UseOffline(44100);
        ASSERT_TRUE(adv::Music::Init());
        sounds::Init();
    }
    void TearDown() override {
        adv::Music::Shutdown();
        sounds::Clear();
        adv::mixer::UseOffline(0);
    }
};

TEST_F(SoundsPlay, AllTenEffectsSound) {
    for (int e = 0; e < 10; ++e) {
        adv::Sound::StopAll();
        sounds::Play(Sfx(e), 0.3f);
        ASSERT_EQ(adv::Sound::ActiveVoices(), 1u) << e;
        const auto out = audiotest::Render(*adv::Music::Engine(), 13230); // 0.3 s: the whistle swells late
        EXPECT_GT(audiotest::Peak(out, 0, 13230), 0.01) << e;
    }
}

TEST_F(SoundsPlay, InitOnceWhistlesByWholeMillisecondsUnknownsSilent) {
    const int first = NextId();
    EXPECT_EQ(first, 1 + 9); // the nine fixed clips after the probe's
    sounds::Init();
    EXPECT_EQ(NextId(), first + 1);
    sounds::Play(Sfx(42), 1.0f);
    sounds::Play(Sfx::Whistle, 0.0f);
    sounds::Play(Sfx::Whistle, -1.0f);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 0u);
    sounds::Play(Sfx::Whistle, 1.2004f); // key 1200: new
    sounds::Play(Sfx::Whistle, 1.2f);    // key 1200 again
    EXPECT_EQ(NextId(), first + 3);
    sounds::Play(Sfx::Whistle, 1.2006f); // key 1201: new
    EXPECT_EQ(NextId(), first + 5);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 3u);
}

TEST(SoundsMusic, PhasesShareTracksAndOnlyTheEndingsPlayOnce) {
    EXPECT_EQ(sounds::MusicFor(Phase::Inspect).path, sounds::MusicFor(Phase::Build).path);
    EXPECT_EQ(sounds::MusicFor(Phase::Announce).path, sounds::MusicFor(Phase::Attack).path);
    EXPECT_NE(sounds::MusicFor(Phase::Build).path, sounds::MusicFor(Phase::Attack).path);
    for (const Phase p : {Phase::Title, Phase::Build, Phase::Attack}) EXPECT_TRUE(sounds::MusicFor(p).loop);
    for (const Phase p : {Phase::Eval, Phase::Over}) EXPECT_FALSE(sounds::MusicFor(p).loop);
    EXPECT_TRUE(sounds::MusicFor(Phase(99)).path.empty());
}

} // namespace
} // namespace torvane
