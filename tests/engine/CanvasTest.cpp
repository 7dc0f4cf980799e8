#include "engine/Canvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

namespace {

namespace canvas = adv::canvas;
using Points = std::set<std::pair<int, int>>;

const pge::Pixel kInk(255, 255, 255, 255);

// The pixels that differ from the sprite's opaque black start.
Points Painted(const pge::Sprite& s) {
    Points p;
    for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x)
            if (s.GetPixel(x, y) != pge::Pixel()) p.insert({x, y});
    return p;
}

Points Block(int x0, int y0, int x1, int y1) {
    Points p;
    for (int y = y0; y <= y1; ++y)
        for (int x = x0; x <= x1; ++x) p.insert({x, y});
    return p;
}

Points Union(Points a, const Points& b) {
    a.insert(b.begin(), b.end());
    return a;
}

} // namespace

TEST(CanvasBlend, AlphaRules) {
    pge::Sprite s(4, 1);
    s.SetPixel(0, 0, pge::Pixel(10, 20, 30, 40));
    canvas::Blend(&s, 0, 0, pge::Pixel(200, 200, 200, 0));
    EXPECT_EQ(s.GetPixel(0, 0), pge::Pixel(10, 20, 30, 40));
    canvas::Blend(&s, 0, 0, pge::Pixel(1, 2, 3, 255));
    EXPECT_EQ(s.GetPixel(0, 0), pge::Pixel(1, 2, 3, 255));

    // (dst * 127 + src * 128) / 255, truncated.
    s.SetPixel(1, 0, pge::Pixel(100, 50, 0, 255));
    canvas::Blend(&s, 1, 0, pge::Pixel(200, 0, 255, 128));
    EXPECT_EQ(s.GetPixel(1, 0), pge::Pixel(150, 24, 128, 255));

    // Over a transparent pixel: alpha rises to the source's, colours stay darker.
    s.SetPixel(2, 0, pge::BLANK);
    canvas::Blend(&s, 2, 0, pge::Pixel(200, 100, 50, 128));
    EXPECT_EQ(s.GetPixel(2, 0), pge::Pixel(100, 50, 25, 128));
    // A second layer: alpha 128 + 127 * 128 / 255 = 191.
    canvas::Blend(&s, 2, 0, pge::Pixel(200, 100, 50, 128));
    EXPECT_EQ(s.GetPixel(2, 0).a, 191);

    const std::vector<pge::Pixel> before = s.pColData;
    for (auto [x, y] : {std::pair{-1, 0}, {4, 0}, {0, -1}, {0, 1}}) canvas::Blend(&s, x, y, kInk);
    EXPECT_EQ(s.pColData, before);
    canvas::Blend(nullptr, 0, 0, kInk);
}

TEST(CanvasRects, ClippedAndComposited) {
    pge::Sprite s(6, 5);
    canvas::FillRect(&s, -2, 3, 4, 10, kInk);
    EXPECT_EQ(Painted(s), Block(0, 3, 1, 4));

    pge::Sprite t(3, 3);
    canvas::FillRect(&t, 1, 1, 5, 5, pge::Pixel(255, 0, 0, 128));
    canvas::FillRect(&t, 1, 1, 1, 1, pge::Pixel(255, 0, 0, 128));
    EXPECT_EQ(t.GetPixel(2, 2), pge::Pixel(128, 0, 0, 255));
    EXPECT_EQ(t.GetPixel(1, 1), pge::Pixel(191, 0, 0, 255)); // (128 * 127 + 255 * 128) / 255
    EXPECT_EQ(t.GetPixel(0, 0), pge::Pixel());
    canvas::FillRect(&t, 0, 0, 0, 3, kInk);
    canvas::FillRect(&t, 0, 0, -3, 3, kInk);
    EXPECT_EQ(t.GetPixel(0, 0), pge::Pixel());
}

TEST(CanvasEllipses, SpansFromPixelCentres) {
    pge::Sprite s(10, 10);
    canvas::FillCircle(&s, {5, 5}, 2, kInk);
    EXPECT_EQ(Painted(s), Union(Union(Block(4, 3, 5, 3), Block(3, 4, 6, 5)), Block(4, 6, 5, 6)));

    pge::Sprite e(10, 10);
    canvas::FillEllipse(&e, {5, 5}, 3, 1, kInk);
    EXPECT_EQ(Painted(e), Block(2, 4, 7, 5));

    pge::Sprite corner(4, 4);
    canvas::FillCircle(&corner, {0, 0}, 2, kInk);
    EXPECT_EQ(Painted(corner), (Points{{0, 0}, {1, 0}, {0, 1}}));

    pge::Sprite none(4, 4);
    canvas::FillEllipse(&none, {2, 2}, 0, 2, kInk);
    canvas::FillEllipse(&none, {2, 2}, 2, -1, kInk);
    canvas::FillCircle(&none, {50, 50}, 3, kInk);
    EXPECT_TRUE(Painted(none).empty());
}

