// The process: finds the program, builds the application, applies the run options
// and hands over to the frame loop.
#include "engine/Assets.h"
#include "game/TorvaneApp.h"

int main(int argc, char** argv) {
    adv::Assets::Init(adv::Assets::ProgramPath(argc > 0 ? argv[0] : nullptr));

    torvane::TorvaneApp app;
    const bool windowed = torvane::ApplyRunOptions(app, argc, argv);
    if (app.Construct(640, 400, 2, 2, !windowed, false, false, false)) {
        // Without an X server the window cannot open: the platform has said why.
        if (!app.Start()) return 1;
    }
    return 0;
}
