#pragma once
// Test pictures without a test framework, shared by the tests and the benchmarks:
// an 8-bit paletted PNG writer and a landscape with a cycled water band.
#include "pge/Pixel.h"

#include <fstream>
#include <string>
#include <vector>

namespace torvane::testing_support {

inline void WriteText(const std::string& path, const std::string& text) { std::ofstream(path) << text; }

// `pixels` are row-major indices; each row goes into a stored deflate block of its own.
inline void WritePalettedPng(const std::string& path, int w, int h, const std::vector<uint8_t>& pixels,
                             const std::vector<pge::Pixel>& palette) {
    using Bytes = std::vector<uint8_t>;
    const auto u32 = [](Bytes& out, uint32_t v) {
        for (int s = 24; s >= 0; s -= 8) out.push_back(static_cast<uint8_t>(v >> s));
    };
    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    const auto chunk = [&](const char* type, const Bytes& data) {
        u32(file, static_cast<uint32_t>(data.size()));
        const size_t from = file.size();
        file.insert(file.end(), type, type + 4);
        file.insert(file.end(), data.begin(), data.end());
        uint32_t c = ~0u;
        for (size_t i = from; i < file.size(); ++i) {
            c ^= file[i];
            for (int k = 0; k < 8; ++k) c = (c >> 1) ^ (0xEDB88320u & (0u - (c & 1u)));
        }
        u32(file, ~c);
    };
    Bytes header, pal, z{0x78, 0x01};
    u32(header, static_cast<uint32_t>(w));
    u32(header, static_cast<uint32_t>(h));
    header.insert(header.end(), {8, 3, 0, 0, 0}); // 8-bit indices
    for (const pge::Pixel& p : palette) pal.insert(pal.end(), {p.r, p.g, p.b});
    uint32_t a = 1, b = 0; // Adler-32 of the raw rows, filter bytes (0) included
    for (int y = 0; y < h; ++y) {
        const auto n = static_cast<uint16_t>(w + 1);
        z.insert(z.end(), {static_cast<uint8_t>(y + 1 == h), static_cast<uint8_t>(n), static_cast<uint8_t>(n >> 8),
                           static_cast<uint8_t>(~n), static_cast<uint8_t>(~n >> 8), 0});
        z.insert(z.end(), pixels.begin() + y * w, pixels.begin() + (y + 1) * w);
        for (auto i = z.end() - n; i != z.end(); ++i) {
            a = (a + *i) % 65521u;
            b = (b + a) % 65521u;
        }
    }
    u32(z, (b << 16) | a);
    chunk("IHDR", header);
    chunk("PLTE", pal);
    chunk("IDAT", z);
    chunk("IEND", {});
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(file.data()),
                                                static_cast<std::streamsize>(file.size()));
}

// The water picture, 320 by 200: sky rows use indices 0..99 by row, the ground
// 100..149 in stripes, and a water band at rows 140..159 the cycled 200..207.
inline constexpr int kW = 320, kH = 200;
inline int IndexAt(int x, int y) {
    if (y < 120) return y * 100 / 120;
    if (y >= 140 && y < 160) return 200 + (x / 6 + y / 3) % 8;
    return 100 + (x / 8 + y / 5) % 50;
}

inline std::vector<pge::Pixel> TestPalette() {
    std::vector<pge::Pixel> pal(256, pge::Pixel(0, 0, 0));
    for (uint8_t i = 0; i < 100; ++i) pal[i] = pge::Pixel(90 + i, 140 + i, 230 - i / 4);
    for (uint8_t i = 100; i < 150; ++i) pal[i] = pge::Pixel(20 + i, 50 + i / 2, 60);
    for (uint8_t i = 0; i < 8; ++i) pal[200 + i] = pge::Pixel(20 + i * 10, 80 + i * 20, 200);
    return pal;
}

// The water picture as level 1's plain background below `root`, cycling 4 steps a second.
inline void WriteWaterBackground(const std::string& root) {
    std::vector<uint8_t> pixels(kW * kH);
    for (int i = 0; i < kW * kH; ++i) pixels[static_cast<size_t>(i)] = static_cast<uint8_t>(IndexAt(i % kW, i / kW));
    WritePalettedPng(root + "/torvane/torvane-bg-01-desert-cycle.png", kW, kH, pixels, TestPalette());
    WriteText(root + "/torvane/color-cycles.json",
              R"({"backgrounds": [{"file": "torvane-bg-01-desert-cycle.png", "palette_start": 200,
                  "palette_end": 207, "fps": 4, "direction": 1}]})");
}

} // namespace torvane::testing_support
