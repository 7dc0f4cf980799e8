#include "engine/Music.h"

#include "engine/Assets.h"
#include "engine/Sound.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
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
Opener s_openerThread;
std::thread& s_opener = s_openerThread.thread;
// The track asked for while the device was being opened.
struct Pending {
    std::string path;
    bool loop = false;
    float fade = 0.0f;
};
Pending s_pending;

void NoDevice() { std::fprintf(stderr, "[musik] Kein Tongeraet verfuegbar - das Spiel laeuft ohne Musik.\n"); }

// Waits for the opener, if one runs, and takes its engine.
void JoinOpener() {
    if (!s_opener.joinable()) return;
    s_opener.join();
    s_opened = false;
    s_engine = std::move(s_openedEngine);
    if (!s_engine) NoDevice();
    Pending pending = std::move(s_pending);
    s_pending = Pending();
    if (s_engine && !pending.path.empty()) Play(pending.path, pending.loop, pending.fade);
}

uint32_t Milliseconds(float seconds) { return seconds > 0.0f ? uint32_t(seconds * 1000.0f) : 0; }

} // namespace

void Disable() { s_disabled = true; }

bool Init() {
    JoinOpener();
    if (s_disabled || s_engine) return bool(s_engine);
    s_engine = mixer::Init();
    if (!s_engine) NoDevice();
    return bool(s_engine);
}

void InitInBackground() {
    if (s_disabled || s_engine || s_opener.joinable()) return;
    if (mixer::Offline()) {
        Init(); // nothing to wait for, and tests see the engine at once
        return;
    }
    s_opener = std::thread([] {
        s_openedEngine = mixer::Init();
        s_opened = true;
    });
}

void Shutdown() {
    JoinOpener();
    s_pending = Pending();
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
    if (s_opener.joinable() && !path.empty()) {
        s_pending = {path, loop, fadeSeconds};
        return;
    }
    if (!s_engine || path.empty()) return;
    if (s_current && path == s_currentPath && !mixer::AtEnd(*s_current)) return;
    const std::string name = Assets::Root() + "/" + path;
    mixer::SoundPtr track = mixer::InitFromFile(*s_engine, name);
    if (!track) {
        std::fprintf(stderr, "[musik] Konnte '%s' nicht laden - die Musik laeuft weiter.\n", name.c_str());
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

void Stop(float fadeSeconds) {
    s_pending = Pending();
    if (!s_engine || !s_current) return;
    mixer::StopWithFade(*s_current, Milliseconds(fadeSeconds));
    s_fading.push_back({std::move(s_current), fadeSeconds + kFadeMargin});
    s_currentPath.clear();
}

void Update(float dt) {
    if (s_opened) JoinOpener();
    if (!s_engine) return;
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
