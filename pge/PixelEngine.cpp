#include "pge/PixelEngine.h"

#include "pge/FontSheet.h"
#include "pge/ImageLoader.h"
#include "pge/Platform.h"
#include "pge/PlatformLinux.h"
#include "pge/Renderer.h"
#include "pge/RendererOGL10.h"

#include <algorithm>
#include <csignal>
#include <thread>

namespace pge {

std::atomic<bool> bAtomActive{false};

namespace {

static_assert(std::atomic<bool>::is_always_lock_free, "the signal handler may only touch a lock-free flag");

// SIGTERM (kill, a logout) and SIGINT (Ctrl+C in a terminal) end the run as the window's
// close does. The handler is taken back at once, so that a second signal ends a program
// that no longer runs its frames.
void EndRun(int) { bAtomActive = false; }

// While the frame loop runs, the two signals go to EndRun; afterwards as they went before.
// A signal the process was started to ignore (nohup, a background job) stays ignored.
class EndOnSignals {
public:
    EndOnSignals() {
        struct sigaction end {};
        end.sa_handler = EndRun;
        end.sa_flags = SA_RESETHAND;
        sigemptyset(&end.sa_mask);
        for (size_t i = 0; i < 2; ++i) {
            sigaction(kSignals[i], nullptr, &before[i]);
            taken[i] = before[i].sa_handler != SIG_IGN && sigaction(kSignals[i], &end, nullptr) == 0;
        }
    }
    ~EndOnSignals() {
        for (size_t i = 0; i < 2; ++i)
            if (taken[i]) sigaction(kSignals[i], &before[i], nullptr);
    }
    EndOnSignals(const EndOnSignals&) = delete;
    EndOnSignals& operator=(const EndOnSignals&) = delete;

private:
    static constexpr int kSignals[2] = {SIGTERM, SIGINT};
    struct sigaction before[2] {};
    bool taken[2] = {false, false};
};

} // namespace

PixelEngine::PixelEngine() { pge_ConfigureSystem(); }

PixelEngine::~PixelEngine() {
    // Textures of this run die with their context; the decals only forget them.
    vLayers.clear();
    fontRenderable = Renderable();
    platform.reset();
    renderer.reset();
    loader.reset();
    Platform::ptrPGE = nullptr;
    Renderer::ptrPGE = nullptr;
}

void PixelEngine::pge_ConfigureSystem() {
    loader = std::make_unique<ImageLoader_STB>();
    platform = std::make_unique<Platform_Linux>();
    renderer = std::make_unique<Renderer_OGL10>();
    Platform::ptrPGE = this;
    Renderer::ptrPGE = this;
}

bool PixelEngine::Construct(int32_t screen_w, int32_t screen_h, int32_t pixel_w, int32_t pixel_h,
                            bool full_screen, bool vsync, bool cohesion, bool realwindow) {
    if (screen_w < 1 || screen_h < 1 || pixel_w < 1 || pixel_h < 1) return false;
    vScreenSize = {screen_w, screen_h};
    vInvScreenSize = {1.0f / float(screen_w), 1.0f / float(screen_h)};
    vPixel = {2.0f / float(screen_w), 2.0f / float(screen_h)};
    vPixelSize = {pixel_w, pixel_h};
    vScreenPixelSize = vPixelSize;
    vWindowSize = {screen_w * pixel_w, screen_h * pixel_h};
    bFullScreen = full_screen;
    bEnableVSYNC = vsync;
    bPixelCohesion = cohesion;
    bRealWindowMode = realwindow;
    return true;
}

bool PixelEngine::Start() {
    if (platform->ApplicationStartUp() != OK) return false;
    if (platform->CreateWindowPane({30, 30}, vWindowSize, bFullScreen) != OK) return false;
    pge_UpdateViewport();
    bAtomActive = true;
    {
        const EndOnSignals signals;
        std::thread engine(&PixelEngine::EngineThread, this);
        platform->StartSystemEventLoop();
        engine.join();
    }
    return platform->ApplicationCleanUp() == OK;
}

bool PixelEngine::OnUserCreate() { return false; }
bool PixelEngine::OnUserUpdate(float) { return false; }
bool PixelEngine::OnUserDestroy() { return true; }

void PixelEngine::EngineThread() {
    if (platform->ThreadStartUp() == FAIL) return;
    pge_PrepareEngine();
    // Without a draw target there is nothing to run on.
    if (!pDrawTarget || !OnUserCreate()) bAtomActive = false;
    while (bAtomActive) {
        while (bAtomActive) pge_CoreUpdate();
        if (!OnUserDestroy()) bAtomActive = true;
    }
    pads.Close();
    platform->ThreadCleanUp();
}

void PixelEngine::pge_PrepareEngine() {
    if (platform->CreateGraphics(bFullScreen, bEnableVSYNC, vViewPos, vViewSize) == FAIL) return;
    pge_ConstructFontSheet();
    vLayers.clear();
    vLayers.emplace_back();
    LayerDesc& layer = vLayers.front();
    layer.pDrawTarget.Create(uint32_t(vScreenSize.x), uint32_t(vScreenSize.y));
    layer.tint = WHITE;
    layer.bShow = true;
    layer.bUpdate = true;
    pDrawTarget = layer.pDrawTarget.Sprite();
    m_tp1 = m_tp2 = std::chrono::system_clock::now();
    nextFrameAt = std::chrono::steady_clock::now();
}

Sprite* PixelEngine::GetFontSprite() {
    if (!fontRenderable.Sprite()) pge_ConstructFontSheet();
    return fontRenderable.Sprite();
}

void PixelEngine::pge_ConstructFontSheet() {
    fontRenderable.Create(kFontSheetWidth, kFontSheetHeight, false, true);
    fontRenderable.Sprite()->pColData = FontSheetPixels();
    fontRenderable.Decal()->Update();
}

void PixelEngine::pge_CoreUpdate() {
    using Tick = std::chrono::duration<int64_t, std::ratio<1, kFrameTicksPerSecond>>;
    const auto ticks = [](const auto& tp) { return std::chrono::floor<Tick>(tp.time_since_epoch()).count(); };
    m_tp2 = std::chrono::system_clock::now();
    const int64_t elapsed = ticks(m_tp2) - ticks(m_tp1);
    m_tp1 = m_tp2;
    pge_Frame(FrameSeconds(elapsed));
    pge_WaitForNextFrame();
}

void PixelEngine::SetFrameRateCap(int32_t fps) {
    frameShare = fps > 0 ? std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                               std::chrono::duration<double>(1.0 / double(fps)))
                         : std::chrono::steady_clock::duration::zero();
}

