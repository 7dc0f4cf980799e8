// Any bytes as a replay: a file when the first byte is even (unpacked, checked, then its
// stream), else the plain stream behind that byte. What reads is played for its first
// frames, so that its start and inputs reach the rules, the camera and the bot.
#include "game/content/ReplayFiles.h"
#include "game/rules/Level.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace torvane;
    if (size == 0) return 0;
    const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::string stream;
    replay::Error error;
    replay::Replay recording;
    if ((data[0] & 1) == 0 ? !replay::Unpack(bytes, stream, error) : (stream = bytes, false)) return 0;
    if (!replay::Decode(stream, recording, error)) {
        if (replay::Describe(error).empty()) __builtin_trap();
        return 0;
    }
    GetSettings() = Settings();
    replay::Members members{Game(1)};
    const replay::Session session = members.S();
    replay::Player player(std::move(recording));
    player.Begin(session);
    for (int frame = 0; frame < 200 && !player.Done(); ++frame) player.Frame(session, {});
    SetActivePack(nullptr);
    return 0;
}