TEST(CanvasDrawSprite, FlipAlphaAndTransparency) {
    pge::Sprite src(3, 2);
    const pge::Pixel a(10, 0, 0), b(20, 0, 0), c(30, 0, 0);
    src.SetPixel(0, 0, a);
    src.SetPixel(1, 0, b);
    src.SetPixel(2, 0, c);
    src.SetPixel(0, 1, pge::Pixel(99, 99, 99, 0));
    src.SetPixel(1, 1, pge::Pixel(200, 100, 50, 255));
    src.SetPixel(2, 1, pge::BLANK);

    pge::Sprite dst(5, 4);
    canvas::DrawSprite(&dst, &src, 1, 1, 0, 0, 3, 1, true, 1.0f);
    EXPECT_EQ(dst.GetPixel(1, 1), c);
    EXPECT_EQ(dst.GetPixel(2, 1), b);
    EXPECT_EQ(dst.GetPixel(3, 1), a);

    // A part of the source, mirrored within the part.
    pge::Sprite part(5, 4);
    canvas::DrawSprite(&part, &src, 0, 0, 1, 0, 2, 1, true, 1.0f);
    EXPECT_EQ(part.GetPixel(0, 0), c);
    EXPECT_EQ(part.GetPixel(1, 0), b);
    EXPECT_EQ(Painted(part).size(), 2u);

    // Half alpha: 255 * 0.5 truncates to 127; transparent source pixels are skipped.
    pge::Sprite half(5, 4);
    half.SetPixel(0, 2, pge::Pixel(7, 7, 7, 255));
    canvas::DrawSprite(&half, &src, 0, 2, 0, 1, 3, 1, false, 0.5f);
    EXPECT_EQ(half.GetPixel(0, 2), pge::Pixel(7, 7, 7, 255));
    EXPECT_EQ(half.GetPixel(1, 2), pge::Pixel(99, 49, 24, 255));
    EXPECT_EQ(half.GetPixel(2, 2), pge::Pixel());

    // Reading past the source gives blank pixels, which draw nothing.
    pge::Sprite outside(5, 4);
    canvas::DrawSprite(&outside, &src, 0, 0, 2, 1, 3, 3, false, 1.0f);
    canvas::DrawSprite(&outside, &src, 0, 0, 0, 0, 3, 2, false, -1.0f);
    canvas::DrawSprite(&outside, nullptr, 0, 0, 0, 0, 3, 2, false, 1.0f);
    canvas::DrawSprite(&outside, &src, 0, 0, 0, 0, 3, 0, false, 1.0f);
    EXPECT_TRUE(Painted(outside).empty());
}

TEST(CanvasDownscale, BoxAverages) {
    pge::Sprite src(4, 4);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) src.SetPixel(x, y, pge::Pixel(uint8_t(x * 10 + y * 40), 0, 0, uint8_t(100 + x)));
    const auto half = canvas::Downscale(src, 2, 2);
    ASSERT_EQ(half->width, 2);
    ASSERT_EQ(half->height, 2);
    // Top left block: red 0, 10, 40, 50 -> 25; alpha 100, 101, 100, 101 -> 100 (truncated).
    EXPECT_EQ(half->GetPixel(0, 0), pge::Pixel(25, 0, 0, 100));
    EXPECT_EQ(half->GetPixel(1, 1), pge::Pixel(125, 0, 0, 102)); // 100, 110, 140, 150

    // 3 to 2: columns [0, 1) and [1, 3).
    pge::Sprite row(3, 1);
    row.SetPixel(0, 0, pge::Pixel(9, 0, 0));
    row.SetPixel(1, 0, pge::Pixel(10, 0, 0));
    row.SetPixel(2, 0, pge::Pixel(21, 0, 0));
    const auto two = canvas::Downscale(row, 2, 1);
    EXPECT_EQ(two->GetPixel(0, 0), pge::Pixel(9, 0, 0));
    EXPECT_EQ(two->GetPixel(1, 0), pge::Pixel(15, 0, 0));

    // Enlarging repeats: each output takes at least one source column.
    const auto wide = canvas::Downscale(row, 6, 1);
    EXPECT_EQ(wide->GetPixel(0, 0).r, 9);
    EXPECT_EQ(wide->GetPixel(1, 0).r, 9);
    EXPECT_EQ(wide->GetPixel(2, 0).r, 10);
    EXPECT_EQ(wide->GetPixel(5, 0).r, 21);

    EXPECT_TRUE(canvas::Downscale(src, 0, 3)->pColData.empty());
    EXPECT_TRUE(canvas::Downscale(src, 3, -1)->pColData.empty());
    const auto fromNothing = canvas::Downscale(pge::Sprite(), 2, 2);
    EXPECT_EQ(fromNothing->GetPixel(1, 1).n, 0u);
}

