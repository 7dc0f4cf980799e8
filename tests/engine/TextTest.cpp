#include "engine/Text.h"

#include "pge/FontSheet.h"
#include "pge/Headless.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

namespace text = adv::text;

class Idle : public pge::PixelEngine {
public:
    bool OnUserCreate() override { return true; }
    bool OnUserUpdate(float) override { return true; }
};

const pge::Pixel kInk(255, 255, 255, 255);

// A running engine with a cleared 640 by 400 target; each test draws near (100, 100).
class TextDrawing : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(run.Create());
        app.Clear(pge::BLANK);
    }
    pge::Sprite& Target() { return *app.GetDrawTarget(); }
    bool Set(int x, int y) { return Target().GetPixel(x, y) != pge::BLANK; }
    int CountSet() {
        int n = 0;
        for (const pge::Pixel& p : Target().pColData) n += p != pge::BLANK;
        return n;
    }
    std::vector<pge::Pixel> Snapshot() { return Target().pColData; }

    Idle app;
    pge::Headless run{app};
};

// Expected ink of an ASCII glyph from the sheet, trimmed to columns [first, first + advance).
bool SheetInk(const pge::Sprite& sheet, char ch, int col, int row) {
    return sheet.GetPixel(((ch - 32) % 16) * 8 + col, ((ch - 32) / 16) * 8 + row).r != 0;
}

} // namespace

TEST(TextWidth, AdvancesFromTheSpacingTable) {
    Idle app;
    EXPECT_EQ(text::Width(app, "", 1), 0);
    EXPECT_EQ(text::Width(app, "i", 1), 3);
    EXPECT_EQ(text::Width(app, "W", 1), 8);
    EXPECT_EQ(text::Width(app, "Wi", 1), 11);
    EXPECT_EQ(text::Width(app, "Wi", 3), 33);
    EXPECT_EQ(text::Width(app, "one two", 1), 46); // 7+7+7 + 3 + 7+8+7
    EXPECT_EQ(text::Width(app, "\xC3\x84\xC3\xA4", 1), 16);     // umlauts keep their letter's advance
    EXPECT_EQ(text::Width(app, "\xE2\x9C\x93", 1), 9);          // check mark
    EXPECT_EQ(text::Width(app, "\xC2\xB7", 1), 4);              // middle dot
    EXPECT_EQ(text::Width(app, "\xC3\x9F\xE2\x86\x92", 1), 16); // sharp s, arrow
    EXPECT_EQ(text::Width(app, "\xC2\xAB\xC2\xA0", 1), 9);      // << as <, no-break space
    EXPECT_EQ(text::Width(app, "\x7F", 1), 7);                  // outside 32..126: '?'
}

TEST(TextWidth, InvalidUtf8BecomesQuestionMarks) {
    Idle app;
    const int q = text::Width(app, "?", 1);
    EXPECT_EQ(text::Width(app, "\n", 1), q);
    EXPECT_EQ(text::Width(app, "\xFF", 1), q);
    EXPECT_EQ(text::Width(app, "\x80\x80", 1), 2 * q); // stray continuation bytes
    EXPECT_EQ(text::Width(app, "a\xC3", 1), 8 + q);    // truncated at the end
    EXPECT_EQ(text::Width(app, "\xE2\x82", 1), q);
    EXPECT_EQ(text::Width(app, "\xE2\x82\xAC", 1), q); // the euro sign has no glyph
}

TEST_F(TextDrawing, AsciiMatchesTheFontSheetPixelForPixel) {
    const pge::Sprite sheet = pge::BuildFontSheet();
    text::Draw(app, 100, 100, "Hi", kInk, 1, text::Align::Left);
    // 'H' (first column 0, advance 8) at x 100; 'i' (first column 3, advance 3) at x 108.
    int expectedCount = 0;
    for (int row = 0; row < 8; ++row) {
        for (int col = 0; col < 8; ++col) {
            EXPECT_EQ(Set(100 + col, 100 + row), SheetInk(sheet, 'H', col, row)) << col << "," << row;
            expectedCount += SheetInk(sheet, 'H', col, row);
        }
        for (int col = 3; col < 6; ++col) {
            EXPECT_EQ(Set(108 + col - 3, 100 + row), SheetInk(sheet, 'i', col, row)) << col << "," << row;
            expectedCount += SheetInk(sheet, 'i', col, row);
        }
    }
    EXPECT_GT(expectedCount, 0);
    EXPECT_EQ(CountSet(), expectedCount);
}

