#include "game/content/Preferences.h"

#include "game/rules/Lang.h"
#include "game/rules/Level.h"
#include "pge/Files.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <system_error>

namespace torvane::preferences {
namespace {

// The difficulty's words, indexed by Settings::difficulty.
constexpr const char* kDifficulty[] = {"easy", "medium", "hard", "torvane"};
constexpr const char* kMarker = "settings_version=2";

bool On(const std::string& value) { return value == "1" || value == "true"; }

} // namespace

std::string Directory() {
    namespace fs = std::filesystem;
    const char* xdg = std::getenv("XDG_DATA_HOME");
    fs::path base;
    if (xdg && *xdg) {
        base = xdg;
    } else {
        const char* home = std::getenv("HOME");
        if (!home) return "";
        base = fs::path(home) / ".local" / "share";
    }
    const fs::path folder = base / "Torvane";
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) return "";
    return folder.string();
}

std::string Serialise() {
    const Settings& s = GetSettings();
    const int difficulty = s.difficulty >= 0 && s.difficulty < 4 ? s.difficulty : 0;
    const char* sprites = s.sprites == 1 ? "on" : (s.sprites == 2 ? "off" : "auto");
    std::ostringstream out;
    out << kMarker << "\n"
        << "auto_rotate=" << (s.auto_rotate ? 1 : 0) << "\n"
        << "piece_choice=" << (s.piece_choice ? 1 : 0) << "\n"
        << "difficulty=" << kDifficulty[difficulty] << "\n"
        << "repair_mode=" << (s.repair_mode == 0 ? "free" : "auto") << "\n"
        << "music=" << (s.music ? 1 : 0) << "\n"
        << "sprites=" << sprites << "\n"
        << "language=" << (CurrentLanguage() == Language::English ? "en" : "de") << "\n"
        << "level_pack=" << s.level_pack << "\n";
    return out.str();
}

void Apply(const std::string& text) {
    const bool versioned = text.find(kMarker) != std::string::npos;
    if (text.empty()) return;
    Settings& s = GetSettings();
    ForEachLine(text, [&](const std::string& line) {
        const size_t eq = line.find('=');
        if (eq == std::string::npos) return;
        const std::string key = line.substr(0, eq), value = line.substr(eq + 1);
        if (key == "auto_rotate") {
            // The older format's value is ignored on purpose: its default stays.
            if (versioned) s.auto_rotate = On(value);
        } else if (key == "piece_choice") {
            s.piece_choice = On(value);
        } else if (key == "difficulty") {
            s.difficulty = 0;
            for (int i = 0; i < 4; ++i)
                if (value == kDifficulty[i]) s.difficulty = i;
        } else if (key == "repair_mode") {
            s.repair_mode = value == "auto" ? 1 : 0;
        } else if (key == "music") {
            s.music = On(value);
        } else if (key == "sprites") {
            s.sprites = value == "on" ? 1 : (value == "off" ? 2 : 0);
        } else if (key == "language") {
            SetLanguage(value == "en" ? Language::English : Language::German);
        } else if (key == "level_pack") {
            s.level_pack = value;
        }
    });
}

void Load() {
    const std::string folder = Directory();
    std::string text;
    if (!folder.empty() && pge::files::ReadAll(folder + "/settings.txt", text, pge::files::kMaxDataBytes)) Apply(text);
}

bool Save() {
    const std::string folder = Directory();
    return !folder.empty() && pge::files::WriteAll(folder + "/settings.txt", Serialise());
}

} // namespace torvane::preferences
