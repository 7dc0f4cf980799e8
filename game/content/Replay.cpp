// Replays: the recorder at the rules' boundary, the stream's format, and the player.
#include "game/content/Replay.h"

#include "game/content/PackFormat.h"
#include "game/rules/Level.h"
#include "game/rules/StateHash.h"

#include <cmath>
#include <cstring>
#include <sstream>
#include <utility>

namespace torvane::replay {
namespace {

// The entries of the inputs. Frames come in runs between inputs; their steps are coded
// apart (StepCoder), ahead of the inputs.
enum Entry : uint8_t {
    kFrames = 1, // a run of frames: their number
    kAct,        // to kAct + 7: an act
    kBeginAttack = kAct + 8,
    kNextLevel,
    kEndBuild,
    kNewGame,
    kStartLevel,
    kDropEvents,
    kTurnLeft,
    kTurnRight,
    kAimAtFocus,
    kView,       // the rules' view, written from outside
    kPhase,      // the rules' phase, written from outside
    kCamera,     // the camera, changed from outside
    kSettings,   // the settings the rules read, and the language
    kPack,       // the active pack
    kOwner,      // the owner's side: the bot's timer and state, the phase seen, the pause
    kCheckpoint, // the state's hash after the frame before
    kEnd = 0xFF,
};

// Bounds of what a valid recording holds; anything beyond is damage.
constexpr int64_t kMaxLevel = 1000000;
constexpr int64_t kMaxId = 1000000000;
// Eleven days at a thousand frames a second.
constexpr uint64_t kMaxFrames = 1000000000;
constexpr float kMaxTime = 1.0e7f;
constexpr size_t kMaxText = 4096;
constexpr size_t kMaxUndoCells = 16;
constexpr int kEngineWords = 624;

uint32_t Hash32(const Game& game) {
    const uint64_t h = StateHash(game);
    return static_cast<uint32_t>(h ^ (h >> 32));
}

// ---- writing ----

void PutU8(std::string& out, uint64_t v) { out.push_back(static_cast<char>(v & 0xFF)); }
void PutVar(std::string& out, uint64_t v) {
    for (; v >= 0x80; v >>= 7) PutU8(out, (v & 0x7F) | 0x80);
    PutU8(out, v);
}
void PutZig(std::string& out, int64_t v) {
    PutVar(out, (static_cast<uint64_t>(v) << 1) ^ static_cast<uint64_t>(v >> 63));
}
void PutU32(std::string& out, uint32_t v) {
    for (int i = 0; i < 4; ++i) PutU8(out, v >> (8 * i));
}
void PutU64(std::string& out, uint64_t v) {
    for (int i = 0; i < 8; ++i) PutU8(out, v >> (8 * i));
}
void PutF32(std::string& out, float f) { PutU32(out, Bits(f)); }
void PutText(std::string& out, const std::string& text) {
    PutVar(out, text.size());
    out += text;
}

void PutSettings(std::string& out, const RulesSettings& r) {
    for (uint8_t v : {r.classic, r.difficulty, r.repairMode, r.autoRotate, r.pieceChoice, r.language}) PutU8(out, v);
}

void PutPack(std::string& out, const LevelPack* pack) {
    PutU8(out, pack != nullptr);
    if (!pack) return;
    PutText(out, pack->name);
    PutText(out, pack->file);
    PutVar(out, pack->levels.size());
    for (const PackLevel& l : pack->levels) {
        PutText(out, l.name);
        for (int32_t v : {l.background, l.build, l.pieces, l.line, l.need, l.shots, l.interval}) PutZig(out, v);
        PutText(out, l.directions);
        for (bool v : {l.waves, l.prep, l.newTower}) PutU8(out, v);
    }
}

void PutCamera(std::string& out, const CameraState& c) {
    PutF32(out, c.angle);
    PutF32(out, c.target);
    PutZig(out, c.level);
    PutZig(out, c.width);
    PutU8(out, static_cast<uint8_t>(c.lastPhase));
}

void PutCells(std::string& out, const std::vector<Cell>& cells) {
    PutVar(out, cells.size());
    for (const Cell& c : cells) {
        PutZig(out, c.x);
        PutZig(out, c.y);
    }
}

// The start up to the owner's side: settings, pack, and what a new game takes over.
void PutStart(std::string& out, const Session& s, bool byBot, bool cameraFollows) {
    const Game& g = s.game;
    PutU8(out, byBot);
    PutU8(out, cameraFollows);
    PutSettings(out, RulesSettings::Current());
    PutPack(out, ActivePack());
    // The engine's words and position, as the standard library writes them.
    std::ostringstream engine;
    engine << g.rng;
    std::istringstream words(engine.str());
    for (int i = 0; i <= kEngineWords; ++i) {
        uint64_t w = 0;
        words >> w;
        if (i < kEngineWords) PutU32(out, static_cast<uint32_t>(w));
        else PutVar(out, w);
    }
    PutZig(out, g.nextShotId);
    PutF32(out, g.inspectEndAt);
    PutF32(out, g.nextShotAt);
    PutZig(out, g.bonusPieces);
    PutF32(out, g.viewCentre);
    PutU8(out, g.viewKnown);
    const UndoRecord& u = g.undo;
    PutU8(out, u.valid);
    PutU8(out, static_cast<uint8_t>(u.phase));
    for (int32_t v : {u.tower, u.piece, u.target}) PutZig(out, v);
    PutU8(out, static_cast<uint8_t>(u.type));
    for (int32_t v : {u.rotation, u.x, u.selected, u.points}) PutZig(out, v);
    PutF32(out, u.until);
    PutCells(out, u.cells);
    // Events still queued: none at the start of a game, as the owner takes them each frame.
    PutVar(out, g.events.size());
    PutU32(out, Tower::PeekRevision());
}

void PutOwnerState(std::string& out, const OwnerState& o) {
    PutF32(out, o.autoTimer);
    PutU8(out, static_cast<uint8_t>(o.lastPhase));
    PutZig(out, o.lastLevel);
    PutZig(out, o.tries);
    for (bool v : {o.repairs, o.autoplay, o.paused}) PutU8(out, v);
}

// The owner's side of the start.
void PutOwner(std::string& out, const Session& s) {
    PutCamera(out, CameraState::Of(s.camera));
    PutOwnerState(out, OwnerState::Of(s));
}

// ---- reading ----

class Reader {
public:
    Reader(const std::string& bytes, size_t at) : bytes_(bytes), at_(at) {}

