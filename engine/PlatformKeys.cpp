#include "engine/PlatformKeys.h"

#include "pge/PixelEngine.h"

namespace adv::platformkeys {
namespace {

pge::PixelEngine* s_pge = nullptr;

} // namespace

void Install(pge::PixelEngine* engine) { s_pge = engine; }

Modifiers Current() {
    if (!s_pge) return {};
    return {s_pge->GetKey(pge::SHIFT).bHeld, s_pge->GetKey(pge::CTRL).bHeld};
}

KeyPress LastPress() { return {}; }

void SetLogging(bool) {}

void IgnoreKeyRepeat(bool) {}

} // namespace adv::platformkeys
