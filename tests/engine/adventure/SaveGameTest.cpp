// Saved games: the text format, bad files and slots, restoring, and the menu around them.
#include "engine/adventure/SaveGame.h"
#include "tests/engine/adventure/OfflineAudio.h"
#include "tests/engine/adventure/TestGame.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <tuple>

namespace adv {
namespace {

namespace fs = std::filesystem;

struct SaveTest : ::testing::Test {
    testing::DataFolder folder;
    fs::path data = folder.path;
    testing::TestGame t;
    AdventureGame& g = t.game;
    void SetUp() override {
        savegame::SetFolderName("Probe");
        t.Settle();
    }
    void WriteFile(int slot, const std::string& text) {
        fs::create_directories(savegame::Directory());
        std::ofstream(savegame::SlotPath(slot), std::ios::binary) << text;
    }
};

SaveData Sample() {
    SaveData d;
    d.scene = "room";
    d.label = "Die Kammer  am Abend";
    d.saved = "01.02.2026 03:04";
    d.textSpeed = 6;
    d.inventoryScroll = 4;
    d.flags = {{"a", 1}, {"b", -7}};
    d.items = {"key", "bread"};
    d.actors = {{"player", "room", 12.5f, 140.25f, 2, 1}, {"cat", "hall", 3, 4, 0, 0}};
    d.hotspots = {{"room", "lamp", 0}};
    d.usedOptions = {{"talk", "start", 0}};
    return d;
}

TEST_F(SaveTest, ARoundTripKeepsEverythingLabelsWithBlanksIncluded) {
    // The lines in the file's order; the figures' numbers as they come back.
    const std::string text = savegame::Serialise(Sample());
    EXPECT_EQ(text.substr(0, text.find("actor ")), "quillmere-adventure-save 1\nsaved 01.02.2026 03:04\nscene room\n"
                                                   "label Die Kammer  am Abend\ntextspeed 6\ninvscroll 4\nflag a 1\n"
                                                   "flag b -7\nitem key\nitem bread\n");
    EXPECT_EQ(text.substr(text.find("\nhotspot")), "\nhotspot room lamp 0\ndialogue talk start 0\n");
    SaveData back;
    ASSERT_TRUE(savegame::Parse(text, back));
    EXPECT_EQ(savegame::Serialise(back), text); // nothing lost on the way back
    ASSERT_EQ(back.actors.size(), 2u);
    EXPECT_EQ(std::pair(back.actors[0].y, back.actors[1].visible), std::pair(140.25f, 0));
    // Windows line ends are read too.
    ASSERT_TRUE(savegame::Parse("quillmere-adventure-save 1\r\nlabel x y\r\n", back));
    EXPECT_EQ(back.label, "x y");
    // No label, blanks at either end stay; a line break in a label is no line of the file.
    const std::pair<std::string, std::string> labels[] = {
        {"", ""}, {" vorn", " vorn"}, {"  ", "  "}, {"hinten ", "hinten "}, {"a\nscene hall", "a scene hall"}, {"b\r", "b "},
    };
    for (const auto& [label, read] : labels) {
        SaveData d = Sample();
        d.label = label;
        ASSERT_TRUE(savegame::Parse(savegame::Serialise(d), back));
        EXPECT_EQ(std::pair(back.label, back.scene), std::pair(read, std::string("room")));
    }
}

TEST_F(SaveTest, BadFilesAreRefusedWholeOrLineByLine) {
    SaveData d = Sample();
    for (const std::string& bad : {std::string(), std::string("other-save 1\nscene room\n"),
                                   std::string("quillmere-adventure-save 2\n"), std::string("quillmere-adventure-save\n"),
                                   std::string("quillmere-adventure-save one\n"), std::string("\nscene room\n")}) {
        EXPECT_FALSE(savegame::Parse(bad, d));
        EXPECT_EQ(d.label, Sample().label); // untouched
    }
    const std::string odd = "quillmere-adventure-save 1\n"
                            "scene room\n"
                            "weather rainy\n"                           // unknown
                            "flag big 99999999999\n"                    // beyond 32 bits
                            "flag ok 3\n"
                            "actor player room nan 5 1 1\n"             // not a number
                            "actor cat room 1 2 3\n"                    // too short
                            "textspeed fast\n"
                            "hotspot room lamp\n"
                            "dialogue talk start 1\n"
                            "item bread\n"
                            "actor player room 10 20 3 1 extra\n"       // too long
                            "actor player hall 10 20 3 1\n"
                            "item ke";                                  // cut off
    ASSERT_TRUE(savegame::Parse(odd, d));
    EXPECT_EQ(d.flags, (std::map<std::string, int32_t>{{"ok", 3}}));
    ASSERT_EQ(d.actors.size(), 1u);
    EXPECT_EQ(std::tuple(d.actors[0].scene, d.textSpeed, d.hotspots.size(), d.usedOptions.size()), std::tuple("hall", 4, 0u, 1u));
    EXPECT_EQ(d.items, (std::vector<std::string>{"bread", "ke"}));
}

TEST_F(SaveTest, SlotsOutsideTheSixFailWithoutTouchingAnyFile) {
    SaveData d;
    for (int slot : {-1, 6, 1000})
        EXPECT_EQ((std::tuple{savegame::SlotPath(slot), savegame::Write(slot, Sample()), savegame::Read(slot, d), savegame::Erase(slot),
                              savegame::Inspect(slot).exists}),
                  std::tuple("", false, false, false, false)) << slot;
    EXPECT_FALSE(fs::exists(data / "Probe"));
    ASSERT_TRUE(savegame::Write(5, Sample()));
    EXPECT_TRUE(fs::exists(data / "Probe" / "saves" / "slot5.sav"));
    EXPECT_EQ(std::pair(savegame::Inspect(5).exists, savegame::Inspect(5).label), std::pair(true, Sample().label));
    EXPECT_TRUE(savegame::Erase(5));
    EXPECT_FALSE(savegame::Inspect(5).exists);
    // Size alone refuses nothing: a long save with the right first line is read.
    std::string big = "quillmere-adventure-save 1\nlabel Lang\n";
    for (int i = 0; i < 80000; ++i) big += "flag f" + std::to_string(i) + " 1\n";
    ASSERT_GT(big.size(), size_t(1) << 20);
    WriteFile(2, big);
    ASSERT_TRUE(savegame::Read(2, d));
    EXPECT_EQ(d.flags.size(), 80000u);
    // A wrong first line reads as an empty slot.
    WriteFile(1, "quillmere-adventure-save 7\nlabel x\n");
    EXPECT_FALSE(savegame::Inspect(1).exists);
}

// A load restores what was saved without running entry scripts: the inventory in order (an
// item the game no longer knows included), flags, hotspots, used options, every figure exactly
// where it stood (off the floor too); a scene built only after the save is as its code makes it.
TEST_F(SaveTest, SaveAndLoadRestoreTheGameWithoutEntryScripts) {
    g.inventory.Add("rope");
    g.inventory.Add("bread");
    g.SetFlag("door", 1);
    g.current->Find("lamp")->enabled = false;
    g.actors.at("cat").position.y = 60; // on the chest
    g.BeginDialogue("talk");
    g.SelectDialogueOption(0);
    t.Settle();
    g.EndDialogue();
    g.ChangeScene("hall", "east");
    t.Settle();
    SaveData d = g.CaptureState(); // the hall is built, the room was
    ASSERT_TRUE(g.SaveToSlot(2));
    g.RestartGame();
    t.Settle();
    EXPECT_TRUE(g.inventory.items.empty());
    EXPECT_TRUE(g.scenes.Load(g, "room")->Find("lamp")->enabled);
    const int entered = g.Flag("entered");
    ASSERT_TRUE(g.LoadFromSlot(2));
    EXPECT_EQ(std::tuple(g.current->id, g.inventory.items, g.Flag("door")),
              std::tuple(std::string("hall"), std::vector<std::string>{"rope", "bread"}, 1));
    EXPECT_FALSE(g.scenes.Load(g, "room")->Find("lamp")->enabled);
    EXPECT_EQ(std::tuple(t.Player().position.x, g.camera.x, g.actors.at("cat").position.y), std::tuple(790.0f, 800.0f - 384.0f, 60.0f));
    EXPECT_EQ(std::pair(g.runner.Running(), g.Flag("entered")), std::pair(false, entered));
    g.BeginDialogue("talk");
    EXPECT_EQ(g.VisibleDialogueOptions(), (std::vector<int>{2}));
    g.EndDialogue();
    d.items = {"rope", "sold-out", "bread"};
    d.hotspots.clear();
    g.RestartGame();
    t.Settle();
    g.ChangeScene("hall", "default");
    g.current->Find("window")->enabled = false;
    ASSERT_TRUE(g.RestoreState(d));
    EXPECT_EQ(g.inventory.items, d.items);
    EXPECT_TRUE(g.scenes.Load(g, "hall")->Find("window")->enabled);
}

TEST_F(SaveTest, ALoadThatFailsChangesNothing) {
    g.inventory.Add("key");
    SaveData gone = Sample();
    gone.scene = "demolished";
    ASSERT_TRUE(savegame::Write(0, gone));
    WriteFile(1, "");
    const std::string odd = "quillmere-adventure-save 1\nscene room\nitem bread\ntextspeed 500\ninvscroll 77\n"
                            "dialogue talk start 17\ndialogue talk nonode 0\n";
    const auto fails = [&](int slot) {
        EXPECT_TRUE(g.ApplyMenuRequest({GameMenu::Request::LoadSlot, slot}));
        EXPECT_EQ(std::tuple(g.toast, g.inventory.items, g.current->id),
                  std::tuple(std::string("Laden fehlgeschlagen"), std::vector<std::string>{"key"}, std::string("room")));
    };
    for (int slot : {0, 1, 2, 7}) fails(slot);
    // Anyone outside the scene he comes back to: the player far beyond the room, left of
    // it, below it, or where the hall but not the room is wide enough (he comes back to the
    // save's scene); the cat above the hall.
    for (const char* actor : {"actor player room 3e38 150 0 1\n", "actor player room -1 150 0 1\n",
                              "actor player room 100 176.5 0 1\n", "actor player hall 790 150 0 1\n",
                              "actor cat hall 790 -0.5 0 1\n"}) {
        WriteFile(3, odd + actor);
        fails(3);
    }
    // Speed, scroll and facing out of range are limited; a position is taken as it stands,
    // at a scene's very edge too, each in his own scene.
    WriteFile(3, odd + "actor player room 384 176 99 1\nactor cat hall 790 0 0 1\n");
    ASSERT_TRUE(g.ApplyMenuRequest({GameMenu::Request::LoadSlot, 3}));
    EXPECT_EQ(g.toast, "Spielstand geladen");
    EXPECT_EQ(std::tuple(Actor::TextSpeed(), g.inventory.scroll, t.Player().facing), std::tuple(8, 0, Facing::Back));
    EXPECT_EQ(std::pair(t.Player().position.x, g.actors.at("cat").position.x), std::pair(384.0f, 790.0f));
    t.run.Frame(0.05f);
    Actor::SetTextSpeed(4);
}

TEST_F(SaveTest, SavingOverAUsedSlotAsksFirstAndReturnsToTheSavePage) {
    GameMenu& menu = g.menu;
    menu.Open();
    GameMenu::Request r = menu.Activate(GameMenu::kSaveGame);
    EXPECT_EQ(std::tuple(r.kind, menu.page), std::tuple(GameMenu::Request::None, GameMenu::Save));
    r = menu.Activate(GameMenu::kSlotRow + 4); // an empty slot saves at once
    EXPECT_EQ(std::tuple(r.kind, r.slot), std::tuple(GameMenu::Request::SaveSlot, 4));
    g.ApplyMenuRequest(r);
    EXPECT_EQ(std::tuple(menu.message, menu.slots[4].exists, menu.slots[4].label),
              std::tuple(std::string("In Feld 5 gespeichert"), true, std::string("Kammer")));
    menu.BuildRows({0, 0});
    ASSERT_EQ(menu.rows.size(), 7u); // six slots and the way back
    EXPECT_EQ(menu.rows[0].text + "|" + menu.rows[4].text, "  - leer -|Kammer  " + menu.slots[4].saved);
    // A used one asks.
    r = menu.Activate(GameMenu::kSlotRow + 4);
    EXPECT_EQ(std::tuple(r.kind, menu.page, menu.question), std::tuple(GameMenu::Request::None, GameMenu::Confirm, "Feld 5 ueberschreiben?"));
    r = menu.Activate(GameMenu::kYes);
    EXPECT_EQ(std::tuple(r.kind, menu.page), std::tuple(GameMenu::Request::SaveSlot, GameMenu::Save));
    // No goes back, and from the main page's questions No closes nothing but the question.
    menu.Activate(GameMenu::kBack);
    menu.Activate(GameMenu::kQuit);
    EXPECT_EQ(menu.question, "Das Spiel wirklich beenden?");
    menu.Activate(GameMenu::kNo);
    EXPECT_EQ(menu.page, GameMenu::Main);
    r = menu.Activate(GameMenu::kResume);
    EXPECT_EQ(std::tuple(r.kind, menu.IsOpen()), std::tuple(GameMenu::Request::Resume, false));
    // A question asked with the menu closed closes it again on No.
    menu.AskConfirm("Das Spiel neu starten?", GameMenu::Request::NewGame);
    menu.Activate(GameMenu::kNo);
    EXPECT_FALSE(menu.IsOpen());
    EXPECT_FALSE(g.ApplyMenuRequest({GameMenu::Request::Quit, -1}));
}

} // namespace
} // namespace adv
