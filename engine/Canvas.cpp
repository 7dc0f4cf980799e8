#include "engine/Canvas.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cmath>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace adv::canvas {
namespace {

// Start angles of the corners and the quarter turn, as the rounded decimals the
// outline has always used.
constexpr float kQuarter = 1.5708f;
constexpr float kHalf = 3.1416f;

// The directions of the outline's 20 points, five per corner, worked out once.
struct CornerTurns {
    float cos[20], sin[20];
    CornerTurns() {
        const float starts[4] = {-kQuarter, 0.0f, kQuarter, kHalf};
        for (int k = 0; k < 20; ++k) {
            const float angle = starts[k / 5] + float(k % 5) * kQuarter / 4.0f;
            cos[k] = std::cos(angle);
            sin[k] = std::sin(angle);
        }
    }
};

std::vector<pge::vf2d> RoundRectPath(float x, float y, float w, float h, float r) {
    static const CornerTurns turns;
    r = std::max(std::min(r, std::min(w, h) / 2.0f), 0.0f);
    const pge::vf2d centres[4] = {{x + w - r, y + r}, {x + w - r, y + h - r}, {x + r, y + h - r}, {x + r, y + r}};
    std::vector<pge::vf2d> path;
    path.reserve(20);
    for (int k = 0; k < 20; ++k)
        path.emplace_back(centres[k / 5].x + r * turns.cos[k], centres[k / 5].y + r * turns.sin[k]);
    return path;
}

} // namespace

Rect g_clip{INT_MIN, INT_MIN, INT_MAX, INT_MAX};

ClipScope::ClipScope(Rect clip) : saved(g_clip) {
    g_clip = {std::max(clip.x0, saved.x0), std::max(clip.y0, saved.y0), std::min(clip.x1, saved.x1),
              std::min(clip.y1, saved.y1)};
}

ClipScope::~ClipScope() { g_clip = saved; }

void BlendRun(pge::Pixel* at, int count, pge::Pixel c) {
    if (count <= 0 || c.a == 0) return;
    if (c.a == 255) {
        std::fill_n(at, count, c);
        return;
    }
    int i = 0;
#ifdef __SSE2__
    // Four pixels at a time in 16-bit lanes: x = d * mul + add, taken modulo 2^16, is
    // d * (255 - a) + c * a for a colour channel and (255 - d) * a for the alpha, both at
    // most 65025; (x + 1 + (x >> 8)) >> 8 is x / 255 exactly in that range, and the alpha
    // then gets its d back.
    const int a = c.a, keep = 255 - a;
    const auto lane = [](int v) { return static_cast<short>(static_cast<uint16_t>(v)); };
    const __m128i mul = _mm_setr_epi16(lane(keep), lane(keep), lane(keep), lane(-a), lane(keep), lane(keep),
                                       lane(keep), lane(-a));
    const __m128i add = _mm_setr_epi16(lane(c.r * a), lane(c.g * a), lane(c.b * a), lane(255 * a), lane(c.r * a),
                                       lane(c.g * a), lane(c.b * a), lane(255 * a));
    const __m128i alpha = _mm_setr_epi16(0, 0, 0, -1, 0, 0, 0, -1);
    const __m128i one = _mm_set1_epi16(1);
    const __m128i zero = _mm_setzero_si128();
    const auto over = [&](__m128i d) {
        const __m128i x = _mm_add_epi16(_mm_mullo_epi16(d, mul), add);
        const __m128i q = _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(x, one), _mm_srli_epi16(x, 8)), 8);
        return _mm_add_epi16(q, _mm_and_si128(d, alpha));
    };
    for (; i + 4 <= count; i += 4) {
        __m128i* p = reinterpret_cast<__m128i*>(at + i);
        const __m128i px = _mm_loadu_si128(p);
        _mm_storeu_si128(p, _mm_packus_epi16(over(_mm_unpacklo_epi8(px, zero)), over(_mm_unpackhi_epi8(px, zero))));
    }
#endif
    for (; i < count; ++i) at[i] = Over(at[i], c);
}

