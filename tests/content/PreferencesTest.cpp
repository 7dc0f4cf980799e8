// The settings file and the high-score file: their exact formats, the data folder's
// search, and the damaged and unwritable cases, which must cost nothing but that file.
#include "game/content/Highscores.h"
#include "game/content/Preferences.h"
#include "game/content/ReplayFiles.h"
#include "game/rules/Lang.h"
#include "game/rules/Level.h"
#include "pge/Files.h"
#include "tests/ScratchPath.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace torvane {
namespace {

namespace fs = std::filesystem;
using highscores::Entry;

// A private XDG_DATA_HOME; the environment and the settings come back afterwards.
class DataFolderTest : public testing_support::RulesTest {
protected:
    void SetUp() override {
        RulesTest::SetUp();
        for (const char* name : {"XDG_DATA_HOME", "HOME"})
            if (const char* v = std::getenv(name)) env[name] = v;
        base = fs::path(scratch::Path("content_tests"));
        fs::remove_all(base);
        fs::create_directories(base);
        setenv("XDG_DATA_HOME", base.c_str(), 1);
        folder = base / "Torvane";
    }
    void TearDown() override {
        fs::remove_all(base);
        for (const char* name : {"XDG_DATA_HOME", "HOME"})
            env.count(name) ? setenv(name, env[name].c_str(), 1) : unsetenv(name);
        RulesTest::TearDown();
    }
    void Write(const std::string& name, const std::string& text) {
        fs::create_directories(folder);
        std::ofstream(folder / name, std::ios::binary) << text;
    }
    std::string Read(const std::string& name) {
        std::string text;
        pge::files::ReadAll((folder / name).string(), text, pge::files::kMaxDataBytes);
        return text;
    }

