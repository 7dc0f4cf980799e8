#include "game/stage/TowerView.h"

#include "engine/Canvas.h"
#include "engine/Text.h"
#include "game/rules/Pieces.h"
#include "game/stage/StageColours.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>

namespace torvane {

using namespace stage;

namespace {
const pge::Pixel kDashed(255, 255, 255, 89);
} // namespace

TowerView::TowerView() {
    for (int i = 0; i < 6; ++i) {
        Cloud c;
        c.x = Random() * 1.3f;
        c.y = 0.07f + Random() * 0.28f;
        c.size = 0.6f + Random() * 0.9f;
        c.speed = 0.004f + Random() * 0.006f;
        clouds.push_back(c);
    }
}

float TowerView::Random() { return std::generate_canonical<float, 24>(rng); }

void TowerView::Reset() {
    particles.clear();
    floaters.clear();
    flashes.clear();
    backgroundLevel = -1;
    ResetRunner();
}

bool TowerView::FilledAt(int x, int y) const {
    if (!mapTower) return false;
    const int i = x - mapX;
    const int j = y - mapY;
    if (i < 0 || j < 0 || i >= mapW || j >= mapH) return false;
    const int32_t id = wallMap[static_cast<size_t>(j) * static_cast<size_t>(mapW) + static_cast<size_t>(i)];
    return id >= 0 && static_cast<size_t>(id) < mapTower->cells.size() && mapTower->cells[static_cast<size_t>(id)] != 0;
}

void TowerView::DrawMessage(pge::PixelEngine& engine, const std::string& text, float fade) const {
    if (text.empty() || fade <= 0.0f) return;
    const int x = layout.stage.x + layout.stage.w / 2;
    const int y = int(layout.stripHeight) + layout.stage.y + (layout.ring ? 8 : 18);
    adv::text::DrawOutlined(engine, x, y, text, adv::canvas::WithAlpha(pge::WHITE, fade),
                            adv::canvas::WithAlpha(pge::BLACK, fade * 0.6f), 2, adv::text::Align::Centre);
}

void TowerView::Draw(pge::PixelEngine& engine, const Game& game, const StageRect& stage, float time, float camera) {
    // The background first, so that the layout below sees the frame of the image.
    if (!background || backgroundLevel != game.level || stage.w != cachedStage.w || stage.h != cachedStage.h ||
        stage.y != cachedStage.y)
        BuildBackground(game, ComputeLayout(game, stage));
    layout = ComputeLayout(game, stage);
    layout.camera = camera;

    const float dt = std::clamp(time - lastTime, 0.0f, 0.1f);
    lastTime = time;
    UpdateRunner(game, dt, camera);

    DrawBackground(engine, game, layout, time);
    const int towers = static_cast<int>(game.towers.size());
    for (int t = 0; t < towers; ++t) DrawTower(engine, game, layout, t);
    // No tower is drawn over another's labels, and no label over a ball.
    for (int t = 0; t < towers; ++t) DrawTowerLabels(engine, game, layout, t);
    DrawBalls(engine.GetDrawTarget(), game, layout);

    const Phase phase = game.phase;
    if (phase != Phase::Build && phase != Phase::Inspect && phase != Phase::Attack) {
        DrawEffects(engine, game, layout);
        return;
    }
    DrawRunner(engine.GetDrawTarget(), game, TowerGeo(layout, game.activeTower));
    DrawEffects(engine, game, layout);
    if (phase != Phase::Inspect) DrawCarousel(engine, game, layout);
    if (layout.ring) {
        DrawMinimap(engine, game, layout, time);
        DrawEdgeArrows(engine, game, layout, time);
    }
}

void TowerView::DrawBehindMarks(pge::Sprite* target, const Layout& lay, const Geo& g, int tower, uint64_t wallVersion,
                                const std::vector<int32_t>& marks, float width, float x0, float y0, float x1, float y1,
                                const std::function<void()>& draw) {
    if (!target || !(std::isfinite(x0) && std::isfinite(y0) && std::isfinite(x1) && std::isfinite(y1))) {
        draw();
        return;
    }
    const float pad = std::ceil(width) + 3.0f;
    const float limit = static_cast<float>(std::max(target->width, target->height)) + pad;
    const auto at = [limit](float v) { return static_cast<int>(std::clamp(v, -limit, limit)); };
    const adv::canvas::Rect rect{at(std::floor(x0) - pad), at(std::floor(y0) - pad), at(std::ceil(x1) + pad),
                                 at(std::ceil(y1) + pad)};
    // The material needs no place in the key: a new one renews the wall, and so its version.
    std::vector<int32_t> key;
    for (const float v : {g.cx, g.rx, g.ry, g.baseY, g.cellH, g.camera, g.halfAngle, g.lift, lay.cell})
        kept::Add(key, v);
    for (const int32_t v : {g.cols, g.rows, static_cast<int32_t>(g.ring), static_cast<int32_t>(lay.integrated)})
        kept::Add(key, v);
    kept::Add(key, wallVersion);
    key.insert(key.end(), marks.begin(), marks.end());
    if (layers.size() <= static_cast<size_t>(tower)) layers.resize(static_cast<size_t>(tower) + 1);
    kept::Draw(target, layers[static_cast<size_t>(tower)], key, rect, draw);
}

void TowerView::DrawTower(pge::PixelEngine& engine, const Game& game, const Layout& lay, int tower) {
    namespace cv = adv::canvas;
    pge::Sprite* target = engine.GetDrawTarget();
    const Geo g = TowerGeo(lay, tower);
    const pge::Pixel m = ThemeFor(game.level).stone;
    const float cell = lay.cell;
    const float t = game.clock;
    const float w = std::sin(g.halfAngle) * g.rx; // the silhouette's half width
    const float rows = static_cast<float>(g.rows);
    const LevelConfig& config = game.config;
    const bool active = game.phase == Phase::Build || game.phase == Phase::Attack;

    // Steps 1 to 7 draw behind the marks: their shapes first, so that the rectangle they
    // touch is known before anything is drawn.
    const WallCache& wall = PrepareWall(game, g, tower);
    const float top = g.baseY - rows * g.cellH;
    std::vector<pge::vf2d> back;
    for (int i = 0; i <= 64; ++i) {
        const float a = 2.0f * g.halfAngle * static_cast<float>(i) / 64.0f - g.halfAngle;
        back.push_back({g.cx + std::sin(a) * g.rx, top - std::cos(a) * g.ry});
    }
    const std::vector<pge::vf2d> zone = g.Zone();
    std::vector<pge::vf2d> upper, lower;
    if (!lay.integrated) {
        upper = g.FrontCurve(rows, 1.0f, g.ring ? 0.0f : 0.84f / static_cast<float>(g.cols));
        for (auto it = upper.rbegin(); it != upper.rend(); ++it) lower.push_back({it->x, it->y + 4.0f});
    }
    const float poleTop = g.P(0.0f, rows, 1.0f).y;
    const float poleFoot = g.baseY + cell * 0.3f;

    // The marks that stay while the wall does: the red gaps of the attacked columns short
    // of the line (8), the gaps that the inspection will bring down (9), the Defence Line
    // (10) and which tower is active (11). They are listed first, and the list is part of
    // what decides whether the frame before can be copied.
    std::vector<Cell> red, gaps;
    if (active)
        for (int x = 0; x < g.cols; ++x) {
            const int top = game.ColumnTop(tower, x);
            if (!(game.EvalTop(tower, x) < config.line && game.IsAttackedColumn(x) && top < config.line)) continue;
            for (int y = top; y < config.line; ++y) red.push_back({x, y});
        }
    if (game.phase == Phase::Build)
        for (const Cell& c : game.GapCells(tower))
            if (!(std::fabs(g.Angle(static_cast<float>(c.x) + 0.5f)) > g.halfAngle)) gaps.push_back(c);
    const std::vector<pge::vf2d> line = g.FrontCurve(static_cast<float>(config.line), 1.0f, 0.0f);
    const float lineWidth = std::max(cell * 0.15f, 2.0f);
    const int activeMark = active && config.towers >= 2 ? (tower == game.activeTower ? 1 : 2) : 0;
    std::vector<int32_t> marks{static_cast<int32_t>(red.size()), static_cast<int32_t>(gaps.size()), config.line,
                               activeMark};
    for (const std::vector<Cell>* cells : {&red, &gaps})
        for (const Cell& c : *cells) marks.insert(marks.end(), {c.x, c.y});

    // The rectangle: every point handed to a shape, the plinth's boxes and the wall map,
    // with room for the widest line (3 pixels) and the rounding to pixel centres.
    float x0 = static_cast<float>(wall.x), y0 = static_cast<float>(wall.y);
    float x1 = static_cast<float>(wall.x + wall.w), y1 = static_cast<float>(wall.y + wall.h);
    const auto add = [&](float x, float y) {
        x0 = std::min(x0, x), x1 = std::max(x1, x), y0 = std::min(y0, y), y1 = std::max(y1, y);
    };
    const auto addBox = [&](float cx, float cy, float rx, float ry) { add(cx - rx, cy - ry), add(cx + rx, cy + ry); };
    for (const std::vector<pge::vf2d>* points : std::initializer_list<const std::vector<pge::vf2d>*>{&back, &zone, &upper, &lower})
        for (const pge::vf2d& p : *points) add(p.x, p.y);
    for (const pge::vf2d& p : line) add(p.x, p.y);
    for (const std::vector<Cell>* cells : {&red, &gaps})
        for (const Cell& c : *cells) {
            for (const pge::vf2d& p : g.CellPath(static_cast<float>(c.x), static_cast<float>(c.y), 0.0f)) add(p.x, p.y);
            const pge::vf2d p = g.P(static_cast<float>(c.x) + 0.5f, static_cast<float>(c.y) + 0.5f, 1.0f);
            const float h = std::fabs(g.Light(static_cast<float>(c.x) + 0.5f) * cell * 0.2f);
            addBox(p.x, p.y, h, h);
        }
    for (const Speckle& sp : wall.speckles) add(static_cast<float>(sp.x), static_cast<float>(sp.y));
    for (const Face& face : wall.faces)
        for (const pge::vf2d& p : face.outline) add(p.x, p.y);
    if (!lay.integrated) {
        addBox(g.cx + w * 0.3f, g.baseY + cell * 0.5f + g.ry * 0.6f, w * 1.4f, g.ry * 1.2f);
        addBox(g.cx, g.baseY + cell * 0.5f, w * 1.13f, g.ry * 1.15f);
        addBox(g.cx, g.baseY, w * 1.13f, g.ry * 1.15f);
        addBox(g.cx, g.baseY, w * 2.26f, cell * 0.5f + 1.0f);
        addBox(g.cx, poleTop, w + 3.0f, 0.0f);
        addBox(g.cx, poleFoot, w + 3.0f, 0.0f);
    }
    const auto drawBack = [&]() {
        // 1. Plinth.
        if (!lay.integrated) {
            cv::FillEllipse(target, {g.cx + w * 0.3f, g.baseY + cell * 0.5f + g.ry * 0.6f}, w * 1.4f, g.ry * 1.2f,
                            pge::Pixel(0, 0, 0, 56));
            const pge::Pixel side = cv::Shade(m, 0.42f, 255);
            cv::FillEllipse(target, {g.cx, g.baseY + cell * 0.5f}, w * 1.13f, g.ry * 1.15f, side);
            cv::FillRect(target, static_cast<int>(g.cx - w * 1.13f), static_cast<int>(g.baseY),
                         static_cast<int>(w * 2.26f), static_cast<int>(g.baseY + cell * 0.5f - g.baseY) + 1, side);
            cv::FillEllipse(target, {g.cx, g.baseY}, w * 1.13f, g.ry * 1.15f, cv::Shade(m, 0.62f, 255));
        }

        // 2. The back of the rim, seen through the open tower.
        cv::Polyline(target, back, kDashed, 1.0f, false, 4.0f, 3.0f);

        // 3. Scaffold poles behind the wall.
        if (!lay.integrated) {
            for (const float s : {-1.0f, 1.0f}) {
                const float x = g.cx + s * (w + 2.0f);
                cv::Line(target, {x, poleTop}, {x, poleFoot}, kWoodDark, 3.0f);
                cv::Line(target, {x - s, poleTop}, {x - s, poleFoot}, kWood, 1.0f);
            }
        }

        // 4. The wall, and from now on a mask that shows only where no block stands.
        PaintWall(target, wall);
        const cv::Mask open = [this](int x, int y) { return !FilledAt(x, y); };

        // 6. The zone's outline passes behind the blocks.
        cv::Polyline(target, zone, kDashed, 1.0f, true, 4.0f, 3.0f, open);

        // 7. Ledge: a wooden beam along the rim.
        if (!lay.integrated) {
            std::vector<pge::vf2d> beam = upper;
            beam.insert(beam.end(), lower.begin(), lower.end());
            cv::FillPolygon(target, beam, kWood);
            cv::Polyline(target, upper, kWoodLight, 1.0f, false);
            cv::Polyline(target, lower, kWoodDark, 1.0f, false);
        }

        // 8. The attacked columns short of the line: the red gaps the player must close.
        for (const Cell& c : red) {
            const float fx = static_cast<float>(c.x), fy = static_cast<float>(c.y);
            cv::FillPolygon(target, g.CellPath(fx, fy, 0.0f), pge::Pixel(214, 60, 44, 77));
            cv::Polyline(target, g.CellPath(fx, fy, 0.78f), pge::Pixel(255, 140, 110, 153), 1.0f, true);
        }

        // 9. In the build, the gaps that the inspection will bring down.
        for (const Cell& c : gaps) {
            const float fx = static_cast<float>(c.x), fy = static_cast<float>(c.y);
            cv::FillPolygon(target, g.CellPath(fx, fy, 0.0f), pge::Pixel(40, 10, 8, 102));
            const pge::vf2d p = g.P(fx + 0.5f, fy + 0.5f, 1.0f);
            const float h = g.Light(fx + 0.5f) * cell * 0.2f;
            const pge::Pixel cross(235, 60, 45, 230);
            cv::Line(target, {p.x - h, p.y - h}, {p.x + h, p.y + h}, cross, 1.5f);
            cv::Line(target, {p.x + h, p.y - h}, {p.x - h, p.y + h}, cross, 1.5f);
        }

        // 10. The Defence Line.
        cv::Polyline(target, line, pge::Pixel(198, 40, 30, 235), lineWidth, false);

        // 11. Which tower is active.
        if (activeMark == 1)
            cv::Polyline(target, zone, kAccent, 2.0f, true);
        else if (activeMark == 2)
            cv::FillPolygon(target, zone, pge::Pixel(10, 12, 16, 51));
    };
    DrawBehindMarks(target, lay, g, tower, wall.version, marks, std::max(lineWidth, 3.0f), x0, y0, x1, y1, drawBack);

    const auto cellAt = [&](int x, int y) {
        return x >= 0 && y >= 0 && x < g.cols && y < g.rows ? game.CellAt(tower, x, y) : 0;
    };

    // 12. Holes, with a pulsing outline.
    const uint8_t pulse = Alpha((std::sin(t * 14.0f) * 0.5f + 0.5f) * 0.5f + 0.5f);
    for (const Hole& hole : game.holes) {
        if (hole.tower != tower) continue;
        for (const Cell& c : hole.cells) {
            if (cellAt(c.x, c.y) != 0) continue;
            const float fx = static_cast<float>(c.x), fy = static_cast<float>(c.y);
            cv::FillPolygon(target, g.CellPath(fx, fy, 0.0f), pge::Pixel(15, 10, 8, 209));
            cv::Polyline(target, g.CellPath(fx, fy, 0.78f), pge::Pixel(255, 160, 40, pulse), 1.0f, true, 3.0f, 2.0f);
        }
    }

    // 13. Targets, blinking, and the replacements laid out for them.
    const pge::Pixel aim = std::sin(t * 22.0f) > 0.0f ? pge::Pixel(230, 40, 30, 158) : pge::Pixel(255, 230, 120, 89);
    const pge::Pixel prepGlow(90, 255, 140, Alpha(std::sin(t * 7.0f) * 0.15f + 0.35f));
    for (const Target& shot : game.targets) {
        if (shot.tower != tower) continue;
        for (const Cell& c : AimedCells(game, shot)) {
            const bool covered = std::any_of(shot.preps.begin(), shot.preps.end(), [&](const Prep& p) {
                return std::find(p.cells.begin(), p.cells.end(), c) != p.cells.end();
            });
            if (!covered) cv::FillPolygon(target, g.CellPath(static_cast<float>(c.x), static_cast<float>(c.y), 0.0f), aim);
        }
        for (const Prep& prep : shot.preps)
            for (const Cell& c : prep.cells) {
                const float fx = static_cast<float>(c.x), fy = static_cast<float>(c.y);
                cv::FillPolygon(target, g.CellPath(fx, fy, 1.12f), prepGlow);
                cv::FillPolygon(target, g.CellPath(fx, fy, 0.86f), cv::Shade(m, g.Light(fx + 0.5f) * 1.12f, 255));
                cv::Polyline(target, g.CellPath(fx, fy, 0.9f), pge::Pixel(125, 255, 164), 1.5f, true);
            }
    }

    // 14. Flashes of fresh pieces, fading in 1.2 seconds.
    for (const Flash& flash : flashes) {
        const float f = 1.0f - (t - flash.born) / 1.2f;
        if (flash.tower != tower || !(f > 0.0f)) continue;
        for (const Cell& c : flash.cells) {
            const float fx = static_cast<float>(c.x), fy = static_cast<float>(c.y);
            cv::FillPolygon(target, g.CellPath(fx, fy, 0.0f), pge::Pixel(140, 255, 170, Alpha(f * 0.55f)));
            cv::Polyline(target, g.CellPath(fx, fy, 0.0f), pge::Pixel(255, 255, 255, Alpha(f)), 1.0f, true);
        }
    }

    // 15. The ghost: where the piece in hand would land.
    const char type = game.SelectedType();
    if (type != 0 && game.Building() && tower == game.activeTower) {
        const int gy = game.GhostY();
        if (gy >= 0)
            for (const Cell& c : Rotated(type, game.rotation))
                cv::Polyline(target,
                             g.CellPath(static_cast<float>(c.x + game.cursorX), static_cast<float>(gy + c.y), 0.86f),
                             pge::Pixel(255, 255, 255, 230), 1.0f, true, 3.0f, 2.0f);
    }
}

} // namespace torvane