    size_t At() const { return at_; }
    bool Ok() const { return error_.what.empty(); }
    const Error& Failure() const { return error_; }
    bool AtEnd() const { return at_ >= bytes_.size(); }

    // The first failure stands; reading on after it gives zeros.
    void Fail(const char* what, size_t at, std::vector<std::string> more = {}) {
        if (!Ok()) return;
        error_.what = what;
        error_.args = {std::to_string(at)};
        for (std::string& m : more) error_.args.push_back(std::move(m));
    }
    void OutOfBounds(size_t at) { Fail("Byte {0}: Wert außerhalb der Grenzen", at); }

    uint8_t U8() {
        if (!Ok()) return 0;
        if (at_ >= bytes_.size()) {
            Fail("Byte {0}: Aufzeichnung endet mitten in einem Eintrag", at_);
            return 0;
        }
        return static_cast<uint8_t>(bytes_[at_++]);
    }
    uint64_t Var() {
        const size_t from = at_;
        uint64_t v = 0;
        for (int shift = 0; Ok(); shift += 7) {
            const uint8_t b = U8();
            if (shift == 63 && b > 1) OutOfBounds(from);
            v |= static_cast<uint64_t>(b & 0x7F) << shift;
            if (!(b & 0x80)) break;
        }
        return Ok() ? v : 0;
    }
    int64_t Zig() {
        const uint64_t v = Var();
        return static_cast<int64_t>(v >> 1) ^ -static_cast<int64_t>(v & 1);
    }
    uint32_t U32() {
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i) v |= static_cast<uint32_t>(U8()) << (8 * i);
        return v;
    }
    uint64_t U64() {
        uint64_t v = 0;
        for (int i = 0; i < 8; ++i) v |= static_cast<uint64_t>(U8()) << (8 * i);
        return v;
    }
    float F32() {
        const uint32_t b = U32();
        float f = 0.0f;
        std::memcpy(&f, &b, sizeof f);
        return f;
    }
    // A number within [lo, hi].
    int32_t Int(int64_t lo, int64_t hi) {
        const size_t from = at_;
        const int64_t v = Zig();
        if (v < lo || v > hi) OutOfBounds(from);
        return Ok() ? static_cast<int32_t>(v) : 0;
    }
    // A finite float within [-limit, limit].
    float Real(float limit) {
        const size_t from = at_;
        const float f = F32();
        if (!(std::fabs(f) <= limit)) OutOfBounds(from);
        return Ok() ? f : 0.0f;
    }
    uint8_t Small(uint8_t max) {
        const size_t from = at_;
        const uint8_t v = U8();
        if (v > max) OutOfBounds(from);
        return Ok() ? v : 0;
    }
    bool Flag() { return Small(1) != 0; }
    Phase ReadPhase() { return static_cast<Phase>(Small(static_cast<uint8_t>(Phase::Over))); }
    std::string Text() {
        const size_t from = at_;
        const uint64_t n = Var();
        if (n > kMaxText || n > bytes_.size() - at_) {
            if (Ok()) (n > kMaxText ? OutOfBounds(from) : Fail("Byte {0}: Aufzeichnung endet mitten in einem Eintrag", at_));
            return {};
        }
        std::string text = bytes_.substr(at_, n);
        at_ += n;
        return text;
    }

private:
    const std::string& bytes_;
    size_t at_;
    Error error_;
};

RulesSettings ReadSettings(Reader& r) {
    RulesSettings s;
    s.classic = r.Small(1);
    s.difficulty = r.Small(kDifficulties - 1);
    s.repairMode = r.Small(1);
    s.autoRotate = r.Small(1);
    s.pieceChoice = r.Small(1);
    s.language = r.Small(1);
    return s;
}

// The pack as it was in play; bounds as the pack format holds them.
bool ReadPack(Reader& r, LevelPack& pack) {
    const bool has = r.Flag();
    pack = LevelPack{};
    if (!has) return false;
    pack.name = r.Text();
    pack.file = r.Text();
    const size_t from = r.At();
    const uint64_t count = r.Var();
    // Each level takes a dozen bytes at least.
    if (count > kMaxText) r.OutOfBounds(from);
    for (uint64_t i = 0; i < count && r.Ok(); ++i) {
        PackLevel l;
        l.name = r.Text();
        for (int32_t* v : {&l.background, &l.build, &l.pieces, &l.line, &l.need, &l.shots, &l.interval})
            *v = r.Int(INT32_MIN, INT32_MAX);
        l.directions = r.Text();
        for (bool* v : {&l.waves, &l.prep, &l.newTower}) *v = r.Flag();
        Clamp(l);
        pack.levels.push_back(std::move(l));
    }
    return has;
}

CameraState ReadCamera(Reader& r) {
    CameraState c;
    c.angle = r.Real(kMaxTime);
    c.target = r.Real(kMaxTime);
    c.level = r.Int(-kMaxLevel, kMaxLevel);
    c.width = r.Int(1, 10000);
    c.lastPhase = r.ReadPhase();
    return c;
}

OwnerState ReadOwnerState(Reader& r) {
    OwnerState o;
    o.autoTimer = r.Real(kMaxTime);
    o.lastPhase = r.ReadPhase();
    o.lastLevel = r.Int(-kMaxLevel, kMaxLevel);
    o.tries = r.Int(0, kMaxLevel);
    o.repairs = r.Flag();
    o.autoplay = r.Flag();
    o.paused = r.Flag();
    return o;
}

void ReadStart(Reader& r, Start& s) {
    s.byBot = r.Flag();
    s.cameraFollows = r.Flag();
    s.settings = ReadSettings(r);
    s.hasPack = ReadPack(r, s.pack);
    for (uint32_t& w : s.engine) w = r.U32();
    const size_t indexAt = r.At();
    const uint64_t index = r.Var();
    if (index > static_cast<uint64_t>(kEngineWords)) r.OutOfBounds(indexAt);
    s.engineIndex = static_cast<uint16_t>(index);
    s.nextShotId = r.Int(1, kMaxId);
    s.inspectEndAt = r.Real(kMaxTime);
    s.nextShotAt = r.Real(kMaxTime);
    s.bonusPieces = r.Int(0, 1000);
    s.viewCentre = r.Real(kMaxTime);
    s.viewKnown = r.Flag();
    UndoRecord& u = s.undo;
    u.valid = r.Flag();
    u.phase = r.ReadPhase();
    u.tower = r.Int(0, 1000);
    u.piece = r.Int(0, kMaxId);
    u.target = r.Int(0, kMaxId);
    u.type = static_cast<char>(r.U8());
    u.rotation = r.Int(0, 3);
    u.x = r.Int(-10000, 10000);
    u.selected = r.Int(-kMaxLevel, kMaxLevel);
    u.points = r.Int(-kMaxLevel, kMaxLevel);
    u.until = r.Real(kMaxTime);
    const size_t cellsAt = r.At();
    const uint64_t cells = r.Var();
    if (cells > kMaxUndoCells) r.OutOfBounds(cellsAt);
    for (uint64_t i = 0; i < cells && r.Ok(); ++i) {
        const int32_t x = r.Int(0, 10000);
        const int32_t y = r.Int(0, 10000);
        u.cells.push_back({x, y});
    }
    const size_t eventsAt = r.At();
    if (r.Var() != 0) r.OutOfBounds(eventsAt);
    s.revision = r.U32();
    s.camera = ReadCamera(r);
    s.owner = ReadOwnerState(r);
}

// One entry of the inputs and frames.
struct Token {
    enum Kind { Frame, Input, View, SetPhase, Camera, Settings, Pack, Owner, Checkpoint, End };
    Kind kind = Frame;
    float dt = 0.0f;
    Op op;
    float viewCentre = 0.0f;
    bool viewKnown = false;
    Phase phase = Phase::Title;
    CameraState camera;
    RulesSettings settings;
    bool hasPack = false;
    LevelPack pack;
    OwnerState owner;
    uint32_t hash = 0;
    Finish finish;
};

// Walks the inputs and frames: the runs of frames take their steps from the steps' coder.
struct Cursor {
    size_t at = 0;
    uint64_t runLeft = 0;
    StepDecoder steps;

