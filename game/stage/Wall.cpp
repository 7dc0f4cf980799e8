// The wall, ray-cast: every screen pixel of a tower finds the grid cell it shows,
// so cells curve and foreshorten with the cylinder.
#include "engine/Canvas.h"
#include "game/stage/TowerView.h"

#include <cmath>

namespace torvane {

namespace {

constexpr float kTwoPi = 6.2831855f;
constexpr uint32_t kKnuth = 2654435761u; // multiplicative hash; products wrap at 32 bits
const pge::Pixel kOutline(20, 14, 10, 184);

uint32_t Hash(int32_t v) { return static_cast<uint32_t>(v) * kKnuth; }

// Every piece has a tone of its own, shared by all its cells; a ruin is darker.
float PieceBase(const Game& game, int32_t cv) {
    const Piece* piece = game.GetPiece(cv);
    return piece && piece->ruin ? 0.82f : 0.93f;
}

float Tone(float base, int32_t cv) { return base + static_cast<float>(Hash(cv) % 18u) / 100.0f; }

} // namespace

void TowerView::DrawWall(pge::Sprite* target, const Game& game, const Geo& g, int tower) {
    const Tower& grid = game.towers[static_cast<size_t>(tower)];
    const Theme& theme = ThemeFor(game.level);
    const pge::Pixel m = theme.stone;
    const int cols = g.cols;
    const int rows = g.rows;
    const float sinHalf = std::sin(g.halfAngle);
    const float s = sinHalf * g.rx;

    // 1. The map's rectangle, covering the visible wall with a pixel to spare.
    mapX = static_cast<int32_t>(std::floor(g.cx - s)) - 1;
    mapY = static_cast<int32_t>(std::floor(g.baseY - g.cellH * static_cast<float>(rows))) - 1;
    mapW = static_cast<int32_t>(std::ceil(s + s)) + 3;
    mapH = static_cast<int32_t>(std::ceil(g.ry + g.cellH * static_cast<float>(rows))) + 3;
    const size_t area = static_cast<size_t>(mapW) * static_cast<size_t>(mapH);
    wallMap.assign(area, -1);
    wallU.assign(area, 0.0f);
    wallV.assign(area, 0.0f);
    mapTower = &grid;
    mapCols = cols;

    // 2. Reverse projection: the angle once per screen column, a division per pixel.
    for (int i = 0; i < mapW; ++i) {
        const float n = (static_cast<float>(mapX + i) + 0.5f - g.cx) / g.rx;
        if (!(std::fabs(n) < sinHalf)) continue;
        const float a = std::asin(n);
        const float c = std::cos(a);
        float col;
        int gridCol;
        if (g.ring) {
            col = static_cast<float>(cols) * a / kTwoPi + g.camera;
            gridCol = static_cast<int>(std::floor(col)) % cols;
            if (gridCol < 0) gridCol += cols;
        } else {
            col = static_cast<float>(cols) * (a + 1.2f) / 2.4f;
            gridCol = std::min(static_cast<int>(col), cols - 1);
        }
        const float u = col - std::floor(col);
        const float foot = g.baseY + g.ry * c;
        for (int j = 0; j < mapH; ++j) {
            const float r = (foot - (static_cast<float>(mapY + j) + 0.5f)) / g.cellH;
            if (!(r >= 0.0f && r < static_cast<float>(rows))) continue;
            const size_t at = static_cast<size_t>(j) * static_cast<size_t>(mapW) + static_cast<size_t>(i);
            wallMap[at] = gridCol + static_cast<int>(r) * cols;
            wallU[at] = u;
            wallV[at] = r - std::floor(r);
        }
    }

    // Per grid column and per cell, what the shading needs, so that the pixel loop
    // has only lookups.
    std::vector<float> light(static_cast<size_t>(cols));
    for (int x = 0; x < cols; ++x) light[static_cast<size_t>(x)] = g.Light(static_cast<float>(x) + 0.5f);
    const size_t cellCount = static_cast<size_t>(cols) * static_cast<size_t>(rows);
    std::vector<float> cellLight(cellCount, 0.0f); // tone times light; 0 for empty cells
    std::vector<int32_t> value(cellCount, 0);
    for (size_t id = 0; id < cellCount && id < grid.cells.size(); ++id) {
        const int32_t cv = grid.cells[id];
        value[id] = cv;
        if (cv != 0) cellLight[id] = Tone(PieceBase(game, cv), cv) * light[id % static_cast<size_t>(cols)];
    }

    // 3. Shading, row by row.
    const pge::Pixel shadow(0, 0, 0, 33), gridLine(255, 255, 255, 28);
    for (int j = 0; j < mapH; ++j) {
        const int y = mapY + j;
        const int32_t* rowMap = wallMap.data() + static_cast<size_t>(j) * static_cast<size_t>(mapW);
        for (int i = 0; i < mapW; ++i) {
            const int32_t id = rowMap[i];
            if (id < 0) continue;
            const int x = mapX + i;
            const int32_t left = i > 0 ? rowMap[i - 1] : -1;
            const int32_t up = j > 0 ? rowMap[i - mapW] : -1;
            const int32_t cv = value[static_cast<size_t>(id)];
            if (cv == 0) {
                adv::canvas::Blend(target, x, y, shadow);
                if ((left >= 0 && left != id) || (up >= 0 && up != id)) adv::canvas::Blend(target, x, y, gridLine);
                continue;
            }
            const int32_t right = i + 1 < mapW ? rowMap[i + 1] : -1;
            const int32_t down = j + 1 < mapH ? rowMap[i + mapW] : -1;
            const size_t at = static_cast<size_t>(j) * static_cast<size_t>(mapW) + static_cast<size_t>(i);
            const float lit = cellLight[static_cast<size_t>(id)];
            const float v = wallV[at];
            pge::Pixel colour = adv::canvas::Shade(m, (v * 0.24f + 0.86f) * lit, 255);
            if (theme.planks) {
                const int column = id % cols;
                const int row = id / cols;
                const float off =
                    static_cast<float>((Hash(cv * 31 + column * 7 + row * 13) >> 3) % 10u) / 100.0f;
                const float u = wallU[at];
                for (const float h : {0.33f, 0.68f})
                    if (std::fabs(v - h - off) * g.cellH < 0.5f && u > 0.08f && u < 0.92f)
                        colour = adv::canvas::Shade(m, lit * 0.72f, 255);
            }
            adv::canvas::Blend(target, x, y, colour);
            const bool edge = left < 0 || right < 0 || up < 0 || down < 0 ||
                              value[static_cast<size_t>(left)] != cv || value[static_cast<size_t>(right)] != cv ||
                              value[static_cast<size_t>(up)] != cv || value[static_cast<size_t>(down)] != cv;
            if (edge)
                adv::canvas::Blend(target, x, y, kOutline);
            else if (id != left || id != up)
                adv::canvas::Blend(target, x, y, adv::canvas::Shade(m, lit * 0.7f, 255));
        }
    }

    // 4. Speckles on stone.
    if (!theme.planks) {
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < cols; ++x) {
                const int32_t cv = value[static_cast<size_t>(x + y * cols)];
                if (cv == 0 || !g.Visible(static_cast<float>(x) + 0.5f)) continue;
                const uint32_t h = Hash(cv * 31 + x * 7 + y * 13);
                const pge::Pixel speck = adv::canvas::Shade(
                    m, Tone(PieceBase(game, cv), cv) * light[static_cast<size_t>(x)] * 0.78f, 255);
                for (const int k : {0, 11}) {
                    const float fx = static_cast<float>(x) + 0.15f + static_cast<float>((h >> k) % 70u) / 100.0f;
                    const float fy =
                        static_cast<float>(y) + 0.15f + static_cast<float>((h >> (k + 6)) % 70u) / 100.0f;
                    const pge::vf2d p = g.P(fx, fy, 1.0f);
                    adv::canvas::Blend(target, static_cast<int>(p.x), static_cast<int>(p.y), speck);
                }
            }
    }

