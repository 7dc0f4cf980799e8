#include "game/TorvaneApp.h"

#include "engine/Assets.h"
#include "engine/Canvas.h"
#include "engine/Music.h"
#include "engine/PlatformKeys.h"
#include "engine/Screenshot.h"
#include "engine/Sound.h"
#include "game/content/Highscores.h"
#include "game/content/Preferences.h"
#include "game/content/ReplayFiles.h"
#include "game/rules/FrameSteps.h"
#include "game/rules/Lang.h"
#include "game/rules/Level.h"
#include "game/rules/LevelPack.h"
#include "game/TorvaneSounds.h"
#include "pge/WindowTitle.h"

#include <algorithm>
#include <cstdio>
#include <random>

namespace torvane {
namespace {

constexpr float kLogoSeconds = 3.3f;
// Between the HUD strip above and the help bar below.
constexpr StageRect kStage{0, 18, 640, 368};
constexpr const char* kLogoKey = "logo/logo.jpg";
constexpr const char* kTitleKey = "torvane/title.png";
// Window pixels per logical pixel that "--scale=" takes.
constexpr int32_t kMinScale = 1;
constexpr int32_t kMaxScale = 8;

// The phases' words, as "--exit-on=" takes them.
constexpr const char* kNames[] = {"title", "build", "inspect", "announce", "attack", "eval", "over"};

// True if arg starts with prefix; rest is then what follows it.
bool TakePrefix(const std::string& arg, const char* prefix, std::string& rest) {
    const std::string p(prefix);
    if (arg.compare(0, p.size(), p) != 0) return false;
    rest = arg.substr(p.size());
    return true;
}

// Opacity of the logo: in over 0.9 s, held to 2.5 s, out over 0.8 s.
float LogoOpacity(float t) {
    const float o = t < 0.9f ? t / 0.9f : (t <= 2.5f ? 1.0f : 1.0f - (t - 0.9f - 1.6f) / 0.8f);
    return std::clamp(o, 0.0f, 1.0f);
}

} // namespace

// A run without "--seed=" is a different game each time.
TorvaneApp::TorvaneApp() : game(std::random_device("default")()) {
    // Every game's recording: kept for the score list, and written where "--record=" says.
    recorder.finished = [this](std::string stream) {
        lastReplay = std::move(stream);
        if (!recordPath.empty() && !replay::Save(recordPath, lastReplay))
            std::fprintf(stderr, "[torvane] Konnte %s nicht schreiben\n", recordPath.c_str());
    };
    sAppName = "Torvane";
}

replay::Session TorvaneApp::Session() {
    return {game, camera, autoPlayer, autoTimer, lastPhase, lastLevel, autoplay, paused};
}

void TorvaneApp::Do(replay::Op op, float dt) { recorder.Do(Session(), op, dt); }

WindowOptions ApplyRunOptions(TorvaneApp& app, int argc, const char* const* argv) {
    WindowOptions window;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i] ? argv[i] : "";
        std::string rest;
        if (arg == "--no-sound") {
            adv::Music::Disable();
        } else if (arg == "--classic") {
            GetSettings().classic = 1;
        } else if (arg == "--log-keys") {
            adv::platformkeys::SetLogging(true);
        } else if (arg == "--skip-intro") {
            app.skipIntro = true;
        } else if (arg == "--settings") {
            app.settingsOpen = true;
            app.skipIntro = true;
        } else if (arg == "--editor") {
            app.editorScript.clear();
            app.openEditorAtStart = true;
            app.skipIntro = true;
        } else if (TakePrefix(arg, "--editor=", rest)) {
            app.editorScript = rest;
            app.openEditorAtStart = true;
            app.skipIntro = true;
        } else if (TakePrefix(arg, "--page=", rest)) {
            app.titlePage = std::stoi(rest);
            app.skipIntro = true;
        } else if (arg == "--windowed") {
            window.windowed = true;
        } else if (TakePrefix(arg, "--scale=", rest)) {
            window.scale = std::clamp(std::stoi(rest), kMinScale, kMaxScale);
        } else if (arg == "--pixel-perfect") {
            window.pixelPerfect = true;
        } else if (arg == "--vsync") {
            window.vsync = true;
        } else if (TakePrefix(arg, "--fps=", rest)) {
            window.fps = std::max(std::stoi(rest), 0);
        } else if (TakePrefix(arg, "--pad-script=", rest)) {
            app.padScriptText = rest;
        } else if (arg == "--autoplay") {
            app.autoplay = true;
            app.autoPlayer.repairs = true;
        } else if (arg == "--autoplay=lazy") {
            app.autoplay = true;
            app.autoPlayer.repairs = false;
        } else if (TakePrefix(arg, "--level=", rest)) {
            app.startLevel = std::min(std::stoi(rest), kMaxLevel);
        } else if (TakePrefix(arg, "--seed=", rest)) {
            app.game = Game(unsigned(std::stoul(rest)));
        } else if (TakePrefix(arg, "--exit-after=", rest)) {
            app.exitAt = std::stof(rest);
        } else if (TakePrefix(arg, "--screenshot=", rest)) {
            app.screenshotPath = rest;
        } else if (TakePrefix(arg, "--exit-on=", rest)) {
            app.exitOnPhase = rest;
        } else if (TakePrefix(arg, "--record=", rest)) {
            app.recordPath = rest;
        } else if (TakePrefix(arg, "--replay=", rest)) {
            app.replayPath = rest;
            app.skipIntro = true;
        }
    }
    return window;
}

