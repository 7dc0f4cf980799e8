// The five landscapes, 320 by 200, light from the left: a desert pass, a highland
// valley with a lake, a mountain fortress in snow, storm-lashed cliffs over the sea
// and a volcanic slope. Each is painted plain, then once more with its tower.
#include "game/stage/Theme.h"
#include "tools/paint/World.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <tuple>

namespace paint {

namespace {

using pge::Pixel;
constexpr float kPi = 3.1415927f;

// A pixel that takes part in a moving overlay, and where along the motion it lies.
struct Spot {
    int x, y, phase;
};

struct Scene {
    Landscape& L;
    Picture& p;
    Palette& pal;
    std::vector<Spot> spots; // scratch for overlays
    struct Overlay {
        std::vector<Spot> spots;
        int n, lit;
        Pixel glint;
        float strength, fps;
    };
    std::vector<Overlay> overlays;
    std::vector<std::pair<int, int>> grounds; // ramps (first, n) that the tower's shadow darkens

    explicit Scene(Landscape& l) : L(l), p(l.plain), pal(l.palette) {}

    int Ramp(const std::vector<Pixel>& keys, int n) { return pal.Ramp(keys, n); }

    // A ramp of n colours rotated at fps; pixels coloured first + phase mod n show it
    // moving towards rising phase.
    int Flow(const std::vector<Pixel>& keys, int n, float fps) {
        const int first = pal.Ramp(keys, n);
        L.cycles.push_back({first, first + n - 1, fps, -1});
        return first;
    }
    void SetFlow(int x, int y, int first, int n, int phase) { p.Set(x, y, first + ((phase % n) + n) % n); }

    void Sky(int first, int n, int y0, int y1) {
        for (int y = 0; y < p.H(); ++y)
            for (int x = 0; x < p.W(); ++x)
                p.Set(x, y, Dither(first, n, static_cast<float>(y - y0) / static_cast<float>(y1 - y0) * (n - 1), x, y));
    }

    // A soft halo of lighter sky rings and a round disc.
    void Sun(float cx, float cy, float r, int core, int halo) {
        for (int i = 3; i >= 1; --i)
            adv::canvas::FillPolygon(p.S(), Ellipse(cx, cy, r * (1.0f + 0.5f * i), r * (1.0f + 0.5f * i)), Ink(halo),
                                     Share(0.6f - 0.18f * i));
        adv::canvas::FillCircle(p.S(), {cx, cy}, r, Ink(core));
    }

    // A heaped cloud, lit from the upper left: puffs of a ramp (dark to light).
    void Cloud(float cx, float cy, float w, float h, int first, int n, uint32_t seed) {
        const int puffs = 5 + static_cast<int>(w / 10.0f);
        for (int k = 0; k < puffs; ++k) {
            const float fx = (static_cast<float>(Hash(seed, k) % 1000) / 1000.0f - 0.5f) * w;
            const float fy = (static_cast<float>(Hash(seed, k, 7) % 1000) / 1000.0f - 0.6f) * h * 0.6f;
            const float rr = h * (0.35f + static_cast<float>(Hash(seed, k, 9) % 100) / 250.0f) * (1.0f - std::fabs(fx) / w);
            const pge::vf2d c{cx + fx, cy + fy};
            for (int y = static_cast<int>(c.y - rr) - 1; y <= static_cast<int>(c.y + rr) + 1; ++y)
                for (int x = static_cast<int>(c.x - rr * 1.6f) - 1; x <= static_cast<int>(c.x + rr * 1.6f) + 1; ++x) {
                    const float dx = (static_cast<float>(x) + 0.5f - c.x) / (rr * 1.6f), dy = (static_cast<float>(y) + 0.5f - c.y) / rr;
                    if (dx * dx + dy * dy >= 1.0f || y > cy + h * 0.3f) continue;
                    const float lit = 0.5f - dx * 0.35f - dy * 0.55f + (cy - static_cast<float>(y)) / h * 0.5f;
                    p.Set(x, y, Dither(first, n, lit * static_cast<float>(n - 1), x, y));
                }
        }
    }

    // Pointed mountains: for each column the highest of the peaks' flanks, the face
    // left of each peak's jagged crest lit, the right one in shade. colour(x, y, lit, depth 0..1, height above foot).
    template <typename Fn>
    void Mountains(const std::vector<std::tuple<float, float, float>>& peaks, float foot, uint32_t seed, Fn colour) {
        for (int x = 0; x < p.W(); ++x) {
            float top = 1e9f;
            size_t owner = 0;
            for (size_t k = 0; k < peaks.size(); ++k) {
                const auto [px, py, half] = peaks[k];
                const float d = std::fabs(static_cast<float>(x) + 0.5f - px);
                const float y = py + d / half * (foot - py) + Fractal1(static_cast<float>(x) / 7.0f, seed + k, 3) * 3.0f * std::min(d / 6.0f, 1.0f);
                if (y < top) {
                    top = y;
                    owner = k;
                }
            }
            const auto [px, py, half] = peaks[owner];
            for (int y = std::max(static_cast<int>(top), 0); y < std::min(static_cast<int>(foot) + 1, p.H()); ++y) {
                const float depth = (static_cast<float>(y) - py) / std::max(foot - py, 1.0f);
                const float crest = px + depth * half * 0.35f + Fractal1(static_cast<float>(y) / 5.0f, seed + 31 + owner, 3) * 5.0f * depth;
                p.Set(x, y, colour(x, y, static_cast<float>(x) < crest, std::clamp(depth, 0.0f, 1.0f), static_cast<float>(y) - top));
            }
        }
    }

