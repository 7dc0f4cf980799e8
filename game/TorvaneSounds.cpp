#include "game/TorvaneSounds.h"

#include "engine/Mixer.h"
#include "engine/Music.h"
#include "engine/Sound.h"
#include "engine/Synth.h"
#include "game/SfxDefs.h"

#include <chrono>
#include <cmath>
#include <future>
#include <iterator>
#include <map>
#include <vector>

namespace torvane::sounds {
namespace {

constexpr uint32_t kRate = 44100;

std::map<Sfx, int> s_ids;
std::map<int, int> s_whistles; // flight time in whole milliseconds -> clip
// Whistles being synthesised on threads of their own, by the same key.
std::map<int, std::future<std::vector<float>>> s_making;

// The effects made once, in the order of their clips.
constexpr Sfx kFixed[] = {Sfx::Tick,     Sfx::Place,    Sfx::Deny,   Sfx::Cannon, Sfx::Impact,
                          Sfx::Bell,     Sfx::Collapse, Sfx::Reward, Sfx::Horn};
std::future<std::vector<std::vector<float>>> s_fixed;

std::vector<std::vector<float>> FixedEffects() {
    std::vector<std::vector<float>> made;
    for (const Sfx effect : kFixed) {
        adv::synth::Buffer buffer;
        sfx::Build(effect, buffer);
        adv::synth::Clip(buffer);
        made.push_back(std::move(buffer.samples));
    }
    return made;
}

int WhistleKey(float seconds) { return int(std::lround(seconds * 1000.0f)); }

// Whistles are quiet enough on their own and are not limited.
std::vector<float> WhistleSamples(float seconds) {
    adv::synth::Buffer buffer;
    sfx::BuildWhistle(seconds, buffer);
    return std::move(buffer.samples);
}

} // namespace

void Init() {
    if (!adv::Music::Engine() || !s_ids.empty()) return;
    // Synthesised on a thread of their own once there is an engine to play them, and taken
    // in by the first frame that finds them made; an engine without a device (tests) waits.
    if (!s_fixed.valid()) s_fixed = std::async(std::launch::async, FixedEffects);
    if (!adv::mixer::Offline() && s_fixed.wait_for(std::chrono::seconds(0)) != std::future_status::ready) return;
    std::vector<std::vector<float>> made = s_fixed.get();
    for (size_t i = 0; i < std::size(kFixed); ++i) s_ids[kFixed[i]] = adv::Sound::Add(std::move(made[i]), kRate);
}

void Clear() {
    adv::Sound::Clear();
    s_ids.clear();
    s_whistles.clear();
    s_making.clear(); // waits for any still being made
    s_fixed = {};
}

void PrepareWhistle(float seconds) {
    if (!adv::Music::Engine() || !(seconds > 0.0f)) return;
    const int key = WhistleKey(seconds);
    if (s_whistles.count(key) != 0 || s_making.count(key) != 0) return;
    s_making.emplace(key, std::async(std::launch::async, WhistleSamples, seconds));
}

void Play(Sfx effect, float seconds) {
    if (!adv::Music::Engine()) return;
    if (effect != Sfx::Whistle) {
        const auto found = s_ids.find(effect);
        if (found != s_ids.end()) adv::Sound::Play(found->second, 1.0f);
        return;
    }
    if (!(seconds > 0.0f)) return;
    const int key = WhistleKey(seconds);
    auto found = s_whistles.find(key);
    if (found == s_whistles.end()) {
        // Made ahead (waiting for the rest, if any), else now.
        std::vector<float> samples;
        const auto making = s_making.find(key);
        if (making != s_making.end()) {
            samples = making->second.get();
            s_making.erase(making);
        } else {
            samples = WhistleSamples(seconds);
        }
        found = s_whistles.emplace(key, adv::Sound::Add(std::move(samples), kRate)).first;
    }
    adv::Sound::Play(found->second, 1.0f);
}

Track MusicFor(Phase phase) {
    switch (phase) {
    case Phase::Title: return {"torvane/music/title.mp3", true, 1.2f};
    case Phase::Build:
    case Phase::Inspect: return {"torvane/music/build.mp3", true, 1.2f};
    case Phase::Announce:
    case Phase::Attack: return {"torvane/music/defend.mp3", true, 0.8f};
    case Phase::Eval: return {"torvane/music/levelwon.mp3", false, 0.3f};
    case Phase::Over: return {"torvane/music/defeated.mp3", false, 0.3f};
    }
    return {};
}

void PlayMusicFor(Phase phase) {
    const Track track = MusicFor(phase);
    if (!track.path.empty()) adv::Music::Play(track.path, track.loop, track.fadeSeconds);
}

} // namespace torvane::sounds
