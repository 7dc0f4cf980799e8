#pragma once
// A small adventure for the tests: a room of one screen and a hall that scrolls, run
// headless at the adventure's logical size.
#include "engine/adventure/AdventureGame.h"
#include "pge/Headless.h"
#include "pge/PlatformLinux.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace adv::testing {

// 384 wide: a floor along the bottom, a chest with a lamp on it, a door to the hall.
class Room : public SceneDefinition {
public:
    void Build(AdventureGame&, Scene& s) override {
        s.painted = std::make_shared<pge::Sprite>(384, 176);
        s.walkArea.outer = Polygon::Rect(0, 100, 384, 76);
        s.scaleZone = {100, 176, 0.5f, 1.0f};
        s.SetEntry("default", {192, 150}, Facing::Front);
        s.AddRectHotspot("chest", "Truhe", 40, 40, 60, 60).scripts[Verb::Open] = Script().Say("player", "Leer.");
        s.AddRectHotspot("lamp", "Lampe", 60, 45, 10, 10);
        s.enterScript.Do([](AdventureGame& g) { g.SetFlag("entered", g.Flag("entered") + 1); });
    }
    std::string DisplayName() const override { return "Kammer"; }
};

// 800 wide, for the camera.
class Hall : public SceneDefinition {
public:
    void Build(AdventureGame&, Scene& s) override {
        s.painted = std::make_shared<pge::Sprite>(800, 176);
        s.walkArea.outer = Polygon::Rect(0, 100, 800, 76);
        s.SetEntry("default", {20, 150}, Facing::Right);
        s.SetEntry("east", {790, 150}, Facing::Left);
        s.AddRectHotspot("window", "Fenster", 300, 20, 40, 40);
    }
};

inline void BuildTestContent(AdventureGame& g) {
    Actor player;
    player.id = "player";
    g.AddActor(player);
    Actor cat;
    cat.id = "cat";
    cat.name = "Katze";
    cat.scene = "room";
    cat.position = {65, 120}; // in front of the lamp
    g.AddActor(cat);
    for (const char* id : {"bread", "key", "rope"}) {
        Item item;
        item.id = id;
        item.name = std::string(id) == "bread" ? "Brot" : id;
        g.AddItem(item);
    }
    // An option said once, one shown only with a flag, and one that ends the talk unless a flag keeps it.
    Dialogue d;
    d.id = "talk";
    d.nodes["start"] = {{"Einmal", {}, "", true, false, "", ""}, {"Nur mit Flagge", {}, "", false, false, "asked", ""},
                        {"Tschuess", {}, "$exit", false, false, "", "stay"}};
    g.AddDialogue(d);
    g.RegisterScene("room", std::make_unique<Room>());
    g.RegisterScene("hall", std::make_unique<Hall>());
    g.SetStartScene("room");
}

// The game, created and playing in the room.
struct TestGame {
    AdventureGame game;
    pge::Headless run{game, AdventureGame::kViewWidth, AdventureGame::kViewHeight};

    // In German, the language the tests are written in. With an intro, the game stays at its first screen.
    explicit TestGame(void (*intro)(AdventureGame&) = nullptr) {
        SetLanguage(Language::German);
        game.SetContentBuilder([intro](AdventureGame& g) {
            BuildTestContent(g);
            if (intro) intro(g);
        });
        run.Create();
        if (!intro) game.BeginPlay();
    }
    Actor& Player() { return game.Player(); }
    // The mouse moved to (x, y) and a frame run.
    void Hover(int x, int y) {
        run.MoveMouse(x, y);
        run.Frame(0.016f);
    }
    // A click with the left (0) or right (1) button, pressed in one frame, released in the next.
    void Click(int x, int y, int button = 0) {
        Hover(x, y);
        run.SetMouseButton(button, true);
        run.Frame(0.016f);
        run.SetMouseButton(button, false);
        run.Frame(0.016f);
    }
    // A click that goes down and up between two frames, as a quick finger does.
    void QuickClick(int x, int y, int button = 0) {
        Hover(x, y);
        run.SetMouseButton(button, true);
        run.SetMouseButton(button, false);
        run.Frame(0.016f);
    }
    // A key pressed in one frame and released in the next.
    void Press(pge::Key key) {
        run.SetKey(key, true);
        run.Frame(0.016f);
        run.SetKey(key, false);
        run.Frame(0.016f);
    }
    // A key as the window reports it, by its X keysym, through the window's key table.
    void PressKeysym(long keysym) {
        pge::FillKeyTable();
        game.pge_UpdateKeyState(int32_t(keysym), true);
        run.Frame(0.016f);
        game.pge_UpdateKeyState(int32_t(keysym), false);
        run.Frame(0.016f);
    }
    // Runs frames until no script runs, at most ten seconds.
    void Settle() {
        for (int i = 0; i < 200 && game.runner.Running(); ++i) run.Frame(0.05f);
    }
};

// A fresh data folder (XDG_DATA_HOME) for as long as it lives; the old one comes back after.
struct DataFolder {
    std::string path = "/tmp/adventure-data-XXXXXX", old = std::getenv("XDG_DATA_HOME") ? std::getenv("XDG_DATA_HOME") : "";
    DataFolder() { setenv("XDG_DATA_HOME", mkdtemp(path.data()) ? path.c_str() : "/nonexistent", 1); }
    ~DataFolder() {
        std::filesystem::remove_all(path);
        old.empty() ? unsetenv("XDG_DATA_HOME") : setenv("XDG_DATA_HOME", old.c_str(), 1);
    }
};

} // namespace adv::testing
