// Plays the game without a window: the auto player at a fixed frame time, through
// the same frame steps as the application, printing one JSON line per level.
#include "game/content/PackFormat.h"
#include "game/content/PackStorage.h"
#include "game/rules/AutoPlayer.h"
#include "game/rules/FrameSteps.h"
#include "game/rules/Level.h"
#include "game/rules/StateHash.h"
#include "game/rules/TorvaneGame.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>

using namespace torvane;

namespace {

constexpr const char* kUsage =
    "Aufruf: torvane-sim --seed=N [--level=L] [--levels=K] [--classic] [--difficulty=D]\n"
    "                    [--repair=auto|free] [--lazy] [--fps=F] [--pack=DATEI]\n"
    "Spielt mit dem Automaten ohne Fenster und schreibt je beendetem Level eine JSON-Zeile.\n"
    "  --seed=N        Startwert der Regeln (Standard 1)\n"
    "  --level=L       erstes Level (Standard 1)\n"
    "  --levels=K      hoechstens so viele Level (Standard 10)\n"
    "  --classic       klassische Regeln mit flachen Tuermen\n"
    "  --difficulty=D  Schwierigkeit 0 bis 3\n"
    "  --repair=M      auto oder free\n"
    "  --lazy          der Automat baut, repariert aber nicht\n"
    "  --fps=F         Bilder je Sekunde (Standard 60)\n"
    "  --pack=DATEI    spielt die Level eines Levelpacks (.tpack) bis zu seinem Ende\n";

struct Options {
    unsigned seed = 1;
    int level = 1;
    int levels = 10;
    bool lazy = false;
    float fps = 60.0f;
    bool levelsGiven = false;
    std::string pack;
};

// Reads and activates the pack file; false (reported) when it cannot be read or is no pack.
bool ActivatePack(const std::string& path) {
    const std::filesystem::path file(path);
    const std::string folder = file.has_parent_path() ? file.parent_path().string() : ".";
    std::string text;
    LevelPack pack;
    if (!FolderPackStorage(folder).read(file.filename().string(), text) || !ParsePack(text, pack)) {
        std::fprintf(stderr, "[torvane] Kein lesbares Levelpack: %s\n", path.c_str());
        return false;
    }
    SetActivePack(&pack);
    return true;
}

// A whole decimal number in [lo, hi]; false when malformed.
bool ParseInt(const std::string& text, long lo, long hi, long& out) {
    if (text.empty()) return false;
    char* end = nullptr;
    errno = 0;
    const long v = std::strtol(text.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || v < lo || v > hi) return false;
    out = v;
    return true;
}

// Applies the options to `options` and the settings. 0 to run, 1 for the usage
// text, 2 for a bad option (already reported).
int ParseOptions(int argc, char** argv, Options& options) {
    Settings& settings = GetSettings();
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const size_t eq = arg.find('=');
        const std::string name = arg.substr(0, eq);
        const std::string value = eq == std::string::npos ? std::string() : arg.substr(eq + 1);
        const bool hasValue = eq != std::string::npos;
        long v = 0;
        bool ok = true;
        if (name == "--help" && !hasValue) return 1;
        if (name == "--seed" && hasValue) {
            ok = ParseInt(value, 0, 4294967295L, v);
            options.seed = static_cast<unsigned>(v);
        } else if (name == "--level" && hasValue) {
            ok = ParseInt(value, 1, kMaxLevel, v);
            options.level = static_cast<int>(v);
        } else if (name == "--levels" && hasValue) {
            ok = ParseInt(value, 1, 1000000, v);
            options.levels = static_cast<int>(v);
            options.levelsGiven = true;
        } else if (name == "--classic" && !hasValue) {
            settings.classic = 1;
        } else if (name == "--difficulty" && hasValue) {
            ok = ParseInt(value, 0, kDifficulties - 1, v);
            settings.difficulty = static_cast<int32_t>(v);
        } else if (name == "--repair" && hasValue) {
            ok = value == "auto" || value == "free";
            settings.repair_mode = value == "free" ? 0 : 1;
        } else if (name == "--lazy" && !hasValue) {
            options.lazy = true;
        } else if (name == "--pack" && hasValue) {
            ok = !value.empty();
            options.pack = value;
        } else if (name == "--fps" && hasValue) {
            ok = ParseInt(value, 1, 100000, v);
            options.fps = static_cast<float>(v);
        } else {
            std::fprintf(stderr, "[torvane] Unbekannte Option: %s\n%s", arg.c_str(), kUsage);
            return 2;
        }
        if (!ok) {
            std::fprintf(stderr, "[torvane] Ungueltiger Wert: %s\n%s", arg.c_str(), kUsage);
            return 2;
        }
    }
    return 0;
}

