#include "pge/RendererOGL10.h"

#include <GL/gl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>

#include <cstdio>

namespace pge {
namespace {

bool HasContext() { return glXGetCurrentContext() != nullptr; }

} // namespace

void Renderer_OGL10::PrepareDevice() {}

rcode Renderer_OGL10::CreateDevice(std::vector<void*> handles, bool, bool bVSYNC) {
    display = static_cast<Display*>(handles[0]);
    window = *static_cast<Window*>(handles[1]);
    XVisualInfo* vi = static_cast<XVisualInfo*>(handles[2]);
    context = glXCreateContext(display, vi, nullptr, GL_TRUE);
    if (!context || !glXMakeCurrent(display, window, context)) {
        std::fprintf(stderr, "[pge] Kein OpenGL-Kontext für das Fenster\n");
        return FAIL;
    }
    XWindowAttributes gwa;
    XGetWindowAttributes(display, window, &gwa);
    glViewport(0, 0, gwa.width, gwa.height);

    using SwapInterval = void (*)(Display*, GLXDrawable, int);
    auto swapInterval = reinterpret_cast<SwapInterval>(
        glXGetProcAddress(reinterpret_cast<const GLubyte*>("glXSwapIntervalEXT")));
    // One swap per refresh when vertical sync is asked for, else as fast as the frames go.
    if (swapInterval) swapInterval(display, window, bVSYNC ? 1 : 0);
    if (!swapInterval) {
        std::printf("NOTE: Could not disable VSYNC, glXSwapIntervalEXT() was not found!\n");
        std::printf("      Don't worry though, things will still work, it's just the\n");
        std::printf("      frame rate will be capped to your monitors refresh rate\n");
    }
    glEnable(GL_TEXTURE_2D);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    return OK;
}

rcode Renderer_OGL10::DestroyDevice() {
    if (!context) return OK;
    glXMakeCurrent(display, None, nullptr);
    glXDestroyContext(display, context);
    context = nullptr;
    return OK;
}

void Renderer_OGL10::DisplayFrame() { glXSwapBuffers(display, window); }

void Renderer_OGL10::PrepareDrawing() {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_CULL_FACE);
}

void Renderer_OGL10::DrawLayerQuad(const vf2d& offset, const vf2d& scale, Pixel tint) {
    glBegin(GL_QUADS);
    glColor4ub(tint.r, tint.g, tint.b, tint.a);
    glTexCoord2f(0.0f * scale.x + offset.x, 1.0f * scale.y + offset.y);
    glVertex3f(-1.0f, -1.0f, 0.0f);
    glTexCoord2f(0.0f * scale.x + offset.x, 0.0f * scale.y + offset.y);
    glVertex3f(-1.0f, 1.0f, 0.0f);
    glTexCoord2f(1.0f * scale.x + offset.x, 0.0f * scale.y + offset.y);
    glVertex3f(1.0f, 1.0f, 0.0f);
    glTexCoord2f(1.0f * scale.x + offset.x, 1.0f * scale.y + offset.y);
    glVertex3f(1.0f, -1.0f, 0.0f);
    glEnd();
}

uint32_t Renderer_OGL10::CreateTexture(uint32_t, uint32_t, bool filtered, bool clamp) {
    if (!HasContext()) return kNoTexture;
    GLuint id = 0;
    glGenTextures(1, &id);
    glBindTexture(GL_TEXTURE_2D, id);
    const GLint filter = filtered ? GL_LINEAR : GL_NEAREST;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    const GLint wrap = clamp ? GL_CLAMP : GL_REPEAT;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
    glTexEnvf(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    return id;
}

void Renderer_OGL10::UpdateTexture(uint32_t, Sprite* spr) {
    if (!HasContext()) return;
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, spr->width, spr->height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 spr->GetData());
}

uint32_t Renderer_OGL10::DeleteTexture(uint32_t id) {
    if (HasContext()) glDeleteTextures(1, &id);
    return id;
}

void Renderer_OGL10::ApplyTexture(uint32_t id) {
    if (HasContext()) glBindTexture(GL_TEXTURE_2D, id);
}

void Renderer_OGL10::UpdateViewport(const vi2d& pos, const vi2d& size) {
    glViewport(pos.x, pos.y, size.x, size.y);
}

void Renderer_OGL10::ClearBuffer(Pixel p, bool bDepth) {
    glClearColor(float(p.r) / 255.0f, float(p.g) / 255.0f, float(p.b) / 255.0f, float(p.a) / 255.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    if (bDepth) glClear(GL_DEPTH_BUFFER_BIT);
}

} // namespace pge
