// Replays: games recorded through the recorder play again to the recorded state at every
// frame, whatever came from outside; damaged files are refused with what and where.
#include "game/content/PackFormat.h"
#include "game/content/ReplayFiles.h"
#include "game/rules/Level.h"
#include "game/rules/StateHash.h"
#include "tests/content/ContentTestSupport.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <random>

namespace torvane::replay {
namespace {

struct Owner : Members {
    explicit Owner(unsigned seed) : Members(Game(seed)) { autoplay = true; }
};

// The recorded game ends when it reaches one level more than `levels`; `extra` is what a
// case does besides the bot, before frame `n`.
struct Case {
    bool classic, pack;
    int levels;
    std::function<void(Owner&, Recorder&, int n, float dt)> extra;
};

class ReplayTest : public testing_support::RulesTest, public ::testing::WithParamInterface<Case> {};

TEST_P(ReplayTest, EveryFrameReachesTheRecordedState) {
    const Case& c = GetParam();
    GetSettings().classic = c.classic;
    LevelPack pack{"Zwei", "Zwei.tpack", {DefaultPackLevel(1), DefaultPackLevel(2)}};
    pack.levels[0].name = "Stufe 1", pack.levels[1].name = "Stufe 2", pack.levels[1].directions = "SW";
    pack.levels[0].shots = pack.levels[1].shots = 3;
    if (c.pack) SetActivePack(&pack);
    // A first game of some minutes, so that the recorded second one takes a used engine and
    // counters over; then the recorded game to `levels` levels, at frame steps of 60 to the
    // second on the tick grid with jitter, a few off it.
    std::vector<std::string> replays;
    std::vector<uint64_t> hashes;  // the recorded game's state after every frame
    Owner recording(7);
    Recorder recorder;
    recorder.finished = [&replays](std::string stream) { replays.push_back(std::move(stream)); };
    std::mt19937 jitter(3);
    const auto step = [&](int n) {
        return n % 97 == 0 ? 1.0f / 61.0f : static_cast<float>(1600 + jitter() % 200) / 100000.0f;
    };
    recorder.Do(recording.S(), {Op::NewGame}, 0.0f);
    for (int n = 0; n < 3000; ++n) recorder.Frame(recording.S(), step(n), {});
    recorder.Do(recording.S(), {Op::NewGame}, 0.0f);
    const Game& g = recording.game;
    for (int n = 0; g.level <= c.levels && g.phase != Phase::Over && n < 60000; ++n) {
        const float dt = step(n);
        if (c.extra) c.extra(recording, recorder, n, dt);
        recorder.Frame(recording.S(), dt, {});
        hashes.push_back(StateHash(g));
    }
    recorder.End(recording.S());
    ASSERT_EQ(replays.size(), 2u);

    // Another world: other settings, no pack, another language, a used revision counter.
    GetSettings() = Settings{};
    GetSettings().difficulty = 3;
    SetActivePack(nullptr);
    SetLanguage(Language::English);
    Tower::SetNextRevision(12345);
    Replay replay;
    Error error;
    ASSERT_TRUE(Decode(replays[1], replay, error)) << Describe(error);
    ASSERT_EQ(replay.finish.frames, hashes.size());

    Owner o(99);
    o.autoplay = false;
    Player player(std::move(replay));
    player.Begin(o.S());
    while (!player.Done()) {
        const uint64_t before = player.Frames();
        player.Frame(o.S(), {});
        if (player.Frames() == before) break; // the end, read behind the last frame
        const size_t frame = player.Frames() - 1;
        ASSERT_LT(frame, hashes.size());
        // A game lost in its last frame ends right behind that frame's rules.
        if (player.Done()) break;
        ASSERT_EQ(StateHash(o.game), hashes[frame]) << "frame " << frame;
    }
    EXPECT_EQ(player.Frames(), hashes.size());
    EXPECT_TRUE(player.Done());
    EXPECT_TRUE(player.Result().Matches());
    EXPECT_TRUE(o.game.level > c.levels || o.game.phase == Phase::Over) << o.game.level;
    // The player keeps the owner's language; the rules spoke the recording's. The pack
    // travels in the replay and is the active one afterwards.
    EXPECT_EQ(CurrentLanguage(), Language::English);
    if (c.pack) {
        ASSERT_NE(ActivePack(), nullptr);
        EXPECT_EQ(ActivePack()->name, "Zwei");
    }
}

// A person's game in the window: the arrows turn the camera in the attack, a pause with the
// difficulty and the language changed in it, and things written past the recorder.
void ByHand(Owner& o, Recorder& r, int n, float dt) {
    const bool attack = o.game.phase == Phase::Attack;
    if (attack && n % 7 < 3) r.Do(o.S(), {n % 14 < 7 ? Op::TurnLeft : Op::TurnRight}, dt);
    if (attack && n % 50 == 0) {
        r.Do(o.S(), {Op::Act, static_cast<int32_t>(Action::Undo)}, dt);
        r.Do(o.S(), {Op::AimAtFocus}, dt);
    }
    if (n == 400) o.paused = true;
    if (n == 420) GetSettings().difficulty = 1;
    if (n == 430) SetLanguage(Language::English);
    if (n == 460) o.paused = false;
    if (n == 900) o.camera.angle += 5.0f;  // the camera moved by something else
    if (n == 901) o.game.viewCentre = 3.0f; // and the rules' view, for one frame
}

// The ring for three levels, the classic towers, a pack, a person's game.
INSTANTIATE_TEST_SUITE_P(Games, ReplayTest,
                         ::testing::Values(Case{false, false, 3, nullptr}, Case{true, false, 2, nullptr},
                                           Case{false, true, 1, nullptr}, Case{false, false, 2, ByHand}));

class ReplayFilesTest : public ::testing::Test {
protected:
    void SetUp() override {
        folder = testing_support::ScratchFolder("replays");
        Owner o(5);
        Recorder recorder;
        recorder.finished = [this](std::string s) { stream = std::move(s); };
        recorder.Do(o.S(), {Op::NewGame}, 0.0f);
        for (int n = 0; n < 600; ++n) recorder.Frame(o.S(), 0.02f, {});
        recorder.End(o.S());
        file = Pack(stream);
    }
    // The German message of loading the bytes as a file; empty when it loads.
    std::string Refusal(const std::string& bytes) {
        const std::string path = (folder / "r.trep").string();
        std::ofstream(path, std::ios::binary) << bytes;
        Replay replay;
        Error error;
        return Load(path, replay, error) ? "" : Describe(error, Language::German);
    }

