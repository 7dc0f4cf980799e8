#pragma once
// Plane geometry of the adventure's scenes: points in scene pixels, y downwards.
#include "pge/Pixel.h"

#include <cstdint>
#include <vector>

namespace adv {

using pge::vf2d;

// An actor's direction.
enum class Facing : int32_t { Front = 0, Left = 1, Right = 2, Back = 3 };

inline vf2d operator+(vf2d a, vf2d b) { return {a.x + b.x, a.y + b.y}; }
inline vf2d operator-(vf2d a, vf2d b) { return {a.x - b.x, a.y - b.y}; }
inline vf2d operator*(vf2d a, float s) { return {a.x * s, a.y * s}; }
float Dot(vf2d a, vf2d b);
float Length(vf2d a);
float Distance(vf2d a, vf2d b);

// The point of segment a..b nearest to p.
vf2d ClosestPointOnSegment(vf2d a, vf2d b, vf2d p);
// Only a proper crossing counts: touching and collinear segments do not cross.
bool SegmentsCross(vf2d a, vf2d b, vf2d c, vf2d d);

// A closed outline; the last vertex joins the first.
struct Polygon {
    std::vector<vf2d> vertices;

    // Even-odd rule; false for fewer than three vertices.
    bool Contains(vf2d p) const;
    // The plain mean of the vertices.
    vf2d Centroid() const;
    // The smallest distance to an edge; closest, when given, gets the nearest point.
    float DistanceToEdge(vf2d p, vf2d* closest = nullptr) const;

    static Polygon Rect(float x, float y, float width, float height);
};

} // namespace adv