    bool Next(const std::string& bytes, Token& t, Error& error) {
        Reader r(bytes, at);
        if (runLeft == 0) {
            const size_t from = r.At();
            const uint8_t e = r.U8();
            if (r.Ok() && e == kFrames) {
                runLeft = r.Var();
                if (runLeft == 0) r.OutOfBounds(from);
            } else if (r.Ok()) {
                ReadEntry(r, e, from, t);
            }
        }
        if (r.Ok() && runLeft > 0) {
            t.kind = Token::Frame;
            const size_t stepAt = steps.At();
            if (steps.Next(bytes, t.dt)) {
                --runLeft;
            } else {
                r.OutOfBounds(stepAt);
            }
        }
        at = r.At();
        if (r.Ok()) return true;
        error = r.Failure();
        return false;
    }

    // Any entry but a run of frames.
    static void ReadEntry(Reader& r, uint8_t e, size_t from, Token& t) {
        t.kind = Token::Input;
        if (e >= kAct && e < kAct + 8) {
            t.op = {Op::Act, e - kAct};
        } else if (e >= kBeginAttack && e <= kAimAtFocus) {
            static constexpr Op::Kind kOps[] = {Op::BeginAttack, Op::NextLevel, Op::EndBuild, Op::NewGame,
                                                Op::StartLevel,  Op::DropEvents, Op::TurnLeft, Op::TurnRight,
                                                Op::AimAtFocus};
            t.op = {kOps[e - kBeginAttack], 0};
            if (t.op.kind == Op::StartLevel) t.op.arg = r.Int(1, kMaxLevel);
        } else if (e == kView) {
            t.kind = Token::View;
            t.viewCentre = r.Real(kMaxTime);
            t.viewKnown = r.Flag();
        } else if (e == kPhase) {
            t.kind = Token::SetPhase;
            t.phase = r.ReadPhase();
        } else if (e == kCamera) {
            t.kind = Token::Camera;
            t.camera = ReadCamera(r);
        } else if (e == kSettings) {
            t.kind = Token::Settings;
            t.settings = ReadSettings(r);
        } else if (e == kPack) {
            t.kind = Token::Pack;
            t.hasPack = ReadPack(r, t.pack);
        } else if (e == kOwner) {
            t.kind = Token::Owner;
            t.owner = ReadOwnerState(r);
        } else if (e == kCheckpoint) {
            t.kind = Token::Checkpoint;
            t.hash = r.U32();
        } else if (e == kEnd) {
            t.kind = Token::End;
            t.finish.decided = r.Flag();
            t.finish.score = r.Int(INT32_MIN, INT32_MAX);
            t.finish.level = r.Int(INT32_MIN, INT32_MAX);
            t.finish.hash = r.U64();
            t.finish.frames = r.Var();
            t.finish.pendingDt = r.Real(kMaxStep);
        } else {
            r.Fail("Byte {0}: unbekannter Eintrag {1}", from, {std::to_string(e)});
        }
    }
};

// The frame as the application runs it: the rules, the camera if it follows, the bot, the
// phase watch. The events stay queued. A camera that does not follow is the owner's
// affair, and must leave the rules alone.
void RunFrame(const Session& s, float dt, frame::Hooks hooks, bool cameraFollows) {
    if (cameraFollows) hooks.camera = [&s](float step) { s.camera.Follow(s.game, step); };
    frame::RunRules({s.game, s.autoPlayer, s.autoTimer, s.lastPhase, s.lastLevel, s.autoplay, s.paused}, dt, hooks);
}

// A game that its last frame's rules decided: lost, or the last level of a pack held.
bool Decided(const Game& game) {
    return game.phase == Phase::Over || (game.phase == Phase::Eval && game.LastLevel());
}

void SetEngine(std::mt19937& engine, const Start& start) {
    std::ostringstream text;
    for (uint32_t w : start.engine) text << w << ' ';
    text << start.engineIndex;
    std::istringstream in(text.str());
    in >> engine;
}

} // namespace

