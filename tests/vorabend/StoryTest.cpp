// "Der Vorabend": every place the story sends the player to can be reached, each scene looks as
// its checked-in picture in both languages, and every text, the framework's too, is in English.
#include "engine/Assets.h"
#include "engine/adventure/AdventureGame.h"
#include "pge/Headless.h"
#include "tests/engine/adventure/OfflineAudio.h"
#include "tests/engine/adventure/TestGame.h"
#include "tests/stage/ReferencePicture.h"
#include "vorabend/Story.h"

#include <gtest/gtest.h>

namespace {

struct StoryTest : ::testing::Test {
    adv::AdventureGame game;
    pge::Headless run{game, adv::AdventureGame::kViewWidth, adv::AdventureGame::kViewHeight};
    void SetUp() override {
        adv::Assets::Init(""); // the asset tree above the working folder, for the music
        adv::SetLanguage(adv::Language::German);
        game.SetContentBuilder(vorabend::BuildStory);
        ASSERT_TRUE(run.Create());
        game.BeginPlay();
    }
    // The next frame matches the checked-in picture of that name.
    void LooksAs(const std::string& picture) {
        run.Frame(0.05f);
        torvane::testing_support::ExpectMatchesReference(*game.GetDrawTarget(), "vorabend_" + picture);
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

TEST_F(StoryTest, EachSceneLooksAsItsPictureInBothLanguages) {
    for (const auto& [language, name] : {std::pair{adv::Language::German, "de"}, {adv::Language::English, "en"}}) {
        adv::SetLanguage(language);
        for (const char* id : kScenes) {
            game.ChangeScene(id, "default");
            game.runner.Clear();
            for (int i = 0; i < 19; ++i) run.Frame(0.05f); // the fade from black is over with the next
            LooksAs(std::string(id) + "_" + name);
        }
    }
}

// Runs the script in progress to its end, each line skipped as soon as it is said.
void Finish(StoryTest& t) {
    t.game.state = adv::AdventureGame::Playing;
    for (int i = 0; i < 400 && t.game.runner.Running(); ++i) {
        t.run.Frame(0.05f);
        t.game.runner.Skip(t.game);
    }
}

void PlayThrough(StoryTest& t, const adv::Script& script) {
    t.game.RunScript(script);
    Finish(t);
}

TEST_F(StoryTest, InEnglishEveryTextOfTheStoryIsEnglish) {
    adv::SetLanguage(adv::Language::English);
    // The title card, then every script of every scene, with the beacon cold and laid.
    game.state = adv::AdventureGame::Intro;
    run.Frame(0.05f);
    const auto playAll = [this](const auto& thing) { // a hotspot's or a figure's name and scripts
        adv::Tr(thing.name);
        for (const auto& [verb, script] : thing.scripts) PlayThrough(*this, script);
        for (const auto& [item, script] : thing.useScripts) PlayThrough(*this, script);
    };
    for (int laid : {0, 1}) {
        for (const char* id : kScenes) {
            game.SetFlag(std::string("__visited_") + id, 0);
            game.ChangeScene(id, "default");
            Finish(*this); // the first visit's lines
            game.SetFlag("lappen_drin", laid);
            adv::Scene& scene = *game.scenes.Load(game, id);
            adv::Tr(game.scenes.Definition(id)->DisplayName());
            for (const adv::Hotspot& h : scene.hotspots) playAll(h);
        }
    }
    run.Frame(0.05f); // the end, once the beacon burns
    for (const auto& [id, actor] : game.actors) playAll(actor);
    for (const auto& [id, item] : game.items) adv::Tr(item.name), adv::Tr(item.lookText);
    for (auto& [id, dialogue] : game.dialogues)
        for (auto& [node, options] : dialogue.nodes)
            for (size_t i = 0; i < options.size(); ++i) {
                game.BeginDialogue(id);
                game.SetDialogueNode(node);
                game.SelectDialogueOption(int(i));
                Finish(*this);
            }
    // The framework's own lines: each verb's fallback, an item's look and two that do not go
    // together, the menu's pages, questions and messages, the pause.
    for (adv::Verb v : adv::kVerbGrid) PlayThrough(*this, game.FallbackScript(v, ""));
    adv::Item plain;
    plain.id = plain.name = "Brot";
    game.AddItem(plain);
    game.inventory.Add("Brot");
    game.inventory.Add("brot");
    game.InteractWithItem("Brot", adv::Verb::Look);
    Finish(*this);
    game.SelectVerb(adv::Verb::Use);
    game.InteractWithItem("Brot", adv::Verb::Use);
    run.Frame(0.05f);
    EXPECT_EQ(game.sentence.substr(0, 14), "Use Bread with");
    game.InteractWithItem("brot", adv::Verb::Use);
    Finish(*this);
    using Menu = adv::GameMenu;
    game.OpenMenu();
    for (int32_t action : {Menu::kSaveGame, Menu::kBack, Menu::kLoadGame, Menu::kBack, Menu::kNewGame, Menu::kNo, Menu::kQuit}) {
        run.Frame(0.05f);
        game.ApplyMenuRequest(game.menu.Activate(action));
    }
    EXPECT_EQ(game.menu.question, "Really quit the game?");
    for (const int32_t kind : {Menu::Request::SaveSlot, Menu::Request::LoadSlot, Menu::Request::SpeedUp}) game.ApplyMenuRequest({kind, 9});
    run.Frame(0.05f);
    game.menu.Close();
    game.SetPaused(true);
    run.Frame(0.05f);
    EXPECT_EQ(adv::MissingTranslations(), std::set<std::string>{});
    adv::Actor::SetTextSpeed(4);
}

// The menu, a dialogue and the ending, each as its checked-in picture, once the fade from black
// is over and nothing is said. Saves go to a folder of their own: the save page shows six empty slots.
TEST_F(StoryTest, MenuDialogueAndEndingLookAsTheirPictures) {
    const adv::testing::DataFolder saves;
    game.runner.Clear();
    for (auto& [id, actor] : game.actors) actor.StopTalking();
    game.Narrate("", 0.0f);
    for (int i = 0; i < 20; ++i) run.Frame(0.05f);
    run.MoveMouse(0, 0);
    game.BeginDialogue("hella");
    LooksAs("dialogue");
    game.EndDialogue();
    game.OpenMenu();
    LooksAs("menu");
    game.menu.Activate(adv::GameMenu::kSaveGame);
    LooksAs("savepage");
    game.menu.Close();
    game.FinishGame("Das Leuchtfeuer lodert.");
    LooksAs("end");
}

} // namespace
