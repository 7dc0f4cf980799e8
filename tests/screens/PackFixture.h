#pragma once
// The screens' fixture with a folder of level packs written by the test.
#include "game/content/PackFormat.h"
#include "tests/screens/ScreensFixture.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace torvane::testing_support {

class PackScreensTest : public ScreensTest {
protected:
    void SetUp() override {
        ScreensTest::SetUp();
        packs = dataFolder + "/levelpacks";
        std::filesystem::create_directories(packs);
    }
    void TearDown() override {
        ScreensTest::TearDown();
        SetActivePack(nullptr);
    }
    // A pack of the standard campaign's first levels, named in turn from a short list
    // in which one name is left empty.
    void AddPack(const std::string& name, int levels) {
        static const char* const kNames[] = {"Tor im Sand", "", "Seeufer", "Schneewall", "Sturmkante", "Glut"};
        LevelPack pack;
        pack.name = name;
        for (int i = 1; i <= levels; ++i) {
            pack.levels.push_back(DefaultPackLevel(i));
            pack.levels.back().name = kNames[(i - 1) % 6];
        }
        std::ofstream(packs + "/" + PackFileName(name), std::ios::binary) << SerialisePack(pack);
    }

    std::string packs;
};

} // namespace torvane::testing_support
