// The title picture, 640 by 400: Torvane before his tower by the highland lake, the words
// "Der Vellmark" in a bevelled pixel face, and a calm foot for the key hints; and the icon.
#include "tools/paint/World.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace paint {

namespace {

// Keeps only the colours the picture uses, renumbered in order of their old index.
void Compact(Picture& p, Palette& pal) {
    std::map<int, int> to;
    for (uint8_t i : p.Indices()) to[i] = 0;
    Palette out;
    for (auto& [from, index] : to) index = out.Add(pal.colours[static_cast<size_t>(from)]);
    for (int y = 0; y < p.H(); ++y)
        for (int x = 0; x < p.W(); ++x) p.Set(x, y, to[p.At(x, y)]);
    pal = out;
}

// A 5 by 7 face for the title's letters, one string per row.
const std::map<char, std::array<const char*, 7>> kGlyphs = {
    {'D', {"11110", "10001", "10001", "10001", "10001", "10001", "11110"}},
    {'V', {"10001", "10001", "10001", "10001", "01010", "01010", "00100"}},
    {'a', {"00000", "00000", "01110", "00001", "01111", "10001", "01111"}},
    {'e', {"00000", "00000", "01110", "10001", "11111", "10000", "01110"}},
    {'k', {"10000", "10000", "10010", "10100", "11100", "10010", "10001"}},
    {'l', {"01100", "00100", "00100", "00100", "00100", "00100", "01110"}},
    {'m', {"00000", "00000", "11010", "10101", "10101", "10101", "10101"}},
    {'r', {"00000", "00000", "10110", "11001", "10000", "10000", "10000"}},
};

bool GlyphAt(const std::string& text, int col, int row) {
    const int ch = col / 6, cx = col % 6;
    if (col < 0 || row < 0 || row >= 7 || ch >= static_cast<int>(text.size()) || cx == 5) return false;
    const auto it = kGlyphs.find(text[static_cast<size_t>(ch)]);
    return it != kGlyphs.end() && it->second[static_cast<size_t>(row)][cx] == '1';
}

// The words in blocks of `cell` pixels: a gold ramp lit from the upper left, each block
// bevelled, a dark outline and a drop shadow to the lower right.
void DisplayText(Picture& p, const std::string& text, int x0, int y0, int cell, int gold, int dark) {
    const int cols = static_cast<int>(text.size()) * 6;
    const auto on = [&](int x, int y) {
        const int gx = x - x0, gy = y - y0;
        return gx >= 0 && gy >= 0 && GlyphAt(text, gx / cell, gy / cell);
    };
    const int w = cols * cell, h = 7 * cell;
    for (int y = y0 - 3; y < y0 + h + 6; ++y)
        for (int x = x0 - 3; x < x0 + w + 6; ++x) {
            if (on(x, y)) {
                const int bx = (x - x0) % cell, by = (y - y0) % cell;
                const bool up = !on(x, y - by - 1), left = !on(x - bx - 1, y);
                const bool down = !on(x, y - by + cell), right = !on(x - bx + cell, y);
                float t = 2.6f - static_cast<float>(y - y0) / h * 1.6f;
                if ((up && by < 2) || (left && bx < 2)) t = 4.0f;
                if ((down && by >= cell - 2) || (right && bx >= cell - 2)) t = 0.0f;
                p.Set(x, y, Dither(gold, 5, t, x, y));
            } else if (on(x - 1, y) || on(x + 1, y) || on(x, y - 1) || on(x, y + 1) || on(x - 2, y) || on(x, y - 2)) {
                p.Set(x, y, dark);
            } else if (on(x - 4, y - 4) || on(x - 3, y - 4) || on(x - 4, y - 3)) {
                p.Set(x, y, dark);
            }
        }
}

} // namespace

void PaintTitle(Picture& out, Palette& palette) {
    Landscape L = PaintLandscape(1);
    out = Enlarge(L.tower, 2);
    palette = L.palette;
    Compact(out, palette);
    const int runner = palette.Size();
    const Palette hero = RunnerPalette();
    palette.colours.insert(palette.colours.end(), hero.colours.begin(), hero.colours.end());
    const int gold = palette.Ramp({{120, 58, 24}, {214, 140, 52}, {255, 200, 96}, {255, 244, 190}}, 5);
    const int dark = palette.Add(pge::Pixel(40, 16, 6));

    // The hero, four times his size on the stage, on the meadow right of the tower, his feet above the calm foot.
    Picture figure(64, 64);
    adv::canvas::FillRect(figure.S(), 0, 0, 64, 64, Ink(runner));
    PaintRunner(figure, runner, Pose::Idle, 2, true, 32, 59);
    const Picture big = Enlarge(figure, 4);
    for (int y = 0; y < big.H(); ++y)
        for (int x = 0; x < big.W(); ++x)
            if (big.At(x, y) != runner) out.Set(470 - 32 * 4 + x, 318 - 60 * 4 + y, big.At(x, y));

    DisplayText(out, "Der Vellmark", (640 - (12 * 6 - 1) * 7) / 2, 26, 7, gold, dark);
}

