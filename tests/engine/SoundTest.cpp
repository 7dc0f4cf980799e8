#include "engine/Sound.h"
#include "engine/Music.h"
#include "tests/engine/AudioTestSupport.h"
#include <gtest/gtest.h>

namespace {

namespace Sound = adv::Sound;
constexpr uint32_t kRate = 44100;

class SoundTest : public ::testing::Test {
protected:
    void SetUp() override {
        adv::mixer::UseOffline(kRate);
        ASSERT_TRUE(adv::Music::Init());
    }
    void TearDown() override {
        Sound::SetVolume(0.8f);
        adv::Music::Shutdown();
        Sound::Clear();
        adv::mixer::UseOffline(0);
    }
    static float Frame() { return audiotest::Render(*adv::Music::Engine(), 1)[0]; } // left channel
    static int Constant(float value, size_t length = kRate) { return Sound::Add(std::vector<float>(length, value), kRate); }
};

} // namespace

TEST_F(SoundTest, ClipsVoicesAndTheMasterVolume) {
    EXPECT_EQ(Constant(0.1f, 100), 0);
    EXPECT_EQ(Sound::Add({}, kRate), 1);
    EXPECT_EQ(Constant(0.2f, 1000), 2);
    for (int id : {-1, 3, 1}) Sound::Play(id, 1.0f); // unknown or empty
    EXPECT_EQ(Sound::ActiveVoices(), 0u);
    Sound::Play(0, 1.0f);
    Sound::Play(2, 1.0f);
    Sound::PlayOnce(std::vector<float>(100, 0.5f), kRate, 0.5f); // not kept as a clip
    EXPECT_FLOAT_EQ(Frame(), (0.1f + 0.2f + 0.25f) * 0.8f);
    audiotest::Render(*adv::Music::Engine(), 200);
    Sound::Update(); // removes only the finished voices
    EXPECT_EQ(Sound::ActiveVoices(), 1u);
    Sound::StopAll();
    EXPECT_EQ(Frame(), 0.0f);
    Sound::SetVolume(-1.0f);
    EXPECT_EQ(Sound::Volume(), 0.0f);
    Sound::SetVolume(2.0f);
    EXPECT_EQ(Sound::Volume(), 1.0f);
    Sound::Play(2, 0.5f); // StopAll keeps the clips; the volume is taken when a voice starts
    Sound::SetVolume(0.5f);
    Sound::Play(2, 0.5f);
    EXPECT_FLOAT_EQ(Frame(), 0.2f * 0.5f * (1.0f + 0.5f));
    Sound::Clear();
    Sound::Play(2, 1.0f);
    EXPECT_EQ(Sound::ActiveVoices() + Constant(0.5f), 0u);
    adv::Music::Shutdown(); // without an engine clips are kept but nothing plays
    Sound::Play(0, 1.0f);
    Sound::PlayOnce(std::vector<float>(100, 0.5f), kRate, 1.0f);
    EXPECT_EQ(Sound::ActiveVoices(), 0u);
    ASSERT_TRUE(adv::Music::Init());
    Sound::Play(0, 1.0f);
    EXPECT_EQ(Sound::ActiveVoices(), 1u);
}

TEST_F(SoundTest, TwentyFifthVoicePushesOutTheOldest) {
    // Clip k holds the constant (k + 1) / 1024, so the mix tells which voices sound.
    for (int k = 0; k < 25; ++k) Sound::Play(Constant(float(k + 1) / 1024.0f), 1.0f);
    EXPECT_EQ(Sound::ActiveVoices(), 24u);
    EXPECT_NEAR(Frame(), 0.8 * (25.0 * 26.0 / 2.0 - 1.0) / 1024.0, 1e-5); // 2 + ... + 25
}