    // A fir, layered boughs widening downwards, lit on the left; `snow` (or -1) settles on the boughs.
    void Pine(float tx, float ty, float h, int ramp, int snow) {
        for (int y = static_cast<int>(ty - h); y < static_cast<int>(ty); ++y) {
            const float k = (y - (ty - h)) / h;
            const float tier = k * 4.0f - std::floor(k * 4.0f); // each bough tier widens to its lower edge
            const float w = h * 0.24f * (k * 0.7f + tier * 0.3f) + 0.5f;
            for (int x = static_cast<int>(std::lround(tx - w)); x <= static_cast<int>(std::lround(tx + w)); ++x) {
                int i = ramp + (x < tx - w * 0.35f ? 2 : (x > tx + w * 0.3f ? 0 : 1));
                if (snow >= 0 && tier < 0.3f && x < tx + w * 0.5f) i = snow;
                p.Set(x, y, i);
            }
        }
        p.Set(static_cast<int>(tx), static_cast<int>(ty), ramp);
    }

    void AddOverlay(int n, int lit, Pixel glint, float strength, float fps) {
        overlays.push_back({spots, n, lit, glint, strength, fps});
        spots.clear();
    }
};

// Applies a moving overlay to a picture: every listed pixel gets a cycled copy of its own
// colour, one range of n per colour met, `lit` entries of it brightened towards the glint.
void ApplyOverlay(Landscape& L, Picture& p, const Scene::Overlay& o, std::map<std::tuple<int, size_t>, int>& ranges,
                  size_t which, const std::set<int>& keep) {
    for (const Spot& s : o.spots) {
        if (!p.Inside(s.x, s.y)) continue;
        const int base = p.At(s.x, s.y);
        if (keep.count(base) || std::any_of(L.cycles.begin(), L.cycles.end(), [base](const Cycle& c) {
                return base >= c.start && base <= c.end;
            }))
            continue;
        const auto key = std::make_tuple(base, which);
        auto it = ranges.find(key);
        if (it == ranges.end()) {
            if (L.palette.Size() + o.n > 256) continue;
            const int first = L.palette.Size();
            const Pixel c = L.palette.colours[static_cast<size_t>(base)];
            for (int j = 0; j < o.n; ++j)
                L.palette.Add(j < o.lit ? adv::canvas::Mix(c, o.glint, o.strength * (1.0f - static_cast<float>(j) / o.lit)) : c);
            L.cycles.push_back({first, first + o.n - 1, o.fps, -1});
            it = ranges.emplace(key, first).first;
        }
        p.Set(s.x, s.y, it->second + ((s.phase % o.n) + o.n) % o.n);
    }
}

// Keeps only the cycles that some pixel of the picture uses.
std::vector<Cycle> UsedCycles(const Landscape& L, const Picture& p) {
    std::vector<bool> used(256, false);
    for (uint8_t i : p.Indices()) used[i] = true;
    std::vector<Cycle> out;
    for (const Cycle& c : L.cycles)
        for (int i = c.start; i <= c.end; ++i)
            if (used[static_cast<size_t>(i)]) {
                out.push_back(c);
                break;
            }
    return out;
}

// ---------------------------------------------------------------- the desert pass

void Desert(Scene& s) {
    Picture& p = s.p;
    s.pal.Add(Pixel(28, 14, 12));
    const int sky = s.Ramp({{172, 84, 62}, {222, 138, 86}, {242, 186, 124}, {251, 229, 189}}, 14);
    const int sun = s.pal.Add(Pixel(255, 248, 226));
    const int mesa = s.Ramp({{150, 96, 106}, {196, 138, 128}, {226, 178, 150}}, 5);
    const int rock = s.Ramp({{70, 30, 26}, {138, 64, 42}, {196, 110, 64}, {236, 168, 106}}, 11);
    const int dune = s.Ramp({{150, 92, 52}, {206, 148, 86}, {246, 206, 146}}, 8);
    const int sand = s.Ramp({{132, 84, 48}, {190, 132, 76}, {232, 190, 126}}, 8);
    s.grounds = {{dune, 8}, {sand, 8}};
    s.Sky(sky, 14, 4, 116);
    s.Sun(44, 30, 8, sun, sky + 13);

    // Far mesas, flat-topped, in the haze of the horizon.
    const std::vector<std::tuple<float, float, float>> mesas = {{20, 95, 28}, {118, 99, 40}, {196, 92, 22}, {292, 97, 30}};
    for (int x = 0; x < p.W(); ++x)
        for (const auto& [mx, my, half] : mesas) {
            const float d = std::fabs(static_cast<float>(x) - mx);
            if (d > half + 8) continue;
            const int top = static_cast<int>(my + std::max(d - half, 0.0f) * 1.6f + Fractal1(x / 5.0f, 11, 2) * 1.2f);
            for (int y = top; y < 118; ++y) {
                const bool lit = static_cast<float>(x) < mx - half * 0.2f;
                p.Set(x, y, Dither(mesa, 5, (lit ? 3.2f : 1.6f) + (y - top) * 0.05f, x, y));
            }
        }

    // The far floor of the desert beyond the pass, in the haze.
    for (int y = 112; y < 150; ++y)
        for (int x = 0; x < p.W(); ++x)
            if (p.At(x, y) >= sky && p.At(x, y) < sky + 14) p.Set(x, y, Dither(mesa, 5, 4.4f - (y - 112) * 0.06f, x, y));

    // The walls of the pass: terraced buttes of red sandstone with strata and grooves,
    // the left wall turned away from the light, the right one towards it.
    const auto strata = [&](int x, int y, int top, float lit) {
        if (y - top < 2) return Dither(rock, 11, lit + 3.5f, x, y); // sunlit edge
        const float shifted = static_cast<float>(y) + Fractal1(static_cast<float>(x) / 40.0f, 5, 2) * 4.0f;
        const int band = static_cast<int>(std::floor(shifted / 6.0f));
        const float inBand = shifted - band * 6.0f;
        float t = lit + ((band & 1) ? 0.9f : -0.2f);
        if (inBand < 1.0f) t -= 1.8f;                                        // ledge shadow
        if (Noise1(static_cast<float>(x) / 2.7f, 7 + static_cast<uint32_t>(band)) > 0.55f) t -= 1.2f; // groove
        return Dither(rock, 11, t - (y - top) * 0.015f, x, y);
    };
    for (int x = 0; x < 118; ++x) {
        const int top = 50 + (x / 23) * 12 + static_cast<int>(Fractal1(x / 6.0f, 21, 2) * 2.0f);
        const float face = 116.0f - static_cast<float>(x);
        for (int y = top; y < 150; ++y) {
            if (face + (y - 80) * 0.35f < 0) continue;
            const bool stepFace = (x % 23) > 19; // the sides of the terraces face the pass
            p.Set(x, y, strata(x, y, top, stepFace ? 1.5f : 3.2f));
        }
    }
    for (int x = 196; x < p.W(); ++x) {
        const int top = 38 + ((319 - x) / 25) * 13 + static_cast<int>(Fractal1(x / 6.0f, 23, 2) * 2.0f);
        for (int y = top; y < 150; ++y) {
            if (static_cast<float>(x) - 204.0f + (y - 60) * 0.3f < 0) continue;
            const bool stepFace = ((319 - x) % 25) > 21;
            p.Set(x, y, strata(x, y, top, stepFace ? 7.5f : 5.2f));
        }
    }

    // Dunes in the pass, lit on their left slopes.
    Ridge dunes(static_cast<size_t>(p.W()));
    for (int x = 0; x < p.W(); ++x)
        dunes[static_cast<size_t>(x)] = 139.0f + 5.0f * std::sin(x / 21.0f) + 2.5f * std::sin(x / 8.0f + 1.0f);
    FillBelow(p, dunes, [&](int x, int y, int depth) {
        // Each dune lit on the slope that faces left, the crest sharp.
        const float slope = dunes[static_cast<size_t>(std::min(x + 1, p.W() - 1))] - dunes[static_cast<size_t>(std::max(x - 1, 0))];
        const float face = std::clamp(slope, -2.0f, 2.0f) * 1.4f * std::max(0.0f, 1.0f - depth / 14.0f);
        return Dither(dune, 8, 4.0f + face - depth * 0.12f + (depth == 0 ? 1.5f : 0.0f), x, y);
    });
    // The floor of the pass, ripples of wind across it.
    const Ridge floor = MakeRidge(p.W(), 158, 3, 60, 43, 2);
    FillBelow(p, floor, [&](int x, int y, int depth) {
        const float ripple = std::sin(x * 0.35f + y * 1.7f + Fractal1(x / 20.0f, 44, 2) * 4.0f) > 0.82f ? -1.5f : 0.0f;
        return Dither(sand, 8, 3.0f + depth * 0.1f + ripple + (depth == 0 ? 2.0f : 0.0f), x, y);
    });
    // Boulders, lit from the upper left.
    for (int k = 0; k < 9; ++k) {
        const float bx = static_cast<float>(Hash(k, 3) % 320), by = 166.0f + static_cast<float>(Hash(k, 4) % 30);
        const float r = 2.5f + static_cast<float>(Hash(k, 5) % 5);
        for (int y = static_cast<int>(by - r); y <= static_cast<int>(by); ++y)
            for (int x = static_cast<int>(bx - r * 1.5f); x <= static_cast<int>(bx + r * 1.5f); ++x) {
                const float dx = (x + 0.5f - bx) / (r * 1.5f), dy = (y + 0.5f - by) / r;
                if (dx * dx + dy * dy < 1.0f) p.Set(x, y, Dither(rock, 11, 5.5f - dx * 3.0f - dy * 2.0f, x, y));
            }
    }

    // Heat shimmer over the horizon, blowing sand over the floor.
    for (int y = 86; y < 150; ++y)
        for (int x = 0; x < p.W(); ++x)
            if ((p.At(x, y) >= mesa && p.At(x, y) < mesa + 5) || (p.At(x, y) >= sky + 10 && p.At(x, y) < sky + 14) ||
                (y > 128 && p.At(x, y) >= dune && p.At(x, y) < dune + 8))
                s.spots.push_back({x, y, -y * 2 + static_cast<int>(3.0f * std::sin(x * 0.23f))}); // rising
    s.AddOverlay(6, 2, Pixel(255, 244, 222), 0.35f, 9.0f);
    for (int k = 0; k < 46; ++k) {
        const int x0 = static_cast<int>(Hash(k, 10) % 340) - 20, y0 = 132 + static_cast<int>(Hash(k, 11) % 66);
        const int len = 24 + static_cast<int>(Hash(k, 12) % 40);
        for (int i = 0; i < len; ++i) {
            const int x = x0 + i, y = y0 + static_cast<int>(std::lround(std::sin(i / 7.0f + k) * 1.5f));
            s.spots.push_back({x, y, x});
        }
    }
    s.AddOverlay(16, 5, Pixel(255, 240, 206), 0.75f, 22.0f);
}

// ---------------------------------------------------------------- the highland lake

void Highlands(Scene& s) {
    Picture& p = s.p;
    s.pal.Add(Pixel(16, 22, 14));
    const int sky = s.Ramp({{104, 150, 176}, {159, 191, 194}, {214, 222, 200}, {238, 226, 192}}, 12);
    const int cloud = s.Ramp({{150, 166, 176}, {214, 220, 218}, {255, 252, 240}}, 5);
    const int far = s.Ramp({{86, 110, 140}, {126, 148, 170}, {176, 192, 204}, {236, 242, 246}}, 8);
    const int hill = s.Ramp({{44, 70, 52}, {76, 104, 67}, {126, 148, 88}}, 7);
    const int pine = s.Ramp({{18, 34, 26}, {38, 62, 40}, {66, 96, 54}}, 4);
    const int grass = s.Ramp({{52, 72, 43}, {92, 120, 58}, {150, 170, 84}}, 8);
    const int water = s.Ramp({{42, 74, 98}, {80, 120, 140}, {150, 184, 196}}, 7);
    s.grounds = {{grass, 8}};
    s.Sky(sky, 12, 0, 112);
    s.Cloud(60, 34, 70, 16, cloud, 5, 3);
    s.Cloud(250, 22, 60, 12, cloud, 5, 4);
    s.Cloud(180, 52, 40, 9, cloud, 5, 5);

    // Far mountains with snow above the tree line, their left faces in the light.
    s.Mountains({{40, 44, 70}, {112, 58, 60}, {190, 38, 66}, {276, 50, 60}}, 104, 100, [&](int x, int y, bool lit, float depth, float) {
        const bool snow = depth < 0.3f + Fractal1(x / 6.0f, 101, 2) * 0.12f;
        const float t = snow ? (lit ? 7.0f : 5.0f) : (lit ? 3.5f : 1.5f) + depth * 1.5f;
        return Dither(far, 8, t, x, y);
    });
    // Two rows of green hills, the nearer darker.
    const Ridge back = MakeRidge(p.W(), 100, 7, 40, 110, 3);
    FillBelow(p, back, [&](int x, int y, int d) { return Dither(hill, 7, 5.0f - d * 0.12f + (x < 160 ? 0.8f : 0.0f), x, y); });
    const Ridge near = MakeRidge(p.W(), 112, 9, 30, 111, 3);
    FillBelow(p, near, [&](int x, int y, int d) { return Dither(hill, 7, 3.6f - d * 0.1f, x, y); });

    // The lake: reflections of the mountains, darker in the middle, lighter at the far shore.
    const int lakeTop = 124, lakeBottom = 156;
    for (int y = lakeTop; y < lakeBottom; ++y) {
        const float shore = 10.0f * std::sin((y - lakeTop) * 0.09f) + 8.0f + Fractal1(y / 3.0f, 130, 2) * 4.0f;
        const int x0 = static_cast<int>(shore), x1 = p.W() - static_cast<int>(shore * 0.6f + 2.0f);
        for (int x = x0; x < x1; ++x) {
            const int mirror = 2 * lakeTop - y;
            const int above = mirror >= 0 ? p.At(x, mirror) : sky;
            const bool snowy = above >= far + 5 && above < far + 8;
            // A lit strand along the far shore, the reflections below it.
            const bool strand = y == lakeTop;
            p.Set(x, y, strand ? hill + 6 : Dither(water, 7, snowy ? 4.5f : 2.5f + (y - lakeTop) * 0.05f, x, y));
        }
    }
    // The waterfall from the crag on the right into the lake.
    const int fall = s.Flow({{120, 160, 180}, {236, 246, 250}, {150, 190, 206}, {250, 255, 255}, {120, 160, 180}}, 8, 14.0f);
    for (int y = 86; y < lakeTop + 2; ++y)
        for (int x = 262; x < 268 + (y - 86) / 10; ++x) s.SetFlow(x, y, fall, 8, y + (x & 1) * 3);
    for (int x = 258; x < 276; ++x) s.SetFlow(x, lakeTop + 2 + (x & 1), fall, 8, std::abs(x - 265) * 2); // spreading rings
    // Pines on the near slopes.
    for (int k = 0; k < 22; ++k)
        s.Pine(k < 11 ? static_cast<float>(Hash(k, 20) % 70) : 250.0f + static_cast<float>(Hash(k, 20) % 70),
               150.0f + static_cast<float>(Hash(k, 21) % 22), 18.0f + static_cast<float>(Hash(k, 22) % 14), pine, -1);
    // The meadow down to the foot of the tower.
    const Ridge meadow = MakeRidge(p.W(), 160, 4, 50, 112, 2);
    FillBelow(p, meadow, [&](int x, int y, int d) {
        const float tuft = Hash(x, y, 113) % 11 == 0 ? 1.5f : 0.0f;
        return Dither(grass, 8, 5.0f - d * 0.1f + tuft + (d < 2 ? 1.5f : 0.0f), x, y);
    });

    // Glints on the lake, slow; the fall is fast.
    for (int y = lakeTop; y < lakeBottom; ++y)
        for (int x = 0; x < p.W(); ++x)
            if (p.At(x, y) >= water && p.At(x, y) < water + 7 && (Hash(x / 3, y, 120) % 5 == 0))
                s.spots.push_back({x, y, static_cast<int>(Hash(x / 3, y, 121) % 12)});
    s.AddOverlay(12, 2, Pixel(255, 255, 236), 0.85f, 6.0f);
}

// ---------------------------------------------------------------- the snow fortress

void Snowpass(Scene& s) {
    Picture& p = s.p;
    s.pal.Add(Pixel(14, 18, 28));
    const int sky = s.Ramp({{110, 132, 170}, {147, 167, 194}, {210, 220, 232}, {238, 241, 245}}, 10);
    const int snow = s.Ramp({{92, 108, 140}, {150, 168, 196}, {214, 224, 238}, {255, 255, 255}}, 10);
    const int rock = s.Ramp({{38, 40, 52}, {78, 80, 94}, {120, 122, 136}}, 5);
    const int fort = s.Ramp({{40, 42, 56}, {88, 92, 108}, {150, 154, 168}}, 6);
    const int fire = s.Flow({{255, 200, 96}, {255, 232, 150}, {230, 150, 60}, {255, 214, 120}, {200, 120, 50}}, 6, 5.0f);
    const int pine = s.Ramp({{20, 34, 40}, {44, 66, 66}, {200, 214, 230}}, 4);
    const int field = s.Ramp({{150, 166, 194}, {206, 216, 232}, {246, 248, 252}}, 8);
    s.grounds = {{field, 8}, {snow, 10}};
    s.Sky(sky, 10, 0, 120);

    s.Mountains({{30, 30, 80}, {120, 18, 90}, {236, 26, 80}, {318, 40, 60}}, 120, 200, [&](int x, int y, bool lit, float depth, float below) {
        // Bare rock in gullies running down the fall line: down-left on the lit face, down-right in the shade.
        const float u = static_cast<float>(x) + static_cast<float>(y) * (lit ? 0.8f : -0.8f);
        const bool bare = depth > 0.18f && Noise1(u / 3.0f, 201) + Noise2(u / 9.0f, y / 6.0f, 203) * 0.6f > (lit ? 0.75f : 0.35f);
        if (bare) return Dither(rock, 5, lit ? 3.5f : 1.0f, x, y);
        return Dither(snow, 10, (lit ? 8.5f : 4.0f) - depth * 2.0f + (below < 1.0f ? 1.0f : 0.0f), x, y);
    });
    // The fortress on its crag, right of the tower: a curtain wall, two towers and the keep
    // under steep roofs, snow on the left of every roof, firelight in the windows.
    const int cx = 252, ground = 116;
    for (int y = 100; y < 140; ++y)
        for (int x = cx - 44; x < cx + 46; ++x) {
            const float w = 22.0f + (y - 100) * 1.1f + Fractal1(y / 3.0f, 202, 2) * 3.0f;
            if (std::fabs(x + 0.5f - cx) < w) p.Set(x, y, Dither(rock, 5, x < cx - w * 0.3f ? 3.5f : 1.2f, x, y));
        }
    const auto block = [&](int x0, int y0, int x1, int roof) {
        for (int y = y0; y < ground; ++y)
            for (int x = x0; x < x1; ++x)
                p.Set(x, y, Dither(fort, 6, (x < x0 + 2 ? 4.5f : 2.6f) - (y - y0) * 0.03f - ((y - y0) % 5 == 4 ? 0.8f : 0.0f), x, y));
        if (roof == 0) { // merlons with snow on them
            for (int x = x0; x < x1; ++x) {
                const bool merlon = ((x - x0) / 3) % 2 == 0;
                p.Set(x, y0 - 1, merlon ? fort + 3 : snow + 9);
                if (merlon) p.Set(x, y0 - 2, snow + 9);
            }
            return;
        }
        const float mid = (x0 + x1) * 0.5f;
        for (int y = y0 - roof; y < y0; ++y) {
            const float w = (x1 - x0 + 2) * 0.5f * static_cast<float>(y - (y0 - roof) + 1) / static_cast<float>(roof);
            for (int x = static_cast<int>(std::floor(mid - w)); x < static_cast<int>(std::ceil(mid + w)); ++x)
                p.Set(x, y, x + 0.5f < mid ? (((x + y) & 3) == 0 ? snow + 7 : snow + 9) : fort);
        }
    };
    block(cx - 24, 100, cx + 26, 0);
    block(cx - 28, 90, cx - 17, 12);
    block(cx + 19, 88, cx + 30, 12);
    block(cx - 7, 80, cx + 9, 16);
    for (const auto& [wx, wy] : std::vector<std::pair<int, int>>{{cx - 23, 96}, {cx + 24, 94}, {cx - 2, 86}, {cx + 4, 86}, {cx - 10, 106}, {cx + 12, 106}})
        for (int y = wy; y < wy + 3; ++y) s.SetFlow(wx, y, fire, 6, wx + y / 2);

    // A wood of snow-laden pines, then the snowfield.
    for (int k = 0; k < 70; ++k)
        s.Pine(static_cast<float>(Hash(k, 212) % 330) - 5.0f, 136.0f + static_cast<float>(Hash(k, 213) % 14),
               12.0f + static_cast<float>(Hash(k, 214) % 10), pine, pine + 3);
    const Ridge fieldTop = MakeRidge(p.W(), 146, 4, 60, 211, 2);
    FillBelow(p, fieldTop, [&](int x, int y, int d) {
        const float drift = std::sin(x * 0.05f + y * 0.4f) * 0.8f;
        return Dither(field, 8, 6.5f - d * 0.06f + drift + (d < 2 ? 1.0f : 0.0f), x, y);
    });
    // Sparkles on the snowfield, slow and at random; snowfall drifting down the sky, faster.
    for (int y = 146; y < p.H(); ++y)
        for (int x = 0; x < p.W(); ++x)
            if (p.At(x, y) >= field + 4 && p.At(x, y) < field + 8 && Hash(x, y, 220) % 17 == 0)
                s.spots.push_back({x, y, static_cast<int>(Hash(x, y, 221) % 9)});
    s.AddOverlay(9, 1, Pixel(255, 255, 210), 1.0f, 4.0f);
    for (int k = 0; k < 64; ++k) {
        const float x0 = static_cast<float>(Hash(k, 230) % 330) - 5.0f;
        const int off = static_cast<int>(Hash(k, 231) % 11);
        for (int y = 0; y < 140; ++y) {
            const int x = static_cast<int>(x0 + y * 0.25f + std::sin(y * 0.11f + k) * 2.0f);
            if (p.Inside(x, y) && p.At(x, y) >= sky && p.At(x, y) < sky + 10) s.spots.push_back({x, y, y + off});
        }
    }
    s.AddOverlay(11, 1, Pixel(255, 255, 255), 1.0f, 12.0f);
}

// ---------------------------------------------------------------- the storm coast

void Stormcoast(Scene& s) {
    Picture& p = s.p;
    s.pal.Add(Pixel(12, 16, 22));
    const int sky = s.Ramp({{58, 64, 80}, {96, 110, 128}, {143, 170, 190}, {233, 220, 192}}, 12);
    const int cloud = s.Ramp({{40, 44, 56}, {78, 86, 100}, {120, 130, 144}}, 5);
    const int sea = s.Ramp({{18, 36, 48}, {40, 70, 84}, {90, 124, 132}}, 7);
    const int cliff = s.Ramp({{34, 36, 38}, {84, 82, 76}, {150, 144, 128}, {196, 188, 166}}, 9);
    const int grass = s.Ramp({{46, 58, 36}, {86, 102, 63}, {132, 146, 88}}, 7);
    const int surf = s.Flow({{250, 252, 250}, {200, 220, 222}, {120, 150, 156}, {60, 92, 104}, {40, 70, 84}, {40, 70, 84}}, 10, 9.0f);
    const int beam = s.Flow({{255, 250, 200}, {180, 176, 150}, {96, 104, 112}, {96, 104, 112}, {96, 104, 112}}, 8, 3.0f);
    s.grounds = {{grass, 7}};
    s.Sky(sky, 12, 0, 116);
    // Low storm clouds across the sky, torn open near the horizon.
    for (int k = 0; k < 7; ++k)
        s.Cloud(20.0f + k * 48.0f, 16.0f + (k % 3) * 12.0f, 60, 18, cloud, 5, 300 + k);
    // The sea to the horizon, darker towards the front, crests of swell.
    for (int y = 114; y < p.H(); ++y)
        for (int x = 0; x < p.W(); ++x) {
            const float swell = std::sin(x * 0.12f + y * 0.9f + Fractal1(x / 15.0f, 301, 2) * 3.0f);
            p.Set(x, y, Dither(sea, 7, 4.0f - (y - 114) * 0.04f + (swell > 0.8f ? 1.5f : 0.0f) + (y == 114 ? 2.0f : 0.0f), x, y));
        }
    // A lighthouse on a far headland, its lamp turning.
    for (int y = 104; y < 116; ++y)
        for (int x = 286; x < 320; ++x)
            if (y > 104 + (320 - x) * 0.3f) p.Set(x, y, cliff + 1);
    for (int y = 92; y < 106; ++y)
        for (int x = 300; x < 304; ++x) p.Set(x, y, (y / 3) & 1 ? cliff + 8 : cliff + 4);
    for (int x = 298; x < 306; ++x) p.Set(x, 91, cliff);
    for (int y = 88; y < 91; ++y)
        for (int x = 296; x < 308; ++x) s.SetFlow(x, y, beam, 8, x > 302 ? x - 302 : 302 - x);

    // Sea stacks on the right with surf breaking round them.
    const std::vector<std::tuple<float, float, float, float>> stacks = {{262, 150, 9, 40}, {296, 168, 14, 30}, {226, 128, 5, 14}};
    for (const auto& [sx, sy, sw, sh] : stacks)
        for (int y = static_cast<int>(sy - sh); y < static_cast<int>(sy + 2); ++y)
            for (int x = static_cast<int>(sx - sw - 2); x <= static_cast<int>(sx + sw + 2); ++x) {
                const float w = sw * (0.6f + 0.4f * (y - (sy - sh)) / sh) + Fractal1(y / 4.0f, 310 + static_cast<uint32_t>(sx), 2) * 2.0f;
                if (std::fabs(x + 0.5f - sx) < w) p.Set(x, y, Dither(cliff, 9, x < sx - w * 0.3f ? 6.0f : 2.5f, x, y));
            }
    for (const auto& [sx, sy, sw, sh] : stacks)
        for (int y = static_cast<int>(sy - 4); y < static_cast<int>(sy + 9); ++y)
            for (int x = static_cast<int>(sx - sw * 2.2f); x <= static_cast<int>(sx + sw * 2.2f); ++x) {
                if (!p.Inside(x, y) || p.At(x, y) < sea || p.At(x, y) >= sea + 7) continue;
                const float dx = (x + 0.5f - sx) / (sw * 2.2f), dy = (y + 0.5f - sy - 1.0f) / 7.0f;
                const float d = std::sqrt(dx * dx + dy * dy);
                if (d < 1.0f) s.SetFlow(x, y, surf, 10, -static_cast<int>(d * 14.0f)); // rolling in
            }

    // The clifftop the tower stands on: heath and grass, rocks breaking through, and on the
    // right the cliff falling to the sea, its face turned from the light.
    const Ridge top = MakeRidge(p.W(), 156, 3, 40, 320, 2);
    const auto edgeAt = [](int y) { return 212.0f + (y - 150) * 0.45f + Fractal1(y / 6.0f, 321, 2) * 4.0f; };
    for (int x = 0; x < p.W(); ++x) {
        const int t = static_cast<int>(top[static_cast<size_t>(x)] + std::max(static_cast<float>(x) - 170.0f, 0.0f) * 0.15f);
        for (int y = t; y < p.H(); ++y) {
            const float edge = edgeAt(y);
            if (static_cast<float>(x) > edge) continue;
            const int d = y - t;
            if (static_cast<float>(x) > edge - 7.0f && y > t + 3) {
                // The cliff face: vertical cracks, darker towards the sea.
                const float crack = Noise1(x / 1.7f, 323) > 0.5f ? -1.5f : 0.0f;
                p.Set(x, y, Dither(cliff, 9, 3.0f - (static_cast<float>(x) - edge + 7.0f) * 0.3f + crack, x, y));
                continue;
            }
            const float heath = Noise2(x / 9.0f, y / 4.0f, 324);
            float g = 4.0f - d * 0.05f + (d == 0 ? 1.5f : 0.0f) + (heath > 0.35f ? -1.5f : 0.0f);
            if (Hash(x, y, 325) % 13 == 0) g += 1.5f; // tufts catching the light
            p.Set(x, y, Dither(grass, 7, g, x, y));
        }
    }
    for (int k = 0; k < 7; ++k) { // boulders in the grass
        const float bx = static_cast<float>(Hash(k, 326) % 200), by = 170.0f + static_cast<float>(Hash(k, 327) % 26);
        const float r = 2.0f + static_cast<float>(Hash(k, 328) % 4);
        for (int y = static_cast<int>(by - r); y <= static_cast<int>(by); ++y)
            for (int x = static_cast<int>(bx - r * 1.6f); x <= static_cast<int>(bx + r * 1.6f); ++x) {
                const float dx = (x + 0.5f - bx) / (r * 1.6f), dy = (y + 0.5f - by) / r;
                if (dx * dx + dy * dy < 1.0f) p.Set(x, y, Dither(cliff, 9, 6.0f - dx * 3.0f - dy * 2.0f, x, y));
            }
    }
    // Surf breaking at the cliff foot.
    for (int y = 168; y < p.H(); ++y) {
        const float edge = edgeAt(y);
        for (int x = static_cast<int>(edge) + 1; x < static_cast<int>(edge) + 16; ++x)
            if (p.Inside(x, y) && p.At(x, y) >= sea && p.At(x, y) < sea + 7)
                s.SetFlow(x, y, surf, 10, -static_cast<int>((x - edge) * 0.8f + Noise1(y / 3.0f, 329) * 2.0f));
    }

    // Rain: long streaks slanting down to the right over sky and sea, fast.
    for (int k = 0; k < 90; ++k) {
        const int x0 = static_cast<int>(Hash(k, 330) % 420) - 100;
        const int off = static_cast<int>(Hash(k, 331) % 9);
        for (int y = 0; y < p.H(); ++y) {
            const int x = x0 + y / 3;
            if (p.Inside(x, y) && ((p.At(x, y) >= sky && p.At(x, y) < sky + 12) || (p.At(x, y) >= cloud && p.At(x, y) < cloud + 5) ||
                                   (p.At(x, y) >= sea && p.At(x, y) < sea + 7)))
                s.spots.push_back({x, y, y + off});
        }
    }
    s.AddOverlay(9, 3, Pixel(214, 226, 236), 0.6f, 24.0f);
}

// ---------------------------------------------------------------- the volcanic slope

void Volcanic(Scene& s) {
    Picture& p = s.p;
    s.pal.Add(Pixel(10, 6, 6));
    const int sky = s.Ramp({{46, 22, 26}, {77, 38, 38}, {150, 70, 48}, {212, 112, 58}, {236, 160, 90}}, 14);
    const int ash = s.Ramp({{30, 22, 24}, {64, 48, 48}, {104, 80, 74}}, 5);
    const int cone = s.Ramp({{22, 16, 18}, {52, 40, 40}, {90, 70, 64}, {130, 96, 80}}, 7);
    const int basalt = s.Ramp({{16, 12, 14}, {38, 26, 23}, {70, 52, 46}, {104, 80, 70}}, 8);
    const int lava = s.Flow({{255, 240, 150}, {255, 190, 70}, {240, 110, 30}, {180, 50, 20}, {240, 110, 30}, {255, 190, 70}}, 10, 8.0f);
    const int glow = s.Flow({{120, 30, 16}, {200, 70, 24}, {255, 150, 60}, {200, 70, 24}, {120, 30, 16}}, 8, 3.0f);
    s.grounds = {{basalt, 8}};
    s.Sky(sky, 14, 0, 118);

    // The cone on the right, its crater glowing, an ash plume leaning left.
    const float vx = 226, vy = 40;
    for (int x = 0; x < p.W(); ++x) {
        const float d = std::fabs(x + 0.5f - vx);
        const float top = d < 14 ? vy + Fractal1(x / 3.0f, 401, 2) : vy + (d - 14) * 0.62f + Fractal1(x / 6.0f, 402, 3) * 3.0f;
        for (int y = std::max(static_cast<int>(top), 0); y < 130; ++y) {
            const bool lit = x + 0.5f < vx - (y - vy) * 0.1f + Fractal1(y / 4.0f, 403, 2) * 4.0f;
            p.Set(x, y, Dither(cone, 7, (lit ? 4.5f : 2.0f) - (y - top) * 0.015f + ((static_cast<int>(y + x * 0.3f) % 7) == 0 ? -1.0f : 0.0f), x, y));
        }
    }
    // The ash plume: puffs growing as they rise and drift to the left.
    for (int k = 11; k >= 0; --k) {
        const float up = static_cast<float>(k) * 4.0f;
        s.Cloud(vx - up * 0.9f - up * up * 0.012f, vy - 4.0f - up, 10.0f + up * 1.1f, 7.0f + up * 0.45f, ash, 5, 440 + k);
    }
    for (int x = static_cast<int>(vx) - 12; x < static_cast<int>(vx) + 12; ++x)
        for (int y = static_cast<int>(vy) - 2; y < static_cast<int>(vy) + 2; ++y)
            if (p.At(x, y) < sky || p.At(x, y) >= sky + 14) s.SetFlow(x, y, glow, 8, x / 3);
    // Lava running down the cone in two tongues.
    for (int t = 0; t < 2; ++t)
        for (int y = static_cast<int>(vy); y < 128; ++y) {
            const float x = vx + (t ? 1.0f : -1.0f) * (y - vy) * (t ? 0.25f : 0.42f) + std::sin(y * 0.18f + t * 2) * 3.0f;
            const int w = 1 + (y - static_cast<int>(vy)) / 30;
            for (int k = -w; k <= w; ++k) s.SetFlow(static_cast<int>(x) + k, y, lava, 10, y - std::abs(k)); // running down
        }

    // Layered ridges of old flows, darkening towards the front.
    const Ridge mid = MakeRidge(p.W(), 126, 6, 40, 410, 3);
    FillBelow(p, mid, [&](int x, int y, int d) { return Dither(basalt, 8, 4.5f - d * 0.1f + (d < 1 ? 2.0f : 0.0f), x, y); });
    const Ridge front = MakeRidge(p.W(), 152, 7, 36, 411, 3);
    FillBelow(p, front, [&](int x, int y, int d) {
        const float slope = front[static_cast<size_t>(std::min(x + 1, p.W() - 1))] - front[static_cast<size_t>(std::max(x - 1, 0))];
        const float crack = Noise2(x / 16.0f, y / 2.0f, 412); // old flows in layers along the slope
        // The faces of the ridge catch the light near its crest only; below lie layers of old flows.
        const float face = (slope > 0 ? 0.7f : -0.7f) * std::max(0.0f, 1.0f - d / 10.0f);
        return Dither(basalt, 8, 3.3f + face - d * 0.04f + (crack > 0.4f ? 1.2f : 0.0f) + (d < 1 ? 2.5f : 0.0f), x, y);
    });
    // Glowing cracks in the ground, pulsing slowly.
    for (int k = 0; k < 10; ++k) {
        float x = static_cast<float>(Hash(k, 420) % 320), y = 160.0f + static_cast<float>(Hash(k, 421) % 36);
        for (int i = 0; i < 26; ++i) {
            s.SetFlow(static_cast<int>(x), static_cast<int>(y), glow, 8, i / 2 + k);
            x += 1.0f;
            y += Noise1(i / 3.0f, 422 + k) * 1.2f;
        }
    }
    // Embers rising from the crater and the cracks, fast.
    for (int k = 0; k < 44; ++k) {
        const float x0 = static_cast<float>(Hash(k, 430) % 330);
        const int off = static_cast<int>(Hash(k, 431) % 13);
        for (int y = 0; y < 160; ++y) {
            const int x = static_cast<int>(x0 + std::sin(y * 0.09f + k) * 4.0f - y * 0.1f);
            if (p.Inside(x, y) && p.At(x, y) >= sky && p.At(x, y) < sky + 14) s.spots.push_back({x, y, -y + off});
        }
    }
    s.AddOverlay(13, 1, Pixel(255, 200, 90), 1.0f, 14.0f);
}

struct Style {
    const char* name;
    void (*paint)(Scene&);
    float baseY;
    Pixel stone;
    bool planks;
};

const Style kStyles[5] = {
    {"torvane-bg-01-desert", Desert, 178, {216, 178, 122}, false},
    {"torvane-bg-02-highlands", Highlands, 178, {146, 100, 60}, true},
    {"torvane-bg-03-snowpass", Snowpass, 172, {124, 130, 140}, false},
    {"torvane-bg-04-stormcoast", Stormcoast, 178, {156, 146, 128}, false},
    {"torvane-bg-05-volcanic", Volcanic, 178, {84, 80, 86}, false},
};

} // namespace

Landscape PaintLandscape(int index) {
    const Style& style = kStyles[index];
    Landscape L;
    L.name = style.name;
    Scene s(L);
    style.paint(s);
    const int stone = L.palette.Ramp({adv::canvas::Shade(style.stone, 0.28f, 255), adv::canvas::Shade(style.stone, 0.75f, 255),
                                      style.stone, adv::canvas::Shade(style.stone, 1.3f, 255)},
                                     12);
    L.frame = FitFrame(index);
    L.frame.baseY = style.baseY;
    std::vector<int> shadowOf(256, -1);
    for (const auto& [first, n] : s.grounds)
        for (int i = first; i < first + n; ++i) shadowOf[static_cast<size_t>(i)] = std::max(first, i - 3);
    L.tower = L.plain.Copy();
    PaintTower(L.tower, index, L.frame, stone, 12, 0, style.planks, shadowOf);
    std::set<int> keep;
    for (int i = stone; i < stone + 12; ++i) keep.insert(i);
    std::map<std::tuple<int, size_t>, int> ranges;
    for (const Scene::Overlay& o : s.overlays) {
        ranges.clear();
        ApplyOverlay(L, L.plain, o, ranges, 0, keep);
        ApplyOverlay(L, L.tower, o, ranges, 0, keep);
    }
    return L;
}

std::vector<Cycle> CyclesOf(const Landscape& L, bool tower) { return UsedCycles(L, tower ? L.tower : L.plain); }

} // namespace paint
