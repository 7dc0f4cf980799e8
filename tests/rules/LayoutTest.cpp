// The folders' boundaries: the rules stand on the standard library alone, and the engine
// and the framework know nothing of the game.
#include "SourceScan.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <vector>

using namespace torvane::testing_support;

namespace {

const std::set<std::string> kStandardHeaders = {
    "algorithm", "any", "array", "atomic", "bitset", "cassert", "cctype", "cerrno", "cfloat",
    "charconv", "chrono", "cinttypes", "climits", "clocale", "cmath", "codecvt", "complex",
    "condition_variable", "csetjmp", "csignal", "cstdarg", "cstddef", "cstdint", "cstdio",
    "cstdlib", "cstring", "ctime", "cuchar", "cwchar", "cwctype", "deque", "exception",
    "execution", "filesystem", "forward_list", "fstream", "functional", "future",
    "initializer_list", "iomanip", "ios", "iosfwd", "iostream", "istream", "iterator", "limits",
    "list", "locale", "map", "memory", "memory_resource", "mutex", "new", "numeric", "optional",
    "ostream", "queue", "random", "ratio", "regex", "scoped_allocator", "set", "shared_mutex",
    "sstream", "stack", "stdexcept", "streambuf", "string", "string_view", "system_error",
    "thread", "tuple", "type_traits", "typeindex", "typeinfo", "unordered_map", "unordered_set",
    "utility", "valarray", "variant", "vector"};

struct Include {
    std::string path;
    bool angled = false;
};

std::vector<Include> Includes(const std::string& text) {
    static const std::regex line(R"re(^\s*#\s*include\s*([<"])([^>"]+)[>"])re", std::regex::multiline);
    std::vector<Include> out;
    for (auto it = std::sregex_iterator(text.begin(), text.end(), line); it != std::sregex_iterator(); ++it)
        out.push_back({(*it)[2].str(), (*it)[1].str() == "<"});
    return out;
}

// The includes of a rules file that reach beyond the standard library and the rules folder.
std::vector<std::string> RulesBreaches(const std::string& text) {
    std::vector<std::string> bad;
    for (const Include& inc : Includes(text)) {
        const bool ok = inc.angled ? kStandardHeaders.count(inc.path) > 0 : inc.path.rfind("game/rules/", 0) == 0;
        if (!ok) bad.push_back(inc.path);
    }
    return bad;
}

// The includes of an engine or framework file that reach into the game.
std::vector<std::string> GameBreaches(const std::string& text) {
    std::vector<std::string> bad;
    for (const Include& inc : Includes(text))
        if (inc.path.rfind("game/", 0) == 0) bad.push_back(inc.path);
    return bad;
}

} // namespace

TEST(Layout, TheCheckSeesEveryKindOfBreach) {
    EXPECT_EQ(RulesBreaches("#include \"game/rules/Pieces.h\"\n#include <vector>\n  # include <cstdint>\n"),
              std::vector<std::string>{});
    EXPECT_EQ(RulesBreaches("#include \"engine/Canvas.h\"\n#include <X11/Xlib.h>\n#include \"Pieces.h\"\n"
                            "#include \"game/stage/Theme.h\"\n"),
              (std::vector<std::string>{"engine/Canvas.h", "X11/Xlib.h", "Pieces.h", "game/stage/Theme.h"}));
    EXPECT_EQ(GameBreaches("#include \"pge/Pixel.h\"\n#include \"game/rules/Lang.h\"\n"),
              std::vector<std::string>{"game/rules/Lang.h"});
}

TEST(Layout, RulesIncludeOnlyTheStandardLibraryAndThemselves) {
    const std::vector<std::string> files = SourceFiles("game/rules");
    ASSERT_GT(files.size(), 20u);  // an empty scan would prove nothing
    for (const std::string& file : files)
        EXPECT_EQ(RulesBreaches(ReadSource(file)), std::vector<std::string>{}) << file;
}

TEST(Layout, EngineAndFrameworkNeverIncludeTheGame) {
    for (const char* dir : {"engine", "pge"}) {
        const std::vector<std::string> files = SourceFiles(dir);
        ASSERT_GT(files.size(), 10u) << dir;
        for (const std::string& file : files) EXPECT_EQ(GameBreaches(ReadSource(file)), std::vector<std::string>{}) << file;
    }
}
