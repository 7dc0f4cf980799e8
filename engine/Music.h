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
// Opens the device on a thread of its own, so that the caller never waits for it, nor for
// the audio system's shutdown when no device opens. Update takes the engine over once it is
// there; a track asked for before then starts at that moment.
void InitInBackground();
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
// Takes over an engine opened in the background; frees tracks whose fade-out is over.
// Once a frame, after adv::Sound::Update.
void Update(float dt);
// Clamped to 0..1; applies to the current track, not to fading ones.
void SetVolume(float volume);
float Volume();

} // namespace adv::Music
