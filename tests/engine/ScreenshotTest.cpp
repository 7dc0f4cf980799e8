#include "engine/Screenshot.h"
#include "tests/ScratchPath.h"

#include <stb_image.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

uint32_t Be32(const Bytes& d, size_t at) { return uint32_t(d[at]) << 24 | uint32_t(d[at + 1]) << 16 | uint32_t(d[at + 2]) << 8 | d[at + 3]; }

uint32_t Crc(const uint8_t* p, size_t n) {
    uint32_t c = 0xFFFFFFFFu;
    for (size_t i = 0; i < n; ++i) {
        c ^= p[i];
        for (int k = 0; k < 8; ++k) c = (c >> 1) ^ (0xEDB88320u & (0u - (c & 1)));
    }
    return ~c;
}

// The file's chunk types, each followed by "!" when its CRC is wrong, then the stored deflate
// blocks of its zlib stream as their lengths, "*" marking the final one, "!" a bad complement.
std::string Layout(const Bytes& f) {
    std::string out;
    Bytes idat;
    for (size_t at = 8; at + 12 <= f.size();) {
        const uint32_t len = Be32(f, at);
        out += std::string(f.begin() + long(at + 4), f.begin() + long(at + 8)) + (Crc(&f[at + 4], len + 4) == Be32(f, at + 8 + len) ? " " : "! ");
        if (out.substr(out.size() - 5, 4) == "IDAT") idat.insert(idat.end(), f.begin() + long(at + 8), f.begin() + long(at + 8 + len));
        at += 12 + len;
    }
    for (size_t p = 2; p + 5 <= idat.size() - 4;) {
        const size_t len = idat[p + 1] | size_t(idat[p + 2]) << 8, nlen = idat[p + 3] | size_t(idat[p + 4]) << 8;
        out += std::to_string(len) + (idat[p] == 1 ? "*" : "") + ((len ^ 0xFFFF) != nlen ? "! " : " ");
        p += 5 + len;
    }
    return out;
}

} // namespace

// A pixel is 4 bytes and each row starts with its filter byte; the stored blocks hold at most
// 65535 bytes. Every file decodes to the sprite, alpha included, and replaces a longer older one.
TEST(ScreenshotSavePng, StoredBlocksRoundTheirLimitAndTheFileDecodes) {
    const std::string path = scratch::Path("shot_test.png");
    std::ofstream(path, std::ios::binary) << std::string(200000, 'x');
    const struct { int w, h; std::string layout; } cases[] = {
        {1, 1, "IHDR IDAT IEND 5* "},
        {64, 255, "IHDR IDAT IEND 65535* "}, // (1 + 4 * 64) * 255 = 65535
        {64, 256, "IHDR IDAT IEND 65535 257* "},
    };
    for (const auto& c : cases) {
        pge::Sprite s(c.w, c.h);
        for (int y = 0; y < c.h; ++y)
            for (int x = 0; x < c.w; ++x)
                s.SetPixel(x, y, pge::Pixel(uint8_t(x * 7 + y), uint8_t(y * 13 + x * 3), uint8_t(x ^ y), uint8_t(255 - (x + y) % 256)));
        ASSERT_TRUE(adv::screenshot::SavePng(s, path));
        std::ifstream in(path, std::ios::binary);
        const Bytes f{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        ASSERT_GT(f.size(), 30u);
        EXPECT_EQ(Bytes(f.begin(), f.begin() + 8), (Bytes{0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A}));
        // Width, height, depth 8, RGBA, no interlace.
        EXPECT_EQ(std::vector<uint32_t>({Be32(f, 16), Be32(f, 20), f[24], f[25], f[28]}), std::vector<uint32_t>({uint32_t(c.w), uint32_t(c.h), 8, 6, 0}));
        EXPECT_EQ(Layout(f), c.layout);
        int w = 0, h = 0, n = 0;
        stbi_uc* px = stbi_load(path.c_str(), &w, &h, &n, 4);
        ASSERT_NE(px, nullptr) << stbi_failure_reason();
        EXPECT_EQ(std::vector<uint8_t>(px, px + 4 * w * h), Bytes(reinterpret_cast<const uint8_t*>(s.pColData.data()), reinterpret_cast<const uint8_t*>(s.pColData.data() + s.pColData.size())));
        stbi_image_free(px);
    }
    std::remove(path.c_str());
    EXPECT_FALSE(adv::screenshot::SavePng(pge::Sprite(), path) || adv::screenshot::SavePng(pge::Sprite(0, 4), path));
    EXPECT_EQ(access(path.c_str(), F_OK), -1);
    EXPECT_FALSE(adv::screenshot::SavePng(pge::Sprite(2, 2), scratch::Path("no_such_dir/x.png")));
}
