#pragma once
// Helpers of the audio tests: render an offline engine and measure tone levels in the output.
#include "engine/Mixer.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace audiotest {

inline std::string Fixtures() { return std::string(TORVANE_SOURCE_DIR) + "/tests/engine/audio"; }

// Renders frames of stereo output in device-sized pieces, decoding streams ahead before each.
inline std::vector<float> Render(adv::mixer::Engine& engine, size_t frames) {
    std::vector<float> out(frames * adv::mixer::kChannels);
    for (size_t at = 0; at < frames; at += 512) {
        adv::mixer::Pump(engine);
        adv::mixer::Render(engine, out.data() + at * adv::mixer::kChannels, std::min<size_t>(512, frames - at));
    }
    return out;
}

// The amplitude of the sine of frequency hz in the left channel over [from, from + count) frames
// (Goertzel); exact for a steady sine with a whole number of periods in the window.
inline double Level(const std::vector<float>& stereo, size_t from, size_t count, double hz, double rate) {
    const double w = 2.0 * M_PI * hz / rate, k = 2.0 * std::cos(w);
    double s1 = 0, s2 = 0;
    for (size_t i = 0; i < count; ++i) {
        const double s0 = stereo[(from + i) * adv::mixer::kChannels] + k * s1 - s2;
        s2 = s1;
        s1 = s0;
    }
    const double power = s1 * s1 + s2 * s2 - k * s1 * s2;
    return 2.0 * std::sqrt(std::max(0.0, power)) / double(count);
}

inline double Peak(const std::vector<float>& stereo, size_t from, size_t count) {
    double peak = 0;
    for (size_t i = from * adv::mixer::kChannels; i < (from + count) * adv::mixer::kChannels; ++i)
        peak = std::max(peak, double(std::abs(stereo[i])));
    return peak;
}

} // namespace audiotest
