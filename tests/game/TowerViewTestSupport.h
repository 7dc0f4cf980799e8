#pragma once
// Shared set-up for the tower view's tests: a private asset tree, a headless engine
// to draw into, a paletted PNG writer for test backgrounds, and comparison with the
// reference pictures in tests/reference.
#include "engine/Assets.h"
#include "engine/Screenshot.h"
#include "game/TowerView.h"
#include "pge/Headless.h"
#include "pge/PixelEngine.h"
#include "tests/game/PalettedTestImage.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace torvane::testing_support {

// A fresh asset tree below the build folder, made the asset root.
inline std::string MakeAssetRoot(const std::string& name) {
    namespace fs = std::filesystem;
    const fs::path base = fs::path(TORVANE_BINARY_DIR) / "tower_view_tests" / name;
    fs::remove_all(base);
    fs::create_directories(base / "bin");
    fs::create_directories(base / "Resources" / "assets" / "torvane");
    adv::Assets::Init((base / "bin" / "torvane").string());
    return adv::Assets::Root();
}

// The whole draw target against tests/reference/<name>.png, colour channels only,
// each within 2. A failure writes <name>-actual.png and <name>-diff.png (differing
// pixels in red) into the build folder. With TORVANE_UPDATE_REFERENCES set the
// reference is written instead, to be looked at before it is committed.
inline void ExpectMatchesReference(const pge::Sprite& actual, const std::string& name) {
    namespace fs = std::filesystem;
    const fs::path reference = fs::path(TORVANE_SOURCE_DIR) / "tests" / "reference" / (name + ".png");
    if (std::getenv("TORVANE_UPDATE_REFERENCES")) {
        fs::create_directories(reference.parent_path());
        ASSERT_TRUE(adv::screenshot::SavePng(actual, reference.string()));
        return;
    }
    const pge::Sprite expected(reference.string());
    ASSERT_EQ(expected.width, actual.width) << reference;
    ASSERT_EQ(expected.height, actual.height) << reference;
    pge::Sprite diff(actual.width, actual.height);
    int differing = 0;
    for (int y = 0; y < actual.height; ++y)
        for (int x = 0; x < actual.width; ++x) {
            const pge::Pixel a = actual.GetPixel(x, y), e = expected.GetPixel(x, y);
            const bool same = std::abs(a.r - e.r) <= 2 && std::abs(a.g - e.g) <= 2 && std::abs(a.b - e.b) <= 2;
            differing += same ? 0 : 1;
            diff.SetPixel(x, y, same ? pge::Pixel(e.r / 4, e.g / 4, e.b / 4) : pge::Pixel(255, 0, 0));
        }
    if (differing > 0) {
        const fs::path out = fs::path(TORVANE_BINARY_DIR) / "tower_view_tests";
        fs::create_directories(out);
        adv::screenshot::SavePng(actual, (out / (name + "-actual.png")).string());
        adv::screenshot::SavePng(diff, (out / (name + "-diff.png")).string());
    }
    EXPECT_EQ(differing, 0) << name << ": see " << TORVANE_BINARY_DIR << "/tower_view_tests";
}

// An engine that only offers its draw target.
struct DrawOnlyEngine : pge::PixelEngine {
    bool OnUserCreate() override { return true; }
};

// A headless engine with its 640 by 400 draw target, for the span of a test.
class TowerViewTest : public RulesTest {
protected:
    void SetUp() override {
        RulesTest::SetUp();
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
