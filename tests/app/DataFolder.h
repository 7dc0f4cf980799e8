#pragma once
// The application tests keep their settings and scores in a folder of their own below
// the build folder, never in the user's: XDG_DATA_HOME points there for the whole program.
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace torvane::testing_support {

inline std::string TestDataHome() {
    return std::string(TORVANE_BINARY_DIR) + "/app_tests_data_" + std::to_string(getpid());
}

// An empty data home; returns the game's folder in it (not yet made).
inline std::string FreshDataFolder() {
    std::filesystem::remove_all(TestDataHome());
    std::filesystem::create_directories(TestDataHome());
    setenv("XDG_DATA_HOME", TestDataHome().c_str(), 1);
    return TestDataHome() + "/Torvane";
}

} // namespace torvane::testing_support
