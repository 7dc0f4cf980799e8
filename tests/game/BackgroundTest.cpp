// The landscape behind the tower: a generated paletted picture with a cycled water
// band, a true-colour picture, and the painted fallback.
#include "game/RingCamera.h"
#include "tests/game/TowerViewTestSupport.h"

#include <gtest/gtest.h>

#include <cstring>

namespace torvane {
namespace {

using testing_support::ExpectMatchesReference;
using testing_support::IndexAt;
using testing_support::MakeAssetRoot;
using testing_support::TestPalette;
using testing_support::WriteText;

// The water picture in a fresh asset tree of its own.
std::string WriteTestBackground(const std::string& name, const std::string& frame = "") {
    const std::string root = MakeAssetRoot(name);
    testing_support::WriteWaterBackground(root, frame);
    return root;
}

class BackgroundTest : public testing_support::TowerViewTest {
protected:
    Game RingLevel1() {
        GetSettings().classic = 0;
        Game g(5);
        g.StartLevel(1);
        return g;
    }
};

TEST_F(BackgroundTest, VignetteDarkensTowardsTheCorners) {
    MakeAssetRoot("vignette");
    Game g = RingLevel1();
    view.BuildBackground(g, view.ComputeLayout(g, stage));
    ASSERT_EQ(view.vignette.size(), 640u * 368u);
    // Centre (320, 202.4); inner 368 * 0.35 = 128.8, outer 640 * 0.75 = 480.
    EXPECT_EQ(view.vignette[202 * 640 + 320], 0);
    // (0, 0): d = hypot(320, 202.4) = 378.64; (378.64 - 128.8) / 351.2 * 71 = 50.5.
    EXPECT_EQ(view.vignette[0], 50);
    // (320, 0): d = 202.4, (202.4 - 128.8) / 351.2 * 71 = 14.9.
    EXPECT_EQ(view.vignette[320], 14);
    // The centre lies below the middle, so the top left corner is the darkest.
    EXPECT_EQ(*std::max_element(view.vignette.begin(), view.vignette.end()), 50);
}

TEST_F(BackgroundTest, PalettedImageHangsFromTheTopOfTheScreen) {
    WriteTestBackground("paletted_rows");
    Game g = RingLevel1();
    view.BuildBackground(g, view.ComputeLayout(g, stage));
    ASSERT_TRUE(view.indexed);
    EXPECT_TRUE(view.painted);
    EXPECT_FLOAT_EQ(view.frameScale, 2.0f);
    // Shown 640 by 400; the stage's top row 0 is screen row 18, image row 18 * 200 / 400 = 9.
    const pge::Pixel sky = TestPalette()[9 * 100 / 120];
    const int keep = 255 - 14; // vignette at (320, 0)
    const pge::Pixel shown = view.background->GetPixel(320, 0);
    EXPECT_EQ(shown.r, sky.r * keep / 255);
    EXPECT_EQ(shown.g, sky.g * keep / 255);
    EXPECT_EQ(shown.b, sky.b * keep / 255);
    EXPECT_EQ(shown.a, 255);
    // Every pixel of the water band is listed for cycling, and only those.
    size_t water = 0;
    for (int y = 0; y < 368; ++y)
        for (int x = 0; x < 640; ++x) water += IndexAt(x / 2, (y + 18) / 2) >= 200;
    EXPECT_EQ(view.cyclePixels.size(), water);
    for (const TowerView::CyclePixel& c : view.cyclePixels) EXPECT_GE(c.index, 200);
}

TEST_F(BackgroundTest, CyclingTouchesOnlyCycledPixelsAndOnlyAtASteps) {
    WriteTestBackground("paletted_cycle");
    Game g = RingLevel1();
    const TowerView::Layout layout = view.ComputeLayout(g, stage);
    view.DrawBackground(engine, g, layout, 0.0f);
    const std::vector<pge::Pixel> before = view.background->pColData;
    view.DrawBackground(engine, g, layout, 0.2f); // 0.8 steps: none yet
    EXPECT_EQ(view.background->pColData, before);
    view.DrawBackground(engine, g, layout, 0.3f); // step 1
    EXPECT_EQ(view.cycleFrames, std::vector<int32_t>{1});
    std::vector<bool> cycled(before.size(), false);
    for (const TowerView::CyclePixel& c : view.cyclePixels) cycled[static_cast<size_t>(c.pixel)] = true;
    size_t changed = 0;
    for (size_t i = 0; i < before.size(); ++i) {
        if (view.background->pColData[i] == before[i]) continue;
        ++changed;
        EXPECT_TRUE(cycled[i]) << i;
    }
    EXPECT_GT(changed, 0u);
    // The stage shows the sprite, copied row for row.
    EXPECT_EQ(std::memcmp(Screen().GetData() + 18 * 640, view.background->GetData(), 640 * 368 * sizeof(pge::Pixel)),
              0);
}

TEST_F(BackgroundTest, PalettedFrameWithCycle) {
    WriteTestBackground("paletted_reference");
    Game g = RingLevel1();
    g.cursorX = 3;
    RingCamera camera;
    camera.Update(g, 0.0f);
    view.Draw(engine, g, stage, 0.3f, camera.angle);
    ExpectMatchesReference(Screen(), "paletted_cycle");
}

TEST_F(BackgroundTest, PaintedTowerFrameFitsTheWall) {
    // The integrated picture of level 1 with its frame: no plinth, the grid over the painting.
    const std::string root = WriteTestBackground("integrated", "");
    const std::string plain = root + "/torvane/torvane-bg-01-desert-cycle.png";
    std::filesystem::copy_file(plain, root + "/torvane/torvane-bg-01-desert-integrated-tower-cycle.png");
    WriteText(root + "/torvane/color-cycles.json",
              R"({"backgrounds": [{"file": "torvane-bg-01-desert-integrated-tower-cycle.png",
                  "tower_frame": {"centre_x": 150, "half_width": 50, "rim_y": 40, "base_y": 170}}]})");
    Game g = RingLevel1();
    view.Draw(engine, g, stage, 0.0f, 0.0f);
    EXPECT_TRUE(view.layout.integrated);
    EXPECT_TRUE(view.frame.valid);
    EXPECT_NEAR(view.layout.cell, 130.0f * 2.0f / 14.0f, 1e-4f);
    // The same level in classic mode uses the plain picture and ignores the frame.
    GetSettings().classic = 1;
    Game classic(5);
    classic.StartLevel(1);
    view.Reset();
    view.Draw(engine, classic, stage, 0.0f, 0.0f);
    EXPECT_FALSE(view.layout.integrated);
    EXPECT_FALSE(view.frame.valid);
}

