// Any text as a level pack file; a pack that reads is written again and played as the
// active pack, so that its numbers go through the level configuration.
#include "game/content/PackFormat.h"
#include "game/rules/Level.h"
#include "game/rules/LevelPack.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    torvane::LevelPack pack;
    if (!torvane::ParsePack(std::string(reinterpret_cast<const char*>(data), size), pack)) return 0;
    torvane::LevelPack again;
    torvane::ParsePack(torvane::SerialisePack(pack), again);
    torvane::GetSettings() = torvane::Settings();
    torvane::SetActivePack(&pack);
    for (int level = 0; level <= static_cast<int>(pack.levels.size()) + 1; ++level) torvane::ConfigFor(level);
    torvane::SetActivePack(nullptr);
    return 0;
}
