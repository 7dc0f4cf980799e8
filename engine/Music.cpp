#include "engine/Music.h"

#include "engine/Assets.h"
#include "engine/Sound.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <future>
#include <thread>
#include <vector>

namespace adv::Music {
namespace {

// The engine needs a little past the fade before a track may be destroyed.
constexpr float kFadeMargin = 0.25f;

struct Fading {
    mixer::SoundPtr track;
    float remaining = 0.0f;
};

mixer::EnginePtr s_engine;
bool s_disabled = false;
mixer::SoundPtr s_current;
std::string s_currentPath;
std::vector<Fading> s_fading;
float s_volume = 0.65f;

// The device being opened in the background: the opener's result, handed over once `s_opened`.
mixer::EnginePtr s_openedEngine;
std::atomic<bool> s_opened{false};
// Joined at the latest when the process ends, before the engine it hands over is destroyed.
struct Opener {
    std::thread thread;
    ~Opener() {
        if (thread.joinable()) thread.join();
    }
};
Opener s_opener;
// The track asked for while the device was being opened.
struct Pending {
    std::string path;
    bool loop = false;
    float fade = 0.0f;
};
Pending s_pending;

// A track being opened on a thread of its own, so that a frame never waits for its file; it
// starts at the first Update after it is there. Openings overtaken by a newer one are let go
// once they are done.
struct Opening {
    std::string path;
    bool loop = false;
    float fade = 0.0f;
    std::future<mixer::SoundPtr> track;
};
Opening s_opening;
std::vector<std::future<mixer::SoundPtr>> s_overtaken;

void NoDevice() { std::fprintf(stderr, "[musik] Kein Tongeraet verfuegbar - das Spiel laeuft ohne Musik.\n"); }

// Waits for the opener, if one runs, and takes its engine; whether there was one.
bool JoinOpener() {
    if (!s_opener.thread.joinable()) return false;
    s_opener.thread.join();
    s_opened = false;
    s_engine = std::move(s_openedEngine);
    if (!s_engine) NoDevice();
    Pending pending = std::move(s_pending);
    s_pending = Pending();
    if (s_engine && !pending.path.empty()) Play(pending.path, pending.loop, pending.fade);
    return true;
}

uint32_t Milliseconds(float seconds) { return seconds > 0.0f ? uint32_t(seconds * 1000.0f) : 0; }

bool Ready(const std::future<mixer::SoundPtr>& f) {
    return f.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

void DropOpening() {
    if (s_opening.track.valid()) s_overtaken.push_back(std::move(s_opening.track));
    s_opening = Opening();
}

std::string FileOf(const std::string& path) { return Assets::Root() + "/" + path; }

// Cross-fades from the current track to an opened one, or says that it could not be opened.
void StartTrack(mixer::SoundPtr track, const std::string& path, bool loop, float fadeSeconds) {
    if (!track) {
        std::fprintf(stderr, "[musik] Konnte '%s' nicht laden - die Musik laeuft weiter.\n", FileOf(path).c_str());
        return;
    }
    Stop(fadeSeconds);
    mixer::SetLooping(*track, loop);
    mixer::SetVolume(*track, s_volume);
    if (fadeSeconds > 0.0f) mixer::FadeIn(*track, Milliseconds(fadeSeconds));
    mixer::Start(*track);
    s_current = std::move(track);
    s_currentPath = path;
}

} // namespace

void Disable() { s_disabled = true; }

bool Init() {
    if (JoinOpener()) return bool(s_engine);
    if (s_disabled || s_engine) return bool(s_engine);
    s_engine = mixer::Init();
    if (!s_engine) NoDevice();
    return bool(s_engine);
}

void InitInBackground() {
    if (s_disabled || s_engine || s_opener.thread.joinable()) return;
    if (mixer::Offline()) {
        Init(); // nothing to wait for, and tests see the engine at once
        return;
    }
    s_opener.thread = std::thread([] {
        s_openedEngine = mixer::Init();
        s_opened = true;
    });
}

void Shutdown() {
    JoinOpener();
    s_pending = Pending();
    // Openings finish before their engine goes.
    DropOpening();
    s_overtaken.clear();
    if (!s_engine) return;
    Sound::StopAll();
    s_fading.clear();
    s_current.reset();
    s_currentPath.clear();
    s_engine.reset();
}

bool Available() { return bool(s_engine); }

const std::string& Current() { return s_currentPath; }

mixer::Engine* Engine() { return s_engine.get(); }

void Play(const std::string& path, bool loop, float fadeSeconds) {
    if (s_opener.thread.joinable() && !path.empty()) {
        s_pending = {path, loop, fadeSeconds};
        return;
    }
    if (!s_engine || path.empty()) return;
    if (s_current && path == s_currentPath && !mixer::AtEnd(*s_current)) {
        DropOpening();
        return;
    }
    if (s_opening.track.valid() && s_opening.path == path) return;
    DropOpening();
    // Tests drive an engine without a device and see the track at once.
    if (mixer::Offline()) {
        StartTrack(mixer::InitFromFile(*s_engine, FileOf(path)), path, loop, fadeSeconds);
        return;
    }
    mixer::Engine* engine = s_engine.get();
    s_opening = {path, loop, fadeSeconds,
                 std::async(std::launch::async, [engine, file = FileOf(path)] { return mixer::InitFromFile(*engine, file); })};
}

void Stop(float fadeSeconds) {
    s_pending = Pending();
    DropOpening();
    if (!s_engine || !s_current) return;
    mixer::StopWithFade(*s_current, Milliseconds(fadeSeconds));
    s_fading.push_back({std::move(s_current), fadeSeconds + kFadeMargin});
    s_currentPath.clear();
}

void Update(float dt) {
    if (s_opened) JoinOpener();
    if (!s_engine) return;
    if (s_opening.track.valid() && Ready(s_opening.track)) {
        Opening opened = std::move(s_opening);
        s_opening = Opening();
        StartTrack(opened.track.get(), opened.path, opened.loop, opened.fade);
    }
    s_overtaken.erase(std::remove_if(s_overtaken.begin(), s_overtaken.end(), Ready), s_overtaken.end());
    for (Fading& f : s_fading) f.remaining -= dt;
    s_fading.erase(std::remove_if(s_fading.begin(), s_fading.end(), [](const Fading& f) { return f.remaining <= 0.0f; }),
                   s_fading.end());
}

void SetVolume(float volume) {
    if (!s_engine) return;
    s_volume = std::clamp(volume, 0.0f, 1.0f);
    if (s_current) mixer::SetVolume(*s_current, s_volume);
}

float Volume() { return s_volume; }

} // namespace adv::Music
