// The paletted PNG reader on any bytes, then the palette cycles on what it read.
#include "engine/IndexedImage.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    adv::IndexedImage image;
    if (!image.Decode(data, size)) return 0;
    // A loaded image has every pixel it promises.
    if (image.width < 1 || image.height < 1 || image.pixels.size() != size_t(image.width) * size_t(image.height))
        __builtin_trap();
    adv::PaletteCycle cycle;
    cycle.start = size > 8 ? data[8] : 0;
    cycle.end = size > 9 ? data[9] : 255;
    cycle.fps = 4.0f;
    cycle.direction = -1;
    const std::array<pge::Pixel, 256> palette = image.CycledPalette({cycle}, 1.75f);
    static volatile uint32_t s_sum;
    for (uint8_t index : image.pixels) s_sum = s_sum + palette[index].r;
    return 0;
}
