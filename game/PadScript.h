#pragma once
// A testing aid: plays a script of pad presses into a virtual pad, so that an unattended run
// is played as a person with a pad would play it. The script is tokens separated by commas,
// each done after the one before:
//
//     a b x y back start lb rb lt rt up down left right   a tap: 0.1 s down, 0.1 s up
//     NAME:SECONDS          that button held down for SECONDS, then 0.1 s up
//     stick:X:Y:SECONDS     the left stick held at X, Y (-1 to 1 each), then back
//     wait:SECONDS          nothing for SECONDS
//     until:PHASE           nothing until the game is in PHASE (title, build, ..., over)
//     unplug, plug          the pad pulled out, or a new one plugged in
//
// The pad is plugged in at the start. A token it does not know is named on stderr and skipped.
#include "pge/Gamepad.h"

#include <string>
#include <vector>

namespace torvane {

class PadScript {
public:
    explicit PadScript(const std::string& script);
    // Goes on by `seconds` of real time; `phase` is the game's phase by its word. Each press,
    // release, plug and unplug ends a step, so that the game's next frame sees it.
    void Step(float seconds, const std::string& phase);

private:
    enum class Kind { Press, Stick, Wait, Until, Unplug, Plug };
    struct Token {
        Kind kind = Kind::Wait;
        pge::PadButton button = pge::PAD_A;
        float seconds = 0.0f;
        float x = 0.0f, y = 0.0f;
        std::string phase;
    };
    pge::VirtualPad pad;
    std::vector<Token> steps;
    size_t next = 0;
    bool started = false;
    const Token* current = nullptr; // the token now running
    bool down = false;              // it holds a button or the stick
    float left = 0.0f;              // seconds of its hold, wait or pause after a release
};

} // namespace torvane