// One line of JSON for a level that has just been judged.
// What a level has queued so far: all events, and the balls among them.
struct Tally {
    long events = 0;
    long shots = 0;

    void Add(std::vector<Event>::const_iterator first, std::vector<Event>::const_iterator last) {
        for (; first != last; ++first) {
            ++events;
            if (first->kind == Event::Sound && first->sfx == Sfx::Cannon) ++shots;
        }
    }
};

std::string LevelLine(const Game& game, const Tally& tally, long frames) {
    const RoundStats& s = game.stats;
    char line[512];
    std::snprintf(line, sizeof line,
                  "{\"level\":%d,\"passed\":%s,\"score\":%d,\"overallPct\":%d,\"need\":%d,\"buildScore\":%d,"
                  "\"repairScore\":%d,\"timeBonus\":%d,\"levelBonus\":%d,\"held\":%d,\"lost\":%d,\"gapCells\":%d,"
                  "\"dropped\":%d,\"shotsFired\":%ld,\"events\":%ld,\"frames\":%ld,\"hash\":\"%016llx\"}\n",
                  game.level, s.passed ? "true" : "false", game.score, s.overallPct, game.config.need, s.buildScore,
                  s.repairScore, s.timeBonus, s.levelBonus, s.held, s.lost, s.gapCells, s.dropped,
                  tally.shots, tally.events, frames,
                  static_cast<unsigned long long>(StateHash(game)));
    return line;
}

} // namespace

int main(int argc, char** argv) {
    // The bot plays with the cursor following the goal and with automatic repair,
    // as the application's unattended runs do; the options may change the latter.
    GetSettings().auto_rotate = true;
    GetSettings().repair_mode = 1;
    Options options;
    const int parsed = ParseOptions(argc, argv, options);
    if (parsed == 1) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (parsed != 0) return parsed;
    if (!options.pack.empty()) {
        if (!ActivatePack(options.pack)) return 2;
        // A pack is played to its end unless told otherwise.
        if (!options.levelsGiven) options.levels = static_cast<int>(ActivePack()->levels.size());
    }

    Game game(options.seed);
    game.NewGame();
    if (options.level > 1) game.StartLevel(options.level);
    game.TakeEvents();
    AutoPlayer autoPlayer;
    autoPlayer.repairs = !options.lazy;
    float autoTimer = 0.0f;
    Phase lastPhase = game.phase;
    int32_t lastLevel = game.level;
    // A level ends when the rules' step leaves the attack. The bot may start the
    // next level within the same frame, so the figures are taken right there; what
    // that frame queues afterwards belongs to the next level.
    Phase before = game.phase;
    std::string line;
    Tally tally;
    long frames = 0;
    size_t queuedAtEnd = 0;
    bool over = false;
    bool packEnd = false;
    frame::Hooks hooks;
    hooks.rulesStepped = [&] {
        if (before != Phase::Attack || (game.phase != Phase::Eval && game.phase != Phase::Over)) return;
        queuedAtEnd = game.events.size();
        over = game.phase == Phase::Over;
        packEnd = game.phase == Phase::Eval && game.LastLevel();
        Tally ended = tally;
        ended.Add(game.events.begin(), game.events.end());
        line = LevelLine(game, ended, frames + 1);
    };
    const frame::Refs refs{game, autoPlayer, autoTimer, lastPhase, lastLevel, true, false};
    const float dt = frame::RulesStep(1.0f / options.fps);

    for (int done = 0; done < options.levels;) {
        before = game.phase;
        frame::RunRules(refs, dt, hooks);
        const std::vector<Event> taken = game.TakeEvents();
        ++frames;
        if (line.empty()) {
            tally.Add(taken.begin(), taken.end());
            continue;
        }
        std::fputs(line.c_str(), stdout);
        line.clear();
        tally = Tally{};
        tally.Add(taken.begin() + static_cast<std::ptrdiff_t>(queuedAtEnd), taken.end());
        frames = 0;
        ++done;
        if (over || packEnd) break;
    }
    return 0;
}
