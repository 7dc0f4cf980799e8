// The application's replays: the score table's rows that have one, and watching one in
// the window, drawn as in play, faster or slower, until the card that tells whether it
// reached the recorded end.
#include "game/content/ReplayFiles.h"
#include "game/rules/Lang.h"
#include "game/TorvaneApp.h"

#include <algorithm>
#include <cstdio>

namespace torvane {
namespace {

// The speeds of a replay, a quarter to sixteen times as fast as recorded.
constexpr float kSlowest = 0.25f;
constexpr float kFastest = 16.0f;
// Frames played at most for one frame of the window; a long stall catches up in steps.
constexpr int kMostFramesAtOnce = 20000;

} // namespace

std::string TorvaneApp::ClockText(double seconds) {
    const long whole = std::max(0L, static_cast<long>(seconds));
    char text[32];
    std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
    return text;
}

std::string TorvaneApp::WatchStatus() const {
    const Watching& w = *watching;
    // 2×, 16×, and below one time 1/2× and 1/4×.
    const std::string speed =
        w.speed >= 1.0f ? std::to_string(int(w.speed)) + "×" : "1/" + std::to_string(int(1.0f / w.speed)) + "×";
    return Trf("Aufzeichnung {0} / {1} · {2}",
               {ClockText(w.player.Played()), ClockText(w.player.Seconds()), speed});
}

void TorvaneApp::LoadScores() {
    scores = highscores::Load();
    scoreReplays.clear();
    for (const highscores::Entry& entry : scores) scoreReplays.push_back(replay::Has(entry));
    scoreRow = -1;
}

bool TorvaneApp::HandleScoreTableKeys() {
    const auto pressed = [this](pge::Key k) { return GetKey(k).bPressed; };
    std::vector<int> rows;
    for (size_t i = 0; i < scores.size() && i < scoreReplays.size(); ++i)
        if (scoreReplays[i]) rows.push_back(int(i));
    if (rows.empty()) return false;
    if (pressed(pge::UP) || pressed(pge::DOWN)) {
        const bool down = pressed(pge::DOWN);
        const auto at = std::find(rows.begin(), rows.end(), scoreRow);
        // The list wraps round; the first press takes the top or the bottom row.
        if (at == rows.end()) {
            scoreRow = down ? rows.front() : rows.back();
        } else if (down) {
            scoreRow = at + 1 == rows.end() ? rows.front() : *(at + 1);
        } else {
            scoreRow = at == rows.begin() ? rows.back() : *(at - 1);
        }
        return true;
    }
    if (scoreRow >= 0 && pressed(pge::ENTER)) {
        Press(ButtonId::WatchReplay, scoreRow);
        return true;
    }
    return false;
}

void TorvaneApp::StartWatching(const std::string& path) {
    replay::Replay recording;
    replay::Error error;
    if (!replay::Load(path, recording, error)) {
        replayError = error;
        std::fprintf(stderr, "[torvane] Aufzeichnung beschädigt: %s (%s)\n",
                     replay::Describe(error, Language::German).c_str(), path.c_str());
        return;
    }
    // A game in play ends its recording here, before the replay takes the rules over.
    recorder.End(Session());
    watching = std::make_unique<Watching>(replay::Player(std::move(recording)), game);
    Watching& w = *watching;
    w.saved.camera = camera;
    w.saved.autoPlayer = autoPlayer;
    w.saved.autoTimer = autoTimer;
    w.saved.lastPhase = lastPhase;
    w.saved.lastLevel = lastLevel;
    w.saved.autoplay = autoplay;
    w.saved.paused = paused;
    w.settings = GetSettings();
    w.language = CurrentLanguage();
    if (const LevelPack* pack = ActivePack()) w.pack = *pack;
    w.revision = Tower::PeekRevision();
    w.player.Begin(Session());
    // As at a change of phase: its music, a fresh view, nothing left of the game before.
    messageUntil = 0.0f;
    bannerUntil = -1.0f;
    view.Reset();
    phaseStart = clock;
    PlayMusicFor(game.phase);
}

void TorvaneApp::StopWatching() {
    const replay::Members& w = watching->saved;
    game = w.game;
    camera = w.camera;
    autoPlayer = w.autoPlayer;
    autoTimer = w.autoTimer;
    lastPhase = w.lastPhase;
    lastLevel = w.lastLevel;
    autoplay = w.autoplay;
    paused = w.paused;
    GetSettings() = watching->settings;
    SetLanguage(watching->language);
    SetActivePack(watching->pack ? &*watching->pack : nullptr);
    Tower::SetNextRevision(watching->revision);
    watching.reset();
    messageUntil = 0.0f;
    bannerUntil = -1.0f;
    view.Reset();
    phaseStart = clock;
    // The list it was chosen from stands as long again.
    lastInputAt = attractSince = clock;
    PlayMusicFor(game.phase);
}

void TorvaneApp::StepWatching(float elapsed) {
    Watching& w = *watching;
    const auto pressed = [this](pge::Key k) { return GetKey(k).bPressed; };
    // Of the buttons drawn, only the way back answers: the cards of the game are pictures here.
    if (GetMouse(0).bPressed) {
        const pge::vi2d m = GetMousePos();
        for (const Button& b : buttons) {
            if (b.id == ButtonId::EndWatch && b.x <= m.x && m.x < b.x + b.w && b.y <= m.y && m.y < b.y + b.h) {
                Press(b.id, b.arg);
                return;
            }
        }
    }
    const bool ended = w.player.Done();
    if (pressed(pge::ESCAPE) || (ended && (pressed(pge::ENTER) || pressed(pge::SPACE)))) {
        StopWatching();
        return;
    }
    if (pressed(pge::SPACE)) w.held = !w.held;
    if (pressed(pge::RIGHT)) w.speed = std::min(w.speed * 2.0f, kFastest);
    if (pressed(pge::LEFT)) w.speed = std::max(w.speed / 2.0f, kSlowest);
    if (w.held || ended) return;

    // The recorded steps, only more or fewer of them in a frame of the window.
    w.time += static_cast<double>(elapsed) * w.speed;
    frame::Hooks hooks;
    hooks.phaseChanged = [this](Phase from, Phase to) { OnPhaseChanged(from, to); };
    // A game played without a window had no camera: this one only shows the tower.
    if (!w.player.Recording().start.cameraFollows) hooks.camera = [this](float step) { camera.Update(game, step); };
    for (int n = 0; n < kMostFramesAtOnce && !w.player.Done() && w.player.Played() < w.time; ++n)
        ProcessEvents(w.player.Frame(Session(), hooks));
}

} // namespace torvane
