// Themes by level, the image key chosen for a theme, and the colour-cycle file.
#include "game/LevelPack.h"
#include "game/Theme.h"
#include "tests/game/TowerViewTestSupport.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

using testing_support::MakeAssetRoot;
using testing_support::WriteText;

class ThemeTest : public testing_support::RulesTest {};

TEST_F(ThemeTest, LevelsGoRoundTheFiveLandscapesUnlessThePackChooses) {
    EXPECT_EQ(BackgroundIndex(1), 0);
    EXPECT_EQ(BackgroundIndex(6), 0);
    EXPECT_EQ(BackgroundIndex(0), 4);
    EXPECT_EQ(BackgroundIndex(-1), 3);
    EXPECT_EQ(&ThemeFor(7), &ThemeFor(2)); // built once, shared
    EXPECT_EQ(ThemeFor(5).name, "Vulkanhang");
    LevelPack pack;
    pack.levels.resize(2);
    pack.levels[0].background = 3;
    pack.levels[1].background = 5;
    SetActivePack(&pack);
    EXPECT_EQ(BackgroundIndex(1), 2);
    EXPECT_EQ(BackgroundIndex(2), 4);
    EXPECT_EQ(BackgroundIndex(3), 2); // beyond the pack: the turn again
}

TEST_F(ThemeTest, ImageKeyPrefersThePaintedTowerOnRingsOnly) {
    const std::string root = MakeAssetRoot("theme_keys");
    const Theme& theme = ThemeFor(1);
    GetSettings().classic = 0;
    EXPECT_EQ(BackgroundFor(theme), theme.background); // the integrated file is missing
    WriteText(root + "/" + theme.integrated, "x");
    EXPECT_EQ(BackgroundFor(theme), theme.integrated);
    GetSettings().classic = 1;
    EXPECT_EQ(BackgroundFor(theme), theme.background);
}

TEST_F(ThemeTest, ColourCycleFile) {
    const std::string root = MakeAssetRoot("theme_cycles");
    WriteText(root + "/torvane/color-cycles.json", R"({"backgrounds": [
        {"file": "a.png", "palette_start": 3.7, "palette_end": 9.2, "fps": 4, "direction": -0.5,
         "tower_frame": {"centre_x": 160, "half_width": 40, "rim_y": 60, "base_y": 180}},
        {"file": "b.png", "palette_start": 10, "palette_end": 20, "fps": 0, "direction": -1},
        {"file": "a.png", "palette_start": 30, "palette_end": 33, "fps": 2, "direction": -1},
        {"file": "b.png", "tower_frame": {"centre_x": 1, "half_width": 2, "rim_y": 3, "base_y": 4}},
        {"file": "b.png", "tower_frame": {"centre_x": 5, "half_width": 6, "rim_y": 7, "base_y": 8}}
    ]})");
    const std::vector<adv::PaletteCycle>& a = ColorCyclesFor("torvane/a.png");
    ASSERT_EQ(a.size(), 2u); // two objects of one file, in file order
    EXPECT_EQ(a[0].start, 3);
    EXPECT_EQ(a[0].end, 9);
    EXPECT_FLOAT_EQ(a[0].fps, 4.0f);
    EXPECT_EQ(a[0].direction, 1); // -0.5 truncates to 0
    EXPECT_EQ(a[1].start, 30);
    EXPECT_EQ(a[1].direction, -1);
    EXPECT_EQ(&ColorCyclesFor("a.png"), &a); // the folder does not matter
    const TowerFrame fa = TowerFrameFor("some/folder/a.png");
    EXPECT_TRUE(fa.valid); // a later object without a frame keeps it
    EXPECT_FLOAT_EQ(fa.centre_x, 160.0f);
    EXPECT_FLOAT_EQ(fa.base_y, 180.0f);
    EXPECT_FLOAT_EQ(TowerFrameFor("b.png").rim_y, 7.0f); // the last frame wins
    // Objects without numbers give zero ranges stepping forward; fps 0 never steps.
    const std::vector<adv::PaletteCycle>& b = ColorCyclesFor("b.png");
    ASSERT_EQ(b.size(), 3u);
    EXPECT_EQ(b[0].Frame(100.0f), 0);
    EXPECT_EQ(b[2].end, 0);
    EXPECT_EQ(b[2].direction, 1);
    EXPECT_TRUE(ColorCyclesFor("c.png").empty());
    EXPECT_FALSE(TowerFrameFor("c.png").valid);
}

TEST_F(ThemeTest, UnreadableCycleFileIsReportedOnce) {
    const std::string root = MakeAssetRoot("theme_bad_cycles");
    WriteText(root + "/torvane/color-cycles.json", "{\"backgrounds\": [");
    ::testing::internal::CaptureStderr();
    EXPECT_TRUE(ColorCyclesFor("a.png").empty());
    EXPECT_FALSE(TowerFrameFor("a.png").valid);
    const std::string said = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(said.rfind("[torvane] Farbzyklen nicht lesbar: ", 0), 0u) << said;
    EXPECT_EQ(said.find("Farbzyklen", 20), std::string::npos); // once only
}

} // namespace
} // namespace torvane
