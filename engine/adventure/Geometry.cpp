#include "engine/adventure/Geometry.h"

#include <cmath>
#include <limits>

namespace adv {

float Dot(vf2d a, vf2d b) { return a.x * b.x + a.y * b.y; }
float Length(vf2d a) { return std::sqrt(Dot(a, a)); }
float Distance(vf2d a, vf2d b) { return Length(b - a); }

vf2d ClosestPointOnSegment(vf2d a, vf2d b, vf2d p) {
    const vf2d d = b - a;
    const float len2 = Dot(d, d);
    if (len2 <= 1e-8f) return a;
    float t = Dot(p - a, d) / len2;
    t = t < 0.0f ? 0.0f : (t > 1.0f ? 1.0f : t);
    return a + d * t;
}

namespace {

// Positive when p lies left of the line from a to b.
float Side(vf2d a, vf2d b, vf2d p) { return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x); }

} // namespace

bool SegmentsCross(vf2d a, vf2d b, vf2d c, vf2d d) {
    const float s1 = Side(c, d, a), s2 = Side(c, d, b);
    const float s3 = Side(a, b, c), s4 = Side(a, b, d);
    return ((s1 > 0 && s2 < 0) || (s1 < 0 && s2 > 0)) && ((s3 > 0 && s4 < 0) || (s3 < 0 && s4 > 0));
}

bool Polygon::Contains(vf2d p) const {
    const size_t n = vertices.size();
    if (n < 3) return false;
    bool inside = false;
    for (size_t i = 0, j = n - 1; i < n; j = i++) {
        const vf2d& a = vertices[i];
        const vf2d& b = vertices[j];
        if ((a.y > p.y) != (b.y > p.y)) {
            const float crossX = b.x + (p.y - b.y) * (a.x - b.x) / (a.y - b.y);
            if (p.x < crossX) inside = !inside;
        }
    }
    return inside;
}

vf2d Polygon::Centroid() const {
    if (vertices.empty()) return {0.0f, 0.0f};
    vf2d sum{0.0f, 0.0f};
    for (const vf2d& v : vertices) sum = sum + v;
    return sum * (1.0f / float(vertices.size()));
}

float Polygon::DistanceToEdge(vf2d p, vf2d* closest) const {
    float best = std::sqrt(std::numeric_limits<float>::max());
    vf2d bestPoint = p;
    const size_t n = vertices.size();
    for (size_t i = 0, j = n - 1; i < n; j = i++) {
        const vf2d q = ClosestPointOnSegment(vertices[j], vertices[i], p);
        const float d = Distance(p, q);
        if (d < best) {
            best = d;
            bestPoint = q;
        }
    }
    if (closest) *closest = bestPoint;
    return best;
}

Polygon Polygon::Rect(float x, float y, float width, float height) {
    return Polygon{{{x, y}, {x + width, y}, {x + width, y + height}, {x, y + height}}};
}

} // namespace adv
