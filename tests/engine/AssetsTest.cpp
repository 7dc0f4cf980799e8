#include "engine/Assets.h"
#include "engine/Screenshot.h"
#include <gtest/gtest.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

// A fresh folder under /tmp, far from any real assets/ folder, deep enough that climbing four
// levels stays inside; the old working directory comes back afterwards.
class AssetSearch : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/torvane_assets_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        top = pattern;
        base = top + "/1/2/3/";
    }
    void TearDown() override {
        fs::current_path(oldDir);
        adv::Assets::Clear();
        fs::remove_all(top);
    }
    void Make(const std::string& relative) { fs::create_directories(base + relative); }
    std::string RootFrom(const std::string& workDir, const std::string& executable) {
        Make(workDir);
        fs::current_path(base + workDir);
        adv::Assets::Init(executable);
        return adv::Assets::Root();
    }
    std::string top, base;
    fs::path oldDir = fs::current_path();
};

} // namespace

TEST_F(AssetSearch, BundleThenWorkingDirectoryThenBesideTheProgram) {
    for (const char* dir : {"game/bin", "game/assets", "work/assets", "App/MacOS", "App/assets", "App/Resources/assets"}) Make(dir);
    const std::string game = base + "game/bin/torvane";
    EXPECT_EQ(RootFrom("elsewhere", game), base + "game/bin/../assets");
    EXPECT_EQ(RootFrom("work", game), "./assets");
    EXPECT_EQ(RootFrom("work/a/b/c/d", game), "./../../../../assets");
    EXPECT_EQ(RootFrom("work/a/b/c/d/e", game), base + "game/bin/../assets"); // five levels is too far
    EXPECT_EQ(RootFrom("work", base + "App/MacOS/torvane"), base + "App/MacOS/../Resources/assets");
    EXPECT_EQ(RootFrom("empty", base + "nowhere/torvane"), "assets");
    EXPECT_EQ(RootFrom("empty", "torvane"), "assets");
}

TEST_F(AssetSearch, ImagesAreCachedUntilClearAndMissingOnesGetThePlaceholder) {
    Make("assets/torvane/folder.png");
    RootFrom("", "torvane");
    const std::string dir = base + "assets/torvane/";
    std::ofstream(dir + "broken.png", std::ios::binary) << "\x89PNG\r\n\x1a\nnot really";
    EXPECT_FALSE(adv::Assets::Missing("torvane/broken.png"));
    EXPECT_TRUE(adv::Assets::Missing("torvane/other.json") && adv::Assets::Missing("torvane/folder.png"));
    pge::Sprite picture(3, 2);
    picture.pColData.assign(6, pge::Pixel(10, 20, 30));
    ASSERT_TRUE(adv::screenshot::SavePng(picture, dir + "title.png"));
    testing::internal::CaptureStderr();
    pge::Renderable* first = adv::Assets::Sprite("torvane/title.png");
    EXPECT_EQ(std::pair(first->Sprite()->pColData, testing::internal::GetCapturedStderr()), std::pair(picture.pColData, std::string()));
    picture.pColData.assign(6, pge::Pixel(90, 80, 70));
    ASSERT_TRUE(adv::screenshot::SavePng(picture, dir + "title.png"));
    EXPECT_EQ(adv::Assets::Sprite("torvane/title.png"), first); // cached until Clear
    adv::Assets::Clear();
    EXPECT_EQ(adv::Assets::Sprite("torvane/title.png")->Sprite()->pColData, picture.pColData);
    for (const std::string key : {"torvane/none.png", "torvane/broken.png", "torvane/folder.png"}) {
        testing::internal::CaptureStderr();
        pge::Renderable* r = adv::Assets::Sprite(key);
        EXPECT_EQ(adv::Assets::Sprite(key), r); // told once
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "[assets] Konnte './assets/" + key + "' nicht laden - benutze Platzhalter.\n");
        ASSERT_NE(r->Decal(), nullptr);
        const pge::Sprite& s = *r->Sprite();
        ASSERT_TRUE(s.width == 32 && s.height == 32);
        // 8 by 8 squares: magenta where (y / 8 + x / 8) is odd, dark purple elsewhere.
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 32; ++x)
                ASSERT_EQ(s.GetPixel(x, y), (y / 8 + x / 8) % 2 ? pge::Pixel(255, 0, 255) : pge::Pixel(40, 0, 40)) << x << y;
    }
}
