#pragma once
// Replay files: the stream of Replay, deflated behind a small head (the mark "TRPL", the
// format's version, the stream's length and checksum), and the replays of the high
// scores, one per list entry, in the data folder's "replays/".
#include "game/content/Highscores.h"
#include "game/content/Replay.h"

#include <string>
#include <vector>

namespace torvane::replay {

// The format this game writes and reads.
inline constexpr int kFormatVersion = 1;
// Files and streams beyond these are taken for damage: hours of play at a thousand
// frames a second stay far below them.
inline constexpr size_t kMaxFileBytes = size_t(32) << 20;
inline constexpr size_t kMaxStreamBytes = size_t(256) << 20;

// The file's bytes of a stream, and the stream of a file's bytes.
std::string Pack(const std::string& stream);
bool Unpack(const std::string& file, std::string& stream, Error& error);

// Writes a stream as a replay file; false if it could not be written.
bool Save(const std::string& path, const std::string& stream);
// Reads and checks a replay file.
bool Load(const std::string& path, Replay& out, Error& error);

// <data folder>/replays, or empty without a data folder.
std::string Folder();
// The file of an entry's replay in Folder(): its score, level and time, and a hash of
// its line in the score file, so that it names the entry wherever the list puts it.
std::string FileOf(const highscores::Entry& entry);
// Whether the entry has its replay.
bool Has(const highscores::Entry& entry);
// Keeps the entry's replay with it.
bool Keep(const highscores::Entry& entry, const std::string& stream);
// Removes the replays of entries that are no longer in the list; other files stay.
void Prune(const std::vector<highscores::Entry>& list);

} // namespace torvane::replay
