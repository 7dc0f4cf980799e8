#include "game/SfxDefs.h"

namespace torvane::sfx {
namespace {

using adv::synth::Envelope;
using adv::synth::Wave;

void Tone(adv::synth::Buffer& b, float hz, float seconds, Wave wave, float volume, float endHz, float start) {
    adv::synth::Tone(b, hz, seconds, wave, volume, endHz, start, Envelope::Decay);
}

} // namespace

void Build(Sfx effect, adv::synth::Buffer& b) {
    switch (effect) {
    case Sfx::Tick: Tone(b, 420, 0.05f, Wave::Square, 0.03f, 0, 0); break;
    case Sfx::Place:
        Tone(b, 160, 0.09f, Wave::Square, 0.06f, 90, 0);
        adv::synth::Noise(b, 0.08f, 900, 0.15f, 0, 11);
        break;
    case Sfx::Deny: Tone(b, 130, 0.14f, Wave::Saw, 0.05f, 0, 0); break;
    case Sfx::Cannon:
        adv::synth::Noise(b, 0.7f, 280, 0.9f, 0, 23);
        Tone(b, 85, 0.45f, Wave::Sine, 0.6f, 38, 0);
        break;
    case Sfx::Impact:
        adv::synth::Noise(b, 0.55f, 1300, 0.9f, 0, 37);
        Tone(b, 60, 0.35f, Wave::Sine, 0.55f, 28, 0);
        break;
    case Sfx::Bell:
        Tone(b, 1568, 0.4f, Wave::Triangle, 0.22f, 0, 0);
        Tone(b, 3136, 0.2f, Wave::Sine, 0.04f, 0, 0);
        break;
    case Sfx::Collapse: adv::synth::Noise(b, 1.2f, 650, 0.7f, 0, 51); break;
    case Sfx::Reward:
        Tone(b, 660, 0.12f, Wave::Triangle, 0.18f, 0, 0);
        Tone(b, 990, 0.2f, Wave::Triangle, 0.18f, 0, 0.1f);
        break;
    case Sfx::Horn:
        Tone(b, 220, 0.5f, Wave::Saw, 0.05f, 0, 0);
        Tone(b, 330, 0.6f, Wave::Saw, 0.04f, 0, 0.25f);
        break;
    case Sfx::Whistle: break; // made per flight time by BuildWhistle
    }
}

void BuildWhistle(float seconds, adv::synth::Buffer& b) {
    // Falls in pitch and swells until just before the ball lands.
    adv::synth::Tone(b, 2100, seconds, Wave::Sine, 0.06f, 520, 0, Envelope::Swell);
}

} // namespace torvane::sfx
