#include "engine/IndexedImage.h"
#include "tests/ScratchPath.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>

namespace {

using Bytes = std::vector<uint8_t>;
constexpr int kW = 7, kH = 5;

void PutU32(Bytes& out, uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(uint8_t(v >> shift));
}

// A chunk with its CRC left zero: the reader does not check it.
void Chunk(Bytes& out, const char* type, const Bytes& data) {
    PutU32(out, uint32_t(data.size()));
    out.insert(out.end(), type, type + 4);
    out.insert(out.end(), data.begin(), data.end());
    PutU32(out, 0);
}

// A zlib stream of one stored (uncompressed) deflate block.
Bytes Zlib(const Bytes& raw) {
    const size_t n = raw.size();
    Bytes out = {0x78, 0x01, 1, uint8_t(n), uint8_t(n >> 8), uint8_t(~n), uint8_t(~n >> 8)};
    out.insert(out.end(), raw.begin(), raw.end());
    uint32_t a = 1, b = 0;
    for (uint8_t byte : raw) b = (b + (a = (a + byte) % 65521)) % 65521;
    PutU32(out, b << 16 | a);
    return out;
}

// The encoder side of the PNG filters on one byte per pixel, filter filters[y % size] on row y.
Bytes Filter(const Bytes& px, const Bytes& filters) {
    Bytes out;
    for (int y = 0; y < kH; ++y) {
        const uint8_t f = filters[size_t(y) % filters.size()];
        out.push_back(f);
        for (int x = 0; x < kW; ++x) {
            const auto at = [&](int dx, int dy) { return x >= dx && y >= dy ? px[size_t((y - dy) * kW + x - dx)] : 0; };
            const int a = at(1, 0), b = at(0, 1), c = at(1, 1), p = a + b - c;
            const int pa = std::abs(p - a), pb = std::abs(p - b), pc = std::abs(p - c);
            const int pred[5] = {0, a, b, (a + b) >> 1, (pa <= pb && pa <= pc) ? a : (pb <= pc ? b : c)};
            out.push_back(uint8_t(at(0, 0) - pred[f]));
        }
    }
    return out;
}

// Entry i of a palette is (i, 255 - i, 7 i).
Bytes Palette(size_t entries) {
    Bytes d;
    for (size_t i = 0; i < entries; ++i) d.insert(d.end(), {uint8_t(i), uint8_t(255 - i), uint8_t(i * 7)});
    return d;
}

const Bytes kPixels = [] {
    Bytes p(kW * kH);
    std::generate(p.begin(), p.end(), std::mt19937(1234));
    return p;
}();

// A file with an unknown chunk and the data split over two IDAT chunks; header {depth, colour type, interlace}.
Bytes Png(const Bytes& idat, const Bytes& palette = Palette(256), Bytes header = {8, 3, 0}, int h = kH, Bytes trns = {}) {
    Bytes file = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A}, ihdr;
    PutU32(ihdr, kW);
    PutU32(ihdr, uint32_t(h));
    ihdr.insert(ihdr.end(), {header[0], header[1], 0, 0, header[2]});
    Chunk(file, "IHDR", ihdr);
    Chunk(file, "tEXt", {'h', 'i'});
    if (!palette.empty()) Chunk(file, "PLTE", palette);
    if (!trns.empty()) Chunk(file, "tRNS", trns);
    if (!idat.empty()) Chunk(file, "IDAT", Bytes(idat.begin(), idat.begin() + long(idat.size() / 2)));
    if (!idat.empty()) Chunk(file, "IDAT", Bytes(idat.begin() + long(idat.size() / 2), idat.end()));
    Chunk(file, "IEND", {});
    return file;
}

// The bytes loaded as a file, into *image when given.
bool Load(const Bytes& bytes, adv::IndexedImage* image = nullptr) {
    adv::IndexedImage local;
    const std::string path = scratch::Path("indexed_test") + ".png";
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    const bool ok = (image ? *image : local).Load(path);
    std::remove(path.c_str());
    return ok;
}

} // namespace

