#include "engine/IndexedImage.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

void PutU32(Bytes& out, uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(uint8_t(v >> shift));
}

// A zlib stream of stored (uncompressed) deflate blocks.
Bytes Zlib(const Bytes& raw) {
    Bytes out = {0x78, 0x01};
    size_t at = 0;
    do {
        const size_t n = std::min<size_t>(raw.size() - at, 65535);
        out.push_back(at + n == raw.size() ? 1 : 0);
        out.push_back(uint8_t(n));
        out.push_back(uint8_t(n >> 8));
        out.push_back(uint8_t(~n));
        out.push_back(uint8_t(~n >> 8));
        out.insert(out.end(), raw.begin() + long(at), raw.begin() + long(at + n));
        at += n;
    } while (at < raw.size());
    uint32_t a = 1, b = 0;
    for (uint8_t byte : raw) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    PutU32(out, b << 16 | a);
    return out;
}

// The CRC is left zero: the reader does not check it.
void Chunk(Bytes& out, const char* type, const Bytes& data) {
    PutU32(out, uint32_t(data.size()));
    out.insert(out.end(), type, type + 4);
    out.insert(out.end(), data.begin(), data.end());
    PutU32(out, 0);
}

Bytes Header(int w, int h, uint8_t depth = 8, uint8_t colourType = 3, uint8_t interlace = 0) {
    Bytes d;
    PutU32(d, uint32_t(w));
    PutU32(d, uint32_t(h));
    d.insert(d.end(), {depth, colourType, 0, 0, interlace});
    return d;
}

const Bytes kSignature = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A};

// The encoder side of the PNG filters, one byte per pixel.
Bytes Filter(const Bytes& pixels, int w, int h, const std::vector<uint8_t>& filterPerRow) {
    Bytes out;
    for (int y = 0; y < h; ++y) {
        const uint8_t f = filterPerRow[size_t(y) % filterPerRow.size()];
        out.push_back(f);
        for (int x = 0; x < w; ++x) {
            const int cur = pixels[size_t(y * w + x)];
            const int a = x > 0 ? pixels[size_t(y * w + x - 1)] : 0;
            const int b = y > 0 ? pixels[size_t((y - 1) * w + x)] : 0;
            const int c = x > 0 && y > 0 ? pixels[size_t((y - 1) * w + x - 1)] : 0;
            int pred = 0;
            if (f == 1) pred = a;
            if (f == 2) pred = b;
            if (f == 3) pred = (a + b) >> 1;
            if (f == 4) {
                const int p = a + b - c, pa = std::abs(p - a), pb = std::abs(p - b), pc = std::abs(p - c);
                pred = (pa <= pb && pa <= pc) ? a : (pb <= pc ? b : c);
            }
            out.push_back(uint8_t(cur - pred));
        }
    }
    return out;
}

Bytes Palette(int entries) {
    Bytes d;
    for (int i = 0; i < entries; ++i) {
        d.push_back(uint8_t(i));
        d.push_back(uint8_t(255 - i));
        d.push_back(uint8_t(i * 7));
    }
    return d;
}

Bytes TestPixels(int w, int h) {
    std::mt19937 rng(1234);
    Bytes p(size_t(w * h));
    for (uint8_t& v : p) v = uint8_t(rng());
    return p;
}

Bytes PngFile(const Bytes& header, const Bytes& palette, const Bytes& idat) {
    Bytes file = kSignature;
    Chunk(file, "IHDR", header);
    if (!palette.empty()) Chunk(file, "PLTE", palette);
    Chunk(file, "IDAT", idat);
    Chunk(file, "IEND", {});
    return file;
}

std::string Write(const std::string& name, const Bytes& bytes) {
    const std::string path = std::string(TORVANE_BINARY_DIR) + "/indexed_test_" + name + ".png";
    std::ofstream(path, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(bytes.data()),
                                                                 std::streamsize(bytes.size()));
    return path;
}

bool LoadBytes(const std::string& name, const Bytes& bytes, adv::IndexedImage* into = nullptr) {
    adv::IndexedImage local;
    adv::IndexedImage& image = into ? *into : local;
    const std::string path = Write(name, bytes);
    const bool ok = image.Load(path);
    std::remove(path.c_str());
    return ok;
}

constexpr int kW = 7, kH = 5;

} // namespace

