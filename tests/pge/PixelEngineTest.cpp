#include "pge/Headless.h"
#include "pge/PixelEngine.h"
#include "pge/Platform.h"
#include "pge/PlatformLinux.h"
#include "pge/WindowTitle.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

struct Probe : pge::PixelEngine {
    bool OnUserCreate() override { return true; }
    bool OnUserUpdate(float) override { return true; }
};

// A probe running headless at 640 by 400 in a window of 1280 by 800.
struct Running : ::testing::Test {
    void SetUp() override { ASSERT_TRUE(run.Create()); }
    std::pair<int, int> Mouse() const { return {app.GetMousePos().x, app.GetMousePos().y}; }
    Probe app;
    pge::Headless run{app};
};
struct PixelEngineKeys : Running {};
struct PixelEngineMouse : Running {};
struct PixelEngineViewport : Running {};

} // namespace

// A key is pressed in the frame it goes down, held while down, released in the frame it goes
// up; down and up within one frame show nothing.
TEST_F(PixelEngineKeys, PressHoldReleaseAndTheXKeyTable) {
    const auto state = [&](pge::Key k) {
        const pge::HWButton b = app.GetKey(k);
        return std::string(b.bPressed ? "p" : "") + (b.bHeld ? "h" : "") + (b.bReleased ? "r" : "");
    };
    std::string seen;
    for (const bool down : {true, true, false, false}) {
        run.SetKey(pge::ENTER, down);
        run.Frame(0.01f);
        seen += state(pge::ENTER) + state(pge::RETURN) + ",";
    }
    EXPECT_EQ(seen, "ph,h,r,,");
    run.SetKey(pge::SPACE, true);
    run.SetKey(pge::SPACE, false);
    run.Frame(0.01f);
    EXPECT_EQ(state(pge::SPACE), "");

    // Keys go by their keysym: with Shift held X reports an upper-case one, which is no key;
    // all enter keys give ENTER, never RETURN; the keypad block mirrors the main one.
    pge::FillKeyTable();
    const std::pair<long, pge::Key> keys[] = {
        {XK_q, pge::Q},            {XK_W, pge::NONE},            {XK_Return, pge::ENTER},  {XK_KP_Enter, pge::ENTER},
        {XK_Linefeed, pge::ENTER}, {XK_KP_Up, pge::UP},          {XK_KP_Page_Down, pge::PGDN}, {XK_KP_Delete, pge::DEL},
        {XK_KP_7, pge::NP7},       {XK_9, pge::K9},              {XK_F12, pge::F12},       {XK_z, pge::Z},
        {XK_semicolon, pge::OEM_1}, {XK_asciitilde, pge::OEM_3}, {XK_Control_R, pge::CTRL}, {XK_Shift_L, pge::SHIFT},
        {XK_KP_Subtract, pge::NP_SUB}, {XK_minus, pge::MINUS},   {XK_equal, pge::EQUALS},
    };
    for (const auto& [sym, key] : keys) {
        app.pge_UpdateKeyState(int32_t(sym), true);
        run.Frame(0.01f);
        EXPECT_EQ(state(key), "ph") << sym;
        EXPECT_EQ(state(pge::RETURN) + state(pge::W), "") << sym;
        app.pge_UpdateKeyState(int32_t(sym), false);
        run.Frame(0.01f);
    }
}

TEST_F(PixelEngineMouse, ButtonsAndWheelPerFrame) {
    run.SetMouseButton(1, true);
    run.Wheel(120);
    run.Wheel(120);
    run.Frame(0.01f);
    EXPECT_EQ(std::tuple(app.GetMouse(1).bPressed, app.GetMouse(0).bHeld, app.GetMouseWheel(), app.GetMousePresses(1)), std::tuple(true, false, 240, 1));
    run.Frame(0.01f); // held, not pressed again
    EXPECT_EQ(std::tuple(app.GetMouse(1).bHeld, app.GetMouseWheel(), app.GetMousePresses(1)), std::tuple(true, 0, 0));
    EXPECT_FALSE(app.GetMouse(3).bHeld || app.GetMouse(4).bPressed || app.GetMouse(99).bHeld);
    // A click that went down and up between two frames shows in no state, but is counted.
    run.SetMouseButton(1, false);
    run.SetMouseButton(0, true);
    run.SetMouseButton(0, false);
    run.SetMouseButton(0, true);
    run.SetMouseButton(0, false);
    run.Frame(0.01f);
    EXPECT_EQ(std::tuple(app.GetMouse(0).bPressed || app.GetMouse(0).bHeld, app.GetMousePresses(0), app.GetMousePresses(99)), std::tuple(false, 2, 0));
    run.Frame(0.01f);
    EXPECT_EQ(app.GetMousePresses(0), 0);
}

