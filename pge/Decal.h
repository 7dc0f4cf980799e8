#pragma once
// A sprite's texture on the graphics card, and the sprite-with-texture pair.
#include "pge/Pixel.h"
#include "pge/Renderer.h"
#include "pge/Sprite.h"

#include <cstdint>
#include <memory>
#include <string>

namespace pge {

// Texture work goes through the process-wide renderer; without one (unit tests, tools)
// or with the headless one, making and updating a decal does nothing on the card.
class Decal {
public:
    // With no sprite the decal stays empty. filter: linear instead of nearest;
    // clamp: clamped instead of repeating.
    Decal(Sprite* spr, bool filter = false, bool clamp = true);
    virtual ~Decal();
    Decal(const Decal&) = delete;
    Decal& operator=(const Decal&) = delete;

    // Uploads the sprite again and takes over its size.
    void Update();

    uint32_t id = kNoTexture;
    vi2d size;
    Sprite* sprite = nullptr; // not owned
    vf2d vUVScale{1.0f, 1.0f};
};

class Renderable {
public:
    Renderable() = default;
    Renderable(const Renderable&) = delete;
    Renderable& operator=(const Renderable&) = delete;
    Renderable(Renderable&&) = default;
    Renderable& operator=(Renderable&&) = default;

    // A fresh w by h sprite (opaque black) with its decal; an older pair is freed first.
    void Create(uint32_t width, uint32_t height, bool filter = false, bool clamp = true);
    // OK with sprite and decal; NO_FILE (and neither) when the file is missing or unreadable.
    rcode Load(const std::string& path, void* pack = nullptr, bool filter = false, bool clamp = true);

    pge::Sprite* Sprite() const { return pSprite.get(); }
    pge::Decal* Decal() const { return pDecal.get(); }

private:
    std::unique_ptr<pge::Sprite> pSprite;
    std::unique_ptr<pge::Decal> pDecal;
};

} // namespace pge
