#include "engine/Canvas.h"
#include <gtest/gtest.h>
#include <array>
#include <functional>
#include <set>
#include <utility>

namespace {

namespace canvas = adv::canvas;
using Points = std::set<std::pair<int, int>>;
using S = pge::Sprite*;
const pge::Pixel kInk(255, 255, 255, 255);

// The union of the inclusive blocks {x0, y0, x1, y1}.
Points Blocks(std::initializer_list<std::array<int, 4>> blocks) {
    Points p;
    for (const auto& b : blocks)
        for (int y = b[1]; y <= b[3]; ++y)
            for (int x = b[0]; x <= b[2]; ++x) p.insert({x, y});
    return p;
}

// The pixels one drawing call changes on a fresh, opaque black w by h sprite.
Points Drawn(int w, int h, const std::function<void(S)>& draw) {
    pge::Sprite s(w, h);
    draw(&s);
    Points p;
    for (int i = 0; i < w * h; ++i)
        if (s.GetPixel(i % w, i / w) != pge::Pixel()) p.insert({i % w, i / w});
    return p;
}

bool Checker(int x, int y) { return (x + y) % 2 == 0; }

} // namespace

TEST(CanvasShapes, PixelsSampledAtTheirCentres) {
    const struct { int w, h; std::function<void(S)> draw; Points want; } cases[] = {
        {6, 5, [](S s) { canvas::FillRect(s, -2, 3, 4, 10, kInk); }, Blocks({{0, 3, 1, 4}})},
        {3, 3, [](S s) { canvas::FillRect(s, 0, 0, -3, 3, kInk); }, {}},
        {10, 10, [](S s) { canvas::FillCircle(s, {5, 5}, 2, kInk); }, Blocks({{4, 3, 5, 3}, {3, 4, 6, 5}, {4, 6, 5, 6}})},
        {10, 10, [](S s) { canvas::FillEllipse(s, {5, 5}, 3, 1, kInk); }, Blocks({{2, 4, 7, 5}})},
        {4, 4, [](S s) { canvas::FillCircle(s, {0, 0}, 2, kInk); }, {{0, 0}, {1, 0}, {0, 1}}},
        {4, 4, [](S s) { canvas::FillEllipse(s, {2, 2}, 0, 2, kInk); }, {}},
        {6, 5, [](S s) { canvas::FillPolygon(s, {{1, 1}, {4, 1}, {4, 3}, {1, 3}}, kInk); }, Blocks({{1, 1, 3, 2}})},
        {5, 5, [](S s) { canvas::FillPolygon(s, {{0, 0}, {4, 0}, {0, 4}}, kInk); },
         Blocks({{0, 0, 2, 0}, {0, 1, 1, 1}, {0, 2, 0, 2}})},
        // Round a square and back round a smaller one inside: even-odd leaves a hole.
        {10, 10, [](S s) { canvas::FillPolygon(s, {{0, 0}, {8, 0}, {8, 8}, {0, 8}, {0, 0}, {2, 2}, {2, 6}, {6, 6}, {6, 2}, {2, 2}}, kInk); },
         Blocks({{0, 0, 7, 1}, {0, 6, 7, 7}, {0, 2, 1, 5}, {6, 2, 7, 5}})},
        {6, 5, [](S s) { canvas::FillPolygon(s, {{1, 1}, {4, 1}, {4, 3}, {1, 3}}, kInk, Checker); }, {{1, 1}, {3, 1}, {2, 2}}},
        {3, 3, [](S s) { canvas::FillPolygon(s, {{-5, -5}, {2, -5}, {2, 1}, {-5, 1}}, kInk); }, Blocks({{0, 0, 1, 0}})},
        {4, 4, [](S s) { canvas::FillPolygon(s, {{0, 0}, {4, 0}, {8, 0}}, kInk); }, {}},
        // Thin lines touch each pixel once; wider than 1.01 they get square ends width / 2 out.
        {6, 4, [](S s) { canvas::Line(s, {0.5f, 0.5f}, {4.5f, 2.5f}, kInk); }, {{0, 0}, {1, 1}, {2, 1}, {3, 2}, {4, 2}}},
        {6, 4, [](S s) { canvas::Line(s, {0.5f, 0.5f}, {4.5f, 2.5f}, kInk, 1, Checker); }, {{0, 0}, {1, 1}, {4, 2}}},
        {4, 4, [](S s) { canvas::Line(s, {2.5f, 1.5f}, {2.5f, 1.5f}, kInk); }, {{2, 1}}},
        {7, 5, [](S s) { canvas::Line(s, {1, 2.5f}, {4, 2.5f}, kInk, 1.01f); }, Blocks({{1, 2, 4, 2}})},
        {7, 5, [](S s) { canvas::Line(s, {1, 2.5f}, {4, 2.5f}, kInk, 1.02f); }, Blocks({{0, 2, 4, 2}})},
        {9, 6, [](S s) { canvas::Line(s, {2, 3}, {6, 3}, kInk, 2, [](int x, int) { return x < 4; }); }, Blocks({{1, 2, 3, 3}})},
        // No length: a disc of radius 1.5, the mask playing no part.
        {8, 8, [](S s) { canvas::Line(s, {4.5f, 4.5f}, {4.5f, 4.5f}, kInk, 3, [](int, int) { return false; }); },
         Blocks({{3, 3, 5, 5}})},
        // Dash 2, gap 2: the first leg ends in a gap, so the second starts with one; the doubled point is skipped.
        {8, 8, [](S s) { canvas::Polyline(s, {{0.5f, 0.5f}, {6.5f, 0.5f}, {6.5f, 0.5f}, {6.5f, 6.5f}}, kInk, 1, false, 2, 2); },
         Blocks({{0, 0, 2, 0}, {4, 0, 6, 0}, {6, 2, 6, 4}})},
        // The closing leg from (3.5, 2.5) to (0.5, 0.5) samples x 3.5, 2.5, 1.5, 0.5.
        {8, 8, [](S s) { canvas::Polyline(s, {{0.5f, 0.5f}, {3.5f, 0.5f}, {3.5f, 2.5f}}, kInk, 1, true); },
         Blocks({{0, 0, 3, 0}, {3, 0, 3, 2}, {1, 1, 2, 1}})},
        {4, 4, [](S s) { canvas::Polyline(s, {{1, 1}}, kInk, 1, true); }, {}},
        // Radius 0 is the plain rectangle; beyond half the height it is cut to 2, a capsule.
        {7, 6, [](S s) { canvas::FillRoundRect(s, 1, 1, 4, 3, 0, kInk); }, Blocks({{1, 1, 4, 3}})},
        {7, 6, [](S s) { canvas::StrokeRoundRect(s, 0.5f, 0.5f, 4, 3, 0, kInk, 1); },
         Blocks({{0, 0, 4, 0}, {0, 3, 4, 3}, {0, 0, 0, 3}, {4, 0, 4, 3}})},
        {10, 6, [](S s) { canvas::FillRoundRect(s, 0, 0, 8, 4, 100, kInk); }, Blocks({{1, 0, 6, 0}, {0, 1, 7, 2}, {1, 3, 6, 3}})},
    };
    for (size_t i = 0; i < std::size(cases); ++i) EXPECT_EQ(Drawn(cases[i].w, cases[i].h, cases[i].draw), cases[i].want) << i;
}

