#include "game/content/PackStorage.h"

#include "game/content/PackFormat.h"
#include "pge/Files.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace torvane {

namespace fs = std::filesystem;

PackStorage FolderPackStorage(const std::string& folder) {
    PackStorage storage;
    storage.list = [folder] {
        std::vector<std::string> names;
        std::error_code error;
        for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
            if (it->path().extension() == ".tpack") names.push_back(it->path().filename().string());
        return names;
    };
    storage.read = [folder](const std::string& name, std::string& text) {
        std::string data;
        if (!pge::files::ReadAll(folder + "/" + name, data, pge::files::kMaxDataBytes)) return false;
        text = std::move(data);
        return true;
    };
    storage.write = [folder](const std::string& name, const std::string& text) {
        std::error_code ignored;
        fs::create_directories(folder, ignored);
        return pge::files::WriteAll(folder + "/" + name, text);
    };
    return storage;
}

bool CopyPacks(const PackStorage& from, const PackStorage& to, bool all) {
    if (!from.list || !from.read || !to.read || !to.write) return true;
    bool written = true;
    for (const std::string& name : from.list()) {
        std::string text, copy;
        const bool held = to.read(name, copy);
        if ((held ? copy.empty() : all) && from.read(name, text)) written = to.write(name, text) && written;
    }
    return written;
}

std::vector<LevelPack> LoadPacks(const PackStorage& storage) {
    std::vector<LevelPack> packs;
    if (!storage.list || !storage.read) return packs;
    for (const std::string& name : storage.list()) {
        std::string text;
        LevelPack pack;
        if (!storage.read(name, text) || !ParsePack(text, pack)) continue;
        pack.file = name;
        packs.push_back(std::move(pack));
    }
    // Byte-wise: capitals before small letters, umlauts behind all ASCII letters.
    std::stable_sort(packs.begin(), packs.end(),
                     [](const LevelPack& a, const LevelPack& b) { return a.name < b.name; });
    return packs;
}

int BackgroundIndex(int level) {
    const LevelPack* pack = ActivePack();
    if (pack && level >= 1 && level <= static_cast<int>(pack->levels.size()))
        return pack->levels[level - 1].background - 1;
    return (((level - 1) % 5) + 5) % 5;
}

} // namespace torvane
