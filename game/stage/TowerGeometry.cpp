// The cylinder projection of the towers and how they fit into the stage.
#include "game/stage/TowerView.h"

#include <algorithm>
#include <cmath>

namespace torvane {

namespace {
constexpr float kPi = 3.1415927f;
constexpr float kTwoPi = 6.2831855f;
constexpr float kClassicHalf = 1.2f;   // classic columns lie between -1.2 and +1.2 radians
constexpr float kSinClassicHalf = 0.9320391f;
constexpr float kTilt = 0.18f;         // ry / rx: the whole of the viewing tilt
} // namespace

float TowerView::Geo::Angle(float column) const {
    const float n = static_cast<float>(cols);
    if (!ring) return column * 2.4f / n - kClassicHalf;
    float d = column - camera;
    d -= n * std::round(d / n);
    return 2.0f * d * kPi / n;
}

float TowerView::Geo::Column(float angle) const {
    const float n = static_cast<float>(cols);
    if (!ring) return (angle + kClassicHalf) * n / 2.4f;
    return angle * n / kTwoPi + camera;
}

bool TowerView::Geo::Visible(float column) const { return halfAngle >= std::fabs(Angle(column)); }

pge::vf2d TowerView::Geo::P(float column, float row, float radius) const {
    const float a = Angle(column);
    return {cx + radius * rx * std::sin(a), baseY - cellH * row + radius * ry * std::cos(a)};
}

float TowerView::Geo::Light(float column) const {
    return std::clamp(0.7f + 0.42f * std::cos(Angle(column) + 0.55f), 0.5f, 1.15f);
}

std::vector<pge::vf2d> TowerView::Geo::CellPath(float column, float row, float shrink) const {
    std::vector<pge::vf2d> path;
    if (ring && std::fabs(Angle(column + 0.5f)) > halfAngle) return path;
    path.reserve(10);
    for (int i = 0; i <= 4; ++i) path.push_back(P(column + static_cast<float>(i) * 0.25f, row + 1.0f, 1.0f));
    for (int i = 4; i >= 0; --i) path.push_back(P(column + static_cast<float>(i) * 0.25f, row, 1.0f));
    if (shrink > 0.0f) {
        const pge::vf2d m = P(column + 0.5f, row + 0.5f, 1.0f);
        for (pge::vf2d& p : path) p = {m.x + (p.x - m.x) * shrink, m.y + (p.y - m.y) * shrink};
    }
    return path;
}

std::vector<pge::vf2d> TowerView::Geo::FrontCurve(float row, float radius, float extend) const {
    std::vector<pge::vf2d> curve;
    curve.reserve(65);
    const float lo = -halfAngle - extend;
    const float hi = halfAngle + extend;
    for (int i = 0; i <= 64; ++i) {
        const float a = lo + static_cast<float>(i) * (hi - lo) / 64.0f;
        curve.push_back({cx + radius * rx * std::sin(a), baseY - cellH * row + radius * ry * std::cos(a)});
    }
    return curve;
}

std::vector<pge::vf2d> TowerView::Geo::Zone() const {
    std::vector<pge::vf2d> zone = FrontCurve(0.0f, 1.0f, 0.0f);
    const std::vector<pge::vf2d> top = FrontCurve(static_cast<float>(rows), 1.0f, 0.0f);
    zone.insert(zone.end(), top.rbegin(), top.rend());
    return zone;
}

TowerView::Layout TowerView::ComputeLayout(const Game& game, const StageRect& stage) const {
    const Settings& settings = GetSettings();
    const LevelConfig& config = game.config;
    Layout out;
    out.stage = stage;
    out.cols = config.width;
    out.rows = config.height;
    const int towers = config.towers;
    const float cols = static_cast<float>(out.cols);
    const float rows = static_cast<float>(out.rows);
    const float sw = static_cast<float>(stage.w);
    const float sh = static_cast<float>(stage.h);
    out.gap = towers >= 2 ? 2.5f : 0.0f;
    const float spanCols = cols * static_cast<float>(towers) + static_cast<float>(towers - 1) * out.gap;

    if (config.ring && frame.valid && backgroundLevel == game.level && cachedStage.w == stage.w) {
        // Fit the grid over the tower painted into the background.
        const float s = frameScale;
        out.stripHeight = 0.0f;
        out.ring = true;
        out.integrated = true;
        out.radius = frame.half_width * s / std::sin(settings.fieldOfView * kPi / 180.0f);
        out.lift = s * 4.0f;
        out.cell = (frame.base_y - frame.rim_y) * s / rows;
        out.originX = static_cast<float>(stage.x) + frame.centre_x * s;
        out.baseY = frame.base_y * s - out.radius * kTilt;
        return out;
    }
    if (config.ring) {
        out.stripHeight = 0.0f;
        out.ring = true;
        const float k = settings.cellAspect * kTilt * cols / kTwoPi; // vertical radius in rows
        const float c = std::floor((sh - 8.0f - 53.0f) / (rows + 3.0f + 1.5f + 1.2f * k));
        out.cell = std::max(c, 6.0f);
        const float foot = c > 6.0f ? c * 1.5f : 9.0f;
        out.baseY = static_cast<float>(stage.y) + std::round(sh - foot - 1.2f * out.cell * k);
        out.originX = static_cast<float>(stage.x) + std::round((sw - 76.0f) * 0.5f); // room for the carousel
        return out;
    }
    const float k = cols * kTilt / (2.0f * kSinClassicHalf);
    const float byWidth = sw * 0.94f / (spanCols + (towers < 2 ? 4.0f : 1.5f));
    const float byHeight = (sh - 48.0f - 12.0f) / (rows + 8.3f + 2.2f * k);
    out.cell = std::max(std::floor(std::min(byWidth, byHeight)), 6.0f);
    out.originX = static_cast<float>(stage.x) + std::round((sw - out.cell * spanCols) * 0.5f);
    out.baseY = static_cast<float>(stage.y) +
                std::round(sh - out.cell * (towers < 2 ? 1.5f : 2.1f) - 1.2f * out.cell * k);
    return out;
}

TowerView::Geo TowerView::TowerGeo(const Layout& layout, int tower) const {
    Geo g;
    g.cols = layout.cols;
    g.rows = layout.rows;
    g.baseY = layout.baseY;
    g.cellH = layout.cell;
    const float cols = static_cast<float>(layout.cols);
    if (!layout.ring) {
        const float half = layout.cell * cols * 0.5f;
        g.rx = half / kSinClassicHalf; // the silhouette is exactly cols * cell wide
        g.cx = half + std::round(layout.originX + layout.cell * (cols + layout.gap) * static_cast<float>(tower));
        g.ry = g.rx * kTilt;
        return g;
    }
    g.ring = true;
    g.camera = layout.camera;
    g.halfAngle = GetSettings().fieldOfView * kPi / 180.0f;
    g.rx = layout.integrated ? layout.radius : cols * GetSettings().cellAspect * layout.cell / kTwoPi;
    g.cx = std::round(layout.originX);
    g.ry = g.rx * kTilt;
    g.lift = layout.lift;
    return g;
}

} // namespace torvane
