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

// Where a target's chip belongs: over its replacements, (cx, cy) the middle of its body.
// False when no replacement stands in view.
bool ChipPlace(const Game& game, const TowerView::Geo& g, float cell, const Target& shot, float& cx, float& cy) {
    if (std::none_of(shot.preps.begin(), shot.preps.end(),
                     [&](const Prep& prep) { return g.Visible(game.ColumnCentre(prep.cells)); }))
        return false;
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
    if (count == 0) return false;
    cx = sumX / static_cast<float>(count);
    cy = minY - cell * 1.35f;
    return true;
}

void DrawChip(pge::PixelEngine& engine, const TowerView::Chip& chip) {
    pge::Sprite* target = engine.GetDrawTarget();
    const float rx = chip.cx - chip.w * 0.5f, ry0 = chip.cy - 6.5f;
    cv::FillRoundRect(target, rx - 1.0f, ry0 - 1.0f, chip.w + 2.0f, 15.0f, 7.5f, pge::Pixel(90, 255, 140, 89));
    cv::FillRoundRect(target, rx, ry0, chip.w, 13.0f, 6.5f, chip.colour);
    cv::StrokeRoundRect(target, rx, ry0, chip.w, 13.0f, 6.5f, kWhite, 1.0f);
    adv::text::Draw(engine, static_cast<int>(chip.cx), static_cast<int>(chip.cy) - 3, chip.text, kWhite, 1,
                    Align::Centre);
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

// The box whose corners mark the focus, 3 pixels out from its cells; false when the focus
// has no cells or lies out of view.
bool FocusBox(const Game& game, const TowerView::Geo& g, float& left, float& top, float& right, float& bottom) {
    const std::vector<Cell> cells = game.FocusCells(game.focus);
    if (cells.empty() || std::fabs(g.Angle(game.FocusCentre(game.focus))) > g.halfAngle) return false;
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
    return true;
}

// Whether the focus shows where the piece in hand would fit: in the automatic repair, with
// something left to fill.
bool FitShown(const Game& game) {
    return game.SelectedType() != 0 && !game.FreeRepair() && !game.BuildsInAttack() &&
           !game.FocusOpen(game.focus).empty();
}

// The piece in hand fits nowhere at the focus, which "passt nicht" beside the box then says.
bool Misfit(const Game& game) { return FitShown(game) && game.RepairFit(game.SelectedType(), game.focus).empty(); }

// White corners about the focus and, for the piece in hand, where it would fit.
void DrawFocus(pge::PixelEngine& engine, const Game& game, const TowerView::Geo& g, float cell) {
    float left = 0.0f, right = 0.0f, top = 0.0f, bottom = 0.0f;
    if (!FocusBox(game, g, left, top, right, bottom)) return;
    pge::Sprite* target = engine.GetDrawTarget();
    const float a = cell * 0.45f;
    for (const float x : {left, right})
        for (const float y : {top, bottom}) {
            const float sx = x == left ? 1.0f : -1.0f, sy = y == top ? 1.0f : -1.0f;
            cv::Polyline(target, {{x + sx * a, y}, {x, y}, {x, y + sy * a}}, kWhite, 2.0f, false);
        }

    if (!FitShown(game)) return;
    const std::vector<Cell> fit = game.RepairFit(game.SelectedType(), game.focus);
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

std::vector<TowerView::Chip> TowerView::PrepChips(pge::PixelEngine& engine, const Game& game,
                                                  const Layout& lay) const {
    // What no chip may cover, as boxes from (x0, y0) to (x1, y1), each grown by the pixel
    // that is to stay free between: the focus's corners with what is written beside them.
    struct Box {
        float x0, y0, x1, y1;
        bool Meets(const Box& o) const { return x0 < o.x1 && o.x0 < x1 && y0 < o.y1 && o.y0 < y1; }
    };
    std::vector<Box> taken;
    float left = 0.0f, top = 0.0f, right = 0.0f, bottom = 0.0f;
    if (game.phase == Phase::Attack && FocusBox(game, TowerGeo(lay, game.activeTower), left, top, right, bottom)) {
        taken.push_back({left - 2.0f, top - 2.0f, right + 2.0f, bottom + 2.0f});
        if (Misfit(game)) {
            const float middle = (top + bottom) * 0.5f;
            taken.push_back({right, middle - 6.0f,
                             right + 7.0f + static_cast<float>(adv::text::Width(engine, Tr("passt nicht"))), middle + 6.0f});
        }
    }
    const float stageTop = static_cast<float>(lay.stage.y), stageBottom = static_cast<float>(lay.stage.y + lay.stage.h);
    const int steps = lay.stage.h / 16 + 1;
    std::vector<Chip> chips;
    for (const Target& shot : game.targets) {
        Chip chip;
        chip.tower = shot.tower;
        if (!ChipPlace(game, TowerGeo(lay, shot.tower), lay.cell, shot, chip.cx, chip.cy)) continue;
        const bool ready = game.TargetOpen(shot).empty();
        chip.text = Tr(ready ? "✓ Ersatz bereit" : "✓ teilweise bereit");
        chip.colour = ready ? pge::Pixel(31, 154, 74) : pge::Pixel(93, 138, 42);
        chip.w = static_cast<float>(adv::text::Width(engine, chip.text) + 10);
        // The halo and a pixel beside it, 16 high: the step by which a chip gives way.
        const auto box = [&chip](float cy) {
            return Box{chip.cx - chip.w * 0.5f - 2.0f, cy - 8.5f, chip.cx + chip.w * 0.5f + 2.0f, cy + 8.5f};
        };
        const auto free = [&](float cy) {
            return std::none_of(taken.begin(), taken.end(), [&](const Box& b) { return b.Meets(box(cy)); });
        };
        // Where it belongs, else the nearest free place above within the stage, else below;
        // with none at all, where it belongs.
        const auto place = [&]() -> float {
            if (free(chip.cy)) return chip.cy;
            for (const float dir : {-16.0f, 16.0f})
                for (int k = 1; k <= steps; ++k) {
                    const float cy = chip.cy + dir * static_cast<float>(k);
                    if (box(cy).y0 < stageTop || box(cy).y1 > stageBottom) break;
                    if (free(cy)) return cy;
                }
            return chip.cy;
        };
        chip.cy = place();
        taken.push_back(box(chip.cy));
        chips.push_back(chip);
    }
    return chips;
}

void TowerView::DrawBalls(pge::Sprite* target, const Game& game, const Layout& lay) const {
    for (const Target& shot : game.targets)
        DrawBall(target, game, TowerGeo(lay, shot.tower), lay.stage, lay.cell, shot,
                 CentreOf(game, AimedCells(game, shot)));
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

    // 5. The chips over the targets' replacements; the balls follow over all towers' labels.
    for (const Chip& chip : PrepChips(engine, game, lay))
        if (chip.tower == tower) DrawChip(engine, chip);

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
