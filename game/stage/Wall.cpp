// The wall, ray-cast: every screen pixel of a tower finds the grid cell it shows,
// so cells curve and foreshorten with the cylinder. What a frame needs is kept per
// tower and worked out anew only when the geometry or the cells change.
#include "engine/Canvas.h"
#include "game/stage/TowerView.h"

#include <cmath>
#include <cstring>

namespace torvane {

namespace {

constexpr float kTwoPi = 6.2831855f;
constexpr uint32_t kKnuth = 2654435761u; // multiplicative hash; products wrap at 32 bits
const pge::Pixel kOutline(20, 14, 10, 184);
const pge::Pixel kShadow(0, 0, 0, 33);
const pge::Pixel kGridLine(255, 255, 255, 28);

uint32_t Hash(int32_t v) { return static_cast<uint32_t>(v) * kKnuth; }

// Every piece has a tone of its own, shared by all its cells; a ruin is darker.
bool Ruin(const Game& game, int32_t cv) {
    const Piece* piece = game.GetPiece(cv);
    return piece && piece->ruin;
}

float Tone(bool ruin, int32_t cv) { return (ruin ? 0.82f : 0.93f) + static_cast<float>(Hash(cv) % 18u) / 100.0f; }

} // namespace

void TowerView::DropCaches() {
    walls.clear();
    layers.clear();
    carouselLayer = KeptLayer();
    minimapLayer = KeptLayer();
    skyValid = false;
    mapOwner = -1;
}

// The map's rectangle, covering the visible wall with a pixel to spare, and in it the
// reverse projection: the angle once per screen column, a division per pixel.
void TowerView::MapWall(WallCache& wall, const Geo& g) {
    const int cols = g.cols;
    const int rows = g.rows;
    const float sinHalf = std::sin(g.halfAngle);
    const float s = sinHalf * g.rx;
    wall.x = static_cast<int32_t>(std::floor(g.cx - s)) - 1;
    wall.y = static_cast<int32_t>(std::floor(g.baseY - g.cellH * static_cast<float>(rows))) - 1;
    wall.w = static_cast<int32_t>(std::ceil(s + s)) + 3;
    wall.h = static_cast<int32_t>(std::ceil(g.ry + g.cellH * static_cast<float>(rows))) + 3;
    const size_t area = static_cast<size_t>(wall.w) * static_cast<size_t>(wall.h);
    wall.map.assign(area, -1);
    wall.u.assign(area, 0.0f);
    wall.v.assign(area, 0.0f);
    for (int i = 0; i < wall.w; ++i) {
        const float n = (static_cast<float>(wall.x + i) + 0.5f - g.cx) / g.rx;
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
        for (int j = 0; j < wall.h; ++j) {
            const float r = (foot - (static_cast<float>(wall.y + j) + 0.5f)) / g.cellH;
            if (!(r >= 0.0f && r < static_cast<float>(rows))) continue;
            const size_t at = static_cast<size_t>(j) * static_cast<size_t>(wall.w) + static_cast<size_t>(i);
            wall.map[at] = gridCol + static_cast<int>(r) * cols;
            wall.u[at] = u;
            wall.v[at] = r - std::floor(r);
        }
    }
    wall.geo = g;
    wall.mapped = true;
    wall.shaded = false;
    wall.version = ++wallVersions;
}

// Works out every pixel of the wall for the cells in wall.cells: runs of empty cells to
// be darkened, the colours of filled ones, the speckles and the upper faces.
void TowerView::ShadeWall(WallCache& wall, const Geo& g, const Theme& theme) {
    const pge::Pixel m = theme.stone;
    const int cols = g.cols;
    const int rows = g.rows;
    const int mapW = wall.w, mapH = wall.h;

    // Per grid column and per cell, what the shading needs, so that the pixel loop
    // has only lookups.
    std::vector<float> light(static_cast<size_t>(cols));
    for (int x = 0; x < cols; ++x) light[static_cast<size_t>(x)] = g.Light(static_cast<float>(x) + 0.5f);
    const size_t cellCount = static_cast<size_t>(cols) * static_cast<size_t>(rows);
    std::vector<float> tone(cellCount, 0.0f);
    std::vector<float> cellLight(cellCount, 0.0f); // tone times light; 0 for empty cells
    std::vector<int32_t> value(cellCount, 0);
    for (size_t id = 0; id < cellCount && id < wall.cells.size(); ++id) {
        const int32_t cv = wall.cells[id];
        value[id] = cv;
        if (cv == 0) continue;
        tone[id] = Tone(wall.ruins[id] != 0, cv);
        cellLight[id] = tone[id] * light[id % static_cast<size_t>(cols)];
    }

    // Shading, row by row, into runs of pixels of one kind.
    wall.runs.clear();
    wall.colours.clear();
    for (int j = 0; j < mapH; ++j) {
        const int32_t* rowMap = wall.map.data() + static_cast<size_t>(j) * static_cast<size_t>(mapW);
        for (int i = 0; i < mapW; ++i) {
            const int32_t id = rowMap[i];
            if (id < 0) continue;
            const int32_t left = i > 0 ? rowMap[i - 1] : -1;
            const int32_t up = j > 0 ? rowMap[i - mapW] : -1;
            const int32_t cv = value[static_cast<size_t>(id)];
            RunKind kind = RunKind::Solid;
            pge::Pixel colour;
            if (cv == 0) {
                kind = (left >= 0 && left != id) || (up >= 0 && up != id) ? RunKind::ShadowGrid : RunKind::Shadow;
            } else {
                const int32_t right = i + 1 < mapW ? rowMap[i + 1] : -1;
                const int32_t down = j + 1 < mapH ? rowMap[i + mapW] : -1;
                const size_t at = static_cast<size_t>(j) * static_cast<size_t>(mapW) + static_cast<size_t>(i);
                const float lit = cellLight[static_cast<size_t>(id)];
                const float v = wall.v[at];
                colour = adv::canvas::Shade(m, (v * 0.24f + 0.86f) * lit, 255);
                if (theme.planks) {
                    const int column = id % cols;
                    const int row = id / cols;
                    const float off =
                        static_cast<float>((Hash(cv * 31 + column * 7 + row * 13) >> 3) % 10u) / 100.0f;
                    const float u = wall.u[at];
                    for (const float h : {0.33f, 0.68f})
                        if (std::fabs(v - h - off) * g.cellH < 0.5f && u > 0.08f && u < 0.92f)
                            colour = adv::canvas::Shade(m, lit * 0.72f, 255);
                }
                const bool edge = left < 0 || right < 0 || up < 0 || down < 0 ||
                                  value[static_cast<size_t>(left)] != cv || value[static_cast<size_t>(right)] != cv ||
                                  value[static_cast<size_t>(up)] != cv || value[static_cast<size_t>(down)] != cv;
                if (edge)
                    colour = adv::canvas::Over(colour, kOutline);
                else if (id != left || id != up)
                    colour = adv::canvas::Shade(m, lit * 0.7f, 255);
            }
            WallRun* last = wall.runs.empty() ? nullptr : &wall.runs.back();
            if (last && last->y == wall.y + j && last->x + last->count == wall.x + i && last->kind == kind)
                ++last->count;
            else
                wall.runs.push_back({wall.y + j, wall.x + i, 1, kind, static_cast<uint32_t>(wall.colours.size())});
            if (kind == RunKind::Solid) wall.colours.push_back(colour);
        }
    }

    // Speckles on stone.
    wall.speckles.clear();
    if (!theme.planks) {
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < cols; ++x) {
                const size_t id = static_cast<size_t>(x + y * cols);
                const int32_t cv = value[id];
                if (cv == 0 || !g.Visible(static_cast<float>(x) + 0.5f)) continue;
                const uint32_t h = Hash(cv * 31 + x * 7 + y * 13);
                const pge::Pixel speck = adv::canvas::Shade(m, tone[id] * light[static_cast<size_t>(x)] * 0.78f, 255);
                for (const int k : {0, 11}) {
                    const float fx = static_cast<float>(x) + 0.15f + static_cast<float>((h >> k) % 70u) / 100.0f;
                    const float fy =
                        static_cast<float>(y) + 0.15f + static_cast<float>((h >> (k + 6)) % 70u) / 100.0f;
                    const pge::vf2d p = g.P(fx, fy, 1.0f);
                    wall.speckles.push_back({static_cast<int>(p.x), static_cast<int>(p.y), speck});
                }
            }
    }

