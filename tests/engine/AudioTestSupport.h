#pragma once
// Helpers of the audio tests: render an offline engine and measure tone levels in the output.
#include "engine/Mixer.h"
#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace audiotest {

constexpr size_t kCh = adv::mixer::kChannels;
inline std::string Fixtures() { return std::string(TORVANE_SOURCE_DIR) + "/tests/engine/audio"; }

// Stereo output in device-sized pieces, decoding streams ahead before each.
inline std::vector<float> Render(adv::mixer::Engine& engine, size_t frames) {
    std::vector<float> out(frames * kCh);
    for (size_t at = 0; at < frames; at += 512) {
        adv::mixer::Pump(engine);
        adv::mixer::Render(engine, out.data() + at * kCh, std::min<size_t>(512, frames - at));
    }
    return out;
}

// The amplitude of the sine of frequency hz in the left channel over [from, from + count) frames
// (Goertzel); exact for a steady sine with a whole number of periods in the window.
inline double Level(const std::vector<float>& stereo, size_t from, size_t count, double hz, double rate) {
    const double k = 2.0 * std::cos(2.0 * M_PI * hz / rate);
    double s1 = 0, s2 = 0;
    for (size_t i = 0; i < count; ++i) s2 = std::exchange(s1, stereo[(from + i) * kCh] + k * s1 - s2);
    return 2.0 * std::sqrt(std::max(0.0, s1 * s1 + s2 * s2 - k * s1 * s2)) / double(count);
}

inline double Peak(const std::vector<float>& stereo, size_t from, size_t count) {
    double peak = 0;
    for (size_t i = from * kCh; i < (from + count) * kCh; ++i) peak = std::max(peak, double(std::abs(stereo[i])));
    return peak;
}

} // namespace audiotest
