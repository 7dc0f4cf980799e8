// The attack: its start, the waves, the choice of targets and the frame step.
#include "game/rules/Impacts.h"
#include "game/rules/Lang.h"
#include "game/rules/TorvaneGame.h"

namespace torvane {

namespace {
// Seconds from an unannounced attack start to the first shot.
constexpr float kFirstShotDelay = 1.2f;
// Seconds from the last ball and hole to the end of the attack.
constexpr float kEndDelay = 1.4f;

} // namespace

void Game::BeginAttack() {
    if (phase != Phase::Announce) return;
    std::vector<char> spares(static_cast<size_t>(std::max(config.spareOnes, 0)), '1');
    spares.insert(spares.end(), static_cast<size_t>(std::max(config.spareTwos, 0)), '2');
    Shuffle(spares);
    if (supply.empty()) {
        supply = spares;
        selected = 0;
    } else {
        supply.insert(supply.begin() + selected + 1, spares.begin(), spares.end());
    }
    phase = Phase::Attack;
    rotation = 0;
    undo.valid = false;
    if (BuildsInAttack()) {
        cursorY = config.height;
        ClampCursor();
    } else {
        ClampFree();
        UpdateFreeY();
    }
    shotsLeft = config.shots;
    StartWave(0);
}

void Game::StartWave(int index) {
    wave = index;
    if (Waves()) {
        // The shots shared out as evenly as they go: each wave takes the difference of
        // two running shares, so no wave is more than one shot above another.
        const int sectors = static_cast<int>(config.sectors.size());
        const int n = config.shots;
        waveShotsLeft = n * (index + 1) / sectors - n * index / sectors;
        const float pause = GetSettings().waveBanner;
        nextShotAt = clock + pause;
        const std::string label = Tr(config.sectors[static_cast<size_t>(index)].label);
        Banner(index == 0 ? Trf("Angriffe kommen aus {0}!", {label})
                          : Trf("Angriffe kommen jetzt aus {0}!", {label}),
               pause);
        Sound(Sfx::Horn, 0.0f);
        return;
    }
    waveShotsLeft = shotsLeft;
    nextShotAt = clock + kFirstShotDelay;
    Say(Tr("Angriff!"));
    Sound(Sfx::Horn, 0.0f);
}

void Game::FireShot() {
    std::vector<int> candidates;
    for (const auto& [id, piece] : pieces) {
        bool inSector = config.sectors.empty();
        for (const Cell& c : piece.cells) {
            if (inSector) break;
            inSector = InActiveSector(c.x);
        }
        if (!inSector) continue;
        bool underFire = false;
        for (const Target& t : targets) underFire = underFire || t.piece == id;
        if (!underFire) candidates.push_back(id);
    }
    if (candidates.empty()) return;
    const int n = static_cast<int>(candidates.size());
    const float r = Random();
    FireAt(candidates[static_cast<size_t>(std::min(n - 1, static_cast<int>(static_cast<float>(n) * r)))]);
}

void Game::FireAt(int pieceId) {
    const Piece* piece = GetPiece(pieceId);
    if (!piece) return;
    Target target;
    target.id = nextShotId++;
    target.piece = pieceId;
    target.tower = piece->tower;
    target.firedAt = clock;
    target.hitAt = clock + config.flightTime;
    target.cells = piece->cells;
    targets.push_back(std::move(target));
    Sound(Sfx::Cannon, 0.0f);
    Sound(Sfx::Whistle, config.flightTime);
}

void Game::UpdateAttack() {
    // 1. A wave waits for its last ball, not for its holes.
    const int sectors = static_cast<int>(config.sectors.size());
    if (waveShotsLeft == 0 && shotsLeft > 0 && targets.empty() && wave + 1 >= 0 && wave + 1 < sectors)
        StartWave(wave + 1);

    // 2. At most one shot per frame; the next one is timed from now.
    if (shotsLeft > 0 && waveShotsLeft > 0 && clock >= nextShotAt) {
        FireShot();
        --shotsLeft;
        --waveShotsLeft;
        nextShotAt = clock + config.interval * (0.75f + 0.5f * Random());
    }

    // 3. Impacts; Impact adds no target, so each one is seen once.
    for (size_t i = 0; i < targets.size();) {
        if (clock >= targets[i].hitAt) {
            const Target hit = targets[i];
            targets.erase(targets.begin() + static_cast<std::ptrdiff_t>(i));
            Impact(hit);
        } else {
            ++i;
        }
    }

    // 4. The holes' fuses.
    RunFuses(*this);

    // 5. Keep the focus on a live goal; the free cursor follows a new one.
    const Settings& settings = GetSettings();
    const bool freeCursor = settings.repair_mode == 0 && !BuildsInAttack();
    const Focus before = focus;
    ValidateFocus();
    if (freeCursor && settings.auto_rotate && focus != before && focus.kind != Focus::None) CursorToFocus();

    // 6.
    if (freeCursor) UpdateFreeY();

    // 7. The end comes a moment after the last ball and hole.
    if (shotsLeft == 0 && targets.empty() && holes.empty()) {
        if (attackEndAt < 0.0f)
            attackEndAt = clock + kEndDelay;
        else if (attackEndAt <= clock)
            EndAttack();
    }
}

} // namespace torvane