namespace {

// The span [x0, x1) of row y, clipped to the drawable part of the sprite.
void Span(pge::Sprite* sprite, int y, int x0, int x1, pge::Pixel colour) {
    const Rect b = Bounds(*sprite);
    if (y < b.y0 || y >= b.y1) return;
    x0 = std::max(x0, b.x0);
    x1 = std::min(x1, b.x1);
    BlendRun(sprite->GetData() + size_t(y) * size_t(sprite->width) + size_t(x0), x1 - x0, colour);
}

} // namespace

void FillRect(pge::Sprite* sprite, int x, int y, int w, int h, pge::Pixel colour) {
    if (!sprite) return;
    const Rect b = Bounds(*sprite);
    const int x0 = std::max(x, b.x0), y0 = std::max(y, b.y0);
    const int x1 = int(std::min<int64_t>(int64_t(x) + w, b.x1));
    const int y1 = int(std::min<int64_t>(int64_t(y) + h, b.y1));
    for (int py = y0; py < y1; ++py) Span(sprite, py, x0, x1, colour);
}

void EllipseSpans(pge::vf2d c, float rx, float ry, Rect b, std::vector<RowSpan>& out) {
    if (!(rx > 0.0f) || !(ry > 0.0f)) return;
    const int y0 = int(std::max(std::floor(c.y - ry), float(b.y0)));
    const int y1 = int(std::min(std::ceil(c.y + ry), float(b.y1 - 1)));
    for (int y = y0; y <= y1; ++y) {
        const float t = (float(y) + 0.5f - c.y) / ry;
        if (t * t >= 1.0f) continue;
        const float s = std::sqrt(1.0f - t * t);
        const int x0 = int(std::max(std::ceil(c.x - s * rx - 0.5f), float(b.x0)));
        const int x1 = int(std::min(std::ceil(c.x + s * rx - 0.5f), float(b.x1)));
        if (x1 > x0) out.push_back({y, x0, x1});
    }
}

void FillEllipse(pge::Sprite* sprite, pge::vf2d c, float rx, float ry, pge::Pixel colour) {
    if (!sprite) return;
    thread_local std::vector<RowSpan> spans;
    spans.clear();
    EllipseSpans(c, rx, ry, Bounds(*sprite), spans);
    for (const RowSpan& r : spans)
        BlendRun(sprite->GetData() + size_t(r.y) * size_t(sprite->width) + size_t(r.x0), r.x1 - r.x0, colour);
}

void FillCircle(pge::Sprite* sprite, pge::vf2d centre, float r, pge::Pixel colour) {
    FillEllipse(sprite, centre, r, r, colour);
}

void DrawSprite(pge::Sprite* sprite, const pge::Sprite* source, int dx, int dy, int sx, int sy, int w, int h,
                bool flip, float alpha) {
    if (!sprite || !source || h < 1) return;
    const float scale = std::max(alpha, 0.0f);
    // A plain source is read in place: outside it every pixel is blank and so skipped.
    const bool plain = source->modeSample == pge::Sprite::NORMAL;
    // Only the pixels that land within the target's bounds are looked at.
    const Rect b = Bounds(*sprite);
    const int i0 = int(std::max<int64_t>(0, int64_t(b.x0) - dx)), i1 = int(std::min<int64_t>(w, int64_t(b.x1) - dx));
    const int j0 = int(std::max<int64_t>(0, int64_t(b.y0) - dy)), j1 = int(std::min<int64_t>(h, int64_t(b.y1) - dy));
    for (int j = j0; j < j1; ++j) {
        if (plain && (sy + j < 0 || sy + j >= source->height)) continue;
        const pge::Pixel* row = source->GetData() + (plain ? size_t(sy + j) * size_t(source->width) : 0);
        for (int i = i0; i < i1; ++i) {
            const int x = flip ? sx + (w - 1 - i) : sx + i;
            if (plain && (x < 0 || x >= source->width)) continue;
            pge::Pixel p = plain ? row[x] : source->GetPixel(x, sy + j);
            if (p.a == 0) continue;
            if (alpha < 1.0f) p.a = uint8_t(float(p.a) * scale);
            Blend(sprite, dx + i, dy + j, p);
        }
    }
}

