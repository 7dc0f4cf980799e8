#pragma once
// Whole screens compared with the checked-in pictures of tests/reference/.
#include "engine/Screenshot.h"
#include "pge/Sprite.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace torvane::testing_support {

// The screen against tests/reference/<name>.png, colour channels each within 2. A failure
// writes <name>-actual.png and <name>-diff.png (differing pixels red) into
// <build>/reference_out, where a new picture is looked at before it is checked in.
inline void ExpectMatchesReference(const pge::Sprite& actual, const std::string& name) {
    const std::string out = std::string(TORVANE_BINARY_DIR) + "/reference_out/" + name;
    std::filesystem::create_directories(std::string(TORVANE_BINARY_DIR) + "/reference_out");
    const pge::Sprite expected(std::string(TORVANE_SOURCE_DIR) + "/tests/reference/" + name + ".png");
    if (expected.pColData.size() != actual.pColData.size()) {
        adv::screenshot::SavePng(actual, out + "-actual.png");
        FAIL() << name << ": no picture of this size; see " << out << "-actual.png";
    }
    pge::Sprite diff(actual.width, actual.height);
    int differing = 0;
    for (size_t i = 0; i < actual.pColData.size(); ++i) {
        const pge::Pixel a = actual.pColData[i], e = expected.pColData[i];
        const bool same = std::abs(a.r - e.r) <= 2 && std::abs(a.g - e.g) <= 2 && std::abs(a.b - e.b) <= 2;
        differing += same ? 0 : 1;
        diff.pColData[i] = same ? pge::Pixel(e.r / 4, e.g / 4, e.b / 4) : pge::Pixel(255, 0, 0);
    }
    if (differing > 0) {
        adv::screenshot::SavePng(actual, out + "-actual.png");
        adv::screenshot::SavePng(diff, out + "-diff.png");
    }
    EXPECT_EQ(differing, 0) << name << ": see " << out << "-diff.png";
}

} // namespace torvane::testing_support
