// The picture loader on any bytes: a decoded sprite holds all its pixels.
#include "pge/ImageLoader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    pge::Sprite sprite;
    if (pge::DecodeImage(&sprite, data, size) != pge::OK) {
        if (sprite.width != 0 || !sprite.pColData.empty()) __builtin_trap();
        return 0;
    }
    if (sprite.width < 1 || sprite.height < 1 || sprite.width > pge::kMaxImageSide ||
        sprite.pColData.size() != size_t(sprite.width) * size_t(sprite.height))
        __builtin_trap();
    return 0;
}
