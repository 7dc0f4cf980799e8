#pragma once
// SDL's subsystems, started by the framework (pads) and the engine (audio) alike.
#include <cstdint>

namespace pge {

// SDL_InitSubSystem of `flags` (SDL_INIT_AUDIO, SDL_INIT_JOYSTICK, ...); whether it started.
// SDL's own handlers for SIGINT and SIGTERM are never installed: they would turn both into a
// quit event that nobody reads, and the signals would no longer end the program.
bool StartSdlSubsystem(uint32_t flags);

} // namespace pge