bool TorvaneApp::OnUserCreate() {
    adv::SetWindowTitle("Torvane");
    adv::platformkeys::Install(this);
    adv::platformkeys::IgnoreKeyRepeat(true);
    // The device opens in the background; the effects are made once it is there.
    adv::Music::InitInBackground();
    // Without pads the game is the same.
    if (EnablePads() && !padScriptText.empty()) padScript = std::make_unique<PadScript>(padScriptText);

    if (!adv::Assets::Missing(kTitleKey)) {
        if (const pge::Sprite* picture = adv::Assets::Sprite(kTitleKey)->Sprite())
            titleImage = adv::canvas::Downscale(*picture, 640, 400);
    }
    // Without a title picture the game opens on the first title page.
    if (!titleImage) titlePage = 0;

    preferences::Load();
    // The bot's own choices, for this run only: it never saves.
    if (autoplay) {
        GetSettings().auto_rotate = true;
        GetSettings().repair_mode = 1;
    }
    LoadScores();
    SetUpPacks();
    RefreshPacks();
    ApplyPack();
    if (openEditorAtStart) OpenEditor();

    // A level is always laid out: the title screen shows it behind its card.
    if (startLevel < 1) {
        game.StartLevel(1);
        game.phase = Phase::Title;
    } else {
        Do({replay::Op::NewGame});
        if (startLevel > 1) Do({replay::Op::StartLevel, startLevel});
    }
    lastPhase = game.phase;
    lastLevel = game.level;
    // The first landscape is made while the window's first frame comes up.
    view.Prepare(game.level, kStage);

    if (skipIntro || startLevel != 0 || autoplay) {
        PlayMusicFor(game.phase);
    } else {
        logoTime = 0.0f; // the music follows the logo
    }
    Do({replay::Op::DropEvents});
    SetPadKeys(pad::KeysFor(PadContext()));
    if (!replayPath.empty()) StartWatching(replayPath);
    return true;
}

bool TorvaneApp::OnUserUpdate(float elapsed) {
    if (!Step(elapsed)) return false;
    DrawFrame();
    return FinishFrame();
}

bool TorvaneApp::Step(float elapsed) {
    const float dt = frame::RulesStep(elapsed);
    clock += elapsed;
    adv::Sound::Update();
    adv::Music::Update(dt);
    sounds::Init();
    if (padScript) padScript->Step(elapsed, kNames[int(game.phase)]);
    if (GetKey(pge::F11).bPressed) SetFullScreen(!IsFullScreen());

    logoFrame = logoTime >= 0.0f;
    if (logoFrame) {
        UpdateLogo(dt);
        return true;
    }

    if (watching) {
        StepWatching(elapsed);
    } else {
        HandleInput(dt);
        if (quit) return false;

        frame::Hooks hooks;
        hooks.beforeRestart = [this] {
            ApplyPack();
            nameEntry = false;
            scoreSaved = false;
            attractScores = false;
        };
        hooks.phaseChanged = [this](Phase from, Phase to) { OnPhaseChanged(from, to); };
        ProcessEvents(recorder.Frame(Session(), dt, hooks));
    }
    PrepareAhead();

    if (testHintAt >= 0.0f && clock >= testHintAt) {
        testHintAt = -1.0f;
        if (testing) {
            message = Tr("Test: Esc führt zurück in den Editor");
            messageUntil = clock + 3.0f;
        }
    }
    return true;
}

void TorvaneApp::DrawFrame() {
    if (logoFrame) {
        // The frame that ends the logo keeps the picture it had.
        if (logoTime >= 0.0f) DrawLogo();
        return;
    }
    // Made anew by the drawing below; input reads the frame before's.
    buttons.clear();
    if (game.phase == Phase::Title && titleImage) {
        DrawTitleScreen();
        return;
    }

    Clear(kBg);
    view.Draw(*this, game, kStage, clock, camera.angle);
    if (clock < messageUntil) view.DrawMessage(*this, message, std::min((messageUntil - clock) / 0.3f, 1.0f));
    if (game.phase == Phase::Attack && bannerUntil > game.clock) DrawBanner();
    DrawHud();
    DrawHelp();
    DrawOverlay();
}

