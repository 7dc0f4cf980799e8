#include "engine/Text.h"

#include "engine/Canvas.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace adv::text {
namespace {

// Per code 32..127: low nibble the advance in pixels, high nibble the first used column.
constexpr uint8_t kSpacing[96] = {
    0x03, 0x25, 0x16, 0x08, 0x07, 0x08, 0x08, 0x04, 0x15, 0x15, 0x08, 0x07, 0x15, 0x07, 0x24, 0x08, // space to /
    0x08, 0x17, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x24, 0x15, 0x06, 0x07, 0x16, 0x17, // 0 to ?
    0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x17, 0x08, 0x08, 0x17, 0x08, 0x08, 0x08, // @ to O
    0x08, 0x08, 0x08, 0x08, 0x17, 0x08, 0x08, 0x08, 0x08, 0x17, 0x08, 0x15, 0x08, 0x15, 0x08, 0x08, // P to _
    0x24, 0x18, 0x17, 0x17, 0x17, 0x17, 0x17, 0x17, 0x17, 0x33, 0x17, 0x17, 0x33, 0x18, 0x17, 0x17, // ` to o
    0x17, 0x17, 0x17, 0x17, 0x07, 0x17, 0x17, 0x18, 0x18, 0x17, 0x17, 0x07, 0x33, 0x07, 0x08, 0x00, // p to 127
};

// Hand-made glyphs: one byte per row from the top, the high bit leftmost.
struct Glyph {
    uint8_t rows[8];
    int advance;
};
constexpr Glyph kDot = {{0x00, 0x00, 0x00, 0x60, 0x60, 0x00, 0x00, 0x00}, 4};
constexpr Glyph kDown = {{0x10, 0x10, 0x10, 0x10, 0x7C, 0x38, 0x10, 0x00}, 8};
constexpr Glyph kUp = {{0x10, 0x38, 0x7C, 0x10, 0x10, 0x10, 0x10, 0x00}, 8};
constexpr Glyph kRight = {{0x00, 0x08, 0x0C, 0xFE, 0x0C, 0x08, 0x00, 0x00}, 8};
constexpr Glyph kLeft = {{0x00, 0x20, 0x60, 0xFE, 0x60, 0x20, 0x00, 0x00}, 8};
constexpr Glyph kCheck = {{0x00, 0x03, 0x06, 0xCC, 0x78, 0x30, 0x00, 0x00}, 9};
constexpr Glyph kEszett = {{0x78, 0xCC, 0xD8, 0xCC, 0xC6, 0xCC, 0xD8, 0x00}, 8};
// A gamepad's D-pad, for hints that name its directions.
constexpr Glyph kDpad = {{0x38, 0x28, 0xEE, 0x82, 0xEE, 0x28, 0x38, 0x00}, 8};

enum class Accent { None, Lower, Upper };

struct Mapped {
    char ch = '?';
    const Glyph* special = nullptr;
    Accent accent = Accent::None;
};

// Reads one code point and moves pos behind it; bad lead bytes give '?'.
uint32_t NextCodepoint(const std::string& text, size_t& pos) {
    const uint8_t lead = uint8_t(text[pos++]);
    if (lead < 0x80) return lead;
    int more = 0;
    uint32_t cp = 0;
    if ((lead & 0xE0) == 0xC0) {
        more = 1;
        cp = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        more = 2;
        cp = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        more = 3;
        cp = lead & 0x07;
    } else {
        return '?';
    }
    for (; more > 0 && pos < text.size(); --more) cp = cp << 6 | (uint8_t(text[pos++]) & 0x3F);
    return cp;
}

Mapped Map(uint32_t cp) {
    if (cp >= 32 && cp <= 126) return {char(cp), nullptr, Accent::None};
    switch (cp) {
    case 160: return {' '};
    case 171: case 8249: return {'<'};
    case 187: case 8250: return {'>'};
    case 183: case 8226: return {'.', &kDot};
    case 196: return {'A', nullptr, Accent::Upper};
    case 214: return {'O', nullptr, Accent::Upper};
    case 220: return {'U', nullptr, Accent::Upper};
    case 228: return {'a', nullptr, Accent::Lower};
    case 246: return {'o', nullptr, Accent::Lower};
    case 252: return {'u', nullptr, Accent::Lower};
    case 215: return {'x'};
    case 223: return {'B', &kEszett};
    case 8211: case 8212: case 8722: return {'-'};
    case 8216: case 8217: return {'\''};
    case 8220: case 8221: case 8222: return {'"'};
    case 8592: return {'<', &kLeft};
    case 8593: return {'^', &kUp};
    case 8594: return {'>', &kRight};
    case 8595: return {'v', &kDown};
    case 10003: case 10004: return {'v', &kCheck};
    case 10010: return {'+', &kDpad};
    default: return {'?'};
    }
}

uint8_t Spacing(char ch) { return kSpacing[uint8_t(ch) - 32]; }

int Advance(const Mapped& m) { return m.special ? m.special->advance : Spacing(m.ch) & 0x0F; }

// Appends the top left corners of the lit font pixels of one character drawn at (x, y), in
// the order in which they are drawn; each stands for a scale by scale square.
void LitPixels(const pge::Sprite* font, int x, int y, const Mapped& m, int scale, std::vector<pge::vi2d>& lit) {
    if (m.special) {
        for (int row = 0; row < 8; ++row)
            for (int col = 0; col < 8; ++col)
                if (m.special->rows[row] & (0x80 >> col)) lit.push_back({x + col * scale, y + row * scale});
        return;
    }
    const int first = Spacing(m.ch) >> 4, advance = Spacing(m.ch) & 0x0F;
    if (font) {
        const int gx = ((m.ch - 32) % 16) * 8, gy = ((m.ch - 32) / 16) * 8;
        // Inside the sheet the pixels are read directly; at its edges GetPixel decides.
        const bool inside = gx >= 0 && gy >= 0 && gx + first + advance <= font->width && gy + 8 <= font->height;
        for (int row = 0; row < 8; ++row)
            for (int col = first; col < first + advance; ++col) {
                const pge::Pixel p = inside ? font->GetData()[size_t(gy + row) * size_t(font->width) + size_t(gx + col)]
                                            : font->GetPixel(gx + col, gy + row);
                if (p.r != 0) lit.push_back({x + (col - first) * scale, y + row * scale});
            }
    }
    if (m.accent == Accent::None) return;
    // Lower-case dots sit in the cell's top row, upper-case ones two font pixels above it.
    const bool upper = m.accent == Accent::Upper;
    const int columns[4] = {1, 2, upper ? 4 : 5, upper ? 5 : 6};
    const int dotY = upper ? y - 2 * scale : y;
    for (int column : columns) lit.push_back({x + (column - first) * scale, dotY});
}

// The lit pixels of a whole line from (0, 0), made once for the several passes of an outline.
const std::vector<pge::vi2d>& Lit(pge::PixelEngine& engine, const std::string& text, int scale) {
    thread_local std::vector<pge::vi2d> lit;
    lit.clear();
    const pge::Sprite* font = engine.GetFontSprite();
    int x = 0;
    for (size_t pos = 0; pos < text.size();) {
        const Mapped m = Map(NextCodepoint(text, pos));
        LitPixels(font, x, 0, m, scale, lit);
        x += Advance(m) * scale;
    }
    return lit;
}

// The squares of lit pixels at (x, y); at scale 1 the inline Blend, which is what FillRect
// comes to for a single pixel.
void Paint(pge::Sprite* target, const std::vector<pge::vi2d>& lit, int x, int y, int scale, pge::Pixel colour) {
    for (const pge::vi2d& p : lit)
        if (scale == 1)
            canvas::Blend(target, x + p.x, y + p.y, colour);
        else
            canvas::FillRect(target, x + p.x, y + p.y, scale, scale, colour);
}

// How often each pixel about a line of text is drawn: by the eight outline passes, and by
// the fill. Made once per text and kept, for labels come back every frame.
struct Stamp {
    int x0 = 0, y0 = 0, w = 0, h = 0; // the box, relative to the text's position
    std::vector<uint8_t> outline, fill;
};

const Stamp& StampOf(pge::PixelEngine& engine, const std::string& text, int scale) {
    struct Kept {
        const pge::Sprite* font;
        int scale;
        std::string text;
        Stamp stamp;
    };
    thread_local std::vector<Kept> kept;
    const pge::Sprite* font = engine.GetFontSprite();
    for (const Kept& k : kept)
        if (k.font == font && k.scale == scale && k.text == text) return k.stamp;
    if (kept.size() >= 64) kept.clear(); // labels come and go; a few dozen are in use at a time
    const std::vector<pge::vi2d>& lit = Lit(engine, text, scale);
    Stamp stamp;
    if (!lit.empty()) {
        int x0 = lit[0].x, y0 = lit[0].y, x1 = x0, y1 = y0;
        for (const pge::vi2d& p : lit) {
            x0 = std::min(x0, p.x), y0 = std::min(y0, p.y);
            x1 = std::max(x1, p.x + scale), y1 = std::max(y1, p.y + scale);
        }
        stamp = {x0 - 1, y0 - 1, x1 - x0 + 2, y1 - y0 + 2, {}, {}};
        stamp.outline.assign(size_t(stamp.w) * size_t(stamp.h), 0);
        stamp.fill.assign(stamp.outline.size(), 0);
        const auto cover = [&](std::vector<uint8_t>& counts, int x, int y) {
            for (int j = 0; j < scale; ++j)
                for (int i = 0; i < scale; ++i)
                    ++counts[size_t(y + j - stamp.y0) * size_t(stamp.w) + size_t(x + i - stamp.x0)];
        };
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                if (dx != 0 || dy != 0)
                    for (const pge::vi2d& p : lit) cover(stamp.outline, p.x + dx, p.y + dy);
        for (const pge::vi2d& p : lit) cover(stamp.fill, p.x, p.y);
    }
    kept.push_back({font, scale, text, std::move(stamp)});
    return kept.back().stamp;
}

// A colour composited n times over each possible channel value, for n up to 8: what the
// outline's overlapping passes do to a pixel, looked up instead of repeated.
struct Repeated {
    uint32_t colour = 0;
    uint8_t table[8][4][256];
};

const Repeated& RepeatedOf(pge::Pixel c) {
    thread_local std::vector<Repeated> kept;
    for (const Repeated& r : kept)
        if (r.colour == c.n) return r;
    if (kept.size() >= 4) kept.erase(kept.begin());
    kept.emplace_back();
    Repeated& r = kept.back();
    r.colour = c.n;
    for (int v = 0; v < 256; ++v) {
        const uint8_t u = uint8_t(v);
        pge::Pixel p(u, u, u, u);
        for (int n = 0; n < 8; ++n) {
            p = canvas::Over(p, c);
            r.table[n][0][v] = p.r, r.table[n][1][v] = p.g, r.table[n][2][v] = p.b, r.table[n][3][v] = p.a;
        }
    }
    return r;
}

// The pixel with the colour composited `times` times, exactly as Blend would do it.
pge::Pixel Repeat(pge::Pixel d, pge::Pixel c, int times, const Repeated* table) {
    if (times == 0 || c.a == 0) return d;
    if (c.a == 255) return c;
    if (table && times <= 8) {
        const auto& t = table->table[times - 1];
        return pge::Pixel(t[0][d.r], t[1][d.g], t[2][d.b], t[3][d.a]);
    }
    for (int k = 0; k < times; ++k) d = canvas::Over(d, c);
    return d;
}

} // namespace

