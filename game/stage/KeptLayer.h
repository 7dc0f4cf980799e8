#pragma once
// A drawing whose result is kept between frames. Everything the stage draws touches each pixel
// on its own: what it leaves there depends only on what it found there and on its inputs. So
// while the inputs stay, a pixel whose found value is unchanged gets the value it was left with
// last time, and only the pixels found changed are drawn again.
#include "engine/Canvas.h"
#include "pge/Sprite.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace torvane {

struct KeptLayer {
    bool valid = false;
    std::vector<int32_t> key; // the inputs, besides the pixels found
    adv::canvas::Rect rect;
    int32_t targetW = 0, targetH = 0;
    std::vector<pge::Pixel> before, after; // found and left, row by row of rect
};

namespace kept {

// Appends an input to a key, floats by their bits.
void Add(std::vector<int32_t>& key, float value);
void Add(std::vector<int32_t>& key, int32_t value);
void Add(std::vector<int32_t>& key, uint64_t value);

// Runs draw, which touches nothing outside rect, or does what it would do from the layer:
// the kept result copied back and, clipped, draw run again where the pixels found differ.
void Draw(pge::Sprite* target, KeptLayer& layer, const std::vector<int32_t>& key, adv::canvas::Rect rect,
          const std::function<void()>& draw);

} // namespace kept
} // namespace torvane
