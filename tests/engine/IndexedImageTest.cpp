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
constexpr int kW = 7, kH = 5;

void PutU32(Bytes& out, uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(uint8_t(v >> shift));
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

// The encoder side of the PNG filters, one byte per pixel, filter type filters[y % size] on row y.
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

// Entry i is (i, 255 - i, 7 i).
Bytes Palette(int entries) {
    Bytes d(size_t(entries) * 3);
    for (size_t i = 0; i < d.size(); ++i) d[i] = uint8_t(i % 3 == 0 ? i / 3 : i % 3 == 1 ? 255 - i / 3 : i / 3 * 7);
    return d;
}

const Bytes kPixels = [] {
    std::mt19937 rng(1234);
    Bytes p(kW * kH);
    for (uint8_t& v : p) v = uint8_t(rng());
    return p;
}();

Bytes Png(const Bytes& header, const Bytes& palette, const Bytes& idat, const Bytes& trns = {}) {
    Bytes file = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A};
    Chunk(file, "IHDR", header);
    Chunk(file, "tEXt", {'h', 'i'}); // unknown chunks are skipped
    if (!palette.empty()) Chunk(file, "PLTE", palette);
    if (!trns.empty()) Chunk(file, "tRNS", trns);
    if (!idat.empty()) { // split over two chunks
        Chunk(file, "IDAT", Bytes(idat.begin(), idat.begin() + long(idat.size() / 2)));
        Chunk(file, "IDAT", Bytes(idat.begin() + long(idat.size() / 2), idat.end()));
    }
    Chunk(file, "IEND", {});
    return file;
}

// The bytes loaded as a file, into *image when given.
bool Load(const Bytes& bytes, adv::IndexedImage* image = nullptr) {
    adv::IndexedImage local;
    const std::string path = std::string(TORVANE_BINARY_DIR) + "/indexed_test.png";
    std::ofstream(path, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    const bool ok = (image ? *image : local).Load(path);
    std::remove(path.c_str());
    return ok;
}

} // namespace

TEST(IndexedImageLoad, EveryFilterTypeAndPaletteGiveBackTheFile) {
    for (const Bytes& filters : {Bytes{0}, Bytes{1}, Bytes{2}, Bytes{3}, Bytes{4}, Bytes{4, 3, 2, 1, 0}}) {
        adv::IndexedImage image;
        ASSERT_TRUE(Load(Png(Header(kW, kH), Palette(256), Zlib(Filter(kPixels, filters))), &image)) << int(filters[0]);
        EXPECT_EQ(image.width, kW);
        EXPECT_EQ(image.height, kH);
        EXPECT_EQ(image.pixels, kPixels) << "filter " << int(filters[0]);
        EXPECT_EQ(image.palette[200], pge::Pixel(200, 55, uint8_t(200 * 7), 255));
    }
    // A short palette with transparency; the rest of the entries, and all without PLTE, are opaque black.
    adv::IndexedImage image;
    ASSERT_TRUE(Load(Png(Header(kW, kH), Palette(3), Zlib(Filter(kPixels, {0})), {0, 128}), &image));
    EXPECT_EQ(image.palette[0], pge::Pixel(0, 255, 0, 0));
    EXPECT_EQ(image.palette[1], pge::Pixel(1, 254, 7, 128));
    EXPECT_EQ(image.palette[2], pge::Pixel(2, 253, 14, 255));
    ASSERT_TRUE(Load(Png(Header(kW, kH), {}, Zlib(Filter(kPixels, {2}))), &image));
    for (const pge::Pixel& p : image.palette) EXPECT_EQ(p, pge::Pixel(0, 0, 0, 255));
}

