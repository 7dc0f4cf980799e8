#pragma once
// Fixed-function OpenGL through GLX: one texture upload and one quad per frame.
#include "pge/Renderer.h"

struct _XDisplay;
struct __GLXcontextRec;

namespace pge {

class Renderer_OGL10 : public Renderer {
public:
    void PrepareDevice() override;
    rcode CreateDevice(std::vector<void*> handles, bool bFullScreen, bool bVSYNC) override;
    rcode DestroyDevice() override;
    void DisplayFrame() override;
    void PrepareDrawing() override;
    void DrawLayerQuad(const vf2d& offset, const vf2d& scale, Pixel tint) override;
    // The texture calls do nothing while this thread has no GL context.
    uint32_t CreateTexture(uint32_t width, uint32_t height, bool filtered, bool clamp) override;
    void UpdateTexture(uint32_t id, Sprite* spr) override;
    uint32_t DeleteTexture(uint32_t id) override;
    void ApplyTexture(uint32_t id) override;
    void UpdateViewport(const vi2d& pos, const vi2d& size) override;
    void ClearBuffer(Pixel p, bool bDepth) override;

private:
    _XDisplay* display = nullptr;
    unsigned long window = 0;
    __GLXcontextRec* context = nullptr;
};

} // namespace pge
