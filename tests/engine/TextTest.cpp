#include "engine/Text.h"

#include "pge/FontSheet.h"
#include "pge/Headless.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

namespace text = adv::text;
const pge::Pixel kInk(255, 255, 255, 255);

class Idle : public pge::PixelEngine {
public:
    bool OnUserCreate() override { return true; }
    bool OnUserUpdate(float) override { return true; }
};

// A running engine; each case draws at (100, 100) on a cleared target.
class TextDrawing : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(run.Create()); }
    std::vector<pge::Pixel> Drawn(const std::string& s, int scale = 1, text::Align align = text::Align::Left, int x = 100) {
        app.Clear(pge::BLANK);
        text::Draw(app, x, 100, s, kInk, scale, align);
        return app.GetDrawTarget()->pColData;
    }
    bool Set(int x, int y) { return app.GetDrawTarget()->GetPixel(x, y) != pge::BLANK; }
    // Ink of an ASCII glyph's cell on the font sheet.
    bool Sheet(char ch, int col, int row) {
        return sheet.GetPixel(((ch - 32) % 16) * 8 + col, ((ch - 32) / 16) * 8 + row).r != 0;
    }

    Idle app;
    pge::Headless run{app};
    const pge::Sprite sheet = pge::BuildFontSheet();
};

} // namespace

TEST(TextWidth, AdvancesAndInvalidUtf8) {
    Idle app;
    const int q = text::Width(app, "?");
    const std::pair<std::string, int> cases[] = {
        {"", 0}, {"i", 3}, {"W", 8}, {"Wi", 11}, {"one two", 46}, // 7+7+7 + 3 + 7+8+7
        {"\xC3\x84\xC3\xA4", 16},     // umlauts keep their letter's advance
        {"\xE2\x9C\x93", 9},          // check mark
        {"\xC2\xB7", 4},              // middle dot
        {"\xC3\x9F\xE2\x86\x92", 16}, // sharp s, arrow
        {"\xC2\xAB\xC2\xA0", 9},      // << as <, no-break space
        {"\x7F", q}, {"\n", q}, {"\xFF", q}, {"\x80\x80", 2 * q}, {"a\xC3", 8 + q}, {"\xE2\x82", q},
        {"\xE2\x82\xAC", q}, // the euro sign has no glyph
    };
    for (const auto& [s, width] : cases) EXPECT_EQ(text::Width(app, s), width) << s;
    EXPECT_EQ(text::Width(app, "Wi", 3), 33);
}

TEST_F(TextDrawing, GlyphsMatchTheFontSheetAtEveryScaleAndAlignment) {
    // 'H' (first column 0, advance 8) at x 100; 'i' (first column 3, advance 3) at x 108.
    const auto hi = Drawn("Hi");
    int expected = 0;
    for (int row = 0; row < 8; ++row) {
        for (int col = 0; col < 8; ++col) {
            EXPECT_EQ(Set(100 + col, 100 + row), Sheet('H', col, row)) << col << "," << row;
            expected += Sheet('H', col, row) + (col >= 3 && col < 6 && Sheet('i', col, row));
            if (col >= 3 && col < 6) {
                EXPECT_EQ(Set(105 + col, 100 + row), Sheet('i', col, row)) << col << "," << row;
            }
        }
    }
    EXPECT_EQ(size_t(expected), hi.size() - size_t(std::count(hi.begin(), hi.end(), pge::BLANK)));

    const auto left = Drawn("A", 2);
    for (int row = 0; row < 16; ++row)
        for (int col = 0; col < 16; ++col) EXPECT_EQ(Set(100 + col, 100 + row), Sheet('A', col / 2, row / 2));
    // 16 wide at scale 2: right-aligned at 116 and centred at 108 land on 100.
    EXPECT_EQ(Drawn("A", 2, text::Align::Right, 116), left);
    EXPECT_EQ(Drawn("A", 2, text::Align::Centre, 108), left);
    EXPECT_EQ(Drawn("", 1, text::Align::Centre), Drawn("", 1, text::Align::Right));
    for (const char* bad : {"\n", "\xFF", "\xC0", "\x80"}) EXPECT_EQ(Drawn(bad), Drawn("?")) << bad;
}

