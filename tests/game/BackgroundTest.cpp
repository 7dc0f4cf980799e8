// The landscape behind the tower: a generated paletted picture with a cycled water
// band, a true-colour picture, and the painted fallback.
#include "game/RingCamera.h"
#include "tests/game/TowerViewTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace torvane {
namespace {

using testing_support::MakeAssetRoot;

class BackgroundTest : public testing_support::TowerViewTest {
protected:
    // Ring level 1 before the water picture in an asset tree of its own, or before
    // no picture at all.
    Game RingLevel1(const std::string& assets, bool water = true) {
        const std::string root = MakeAssetRoot(assets);
        if (water) testing_support::WriteWaterBackground(root);
        GetSettings().classic = 0;
        Game g(5);
        g.StartLevel(1);
        return g;
    }
    // Whether the stage shows exactly the built sprite.
    bool StageIsTheSprite() {
        return std::memcmp(Screen().GetData() + 18 * 640, view.background->GetData(), 640 * 368 * sizeof(pge::Pixel)) == 0;
    }
};

TEST_F(BackgroundTest, PalettedImageHangsFromTheTopOfTheScreenUnderTheVignette) {
    Game g = RingLevel1("paletted_rows");
    view.BuildBackground(g, view.ComputeLayout(g, stage));
    ASSERT_TRUE(view.indexed);
    EXPECT_FLOAT_EQ(view.frameScale, 2.0f);
    // Vignette centre (320, 202.4), inner 368 * 0.35 = 128.8, outer 640 * 0.75 = 480:
    // (d - 128.8) / 351.2 * 71 is 50.5 at (0, 0) and 14.9 at (320, 0); none darker than a corner.
    ASSERT_EQ(view.vignette.size(), 640u * 368u);
    EXPECT_EQ(view.vignette[202 * 640 + 320], 0);
    EXPECT_EQ(view.vignette[0], 50);
    EXPECT_EQ(view.vignette[320], 14);
    EXPECT_EQ(*std::max_element(view.vignette.begin(), view.vignette.end()), 50);
    // Shown 640 by 400; the stage's top row is screen row 18, image row 18 * 200 / 400 = 9.
    const pge::Pixel sky = testing_support::TestPalette()[9 * 100 / 120];
    const pge::Pixel shown = view.background->GetPixel(320, 0);
    EXPECT_EQ(shown, pge::Pixel(sky.r * 241 / 255, sky.g * 241 / 255, sky.b * 241 / 255));
    // Every pixel of the water band is listed for cycling, and only those.
    size_t water = 0;
    for (int y = 0; y < 368; ++y)
        for (int x = 0; x < 640; ++x) water += testing_support::IndexAt(x / 2, (y + 18) / 2) >= 200;
    EXPECT_EQ(view.cyclePixels.size(), water);
    for (const TowerView::CyclePixel& c : view.cyclePixels) EXPECT_GE(c.index, 200);
}

TEST_F(BackgroundTest, CyclingTouchesOnlyCycledPixelsAndOnlyAtASteps) {
    Game g = RingLevel1("paletted_cycle");
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
    for (size_t i = 0; i < before.size(); ++i)
        if (view.background->pColData[i] != before[i]) {
            ++changed;
            EXPECT_TRUE(cycled[i]) << i;
        }
    EXPECT_GT(changed, 0u);
    EXPECT_TRUE(StageIsTheSprite()); // copied row for row, no clouds over an image
}

TEST_F(BackgroundTest, PalettedFrameWithCycle) {
    Game g = RingLevel1("paletted_reference");
    g.cursorX = 3;
    RingCamera camera;
    camera.Update(g, 0.0f);
    view.Draw(engine, g, stage, 0.3f, camera.angle);
    testing_support::ExpectMatchesReference(Screen(), "paletted_cycle");
}

TEST_F(BackgroundTest, PaintedTowerFrameIsUsedOnRingsOnly) {
    Game g = RingLevel1("integrated");
    const std::string dir = adv::Assets::Root() + "/torvane/";
    std::filesystem::copy_file(dir + "torvane-bg-01-desert-cycle.png",
                               dir + "torvane-bg-01-desert-integrated-tower-cycle.png");
    testing_support::WriteText(dir + "color-cycles.json",
                               R"({"backgrounds": [{"file": "torvane-bg-01-desert-integrated-tower-cycle.png",
                  "tower_frame": {"centre_x": 150, "half_width": 50, "rim_y": 40, "base_y": 170}}]})");
    view.Draw(engine, g, stage, 0.0f, 0.0f); // the first frame already fits the grid to the painting
    EXPECT_TRUE(view.layout.integrated);
    EXPECT_NEAR(view.layout.cell, 130.0f * 2.0f / 14.0f, 1e-4f);
    GetSettings().classic = 1;
    Game classic(5);
    classic.StartLevel(1);
    view.Reset();
    view.Draw(engine, classic, stage, 0.0f, 0.0f);
    EXPECT_FALSE(view.layout.integrated);
    EXPECT_FALSE(view.frame.valid);
}

TEST_F(BackgroundTest, TrueColourImageHasNoCloudsThePaintedLandscapeHas) {
    pge::Sprite picture(160, 100);
    for (int i = 0; i < 160 * 100; ++i)
        picture.pColData[static_cast<size_t>(i)] = pge::Pixel(static_cast<uint8_t>(i % 160), static_cast<uint8_t>(i / 160 * 2), 90);
    Game g = RingLevel1("true_colour", false);
    ASSERT_TRUE(adv::screenshot::SavePng(picture, adv::Assets::Root() + "/torvane/torvane-bg-01-desert-cycle.png"));
    view.DrawBackground(engine, g, view.ComputeLayout(g, stage), 3.0f);
    EXPECT_TRUE(view.painted);
    EXPECT_FALSE(view.indexed);
    EXPECT_FLOAT_EQ(view.frameScale, 4.0f);
    EXPECT_TRUE(StageIsTheSprite());

    g = RingLevel1("painted_only", false);
    view.Reset();
    view.DrawBackground(engine, g, view.ComputeLayout(g, stage), 3.0f);
    EXPECT_FALSE(view.painted);
    EXPECT_TRUE(view.cyclePixels.empty());
    EXPECT_FALSE(StageIsTheSprite()); // clouds lie over the copied sprite
}

TEST_F(BackgroundTest, RebuiltOnLevelOrStageChangeOnly) {
    Game g = RingLevel1("rebuild", false);
    view.Draw(engine, g, stage, 0.0f, 0.0f);
    const pge::Sprite* first = view.background.get();
    view.Draw(engine, g, StageRect{5, 18, 640, 368}, 0.1f, 0.0f); // x alone: kept
    EXPECT_EQ(view.background.get(), first);
    view.Draw(engine, g, StageRect{0, 20, 640, 366}, 0.2f, 0.0f);
    EXPECT_NE(view.background.get(), first);
    const pge::Sprite* second = view.background.get();
    view.Reset();
    view.Draw(engine, g, StageRect{0, 20, 640, 366}, 0.3f, 0.0f);
    EXPECT_NE(view.background.get(), second);
}

} // namespace
} // namespace torvane
