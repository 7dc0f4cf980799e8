// Any text as a play script of "Der Vorabend" (--play=FILE), read from its file and run
// against the game, made once, for a few dozen steps. Only the script's own work runs:
// finding what a line names, pressing and letting go, checking what it expects; the
// game's frames do not. Lines that would write a screenshot are left out, as they would
// write files anywhere the input names.
#include "fuzz/ScratchFolder.h"
#include "pge/Headless.h"
#include "vorabend/PlayScript.h"
#include "vorabend/Story.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

struct Running {
    adv::AdventureGame game;
    pge::Headless run{game, adv::AdventureGame::kViewWidth, adv::AdventureGame::kViewHeight};
    Running() {
        game.SetContentBuilder(vorabend::BuildStory);
        run.Create();
        game.BeginPlay();
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Running s_running;
    static const std::string s_path = [] {
        const std::string folder = fuzzing::ScratchFolder("torvane_fuzz_play");
        std::filesystem::create_directories(folder);
        return folder + "/script.txt";
    }();
    {
        std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
        std::ofstream out(s_path, std::ios::binary | std::ios::trunc);
        for (std::string line; std::getline(in, line);)
            if (line.rfind("shot", 0) != 0) out << line << '\n';
    }
    vorabend::PlayScript play;
    if (!play.Load(s_path)) return 0;
    for (int step = 0; step < 48 && !play.Finished() && !play.Failed(); ++step) play.Step(s_running.game, 0.05f);
    return 0;
}