TEST_F(TextDrawing, UmlautDotsAndHandMadeGlyphs) {
    // Upper-case dots two font pixels above the cell, in columns 1, 2, 4, 5 ('A' starts at column 0).
    Drawn("\xC3\x84");
    for (int col = 0; col < 8; ++col) {
        EXPECT_EQ(Set(100 + col, 98), col == 1 || col == 2 || col == 4 || col == 5) << col;
        for (int row = 0; row < 8; ++row) EXPECT_EQ(Set(100 + col, 100 + row), Sheet('A', col, row));
    }
    EXPECT_FALSE(Set(101, 99));
    // Lower-case dots in the top row, columns 1, 2, 5, 6 less the first column of 'a' (1).
    Drawn("\xC3\xA4");
    for (int col = 0; col < 7; ++col)
        EXPECT_EQ(Set(100 + col, 100), col == 0 || col == 1 || col == 4 || col == 5 || Sheet('a', col + 1, 0)) << col;

    // The sharp s from its own rows; the check mark twice, advancing 9.
    const uint8_t eszett[8] = {0x78, 0xCC, 0xD8, 0xCC, 0xC6, 0xCC, 0xD8, 0x00};
    const uint8_t check[8] = {0x00, 0x03, 0x06, 0xCC, 0x78, 0x30, 0x00, 0x00};
    Drawn("\xC3\x9F");
    for (int row = 0; row < 64; ++row) EXPECT_EQ(Set(100 + row % 8, 100 + row / 8), (eszett[row / 8] & (0x80 >> row % 8)) != 0);
    Drawn("\xE2\x9C\x93\xE2\x9C\x93");
    for (int row = 0; row < 64; ++row) {
        const bool ink = (check[row / 8] & (0x80 >> row % 8)) != 0;
        EXPECT_EQ(Set(100 + row % 8, 100 + row / 8), ink);
        EXPECT_EQ(Set(109 + row % 8, 100 + row / 8), ink);
    }
}

TEST_F(TextDrawing, OnePixelOutlineAndTranslucentInk) {
    // The middle dot is a 2 by 2 block at columns 1-2, rows 3-4: at scale 2, x 102..105, y 106..109.
    const pge::Pixel red(255, 0, 0, 255);
    const auto outlined = [&](int x, text::Align align) {
        app.Clear(pge::BLANK);
        text::DrawOutlined(app, x, 100, "\xC2\xB7", kInk, red, 2, align);
        return app.GetDrawTarget()->pColData;
    };
    const auto left = outlined(100, text::Align::Left);
    EXPECT_EQ(outlined(108, text::Align::Right), left); // alignment resolved once: 8 wide
    for (int y = 98; y <= 114; ++y)
        for (int x = 98; x <= 110; ++x) {
            const bool inner = x >= 102 && x <= 105 && y >= 106 && y <= 109;
            const bool ring = x >= 101 && x <= 106 && y >= 105 && y <= 110;
            EXPECT_EQ(app.GetDrawTarget()->GetPixel(x, y), inner ? kInk : ring ? red : pge::BLANK) << x << "," << y;
        }
    EXPECT_EQ(std::count(left.begin(), left.end(), pge::BLANK), long(left.size()) - 36);

    app.Clear(pge::Pixel(0, 0, 0, 255));
    text::Draw(app, 100, 100, "\xC2\xB7", pge::Pixel(255, 255, 255, 128));
    EXPECT_EQ(app.GetDrawTarget()->GetPixel(101, 103), pge::Pixel(128, 128, 128, 255));
}

TEST(TextWrap, GreedyLinesAndEdgeCases) {
    Idle app;
    using Lines = std::vector<std::string>;
    EXPECT_EQ(text::Wrap(app, "one two three", 46), (Lines{"one two", "three"}));
    EXPECT_EQ(text::Wrap(app, "one two three", 45), (Lines{"one", "two", "three"}));
    EXPECT_EQ(text::Wrap(app, "one two three", 84), (Lines{"one two three"}));
    EXPECT_EQ(text::Wrap(app, "one two three", 92, 2), (Lines{"one two", "three"}));
    EXPECT_EQ(text::Wrap(app, "x enormous y", 10), (Lines{"x", "enormous", "y"}));
    EXPECT_EQ(text::Wrap(app, "a\n\nb", 100), (Lines{"a", "", "b"}));
    EXPECT_EQ(text::Wrap(app, "ab\n", 100), (Lines{"ab", ""}));
    EXPECT_EQ(text::Wrap(app, "", 100), (Lines{""}));
    EXPECT_EQ(text::Wrap(app, "a  b", 100), (Lines{"a  b"}));
}
