// The process: finds the program, builds the application, applies the run options
// and hands over to the frame loop.
#include "engine/Assets.h"
#include "game/TorvaneApp.h"

#include <string>
#include <unistd.h>

int main(int argc, char** argv) {
    std::string path = (argc > 0 && argv[0]) ? argv[0] : "";
    char buffer[4095];
    const ssize_t n = readlink("/proc/self/exe", buffer, sizeof(buffer));
    if (n > 0) path.assign(buffer, size_t(n));
    adv::Assets::Init(path);

    torvane::TorvaneApp app;
    const bool windowed = torvane::ApplyRunOptions(app, argc, argv);
    if (app.Construct(640, 400, 2, 2, !windowed, false, false, false)) {
        // Without an X server the window cannot open: the platform has said why.
        if (!app.Start()) return 1;
    }
    return 0;
}
