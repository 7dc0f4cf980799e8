// A ring's overview: the arrows to dangers behind the tower and the round map of the
// whole ring with its sectors, the view and the blips of balls and holes.
#include "engine/Canvas.h"
#include "engine/Text.h"
#include "game/rules/Lang.h"
#include "game/stage/TowerView.h"

#include <algorithm>
#include <cmath>

namespace torvane {

namespace {

namespace cv = adv::canvas;

constexpr float kTwoPi = 6.2831855f;
constexpr float kArrowSpacing = 22.0f;
const pge::Pixel kAmber(255, 177, 59);
const pge::Pixel kAlarm(255, 74, 58);
const pge::Pixel kPin(30, 26, 24);

// Half the ring's view, in columns.
float HalfView(const Game& game) { return GetSettings().fieldOfView / 360.0f * static_cast<float>(game.config.width); }

} // namespace

std::vector<TowerView::EdgeArrow> TowerView::EdgeArrows(const Game& game, const Layout& lay) const {
    const float v = HalfView(game);
    std::vector<EdgeArrow> out;
    const auto add = [&](const std::vector<Cell>& cells, float left, bool isHole) {
        const float d = game.WrapDiff(game.ColumnCentre(cells) - lay.camera);
        if (std::fabs(d) > v) out.push_back({d, left, isHole, {}, 1.0f});
    };
    for (const Target& shot : game.targets) add(AimedCells(game, shot), shot.hitAt - game.clock, false);
    for (const Hole& hole : game.holes) {
        const std::vector<Cell> open = game.OpenCells(hole);
        if (!open.empty()) add(open, hole.collapseAt - game.clock, true);
    }
    std::stable_sort(out.begin(), out.end(), [](const EdgeArrow& a, const EdgeArrow& b) { return a.left < b.left; });
    // The most urgent on each side stands highest.
    const StageRect& s = lay.stage;
    int onSide[2] = {0, 0};
    for (EdgeArrow& arrow : out) {
        const bool right = arrow.d > 0.0f;
        const int index = onSide[right ? 1 : 0]++;
        arrow.dir = right ? -1.0f : 1.0f;
        arrow.tip = {right ? static_cast<float>(s.x + s.w - 76 - 4) : static_cast<float>(s.x + 6),
                     static_cast<float>(s.y) + static_cast<float>(s.h) * 0.42f + static_cast<float>(index) * kArrowSpacing};
    }
    return out;
}

void TowerView::DrawEdgeArrows(pge::PixelEngine& engine, const Game& game, const Layout& lay, float time) {
    if (std::fmod(time, 0.6f) > 0.42f) return; // blinking
    pge::Sprite* target = engine.GetDrawTarget();
    for (const EdgeArrow& arrow : EdgeArrows(game, lay)) {
        const pge::Pixel colour = arrow.isHole ? kAmber : kAlarm;
        const float x = arrow.tip.x, y = arrow.tip.y, dir = arrow.dir;
        const std::vector<pge::vf2d> triangle = {{x, y}, {x + dir * 12.0f, y - 8.0f}, {x + dir * 12.0f, y + 8.0f}};
        cv::FillPolygon(target, triangle, colour);
        cv::Polyline(target, triangle, pge::Pixel(0, 0, 0, 160), 1.0f, true);
        const std::string text = Trn("{0} Sp", std::lround(std::fabs(arrow.d))) + "  " +
                                 Decimal(std::max(arrow.left, 0.0f)) + " s";
        adv::text::DrawOutlined(engine, static_cast<int>(x + dir * 16.0f), static_cast<int>(y) - 4, text, colour,
                                pge::Pixel(0, 0, 0, 170), 1,
                                dir < 0.0f ? adv::text::Align::Right : adv::text::Align::Left);
    }
}

void TowerView::DrawMinimap(pge::PixelEngine& engine, const Game& game, const Layout& lay, float time) {
    // Everything below depends on these and on the pixels found; it stays within the circle
    // of radius 55 about the map's centre (pins reach 54.5, letters less).
    std::vector<int32_t> key{lay.stage.x, lay.stage.y, game.config.width, game.config.line,
                             static_cast<int32_t>(game.phase), static_cast<int32_t>(CurrentLanguage()),
                             static_cast<int32_t>(std::fmod(time, 0.5f) < 0.3f)};
    kept::Add(key, lay.camera);
    kept::Add(key, HalfView(game));
    for (int i = 0; i < game.config.width; ++i)
        key.insert(key.end(), {game.EvalTop(0, i), static_cast<int32_t>(game.IsAttackedColumn(i))});
    if (game.phase == Phase::Build)
        for (const Cell& c : game.GapCells(0)) key.insert(key.end(), {c.x, c.y});
    key.push_back(-1);
    for (size_t i = 0; i < game.config.sectors.size(); ++i) {
        const Sector& sector = game.config.sectors[i];
        key.insert(key.end(), {sector.centre, sector.width, static_cast<int32_t>(sector.letter),
                               static_cast<int32_t>(game.SectorActive(static_cast<int>(i)))});
    }
    key.push_back(-1);
    for (const Target& shot : game.targets) kept::Add(key, game.ColumnCentre(AimedCells(game, shot)));
    key.push_back(-1);
    for (const Hole& hole : game.holes) {
        const std::vector<Cell> open = game.OpenCells(hole);
        kept::Add(key, open.empty() ? -1.0f : game.ColumnCentre(open));
    }
    const int cx = lay.stage.x + 60, cy = lay.stage.y + 60;
    kept::Draw(engine.GetDrawTarget(), minimapLayer, key, {cx - 58, cy - 58, cx + 59, cy + 59},
               [&]() { DrawMinimapNow(engine, game, lay, time); });
}

void TowerView::DrawMinimapNow(pge::PixelEngine& engine, const Game& game, const Layout& lay, float time) const {
    pge::Sprite* target = engine.GetDrawTarget();
    const StageRect& s = lay.stage;
    const pge::vf2d m(static_cast<float>(s.x + 60), static_cast<float>(s.y + 60));
    const float cols = static_cast<float>(game.config.width);
    // The camera's column at the bottom of the map.
    const auto at = [&](float column, float radius) {
        const float a = kTwoPi * (column - lay.camera) / cols;
        return pge::vf2d(m.x + std::sin(a) * radius, m.y + std::cos(a) * radius);
    };
    // Points from lo to hi in `steps` equal steps at one radius.
    const auto arc = [&](float lo, float hi, int steps, float radius) {
        std::vector<pge::vf2d> points;
        for (int i = 0; i <= steps; ++i)
            points.push_back(at(lo + (hi - lo) * static_cast<float>(i) / static_cast<float>(steps), radius));
        return points;
    };

    cv::FillCircle(target, m, 55.0f, pge::Pixel(20, 16, 12, 128));

    // The columns: red short of the line, green at it, faint where not attacked, hatched over gaps.
    std::vector<bool> flagged(static_cast<size_t>(game.config.width), false);
    if (game.phase == Phase::Build)
        for (const Cell& c : game.GapCells(0))
            if (c.x >= 0 && c.x < game.config.width) flagged[static_cast<size_t>(c.x)] = true;
    const cv::Mask hatch = [](int x, int y) { return (x + y) % 4 == 0; };
    for (int i = 0; i < game.config.width; ++i) {
        const float c = static_cast<float>(i);
        std::vector<pge::vf2d> segment = arc(c, c + 1.0f, 2, 33.0f);
        const std::vector<pge::vf2d> inner = arc(c + 1.0f, c, 2, 26.0f);
        segment.insert(segment.end(), inner.begin(), inner.end());
        pge::Pixel colour = game.EvalTop(0, i) < game.config.line ? pge::Pixel(214, 66, 52) : pge::Pixel(111, 191, 130);
        colour.a = game.IsAttackedColumn(i) ? 255 : 115;
        cv::FillPolygon(target, segment, colour);
        if (flagged[static_cast<size_t>(i)]) cv::FillPolygon(target, segment, pge::Pixel(40, 10, 8, 230), hatch);
    }

    // The part of the ring in view.
    const float v = HalfView(game);
    const std::vector<pge::vf2d> view =
        arc(lay.camera - v, lay.camera + v, std::max(static_cast<int>(std::ceil(4.0f * v)), 2), 34.0f);
    std::vector<pge::vf2d> fan = {m};
    fan.insert(fan.end(), view.begin(), view.end());
    cv::FillPolygon(target, fan, pge::Pixel(255, 255, 255, 61));
    cv::Line(target, m, view.front(), pge::Pixel(255, 255, 255, 153), 1.0f);
    cv::Line(target, m, view.back(), pge::Pixel(255, 255, 255, 153), 1.0f);

    // The sectors, with their compass letters on pins.
    for (size_t i = 0; i < game.config.sectors.size(); ++i) {
        const Sector& sector = game.config.sectors[i];
        const bool on = game.phase == Phase::Attack && game.SectorActive(static_cast<int>(i));
        const pge::Pixel colour = on ? kAlarm : kAmber;
        const float centre = static_cast<float>(sector.centre), half = static_cast<float>(sector.width) * 0.5f;
        const float lo = centre - half + 0.15f, hi = centre + half - 0.15f;
        cv::Polyline(target, arc(lo, hi, std::max(static_cast<int>(std::ceil(2.0f * (hi - lo))), 2), 38.0f), colour,
                     2.0f, false, on ? 0.0f : 3.0f, on ? 0.0f : 2.0f);
        const pge::vf2d b = at(centre, 48.0f);
        const float length = std::hypot(m.x - b.x, m.y - b.y); // 48
        cv::Line(target, b, {b.x + (m.x - b.x) * 8.0f / length, b.y + (m.y - b.y) * 8.0f / length}, kPin, 3.0f);
        cv::FillCircle(target, b, 6.5f, kPin);
        adv::text::Draw(engine, static_cast<int>(b.x) + 1, static_cast<int>(b.y) - 3,
                        std::string(1, DirectionLetter(sector.letter)), colour, 1, adv::text::Align::Centre);
    }

    // Blips: the balls in flight and the open holes.
    const bool first = std::fmod(time, 0.5f) < 0.3f;
    for (const Target& shot : game.targets)
        cv::FillCircle(target, at(game.ColumnCentre(AimedCells(game, shot)), 29.5f), 2.5f,
                       first ? pge::Pixel(255, 60, 40) : pge::Pixel(255, 230, 120));
    for (const Hole& hole : game.holes) {
        const std::vector<Cell> open = game.OpenCells(hole);
        if (!open.empty())
            cv::FillCircle(target, at(game.ColumnCentre(open), 29.5f), 2.5f,
                           first ? kAmber : pge::Pixel(90, 40, 10));
    }
}

} // namespace torvane
