#pragma once
// The ten best games with the built-in levels, kept in highscores.txt of the user's
// data folder: one line per entry, score, level, time and name separated by tabs.
#include <cstdint>
#include <string>
#include <vector>

namespace torvane::highscores {

struct Entry {
    std::string name; // UTF-8
    int32_t score = 0;
    int32_t level = 0;
    int64_t time = 0; // seconds since the Unix epoch at the moment of entry
};

inline constexpr size_t kMaxEntries = 10;

// <data folder>/highscores.txt, or empty without a data folder.
std::string Path();
// Best first, at most ten; bad lines are skipped.
std::vector<Entry> Parse(const std::string& text);
std::string Serialise(const std::vector<Entry>& list);
// Empty when there is no file or it can't be read.
std::vector<Entry> Load();
bool Save(const std::vector<Entry>& list);
// Whether a new score would make the list; equalling the tenth is not enough.
bool Qualifies(const std::vector<Entry>& list, int32_t score);
// Puts the entry behind all of equal score and cuts the list to ten. Returns its place
// from 0, or -1 if it did not stay.
int Insert(std::vector<Entry>& list, const Entry& entry);

} // namespace torvane::highscores
