// Any command line (arguments separated by NUL bytes), applied as the game applies it,
// then a few headless frames of the game it sets up. Malformed numbers end the real
// program through their exception; here that exception ends the input.
#include "game/TorvaneApp.h"

#include "engine/Music.h"
#include "game/rules/Level.h"
#include "pge/Headless.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    adv::Music::Disable();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<std::string> args{"torvane"};
    std::string arg;
    for (size_t i = 0; i <= size; ++i) {
        if (i == size || data[i] == 0) {
            // Screenshots would write files anywhere the input names.
            if (arg.rfind("--screenshot=", 0) != 0) args.push_back(arg);
            arg.clear();
        } else {
            arg += char(data[i]);
        }
    }
    std::vector<const char*> argv;
    for (const std::string& a : args) argv.push_back(a.c_str());

    torvane::GetSettings() = torvane::Settings();
    torvane::TorvaneApp app;
    try {
        torvane::ApplyRunOptions(app, int(argv.size()), argv.data());
    } catch (const std::invalid_argument&) {
        return 0;
    } catch (const std::out_of_range&) {
        return 0;
    }
    pge::Headless run(app);
    if (!run.Create()) return 0;
    // Long enough for the intro to fade, a build to start and the bot to place pieces.
    for (int frame = 0; frame < 8 && run.Frame(frame % 3 == 2 ? 0.2f : 0.05f); ++frame) {
    }
    return 0;
}
