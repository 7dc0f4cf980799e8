// The strip of coming pieces: horizontal above classic towers, vertical at a ring's right.
#include "game/stage/Carousel.h"

#include "engine/Canvas.h"
#include "engine/Text.h"
#include "game/rules/Lang.h"
#include "game/rules/Pieces.h"
#include "game/stage/StageColours.h"
#include "game/stage/TowerView.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace torvane {

namespace {

namespace cv = adv::canvas;

const pge::Pixel kStrip(20, 16, 12, 115);
const pge::Pixel kSlotFill(224, 135, 79, 46);
const pge::Pixel kWhite(255, 255, 255);

// The selected piece's frame: lightly filled and stroked in the accent.
void DrawSlot(pge::Sprite* target, float x, float y, float w, float h) {
    cv::FillRoundRect(target, x, y, w, h, 5.0f, kSlotFill);
    cv::StrokeRoundRect(target, x, y, w, h, 5.0f, stage::kAccent, 2.0f);
}

char PieceAt(const Game& game, int offset) {
    const int n = static_cast<int>(game.supply.size());
    return game.supply[static_cast<size_t>(((game.selected + offset) % n + n) % n)];
}

float FadeAt(int offset) { return std::abs(offset) == 1 ? 0.85f : 0.5f; }

} // namespace

std::vector<int> CarouselOffsets(int count, bool limited) {
    int first = 0, last = 0;
    if (limited) {
        last = count >= 2 ? 1 : 0;
    } else if (count > 4) {
        first = -2;
        last = 2;
    } else {
        first = (1 - count) / 2;
        last = count / 2;
    }
    std::vector<int> out;
    if (count < 1) return out;
    for (int k = first; k <= last; ++k) out.push_back(k);
    return out;
}

void TowerView::DrawMini(pge::Sprite* target, char type, float cx, float cy, float size, float fade, int rotation,
                         pge::Pixel colour) const {
    const std::vector<Cell> shape = Rotated(type, rotation);
    if (shape.empty()) return;
    const float w = static_cast<float>(ShapeWidth(shape));
    const float h = static_cast<float>(ShapeHeight(shape));
    const int n = static_cast<int>(size);
    const int q = n - 1;
    const uint8_t fill = static_cast<uint8_t>(fade * 255.0f);
    const pge::Pixel edge(20, 14, 10, static_cast<uint8_t>(fade * 153.0f));
    for (const Cell& c : shape) {
        const float x = cx - w * size * 0.5f + static_cast<float>(c.x) * size + 0.5f;
        const float y = cy + h * size * 0.5f - static_cast<float>(c.y + 1) * size + 0.5f;
        // A light top and a darker foot.
        for (int i = 0; i < q; ++i)
            cv::FillRect(target, static_cast<int>(x), static_cast<int>(y) + i, q, 1,
                         cv::Shade(colour, 1.25f - 0.43f * static_cast<float>(i) / static_cast<float>(std::max(n - 2, 1)),
                                   fill));
        cv::StrokeRoundRect(target, x, y, static_cast<float>(q), static_cast<float>(q), std::max(size * 0.2f, 1.5f),
                            edge, 1.0f);
    }
}

namespace {

// What a carousel's drawing depends on besides the pixels it finds: where the stage is, the
// pieces it shows and how, the stone's colour and the language of its texts.
std::vector<int32_t> CarouselKey(const Game& game, const TowerView::Layout& lay, const std::vector<int>& offsets) {
    std::vector<int32_t> key{lay.stage.x, lay.stage.y, lay.stage.w, lay.stage.h,
                             static_cast<int32_t>(lay.ring), static_cast<int32_t>(game.supply.size()),
                             static_cast<int32_t>(game.PiecesLimited()), static_cast<int32_t>(game.Building()),
                             game.rotation, static_cast<int32_t>(game.phase),
                             static_cast<int32_t>(CurrentLanguage()), static_cast<int32_t>(ThemeFor(game.level).stone.n)};
    kept::Add(key, lay.stripHeight);
    if (!game.supply.empty())
        for (const int k : offsets) key.push_back(PieceAt(game, k));
    return key;
}

} // namespace

void TowerView::DrawCarousel(pge::PixelEngine& engine, const Game& game, const Layout& lay) {
    const std::vector<int> offsets = CarouselOffsets(static_cast<int>(game.supply.size()), game.PiecesLimited());
    // Strip, slot, pieces and texts stay within this rectangle; the texts are measured.
    const StageRect& s = lay.stage;
    const int textWidth = std::max({adv::text::Width(engine, "‹"), adv::text::Width(engine, "› +999"),
                                    adv::text::Width(engine, Tr("Alle Teile verbaut")),
                                    adv::text::Width(engine, Tr("Keine Teile mehr"))});
    const adv::canvas::Rect rect =
        lay.ring ? adv::canvas::Rect{std::min(s.x + s.w - 74, s.x + s.w - 40 - textWidth / 2) - 4, s.y + 2,
                                     std::max(s.x + s.w, s.x + s.w - 40 + textWidth / 2 + 4), s.y + 6 + 276 + 16}
                 : adv::canvas::Rect{s.x + s.w / 2 - 196 - textWidth, s.y + 2, s.x + s.w / 2 + 196 + textWidth,
                                     s.y + 6 + static_cast<int>(std::ceil(lay.stripHeight)) + 4};
    kept::Draw(engine.GetDrawTarget(), carouselLayer, CarouselKey(game, lay, offsets), rect, [&]() {
        if (lay.ring)
            DrawCarouselVertical(engine, game, lay);
        else
            DrawCarouselHorizontal(engine, game, lay);
    });
}

