#pragma once
// The frame framework: one window, one software draw target, the frame loop and the
// key and mouse state. An application derives from PixelEngine and overrides
// OnUserCreate, OnUserUpdate and OnUserDestroy.
#include "pge/Decal.h"
#include "pge/Gamepad.h"
#include "pge/Pixel.h"
#include "pge/Sprite.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace pge {

// The numeric order is relied on: 1..26 letters, 27..36 digits and so on.
enum Key : uint8_t {
    NONE,
    A, B, C, D, E, F, G, H, I, J, K, L, M, N, O, P, Q, R, S, T, U, V, W, X, Y, Z,
    K0, K1, K2, K3, K4, K5, K6, K7, K8, K9,
    F1, F2, F3, F4, F5, F6, F7, F8, F9, F10, F11, F12,
    UP, DOWN, LEFT, RIGHT,
    SPACE, TAB, SHIFT, CTRL,
    INS, DEL, HOME, END, PGUP, PGDN,
    BACK, ESCAPE, RETURN, ENTER, PAUSE, SCROLL,
    NP0, NP1, NP2, NP3, NP4, NP5, NP6, NP7, NP8, NP9,
    NP_MUL, NP_DIV, NP_ADD, NP_SUB, NP_DECIMAL,
    PERIOD, EQUALS, COMMA, MINUS,
    OEM_1, OEM_2, OEM_3, OEM_4, OEM_5, OEM_6, OEM_7, OEM_8,
    CAPS_LOCK,
};
static_assert(ENTER == 66 && CAPS_LOCK == 96, "key values are fixed");

// A key press that typed a character: its code point (13 for Enter, 27 Escape, 8 Backspace,
// 127 Delete, below 32 with Ctrl held), whether Ctrl was held, and the count of such presses
// taken so far, from 1.
struct TypedKey {
    uint32_t code = 0;
    bool ctrl = false;
    uint64_t serial = 0;
};

struct HWButton {
    bool bPressed = false;  // went down in this frame
    bool bReleased = false; // went up in this frame
    bool bHeld = false;     // is down
};

// The frame loop runs while this is set; the window's close message clears it, and so do
// SIGTERM and SIGINT while Start runs.
extern std::atomic<bool> bAtomActive;

// The frame clock counts whole ticks of 10 microseconds, taken from the absolute time so
// that what one frame leaves out the next one gets. Finer than anyone can see, and a frame
// time that is a whole number of ticks is a small number where a recording keeps it.
inline constexpr int64_t kFrameTicksPerSecond = 100000;
// The seconds that a frame of `ticks` ticks is given.
inline float FrameSeconds(int64_t ticks) { return static_cast<float>(ticks) / 100000.0f; }

struct LayerDesc {
    Renderable pDrawTarget;
    Pixel tint = WHITE;
    bool bShow = false;
    bool bUpdate = false;
};

class PixelEngine {
public:
    // Makes the X11 platform, the OpenGL renderer and the image loader; the
    // destructor drops them again.
    PixelEngine();
    virtual ~PixelEngine();
    PixelEngine(const PixelEngine&) = delete;
    PixelEngine& operator=(const PixelEngine&) = delete;

    // Only stores; false if any size is below 1.
    bool Construct(int32_t screen_w, int32_t screen_h, int32_t pixel_w, int32_t pixel_h,
                   bool full_screen = false, bool vsync = false, bool cohesion = false,
                   bool realwindow = false);
    // Opens the window and runs the frame loop on its own thread until the run ends: by the
    // application, the window's close, SIGTERM or SIGINT. False if the window could not
    // be opened (the platform says why on stderr).
    bool Start();

    virtual bool OnUserCreate();
    // fElapsedTime: the frame's duration in whole ticks of the frame clock (FrameSeconds).
    virtual bool OnUserUpdate(float fElapsedTime);
    virtual bool OnUserDestroy();

    HWButton GetKey(Key k) const { return pKeyboardState[k]; }
    HWButton GetMouse(uint32_t b) const { return b < kMouseButtons ? pMouseState[b] : HWButton(); }
    // How often button b went down since the last frame, also when it came up again before
    // this frame and so shows in no state of GetMouse: a click quicker than a frame.
    int32_t GetMousePresses(uint32_t b) const { return b < kMouseButtons ? pMousePresses[b] : 0; }
    // The typed press this frame took, or the last one taken before. A frame takes one: those
    // typed quicker wait for the frames after, in their order, so that none is lost.
    const TypedKey& GetTypedKey() const { return typedKey; }
    const vi2d& GetMousePos() const { return vMousePos; }
    int32_t GetMouseWheel() const { return nMouseWheelDelta; }
    float GetElapsedTime() const { return fLastElapsed; }
    int32_t ScreenWidth() const { return vScreenSize.x; }
    int32_t ScreenHeight() const { return vScreenSize.y; }
    uint32_t GetFPS() const { return nLastFPS; }
    bool IsFocused() const { return bHasInputFocus; }
    Sprite* GetDrawTarget() const { return pDrawTarget; }
    // The 128 by 48 font sheet; there from construction on.
    // The font sheet, made on first use: text can be measured and drawn before the window
    // exists (tools, tests); the engine thread makes it again, with its texture.
    Sprite* GetFontSprite();
    const vi2d& GetWindowSize() const { return vWindowSize; }
    const vi2d& GetViewPos() const { return vViewPos; }
    const vi2d& GetViewSize() const { return vViewSize; }

