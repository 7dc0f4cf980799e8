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

TEST(Polygon, ContainsByTheEvenOddRuleCentroidAndDistance) {
    const Polygon square = Polygon::Rect(0, 0, 10, 10), line{{{0, 0}, {10, 10}}};
    // A U shape: the notch is outside.
    const Polygon u{{{0, 0}, {3, 0}, {3, 6}, {7, 6}, {7, 0}, {10, 0}, {10, 10}, {0, 10}}};
    const struct { const Polygon& p; vf2d at; bool inside; } cases[] = {
        {square, {5, 5}, true}, {square, {11, 5}, false}, {square, {-0.5f, 5}, false}, {u, {5, 3}, false},
        {u, {5, 8}, true},      {u, {1, 3}, true},        {line, {5, 5}, false},       {Polygon{}, {0, 0}, false},
    };
    for (const auto& c : cases) EXPECT_EQ(c.p.Contains(c.at), c.inside) << c.at.x << "," << c.at.y;
    const Polygon r = Polygon::Rect(2, 4, 6, 2);
    ASSERT_EQ(r.vertices.size(), 4u);
    EXPECT_EQ(std::vector<float>({r.vertices[1].x, r.vertices[3].y, r.Centroid().x, r.Centroid().y, Polygon{}.Centroid().x}),
              std::vector<float>({8, 6, 5, 5, 0})); // top right, bottom left
    vf2d closest;
    EXPECT_FLOAT_EQ(r.DistanceToEdge({5, 10}, &closest), 4);
    EXPECT_EQ(std::pair(closest.x, closest.y), std::pair(5.0f, 6.0f));
    EXPECT_GT(Polygon{}.DistanceToEdge({3, 3}, &closest), 1e18f);
    EXPECT_FLOAT_EQ(closest.x, 3);
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
    EXPECT_FLOAT_EQ(path.back().x, 160);
    EXPECT_FLOAT_EQ(path.back().y, 50);
    ExpectWalkable(area, from, path);
    // The way past the block runs 1.75 pixels off its corners.
    EXPECT_NEAR(std::fabs(path[0].y - 50), 30 + 1.75f / std::sqrt(2.0f), 0.01f);
}

// Round an inner corner by one waypoint just off it; a click outside the floor walks just
// inside its border; a start inside an obstacle is pushed out first; a floor in two parts
// gives no path between them; without an outline everything is walkable.
TEST(WalkArea, CornersBordersObstaclesAndBrokenFloors) {
    WalkArea l, split, none;
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

TEST(WalkArea, ALineOverAHolesCornersIsNotASightLine) {
    WalkArea area;
    area.outer = Polygon::Rect(0, 0, 100, 100);
    area.holes = {{{{50, 30}, {70, 50}, {50, 70}, {30, 50}}}}; // a diamond
    // The line from left to right touches the left and right corners only.
    EXPECT_FALSE(area.HasLineOfSight({10, 50}, {90, 50}));
    // A line wholly outside the floor crosses nothing, yet is not walkable.
    EXPECT_FALSE(area.HasLineOfSight({-20, -20}, {-10, -20}));
}

} // namespace
} // namespace adv
