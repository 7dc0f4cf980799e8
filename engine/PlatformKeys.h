#pragma once
// Keyboard facts beyond the frame framework's key state: held modifiers and the last
// raw key press, the character a physical press typed (the window's key repeat types
// nothing). Before Install, and until a first key types something, the press is a record
// of zeros; callers then fall back on the framework's key state.
#include <cstdint>

namespace pge {
class PixelEngine;
}

namespace adv::platformkeys {

struct Modifiers {
    bool shift = false;
    bool ctrl = false;
};

struct KeyPress {
    uint16_t code = 0; // the character's code point: 13 Enter, 27 Escape, 8 Backspace, 127 Delete
    bool ctrl = false;
    bool command = false;
    uint64_t serial = 0; // a different value than last seen means a new press
};

void Install(pge::PixelEngine* engine);
// Both false before Install.
Modifiers Current();
KeyPress LastPress();
// No effect on Linux.
void SetLogging(bool on);
// No effect on Linux, where a key's repeat never counts as a press.
void IgnoreKeyRepeat(bool on);

} // namespace adv::platformkeys
