// Any bytes as a music file, opened by the music loader and played as the game plays a
// track: faded in, looped, decoded ahead while it is mixed, and faded out.
#include "engine/Mixer.h"
#include "fuzz/ScratchFolder.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    namespace mixer = adv::mixer;
    static const std::string s_path = [] {
        const std::string folder = fuzzing::ScratchFolder("torvane_fuzz_mp3");
        std::filesystem::create_directories(folder);
        return folder + "/track.mp3";
    }();
    static const mixer::EnginePtr s_engine = mixer::InitOffline(44100);
    std::ofstream(s_path, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), std::streamsize(size));

    const mixer::SoundPtr track = mixer::InitFromFile(*s_engine, s_path);
    if (!track) return 0;
    mixer::SetLooping(*track, true);
    mixer::FadeIn(*track, 5);
    mixer::Start(*track);
    // Two short device buffers, the decoder's turn, and the fade out over a third.
    std::vector<float> out(256 * mixer::kChannels);
    for (int i = 0; i < 2; ++i) mixer::Render(*s_engine, out.data(), 256);
    mixer::Pump(*s_engine);
    mixer::StopWithFade(*track, 5);
    mixer::Render(*s_engine, out.data(), 256);
    return 0;
}
