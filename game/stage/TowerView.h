#pragma once
// The play stage: the towers laid on a cylinder seen from slightly above, the
// ray-cast wall with its marks, and the landscape behind it. It reads the rules
// and never changes them.
#include "engine/IndexedImage.h"
#include "game/stage/KeptLayer.h"
#include "game/stage/Theme.h"
#include "game/rules/TorvaneGame.h"
#include "pge/PixelEngine.h"
#include "pge/Sprite.h"

#include <array>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace torvane {

struct StageRect {
    int32_t x = 0;
    int32_t y = 0;
    int32_t w = 0;
    int32_t h = 0;
};

class TowerView {
public:
    // How the towers fit into the stage; made once per frame.
    struct Layout {
        float cell = 12.0f;     // pixel height of one row
        float originX = 0.0f;   // classic: left edge of the first tower; ring: its centre
        float baseY = 0.0f;     // y of the centre of the ground ellipse
        float gap = 0.0f;       // columns between neighbouring towers
        float stripHeight = 48.0f;
        StageRect stage;
        int32_t cols = 8;
        int32_t rows = 14;
        bool ring = false;
        float camera = 0.0f;
        bool integrated = false; // fitted to a tower painted into the background
        float radius = 0.0f;
        float lift = 0.0f;
    };

    // One tower on its cylinder: a parallel view, the tilt lies wholly in ry.
    struct Geo {
        float cx = 0.0f;
        float rx = 1.0f;
        float ry = 0.0f;
        float baseY = 0.0f;
        float cellH = 1.0f;
        int32_t cols = 8;
        int32_t rows = 14;
        bool ring = false;
        float camera = 0.0f;
        float halfAngle = 1.2f;
        float lift = 0.0f;

        float Angle(float column) const;
        float Column(float angle) const;
        bool Visible(float column) const;
        pge::vf2d P(float column, float row, float radius) const;
        float Light(float column) const;
        std::vector<pge::vf2d> CellPath(float column, float row, float shrink) const;
        std::vector<pge::vf2d> FrontCurve(float row, float radius, float extend) const;
        std::vector<pge::vf2d> Zone() const;
        bool operator==(const Geo& o) const {
            return cx == o.cx && rx == o.rx && ry == o.ry && baseY == o.baseY && cellH == o.cellH && cols == o.cols &&
                   rows == o.rows && ring == o.ring && camera == o.camera && halfAngle == o.halfAngle && lift == o.lift;
        }
    };

    struct Cloud {
        float x = 0.0f;     // fraction of the stage width at time 0
        float y = 0.0f;     // fraction of the stage height
        float size = 0.0f;
        float speed = 0.0f; // fractions of the width per second
    };

    // A background pixel whose colour is a cycled one.
    struct CyclePixel {
        int32_t pixel = 0;
        uint8_t index = 0;
    };

    // Debris of a hit or a fall, in grid positions so that it turns with a ring.
    struct Particle {
        float x = 0.0f;
        float y = 0.0f;
        float vx = 0.0f;
        float vy = 0.0f;
        float life = 0.0f;
        float born = 0.0f;  // game clock
        float size = 0.0f;  // in row heights
        int32_t tower = 0;
    };

    // Rising text over cells, such as the points for a repair.
    struct Floater {
        std::string text;
        float x = 0.0f;
        float y = 0.0f;
        float born = 0.0f;
        int32_t tower = 0;
    };

    struct Flash {
        std::vector<Cell> cells;
        float born = 0.0f;
        int32_t tower = 0;
    };

    // A danger behind the ring's visible part: d columns from the camera, left seconds to go.
    struct EdgeArrow {
        float d = 0.0f;
        float left = 0.0f;
        bool isHole = false;
        pge::vf2d tip;      // the triangle's point at the stage's edge
        float dir = 1.0f;   // +1 for an arrow at the left edge (it opens to the right), -1 at the right
    };

    TowerView();

    Layout ComputeLayout(const Game& game, const StageRect& stage) const;
    Geo TowerGeo(const Layout& layout, int tower) const;

    // One frame on the engine's draw target; time in seconds, camera the front column.
    void Draw(pge::PixelEngine& engine, const Game& game, const StageRect& stage, float time, float camera);
    void Reset();
    // The application's one-line message over the stage, fade from 0 to 1; placed by the
    // layout of the last Draw, or the default one before any.
    void DrawMessage(pge::PixelEngine& engine, const std::string& text, float fade) const;
    void DrawTower(pge::PixelEngine& engine, const Game& game, const Layout& layout, int tower);
    void DrawWall(pge::Sprite* target, const Game& game, const Geo& g, int tower);
    // Whether the wall map shows an occupied cell at this screen pixel.
    bool FilledAt(int x, int y) const;
    // Forgets what is kept between frames besides the background, so that the next Draw
    // works everything out anew.
    void DropCaches();

