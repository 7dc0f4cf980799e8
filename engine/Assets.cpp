#include "engine/Assets.h"

#include <cstdio>
#include <filesystem>
#include <unistd.h>

namespace adv {
namespace {

std::string ParentOf(const std::string& path) {
    const size_t slash = path.find_last_of("/\\");
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

bool IsDirectory(const std::string& path) {
    std::error_code ec;
    return std::filesystem::is_directory(path, ec);
}

bool IsRegularFile(const std::string& path) {
    std::error_code ec;
    return std::filesystem::is_regular_file(path, ec);
}

} // namespace

std::string Assets::s_root = "assets";
std::map<std::string, std::unique_ptr<pge::Renderable>> Assets::s_cache;
std::set<std::string> Assets::s_failed;

void Assets::Init(const std::string& executable) {
    const std::string bundle = ParentOf(executable) + "/../Resources/assets";
    if (IsDirectory(bundle)) {
        s_root = bundle;
        return;
    }
    for (const std::string& base : {std::string("."), ParentOf(executable)}) {
        std::string p = base;
        for (int level = 0; level < 5; ++level) {
            if (IsDirectory(p + "/assets")) {
                s_root = p + "/assets";
                return;
            }
            p += "/..";
        }
    }
    s_root = "assets";
}

std::string Assets::ProgramPath(const char* argv0) {
    char buffer[4095];
    const ssize_t n = readlink("/proc/self/exe", buffer, sizeof(buffer));
    if (n > 0) return std::string(buffer, size_t(n));
    return argv0 ? argv0 : "";
}

const std::string& Assets::Root() { return s_root; }

bool Assets::Missing(const std::string& key) { return !IsRegularFile(s_root + "/" + key); }

pge::Renderable* Assets::Sprite(const std::string& key) {
    const auto hit = s_cache.find(key);
    if (hit != s_cache.end()) return hit->second.get();
    const std::string path = s_root + "/" + key;
    auto image = std::make_unique<pge::Renderable>();
    if (!IsRegularFile(path) || image->Load(path, nullptr, false, true) != pge::OK) {
        std::fprintf(stderr, "[assets] Konnte '%s' nicht laden - benutze Platzhalter.\n", path.c_str());
        image = MakePlaceholder();
        s_failed.insert(key);
    }
    return s_cache.emplace(key, std::move(image)).first->second.get();
}

bool Assets::Failed(const std::string& key) {
    Sprite(key);
    return s_failed.count(key) > 0;
}

void Assets::Clear() {
    s_cache.clear();
    s_failed.clear();
}

std::unique_ptr<pge::Renderable> Assets::MakePlaceholder() {
    auto image = std::make_unique<pge::Renderable>();
    image->Create(32, 32, false, true);
    pge::Sprite* s = image->Sprite();
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x)
            s->SetPixel(x, y, (y / 8 + x / 8) % 2 == 1 ? pge::Pixel(255, 0, 255, 255) : pge::Pixel(40, 0, 40, 255));
    image->Decal()->Update();
    return image;
}

} // namespace adv
