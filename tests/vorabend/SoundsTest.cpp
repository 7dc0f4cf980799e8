// The story's synthesised sounds: each lasts as long as what it stands for, is loud enough to
// be heard, and never reaches full scale, so limiting it changes nothing.
#include "vorabend/Sounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

struct Expected {
    const char* name;
    float minSeconds, maxSeconds;
};

const Expected kSounds[] = {
    {vorabend::sounds::kStep, 0.05f, 0.15f},   // shorter than a stride of 0.29 s
    {vorabend::sounds::kDoor, 0.5f, 1.0f},     // the swing, then the knock
    {vorabend::sounds::kPickUp, 0.15f, 0.4f},
    {vorabend::sounds::kFire, 1.0f, 2.5f},
};

TEST(Sounds, EachHasItsLengthAndLevelWithoutClipping) {
    for (const Expected& e : kSounds) {
        SCOPED_TRACE(e.name);
        const std::vector<float> s = vorabend::sounds::Build(e.name).samples;
        const float seconds = float(s.size()) / adv::synth::kRate;
        double peak = 0, sum = 0;
        for (float v : s) {
            peak = std::max(peak, double(std::fabs(v)));
            sum += double(v) * v;
        }
        const double rms = std::sqrt(sum / double(std::max<size_t>(s.size(), 1)));
        EXPECT_GE(seconds, e.minSeconds);
        EXPECT_LE(seconds, e.maxSeconds);
        EXPECT_LT(peak, 0.95);
        EXPECT_GT(peak, 0.2);
        EXPECT_GT(rms, 0.02);
    }
    EXPECT_TRUE(vorabend::sounds::Build("no such sound").samples.empty());
}

} // namespace