    // ---- the runner on the rim ----
    void UpdateRunner(const Game& game, float dt, float camera);
    void DrawRunner(pge::Sprite* target, const Game& game, const Geo& geo) const;
    // The asset keys of his five sheets.
    static const std::array<const char*, 5>& RunnerSheets();

    // ---- carousels, labels, arrows and minimap ----
    // A piece as a small icon centred at (cx, cy), cells of `size` pixels.
    void DrawMini(pge::Sprite* target, char type, float cx, float cy, float size, float fade, int rotation,
                  pge::Pixel colour) const;
    void DrawCarousel(pge::PixelEngine& engine, const Game& game, const Layout& layout);
    void DrawCarouselHorizontal(pge::PixelEngine& engine, const Game& game, const Layout& layout);
    void DrawCarouselVertical(pge::PixelEngine& engine, const Game& game, const Layout& layout);
    void DrawTowerLabels(pge::PixelEngine& engine, const Game& game, const Layout& layout, int tower);
    // A chip over the replacements laid out for a target: its tower, text and colour, and
    // the middle and width of its body, 13 high, within a halo one pixel wider all round.
    struct Chip {
        int32_t tower = 0;
        std::string text;
        pge::Pixel colour;
        float cx = 0.0f;
        float cy = 0.0f;
        float w = 0.0f;
    };
    // The chips of every tower, in the order of the targets. Each stands centred over its
    // replacements, or, where it would meet a chip before it or the focus's marks, as little
    // higher as it takes (lower, where the stage's top leaves no room above).
    std::vector<Chip> PrepChips(pge::PixelEngine& engine, const Game& game, const Layout& layout) const;
    // The cannon balls on their way, over every tower's labels, so that no chip hides one.
    void DrawBalls(pge::Sprite* target, const Game& game, const Layout& layout) const;
    // The dangers beyond a ring's view, most urgent first, placed at the stage's edges.
    std::vector<EdgeArrow> EdgeArrows(const Game& game, const Layout& layout) const;
    void DrawEdgeArrows(pge::PixelEngine& engine, const Game& game, const Layout& layout, float time);
    void DrawMinimap(pge::PixelEngine& engine, const Game& game, const Layout& layout, float time);
    void DrawMinimapNow(pge::PixelEngine& engine, const Game& game, const Layout& layout, float time) const;

    // ---- effects from the rules' events ----
    // Every event of the rules that the application doesn't handle itself.
    void OnEvent(const Event& event, const Game& game);
    void DrawEffects(pge::PixelEngine& engine, const Game& game, const Layout& layout);

    // The part of a landscape that its paletted image gives: the stage's pixels under the
    // vignette and which of them cycle, with what they were made for. Without an image that
    // loads, `image` stays null.
    struct ImageLayer {
        std::string key;
        StageRect stage;
        std::unique_ptr<adv::IndexedImage> image;
        std::vector<pge::Pixel> pixels;
        std::vector<CyclePixel> cyclePixels;
        std::vector<int32_t> cycleFrames;
    };
    // Called while a card stands: starts making the landscape of `level` on a thread of its
    // own, for BuildBackground to take over when that level is laid out, and loads one more
    // of the runner's sheets. A level's start then has nothing left to open or decode.
    void Prepare(int level, const StageRect& stage);
    void BuildBackground(const Game& game, const Layout& layout);
    void BuildPaintedBackground(const Game& game, const Layout& layout);
    void DrawBackground(pge::PixelEngine& engine, const Game& game, const Layout& layout, float time);
    // The clouds of a landscape painted by formula: on the sky within `inside`, the stage's
    // place in the frame, and straight on the frame beyond it.
    void DrawClouds(pge::Sprite& target, const Layout& layout, float time, adv::canvas::Rect inside);

    // ---- background ----
    std::unique_ptr<pge::Sprite> background;
    int32_t backgroundLevel = -1;
    bool painted = false;
    TowerFrame frame;
    float frameScale = 1.0f;
    std::unique_ptr<adv::IndexedImage> indexed;
    std::vector<adv::PaletteCycle> cycles;
    std::vector<int32_t> cycleFrames;
    std::vector<CyclePixel> cyclePixels;
    std::vector<uint8_t> vignette;
    StageRect vignetteSize; // the w and h it was made for
    StageRect cachedStage;
    // The background with the clouds on it, and the clouds' spans that it holds.
    std::unique_ptr<pge::Sprite> sky;
    std::vector<adv::canvas::RowSpan> skySpans;
    bool skyValid = false;
    std::vector<adv::canvas::RowSpan> cloudScratch, cloudSorted;
    std::vector<int32_t> cloudRows;