TEST(IndexedImageLoad, OtherKindsAndBrokenFilesFailWithoutCrashing) {
    const Bytes raw = Filter(kPixels, {1});
    const Bytes good = Png(Header(kW, kH), Palette(256), Zlib(raw));
    ASSERT_TRUE(Load(good));
    EXPECT_FALSE(Load(Png(Header(kW, kH, 8, 2), {}, Zlib(Bytes(size_t(kW * 3 + 1) * kH, 0))))); // RGB
    EXPECT_FALSE(Load(Png(Header(kW, kH, 4, 3), Palette(16), Zlib(raw))));
    EXPECT_FALSE(Load(Png(Header(kW, kH, 8, 3, 1), Palette(16), Zlib(raw)))); // interlaced
    EXPECT_FALSE(Load(Png(Header(0, kH), Palette(16), Zlib(raw))));
    EXPECT_FALSE(Load(Png(Header(kW, -1), Palette(16), Zlib(raw))));
    EXPECT_FALSE(adv::IndexedImage().Load(std::string(TORVANE_BINARY_DIR) + "/indexed_test_missing.png"));
    EXPECT_FALSE(Load(Bytes(good.begin(), good.begin() + 7)));
    Bytes damaged = good;
    damaged[1] = 'Q';
    EXPECT_FALSE(Load(damaged));
    EXPECT_FALSE(Load(Png(Header(kW, kH), Palette(4), {}))); // no data at all
    EXPECT_FALSE(Load(Bytes(good.begin(), good.end() - 20))); // the last IDAT runs past the end
    damaged = good;
    damaged[8] = 0x7F; // IHDR claims about two gigabytes
    EXPECT_FALSE(Load(damaged));
    EXPECT_FALSE(Load(Png(Header(kW, kH), Palette(4), Zlib(Bytes(raw.begin(), raw.end() - 1))))); // truncated rows
    damaged = raw;
    damaged[size_t(kW + 1) * 2] = 5; // no such filter
    EXPECT_FALSE(Load(Png(Header(kW, kH), Palette(4), Zlib(damaged))));
    EXPECT_FALSE(Load(Png(Header(kW, kH), Palette(4), Bytes(40, 0xAB)))); // not zlib

    std::mt19937 rng(99);
    for (int round = 0; round < 300; ++round) {
        damaged = good;
        for (int k = 0; k < 3; ++k) damaged[8 + rng() % (damaged.size() - 8)] = uint8_t(rng());
        adv::IndexedImage image;
        if (Load(damaged, &image)) {
            ASSERT_EQ(image.pixels.size(), size_t(image.width) * size_t(image.height));
        }
    }
}

TEST(PaletteCycle, FrameOverTimeAndRangesReadOnlyTheOriginal) {
    const adv::PaletteCycle up{0, 3, 2.0f, 1}, down{0, 3, 2.0f, -1};
    const float times[] = {0.0f, 0.5f, 0.99f, 2.0f, -0.5f};
    const int ups[] = {0, 1, 1, 0, 3}, downs[] = {0, 3, 3, 0, 1}; // floor(time * fps) steps, wrapped
    for (size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(up.Frame(times[i]), ups[i]) << times[i];
        EXPECT_EQ(down.Frame(times[i]), downs[i]) << times[i];
    }
    EXPECT_EQ(adv::PaletteCycle({0, 3, 0.0f, 1}).Frame(5.0f), 0);
    EXPECT_EQ(adv::PaletteCycle({5, 4, 2.0f, 1}).Frame(5.0f), 0);
    const int far = up.Frame(1e30f);
    EXPECT_TRUE(far >= 0 && far < 4);

    adv::IndexedImage image;
    for (size_t i = 0; i < 256; ++i) image.palette[i] = pge::Pixel(uint8_t(i), 0, 0, 255);
    const auto reds = [&](const std::vector<adv::PaletteCycle>& cycles, size_t count) {
        const auto p = image.CycledPalette(cycles, 1.0f);
        std::vector<int> r;
        for (size_t i = 0; i < count; ++i) r.push_back(p[i].r);
        return r;
    };
    // One step of +1 moves each colour one index lower; overlapping ranges do not compound, the later wins.
    EXPECT_EQ(reds({{4, 7, 1.0f, 1}}, 9), (std::vector<int>{0, 1, 2, 3, 5, 6, 7, 4, 8}));
    EXPECT_EQ(reds({{0, 3, 1.0f, 1}, {2, 5, 1.0f, 1}}, 6), (std::vector<int>{1, 2, 3, 4, 5, 2}));
    std::vector<int> identity(256);
    for (int i = 0; i < 256; ++i) identity[size_t(i)] = i;
    EXPECT_EQ(reds({{10, 10, 5.0f, 1}, {-1, 3, 1.0f, 1}, {250, 256, 1.0f, 1}}, 256), identity);
}
