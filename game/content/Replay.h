#pragma once
// Replays: a game recorded at the rules' boundary and played again by the same rules.
//
// A recording starts where a game starts (NewGame), from the few values that a new game
// takes over from the one before: the random engine, the shot counter and the like. It
// then holds, in order, every input that reached the rules from outside (acts, the card
// buttons' calls, the camera's manual turns), every frame's step, and whatever the
// owner wrote into the rules or changed in the settings they read. Every frame costs one
// byte when nothing else happens: its step in ticks of the frame clock, as a difference
// to the frame before. The camera is not recorded but turned again, from the same
// inputs; a change to it, to the rules' view or to their phase that came from elsewhere
// is written as it is, so that nothing is lost. Checkpoints of the state's hash every
// kCheckpointFrames frames tell where a replay starts to differ, and the end holds the
// final score and hash.
//
// The Recorder is the owner's one way into the rules during a game; the Player feeds a
// recording into a Game through the same code. The bytes here are the plain stream;
// ReplayFiles deflates them into a file.
#include "game/content/StepCoder.h"
#include "game/rules/AutoPlayer.h"
#include "game/rules/FrameSteps.h"
#include "game/rules/Lang.h"
#include "game/rules/LevelPack.h"
#include "game/rules/TorvaneGame.h"
#include "game/stage/RingCamera.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace torvane::replay {

// The owner's members that a frame of the rules touches; they stay the owner's.
struct Session {
    Game& game;
    RingCamera& camera;
    AutoPlayer& autoPlayer;
    float& autoTimer;
    Phase& lastPhase;
    int32_t& lastLevel;
    bool& autoplay;
    bool& paused;
};

// The members a frame of the rules touches, held together: for owners without members of
// their own (the simulator, tests, benchmarks) and for what watching a replay puts aside.
struct Members {
    explicit Members(Game g) : game(std::move(g)) {}
    Game game;
    RingCamera camera;
    AutoPlayer autoPlayer;
    float autoTimer = 0.0f;
    Phase lastPhase = Phase::Title;
    int32_t lastLevel = 0;
    bool autoplay = false;
    bool paused = false;

    Session S() { return {game, camera, autoPlayer, autoTimer, lastPhase, lastLevel, autoplay, paused}; }
};

// An input from outside the rules.
struct Op {
    enum Kind : uint8_t {
        Act,         // arg: the Action
        BeginAttack, // the briefing's button
        NextLevel,   // the result's button
        EndBuild,    // the HUD's "Finish building"
        NewGame,     // begins a recording
        StartLevel,  // arg: the level
        DropEvents,  // the owner takes the events and drops them
        TurnLeft,    // the camera turned by hand for the frame's step
        TurnRight,
        AimAtFocus,  // the camera's goal put on the focus
    };
    Kind kind = Act;
    int32_t arg = 0;
};

// Carries out an input; dt is the frame's step, which a manual turn covers.
void Perform(const Session& s, const Op& op, float dt);

// The settings that the rules and the camera read and that can change between runs or in
// a game, with the language of the rules' texts.
struct RulesSettings {
    uint8_t classic = 0;
    uint8_t difficulty = 0;
    uint8_t repairMode = 1;
    uint8_t autoRotate = 1;
    uint8_t pieceChoice = 0;
    uint8_t language = 0;

    bool operator==(const RulesSettings& o) const;
    static RulesSettings Current();
    void Apply() const;
};

// The camera's whole state.
struct CameraState {
    float angle = 0.0f;
    float target = 0.0f;
    int32_t level = -1;
    int32_t width = 1;
    Phase lastPhase = Phase::Title;

    static CameraState Of(const RingCamera& camera);
    void Apply(RingCamera& camera) const;
};

// The owner's side of a frame besides the camera: the bot's timer and state, the phase
// and level seen last, the pause.
struct OwnerState {
    float autoTimer = 0.0f;
    Phase lastPhase = Phase::Title;
    int32_t lastLevel = 0;
    int32_t tries = 0;
    bool repairs = true;
    bool autoplay = false;
    bool paused = false;

    static OwnerState Of(const Session& s);
    void Apply(const Session& s) const;
    // Equal to the bit, floats included.
    bool Same(const OwnerState& o) const;
};

// Where a recording starts.
struct Start {
    bool byBot = false;        // the bot began the game inside a frame; else an input did
    bool cameraFollows = true; // the frame turns the camera (the window's game)
    RulesSettings settings;
    bool hasPack = false;
    LevelPack pack;
    // What a new game takes over from the game before it.
    std::array<uint32_t, 624> engine{};
    uint16_t engineIndex = 0;
    int32_t nextShotId = 1;
    float inspectEndAt = 0.0f;
    float nextShotAt = 0.0f;
    int32_t bonusPieces = 0;
    float viewCentre = 0.0f;
    bool viewKnown = false;
    UndoRecord undo;
    uint32_t revision = 0;
    // The owner's side: at the NewGame, or after the frame in which the bot began.
    CameraState camera;
    OwnerState owner;
};

