#pragma once
// What a ball does to the wall, and the fuse of the holes it leaves.
#include "game/rules/TorvaneGame.h"

namespace torvane {

// Points of the attack, all to the score and the repair score.
inline constexpr int kCellPoints = 10;     // per cell placed or repaired
inline constexpr int kInstantPoints = 150; // the hit piece wholly replaced at the impact
inline constexpr int kHeldPoints = 100;    // a hole filled before its fuse burns out
// Seconds from the opening of a hole to its fall; a bell strikes each second before.
inline constexpr float kFuseSeconds = 3.0f;

// Points earned in the attack go to the score and the repair score together.
void AddRepairPoints(Game& game, int points);

// One frame of every hole's life, in order: held, pointless, bell, fall.
void RunFuses(Game& game);

} // namespace torvane