// ---- the pieces shared by both sides ----

void Perform(const Session& s, const Op& op, float dt) {
    Game& game = s.game;
    switch (op.kind) {
    case Op::Act: game.Act(static_cast<Action>(op.arg)); break;
    case Op::BeginAttack: game.BeginAttack(); break;
    case Op::NextLevel: game.NextLevel(); break;
    case Op::EndBuild: game.EndBuild(true); break;
    case Op::NewGame: game.NewGame(); break;
    case Op::StartLevel: game.StartLevel(op.arg); break;
    case Op::DropEvents: game.TakeEvents(); break;
    case Op::TurnLeft: s.camera.Turn(-dt * GetSettings().cameraMaxSpeed); break;
    case Op::TurnRight: s.camera.Turn(dt * GetSettings().cameraMaxSpeed); break;
    case Op::AimAtFocus: s.camera.target = s.camera.Wrap(game.FocusCentre(game.focus)); break;
    }
}

bool RulesSettings::operator==(const RulesSettings& o) const {
    return classic == o.classic && difficulty == o.difficulty && repairMode == o.repairMode &&
           autoRotate == o.autoRotate && pieceChoice == o.pieceChoice && language == o.language;
}

RulesSettings RulesSettings::Current() {
    const Settings& s = GetSettings();
    return {static_cast<uint8_t>(s.classic != 0),    static_cast<uint8_t>(s.difficulty),
            static_cast<uint8_t>(s.repair_mode != 0), static_cast<uint8_t>(s.auto_rotate),
            static_cast<uint8_t>(s.piece_choice),    static_cast<uint8_t>(CurrentLanguage())};
}

