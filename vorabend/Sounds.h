#pragma once
// The sounds of "Der Vorabend", synthesised at start: a step on stone, the tower door, picking
// something up, and the beacon catching fire.
#include "engine/Synth.h"
#include "engine/adventure/AdventureGame.h"

#include <string>

namespace vorabend::sounds {

inline constexpr const char* kStep = "schritt";
inline constexpr const char* kDoor = "tuer";
inline constexpr const char* kPickUp = "aufheben";
inline constexpr const char* kFire = "feuer";

// The recipe of a sound by name, not yet limited to -1..1; empty for an unknown name.
adv::synth::Buffer Build(const std::string& name);
// Gives the game every sound, limited, under its name.
void AddTo(adv::AdventureGame& game);

} // namespace vorabend::sounds