TEST(CanvasBlend, AlphaRulesSpritesAndColours) {
    pge::Sprite s(4, 1);
    s.pColData = {pge::Pixel(10, 20, 30, 40), pge::Pixel(100, 50, 0, 255), pge::BLANK, pge::Pixel()};
    canvas::Blend(&s, 0, 0, pge::Pixel(200, 200, 200, 0));
    canvas::Blend(&s, 1, 0, pge::Pixel(200, 0, 255, 128)); // (dst * 127 + src * 128) / 255, truncated
    canvas::Blend(&s, 2, 0, pge::Pixel(200, 100, 50, 128)); // over blank the alpha rises to 128
    canvas::Blend(&s, 3, 0, pge::Pixel(1, 2, 3, 255));
    for (auto [x, y] : {std::pair{-1, 0}, {4, 0}, {0, -1}, {0, 1}}) canvas::Blend(&s, x, y, kInk);
    EXPECT_EQ(s.pColData, (std::vector<pge::Pixel>{pge::Pixel(10, 20, 30, 40), pge::Pixel(150, 24, 128, 255),
                                                   pge::Pixel(100, 50, 25, 128), pge::Pixel(1, 2, 3, 255)}));
    canvas::Blend(&s, 2, 0, pge::Pixel(200, 100, 50, 128));
    EXPECT_EQ(s.GetPixel(2, 0).a, 191); // 128 + 127 * 128 / 255
    // Flipped, a mirrored part, half alpha (255 * 0.5 truncates to 127), reading past the source.
    pge::Sprite src(3, 2), dst(5, 3);
    const pge::Pixel a(10, 0, 0), b(20, 0, 0), c(30, 0, 0), o;
    src.pColData = {a, b, c, pge::Pixel(99, 99, 99, 0), pge::Pixel(200, 100, 50, 255), pge::BLANK};
    canvas::DrawSprite(&dst, &src, 1, 1, 0, 0, 3, 1, true, 1.0f);
    canvas::DrawSprite(&dst, &src, 0, 0, 1, 0, 2, 1, true, 1.0f);
    canvas::DrawSprite(&dst, &src, 0, 2, 0, 1, 3, 1, false, 0.5f);
    canvas::DrawSprite(&dst, &src, 2, 2, 2, 1, 3, 3, false, 1.0f);
    EXPECT_EQ(dst.pColData, (std::vector<pge::Pixel>{c, b, o, o, o, o, c, b, a, o, o, pge::Pixel(99, 49, 24, 255), o, o, o}));
    pge::Sprite grid(4, 4);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) grid.SetPixel(x, y, pge::Pixel(uint8_t(x * 10 + y * 40), 0, 0, uint8_t(100 + x)));
    EXPECT_EQ(canvas::Downscale(grid, 2, 2)->GetPixel(1, 1), pge::Pixel(125, 0, 0, 102)); // 100, 110, 140, 150
    EXPECT_EQ(canvas::Downscale(grid, 3, 1)->GetPixel(2, 0), pge::Pixel(85, 0, 0, 102));  // columns [2, 4), all rows
    EXPECT_EQ(canvas::Mix(pge::Pixel(0, 0, 0, 0), pge::Pixel(255, 100, 50, 200), 0.5f), pge::Pixel(128, 50, 25, 100));
    EXPECT_EQ(canvas::Mix(a, b, 1.5f), b);
    EXPECT_EQ(canvas::Shade(pge::Pixel(200, 100, 50), 1.5f, 77), pge::Pixel(255, 150, 75, 77));
    EXPECT_EQ(canvas::Shade(pge::Pixel(255, 3, 1), 0.5f, 255), pge::Pixel(127, 1, 0, 255));
    EXPECT_EQ(canvas::WithAlpha(b, 0.2f).a + canvas::WithAlpha(b, 3.0f).a, 51 + 255);
    pge::Sprite g(1, 3), r(5, 5);
    canvas::VerticalGradient(&g, 0, 0, 1, 3, o, kInk);
    EXPECT_EQ(g.pColData, (std::vector<pge::Pixel>{o, pge::Pixel(128, 128, 128), kInk}));
    canvas::RadialGradient(&r, {2.5f, 2.5f}, 1.0f, 2.0f, kInk, pge::Pixel(0, 0, 1));
    // At d = 1; d = 2, still drawn; d = sqrt 2: 255 - 0.414 * 255 + 0.5; beyond the outer radius.
    EXPECT_EQ(std::tuple(r.GetPixel(3, 2), r.GetPixel(4, 2).b, r.GetPixel(3, 3).r, r.GetPixel(4, 4)), std::tuple(kInk, 1, 149, o));
}

