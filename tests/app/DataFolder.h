#pragma once
// The application tests keep their settings and scores in a folder of their own below
// the build folder, never in the user's: XDG_DATA_HOME points there for the whole program.
#include "engine/Assets.h"

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

// While it lives, the asset root is an empty tree, found as the bundle beside a program in
// bin/: no title picture, logo, music or sheets. The game then opens on the first title page
// over the tower view. Afterwards the tree of the working folder is the root again.
class BareAssets {
public:
    BareAssets() {
        std::filesystem::create_directories(Dir() + "/bin");
        std::filesystem::create_directories(Dir() + "/Resources/assets");
        adv::Assets::Init(Dir() + "/bin/torvane");
        adv::Assets::Clear();
    }
    ~BareAssets() {
        adv::Assets::Clear();
        adv::Assets::Init("");
        std::filesystem::remove_all(Dir());
    }
    BareAssets(const BareAssets&) = delete;
    BareAssets& operator=(const BareAssets&) = delete;

private:
    static std::string Dir() { return TestDataHome() + "_bare_assets"; }
};

} // namespace torvane::testing_support