std::unique_ptr<pge::Sprite> Downscale(const pge::Sprite& source, int w, int h) {
    auto out = std::make_unique<pge::Sprite>(w, h);
    if (w < 1 || h < 1) return out;
    const float fx = float(source.width) / float(w);
    const float fy = float(source.height) / float(h);
    const pge::Pixel* src = source.GetData();
    pge::Pixel* dst = out->GetData();
    for (int y = 0; y < h; ++y) {
        const int r0 = std::min(int(float(y) * fy), source.height);
        const int r1 = std::min(std::max(int(float(y + 1) * fy), r0 + 1), source.height);
        for (int x = 0; x < w; ++x) {
            const int c0 = std::min(int(float(x) * fx), source.width);
            const int c1 = std::min(std::max(int(float(x + 1) * fx), c0 + 1), source.width);
            uint32_t sum[4] = {0, 0, 0, 0};
            for (int sy = r0; sy < r1; ++sy)
                for (int sx = c0; sx < c1; ++sx) {
                    const pge::Pixel p = src[size_t(sy) * size_t(source.width) + size_t(sx)];
                    sum[0] += p.r;
                    sum[1] += p.g;
                    sum[2] += p.b;
                    sum[3] += p.a;
                }
            const uint32_t count = uint32_t((r1 - r0) * (c1 - c0));
            dst[size_t(y) * size_t(w) + size_t(x)] =
                count == 0 ? pge::Pixel(0u)
                           : pge::Pixel(uint8_t(sum[0] / count), uint8_t(sum[1] / count), uint8_t(sum[2] / count),
                                        uint8_t(sum[3] / count));
        }
    }
    return out;
}

pge::Pixel Mix(pge::Pixel a, pge::Pixel b, float t) {
    t = std::min(std::max(t, 0.0f), 1.0f);
    const auto channel = [t](uint8_t from, uint8_t to) {
        return uint8_t(float(from) + t * (float(to) - float(from)) + 0.5f);
    };
    return pge::Pixel(channel(a.r, b.r), channel(a.g, b.g), channel(a.b, b.b), channel(a.a, b.a));
}

void VerticalGradient(pge::Sprite* sprite, int x, int y, int w, int h, pge::Pixel top, pge::Pixel bottom) {
    if (h < 1) return;
    if (h == 1) {
        FillRect(sprite, x, y, w, 1, Mix(top, bottom, 0.0f));
        return;
    }
    for (int i = 0; i < h; ++i) FillRect(sprite, x, y + i, w, 1, Mix(top, bottom, float(i) / float(h - 1)));
}

void RadialGradient(pge::Sprite* sprite, pge::vf2d c, float inner, float outer, pge::Pixel from, pge::Pixel to) {
    if (!sprite || !(outer > inner)) return;
    const Rect b = Bounds(*sprite);
    const int x0 = std::max(int(c.x - outer), b.x0), x1 = std::min(int(c.x + outer), b.x1 - 1);
    const int y0 = std::max(int(c.y - outer), b.y0), y1 = std::min(int(c.y + outer), b.y1 - 1);
    for (int y = y0; y <= y1; ++y)
        for (int x = x0; x <= x1; ++x) {
            const float d = std::hypot(float(x) + 0.5f - c.x, float(y) + 0.5f - c.y);
            if (d > outer) continue;
            Blend(sprite, x, y, Mix(from, to, std::max((d - inner) / (outer - inner), 0.0f)));
        }
}

pge::Pixel Shade(pge::Pixel c, float factor, uint8_t alpha) {
    const auto channel = [factor](uint8_t v) -> uint8_t {
        const float p = float(v) * factor;
        if (p >= 255.0f) return 255;
        if (p <= 0.0f) return 0;
        return uint8_t(p);
    };
    return pge::Pixel(channel(c.r), channel(c.g), channel(c.b), alpha);
}

pge::Pixel WithAlpha(pge::Pixel c, float alpha) {
    if (alpha > 1.0f)
        c.a = 255;
    else if (!(alpha > 0.0f))
        c.a = 0;
    else
        c.a = uint8_t(alpha * 255.0f + 0.5f);
    return c;
}

