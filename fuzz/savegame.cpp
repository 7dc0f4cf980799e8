// Any text as a saved game of the adventure framework: parsed and, when it reads,
// written and parsed again.
#include "engine/adventure/SaveGame.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    adv::SaveData save;
    if (!adv::savegame::Parse(std::string(reinterpret_cast<const char*>(data), size), save)) return 0;
    adv::SaveData again;
    adv::savegame::Parse(adv::savegame::Serialise(save), again);
    return 0;
}
