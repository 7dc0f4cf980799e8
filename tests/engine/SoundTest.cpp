#include "engine/Sound.h"

#include "engine/Music.h"
#include "tests/engine/AudioTestSupport.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

namespace Sound = adv::Sound;
namespace Music = adv::Music;

constexpr uint32_t kRate = 44100;

class SoundTest : public ::testing::Test {
protected:
    void SetUp() override {
        adv::mixer::UseOffline(kRate);
        ASSERT_TRUE(Music::Init());
    }
    void TearDown() override {
        Sound::SetVolume(0.8f);
        Music::Shutdown();
        Sound::Clear();
        adv::mixer::UseOffline(0);
    }
    // The left channel of one rendered frame.
    float Frame() {
        const auto out = audiotest::Render(*Music::Engine(), 1);
        return out[0];
    }
};

using SoundClips = SoundTest;
using SoundVoices = SoundTest;
using SoundVolume = SoundTest;

TEST_F(SoundClips, IdsCountUpAndOnlyValidNonEmptyClipsPlay) {
    EXPECT_EQ(Sound::Add(std::vector<float>(100, 0.5f), kRate), 0);
    EXPECT_EQ(Sound::Add({}, kRate), 1);
    EXPECT_EQ(Sound::Add(std::vector<float>(100, 0.25f), kRate), 2);
    Sound::Play(-1, 1.0f);
    Sound::Play(3, 1.0f);
    Sound::Play(1, 1.0f); // empty
    EXPECT_EQ(Sound::ActiveVoices(), 0u);
    EXPECT_EQ(Frame(), 0.0f);
    Sound::Play(2, 1.0f);
    EXPECT_EQ(Sound::ActiveVoices(), 1u);
    EXPECT_FLOAT_EQ(Frame(), 0.25f * 0.8f);
}

TEST_F(SoundClips, ClearForgetsEveryClipAndVoice) {
    const int id = Sound::Add(std::vector<float>(kRate, 0.5f), kRate);
    Sound::Play(id, 1.0f);
    Sound::Clear();
    EXPECT_EQ(Sound::ActiveVoices(), 0u);
    EXPECT_EQ(Frame(), 0.0f);
    Sound::Play(id, 1.0f);
    EXPECT_EQ(Sound::ActiveVoices(), 0u);
    EXPECT_EQ(Sound::Add(std::vector<float>(10, 0.5f), kRate), 0);
}

TEST_F(SoundClips, StopAllKeepsTheClips) {
    const int id = Sound::Add(std::vector<float>(kRate, 0.5f), kRate);
    Sound::Play(id, 1.0f);
    Sound::Play(id, 1.0f);
    Sound::StopAll();
    EXPECT_EQ(Sound::ActiveVoices(), 0u);
    EXPECT_EQ(Frame(), 0.0f);
    Sound::Play(id, 1.0f);
    EXPECT_FLOAT_EQ(Frame(), 0.4f);
}

TEST_F(SoundClips, WithoutEngineClipsAreKeptButNothingPlays) {
    Music::Shutdown();
    const int id = Sound::Add(std::vector<float>(100, 0.5f), kRate);
    EXPECT_EQ(id, 0);
    Sound::Play(id, 1.0f);
    Sound::PlayOnce(std::vector<float>(100, 0.5f), kRate, 1.0f);
    EXPECT_EQ(Sound::ActiveVoices(), 0u);
    ASSERT_TRUE(Music::Init());
    Sound::Play(id, 1.0f);
    EXPECT_EQ(Sound::ActiveVoices(), 1u);
}

TEST_F(SoundVoices, PlayOnceSoundsWithoutEnteringTheTable) {
    Sound::PlayOnce(std::vector<float>(100, 0.5f), kRate, 0.5f);
    EXPECT_EQ(Sound::ActiveVoices(), 1u);
    EXPECT_FLOAT_EQ(Frame(), 0.5f * 0.5f * 0.8f);
    EXPECT_EQ(Sound::Add({}, kRate), 0);
}

TEST_F(SoundVoices, UpdateRemovesOnlyFinishedVoices) {
    const int shortClip = Sound::Add(std::vector<float>(100, 0.1f), kRate);
    const int longClip = Sound::Add(std::vector<float>(1000, 0.2f), kRate);
    Sound::Play(shortClip, 1.0f);
    Sound::Play(longClip, 1.0f);
    Sound::Update();
    EXPECT_EQ(Sound::ActiveVoices(), 2u);
    audiotest::Render(*Music::Engine(), 200);
    Sound::Update();
    EXPECT_EQ(Sound::ActiveVoices(), 1u);
    EXPECT_FLOAT_EQ(Frame(), 0.2f * 0.8f);
    audiotest::Render(*Music::Engine(), 1000);
    Sound::Update();
    EXPECT_EQ(Sound::ActiveVoices(), 0u);
}

TEST_F(SoundVoices, TwentyFifthVoicePushesOutTheOldest) {
    // Clip k holds the constant (k + 1) / 1024, so the mix tells which voices sound.
    std::vector<int> ids;
    for (int k = 0; k < 25; ++k) ids.push_back(Sound::Add(std::vector<float>(kRate, float(k + 1) / 1024.0f), kRate));
    for (int k = 0; k < 24; ++k) Sound::Play(ids[size_t(k)], 1.0f);
    EXPECT_EQ(Sound::ActiveVoices(), 24u);
    EXPECT_NEAR(Frame(), 0.8 * (24.0 * 25.0 / 2.0) / 1024.0, 1e-5); // 1 + ... + 24
    Sound::Play(ids[24], 1.0f);
    EXPECT_EQ(Sound::ActiveVoices(), 24u);
    EXPECT_NEAR(Frame(), 0.8 * (25.0 * 26.0 / 2.0 - 1.0) / 1024.0, 1e-5); // 2 + ... + 25
}

TEST_F(SoundVolume, MasterIsClampedAndTakenWhenAVoiceStarts) {
    EXPECT_FLOAT_EQ(Sound::Volume(), 0.8f);
    Sound::SetVolume(2.0f);
    EXPECT_FLOAT_EQ(Sound::Volume(), 1.0f);
    Sound::SetVolume(-1.0f);
    EXPECT_FLOAT_EQ(Sound::Volume(), 0.0f);
    Sound::SetVolume(0.5f);
    const int id = Sound::Add(std::vector<float>(kRate, 0.4f), kRate);
    Sound::Play(id, 0.5f);
    EXPECT_FLOAT_EQ(Frame(), 0.4f * 0.5f * 0.5f);
    Sound::SetVolume(1.0f); // the running voice keeps its level
    EXPECT_FLOAT_EQ(Frame(), 0.1f);
    Sound::Play(id, 0.5f);
    EXPECT_FLOAT_EQ(Frame(), 0.1f + 0.2f);
}

} // namespace
