#include "game/Typing.h"

#include "engine/PlatformKeys.h"
#include "engine/Text.h"

namespace torvane::typing {

std::string FromCode(uint16_t code) {
    if (code >= 32 && code <= 126) return std::string(1, static_cast<char>(code));
    // The Latin-1 letters, but for × and ÷, where the font has a glyph for them.
    if (code < 0xC0 || code > 0xFF || code == 0xD7 || code == 0xF7 || !adv::text::Drawable(code)) return {};
    return {static_cast<char>(0xC0 | (code >> 6)), static_cast<char>(0x80 | (code & 0x3F))};
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

Keys Read(const pge::PixelEngine& engine, uint64_t& lastSerial) {
    Keys keys;
    const adv::platformkeys::KeyPress raw = adv::platformkeys::LastPress();
    if (raw.serial != lastSerial) {
        lastSerial = raw.serial;
        keys.enter = raw.code == 13;
        keys.escape = raw.code == 27;
        keys.erase = raw.code == 8 || raw.code == 127;
        keys.text = FromCode(raw.code);
        return keys;
    }
    const auto pressed = [&](pge::Key k) { return engine.GetKey(k).bPressed; };
    keys.enter = pressed(pge::ENTER);
    keys.escape = pressed(pge::ESCAPE);
    keys.erase = pressed(pge::BACK);
    keys.text = FromKeys(engine);
    return keys;
}

} // namespace torvane::typing
