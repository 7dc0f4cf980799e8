#pragma once
// The game's sound effects as clips of adv::Sound, and its music for each phase.
#include "game/rules/TorvaneGame.h"

#include <string>

namespace torvane::sounds {

// Builds the clips of the fixed effects once the audio engine is there, synthesised on a
// thread of their own and taken in by a later call; called each frame, it does nothing
// before and after.
void Init();
// Forgets every clip, the effects' and all others (adv::Sound::Clear), so that a later Init
// builds them anew.
void Clear();
// Plays an effect; for Sfx::Whistle, `seconds` is the flight time, and each length in whole
// milliseconds is synthesised once.
void Play(Sfx effect, float seconds);
// Synthesises the whistle of a flight time on a thread of its own, so that the first shot of
// a level does not wait for it; nothing without an audio engine or when it exists already.
void PrepareWhistle(float seconds);

struct Track {
    std::string path; // asset path; empty: no music for that phase
    bool loop = false;
    float fadeSeconds = 0.0f;
};

// The music of a phase.
Track MusicFor(Phase phase);
// Starts the music of a phase; a track that already plays goes on.
void PlayMusicFor(Phase phase);

} // namespace torvane::sounds
