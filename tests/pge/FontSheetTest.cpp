#include "pge/FontSheet.h"

#include <gtest/gtest.h>

namespace {

bool Ink(const pge::Sprite& sheet, int code, int x, int y) {
    const int ox = ((code - 32) % 16) * 8;
    const int oy = ((code - 32) / 16) * 8;
    return sheet.GetPixel(ox + x, oy + y) == pge::Pixel(255, 255, 255, 255);
}

int InkCount(const pge::Sprite& sheet, int code) {
    int n = 0;
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) n += Ink(sheet, code, x, y);
    return n;
}

} // namespace

TEST(FontSheetLayout, SizeAndOnlyTwoPixelValues) {
    const pge::Sprite sheet = pge::BuildFontSheet();
    ASSERT_EQ(sheet.width, 128);
    ASSERT_EQ(sheet.height, 48);
    for (const pge::Pixel& p : sheet.pColData)
        EXPECT_TRUE(p == pge::Pixel(255, 255, 255, 255) || p.n == 0) << std::hex << p.n;
}

TEST(FontSheetLayout, GlyphsSitInTheirCells) {
    const pge::Sprite sheet = pge::BuildFontSheet();
    EXPECT_EQ(InkCount(sheet, ' '), 0);
    // Every visible character has ink in its own cell.
    for (int c = 33; c < 127; ++c) EXPECT_GT(InkCount(sheet, c), 0) << char(c);
    // The bar is one straight column, so the cell order (16 to a row) and the
    // column-wise bit walk must both be right for it to come out vertical.
    int barColumn = -1;
    for (int x = 0; x < 8; ++x)
        if (Ink(sheet, '|', x, 0)) barColumn = x;
    ASSERT_GE(barColumn, 0);
    for (int y = 0; y < 7; ++y) EXPECT_TRUE(Ink(sheet, '|', barColumn, y)) << y;
    // Underscore is a horizontal line at the bottom, nothing above it.
    int bottom = 0;
    for (int x = 0; x < 8; ++x) bottom += Ink(sheet, '_', x, 7);
    EXPECT_GE(bottom, 4);
    EXPECT_EQ(InkCount(sheet, '_'), bottom);
}

TEST(FontSheetLayout, DistinctLettersDiffer) {
    const pge::Sprite sheet = pge::BuildFontSheet();
    auto same = [&](int a, int b) {
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                if (Ink(sheet, a, x, y) != Ink(sheet, b, x, y)) return false;
        return true;
    };
    for (int a = 33; a < 127; ++a)
        for (int b = a + 1; b < 127; ++b) EXPECT_FALSE(same(a, b)) << char(a) << " " << char(b);
}