bool TorvaneApp::OnUserDestroy() {
    // The game in play when the run ends keeps its recording.
    if (watching) StopWatching();
    recorder.End(Session());
    // The virtual pad goes before the engine lets go of the pads.
    padScript.reset();
    adv::Music::Shutdown();
    // Also forgets the effects' ids, so that a later start in this process makes them anew.
    sounds::Clear();
    adv::Assets::Clear();
    return true;
}

void TorvaneApp::PlayMusicFor(Phase phase) { sounds::PlayMusicFor(phase); }

void TorvaneApp::PrepareAhead() {
    switch (game.phase) {
    case Phase::Title:
    case Phase::Over: view.Prepare(1, kStage); break;
    case Phase::Eval: view.Prepare(game.LastLevel() ? 1 : game.level + 1, kStage); break;
    case Phase::Build:
    case Phase::Inspect:
    case Phase::Announce: sounds::PrepareWhistle(game.config.flightTime); break;
    case Phase::Attack: break;
    }
}

void TorvaneApp::OnPhaseChanged(Phase, Phase to) {
    PlayMusicFor(to);
    const int index = int(to);
    if (!exitOnPhase.empty() && index >= 0 && index < int(std::size(kNames)) && exitOnPhase == kNames[index])
        exitAt = clock + 0.3f;
    // The bot's pause at a card is set by frame::RunRules before this call.
    phaseStart = clock;
    if (to == Phase::Title || to == Phase::Build) view.Reset();
    if (to == Phase::Title) {
        titlePage = titleImage ? -1 : 0;
        LoadScores();
    }
    if (to == Phase::Over) {
        // Scores of level packs, of the bot and of a replay are never recorded.
        LoadScores();
        nameEntry = !watching && !autoplay && !ActivePack() && highscores::Qualifies(scores, game.score);
        scoreSaved = false;
        highlightRow = -1;
        playerName.clear();
        lastKeySerial = adv::platformkeys::LastPress().serial;
    }
}

void TorvaneApp::ProcessEvents(const std::vector<Event>& events) {
    for (const Event& event : events) {
        switch (event.kind) {
        case Event::Say:
            message = event.text;
            messageUntil = clock + 1.8f;
            break;
        case Event::Banner:
            bannerText = event.text;
            bannerUntil = game.clock + event.value;
            break;
        case Event::Sound:
            sounds::Play(event.sfx, event.value);
            break;
        default: view.OnEvent(event, game); break;
        }
    }
}

bool TorvaneApp::FinishFrame() {
    // The next frame's pad buttons stand for the keys of what this frame left on the screen.
    SetPadKeys(pad::KeysFor(PadContext()));
    // Only a time above 0 counts, so a NaN never ends the run.
    if (!(exitAt > 0.0f) || exitAt > clock) return true;
    quit = true;
    if (!screenshotPath.empty()) {
        if (adv::screenshot::SavePng(*GetDrawTarget(), screenshotPath)) {
            std::fprintf(stderr, "[torvane] Bildschirmfoto: %s\n", screenshotPath.c_str());
        } else {
            std::fprintf(stderr, "[torvane] Konnte %s nicht schreiben\n", screenshotPath.c_str());
        }
    }
    return false;
}

void TorvaneApp::UpdateLogo(float dt) {
    logoTime += dt;
    const bool skipped = GetMouse(0).bPressed || GetKey(pge::SPACE).bPressed ||
                         GetKey(pge::ENTER).bPressed || GetKey(pge::ESCAPE).bPressed;
    if (skipped || logoTime >= kLogoSeconds) {
        phaseStart = clock;
        logoTime = -1.0f;
        PlayMusicFor(game.phase);
    }
}

void TorvaneApp::DrawLogo() {
    Clear(pge::BLACK);
    // Without a logo that decodes, the intro stays black.
    if (adv::Assets::Missing(kLogoKey) || adv::Assets::Failed(kLogoKey)) return;
    const pge::Sprite* logo = adv::Assets::Sprite(kLogoKey)->Sprite();
    if (!logo || logo->width < 1 || logo->height < 1) return;

    const float opacity = LogoOpacity(logoTime);
    const int scale = std::max(1, int(std::min(537.6f / float(logo->width), 200.0f / float(logo->height))));
    const int left = (640 - logo->width * scale) / 2;
    const int top = (400 - logo->height * scale) / 2;
    pge::Sprite* target = GetDrawTarget();
    for (int y = 0; y < logo->height; ++y)
        for (int x = 0; x < logo->width; ++x)
            adv::canvas::FillRect(target, left + x * scale, top + y * scale, scale, scale,
                                  adv::canvas::WithAlpha(logo->GetPixel(x, y), opacity));
}

} // namespace torvane
