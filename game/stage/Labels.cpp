// What is written and marked over each tower: the cursor shape, the Defence Line's
// name, the percentages, the alarm for another tower, prep chips, the flying ball,
// the holes' countdowns and the focus with the fitting replacement.
#include "engine/Canvas.h"
#include "engine/Text.h"
#include "game/rules/Lang.h"
#include "game/stage/StageColours.h"
#include "game/stage/TowerView.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace torvane {

namespace {

namespace cv = adv::canvas;
using adv::text::Align;

constexpr float kPi = 3.1415927f;
const pge::Pixel kWhite(255, 255, 255);
const pge::Pixel kAmber(255, 177, 59);
const pge::Pixel kAlarm(255, 74, 58);
const pge::Pixel kMet(143, 240, 164);
const pge::Pixel kMissed(255, 138, 122);

int Round(float v) { return static_cast<int>(std::lround(v)); }

std::string Num(int v) { return std::to_string(v); }

// The chip over the replacements laid out for a target.
void DrawPrepChip(pge::PixelEngine& engine, const Game& game, const TowerView::Geo& g, float cell, const Target& shot) {
    float sumX = 0.0f, minY = 0.0f;
    int count = 0;
    for (const Prep& prep : shot.preps)
        for (const Cell& c : prep.cells)
            for (const float dx : {0.0f, 1.0f}) {
                const pge::vf2d p = g.P(static_cast<float>(c.x) + dx, static_cast<float>(c.y + 1), 1.0f);
                sumX += p.x;
                minY = count == 0 ? p.y : std::min(minY, p.y);
                ++count;
            }
    if (count == 0) return;
    const float mx = sumX / static_cast<float>(count);
    const float yt = minY - cell * 1.35f;
    const bool ready = game.TargetOpen(shot).empty();
    const std::string text = Tr(ready ? "✓ Ersatz bereit" : "✓ teilweise bereit");
    const pge::Pixel colour = ready ? pge::Pixel(31, 154, 74) : pge::Pixel(93, 138, 42);
    pge::Sprite* target = engine.GetDrawTarget();
    const float w = static_cast<float>(adv::text::Width(engine, text) + 10);
    const float rx = mx - w * 0.5f, ry0 = yt - 6.5f;
    cv::FillRoundRect(target, rx - 1.0f, ry0 - 1.0f, w + 2.0f, 15.0f, 7.5f, pge::Pixel(90, 255, 140, 89));
    cv::FillRoundRect(target, rx, ry0, w, 13.0f, 6.5f, colour);
    cv::StrokeRoundRect(target, rx, ry0, w, 13.0f, 6.5f, kWhite, 1.0f);
    adv::text::Draw(engine, static_cast<int>(mx), static_cast<int>(yt) - 3, text, kWhite, 1, Align::Centre);
}

// The cannon ball from below the stage into the picture, growing smaller as it flies.
void DrawBall(pge::Sprite* target, const Game& game, const TowerView::Geo& g, const StageRect& s, float cell,
              const Target& shot, pge::vf2d centre) {
    if (std::fabs(g.Angle(centre.x)) > g.halfAngle) return;
    const float f = (game.clock - shot.firedAt) / std::max(shot.hitAt - shot.firedAt, 0.001f);
    if (!(f > 0.35f)) return; // the cannon is far off
    const float q = (f - 0.35f) / 0.65f;
    const pge::vf2d p = g.P(centre.x, centre.y, 1.0f);
    const pge::vf2d start(static_cast<float>(s.x) + static_cast<float>(s.w) * 0.5f,
                          static_cast<float>(s.y + s.h) + cell * 2.0f);
    pge::vf2d b(start.x + (p.x - start.x) * q, start.y + (p.y - start.y) * q);
    b.y -= std::sin(q * kPi) * static_cast<float>(s.h) * 0.25f;
    const float radius = (1.6f - q * 1.25f) * cell;
    cv::FillCircle(target, b, radius, pge::Pixel(20, 17, 16));
    cv::FillCircle(target, {b.x - radius * 0.3f, b.y - radius * 0.3f}, radius * 0.5f, pge::Pixel(107, 98, 92, 150));
    cv::FillCircle(target, {b.x - radius * 0.4f, b.y - radius * 0.4f}, radius * 0.18f, pge::Pixel(160, 150, 140, 200));
}

// White corners about the focus and, for the piece in hand, where it would fit.
void DrawFocus(pge::PixelEngine& engine, const Game& game, const TowerView::Geo& g, float cell) {
    const std::vector<Cell> cells = game.FocusCells(game.focus);
    if (cells.empty() || std::fabs(g.Angle(game.FocusCentre(game.focus))) > g.halfAngle) return;
    float left = 0.0f, right = 0.0f, top = 0.0f, bottom = 0.0f;
    bool first = true;
    for (const Cell& c : cells)
        for (const int i : {0, 1})
            for (const int j : {0, 1}) {
                const pge::vf2d p = g.P(static_cast<float>(c.x + i), static_cast<float>(c.y + j), 1.0f);
                left = first ? p.x : std::min(left, p.x);
                right = first ? p.x : std::max(right, p.x);
                top = first ? p.y : std::min(top, p.y);
                bottom = first ? p.y : std::max(bottom, p.y);
                first = false;
            }
    left -= 3.0f;
    right += 3.0f;
    top -= 3.0f;
    bottom += 3.0f;
    pge::Sprite* target = engine.GetDrawTarget();
    const float a = cell * 0.45f;
    for (const float x : {left, right})
        for (const float y : {top, bottom}) {
            const float sx = x == left ? 1.0f : -1.0f, sy = y == top ? 1.0f : -1.0f;
            cv::Polyline(target, {{x + sx * a, y}, {x, y}, {x, y + sy * a}}, kWhite, 2.0f, false);
        }

    const char type = game.SelectedType();
    if (type == 0 || game.FreeRepair() || game.BuildsInAttack() || game.FocusOpen(game.focus).empty()) return;
    const std::vector<Cell> fit = game.RepairFit(type, game.focus);
    if (fit.empty()) {
        adv::text::DrawOutlined(engine, Round(right + 5.0f), Round((top + bottom) * 0.5f - 4.0f), Tr("passt nicht"),
                                kWhite, stage::kTextDark, 1, Align::Left);
        return;
    }
    for (const Cell& c : fit) {
        const std::vector<pge::vf2d> path = g.CellPath(static_cast<float>(c.x), static_cast<float>(c.y), 0.86f);
        cv::FillPolygon(target, path, pge::Pixel(255, 177, 59, 89));
        cv::Polyline(target, path, kAmber, 1.5f, true);
    }
}

} // namespace

