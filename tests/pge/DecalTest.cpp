#include "pge/Decal.h"
#include "tests/ScratchPath.h"

#include <stb_image_write.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

std::string TempPath(const char* name) {
    return scratch::Path(std::string("decal_test_") + name);
}

} // namespace

TEST(RenderableWithoutEngine, CreateMakesSpriteAndEmptyTexture) {
    ASSERT_EQ(pge::renderer, nullptr);
    pge::Renderable r;
    r.Create(5, 3);
    ASSERT_NE(r.Sprite(), nullptr);
    ASSERT_NE(r.Decal(), nullptr);
    EXPECT_EQ(r.Sprite()->width, 5);
    EXPECT_EQ(r.Sprite()->height, 3);
    EXPECT_EQ(r.Sprite()->GetPixel(4, 2), pge::BLACK);
    EXPECT_EQ(r.Decal()->id, pge::kNoTexture);
    EXPECT_EQ(r.Decal()->sprite, r.Sprite());
    EXPECT_FLOAT_EQ(r.Decal()->vUVScale.x, 1.0f / 5);
    EXPECT_FLOAT_EQ(r.Decal()->vUVScale.y, 1.0f / 3);

    // A second Create replaces the pair.
    r.Create(2, 7);
    EXPECT_EQ(r.Sprite()->width, 2);
    EXPECT_EQ(r.Decal()->size.y, 7);
}

TEST(RenderableWithoutEngine, DecalOfNoSpriteStaysEmpty) {
    pge::Decal d(nullptr);
    EXPECT_EQ(d.sprite, nullptr);
    EXPECT_EQ(d.id, pge::kNoTexture);
    d.Update();
    EXPECT_EQ(d.size.x, 0);
}

TEST(RenderableLoad, MissingAndUndecodableFilesGiveNothing) {
    pge::Renderable r;
    EXPECT_EQ(r.Load(TempPath("does_not_exist.png")), pge::NO_FILE);
    EXPECT_EQ(r.Sprite(), nullptr);
    EXPECT_EQ(r.Decal(), nullptr);

    const std::string junk = TempPath("junk.png");
    FILE* f = std::fopen(junk.c_str(), "wb");
    ASSERT_NE(f, nullptr);
    std::fputs("this is no picture", f);
    std::fclose(f);
    pge::Sprite direct(junk);
    EXPECT_EQ(direct.width, 0);
    EXPECT_TRUE(direct.pColData.empty());
    EXPECT_EQ(r.Load(junk), pge::NO_FILE);
    EXPECT_EQ(r.Sprite(), nullptr);
    std::remove(junk.c_str());
}

TEST(RenderableLoad, GreyPngBecomesOpaqueRgba) {
    const std::string path = TempPath("grey.png");
    const unsigned char grey[6] = {0, 40, 80, 120, 200, 255}; // 3 by 2, one channel
    ASSERT_NE(stbi_write_png(path.c_str(), 3, 2, 1, grey, 3), 0);

    pge::Renderable r;
    ASSERT_EQ(r.Load(path, nullptr, false, true), pge::OK);
    ASSERT_NE(r.Decal(), nullptr);
    const pge::Sprite& s = *r.Sprite();
    ASSERT_EQ(s.width, 3);
    ASSERT_EQ(s.height, 2);
    for (int i = 0; i < 6; ++i) {
        const pge::Pixel p = s.GetPixel(i % 3, i / 3);
        EXPECT_EQ(p, pge::Pixel(grey[i], grey[i], grey[i], 255)) << i;
    }
    std::remove(path.c_str());
}

TEST(RenderableLoad, RgbaPngKeepsItsAlpha) {
    const std::string path = TempPath("rgba.png");
    const unsigned char px[8] = {10, 20, 30, 0, 250, 128, 1, 77};
    ASSERT_NE(stbi_write_png(path.c_str(), 2, 1, 4, px, 8), 0);
    const pge::Sprite s(path);
    ASSERT_EQ(s.width, 2);
    EXPECT_EQ(s.GetPixel(0, 0), pge::Pixel(10, 20, 30, 0));
    EXPECT_EQ(s.GetPixel(1, 0), pge::Pixel(250, 128, 1, 77));
    std::remove(path.c_str());
}