TEST_F(PixelEngineViewport, KeepsEightToFiveWithCentredBars) {
    const struct { bool cohesion; int ww, wh, vx, vy, vw, vh; } cases[] = {
        {false, 1280, 800, 0, 0, 1280, 800},
        // Wide windows: full height, bars left and right; tall ones: full width, bars above and below.
        {false, 1920, 1080, 96, 0, 1728, 1080},
        {false, 1000, 1000, 0, 187, 1000, 625},
        {false, 641, 400, 0, 0, 641, 400}, // 641 / 1.6 = 400.6, cut to 400
        {false, 800, 300, 160, 0, 480, 300},
        {false, 333, 777, 0, 284, 333, 208},
        // Pixel cohesion: the largest whole scale that fits, centred; below one the fit.
        {true, 1920, 1080, 320, 140, 1280, 800},
        {true, 1000, 1000, 180, 300, 640, 400},
        {true, 2560, 1600, 0, 0, 2560, 1600},
        {true, 641, 400, 0, 0, 640, 400},
        {true, 800, 300, 160, 0, 480, 300},
    };
    for (const auto& c : cases) {
        // Construct only stores: the cohesion flag changes nothing else.
        app.Construct(640, 400, 2, 2, false, false, c.cohesion, false);
        run.ResizeWindow(c.ww, c.wh);
        EXPECT_EQ(std::vector<int>({app.GetViewPos().x, app.GetViewPos().y, app.GetViewSize().x, app.GetViewSize().y}),
                  std::vector<int>({c.vx, c.vy, c.vw, c.vh})) << c.ww << "x" << c.wh << " " << c.cohesion;
    }
}

TEST_F(PixelEngineMouse, PositionMapsThroughTheViewAndStaysOnScreen) {
    run.ResizeWindow(1920, 1080); // view 1728 by 1080 at x 96
    // Over the bars and beyond the window the position is clamped.
    const std::pair<std::pair<int, int>, std::pair<int, int>> cases[] = {
        {{96 + 864, 540}, {320, 200}}, {{10, -50}, {0, 0}}, {{1915, 5000}, {639, 399}}};
    for (const auto& [window, logical] : cases) {
        app.pge_UpdateMouse(window.first, window.second);
        run.Frame(0.01f);
        EXPECT_EQ(Mouse(), logical);
    }
    // The headless helper points at logical pixels exactly.
    for (int x : {0, 1, 317, 639}) {
        run.MoveMouse(x, 399 - x % 400);
        run.Frame(0.01f);
        EXPECT_EQ(Mouse(), std::pair(x, 399 - x % 400));
    }
}

TEST(WindowTitle, StaysAgainstTheFrameRateStatus) {
    adv::SetWindowTitle("Torvane"); // without an engine nothing happens
    EXPECT_EQ(pge::platform, nullptr);
    Probe app;
    pge::Headless run(app);
    ASSERT_TRUE(run.Create());
    // Without the fixed title the status line of the frame loop takes over once a second.
    run.Frame(0.5f);
    run.Frame(0.5f);
    EXPECT_TRUE(run.Title() != "" && run.Title() != "Torvane");
    adv::SetWindowTitle("Torvane");
    const std::string set = run.Title();
    for (int i = 0; i < 5; ++i) run.Frame(0.5f);
    EXPECT_EQ(std::tuple(set, run.Title(), app.GetFPS()), std::tuple("Torvane", "Torvane", 2u));
    // A second call changes the kept title; the wrapper is not wrapped again.
    adv::SetWindowTitle("Der Vellmark");
    run.Frame(1.0f);
    EXPECT_EQ(run.Title(), "Der Vellmark");
}
