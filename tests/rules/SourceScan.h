#pragma once
// Reads the project's own sources, for the checks that look at the code itself.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace torvane::testing_support {

// Every .cpp and .h file below `dir` of the source tree (relative to its root), sorted.
inline std::vector<std::string> SourceFiles(const std::string& dir) {
    namespace fs = std::filesystem;
    std::vector<std::string> files;
    const fs::path root(TORVANE_SOURCE_DIR);
    for (const auto& e : fs::recursive_directory_iterator(root / dir)) {
        const std::string ext = e.path().extension().string();
        if (e.is_regular_file() && (ext == ".cpp" || ext == ".h"))
            files.push_back(fs::relative(e.path(), root).generic_string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

inline std::string ReadSource(const std::string& relative) {
    std::ifstream in(std::string(TORVANE_SOURCE_DIR) + "/" + relative);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

} // namespace torvane::testing_support