TEST_F(TextDrawing, ScaleMakesBlocksAndAlignmentShifts) {
    const pge::Sprite sheet = pge::BuildFontSheet();
    text::Draw(app, 100, 100, "A", kInk, 2, text::Align::Left);
    for (int row = 0; row < 16; ++row)
        for (int col = 0; col < 16; ++col)
            EXPECT_EQ(Set(100 + col, 100 + row), SheetInk(sheet, 'A', col / 2, row / 2)) << col << "," << row;
    const std::vector<pge::Pixel> left = Snapshot();

    // "A" is 16 wide at scale 2: right-aligned at 116 and centred at 108 land on 100.
    app.Clear(pge::BLANK);
    text::Draw(app, 116, 100, "A", kInk, 2, text::Align::Right);
    EXPECT_EQ(Snapshot(), left);
    app.Clear(pge::BLANK);
    text::Draw(app, 108, 100, "A", kInk, 2, text::Align::Centre);
    EXPECT_EQ(Snapshot(), left);

    app.Clear(pge::BLANK);
    for (text::Align a : {text::Align::Left, text::Align::Centre, text::Align::Right})
        text::Draw(app, 100, 100, "", kInk, 1, a);
    EXPECT_EQ(CountSet(), 0);
}

TEST_F(TextDrawing, UmlautDotsAndHandMadeGlyphs) {
    const pge::Sprite sheet = pge::BuildFontSheet();
    // Upper-case dots two font pixels above the cell, in columns 1, 2, 4, 5 ('A' starts at column 0).
    text::Draw(app, 100, 100, "\xC3\x84", kInk, 1, text::Align::Left);
    for (int col = 0; col < 8; ++col) EXPECT_EQ(Set(100 + col, 98), col == 1 || col == 2 || col == 4 || col == 5);
    for (int row = 0; row < 8; ++row)
        for (int col = 0; col < 8; ++col) EXPECT_EQ(Set(100 + col, 100 + row), SheetInk(sheet, 'A', col, row));
    EXPECT_FALSE(Set(101, 99));
    EXPECT_FALSE(Set(101, 108));

    // Lower-case dots in the top row, columns 1, 2, 5, 6 less the first column of 'a' (1).
    app.Clear(pge::BLANK);
    text::Draw(app, 100, 100, "\xC3\xA4", kInk, 1, text::Align::Left);
    for (int col = 0; col < 8; ++col) {
        const bool dot = col == 0 || col == 1 || col == 4 || col == 5;
        EXPECT_EQ(Set(100 + col, 100), dot || (col < 8 && SheetInk(sheet, 'a', col + 1, 0))) << col;
    }
    EXPECT_FALSE(Set(100, 98));

    // The sharp s is drawn from its own rows, not as a B.
    const uint8_t eszett[8] = {0x78, 0xCC, 0xD8, 0xCC, 0xC6, 0xCC, 0xD8, 0x00};
    app.Clear(pge::BLANK);
    text::Draw(app, 100, 100, "\xC3\x9F", kInk, 1, text::Align::Left);
    bool differsFromB = false;
    for (int row = 0; row < 8; ++row)
        for (int col = 0; col < 8; ++col) {
            EXPECT_EQ(Set(100 + col, 100 + row), (eszett[row] & (0x80 >> col)) != 0) << col << "," << row;
            differsFromB |= Set(100 + col, 100 + row) != SheetInk(sheet, 'B', col, row);
        }
    EXPECT_TRUE(differsFromB);

    // The check mark advances 9: a following glyph starts at x + 9.
    const uint8_t check[8] = {0x00, 0x03, 0x06, 0xCC, 0x78, 0x30, 0x00, 0x00};
    app.Clear(pge::BLANK);
    text::Draw(app, 100, 100, "\xE2\x9C\x93\xE2\x9C\x93", kInk, 1, text::Align::Left);
    for (int row = 0; row < 8; ++row)
        for (int col = 0; col < 8; ++col) {
            EXPECT_EQ(Set(100 + col, 100 + row), (check[row] & (0x80 >> col)) != 0);
            EXPECT_EQ(Set(109 + col, 100 + row), (check[row] & (0x80 >> col)) != 0);
        }
}

