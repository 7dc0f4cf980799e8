#include "game/TorvaneSounds.h"

#include "engine/Music.h"
#include "engine/Sound.h"
#include "engine/Synth.h"
#include "game/SfxDefs.h"

#include <cmath>
#include <map>

namespace torvane::sounds {
namespace {

constexpr uint32_t kRate = 44100;

std::map<Sfx, int> s_ids;
std::map<int, int> s_whistles; // flight time in whole milliseconds -> clip

} // namespace

void Init() {
    if (!adv::Music::Engine() || !s_ids.empty()) return;
    for (Sfx effect : {Sfx::Tick, Sfx::Place, Sfx::Deny, Sfx::Cannon, Sfx::Impact, Sfx::Bell, Sfx::Collapse,
                       Sfx::Reward, Sfx::Horn}) {
        adv::synth::Buffer buffer;
        sfx::Build(effect, buffer);
        adv::synth::Clip(buffer);
        s_ids[effect] = adv::Sound::Add(std::move(buffer.samples), kRate);
    }
}

void Clear() {
    adv::Sound::Clear();
    s_ids.clear();
    s_whistles.clear();
}

void Play(Sfx effect, float seconds) {
    if (!adv::Music::Engine()) return;
    if (effect != Sfx::Whistle) {
        const auto found = s_ids.find(effect);
        if (found != s_ids.end()) adv::Sound::Play(found->second, 1.0f);
        return;
    }
    if (!(seconds > 0.0f)) return;
    const int key = int(std::lround(seconds * 1000.0f));
    auto found = s_whistles.find(key);
    if (found == s_whistles.end()) {
        // Whistles are quiet enough on their own and are not limited.
        adv::synth::Buffer buffer;
        sfx::BuildWhistle(seconds, buffer);
        found = s_whistles.emplace(key, adv::Sound::Add(std::move(buffer.samples), kRate)).first;
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
