// Polygons, segments, walk areas, path finding and the depth of a room.
#include "engine/adventure/Scene.h"
#include "engine/adventure/WalkArea.h"

#include <gtest/gtest.h>

#include <cmath>

namespace adv {
namespace {

Polygon Square(float x, float y, float size) { return Polygon::Rect(x, y, size, size); }

// Each step of a path is walkable in a straight line from the one before.
void ExpectWalkable(const WalkArea& area, vf2d from, const std::vector<vf2d>& path) {
    vf2d at = from;
    for (const vf2d& p : path) {
        EXPECT_TRUE(area.IsWalkable(p)) << p.x << "," << p.y;
        EXPECT_TRUE(area.HasLineOfSight(at, p)) << at.x << "," << at.y << " to " << p.x << "," << p.y;
        at = p;
    }
}

TEST(Polygon, ContainsByTheEvenOddRuleAndNeedsThreeVertices) {
    const Polygon square = Square(0, 0, 10);
    EXPECT_TRUE(square.Contains({5, 5}));
    EXPECT_FALSE(square.Contains({11, 5}));
    EXPECT_FALSE(square.Contains({-0.5f, 5}));
    // A U shape: the notch is outside.
    const Polygon u{{{0, 0}, {3, 0}, {3, 6}, {7, 6}, {7, 0}, {10, 0}, {10, 10}, {0, 10}}};
    EXPECT_FALSE(u.Contains({5, 3}));
    EXPECT_TRUE(u.Contains({5, 8}));
    EXPECT_TRUE(u.Contains({1, 3}));
    EXPECT_FALSE((Polygon{{{0, 0}, {10, 10}}}).Contains({5, 5}));
    EXPECT_FALSE(Polygon{}.Contains({0, 0}));
}

TEST(Polygon, CentroidRectAndDistance) {
    const Polygon r = Polygon::Rect(2, 4, 6, 2);
    ASSERT_EQ(r.vertices.size(), 4u);
    EXPECT_FLOAT_EQ(r.vertices[1].x, 8);  // top right
    EXPECT_FLOAT_EQ(r.vertices[3].y, 6);  // bottom left
    EXPECT_FLOAT_EQ(r.Centroid().x, 5);
    EXPECT_FLOAT_EQ(r.Centroid().y, 5);
    EXPECT_FLOAT_EQ(Polygon{}.Centroid().x, 0);

    vf2d closest;
    EXPECT_FLOAT_EQ(r.DistanceToEdge({5, 10}, &closest), 4);
    EXPECT_FLOAT_EQ(closest.x, 5);
    EXPECT_FLOAT_EQ(closest.y, 6);
    closest = {};
    EXPECT_GT(Polygon{}.DistanceToEdge({3, 3}, &closest), 1e18f);
    EXPECT_FLOAT_EQ(closest.x, 3);
}

TEST(Segments, OnlyProperCrossingsCountAndShortSegmentsArePoints) {
    EXPECT_TRUE(SegmentsCross({0, 0}, {10, 10}, {0, 10}, {10, 0}));
    EXPECT_FALSE(SegmentsCross({0, 0}, {5, 5}, {5, 5}, {10, 0}));      // touching at an end
    EXPECT_FALSE(SegmentsCross({0, 0}, {10, 0}, {5, 0}, {15, 0}));     // collinear
    EXPECT_FALSE(SegmentsCross({0, 0}, {10, 0}, {5, 0}, {5, 10}));     // a T
    const vf2d a = ClosestPointOnSegment({3, 3}, {3, 3}, {9, 9});
    EXPECT_FLOAT_EQ(a.x, 3);
    const vf2d b = ClosestPointOnSegment({0, 0}, {10, 0}, {20, 5});
    EXPECT_FLOAT_EQ(b.x, 10);
    EXPECT_FLOAT_EQ(b.y, 0);
}

TEST(ScaleZone, InterpolatesWithinItsRowsOnly) {
    const ScaleZone zone{100, 200, 0.5f, 1.0f};
    EXPECT_FLOAT_EQ(zone.At(150), 0.75f);
    EXPECT_FLOAT_EQ(zone.At(0), 0.5f);
    EXPECT_FLOAT_EQ(zone.At(500), 1.0f);
    EXPECT_FLOAT_EQ((ScaleZone{120, 120.0005f, 0.3f, 0.9f}).At(0), 0.9f);
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

TEST(WalkArea, PathRoundTheInnerCornerOfAnLShapedRoom) {
    WalkArea area;
    area.outer = {{{0, 0}, {100, 0}, {100, 40}, {40, 40}, {40, 100}, {0, 100}}};
    const std::vector<vf2d> path = area.FindPath({90, 20}, {20, 90});
    ASSERT_EQ(path.size(), 2u);
    // The one waypoint is just off the inner corner, on the floor's side.
    EXPECT_NEAR(path[0].x, 40 - 1.75f / std::sqrt(2.0f), 0.01f);
    EXPECT_NEAR(path[0].y, 40 - 1.75f / std::sqrt(2.0f), 0.01f);
    ExpectWalkable(area, {90, 20}, path);
}

TEST(WalkArea, AClickOutsideTheFloorWalksJustInsideTheBorder) {
    WalkArea area = RoomWithBlock();
    const std::vector<vf2d> path = area.FindPath({20, 50}, {30, 150});
    ASSERT_EQ(path.size(), 1u);
    EXPECT_TRUE(area.IsWalkable(path[0]));
    EXPECT_NEAR(path[0].x, 30, 1.0f);
    EXPECT_GT(path[0].y, 98);
    EXPECT_LT(path[0].y, 100);
}

TEST(WalkArea, AStartInsideAnObstacleIsPushedOutFirst) {
    WalkArea area = RoomWithBlock();
    const vf2d inside{85, 50};
    EXPECT_FALSE(area.IsWalkable(inside));
    const vf2d out = area.ClampToArea(inside);
    EXPECT_TRUE(area.IsWalkable(out));
    EXPECT_LT(out.x, 80);
    EXPECT_GT(out.x, 79);
    const std::vector<vf2d> path = area.FindPath(inside, {20, 50});
    ASSERT_EQ(path.size(), 1u);
    EXPECT_FLOAT_EQ(path[0].x, 20);
}

TEST(WalkArea, AFloorInTwoPartsGivesNoPath) {
    WalkArea area;
    area.outer = Polygon::Rect(0, 0, 200, 100);
    area.holes = {Polygon::Rect(90, -10, 20, 120)}; // a wall right across the room
    EXPECT_TRUE(area.FindPath({20, 50}, {180, 50}).empty());
    EXPECT_EQ(area.FindPath({20, 50}, {60, 20}).size(), 1u);
}

TEST(WalkArea, AStraightSideGetsAWaypointAlongItsNormal) {
    WalkArea area;
    // The vertex (50, 0) lies on a straight top side.
    area.outer = {{{0, 0}, {50, 0}, {100, 0}, {100, 100}, {0, 100}}};
    area.Bake();
    EXPECT_TRUE(area.baked);
    bool found = false;
    for (const vf2d& n : area.nodes) found = found || (std::fabs(n.x - 50) < 1e-4f && std::fabs(n.y - 1.75f) < 1e-4f);
    EXPECT_TRUE(found);
    EXPECT_EQ(area.nodes.size(), 5u);
    EXPECT_EQ(area.EdgeCount(), 5u);
}

TEST(WalkArea, ADegenerateOutlineMeansEverythingIsWalkable) {
    WalkArea area;
    area.outer = {{{0, 0}, {100, 100}}};
    area.holes = {Polygon::Rect(40, 40, 20, 20)};
    const std::vector<vf2d> path = area.FindPath({0, 50}, {100, 50});
    ASSERT_EQ(path.size(), 1u);
    EXPECT_FLOAT_EQ(path[0].x, 100);
    EXPECT_TRUE(area.HasLineOfSight({0, 50}, {100, 50}));
    EXPECT_FLOAT_EQ(area.ClampToArea({-50, -50}).x, -50);
    area.Bake();
    EXPECT_TRUE(area.nodes.empty());
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

TEST(Scene, LaterHotspotsLieOnTopAndDisabledOnesAreSkipped) {
    Scene scene;
    scene.AddRectHotspot("table", "Tisch", 0, 0, 100, 100);
    scene.AddRectHotspot("cup", "Becher", 40, 40, 10, 10);
    ASSERT_NE(scene.HotspotAt({45, 45}), nullptr);
    EXPECT_EQ(scene.HotspotAt({45, 45})->id, "cup");
    scene.Find("cup")->enabled = false;
    EXPECT_EQ(scene.HotspotAt({45, 45})->id, "table");
    EXPECT_EQ(scene.HotspotAt({200, 45}), nullptr);
    EXPECT_EQ(scene.Find("nothing"), nullptr);
    EXPECT_EQ(scene.Width(), 0);
    scene.SetEntry("door", {5, 6}, Facing::Left);
    ASSERT_NE(scene.Entry("door"), nullptr);
    EXPECT_EQ(scene.Entry("door")->facing, Facing::Left);
    EXPECT_EQ(scene.Entry("window"), nullptr);
}

} // namespace
} // namespace adv
