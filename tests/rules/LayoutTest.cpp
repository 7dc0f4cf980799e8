// The folders' boundaries: the rules stand on the standard library alone, and the engine
// and the framework know nothing of the game.
#include "SourceScan.h"

#include <gtest/gtest.h>

#include <regex>

using namespace torvane::testing_support;

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

TEST(Layout, TheCheckSeesEveryKindOfBreach) {
    EXPECT_EQ(Breaches("#include \"game/rules/Pieces.h\"\n#include <vector>\n  # include <cstdint>\n", true),
              std::vector<std::string>{});
    EXPECT_EQ(Breaches("#include \"engine/Canvas.h\"\n#include <X11/Xlib.h>\n#include \"Pieces.h\"\n"
                       "#include <stb_image.h>\n#include \"game/stage/Theme.h\"\n", true),
              (std::vector<std::string>{"engine/Canvas.h", "X11/Xlib.h", "Pieces.h", "stb_image.h",
                                        "game/stage/Theme.h"}));
    EXPECT_EQ(Breaches("#include \"pge/Pixel.h\"\n#include \"game/rules/Lang.h\"\n", false),
              std::vector<std::string>{"game/rules/Lang.h"});
}

TEST(Layout, RulesStandOnTheStandardLibraryAndEngineAndFrameworkNeverIncludeTheGame) {
    for (const char* dir : {"game/rules", "engine", "pge"}) {
        const std::vector<std::string> files = SourceFiles(dir);
        ASSERT_GT(files.size(), 10u) << dir;  // an empty scan would prove nothing
        for (const std::string& file : files)
            EXPECT_EQ(Breaches(ReadSource(file), dir[0] == 'g'), std::vector<std::string>{}) << file;
    }
}
