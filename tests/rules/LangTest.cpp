#include "RulesTestSupport.h"
#include "SourceScan.h"

#include <regex>
#include <set>
#include <tuple>

using namespace torvane;
using namespace torvane::testing_support;

class LangTr : public RulesTest {};

TEST_F(LangTr, EnglishTranslatesAndReportsEachGapOnceGermanNever) {
    const std::string absent = "Nur in diesem Test: fehlt";
    EXPECT_EQ(Tr(absent), absent);  // German returns the key
    EXPECT_EQ(MissingTranslations().count(absent), 0u);
    SetLanguage(Language::English);
    EXPECT_EQ(Tr("Angriff!"), "Attack!");
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(Tr(absent), absent);
    EXPECT_EQ(Tr(absent), absent);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "[torvane] keine Uebersetzung: \"" + absent + "\"\n");
    EXPECT_EQ(MissingTranslations().count(absent), 1u);
    EXPECT_EQ(DirectionLetter('O'), 'E');
}

TEST_F(LangTr, TrfFillsPlaceholdersOnceAfterTranslation) {
    EXPECT_EQ(Trf("{0} von {1}", {"3", "9"}), "3 von 9");
    EXPECT_EQ(Trf("{0}{0}", {"x{0}"}), "x{0}x{0}");  // an argument is never searched for its own placeholder
    EXPECT_EQ(Trf("[{0}]", {"{1}", "zwei"}), "[zwei]");
    EXPECT_EQ(Trf("{0} und {1}", {"a"}), "a und {1}");
    EXPECT_EQ(Decimal(-3.25f), "-3,3");  // halves away from zero
    SetLanguage(Language::English);
    EXPECT_EQ(Trf("+{0} Reihe!", {"140"}), "+140 row!");
}

TEST_F(LangTr, TrnTakesTheFormForOneOrForAnyOtherCount) {
    const std::string fell = "Eingestürzt: {0} Feld|Eingestürzt: {0} Felder";
    for (const auto& [language, count, expected] : std::vector<std::tuple<Language, long long, std::string>>{
             {Language::German, 1, "Eingestürzt: 1 Feld"},
             {Language::German, 0, "Eingestürzt: 0 Felder"},
             {Language::German, 12, "Eingestürzt: 12 Felder"},
             {Language::English, 1, "Collapsed: 1 block"},
             {Language::English, -1, "Collapsed: -1 blocks"},
         }) {
        SetLanguage(language);
        EXPECT_EQ(Trn(fell, count), expected);
    }
    // One form in German, two in English.
    EXPECT_EQ(Trn("{0} Level", 1), "1 level");
    SetLanguage(Language::German);
    EXPECT_EQ(Trn("{0} Level", 1), "1 Level");
}

// Every literal handed directly to Tr or Trf in the game's sources, in all its folders.
std::set<std::string> LiteralKeys() {
    const std::regex call(R"re(\bTr[fn]?\(\s*"((?:[^"\\]|\\.)*)")re");
    std::set<std::string> keys;
    for (const std::string& file : SourceFiles("game")) {
        const std::string s = ReadSource(file);
        for (auto it = std::sregex_iterator(s.begin(), s.end(), call); it != std::sregex_iterator(); ++it)
            keys.insert((*it)[1].str());
    }
    return keys;
}

TEST_F(LangTr, EveryKeyTheGameUsesHasATranslation) {
    const std::set<std::string> keys = LiteralKeys();
    ASSERT_GT(keys.size(), 12u);  // an empty scan means a broken search
    ASSERT_EQ(keys.count("Kein Platz mehr in dieser Spalte"), 1u);
    SetLanguage(Language::English);
    for (const std::string& key : keys) {
        if (key.find('\\') != std::string::npos) continue;  // escapes are not part of a key's text
        ::testing::internal::CaptureStderr();
        Tr(key);
        ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(MissingTranslations().count(key), 0u) << "no translation for \"" << key << "\"";
    }
    EXPECT_EQ(Tr(CompassSector('O', GetSettings()).label), "East");  // labels reach Tr indirectly
}
