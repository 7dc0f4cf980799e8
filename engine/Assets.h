#pragma once
// Finds the asset folder however the program was started, and hands out cached images
// by key, a path below the asset root such as "torvane/title.png". A missing image
// gives a loud placeholder and one line on the error stream, never a stop.
#include "pge/Decal.h"

#include <map>
#include <memory>
#include <set>
#include <string>

namespace adv {

class Assets {
public:
    // executable: the program's path. Tries the bundle layout beside it, then up to four
    // levels above the working directory, then above the program; else "assets".
    static void Init(const std::string& executable);
    // The program's real path, links resolved, from /proc/self/exe; else argv0 (may be null).
    static std::string ProgramPath(const char* argv0);
    static const std::string& Root();
    // True unless root/key is a regular file.
    static bool Missing(const std::string& key);
    // The cached image, or the placeholder; never null. Valid until Clear.
    static pge::Renderable* Sprite(const std::string& key);
    // True when Sprite(key) gives the placeholder: the file is missing or does not decode.
    static bool Failed(const std::string& key);
    static void Clear();

private:
    static std::unique_ptr<pge::Renderable> MakePlaceholder();

    static std::string s_root;
    static std::map<std::string, std::unique_ptr<pge::Renderable>> s_cache;
    static std::set<std::string> s_failed; // keys whose cache entry is the placeholder
};

} // namespace adv
