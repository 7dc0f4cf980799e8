#include "game/content/PackStorage.h"

#include "game/content/PackFormat.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
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
        std::ifstream in(folder + "/" + name, std::ios::binary);
        if (!in) return false;
        // Block reads turn an error of the file (such as a folder by that name) into a
        // bad stream instead of an exception.
        std::string data;
        char block[65536];
        while (in.read(block, sizeof block) || in.gcount() > 0) data.append(block, static_cast<size_t>(in.gcount()));
        if (in.bad()) return false;
        text = std::move(data);
        return true;
    };
    storage.write = [folder](const std::string& name, const std::string& text) {
        std::error_code ignored;
        fs::create_directories(folder, ignored);
        std::ofstream out(folder + "/" + name, std::ios::binary | std::ios::trunc);
        out << text;
        out.close();
        return !out.fail();
    };
    return storage;
}

void CopyPacks(const PackStorage& from, const PackStorage& to) {
    if (!from.list || !from.read || !to.write) return;
    for (const std::string& name : from.list()) {
        std::string text;
        if (from.read(name, text)) to.write(name, text);
    }
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
