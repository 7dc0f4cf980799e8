// The landscape behind the tower: a paletted image with colour cycles, else a
// true-colour image, else one painted by formula; built once per level and stage.
#include "engine/Assets.h"
#include "engine/Canvas.h"
#include "game/stage/TowerView.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>

namespace torvane {

namespace {

pge::Pixel Darken(pge::Pixel p, uint8_t darkness) {
    const int keep = 255 - darkness;
    return pge::Pixel(static_cast<uint8_t>(p.r * keep / 255), static_cast<uint8_t>(p.g * keep / 255),
                      static_cast<uint8_t>(p.b * keep / 255), 255);
}

bool Cycled(const std::vector<adv::PaletteCycle>& cycles, int index) {
    return std::any_of(cycles.begin(), cycles.end(),
                       [index](const adv::PaletteCycle& c) { return index >= c.start && index <= c.end; });
}

} // namespace

namespace {

// The stage's pixels from a paletted image at the stage's full width, hanging from the top of
// the screen, under the vignette, and which of them cycle. Reads nothing but its arguments,
// so that it can run on a thread of its own.
TowerView::ImageLayer MakeImageLayer(const std::string& key, const std::string& path,
                                     const std::vector<adv::PaletteCycle>& cycles, const std::vector<uint8_t>& vignette,
                                     const StageRect& stage, float time) {
    TowerView::ImageLayer layer;
    layer.key = key;
    layer.stage = stage;
    const int W = stage.w;
    const int H = stage.h;
    auto image = std::make_unique<adv::IndexedImage>();
    if (W <= 0 || H <= 0 || !image->Load(path) || image->width <= 0 || image->height <= 0) return layer;
    const int iw = image->width;
    const int ih = image->height;
    const long sh = std::max(std::lround(static_cast<double>(ih) * W / iw), 1L);
    const std::array<pge::Pixel, 256> pal = image->CycledPalette(cycles, time);
    layer.pixels.resize(static_cast<size_t>(W) * static_cast<size_t>(H));
    for (int y = 0; y < H; ++y) {
        const int sy = static_cast<int>(
            std::clamp((static_cast<long>(y + stage.y) * ih) / sh, 0L, static_cast<long>(ih - 1)));
        for (int x = 0; x < W; ++x) {
            const int sx = std::min((x * iw) / W, iw - 1);
            const uint8_t idx = image->pixels[static_cast<size_t>(sy) * static_cast<size_t>(iw) + static_cast<size_t>(sx)];
            const int32_t at = y * W + x;
            layer.pixels[static_cast<size_t>(at)] = Darken(pal[idx], vignette[static_cast<size_t>(at)]);
            if (Cycled(cycles, idx)) layer.cyclePixels.push_back({at, idx});
        }
    }
    for (const adv::PaletteCycle& c : cycles) layer.cycleFrames.push_back(c.Frame(time));
    layer.image = std::move(image);
    return layer;
}

bool SameStage(const StageRect& a, const StageRect& b) { return a.w == b.w && a.h == b.h && a.y == b.y; }

} // namespace

void TowerView::MakeVignette(int W, int H) {
    if (vignetteSize.w == W && vignetteSize.h == H && vignette.size() == size_t(std::max(W, 0)) * size_t(std::max(H, 0)))
        return;
    // Darker towards the corners, up to 71/255.
    vignette.assign(static_cast<size_t>(std::max(W, 0)) * static_cast<size_t>(std::max(H, 0)), 0);
    const float inner = static_cast<float>(std::min(W, H)) * 0.35f;
    const float outer = static_cast<float>(std::max(W, H)) * 0.75f;
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x) {
            const float d = std::hypot(static_cast<float>(x) - static_cast<float>(W) * 0.5f,
                                       static_cast<float>(y) - static_cast<float>(H) * 0.55f);
            if (d <= inner) continue;
            vignette[static_cast<size_t>(y) * static_cast<size_t>(W) + static_cast<size_t>(x)] =
                static_cast<uint8_t>(std::min(static_cast<int>((d - inner) / (outer - inner) * 71.0f), 71));
        }
    vignetteSize = {0, 0, W, H};
}

