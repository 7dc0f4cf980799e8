#pragma once
// Game controllers through SDL's GameController interface: SDL's mapping database names the
// buttons of whatever pad is plugged in. Pads plugged in before or during the run are found,
// and pads pulled out are let go, at each poll; the first pad that is used plays, and the
// others are ignored until it is pulled out. All calls come from the engine thread.
#include <cstddef>
#include <cstdint>
#include <vector>

namespace pge {

// A pad's buttons as the game reads them: the triggers count as buttons, and the left stick's
// four directions as the D-pad's.
enum PadButton : uint8_t {
    PAD_A, PAD_B, PAD_X, PAD_Y,
    PAD_BACK, PAD_START,
    PAD_LB, PAD_RB, PAD_LT, PAD_RT,
    PAD_UP, PAD_DOWN, PAD_LEFT, PAD_RIGHT,
    PAD_BUTTONS,
};

// The share of a stick's or a trigger's travel beyond which it counts as pressed; less is the
// dead zone, where a stick at rest drifts.
inline constexpr float kPadPressed = 0.5f;

class Gamepads {
public:
    Gamepads() = default;
    ~Gamepads();
    Gamepads(const Gamepads&) = delete;
    Gamepads& operator=(const Gamepads&) = delete;

    // Starts SDL's game controller subsystem, without SDL's handlers for SIGINT and SIGTERM.
    // False, with one line on stderr, if it does not start: the run goes on without pads.
    bool Open();
    // Lets go of every pad and stops the subsystem; nothing happens without Open.
    void Close();
    bool IsOpen() const { return open; }
    // Takes in the pads plugged in since the last poll, lets go of those pulled out, and
    // writes which buttons of the playing pad are down (all up while none plays).
    void Poll(bool held[PAD_BUTTONS]);
    // Pads plugged in, and whether one of them plays.
    size_t Count() const { return pads.size(); }
    bool Playing() const { return playing >= 0; }

private:
    struct Pad {
        int32_t id = -1;             // SDL's instance id
        void* controller = nullptr;  // SDL_GameController*
    };
    std::vector<Pad> pads; // in the order they were found
    int32_t playing = -1;  // instance id of the pad that plays
    bool open = false;
};

// A pad that exists only in SDL, for tests and scripted runs: the program plugs it in,
// presses its buttons and pulls it out. Needs the subsystem of Gamepads::Open.
class VirtualPad {
public:
    VirtualPad() = default;
    ~VirtualPad() { Unplug(); }
    VirtualPad(const VirtualPad&) = delete;
    VirtualPad& operator=(const VirtualPad&) = delete;

    // False if SDL refuses; the triggers start at rest.
    bool Plug();
    void Unplug();
    bool Plugged() const { return joystick != nullptr; }
    // Down or up; a trigger goes to its full travel or to rest.
    void Set(PadButton button, bool down);
    // The left stick, each axis from -1 (left, up) to 1.
    void Stick(float x, float y);

private:
    void* joystick = nullptr; // SDL_Joystick*
};

} // namespace pge
