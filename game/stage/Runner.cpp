// The hero on the rim: he runs to the piece in hand or to the focus, carries the
// piece over the wall, jumps between towers and stoops when a piece is placed.
#include "engine/Assets.h"
#include "engine/Canvas.h"
#include "game/content/PackStorage.h"
#include "game/rules/Pieces.h"
#include "game/content/PackStorage.h"
#include "game/stage/StageColours.h"
#include "game/stage/TowerView.h"

#include <algorithm>
#include <cmath>

namespace torvane {

namespace {

const char* const kRunRight = "torvane/torvane-run-right-pixel-sheet.png";
const char* const kRunLeft = "torvane/torvane-run-left-pixel-sheet.png";
const char* const kIdle = "torvane/torvane-idle-right-stabilized-pixel-sheet.png";
const char* const kDrop = "torvane/torvane-drop-down-empty-pixel-sheet.png";
const char* const kJump = "torvane/torvane-jump-right-pixel-sheet.png";

constexpr float kRunSpeed = 18.0f; // columns per second
constexpr float kDropSeconds = 0.4f;
constexpr int kFrameSize = 64;
constexpr int kFeet = 59; // the row of the frame on which the feet stand

// One 64 by 64 frame of a sheet of 3 by 2, its feet at (x, y).
void DrawFrame(pge::Sprite* target, const char* key, int frame, bool mirror, float x, float y, int anchor) {
    const pge::Sprite* sheet = adv::Assets::Sprite(key)->Sprite();
    adv::canvas::DrawSprite(target, sheet, static_cast<int>(std::lround(x)) - kFrameSize / 2,
                            static_cast<int>(std::lround(y)) - anchor, (frame % 3) * kFrameSize,
                            (frame / 3) * kFrameSize, kFrameSize, kFrameSize, mirror, 1.0f);
}

} // namespace

const std::array<const char*, 5>& TowerView::RunnerSheets() {
    static const std::array<const char*, 5> kSheets = {kRunRight, kRunLeft, kIdle, kDrop, kJump};
    return kSheets;
}

void TowerView::ResetRunner() {
    runnerTower = -1;
    runnerColumn = 0.0f;
    runnerDirection = 1;
    running = false;
    runTime = 0.0f;
    dropTime = -10.0f;
    jumping = false;
    jumpFromTower = 0;
    jumpFromColumn = 0.0f;
    jumpStart = 0.0f;
    jumpDuration = 0.5f;
}

void TowerView::UpdateRunner(const Game& game, float dt, float camera) {
    const float cols = static_cast<float>(game.config.width);
    const float time = lastTime;

    // 1. Where he should go: to the piece in hand, else to the focus within the camera's slack.
    float goal = runnerColumn;
    bool have = false;
    const char type = game.SelectedType();
    const bool attack = game.phase == Phase::Attack;
    if (type != 0 && (game.Building() || (attack && game.FreeRepair()))) {
        goal = static_cast<float>(game.cursorX) + static_cast<float>(ShapeWidth(Rotated(type, game.rotation))) * 0.5f;
        have = true;
    } else if (attack) {
        const bool focused = !game.FocusCells(game.focus).empty();
        if (focused && !game.config.ring) {
            goal = game.FocusCentre(game.focus);
            have = true;
        } else if (game.config.ring) {
            const float slack = GetSettings().cameraSlack;
            const float d = focused ? std::clamp(game.WrapDiff(game.FocusCentre(game.focus) - camera), -slack, slack)
                                    : 0.0f;
            const float v = d + camera;
            goal = v - cols * std::trunc(v / cols);
            have = true;
        }
    }

    // 2. Another tower: he is there at once, and the jump shows the way.
    if (runnerTower != game.activeTower) {
        if (runnerTower >= 0 && runnerTower < static_cast<int>(game.towers.size())) {
            runnerDirection = game.activeTower > runnerTower ? 1 : -1;
            jumping = true;
            jumpFromTower = runnerTower;
            jumpFromColumn = runnerColumn;
            jumpStart = time;
            jumpDuration = static_cast<float>(std::abs(game.activeTower - runnerTower) - 1) * 0.12f + 0.5f;
        }
        runnerTower = game.activeTower;
        running = false;
        runnerColumn = have ? goal : cols * 0.5f;
        return;
    }

    // 3. No running while in the air.
    if (jumping) {
        if (time - jumpStart < jumpDuration) return;
        jumping = false;
    }

    // 4. Running, the short way round a ring.
    const float d = game.WrapDiff(goal - runnerColumn);
    const float step = dt * kRunSpeed;
    if (std::fabs(d) <= step) {
        runnerColumn = goal;
        running = false;
        return;
    }
    runnerColumn += d > 0.0f ? step : -step;
    if (game.config.ring) runnerColumn = std::fmod(runnerColumn, cols);
    runnerDirection = d > 0.0f ? 1 : -1;
    running = true;
    runTime += dt;
}

void TowerView::DrawRunner(pge::Sprite* target, const Game& game, const Geo& geo) const {
    const float time = lastTime;
    const float rows = static_cast<float>(geo.rows);
    const bool mirror = runnerDirection < 0;

    if (jumping) {
        const float p = (time - jumpStart) / jumpDuration;
        float e = 0.0f;
        int frame = 0;
        if (p >= 1.0f) {
            e = 1.0f;
            frame = 5;
        } else if (p > 0.0f) {
            // A sixth crouching, two thirds in the air with smooth-step easing, a sixth landing.
            frame = std::min(static_cast<int>(p * 6.0f), 5);
            const float q = (p - 0.16666667f) / 0.6666667f;
            e = q >= 1.0f ? 1.0f : q <= 0.0f ? 0.0f : q * q * (3.0f - 2.0f * q);
        }
        pge::vf2d a = TowerGeo(layout, jumpFromTower).P(jumpFromColumn, rows, 1.0f);
        pge::vf2d b = geo.P(runnerColumn, rows, 1.0f);
        a.y -= geo.lift;
        b.y -= geo.lift;
        const float x = a.x + (b.x - a.x) * e;
        const float y = a.y + (b.y - a.y) * e - std::sin(e * 3.1415927f) * (std::fabs(b.x - a.x) * 0.12f + 10.0f);
        DrawFrame(target, kJump, frame, mirror, x, y, frame == 5 ? 54 : kFeet);
        return;
    }

    pge::vf2d at = geo.P(runnerColumn, rows, 1.0f);
    at.y -= geo.lift;
    // On a painted tower he stands on the painted rim.
    float delta = 0.0f;
    if (layout.integrated && frameScale > 0.0f) {
        const long c = std::clamp(std::lround((at.x - geo.cx) / frameScale + frame.centre_x),
                                  static_cast<long>(rim::kFirstColumn),
                                  static_cast<long>(rim::kFirstColumn + rim::kColumns - 1));
        const int b = (BackgroundIndex(game.level) % 5 + 5) % 5;
        const float y1 =
            frameScale * static_cast<float>(rim::kTop[static_cast<size_t>(b)][static_cast<size_t>(c - rim::kFirstColumn)]) -
            1.0f;
        delta = y1 - at.y;
        at.y = y1;
    }

    const float age = time - dropTime;
    const bool dropping = age >= 0.0f && age <= kDropSeconds;
    if (dropping)
        DrawFrame(target, kDrop, std::min(static_cast<int>(age / kDropSeconds * 6.0f), 5), mirror, at.x, at.y, kFeet);
    else if (running)
        DrawFrame(target, runnerDirection > 0 ? kRunRight : kRunLeft, static_cast<int>(runTime * 14.0f) % 6, false,
                  at.x, at.y, kFeet);
    else
        DrawFrame(target, kIdle, static_cast<int>(time * 8.0f) % 6, mirror, at.x, at.y, kFeet);

    // The piece in hand over his head while it is above the wall.
    const char type = game.SelectedType();
    if (!game.Building() || type == 0 || dropping || game.cursorY < geo.rows) return;
    const std::vector<Cell> shape = Rotated(type, game.rotation);
    const float width = static_cast<float>(ShapeWidth(shape));
    const pge::Pixel stone = ThemeFor(game.level).stone;
    for (const Cell& c : shape) {
        const float fx = static_cast<float>(c.x) + runnerColumn - width * 0.5f;
        const float fy = static_cast<float>(c.y) + rows + (geo.lift + 53.0f - delta) / geo.cellH;
        const std::vector<pge::vf2d> path = geo.CellPath(fx, fy, 0.0f);
        adv::canvas::FillPolygon(target, path, adv::canvas::Shade(stone, geo.Light(fx + 0.5f) * 1.08f, 255));
        adv::canvas::Polyline(target, path, stage::kAccent, 1.0f, true);
    }
}

} // namespace torvane
