#pragma once
// The part of the application's frame that needs no window: the rules' step, the
// camera's turn, the bot with its timers and the watch for phase changes. The
// application and the headless simulator run the same code, so an unattended run
// plays exactly as the game does.
#include "game/rules/AutoPlayer.h"
#include "game/rules/TorvaneGame.h"

#include <cstdint>
#include <functional>

namespace torvane::frame {

// The longest step the rules are given; a slower frame slows the game down.
inline constexpr float kMaxStep = 0.05f;
// Seconds the bot waits at a card, between steps in the attack, and elsewhere.
inline constexpr float kBotCardPause = 2.0f;
inline constexpr float kBotAttackStep = 0.09f;
inline constexpr float kBotStep = 0.11f;
// Seconds before the bot's first step in a new game after a lost one.
inline constexpr float kBotRestart = 0.2f;

// The step for the rules from a raw frame time.
float RulesStep(float elapsed);

// The owner's members that a frame reads and writes; they stay the owner's.
struct Refs {
    Game& game;
    AutoPlayer& autoPlayer;
    float& autoTimer;
    Phase& lastPhase;
    int32_t& lastLevel;
    bool autoplay = false;
    bool paused = false;
};

struct Hooks {
    // Right after the rules' step, before the bot acts: the one moment at which the
    // end of a level is certain to be seen with its figures, since the bot may leave
    // the result card within the same frame.
    std::function<void()> rulesStepped;
    // The camera turns (also in the pause) and, once it exists, tells the rules
    // where it faces (viewCentre, viewKnown). Until then viewKnown stays false.
    std::function<void(float dt)> camera;
    // Before the bot starts a new game after a lost one: the owner picks the pack
    // and closes its name entry.
    std::function<void()> beforeRestart;
    // The phase or the level differs from the last frame's.
    std::function<void(Phase from, Phase to)> phaseChanged;
};

// Holds the bot for the length of a card: at Announce, Eval and Over.
void HoldBotAtCard(Phase to, bool autoplay, float& autoTimer);

// The rules' step, the camera, the bot and the phase watch, in this order. A card
// that the rules' step put up holds the bot already before its step, so the bot never
// acts on a card that the watch has not seen. At a change HoldBotAtCard runs again
// before hooks.phaseChanged, and lastPhase and lastLevel are taken over afterwards. Returns whether a change was seen. The events stay
// queued for the owner's TakeEvents.
bool RunRules(const Refs& refs, float dt, const Hooks& hooks);

} // namespace torvane::frame