    std::filesystem::path folder;
    std::string stream, file;
};

TEST_F(ReplayFilesTest, BadFilesSayWhatAndWhere) {
    ASSERT_EQ(Refusal(file), "");
    std::string version = file, unknown = stream;
    version[4] = 7;
    Replay replay;
    Error error;
    ASSERT_TRUE(Decode(stream, replay, error));
    unknown[replay.inputsAt] = static_cast<char>(0xF0);
    const std::string at = std::to_string(replay.inputsAt);
    const std::pair<std::string, std::string> rows[] = {
        {"", "Datei ist leer"},
        {"# not a replay\n", "Keine Aufzeichnung"},
        {file.substr(0, 9), "Datei nach 9 Bytes abgeschnitten"},
        {file.substr(0, file.size() / 2), "Byte 13: gepackte Daten beschädigt oder abgeschnitten"},
        {version, "Aufzeichnung der Version 7, dieses Spiel liest Version 1"},
        {Pack(stream.substr(0, stream.size() - 1)),
         "Byte " + std::to_string(stream.size() - 1) + ": Aufzeichnung endet mitten in einem Eintrag"},
        {Pack(stream + '\0'), "Byte " + std::to_string(stream.size()) + ": Daten hinter dem Ende"},
        {Pack(unknown), "Byte " + at + ": unbekannter Eintrag 240"},
    };
    for (const auto& [bytes, message] : rows) EXPECT_EQ(Refusal(bytes), message);

    // A file too large to be a replay is not read at all, and a folder is no file.
    const std::string huge = (folder / "huge.trep").string();
    std::ofstream(huge, std::ios::binary).put('T');
    std::filesystem::resize_file(huge, kMaxFileBytes + 1);
    EXPECT_FALSE(Load(huge, replay, error));
    EXPECT_EQ(Describe(error, Language::German), "Datei zu groß: " + std::to_string(kMaxFileBytes + 1) + " Bytes");
    EXPECT_FALSE(Load(folder.string(), replay, error));
    EXPECT_EQ(Describe(error, Language::English), "The file cannot be read");
}

TEST_F(ReplayFilesTest, EveryFlippedByteIsRefusedOrChangesNothing) {
    for (size_t i = 0; i < file.size(); ++i) {
        std::string bent = file;
        bent[i] = static_cast<char>(bent[i] ^ (1 << (i % 8)));
        std::string back;
        Error error;
        // Deflate's own checksum at the very end is not read; the stream's is.
        EXPECT_TRUE(!Unpack(bent, back, error) || back == stream) << "byte " << i;
    }
}

} // namespace
} // namespace torvane::replay