namespace {

// FillPolygon on `count` points from `points`, so that Line can hand over its corners
// without a vector.
void FillPoints(pge::Sprite* sprite, const pge::vf2d* points, size_t count, pge::Pixel colour, const Mask& mask) {
    if (!sprite || count < 3) return;
    const pge::vf2d* const end = points + count;
    float minY = points[0].y, maxY = points[0].y;
    for (const pge::vf2d* it = points; it != end; ++it) {
        const pge::vf2d& p = *it;
        minY = std::min(minY, p.y);
        maxY = std::max(maxY, p.y);
    }
    const Rect b = Bounds(*sprite);
    const int y0 = int(std::max(std::floor(minY), float(b.y0)));
    const int y1 = int(std::min(std::ceil(maxY), float(b.y1 - 1)));
    // Each edge visits only the rows it spans, rather than every row testing every edge;
    // the crossings are then grouped by row, bucket by bucket, and sorted within a row.
    struct Crossing {
        int y;
        float x;
    };
    thread_local std::vector<Crossing> found;
    thread_local std::vector<float> byRow;
    thread_local std::vector<int> rowStart;
    if (y1 < y0) return;
    found.clear();
    const pge::vf2d* p = end - 1;
    for (const pge::vf2d* it = points; it != end; ++it) {
        const pge::vf2d& q = *it;
        const float lo = std::min(p->y, q.y), hi = std::max(p->y, q.y);
        if (lo < hi) {
            // A row or so more on each side than the scan line needs; the test below decides.
            const int from = int(std::max(std::floor(lo) - 1.0f, float(y0)));
            const int to = int(std::min(std::ceil(hi) + 1.0f, float(y1)));
            for (int y = from; y <= to; ++y) {
                const float ys = float(y) + 0.5f;
                if ((p->y <= ys && ys < q.y) || (q.y <= ys && ys < p->y))
                    found.push_back({y, p->x + (q.x - p->x) * (ys - p->y) / (q.y - p->y)});
            }
        }
        p = &q;
    }
    rowStart.assign(size_t(y1 - y0) + 2, 0);
    for (const Crossing& c : found) ++rowStart[size_t(c.y - y0) + 1];
    for (size_t r = 1; r < rowStart.size(); ++r) rowStart[r] += rowStart[r - 1];
    byRow.resize(found.size());
    for (const Crossing& c : found) byRow[size_t(rowStart[size_t(c.y - y0)]++)] = c.x;
    // rowStart[r] now is the end of row r, and so the start of row r + 1.
    for (int y = y0, begin = 0; y <= y1; ++y) {
        const int rowEnd = rowStart[size_t(y - y0)];
        float* row = byRow.data() + begin;
        const int n = rowEnd - begin;
        if (n == 2) {
            if (row[1] < row[0]) std::swap(row[0], row[1]);
        } else {
            std::sort(row, row + n);
        }
        for (int k = 0; k + 1 < n; k += 2) {
            const int x0 = int(std::max(std::ceil(row[k] - 0.5f), float(b.x0)));
            const int x1 = int(std::min(std::ceil(row[k + 1] - 0.5f), float(b.x1)));
            if (!mask)
                Span(sprite, y, x0, x1, colour);
            else
                for (int x = x0; x < x1; ++x)
                    if (mask(x, y)) Blend(sprite, x, y, colour);
        }
        begin = rowEnd;
    }
}

// Whether a line from a to b of this width stays clear of the rectangle; a margin covers
// its square ends and the rounding to pixels.
bool Misses(const Rect& r, pge::vf2d a, pge::vf2d b, float width) {
    const float reach = std::max(width, 1.0f) + 1.0f;
    return std::max(a.x, b.x) + reach < float(r.x0) || std::min(a.x, b.x) - reach > float(r.x1) ||
           std::max(a.y, b.y) + reach < float(r.y0) || std::min(a.y, b.y) - reach > float(r.y1);
}

} // namespace

void FillPolygon(pge::Sprite* sprite, const std::vector<pge::vf2d>& points, pge::Pixel colour, const Mask& mask) {
    FillPoints(sprite, points.data(), points.size(), colour, mask);
}

