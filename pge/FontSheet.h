#pragma once
// The built-in 8 by 8 font: 96 glyphs for the codes 32 to 127 on one 128 by 48 sheet.
#include "pge/Sprite.h"

#include <vector>

namespace pge {

inline constexpr int kFontSheetWidth = 128;
inline constexpr int kFontSheetHeight = 48;

// Code c (32..127) lies at x = ((c - 32) % 16) * 8, y = ((c - 32) / 16) * 8.
// Set pixels are opaque white, the rest fully transparent black. Needs no graphics card.
Sprite BuildFontSheet();
// The sheet's pixels, row by row: the same for every engine, so decoded once.
const std::vector<Pixel>& FontSheetPixels();

} // namespace pge
