#pragma once
// A fingerprint of the whole state of the rules: two games with equal hashes have
// played the same, to the last random number.
#include "game/rules/TorvaneGame.h"

#include <cstdint>

namespace torvane {

// FNV-1a over every field of the game, its random engine and its event queue included.
uint64_t StateHash(const Game& game);

} // namespace torvane
