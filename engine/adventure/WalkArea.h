#pragma once
// The walkable floor of a scene: an outline with obstacles, waypoints off their corners,
// and paths found by A* over the waypoints that see each other.
#include "engine/adventure/Geometry.h"

#include <cstddef>
#include <vector>

namespace adv {

struct WalkArea {
    Polygon outer;               // fewer than three vertices: everything is walkable
    std::vector<Polygon> holes;  // obstacles inside outer
    std::vector<vf2d> nodes;     // waypoints, made by Bake
    bool baked = false;

    bool IsWalkable(vf2d p) const;
    // p itself when walkable, else a walkable point just inside the nearest border.
    vf2d ClampToArea(vf2d p) const;
    bool HasLineOfSight(vf2d a, vf2d b) const;
    size_t EdgeCount() const;
    void Bake();
    void EnsureBaked();
    // The points to walk through, the goal last; empty when the goal cannot be reached.
    std::vector<vf2d> FindPath(vf2d from, vf2d to);
};

} // namespace adv
