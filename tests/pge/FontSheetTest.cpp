#include "pge/FontSheet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

// 16 glyphs of 8 by 8 to a row from the blank; white ink on transparent black, nothing else.
TEST(FontSheet, EachGlyphInItsCellAndAllDistinct) {
    const pge::Sprite sheet = pge::BuildFontSheet();
    ASSERT_EQ(sheet.width * 1000 + sheet.height, 128048);
    for (const pge::Pixel& p : sheet.pColData) EXPECT_TRUE(p == pge::Pixel(255, 255, 255, 255) || p.n == 0) << std::hex << p.n;
    const auto ink = [&](int code, int x, int y) { return sheet.GetPixel((code - 32) % 16 * 8 + x, (code - 32) / 16 * 8 + y).a != 0; };
    const auto rows = [&](int code) {
        std::string bits;
        for (int i = 0; i < 64; ++i) bits += ink(code, i % 8, i / 8) ? '#' : '.';
        return bits;
    };
    EXPECT_EQ(rows(' '), std::string(64, '.'));
    for (int a = 33; a < 127; ++a) {
        EXPECT_NE(rows(a), rows(' ')) << char(a);
        for (int b = a + 1; b < 127; ++b) EXPECT_NE(rows(a), rows(b)) << char(a) << " " << char(b);
    }
    // The bar is one straight column, so the cell order and the column-wise bit walk must both
    // be right for it to come out vertical; the underscore is a line along the bottom alone.
    int bar = 0;
    while (bar < 8 && !ink('|', bar, 0)) ++bar;
    for (int y = 0; y < 7; ++y) EXPECT_TRUE(bar < 8 && ink('|', bar, y)) << y;
    const std::string underscore = rows('_');
    EXPECT_EQ(underscore.substr(0, 56), std::string(56, '.'));
    EXPECT_GE(std::count(underscore.begin(), underscore.end(), '#'), 4);
}