    // Upper faces: the tops of blocks with nothing above, as thick as the wall.
    wall.faces.clear();
    const float q = std::max(1.0f - g.cellH * 0.9f / g.rx, 0.5f);
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < cols; ++x) {
            const size_t id = static_cast<size_t>(x + y * cols);
            if (value[id] == 0) continue;
            if (y + 1 < rows && value[static_cast<size_t>(x + (y + 1) * cols)] != 0) continue;
            if (!g.Visible(static_cast<float>(x) + 0.5f)) continue;
            Face face;
            for (int i = 0; i <= 4; ++i)
                face.outline.push_back(
                    g.P(static_cast<float>(x) + static_cast<float>(i) * 0.25f, static_cast<float>(y + 1), 1.0f));
            for (int i = 4; i >= 0; --i)
                face.inner.push_back(
                    g.P(static_cast<float>(x) + static_cast<float>(i) * 0.25f, static_cast<float>(y + 1), q));
            face.outline.insert(face.outline.end(), face.inner.begin(), face.inner.end());
            face.fill = adv::canvas::Shade(m, tone[id] * 1.18f * (light[static_cast<size_t>(x)] * 0.12f + 0.88f), 255);
            face.edge = adv::canvas::Shade(m, tone[id] * 0.8f, 255);
            wall.faces.push_back(std::move(face));
        }
    wall.shaded = true;
    wall.version = ++wallVersions;
}

