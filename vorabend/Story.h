#pragma once
// "Der Vorabend": Torvane, on the evening before the first siege, has to light the beacon
// on the tower so that the Vellmark is warned. Three scenes, five items, one dialogue.
#include "engine/adventure/AdventureGame.h"

namespace vorabend {

// Fills the game with the story's scenes, actors, items, dialogue and title card.
void BuildStory(adv::AdventureGame& game);

} // namespace vorabend