    std::map<std::string, std::string> env;
    fs::path base, folder;
};
using PreferencesTest = DataFolderTest;
using HighscoresTest = DataFolderTest;

TEST_F(PreferencesTest, DirectoryFollowsXdgThenHomeAndIsMade) {
    EXPECT_EQ(preferences::Directory(), folder.string());
    EXPECT_TRUE(fs::is_directory(folder));
    // An empty XDG_DATA_HOME goes by HOME.
    setenv("XDG_DATA_HOME", "", 1);
    setenv("HOME", base.c_str(), 1);
    EXPECT_EQ(preferences::Directory(), (base / ".local" / "share" / "Torvane").string());
    // Neither: no folder, nothing read, nothing written.
    unsetenv("XDG_DATA_HOME");
    unsetenv("HOME");
    EXPECT_EQ(preferences::Directory(), "");
    GetSettings().difficulty = 2;
    preferences::Load();
    EXPECT_EQ(GetSettings().difficulty, 2);
    EXPECT_FALSE(preferences::Save());
    EXPECT_FALSE(highscores::Save({{"A", 1, 1, 0}}));
    // A file where the folder should be: it can't be made.
    setenv("XDG_DATA_HOME", base.c_str(), 1);
    fs::remove_all(folder);
    std::ofstream(folder) << "x";
    EXPECT_EQ(preferences::Directory(), "");
    EXPECT_FALSE(preferences::Save());
}

TEST_F(PreferencesTest, WritesTheExampleFileAndReadsItBack) {
    Settings& s = GetSettings();
    s.auto_rotate = s.piece_choice = s.music = true;
    s.difficulty = s.repair_mode = 1;
    s.sprites = 0;
    s.level_pack = "burg.tpack";
    SetLanguage(Language::English);
    const std::string example = "settings_version=2\nauto_rotate=1\npiece_choice=1\ndifficulty=medium\n"
                                "repair_mode=auto\nmusic=1\nsprites=auto\nlanguage=en\nlevel_pack=burg.tpack\n";
    EXPECT_EQ(preferences::Serialise(), example);
    ASSERT_TRUE(preferences::Save());
    EXPECT_EQ(Read("settings.txt"), example);

    GetSettings() = Settings{};
    SetLanguage(Language::German);
    preferences::Apply("settings_version=2\nauto_rotate=0\ndifficulty=hard\nrepair_mode=free\npiece_choice=0\n"
                       "sprites=off\nlanguage=de\nmusic=0");
    const std::string other = preferences::Serialise();
    EXPECT_EQ(other, "settings_version=2\nauto_rotate=0\npiece_choice=0\ndifficulty=hard\nrepair_mode=free\n"
                     "music=0\nsprites=off\nlanguage=de\nlevel_pack=\n");
    preferences::Apply(other);
    EXPECT_EQ(preferences::Serialise(), other);
    preferences::Load();
    EXPECT_EQ(preferences::Serialise(), example);
}

TEST_F(PreferencesTest, ValuesReadByTheirOwnRules) {
    Settings& s = GetSettings();
    // Without the marker auto_rotate is not taken; with it anywhere, also later, it is.
    preferences::Apply("auto_rotate=0\n");
    EXPECT_TRUE(s.auto_rotate);
    preferences::Apply("auto_rotate=0\r\nsprites=on\r\nsettings_version=2\r\n");
    EXPECT_EQ(std::make_tuple(s.auto_rotate, s.sprites), std::make_tuple(false, 1));
    for (const auto& [value, on] : std::vector<std::pair<std::string, bool>>{
             {"true", true}, {"1", true}, {"TRUE", false}, {"yes", false}, {"1 ", false}}) {
        preferences::Apply("settings_version=2\nauto_rotate=" + value);
        EXPECT_EQ(s.auto_rotate, on) << value;
    }
    // Not understood: the format's meaning, not the default. Keys match exactly.
    s.difficulty = 3;
    preferences::Apply("difficulty=Hard\n difficulty=hard\nrepair_mode=AUTO\nlevel_pack=a=b\nlanguage=xx");
    EXPECT_EQ(std::make_tuple(s.difficulty, s.repair_mode, s.level_pack, CurrentLanguage()),
              std::make_tuple(0, 0, "a=b", Language::German));
    // Twice: the last wins; lines without "=" are skipped.
    preferences::Apply("difficulty=hard\ngarbage\ndifficulty=torvane");
    EXPECT_EQ(s.difficulty, 3);
    // A line of three megabytes costs only itself.
    Write("settings.txt", std::string(3 << 20, 'x') + "=y\ndifficulty=hard\n");
    GetSettings() = Settings{};
    preferences::Load();
    EXPECT_EQ(std::make_tuple(GetSettings().difficulty, GetSettings().auto_rotate), std::make_tuple(2, true));
}

TEST_F(HighscoresTest, FileFormatAsWritten) {
    const std::vector<Entry> list = {{"Anna", 18450, 7, 1730000000}, {"Jo", 9200, 3, 1729990000}};
    const std::string text = "18450\t7\t1730000000\tAnna\n9200\t3\t1729990000\tJo\n";
    EXPECT_EQ(highscores::Serialise(list), text);
    ASSERT_TRUE(highscores::Save(list));
    EXPECT_EQ(Read("highscores.txt"), text);
    EXPECT_EQ(highscores::Serialise(highscores::Load()), text);
    // CRLF gives the same list; a tab or line feed in a name becomes a blank.
    EXPECT_EQ(highscores::Serialise(highscores::Parse("18450\t7\t1730000000\tAnna\r\n9200\t3\t1729990000\tJo\r\n")),
              text);
    EXPECT_EQ(highscores::Parse(highscores::Serialise({{"a\tb\nc", 5, 1, 0}}))[0].name, "a b c");
    EXPECT_EQ(highscores::Serialise({}), "");
}

TEST_F(HighscoresTest, ParseSkipsBadLinesTheTenBestStayAndOlderEntriesStayAhead) {
    const auto parsed = highscores::Parse("12x\t3\t0\tAnna\n12\t3\t0\t\n\t1\t1\tX\n5\t1\t1\n"
                                        " +7\t2\t0\tB\tC\n-3\t1\t0\tneg\n4294967306\t1\t0\twide\n");
    // The wide score keeps its low 32 bits: 10.
    EXPECT_EQ(highscores::Serialise(parsed), "12\t3\t0\t\n10\t1\t0\twide\n7\t2\t0\tB C\n-3\t1\t0\tneg\n");
    EXPECT_EQ(parsed[2].name, "B\tC");

    std::string twelve;
    for (int s : {30, 110, 20, 90, 120, 40, 100, 10, 80, 60, 70, 50}) twelve += std::to_string(s) + "\t1\t0\tx\n";
    const auto best = highscores::Parse(twelve);
    ASSERT_EQ(best.size(), 10u);
    for (size_t i = 0; i < best.size(); ++i) EXPECT_EQ(best[i].score, 120 - 10 * int(i));
    // Equal scores keep the order of the file.
    const auto equal = highscores::Parse("5\t1\t0\tfirst\n9\t1\t0\ttop\n5\t1\t0\tsecond\n");
    EXPECT_EQ(std::make_tuple(equal[1].name, equal[2].name), std::make_tuple("first", "second"));
    // A new entry goes behind older ones of the same score.
    std::vector<Entry> list;
    EXPECT_EQ(highscores::Insert(list, {"a", 50, 1, 0}), 0);
    list = {{"", 500, 1, 0}, {"", 300, 1, 0}, {"", 300, 1, 0}, {"", 100, 1, 0}};
    EXPECT_EQ(highscores::Insert(list, {"new", 300, 1, 0}), 3);
    EXPECT_EQ(list[3].name, "new");

    std::vector<Entry> full;
    for (int i = 0; i < 10; ++i) full.push_back({std::to_string(i), 1000 - 100 * i, 1, 0});
    EXPECT_TRUE(highscores::Qualifies(list, 0));
    EXPECT_FALSE(highscores::Qualifies(full, 100));
    EXPECT_TRUE(highscores::Qualifies(full, 101));
    const auto before = highscores::Serialise(full);
    EXPECT_EQ(highscores::Insert(full, {"late", 100, 1, 0}), -1);
    EXPECT_EQ(highscores::Serialise(full), before);
    EXPECT_EQ(highscores::Insert(full, {"top", 2000, 1, 0}), 0);
    EXPECT_EQ(std::make_tuple(full.size(), full[9].score), std::make_tuple(10u, 200));
}

TEST_F(HighscoresTest, EachEntryKeepsItsReplayWhereverTheListPutsIt) {
    std::vector<Entry> list;
    for (int i = 0; i < 10; ++i) {
        const Entry e{"Spieler\t" + std::to_string(i), 1000 - 10 * i, 2, 1700000000 + i};
        highscores::Insert(list, e);
        ASSERT_TRUE(replay::Keep(e, "stream " + std::to_string(i)));
    }
    ASSERT_TRUE(highscores::Save(list));
    Write("replays/mine.trep", "kept by hand");
    // Read back (the tab became a blank) and rewritten with a better entry on top: every
    // entry still finds its own replay, and the last one falls off with its replay.
    list = highscores::Load();
    const Entry best{"Neu", 5000, 9, 1800000000};
    highscores::Insert(list, best);
    ASSERT_TRUE(replay::Keep(best, "stream best"));
    ASSERT_TRUE(highscores::Save(list));
    replay::Prune(list);
    ASSERT_EQ(list.size(), 10u);
    for (const Entry& e : list) EXPECT_TRUE(replay::Has(e)) << e.name;
    EXPECT_FALSE(replay::Has({"Spieler 9", 910, 2, 1700000009}));
    size_t files = 0;
    for (const auto& item : fs::directory_iterator(folder / "replays")) files += item.is_regular_file() ? 1 : 0;
    EXPECT_EQ(files, 11u); // ten entries and the file that is no entry's
    EXPECT_EQ(Read("replays/mine.trep"), "kept by hand");
    // The score file stays as it was: four fields a line.
    EXPECT_EQ(Read("highscores.txt").substr(0, 22), "5000\t9\t1800000000\tNeu\n");
    EXPECT_EQ(Read("highscores.txt"), highscores::Serialise(list));
}

} // namespace
} // namespace torvane
