#pragma once
// Software drawing on a sprite in memory. Every primitive ends in Blend, one pixel at a
// time, so everything can be translucent. Shapes are sampled at pixel centres, without
// anti-aliasing. Functions taking a sprite pointer do nothing when it is null.
#include "pge/Pixel.h"
#include "pge/Sprite.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace adv::canvas {

// Draw a pixel only where the mask says true; an empty function means no mask.
using Mask = std::function<bool(int, int)>;

// c composited over d, for an alpha of c between 1 and 254: each colour channel
// (d * (255 - a) + c * a) / 255, the alpha d.a + (255 - d.a) * a / 255, all truncating.
inline pge::Pixel Over(pge::Pixel d, pge::Pixel c) {
    const int a = c.a, keep = 255 - a;
    return pge::Pixel(uint8_t((d.r * keep + c.r * a) / 255), uint8_t((d.g * keep + c.g * a) / 255),
                      uint8_t((d.b * keep + c.b * a) / 255), uint8_t(d.a + (255 - d.a) * a / 255));
}

// A rectangle of pixels from (x0, y0) up to, not including, (x1, y1).
struct Rect {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
};

// Where drawing may touch any sprite: everywhere, unless a ClipScope says otherwise.
extern Rect g_clip;

// While it lives, drawing reaches only the pixels of one rectangle, each exactly as it would
// without the clip: a part of a picture can so be drawn again on its own.
struct ClipScope {
    explicit ClipScope(Rect clip);
    ~ClipScope();
    ClipScope(const ClipScope&) = delete;
    ClipScope& operator=(const ClipScope&) = delete;
    Rect saved;
};

// The part of a sprite that drawing may touch now.
inline Rect Bounds(const pge::Sprite& sprite) {
    return {g_clip.x0 > 0 ? g_clip.x0 : 0, g_clip.y0 > 0 ? g_clip.y0 : 0,
            g_clip.x1 < sprite.width ? g_clip.x1 : sprite.width, g_clip.y1 < sprite.height ? g_clip.y1 : sprite.height};
}

// Alpha 0 leaves the pixel, 255 overwrites it (alpha included), anything between composites.
// Inline: the wall and the shapes call it tens of thousands of times a frame.
inline void Blend(pge::Sprite* sprite, int x, int y, pge::Pixel colour) {
    if (!sprite || colour.a == 0) return;
    const Rect b = Bounds(*sprite);
    if (x < b.x0 || y < b.y0 || x >= b.x1 || y >= b.y1) return;
    pge::Pixel& d = sprite->GetData()[size_t(y) * size_t(sprite->width) + size_t(x)];
    d = colour.a == 255 ? colour : Over(d, colour);
}

// Blend of one colour on `count` pixels in a row from `at`, already clipped by the caller:
// the span writer under every filled shape, exactly Blend pixel by pixel.
void BlendRun(pge::Pixel* at, int count, pge::Pixel colour);
void FillRect(pge::Sprite* sprite, int x, int y, int w, int h, pge::Pixel colour);
// One row's run of pixels from x0 up to, not including, x1.
struct RowSpan {
    int y = 0, x0 = 0, x1 = 0;
    bool operator==(const RowSpan& o) const { return y == o.y && x0 == o.x0 && x1 == o.x1; }
};
// Appends the rows of pixels within bounds that FillEllipse covers, top to bottom.
void EllipseSpans(pge::vf2d centre, float rx, float ry, Rect bounds, std::vector<RowSpan>& out);
void FillEllipse(pge::Sprite* sprite, pge::vf2d centre, float rx, float ry, pge::Pixel colour);
void FillCircle(pge::Sprite* sprite, pge::vf2d centre, float r, pge::Pixel colour);
// Copies a w by h block from (sx, sy) of the source to (dx, dy), mirrored when flip is set,
// with the source alpha scaled by alpha when that is below 1.
void DrawSprite(pge::Sprite* sprite, const pge::Sprite* source, int dx, int dy, int sx, int sy, int w, int h,
                bool flip, float alpha);
// A w by h box-filtered copy.
std::unique_ptr<pge::Sprite> Downscale(const pge::Sprite& source, int w, int h);

// t is limited to 0..1.
pge::Pixel Mix(pge::Pixel a, pge::Pixel b, float t);
void VerticalGradient(pge::Sprite* sprite, int x, int y, int w, int h, pge::Pixel top, pge::Pixel bottom);
// `from` inside inner, blending to `to` at outer; nothing beyond outer.
void RadialGradient(pge::Sprite* sprite, pge::vf2d centre, float inner, float outer, pge::Pixel from, pge::Pixel to);
// Colour channels times factor, saturated; the alpha is replaced.
pge::Pixel Shade(pge::Pixel colour, float factor, uint8_t alpha);
pge::Pixel WithAlpha(pge::Pixel colour, float alpha);

// Even-odd filled outline.
void FillPolygon(pge::Sprite* sprite, const std::vector<pge::vf2d>& points, pge::Pixel colour, const Mask& mask = {});
// Up to width 1.01 a one-pixel line touching each pixel once; wider lines are
// rectangles with square ends reaching width / 2 beyond the end points.
void Line(pge::Sprite* sprite, pge::vf2d a, pge::vf2d b, pge::Pixel colour, float width = 1.0f, const Mask& mask = {});
// dash 0 draws solid; otherwise the dash pattern runs on round the corners.
void Polyline(pge::Sprite* sprite, const std::vector<pge::vf2d>& points, pge::Pixel colour, float width, bool closed,
              float dash = 0.0f, float gap = 0.0f, const Mask& mask = {});
void StrokeRoundRect(pge::Sprite* sprite, float x, float y, float w, float h, float radius, pge::Pixel colour,
                     float width);
void FillRoundRect(pge::Sprite* sprite, float x, float y, float w, float h, float radius, pge::Pixel colour);

} // namespace adv::canvas
