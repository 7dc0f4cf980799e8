#pragma once
// The recipe of every sound effect of the game, as calls of the synthesiser.
#include "engine/Synth.h"
#include "game/rules/TorvaneGame.h"

namespace torvane::sfx {

// Adds the effect's recipe to the buffer; the whistle and unknown values add nothing.
void Build(Sfx effect, adv::synth::Buffer& buffer);
// Adds the whistle of a ball in flight for `seconds`.
void BuildWhistle(float seconds, adv::synth::Buffer& buffer);

} // namespace torvane::sfx