bool Drawable(uint32_t codepoint) { return codepoint == '?' || Map(codepoint).ch != '?'; }

int Width(pge::PixelEngine&, const std::string& text, int scale) {
    int width = 0;
    for (size_t pos = 0; pos < text.size();) width += Advance(Map(NextCodepoint(text, pos)));
    return width * scale;
}

bool Fits(pge::PixelEngine&, const std::string& text, int maxWidth, int scale) {
    int width = 0;
    for (size_t pos = 0; pos < text.size();) {
        width += Advance(Map(NextCodepoint(text, pos))) * scale;
        if (width > maxWidth) return false;
    }
    return true;
}

std::string Fit(pge::PixelEngine& engine, const std::string& text, int maxWidth, int scale) {
    const std::string dots = "...";
    const int room = maxWidth - Width(engine, dots, scale);
    // Only what can be seen is measured: the walk ends at the first letter beyond maxWidth.
    size_t kept = 0;
    int width = 0;
    for (size_t pos = 0; pos < text.size();) {
        width += Advance(Map(NextCodepoint(text, pos))) * scale;
        if (width > maxWidth) {
            // The dots follow the last letter, not a blank.
            while (kept > 0 && text[kept - 1] == ' ') --kept;
            return text.substr(0, kept) + dots;
        }
        if (width <= room) kept = pos;
    }
    return text;
}

