#include "tools/paint/Paint.h"

#include <algorithm>
#include <cmath>
#include <fstream>

// From Debian's libstb: the deflate step of stb_image_write, declared in its implementation part only.
extern "C" unsigned char* stbi_zlib_compress(unsigned char* data, int data_len, int* out_len, int quality);

namespace paint {

Picture::Picture(int w, int h) : sprite(w, h) {
    for (int i = 0; i < w * h; ++i) sprite.GetData()[i] = Ink(0);
}

Picture Picture::Copy() const {
    Picture out(W(), H());
    out.sprite.pColData = sprite.pColData;
    return out;
}

std::vector<uint8_t> Picture::Indices() const {
    std::vector<uint8_t> out(static_cast<size_t>(W() * H()));
    for (size_t i = 0; i < out.size(); ++i) out[i] = sprite.GetData()[i].r;
    return out;
}

int Palette::Ramp(const std::vector<pge::Pixel>& keys, int n) {
    const int first = Size();
    for (int i = 0; i < n; ++i) {
        if (keys.size() == 1 || n == 1) {
            colours.push_back(keys[0]);
            continue;
        }
        const float t = static_cast<float>(i) / static_cast<float>(n - 1) * static_cast<float>(keys.size() - 1);
        const size_t k = std::min(static_cast<size_t>(t), keys.size() - 2);
        colours.push_back(adv::canvas::Mix(keys[k], keys[k + 1], t - static_cast<float>(k)));
    }
    return first;
}

int Palette::Add(pge::Pixel c) {
    colours.push_back(c);
    return Size() - 1;
}

float Bayer(int x, int y) {
    static const int kMatrix[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
    return (kMatrix[y & 3][x & 3] + 0.5f) / 16.0f;
}

int Dither(int first, int n, float t, int x, int y) {
    t = std::clamp(t, 0.0f, static_cast<float>(n - 1));
    const int base = static_cast<int>(t);
    return first + std::min(base + (t - base > Bayer(x, y) ? 1 : 0), n - 1);
}

adv::canvas::Mask Share(float share) {
    return [share](int x, int y) { return Bayer(x, y) < share; };
}

uint32_t Hash(uint32_t a, uint32_t b, uint32_t c) {
    uint32_t h = a * 0x9E3779B1u ^ (b + 0x7F4A7C15u) * 0x85EBCA77u ^ (c + 0x165667B1u) * 0xC2B2AE3Du;
    h ^= h >> 15;
    h *= 0x2C1B3C6Du;
    h ^= h >> 12;
    h *= 0x297A2D39u;
    return h ^ (h >> 15);
}

namespace {
float Lattice(int i, uint32_t seed) { return static_cast<float>(Hash(static_cast<uint32_t>(i), seed) & 0xFFFF) / 32767.5f - 1.0f; }
float Smooth(float t) { return t * t * (3.0f - 2.0f * t); }
} // namespace

float Noise1(float x, uint32_t seed) {
    const float f = std::floor(x);
    const int i = static_cast<int>(f);
    const float t = Smooth(x - f);
    return Lattice(i, seed) * (1.0f - t) + Lattice(i + 1, seed) * t;
}

float Fractal1(float x, uint32_t seed, int octaves) {
    float sum = 0.0f, amp = 1.0f, norm = 0.0f;
    for (int o = 0; o < octaves; ++o) {
        sum += Noise1(x, seed + static_cast<uint32_t>(o) * 101u) * amp;
        norm += amp;
        amp *= 0.5f;
        x *= 2.0f;
    }
    return sum / norm;
}

float Noise2(float x, float y, uint32_t seed) {
    const float fy = std::floor(y);
    const float t = Smooth(y - fy);
    const uint32_t row = static_cast<uint32_t>(static_cast<int>(fy));
    return Noise1(x, Hash(row, seed)) * (1.0f - t) + Noise1(x, Hash(row + 1, seed)) * t;
}

Ridge MakeRidge(int w, float base, float amp, float len, uint32_t seed, int octaves) {
    Ridge r(static_cast<size_t>(w));
    for (int x = 0; x < w; ++x) r[static_cast<size_t>(x)] = base + amp * Fractal1(static_cast<float>(x) / len, seed, octaves);
    return r;
}

Points Ellipse(float cx, float cy, float rx, float ry) {
    Points out;
    for (int i = 0; i < 64; ++i) {
        const float a = static_cast<float>(i) * 6.2831855f / 64.0f;
        out.push_back({cx + rx * std::cos(a), cy + ry * std::sin(a)});
    }
    return out;
}

Picture Enlarge(const Picture& p, int factor) {
    Picture out(p.W() * factor, p.H() * factor);
    for (int y = 0; y < out.H(); ++y)
        for (int x = 0; x < out.W(); ++x) out.Set(x, y, p.At(x / factor, y / factor));
    return out;
}

namespace {
using Bytes = std::vector<uint8_t>;

void U32(Bytes& out, uint32_t v) {
    for (int s = 24; s >= 0; s -= 8) out.push_back(static_cast<uint8_t>(v >> s));
}

uint32_t Crc(const uint8_t* data, size_t n) {
    uint32_t c = ~0u;
    for (size_t i = 0; i < n; ++i) {
        c ^= data[i];
        for (int k = 0; k < 8; ++k) c = (c >> 1) ^ (0xEDB88320u & (0u - (c & 1u)));
    }
    return ~c;
}

void Chunk(Bytes& file, const char* type, const Bytes& data) {
    U32(file, static_cast<uint32_t>(data.size()));
    const size_t from = file.size();
    file.insert(file.end(), type, type + 4);
    file.insert(file.end(), data.begin(), data.end());
    U32(file, Crc(file.data() + from, file.size() - from));
}
} // namespace

bool WritePng(const std::string& path, const Picture& p, const Palette& pal, int transparentIndex) {
    const int w = p.W(), h = p.H();
    Bytes header, plte, trns, raw;
    U32(header, static_cast<uint32_t>(w));
    U32(header, static_cast<uint32_t>(h));
    header.insert(header.end(), {8, 3, 0, 0, 0}); // 8-bit palette indices, not interlaced
    for (const pge::Pixel& c : pal.colours) plte.insert(plte.end(), {c.r, c.g, c.b});
    for (int i = 0; i <= transparentIndex; ++i) trns.push_back(i == transparentIndex ? 0 : 255);
    // Each row filtered "sub" or "none", whichever leaves the smaller sum of bytes.
    const std::vector<uint8_t> idx = p.Indices();
    for (int y = 0; y < h; ++y) {
        const uint8_t* row = idx.data() + static_cast<size_t>(y) * static_cast<size_t>(w);
        unsigned none = 0, sub = 0;
        for (int x = 0; x < w; ++x) {
            none += row[x] < 128 ? row[x] : 256 - row[x];
            const uint8_t d = static_cast<uint8_t>(row[x] - (x ? row[x - 1] : 0));
            sub += d < 128 ? d : 256 - d;
        }
        const bool useSub = sub < none;
        raw.push_back(useSub ? 1 : 0);
        for (int x = 0; x < w; ++x) raw.push_back(useSub ? static_cast<uint8_t>(row[x] - (x ? row[x - 1] : 0)) : row[x]);
    }
    int zlen = 0;
    unsigned char* z = stbi_zlib_compress(raw.data(), static_cast<int>(raw.size()), &zlen, 9);
    if (!z) return false;
    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    Chunk(file, "IHDR", header);
    Chunk(file, "PLTE", plte);
    if (!trns.empty()) Chunk(file, "tRNS", trns);
    Chunk(file, "IDAT", Bytes(z, z + zlen));
    Chunk(file, "IEND", {});
    std::free(z);
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    return static_cast<bool>(out);
}

} // namespace paint
