// Pack files in a folder: listing, loading, bad files left as they are, failing writes, and
// the packs that come with the game (how far the bot gets through each is the balance that
// tools/pack-report.sh measures).
#include "game/content/PackFormat.h"
#include "game/content/PackStorage.h"
#include "tests/content/ContentTestSupport.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>

namespace torvane {
namespace {

namespace fs = std::filesystem;
using testing_support::RulesTest;
using testing_support::ScratchFolder;
using PackStorageTest = RulesTest;

void WriteFile(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }
std::string ReadFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string PackText(const std::string& name, int levels = 1) {
    std::string text = "torvane-levelpack 1\nname=" + name + "\n";
    for (int i = 0; i < levels; ++i) text += "[level]\nshots=3\n";
    return text;
}

TEST_F(PackStorageTest, BadFilesAreLeftOutAndLeftAlone) {
    const fs::path dir = ScratchFolder("bad");
    std::string many = PackText("Viele", 0);
    for (int i = 0; i < 10000; ++i) many += "[level]\nname=\xc3\x28\xff\n";
    const std::map<std::string, std::string> files = {
        {"empty.tpack", ""},           {"x.tpack", "kein Pack\n"},         {"many.tpack", many},
        {"upper.TPACK", PackText("Gross")}, {"plain.txt", PackText("Text")}, {"good.tpack", PackText("Gut", 3)},
        {"1.tpack", PackText("alpha")},     {"2.tpack", PackText("\xc3\x84pfel")}, {"3.tpack", PackText("Zeta")}};
    for (const auto& [name, text] : files) WriteFile(dir / name, text);
    fs::create_directory(dir / "folder.tpack");
    fs::create_symlink(dir / "gone", dir / "dangling.tpack"); // a file that cannot be read
    const auto before = fs::last_write_time(dir / "x.tpack");

    const std::vector<LevelPack> packs = LoadPacks(FolderPackStorage(dir.string()));
    std::vector<std::string> names;
    for (const LevelPack& p : packs) names.push_back(p.name + "|" + p.file);
    // Sorted by name byte-wise: capitals, small letters, then umlauts.
    EXPECT_EQ(names, (std::vector<std::string>{"Gut|good.tpack", "Viele|many.tpack", "Zeta|3.tpack", "alpha|1.tpack",
                                               "\xc3\x84pfel|2.tpack"}));
    EXPECT_EQ(packs[0].levels.size(), 3u);
    EXPECT_EQ(packs[1].levels.size(), 30u);
    // Reading changes no file.
    for (const auto& [name, text] : files) EXPECT_EQ(ReadFile(dir / name), text) << name;
    EXPECT_EQ(fs::last_write_time(dir / "x.tpack"), before);
    EXPECT_TRUE(fs::is_directory(dir / "folder.tpack"));
    std::string text;
    EXPECT_FALSE(FolderPackStorage(dir.string()).read("dangling.tpack", text));
    EXPECT_FALSE(FolderPackStorage(dir.string()).read("folder.tpack", text));
    EXPECT_FALSE(FolderPackStorage(dir.string()).write("folder.tpack", PackText("Ueber")));
    // A missing folder or store gives nothing, and listing creates nothing.
    const fs::path missing = dir / "nicht_da";
    EXPECT_TRUE(FolderPackStorage(missing.string()).list().empty());
    EXPECT_FALSE(fs::exists(missing));
    EXPECT_TRUE(LoadPacks(PackStorage{}).empty());
    PackStorage onlyList = FolderPackStorage(missing.string());
    onlyList.read = nullptr;
    EXPECT_TRUE(LoadPacks(onlyList).empty());
}

TEST_F(PackStorageTest, WritingCreatesTheFolderAndReportsFailure) {
    const fs::path dir = ScratchFolder("write");
    const PackStorage store = FolderPackStorage((dir / "a" / "levelpacks").string());
    ASSERT_TRUE(store.write("p.tpack", PackText("P")));
    std::string back;
    ASSERT_TRUE(store.read("p.tpack", back));
    EXPECT_EQ(back, PackText("P"));
    EXPECT_TRUE(store.write("p.tpack", "kurz"));
    EXPECT_EQ(ReadFile(dir / "a" / "levelpacks" / "p.tpack"), "kurz"); // truncated, not appended
    // A folder that cannot be made (its parent is a file) fails the write, also for root.
    WriteFile(dir / "datei", "");
    EXPECT_FALSE(FolderPackStorage((dir / "datei" / "levelpacks").string()).write("p.tpack", "x"));
}

TEST_F(PackStorageTest, BackgroundOfALevel) {
    EXPECT_EQ(BackgroundIndex(6), 0);
    EXPECT_EQ(BackgroundIndex(0), 4);
    EXPECT_EQ(BackgroundIndex(-1), 3);
    LevelPack pack;
    pack.levels.resize(2);
    pack.levels[0].background = 3;
    SetActivePack(&pack);
    EXPECT_EQ(BackgroundIndex(1), 2);
    EXPECT_EQ(BackgroundIndex(2), 0);
    EXPECT_EQ(BackgroundIndex(3), 2); // beyond the pack: the landscapes in turn
    EXPECT_EQ(PackLevelName(0), "");
    EXPECT_EQ(PackLevelName(3), "");
    LevelPack empty;
    SetActivePack(&empty);
    EXPECT_EQ(ActivePack(), nullptr);
}

TEST_F(PackStorageTest, TheShippedPacksParseAndAreCompleteAndNamed) {
    const std::vector<LevelPack> packs =
        LoadPacks(FolderPackStorage(std::string(TORVANE_SOURCE_DIR) + "/assets/torvane/levelpacks"));
    // File, title, fewest and most levels.
    const std::tuple<std::string, std::string, size_t, size_t> stated[] = {
        {"Erste_Schritte.tpack", "Erste Schritte", 7, 9},
        {"Durch_die_Vellmark.tpack", "Durch die Vellmark", 15, 20},
        {"Die_Feuerprobe.tpack", "Die Feuerprobe", 30, 30}};
    ASSERT_EQ(packs.size(), 3u);
    for (const auto& [file, name, fewest, most] : stated) {
        const std::string& wanted = file; // a lambda can't capture a structured binding before C++20
        const auto pack = std::find_if(packs.begin(), packs.end(), [&](const LevelPack& p) { return p.file == wanted; });
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
