// The painted world as the game reads it: the ten landscapes through the paletted loader
// with their cycles, the towers painted where their frames and the rim table say, the
// runner's sheets, the title and the icon through the image loader, and the painter
// making exactly the committed files.
#include "engine/Assets.h"
#include "engine/IndexedImage.h"
#include "game/stage/Theme.h"
#include "pge/Sprite.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace torvane {
namespace {

const std::string kAssets = std::string(TORVANE_SOURCE_DIR) + "/assets";
const std::string kAssetKey = std::string(TORVANE_SOURCE_DIR) + "/torvane"; // finds the tree beside it

// The committed asset tree as the asset root; the five themes are those of levels 1 to 5.
class PaintedWorld : public ::testing::Test {
protected:
    void SetUp() override {
        adv::Assets::Init(kAssetKey);
        ASSERT_TRUE(std::filesystem::equivalent(adv::Assets::Root(), kAssets)) << adv::Assets::Root();
    }
    static const Theme& ThemeNo(int b) { return ThemeFor(b + 1); }
    static adv::IndexedImage Load(const std::string& key) {
        adv::IndexedImage image;
        EXPECT_TRUE(image.Load(kAssets + "/" + key)) << key;
        return image;
    }
};

int Luma(pge::Pixel p) { return 299 * p.r + 587 * p.g + 114 * p.b; }

TEST_F(PaintedWorld, EveryLandscapeLoadsPalettedWithCyclesAtTwoSpeedsThatMoveItsPixels) {
    for (int b = 0; b < 5; ++b)
        for (const std::string& key : {ThemeNo(b).background, ThemeNo(b).integrated}) {
            SCOPED_TRACE(key);
            const adv::IndexedImage image = Load(key);
            ASSERT_EQ(image.width, 320);
            ASSERT_EQ(image.height, 200);
            ASSERT_EQ(image.pixels.size(), 320u * 200u);
            const std::vector<adv::PaletteCycle>& cycles = ColorCyclesFor(key);
            ASSERT_GE(cycles.size(), 2u);
            std::set<float> speeds;
            for (const adv::PaletteCycle& c : cycles) {
                ASSERT_GE(c.start, 0);
                ASSERT_LE(c.end, 255);
                ASSERT_LT(c.start, c.end);
                EXPECT_GT(c.fps, 0.0f);
                speeds.insert(c.fps);
                // Something on screen uses the range, and rotating it changes a colour.
                const auto used = std::count_if(image.pixels.begin(), image.pixels.end(),
                                                [&](uint8_t i) { return i >= c.start && i <= c.end; });
                EXPECT_GT(used, 0) << c.start << ".." << c.end;
                const std::array<pge::Pixel, 256> later = image.CycledPalette({c}, 1.0f / c.fps);
                bool changes = false;
                for (int i = c.start; i <= c.end; ++i) changes |= later[static_cast<size_t>(i)].n != image.palette[static_cast<size_t>(i)].n;
                EXPECT_TRUE(changes) << c.start << ".." << c.end;
            }
            EXPECT_GE(speeds.size(), 2u) << "cycles at different speeds";
        }
}

TEST_F(PaintedWorld, OnlyTheTowerPicturesHaveAFrameAndTheFrameAgreesWithTheRimTable) {
    for (int b = 0; b < 5; ++b) {
        SCOPED_TRACE(b);
        EXPECT_FALSE(TowerFrameFor(ThemeNo(b).background).valid);
        const TowerFrame f = TowerFrameFor(ThemeNo(b).integrated);
        ASSERT_TRUE(f.valid);
        EXPECT_GT(f.base_y, f.rim_y + 60.0f);
        EXPECT_LT(f.base_y, 194.0f) << "the foot stands above the stage's lower edge";
        // The drawn rim is the front of an ellipse: radius half / sin(80 degrees), tilt 0.18.
        const float R = f.half_width / std::sin(80.0f * 3.1415927f / 180.0f);
        for (int c = rim::kFirstColumn; c < rim::kFirstColumn + rim::kColumns; ++c) {
            const float n = (static_cast<float>(c) + 0.5f - f.centre_x) / R;
            ASSERT_LT(std::fabs(n), 0.985f) << "column " << c << " lies on the tower";
            // The row the drawn rim falls in is the table's, or one next to it.
            const float y = f.rim_y - R * 0.18f * (1.0f - std::sqrt(1.0f - n * n));
            EXPECT_LE(std::abs(std::lround(y) - rim::kTop[static_cast<size_t>(b)][static_cast<size_t>(c - rim::kFirstColumn)]), 1)
                << "column " << c << ", drawn at " << y;
        }
    }
}

TEST_F(PaintedWorld, EachTowerIsPaintedWhereItsFrameAndTheRimTableSay) {
    for (int b = 0; b < 5; ++b) {
        SCOPED_TRACE(b);
        const adv::IndexedImage plain = Load(ThemeNo(b).background), tower = Load(ThemeNo(b).integrated);
        const TowerFrame f = TowerFrameFor(ThemeNo(b).integrated);
        const auto luma = [&](int x, int y) { return Luma(tower.palette[tower.pixels[static_cast<size_t>(y * 320 + x)]]); };
        const auto painted = [&](int x, int y) {
            const size_t i = static_cast<size_t>(y * 320 + x);
            return tower.palette[tower.pixels[i]].n != plain.palette[plain.pixels[i]].n;
        };
        // The rim: in every column of the table on the front of the tower, the sharpest fall
        // in brightness, from the lit lip down to the shadow under it, lies at the table's row.
        const float R = f.half_width / std::sin(80.0f * 3.1415927f / 180.0f);
        for (int c = rim::kFirstColumn; c < rim::kFirstColumn + rim::kColumns; ++c) {
            if (std::fabs((static_cast<float>(c) + 0.5f - f.centre_x) / R) > 0.9f) continue; // the narrow sides
            const int top = rim::kTop[static_cast<size_t>(b)][static_cast<size_t>(c - rim::kFirstColumn)];
            int best = 0, at = -1;
            for (int y = top - 3; y <= top + 3; ++y)
                if (luma(c, y - 1) - luma(c, y) > best) best = luma(c, y - 1) - luma(c, y), at = y;
            EXPECT_NEAR(at, top, 1) << "column " << c;
            EXPECT_TRUE(painted(c, top)) << "column " << c;
        }
        // The sides: half way up, the tower is painted over exactly the frame's width.
        const int mid = static_cast<int>((f.rim_y + f.base_y) / 2.0f);
        int left = 320, right = -1;
        for (int x = 0; x < 320; ++x)
            if (painted(x, mid)) left = std::min(left, x), right = std::max(right, x);
        EXPECT_NEAR(left, f.centre_x - f.half_width, 1.0f);
        EXPECT_NEAR(right + 1, f.centre_x + f.half_width, 1.0f);
        // The foot: at the front, the sharpest rise in brightness, from the joint in shadow up
        // to the lit plinth, lies at the frame's base.
        const int cx = static_cast<int>(f.centre_x);
        int best = 0, at = -1;
        for (int y = static_cast<int>(f.base_y) - 4; y <= static_cast<int>(f.base_y) + 4; ++y)
            if (luma(cx, y) - luma(cx, y - 1) > best) best = luma(cx, y) - luma(cx, y - 1), at = y;
        EXPECT_NEAR(at, f.base_y, 1.0f);
    }
}

// The runner is drawn with his feet on row 59 of each 64 by 64 frame, the jump's landing on
// row 54: every frame of the five sheets has a figure on its row over a transparent ground.
TEST_F(PaintedWorld, RunnerSheetsHaveSixFiguresOnTheFeetRowOnATransparentGround) {
    for (const char* name : {"torvane-run-right-pixel-sheet", "torvane-run-left-pixel-sheet",
                             "torvane-idle-right-stabilized-pixel-sheet", "torvane-drop-down-empty-pixel-sheet",
                             "torvane-jump-right-pixel-sheet"}) {
        const pge::Sprite sheet(kAssets + "/torvane/" + name + ".png");
        ASSERT_EQ(sheet.width, 192) << name;
        ASSERT_EQ(sheet.height, 128) << name;
        const bool jump = std::string(name).find("jump") != std::string::npos;
        for (int f = 0; f < 6; ++f) {
            int top = 64, bottom = -1;
            for (int y = 0; y < 64; ++y)
                for (int x = 0; x < 64; ++x)
                    if (sheet.GetPixel((f % 3) * 64 + x, (f / 3) * 64 + y).a > 0) top = std::min(top, y), bottom = y;
            EXPECT_EQ(sheet.GetPixel((f % 3) * 64, (f / 3) * 64).a, 0) << name << " " << f;
            EXPECT_GE(bottom - top, 20) << name << " " << f << ": tall enough to read at 1:1";
            if (!jump || f == 0 || f == 5) {
                EXPECT_EQ(bottom, jump && f == 5 ? 54 : 59) << name << " " << f;
            } else {
                EXPECT_LE(bottom, 59) << name << " " << f; // in flight never below the feet
            }
        }
    }
}

TEST_F(PaintedWorld, TitleAndIconsLoadAtTheirSizes) {
    const pge::Sprite title(kAssets + "/torvane/title.png");
    EXPECT_EQ(title.width, 640);
    EXPECT_EQ(title.height, 400);
    for (const char* name : {"torvane", "vorabend"}) {
        for (int size : {256, 128, 64, 48, 32}) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(size));
            const pge::Sprite icon(kAssets + "/" + name + "/icon/" + name + "-" + std::to_string(size) + ".png");
            ASSERT_EQ(icon.width, size);
            ASSERT_EQ(icon.height, size);
            EXPECT_EQ(icon.GetPixel(0, 0).a, 0) << "rounded corner";
            EXPECT_EQ(icon.GetPixel(size / 2, size / 2).a, 255);
        }
    }
}

std::string Bytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

TEST(PaintedWorldPainter, MakesExactlyTheCommittedFiles) {
    const std::filesystem::path out = std::filesystem::path(TORVANE_BINARY_DIR) / "painted_world_test";
    std::filesystem::remove_all(out);
    std::filesystem::create_directories(out);
    const std::string command = std::string(TORVANE_BINARY_DIR) + "/paint-world " + out.string();
    ASSERT_EQ(std::system(command.c_str()), 0);
    int files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(out)) {
        if (!entry.is_regular_file()) continue;
        const std::filesystem::path rel = std::filesystem::relative(entry.path(), out);
        EXPECT_TRUE(Bytes(entry.path()) == Bytes(std::filesystem::path(kAssets) / rel)) << rel << " differs from assets/";
        ++files;
    }
    EXPECT_EQ(files, 10 + 1 + 5 + 1 + 5 + 5) << "landscapes, cycles, sheets, title, the game's icons, the adventure's";
}

} // namespace
} // namespace torvane
