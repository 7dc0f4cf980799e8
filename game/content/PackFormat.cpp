#include "game/content/PackFormat.h"

#include "game/rules/Level.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>

namespace torvane {

namespace {

constexpr int kMaxLevels = 30;
constexpr size_t kMaxFileBase = 20;

// The base-10 value of the leading digits, as strtol reads them, held within 32 bits.
int64_t LeadingInt(const std::string& text) {
    const long v = std::strtol(text.c_str(), nullptr, 10);
    return std::clamp<int64_t>(v, INT32_MIN, INT32_MAX);
}

int32_t ToInt32(int64_t v) { return static_cast<int32_t>(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); }

// Whole seconds, "." or ",", and one digit of tenths; further digits are cut, not rounded.
int32_t ReadTenths(const std::string& value) {
    const size_t sep = value.find_first_of(".,");
    int64_t tenths = LeadingInt(value.substr(0, sep)) * 10;
    if (sep != std::string::npos && sep + 1 < value.size() && value[sep + 1] >= '0' && value[sep + 1] <= '9')
        tenths += value[sep + 1] - '0';
    return ToInt32(tenths);
}

void SetLevelKey(PackLevel& level, const std::string& key, const std::string& value) {
    if (key == "name") level.name = value;
    else if (key == "directions") level.directions = value;
    else if (key == "background") level.background = ToInt32(LeadingInt(value));
    else if (key == "build") level.build = ToInt32(LeadingInt(value));
    else if (key == "pieces") level.pieces = ToInt32(LeadingInt(value));
    else if (key == "line") level.line = ToInt32(LeadingInt(value));
    else if (key == "need") level.need = ToInt32(LeadingInt(value));
    else if (key == "shots") level.shots = ToInt32(LeadingInt(value));
    else if (key == "interval") level.interval = ReadTenths(value);
    // The deciding word differs per key, so that a mistyped value means the default.
    else if (key == "order") level.waves = value != "mixed";
    else if (key == "prep") level.prep = value != "no";
    else if (key == "new_tower") level.newTower = value == "yes";
}

} // namespace

std::string Trim(const std::string& text) {
    const char* const blanks = " \t\r";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

void PopChar(std::string& text) {
    while (!text.empty() && IsContinuation(text.back())) text.pop_back();
    if (!text.empty()) text.pop_back();
}

size_t CodePoints(const std::string& text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) { return !IsContinuation(c); }));
}

std::string SerialisePack(const LevelPack& pack) {
    std::string out = "torvane-levelpack 1\nname=" + pack.name + "\n";
    const auto yesNo = [](bool v) { return v ? "yes" : "no"; };
    for (const PackLevel& l : pack.levels) {
        out += "\n[level]\nname=" + l.name + "\n";
        out += "background=" + std::to_string(l.background) + "\n";
        out += "build=" + std::to_string(l.build) + "\n";
        out += "pieces=" + std::to_string(l.pieces) + "\n";
        out += "line=" + std::to_string(l.line) + "\n";
        out += "need=" + std::to_string(l.need) + "\n";
        out += "shots=" + std::to_string(l.shots) + "\n";
        out += "interval=" + std::to_string(l.interval / 10) + "." + std::to_string(l.interval % 10) + "\n";
        out += "directions=" + l.directions + "\n";
        out += std::string("order=") + (l.waves ? "waves" : "mixed") + "\n";
        out += std::string("prep=") + yesNo(l.prep) + "\n";
        out += std::string("new_tower=") + yesNo(l.newTower) + "\n";
    }
    return out;
}

bool ParsePack(const std::string& text, LevelPack& out) {
    LevelPack pack;
    bool header = false;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        const std::string line = Trim(text.substr(start, end - start));
        start = end + 1;
        if (line.empty() || line[0] == '#') continue;
        if (!header) {
            // Only the beginning counts: a later version is read just the same.
            if (line.compare(0, 17, "torvane-levelpack") != 0) return false;
            header = true;
            continue;
        }
        if (line == "[level]") {
            // Beyond the last level the keys that follow overwrite it.
            if (pack.levels.size() < kMaxLevels) pack.levels.emplace_back();
            continue;
        }
        const size_t eq = line.find('=');
        if (eq == std::string::npos) continue;
        const std::string key = Trim(line.substr(0, eq));
        const std::string value = Trim(line.substr(eq + 1));
        if (pack.levels.empty()) {
            if (key == "name") pack.name = value;
        } else {
            SetLevelKey(pack.levels.back(), key, value);
        }
    }
    if (!header || pack.levels.empty()) return false;
    for (PackLevel& level : pack.levels) Clamp(level);
    out.name = pack.name.empty() ? "Levelpack" : pack.name;
    out.file.clear();
    out.levels = std::move(pack.levels);
    return true;
}

void Clamp(PackLevel& l) {
    l.background = std::clamp(l.background, 1, 5);
    l.build = std::clamp(l.build, 20, 240);
    l.pieces = std::clamp(l.pieces, 4, 60);
    l.line = std::clamp(l.line, 2, 12);
    l.need = std::clamp(l.need, 10, 100);
    l.shots = std::clamp(l.shots, 1, 60);
    l.interval = std::clamp(l.interval, 5, 150);
    std::string directions;
    for (char c : l.directions) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        if (c == 'E') c = 'O'; // the German compass: Ost
        if ((c == 'N' || c == 'O' || c == 'S' || c == 'W') && directions.find(c) == std::string::npos)
            directions += c;
    }
    l.directions = directions.empty() ? "N" : directions;
}

PackLevel DefaultPackLevel(int level) {
    // The built-in ring campaign, undisturbed by whatever pack or rule set is active.
    const LevelPack* active = ActivePack();
    const LevelPack saved = active ? *active : LevelPack{};
    SetActivePack(nullptr);
    Settings& settings = GetSettings();
    const int32_t classic = settings.classic;
    settings.classic = 0;
    const LevelConfig config = ConfigFor(level);
    settings.classic = classic;
    SetActivePack(active ? &saved : nullptr);

    PackLevel l;
    l.background = ((std::max(level, 1) - 1) % 5) + 1;
    l.build = static_cast<int32_t>(config.buildTime + 0.5f);
    l.pieces = config.pieces;
    l.line = config.line;
    l.need = config.need;
    l.shots = config.shots;
    l.interval = static_cast<int32_t>(config.interval * 10.0f + 0.5f);
    l.directions.clear();
    for (const Sector& s : config.sectors) l.directions += s.letter;
    l.waves = l.prep = true;
    l.newTower = false;
    Clamp(l);
    return l;
}

std::string PackFileName(const std::string& name) {
    std::string base;
    for (char c : name) {
        if (base.size() >= kMaxFileBase) break;
        const bool keep = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                          c == '-' || c == '_';
        if (keep) base += c;
        else if (c == ' ' && !base.empty() && base.back() != '_') base += '_';
    }
    while (!base.empty() && base.back() == '_') base.pop_back();
    return (base.empty() ? std::string("Levelpack") : base) + ".tpack";
}

} // namespace torvane