TEST(CanvasColours, MixShadeAndAlpha) {
    const pge::Pixel a(0, 0, 0, 0), b(255, 100, 50, 200);
    EXPECT_EQ(canvas::Mix(a, b, 0.5f), pge::Pixel(128, 50, 25, 100));
    EXPECT_EQ(canvas::Mix(a, b, 1.5f), b);
    EXPECT_EQ(canvas::Mix(a, b, -2.0f), a);
    EXPECT_EQ(canvas::Mix(pge::Pixel(200, 0, 0), pge::Pixel(100, 0, 0), 0.5f).r, 150);

    EXPECT_EQ(canvas::Shade(pge::Pixel(200, 100, 50), 1.5f, 77), pge::Pixel(255, 150, 75, 77));
    EXPECT_EQ(canvas::Shade(pge::Pixel(255, 3, 1), 0.5f, 255), pge::Pixel(127, 1, 0, 255));
    EXPECT_EQ(canvas::Shade(pge::Pixel(200, 100, 50), -1.0f, 9), pge::Pixel(0, 0, 0, 9));

    const pge::Pixel c(1, 2, 3, 4);
    EXPECT_EQ(canvas::WithAlpha(c, 0.5f), pge::Pixel(1, 2, 3, 128));
    EXPECT_EQ(canvas::WithAlpha(c, 1.0f).a, 255);
    EXPECT_EQ(canvas::WithAlpha(c, 3.0f).a, 255);
    EXPECT_EQ(canvas::WithAlpha(c, 0.0f).a, 0);
    EXPECT_EQ(canvas::WithAlpha(c, -1.0f).a, 0);
    EXPECT_EQ(canvas::WithAlpha(c, 0.2f).a, 51);
}

TEST(CanvasGradients, RowsAndRings) {
    pge::Sprite s(2, 4);
    canvas::VerticalGradient(&s, 0, 0, 2, 3, pge::Pixel(0, 0, 0), pge::Pixel(255, 255, 255));
    EXPECT_EQ(s.GetPixel(1, 0), pge::Pixel(0, 0, 0));
    EXPECT_EQ(s.GetPixel(1, 1), pge::Pixel(128, 128, 128));
    EXPECT_EQ(s.GetPixel(1, 2), pge::Pixel(255, 255, 255));
    EXPECT_EQ(s.GetPixel(1, 3), pge::Pixel());
    canvas::VerticalGradient(&s, 0, 3, 1, 1, pge::Pixel(9, 0, 0), pge::Pixel(200, 0, 0));
    EXPECT_EQ(s.GetPixel(0, 3), pge::Pixel(9, 0, 0));
    canvas::VerticalGradient(&s, 1, 3, 1, 0, pge::Pixel(9, 0, 0), pge::Pixel(200, 0, 0));
    EXPECT_EQ(s.GetPixel(1, 3), pge::Pixel());

    pge::Sprite r(5, 5);
    r.pColData.assign(25, pge::BLANK);
    const pge::Pixel from(255, 255, 255), to(0, 0, 0);
    canvas::RadialGradient(&r, {2.5f, 2.5f}, 1.0f, 2.0f, from, to);
    EXPECT_EQ(r.GetPixel(2, 2), from);      // inside inner
    EXPECT_EQ(r.GetPixel(3, 2), from);      // d = 1
    EXPECT_EQ(r.GetPixel(4, 2), to);        // d = 2, still drawn
    EXPECT_EQ(r.GetPixel(0, 2), to);
    EXPECT_EQ(r.GetPixel(3, 3).r, 149);     // d = sqrt 2: 255 - 0.414 * 255 + 0.5
    EXPECT_EQ(r.GetPixel(4, 4), pge::BLANK); // d = sqrt 8, beyond outer
    EXPECT_EQ(r.GetPixel(0, 0), pge::BLANK);

    pge::Sprite none(5, 5);
    canvas::RadialGradient(&none, {2.5f, 2.5f}, 2.0f, 2.0f, from, to);
    EXPECT_TRUE(Painted(none).empty());
}

