#pragma once
// Keyboard facts beyond the frame framework's key state: held modifiers and the last
// raw key press. On Linux the raw press is never reported (a record of zeros), and
// callers fall back on the framework's key state.
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
    uint16_t code = 0;
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
// No effect on Linux.
void IgnoreKeyRepeat(bool on);

} // namespace adv::platformkeys
