// Any text as a saved game of the adventure framework: parsed, written and parsed again,
// and, when it reads, loaded into a running game, whose player then walks across the
// scene for a few frames. The game is the tests' small adventure of a room and a hall,
// made once; its frames are drawn on a small screen, which clips the same drawing.
#include "engine/adventure/SaveGame.h"
#include "tests/engine/adventure/TestGame.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

struct Running {
    adv::AdventureGame game;
    pge::Headless run{game, 48, 30};
    Running() {
        game.SetContentBuilder(adv::testing::BuildTestContent);
        run.Create();
        game.BeginPlay();
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Running s_running;
    adv::SaveData save;
    if (!adv::savegame::Parse(std::string(reinterpret_cast<const char*>(data), size), save)) return 0;
    adv::SaveData again;
    adv::savegame::Parse(adv::savegame::Serialise(save), again);

    adv::AdventureGame& game = s_running.game;
    if (!game.RestoreState(save)) return 0;
    // Across the scene and back, from wherever the save put him.
    game.WalkPlayerTo({float(game.current->Width()) - 10.0f, 150.0f});
    for (int frame = 0; frame < 3; ++frame) s_running.run.Frame(0.2f);
    game.WalkPlayerTo({10.0f, 120.0f});
    s_running.run.Frame(0.2f);
    adv::savegame::Serialise(game.CaptureState());
    return 0;
}
