// The round tower painted into each landscape, standing open at the top, its front
// rim following the rim table the runner walks on.
#include "game/stage/Theme.h"
#include "tools/paint/World.h"

#include <algorithm>
#include <cmath>

namespace paint {

namespace {
constexpr float kSinView = 0.98480775f; // sin of the ring's 80-degree half view
constexpr float kTilt = 0.18f;          // vertical over horizontal radius of the ring
constexpr float kInner = 0.8f;          // inner radius of the wall over the outer one

int Table(int index, int column) {
    return torvane::rim::kTop[static_cast<size_t>(index)][static_cast<size_t>(column - torvane::rim::kFirstColumn)];
}
bool InTable(int column) {
    return column >= torvane::rim::kFirstColumn && column < torvane::rim::kFirstColumn + torvane::rim::kColumns;
}
} // namespace

Frame FitFrame(int index) {
    // The drawn rim is the front of an ellipse of radius half / sin(80 degrees) and tilt
    // 0.18, its top at the frame's rim: the frame whose rim strays least from the table at
    // its worst column, and then in the sum of squares.
    int top = 0;
    for (int c = 0; c < torvane::rim::kColumns; ++c) top = std::max(top, Table(index, c + torvane::rim::kFirstColumn));
    Frame best;
    float bestWorst = 1e30f, bestError = 1e30f;
    for (int cx10 = 1200; cx10 <= 1700; ++cx10)
        for (int half = 40; half <= 70; ++half)
            for (int r2 = 2 * top - 1; r2 <= 2 * top + 1; ++r2) {
                const float cx = static_cast<float>(cx10) / 10.0f, rim = static_cast<float>(r2) / 2.0f;
                const float R = static_cast<float>(half) / kSinView;
                float error = 0.0f, worst = 0.0f;
                for (int c = torvane::rim::kFirstColumn; c < torvane::rim::kFirstColumn + torvane::rim::kColumns; ++c) {
                    const float n = (static_cast<float>(c) + 0.5f - cx) / R;
                    if (std::fabs(n) >= kSinView) {
                        worst = 1e30f; // the runner's columns must lie on the tower
                        break;
                    }
                    const float d = rim - R * kTilt * (1.0f - std::sqrt(1.0f - n * n)) - static_cast<float>(Table(index, c));
                    error += d * d;
                    worst = std::max(worst, std::fabs(d));
                }
                if (worst < bestWorst || (worst == bestWorst && error < bestError)) {
                    bestWorst = worst;
                    bestError = error;
                    best.centreX = cx;
                    best.halfWidth = static_cast<float>(half);
                    best.rimY = rim;
                }
            }
    return best;
}

int RimRow(int index, const Frame& f, int column) {
    if (InTable(column)) return Table(index, column);
    const float R = f.halfWidth / kSinView;
    const float n = std::clamp((static_cast<float>(column) + 0.5f - f.centreX) / R, -1.0f, 1.0f);
    return static_cast<int>(std::lround(f.rimY - R * kTilt * (1.0f - std::sqrt(1.0f - n * n))));
}

// Paints the tower on `p` with the stone ramp (n colours, dark to light), the interior
// ramp (4), and a dark ink for the ground shadow.
void PaintTower(Picture& p, int index, const Frame& f, int stone, int n, int dark, bool planks,
                const std::vector<int>& shadowOf) {
    const float R = f.halfWidth / kSinView;
    const float ry = R * kTilt;
    const float rimC = f.rimY - ry; // centre of the rim ellipse
    const float baseC = f.baseY - ry;
    const int x0 = static_cast<int>(std::floor(f.centreX - R * 1.08f)) - 1;
    const int x1 = static_cast<int>(std::ceil(f.centreX + R * 1.08f)) + 1;

    // The shadow on the ground, thrown to the right: the ground's own colours one ramp darker.
    for (int y = static_cast<int>(baseC); y < p.H(); ++y)
        for (int x = x0; x < p.W(); ++x) {
            const float dx = (static_cast<float>(x) + 0.5f - f.centreX - R * 0.9f) / (R * 1.9f);
            const float dy = (static_cast<float>(y) + 0.5f - baseC - ry * 0.4f) / (ry * 1.5f);
            if (dx * dx + dy * dy < 1.0f && p.Inside(x, y)) {
                const int under = p.At(x, y);
                if (shadowOf[static_cast<size_t>(under)] >= 0 && (dx * dx + dy * dy < 0.6f || Bayer(x, y) < 0.5f))
                    p.Set(x, y, shadowOf[static_cast<size_t>(under)]);
            }
        }

    const auto light = [](float a) { return std::clamp(0.7f + 0.42f * std::cos(a + 0.55f), 0.5f, 1.15f); };
    const auto tone = [&](float l) { return (l - 0.5f) / 0.65f * static_cast<float>(n - 3) + 1.0f; };

    // The plinth: a wider course under the foot, its top lit.
    const float pr = R * 1.07f;
    for (int x = x0; x <= x1; ++x) {
        const float nx = (static_cast<float>(x) + 0.5f - f.centreX) / pr;
        if (std::fabs(nx) >= 1.0f) continue;
        const float a = std::asin(nx), c = std::cos(a);
        const int top = static_cast<int>(std::lround(baseC - pr * kTilt * c)); // back of the plinth's top
        const int front = static_cast<int>(std::lround(f.baseY - ry + ry * 1.07f * c));
        const int bottom = front + 4;
        for (int y = top; y < bottom; ++y) {
            const int i = y < front ? Dither(stone, n, tone(light(a)) + 1.5f, x, y)
                                    : Dither(stone, n, tone(light(a)) - 2.5f - (y - front) * 0.4f, x, y);
            p.Set(x, y, i);
        }
        p.Set(x, bottom, dark);
    }

    for (int x = x0; x <= x1; ++x) {
        // The ring shows the tower to 80 degrees each side; the last sliver beyond is left out,
        // so that painted and drawn silhouettes are one.
        const float nx = (static_cast<float>(x) + 0.5f - f.centreX) / R;
        if (std::fabs(nx) >= kSinView) continue;
        const float a = std::asin(nx), c = std::cos(a);
        const int rim = RimRow(index, f, x);
        const int foot = static_cast<int>(std::lround(baseC + ry * c));
        const float l = light(a);
        // The front face, with courses of stone (or planks) following the curve.
        for (int y = rim; y < foot; ++y) {
            const float up = baseC + ry * c - (static_cast<float>(y) + 0.5f); // height above the foot
            // A shadow under the lip of the rim and in the joint above the plinth.
            float t = tone(l) - (y == rim || y == foot - 1 ? 3.0f : 0.0f);
            if (planks) {
                const float course = up / 4.0f;
                const float fr = course - std::floor(course);
                if (fr < 0.25f) t -= 2.0f;
                const float band = a * R / 22.0f;
                if (std::fabs(band - std::round(band)) * 22.0f < 0.8f) t -= 1.5f; // iron band
            } else {
                const int course = static_cast<int>(std::floor(up / 5.0f));
                const float along = a * R / 9.0f + (course & 1) * 0.5f;
                const int stoneNo = static_cast<int>(std::floor(along));
                const float fr = up / 5.0f - static_cast<float>(course);
                const float fa = (along - static_cast<float>(stoneNo)) * 9.0f * c; // joints crowd at the sides
                if (fr < 0.2f || fa < 0.9f) t -= 2.0f;
                else t += static_cast<float>(Hash(static_cast<uint32_t>(stoneNo), static_cast<uint32_t>(course),
                                                  static_cast<uint32_t>(index)) % 3) * 0.5f - 0.5f;
            }
            p.Set(x, y, Dither(stone, n, t, x, y));
        }
        // The silhouette's edge: a dark line on the shadow side, a lit one on the other.
        if (std::fabs(nx) > 0.97f)
            for (int y = rim; y < foot; ++y) p.Set(x, y, nx > 0 ? stone : stone + n - 4);

        // The top: back rim, the opening with the inner wall, and the front rim's upper face.
        const float back = rimC - ry * c;                   // outer back edge
        const bool open = std::fabs(nx) < kInner;
        const float qc = open ? std::sqrt(kInner * kInner - nx * nx) : 0.0f;
        const float innerBack = rimC - ry * qc, innerFront = rimC + ry * qc;
        for (int y = static_cast<int>(std::lround(back)); y < rim; ++y) {
            const float yc = static_cast<float>(y) + 0.5f;
            if (open && yc > innerBack && yc < innerFront) {
                // The inner wall: the far side lit where it faces the light, darker downwards.
                const float depth = (yc - innerBack) / std::max(innerFront - innerBack, 1.0f);
                const float facing = std::clamp(0.5f + nx * 0.6f, 0.0f, 1.0f);
                p.Set(x, y, Dither(stone, n, facing * 3.5f + 1.0f - depth * 2.5f, x, y));
            } else {
                const bool frontFace = yc >= innerFront;
                p.Set(x, y, Dither(stone, n, static_cast<float>(n - 1) - (frontFace ? 0.0f : 1.5f) - (1.0f - l) * 2.0f,
                                   x, y));
            }
        }
        if (rim - 1 >= 0) p.Set(x, rim - 1, stone + n - 1); // the lit lip the runner stands on
    }
}

} // namespace paint
