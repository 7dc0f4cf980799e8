#pragma once
// The process's one audio engine and its music: one streamed track at a time, cross-faded.
// All calls come from the frame thread.
#include "engine/Mixer.h"

#include <string>

namespace adv::Music {

// For --no-sound: Init will not open a device. An engine already running goes on.
void Disable();
// Starts the engine; whether it is ready. Prints a message when no device opens; may be retried.
bool Init();
// Stops all effect voices and every track, then closes the engine.
void Shutdown();
bool Available();
// The asset path of the track now playing, empty if none.
const std::string& Current();
// The engine while it is ready, else null; the effect voices play on it.
mixer::Engine* Engine();
// Starts the track at an asset path, fading the old one out while the new one fades in over
// fadeSeconds. The track that is already playing is never restarted.
void Play(const std::string& path, bool loop, float fadeSeconds);
void Stop(float fadeSeconds);
// Frees tracks whose fade-out is over; once a frame, after adv::Sound::Update.
void Update(float dt);
// Clamped to 0..1; applies to the current track, not to fading ones.
void SetVolume(float volume);
float Volume();

} // namespace adv::Music
