#pragma once
// The adventure speaks the language of the tower game: both programs keep one language, the
// one in the game's settings.txt.
#include "engine/adventure/Lang.h"

namespace vorabend {

// Takes the language of the game's settings, English when there are none.
void FollowGameLanguage();
// Writes the language into the game's settings, read afresh so that all else stays as it is
// there; false when they could not be written.
bool KeepLanguage(adv::Language language);

} // namespace vorabend
