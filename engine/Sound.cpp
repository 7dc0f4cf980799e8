#include "engine/Sound.h"

#include "engine/Mixer.h"
#include "engine/Music.h"

#include <algorithm>
#include <memory>

namespace adv::Sound {
namespace {

struct Clip {
    std::vector<float> samples;
    uint32_t sampleRate = 0;
};

// The mixer reads the clip's samples in place, so the clip is declared first and outlives the sound.
struct Voice {
    std::shared_ptr<const Clip> clip;
    mixer::SoundPtr sound;
};

std::vector<std::shared_ptr<const Clip>> s_clips;
std::vector<std::unique_ptr<Voice>> s_voices;
float s_volume = 0.8f;

void Start(std::shared_ptr<const Clip> clip, float volume) {
    mixer::Engine* engine = Music::Engine();
    if (!engine || !clip || clip->samples.empty()) return;
    if (s_voices.size() >= kMaxVoices) s_voices.erase(s_voices.begin());
    auto voice = std::make_unique<Voice>();
    voice->clip = std::move(clip);
    voice->sound =
        mixer::InitFromMemory(*engine, voice->clip->samples.data(), voice->clip->samples.size(), voice->clip->sampleRate);
    if (!voice->sound) return;
    mixer::SetVolume(*voice->sound, volume * s_volume);
    mixer::Start(*voice->sound);
    s_voices.push_back(std::move(voice));
}

} // namespace

int Add(std::vector<float> samples, uint32_t sampleRate) {
    s_clips.push_back(std::make_shared<const Clip>(Clip{std::move(samples), sampleRate}));
    return int(s_clips.size()) - 1;
}

void Play(int id, float volume) {
    if (id < 0 || size_t(id) >= s_clips.size()) return;
    Start(s_clips[size_t(id)], volume);
}

void PlayOnce(std::vector<float> samples, uint32_t sampleRate, float volume) {
    if (!Music::Engine()) return;
    Start(std::make_shared<const Clip>(Clip{std::move(samples), sampleRate}), volume);
}

void Update() {
    s_voices.erase(std::remove_if(s_voices.begin(), s_voices.end(),
                                  [](const std::unique_ptr<Voice>& v) { return !v->sound || mixer::AtEnd(*v->sound); }),
                   s_voices.end());
}

void StopAll() { s_voices.clear(); }

void Clear() {
    StopAll();
    s_clips.clear();
}

void SetVolume(float volume) { s_volume = std::clamp(volume, 0.0f, 1.0f); }

float Volume() { return s_volume; }

uint32_t ActiveVoices() { return uint32_t(s_voices.size()); }

} // namespace adv::Sound
