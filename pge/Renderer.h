#pragma once
// The graphics back end behind the engine: textures, the one layer quad and the frame swap.
#include "pge/Pixel.h"
#include "pge/Sprite.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace pge {

class PixelEngine;

// Status of framework operations.
enum rcode { FAIL = 0, OK = 1, NO_FILE = -1 };

class Renderer {
public:
    virtual ~Renderer() = default;
    virtual void PrepareDevice() = 0;
    // handles: the platform's display and window.
    virtual rcode CreateDevice(std::vector<void*> handles, bool bFullScreen, bool bVSYNC) = 0;
    virtual rcode DestroyDevice() = 0;
    virtual void DisplayFrame() = 0;
    virtual void PrepareDrawing() = 0;
    virtual void DrawLayerQuad(const vf2d& offset, const vf2d& scale, Pixel tint) = 0;
    // Returns the texture id, or all ones when no texture could be made.
    virtual uint32_t CreateTexture(uint32_t width, uint32_t height, bool filtered, bool clamp) = 0;
    virtual void UpdateTexture(uint32_t id, Sprite* spr) = 0;
    virtual uint32_t DeleteTexture(uint32_t id) = 0;
    virtual void ApplyTexture(uint32_t id) = 0;
    virtual void UpdateViewport(const vi2d& pos, const vi2d& size) = 0;
    virtual void ClearBuffer(Pixel p, bool bDepth) = 0;

    static PixelEngine* ptrPGE;
};

// The process-wide renderer; null until an engine is built. Textures are no-ops without it.
extern std::unique_ptr<Renderer> renderer;

inline constexpr uint32_t kNoTexture = 0xFFFFFFFFu;

} // namespace pge
