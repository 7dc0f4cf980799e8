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

KeyPress LastPress() {
    if (!s_pge) return {};
    const pge::TypedKey& typed = s_pge->GetTypedKey();
    // A character beyond the 16 bits of the record still counts as a press, of code 0.
    return {uint16_t(typed.code <= 0xFFFF ? typed.code : 0), typed.ctrl, false, typed.serial};
}

void SetLogging(bool) {}

void IgnoreKeyRepeat(bool) {}

} // namespace adv::platformkeys
