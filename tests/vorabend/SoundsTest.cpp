// The story's synthesised sounds: each lasts as long as what it stands for, is loud enough to
// be heard, and never reaches full scale, so limiting it changes nothing.
#include "vorabend/Sounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

TEST(Sounds, EachHasItsLengthAndLevelWithoutClipping) {
    const struct { const char* name; float minSeconds, maxSeconds; } sounds[] = {
        {vorabend::sounds::kStep, 0.05f, 0.15f}, // shorter than a stride of 0.29 s
        {vorabend::sounds::kDoor, 0.5f, 1.0f},   // the swing, then the knock
        {vorabend::sounds::kPickUp, 0.15f, 0.4f},
        {vorabend::sounds::kFire, 1.0f, 2.5f},
    };
    for (const auto& e : sounds) {
        SCOPED_TRACE(e.name);
        const std::vector<float> s = vorabend::sounds::Build(e.name).samples;
        ASSERT_FALSE(s.empty());
        double peak = 0, sum = 0;
        for (float v : s) peak = std::max(peak, double(std::fabs(v))), sum += double(v) * v;
        const float seconds = float(s.size()) / adv::synth::kRate;
        EXPECT_TRUE(seconds >= e.minSeconds && seconds <= e.maxSeconds) << seconds;
        EXPECT_TRUE(peak > 0.2 && peak < 0.95) << peak;
        EXPECT_GT(std::sqrt(sum / double(s.size())), 0.02);
    }
    EXPECT_TRUE(vorabend::sounds::Build("no such sound").samples.empty());
}
