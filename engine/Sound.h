#pragma once
// Sound effects: finished sample arrays kept as numbered clips and played as short-lived voices on
// the engine of adv::Music. All calls come from the frame thread.
#include <cstddef>
#include <cstdint>
#include <vector>

namespace adv::Sound {

// At most this many voices sound at once; a new one pushes out the oldest.
constexpr size_t kMaxVoices = 24;

// Takes the mono samples over as a new clip and returns its id; works without an engine too.
int Add(std::vector<float> samples, uint32_t sampleRate);
// Starts a voice for clip id at volume times the master volume; an unknown id does nothing.
void Play(int id, float volume);
// Plays samples that are not kept as a clip; the voice holds the only copy. Needs an engine.
void PlayOnce(std::vector<float> samples, uint32_t sampleRate, float volume);
// Removes finished voices; once a frame, before adv::Music::Update.
void Update();
// Cuts off every voice; the clips stay.
void StopAll();
// Cuts off every voice and forgets every clip.
void Clear();
// Clamped to 0..1; voices already sounding keep their level.
void SetVolume(float volume);
float Volume();
uint32_t ActiveVoices();

} // namespace adv::Sound