TowerView::WallCache& TowerView::PrepareWall(const Game& game, const Geo& g, int tower) {
    const Tower& grid = game.towers[static_cast<size_t>(tower)];
    const Theme& theme = ThemeFor(game.level);
    if (walls.size() < game.towers.size()) walls.resize(game.towers.size());
    WallCache& wall = walls[static_cast<size_t>(tower)];

    // The map of wallMap goes back to its tower; this tower's map is renewed when the
    // geometry changed, and its shading when the cells, their pieces' ruin flags or the
    // material did.
    if (mapOwner >= 0 && static_cast<size_t>(mapOwner) < walls.size())
        walls[static_cast<size_t>(mapOwner)].map.swap(wallMap);
    if (!wall.mapped || !(wall.geo == g)) MapWall(wall, g);
    ruinScratch.assign(grid.cells.size(), 0);
    for (size_t id = 0; id < grid.cells.size(); ++id)
        if (grid.cells[id] != 0) ruinScratch[id] = Ruin(game, grid.cells[id]) ? 1 : 0;
    if (!wall.shaded || wall.cells != grid.cells || wall.ruins != ruinScratch || wall.stone != theme.stone ||
        wall.planks != theme.planks) {
        wall.cells = grid.cells;
        wall.ruins = ruinScratch;
        wall.stone = theme.stone;
        wall.planks = theme.planks;
        ShadeWall(wall, g, theme);
    }
    wallMap.swap(wall.map);
    mapOwner = tower;
    mapX = wall.x;
    mapY = wall.y;
    mapW = wall.w;
    mapH = wall.h;
    mapTower = &grid;
    mapCols = g.cols;
    return wall;
}

void TowerView::PaintWall(pge::Sprite* target, const WallCache& wall) {
    if (!target) return;

    // Filled cells are copied, empty ones darkened, and the grid lines laid over them.
    const int W = target->width;
    const adv::canvas::Rect b = adv::canvas::Bounds(*target);
    pge::Pixel* data = target->GetData();
    for (const WallRun& run : wall.runs) {
        if (run.y < b.y0 || run.y >= b.y1) continue;
        const int x0 = std::max(run.x, b.x0);
        const int x1 = std::min(run.x + run.count, b.x1);
        if (x1 <= x0) continue;
        pge::Pixel* at = data + static_cast<size_t>(run.y) * static_cast<size_t>(W) + static_cast<size_t>(x0);
        if (run.kind == RunKind::Solid) {
            std::memcpy(at, wall.colours.data() + run.colours + static_cast<uint32_t>(x0 - run.x),
                        static_cast<size_t>(x1 - x0) * sizeof(pge::Pixel));
            continue;
        }
        adv::canvas::BlendRun(at, x1 - x0, kShadow);
        if (run.kind == RunKind::ShadowGrid) adv::canvas::BlendRun(at, x1 - x0, kGridLine);
    }
    for (const Speckle& s : wall.speckles) adv::canvas::Blend(target, s.x, s.y, s.colour);
    const adv::canvas::Mask open = [this](int px, int py) { return !FilledAt(px, py); };
    for (const Face& face : wall.faces) {
        adv::canvas::FillPolygon(target, face.outline, face.fill, open);
        adv::canvas::Polyline(target, face.inner, face.edge, 1.0f, false, 0.0f, 0.0f, open);
    }
}

void TowerView::DrawWall(pge::Sprite* target, const Game& game, const Geo& g, int tower) {
    PaintWall(target, PrepareWall(game, g, tower));
}

} // namespace torvane
