// "Der Vorabend": every place the story sends the player to can be reached, and each scene
// looks as its checked-in picture.
#include "engine/adventure/AdventureGame.h"
#include "pge/Headless.h"
#include "tests/stage/ReferencePicture.h"
#include "tests/ScratchPath.h"
#include "vorabend/PlayScript.h"
#include "vorabend/Story.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

using adv::vf2d;
using adv::operator-;

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

// Frames until the fade from black is over and nothing is said.
void Calm(StoryTest& t) {
    t.game.runner.Clear();
    for (auto& [id, actor] : t.game.actors) actor.StopTalking();
    t.game.Narrate("", 0.0f);
    for (int i = 0; i < 20; ++i) t.run.Frame(0.05f);
}

TEST_F(StoryTest, WalkingToAWayOutLeadsThroughItAndLookingAtItDoesNot) {
    Calm(*this);
    const vf2d gate = game.current->Find("tor")->shape.Centroid() - game.camera;
    auto click = [&](int button) {
        run.MoveMouse(int(gate.x), int(gate.y));
        run.Frame(0.05f);
        run.SetMouseButton(button, true);
        run.Frame(0.05f);
        run.SetMouseButton(button, false);
        for (int i = 0; i < 300 && (game.runner.Running() || game.Player().Walking()); ++i) run.Frame(0.05f);
        run.Frame(0.05f);
    };
    game.SelectVerb(adv::Verb::Look);
    click(0);
    EXPECT_EQ(game.current->id, "hof");
    click(1); // the way out's own verb: walking
    EXPECT_EQ(game.current->id, "werkstatt");
}

// The menu, a dialogue and the ending, each as its checked-in picture. Saves go to a
// folder of their own, so the save page shows six empty slots.
TEST_F(StoryTest, MenuDialogueAndEndingLookAsTheirPictures) {
    char folder[] = "/tmp/vorabend-saves-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const char* old = std::getenv("XDG_DATA_HOME");
    const std::string before = old ? old : "";
    setenv("XDG_DATA_HOME", folder, 1);
    Calm(*this);
    run.MoveMouse(0, 0);
    game.BeginDialogue("hella");
    run.Frame(0.05f);
    torvane::testing_support::ExpectMatchesReference(*game.GetDrawTarget(), "vorabend_dialogue");
    game.EndDialogue();
    game.OpenMenu();
    run.Frame(0.05f);
    torvane::testing_support::ExpectMatchesReference(*game.GetDrawTarget(), "vorabend_menu");
    game.menu.Activate(adv::GameMenu::kSaveGame);
    run.Frame(0.05f);
    torvane::testing_support::ExpectMatchesReference(*game.GetDrawTarget(), "vorabend_savepage");
    game.menu.Close();
    game.FinishGame("Das Leuchtfeuer lodert.");
    run.Frame(0.05f);
    torvane::testing_support::ExpectMatchesReference(*game.GetDrawTarget(), "vorabend_end");
    std::filesystem::remove_all(folder);
    if (before.empty())
        unsetenv("XDG_DATA_HOME");
    else
        setenv("XDG_DATA_HOME", before.c_str(), 1);
}

TEST_F(StoryTest, APlayScriptLineWithoutItsNumberOrOffTheScreenFailsTheRunAndNamesTheLine) {
    const std::string path = scratch::Path("bad_play.txt");
    for (const char* line : {"wait soon", "wait .", "hover point 3e35 10", "hover point -1 10"}) {
        std::ofstream(path) << line << "\n";
        vorabend::PlayScript play;
        ASSERT_TRUE(play.Load(path));
        testing::internal::CaptureStderr();
        play.Step(game, 0.05f);
        EXPECT_NE(testing::internal::GetCapturedStderr().find(line), std::string::npos);
        EXPECT_TRUE(play.Failed()) << line;
    }
    std::remove(path.c_str());
}

} // namespace
