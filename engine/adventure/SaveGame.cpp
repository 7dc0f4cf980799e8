#include "engine/adventure/SaveGame.h"

#include "pge/Files.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sstream>
#include <sys/stat.h>

namespace adv::savegame {

namespace {

constexpr const char* kMagic = "quillmere-adventure-save";
constexpr int kVersion = 1;

std::string g_folderName = "Abenteuer";

// A whole word as a 32-bit integer.
bool ToInt(const std::string& word, int32_t& out) {
    if (word.empty()) return false;
    errno = 0;
    char* end = nullptr;
    const long long v = std::strtoll(word.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || v < INT32_MIN || v > INT32_MAX) return false;
    out = int32_t(v);
    return true;
}

bool ToFloat(const std::string& word, float& out) {
    if (word.empty()) return false;
    char* end = nullptr;
    const float v = std::strtof(word.c_str(), &end);
    if (*end != '\0' || !std::isfinite(v)) return false;
    out = v;
    return true;
}

std::vector<std::string> Words(const std::string& line) {
    std::vector<std::string> words;
    std::istringstream in(line);
    for (std::string w; in >> w;) words.push_back(w);
    return words;
}

// Text that runs to the end of its line, with a line break in it written as a blank.
std::string OneLine(std::string text) {
    for (char& c : text)
        if (c == '\n' || c == '\r') c = ' ';
    return text;
}

// The text after the first word, with one leading blank cut off.
std::string Rest(const std::string& line) {
    const size_t blank = line.find(' ');
    return blank == std::string::npos ? std::string() : line.substr(blank + 1);
}

bool MakeFolders(const std::string& path) {
    for (size_t i = 1; i <= path.size(); ++i) {
        if (i < path.size() && path[i] != '/') continue;
        const std::string part = path.substr(0, i);
        struct stat st {};
        if (stat(part.c_str(), &st) == 0) {
            if (!S_ISDIR(st.st_mode)) return false;
        } else if (mkdir(part.c_str(), 0755) != 0) {
            return false;
        }
    }
    return true;
}

void ParseLine(const std::string& line, SaveData& d) {
    const std::vector<std::string> w = Words(line);
    if (w.empty()) return;
    const std::string& key = w[0];
    int32_t a = 0;
    if (key == "saved") {
        d.saved = Rest(line);
    } else if (key == "label") {
        d.label = Rest(line);
    } else if (key == "scene" && w.size() == 2) {
        d.scene = w[1];
    } else if (key == "textspeed" && w.size() == 2 && ToInt(w[1], a)) {
        d.textSpeed = a;
    } else if (key == "invscroll" && w.size() == 2 && ToInt(w[1], a)) {
        d.inventoryScroll = a;
    } else if (key == "flag" && w.size() == 3 && ToInt(w[2], a)) {
        d.flags[w[1]] = a;
    } else if (key == "item" && w.size() == 2) {
        d.items.push_back(w[1]);
    } else if (key == "actor" && w.size() == 7) {
        SaveData::ActorRecord r{w[1], w[2], 0.0f, 0.0f, 0, 1};
        if (ToFloat(w[3], r.x) && ToFloat(w[4], r.y) && ToInt(w[5], r.facing) && ToInt(w[6], r.visible))
            d.actors.push_back(r);
    } else if (key == "hotspot" && w.size() == 4) {
        SaveData::HotspotRecord r{w[1], w[2], 1};
        if (ToInt(w[3], r.enabled)) d.hotspots.push_back(r);
    } else if (key == "dialogue" && w.size() == 4) {
        SaveData::OptionRecord r{w[1], w[2], 0};
        if (ToInt(w[3], r.option)) d.usedOptions.push_back(r);
    }
}

} // namespace

void SetFolderName(const std::string& name) { g_folderName = name; }

std::string Directory() {
    const char* xdg = std::getenv("XDG_DATA_HOME");
    if (xdg && *xdg) return std::string(xdg) + "/" + g_folderName + "/saves";
    const char* home = std::getenv("HOME");
    if (home && *home) return std::string(home) + "/.local/share/" + g_folderName + "/saves";
    return "";
}

std::string SlotPath(int slot) {
    const std::string dir = Directory();
    if (slot < 0 || slot >= kSlots || dir.empty()) return "";
    return dir + "/slot" + std::to_string(slot) + ".sav";
}

std::string Timestamp() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char buffer[32];
    std::strftime(buffer, sizeof(buffer), "%d.%m.%Y %H:%M", &local);
    return buffer;
}

std::string Serialise(const SaveData& d) {
    std::ostringstream out;
    out << kMagic << ' ' << kVersion << '\n';
    out << "saved " << OneLine(d.saved) << '\n';
    out << "scene " << d.scene << '\n';
    out << "label " << OneLine(d.label) << '\n';
    out << "textspeed " << d.textSpeed << '\n';
    out << "invscroll " << d.inventoryScroll << '\n';
    for (const auto& [name, value] : d.flags) out << "flag " << name << ' ' << value << '\n';
    for (const std::string& item : d.items) out << "item " << item << '\n';
    for (const auto& a : d.actors)
        out << "actor " << a.id << ' ' << a.scene << ' ' << a.x << ' ' << a.y << ' ' << a.facing << ' ' << a.visible
            << '\n';
    for (const auto& h : d.hotspots) out << "hotspot " << h.scene << ' ' << h.id << ' ' << h.enabled << '\n';
    for (const auto& o : d.usedOptions) out << "dialogue " << o.dialogue << ' ' << o.node << ' ' << o.option << '\n';
    return out.str();
}

bool Parse(const std::string& text, SaveData& data) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    if (lines.empty()) return false;
    const std::vector<std::string> head = Words(lines[0]);
    int32_t version = 0;
    if (head.size() != 2 || head[0] != kMagic || !ToInt(head[1], version) || version != kVersion) return false;
    SaveData d;
    for (size_t i = 1; i < lines.size(); ++i) ParseLine(lines[i], d);
    data = std::move(d);
    return true;
}

bool Write(int slot, const SaveData& data) {
    const std::string path = SlotPath(slot);
    return !path.empty() && MakeFolders(Directory()) && pge::files::WriteAll(path, Serialise(data));
}

bool Read(int slot, SaveData& data) {
    const std::string path = SlotPath(slot);
    std::string text;
    return !path.empty() && pge::files::ReadAll(path, text, pge::files::kMaxDataBytes) && Parse(text, data);
}

bool Erase(int slot) {
    const std::string path = SlotPath(slot);
    return !path.empty() && std::remove(path.c_str()) == 0;
}

SlotInfo Inspect(int slot) {
    SaveData data;
    if (!Read(slot, data)) return {};
    return {true, data.saved, data.label};
}

} // namespace adv::savegame
