// The characters a key press types, as the name field and the editor both take them.
#include "game/Typing.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(Typing, RawCodesArePrintableAsciiAndTheLettersTheFontDraws) {
    EXPECT_EQ(typing::FromCode(' '), " ");
    EXPECT_EQ(typing::FromCode('~'), "~");
    EXPECT_EQ(typing::FromCode('q'), "q");
    // Control codes and DEL type nothing: they are keys of their own.
    for (uint16_t code : {0, 8, 13, 27, 31, 127}) EXPECT_EQ(typing::FromCode(code), "") << code;
    // Ä Ö Ü ß ä ö ü arrive as one Latin-1 byte and become UTF-8.
    EXPECT_EQ(typing::FromCode(0xC4), "Ä");
    EXPECT_EQ(typing::FromCode(0xD6), "Ö");
    EXPECT_EQ(typing::FromCode(0xDC), "Ü");
    EXPECT_EQ(typing::FromCode(0xDF), "ß");
    EXPECT_EQ(typing::FromCode(0xE4), "ä");
    EXPECT_EQ(typing::FromCode(0xF6), "ö");
    EXPECT_EQ(typing::FromCode(0xFC), "ü");
    // Letters the font has no glyph for, and signs it has that are no letters (× « ·), type nothing.
    for (uint16_t code : {0xC5, 0xE9, 0xF1, 0xFF, 0x100, 0xD7, 0xAB, 0xB7}) EXPECT_EQ(typing::FromCode(code), "") << code;
}

} // namespace
} // namespace torvane
