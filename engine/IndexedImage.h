#pragma once
// Paletted PNG pictures kept as palette indices, for colour cycling, and the
// rotating palette ranges that animate them.
#include "pge/Pixel.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace adv {

// One rotating range of a palette.
struct PaletteCycle {
    int32_t start = 0; // first palette index, inclusive
    int32_t end = 0;   // last palette index, inclusive
    float fps = 0.0f;  // steps per second
    int32_t direction = 1;

    // The rotation of the range at this time, 0 to length - 1.
    int Frame(float time) const;
};

struct IndexedImage {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint8_t> pixels; // row-major palette indices
    std::array<pge::Pixel, 256> palette;

    // Reads an 8-bit paletted, non-interlaced PNG file. After a false the contents
    // are undefined.
    bool Load(const std::string& path);
    // The same from the file's bytes in memory.
    bool Decode(const uint8_t* file, size_t size);
    // The palette with every cycle applied at this time; later cycles override earlier ones.
    std::array<pge::Pixel, 256> CycledPalette(const std::vector<PaletteCycle>& cycles, float time) const;
};

} // namespace adv