TEST(CanvasPolygons, EvenOddScanLines) {
    pge::Sprite square(6, 5);
    canvas::FillPolygon(&square, {{1, 1}, {4, 1}, {4, 3}, {1, 3}}, kInk);
    EXPECT_EQ(Painted(square), Block(1, 1, 3, 2));

    pge::Sprite triangle(5, 5);
    canvas::FillPolygon(&triangle, {{0, 0}, {4, 0}, {0, 4}}, kInk);
    EXPECT_EQ(Painted(triangle), Union(Union(Block(0, 0, 2, 0), Block(0, 1, 1, 1)), Block(0, 2, 0, 2)));

    // One outline round a square and back round a smaller one inside: a frame with a hole.
    pge::Sprite frame(10, 10);
    canvas::FillPolygon(&frame, {{0, 0}, {8, 0}, {8, 8}, {0, 8}, {0, 0}, {2, 2}, {2, 6}, {6, 6}, {6, 2}, {2, 2}},
                        kInk);
    Points expected = Union(Block(0, 0, 7, 1), Block(0, 6, 7, 7));
    expected = Union(Union(expected, Block(0, 2, 1, 5)), Block(6, 2, 7, 5));
    EXPECT_EQ(Painted(frame), expected);

    pge::Sprite masked(6, 5);
    canvas::FillPolygon(&masked, {{1, 1}, {4, 1}, {4, 3}, {1, 3}}, kInk, [](int x, int y) { return (x + y) % 2 == 0; });
    EXPECT_EQ(Painted(masked), (Points{{1, 1}, {3, 1}, {2, 2}}));

    pge::Sprite clipped(3, 3);
    canvas::FillPolygon(&clipped, {{-5, -5}, {2, -5}, {2, 1}, {-5, 1}}, kInk);
    EXPECT_EQ(Painted(clipped), Block(0, 0, 1, 0));

    pge::Sprite none(4, 4);
    canvas::FillPolygon(&none, {{0, 0}, {4, 4}}, kInk);
    canvas::FillPolygon(&none, {{0, 0}, {4, 0}, {8, 0}}, kInk);
    EXPECT_TRUE(Painted(none).empty());
}

TEST(CanvasLines, ThinLines) {
    pge::Sprite s(6, 4);
    canvas::Line(&s, {0.5f, 0.5f}, {4.5f, 2.5f}, kInk);
    EXPECT_EQ(Painted(s), (Points{{0, 0}, {1, 1}, {2, 1}, {3, 2}, {4, 2}}));

    // Samples at x 0.1, 1.0, 1.9: pixel 1 comes twice but is blended once.
    pge::Sprite once(3, 1);
    canvas::Line(&once, {0.1f, 0.1f}, {1.9f, 0.1f}, pge::Pixel(255, 0, 0, 128));
    EXPECT_EQ(once.GetPixel(0, 0).r, 128);
    EXPECT_EQ(once.GetPixel(1, 0).r, 128);

    pge::Sprite dot(4, 4);
    canvas::Line(&dot, {2.5f, 1.5f}, {2.5f, 1.5f}, kInk, 1.0f);
    EXPECT_EQ(Painted(dot), (Points{{2, 1}}));

    pge::Sprite masked(6, 4);
    canvas::Line(&masked, {0.5f, 0.5f}, {4.5f, 2.5f}, kInk, 1.0f, [](int x, int) { return x >= 2; });
    EXPECT_EQ(Painted(masked), (Points{{2, 1}, {3, 2}, {4, 2}}));
}

