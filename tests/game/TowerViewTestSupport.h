#pragma once
// Shared set-up for the tests of the stage and its themes: a private asset tree and
// the test pictures.
#include "engine/Assets.h"
#include "game/TowerView.h"
#include "tests/game/PalettedTestImage.h"
#include "tests/rules/RulesTestSupport.h"

#include <filesystem>
#include <string>

namespace torvane::testing_support {

// A fresh asset tree below the build folder, made the asset root.
inline std::string MakeAssetRoot(const std::string& name) {
    const std::filesystem::path base = std::filesystem::path(TORVANE_BINARY_DIR) / "tower_view_tests" / name;
    std::filesystem::remove_all(base);
    std::filesystem::create_directories(base / "bin");
    std::filesystem::create_directories(base / "Resources" / "assets" / "torvane");
    adv::Assets::Init((base / "bin" / "torvane").string());
    return adv::Assets::Root();
}

} // namespace torvane::testing_support