void RulesSettings::Apply() const {
    Settings& s = GetSettings();
    s.classic = classic;
    s.difficulty = difficulty;
    s.repair_mode = repairMode;
    s.auto_rotate = autoRotate != 0;
    s.piece_choice = pieceChoice != 0;
    SetLanguage(static_cast<Language>(language));
}

OwnerState OwnerState::Of(const Session& s) {
    return {s.autoTimer, s.lastPhase, s.lastLevel, s.autoPlayer.tries, s.autoPlayer.repairs, s.autoplay, s.paused};
}

void OwnerState::Apply(const Session& s) const {
    s.autoTimer = autoTimer;
    s.lastPhase = lastPhase;
    s.lastLevel = lastLevel;
    s.autoPlayer.tries = tries;
    s.autoPlayer.repairs = repairs;
    s.autoplay = autoplay;
    s.paused = paused;
}

bool OwnerState::Same(const OwnerState& o) const {
    return Bits(autoTimer) == Bits(o.autoTimer) && lastPhase == o.lastPhase && lastLevel == o.lastLevel &&
           tries == o.tries && repairs == o.repairs && autoplay == o.autoplay && paused == o.paused;
}

CameraState CameraState::Of(const RingCamera& c) { return {c.angle, c.target, c.level, c.width, c.lastPhase}; }

