// UTF-8 text of any bytes measured, drawn and wrapped on a headless engine. The first
// four bytes choose the position, the scale and the width to wrap at. Of the rest, up to
// 320 bytes are measured and wrapped, more than the game's longest paragraph, and as many
// drawn as make a line across the whole screen at that scale: short enough that many
// texts are tried a second.
#include "engine/Text.h"
#include "pge/Headless.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace {

struct Screen : pge::PixelEngine {
    bool OnUserCreate() override { return true; }
};

Screen& Engine() {
    static Screen s_screen;
    static pge::Headless s_run(s_screen);
    static const bool s_created = s_run.Create();
    (void)s_created;
    return s_screen;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) return 0;
    Screen& engine = Engine();
    const int x = int(int8_t(data[0])) * 6;
    const int y = int(int8_t(data[1])) * 4;
    const int scale = 1 + data[2] % 4;
    const int maxWidth = int(data[3]) * 3 - 40;
    const std::string text(reinterpret_cast<const char*>(data + 4), std::min<size_t>(size - 4, 320));
    const int width = adv::text::Width(engine, text, scale);
    if (width < 0) __builtin_trap();
    const auto align = static_cast<adv::text::Align>(data[2] / 4 % 3);
    const std::string line = text.substr(0, size_t(640 / (8 * scale)));
    adv::text::Draw(engine, x, y, line, pge::Pixel(200, 180, 20), scale, align);
    adv::text::DrawOutlined(engine, x, y + 20, line, pge::WHITE, pge::Pixel(0, 0, 0, 128), scale, align);
    const std::vector<std::string> lines = adv::text::Wrap(engine, text, maxWidth, scale);
    if (lines.empty()) __builtin_trap();
    return 0;
}
