#pragma once
// A pack store in memory, for the content tests and the fuzz targets.
#include "game/content/PackStorage.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

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

} // namespace torvane::testing_support
