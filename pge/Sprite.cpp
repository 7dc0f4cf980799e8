#include "pge/Sprite.h"

#include "pge/ImageLoader.h"

#include <cstdlib>

namespace pge {

Sprite::Sprite(int32_t w, int32_t h) { SetSize(w, h); }

Sprite::Sprite(const std::string& path, void* pack) { LoadImage(this, path, pack); }

void Sprite::SetSize(int32_t w, int32_t h) {
    width = w;
    height = h;
    const int64_t count = (w > 0 && h > 0) ? int64_t(w) * h : 0;
    pColData.assign(size_t(count), Pixel());
}

bool Sprite::SetPixel(int32_t x, int32_t y, Pixel p) {
    if (x < 0 || y < 0 || x >= width || y >= height) return false;
    pColData[size_t(x) + size_t(y) * size_t(width)] = p;
    return true;
}

Pixel Sprite::GetPixel(int32_t x, int32_t y) const {
    if (width <= 0 || height <= 0) return BLANK;
    switch (modeSample) {
    case PERIODIC:
        x = std::abs(x) % width;
        y = std::abs(y) % height;
        break;
    case CLAMP:
        x = x < 0 ? 0 : (x >= width ? width - 1 : x);
        y = y < 0 ? 0 : (y >= height ? height - 1 : y);
        break;
    case NORMAL:
        if (x < 0 || y < 0 || x >= width || y >= height) return BLANK;
        break;
    }
    return pColData[size_t(x) + size_t(y) * size_t(width)];
}

} // namespace pge
