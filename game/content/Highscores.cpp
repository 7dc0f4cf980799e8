#include "game/content/Highscores.h"

#include "game/content/Preferences.h"
#include "pge/Files.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <sstream>

namespace torvane::highscores {
namespace {

// A whole field as a base-10 number: not empty and used up to its end.
bool Number(const std::string& field, int64_t& value) {
    if (field.empty()) return false;
    char* end = nullptr;
    errno = 0;
    const long long v = std::strtoll(field.c_str(), &end, 10);
    if (errno != 0 || end != field.c_str() + field.size()) return false;
    value = v;
    return true;
}

} // namespace

std::string Path() {
    const std::string folder = preferences::Directory();
    return folder.empty() ? "" : folder + "/highscores.txt";
}

std::vector<Entry> Parse(const std::string& text) {
    std::vector<Entry> list;
    if (text.empty()) return list;
    preferences::ForEachLine(text, [&](const std::string& line) {
        size_t tabs[3];
        size_t from = 0;
        for (size_t& tab : tabs) {
            tab = line.find('\t', from);
            if (tab == std::string::npos) return;
            from = tab + 1;
        }
        int64_t score = 0, level = 0, time = 0;
        if (!Number(line.substr(0, tabs[0]), score) ||
            !Number(line.substr(tabs[0] + 1, tabs[1] - tabs[0] - 1), level) ||
            !Number(line.substr(tabs[1] + 1, tabs[2] - tabs[1] - 1), time))
            return;
        // Score and level keep their low 32 bits.
        list.push_back({line.substr(tabs[2] + 1), int32_t(uint32_t(uint64_t(score))),
                        int32_t(uint32_t(uint64_t(level))), time});
    });
    std::stable_sort(list.begin(), list.end(), [](const Entry& a, const Entry& b) { return a.score > b.score; });
    if (list.size() > kMaxEntries) list.resize(kMaxEntries);
    return list;
}

std::string Serialise(const std::vector<Entry>& list) {
    std::ostringstream out;
    for (const Entry& e : list) {
        std::string name = e.name;
        std::replace(name.begin(), name.end(), '\t', ' ');
        std::replace(name.begin(), name.end(), '\n', ' ');
        out << e.score << '\t' << e.level << '\t' << e.time << '\t' << name << '\n';
    }
    return out.str();
}

std::vector<Entry> Load() {
    const std::string path = Path();
    std::string text;
    if (path.empty() || !pge::files::ReadAll(path, text, pge::files::kMaxDataBytes)) return {};
    return Parse(text);
}

bool Save(const std::vector<Entry>& list) {
    const std::string path = Path();
    return !path.empty() && pge::files::WriteAll(path, Serialise(list));
}

bool Qualifies(const std::vector<Entry>& list, int32_t score) {
    return list.size() < kMaxEntries || list[kMaxEntries - 1].score < score;
}

int Insert(std::vector<Entry>& list, const Entry& entry) {
    // The first entry strictly below the new one: equal scores keep the older ahead.
    const auto at = std::upper_bound(list.begin(), list.end(), entry.score,
                                     [](int32_t score, const Entry& e) { return score > e.score; });
    const int place = int(at - list.begin());
    list.insert(at, entry);
    if (list.size() > kMaxEntries) list.resize(kMaxEntries);
    return place < int(kMaxEntries) ? place : -1;
}

} // namespace torvane::highscores
