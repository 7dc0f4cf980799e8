#pragma once
// The painter's tools: a picture of palette indices drawn with the engine's canvas
// (each index lives in the red channel of an opaque pixel), palette ramps, ordered
// dithering, a fixed noise, and the writer of 8-bit paletted PNG files.
#include "engine/Canvas.h"
#include "pge/Sprite.h"

#include <cstdint>
#include <string>
#include <vector>

namespace paint {

using Points = std::vector<pge::vf2d>;

// The pen of palette index i: opaque, so every canvas primitive overwrites.
inline pge::Pixel Ink(int i) { return pge::Pixel(static_cast<uint8_t>(i), 0, 0, 255); }

struct Picture {
    pge::Sprite sprite;
    Picture(int w, int h);
    Picture Copy() const;
    int W() const { return sprite.width; }
    int H() const { return sprite.height; }
    bool Inside(int x, int y) const { return x >= 0 && y >= 0 && x < W() && y < H(); }
    uint8_t At(int x, int y) const { return sprite.GetData()[y * W() + x].r; }
    void Set(int x, int y, int i) {
        if (Inside(x, y)) sprite.GetData()[y * W() + x] = Ink(i);
    }
    pge::Sprite* S() { return &sprite; }
    std::vector<uint8_t> Indices() const;
};

// A palette built from ramps: runs of colours between key colours.
struct Palette {
    std::vector<pge::Pixel> colours;
    // Appends n colours through the keys (evenly spaced) and returns the first index.
    int Ramp(const std::vector<pge::Pixel>& keys, int n);
    int Add(pge::Pixel c);
    int Size() const { return static_cast<int>(colours.size()); }
};

// 4 by 4 ordered dither threshold in [0, 1).
float Bayer(int x, int y);
// Index first + t, with the fraction of t dithered by the Bayer matrix; t is limited to 0..n-1.
int Dither(int first, int n, float t, int x, int y);
// A canvas mask for a share 0..1 of the pixels, in the ordered pattern.
adv::canvas::Mask Share(float share);

// Smooth value noise of fixed seed, -1..1.
float Noise1(float x, uint32_t seed);
float Fractal1(float x, uint32_t seed, int octaves);
float Noise2(float x, float y, uint32_t seed);
uint32_t Hash(uint32_t a, uint32_t b, uint32_t c = 0);

// A hanging line in the picture: for each column the first row that belongs to it.
using Ridge = std::vector<float>;
// Columns 0..w-1 of base + fractal noise of amplitude amp and wave length len.
Ridge MakeRidge(int w, float base, float amp, float len, uint32_t seed, int octaves = 4);

// Every pixel at or below the ridge, down to the bottom or to `until` when given, is
// coloured by fn(x, y, depth below the ridge).
template <typename Fn> void FillBelow(Picture& p, const Ridge& r, Fn fn, const Ridge* until = nullptr) {
    for (int x = 0; x < p.W(); ++x) {
        const int top = static_cast<int>(r[static_cast<size_t>(x)] + 0.5f);
        const int end = until ? static_cast<int>((*until)[static_cast<size_t>(x)] + 0.5f) : p.H();
        for (int y = std::max(top, 0); y < std::min(end, p.H()); ++y) p.Set(x, y, fn(x, y, y - top));
    }
}

// An ellipse as a polygon of 64 points, for the canvas's masked fill.
Points Ellipse(float cx, float cy, float rx, float ry);

// Scales a picture up by a whole factor, keeping indices.
Picture Enlarge(const Picture& p, int factor);

// Writes an 8-bit paletted PNG; entries listed in `transparent` get alpha 0.
bool WritePng(const std::string& path, const Picture& p, const Palette& pal, int transparentIndex = -1);

} // namespace paint