pge::vf2d TowerView::CentreOf(const Game& game, const std::vector<Cell>& cells) {
    float rows = 0.0f;
    for (const Cell& c : cells) rows += static_cast<float>(c.y) + 0.5f;
    return {game.ColumnCentre(cells), cells.empty() ? 0.0f : rows / static_cast<float>(cells.size())};
}

const std::vector<Cell>& TowerView::AimedCells(const Game& game, const Target& shot) {
    const Piece* piece = game.GetPiece(shot.piece);
    return piece ? piece->cells : shot.cells;
}

void TowerView::DrawStanding(pge::PixelEngine& engine, const Game& game, const Layout& lay, int tower) const {
    const Geo g = TowerGeo(lay, tower);
    const float cell = lay.cell;
    const float rows = static_cast<float>(g.rows);
    const LevelConfig& config = game.config;
    const std::vector<pge::vf2d> line = g.FrontCurve(static_cast<float>(config.line), 1.0f, 0.0f);
    const pge::vf2d R = line.back();
    const float margin = lay.integrated ? frameScale * 16.0f : cell * 0.5f;
    const bool build = game.phase == Phase::Build;

    // 3. How much of the line stands, against the level's need.
    const std::string need = Num(config.need);
    const int overall = game.OverallPct();
    const pge::Pixel judged = overall >= config.need ? kMet : kMissed;
    const int towers = static_cast<int>(game.towers.size());
    if (towers == 1) {
        const int x = Round(margin + R.x);
        if (!config.ring) {
            adv::text::DrawOutlined(engine, x, Round(R.y - 4.0f),
                                    Trf(build ? "Nach Abnahme {0} % / Ziel {1} %" : "{0} % / Ziel {1} %",
                                        {Num(overall), need}),
                                    judged, stage::kTextDark, 1, Align::Left);
        } else {
            adv::text::DrawOutlined(engine, x, Round(R.y - 5.0f - 4.0f),
                                    Trf(build ? "Nach Abnahme {0} %" : "{0} %", {Num(overall)}), judged,
                                    stage::kTextDark, 1, Align::Left);
            adv::text::DrawOutlined(engine, x, Round(R.y + 6.0f - 4.0f), Trf("Ziel {0} %", {need}), judged,
                                    stage::kTextDark, 1, Align::Left);
        }
    } else {
        adv::text::DrawOutlined(engine, Round(g.cx), Round(g.baseY + cell * 0.5f + g.ry * 1.15f + cell * 0.55f - 4.0f),
                                Trf("Turm {0}: {1} %", {Num(tower + 1), Num(game.PctAbove(tower))}),
                                pge::Pixel(243, 237, 226), stage::kTextDark, 1, Align::Centre);
        if (tower == towers - 1) {
            const std::string total =
                Trf(build ? "Nach Abnahme {0} % / Ziel {1} %" : "Gesamt {0} % / Ziel {1} %", {Num(overall), need});
            const int x = Round(cell * 0.5f + R.x);
            if (x + adv::text::Width(engine, total) < lay.stage.x + lay.stage.w - 4)
                adv::text::DrawOutlined(engine, x, Round(R.y - 4.0f), total, judged, stage::kTextDark, 1, Align::Left);
        }
    }

    // 4. Danger on another tower: the keys that switch there, blinking.
    const auto onThis = [tower](const auto& item) { return item.tower == tower; };
    if (tower != game.activeTower && std::sin(game.clock * 12.0f) > -0.3f &&
        (std::any_of(game.targets.begin(), game.targets.end(), onThis) ||
         std::any_of(game.holes.begin(), game.holes.end(), onThis)))
        adv::text::DrawOutlined(engine, Round(g.cx), Round(g.baseY - cell * rows - g.ry - cell * 0.8f - 8.0f), "! ← →",
                                kAlarm, stage::kTextDark, 2, Align::Centre);

}

