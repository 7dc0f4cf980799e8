// Polygons, segments, walk areas, path finding and the depth of a room.
#include "engine/adventure/Scene.h"
#include "engine/adventure/WalkArea.h"

#include <gtest/gtest.h>

#include <cmath>

namespace adv {
namespace {

// The distance of a waypoint from a corner it goes round: 1.75 pixels along the diagonal.
const float kOff = 1.75f / std::sqrt(2.0f);

// Each step of a path is walkable in a straight line from the one before.
void ExpectWalkable(const WalkArea& area, vf2d from, const std::vector<vf2d>& path) {
    vf2d at = from;
    for (const vf2d& p : path) {
        EXPECT_TRUE(area.IsWalkable(p)) << p.x << "," << p.y;
        EXPECT_TRUE(area.HasLineOfSight(at, p)) << at.x << "," << at.y << " to " << p.x << "," << p.y;
        at = p;
    }
}

// A room of 200 by 100 with a block in the middle.
WalkArea RoomWithBlock() {
    WalkArea area;
    area.outer = Polygon::Rect(0, 0, 200, 100);
    area.holes = {Polygon::Rect(80, 20, 40, 60)};
    return area;
}

TEST(WalkArea, PathGoesAroundAnObstacleByItsCorners) {
    WalkArea area = RoomWithBlock();
    const vf2d from{40, 50}, to{160, 50};
    EXPECT_FALSE(area.HasLineOfSight(from, to));
    const std::vector<vf2d> path = area.FindPath(from, to);
    ASSERT_GE(path.size(), 3u);
    EXPECT_EQ(std::pair(path.back().x, path.back().y), std::pair(160.0f, 50.0f));
    ExpectWalkable(area, from, path);
    // The way past the block runs 1.75 pixels off its corners.
    EXPECT_NEAR(std::fabs(path[0].y - 50), 30 + kOff, 0.01f);
}

// Round an inner corner by one waypoint just off it; a click outside the floor walks just
// inside its border; a start inside an obstacle is pushed out first; a floor in two parts
// gives no path between them; without an outline everything is walkable. A line over a
// hole's corners is no sight line, nor one wholly outside the floor.
TEST(WalkArea, CornersBordersObstaclesAndBrokenFloors) {
    WalkArea l, split, none, diamond;
    diamond.outer = Polygon::Rect(0, 0, 100, 100);
    diamond.holes = {{{{50, 30}, {70, 50}, {50, 70}, {30, 50}}}};
    EXPECT_FALSE(diamond.HasLineOfSight({10, 50}, {90, 50}) || diamond.HasLineOfSight({-20, -20}, {-10, -20}));
    l.outer = {{{0, 0}, {100, 0}, {100, 40}, {40, 40}, {40, 100}, {0, 100}}};
    split.outer = Polygon::Rect(0, 0, 200, 100);
    split.holes = {Polygon::Rect(90, -10, 20, 120)}; // a wall right across the room
    none.outer = {{{0, 0}, {100, 100}}};
    none.holes = {Polygon::Rect(40, 40, 20, 20)};
    WalkArea block = RoomWithBlock();
    const struct { WalkArea& area; vf2d from, to; std::vector<vf2d> path; float near; } cases[] = {
        {l, {90, 20}, {20, 90}, {{40 - kOff, 40 - kOff}, {20, 90}}, 0.01f},
        {block, {20, 50}, {30, 150}, {{30, 99}}, 1.0f},
        {block, {85, 50}, {20, 50}, {{20, 50}}, 0.0f},
        {split, {20, 50}, {180, 50}, {}, 0.0f},
        {split, {20, 50}, {60, 20}, {{60, 20}}, 0.0f},
        {none, {0, 50}, {100, 50}, {{100, 50}}, 0.0f},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.from.x << "," << c.from.y << " to " << c.to.x << "," << c.to.y);
        const std::vector<vf2d> path = c.area.FindPath(c.from, c.to);
        ASSERT_EQ(path.size(), c.path.size());
        for (size_t i = 0; i < path.size(); ++i) {
            EXPECT_NEAR(path[i].x, c.path[i].x, c.near);
            EXPECT_NEAR(path[i].y, c.path[i].y, c.near);
        }
        if (&c.area != &none) ExpectWalkable(c.area, c.area.ClampToArea(c.from), path);
    }
    const vf2d out = block.ClampToArea({85, 50});
    EXPECT_TRUE(block.IsWalkable(out) && out.x > 79 && out.x < 80);
    EXPECT_TRUE(none.HasLineOfSight({0, 50}, {100, 50}));
    EXPECT_FLOAT_EQ(none.ClampToArea({-50, -50}).x, -50);
    none.Bake();
    EXPECT_TRUE(none.nodes.empty());
}

} // namespace
} // namespace adv
