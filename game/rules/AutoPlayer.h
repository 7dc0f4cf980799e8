#pragma once
// The built-in player for unattended runs: one small act per step, through the
// same actions as a person.
#include "game/rules/TorvaneGame.h"

#include <cstdint>

namespace torvane {

// Where the selected piece would go on the active tower.
struct Placement {
    int32_t rotation = 0;
    int32_t x = 0;
    bool found = false;
};

struct AutoPlayer {
    int32_t tries = 0;   // pieces tried for the present goal
    bool repairs = true; // false: builds, but leaves the attack to its fate

    void Step(Game& game);
    // Whether Step starts a new game: on the title, and after the last level of a pack.
    static bool StartsNewGame(const Game& game);
    void StepBuild(Game& game);
    void StepAttack(Game& game);
    int PreferredTower(const Game& game) const;
    Placement BestPlacement(const Game& game) const;
};

} // namespace torvane
