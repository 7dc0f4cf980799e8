#include "pge/ImageLoader.h"

#include <stb_image.h>

#include <cstring>
#include <filesystem>

namespace pge {

std::unique_ptr<ImageLoader> loader;

rcode ImageLoader_STB::LoadImageResource(Sprite* spr, const std::string& path, void*) {
    spr->pColData.clear();
    spr->width = 0;
    spr->height = 0;
    std::error_code ec;
    if (!std::filesystem::exists(std::filesystem::status(path, ec))) return NO_FILE;

    int w = 0, h = 0, channels = 0;
    stbi_uc* bytes = stbi_load(path.c_str(), &w, &h, &channels, 4);
    if (!bytes) return FAIL;
    spr->SetSize(w, h);
    std::memcpy(spr->pColData.data(), bytes, size_t(w) * size_t(h) * 4);
    stbi_image_free(bytes);
    return OK;
}

rcode ImageLoader_STB::SaveImageResource(Sprite*, const std::string&) { return OK; }

rcode LoadImage(Sprite* spr, const std::string& path, void* pack) {
    if (loader) return loader->LoadImageResource(spr, path, pack);
    return ImageLoader_STB().LoadImageResource(spr, path, pack);
}

} // namespace pge
