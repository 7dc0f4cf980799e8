// The characters a key press types, as the name field and the editor both take them.
#include "game/Typing.h"

#include <gtest/gtest.h>

#include <utility>

namespace torvane {
namespace {

TEST(Typing, RawCodesArePrintableAsciiAndTheLettersTheFontDraws) {
    // Ä Ö Ü ß ä ö ü arrive as one Latin-1 byte and become UTF-8. Control codes and DEL are
    // keys of their own; letters the font has no glyph for, and signs it has that are no
    // letters (× « ·), type nothing.
    const std::pair<uint16_t, const char*> cases[] = {
        {' ', " "}, {'~', "~"}, {'q', "q"}, {0xC4, "Ä"}, {0xD6, "Ö"}, {0xDC, "Ü"}, {0xDF, "ß"}, {0xE4, "ä"},
        {0xF6, "ö"}, {0xFC, "ü"}, {0, ""}, {8, ""}, {13, ""}, {27, ""}, {31, ""}, {127, ""}, {0xC5, ""},
        {0xE9, ""}, {0xF1, ""}, {0xFF, ""}, {0x100, ""}, {0xD7, ""}, {0xAB, ""}, {0xB7, ""}};
    for (const auto& [code, typed] : cases) EXPECT_EQ(typing::FromCode(code), typed) << code;
}

} // namespace
} // namespace torvane