void TowerView::DrawTowerLabels(pge::PixelEngine& engine, const Game& game, const Layout& lay, int tower) {
    pge::Sprite* target = engine.GetDrawTarget();
    const Geo g = TowerGeo(lay, tower);
    const float cell = lay.cell;
    const float t = game.clock;
    const pge::vf2d L = g.FrontCurve(static_cast<float>(game.config.line), 1.0f, 0.0f).front();
    const float margin = lay.integrated ? frameScale * 16.0f : cell * 0.5f;
    const bool active = game.phase == Phase::Build || game.phase == Phase::Attack;
    const bool mine = tower == game.activeTower;
    const pge::Pixel stone = ThemeFor(game.level).stone;

    // 1. The piece in hand where it stands, coloured in free repair by whether it may go there.
    const bool freeRepair = game.phase == Phase::Attack && game.FreeRepair();
    if (game.SelectedType() != 0 && mine && ((game.Building() && game.cursorY < g.rows) || freeRepair)) {
        pge::Pixel accent = stage::kAccent, halo(0, 0, 0, 0);
        if (freeRepair) {
            const int placement = game.FreePlacement();
            accent = placement == 1 ? pge::Pixel(125, 255, 164)
                     : placement == 2 ? pge::Pixel(110, 230, 255)
                                      : pge::Pixel(255, 90, 70);
            halo = placement == 1 ? pge::Pixel(90, 255, 140, 77)
                   : placement == 2 ? pge::Pixel(90, 210, 255, 77)
                                    : pge::Pixel(255, 70, 50, 64);
        }
        for (const Cell& c : game.CursorCells()) {
            const float fx = static_cast<float>(c.x), fy = static_cast<float>(c.y);
            cv::FillPolygon(target, g.CellPath(fx, fy, 1.1f), halo);
            const std::vector<pge::vf2d> path = g.CellPath(fx, fy, 0.0f);
            cv::FillPolygon(target, path, cv::Shade(stone, g.Light(fx + 0.5f) * 1.08f, freeRepair ? 215 : 255));
            cv::Polyline(target, path, accent, freeRepair ? 1.5f : 1.0f, true);
        }
    }

    // 2. The line's name, left of the line, unless it would run off the stage.
    if (tower == 0) {
        const std::string name = "Defence Line";
        if (L.x - margin - static_cast<float>(adv::text::Width(engine, name)) > 2.0f)
            adv::text::DrawOutlined(engine, Round(L.x - margin), Round(L.y - 4.0f), name, pge::Pixel(236, 70, 58),
                                    stage::kTextDark, 1, Align::Right);
    }
    if (active) DrawStanding(engine, game, lay, tower);

    // 5. The targets: the chip over their replacements and the ball on its way.
    for (const Target& shot : game.targets) {
        if (shot.tower != tower) continue;
        if (std::any_of(shot.preps.begin(), shot.preps.end(),
                        [&](const Prep& prep) { return g.Visible(game.ColumnCentre(prep.cells)); }))
            DrawPrepChip(engine, game, g, cell, shot);
        DrawBall(target, game, g, lay.stage, cell, shot, CentreOf(game, AimedCells(game, shot)));
    }

    // 6. The seconds each hole has left before what stands above it falls.
    for (const Hole& hole : game.holes) {
        if (hole.tower != tower) continue;
        const pge::vf2d centre = CentreOf(game, hole.cells);
        if (std::fabs(g.Angle(centre.x)) > g.halfAngle) continue;
        const float left = std::ceil(hole.collapseAt - t);
        const pge::vf2d p = g.P(centre.x, centre.y, 1.0f);
        adv::text::DrawOutlined(engine, Round(p.x), Round(p.y - 8.0f), Num(left < 1.0f ? 0 : static_cast<int>(left)),
                                kAmber, stage::kTextDark, 2, Align::Centre);
    }

    // 7. The focus of the repair.
    if (game.phase == Phase::Attack && mine) DrawFocus(engine, game, g, cell);
}

} // namespace torvane