void TowerView::Prepare(int level, const StageRect& stage) {
    // The runner's sheets, one a call: each is a picture to decode and a texture to make. A
    // missing one is left to the runner, who says so when he is drawn.
    if (sheetsLoaded < RunnerSheets().size()) {
        const char* sheet = RunnerSheets()[sheetsLoaded++];
        if (!adv::Assets::Missing(sheet)) adv::Assets::Sprite(sheet);
    }

    const std::string& key = BackgroundFor(ThemeFor(level));
    // Without an image file there is nothing to open: the landscape is painted.
    if (key.empty() || adv::Assets::Missing(key)) return;
    if (preparing.valid()) {
        if (preparingKey == key && SameStage(preparingStage, stage)) return;
        // Another landscape is wanted now; the one on its way is let go once it is there.
        if (preparing.wait_for(std::chrono::seconds(0)) != std::future_status::ready) return;
        preparing = {};
    }
    MakeVignette(stage.w, stage.h);
    preparingKey = key;
    preparingStage = stage;
    preparing = std::async(std::launch::async, MakeImageLayer, key, adv::Assets::Root() + "/" + key,
                           ColorCyclesFor(key), vignette, stage, lastTime);
}

void TowerView::BuildBackground(const Game& game, const Layout& lay) {
    const int W = lay.stage.w;
    const int H = lay.stage.h;
    background = std::make_unique<pge::Sprite>(W, H);
    MakeVignette(W, H);

    painted = false;
    indexed.reset();
    cycles.clear();
    cyclePixels.clear();
    cycleFrames.clear();
    frame = TowerFrame();

    const std::string& key = BackgroundFor(ThemeFor(game.level));
    const std::string path = adv::Assets::Root() + "/" + key;

    const bool file = !key.empty() && !adv::Assets::Missing(key);
    // Made ahead while a card stood, or now.
    ImageLayer layer;
    if (preparing.valid() && preparingKey == key && SameStage(preparingStage, lay.stage)) {
        layer = preparing.get();
    } else if (file) {
        layer = MakeImageLayer(key, path, ColorCyclesFor(key), vignette, lay.stage, lastTime);
    }
    if (layer.image) {
        indexed = std::move(layer.image);
        cycles = ColorCyclesFor(key);
        frame = TowerFrameFor(key, indexed->width, indexed->height);
        frameScale = static_cast<float>(W) / static_cast<float>(indexed->width);
        background->pColData = std::move(layer.pixels);
        cyclePixels = std::move(layer.cyclePixels);
        cycleFrames = std::move(layer.cycleFrames);
        painted = true;
    } else if (file && W > 0 && H > 0) {
        const pge::Sprite source(path);
        if (source.width > 0 && source.height > 0) {
            frame = TowerFrameFor(key, source.width, source.height);
            frameScale = static_cast<float>(W) / static_cast<float>(source.width);
            const int sh = static_cast<int>(
                std::max(std::lround(static_cast<double>(source.height) * W / source.width), 1L));
            const std::unique_ptr<pge::Sprite> scaled = adv::canvas::Downscale(source, W, sh);
            for (int y = 0; y < H; ++y) {
                const int sy = std::clamp(y + lay.stage.y, 0, sh - 1);
                std::memcpy(background->GetData() + static_cast<size_t>(y) * static_cast<size_t>(W),
                            scaled->GetData() + static_cast<size_t>(sy) * static_cast<size_t>(W),
                            static_cast<size_t>(W) * sizeof(pge::Pixel));
            }
            painted = true;
        }
    }
    if (!painted) BuildPaintedBackground(game, lay);
    if (!indexed) {
        pge::Pixel* out = background->GetData();
        for (size_t i = 0; i < vignette.size(); ++i) out[i] = Darken(out[i], vignette[i]);
    }

    backgroundLevel = game.level;
    cachedStage = lay.stage;
    skyValid = false;
}

