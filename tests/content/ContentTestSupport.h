#pragma once
// Shared set-up for the content tests: a pack store in memory and a scratch folder.
#include "game/content/PackStorage.h"
#include "tests/ScratchPath.h"
#include "tests/content/MemoryStore.h"

#include <filesystem>
#include <string>

namespace torvane::testing_support {

// A fresh, empty folder under the build tree for one test.
inline std::filesystem::path ScratchFolder(const std::string& name) {
    const std::filesystem::path dir = scratch::Path("content_scratch/" + name);
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    return dir;
}

} // namespace torvane::testing_support
