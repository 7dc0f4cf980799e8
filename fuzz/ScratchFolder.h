#pragma once
// A folder of the fuzz target's own process for the files it writes for every input: in
// memory where the system has such a folder, and taken away when the process ends.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace fuzzing {

inline std::string ScratchFolder(const std::string& name) {
    namespace fs = std::filesystem;
    static std::vector<std::string> s_made;
    if (s_made.empty())
        std::atexit([] {
            std::error_code ignored;
            for (const std::string& folder : s_made) fs::remove_all(folder, ignored);
        });
    std::error_code error;
    const std::string base = fs::is_directory("/dev/shm", error) ? "/dev/shm" : fs::temp_directory_path(error).string();
    s_made.push_back(base + "/" + name + "_" + std::to_string(getpid()));
    return s_made.back();
}

} // namespace fuzzing