void TowerView::BuildPaintedBackground(const Game& game, const Layout& lay) {
    namespace cv = adv::canvas;
    pge::Sprite* s = background.get();
    const Theme& theme = ThemeFor(game.level);
    const float L = static_cast<float>(game.level);
    const int W = lay.stage.w;
    const int H = lay.stage.h;
    const float w = static_cast<float>(W), h = static_cast<float>(H);
    const float cell = lay.cell;
    const auto column = [&](int x, float y, pge::Pixel colour) {
        const int top = static_cast<int>(std::lround(y));
        cv::FillRect(s, x, top, 1, H - top, colour);
    };
    const auto alpha = [](pge::Pixel p, uint8_t a) { return pge::Pixel(p.r, p.g, p.b, a); };

    cv::VerticalGradient(s, 0, 0, W, H, theme.skyTop, theme.skyBottom);

    const float r = std::min(w, h) * 0.055f;
    const pge::vf2d sun(w * 0.84f, h * 0.2f);
    cv::RadialGradient(s, sun, r * 0.3f, r * 4.5f, theme.glow, alpha(theme.glow, 0));
    cv::FillCircle(s, sun, r, theme.sun);

    for (int x = 0; x < W; ++x) {
        const float p = L * 1.7f;
        const float q = 2.0f * static_cast<float>(x) * 0.004f;
        column(x, h * 0.56f + std::sin(p + q) * h * 0.06f + h * 0.06f * std::sin(2.0f * p + q * 3.1f) * 0.3f,
               alpha(theme.hills, 140));
    }
    for (int x = 0; x < W; ++x) {
        const float p = L * 0.9f + 2.0f;
        const float q = 2.0f * static_cast<float>(x) * 0.007f;
        column(x, h * 0.63f + h * 0.05f * std::sin(q + p) + std::sin(2.0f * p + q * 3.1f) * h * 0.05f * 0.3f,
               alpha(theme.hills, 229));
    }
    cv::VerticalGradient(s, 0, static_cast<int>(h * 0.5f), W, static_cast<int>(h * 0.22f), alpha(theme.haze, 0),
                         theme.haze);

    const float g = lay.baseY - static_cast<float>(lay.stage.y); // the tower's foot in the sprite
    for (int x = 0; x < W; ++x)
        column(x, (g - cell * 1.2f) + cell * std::sin(L + 2.0f * static_cast<float>(x) * 0.02f) * 0.25f,
               theme.ground);
    const int y0 = static_cast<int>(g - cell * 1.4f);
    cv::VerticalGradient(s, 0, y0, W, H - y0, pge::Pixel(0, 0, 0, 0), pge::Pixel(0, 0, 0, 64));
}

void TowerView::DrawBackground(pge::PixelEngine& engine, const Game& game, const Layout& lay, float time) {
    if (!background || backgroundLevel != game.level || cachedStage.w != lay.stage.w ||
        cachedStage.h != lay.stage.h || cachedStage.y != lay.stage.y)
        BuildBackground(game, lay);

    // Colour cycling touches only the cycled pixels, and only when a cycle steps.
    if (indexed && !cycles.empty()) {
        bool stepped = false;
        for (size_t i = 0; i < cycles.size(); ++i) {
            const int f = cycles[i].Frame(time);
            stepped = stepped || f != cycleFrames[i];
            cycleFrames[i] = f;
        }
        if (stepped) {
            const std::array<pge::Pixel, 256> pal = indexed->CycledPalette(cycles, time);
            pge::Pixel* out = background->GetData();
            for (const CyclePixel& c : cyclePixels)
                out[c.pixel] = Darken(pal[c.index], vignette[static_cast<size_t>(c.pixel)]);
        }
    }

    pge::Sprite* target = engine.GetDrawTarget();
    if (!target) return;
    const StageRect& stage = lay.stage;
    // Where the stage's picture goes: rows and columns of the stage within the target.
    const int n = std::min(stage.w, target->width - stage.x);
    const adv::canvas::Rect inside = stage.x >= 0 && n > 0
                                         ? adv::canvas::Rect{stage.x, std::max(stage.y, 0), stage.x + n,
                                                             std::min(stage.y + background->height, target->height)}
                                         : adv::canvas::Rect{};
    const pge::Sprite* picture = background.get();
    if (!painted) {
        DrawClouds(*target, lay, time, inside);
        picture = sky.get();
    }
    for (int ty = inside.y0; ty < inside.y1; ++ty)
        std::memcpy(target->GetData() + static_cast<size_t>(ty) * static_cast<size_t>(target->width) +
                        static_cast<size_t>(stage.x),
                    picture->GetData() + static_cast<size_t>(ty - stage.y) * static_cast<size_t>(picture->width),
                    static_cast<size_t>(n) * sizeof(pge::Pixel));
}

