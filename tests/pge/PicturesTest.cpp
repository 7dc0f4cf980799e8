#include "pge/Decal.h"
#include "tests/ScratchPath.h"

#include <stb_image_write.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

// Grey pictures become opaque RGBA, RGBA ones keep their alpha; a missing or undecodable
// file gives neither a sprite nor a decal.
TEST(Renderable, LoadsPngsAndNothingFromBadFiles) {
    const std::string path = scratch::Path("decal_test.png");
    const unsigned char grey[6] = {0, 40, 80, 120, 200, 255}, rgba[8] = {10, 20, 30, 0, 250, 128, 1, 77};
    ASSERT_NE(stbi_write_png(path.c_str(), 3, 2, 1, grey, 3), 0);
    pge::Renderable r;
    ASSERT_EQ(r.Load(path, nullptr, false, true), pge::OK);
    ASSERT_NE(r.Decal(), nullptr);
    std::vector<pge::Pixel> want;
    for (unsigned char g : grey) want.push_back(pge::Pixel(g, g, g, 255));
    EXPECT_EQ(r.Sprite()->pColData, want);
    EXPECT_EQ(r.Sprite()->width, 3);
    ASSERT_NE(stbi_write_png(path.c_str(), 2, 1, 4, rgba, 8), 0);
    EXPECT_EQ(pge::Sprite(path).pColData, (std::vector<pge::Pixel>{pge::Pixel(10, 20, 30, 0), pge::Pixel(250, 128, 1, 77)}));
    std::ofstream(path, std::ios::binary) << "this is no picture";
    EXPECT_TRUE(pge::Sprite(path).pColData.empty());
    EXPECT_EQ(r.Load(path), pge::NO_FILE);
    EXPECT_EQ(r.Sprite(), nullptr);
    std::remove(path.c_str());
    EXPECT_EQ(r.Load(path), pge::NO_FILE);
    EXPECT_EQ(r.Decal(), nullptr);
}