TEST_F(TextDrawing, ControlCharactersAndBadBytesDrawAQuestionMark) {
    text::Draw(app, 100, 100, "?", kInk, 1, text::Align::Left);
    const std::vector<pge::Pixel> question = Snapshot();
    ASSERT_GT(CountSet(), 0);
    for (const std::string& s : {std::string("\n"), std::string("\xFF"), std::string("\xC0"), std::string("\x80")}) {
        app.Clear(pge::BLANK);
        text::Draw(app, 100, 100, s, kInk, 1, text::Align::Left);
        EXPECT_EQ(Snapshot(), question);
    }
}

TEST_F(TextDrawing, TranslucentTextAndOnePixelOutline) {
    // The middle dot is a hand-made 2 by 2 block at columns 1-2, rows 3-4; at scale 2 it
    // covers x 102..105, y 106..109. The outline adds exactly one pixel around it.
    const pge::Pixel red(255, 0, 0, 255);
    text::DrawOutlined(app, 100, 100, "\xC2\xB7", kInk, red, 2, text::Align::Left);
    for (int y = 104; y <= 111; ++y)
        for (int x = 100; x <= 107; ++x) {
            const bool inner = x >= 102 && x <= 105 && y >= 106 && y <= 109;
            const bool ring = !inner && x >= 101 && x <= 106 && y >= 105 && y <= 110;
            const pge::Pixel expected = inner ? kInk : (ring ? red : pge::BLANK);
            EXPECT_EQ(Target().GetPixel(x, y), expected) << x << "," << y;
        }
    EXPECT_EQ(CountSet(), 36);

    // Right alignment is resolved once: the dot is 8 wide at scale 2.
    const std::vector<pge::Pixel> left = Snapshot();
    app.Clear(pge::BLANK);
    text::DrawOutlined(app, 108, 100, "\xC2\xB7", kInk, red, 2, text::Align::Right);
    EXPECT_EQ(Snapshot(), left);

    app.Clear(pge::Pixel(0, 0, 0, 255));
    text::Draw(app, 100, 100, "\xC2\xB7", pge::Pixel(255, 255, 255, 128), 1, text::Align::Left);
    EXPECT_EQ(Target().GetPixel(101, 103), pge::Pixel(128, 128, 128, 255));
}

TEST(TextWrap, GreedyLinesAndEdgeCases) {
    Idle app;
    using Lines = std::vector<std::string>;
    EXPECT_EQ(text::Wrap(app, "one two three", 46, 1), (Lines{"one two", "three"}));
    EXPECT_EQ(text::Wrap(app, "one two three", 45, 1), (Lines{"one", "two", "three"}));
    EXPECT_EQ(text::Wrap(app, "one two three", 84, 1), (Lines{"one two three"}));
    EXPECT_EQ(text::Wrap(app, "one two three", 92, 2), (Lines{"one two", "three"}));
    EXPECT_EQ(text::Wrap(app, "a\n\nb", 100, 1), (Lines{"a", "", "b"}));
    EXPECT_EQ(text::Wrap(app, "", 100, 1), (Lines{""}));
    EXPECT_EQ(text::Wrap(app, "x enormous y", 10, 1), (Lines{"x", "enormous", "y"}));
    EXPECT_EQ(text::Wrap(app, "a  b", 100, 1), (Lines{"a  b"}));
    EXPECT_EQ(text::Wrap(app, "a ", 100, 1), (Lines{"a "}));
    EXPECT_EQ(text::Wrap(app, "ab\n", 100, 1), (Lines{"ab", ""}));
}