TEST(CanvasLines, ThickLinesHaveSquareEnds) {
    pge::Sprite thin(7, 5), thick(7, 5);
    canvas::Line(&thin, {1, 2.5f}, {4, 2.5f}, kInk, 1.01f);
    canvas::Line(&thick, {1, 2.5f}, {4, 2.5f}, kInk, 1.02f);
    EXPECT_EQ(Painted(thin), Block(1, 2, 4, 2));
    EXPECT_EQ(Painted(thick), Block(0, 2, 4, 2)); // ends pushed out by 0.51

    pge::Sprite wide(9, 6);
    canvas::Line(&wide, {2, 3}, {6, 3}, kInk, 2.0f);
    EXPECT_EQ(Painted(wide), Block(1, 2, 6, 3));

    pge::Sprite masked(9, 6);
    canvas::Line(&masked, {2, 3}, {6, 3}, kInk, 2.0f, [](int x, int) { return x < 4; });
    EXPECT_EQ(Painted(masked), Block(1, 2, 3, 3));

    // No length: a disc of radius 1.5, the mask playing no part.
    pge::Sprite disc(8, 8);
    canvas::Line(&disc, {4.5f, 4.5f}, {4.5f, 4.5f}, kInk, 3.0f, [](int, int) { return false; });
    EXPECT_EQ(Painted(disc), Block(3, 3, 5, 5));
}

TEST(CanvasPolylines, DashesRunOnRoundCorners) {
    // Dash 2, gap 2: the first leg ends at phase 2 (in a gap), so the second leg starts
    // with a gap instead of a fresh dash. The doubled point is skipped without a phase step.
    pge::Sprite s(8, 8);
    canvas::Polyline(&s, {{0.5f, 0.5f}, {6.5f, 0.5f}, {6.5f, 0.5f}, {6.5f, 6.5f}}, kInk, 1.0f, false, 2.0f, 2.0f);
    Points expected = Union(Block(0, 0, 2, 0), Block(4, 0, 6, 0));
    expected = Union(expected, Block(6, 2, 6, 4));
    EXPECT_EQ(Painted(s), expected);

    pge::Sprite solid(8, 8);
    canvas::Polyline(&solid, {{0.5f, 0.5f}, {3.5f, 0.5f}, {3.5f, 2.5f}}, kInk, 1.0f, true);
    // Closing leg from (3.5, 2.5) back to (0.5, 0.5): n = 3, samples at x 3.5, 2.5, 1.5, 0.5.
    Points legs = Union(Block(0, 0, 3, 0), Block(3, 0, 3, 2));
    legs = Union(legs, Points{{2, 1}, {1, 1}});
    EXPECT_EQ(Painted(solid), legs);

    pge::Sprite none(4, 4);
    canvas::Polyline(&none, {{1, 1}}, kInk, 1.0f, true);
    canvas::Polyline(&none, {}, kInk, 3.0f, false, 1.0f, 1.0f);
    EXPECT_TRUE(Painted(none).empty());
}

TEST(CanvasPolylines, DashesEndEvenWhenRoundingStallsThePhase) {
    // With these lengths fmod(phase + pos, period) lands a hair below a dash's end at
    // pos 32.6, so a plain walk would step by nothing there for ever.
    const float dash = 2.9249835f, gap = 6.98032188f, period = dash + gap;
    pge::Sprite s(640, 2);
    canvas::Polyline(&s, {{0.5f, 0.5f}, {1187.5f, 0.5f}}, kInk, 1.0f, false, dash, gap);
    for (int k = 0; k * period + period < 639.0f; ++k) {
        const float start = 0.5f + float(k) * period;
        EXPECT_TRUE(s.GetPixel(int(start + dash / 2), 0) == kInk) << k;
        EXPECT_FALSE(s.GetPixel(int(start + dash + gap / 2), 0) == kInk) << k;
    }
}

TEST(CanvasRoundRects, CornersAndCapsules) {
    // Radius 0: four clusters of equal points, that is the plain rectangle.
    pge::Sprite square(7, 6);
    canvas::FillRoundRect(&square, 1, 1, 4, 3, 0, kInk);
    EXPECT_EQ(Painted(square), Block(1, 1, 4, 3));

    pge::Sprite outline(7, 6);
    canvas::StrokeRoundRect(&outline, 0.5f, 0.5f, 4, 3, 0, kInk, 1.0f);
    Points ring;
    for (auto [x, y] : Block(0, 0, 4, 3))
        if (x == 0 || x == 4 || y == 0 || y == 3) ring.insert({x, y});
    EXPECT_EQ(Painted(outline), ring);

    // A radius beyond half the height is cut to 2: a capsule whose end rows lose one pixel.
    pge::Sprite capsule(10, 6);
    canvas::FillRoundRect(&capsule, 0, 0, 8, 4, 100, kInk);
    EXPECT_EQ(Painted(capsule), Union(Union(Block(1, 0, 6, 0), Block(0, 1, 7, 2)), Block(1, 3, 6, 3)));
}
