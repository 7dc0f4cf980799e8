#include "pge/SdlSubsystem.h"

#include <SDL.h>

namespace pge {

bool StartSdlSubsystem(uint32_t flags) {
    // Read when the first subsystem with events starts, so set before every start.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    return SDL_InitSubSystem(flags) == 0;
}

} // namespace pge