void PixelEngine::pge_WaitForNextFrame() {
    if (frameShare == std::chrono::steady_clock::duration::zero()) return;
    const auto now = std::chrono::steady_clock::now();
    nextFrameAt += frameShare;
    // A frame that ran late starts the count afresh rather than rushing to catch up.
    if (nextFrameAt < now) {
        nextFrameAt = now;
        return;
    }
    std::this_thread::sleep_until(nextFrameAt);
}

namespace {

void ScanButtons(HWButton* state, bool* newState, bool* oldState, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        state[i].bPressed = false;
        state[i].bReleased = false;
        if (newState[i] == oldState[i]) continue;
        if (newState[i]) {
            state[i].bPressed = !state[i].bHeld;
            state[i].bHeld = true;
        } else {
            state[i].bReleased = true;
            state[i].bHeld = false;
        }
        oldState[i] = newState[i];
    }
}

} // namespace

void PixelEngine::pge_Frame(float fElapsedTime) {
    fLastElapsed = fElapsedTime;
    platform->HandleSystemEvent();

    bool keys[256];
    std::copy(std::begin(pKeyNewState), std::end(pKeyNewState), keys);
    pge_ReadPads(keys);
    ScanButtons(pKeyboardState, keys, pKeyOldState, 256);
    ScanButtons(pMouseState, pMouseNewState, pMouseOldState, kMouseButtons);
    std::copy(std::begin(pMousePressCache), std::end(pMousePressCache), pMousePresses);
    std::fill(std::begin(pMousePressCache), std::end(pMousePressCache), 0);
    vMousePos = vMousePosCache;
    nMouseWheelDelta = nMouseWheelDeltaCache;
    nMouseWheelDeltaCache = 0;
    if (!typedCache.empty()) {
        typedKey = {typedCache.front().code, typedCache.front().ctrl, typedKey.serial + 1};
        typedCache.pop_front();
    }

    if (!OnUserUpdate(fElapsedTime)) bAtomActive = false;

    renderer->UpdateViewport(vViewPos, vViewSize);
    renderer->ClearBuffer(BLACK, true);
    LayerDesc& layer = vLayers.front();
    layer.bShow = true;
    layer.bUpdate = true;
    renderer->PrepareDrawing();
    // Decal::Update binds the layer's texture and uploads the whole draw target.
    layer.pDrawTarget.Decal()->Update();
    layer.bUpdate = false;
    renderer->DrawLayerQuad({0.0f, 0.0f}, {1.0f, 1.0f}, layer.tint);
    renderer->DisplayFrame();

    fFrameTimer += fElapsedTime;
    ++nFrameCount;
    if (fFrameTimer >= 1.0f) {
        fFrameTimer -= 1.0f;
        nLastFPS = nFrameCount;
        platform->SetWindowTitle("Pixelrahmen - " + sAppName + " - FPS: " + std::to_string(nFrameCount));
        nFrameCount = 0;
    }
}