void PaintIcon(Picture& out, Palette& pal) {
    const int s = out.W();
    const float u = static_cast<float>(s) / 32.0f; // one pixel of the 32-pixel design
    pal = Palette();
    pal.Add(pge::Pixel(0, 0, 0));                                                            // transparent
    const int outline = pal.Add(pge::Pixel(30, 18, 14));
    const int sky = pal.Ramp({{70, 110, 160}, {150, 180, 200}, {250, 210, 150}}, 6);
    const int hill = pal.Ramp({{40, 64, 44}, {90, 120, 64}}, 3);
    const int stone = pal.Ramp({{70, 56, 42}, {150, 118, 80}, {216, 178, 122}, {250, 226, 176}}, 7);
    const int red = pal.Add(pge::Pixel(198, 40, 30));
    const int inner = pal.Add(pge::Pixel(36, 26, 20));

    // A rounded tile of dusk sky with a green hill, the tower standing in it.
    IconTile(out, outline, [&](int x, int y, float fx, float fy) {
        const float hillY = 24.0f + std::sin(fx * 0.25f) * 1.5f;
        return fy > hillY ? IconShade(hill, 3, 2.0f - (fy - hillY) * 0.3f, x, y, u)
                          : IconShade(sky, 6, fy / 24.0f * 5.0f, x, y, u);
    });

    // The tower: a cylinder lit from the left, courses of stone where there is room for
    // them, the red line across, and the open top with the dark inside.
    const float cx = 16.0f * u, rx = 8.0f * u, ry = 2.2f * u, top = 9.0f * u, foot = 27.0f * u;
    for (int x = static_cast<int>(cx - rx); x < static_cast<int>(cx + rx) + 1; ++x) {
        const float n = (x + 0.5f - cx) / rx;
        if (std::fabs(n) >= 1.0f) continue;
        const float a = std::asin(n), c = std::cos(a);
        const float light = std::clamp(0.7f + 0.42f * std::cos(a + 0.55f), 0.5f, 1.15f);
        const float t = (light - 0.5f) / 0.65f * 5.0f + 0.5f;
        for (int y = static_cast<int>(top); y < static_cast<int>(foot + ry * c); ++y) {
            const float up = (foot + ry * c - (y + 0.5f)) / (3.0f * u);
            const int course = static_cast<int>(up);
            const float along = a * rx / (4.0f * u) + (course & 1) * 0.5f;
            const bool joint = u >= 2.0f && ((up - course) * 3.0f * u < 1.0f || (u >= 4.0f && (along - std::floor(along)) * 4.0f * u * c < 1.0f));
            out.Set(x, y, u >= 3.0f ? Dither(stone, 7, t - (joint ? 1.5f : 0.0f), x, y)
                                    : stone + std::clamp(static_cast<int>(std::lround(t - (joint ? 1.0f : 0.0f))), 0, 6));
        }
        const int ly = static_cast<int>(top + 5.0f * u + ry * c);
        for (int k = 0; k < std::max(static_cast<int>(u * 0.75f), 1); ++k) out.Set(x, ly + k, red);
    }
    adv::canvas::FillEllipse(out.S(), {cx, top}, rx, ry, Ink(stone + 6));
    adv::canvas::FillEllipse(out.S(), {cx, top + 0.15f * u}, rx * 0.76f, ry * 0.68f, Ink(inner));

    // Outline round the tower's silhouette.
    const Picture copy = out.Copy();
    for (int y = 1; y < s - 1; ++y)
        for (int x = 1; x < s - 1; ++x) {
            const auto tower = [&](int X, int Y) {
                const int v = copy.At(X, Y);
                return (v >= stone && v < stone + 7) || v == red || v == inner;
            };
            if (!tower(x, y) && (tower(x - 1, y) || tower(x + 1, y) || tower(x, y - 1)) && copy.At(x, y) != outline)
                out.Set(x, y, outline);
        }
}

} // namespace paint
