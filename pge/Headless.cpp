#include "pge/Headless.h"

#include "pge/Platform.h"
#include "pge/Renderer.h"

namespace pge {

// A platform without a display: it remembers the title and has no events.
class HeadlessWindow : public Platform {
public:
    rcode ApplicationStartUp() override { return OK; }
    rcode ApplicationCleanUp() override { return OK; }
    rcode ThreadStartUp() override { return OK; }
    rcode ThreadCleanUp() override { return OK; }
    rcode CreateGraphics(bool, bool, const vi2d&, const vi2d&) override { return OK; }
    rcode CreateWindowPane(const vi2d&, vi2d&, bool) override { return OK; }
    rcode SetWindowTitle(const std::string& s) override {
        title = s;
        return OK;
    }
    rcode SetFullScreen(bool) override { return OK; }
    rcode StartSystemEventLoop() override { return OK; }
    rcode HandleSystemEvent() override { return OK; }

    std::string title;
};

namespace {

// A renderer without a card: textures are never made, frames go nowhere.
class NullRenderer : public Renderer {
public:
    void PrepareDevice() override {}
    rcode CreateDevice(std::vector<void*>, bool, bool) override { return OK; }
    rcode DestroyDevice() override { return OK; }
    void DisplayFrame() override {}
    void PrepareDrawing() override {}
    void DrawLayerQuad(const vf2d&, const vf2d&, Pixel) override {}
    uint32_t CreateTexture(uint32_t, uint32_t, bool, bool) override { return kNoTexture; }
    void UpdateTexture(uint32_t, Sprite*) override {}
    uint32_t DeleteTexture(uint32_t id) override { return id; }
    void ApplyTexture(uint32_t) override {}
    void UpdateViewport(const vi2d&, const vi2d&) override {}
    void ClearBuffer(Pixel, bool) override {}
};

} // namespace

Headless::Headless(PixelEngine& e, int32_t w, int32_t h) : engine(e) {
    auto pane = std::make_unique<HeadlessWindow>();
    window = pane.get();
    platform = std::move(pane);
    renderer = std::make_unique<NullRenderer>();
    Platform::ptrPGE = &engine;
    Renderer::ptrPGE = &engine;
    engine.Construct(w, h, 2, 2, false, false, false, false);
    engine.pge_UpdateViewport();
}

Headless::~Headless() {
    if (running) engine.OnUserDestroy();
    engine.pads.Close();
}

bool Headless::Create() {
    engine.pge_PrepareEngine();
    bAtomActive = true;
    running = engine.OnUserCreate();
    if (!running) bAtomActive = false;
    return running;
}

bool Headless::Frame(float elapsed) {
    if (!running) return false;
    engine.pge_Frame(elapsed);
    if (closeRequested) bAtomActive = false;
    if (!bAtomActive) {
        running = false;
        engine.OnUserDestroy();
        engine.pads.Close();
    }
    return running;
}

void Headless::Close() { closeRequested = true; }

void Headless::SetKey(Key k, bool down) { engine.pge_SetKeyboardKey(k, down); }

void Headless::SetFocus(bool focused) { engine.pge_UpdateKeyFocus(focused); }

void Headless::Type(uint32_t code, bool ctrl) { engine.pge_KeyTyped(code, ctrl); }

void Headless::SetMouseButton(int32_t button, bool down) { engine.pge_UpdateMouseState(button, down); }

void Headless::MoveMouse(int32_t x, int32_t y) {
    // The centre of the logical pixel, in window pixels.
    const int64_t wx = engine.vViewPos.x + (2 * int64_t(x) + 1) * engine.vViewSize.x / (2 * int64_t(engine.vScreenSize.x));
    const int64_t wy = engine.vViewPos.y + (2 * int64_t(y) + 1) * engine.vViewSize.y / (2 * int64_t(engine.vScreenSize.y));
    engine.pge_UpdateMouse(int32_t(wx), int32_t(wy));
}

void Headless::Wheel(int32_t delta) { engine.pge_UpdateMouseWheel(delta); }

void Headless::ResizeWindow(int32_t w, int32_t h) { engine.pge_UpdateWindowSize(w, h); }

const std::string& Headless::Title() const { return window->title; }

} // namespace pge
