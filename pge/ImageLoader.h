#pragma once
// Reads picture files into sprites.
#include "pge/Renderer.h"
#include "pge/Sprite.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace pge {

// The longest side of a picture that is decoded at all; beyond any real image.
inline constexpr int kMaxImageSide = 16384;
// More pixels than any picture of the game by far; the decoder is not asked to try.
inline constexpr int64_t kMaxImagePixels = int64_t(kMaxImageSide) * 2048;
// The biggest picture file read at all: the most pixels, four bytes each, stored without
// compression, and room for the headers.
inline constexpr size_t kMaxImageFileBytes = size_t(kMaxImagePixels) * 4 + (size_t(1) << 20);

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

// A picture file's bytes into the sprite as RGBA: OK, or FAIL (sprite empty) for bytes
// that do not decode, decode to no pixels or announce a size beyond kMaxImageSide.
rcode DecodeImage(Sprite* spr, const uint8_t* bytes, size_t size);

// The process-wide loader, set by the engine.
extern std::unique_ptr<ImageLoader> loader;

// Loads through the process-wide loader, or through stb_image when no engine made one.
rcode LoadImage(Sprite* spr, const std::string& path, void* pack);

} // namespace pge
