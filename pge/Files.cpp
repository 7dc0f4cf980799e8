#include "pge/Files.h"

#include <cstdio>
#include <memory>

namespace pge::files {

bool ReadAll(const std::string& path, std::string& out) {
    out.clear();
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
    if (!file) return false;
    char buffer[65536];
    size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof(buffer), file.get())) > 0) out.append(buffer, n);
    // A folder opens, but its first read fails.
    if (std::ferror(file.get())) {
        out.clear();
        return false;
    }
    return true;
}

} // namespace pge::files
