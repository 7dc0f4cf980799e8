// The frame's steps that need no window, shared by the application and the simulator.
#include "game/rules/FrameSteps.h"

#include <algorithm>

namespace torvane::frame {

float RulesStep(float elapsed) { return std::min(elapsed, kMaxStep); }

void HoldBotAtCard(Phase to, bool autoplay, float& autoTimer) {
    if (autoplay && (to == Phase::Announce || to == Phase::Eval || to == Phase::Over)) autoTimer = kBotCardPause;
}

bool RunRules(const Refs& refs, float dt, const Hooks& hooks) {
    Game& game = refs.game;
    if (!refs.paused) {
        game.Update(dt);
        if (hooks.rulesStepped) hooks.rulesStepped();
    }

    if (hooks.camera) hooks.camera(dt);

    const auto changed = [&] { return game.phase != refs.lastPhase || game.level != refs.lastLevel; };
    // A card that the rules' step has just put up holds the bot before it can act on it,
    // so that the card is seen below and stands its time like any other.
    if (changed()) HoldBotAtCard(game.phase, refs.autoplay, refs.autoTimer);
    if (refs.autoplay && !refs.paused) {
        refs.autoTimer -= dt;
        if (refs.autoTimer <= 0.0f) {
            if (game.phase == Phase::Over) {
                if (hooks.beforeRestart) hooks.beforeRestart();
                game.NewGame();
                refs.autoTimer = kBotRestart;
            } else {
                refs.autoPlayer.Step(game);
                refs.autoTimer = game.phase == Phase::Attack ? kBotAttackStep : kBotStep;
            }
        }
    }

    if (!changed()) return false;
    // A new level with the same phase counts as a change too.
    HoldBotAtCard(game.phase, refs.autoplay, refs.autoTimer);
    if (hooks.phaseChanged) hooks.phaseChanged(refs.lastPhase, game.phase);
    refs.lastPhase = game.phase;
    refs.lastLevel = game.level;
    return true;
}

} // namespace torvane::frame
