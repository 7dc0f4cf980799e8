#include "game/stage/RingCamera.h"

#include "game/rules/Pieces.h"

#include <algorithm>
#include <cmath>

namespace torvane {

float RingCamera::Wrap(float column) const {
    const float w = static_cast<float>(width);
    return column - w * std::floor(column / w);
}

float RingCamera::Shortest(float d) const {
    const float w = static_cast<float>(width);
    return d - w * std::round(d / w);
}

void RingCamera::SnapTo(float column) {
    angle = Wrap(column);
    target = angle;
}

void RingCamera::Turn(float delta) {
    const float d = Shortest(target - angle);
    const float limit = GetSettings().cameraMaxSpeed * 0.1f;
    if ((delta > 0.0f && d > limit) || (delta < 0.0f && d < -limit)) return;
    target = Wrap(target + delta);
}

void RingCamera::Update(const Game& game, float dt) {
    const Settings& settings = GetSettings();
    width = std::max(game.config.width, 1);

    // What to look at: the piece in hand, else the focus, else the wave's sector.
    const char type = game.SelectedType();
    const bool inHand = type != 0 && (game.Building() || (game.phase == Phase::Attack && game.FreeRepair()));
    float goal = -1.0f;
    bool follow = game.Building() || game.FreeRepair();
    if (inHand) {
        goal = static_cast<float>(game.cursorX) + static_cast<float>(ShapeWidth(Rotated(type, game.rotation))) * 0.5f;
        follow = true;
    } else if (game.phase == Phase::Attack && game.focus.kind != Focus::None) {
        goal = game.FocusCentre(game.focus);
    } else if (game.phase == Phase::Attack && settings.auto_rotate && game.WaveSectorCentre() >= 0) {
        goal = static_cast<float>(game.WaveSectorCentre());
    }
    const bool hasGoal = goal >= 0.0f;

    if (level != game.level || (lastPhase == Phase::Title && game.phase != Phase::Title)) {
        level = game.level;
        if (hasGoal)
            SnapTo(goal);
        else
            SnapTo(game.config.sectors.empty() ? 0.0f : static_cast<float>(game.config.sectors.front().centre));
    }
    lastPhase = game.phase;
    if (!game.config.ring) return;

    if (hasGoal) {
        const float d = game.WrapDiff(goal - target);
        const float slack = settings.cameraSlack;
        if (follow) {
            if (d > slack)
                target = Wrap(goal - slack);
            else if (d < -slack)
                target = Wrap(goal + slack);
        } else if (settings.auto_rotate && std::fabs(d) > slack * 0.5f) {
            target = Wrap(goal);
        }
    }

    // Exponential approach with a speed limit; the last tiny stretch lands exactly.
    const float e = game.WrapDiff(target - angle);
    const float ease = dt * settings.cameraEase;
    float step = ease < 1.0f ? e * ease : e;
    const float limit = dt * settings.cameraMaxSpeed;
    step = std::clamp(step, -limit, limit);
    if (std::fabs(e) < 0.002f) step = e;
    angle = Wrap(angle + step);
}

void RingCamera::Follow(Game& game, float dt) {
    Update(game, dt);
    game.viewCentre = angle;
    game.viewKnown = true;
}

} // namespace torvane
