#include "engine/Canvas.h"

#include <algorithm>
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

std::vector<pge::vf2d> RoundRectPath(float x, float y, float w, float h, float r) {
    r = std::max(std::min(r, std::min(w, h) / 2.0f), 0.0f);
    struct Corner {
        float cx, cy, start;
    };
    const Corner corners[4] = {{x + w - r, y + r, -kQuarter},
                               {x + w - r, y + h - r, 0.0f},
                               {x + r, y + h - r, kQuarter},
                               {x + r, y + r, kHalf}};
    std::vector<pge::vf2d> path;
    path.reserve(20);
    for (const Corner& c : corners)
        for (int i = 0; i <= 4; ++i) {
            const float angle = c.start + float(i) * kQuarter / 4.0f;
            path.emplace_back(c.cx + r * std::cos(angle), c.cy + r * std::sin(angle));
        }
    return path;
}

} // namespace

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

// The span [x0, x1) of row y, clipped to the sprite.
void Span(pge::Sprite* sprite, int y, int x0, int x1, pge::Pixel colour) {
    if (y < 0 || y >= sprite->height) return;
    x0 = std::max(x0, 0);
    x1 = std::min(x1, sprite->width);
    BlendRun(sprite->GetData() + size_t(y) * size_t(sprite->width) + size_t(x0), x1 - x0, colour);
}

} // namespace

void FillRect(pge::Sprite* sprite, int x, int y, int w, int h, pge::Pixel colour) {
    if (!sprite) return;
    const int x0 = std::max(x, 0), y0 = std::max(y, 0);
    const int x1 = int(std::min<int64_t>(int64_t(x) + w, sprite->width));
    const int y1 = int(std::min<int64_t>(int64_t(y) + h, sprite->height));
    for (int py = y0; py < y1; ++py) Span(sprite, py, x0, x1, colour);
}

void FillEllipse(pge::Sprite* sprite, pge::vf2d c, float rx, float ry, pge::Pixel colour) {
    if (!sprite || !(rx > 0.0f) || !(ry > 0.0f)) return;
    const int y0 = int(std::max(std::floor(c.y - ry), 0.0f));
    const int y1 = int(std::min(std::ceil(c.y + ry), float(sprite->height - 1)));
    for (int y = y0; y <= y1; ++y) {
        const float t = (float(y) + 0.5f - c.y) / ry;
        if (t * t >= 1.0f) continue;
        const float s = std::sqrt(1.0f - t * t);
        const int x0 = int(std::max(std::ceil(c.x - s * rx - 0.5f), 0.0f));
        const int x1 = int(std::min(std::ceil(c.x + s * rx - 0.5f), float(sprite->width)));
        Span(sprite, y, x0, x1, colour);
    }
}

void FillCircle(pge::Sprite* sprite, pge::vf2d centre, float r, pge::Pixel colour) {
    FillEllipse(sprite, centre, r, r, colour);
}

void DrawSprite(pge::Sprite* sprite, const pge::Sprite* source, int dx, int dy, int sx, int sy, int w, int h,
                bool flip, float alpha) {
    if (!sprite || !source || h < 1) return;
    const float scale = std::max(alpha, 0.0f);
    for (int j = 0; j < h; ++j)
        for (int i = 0; i < w; ++i) {
            pge::Pixel p = source->GetPixel(flip ? sx + (w - 1 - i) : sx + i, sy + j);
            if (p.a == 0) continue;
            if (alpha < 1.0f) p.a = uint8_t(float(p.a) * scale);
            Blend(sprite, dx + i, dy + j, p);
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
    const int x0 = std::max(int(c.x - outer), 0), x1 = std::min(int(c.x + outer), sprite->width - 1);
    const int y0 = std::max(int(c.y - outer), 0), y1 = std::min(int(c.y + outer), sprite->height - 1);
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
    const int y0 = int(std::max(std::floor(minY), 0.0f));
    const int y1 = int(std::min(std::ceil(maxY), float(sprite->height - 1)));
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
            const int x0 = int(std::max(std::ceil(row[k] - 0.5f), 0.0f));
            const int x1 = int(std::min(std::ceil(row[k + 1] - 0.5f), float(sprite->width)));
            if (!mask)
                Span(sprite, y, x0, x1, colour);
            else
                for (int x = x0; x < x1; ++x)
                    if (mask(x, y)) Blend(sprite, x, y, colour);
        }
        begin = rowEnd;
    }
}

} // namespace

void FillPolygon(pge::Sprite* sprite, const std::vector<pge::vf2d>& points, pge::Pixel colour, const Mask& mask) {
    FillPoints(sprite, points.data(), points.size(), colour, mask);
}

void Line(pge::Sprite* sprite, pge::vf2d a, pge::vf2d b, pge::Pixel colour, float width, const Mask& mask) {
    if (!sprite) return;
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
    std::vector<std::pair<pge::vf2d, pge::vf2d>> segments;
    segments.reserve(points.size());
    for (size_t i = 0; i + 1 < points.size(); ++i) segments.emplace_back(points[i], points[i + 1]);
    if (closed) segments.emplace_back(points.back(), points.front());

    if (!(dash > 0.0f)) {
        for (const auto& [a, b] : segments) Line(sprite, a, b, colour, width, mask);
        return;
    }
    const float period = dash + std::max(gap, 0.0f);
    float phase = 0.0f;
    for (const auto& segment : segments) {
        // Named references, not a structured binding: the lambda below captures them.
        const pge::vf2d& a = segment.first;
        const pge::vf2d& b = segment.second;
        const float dx = b.x - a.x, dy = b.y - a.y;
        const float length = std::sqrt(dx * dx + dy * dy);
        if (length < 0.0001f) continue;
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
    if (!sprite) return;
    Polyline(sprite, RoundRectPath(x, y, w, h, radius), colour, width, true);
}

void FillRoundRect(pge::Sprite* sprite, float x, float y, float w, float h, float radius, pge::Pixel colour) {
    if (!sprite) return;
    FillPolygon(sprite, RoundRectPath(x, y, w, h, radius), colour);
}

} // namespace adv::canvas
