#pragma once
// Shared set-up of the stage tests: a headless engine drawing whole frames, pieces laid
// by hand and the runner's sheets made by the test.
#include "engine/Assets.h"
#include "engine/Screenshot.h"
#include "game/rules/Pieces.h"
#include "game/stage/RingCamera.h"
#include "game/stage/TowerView.h"
#include "pge/Headless.h"
#include "tests/rules/RulesTestSupport.h"
#include "tests/stage/ReferencePicture.h"
#include "tests/ScratchPath.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

namespace torvane::testing_support {

using Pixels = std::vector<pge::Pixel>;

// A fresh asset tree below the build folder, made the asset root.
inline std::string MakeAssetRoot(const std::string& name) {
    const std::filesystem::path base = scratch::Path("tower_view_tests/" + name);
    std::filesystem::remove_all(base);
    std::filesystem::create_directories(base / "bin");
    std::filesystem::create_directories(base / "Resources" / "assets" / "torvane");
    adv::Assets::Init((base / "bin" / "torvane").string());
    adv::Assets::Clear(); // no image of an earlier tree
    return adv::Assets::Root();
}

// Lays a piece of the given rotation moved by (x, y) on a tower.
inline int Lay(Game& g, int tower, char type, int rotation, int x, int y) {
    std::vector<Cell> cells = Rotated(type, rotation);
    for (Cell& c : cells) c = Cell{g.WrapX(c.x + x), c.y + y};
    return g.AddPiece(tower, type, cells, false);
}

// The five sheets of the runner, 3 by 2 frames of 64 pixels: a body whose colour tells
// the sheet (red) and the frame (green), a head above it and a white mark at the body's
// right, which a mirrored frame shows at the left. The feet stand on row 59.
inline void WriteRunnerSheets(const std::string& root) {
    const char* keys[] = {"run-right", "run-left", "idle-right-stabilized", "drop-down-empty", "jump-right"};
    for (int s = 0; s < 5; ++s) {
        pge::Sprite sheet(192, 128);
        for (pge::Pixel& p : sheet.pColData) p = pge::Pixel(0, 0, 0, 0);
        for (int f = 0; f < 6; ++f)
            for (const auto& [x, y, w, h, c] :
                 {std::tuple{26, 30, 12, 30, pge::Pixel(uint8_t(60 + s * 40), uint8_t(40 + f * 40), 220)},
                  std::tuple{28, 20, 8, 9, pge::Pixel(240, 200, 160)}, std::tuple{38, 34, 4, 4, pge::Pixel(255, 255, 255)}})
                for (int j = y; j < y + h; ++j)
                    for (int i = x; i < x + w; ++i) sheet.SetPixel((f % 3) * 64 + i, (f / 3) * 64 + j, c);
        const std::string path = root + "/torvane/torvane-" + keys[s] + "-pixel-sheet.png";
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        adv::screenshot::SavePng(sheet, path);
    }
}


// A headless engine with its 640 by 400 draw target; no images: the painted landscape.
class TowerViewFrameTest : public RulesTest {
protected:
    void SetUp() override {
        RulesTest::SetUp();
        // A tree of its own, as ctest may run the tests of this program side by side.
        const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
        WriteRunnerSheets(MakeAssetRoot(std::string("painted_") + test->test_suite_name() + "_" + test->name()));
        ASSERT_TRUE(run.Create());
    }
    pge::Sprite& Screen() { return *engine.GetDrawTarget(); }
    // Draws at the camera's own start, or at `camera` when given; gives the screen.
    Pixels DrawAt(const Game& g, float time, float camera = -1.0f) {
        RingCamera ring;
        ring.Update(g, 0.0f);
        view.Draw(engine, g, stage, time, camera >= 0.0f ? camera : ring.angle);
        return Screen().pColData;
    }
    static Game Started(bool classic, unsigned seed, int level) {
        GetSettings().classic = classic ? 1 : 0;
        Game g(seed);
        g.StartLevel(level);
        return g;
    }
    // The ring walled all round with O pieces and under fire at clock 10; gives the wall's row.
    static int WalledUnderFire(Game& g) {
        const int top = g.ColumnTop(0, 0);
        for (int x = 0; x < 32; x += 2) Lay(g, 0, 'O', 0, x, top);
        g.phase = Phase::Attack;
        g.clock = 10.0f;
        return top;
    }
    static Event Effect(Event::Kind kind, std::vector<Cell> cells, int count, std::string text = "") {
        Event e;
        e.kind = kind;
        e.cells = std::move(cells);
        e.count = count;
        e.text = std::move(text);
        return e;
    }

    struct : pge::PixelEngine {
        bool OnUserCreate() override { return true; }
    } engine; // offers only its draw target
    pge::Headless run{engine};
    TowerView view;
    const StageRect stage{0, 18, 640, 368};
};

} // namespace torvane::testing_support
