#include "pge/Decal.h"

#include "pge/ImageLoader.h"

namespace pge {

Decal::Decal(Sprite* spr, bool filter, bool clamp) {
    if (!spr) return;
    sprite = spr;
    if (renderer) id = renderer->CreateTexture(uint32_t(spr->width), uint32_t(spr->height), filter, clamp);
    Update();
}

Decal::~Decal() {
    if (id != kNoTexture && renderer) renderer->DeleteTexture(id);
}

void Decal::Update() {
    if (!sprite) return;
    size = {sprite->width, sprite->height};
    vUVScale = {sprite->width > 0 ? 1.0f / float(sprite->width) : 1.0f,
                sprite->height > 0 ? 1.0f / float(sprite->height) : 1.0f};
    if (id == kNoTexture || !renderer) return;
    renderer->ApplyTexture(id);
    renderer->UpdateTexture(id, sprite);
}

void Renderable::Create(uint32_t width, uint32_t height, bool filter, bool clamp) {
    pDecal.reset();
    pSprite = std::make_unique<pge::Sprite>(int32_t(width), int32_t(height));
    pDecal = std::make_unique<pge::Decal>(pSprite.get(), filter, clamp);
}

rcode Renderable::Load(const std::string& path, void* pack, bool filter, bool clamp) {
    pDecal.reset();
    pSprite = std::make_unique<pge::Sprite>();
    if (LoadImage(pSprite.get(), path, pack) != OK) {
        pSprite.reset();
        return NO_FILE;
    }
    pDecal = std::make_unique<pge::Decal>(pSprite.get(), filter, clamp);
    return OK;
}

} // namespace pge
