// The process: finds the program, builds the application, applies the run options
// and hands over to the frame loop.
#include "engine/Assets.h"
#include "game/TorvaneApp.h"

int main(int argc, char** argv) {
    adv::Assets::Init(adv::Assets::ProgramPath(argc > 0 ? argv[0] : nullptr));

    torvane::TorvaneApp app;
    const torvane::WindowOptions window = torvane::ApplyRunOptions(app, argc, argv);
    app.SetFrameRateCap(window.fps);
    if (app.Construct(640, 400, window.scale, window.scale, !window.windowed, window.vsync, window.pixelPerfect,
                      false)) {
        // Without an X server the window cannot open: the platform has said why.
        if (!app.Start()) return 1;
    }
    return 0;
}
