#pragma once
// Shared set-up for the content tests: a pack store in memory and a scratch folder.
#include "game/content/PackStorage.h"
#include "tests/ScratchPath.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>

namespace torvane::testing_support {

// A store over a map of file name to text; `failWrites` makes every write fail.
struct MemoryStore {
    std::shared_ptr<std::map<std::string, std::string>> files = std::make_shared<std::map<std::string, std::string>>();
    std::shared_ptr<bool> failWrites = std::make_shared<bool>(false);

    PackStorage Storage() const {
        PackStorage s;
        auto f = files;
        auto fail = failWrites;
        s.list = [f] {
            std::vector<std::string> names;
            for (const auto& entry : *f) names.push_back(entry.first);
            return names;
        };
        s.read = [f](const std::string& name, std::string& text) {
            const auto it = f->find(name);
            if (it == f->end()) return false;
            text = it->second;
            return true;
        };
        s.write = [f, fail](const std::string& name, const std::string& text) {
            if (*fail) return false;
            (*f)[name] = text;
            return true;
        };
        return s;
    }
};

// A fresh, empty folder under the build tree for one test.
inline std::filesystem::path ScratchFolder(const std::string& name) {
    const std::filesystem::path dir = scratch::Path("content_scratch/" + name);
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    return dir;
}

} // namespace torvane::testing_support
