#pragma once
// The player's choices between runs, in settings.txt of the user's data folder, and
// that folder itself. No state of its own: the values live in GetSettings() and the
// language table.
#include <string>

namespace torvane::preferences {

// $XDG_DATA_HOME/Torvane or $HOME/.local/share/Torvane, created if needed; empty when
// there is no such folder or it can't be made.
std::string Directory();
// The whole file text from the present settings and language.
std::string Serialise();
// Sets the settings and the language from the text of a settings file; what can't be
// read keeps its value, what isn't understood takes the meaning the file format gives.
void Apply(const std::string& text);
// Reads settings.txt if there is one; silent on every failure.
void Load();
// Writes settings.txt; false if it could not be written, and the old file stays.
bool Save();

// Splits at "\n", the last line needing no end, and drops one trailing "\r" of each line.
template <typename F>
void ForEachLine(const std::string& text, F&& line) {
    for (size_t start = 0;;) {
        const size_t end = text.find('\n', start);
        std::string one = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (!one.empty() && one.back() == '\r') one.pop_back();
        line(one);
        if (end == std::string::npos) return;
        start = end + 1;
    }
}

} // namespace torvane::preferences
