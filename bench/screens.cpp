// The cost of each screen's whole frame beside the bare stage frame, and of the
// screens' own drawing (HUD, help bar, banner, cards) alone, with the keys' caps and, after
// a press on a virtual pad, with its buttons'.
#include "game/rules/Level.h"
#include "game/TorvaneApp.h"
#include "pge/Headless.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>


namespace {

using torvane::Phase;
using torvane::TorvaneApp;

enum Screen { kTitleCard, kTitlePicture, kBuild, kAttack, kAnnounce, kEval, kOver, kScores, kPause, kSettings };
const char* const kScreenNames[] = {"title_card", "title_picture", "build", "attack", "announce",
                                    "eval",       "over",          "scores", "pause", "settings"};

// Puts the application into the screen; called before each frame, so that the rules'
// own course (a build running out, the attack ending) can't change what is measured.
void Enter(TorvaneApp& app, Screen screen, const pge::Sprite& picture) {
    app.paused = screen == kPause;
    app.settingsOpen = screen == kSettings;
    app.titleImage.reset();
    if (screen == kTitlePicture) {
        app.titleImage = std::make_unique<pge::Sprite>(picture.width, picture.height);
        app.titleImage->pColData = picture.pColData;
    }
    app.titlePage = screen == kTitlePicture ? -1 : 0;
    app.attractScores = false;
    app.scoreSaved = screen == kScores;
    app.nameEntry = screen == kOver;
    app.playerName = "Anna";
    app.scores = {{"Jörg", 9800, 5, 0}, {"Anna", 4570, 2, 0}, {"Torvane", 1200, 1, 0}};
    const Phase phases[] = {Phase::Title,    Phase::Title, Phase::Build, Phase::Attack, Phase::Announce,
                            Phase::Eval,     Phase::Over,  Phase::Over,  Phase::Build,  Phase::Build};
    app.game.phase = phases[screen];
    app.lastPhase = app.game.phase;
    app.game.buildLeft = 60.0f;
    app.game.shotsLeft = 5;
    app.bannerText = "Angriff von Norden!";
    app.bannerUntil = app.game.clock + 100.0f;
    app.message = "Bauabnahme bestanden";
    app.messageUntil = app.clock + 100.0f;
    app.phaseStart = app.clock; // no confirm in time: a frame never leaves its card
}

std::unique_ptr<pge::Sprite> Picture() {
    auto s = std::make_unique<pge::Sprite>(640, 400);
    for (int y = 0; y < 400; ++y)
        for (int x = 0; x < 640; ++x) s->SetPixel(x, y, pge::Pixel(uint8_t(x / 3), uint8_t(y / 2), 90));
    return s;
}

// What is timed: one whole frame, the stage alone, or the screens alone.
enum Part { kWholeFrame, kScreensOnly };

void Run(benchmark::State& state, Part part) {
    const Screen screen = Screen(state.range(0));
    const bool padUsed = state.range(1) != 0;
    state.SetLabel(std::string(kScreenNames[screen]) + (padUsed ? " pad" : ""));
    TorvaneApp app;
    app.skipIntro = true;
    pge::Headless run(app);
    if (!run.Create()) state.SkipWithError("OnUserCreate declined");
    pge::VirtualPad pad;
    if (padUsed) {
        if (!pad.Plug()) state.SkipWithError("no virtual pad");
        run.Frame(0.016f); // found
        // On the title, where the app stands now, RT stands for nothing.
        pad.Set(pge::PAD_RT, true);
        run.Frame(0.016f);
        pad.Set(pge::PAD_RT, false);
        run.Frame(0.016f);
        if (!app.PadUsedLast()) state.SkipWithError("the pad's press was not seen");
    }
    const auto picture = Picture();
    app.game.StartLevel(2);
    for (auto _ : state) {
        state.PauseTiming();
        Enter(app, screen, *picture);
        state.ResumeTiming();
        if (part == kWholeFrame) {
            run.Frame(0.016f);
        } else if (screen == kTitlePicture) {
            app.DrawTitleScreen();
        } else {
            if (app.game.phase == Phase::Attack) app.DrawBanner();
            app.DrawHud();
            app.DrawHelp();
            app.DrawOverlay();
        }
    }
}

// Every screen, with the keys' caps (0) and the pad's (1).
std::vector<std::vector<int64_t>> ScreensAndCaps() {
    return {benchmark::CreateDenseRange(kTitleCard, kSettings, 1), {0, 1}};
}

void BM_ScreenFrame(benchmark::State& state) { Run(state, kWholeFrame); }
BENCHMARK(BM_ScreenFrame)->ArgsProduct(ScreensAndCaps())->Unit(benchmark::kMicrosecond);

void BM_ScreensAlone(benchmark::State& state) { Run(state, kScreensOnly); }
BENCHMARK(BM_ScreensAlone)->ArgsProduct(ScreensAndCaps())->Unit(benchmark::kMicrosecond);

// The stage of the build screen, drawn as the frame draws it, with nothing over it.
void BM_BareStageFrame(benchmark::State& state) {
    TorvaneApp app;
    app.skipIntro = true;
    pge::Headless run(app);
    if (!run.Create()) state.SkipWithError("OnUserCreate declined");
    app.game.StartLevel(2);
    const torvane::StageRect stage{0, 18, 640, 368};
    float time = 0.0f;
    for (auto _ : state) {
        app.Clear(torvane::kBg);
        app.view.Draw(app, app.game, stage, time += 0.016f, app.camera.angle);
    }
}
BENCHMARK(BM_BareStageFrame)->Unit(benchmark::kMicrosecond);

} // namespace
