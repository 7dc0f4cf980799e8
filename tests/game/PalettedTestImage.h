#pragma once
// Test pictures without a test framework, shared by the tests and the benchmarks:
// a writer of 8-bit paletted PNG files and a landscape with a cycled water band.
#include "pge/Pixel.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace torvane::testing_support {

inline void WriteText(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

// An 8-bit paletted PNG with stored deflate blocks; `pixels` row-major indices.
inline void WritePalettedPng(const std::string& path, int w, int h, const std::vector<uint8_t>& pixels,
                             const std::vector<pge::Pixel>& palette) {
    using Bytes = std::vector<uint8_t>;
    const auto u32 = [](Bytes& out, uint32_t v) {
        for (int s = 24; s >= 0; s -= 8) out.push_back(static_cast<uint8_t>(v >> s));
    };
    const auto crc = [](const Bytes& data) {
        uint32_t c = 0xFFFFFFFFu;
        for (uint8_t b : data) {
            c ^= b;
            for (int k = 0; k < 8; ++k) c = (c >> 1) ^ (0xEDB88320u & (0u - (c & 1u)));
        }
        return c ^ 0xFFFFFFFFu;
    };
    const auto chunk = [&](Bytes& out, const char* type, const Bytes& data) {
        u32(out, static_cast<uint32_t>(data.size()));
        Bytes body(type, type + 4);
        body.insert(body.end(), data.begin(), data.end());
        out.insert(out.end(), body.begin(), body.end());
        u32(out, crc(body));
    };
    Bytes raw;
    for (int y = 0; y < h; ++y) {
        raw.push_back(0); // filter: none
        raw.insert(raw.end(), pixels.begin() + y * w, pixels.begin() + (y + 1) * w);
    }
    Bytes z{0x78, 0x01};
    uint32_t a = 1, b = 0;
    for (uint8_t v : raw) {
        a = (a + v) % 65521u;
        b = (b + a) % 65521u;
    }
    for (size_t at = 0; at < raw.size() || at == 0; at += 65535) {
        const size_t n = std::min<size_t>(65535, raw.size() - at);
        z.push_back(at + n >= raw.size() ? 1 : 0);
        z.push_back(static_cast<uint8_t>(n));
        z.push_back(static_cast<uint8_t>(n >> 8));
        z.push_back(static_cast<uint8_t>(~n));
        z.push_back(static_cast<uint8_t>(~n >> 8));
        z.insert(z.end(), raw.begin() + static_cast<long>(at), raw.begin() + static_cast<long>(at + n));
        if (at + n >= raw.size()) break;
    }
    u32(z, (b << 16) | a);
    Bytes header;
    u32(header, static_cast<uint32_t>(w));
    u32(header, static_cast<uint32_t>(h));
    header.insert(header.end(), {8, 3, 0, 0, 0});
    Bytes pal;
    for (const pge::Pixel& p : palette) pal.insert(pal.end(), {p.r, p.g, p.b});
    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    chunk(file, "IHDR", header);
    chunk(file, "PLTE", pal);
    chunk(file, "IDAT", z);
    chunk(file, "IEND", {});
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(file.data()),
                                                static_cast<std::streamsize>(file.size()));
}

// The water picture, 320 by 200.
inline constexpr int kW = 320, kH = 200;

// Sky rows use indices 0..99 by row, the ground 100..149 in stripes, and a water
// band at rows 140..159 the cycled indices 200..207.
inline int IndexAt(int x, int y) {
    if (y < 120) return y * 100 / 120;
    if (y >= 140 && y < 160) return 200 + (x / 6 + y / 3) % 8;
    return 100 + (x / 8 + y / 5) % 50;
}

inline std::vector<pge::Pixel> TestPalette() {
    std::vector<pge::Pixel> pal(256, pge::Pixel(0, 0, 0));
    for (int i = 0; i < 100; ++i)
        pal[i] = pge::Pixel(static_cast<uint8_t>(90 + i), static_cast<uint8_t>(140 + i), static_cast<uint8_t>(230 - i / 4));
    for (int i = 100; i < 150; ++i)
        pal[i] = pge::Pixel(static_cast<uint8_t>(120 + (i - 100)), static_cast<uint8_t>(100 + (i - 100) / 2), 60);
    for (int i = 0; i < 8; ++i)
        pal[200 + i] = pge::Pixel(static_cast<uint8_t>(20 + i * 10), static_cast<uint8_t>(80 + i * 20), 200);
    return pal;
}

// Writes the water picture as level 1's plain background below the asset root
// `root`, with its cycle of 4 steps per second and, when given, a tower frame.
inline void WriteWaterBackground(const std::string& root, const std::string& frame = "") {
    std::vector<uint8_t> pixels(kW * kH);
    for (int y = 0; y < kH; ++y)
        for (int x = 0; x < kW; ++x) pixels[static_cast<size_t>(y * kW + x)] = static_cast<uint8_t>(IndexAt(x, y));
    WritePalettedPng(root + "/torvane/torvane-bg-01-desert-cycle.png", kW, kH, pixels, TestPalette());
    WriteText(root + "/torvane/color-cycles.json",
              R"({"backgrounds": [{"file": "torvane-bg-01-desert-cycle.png", "palette_start": 200,
                  "palette_end": 207, "fps": 4, "direction": 1)" +
                  (frame.empty() ? std::string() : ", \"tower_frame\": " + frame) + "}]}");
}

} // namespace torvane::testing_support
