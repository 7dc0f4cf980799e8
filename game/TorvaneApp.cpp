#include "game/TorvaneApp.h"

#include "engine/PlatformKeys.h"
#include "engine/Screenshot.h"
#include "pge/WindowTitle.h"

#include <algorithm>
#include <cstdio>

namespace torvane {
namespace {

constexpr float kMaxStep = 0.05f;     // longest step the rules are given
constexpr float kLogoSeconds = 3.3f;

// True if arg starts with prefix; rest is then what follows it.
bool TakePrefix(const std::string& arg, const char* prefix, std::string& rest) {
    const std::string p(prefix);
    if (arg.compare(0, p.size(), p) != 0) return false;
    rest = arg.substr(p.size());
    return true;
}

} // namespace

TorvaneApp::TorvaneApp() { sAppName = "Torvane"; }

bool ApplyRunOptions(TorvaneApp& app, int argc, const char* const* argv) {
    bool windowed = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i] ? argv[i] : "";
        std::string rest;
        if (arg == "--no-sound") {
            // adv::Music::Disable() once the music module is there.
        } else if (arg == "--classic") {
            // GetSettings().classic = 1 once the level settings are there.
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
            windowed = true;
        } else if (arg == "--autoplay") {
            app.autoplay = true;
            // autoPlayer.repairs = true once the bot is there.
        } else if (arg == "--autoplay=lazy") {
            app.autoplay = true;
            // autoPlayer.repairs = false once the bot is there.
        } else if (TakePrefix(arg, "--level=", rest)) {
            app.startLevel = std::stoi(rest);
        } else if (TakePrefix(arg, "--seed=", rest)) {
            [[maybe_unused]] const unsigned long seed = std::stoul(rest);
            // app.game = Game(seed) once the rules are there.
        } else if (TakePrefix(arg, "--exit-after=", rest)) {
            app.exitAt = std::stof(rest);
        } else if (TakePrefix(arg, "--screenshot=", rest)) {
            app.screenshotPath = rest;
        } else if (TakePrefix(arg, "--exit-on=", rest)) {
            app.exitOnPhase = rest;
        }
    }
    return windowed;
}

bool TorvaneApp::OnUserCreate() {
    adv::SetWindowTitle("Torvane");
    adv::platformkeys::Install(this);
    adv::platformkeys::IgnoreKeyRepeat(true);
    // Music and sounds start here; then the title picture, preferences, scores and packs.
    // The start level or the title screen is laid out here.
    if (!(skipIntro || startLevel != 0 || autoplay)) logoTime = 0.0f;
    return true;
}

bool TorvaneApp::OnUserUpdate(float elapsed) {
    const float dt = std::min(elapsed, kMaxStep);
    clock += elapsed;
    // Sound and music update.
    if (logoTime >= 0.0f) {
        UpdateLogo(dt);
        return FinishFrame();
    }
    // HandleInput(dt).
    if (quit) return false;
    // The rules, the camera, the bot, phase changes, events and the test hint.
    // The buttons of the last frame are dropped here; the title screen returns early.
    Clear(kBg);
    // The stage, the message line, the banner, the HUD, the help bar and the overlay.
    return FinishFrame();
}

bool TorvaneApp::OnUserDestroy() {
    // Music, sounds and assets are shut down here while the graphics context lives.
    return true;
}

bool TorvaneApp::FinishFrame() {
    if (exitAt <= 0.0f || exitAt > clock) return true;
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
        // PlayMusicFor(phase) once the music is there.
        return;
    }
    Clear(pge::BLACK);
    // The logo picture fades in and out here once the assets and the canvas are there.
}

} // namespace torvane
