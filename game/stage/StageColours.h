#pragma once
// Colours and alpha rounding shared by everything the stage draws.
#include "pge/Pixel.h"

#include <algorithm>
#include <cstdint>

namespace torvane::stage {

inline constexpr pge::Pixel kAccent(224, 135, 79);
inline constexpr pge::Pixel kTextDark(0, 0, 0, 150);
inline constexpr pge::Pixel kWood(122, 80, 46);
inline constexpr pge::Pixel kWoodLight(168, 118, 70);
inline constexpr pge::Pixel kWoodDark(70, 44, 26);

// An opacity of 0 to 1 as an alpha byte, rounded.
inline uint8_t Alpha(float f) { return static_cast<uint8_t>(std::clamp(f * 255.0f + 0.5f, 0.0f, 255.0f)); }

} // namespace torvane::stage
