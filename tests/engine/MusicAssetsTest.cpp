// The shipped music files: each decodes, lasts as long as its use needs, never clips, and the
// loops run through their seam without a gap or a click.
#include "engine/Mixer.h"
#include "tests/engine/AudioTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kRate = 44100;

struct Track {
    const char* name; // below the asset tree, without ".mp3"
    bool loops;
    double minSeconds, maxSeconds;
};

// Loops last long enough not to tire at once and short enough to stay small; the phrases for a
// won or lost level are over within a few seconds.
const Track kTracks[] = {
    {"torvane/music/title", true, 20, 40},      {"torvane/music/build", true, 20, 40},
    {"torvane/music/defend", true, 20, 40},     {"torvane/music/levelwon", false, 2, 12},
    {"torvane/music/defeated", false, 2, 15},   {"vorabend/music/vorabend", true, 20, 40},
};

// Decodes a whole file through the mixer, played once at full volume; the left channel.
std::vector<float> Decode(const std::string& path) {
    auto engine = adv::mixer::InitOffline(kRate);
    auto sound = adv::mixer::InitFromFile(*engine, path);
    if (!sound) return {};
    adv::mixer::Start(*sound);
    std::vector<float> left;
    while (!adv::mixer::AtEnd(*sound) && left.size() < 60 * kRate) {
        const std::vector<float> out = audiotest::Render(*engine, 4096);
        for (size_t i = 0; i < out.size(); i += adv::mixer::kChannels) left.push_back(out[i]);
    }
    // The last block runs on past the end in silence.
    while (!left.empty() && left.back() == 0.0f) left.pop_back();
    sound.reset();
    return left;
}

double Rms(const std::vector<float>& s, size_t from, size_t count) {
    double sum = 0;
    for (size_t i = from; i < from + count; ++i) sum += double(s[i]) * s[i];
    return std::sqrt(sum / double(count));
}

double LargestStep(const std::vector<float>& s, size_t from, size_t count) {
    double step = 0;
    for (size_t i = from + 1; i < from + count; ++i) step = std::max(step, double(std::abs(s[i] - s[i - 1])));
    return step;
}

} // namespace

TEST(MusicAssets, EachTrackDecodesWithItsLengthAndWithoutClipping) {
    for (const Track& t : kTracks) {
        SCOPED_TRACE(t.name);
        const std::vector<float> s =
            Decode(std::string(TORVANE_SOURCE_DIR) + "/assets/" + t.name + ".mp3");
        ASSERT_FALSE(s.empty());
        const double seconds = double(s.size()) / kRate;
        EXPECT_GE(seconds, t.minSeconds);
        EXPECT_LE(seconds, t.maxSeconds);
        // The mixer limits its output to -1..1, so a clipped file would show full-scale samples.
        double peak = 0;
        for (float v : s) peak = std::max(peak, double(std::abs(v)));
        EXPECT_LT(peak, 0.98);
        EXPECT_GT(peak, 0.5); // mastered to a sensible level, not faint
        EXPECT_GT(Rms(s, 0, s.size()), 0.08);
    }
}

TEST(MusicAssets, LoopsRunThroughTheirSeamWithoutGapOrClick) {
    const size_t window = kRate / 20; // 50 ms either side of the seam
    for (const Track& t : kTracks) {
        if (!t.loops) continue;
        SCOPED_TRACE(t.name);
        const std::vector<float> s =
            Decode(std::string(TORVANE_SOURCE_DIR) + "/assets/" + t.name + ".mp3");
        ASSERT_GT(s.size(), 2 * window);
        // Music sounds on both sides of the seam: no silence (below -46 dB) at the end or the start.
        EXPECT_GT(Rms(s, 0, window), 0.005);
        EXPECT_GT(Rms(s, s.size() - window, window), 0.005);
        // The jump from the last sample back to the first is no larger than the steps the music
        // itself takes next to the seam.
        const double seamStep = std::abs(double(s.front()) - double(s.back()));
        const double musicStep = std::max(LargestStep(s, 0, window), LargestStep(s, s.size() - window, window));
        EXPECT_LE(seamStep, musicStep);
    }
}
