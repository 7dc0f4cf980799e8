// Any bytes as the colour-cycle file beside a small paletted background, read by the
// theme code: the background it gives, cycled at two moments, and a ring level's wall
// fitted to its tower frame.
#include "engine/Assets.h"
#include "fuzz/ScratchFolder.h"
#include "game/rules/Level.h"
#include "game/rules/TorvaneGame.h"
#include "game/stage/Theme.h"
#include "game/stage/TowerView.h"
#include "pge/Headless.h"
#include "tests/stage/PalettedTestImage.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

struct Screen : pge::PixelEngine {
    bool OnUserCreate() override { return true; }
};

// Two asset trees, used in turn: the cycle file is read once per asset root.
std::string s_roots[2];

void MakeRoots() {
    const std::string base = fuzzing::ScratchFolder("torvane_fuzz_cycles");
    std::vector<uint8_t> pixels(64 * 40);
    std::vector<pge::Pixel> palette;
    for (int i = 0; i < 256; ++i) palette.emplace_back(uint8_t(i), uint8_t(255 - i), uint8_t(i * 7));
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = uint8_t(i * 5 % 256);
    for (int k = 0; k < 2; ++k) {
        const std::string tree = base + "/" + std::to_string(k);
        std::filesystem::create_directories(tree + "/bin");
        std::filesystem::create_directories(tree + "/Resources/assets/torvane");
        s_roots[k] = tree;
        torvane::testing_support::WritePalettedPng(tree + "/Resources/assets/torvane/torvane-bg-01-desert-cycle.png",
                                                   64, 40, pixels, palette);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Screen s_screen;
    static pge::Headless s_run(s_screen);
    static const bool s_ready = (MakeRoots(), s_run.Create());
    static int s_turn = 0;
    // The rules' state and the view do not depend on the input: made once, the view's
    // background made anew for each input.
    static torvane::Game s_game = [] {
        torvane::GetSettings() = torvane::Settings();
        torvane::Game game(7);
        game.StartLevel(1);
        return game;
    }();
    static torvane::TowerView s_view;
    if (!s_ready) return 0;
    s_turn ^= 1;
    adv::Assets::Init(s_roots[s_turn] + "/bin/torvane");
    std::ofstream(adv::Assets::Root() + "/torvane/color-cycles.json", std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), std::streamsize(size));

    // What the file reaches: the background with its cycles, at two moments, and the
    // ring fitted to the painted tower's frame. A tenth of the stage: the same code, faster.
    const torvane::StageRect stage{0, 18, 64, 37};
    s_view.Reset();
    s_view.BuildBackground(s_game, s_view.ComputeLayout(s_game, stage));
    const torvane::TowerView::Layout layout = s_view.ComputeLayout(s_game, stage);
    s_view.DrawBackground(s_screen, s_game, layout, 0.0f);
    s_view.DrawBackground(s_screen, s_game, layout, 3.5f);
    s_view.DrawWall(s_screen.GetDrawTarget(), s_game, s_view.TowerGeo(layout, 0), 0);
    const std::string key = torvane::BackgroundFor(torvane::ThemeFor(1));
    for (const adv::PaletteCycle& c : torvane::ColorCyclesFor(key)) c.Frame(-2.5f);
    return 0;
}
