#pragma once
// The .tpack text format of a level pack: reading, writing, bounds and file names.
#include "game/rules/LevelPack.h"

#include <string>

namespace torvane {

// The file text of a pack, keys in their fixed order; nothing is clamped or escaped.
std::string SerialisePack(const LevelPack& pack);
// Reads a pack; `out` changes only on success (a header line and at least one level).
bool ParsePack(const std::string& text, LevelPack& out);
// Forces a level into its bounds and rebuilds its directions.
void Clamp(PackLevel& level);
// The built-in ring campaign's parameters at `level`, whatever pack is active.
PackLevel DefaultPackLevel(int level);
// The file name, extension included, that a pack of title `name` is saved under.
std::string PackFileName(const std::string& name);

// Text helpers shared by the parser, the editor and the high-score name field.
// Removes blanks, tabs and carriage returns from both ends.
std::string Trim(const std::string& text);
// A UTF-8 continuation byte, of the form 10xxxxxx.
bool IsContinuation(char c);
// Removes the last UTF-8 code point; an empty string stays empty.
void PopChar(std::string& text);
// The number of UTF-8 code points: every byte that is no continuation byte.
size_t CodePoints(const std::string& text);

} // namespace torvane