TEST(CanvasPolylines, DashesEndEvenWhenRoundingStallsThePhase) {
    // Here fmod(phase + pos, period) lands a hair below a dash's end at pos 32.6: a plain walk would never end.
    const float dash = 2.9249835f, gap = 6.98032188f, period = dash + gap;
    pge::Sprite s(640, 2);
    canvas::Polyline(&s, {{0.5f, 0.5f}, {1187.5f, 0.5f}}, kInk, 1.0f, false, dash, gap);
    for (int k = 0; k * period + period < 639.0f; ++k) {
        EXPECT_EQ(s.GetPixel(int(0.5f + k * period + dash / 2), 0), kInk) << k;
        EXPECT_NE(s.GetPixel(int(0.5f + k * period + dash + gap / 2), 0), kInk) << k;
    }
}

// The span writer under the filled shapes must give, for every alpha, what the compositing
// rule gives pixel by pixel, whatever the lengths of its four-pixel blocks and their tail.
TEST(CanvasBlend, RunsCompositeLikeSinglePixels) {
    const pge::Pixel dsts[] = {pge::Pixel(0, 0, 0, 0), pge::Pixel(255, 255, 255, 255), pge::Pixel(1, 128, 254, 3),
                               pge::Pixel(77, 200, 13, 250), pge::Pixel(255, 0, 255, 0), pge::Pixel(128, 64, 32, 128),
                               pge::Pixel(9, 99, 199, 254)};
    const int n = int(std::size(dsts));
    for (int a = 0; a < 256; ++a)
        for (const pge::Pixel c : {pge::Pixel(255, 0, 128, a), pge::Pixel(0, 255, 3, a), pge::Pixel(200, 100, 50, a)}) {
            std::vector<pge::Pixel> run(dsts, dsts + n);
            canvas::BlendRun(run.data(), n, c);
            for (int i = 0; i < n; ++i) {
                const pge::Pixel d = dsts[i];
                const auto mix = [a](int dv, int cv) { return (dv * (255 - a) + cv * a) / 255; };
                const pge::Pixel want = a == 0     ? d
                                        : a == 255 ? c
                                                   : pge::Pixel(mix(d.r, c.r), mix(d.g, c.g), mix(d.b, c.b),
                                                                std::min(d.a + (255 - d.a) * a / 255, 255));
                ASSERT_EQ(run[size_t(i)], want) << "alpha " << a << " pixel " << i;
            }
        }
}