void TowerView::DrawCarouselHorizontal(pge::PixelEngine& engine, const Game& game, const Layout& lay) {
    pge::Sprite* target = engine.GetDrawTarget();
    const StageRect& s = lay.stage;
    const float height = lay.stripHeight;
    float slot = static_cast<float>(s.w - 40) / 5.0f;
    float stripWidth = 376.0f, half = 180.0f;
    if (slot < 72.0f) {
        stripWidth = slot * 5.0f + 16.0f;
        half = slot * 2.5f;
    } else {
        slot = 72.0f;
    }
    const float cx = static_cast<float>(s.x) + static_cast<float>(s.w) * 0.5f;
    const float top = static_cast<float>(s.y + 6);
    const float cy = top + height * 0.5f;
    const float left = cx - half - 8.0f;
    cv::FillRoundRect(target, left, top, stripWidth, height, 6.0f, kStrip);

    const int n = static_cast<int>(game.supply.size());
    if (n == 0) {
        adv::text::Draw(engine, static_cast<int>(cx), static_cast<int>(cy) - 4,
                        Tr(game.phase == Phase::Build ? "Alle Teile verbaut" : "Keine Teile mehr"), kWhite, 1,
                        adv::text::Align::Centre);
        return;
    }
    const pge::Pixel stone = ThemeFor(game.level).stone;
    const float size = std::min(slot / 5.2f, height / 3.4f);
    const std::vector<int> offsets = CarouselOffsets(n, game.PiecesLimited());
    for (const int k : offsets) {
        const float x = cx + static_cast<float>(k) * slot;
        if (k != 0) {
            DrawMini(target, PieceAt(game, k), x, cy, size * 0.9f, FadeAt(k), 0, stone);
            continue;
        }
        DrawSlot(target, x - slot * 0.5f + 4.0f, top + 4.0f, slot - 8.0f, height - 8.0f);
        DrawMini(target, PieceAt(game, 0), x, cy, size * 1.15f, 1.0f, game.Building() ? game.rotation : 0, stone);
    }
    const int visible = static_cast<int>(offsets.size());
    if (n > visible) {
        if (!game.PiecesLimited())
            adv::text::Draw(engine, static_cast<int>(left) - 6, static_cast<int>(cy) - 4, "‹", kWhite, 1,
                            adv::text::Align::Right);
        adv::text::Draw(engine, static_cast<int>(left + stripWidth) + 6, static_cast<int>(cy) - 4,
                        "› +" + std::to_string(n - visible), kWhite, 1, adv::text::Align::Left);
    }
}

void TowerView::DrawCarouselVertical(pge::PixelEngine& engine, const Game& game, const Layout& lay) {
    pge::Sprite* target = engine.GetDrawTarget();
    const StageRect& s = lay.stage;
    const float x = static_cast<float>(s.x + s.w - 68 - 6);
    const float top = static_cast<float>(s.y + 6);
    const float cx = x + 34.0f;
    const float cy = top + 138.0f;
    cv::FillRoundRect(target, x, top, 68.0f, 276.0f, 6.0f, kStrip);

    const int n = static_cast<int>(game.supply.size());
    if (n == 0) {
        const bool build = game.phase == Phase::Build;
        adv::text::Draw(engine, static_cast<int>(cx), static_cast<int>(cy) - 10, Tr(build ? "Alle Teile" : "Keine Teile"),
                        kWhite, 1, adv::text::Align::Centre);
        adv::text::Draw(engine, static_cast<int>(cx), static_cast<int>(cy) + 2, Tr(build ? "verbaut" : "mehr"), kWhite, 1,
                        adv::text::Align::Centre);
        return;
    }
    const pge::Pixel stone = ThemeFor(game.level).stone;
    const std::vector<int> offsets = CarouselOffsets(n, game.PiecesLimited());
    for (const int k : offsets) {
        const float y = cy + static_cast<float>(k) * 52.0f;
        if (k != 0) {
            DrawMini(target, PieceAt(game, k), cx, y, 11.56f, FadeAt(k), 0, stone);
            continue;
        }
        DrawSlot(target, x + 4.0f, y - 26.0f + 4.0f, 60.0f, 44.0f);
        DrawMini(target, PieceAt(game, 0), cx, y, 14.960001f, 1.0f, game.Building() ? game.rotation : 0, stone);
    }
    const int visible = static_cast<int>(offsets.size());
    if (n > visible)
        adv::text::Draw(engine, static_cast<int>(cx), static_cast<int>(top + 276.0f) + 4,
                        "+" + std::to_string(n - visible), kWhite, 1, adv::text::Align::Centre);
}

} // namespace torvane
