#include "engine/Text.h"
#include "pge/FontSheet.h"
#include "pge/Headless.h"
#include <gtest/gtest.h>
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
    bool Sheet(char ch, int col, int row) { return sheet.GetPixel((ch - 32) % 16 * 8 + col, (ch - 32) / 16 * 8 + row).r; }
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
        // Umlauts keep their letter's advance; check mark, middle dot, sharp s with arrow, << as < with no-break space.
        {"\xC3\x84\xC3\xA4", 16}, {"\xE2\x9C\x93", 9}, {"\xC2\xB7", 4}, {"\xC3\x9F\xE2\x86\x92", 16}, {"\xC2\xAB\xC2\xA0", 9},
        // Anything else, the euro sign too, is a '?'.
        {"\x7F", q}, {"\n", q}, {"\xFF", q}, {"\x80\x80", 2 * q}, {"a\xC3", 8 + q}, {"\xE2\x82", q}, {"\xE2\x82\xAC", q},
    };
    for (const auto& [s, width] : cases) EXPECT_EQ(text::Width(app, s), width) << s;
    EXPECT_EQ(text::Width(app, "Wi", 3), 33);
}

// Glyphs as such are the font sheet's, at every scale and alignment in the reference pictures;
// here what the sheet lacks, and the '?' for what is no character.
TEST_F(TextDrawing, UmlautDotsHandMadeGlyphsAndQuestionMarks) {
    for (const char* bad : {"\n", "\xFF", "\xC0", "\x80"}) EXPECT_EQ(Drawn(bad), Drawn("?")) << bad;
    // Upper-case dots two font pixels above the cell, in columns 1, 2, 4, 5 ('A' starts at column 0).
    Drawn("\xC3\x84");
    for (int i = 0; i < 24; ++i) EXPECT_EQ(Set(100 + i % 8, 98 + i / 8), i / 8 == 2 ? Sheet('A', i % 8, 0) : i < 8 && (0x6C & (0x80 >> i))) << i;
    // The sharp s from its own rows, not a B.
    const uint8_t eszett[8] = {0x78, 0xCC, 0xD8, 0xCC, 0xC6, 0xCC, 0xD8, 0x00};
    Drawn("\xC3\x9F");
    for (int i = 0; i < 64; ++i) EXPECT_EQ(Set(100 + i % 8, 100 + i / 8), (eszett[i / 8] & (0x80 >> i % 8)) != 0);
    // The D-pad: a cross outlined, its arms' ends lit and its middle empty.
    Drawn("\xE2\x9C\x9A");
    EXPECT_TRUE(Set(100, 103) && Set(106, 103) && Set(103, 100) && Set(103, 106));
    EXPECT_FALSE(Set(103, 103) || Set(101, 101));
}

TEST_F(TextDrawing, OnePixelOutlineAtEveryScale) {
    // The middle dot is a 2 by 2 block at columns 1-2, rows 3-4: at scale 2, x 102..105, y 106..109.
    const pge::Pixel red(255, 0, 0, 255);
    app.Clear(pge::BLANK);
    text::DrawOutlined(app, 108, 100, "\xC2\xB7", kInk, red, 2, text::Align::Right); // 8 wide, resolved once
    for (int y = 98; y <= 114; ++y)
        for (int x = 98; x <= 110; ++x) {
            const bool inner = x >= 102 && x <= 105 && y >= 106 && y <= 109;
            const bool ring = x >= 101 && x <= 106 && y >= 105 && y <= 110;
            EXPECT_EQ(app.GetDrawTarget()->GetPixel(x, y), inner ? kInk : ring ? red : pge::BLANK) << x << "," << y;
        }
}

TEST(TextFit, WholeWhenItFitsElseCutBeforeDotsAtAnyLength) {
    Idle app;
    const std::string castle = "Burg am See";
    const int whole = text::Width(app, castle), dots = text::Width(app, "...");
    EXPECT_EQ(std::vector<bool>({text::Fits(app, castle, whole), text::Fits(app, castle, whole - 1), text::Fits(app, castle, 2 * whole, 2),
                                 text::Fits(app, castle, 2 * whole - 1, 2)}),
              std::vector<bool>({true, false, true, false}));
    EXPECT_EQ(text::Fit(app, castle, whole), castle);
    EXPECT_EQ(text::Fit(app, castle, whole - 1), "Burg am S...");
    // The dots follow the last letter, not a blank.
    EXPECT_EQ(text::Fit(app, castle, text::Width(app, "Burg am ") + dots), "Burg am...");
    EXPECT_EQ(text::Fit(app, castle, dots - 1), "...");
    // A megabyte of text is cut where a short one with the same beginning is.
    const std::string huge = castle + std::string(1 << 20, 'x');
    EXPECT_FALSE(text::Fits(app, huge, 200));
    EXPECT_EQ(text::Fit(app, huge, 200), text::Fit(app, castle + std::string(100, 'x'), 200));
}
