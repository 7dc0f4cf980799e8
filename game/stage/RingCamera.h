#pragma once
// The camera that turns round a ring tower: it keeps the piece in hand on screen
// without jittering with each cursor step, and in an attack goes where the danger is
// unless the player turns by hand. The unit is the column, a float in [0, width).
#include "game/rules/TorvaneGame.h"

#include <cstdint>

namespace torvane {

class RingCamera {
public:
    float angle = 0.0f;   // the column now at the front
    float target = 0.0f;  // the column the camera moves to
    int32_t level = -1;   // the level seen last
    int32_t width = 1;    // the ring's columns, never below 1
    Phase lastPhase = Phase::Title;

    float Wrap(float column) const;
    void SnapTo(float column);
    // A manual turn; the target may lead the view by a tenth of a second's way.
    void Turn(float delta);
    void Update(const Game& game, float dt);
    // Update, then tell the rules where the camera faces: the frame's camera step.
    void Follow(Game& game, float dt);

private:
    // d brought to the shortest way round the ring.
    float Shortest(float d) const;
};

} // namespace torvane
