#pragma once
// Runs an engine with no X server and no graphics card, for tests, tools and benchmarks.
//
//     MyApp app;                     // any PixelEngine subclass
//     pge::Headless run(app);        // 640 by 400 unless told otherwise
//     ASSERT_TRUE(run.Create());     // OnUserCreate
//     run.SetKey(pge::Key::ENTER, true);
//     run.Frame(0.016f);             // ENTER: bPressed and bHeld in this frame
//     run.SetKey(pge::Key::ENTER, false);
//     run.Frame(0.016f);             // ENTER: bReleased
//
// A state set before a frame is what that frame sees, as if the key event had
// arrived just before it; setting and clearing a key before one frame shows nothing,
// as with a real keyboard. The application draws into its real draw target;
// textures are not made (decals stay empty). Pads work as in a window: plug in a
// pge::VirtualPad once the application has enabled them. Only one engine may run at a time.
#include "pge/PixelEngine.h"

#include <string>

namespace pge {

class Headless {
public:
    // Installs the headless platform and renderer and calls Construct(w, h, 2, 2).
    explicit Headless(PixelEngine& engine, int32_t w = 640, int32_t h = 400);
    // Runs OnUserDestroy if the run was created and not yet finished.
    ~Headless();
    Headless(const Headless&) = delete;
    Headless& operator=(const Headless&) = delete;

    // Draw target, font sheet, then OnUserCreate; false if the application declined.
    bool Create();
    // One frame of the given length. False once the run has ended (OnUserUpdate
    // returned false or Close was called); then OnUserDestroy has been called.
    bool Frame(float elapsed);
    // As the window's close button: the run ends after the next frame.
    void Close();

    void SetKey(Key k, bool down);
    // A press that typed the character `code`, as the window reports one; the next frame
    // takes it, or a later one when several wait.
    void Type(uint32_t code, bool ctrl = false);
    // 0 left, 1 right, 2 middle.
    void SetMouseButton(int32_t button, bool down);
    // Points at the centre of a logical pixel.
    void MoveMouse(int32_t x, int32_t y);
    // In units of 120 per notch, positive away from the user.
    void Wheel(int32_t delta);
    // As if the user resized the window to w by h window pixels.
    void ResizeWindow(int32_t w, int32_t h);
    // As if the window gained or lost the keyboard focus.
    void SetFocus(bool focused);

    // The title the window would show now.
    const std::string& Title() const;
    bool Running() const { return running; }

private:
    PixelEngine& engine;
    class HeadlessWindow* window = nullptr; // the headless platform, owned by pge::platform
    bool running = false;
    bool closeRequested = false;
};

} // namespace pge
