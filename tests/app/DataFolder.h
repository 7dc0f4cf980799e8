#pragma once
// The application tests keep their settings and scores in a folder of their own below
// the build folder, never in the user's: XDG_DATA_HOME points there for the whole
// program. Beside it lies an asset tree of their own, empty but for what a test puts
// in, so that the game's real pictures (a title picture above all) change no test.
#include "engine/Assets.h"
#include "tests/ScratchPath.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace torvane::testing_support {

inline std::string TestDataHome() {
    return scratch::Path("app_tests_data");
}

// The root of the tests' asset tree, found as the bundle beside a program in bin/.
inline std::string TestAssets() { return TestDataHome() + "/assets/Resources/assets"; }

// An empty data home and an empty asset tree, made the game's; returns the game's data
// folder (not yet made).
inline std::string FreshDataFolder() {
    namespace fs = std::filesystem;
    fs::remove_all(TestDataHome());
    fs::create_directories(TestDataHome() + "/assets/bin");
    fs::create_directories(TestAssets() + "/torvane");
    setenv("XDG_DATA_HOME", TestDataHome().c_str(), 1);
    adv::Assets::Clear();
    adv::Assets::Init(TestDataHome() + "/assets/bin/torvane");
    return TestDataHome() + "/Torvane";
}

} // namespace torvane::testing_support
