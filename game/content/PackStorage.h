#pragma once
// Where level packs are kept, loading them all, and the background a level shows.
#include "game/rules/LevelPack.h"

#include <functional>
#include <string>
#include <vector>

namespace torvane {

// A store of pack files behind three functions, so that loading and the editor run
// against any store; any of them may be empty.
struct PackStorage {
    std::function<std::vector<std::string>()> list;
    std::function<bool(const std::string& name, std::string& text)> read;
    std::function<bool(const std::string& name, const std::string& text)> write;
};

// The .tpack files of one folder; writing creates the folder first.
PackStorage FolderPackStorage(const std::string& folder);
// Copies each file of `from` that can be read into `to`, text unchanged, where `to` holds
// it empty, or, with `all`, holds none of that name. True unless a copy failed to write.
bool CopyPacks(const PackStorage& from, const PackStorage& to, bool all);
// Every pack of the store that reads and parses, sorted byte-wise by name.
std::vector<LevelPack> LoadPacks(const PackStorage& storage);
// The background's index 0 to 4 of a level: the active pack's choice for its own
// levels, otherwise the five landscapes in turn.
int BackgroundIndex(int level);

} // namespace torvane
