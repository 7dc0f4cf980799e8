// Any bytes as the picture of an adventure's scene: the game goes into the scene, its
// player walks to the far end of it with the camera after him and back, and frames are
// drawn on a small screen, which clips the same drawing. The game is the tests' small
// adventure with a third scene whose background is that picture file; it is made once,
// and the picture read anew for each input.
#include "engine/Assets.h"
#include "fuzz/ScratchFolder.h"
#include "tests/engine/adventure/TestGame.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

constexpr const char* kPicture = "scene/picture.png";

// A floor along the bottom of a scene wider than the view, under the picture.
class Pictured : public adv::SceneDefinition {
public:
    void Build(adv::AdventureGame&, adv::Scene& s) override {
        s.background = kPicture;
        s.walkArea.outer = adv::Polygon::Rect(0, 100, 1200, 76);
        s.SetEntry("default", {30, 150}, adv::Facing::Right);
    }
};

struct Running {
    adv::AdventureGame game;
    pge::Headless run{game, 48, 30};
    Running() {
        game.SetContentBuilder([](adv::AdventureGame& g) {
            adv::testing::BuildTestContent(g);
            g.RegisterScene("pictured", std::make_unique<Pictured>());
        });
        run.Create();
        game.BeginPlay();
    }
};

std::string s_file;

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const std::string tree = fuzzing::ScratchFolder("torvane_fuzz_scene");
    std::filesystem::create_directories(tree + "/bin");
    std::filesystem::create_directories(tree + "/Resources/assets/scene");
    adv::Assets::Init(tree + "/bin/vorabend");
    s_file = adv::Assets::Root() + "/" + kPicture;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Running s_running;
    std::ofstream(s_file, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), std::streamsize(size));
    adv::Assets::Clear();
    adv::AdventureGame& game = s_running.game;
    game.ChangeScene("pictured", "default");
    game.WalkPlayerTo({float(game.current->Width()) - 10.0f, 150.0f});
    for (int frame = 0; frame < 3; ++frame) s_running.run.Frame(0.3f);
    game.WalkPlayerTo({10.0f, 120.0f});
    s_running.run.Frame(0.3f);
    return 0;
}
