#pragma once
// Reading a whole file without exceptions: a folder, a missing file or a read error
// is a plain false, so that the readers above it can fall back.
#include <string>

namespace pge::files {

// The file's bytes into out; false (out empty) when it cannot be read to the end.
bool ReadAll(const std::string& path, std::string& out);

} // namespace pge::files
