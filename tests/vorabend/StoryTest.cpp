// "Der Vorabend": every place the story sends the player to can be reached, and each scene
// looks as its checked-in picture.
#include "engine/adventure/AdventureGame.h"
#include "pge/Headless.h"
#include "tests/stage/ReferencePicture.h"
#include "vorabend/Story.h"

#include <gtest/gtest.h>

namespace {

using adv::vf2d;

struct StoryTest : ::testing::Test {
    adv::AdventureGame game;
    pge::Headless run{game, adv::AdventureGame::kViewWidth, adv::AdventureGame::kViewHeight};
    void SetUp() override {
        game.SetContentBuilder(vorabend::BuildStory);
        ASSERT_TRUE(run.Create());
        game.BeginPlay();
    }
};

const char* const kScenes[] = {"hof", "werkstatt", "zinne"};

TEST_F(StoryTest, EveryEntryAndApproachPointIsOnTheFloorAndReachable) {
    for (const char* id : kScenes) {
        adv::Scene* scene = game.scenes.Load(game, id);
        ASSERT_NE(scene, nullptr) << id;
        adv::WalkArea& floor = scene->walkArea;
        const adv::SceneEntry* start = scene->Entry("default");
        ASSERT_NE(start, nullptr) << id;
        for (const auto& [name, entry] : scene->entries) {
            EXPECT_TRUE(floor.IsWalkable(entry.position)) << id << " entry " << name;
            EXPECT_FALSE(floor.FindPath(start->position, entry.position).empty()) << id << " entry " << name;
        }
        for (const adv::Hotspot& h : scene->hotspots) {
            if (!h.hasApproach) continue;
            EXPECT_TRUE(floor.IsWalkable(h.approach)) << id << " " << h.id;
            EXPECT_FALSE(floor.FindPath(start->position, h.approach).empty()) << id << " " << h.id;
        }
        EXPECT_GE(scene->Width(), adv::AdventureGame::kViewWidth) << id;
    }
    // The guard can be approached from either side.
    const adv::Actor& guard = game.actors.at("hella");
    adv::WalkArea& yard = game.scenes.Load(game, "hof")->walkArea;
    EXPECT_TRUE(yard.IsWalkable(guard.position));
    for (float side : {0.0f, 1000.0f}) EXPECT_TRUE(yard.IsWalkable(guard.ApproachPoint({side, guard.position.y})));
}

TEST_F(StoryTest, EachSceneLooksAsItsPicture) {
    for (const char* id : kScenes) {
        game.ChangeScene(id, "default");
        game.runner.Clear();
        for (int i = 0; i < 20; ++i) run.Frame(0.05f); // the fade from black is over
        torvane::testing_support::ExpectMatchesReference(*game.GetDrawTarget(), std::string("vorabend_") + id);
    }
}

} // namespace
