// What the sources themselves show: every key the game hands to the language table has a
// translation, and the folders keep their boundaries.
#include "RulesTestSupport.h"
#include "SourceScan.h"

#include <regex>
#include <set>

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

TEST_F(LangTr, PlaceholdersAreFilledOnceAfterTranslationAndCountsPickTheirForm) {
    const std::string fell = "Eingestürzt: {0} Feld|Eingestürzt: {0} Felder";
    using Rows = std::vector<std::pair<std::string, std::string>>;
    const auto expect = [](const Rows& rows) {
        for (const auto& [actual, expected] : rows) EXPECT_EQ(actual, expected);
    };
    expect({{Trf("{0} von {1}", {"3", "9"}), "3 von 9"},
            {Trf("{0}{0}", {"x{0}"}), "x{0}x{0}"},  // an argument is never searched again
            {Trf("[{0}]", {"{1}", "zwei"}), "[zwei]"},
            {Trf("{0} und {1}", {"a"}), "a und {1}"},
            {Decimal(-3.25f), "-3,3"},  // halves away from zero
            {Trn(fell, 1), "Eingestürzt: 1 Feld"},
            {Trn(fell, 0), "Eingestürzt: 0 Felder"},
            {Trn("{0} Level", 1), "1 Level"}});  // one form in German, two in English
    SetLanguage(Language::English);
    expect({{Trf("+{0} Reihe!", {"140"}), "+140 row!"},
            {Trn(fell, 1), "Collapsed: 1 block"},
            {Trn(fell, -1), "Collapsed: -1 blocks"},
            {Trn("{0} Level", 1), "1 level"}});
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

namespace {

// The includes that cross a folder's boundary. In the rules only the standard library's
// headers (angled bare names) and the rules' own are allowed; elsewhere nothing of the game.
std::vector<std::string> Breaches(const std::string& text, bool rules) {
    static const std::regex line(R"re(^\s*#\s*include\s*([<"])([^>"]+)[>"])re", std::regex::multiline);
    std::vector<std::string> bad;
    for (auto it = std::sregex_iterator(text.begin(), text.end(), line); it != std::sregex_iterator(); ++it) {
        const std::string path = (*it)[2].str();
        const bool ok = !rules                   ? path.rfind("game/", 0) != 0
                        : (*it)[1].str() == "<" ? path.find_first_of("./") == std::string::npos
                                                : path.rfind("game/rules/", 0) == 0;
        if (!ok) bad.push_back(path);
    }
    return bad;
}

} // namespace

TEST(Layout, RulesStandOnTheStandardLibraryAndEngineAndFrameworkNeverIncludeTheGame) {
    // The check sees every kind of breach.
    EXPECT_EQ(Breaches("#include \"game/rules/Pieces.h\"\n#include <vector>\n  # include <cstdint>\n", true),
              std::vector<std::string>{});
    EXPECT_EQ(Breaches("#include \"engine/Canvas.h\"\n#include <X11/Xlib.h>\n#include \"Pieces.h\"\n"
                       "#include <stb_image.h>\n#include \"game/stage/Theme.h\"\n", true),
              (std::vector<std::string>{"engine/Canvas.h", "X11/Xlib.h", "Pieces.h", "stb_image.h",
                                        "game/stage/Theme.h"}));
    EXPECT_EQ(Breaches("#include \"pge/Pixel.h\"\n#include \"game/rules/Lang.h\"\n", false),
              std::vector<std::string>{"game/rules/Lang.h"});
    for (const char* dir : {"game/rules", "engine", "pge"}) {
        const std::vector<std::string> files = SourceFiles(dir);
        ASSERT_GT(files.size(), 10u) << dir;  // an empty scan would prove nothing
        for (const std::string& file : files)
            EXPECT_EQ(Breaches(ReadSource(file), dir[0] == 'g'), std::vector<std::string>{}) << file;
    }
}