// What a recording ends with.
struct Finish {
    // Ended by the rules' step of its last frame, that lost the game or won the last
    // level of a pack; else between two frames, when the game was left.
    bool decided = false;
    int32_t score = 0;
    int32_t level = 0;
    uint64_t hash = 0;
    uint64_t frames = 0;
    float pendingDt = 0.0f; // the step of inputs after the last frame
};

// What went wrong reading a replay, and where.
struct Error {
    std::string what;               // a German key of the language table, with {0}, {1}...
    std::vector<std::string> args;  // filled into `what`
};
// The error in the current language, or in the one given.
std::string Describe(const Error& error);
std::string Describe(const Error& error, Language language);

// A recording read and checked from end to end.
struct Replay {
    Start start;
    std::string bytes;     // the whole stream
    size_t stepsAt = 0;    // where the frames' steps begin
    size_t inputsAt = 0;   // where the inputs and runs of frames begin
    Finish finish;
    double seconds = 0.0;  // the frames' steps added up
};

// Reads a stream. False with the error when it is not a whole, sound recording.
bool Decode(const std::string& bytes, Replay& out, Error& error);

// How a replay ended against its recording.
struct Verdict {
    bool scoreMatches = false;
    bool hashMatches = false;
    int32_t score = 0;
    int32_t level = 0;
    uint64_t hash = 0;
    int64_t firstDifference = -1; // frames played before the first checkpoint that differed
    double differsAfter = 0.0;    // and the recorded seconds they took
    bool Matches() const { return scoreMatches && hashMatches && firstDifference < 0; }
};

// A state hash every so many frames.
inline constexpr uint64_t kCheckpointFrames = 1024;

class Recorder {
public:
    // The application's frame turns its camera; the simulator has none.
    bool cameraFollows = true;
    // Gets each recording as it ends: a game lost, left, or followed by a new one.
    std::function<void(std::string)> finished;

    // An input: recorded when a game is, and carried out. NewGame begins a recording.
    void Do(const Session& s, Op op, float dt);
    // The frame's rules (frame::RunRules with the camera) and the events they queued,
    // taken. A game lost in this frame, or followed by a new one, is finished here.
    std::vector<Event> Frame(const Session& s, float dt, frame::Hooks hooks);
    // The game is left (to the title, the end of the run): its recording ends.
    void End(const Session& s);
    bool Recording() const { return take_.has_value(); }

private:
    // What has been seen of the things that may change from outside.
    struct Seen {
        float viewCentre = 0.0f;
        bool viewKnown = false;
        Phase phase = Phase::Title;
        CameraState camera;
        RulesSettings settings;
        uint32_t packStamp = 0;
        OwnerState owner;
    };
    struct Take {
        std::string start;   // up to the revision counter
        std::string owner;   // the owner's side of the start
        std::string inputs;  // inputs and runs of frames
        StepEncoder steps;   // the frames' steps
        uint64_t run = 0;    // frames since the last entry of the inputs
        uint64_t frames = 0;
        Seen seen;
        float pendingDt = 0.0f;
    };
    // The inputs of the recording, the run of frames before them written.
    std::string& Inputs();

    void Begin(const Session& s, bool byBot);
    void Finish(const Session& s, bool decided);
    // Writes what changed from outside since the last input or frame.
    void Sync(const Session& s);
    void Look(const Session& s);

    std::optional<Take> take_;
    std::optional<Take> next_; // begun by the bot in this frame, while take_ ends with it
};

// Plays a recording into a session; the owner takes its settings and pack back afterwards.
// The language is the recording's only while the rules run (their texts are part of the
// state): the owner keeps its own for everything it draws.
class Player {
public:
    explicit Player(Replay replay);
    // Lays the start into the session and sets the settings, language, pack and revision
    // counter it was recorded with.
    void Begin(const Session& s);
    bool Done() const { return done_; }
    // Plays one recorded frame: its inputs, then the rules as recorded, and returns the
    // events they queued.
    std::vector<Event> Frame(const Session& s, const frame::Hooks& hooks);
    // Recorded seconds played so far, and in all.
    double Played() const { return played_; }
    double Seconds() const { return replay_.seconds; }
    uint64_t Frames() const { return frames_; }
    const Replay& Recording() const { return replay_; }
    // Once Done: the end against the recording.
    const Verdict& Result() const { return verdict_; }

private:
    // The score and the state where the recording ended.
    void Judge(const Game& game);

    Replay replay_;
    size_t at_ = 0;
    uint64_t runLeft_ = 0;
    StepDecoder steps_;
    bool done_ = false;
    double played_ = 0.0;
    uint64_t frames_ = 0;
    Verdict verdict_;
    Language language_ = Language::German;
};

} // namespace torvane::replay
