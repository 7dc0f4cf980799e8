#pragma once
// Reads picture files into sprites.
#include "pge/Renderer.h"
#include "pge/Sprite.h"

#include <memory>
#include <string>

namespace pge {

class ImageLoader {
public:
    virtual ~ImageLoader() = default;
    virtual rcode LoadImageResource(Sprite* spr, const std::string& path, void* pack) = 0;
    virtual rcode SaveImageResource(Sprite* spr, const std::string& path) = 0;
};

// PNG and JPEG (and the other formats of stb_image), always decoded to RGBA.
class ImageLoader_STB : public ImageLoader {
public:
    // NO_FILE if the path does not exist, FAIL if it cannot be decoded, else OK.
    rcode LoadImageResource(Sprite* spr, const std::string& path, void* pack) override;
    // Screenshots have a writer of their own; this one only reports success.
    rcode SaveImageResource(Sprite* spr, const std::string& path) override;
};

// The process-wide loader, set by the engine.
extern std::unique_ptr<ImageLoader> loader;

// Loads through the process-wide loader, or through stb_image when no engine made one.
rcode LoadImage(Sprite* spr, const std::string& path, void* pack);

} // namespace pge