void Line(pge::Sprite* sprite, pge::vf2d a, pge::vf2d b, pge::Pixel colour, float width, const Mask& mask) {
    // Nothing to do for a line wholly outside the drawable part (a clipped redraw visits many).
    if (!sprite || Misses(Bounds(*sprite), a, b, width)) return;
    const float dx = b.x - a.x, dy = b.y - a.y;
    if (width <= 1.01f) {
        const int n = std::max(int(std::ceil(std::max(std::fabs(dx), std::fabs(dy)))), 1);
        int lastX = -99999, lastY = -99999;
        for (int i = 0; i <= n; ++i) {
            const float f = float(i) / float(n);
            const int x = int(std::floor(a.x + dx * f)), y = int(std::floor(a.y + dy * f));
            if (x == lastX && y == lastY) continue;
            lastX = x;
            lastY = y;
            if (!mask || mask(x, y)) Blend(sprite, x, y, colour);
        }
        return;
    }
    const float length = std::sqrt(dx * dx + dy * dy);
    const float half = width / 2.0f;
    if (length < 0.001f) {
        FillEllipse(sprite, a, half, half, colour);
        return;
    }
    const float ux = dx / length, uy = dy / length;
    const pge::vf2d from(a.x - ux * half, a.y - uy * half), to(b.x + ux * half, b.y + uy * half);
    const float nx = -uy * half, ny = ux * half;
    const pge::vf2d corners[4] = {
        {from.x + nx, from.y + ny}, {to.x + nx, to.y + ny}, {to.x - nx, to.y - ny}, {from.x - nx, from.y - ny}};
    FillPoints(sprite, corners, 4, colour, mask);
}

void Polyline(pge::Sprite* sprite, const std::vector<pge::vf2d>& points, pge::Pixel colour, float width, bool closed,
              float dash, float gap, const Mask& mask) {
    if (!sprite || points.size() < 2) return;
    pge::vf2d low = points[0], high = points[0];
    for (const pge::vf2d& p : points) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
    if (Misses(Bounds(*sprite), low, high, width)) return;
    std::vector<std::pair<pge::vf2d, pge::vf2d>> segments;
    segments.reserve(points.size());
    for (size_t i = 0; i + 1 < points.size(); ++i) segments.emplace_back(points[i], points[i + 1]);
    if (closed) segments.emplace_back(points.back(), points.front());

    if (!(dash > 0.0f)) {
        for (const auto& [a, b] : segments) Line(sprite, a, b, colour, width, mask);
        return;
    }
    const float period = dash + std::max(gap, 0.0f);
    const Rect bounds = Bounds(*sprite);
    float phase = 0.0f;
    for (const auto& segment : segments) {
        // Named references, not a structured binding: the lambda below captures them.
        const pge::vf2d& a = segment.first;
        const pge::vf2d& b = segment.second;
        const float dx = b.x - a.x, dy = b.y - a.y;
        const float length = std::sqrt(dx * dx + dy * dy);
        if (length < 0.0001f) continue;
        // A segment wholly outside the drawable part only moves the pattern on.
        if (Misses(bounds, a, b, width)) {
            phase = std::fmod(length + phase, period);
            continue;
        }
        const auto at = [&](float s) { return pge::vf2d(a.x + dx * s / length, a.y + dy * s / length); };
        float pos = 0.0f;
        while (pos < length) {
            const float ph = std::fmod(phase + pos, period);
            float next = pos + (period - ph);
            if (ph < dash) {
                next = std::min(pos + dash - ph, length);
                if (next > pos) Line(sprite, at(pos), at(next), colour, width, mask);
            }
            // Rounding in phase + pos can leave a step too small to move pos at all;
            // one step of float precision then keeps the walk going.
            pos = next > pos ? next : std::nextafter(pos, length);
        }
        phase = std::fmod(length + phase, period);
    }
}

void StrokeRoundRect(pge::Sprite* sprite, float x, float y, float w, float h, float radius, pge::Pixel colour,
                     float width) {
    if (!sprite || Misses(Bounds(*sprite), {x, y}, {x + w, y + h}, width)) return;
    Polyline(sprite, RoundRectPath(x, y, w, h, radius), colour, width, true);
}

void FillRoundRect(pge::Sprite* sprite, float x, float y, float w, float h, float radius, pge::Pixel colour) {
    if (!sprite || Misses(Bounds(*sprite), {x, y}, {x + w, y + h}, 1.0f)) return;
    FillPolygon(sprite, RoundRectPath(x, y, w, h, radius), colour);
}

} // namespace adv::canvas