TEST(IndexedImageLoad, EveryFilterTypeGivesBackTheIndices) {
    const Bytes pixels = TestPixels(kW, kH);
    const std::vector<std::vector<uint8_t>> filterSets = {{0}, {1}, {2}, {3}, {4}, {4, 3, 2, 1, 0}};
    for (const auto& filters : filterSets) {
        adv::IndexedImage image;
        ASSERT_TRUE(LoadBytes("filter", PngFile(Header(kW, kH), Palette(256), Zlib(Filter(pixels, kW, kH, filters))),
                              &image))
            << int(filters[0]);
        EXPECT_EQ(image.width, kW);
        EXPECT_EQ(image.height, kH);
        EXPECT_EQ(image.pixels, pixels) << "filter " << int(filters[0]);
        EXPECT_EQ(image.palette[200], pge::Pixel(200, 55, uint8_t(200 * 7), 255));
    }
}

TEST(IndexedImageLoad, DataSplitOverChunksAndUnknownChunksSkipped) {
    const Bytes pixels = TestPixels(kW, kH);
    const Bytes z = Zlib(Filter(pixels, kW, kH, {2}));
    Bytes file = kSignature;
    Chunk(file, "IHDR", Header(kW, kH));
    Chunk(file, "tEXt", {'h', 'i'});
    Chunk(file, "IDAT", Bytes(z.begin(), z.begin() + 10));
    Chunk(file, "IDAT", Bytes(z.begin() + 10, z.end()));
    Chunk(file, "IEND", {});
    adv::IndexedImage image;
    ASSERT_TRUE(LoadBytes("split", file, &image));
    EXPECT_EQ(image.pixels, pixels);
    // Without PLTE every entry is opaque black.
    for (const pge::Pixel& p : image.palette) EXPECT_EQ(p, pge::Pixel(0, 0, 0, 255));
}

TEST(IndexedImageLoad, ShortPaletteAndTransparency) {
    const Bytes pixels = TestPixels(kW, kH);
    Bytes file = kSignature;
    Chunk(file, "IHDR", Header(kW, kH));
    Chunk(file, "PLTE", Palette(3));
    Chunk(file, "tRNS", {0, 128});
    Chunk(file, "IDAT", Zlib(Filter(pixels, kW, kH, {0})));
    Chunk(file, "IEND", {});
    adv::IndexedImage image;
    ASSERT_TRUE(LoadBytes("short_palette", file, &image));
    EXPECT_EQ(image.palette[0], pge::Pixel(0, 255, 0, 0));
    EXPECT_EQ(image.palette[1], pge::Pixel(1, 254, 7, 128));
    EXPECT_EQ(image.palette[2], pge::Pixel(2, 253, 14, 255));
    for (size_t i = 3; i < 256; ++i) EXPECT_EQ(image.palette[i], pge::Pixel(0, 0, 0, 255)) << i;
}

TEST(IndexedImageLoad, OtherKindsOfPictureAreRefused) {
    const Bytes raw = Filter(TestPixels(kW, kH), kW, kH, {0});
    EXPECT_FALSE(LoadBytes("rgb", PngFile(Header(kW, kH, 8, 2), {}, Zlib(Bytes(size_t(kW * 3 + 1) * kH, 0)))));
    EXPECT_FALSE(LoadBytes("four_bit", PngFile(Header(kW, kH, 4, 3), Palette(16), Zlib(raw))));
    EXPECT_FALSE(LoadBytes("interlaced", PngFile(Header(kW, kH, 8, 3, 1), Palette(16), Zlib(raw))));
    EXPECT_FALSE(LoadBytes("zero_width", PngFile(Header(0, kH), Palette(16), Zlib(raw))));
    EXPECT_FALSE(LoadBytes("huge_height", PngFile(Header(kW, -1), Palette(16), Zlib(raw))));
}

