#include "RulesTestSupport.h"

#include <dirent.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

using namespace torvane;
using namespace torvane::testing_support;

class LangTr : public RulesTest {};

TEST_F(LangTr, GermanReturnsTheKeyAndReportsNoGap) {
    const size_t gapsBefore = MissingTranslations().size();
    SetLanguage(Language::German);
    EXPECT_EQ(Tr("Ein Text, den es nirgends gibt"), "Ein Text, den es nirgends gibt");
    EXPECT_EQ(Tr("Angriff!"), "Angriff!");
    EXPECT_EQ(MissingTranslations().size(), gapsBefore);
}

TEST_F(LangTr, EnglishTranslatesAndReportsEachGapOnce) {
    SetLanguage(Language::English);
    EXPECT_EQ(Tr("Angriff!"), "Attack!");
    EXPECT_EQ(Tr("Aufbau – der Angriff kommt gleich"), "Build – the attack is coming");
    EXPECT_EQ(Tr("Level"), "Level");  // same in both languages, but no gap

    const std::string absent = "Nur in diesem Test: fehlt";
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(Tr(absent), absent);
    EXPECT_EQ(Tr(absent), absent);
    const std::string printed = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(printed, "[torvane] keine Uebersetzung: \"" + absent + "\"\n");
    EXPECT_EQ(MissingTranslations().count(absent), 1u);
    EXPECT_EQ(MissingTranslations().count("Level"), 0u);
}

TEST_F(LangTr, TrfFillsPlaceholdersAfterTranslation) {
    SetLanguage(Language::German);
    EXPECT_EQ(Trf("{0} von {1}", {"3", "9"}), "3 von 9");
    SetLanguage(Language::English);
    EXPECT_EQ(Trf("{0} von {1}", {"3", "9"}), "3 of 9");
    EXPECT_EQ(Trf("+{0} Reihe!", {"140"}), "+140 row!");
}

TEST_F(LangTr, TrfNeverSearchesAnArgumentForItsOwnPlaceholder) {
    SetLanguage(Language::German);
    EXPECT_EQ(Trf("{0}", {"{0}"}), "{0}");
    EXPECT_EQ(Trf("{0}{0}", {"x{0}"}), "x{0}x{0}");
    // A later argument's placeholder that came in with an earlier one is replaced.
    EXPECT_EQ(Trf("[{0}]", {"{1}", "zwei"}), "[zwei]");
    // Missing arguments leave placeholders, spare arguments are dropped.
    EXPECT_EQ(Trf("{0} und {1}", {"a"}), "a und {1}");
    EXPECT_EQ(Trf("nichts", {"a", "b"}), "nichts");
    EXPECT_EQ(Trf("{0}", {}), "{0}");
}

TEST_F(LangTr, DecimalRoundsHalvesAwayFromZero) {
    SetLanguage(Language::German);
    EXPECT_EQ(Decimal(2.45f), "2,5");
    EXPECT_EQ(Decimal(-0.04f), "0,0");
    EXPECT_EQ(Decimal(-0.06f), "-0,1");
    EXPECT_EQ(Decimal(0.0f), "0,0");
    EXPECT_EQ(Decimal(12.0f), "12,0");
    EXPECT_EQ(Decimal(-3.25f), "-3,3");
    SetLanguage(Language::English);
    EXPECT_EQ(Decimal(2.45f), "2.5");
    EXPECT_EQ(Decimal(1.04f), "1.0");
    EXPECT_EQ(Decimal(99.99f), "100.0");
}

TEST_F(LangTr, DirectionLettersFollowTheLanguage) {
    SetLanguage(Language::English);
    EXPECT_EQ(DirectionLetter('O'), 'E');
    EXPECT_EQ(DirectionLetter('N'), 'N');
    EXPECT_EQ(DirectionLetter('W'), 'W');
    SetLanguage(Language::German);
    EXPECT_EQ(DirectionLetter('O'), 'O');
    EXPECT_EQ(DirectionLetter('N'), 'N');
}

namespace {

std::vector<std::string> GameSources() {
    const std::string dir = std::string(TORVANE_SOURCE_DIR) + "/game";
    std::vector<std::string> files;
    if (DIR* d = opendir(dir.c_str())) {
        while (dirent* e = readdir(d)) {
            const std::string name = e->d_name;
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".cpp") == 0)
                files.push_back(dir + "/" + name);
        }
        closedir(d);
    }
    return files;
}

// Every literal handed directly to Tr or Trf in the game's sources.
std::set<std::string> LiteralKeys() {
    const std::regex call(R"re(\bTrf?\(\s*"((?:[^"\\]|\\.)*)")re");
    std::set<std::string> keys;
    for (const std::string& file : GameSources()) {
        std::ifstream in(file);
        std::stringstream text;
        text << in.rdbuf();
        const std::string s = text.str();
        for (auto it = std::sregex_iterator(s.begin(), s.end(), call); it != std::sregex_iterator(); ++it)
            keys.insert((*it)[1].str());
    }
    return keys;
}

} // namespace

TEST_F(LangTr, EveryKeyTheGameUsesHasATranslation) {
    const std::set<std::string> keys = LiteralKeys();
    // The rules alone speak more than a dozen texts; an empty scan means a broken search.
    ASSERT_GT(keys.size(), 12u);
    ASSERT_EQ(keys.count("Kein Platz mehr in dieser Spalte"), 1u);
    SetLanguage(Language::English);
    for (const std::string& key : keys) {
        if (key.find('\\') != std::string::npos) continue;  // escapes are not part of a key's text
        const size_t before = MissingTranslations().size();
        ::testing::internal::CaptureStderr();
        Tr(key);
        ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(MissingTranslations().size(), before) << "no translation for \"" << key << "\"";
        EXPECT_EQ(MissingTranslations().count(key), 0u) << key;
    }
}

TEST_F(LangTr, TextsThatReachTrIndirectlyAreTranslated) {
    SetLanguage(Language::English);
    const Settings& s = GetSettings();
    for (char letter : std::string("NSOW")) {
        const std::string label = CompassSector(letter, s).label;
        EXPECT_NE(Tr(label), label) << label;
    }
    for (int d = 0; d < kDifficulties; ++d) {
        const std::string label = DifficultyLabel(d);
        ::testing::internal::CaptureStderr();
        Tr(label);
        ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(MissingTranslations().count(label), 0u) << label;
    }
    for (const char* credit : {kCreditProgramming, kCreditGraphics, kCreditMusic, kCreditThanks})
        EXPECT_NE(Tr(credit), credit);
}
