#pragma once
// Scratch files and folders in the build tree. ctest runs test processes side by side, so
// each process gets paths of its own.
#include <string>

#include <unistd.h>

namespace scratch {

// <build folder>/<name>_<process id>; name may hold folders.
inline std::string Path(const std::string& name) {
    return std::string(TORVANE_BINARY_DIR) + "/" + name + "_" + std::to_string(getpid());
}

} // namespace scratch
