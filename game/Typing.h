#pragma once
// The characters that a key press types, shared by the high-score name field and the
// level editor; each field applies its own limits.
#include "pge/PixelEngine.h"

#include <cstdint>
#include <string>

namespace torvane::typing {

// The UTF-8 text of a raw key code: printable ASCII as it stands, and Ä Ö Ü ß ä ö ü,
// which arrive as one Latin-1 byte, as their two UTF-8 bytes; empty for any other code.
std::string FromCode(uint16_t code);
// What the key state typed in this frame, in this order: letters A to Z in the case
// of SHIFT, digits 0 to 9, and a blank for SPACE.
std::string FromKeys(const pge::PixelEngine& engine);

} // namespace torvane::typing
