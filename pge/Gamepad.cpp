#include "pge/Gamepad.h"

#include "pge/SdlSubsystem.h"

#include <SDL.h>

#include <algorithm>
#include <cstdio>

namespace pge {
namespace {

constexpr Sint16 kAxisMax = 32767;
constexpr Sint16 kAxisMin = -32768;
constexpr int kPressedTravel = int(kPadPressed * kAxisMax);

// The SDL button behind each of ours that is a button; the triggers and directions are
// read apart.
constexpr SDL_GameControllerButton kButtons[] = {
    SDL_CONTROLLER_BUTTON_A,            SDL_CONTROLLER_BUTTON_B,         SDL_CONTROLLER_BUTTON_X,
    SDL_CONTROLLER_BUTTON_Y,            SDL_CONTROLLER_BUTTON_BACK,      SDL_CONTROLLER_BUTTON_START,
    SDL_CONTROLLER_BUTTON_LEFTSHOULDER, SDL_CONTROLLER_BUTTON_RIGHTSHOULDER,
};
constexpr SDL_GameControllerButton kDpad[] = {SDL_CONTROLLER_BUTTON_DPAD_UP, SDL_CONTROLLER_BUTTON_DPAD_DOWN,
                                              SDL_CONTROLLER_BUTTON_DPAD_LEFT, SDL_CONTROLLER_BUTTON_DPAD_RIGHT};

SDL_GameController* Controller(void* p) { return static_cast<SDL_GameController*>(p); }

// Starts an SDL subsystem for pads. Their state is read by polling: queued events would pile
// up unread.
bool StartSubsystem(Uint32 flags) {
    if (!StartSdlSubsystem(flags)) return false;
    SDL_GameControllerEventState(SDL_IGNORE);
    SDL_JoystickEventState(SDL_IGNORE);
    return true;
}

// Which buttons of a pad are down, the stick folded into the D-pad.
void Read(SDL_GameController* pad, bool held[PAD_BUTTONS]) {
    for (size_t i = 0; i < std::size(kButtons); ++i) held[PAD_A + i] = SDL_GameControllerGetButton(pad, kButtons[i]) != 0;
    held[PAD_LT] = SDL_GameControllerGetAxis(pad, SDL_CONTROLLER_AXIS_TRIGGERLEFT) > kPressedTravel;
    held[PAD_RT] = SDL_GameControllerGetAxis(pad, SDL_CONTROLLER_AXIS_TRIGGERRIGHT) > kPressedTravel;
    const int x = SDL_GameControllerGetAxis(pad, SDL_CONTROLLER_AXIS_LEFTX);
    const int y = SDL_GameControllerGetAxis(pad, SDL_CONTROLLER_AXIS_LEFTY);
    const bool stick[4] = {y < -kPressedTravel, y > kPressedTravel, x < -kPressedTravel, x > kPressedTravel};
    for (size_t i = 0; i < 4; ++i) held[PAD_UP + i] = stick[i] || SDL_GameControllerGetButton(pad, kDpad[i]) != 0;
}

} // namespace

Gamepads::~Gamepads() { Close(); }

bool Gamepads::Open() {
    if (open) return true;
    if (!StartSubsystem(SDL_INIT_GAMECONTROLLER)) {
        std::fprintf(stderr, "[pge] Keine Gamepads: %s\n", SDL_GetError());
        return false;
    }
    open = true;
    return true;
}

void Gamepads::Close() {
    if (!open) return;
    for (const Pad& pad : pads) SDL_GameControllerClose(Controller(pad.controller));
    pads.clear();
    playing = -1;
    SDL_QuitSubSystem(SDL_INIT_GAMECONTROLLER);
    open = false;
}

void Gamepads::Poll(bool held[PAD_BUTTONS]) {
    std::fill(held, held + PAD_BUTTONS, false);
    if (!open) return;
    // Reads every opened pad and looks for new ones.
    SDL_GameControllerUpdate();
    pads.erase(std::remove_if(pads.begin(), pads.end(),
                              [this](const Pad& pad) {
                                  if (SDL_GameControllerGetAttached(Controller(pad.controller))) return false;
                                  SDL_GameControllerClose(Controller(pad.controller));
                                  if (pad.id == playing) playing = -1;
                                  return true;
                              }),
               pads.end());
    const int count = SDL_NumJoysticks();
    for (int i = 0; i < count; ++i) {
        const SDL_JoystickID id = SDL_JoystickGetDeviceInstanceID(i);
        if (std::any_of(pads.begin(), pads.end(), [id](const Pad& pad) { return pad.id == id; })) continue;
        if (!SDL_IsGameController(i)) continue;
        if (SDL_GameController* pad = SDL_GameControllerOpen(i)) pads.push_back({id, pad});
    }

    bool state[PAD_BUTTONS];
    for (const Pad& pad : pads) {
        if (playing >= 0 && pad.id != playing) continue;
        Read(Controller(pad.controller), state);
        if (playing < 0 && std::none_of(state, state + PAD_BUTTONS, [](bool b) { return b; })) continue;
        // The first pad with a button down plays from this poll on.
        playing = pad.id;
        std::copy(state, state + PAD_BUTTONS, held);
        return;
    }
}

bool VirtualPad::Plug() {
    if (joystick) return true;
    // Its own hold on the joystick subsystem, so that it outlives the engine's pads.
    if (!StartSubsystem(SDL_INIT_JOYSTICK)) return false;
    SDL_VirtualJoystickDesc desc{};
    desc.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
    desc.type = SDL_JOYSTICK_TYPE_GAMECONTROLLER;
    desc.naxes = SDL_CONTROLLER_AXIS_MAX;
    desc.nbuttons = SDL_CONTROLLER_BUTTON_MAX;
    desc.name = "Virtuelles Gamepad";
    const int index = SDL_JoystickAttachVirtualEx(&desc);
    joystick = index < 0 ? nullptr : SDL_JoystickOpen(index);
    if (!joystick) {
        if (index >= 0) SDL_JoystickDetachVirtual(index);
        SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
        return false;
    }
    // A virtual axis starts in the middle of its range, which for a trigger is half pressed.
    Set(PAD_LT, false);
    Set(PAD_RT, false);
    return true;
}

void VirtualPad::Unplug() {
    if (!joystick) return;
    auto* stick = static_cast<SDL_Joystick*>(joystick);
    const SDL_JoystickID id = SDL_JoystickInstanceID(stick);
    SDL_JoystickClose(stick);
    joystick = nullptr;
    for (int i = 0; i < SDL_NumJoysticks(); ++i) {
        if (SDL_JoystickGetDeviceInstanceID(i) == id) {
            SDL_JoystickDetachVirtual(i);
            break;
        }
    }
    SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
}

void VirtualPad::Set(PadButton button, bool down) {
    if (!joystick) return;
    auto* stick = static_cast<SDL_Joystick*>(joystick);
    if (button == PAD_LT || button == PAD_RT) {
        SDL_JoystickSetVirtualAxis(stick,
                                   button == PAD_LT ? SDL_CONTROLLER_AXIS_TRIGGERLEFT : SDL_CONTROLLER_AXIS_TRIGGERRIGHT,
                                   down ? kAxisMax : kAxisMin);
    } else if (button >= PAD_UP && button <= PAD_RIGHT) {
        SDL_JoystickSetVirtualButton(stick, kDpad[button - PAD_UP], down ? 1 : 0);
    } else if (button < PAD_LT) {
        SDL_JoystickSetVirtualButton(stick, kButtons[button], down ? 1 : 0);
    }
}

void VirtualPad::Stick(float x, float y) {
    if (!joystick) return;
    auto* stick = static_cast<SDL_Joystick*>(joystick);
    const auto axis = [](float v) { return Sint16(std::clamp(v, -1.0f, 1.0f) * float(kAxisMax)); };
    SDL_JoystickSetVirtualAxis(stick, SDL_CONTROLLER_AXIS_LEFTX, axis(x));
    SDL_JoystickSetVirtualAxis(stick, SDL_CONTROLLER_AXIS_LEFTY, axis(y));
}

} // namespace pge
