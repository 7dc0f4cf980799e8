#include "engine/Screenshot.h"

#include "pge/Files.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

namespace adv::screenshot {
namespace {

using Bytes = std::vector<uint8_t>;

void PutU32(Bytes& out, uint32_t v) {
    out.push_back(uint8_t(v >> 24));
    out.push_back(uint8_t(v >> 16));
    out.push_back(uint8_t(v >> 8));
    out.push_back(uint8_t(v));
}

// PNG's CRC-32, bit by bit: one file per run does not need a table.
uint32_t Crc32(const uint8_t* data, size_t n, uint32_t crc) {
    for (size_t i = 0; i < n; ++i) {
        crc ^= data[i];
        for (int k = 0; k < 8; ++k) crc = (crc & 1) ? (crc >> 1) ^ 0xEDB88320u : crc >> 1;
    }
    return crc;
}

void Chunk(Bytes& out, const char type[4], const Bytes& data) {
    PutU32(out, uint32_t(data.size()));
    const size_t typeAt = out.size();
    out.insert(out.end(), type, type + 4);
    out.insert(out.end(), data.begin(), data.end());
    const uint32_t crc = Crc32(out.data() + typeAt, 4 + data.size(), 0xFFFFFFFFu) ^ 0xFFFFFFFFu;
    PutU32(out, crc);
}

} // namespace

bool SavePng(const pge::Sprite& sprite, const std::string& path) {
    const int32_t w = sprite.width;
    const int32_t h = sprite.height;
    if (w < 1 || h < 1) return false;

    Bytes raw;
    raw.reserve((1 + 4 * size_t(w)) * size_t(h));
    for (int32_t y = 0; y < h; ++y) {
        raw.push_back(0); // filter "None"
        for (int32_t x = 0; x < w; ++x) {
            const pge::Pixel p = sprite.GetPixel(x, y);
            raw.insert(raw.end(), {p.r, p.g, p.b, p.a});
        }
    }

    uint32_t a = 1, b = 0;
    for (uint8_t byte : raw) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }

    Bytes zlib{0x78, 0x01};
    zlib.reserve(raw.size() + raw.size() / 65535 * 5 + 16);
    for (size_t at = 0; at < raw.size();) {
        const size_t len = std::min<size_t>(65535, raw.size() - at);
        const bool last = at + len == raw.size();
        zlib.push_back(last ? 1 : 0);
        zlib.push_back(uint8_t(len));
        zlib.push_back(uint8_t(len >> 8));
        zlib.push_back(uint8_t(~len));
        zlib.push_back(uint8_t(~len >> 8));
        zlib.insert(zlib.end(), raw.begin() + long(at), raw.begin() + long(at + len));
        at += len;
    }
    PutU32(zlib, b << 16 | a);

    Bytes header;
    PutU32(header, uint32_t(w));
    PutU32(header, uint32_t(h));
    header.insert(header.end(), {8, 6, 0, 0, 0});

    Bytes file{0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A};
    Chunk(file, "IHDR", header);
    Chunk(file, "IDAT", zlib);
    Chunk(file, "IEND", {});

    return pge::files::WriteAll(path, std::string_view(reinterpret_cast<const char*>(file.data()), file.size()));
}

} // namespace adv::screenshot
