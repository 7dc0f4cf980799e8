// The level editor's face: the rows, hints and message that the editor describes,
// over the landscape of the level being edited.
#include "engine/Assets.h"
#include "engine/Canvas.h"
#include "engine/Text.h"
#include "game/rules/Lang.h"
#include "game/stage/Theme.h"
#include "game/TorvaneApp.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace torvane {
namespace {

// Rows shown at once; the list scrolls with the selection in the middle.
constexpr int kShownRows = 15;
constexpr int kRowHeight = 15;
// The hints stand at this distance below the card's top, whatever the list's length.
constexpr int kFoot = 306;
// At least between a row's label and its value.
constexpr int kRowGap = 8;

using Hint = std::pair<std::string, std::string>;

// The landscape's picture at screen size, made once per landscape; null when its
// image is missing or cannot be read.
const pge::Sprite* Landscape(int index) {
    static std::array<std::unique_ptr<pge::Sprite>, 5> s_pictures;
    static std::array<bool, 5> s_tried{};
    const size_t i = static_cast<size_t>(std::clamp(index, 0, 4));
    if (s_tried[i]) return s_pictures[i].get();
    s_tried[i] = true;
    const std::string& key = ThemeAt(index).background;
    if (adv::Assets::Missing(key)) return nullptr;
    const pge::Sprite source(adv::Assets::Root() + "/" + key);
    if (source.width <= 0 || source.height <= 0) return nullptr;
    auto picture = std::make_unique<pge::Sprite>(640, 400);
    for (int y = 0; y < 400; ++y)
        for (int x = 0; x < 640; ++x)
            picture->SetPixel(x, y, source.GetPixel(x * source.width / 640, y * source.height / 400));
    s_pictures[i] = std::move(picture);
    return s_pictures[i].get();
}

// Label and value of a row, cut so that both fit into `room` with kRowGap between them, as
// a pack's name in a hand-made file may be of any length: the wider gives way, the other
// keeps at most half the room. Nothing beyond the room is measured.
std::pair<std::string, std::string> FitRow(pge::PixelEngine& engine, const std::string& label,
                                           const std::string& value, int room) {
    std::string l = adv::text::Fit(engine, label, room), v = adv::text::Fit(engine, value, room);
    const int lw = adv::text::Width(engine, l), vw = adv::text::Width(engine, v);
    if (lw + kRowGap + vw <= room) return {l, v};
    std::string& narrow = lw >= vw ? v : l;
    std::string& wide = lw >= vw ? l : v;
    narrow = adv::text::Fit(engine, narrow, (room - kRowGap) / 2);
    wide = adv::text::Fit(engine, wide, room - kRowGap - adv::text::Width(engine, narrow));
    return {l, v};
}

} // namespace

void TorvaneApp::DrawEditorBackdrop() {
    const int index = editor.GetView().background;
    if (index < 0) return;
    pge::Sprite* target = GetDrawTarget();
    if (const pge::Sprite* picture = Landscape(index)) {
        std::copy(picture->pColData.begin(), picture->pColData.end(), target->pColData.begin());
        return;
    }
    // Without its picture, the landscape's own colours: its sky, hills and ground.
    const Theme& theme = ThemeAt(index);
    adv::canvas::VerticalGradient(target, 0, 0, 640, 260, theme.skyTop, theme.skyBottom);
    adv::canvas::FillRect(target, 0, 260, 640, 50, theme.hills);
    adv::canvas::FillRect(target, 0, 310, 640, 90, theme.ground);
}

void TorvaneApp::DrawEditorCard(Card& card) {
    const LevelEditor::View view = editor.GetView();
    const int x = card.x, w = card.w;
    const std::string title = adv::text::Fit(*this, view.title, w - 28, 2);
    card.Title(title, kChestnut);
    if (card.draw) {
        const int subtitleX = x + 14 + adv::text::Width(*this, title, 2) + 10;
        if (!view.subtitle.empty())
            adv::text::Draw(*this, subtitleX, card.y - 15, adv::text::Fit(*this, view.subtitle, x + w - 14 - subtitleX),
                            kSlate);
        adv::canvas::FillRect(GetDrawTarget(), x + 14, card.y, w - 28, 1, kLine);
    }
    card.y += 6;

    const int n = static_cast<int>(view.rows.size());
    const auto selected =
        std::find_if(view.rows.begin(), view.rows.end(), [](const LevelEditor::Row& r) { return r.selected; });
    const int s = selected == view.rows.end() ? 0 : static_cast<int>(selected - view.rows.begin());
    const int first = std::max(std::min(s - 7, n - kShownRows), 0);
    const int last = std::min(first + kShownRows, n);
    for (int i = first; i < last; ++i) {
        const LevelEditor::Row& row = view.rows[static_cast<size_t>(i)];
        if (!row.heading.empty()) {
            if (i != first) card.y += 4;
            if (card.draw) adv::text::Draw(*this, x + 18, card.y, row.heading, kChestnut);
            card.y += kRowHeight;
        }
        if (card.draw) {
            if (row.selected) {
                adv::canvas::FillRoundRect(GetDrawTarget(), float(x + 10), float(card.y - 3), float(w - 20), 14.0f,
                                           3.0f, kBg);
                adv::canvas::FillRect(GetDrawTarget(), x + 10, card.y - 3, 2, 14, kChestnut);
            }
            const auto [label, value] =
                FitRow(*this, row.label, row.selected && row.changeable ? "‹ " + row.value + " ›" : row.value,
                       w - 32);
            adv::text::Draw(*this, x + 18, card.y, label, row.selected ? kFg : kMuted);
            adv::text::Draw(*this, x + w - 14, card.y, value, row.selected ? kChestnut : kFg, 1,
                            adv::text::Align::Right);
        }
        card.y += kRowHeight;
    }
    if (n > kShownRows) {
        if (card.draw)
            adv::text::Draw(*this, x + w - 14, card.y, Trf("{0} von {1}", {std::to_string(s + 1), std::to_string(n)}),
                            kMuted, 1, adv::text::Align::Right);
        card.y += kRowHeight;
    }

    // Hints broken into lines that fit the card.
    std::vector<std::vector<Hint>> lines(1);
    int lineWidth = 0;
    for (const Hint& hint : view.hints) {
        const int width = KeyHintWidth(hint.first, hint.second) + 14;
        if (!lines.back().empty() && lineWidth + width > w - 28) {
            lines.emplace_back();
            lineWidth = 0;
        }
        lines.back().push_back(hint);
        lineWidth += width;
    }
    if (lines.back().empty()) lines.pop_back();
    card.y = std::max(card.y, card.top + kFoot - kRowHeight * static_cast<int>(lines.size()));
    if (card.draw && !view.message.empty())
        adv::text::Draw(*this, x + 14, card.y, view.message, view.warning ? kDanger : kOk);
    card.y += 16;
    for (const std::vector<Hint>& line : lines) {
        int hx = x + 14;
        for (const Hint& hint : line)
            hx += (card.draw ? DrawKeyHint(hx, card.y, hint.first, hint.second) : 0) + 14;
        card.y += kRowHeight;
    }
}

} // namespace torvane
