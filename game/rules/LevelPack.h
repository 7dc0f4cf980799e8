#pragma once
// A player-made campaign and the one pack that is in play. The rules read the
// active pack through ActivePack(); reading and writing pack files lives elsewhere.
#include <cstdint>
#include <string>
#include <vector>

namespace torvane {

struct PackLevel {
    std::string name;
    int32_t background = 1;
    int32_t build = 70;
    int32_t pieces = 16;
    int32_t line = 5;
    int32_t need = 50;
    int32_t shots = 6;
    int32_t interval = 50;      // tenths of a second
    std::string directions = "N";
    bool waves = true;
    bool prep = true;
    bool newTower = false;
};

struct LevelPack {
    std::string name;
    std::string file;
    std::vector<PackLevel> levels;
};

// Makes a copy of `pack` active; null or a pack without levels returns to the
// built-in levels.
void SetActivePack(const LevelPack* pack);
// The active pack, or null.
const LevelPack* ActivePack();
// Counts the calls of SetActivePack: a change shows without comparing the packs.
uint32_t ActivePackStamp();
// Name of level `level` (from 1) of the active pack, empty when there is none.
std::string PackLevelName(int level);

} // namespace torvane