void PixelEngine::Clear(Pixel p) {
    if (!pDrawTarget) return;
    std::fill(pDrawTarget->pColData.begin(), pDrawTarget->pColData.end(), p);
}

void PixelEngine::pge_UpdateMouse(int32_t x, int32_t y) {
    bHasMouseFocus = true;
    vMouseWindowPos = {x, y};
    if (vViewSize.x < 1 || vViewSize.y < 1) return; // no window yet
    const float lx = float(x - vViewPos.x) / float(vViewSize.x) * float(vScreenSize.x);
    const float ly = float(y - vViewPos.y) / float(vViewSize.y) * float(vScreenSize.y);
    vMousePosCache.x = std::clamp(int32_t(lx), 0, vScreenSize.x - 1);
    vMousePosCache.y = std::clamp(int32_t(ly), 0, vScreenSize.y - 1);
}

void PixelEngine::pge_UpdateMouseWheel(int32_t delta) { nMouseWheelDeltaCache += delta; }

void PixelEngine::pge_UpdateMouseState(int32_t button, bool state) {
    if (button < 0 || uint32_t(button) >= kMouseButtons) return;
    if (state && !pMouseNewState[button]) ++pMousePressCache[button];
    pMouseNewState[button] = state;
}

void PixelEngine::pge_UpdateKeyState(int32_t key, bool state) {
    // A native code that is not in the table counts as NONE.
    pge_SetKeyboardKey(mapKeys[size_t(key)], state);
}

void PixelEngine::pge_SetKeyboardKey(uint8_t key, bool state) {
    if (state && !pKeyNewState[key] && key != NONE) ++nKeyboardPresses;
    pKeyNewState[key] = state;
}

bool PixelEngine::EnablePads() { return pads.Open(); }

void PixelEngine::SetPadKeys(const PadKeys& keys) {
    for (uint8_t b = 0; b < PAD_BUTTONS; ++b)
        if (keys[b] != padKeys[b] && pPadState[b].bHeld) pPadLatched[b] = true;
    padKeys = keys;
}

void PixelEngine::pge_ReadPads(bool keys[256]) {
    bool held[PAD_BUTTONS];
    pads.Poll(held);
    ScanButtons(pPadState, held, pPadOldState, PAD_BUTTONS);
    for (uint8_t b = 0; b < PAD_BUTTONS; ++b) {
        if (pPadState[b].bPressed) bPadUsedLast = true;
        if (!held[b]) pPadLatched[b] = false;
        if (held[b] && !pPadLatched[b] && padKeys[b] != NONE) keys[padKeys[b]] = true;
    }
    // A key typed on the keyboard, or a mouse button pressed, in the same frame has the last word.
    const bool clicked =
        std::any_of(std::begin(pMousePressCache), std::end(pMousePressCache), [](auto n) { return n > 0; });
    if (nKeyboardPresses > 0 || clicked) bPadUsedLast = false;
    nKeyboardPresses = 0;
}

void PixelEngine::SetFullScreen(bool full) {
    if (full == bFullScreen) return;
    if (platform->SetFullScreen(full) == OK) bFullScreen = full;
}

void PixelEngine::pge_KeyTyped(uint32_t code, bool ctrl) {
    // A stuck or flooded event source cannot make the queue grow without end.
    if (typedCache.size() < kTypedKeysKept) typedCache.push_back({code, ctrl, 0});
}

void PixelEngine::pge_UpdateViewport() {
    const int32_t ww = vWindowSize.x;
    const int32_t wh = vWindowSize.y;
    // Pixel cohesion: the largest whole scale that fits, centred, so that every logical pixel
    // has the same size; a window smaller than the screen itself takes the fit below.
    const int32_t whole = std::min(ww / vScreenSize.x, wh / vScreenSize.y);
    if (bPixelCohesion && whole >= 1) {
        vViewSize = {vScreenSize.x * whole, vScreenSize.y * whole};
        vViewPos = {(ww - vViewSize.x) / 2, (wh - vViewSize.y) / 2};
        return;
    }
    const float aspect = float(vScreenSize.x * vPixelSize.x) / float(vScreenSize.y * vPixelSize.y);
    const int32_t h = int32_t(float(ww) / aspect);
    if (h <= wh) {
        vViewSize = {ww, h};
        vViewPos = {0, (wh - h) / 2};
    } else {
        const int32_t w = int32_t(float(wh) * aspect);
        vViewSize = {w, wh};
        vViewPos = {(ww - w) / 2, 0};
    }
}

void PixelEngine::pge_UpdateWindowSize(int32_t x, int32_t y) {
    vWindowSize = {x, y};
    pge_UpdateViewport();
}

} // namespace pge
