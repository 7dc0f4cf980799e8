// Any command line, applied as the game applies it, then keys pressed and let go over the
// frames of the game it sets up. The input is the arguments, separated by NUL bytes, up
// to a byte 0xFF, or 0xFE for a game without a title picture; each byte after it is one
// frame: its low five bits pick a key, the next bit holds it down or lets it go, the top
// two the frame's length. The frames are the game's work without their pictures, so that
// many inputs are tried: the keys, the rules and their events, the cards' logic.
// Malformed numbers end the real program through their exception; here that exception
// ends the input.
#include "game/TorvaneApp.h"

#include "engine/Assets.h"
#include "engine/Music.h"
#include "fuzz/ScratchFolder.h"
#include "game/rules/Lang.h"
#include "game/rules/Level.h"
#include "pge/Headless.h"
#include "pge/SdlSubsystem.h"
#include "tests/content/MemoryStore.h"

#include <SDL.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// The keys the game reads, and a few it ignores.
constexpr pge::Key kKeys[32] = {
    pge::LEFT, pge::RIGHT, pge::UP,   pge::DOWN, pge::SPACE, pge::ENTER, pge::ESCAPE, pge::TAB,
    pge::BACK, pge::DEL,   pge::S,    pge::L,    pge::P,     pge::E,     pge::A,      pge::D,
    pge::R,    pge::T,     pge::Q,    pge::K1,   pge::K0,    pge::N,     pge::Z,      pge::F1,
    pge::SHIFT, pge::CTRL, pge::HOME, pge::END,  pge::PGUP,  pge::NP_ADD, pge::PERIOD, pge::MINUS};
constexpr float kFrames[4] = {0.016f, 0.05f, 0.2f, 1.0f};
// Sixteen keys pressed and let go: enough to reach a card and answer it.
constexpr size_t kMaxFrames = 32;

// The game's frames without their pictures, and the assets kept from one input to the
// next. The title picture is never drawn here: where the input wants one, a pixel stands
// in for it, as the keys only ask whether there is one.
struct Game : torvane::TorvaneApp {
    bool picture = true;
    bool OnUserCreate() override {
        const int32_t page = titlePage;
        if (!TorvaneApp::OnUserCreate()) return false;
        if (picture) {
            titleImage = std::make_unique<pge::Sprite>(1, 1);
            titlePage = page;
        }
        return true;
    }
    bool OnUserUpdate(float elapsed) override { return Step(elapsed); }
    bool OnUserDestroy() override { return true; }
};

// The player's one pack to begin with: two levels, all else at the format's defaults.
const std::map<std::string, std::string> kPacks = {
    {"Burg.tpack", "torvane-levelpack 1\nname=Burg\n\n[level]\nname=Tor\n\n[level]\nshots=9\ndirections=NO\n"}};

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    namespace fs = std::filesystem;
    // An empty asset tree, so that no picture is decoded for any input, and no data
    // folder: settings and scores are not kept, as without XDG_DATA_HOME and HOME.
    const std::string tree = fuzzing::ScratchFolder("torvane_fuzz_options");
    std::error_code ignored;
    fs::create_directories(tree + "/Resources/assets", ignored);
    fs::create_directories(tree + "/bin", ignored);
    adv::Assets::Init(tree + "/bin/torvane");
    unsetenv("XDG_DATA_HOME");
    unsetenv("HOME");
    adv::Music::Disable();
    // Each input's game starts SDL's pad subsystem and stops it again; held up here for the
    // whole run, that is only a count going up and down, not a search for devices.
    pge::StartSdlSubsystem(SDL_INIT_GAMECONTROLLER);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<std::string> args{"torvane"};
    std::string arg;
    size_t at = 0;
    for (; at <= size; ++at) {
        const bool end = at == size || data[at] >= 0xFE;
        if (end || data[at] == 0) {
            // Screenshots would write files anywhere the input names.
            if (arg.rfind("--screenshot=", 0) != 0) args.push_back(arg);
            arg.clear();
            if (end) break;
        } else {
            arg += char(data[at]);
        }
    }
    std::vector<const char*> argv;
    for (const std::string& a : args) argv.push_back(a.c_str());

    torvane::GetSettings() = torvane::Settings();
    torvane::SetLanguage(torvane::Language::English);
    Game app;
    app.picture = at == size || data[at] == 0xFF;
    // The player's packs in memory: the pack cycle and the editor work on them as on a
    // folder, and nothing of one input is kept for the next.
    torvane::testing_support::MemoryStore packs;
    *packs.files = kPacks;
    app.packStorage = packs.Storage();
    try {
        torvane::ApplyRunOptions(app, int(argv.size()), argv.data());
    } catch (const std::invalid_argument&) {
        return 0;
    } catch (const std::out_of_range&) {
        return 0;
    }
    pge::Headless run(app, 64, 40);
    if (!run.Create()) return 0;
    for (size_t i = at + 1, frames = 0; i < size && frames < kMaxFrames; ++i, ++frames) {
        run.SetKey(kKeys[data[i] & 31], (data[i] & 32) != 0);
        if (!run.Frame(kFrames[data[i] >> 6])) break;
    }
    return 0;
}
