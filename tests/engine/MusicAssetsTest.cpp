// The shipped music files: each decodes, lasts as long as its use needs, never clips, and the
// loops run through their seam without a gap or a click.
#include "engine/Mixer.h"
#include "tests/engine/AudioTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

TEST(MusicAssets, EachTrackHasItsLengthNoClippingAndLoopsWithoutGapOrClick) {
    constexpr uint32_t kRate = 44100;
    constexpr size_t kWindow = kRate / 20; // 50 ms either side of a loop's seam
    // Loops last long enough not to tire at once and short enough to stay small; the phrases
    // for a won or lost level are over within a few seconds.
    const struct { const char* name; bool loops; double minSeconds, maxSeconds; } tracks[] = {
        {"torvane/music/title", true, 20, 40},    {"torvane/music/build", true, 20, 40},
        {"torvane/music/defend", true, 20, 40},   {"torvane/music/levelwon", false, 2, 12},
        {"torvane/music/defeated", false, 2, 15}, {"vorabend/music/vorabend", true, 20, 40},
    };
    const auto rms = [](const std::vector<float>& s, size_t from, size_t count) {
        double sum = 0;
        for (size_t i = from; i < from + count; ++i) sum += double(s[i]) * s[i];
        return std::sqrt(sum / double(count));
    };
    const auto largestStep = [](const std::vector<float>& s, size_t from, size_t count) {
        double step = 0;
        for (size_t i = from + 1; i < from + count; ++i) step = std::max(step, double(std::abs(s[i] - s[i - 1])));
        return step;
    };
    for (const auto& t : tracks) {
        SCOPED_TRACE(t.name);
        // The left channel, played once at full volume; the last block runs on in silence.
        auto engine = adv::mixer::InitOffline(kRate);
        auto sound = adv::mixer::InitFromFile(*engine, std::string(TORVANE_SOURCE_DIR) + "/assets/" + t.name + ".mp3");
        ASSERT_TRUE(sound);
        adv::mixer::Start(*sound);
        std::vector<float> s;
        while (!adv::mixer::AtEnd(*sound) && s.size() < 60 * kRate) {
            const std::vector<float> out = audiotest::Render(*engine, 4096);
            for (size_t i = 0; i < out.size(); i += adv::mixer::kChannels) s.push_back(out[i]);
        }
        while (!s.empty() && s.back() == 0.0f) s.pop_back();
        ASSERT_GT(s.size(), 2 * kWindow);
        EXPECT_GE(double(s.size()) / kRate, t.minSeconds);
        EXPECT_LE(double(s.size()) / kRate, t.maxSeconds);
        // The mixer limits its output to -1..1, so a clipped file would show full-scale samples;
        // mastered to a sensible level, not faint.
        const double peak = std::abs(*std::max_element(s.begin(), s.end(), [](float a, float b) { return std::abs(a) < std::abs(b); }));
        EXPECT_LT(peak, 0.98);
        EXPECT_GT(peak, 0.5);
        EXPECT_GT(rms(s, 0, s.size()), 0.08);
        if (!t.loops) continue;
        // Music on both sides of the seam (nothing below -46 dB), and the jump from the last
        // sample back to the first no larger than the steps the music takes next to it.
        EXPECT_GT(std::min(rms(s, 0, kWindow), rms(s, s.size() - kWindow, kWindow)), 0.005);
        EXPECT_LE(std::abs(double(s.front()) - double(s.back())),
                  std::max(largestStep(s, 0, kWindow), largestStep(s, s.size() - kWindow, kWindow)));
    }
}
