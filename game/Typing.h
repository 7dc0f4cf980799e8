#pragma once
// The keys of a text field, shared by the high-score name field and the level editor's
// name rows; each field applies its own limits.
#include "pge/PixelEngine.h"

#include <cstdint>
#include <string>

namespace torvane::typing {

// The UTF-8 text of a raw key code: printable ASCII as it stands, and the Latin-1 letters
// that the game's font draws (Ä Ö Ü ß ä ö ü) as their two UTF-8 bytes; empty for any other.
std::string FromCode(uint16_t code);
// What the key state typed in this frame, in this order: letters A to Z in the case
// of SHIFT, digits 0 to 9, and a blank for SPACE.
std::string FromKeys(const pge::PixelEngine& engine);

// What a text field is asked to do in one frame.
struct Keys {
    bool enter = false;
    bool escape = false;
    bool erase = false; // the last character
    std::string text;   // UTF-8, to be appended
};
// From a new raw press alone, whose serial lastSerial then takes, when there is one: it
// carries the character with its case. Else from the key state, where a shifted letter
// has no key of its own on some systems: ENTER, ESCAPE, BACK and FromKeys.
Keys Read(const pge::PixelEngine& engine, uint64_t& lastSerial);

} // namespace torvane::typing