    // 5. Upper faces: the tops of blocks with nothing above, as thick as the wall.
    const float q = std::max(1.0f - g.cellH * 0.9f / g.rx, 0.5f);
    const adv::canvas::Mask open = [this](int px, int py) { return !FilledAt(px, py); };
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < cols; ++x) {
            const int32_t cv = value[static_cast<size_t>(x + y * cols)];
            if (cv == 0) continue;
            if (y + 1 < rows && value[static_cast<size_t>(x + (y + 1) * cols)] != 0) continue;
            if (!g.Visible(static_cast<float>(x) + 0.5f)) continue;
            const float tone = Tone(PieceBase(game, cv), cv);
            std::vector<pge::vf2d> face;
            std::vector<pge::vf2d> inner;
            for (int i = 0; i <= 4; ++i)
                face.push_back(g.P(static_cast<float>(x) + static_cast<float>(i) * 0.25f, static_cast<float>(y + 1), 1.0f));
            for (int i = 4; i >= 0; --i)
                inner.push_back(g.P(static_cast<float>(x) + static_cast<float>(i) * 0.25f, static_cast<float>(y + 1), q));
            face.insert(face.end(), inner.begin(), inner.end());
            adv::canvas::FillPolygon(
                target, face,
                adv::canvas::Shade(m, tone * 1.18f * (light[static_cast<size_t>(x)] * 0.12f + 0.88f), 255), open);
            adv::canvas::Polyline(target, inner, adv::canvas::Shade(m, tone * 0.8f, 255), 1.0f, false, 0.0f, 0.0f,
                                  open);
        }
}

} // namespace torvane
