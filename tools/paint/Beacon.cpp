// The icon of "Der Vorabend": the top of the tower against the night sky, its beacon
// burning between the merlons, a thin moon beside it.
#include "tools/paint/World.h"

#include <algorithm>
#include <cmath>

namespace paint {

namespace {

// A polygon given in units of the 32-pixel design, scaled to the picture.
Points Scaled(const Points& design, float u) {
    Points out;
    for (const pge::vf2d& p : design) out.push_back({p.x * u, p.y * u});
    return out;
}

} // namespace

void PaintBeaconIcon(Picture& out, Palette& pal) {
    const int s = out.W();
    const float u = static_cast<float>(s) / 32.0f; // one pixel of the 32-pixel design
    pal = Palette();
    pal.Add(pge::Pixel(0, 0, 0)); // transparent
    const int outline = pal.Add(pge::Pixel(16, 10, 20));
    // The night from its darkest blue through violet and rose to the fire's orange.
    const int sky = pal.Ramp({{14, 18, 48}, {44, 34, 84}, {120, 60, 86}, {214, 110, 70}, {255, 180, 96}}, 10);
    const int flame = pal.Ramp({{150, 26, 18}, {236, 96, 28}, {255, 196, 64}, {255, 250, 214}}, 6);
    const int stone = pal.Ramp({{26, 20, 32}, {62, 48, 66}, {128, 90, 76}}, 6);
    const int moon = pal.Add(pge::Pixel(240, 232, 196));
    const int star = pal.Add(pge::Pixel(200, 204, 230));

    // A rounded tile of night sky, lighter towards the horizon, warm round the fire.
    IconTile(out, outline, [&](int x, int y, float fx, float fy) {
        const float near = std::max(0.0f, 1.0f - std::hypot(fx - 16.0f, (fy - 10.0f) * 0.8f) / 12.0f);
        return IconShade(sky, 10, fy / 30.0f * 4.0f + near * 8.0f, x, y, u);
    });

    // A few stars where the icon is large enough for them, and the moon's thin crescent.
    if (u >= 2.0f)
        for (const pge::vf2d& p : {pge::vf2d{5.0f, 13.0f}, {25.5f, 4.5f}, {27.5f, 12.0f}, {9.5f, 4.0f}})
            adv::canvas::FillRect(out.S(), static_cast<int>(p.x * u), static_cast<int>(p.y * u),
                                  static_cast<int>(u * 0.6f), static_cast<int>(u * 0.6f), Ink(star));
    for (int y = 0; y < s; ++y)
        for (int x = 0; x < s; ++x) {
            const float fx = (x + 0.5f) / u, fy = (y + 0.5f) / u;
            if (std::hypot(fx - 6.0f, fy - 7.0f) < 3.2f && std::hypot(fx - 7.4f, fy - 6.1f) >= 2.8f) out.Set(x, y, moon);
        }

    // The tower's top: a wall of dark stone from the merlons down, lit by the fire from above.
    const float wallTop = 18.0f, left = 7.0f, right = 25.0f;
    const auto wall = [&](float x0, float y0, float x1) {
        for (int y = static_cast<int>(y0 * u); y < s; ++y)
            for (int x = static_cast<int>(x0 * u); x < static_cast<int>(x1 * u); ++x) {
                const float fy = (y + 0.5f) / u, fx = (x + 0.5f) / u;
                // Lit from the fire above, most near it.
                const float lit = 5.0f - (fy - 13.0f) * 0.45f - std::fabs(fx - 16.0f) * 0.12f;
                // Courses of three design pixels, their joints offset from course to course.
                const int course = static_cast<int>((fy - wallTop + 12.0f) / 3.0f);
                const bool bed = u >= 2.0f && std::fmod(fy - wallTop + 12.0f, 3.0f) * u < 1.0f;
                const bool head = u >= 4.0f && std::fmod(fx + static_cast<float>(course % 2) * 2.0f, 4.0f) * u < 1.0f;
                const bool joint = bed || head;
                out.Set(x, y, IconShade(stone, 6, lit - (joint ? (u >= 3.0f ? 1.5f : 1.0f) : 0.0f), x, y, u));
            }
    };
    wall(left, wallTop, right);
    wall(left, 14.0f, left + 4.0f);   // the merlons left and right of the fire
    wall(right - 4.0f, 14.0f, right);
    // A dark slit of a window below.
    adv::canvas::FillRect(out.S(), static_cast<int>(15.3f * u), static_cast<int>(23.0f * u), std::max(1, static_cast<int>(1.4f * u)),
                          static_cast<int>(4.0f * u), Ink(outline));

    // The fire between the merlons: red tongues, orange within, a yellow and white core.
    adv::canvas::FillPolygon(out.S(),
                             Scaled({{11.5f, 18.5f}, {20.5f, 18.5f}, {21.0f, 14.0f}, {22.0f, 10.5f}, {20.5f, 8.0f},
                                     {20.0f, 10.0f}, {18.8f, 6.5f}, {17.0f, 2.5f}, {16.2f, 5.5f}, {15.0f, 4.0f},
                                     {13.8f, 7.5f}, {12.5f, 6.0f}, {11.2f, 9.5f}, {10.5f, 13.0f}},
                                    u),
                             Ink(flame + 1));
    adv::canvas::FillPolygon(out.S(),
                             Scaled({{13.0f, 18.5f}, {19.5f, 18.5f}, {19.8f, 14.0f}, {19.5f, 11.0f}, {18.2f, 9.0f},
                                     {17.0f, 6.5f}, {15.8f, 9.0f}, {14.5f, 8.5f}, {13.2f, 11.0f}, {12.8f, 14.0f}},
                                    u),
                             Ink(flame + 3));
    adv::canvas::FillPolygon(out.S(), Scaled({{14.8f, 18.5f}, {17.8f, 18.5f}, {18.0f, 15.0f}, {17.5f, 12.5f}, {16.2f, 10.0f}, {15.0f, 12.5f}, {14.5f, 15.0f}}, u),
                             Ink(flame + 5));
    // The logs the fire lies on, across the gap.
    adv::canvas::FillRect(out.S(), static_cast<int>(10.5f * u), static_cast<int>(17.5f * u), static_cast<int>(11.0f * u),
                          std::max(1, static_cast<int>(1.2f * u)), Ink(stone));

    // Outline round the tower and the fire against the sky.
    const Picture copy = out.Copy();
    for (int y = 1; y < s - 1; ++y)
        for (int x = 1; x < s - 1; ++x) {
            const auto solid = [&](int X, int Y) {
                const int v = copy.At(X, Y);
                return (v >= stone && v < stone + 6) || (v >= flame && v < flame + 6);
            };
            const int v = copy.At(x, y);
            const bool open = v >= sky && v < sky + 10;
            if (open && (solid(x - 1, y) || solid(x + 1, y) || solid(x, y - 1))) out.Set(x, y, outline);
        }
}

} // namespace paint