void Draw(pge::PixelEngine& engine, int x, int y, const std::string& text, pge::Pixel colour, int scale,
          Align align) {
    if (align == Align::Centre) x -= Width(engine, text, scale) / 2;
    if (align == Align::Right) x -= Width(engine, text, scale);
    Paint(engine.GetDrawTarget(), Lit(engine, text, scale), x, y, scale, colour);
}

void DrawOutlined(pge::PixelEngine& engine, int x, int y, const std::string& text, pge::Pixel colour,
                  pge::Pixel outline, int scale, Align align) {
    if (align == Align::Centre) x -= Width(engine, text, scale) / 2;
    if (align == Align::Right) x -= Width(engine, text, scale);
    pge::Sprite* target = engine.GetDrawTarget();
    if (!target) return;
    // Each pixel takes the outline as often as the passes reach it, then the fill: the
    // outline's colour is the same in every pass, so the order among them does not matter.
    const Stamp& stamp = StampOf(engine, text, scale);
    const bool translucent = outline.a != 0 && outline.a != 255;
    const Repeated* table = translucent ? &RepeatedOf(outline) : nullptr;
    const canvas::Rect b = canvas::Bounds(*target);
    const int i0 = std::max(0, b.x0 - (x + stamp.x0)), i1 = std::min(stamp.w, b.x1 - (x + stamp.x0));
    const int j0 = std::max(0, b.y0 - (y + stamp.y0)), j1 = std::min(stamp.h, b.y1 - (y + stamp.y0));
    for (int j = j0; j < j1; ++j) {
        pge::Pixel* row = target->GetData() + size_t(y + stamp.y0 + j) * size_t(target->width) + (x + stamp.x0);
        const uint8_t* outlines = stamp.outline.data() + size_t(j) * size_t(stamp.w);
        const uint8_t* fills = stamp.fill.data() + size_t(j) * size_t(stamp.w);
        for (int i = i0; i < i1; ++i) {
            if (outlines[i] == 0 && fills[i] == 0) continue;
            row[i] = Repeat(Repeat(row[i], outline, outlines[i], table), colour, fills[i], nullptr);
        }
    }
}

std::vector<std::string> Wrap(pge::PixelEngine& engine, const std::string& text, int maxWidth, int scale) {
    std::vector<std::string> lines;
    size_t lineStart = 0;
    for (;;) {
        const size_t lineEnd = std::min(text.find('\n', lineStart), text.size());
        std::string line;
        size_t wordStart = lineStart;
        for (;;) {
            const size_t wordEnd = std::min(text.find(' ', wordStart), lineEnd);
            const std::string word = text.substr(wordStart, wordEnd - wordStart);
            if (line.empty()) {
                line = word;
            } else if (Width(engine, line + " " + word, scale) <= maxWidth) {
                line += " " + word;
            } else {
                lines.push_back(line);
                line = word;
            }
            if (wordEnd >= lineEnd) break;
            wordStart = wordEnd + 1;
        }
        lines.push_back(line);
        if (lineEnd >= text.size()) break;
        lineStart = lineEnd + 1;
    }
    return lines;
}

} // namespace adv::text
