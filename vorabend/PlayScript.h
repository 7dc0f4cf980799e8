#pragma once
// Plays the game from a text file of commands through the real mouse and keyboard state,
// one frame after another, for end-to-end tests and demonstrations. Verbs, options, menu rows and
// expected texts are written as the game shows them, in its present language. Each line is one command:
//
//   verb Benutze            click a verb cell by its name
//   hotspot brot [right]    click the middle of a hotspot of the current scene
//   actor hella [right]     click an actor
//   item brot [right]       click an item in the inventory
//   point 300 160 [right]   click a point of the scene
//   hover hotspot oelfass   only move the mouse there (also: actor, item, point)
//   option Wer bist du?     click the dialogue option that begins so
//   menu Spiel laden        click the menu row that begins so
//   slot 3                  click the row of a save slot, counted from 1
//   key F5                  press and release a key (F1, F5, F8, ESCAPE, SPACE, RETURN, MINUS, EQUALS,
//                           C, D, L), or several at once: key CTRL+D
//   idle                    wait until nothing runs, walks or speaks
//   wait 1.5                wait so many seconds of game time
//   shot FILE               write the screen as a PNG file
//   expect scene hof | flag NAME N | item ID | noitem ID | state N | option TEXT | nooption TEXT
//          | sentence TEXT | message TEXT | toast TEXT
//
// Blank lines and lines starting with '#' are skipped. A failed expectation or a target
// that cannot be found ends the run with a message naming the line.
#include "engine/adventure/AdventureGame.h"

#include <string>
#include <vector>

namespace vorabend {

class PlayScript {
public:
    // False with a message when the file cannot be read.
    bool Load(const std::string& path);
    // Called at the start of every frame, before the game's own update.
    void Step(adv::AdventureGame& game, float dt);
    bool Finished() const { return next >= lines.size() && phase == 0; }
    bool Failed() const { return failed; }

private:
    bool Run(adv::AdventureGame& game, const std::string& line, float dt);
    bool Click(adv::AdventureGame& game, pge::vf2d screen, bool right);
    // False, with the line failed, for a point off the screen.
    bool MoveMouse(adv::AdventureGame& game, pge::vf2d screen);
    bool Fail(const std::string& why);

    std::vector<std::string> lines;
    std::vector<int> numbers; // the file's line number of each command
    size_t next = 0;
    int phase = 0;         // of a click or key: 0 idle, 1 pressed, 2 released
    int button = 0;
    std::vector<int> nativeKeys; // held by the present key command
    float waited = 0.0f;
    float quietFor = 0.0f;
    bool failed = false;
};

} // namespace vorabend