TEST_F(BackgroundTest, TrueColourImageCarriesItsOwnSky) {
    const std::string root = MakeAssetRoot("true_colour");
    pge::Sprite picture(160, 100);
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 160; ++x)
            picture.SetPixel(x, y, pge::Pixel(static_cast<uint8_t>(x), static_cast<uint8_t>(y * 2), 90));
    ASSERT_TRUE(adv::screenshot::SavePng(picture, root + "/torvane/torvane-bg-01-desert-cycle.png"));
    Game g = RingLevel1();
    const TowerView::Layout layout = view.ComputeLayout(g, stage);
    view.DrawBackground(engine, g, layout, 3.0f);
    EXPECT_TRUE(view.painted);
    EXPECT_FALSE(view.indexed);
    EXPECT_FLOAT_EQ(view.frameScale, 4.0f);
    // No clouds: the stage is exactly the built sprite.
    EXPECT_EQ(std::memcmp(Screen().GetData() + 18 * 640, view.background->GetData(), 640 * 368 * sizeof(pge::Pixel)),
              0);
}

TEST_F(BackgroundTest, MissingImagesGiveThePaintedLandscapeWithClouds) {
    MakeAssetRoot("painted_only");
    Game g = RingLevel1();
    const TowerView::Layout layout = view.ComputeLayout(g, stage);
    view.DrawBackground(engine, g, layout, 3.0f);
    EXPECT_FALSE(view.painted);
    EXPECT_FALSE(view.indexed);
    EXPECT_TRUE(view.cyclePixels.empty());
    // Clouds lie over the copied sprite somewhere in the sky.
    EXPECT_NE(std::memcmp(Screen().GetData() + 18 * 640, view.background->GetData(), 640 * 368 * sizeof(pge::Pixel)),
              0);
}

TEST_F(BackgroundTest, RebuiltOnLevelOrStageChangeOnly) {
    MakeAssetRoot("rebuild");
    Game g = RingLevel1();
    view.Draw(engine, g, stage, 0.0f, 0.0f);
    const pge::Sprite* first = view.background.get();
    view.Draw(engine, g, StageRect{5, 18, 640, 368}, 0.1f, 0.0f); // x alone: kept
    EXPECT_EQ(view.background.get(), first);
    view.Draw(engine, g, StageRect{0, 20, 640, 366}, 0.2f, 0.0f);
    EXPECT_NE(view.background.get(), first);
    EXPECT_EQ(view.cachedStage.y, 20);
    const pge::Sprite* second = view.background.get();
    view.Reset();
    view.Draw(engine, g, StageRect{0, 20, 640, 366}, 0.3f, 0.0f);
    EXPECT_NE(view.background.get(), second);
    EXPECT_EQ(view.backgroundLevel, 1);
}

} // namespace
} // namespace torvane
