#pragma once
// UTF-8 text in the framework's 8 by 8 font, proportionally spaced, with German umlauts,
// the sharp s, arrows, a check mark and a bullet drawn by hand. Drawn through
// canvas::Blend on the engine's draw target; (x, y) is the top left of the first glyph
// cell and scale a whole factor of pixel size.
#include "pge/PixelEngine.h"

#include <cstdint>
#include <string>
#include <vector>

namespace adv::text {

enum class Align { Left = 0, Centre = 1, Right = 2 };

int Width(pge::PixelEngine& engine, const std::string& text, int scale = 1);
// Whether the font has a glyph of its own for the code point, rather than "?".
bool Drawable(uint32_t codepoint);
void Draw(pge::PixelEngine& engine, int x, int y, const std::string& text, pge::Pixel colour, int scale = 1,
          Align align = Align::Left);
// The text with a one-pixel outline at all eight neighbours, whatever the scale.
void DrawOutlined(pge::PixelEngine& engine, int x, int y, const std::string& text, pge::Pixel colour,
                  pge::Pixel outline, int scale = 1, Align align = Align::Left);
// Whether the text is at most maxWidth wide; looks no further into it than maxWidth reaches.
bool Fits(pge::PixelEngine& engine, const std::string& text, int maxWidth, int scale = 1);
// The text as it stands when it fits maxWidth; else as many whole characters as fit
// together with "..." behind them, blanks before the dots dropped. Looks no further into
// the text than maxWidth reaches, so a text of any length costs only what can be shown.
std::string Fit(pge::PixelEngine& engine, const std::string& text, int maxWidth, int scale = 1);
// Splits at line feeds, then greedily at single spaces so that each line fits maxWidth;
// a word wider than that stands alone. Always at least one line.
std::vector<std::string> Wrap(pge::PixelEngine& engine, const std::string& text, int maxWidth, int scale = 1);

} // namespace adv::text