TEST(IndexedImageLoad, EveryFilterTypeAndPaletteGiveBackTheFile) {
    adv::IndexedImage image;
    for (const Bytes& filters : {Bytes{0}, Bytes{1}, Bytes{2}, Bytes{3}, Bytes{4}, Bytes{4, 3, 2, 1, 0}}) {
        ASSERT_TRUE(Load(Png(Zlib(Filter(kPixels, filters))), &image)) << int(filters[0]);
        EXPECT_EQ(std::tuple(image.width, image.height, image.pixels, image.palette[200]),
                  std::tuple(kW, kH, kPixels, pge::Pixel(200, 55, uint8_t(200 * 7), 255))) << "filter " << int(filters[0]);
    }
    // A short palette with transparency; the other entries, and all without PLTE, are opaque black.
    ASSERT_TRUE(Load(Png(Zlib(Filter(kPixels, {0})), Palette(2), {8, 3, 0}, kH, {0, 128}), &image));
    EXPECT_EQ(std::vector(image.palette.begin(), image.palette.begin() + 3),
              std::vector<pge::Pixel>({pge::Pixel(0, 255, 0, 0), pge::Pixel(1, 254, 7, 128), pge::Pixel(0, 0, 0, 255)}));
    ASSERT_TRUE(Load(Png(Zlib(Filter(kPixels, {2})), {}), &image));
    EXPECT_EQ(std::vector(image.palette.begin(), image.palette.end()), std::vector<pge::Pixel>(256, pge::Pixel(0, 0, 0, 255)));
}

TEST(IndexedImageLoad, OtherKindsAndBrokenFilesFailWithoutCrashing) {
    const Bytes raw = Filter(kPixels, {1}), good = Png(Zlib(raw));
    Bytes badFilter = raw, badSignature = good, hugeChunk = good;
    badFilter[size_t(kW + 1) * 2] = 5;
    badSignature[1] = 'Q';
    hugeChunk[8] = 0x7F; // IHDR claims about two gigabytes
    ASSERT_TRUE(Load(good));
    for (const Bytes& bad : {Png(Zlib(Bytes(size_t(kW * 3 + 1) * kH, 0)), {}, {8, 2, 0}), // RGB
                             Png(Zlib(raw), Palette(16), {4, 3, 0}), Png(Zlib(raw), Palette(16), {8, 3, 1}), // interlaced
                             Png(Zlib(raw), Palette(16), {8, 3, 0}, -1), Png(Zlib(raw), Palette(16), {8, 3, 0}, 0),
                             Png({}), Bytes(good.begin(), good.begin() + 7), badSignature, hugeChunk,
                             Bytes(good.begin(), good.end() - 20), // the last IDAT runs past the end
                             Png(Zlib(Bytes(raw.begin(), raw.end() - 1))), Png(Zlib(badFilter)), Png(Bytes(40, 0xAB))})
        EXPECT_FALSE(Load(bad));
    EXPECT_FALSE(adv::IndexedImage().Load(std::string(TORVANE_BINARY_DIR) + "/indexed_test_missing.png"));
    EXPECT_FALSE(adv::IndexedImage().Load(TORVANE_BINARY_DIR)); // a folder where the image should be
}

TEST(PaletteCycle, FrameOverTimeAndRangesReadOnlyTheOriginal) {
    const adv::PaletteCycle up{0, 3, 2.0f, 1}, down{0, 3, 2.0f, -1};
    // floor(time * fps) steps, wrapped into the range.
    EXPECT_EQ(std::vector<int>({up.Frame(0.99f), up.Frame(2.0f), up.Frame(-0.5f), down.Frame(0.5f), down.Frame(-0.5f)}),
              std::vector<int>({1, 0, 3, 3, 1}));
    EXPECT_EQ(up.Frame(1e30f) >> 2, 0);
    adv::IndexedImage image;
    for (size_t i = 0; i < 256; ++i) image.palette[i] = pge::Pixel(uint8_t(i), 0, 0, 255);
    const auto reds = [&](const std::vector<adv::PaletteCycle>& cycles) {
        const auto p = image.CycledPalette(cycles, 1.0f);
        return std::vector<int>({p[0].r, p[1].r, p[2].r, p[3].r, p[4].r, p[5].r, p[6].r, p[7].r, p[8].r, p[255].r});
    };
    // One step of +1 moves each colour one index lower; overlapping ranges do not compound, the later wins.
    EXPECT_EQ(reds({{4, 7, 1.0f, 1}}), std::vector<int>({0, 1, 2, 3, 5, 6, 7, 4, 8, 255}));
    EXPECT_EQ(reds({{0, 3, 1.0f, 1}, {2, 5, 1.0f, 1}}), std::vector<int>({1, 2, 3, 4, 5, 2, 6, 7, 8, 255}));
    EXPECT_EQ(reds({{5, 5, 5.0f, 1}, {-1, 3, 1.0f, 1}, {250, 256, 1.0f, 1}, {5, 4, 2.0f, 1}}), reds({}));
}
