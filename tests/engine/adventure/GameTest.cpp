// Interaction: verbs, fallback texts, hover, the sentence line, camera, dialogues, inventory.
#include "tests/engine/adventure/OfflineAudio.h"
#include "tests/engine/adventure/TestGame.h"

#include "engine/Music.h"
#include "engine/Sound.h"

#include <X11/keysym.h>
#include <functional>
#include <tuple>
#include <gtest/gtest.h>

namespace adv {
namespace {

struct GameTest : ::testing::Test {
    testing::TestGame t;
    AdventureGame& game = t.game;
    void SetUp() override { t.Settle(); }
    // What the player says after the next frames.
    std::string Said() {
        t.run.Frame(0.016f);
        t.run.Frame(0.016f);
        return t.Player().speech;
    }
};

TEST_F(GameTest, ARightClickOnAHotspotUsesItsDefaultVerb) {
    t.Click(90, 90, 1); // the chest, away from the lamp and the cat
    EXPECT_EQ(Said(), "Da ist nichts Besonderes dran.");
    t.Settle();
    t.Click(90, 90, 0); // the left button walks there with nothing selected
    EXPECT_EQ(std::pair(t.Player().speech, t.Player().Walking()), std::pair(std::string(), true));
}

// Without a script of its own, each verb says its fallback line; two items that do not go
// together say so, and an item used with itself is the verb's own fallback.
TEST_F(GameTest, FallbackLinesOfVerbsAndItems) {
    game.inventory.Add("bread");
    game.inventory.Add("key");
    const std::pair<std::function<void()>, std::string> cases[] = {
        {[&] { game.SelectVerb(Verb::Pull), t.Click(90, 90); }, "Das gibt keinen Millimeter nach."},
        {[&] { game.SelectVerb(Verb::Open), t.Click(90, 90); }, "Leer."}, // the chest's own script
        {[&] { game.InteractWithItem("bread", Verb::Use), game.InteractWithItem("bread", Verb::Use); }, "So funktioniert das nicht."},
        {[&] { game.InteractWithItem("bread", Verb::Give), game.InteractWithItem("key", Verb::Give); }, "Die beiden passen nicht zusammen."},
        {[&] { game.InteractWithItem("key", Verb::Look); }, "Ein ganz normaler Gegenstand."},
    };
    for (const auto& [act, line] : cases) {
        act();
        EXPECT_EQ(Said(), line);
        EXPECT_EQ(game.heldItem, "");
        t.Settle();
    }
    EXPECT_EQ(game.FallbackScript(Verb(42), "x").actions.size(), 1u);
    EXPECT_EQ(FallbackText(Verb(42)) + VerbName(Verb(42)), "Das bringt nichts.?");
}

TEST_F(GameTest, HoverPrefersActorsThenTheTopmostHotspotAndNamesItInTheSentence) {
    t.Hover(65, 95); // the cat stands before the chest
    EXPECT_EQ(std::pair(game.hoveredActor, game.sentence), std::pair(std::string("cat"), std::string("Gehe zu Katze")));
    game.actors["cat"].visible = false;
    t.run.Frame(0.016f);
    EXPECT_EQ(game.hoveredHotspot, "chest");
    t.Hover(64, 50);
    EXPECT_EQ(game.hoveredHotspot, "lamp");
    game.inventory.Add("bread");
    game.SelectVerb(Verb::Use);
    game.InteractWithItem("bread", Verb::Use);
    t.run.Frame(0.016f);
    EXPECT_EQ(game.sentence, "Benutze Brot mit Lampe");
    t.Hover(250, 200); // over the inventory the item is named
    EXPECT_EQ(game.sentence, "Benutze Brot mit Brot");
}

TEST_F(GameTest, DuringAScriptClicksSkipSpeechAndTheSentenceStays) {
    t.Hover(90, 90);
    const std::string before = game.sentence;
    game.RunScript(Script().Say("player", "Ein sehr langer Satz, der dauert.").Say("player", "Und noch einer."));
    t.run.Frame(0.016f);
    EXPECT_EQ(t.Player().speech, "Ein sehr langer Satz, der dauert.");
    game.SelectVerb(Verb::Open);
    t.Hover(300, 140);
    EXPECT_EQ(game.sentence, before);
    t.Click(90, 90); // skips to the next line and does not open the chest
    EXPECT_EQ(std::tuple(t.Player().speech, game.verb), std::tuple("Und noch einer.", Verb::Open));
}

TEST_F(GameTest, TheCameraFollowsWithinTheSceneAndANarrowSceneNeverScrolls) {
    t.Player().Teleport({380, 150}, Facing::Right);
    for (int i = 0; i < 60; ++i) t.run.Frame(0.05f);
    EXPECT_FLOAT_EQ(game.camera.x, 0);
    game.ChangeScene("hall", "east");
    EXPECT_FLOAT_EQ(game.camera.x, 800 - 384);
    t.Player().Teleport({400, 150}, Facing::Left);
    game.UpdateCamera(1.0f); // a whole step reaches the target
    EXPECT_FLOAT_EQ(game.camera.x, 400 - 192);
    t.Player().Teleport({10, 150}, Facing::Left);
    game.UpdateCamera(0.05f);
    EXPECT_NEAR(game.camera.x, 208 * 0.7f, 0.01f);
    game.UpdateCamera(1.0f);
    EXPECT_FLOAT_EQ(game.camera.x, 0);
}

TEST_F(GameTest, SceneChangesPlaceThePlayerAndRunTheFirstVisitOnce) {
    EXPECT_EQ(std::pair(game.Flag("__visited_room"), game.Flag("entered")), std::pair(1, 1));
    game.ChangeScene("nowhere", "default");
    EXPECT_EQ(game.current->id, "room");
    game.ChangeScene("hall", "no such entry");
    EXPECT_EQ(std::tuple(t.Player().position.x, t.Player().scene), std::tuple(20.0f, "hall")); // the default entry
    game.ChangeScene("room", "default");
    t.Settle();
    EXPECT_EQ(game.Flag("entered"), 2);
    EXPECT_FLOAT_EQ(t.Player().scale, 0.5f + 0.5f * 50.0f / 76.0f);
}

TEST_F(GameTest, OnceOnlyOptionsGoAfterUseAndFlagsShowOrHideOthers) {
    game.BeginDialogue("talk");
    EXPECT_EQ(game.VisibleDialogueOptions(), (std::vector<int>{0, 2}));
    game.SelectDialogueOption(0);
    t.Settle();
    EXPECT_EQ(game.dialogue, "talk"); // an empty next node stays
    game.SetFlag("asked", 1);
    game.SetFlag("stay", 1);
    EXPECT_EQ(game.VisibleDialogueOptions(), (std::vector<int>{1}));
    game.SetFlag("stay", 0);
    game.SelectDialogueOption(2);
    t.Settle();
    EXPECT_EQ(game.dialogue, "");
    game.BeginDialogue("no such talk");
    EXPECT_EQ(game.dialogue, "");
}

// The inventory scrolls by rows of four, no further than its last row, which stays in view
// when items go; an item is there once.
TEST_F(GameTest, TheScrollArrowsAndVerbCellsAnswerClicks) {
    Inventory& inv = game.inventory;
    for (int i = 0; i < 11; ++i) inv.Add("thing" + std::to_string(i % 10));
    EXPECT_EQ(std::pair(inv.items.size(), inv.MaxScroll()), std::pair(size_t(10), 4));
    t.Click(233, 230); // the lower arrow
    t.Click(233, 230);
    EXPECT_EQ(std::tuple(inv.scroll, inv.At(0), inv.At(6), inv.At(-1)), std::tuple(4, std::string("thing4"), std::string(), std::string()));
    for (int i = 0; i < 5; ++i) inv.Remove("thing" + std::to_string(i));
    EXPECT_EQ(inv.scroll, 0);
    inv.Scroll(4);
    t.Click(233, 195);
    t.Click(233, 195);
    EXPECT_EQ(inv.scroll, 0);
    t.QuickClick(8 + 10, 16 * 12 + 4); // first row, left: "Oeffne", quicker than a frame
    EXPECT_EQ(game.verb, Verb::Open);
}

TEST_F(GameTest, SoundsPlayByNameAndAWalkingFigureAtEachFootfall) {
    ASSERT_NE(Music::Engine(), nullptr);
    // A second of sound, so that every voice still sounds when counted.
    game.AddSound("step", std::vector<float>(44100, 0.1f));
    game.AddSound("step", {}); // a name keeps its first sound
    game.RunScript(Script().PlaySound("step").PlaySound("no such sound"));
    t.run.Frame(0.016f);
    EXPECT_EQ(Sound::ActiveVoices(), 1u);
    t.Player().stepSound = "step";
    t.Player().SetPath({{300, 150}});
    // A stride is pi / 11 seconds; the first foot lands half a stride after setting off.
    for (int i = 0; i < 18; ++i) t.run.Frame(0.05f);
    EXPECT_EQ(std::tuple(Sound::ActiveVoices(), Actor::Footfalls(0.0f, 0.9f), Actor::Footfalls(0.2f, 0.2f)), std::tuple(1u + 3u, 3, 0));
}

// A title card that paints the screen one colour.
struct Card : ScreenDefinition {
    void Draw(AdventureGame& game, float) override { game.Clear(pge::Pixel(10, 20, 30)); }
};

TEST(Intro, TheMenuOpensOverTheTitleAndTheClickThatEndsItIsNoOrder) {
    testing::TestGame t([](AdventureGame& g) { g.AddIntroScreen(std::make_unique<Card>()); });
    AdventureGame& game = t.game;
    t.Press(pge::F5);
    EXPECT_EQ(std::tuple(game.menu.IsOpen(), game.state), std::tuple(true, AdventureGame::Intro));
    const pge::Pixel under = game.GetDrawTarget()->GetPixel(2, 2); // the title, shaded by the menu
    EXPECT_TRUE(under.b > 0 && under.b < 30) << int(under.b);
    t.Press(pge::ESCAPE); // closes the menu, not the title
    EXPECT_EQ(std::tuple(game.menu.IsOpen(), game.state), std::tuple(false, AdventureGame::Intro));
    t.Press(pge::SPACE); // ends the title, and is no pause
    EXPECT_EQ(std::tuple(game.state, game.paused), std::tuple(AdventureGame::Playing, false));
}

TEST_F(GameTest, TextSpeedKeysAndPause) {
    Actor::SetTextSpeed(4);
    t.PressKeysym(XK_KP_Add); // the keypad's keys as the main keyboard's
    t.PressKeysym(XK_KP_Subtract);
    t.PressKeysym(XK_KP_Subtract);
    EXPECT_EQ(std::pair(Actor::TextSpeed(), game.toast), std::pair(3, std::string("Texttempo 3 / 8")));
    Actor::SetTextSpeed(4);
    t.Press(pge::SPACE);
    EXPECT_TRUE(game.paused);
    t.Player().SetPath({{300, 150}});
    const float x = t.Player().position.x;
    t.run.Frame(0.1f);
    EXPECT_FLOAT_EQ(t.Player().position.x, x);
}

} // namespace
} // namespace adv