// Under a clip every shape leaves, inside the rectangle, exactly what it leaves without one,
// and nothing outside: a part of a picture can be drawn again on its own.
TEST(CanvasClip, ClippedDrawingIsTheWholeDrawingCutToTheRectangle) {
    const int w = 64, h = 48;
    pge::Sprite ground(w, h);
    uint32_t seed = 7;
    for (pge::Pixel& p : ground.pColData) p.n = seed = seed * 1664525u + 1013904223u;
    pge::Sprite stamp(9, 7);
    for (pge::Pixel& p : stamp.pColData) p.n = seed = seed * 1664525u + 1013904223u;
    const pge::Pixel glass(200, 90, 30, 140);
    const std::vector<pge::vf2d> star = {{5, 3}, {40, 10}, {12, 20}, {50, 40}, {3, 44}, {30, 25}};
    const std::vector<std::pair<const char*, std::function<void(S)>>> shapes = {
        {"rect", [&](S s) { canvas::FillRect(s, -3, 5, 40, 30, glass); }},
        {"ellipse", [&](S s) { canvas::FillEllipse(s, {30.3f, 22.7f}, 25.0f, 14.5f, glass); }},
        {"polygon", [&](S s) { canvas::FillPolygon(s, star, glass); }},
        {"masked polygon", [&](S s) { canvas::FillPolygon(s, star, glass, Checker); }},
        {"thin line", [&](S s) { canvas::Line(s, {2.5f, 40.0f}, {61.0f, 3.2f}, glass); }},
        {"wide line", [&](S s) { canvas::Line(s, {2.5f, 40.0f}, {61.0f, 3.2f}, glass, 3.5f); }},
        {"dashes", [&](S s) { canvas::Polyline(s, star, glass, 1.0f, true, 4.0f, 3.0f); }},
        {"wide dashes", [&](S s) { canvas::Polyline(s, star, glass, 2.0f, false, 5.0f, 2.0f, Checker); }},
        {"round rect", [&](S s) { canvas::StrokeRoundRect(s, 6.0f, 4.0f, 50.0f, 30.0f, 8.0f, glass, 2.0f); }},
        {"filled round rect", [&](S s) { canvas::FillRoundRect(s, 6.0f, 4.0f, 50.0f, 30.0f, 8.0f, glass); }},
        {"gradient", [&](S s) { canvas::RadialGradient(s, {20.0f, 20.0f}, 4.0f, 30.0f, glass, pge::Pixel(0, 0, 0, 0)); }},
        {"sprite", [&](S s) { canvas::DrawSprite(s, &stamp, 26, 20, 0, 0, 9, 7, true, 0.6f); }},
        {"pixels", [&](S s) { for (int i = 0; i < 200; ++i) canvas::Blend(s, i % 70 - 3, i / 4, glass); }},
    };
    const canvas::Rect rects[] = {{10, 8, 40, 30}, {-5, -5, 20, 70}, {30, 0, 64, 1}, {20, 20, 20, 30}, {60, 40, 90, 90}};
    for (const auto& [name, draw] : shapes) {
        pge::Sprite whole(w, h);
        whole.pColData = ground.pColData;
        draw(&whole);
        ASSERT_NE(whole.pColData, ground.pColData) << name << " draws nothing";
        for (const canvas::Rect& r : rects) {
            pge::Sprite part(w, h);
            part.pColData = ground.pColData;
            {
                const canvas::ClipScope clip(r);
                draw(&part);
            }
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    const bool inside = x >= r.x0 && x < r.x1 && y >= r.y0 && y < r.y1;
                    ASSERT_EQ(part.GetPixel(x, y), (inside ? whole : ground).GetPixel(x, y))
                        << name << " at " << x << "," << y << " clipped to " << r.x0 << "," << r.y0 << "-" << r.x1 << "," << r.y1;
                }
        }
    }
    // Clips nest as the intersection, and the outer one is back when the inner ends.
    const auto bounds = [&] { return std::vector<int>{canvas::Bounds(ground).x0, canvas::Bounds(ground).y0, canvas::Bounds(ground).x1, canvas::Bounds(ground).y1}; };
    {
        const canvas::ClipScope outer({0, 0, 20, 20});
        {
            const canvas::ClipScope inner({10, 10, 40, 40});
            EXPECT_EQ(bounds(), std::vector<int>({10, 10, 20, 20}));
        }
        EXPECT_EQ(bounds(), std::vector<int>({0, 0, 20, 20}));
    }
    EXPECT_EQ(bounds(), std::vector<int>({0, 0, w, h}));
}
