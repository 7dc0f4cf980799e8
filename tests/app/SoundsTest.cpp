// The sound effects: their recipes and the clips made of them.
#include "engine/Music.h"
#include "engine/Sound.h"
#include "game/SfxDefs.h"
#include "game/TorvaneSounds.h"
#include "tests/engine/AudioTestSupport.h"

#include <gtest/gtest.h>

#include <vector>

namespace torvane {
namespace {

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
        EXPECT_NEAR(double(samples.size()), seconds * 44100.0, 1.5) << int(effect);
        EXPECT_GT(audiotest::Peak(samples, 0, samples.size() / 2), 0.01) << int(effect);
    }
    for (const Sfx none : {Sfx::Whistle, Sfx(42), Sfx(-1)}) EXPECT_TRUE(Built(none).empty());
    // The reward's second note comes in at 0.1 s, while the first sounds until 0.12 s.
    const std::vector<float> reward = Built(Sfx::Reward);
    adv::synth::Buffer first;
    adv::synth::Tone(first, 660, 0.12f, adv::synth::Wave::Triangle, 0.18f, 0, 0, adv::synth::Envelope::Decay);
    for (size_t i = 0; i < 4410; ++i) ASSERT_EQ(reward[i], first.samples[i]) << i;
    EXPECT_NE(reward[4411], first.samples[4411]);
    EXPECT_NE(first.samples[5291], 0.0f);
}

// The next clip id, which tells how many clips were made.
int NextId() { return adv::Sound::Add({}, 44100); }

TEST(SoundsPlay, ClipsAreMadeOnceAndEveryEffectSounds) {
    adv::Music::Shutdown();
    sounds::Clear();
    sounds::Init(); // no engine: builds nothing
    EXPECT_EQ(NextId(), 0);
    adv::mixer::UseOffline(44100);
    ASSERT_TRUE(adv::Music::Init());
    sounds::Init();
    sounds::Init();
    EXPECT_EQ(NextId(), 1 + 9); // the nine fixed clips after the first probe, once
    sounds::Play(Sfx(42), 1.0f);
    sounds::Play(Sfx::Whistle, 0.0f);
    sounds::Play(Sfx::Whistle, -1.0f);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 0u);
    sounds::Play(Sfx::Whistle, 1.2004f); // key 1200: new
    sounds::Play(Sfx::Whistle, 1.2f);    // key 1200 again
    EXPECT_EQ(NextId(), 12);
    sounds::Play(Sfx::Whistle, 1.2006f); // key 1201: new
    EXPECT_EQ(NextId(), 14);
    // Made ahead, twice asked for: one clip, taken when the whistle first sounds.
    sounds::PrepareWhistle(1.5f);
    sounds::PrepareWhistle(1.5f);
    sounds::PrepareWhistle(1.2f); // key 1200 exists
    sounds::Play(Sfx::Whistle, 1.5f);
    EXPECT_EQ(NextId(), 16);
    EXPECT_EQ(adv::Sound::ActiveVoices(), 4u);
    for (int e = 0; e < 10; ++e) {
        adv::Sound::StopAll();
        sounds::Play(Sfx(e), 0.3f);
        ASSERT_EQ(adv::Sound::ActiveVoices(), 1u) << e;
        const auto out = audiotest::Render(*adv::Music::Engine(), 13230); // 0.3 s: the whistle swells late
        EXPECT_GT(audiotest::Peak(out, 0, 13230), 0.01) << e;
    }
    adv::Music::Shutdown();
    sounds::Clear();
    adv::mixer::UseOffline(0);
}

} // namespace
} // namespace torvane
