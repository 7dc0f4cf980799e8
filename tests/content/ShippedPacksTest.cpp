// The packs that come with the game parse, are complete and named (how far the bot gets
// through each is the balance that tools/pack-report.sh measures).
#include "game/content/PackStorage.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <set>

namespace torvane {
namespace {

TEST(ShippedPacksTest, ParseCompleteAndNamed) {
    const std::vector<LevelPack> packs =
        LoadPacks(FolderPackStorage(std::string(TORVANE_SOURCE_DIR) + "/assets/torvane/levelpacks"));
    // File, title, fewest and most levels.
    const std::tuple<std::string, std::string, size_t, size_t> stated[] = {
        {"Erste_Schritte.tpack", "Erste Schritte", 7, 9},
        {"Durch_die_Vellmark.tpack", "Durch die Vellmark", 15, 20},
        {"Die_Feuerprobe.tpack", "Die Feuerprobe", 30, 30}};
    ASSERT_EQ(packs.size(), 3u);
    for (const auto& [file, name, fewest, most] : stated) {
        const auto pack = std::find_if(packs.begin(), packs.end(), [&](const LevelPack& p) { return p.file == file; });
        ASSERT_NE(pack, packs.end()) << file;
        EXPECT_EQ(pack->name, name);
        EXPECT_GE(pack->levels.size(), fewest) << file;
        EXPECT_LE(pack->levels.size(), most) << file;
        std::set<std::string> names;
        std::set<int> landscapes;
        for (const PackLevel& l : pack->levels) {
            EXPECT_FALSE(l.name.empty()) << file;
            names.insert(l.name);
            landscapes.insert(l.background);
        }
        EXPECT_EQ(names.size(), pack->levels.size()) << file << ": every level has its own name";
        if (most == 20) { EXPECT_EQ(landscapes.size(), 5u) << "the campaign shows every landscape"; }
    }
}

} // namespace
} // namespace torvane