void CameraState::Apply(RingCamera& c) const {
    c.angle = angle;
    c.target = target;
    c.level = level;
    c.width = width;
    c.lastPhase = lastPhase;
}

std::string Describe(const Error& error) { return Trf(error.what, error.args); }

std::string Describe(const Error& error, Language language) {
    const Language current = CurrentLanguage();
    SetLanguage(language);
    std::string text = Describe(error);
    SetLanguage(current);
    return text;
}

bool Decode(const std::string& bytes, Replay& out, Error& error) {
    out = Replay{};
    Reader r(bytes, 0);
    ReadStart(r, out.start);
    if (!r.Ok()) {
        error = r.Failure();
        return false;
    }
    const size_t countAt = r.At();
    const uint64_t stepBytes = r.Var();
    if (r.Ok() && stepBytes > bytes.size() - r.At()) r.Fail("Byte {0}: Aufzeichnung endet mitten in einem Eintrag", countAt);
    if (!r.Ok()) {
        error = r.Failure();
        return false;
    }
    out.stepsAt = r.At();
    out.inputsAt = out.stepsAt + stepBytes;
    Cursor cursor;
    cursor.at = out.inputsAt;
    cursor.steps = StepDecoder(bytes, out.stepsAt, out.inputsAt);
    uint64_t frames = 0;
    for (Token t;;) {
        if (!cursor.Next(bytes, t, error)) return false;
        if (t.kind == Token::Frame) {
            // However well the steps are foreseen, a frame costs two learnt bits, each of
            // them a 45th of a bit at least: no more than 181 frames a byte of steps.
            if (++frames > 256 * (stepBytes + 1) || frames > kMaxFrames) {
                error = {"Byte {0}: Wert außerhalb der Grenzen", {std::to_string(out.stepsAt)}};
                return false;
            }
            out.seconds += t.dt;
        }
        if (t.kind != Token::End) continue;
        out.finish = t.finish;
        break;
    }
    if (cursor.at != bytes.size()) {
        error = {"Byte {0}: Daten hinter dem Ende", {std::to_string(cursor.at)}};
        return false;
    }
    if (out.finish.frames != frames) {
        error = {"Byte {0}: {1} Bilder statt {2}",
                 {std::to_string(cursor.at), std::to_string(frames), std::to_string(out.finish.frames)}};
        return false;
    }
    out.bytes = bytes;
    return true;
}

// ---- recording ----

void Recorder::Do(const Session& s, Op op, float dt) {
    if (op.kind == Op::NewGame) Begin(s, false);
    if (take_) {
        Sync(s);
        std::string& out = Inputs();
        switch (op.kind) {
        case Op::Act: PutU8(out, kAct + (static_cast<uint32_t>(op.arg) & 7)); break;
        case Op::StartLevel:
            PutU8(out, kStartLevel);
            PutZig(out, op.arg);
            break;
        default: PutU8(out, kBeginAttack + (op.kind - Op::BeginAttack)); break;
        }
        take_->pendingDt = dt;
    }
    Perform(s, op, dt);
    if (take_) Look(s);
}

