#include "game/rules/LevelPack.h"

namespace torvane {

namespace {
// A snapshot of the pack in play; the caller's copy may change afterwards.
LevelPack g_active;
bool g_hasActive = false;
uint32_t g_stamp = 0;
} // namespace

void SetActivePack(const LevelPack* pack) {
    ++g_stamp;
    if (pack == nullptr || pack->levels.empty()) {
        g_active = LevelPack{};
        g_hasActive = false;
        return;
    }
    g_active = *pack;
    g_hasActive = true;
}

const LevelPack* ActivePack() { return g_hasActive ? &g_active : nullptr; }

uint32_t ActivePackStamp() { return g_stamp; }

std::string PackLevelName(int level) {
    const LevelPack* pack = ActivePack();
    if (pack == nullptr || level < 1 || level > static_cast<int>(pack->levels.size())) return {};
    return pack->levels[level - 1].name;
}

} // namespace torvane