void TowerView::DrawClouds(pge::Sprite& target, const Layout& lay, float time, adv::canvas::Rect inside) {
    namespace cv = adv::canvas;
    const pge::Pixel colour = ThemeFor(backgroundLevel).cloud;
    const StageRect& stage = lay.stage;
    const float W = static_cast<float>(stage.w), H = static_cast<float>(stage.h);
    std::vector<cv::RowSpan>& drawn = cloudScratch; // in the order drawn
    drawn.clear();
    for (const Cloud& c : clouds) {
        const float px = std::fmod(c.x + c.speed * time, 1.4f) - 0.2f;
        const float bx = static_cast<float>(stage.x) + px * W;
        const float by = static_cast<float>(stage.y) + c.y * H;
        const float r = c.size * std::min(W * 0.045f, 28.0f);
        static const float kPuffs[4][4] = {
            {0.0f, 0.0f, 1.6f, 0.55f}, {-0.8f, 0.12f, 0.9f, 0.42f}, {0.85f, 0.14f, 1.0f, 0.4f}, {0.1f, -0.25f, 0.8f, 0.45f}};
        for (const auto& p : kPuffs)
            cv::EllipseSpans({bx + p[0] * r, by + p[1] * r}, p[2] * r, p[3] * r, cv::Bounds(target), drawn);
    }
    // By row, in the order drawn within a row (counted out, not sorted). One colour for all:
    // a pixel's colour depends only on how many spans cover it.
    const cv::Rect bounds = cv::Bounds(target);
    std::vector<int32_t>& rowStart = cloudRows;
    rowStart.assign(static_cast<size_t>(std::max(bounds.y1 - bounds.y0, 0)) + 1, 0);
    for (const cv::RowSpan& r : drawn) ++rowStart[static_cast<size_t>(r.y - bounds.y0) + 1];
    for (size_t y = 1; y < rowStart.size(); ++y) rowStart[y] += rowStart[y - 1];
    std::vector<cv::RowSpan>& spans = cloudSorted; // the last frame's buffer, reused
    spans.resize(drawn.size());
    for (const cv::RowSpan& r : drawn) spans[static_cast<size_t>(rowStart[static_cast<size_t>(r.y - bounds.y0)]++)] = r;

    // The stage's part lives in the sky, the background with the clouds on it; only its rows
    // whose spans changed since the last frame are made anew.
    if (!sky || sky->width != background->width || sky->height != background->height) {
        sky = std::make_unique<pge::Sprite>(background->width, background->height);
        skyValid = false;
    }
    const auto skyRow = [&](int ty) {
        return sky->GetData() + static_cast<size_t>(ty - stage.y) * static_cast<size_t>(sky->width) -
               static_cast<ptrdiff_t>(stage.x);
    };
    const auto backgroundRow = [&](int ty) {
        return background->GetData() + static_cast<size_t>(ty - stage.y) * static_cast<size_t>(background->width) -
               static_cast<ptrdiff_t>(stage.x);
    };
    // Row ty from x0 to x1 of the stage: the background there with the row's spans laid on it.
    const auto paint = [&](int ty, int x0, int x1, const cv::RowSpan* from, const cv::RowSpan* to) {
        std::memcpy(skyRow(ty) + x0, backgroundRow(ty) + x0, static_cast<size_t>(x1 - x0) * sizeof(pge::Pixel));
        for (const cv::RowSpan* r = from; r != to; ++r) {
            const int a = std::max(r->x0, x0), b = std::min(r->x1, x1);
            if (b > a) cv::BlendRun(skyRow(ty) + a, b - a, colour);
        }
    };
    const auto rowEnd = [](const std::vector<cv::RowSpan>& list, size_t i) {
        size_t j = i;
        while (j < list.size() && list[j].y == list[i].y) ++j;
        return j;
    };
    if (!skyValid) {
        for (int ty = inside.y0; ty < inside.y1; ++ty) paint(ty, inside.x0, inside.x1, nullptr, nullptr);
        for (size_t i = 0; i < spans.size();) {
            const size_t j = rowEnd(spans, i);
            if (spans[i].y >= inside.y0 && spans[i].y < inside.y1)
                paint(spans[i].y, inside.x0, inside.x1, spans.data() + i, spans.data() + j);
            i = j;
        }
    } else {
        // Both lists are walked row by row; where a row's count of covering spans changed,
        // it is painted anew.
        std::vector<std::pair<int, int>> steps; // x, change of (new count - old count)
        size_t i = 0, k = 0;
        while (i < spans.size() || k < skySpans.size()) {
            const int y = i < spans.size() && (k >= skySpans.size() || spans[i].y <= skySpans[k].y) ? spans[i].y
                                                                                                 : skySpans[k].y;
            const size_t i1 = i < spans.size() && spans[i].y == y ? rowEnd(spans, i) : i;
            const size_t k1 = k < skySpans.size() && skySpans[k].y == y ? rowEnd(skySpans, k) : k;
            const bool same = i1 - i == k1 - k && std::equal(spans.begin() + static_cast<ptrdiff_t>(i),
                                                             spans.begin() + static_cast<ptrdiff_t>(i1),
                                                             skySpans.begin() + static_cast<ptrdiff_t>(k));
            if (!same && y >= inside.y0 && y < inside.y1) {
                steps.clear();
                for (size_t m = i; m < i1; ++m) steps.emplace_back(spans[m].x0, 1), steps.emplace_back(spans[m].x1, -1);
                for (size_t m = k; m < k1; ++m)
                    steps.emplace_back(skySpans[m].x0, -1), steps.emplace_back(skySpans[m].x1, 1);
                std::sort(steps.begin(), steps.end());
                int difference = 0;
                for (size_t m = 0; m < steps.size(); ++m) {
                    difference += steps[m].second;
                    if (difference == 0 || m + 1 == steps.size()) continue;
                    // Changed from here to the next step.
                    const int x0 = std::max(steps[m].first, inside.x0), x1 = std::min(steps[m + 1].first, inside.x1);
                    if (x1 > x0) paint(y, x0, x1, spans.data() + i, spans.data() + i1);
                }
            }
            i = i1;
            k = k1;
        }
    }
    skyValid = true;
    skySpans.swap(spans);

    // Beyond the stage the clouds are laid straight on the frame, as they always were.
    for (const cv::RowSpan& r : skySpans) {
        pge::Pixel* row = target.GetData() + static_cast<size_t>(r.y) * static_cast<size_t>(target.width);
        if (r.y < inside.y0 || r.y >= inside.y1) {
            cv::BlendRun(row + r.x0, r.x1 - r.x0, colour);
            continue;
        }
        if (r.x0 < inside.x0) cv::BlendRun(row + r.x0, std::min(r.x1, inside.x0) - r.x0, colour);
        if (r.x1 > inside.x1) cv::BlendRun(row + std::max(r.x0, inside.x1), r.x1 - std::max(r.x0, inside.x1), colour);
    }
}

} // namespace torvane
