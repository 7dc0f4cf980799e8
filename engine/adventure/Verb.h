#pragma once
// The nine verbs of the panel, and walking, which is the state with none selected.
#include <cstdint>
#include <string>

namespace adv {

enum class Verb : int32_t {
    Walk = 0, Open = 1, Take = 2, Use = 3, Close = 4, Look = 5, Push = 6, Give = 7, Talk = 8, Pull = 9,
};

// The verbs of the panel's nine cells, in reading order.
inline constexpr Verb kVerbGrid[9] = {Verb::Open, Verb::Take, Verb::Use, Verb::Close, Verb::Look,
                                      Verb::Push, Verb::Give, Verb::Talk, Verb::Pull};

// "?" for an unknown value.
std::string VerbName(Verb verb);
// "mit", "an" or empty.
std::string Preposition(Verb verb);
bool NeedsSecondObject(Verb verb);
// What the player says when a verb meets an object that has no script for it.
std::string FallbackText(Verb verb);

} // namespace adv
