#pragma once
// What a pad's buttons stand for on each screen of the game: a pad press is the press of a key,
// so every rule of the keys (their repeat, the confirm lock of a card, the editor's keys)
// holds for the pad unchanged. Only the name field of the high-score list reads the pad
// itself, arcade style: up and down change the letter under the cursor.
#include "pge/PixelEngine.h"

#include <string>
#include <utility>
#include <vector>

namespace torvane::pad {

// Where the keys go this frame, as far as the pad's meaning changes with it.
enum class Context { Play, Title, Settings, Pause, NameEntry, Editor, EditorTyping };

// The key each pad button stands for in a context.
const pge::PixelEngine::PadKeys& KeysFor(Context context);

// The buttons that stand for the keys of a key hint in a context: "← →", "↑↓", "↓ Space
// Enter", "D R A T" or "Esc" name their keys with arrows, words and letters. For each key, in
// the same order, the first of A, B, X, Y, Back, Start, LB, RB, LT and RT that stands for it
// (in the name field, which reads the pad itself, for what the key would do there),
// else its D-pad direction, shown as its arrow behind the D-pad's cross (once for several in
// a row); a key that no button stands for keeps its name, with PAD_BUTTONS as its button.
std::vector<std::pair<std::string, pge::PadButton>> ShownButtons(const std::string& keys, Context context);

// The letter `steps` places after `letter` (before it for negative steps) in the ring the
// arcade name field turns through: A to Z, Ä Ö Ü, a to z, ä ö ü ß, 0 to 9 and the blank, as
// UTF-8. A letter outside the ring counts as the place before "A".
std::string StepLetter(const std::string& letter, int steps);

} // namespace torvane::pad
