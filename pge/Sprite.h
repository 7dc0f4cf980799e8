#pragma once
// A picture in memory: row-major RGBA pixels from the top left, no gaps.
#include "pge/Pixel.h"

#include <cstdint>
#include <string>
#include <vector>

namespace pge {

class Sprite {
public:
    enum Mode : uint32_t { NORMAL = 0, PERIODIC = 1, CLAMP = 2 };

    Sprite() = default;
    Sprite(int32_t w, int32_t h);
    // Loads a PNG or JPEG file; on failure the sprite is 0 by 0.
    Sprite(const std::string& path, void* pack = nullptr);

    Sprite(const Sprite&) = delete;
    Sprite& operator=(const Sprite&) = delete;
    Sprite(Sprite&&) = default;
    Sprite& operator=(Sprite&&) = default;

    void SetSize(int32_t w, int32_t h);
    bool SetPixel(int32_t x, int32_t y, Pixel p);
    Pixel GetPixel(int32_t x, int32_t y) const;
    Pixel* GetData() { return pColData.data(); }
    const Pixel* GetData() const { return pColData.data(); }

    int32_t width = 0;
    int32_t height = 0;
    std::vector<Pixel> pColData;
    Mode modeSample = NORMAL;
};

} // namespace pge