    // ---- the window ----
    bool IsFullScreen() const { return bFullScreen; }
    // Between window and full screen while the run goes on.
    void SetFullScreen(bool full);
    // At most this many frames a second: each frame sleeps what is left of its share, by a
    // steady clock; 0 (the default) runs as fast as the machine and the swap allow.
    void SetFrameRateCap(int32_t fps);

    // ---- pads ----
    // Starts SDL's game controller subsystem; from OnUserCreate, on the engine thread. False
    // without it, and the run goes on with the keyboard and the mouse.
    bool EnablePads();
    // What each pad button stands for: the key it holds down, NONE for nothing. Key state
    // is the keyboard's and the pad's together, so a pad press is that key's press. A button
    // that is held while its key changes acts only once it has been let go.
    using PadKeys = std::array<Key, PAD_BUTTONS>;
    void SetPadKeys(const PadKeys& keys);
    // The playing pad's own buttons, whatever they stand for.
    HWButton GetPadButton(PadButton b) const { return b < PAD_BUTTONS ? pPadState[b] : HWButton(); }
    // From a press on the playing pad until the next key pressed on the keyboard or the next
    // mouse button pressed.
    bool PadUsedLast() const { return bPadUsedLast; }
    // The engine's pads, for plugging in a virtual one and asking what is plugged in.
    Gamepads& Pads() { return pads; }

    // Writes p to every pixel of the draw target, alpha included, without blending.
    void Clear(Pixel p);

    // Called by the platform.
    void pge_UpdateMouse(int32_t x, int32_t y);
    void pge_UpdateMouseWheel(int32_t delta);
    void pge_UpdateMouseState(int32_t button, bool state);
    // A native key code from the window's events.
    void pge_UpdateKeyState(int32_t key, bool state);
    // A physical press (no key repeat) that typed the character `code`.
    void pge_KeyTyped(uint32_t code, bool ctrl);
    void pge_UpdateViewport();
    void pge_UpdateWindowSize(int32_t x, int32_t y);
    void pge_UpdateKeyFocus(bool state) { bHasInputFocus = state; }

public:
    std::string sAppName = "Undefined";

protected:
    virtual void pge_ConfigureSystem();

private:
    friend class Headless;
    static constexpr uint32_t kMouseButtons = 5;
    // Typed presses waiting for their frames; more are dropped.
    static constexpr size_t kTypedKeysKept = 64;

    void EngineThread();
    void pge_PrepareEngine();
    void pge_ConstructFontSheet();
    void pge_CoreUpdate();
    // One frame with a given duration: input, the application, the picture.
    void pge_Frame(float fElapsedTime);
    // Sleeps until the frame rate cap allows the next frame.
    void pge_WaitForNextFrame();
    // A key of the keyboard goes down or up.
    void pge_SetKeyboardKey(uint8_t key, bool state);
    // Reads the playing pad and folds the keys its buttons stand for into `keys`.
    void pge_ReadPads(bool keys[256]);

    Sprite* pDrawTarget = nullptr;
    vi2d vScreenSize{256, 240};
    vf2d vInvScreenSize{1.0f / 256.0f, 1.0f / 240.0f};
    vi2d vPixelSize{4, 4};
    vi2d vScreenPixelSize{4, 4};
    vi2d vMousePos;
    int32_t nMouseWheelDelta = 0;
    vi2d vMousePosCache;
    vi2d vMouseWindowPos;
    int32_t nMouseWheelDeltaCache = 0;
    vi2d vWindowPos;
    vi2d vWindowSize;
    vi2d vViewPos;
    vi2d vViewSize;
    bool bFullScreen = false;
    vf2d vPixel{1.0f, 1.0f};
    bool bHasInputFocus = false;
    bool bHasMouseFocus = false;
    bool bEnableVSYNC = false;
    bool bRealWindowMode = false;
    float fFrameTimer = 0.0f;
    float fLastElapsed = 0.0f;
    uint32_t nFrameCount = 0;
    uint32_t nLastFPS = 0;
    std::vector<LayerDesc> vLayers;
    bool bPixelCohesion = false;
    std::chrono::time_point<std::chrono::system_clock> m_tp1, m_tp2;
    bool pKeyNewState[256] = {};
    bool pKeyOldState[256] = {};
    HWButton pKeyboardState[256] = {};
    bool pMouseNewState[kMouseButtons] = {};
    bool pMouseOldState[kMouseButtons] = {};
    HWButton pMouseState[kMouseButtons] = {};
    int32_t pMousePressCache[kMouseButtons] = {}; // written by the event handler
    int32_t pMousePresses[kMouseButtons] = {};
    std::deque<TypedKey> typedCache; // written by the event handler, taken one a frame
    TypedKey typedKey;
    Renderable fontRenderable;
    uint32_t nKeyboardPresses = 0; // since the last frame
    Gamepads pads;
    PadKeys padKeys{};
    bool pPadOldState[PAD_BUTTONS] = {};
    HWButton pPadState[PAD_BUTTONS] = {};
    bool pPadLatched[PAD_BUTTONS] = {}; // held while its key changed: acts once let go
    bool bPadUsedLast = false;
    std::chrono::steady_clock::duration frameShare{0}; // 0: no cap
    std::chrono::steady_clock::time_point nextFrameAt;
};

} // namespace pge
