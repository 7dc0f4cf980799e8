#include "game/Typing.h"

namespace torvane::typing {

std::string FromCode(uint16_t code) {
    if (code >= 32 && code <= 126) return std::string(1, static_cast<char>(code));
    for (const uint16_t latin1 : {0xC4, 0xD6, 0xDC, 0xDF, 0xE4, 0xF6, 0xFC})
        if (code == latin1) return {'\xC3', static_cast<char>((code & 63) | 128)};
    return {};
}

std::string FromKeys(const pge::PixelEngine& engine) {
    const auto pressed = [&](int k) { return engine.GetKey(pge::Key(k)).bPressed; };
    std::string text;
    const char a = engine.GetKey(pge::SHIFT).bHeld ? 'A' : 'a';
    for (int k = pge::A; k <= pge::Z; ++k)
        if (pressed(k)) text += static_cast<char>(a + (k - pge::A));
    for (int k = pge::K0; k <= pge::K9; ++k)
        if (pressed(k)) text += static_cast<char>('0' + (k - pge::K0));
    if (pressed(pge::SPACE)) text += ' ';
    return text;
}

} // namespace torvane::typing
