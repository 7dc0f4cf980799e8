// The stage: whole frames compared with reference pictures (the marks on the wall, the
// ghost on the active tower alone), and the landscape behind the tower with its theme.
#include "game/content/PackStorage.h"
#include "game/rules/AutoPlayer.h"
#include "game/rules/LevelPack.h"
#include "game/stage/Theme.h"
#include "tests/stage/PalettedTestImage.h"
#include "tests/stage/StageTestSupport.h"

#include <filesystem>
#include <random>

namespace torvane {
namespace {

using namespace testing_support;

using BackgroundTest = TowerViewFrameTest;

// Pieces on the ring, one over a gap, a ruin beside a placed piece of the same shape, a
// piece flashing that was placed 0.3 seconds ago, and no flash of one placed 1.3 seconds ago
// or on a tower that is not there.
TEST_F(TowerViewFrameTest, RingBuildPhase) {
    Game g = Started(false, 7, 1);
    const int top = g.ColumnTop(0, 0);
    const int stale = Lay(g, 0, 'O', 0, 0, top);
    Lay(g, 0, 'T', 0, 2, top);
    Lay(g, 0, 'I', 1, 30, top);
    g.AddPiece(0, 'I', {{31, top}, {31, top + 1}, {31, top + 2}, {31, top + 3}}, true);
    Lay(g, 0, 'L', 0, 5, top + 2); // over a gap
    g.clock = 4.0f;
    view.flashes.push_back({g.pieces.at(Lay(g, 0, 'S', 0, 27, top)).cells, 3.7f, 0});
    view.flashes.push_back({g.pieces.at(stale).cells, 2.7f, 0});
    view.flashes.push_back({g.pieces.at(stale).cells, 3.9f, 3}); // on a tower that does not exist
    g.cursorX = 1;
    DrawAt(g, 1.25f);
    ExpectMatchesReference(Screen(), "ring_build");
}

TEST_F(TowerViewFrameTest, RingAttackWithHoleAndTarget) {
    Game g = Started(false, 11, 2);
    const int top = WalledUnderFire(g);
    Lay(g, 0, 'I', 0, 0, top + 2);
    const int hit = Lay(g, 0, 'I', 0, 4, top + 2), aimed = Lay(g, 0, 'T', 0, 28, top + 2);
    const int prepped = Lay(g, 0, 'O', 0, 2, top + 3);
    // A hole where the piece at 4 was shot away, a target with no prep, one with a prep.
    const std::vector<Cell> holeCells = g.pieces.at(hit).cells;
    for (const Cell& c : holeCells) g.RemoveCell(0, c.x, c.y);
    g.pieces.erase(hit);
    g.holes.push_back(Hole{1, 0, holeCells, 8.0f, 11.0f, 0});
    const std::vector<Cell>& prep = g.pieces.at(prepped).cells;
    g.targets.push_back(Target{1, aimed, 0, 9.0f, 12.0f, g.pieces.at(aimed).cells, {}});
    g.targets.push_back(Target{2, prepped, 0, 9.5f, 13.0f, prep, {Prep{'1', {prep[0]}}}});
    g.focus = {Focus::Hole, 1};
    DrawAt(g, 2.35f); // the map's blips in their second colours (the ring under fire has the first)
    ExpectMatchesReference(Screen(), "ring_attack");
}

TEST_F(TowerViewFrameTest, ClassicLevelSevenWithFiveTowers) {
    Game g = Started(true, 3, 7);
    ASSERT_EQ(g.config.towers, 5);
    for (int t = 0; t < 5; ++t) {
        const int top = g.ColumnTop(t, 0);
        Lay(g, t, 'J', t, t, top);
        Lay(g, t, 'Z', 0, 4, top + 1 + t % 2);
    }
    g.activeTower = 2;
    g.cursorX = 3;
    g.clock = 2.0f;
    DrawAt(g, 0.5f, 0.0f);
    ExpectMatchesReference(Screen(), "classic_level7");
}

// What the view keeps between frames must never show. A game played by the bot, in random
// steps through building, attacks, ruins and new levels, on the ring with its turning camera
// and on five classic towers, is drawn by a view that keeps what it can and by one that
// works out every frame anew: every pixel of every frame is the same.
TEST_F(TowerViewFrameTest, KeptAndFreshFramesAreTheSame) {
    struct : pge::PixelEngine {
        bool OnUserCreate() override { return true; }
    } fresh;
    pge::Headless freshRun{fresh};
    ASSERT_TRUE(freshRun.Create());
    TowerView anew;
    std::mt19937 pick(99);
    for (const bool classic : {false, true}) {
        Game g = Started(classic, 5, classic ? 7 : 1);
        AutoPlayer bot;
        RingCamera ring;
        float time = 0.0f;
        for (int frame = 0; frame < 250; ++frame) {
            for (int step = std::uniform_int_distribution<int>(0, 24)(pick); step > 0; --step) {
                g.Update(0.05f);
                if (step % 2 == 0) bot.Step(g);
                if (g.phase == Phase::Over) g.NewGame();
            }
            const float dt = std::uniform_real_distribution<float>(0.0f, 0.1f)(pick);
            time += dt;
            ring.Update(g, dt);
            g.viewCentre = ring.angle;
            g.viewKnown = true;
            for (const Event& e : g.TakeEvents())
                if (e.kind != Event::Sound && e.kind != Event::Say && e.kind != Event::Banner) {
                    view.OnEvent(e, g);
                    anew.OnEvent(e, g);
                }
            view.Draw(engine, g, stage, time, ring.angle);
            anew.DropCaches();
            anew.Draw(fresh, g, stage, time, ring.angle);
            ASSERT_TRUE(Screen().pColData == fresh.GetDrawTarget()->pColData)
                << (classic ? "classic" : "ring") << " frame " << frame << " level " << g.level;
        }
    }
}

TEST_F(BackgroundTest, PalettedImageHangsFromTheTopOfTheScreenUnderTheVignette) {
    WriteWaterBackground(MakeAssetRoot("paletted_rows"));
    const Game g = Started(false, 5, 1);
    view.BuildBackground(g, view.ComputeLayout(g, stage));
    ASSERT_TRUE(view.indexed);
    // Vignette centre (320, 202.4), inner 368 * 0.35 = 128.8, outer 640 * 0.75 = 480:
    // (d - 128.8) / 351.2 * 71 is 50.5 at (0, 0) and 14.9 at (320, 0).
    EXPECT_EQ(view.vignette[0], 50);
    EXPECT_EQ(view.vignette[320], 14);
    // The water picture is shown 640 by 400 from the screen's top: the stage's top row,
    // screen row 18, shows image row 18 * 200 / 400 = 9.
    const pge::Pixel sky = TestPalette()[9 * 100 / 120];
    EXPECT_EQ(view.background->GetPixel(320, 0), pge::Pixel(sky.r * 241 / 255, sky.g * 241 / 255, sky.b * 241 / 255));
    // Every pixel of the water band is listed for cycling, and only those.
    size_t water = 0;
    for (int i = 0; i < 640 * 368; ++i) water += IndexAt(i % 640 / 2, (i / 640 + 18) / 2) >= 200;
    EXPECT_EQ(view.cyclePixels.size(), water);
}

// Made ahead on a thread of its own while a card stands, at another moment of its cycles, a
// landscape is the same to the pixel once a frame has drawn it, a step of the cycle later
// or none.
TEST_F(BackgroundTest, MadeAheadIsTheSameToThePixel) {
    WriteWaterBackground(MakeAssetRoot("paletted_ahead"));
    const Game g = Started(false, 5, 1);
    const TowerView::Layout layout = view.ComputeLayout(g, stage);
    for (const float time : {0.1f, 0.3f}) {
        TowerView ahead, now;
        ahead.Prepare(g.level, stage); // at time 0
        ahead.DrawBackground(engine, g, layout, time);
        now.lastTime = time;
        now.DrawBackground(engine, g, layout, time);
        EXPECT_EQ(ahead.background->pColData, now.background->pColData) << time;
        EXPECT_EQ(ahead.cyclePixels.size(), now.cyclePixels.size()) << time;
        EXPECT_EQ(ahead.cycleFrames, now.cycleFrames) << time;
    }
}

TEST_F(BackgroundTest, PalettedFrameWithCycle) {
    WriteWaterBackground(MakeAssetRoot("paletted_reference"));
    Game g = Started(false, 5, 1);
    g.cursorX = 3;
    DrawAt(g, 0.3f);
    ExpectMatchesReference(Screen(), "paletted_cycle");
}

TEST_F(BackgroundTest, DamagedCycleFilesAndFoldersForFilesFallBack) {
    // Frames beyond any image, or beyond this 320 by 200 one, would stretch the wall's map
    // over gigabytes: they are not used, and the grid stands where the ring puts it.
    const char* frames[] = {R"("centre_x": 1e300, "half_width": 40)", R"("centre_x": 160, "half_width": 1e6)",
                            R"("centre_x": 16000, "half_width": 16000)", R"("centre_x": 160, "half_width": 40)"};
    for (int i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        view = TowerView(); // the background is built afresh
        const std::string root = MakeAssetRoot("bad_frame_" + std::to_string(i));
        WriteWaterBackground(root);
        WriteText(root + "/torvane/color-cycles.json",
                  std::string(R"({"backgrounds": [{"file": "torvane-bg-01-desert-cycle.png", "tower_frame": {)") +
                      frames[i] + R"(, "rim_y": 60, "base_y": 180}}]})");
        const Game g = Started(false, 5, 1);
        DrawAt(g, 0.0f);
        // Only the last one fits.
        EXPECT_EQ(std::tuple(view.indexed != nullptr, view.frame.valid, view.layout.integrated),
                  std::tuple(true, i == 3, i == 3));
    }
    // A folder where the cycle file should be: one message, and the image stands still.
    std::string root = MakeAssetRoot("cycle_folder");
    WriteWaterBackground(root);
    std::filesystem::remove(root + "/torvane/color-cycles.json");
    std::filesystem::create_directory(root + "/torvane/color-cycles.json");
    view = TowerView();
    ::testing::internal::CaptureStderr();
    DrawAt(Started(false, 5, 1), 0.0f);
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("[torvane] Farbzyklen nicht lesbar: Datei fehlt: "),
              std::string::npos);
    EXPECT_TRUE(view.indexed && view.cycles.empty());
    // A folder where the image should be: the painted landscape.
    root = MakeAssetRoot("image_folder");
    std::filesystem::create_directory(root + "/torvane/torvane-bg-01-desert-cycle.png");
    view = TowerView();
    DrawAt(Started(false, 5, 1), 0.0f);
    EXPECT_FALSE(view.indexed);
}

// The theme of a level, its image key and the colour-cycle file.
using ThemeTest = RulesTest;

TEST_F(ThemeTest, LandscapeByLevelAndImageKeyByMode) {
    for (const auto& [level, index] : {std::pair{1, 0}, std::pair{6, 0}, std::pair{0, 4}, std::pair{-1, 3}})
        EXPECT_EQ(BackgroundIndex(level), index) << level;
    LevelPack pack;
    pack.levels.resize(2);
    pack.levels[1].background = 5;
    SetActivePack(&pack);
    EXPECT_EQ(std::pair(BackgroundIndex(2), BackgroundIndex(3)), std::pair(4, 2)); // beyond the pack: the turn again
    // The image key prefers the painted tower, on rings only.
    const std::string root = MakeAssetRoot("theme_keys");
    const Theme& theme = ThemeFor(1);
    GetSettings().classic = 0;
    EXPECT_EQ(BackgroundFor(theme), theme.background); // the integrated file is missing
    WriteText(root + "/" + theme.integrated, "x");
    EXPECT_EQ(BackgroundFor(theme), theme.integrated);
    GetSettings().classic = 1;
    EXPECT_EQ(BackgroundFor(theme), theme.background);
}

TEST_F(ThemeTest, ColourCycleFile) {
    WriteText(MakeAssetRoot("theme_cycles") + "/torvane/color-cycles.json", R"({"backgrounds": [
        {"file": "a.png", "palette_start": 3.7, "palette_end": 9.2, "fps": 4, "direction": -0.5,
         "tower_frame": {"centre_x": 160, "half_width": 40, "rim_y": 60, "base_y": 180}},
        {"file": "b.png", "palette_start": 10, "palette_end": 20, "fps": 0, "direction": -1},
        {"file": "a.png", "palette_start": 30, "palette_end": 33, "fps": 2, "direction": -1},
        {"file": "b.png", "tower_frame": {"centre_x": 1, "half_width": 2, "rim_y": 3, "base_y": 4}},
        {"file": "b.png", "tower_frame": {"rim_y": 7}},
        {"file": "c.png", "palette_start": 1e10, "palette_end": nan, "direction": -1e10, "fps": 1e300},
        {"file": "c.png", "palette_start": -1e10, "palette_end": 5, "direction": nan, "fps": nan}
    ]})");
    const std::vector<adv::PaletteCycle>& a = ColorCyclesFor("torvane/a.png");
    ASSERT_EQ(a.size(), 2u); // two objects of one file, in file order
    // Numbers are truncated: 9.2 to 9, and a direction of -0.5 to 0, which steps forward.
    EXPECT_EQ(std::tuple(a[0].end, a[0].direction, a[1].direction), std::tuple(9, 1, -1));
    EXPECT_EQ(&ColorCyclesFor("a.png"), &a); // the folder does not matter
    EXPECT_FLOAT_EQ(TowerFrameFor("some/folder/a.png").centre_x, 160.0f); // later objects keep it
    EXPECT_FLOAT_EQ(TowerFrameFor("b.png").rim_y, 7.0f);                  // the last frame wins
    // Objects without numbers give zero ranges stepping forward; fps 0 never steps.
    const std::vector<adv::PaletteCycle>& b = ColorCyclesFor("b.png");
    ASSERT_EQ(b.size(), 3u);
    EXPECT_EQ(std::pair(b[0].Frame(100.0f), b[2].direction), std::pair(0, 1));
    EXPECT_TRUE(ColorCyclesFor("d.png").empty());
    // Numbers beyond an int are held to it, and NaN is the default.
    const std::vector<adv::PaletteCycle>& c = ColorCyclesFor("c.png");
    ASSERT_EQ(c.size(), 2u);
    EXPECT_EQ(std::tuple(c[0].start, c[0].end, c[0].direction, c[1].start, c[1].direction),
              std::tuple(INT32_MAX, 0, -1, INT32_MIN, 1));
    for (const adv::PaletteCycle& cycle : c) EXPECT_EQ(cycle.Frame(12.5f), 0); // empty or endless ranges stand still
}

TEST_F(ThemeTest, UnreadableCycleFileIsReportedOnce) {
    WriteText(MakeAssetRoot("theme_bad_cycles") + "/torvane/color-cycles.json", "{\"backgrounds\": [");
    ::testing::internal::CaptureStderr();
    EXPECT_TRUE(ColorCyclesFor("a.png").empty());
    EXPECT_FALSE(TowerFrameFor("a.png").valid);
    const std::string said = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(said.rfind("[torvane] Farbzyklen nicht lesbar: ", 0), 0u) << said;
    EXPECT_EQ(said.find("Farbzyklen", 20), std::string::npos); // once only
}

} // namespace
} // namespace torvane
