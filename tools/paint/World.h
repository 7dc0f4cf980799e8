#pragma once
// The painted world: the five landscapes with and without their tower, the runner's
// sheets, the title picture, the game's icon and the adventure's.
#include "tools/paint/Paint.h"

#include <algorithm>
#include <string>
#include <vector>

namespace paint {

struct Cycle {
    int start = 0, end = 0;
    float fps = 0.0f;
    int direction = 1;
};

// Where the painted tower stands, in image pixels: the centre column, half the width of
// the part the ring shows, the front of the rim and the front of the foot.
struct Frame {
    float centreX = 0.0f, halfWidth = 0.0f, rimY = 0.0f, baseY = 0.0f;
};

struct Landscape {
    std::string name; // file stem, e.g. "torvane-bg-01-desert"
    Palette palette;
    Picture plain{320, 200};
    Picture tower{320, 200};
    std::vector<Cycle> cycles;
    Frame frame;
};

// The landscape of background index 0..4, with its tower painted to the rim table.
Landscape PaintLandscape(int index);

// The cycles whose ranges some pixel of the plain picture, or of the tower picture, uses.
std::vector<Cycle> CyclesOf(const Landscape& landscape, bool tower);

// The frame whose drawn rim best follows the rim table of background `index`.
Frame FitFrame(int index);
// The painted rim's top row at an image column: the table where it has the column,
// else the ellipse of the frame.
int RimRow(int index, const Frame& frame, int column);

// Paints the tower of background `index` at frame f with the stone ramp of n colours
// (dark to light); its shadow turns each ground colour g into shadowOf[g] where that is 0 or more.
void PaintTower(Picture& p, int index, const Frame& f, int stone, int n, int dark, bool planks,
                const std::vector<int>& shadowOf);

// The runner's sheets, 192 by 128, with index 0 transparent.
struct Sheet {
    std::string name;
    Picture picture{192, 128};
};
Palette RunnerPalette();
std::vector<Sheet> PaintRunnerSheets();
// One runner frame at a whole scale, feet at (x, feetY) of the picture.
enum class Pose { Run, Idle, Stoop, Jump };
void PaintRunner(Picture& p, int firstInk, Pose pose, int frame, bool facingLeft, int x, int feetY);

void PaintTitle(Picture& out, Palette& palette);
void PaintIcon(Picture& out, Palette& palette);

// A tone of an icon's ramp of n colours: dithered where the icon is large enough to show it
// (u, picture pixels to a pixel of the 32-pixel design, of 3 or more), plain bands below.
inline int IconShade(int first, int n, float tone, int x, int y, float u) {
    return u >= 3.0f ? Dither(first, n, tone, x, y) : first + std::clamp(static_cast<int>(tone), 0, n - 1);
}

// An icon's rounded tile, on a design 32 pixels wide: every pixel inside its one-pixel frame
// takes paint(x, y, fx, fy), fx and fy in design pixels; the frame takes the outline.
template <typename Paint> void IconTile(Picture& out, int outline, Paint paint) {
    const int s = out.W();
    const float u = static_cast<float>(s) / 32.0f, r = 5.0f * u;
    adv::canvas::FillRoundRect(out.S(), 0.5f * u, 0.5f * u, s - u, s - u, r, Ink(outline));
    for (int y = 0; y < s; ++y)
        for (int x = 0; x < s; ++x) {
            if (out.At(x, y) != outline) continue;
            const float fx = (x + 0.5f) / u, fy = (y + 0.5f) / u;
            if (fx < 1.5f || fy < 1.5f || fx > 30.5f || fy > 30.5f) continue;
            out.Set(x, y, paint(x, y, fx, fy));
        }
    adv::canvas::StrokeRoundRect(out.S(), 0.5f * u, 0.5f * u, s - u, s - u, r, Ink(outline), std::max(u, 1.0f));
}
// The icon of the adventure "Der Vorabend": the beacon burning on the tower at night.
void PaintBeaconIcon(Picture& out, Palette& palette);

} // namespace paint
