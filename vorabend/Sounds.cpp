#include "vorabend/Sounds.h"

namespace vorabend::sounds {

namespace {

using adv::synth::Envelope;
using adv::synth::Wave;

} // namespace

adv::synth::Buffer Build(const std::string& name) {
    adv::synth::Buffer b;
    if (name == kStep) {
        // A soft heel on cobbles: a low knock and a little grit.
        adv::synth::Tone(b, 120, 0.07f, Wave::Sine, 0.22f, 70, 0, Envelope::Decay);
        adv::synth::Noise(b, 0.06f, 900, 0.6f, 0, 3);
    } else if (name == kDoor) {
        // The hinges creak as the door swings, then it knocks against the wall.
        adv::synth::Tone(b, 95, 0.45f, Wave::Saw, 0.05f, 125, 0, Envelope::Swell);
        adv::synth::Tone(b, 190, 0.45f, Wave::Saw, 0.025f, 250, 0, Envelope::Swell);
        adv::synth::Noise(b, 0.3f, 260, 1.6f, 0.42f, 7);
        adv::synth::Tone(b, 70, 0.3f, Wave::Sine, 0.5f, 40, 0.42f, Envelope::Decay);
    } else if (name == kPickUp) {
        // Cloth rustles and two small notes rise.
        adv::synth::Noise(b, 0.1f, 3000, 0.5f, 0, 5);
        adv::synth::Tone(b, 660, 0.1f, Wave::Triangle, 0.25f, 0, 0, Envelope::Decay);
        adv::synth::Tone(b, 990, 0.16f, Wave::Triangle, 0.25f, 0, 0.07f, Envelope::Decay);
    } else if (name == kFire) {
        // The oily rag flares up with a rush of air, a low swell and wood crackling.
        adv::synth::Noise(b, 1.6f, 600, 2.2f, 0, 9);
        adv::synth::Tone(b, 50, 0.8f, Wave::Sine, 0.35f, 95, 0, Envelope::Decay);
        const float crackles[] = {0.18f, 0.41f, 0.55f, 0.83f, 1.04f, 1.31f, 1.52f};
        for (int i = 0; i < 7; ++i) adv::synth::Noise(b, 0.03f, 5000, 0.5f, crackles[i], 20u + uint32_t(i));
    }
    return b;
}

void AddTo(adv::AdventureGame& game) {
    for (const char* name : {kStep, kDoor, kPickUp, kFire}) {
        adv::synth::Buffer b = Build(name);
        adv::synth::Clip(b);
        game.AddSound(name, std::move(b.samples));
    }
}

} // namespace vorabend::sounds
