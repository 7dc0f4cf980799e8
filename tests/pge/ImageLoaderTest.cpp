#include "pge/ImageLoader.h"
#include "tests/ChildProcess.h"

#include <stb_image_write.h>

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

pge::rcode Decode(const Bytes& bytes, pge::Sprite& sprite) { return pge::DecodeImage(&sprite, bytes.data(), bytes.size()); }

void PutLe(Bytes& out, uint32_t v, int bytes) {
    for (int i = 0; i < bytes; ++i) out.push_back(uint8_t(v >> (8 * i)));
}

// A true JPEG of 8 by 8 grey pixels, as the writer makes it.
Bytes SmallJpeg() {
    Bytes out;
    const std::vector<uint8_t> grey(8 * 8 * 3, 128);
    stbi_write_jpg_to_func(
        [](void* context, void* data, int size) {
            auto* bytes = static_cast<Bytes*>(context);
            bytes->insert(bytes->end(), static_cast<uint8_t*>(data), static_cast<uint8_t*>(data) + size);
        },
        &out, 8, 8, 3, grey.data(), 90);
    return out;
}

// The most address space this process has held so far.
long PeakKilobytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmPeak:", 0) == 0) return std::stol(line.substr(7));
    return 0;
}

} // namespace

TEST(ImageLoader, PicturesWithoutPixelsOrWithAbsurdSizesAreNotDecodable) {
    pge::Sprite sprite;
    const auto pnm = [](const std::string& text) { return Bytes(text.begin(), text.end()); };
    EXPECT_EQ(Decode(pnm("P6 1 0 255 "), sprite), pge::FAIL); // one column, no rows
    EXPECT_EQ(sprite.width, 0);
    // 59 bytes of BMP announcing 3 by 12 million pixels: file and info header, then zeros.
    Bytes bmp = {'B', 'M'};
    for (const auto& [value, bytes] : {std::pair(59u, 4), {0u, 4}, {54u, 4}, {40u, 4}, {3u, 4}, {12000000u, 4}, {1u, 2}, {24u, 2}})
        PutLe(bmp, value, bytes);
    bmp.resize(54, 0);
    bmp.resize(59, 0x55);
    EXPECT_EQ(Decode(bmp, sprite), pge::FAIL);
    // A GIF whose screen is 65535 pixels square, with one tiny image on it.
    Bytes gif = {'G', 'I', 'F', '8', '9', 'a', 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0,
                 0x2C, 0, 0, 0, 0, 1, 0, 1, 0, 0, 2, 2, 0x44, 0x01, 0, 0x3B};
    EXPECT_EQ(Decode(gif, sprite), pge::FAIL);
    // A binary PNM that holds fewer samples than its header announces (two bytes each above 255).
    EXPECT_EQ(Decode(pnm("P6666 26 6662"), sprite), pge::FAIL);
    EXPECT_EQ(Decode(pnm("P6 2 1 65535\n" + std::string(11, 'x')), sprite), pge::FAIL);
    EXPECT_EQ(Decode(pnm("P6 2 1 65535\n" + std::string(12, 'x')), sprite), pge::OK);
    EXPECT_EQ(Decode(pnm("P5 # grey\n2 2 255\n" + std::string(4, 'x')), sprite), pge::OK);
    // 113 bytes of PNG whose image data claims two gigabytes: refused before the decoder
    // makes room for them, as the peak of the address space shows.
    Bytes png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R',
                 0,    0,   0,   1,   0,    0,    0,    1,    8, 6, 0, 0, 0, 0, 0, 0, 0,
                 0x7F, 0xFF, 0xFF, 0xFF, 'I', 'D', 'A', 'T'};
    png.resize(113, 0x78);
    EXPECT_EQ(child::Run([&] {
                  const long before = PeakKilobytes();
                  return Decode(png, sprite) == pge::FAIL && PeakKilobytes() - before < 256 * 1024;
              }, 60),
              0);
    // Within the limits a BMP loads.
    bmp[22] = 2; // 2 rows
    for (int i = 23; i < 26; ++i) bmp[size_t(i)] = 0;
    EXPECT_EQ(Decode(bmp, sprite), pge::OK);
    EXPECT_EQ(sprite.width * sprite.height, 6);
}

TEST(ImageLoader, JpegHuffmanTablesOfMoreThan256CodesAreRefused) {
    const Bytes good = SmallJpeg();
    pge::Sprite sprite;
    ASSERT_EQ(Decode(good, sprite), pge::OK);
    EXPECT_EQ(sprite.GetPixel(3, 3).g, 128);
    // One more AC table after the start marker, with this many codes of 15 and 16 bits.
    const auto withTable = [&](int of15, int of16) {
        const size_t length = 2 + 17 + size_t(of15 + of16);
        Bytes table = {0xFF, 0xC4, uint8_t(length >> 8), uint8_t(length), 0x13};
        for (int i = 0; i < 16; ++i) table.push_back(uint8_t(i == 14 ? of15 : i == 15 ? of16 : 0));
        table.resize(table.size() + size_t(of15 + of16), 0x11);
        Bytes out = good;
        out.insert(out.begin() + 2, table.begin(), table.end());
        return out;
    };
    // 255 and 255 make a valid code, but twice as many as a table holds.
    EXPECT_EQ(Decode(withTable(255, 255), sprite), pge::FAIL);
    EXPECT_EQ(sprite.width, 0);
    EXPECT_EQ(Decode(withTable(255, 1), sprite), pge::OK); // 256 fit
}
