#include "engine/adventure/WalkArea.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <queue>
#include <utility>

namespace adv {

namespace {

constexpr float kCornerOffset = 1.75f; // lets a line of sight pass a corner without grazing it

// Calls edge(a, b) for every edge of the outline and of each hole, in that order.
template <typename F>
void ForEachEdge(const WalkArea& area, F edge) {
    auto polygon = [&](const Polygon& p) {
        const size_t n = p.vertices.size();
        for (size_t i = 0, j = n - 1; i < n; j = i++) edge(p.vertices[j], p.vertices[i]);
    };
    polygon(area.outer);
    for (const Polygon& h : area.holes) polygon(h);
}

vf2d Unit(vf2d v) {
    const float len = Length(v);
    return len <= 1e-6f ? vf2d{0.0f, 0.0f} : v * (1.0f / len);
}

} // namespace

bool WalkArea::IsWalkable(vf2d p) const {
    if (!outer.Contains(p)) return false;
    for (const Polygon& h : holes)
        if (h.Contains(p)) return false;
    return true;
}

size_t WalkArea::EdgeCount() const {
    size_t n = 0;
    ForEachEdge(*this, [&](vf2d, vf2d) { ++n; });
    return n;
}

bool WalkArea::HasLineOfSight(vf2d a, vf2d b) const {
    if (outer.vertices.size() < 3) return true;
    bool crossed = false;
    ForEachEdge(*this, [&](vf2d c, vf2d d) { crossed = crossed || SegmentsCross(a, b, c, d); });
    if (crossed) return false;
    // Touching does not count as crossing, so a line over a hole's corners or wholly
    // outside is caught by sampling.
    const int n = std::max(int(Distance(a, b) * 0.25f), 2);
    for (int i = 0; i <= n; ++i)
        if (!IsWalkable(a + (b - a) * (float(i) / float(n)))) return false;
    return true;
}

vf2d WalkArea::ClampToArea(vf2d p) const {
    if (outer.vertices.size() < 3 || IsWalkable(p)) return p;
    float best = std::numeric_limits<float>::max();
    vf2d nearest = p;
    ForEachEdge(*this, [&](vf2d a, vf2d b) {
        const vf2d q = ClosestPointOnSegment(a, b, p);
        const float d = Distance(p, q);
        if (d < best) {
            best = d;
            nearest = q;
        }
    });
    for (int r = 0; r < 11; ++r) {
        const float radius = 0.5f + 0.75f * float(r);
        for (int k = 0; k < 12; ++k) {
            const float angle = float(k) * 6.28318f / 12.0f;
            const vf2d c = nearest + vf2d{std::cos(angle), std::sin(angle)} * radius;
            if (IsWalkable(c)) return c;
        }
    }
    return nearest;
}

void WalkArea::Bake() {
    nodes.clear();
    baked = true;
    if (outer.vertices.size() < 3) return;
    auto corners = [&](const Polygon& p) {
        const size_t n = p.vertices.size();
        for (size_t i = 0; i < n; ++i) {
            const vf2d v = p.vertices[i];
            const vf2d u = Unit(p.vertices[(i + n - 1) % n] - v);
            const vf2d w = Unit(p.vertices[(i + 1) % n] - v);
            vf2d dir = u + w;
            // A straight corner: step off along the side's normal.
            dir = Length(dir) <= 1e-6f ? vf2d{-w.y, w.x} : Unit(dir);
            const vf2d plus = v + dir * kCornerOffset;
            const vf2d minus = v - dir * kCornerOffset;
            if (IsWalkable(plus))
                nodes.push_back(plus);
            else if (IsWalkable(minus))
                nodes.push_back(minus);
        }
    };
    corners(outer);
    for (const Polygon& h : holes) corners(h);
}

void WalkArea::EnsureBaked() {
    if (!baked) Bake();
}

std::vector<vf2d> WalkArea::FindPath(vf2d from, vf2d to) {
    if (outer.vertices.size() < 3) return {to};
    EnsureBaked();
    const vf2d start = IsWalkable(from) ? from : ClampToArea(from);
    const vf2d goal = IsWalkable(to) ? to : ClampToArea(to);
    if (HasLineOfSight(start, goal)) return {goal};

    std::vector<vf2d> points{start, goal};
    points.insert(points.end(), nodes.begin(), nodes.end());
    const size_t n = points.size();
    std::vector<std::vector<size_t>> edges(n);
    for (size_t i = 0; i < n; ++i)
        for (size_t j = i + 1; j < n; ++j)
            if (HasLineOfSight(points[i], points[j])) {
                edges[i].push_back(j);
                edges[j].push_back(i);
            }

    constexpr float kNone = std::numeric_limits<float>::max();
    std::vector<float> g(n, kNone);
    std::vector<size_t> previous(n, n);
    std::vector<bool> closed(n, false);
    using Entry = std::pair<float, size_t>;
    std::priority_queue<Entry, std::vector<Entry>, std::greater<Entry>> open;
    g[0] = 0.0f;
    open.push({Distance(start, goal), 0});
    while (!open.empty()) {
        const size_t current = open.top().second;
        open.pop();
        if (closed[current]) continue;
        closed[current] = true;
        if (current == 1) break;
        for (size_t next : edges[current]) {
            const float t = g[current] + Distance(points[current], points[next]);
            if (g[next] > t) {
                g[next] = t;
                previous[next] = current;
                open.push({t + Distance(points[next], goal), next});
            }
        }
    }
    if (g[1] == kNone) return {};
    std::vector<vf2d> path;
    for (size_t i = 1; i != 0; i = previous[i]) path.push_back(points[i]);
    return {path.rbegin(), path.rend()};
}

} // namespace adv
