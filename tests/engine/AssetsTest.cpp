#include "engine/Assets.h"

#include "engine/Screenshot.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

namespace {

// Each test gets a fresh folder under /tmp, far from any real assets/ folder, and runs
// with it as the working directory; the old one comes back afterwards.
class AssetSearch : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/torvane_assets_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        top = pattern;
        // Deep enough that climbing four levels from any test folder stays inside.
        base = top + "/1/2/3";
        oldDir = fs::current_path();
    }
    void TearDown() override {
        fs::current_path(oldDir);
        adv::Assets::Clear();
        std::error_code ec;
        fs::remove_all(top, ec);
    }
    std::string Make(const std::string& relative) {
        fs::create_directories(base + "/" + relative);
        return base + "/" + relative;
    }
    void Enter(const std::string& relative) { fs::current_path(Make(relative)); }

    std::string top;
    std::string base;
    fs::path oldDir;
};

void WritePicture(const std::string& path, pge::Pixel colour) {
    pge::Sprite s(3, 2);
    for (pge::Pixel& p : s.pColData) p = colour;
    ASSERT_TRUE(adv::screenshot::SavePng(s, path));
}

} // namespace

TEST_F(AssetSearch, BesideTheProgramAfterTheWorkingDirectory) {
    Make("game/bin");
    Make("game/assets");
    Enter("elsewhere");
    adv::Assets::Init(base + "/game/bin/torvane");
    EXPECT_EQ(adv::Assets::Root(), base + "/game/bin/../assets");
}

TEST_F(AssetSearch, WorkingDirectoryWinsAndClimbsUpToFourLevels) {
    Make("game/bin");
    Make("game/assets");
    Make("work/assets");
    Enter("work");
    adv::Assets::Init(base + "/game/bin/torvane");
    EXPECT_EQ(adv::Assets::Root(), "./assets");

    Enter("work/a/b/c/d");
    adv::Assets::Init(base + "/game/bin/torvane");
    EXPECT_EQ(adv::Assets::Root(), "./../../../../assets");

    // Five levels up is too far for the working directory; the program's folder serves.
    Enter("work/a/b/c/d/e");
    adv::Assets::Init(base + "/game/bin/torvane");
    EXPECT_EQ(adv::Assets::Root(), base + "/game/bin/../assets");
}

TEST_F(AssetSearch, BundleLayoutWinsOverBoth) {
    Make("App/Resources/assets");
    Make("App/MacOS");
    Make("App/assets");
    Make("work/assets");
    Enter("work");
    adv::Assets::Init(base + "/App/MacOS/torvane");
    EXPECT_EQ(adv::Assets::Root(), base + "/App/MacOS/../Resources/assets");
}

TEST_F(AssetSearch, NothingFoundGivesThePlainName) {
    Enter("empty");
    adv::Assets::Init(base + "/nowhere/torvane");
    EXPECT_EQ(adv::Assets::Root(), "assets");
    // A program name without any folder searches from "." twice.
    adv::Assets::Init("torvane");
    EXPECT_EQ(adv::Assets::Root(), "assets");
}

TEST_F(AssetSearch, MissingMeansNoRegularFile) {
    Make("assets/torvane/levelpacks");
    Enter("");
    adv::Assets::Init("torvane");
    std::ofstream(base + "/assets/torvane/data.json") << "{}";
    EXPECT_FALSE(adv::Assets::Missing("torvane/data.json"));
    EXPECT_TRUE(adv::Assets::Missing("torvane/other.json"));
    EXPECT_TRUE(adv::Assets::Missing("torvane/levelpacks"));
    EXPECT_TRUE(adv::Assets::Missing(""));
}

TEST_F(AssetSearch, ImagesAreCachedUntilClear) {
    Make("assets/torvane");
    Enter("");
    adv::Assets::Init("torvane");
    const std::string file = base + "/assets/torvane/title.png";
    WritePicture(file, pge::Pixel(10, 20, 30));

    testing::internal::CaptureStderr();
    pge::Renderable* first = adv::Assets::Sprite("torvane/title.png");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(first->Sprite(), nullptr);
    EXPECT_EQ(first->Sprite()->width, 3);
    EXPECT_EQ(first->Sprite()->GetPixel(2, 1), pge::Pixel(10, 20, 30));
    EXPECT_EQ(adv::Assets::Sprite("torvane/title.png"), first);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    WritePicture(file, pge::Pixel(90, 80, 70));
    EXPECT_EQ(adv::Assets::Sprite("torvane/title.png")->Sprite()->GetPixel(0, 0), pge::Pixel(10, 20, 30));
    adv::Assets::Clear();
    EXPECT_EQ(adv::Assets::Sprite("torvane/title.png")->Sprite()->GetPixel(0, 0), pge::Pixel(90, 80, 70));
}

TEST_F(AssetSearch, PlaceholderForMissingBrokenAndFolderImages) {
    Make("assets/torvane/folder.png");
    Enter("");
    adv::Assets::Init("torvane");
    std::ofstream(base + "/assets/torvane/broken.png", std::ios::binary) << "\x89PNG\r\n\x1a\nnot really";

    for (const std::string key : {"torvane/none.png", "torvane/broken.png", "torvane/folder.png"}) {
        testing::internal::CaptureStderr();
        pge::Renderable* r = adv::Assets::Sprite(key);
        pge::Renderable* again = adv::Assets::Sprite(key);
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_EQ(said, "[assets] Konnte './assets/" + key + "' nicht laden - benutze Platzhalter.\n");
        ASSERT_EQ(again, r);
        ASSERT_NE(r->Sprite(), nullptr);
        ASSERT_NE(r->Decal(), nullptr);
        const pge::Sprite& s = *r->Sprite();
        ASSERT_EQ(s.width, 32);
        ASSERT_EQ(s.height, 32);
        // Magenta where (y / 8 + x / 8) is odd, dark purple elsewhere.
        const pge::Pixel magenta(255, 0, 255, 255), dark(40, 0, 40, 255);
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 32; ++x) ASSERT_EQ(s.GetPixel(x, y), ((y / 8 + x / 8) % 2 ? magenta : dark)) << x << y;
        EXPECT_EQ(s.GetPixel(7, 7), dark);
        EXPECT_EQ(s.GetPixel(8, 7), magenta);
        EXPECT_EQ(s.GetPixel(8, 8), dark);
    }
}