    // ---- the wall map of the tower drawn last ----
    std::vector<int32_t> wallMap;
    int32_t mapX = 0, mapY = 0, mapW = 0, mapH = 0;
    const Tower* mapTower = nullptr;
    int32_t mapCols = 0;

    std::vector<Cloud> clouds;
    std::vector<Particle> particles;
    std::vector<Floater> floaters;
    std::vector<Flash> flashes;
    std::mt19937 rng{12345u};
    Layout layout;

    // ---- the runner ----
    int32_t runnerTower = -1;
    float runnerColumn = 0.0f;
    int32_t runnerDirection = 1;
    bool running = false;
    float runTime = 0.0f;
    float dropTime = -10.0f; // view time of the last placed piece
    bool jumping = false;
    int32_t jumpFromTower = 0;
    float jumpFromColumn = 0.0f;
    float jumpStart = 0.0f;
    float jumpDuration = 0.5f;

    float lastTime = 0.0f;

private:
    // A uniform float in [0, 1) of the view's own generator.
    float Random();
    // The grid point at the middle of some cells: their column centre and mean row + 0.5.
    static pge::vf2d CentreOf(const Game& game, const std::vector<Cell>& cells);
    // The cells under fire: the piece's own while it stands, else those it had.
    static const std::vector<Cell>& AimedCells(const Game& game, const Target& shot);
    // The percentages at the line and the alarm for a tower under fire that is not the active one.
    void DrawStanding(pge::PixelEngine& engine, const Game& game, const Layout& layout, int tower) const;
    // The runner back at no tower, so that his next update places him without a jump.
    void ResetRunner();
    // The vignette of a stage of W by H, made once for each size.
    void MakeVignette(int W, int H);

    // The landscape on its way from Prepare, and how many sheets Prepare has loaded.
    std::future<ImageLayer> preparing;
    std::string preparingKey;
    StageRect preparingStage;
    size_t sheetsLoaded = 0;

    // A stretch of one row of the wall map whose pixels are treated alike.
    enum class RunKind : uint8_t { Shadow, ShadowGrid, Solid };
    struct WallRun {
        int32_t y = 0, x = 0, count = 0;
        RunKind kind = RunKind::Shadow;
        uint32_t colours = 0; // Solid: the first of its colours in WallCache::colours
    };
    struct Speckle {
        int32_t x = 0, y = 0;
        pge::Pixel colour;
    };
    struct Face {
        std::vector<pge::vf2d> outline, inner;
        pge::Pixel fill, edge;
    };
    // What DrawWall keeps of one tower between frames. The map depends only on the
    // geometry; the shaded wall also on the cells, their pieces' ruin flags and the
    // material. Filled cells lie opaque over what is behind them, so their pixels are
    // kept as they are; empty cells are blended anew each frame.
    struct WallCache {
        bool mapped = false;
        Geo geo;
        std::vector<int32_t> map; // lent to wallMap while this tower is the one drawn last
        int32_t x = 0, y = 0, w = 0, h = 0;
        std::vector<float> u, v; // the position within the cell across and along
        bool shaded = false;
        std::vector<int32_t> cells;
        std::vector<uint8_t> ruins;
        pge::Pixel stone;
        bool planks = false;
        std::vector<WallRun> runs;
        std::vector<pge::Pixel> colours;
        std::vector<Speckle> speckles;
        std::vector<Face> faces;
        uint64_t version = 0; // of the map and shading, from wallVersions
    };
    void MapWall(WallCache& wall, const Geo& g);
    void ShadeWall(WallCache& wall, const Geo& g, const Theme& theme);
    // DrawWall in two: the map and shading brought up to date, wallMap and its members set;
    // then the wall painted from them.
    WallCache& PrepareWall(const Game& game, const Geo& g, int tower);
    void PaintWall(pge::Sprite* target, const WallCache& wall);

    std::vector<WallCache> walls; // by tower
    int32_t mapOwner = -1;        // the tower whose map wallMap holds
    std::vector<uint8_t> ruinScratch;
    uint64_t wallVersions = 0;    // counts map and shading renewals, so that each has its own number

    // Everything of a tower up to its changing marks (plinth, back rim, scaffold, wall, zone
    // outline, ledge, red gaps, gaps, Defence Line, active tower) is kept between frames.
    std::vector<KeptLayer> layers; // by tower
    KeptLayer carouselLayer;
    KeptLayer minimapLayer;
    // Runs draw, steps 1 to 11 of a tower, within the rectangle from (x0, y0) to (x1, y1)
    // widened by the widest line and three pixels, or copies back what it left there in the
    // frame before. marks lists what steps 8 to 11 draw.
    void DrawBehindMarks(pge::Sprite* target, const Layout& lay, const Geo& g, int tower, uint64_t wallVersion,
                         const std::vector<int32_t>& marks, float width, float x0, float y0, float x1, float y1,
                         const std::function<void()>& draw);
};

} // namespace torvane