std::vector<Event> Recorder::Frame(const Session& s, float dt, frame::Hooks hooks) {
    if (take_) {
        Sync(s);
        Take& t = *take_;
        t.steps.Put(dt);
        ++t.run;
        t.pendingDt = 0.0f;
        ++t.frames;
    }
    const auto stepped = hooks.rulesStepped;
    hooks.rulesStepped = [this, &s, stepped] {
        if (stepped) stepped();
        if (take_ && Decided(s.game)) Finish(s, true);
    };
    hooks.newGame = [this, &s] { Begin(s, true); };
    RunFrame(s, dt, hooks, cameraFollows);
    std::vector<Event> events = s.game.TakeEvents();
    if (take_) {
        Take& t = *take_;
        if (t.frames % kCheckpointFrames == 0) {
            PutU8(Inputs(), kCheckpoint);
            PutU32(Inputs(), Hash32(s.game));
        }
        Look(s);
        // A game decided from outside, that the bot follows with a new one.
        if (next_) Finish(s, false);
    }
    if (next_) {
        take_ = std::move(next_);
        next_.reset();
        PutOwner(take_->owner, s);
        Look(s);
    }
    return events;
}

void Recorder::End(const Session& s) {
    if (take_) Finish(s, false);
}

void Recorder::Begin(const Session& s, bool byBot) {
    Take t;
    PutStart(t.start, s, byBot, cameraFollows);
    if (byBot) {
        // The owner's side follows at the end of this frame.
        next_ = std::move(t);
        return;
    }
    End(s);
    PutOwner(t.owner, s);
    take_ = std::move(t);
    Look(s);
}

void Recorder::Finish(const Session& s, bool decided) {
    // Within the frame only the rules have acted since its start.
    if (!decided) Sync(s);
    Take& t = *take_;
    std::string out = std::move(t.start);
    out += t.owner;
    const std::string steps = t.steps.Finish();
    PutVar(out, steps.size());
    out += steps;
    out += Inputs();
    PutU8(out, kEnd);
    PutU8(out, decided);
    PutZig(out, s.game.score);
    PutZig(out, s.game.level);
    PutU64(out, StateHash(s.game));
    PutVar(out, t.frames);
    PutF32(out, t.pendingDt);
    take_.reset();
    if (finished) finished(std::move(out));
}

void Recorder::Sync(const Session& s) {
    Seen& was = take_->seen;
    // The run of frames before is written only when something follows it.
    const auto out = [this]() -> std::string& { return Inputs(); };
    const Game& g = s.game;
    if (Bits(g.viewCentre) != Bits(was.viewCentre) || g.viewKnown != was.viewKnown) {
        PutU8(out(), kView);
        PutF32(out(), g.viewCentre);
        PutU8(out(), g.viewKnown);
    }
    if (g.phase != was.phase) {
        PutU8(out(), kPhase);
        PutU8(out(), static_cast<uint8_t>(g.phase));
    }
    const CameraState camera = CameraState::Of(s.camera);
    const CameraState& c = was.camera;
    if (Bits(camera.angle) != Bits(c.angle) || Bits(camera.target) != Bits(c.target) || camera.level != c.level ||
        camera.width != c.width || camera.lastPhase != c.lastPhase) {
        PutU8(out(), kCamera);
        PutCamera(out(), camera);
    }
    if (!(RulesSettings::Current() == was.settings)) {
        PutU8(out(), kSettings);
        PutSettings(out(), RulesSettings::Current());
    }
    if (ActivePackStamp() != was.packStamp) {
        PutU8(out(), kPack);
        PutPack(out(), ActivePack());
    }
    const OwnerState owner = OwnerState::Of(s);
    if (!owner.Same(was.owner)) {
        PutU8(out(), kOwner);
        PutOwnerState(out(), owner);
    }
    Look(s);
}

std::string& Recorder::Inputs() {
    Take& t = *take_;
    if (t.run > 0) {
        PutU8(t.inputs, kFrames);
        PutVar(t.inputs, t.run);
        t.run = 0;
    }
    return t.inputs;
}

void Recorder::Look(const Session& s) {
    Seen& seen = take_->seen;
    seen.viewCentre = s.game.viewCentre;
    seen.viewKnown = s.game.viewKnown;
    seen.phase = s.game.phase;
    seen.camera = CameraState::Of(s.camera);
    seen.settings = RulesSettings::Current();
    seen.packStamp = ActivePackStamp();
    seen.owner = OwnerState::Of(s);
}

// ---- playing ----

