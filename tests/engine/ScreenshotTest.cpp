#include "engine/Screenshot.h"
#include "tests/ScratchPath.h"

#include <stb_image.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

std::string TempPath(const std::string& name) {
    return scratch::Path("shot_test_" + name);
}

std::vector<uint8_t> ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

uint32_t Be32(const std::vector<uint8_t>& d, size_t at) {
    return uint32_t(d[at]) << 24 | uint32_t(d[at + 1]) << 16 | uint32_t(d[at + 2]) << 8 | d[at + 3];
}

// A sprite whose every pixel differs from its neighbours, alpha included.
pge::Sprite Pattern(int w, int h) {
    pge::Sprite s(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            s.SetPixel(x, y, pge::Pixel(uint8_t(x * 7 + y), uint8_t(y * 13 + x * 3), uint8_t(x ^ y), uint8_t(255 - (x + y) % 256)));
    return s;
}

// Walks the file's chunks and the stored deflate blocks of its zlib stream by hand.
struct Layout {
    std::vector<std::string> chunks;
    std::vector<size_t> blockSizes;
    std::vector<bool> blockFinal;
    bool crcOk = true;
    bool lenComplementOk = true;
};

uint32_t Crc(const uint8_t* p, size_t n) {
    uint32_t c = 0xFFFFFFFFu;
    for (size_t i = 0; i < n; ++i) {
        c ^= p[i];
        for (int k = 0; k < 8; ++k) c = (c >> 1) ^ (0xEDB88320u & (0u - (c & 1)));
    }
    return ~c;
}

Layout Inspect(const std::vector<uint8_t>& f) {
    Layout out;
    size_t at = 8;
    std::vector<uint8_t> idat;
    while (at + 12 <= f.size()) {
        const uint32_t len = Be32(f, at);
        const std::string type(f.begin() + long(at + 4), f.begin() + long(at + 8));
        out.chunks.push_back(type);
        if (Crc(f.data() + at + 4, len + 4) != Be32(f, at + 8 + len)) out.crcOk = false;
        if (type == "IDAT") idat.insert(idat.end(), f.begin() + long(at + 8), f.begin() + long(at + 8 + len));
        at += 12 + len;
    }
    for (size_t p = 2; p + 5 <= idat.size() - 4;) {
        const size_t len = idat[p + 1] | size_t(idat[p + 2]) << 8;
        const size_t nlen = idat[p + 3] | size_t(idat[p + 4]) << 8;
        if ((len ^ 0xFFFF) != nlen) out.lenComplementOk = false;
        out.blockFinal.push_back(idat[p] == 1);
        out.blockSizes.push_back(len);
        p += 5 + len;
    }
    return out;
}

void ExpectDecodesTo(const std::string& path, const pge::Sprite& s) {
    int w = 0, h = 0, n = 0;
    stbi_uc* px = stbi_load(path.c_str(), &w, &h, &n, 4);
    ASSERT_NE(px, nullptr) << stbi_failure_reason();
    ASSERT_EQ(w, s.width);
    ASSERT_EQ(h, s.height);
    EXPECT_EQ(n, 4);
    size_t bad = 0;
    for (int i = 0; i < w * h; ++i) {
        const pge::Pixel p = s.pColData[size_t(i)];
        if (px[4 * i] != p.r || px[4 * i + 1] != p.g || px[4 * i + 2] != p.b || px[4 * i + 3] != p.a) ++bad;
    }
    EXPECT_EQ(bad, 0u);
    stbi_image_free(px);
}

} // namespace

TEST(ScreenshotSavePng, OnePixelIsOneStoredBlockOfFiveBytes) {
    pge::Sprite s(1, 1);
    s.SetPixel(0, 0, pge::Pixel(200, 100, 50, 0));
    const std::string path = TempPath("one.png");
    ASSERT_TRUE(adv::screenshot::SavePng(s, path));
    const std::vector<uint8_t> f = ReadFile(path);
    const uint8_t signature[8] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
    ASSERT_GT(f.size(), 8u);
    EXPECT_TRUE(std::equal(signature, signature + 8, f.begin()));
    // IHDR: 1 by 1, depth 8, RGBA, no interlace.
    EXPECT_EQ(Be32(f, 16), 1u);
    EXPECT_EQ(Be32(f, 20), 1u);
    EXPECT_EQ(f[24], 8);
    EXPECT_EQ(f[25], 6);
    EXPECT_EQ(f[28], 0);
    const Layout l = Inspect(f);
    EXPECT_EQ(l.chunks, (std::vector<std::string>{"IHDR", "IDAT", "IEND"}));
    EXPECT_TRUE(l.crcOk);
    EXPECT_EQ(l.blockSizes, std::vector<size_t>{5});
    EXPECT_EQ(l.blockFinal, std::vector<bool>{true});
    ExpectDecodesTo(path, s); // alpha 0 stays transparent
    std::remove(path.c_str());
}

TEST(ScreenshotSavePng, BlockBoundaryAtExactly65535RawBytes) {
    // (1 + 4 * 64) * 255 = 65535 raw bytes: one full block, and it is the last.
    const pge::Sprite exact = Pattern(64, 255);
    const std::string path = TempPath("exact.png");
    ASSERT_TRUE(adv::screenshot::SavePng(exact, path));
    Layout l = Inspect(ReadFile(path));
    EXPECT_EQ(l.blockSizes, std::vector<size_t>{65535});
    EXPECT_EQ(l.blockFinal, std::vector<bool>{true});
    EXPECT_TRUE(l.lenComplementOk);
    ExpectDecodesTo(path, exact);

    // One row more: 65535 + 257 bytes, so a second, final block of 257. The older,
    // longer file at the path is replaced, not patched.
    {
        std::ofstream old(path, std::ios::binary);
        old << std::string(200000, 'x');
    }
    const pge::Sprite over = Pattern(64, 256);
    ASSERT_TRUE(adv::screenshot::SavePng(over, path));
    l = Inspect(ReadFile(path));
    EXPECT_EQ(l.blockSizes, (std::vector<size_t>{65535, 257}));
    EXPECT_EQ(l.blockFinal, (std::vector<bool>{false, true}));
    EXPECT_TRUE(l.crcOk);
    ExpectDecodesTo(path, over);
    std::remove(path.c_str());
}

TEST(ScreenshotSavePng, FailsWithoutTouchingFiles) {
    const std::string path = TempPath("empty.png");
    EXPECT_FALSE(adv::screenshot::SavePng(pge::Sprite(), path));
    EXPECT_FALSE(adv::screenshot::SavePng(pge::Sprite(0, 4), path));
    EXPECT_TRUE(ReadFile(path).empty());
    EXPECT_EQ(access(path.c_str(), F_OK), -1);
    EXPECT_FALSE(adv::screenshot::SavePng(pge::Sprite(2, 2), TempPath("no_such_dir/x.png")));
}
