// The painted world as the game reads it: the towers' frames against the rim table the
// runner stands on, and the painter making exactly the committed files (which were looked
// at when they were made).
#include "engine/Assets.h"
#include "game/stage/Theme.h"
#include "pge/Sprite.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

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
};

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