Player::Player(Replay replay) : replay_(std::move(replay)) {}

void Player::Begin(const Session& s) {
    const Start& st = replay_.start;
    const Language owners = CurrentLanguage();
    st.settings.Apply();
    SetActivePack(st.hasPack ? &st.pack : nullptr);
    Game game(0);
    SetEngine(game.rng, st);
    game.nextShotId = st.nextShotId;
    game.inspectEndAt = st.inspectEndAt;
    game.nextShotAt = st.nextShotAt;
    game.bonusPieces = st.bonusPieces;
    game.viewCentre = st.viewCentre;
    game.viewKnown = st.viewKnown;
    game.undo = st.undo;
    game.events.clear();
    Tower::SetNextRevision(st.revision);
    s.game = std::move(game);
    if (st.byBot) {
        s.game.NewGame();
        s.game.TakeEvents();
    }
    st.camera.Apply(s.camera);
    st.owner.Apply(s);

    at_ = replay_.inputsAt;
    runLeft_ = 0;
    steps_ = StepDecoder(replay_.bytes, replay_.stepsAt, replay_.inputsAt);
    done_ = false;
    played_ = 0.0;
    frames_ = 0;
    verdict_ = Verdict{};
    language_ = CurrentLanguage();
    SetLanguage(owners);
}

std::vector<Event> Player::Frame(const Session& s, const frame::Hooks& hooks) {
    if (done_) return {};
    const Language owners = CurrentLanguage();
    SetLanguage(language_);
    Cursor cursor{at_, runLeft_, steps_};
    std::vector<Token> inputs;
    // Inputs wait for their frame's step, which a manual turn needs.
    const auto apply = [&](float dt) {
        for (const Token& t : inputs) {
            switch (t.kind) {
            case Token::Input: Perform(s, t.op, dt); break;
            case Token::View:
                s.game.viewCentre = t.viewCentre;
                s.game.viewKnown = t.viewKnown;
                break;
            case Token::SetPhase: s.game.phase = t.phase; break;
            case Token::Camera: t.camera.Apply(s.camera); break;
            case Token::Settings: t.settings.Apply(); break;
            case Token::Pack: SetActivePack(t.hasPack ? &t.pack : nullptr); break;
            case Token::Owner: t.owner.Apply(s); break;
            default: break;
            }
        }
    };
    Token t;
    Error error;
    while (!done_) {
        // Decode checked the whole stream; should a step fail all the same, the play ends.
        if (!cursor.Next(replay_.bytes, t, error)) {
            done_ = true;
            Judge(s.game);
        } else if (t.kind == Token::Checkpoint) {
            if (verdict_.firstDifference < 0 && Hash32(s.game) != t.hash) {
                verdict_.firstDifference = static_cast<int64_t>(frames_);
                verdict_.differsAfter = played_;
            }
        } else if (t.kind == Token::End) {
            apply(t.finish.pendingDt);
            done_ = true;
            Judge(s.game);
        } else if (t.kind == Token::Frame) {
            apply(t.dt);
            // A game decided by this frame's rules ends right behind them.
            Cursor ahead = cursor;
            Token next;
            const bool last = ahead.Next(replay_.bytes, next, error) && next.kind == Token::End && next.finish.decided;
            frame::Hooks h = hooks;
            h.newGame = nullptr;
            h.stopAfterRules = last;
            RunFrame(s, t.dt, h, replay_.start.cameraFollows);
            played_ += t.dt;
            ++frames_;
            if (last) {
                cursor = ahead;
                done_ = true;
                Judge(s.game);
            }
            break;
        } else {
            inputs.push_back(std::move(t));
        }
    }
    at_ = cursor.at;
    runLeft_ = cursor.runLeft;
    steps_ = cursor.steps;
    language_ = CurrentLanguage();
    SetLanguage(owners);
    return s.game.TakeEvents();
}

void Player::Judge(const Game& game) {
    const Finish& f = replay_.finish;
    verdict_.score = game.score;
    verdict_.level = game.level;
    verdict_.hash = StateHash(game);
    verdict_.scoreMatches = verdict_.score == f.score;
    verdict_.hashMatches = verdict_.hash == f.hash;
}

} // namespace torvane::replay
