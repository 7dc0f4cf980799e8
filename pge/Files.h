#pragma once
// Whole files, read so that nothing hangs and written so that nothing is lost. Only
// regular files are read, and only up to a limit: a FIFO, a device or a link to one in a
// file's place is refused at once. A file is written as a new file beside it, flushed to
// the disk and renamed over the old one, so that a crash, a full disk or a size limit
// leaves the old file whole. Standard library and POSIX only: every library that keeps
// files links it, the content library included, which has no window.
#include <cstddef>
#include <string>
#include <string_view>

namespace pge::files {

// Settings, scores, level packs, saved games and the game's JSON files: far more than
// any of them holds.
inline constexpr size_t kMaxDataBytes = size_t(4) << 20;

// The file's bytes into out; false (out empty) when it is no regular file, holds more
// than maxBytes or cannot be read to the end.
bool ReadAll(const std::string& path, std::string& out, size_t maxBytes);
// The bytes as the file's whole new content, through a new file in the same folder. A
// symbolic link is followed and the file it names replaced, with that file's
// permissions. Anything but a regular file in the place (a folder, a FIFO, a device) is
// left as it is. False on any failure, and the old file is then untouched. The first call
// ignores SIGXFSZ for the process (unless someone handles it), so that a file-size limit
// fails the write instead of ending the program.
bool WriteAll(const std::string& path, std::string_view bytes);

} // namespace pge::files
