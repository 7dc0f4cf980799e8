#pragma once
// Shared set-up for the tower view's tests: a private asset tree, a headless engine
// to draw into, and comparison with the reference pictures in tests/reference.
#include "engine/Assets.h"
#include "engine/Screenshot.h"
#include "game/TowerView.h"
#include "pge/Headless.h"
#include "tests/game/PalettedTestImage.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace torvane::testing_support {

// A fresh asset tree below the build folder, made the asset root.
inline std::string MakeAssetRoot(const std::string& name) {
    const std::filesystem::path base = std::filesystem::path(TORVANE_BINARY_DIR) / "tower_view_tests" / name;
    std::filesystem::remove_all(base);
    std::filesystem::create_directories(base / "bin");
    std::filesystem::create_directories(base / "Resources" / "assets" / "torvane");
    adv::Assets::Init((base / "bin" / "torvane").string());
    return adv::Assets::Root();
}

// The draw target against tests/reference/<name>.png, colour channels each within 2.
// A failure writes <name>-actual.png and <name>-diff.png (differing pixels red) into
// the build folder; with TORVANE_UPDATE_REFERENCES set the reference is rewritten.
inline void ExpectMatchesReference(const pge::Sprite& actual, const std::string& name) {
    const std::string reference = std::string(TORVANE_SOURCE_DIR) + "/tests/reference/" + name + ".png";
    if (std::getenv("TORVANE_UPDATE_REFERENCES")) {
        ASSERT_TRUE(adv::screenshot::SavePng(actual, reference));
        return;
    }
    const pge::Sprite expected(reference);
    ASSERT_EQ(expected.width, actual.width) << reference;
    ASSERT_EQ(expected.height, actual.height) << reference;
    pge::Sprite diff(actual.width, actual.height);
    int differing = 0;
    for (size_t i = 0; i < actual.pColData.size(); ++i) {
        const pge::Pixel a = actual.pColData[i], e = expected.pColData[i];
        const bool same = std::abs(a.r - e.r) <= 2 && std::abs(a.g - e.g) <= 2 && std::abs(a.b - e.b) <= 2;
        differing += same ? 0 : 1;
        diff.pColData[i] = same ? pge::Pixel(e.r / 4, e.g / 4, e.b / 4) : pge::Pixel(255, 0, 0);
    }
    const std::string out = std::string(TORVANE_BINARY_DIR) + "/tower_view_tests/" + name;
    if (differing > 0) {
        adv::screenshot::SavePng(actual, out + "-actual.png");
        adv::screenshot::SavePng(diff, out + "-diff.png");
    }
    EXPECT_EQ(differing, 0) << name << ": see " << out << "-diff.png";
}

struct DrawOnlyEngine : pge::PixelEngine {
    bool OnUserCreate() override { return true; }
};

// A headless engine with its 640 by 400 draw target, for the span of a test, and
// an empty asset tree: the painted landscape.
class TowerViewTest : public RulesTest {
protected:
    void SetUp() override {
        RulesTest::SetUp();
        MakeAssetRoot("painted");
        run = std::make_unique<pge::Headless>(engine);
        ASSERT_TRUE(run->Create());
    }
    void TearDown() override {
        run.reset();
        RulesTest::TearDown();
    }
    pge::Sprite& Screen() { return *engine.GetDrawTarget(); }

    DrawOnlyEngine engine;
    std::unique_ptr<pge::Headless> run;
    TowerView view;
    const StageRect stage{0, 18, 640, 368};
};

} // namespace torvane::testing_support