TEST(IndexedImageLoad, BrokenFilesFailWithoutCrashing) {
    const Bytes pixels = TestPixels(kW, kH);
    const Bytes raw = Filter(pixels, kW, kH, {1});
    const Bytes good = PngFile(Header(kW, kH), Palette(256), Zlib(raw));
    ASSERT_TRUE(LoadBytes("good", good));

    EXPECT_FALSE(adv::IndexedImage().Load(std::string(TORVANE_BINARY_DIR) + "/indexed_test_missing.png"));
    EXPECT_FALSE(LoadBytes("tiny", Bytes(kSignature.begin(), kSignature.begin() + 7)));
    Bytes wrongSignature = good;
    wrongSignature[1] = 'Q';
    EXPECT_FALSE(LoadBytes("signature", wrongSignature));

    Bytes noData = kSignature;
    Chunk(noData, "IHDR", Header(kW, kH));
    Chunk(noData, "PLTE", Palette(4));
    Chunk(noData, "IEND", {});
    EXPECT_FALSE(LoadBytes("no_idat", noData));

    // Cut inside the IDAT chunk: its data runs past the end of the file.
    EXPECT_FALSE(LoadBytes("cut", Bytes(good.begin(), good.end() - 20)));
    Bytes overlong = good;
    overlong[8] = 0x7F; // IHDR claims about two gigabytes
    EXPECT_FALSE(LoadBytes("overlong", overlong));

    // Inflates fine, but one row short.
    EXPECT_FALSE(LoadBytes("short_data", PngFile(Header(kW, kH), Palette(4), Zlib(Bytes(raw.begin(), raw.end() - 1)))));
    Bytes badFilter = raw;
    badFilter[size_t(kW + 1) * 2] = 5;
    EXPECT_FALSE(LoadBytes("filter5", PngFile(Header(kW, kH), Palette(4), Zlib(badFilter))));
    EXPECT_FALSE(LoadBytes("not_zlib", PngFile(Header(kW, kH), Palette(4), Bytes(40, 0xAB))));

    // Random damage anywhere must never crash; whatever loads has the promised size.
    std::mt19937 rng(99);
    for (int round = 0; round < 300; ++round) {
        Bytes damaged = good;
        for (int k = 0; k < 3; ++k) damaged[8 + rng() % (damaged.size() - 8)] = uint8_t(rng());
        adv::IndexedImage image;
        if (LoadBytes("damaged", damaged, &image)) {
            ASSERT_GE(image.width, 1);
            ASSERT_EQ(image.pixels.size(), size_t(image.width) * size_t(image.height));
        }
    }
}

TEST(PaletteCycleFrame, RotationOverTime) {
    const adv::PaletteCycle down{0, 3, 2.0f, -1};
    EXPECT_EQ(down.Frame(0.0f), 0);
    EXPECT_EQ(down.Frame(0.5f), 3);
    EXPECT_EQ(down.Frame(1.0f), 2);
    const adv::PaletteCycle up{0, 3, 2.0f, 1};
    EXPECT_EQ(up.Frame(0.0f), 0);
    EXPECT_EQ(up.Frame(0.5f), 1);
    EXPECT_EQ(up.Frame(0.99f), 1);
    EXPECT_EQ(up.Frame(2.0f), 0);
    // floor(-1) = -1 steps: one back, still inside the range.
    EXPECT_EQ(up.Frame(-0.5f), 3);
    EXPECT_EQ(down.Frame(-0.5f), 1);
    EXPECT_EQ(adv::PaletteCycle({0, 3, 0.0f, 1}).Frame(5.0f), 0);
    EXPECT_EQ(adv::PaletteCycle({5, 4, 2.0f, 1}).Frame(5.0f), 0);
    EXPECT_EQ(adv::PaletteCycle({10, 10, 2.0f, 1}).Frame(5.0f), 0);
    const int far = up.Frame(1e30f);
    EXPECT_TRUE(far >= 0 && far < 4);
}

TEST(PaletteCycleApply, RangesReadOnlyTheOriginalPalette) {
    adv::IndexedImage image;
    for (size_t i = 0; i < 256; ++i) image.palette[i] = pge::Pixel(uint8_t(i), 0, 0, 255);
    const auto red = [](const std::array<pge::Pixel, 256>& p, size_t i) { return int(p[i].r); };

    // One step of +1 moves each colour one index lower.
    auto p = image.CycledPalette({{4, 7, 1.0f, 1}}, 1.0f);
    EXPECT_EQ(red(p, 3), 3);
    EXPECT_EQ(red(p, 4), 5);
    EXPECT_EQ(red(p, 5), 6);
    EXPECT_EQ(red(p, 6), 7);
    EXPECT_EQ(red(p, 7), 4);
    EXPECT_EQ(red(p, 8), 8);

    // Overlapping ranges do not compound; the later one wins where they meet.
    p = image.CycledPalette({{0, 3, 1.0f, 1}, {2, 5, 1.0f, 1}}, 1.0f);
    const int expected[6] = {1, 2, 3, 4, 5, 2};
    for (size_t i = 0; i < 6; ++i) EXPECT_EQ(red(p, i), expected[i]) << i;

    // Single-colour and out-of-range cycles change nothing.
    p = image.CycledPalette({{10, 10, 5.0f, 1}, {-1, 3, 1.0f, 1}, {250, 256, 1.0f, 1}}, 1.0f);
    for (size_t i = 0; i < 256; ++i) EXPECT_EQ(red(p, i), int(i));
}
