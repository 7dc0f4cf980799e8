// The card toolkit: panels measured by running their content once without drawing,
// and the pieces cards are made of (rows, paragraphs, buttons, key caps, switches).
#include "engine/Canvas.h"
#include "engine/Text.h"
#include "game/TorvaneApp.h"

#include <algorithm>

namespace torvane {
namespace {

// From this height on a card is cut and placed at kCutTop.
constexpr int kCutHeight = 360;
constexpr int kCutTop = 22;
constexpr int kPadding = 14;
constexpr int kLineHeight = 11;
constexpr pge::Pixel kShadow{0, 0, 0, 90};
constexpr pge::Pixel kSwitchOnText{20, 40, 24};

} // namespace

void TorvaneApp::Card::Title(const std::string& text, pge::Pixel colour) {
    if (draw) adv::text::Draw(*app, x + kPadding, y, text, colour, 2);
    y += 21;
}

void TorvaneApp::Card::Row(const std::string& label, const std::string& value, pge::Pixel colour) {
    if (draw) {
        adv::text::Draw(*app, x + kPadding, y, label, kFg);
        adv::text::Draw(*app, x + w - kPadding, y, value, colour, 1, adv::text::Align::Right);
    }
    y += kLineHeight;
}

void TorvaneApp::Card::Para(const std::string& text, pge::Pixel colour, const std::string& lead,
                            pge::Pixel leadColour, int indent) {
    const std::string full = lead.empty() ? text : lead + " " + text;
    if (!full.empty()) {
        const auto lines = adv::text::Wrap(*app, full, w - 2 * kPadding - indent);
        for (size_t i = 0; i < lines.size(); ++i) {
            if (draw) {
                adv::text::Draw(*app, x + kPadding + indent, y, lines[i], colour);
                if (i == 0 && !lead.empty()) adv::text::Draw(*app, x + kPadding + indent, y, lead, leadColour);
            }
            y += kLineHeight;
        }
    }
    y += 3;
}

void TorvaneApp::Card::Story(const std::string& text) {
    const int first = y;
    Para(text, kFg, "", kFg, 10);
    if (draw) adv::canvas::FillRect(app->GetDrawTarget(), x + kPadding, first - 1, 2, y - 3 - (first - 1), kChestnut);
}

void TorvaneApp::Card::Button(const std::string& text, ButtonId id) {
    y += 6;
    if (draw) {
        const std::string label = app->WithShownKeys(text);
        const int bw = adv::text::Width(*app, label) + 24;
        adv::canvas::FillRoundRect(app->GetDrawTarget(), float(x + kPadding), float(y), float(bw), 18.0f, 3.0f,
                                   kChestnut);
        adv::text::Draw(*app, x + kPadding + bw / 2, y + 5, label, pge::WHITE, 1, adv::text::Align::Centre);
        app->buttons.push_back({x + kPadding, y, bw, 18, id, 0});
    }
    y += 18;
}

void TorvaneApp::DrawCard(const CardContent& content, int width, int minHeight) {
    Card measure{this, false, 0, width, 0, kPadding};
    content(measure);
    int height = std::max(measure.y - measure.top + kPadding, minHeight);
    int top = (368 - height) / 2 + 18;
    int start = top + kPadding;
    if (height >= kCutHeight) {
        height = kCutHeight;
        top = kCutTop;
        start = 36;
    }
    const int left = (640 - width) / 2;
    pge::Sprite* target = GetDrawTarget();
    // The shadow lies 4 right and 6 below the panel, which is opaque: only the two
    // strips it leaves uncovered are blended, the same pixels at a third of the cost.
    adv::canvas::FillRect(target, left + width, top + 6, 4, height, kShadow);
    adv::canvas::FillRect(target, left + 4, top + height, width - 4, 6, kShadow);
    adv::canvas::FillRect(target, left, top, width, height, kPanel);
    adv::canvas::FillRect(target, left, top, width, 3, kChestnut);
    Card card{this, true, left, width, top, start};
    content(card);
}

std::vector<TorvaneApp::HintCap> TorvaneApp::HintCaps(const std::string& keys) const {
    if (!PadUsedLast()) return {{keys, false}};
    std::vector<HintCap> caps;
    bool dpadBefore = false, keyBefore = false;
    for (const auto& [name, button] : pad::ShownButtons(keys, PadContext())) {
        const bool dpad = button >= pge::PAD_UP && button < pge::PAD_BUTTONS, key = button == pge::PAD_BUTTONS;
        // A run of directions shares the D-pad's cap, a run of keys one key cap.
        if ((dpad && dpadBefore) || (key && keyBefore)) {
            caps.back().text += " " + name;
        } else {
            caps.push_back({name, !key});
        }
        dpadBefore = dpad;
        keyBefore = key;
    }
    return caps;
}

std::string TorvaneApp::ShownKeys(const std::string& keys) const {
    std::string text;
    for (const HintCap& cap : HintCaps(keys)) text += (text.empty() ? "" : " ") + cap.text;
    return text;
}

std::string TorvaneApp::WithShownKeys(const std::string& text) const {
    if (!PadUsedLast()) return text;
    const size_t open = text.rfind(" (");
    if (open != std::string::npos && text.back() == ')')
        return text.substr(0, open + 2) + ShownKeys(text.substr(open + 2, text.size() - open - 3)) + ")";
    // Each part behind " · " names its keys first, up to the first word that names none.
    static const std::string kDot = " · ";
    std::string shown;
    for (size_t from = 0; from <= text.size();) {
        const size_t dot = std::min(text.find(kDot, from), text.size());
        const std::string part = text.substr(from, dot - from);
        size_t keysEnd = 0;
        for (size_t at = 0; at < part.size();) {
            const size_t end = std::min(part.find(' ', at), part.size());
            const auto buttons = pad::ShownButtons(part.substr(at, end - at), PadContext());
            if (buttons.empty() || buttons.back().second == pge::PAD_BUTTONS) break;
            keysEnd = end;
            at = end + 1;
        }
        shown += (from == 0 ? "" : kDot) + ShownKeys(part.substr(0, keysEnd)) + part.substr(keysEnd);
        from = dot + kDot.size();
    }
    return shown;
}

int TorvaneApp::KeyHintWidth(const std::string& key, const std::string& label, const HintStyle& style) {
    int width = style.gap + adv::text::Width(*this, label) - 2;
    for (const HintCap& cap : HintCaps(key)) width += adv::text::Width(*this, cap.text) + 6 + 2;
    return width;
}

int TorvaneApp::DrawKeyHint(int x, int y, const std::string& key, const std::string& label, const HintStyle& style) {
    pge::Sprite* target = GetDrawTarget();
    const float top = float(y + 9 - style.capHeight), height = float(style.capHeight);
    int at = x;
    for (const HintCap& cap : HintCaps(key)) {
        const int w = adv::text::Width(*this, cap.text) + 6;
        // A pad's button is round at its ends, a key's cap square.
        const float radius = cap.pad ? height / 2.0f : 2.0f;
        adv::canvas::FillRoundRect(target, float(at), top, float(w), height, radius, kBg);
        adv::canvas::StrokeRoundRect(target, float(at), top, float(w), height, radius, kLine, 1.0f);
        adv::text::Draw(*this, at + 3, y, cap.text, kFg);
        at += w + 2;
    }
    adv::text::Draw(*this, at - 2 + style.gap, y, label, style.labelColour);
    return KeyHintWidth(key, label, style);
}

int TorvaneApp::SwitchWidth(const std::string& key, const std::string& label, const std::string& value) {
    const int sw = std::max(adv::text::Width(*this, value) + 18, 30);
    return KeyHintWidth(key, label) + 6 + sw;
}

void TorvaneApp::DrawSwitch(int centreX, int y, const std::string& key, const std::string& label,
                            const std::string& value, bool on, ButtonId id) {
    pge::Sprite* target = GetDrawTarget();
    const int sw = std::max(adv::text::Width(*this, value) + 18, 30);
    const int total = SwitchWidth(key, label, value);
    const int x0 = centreX - total / 2;
    const int pill = x0 + DrawKeyHint(x0, y, key, label) + 6;
    adv::canvas::FillRoundRect(target, float(pill), float(y - 2), float(sw), 11.0f, 5.5f, on ? kOk : kLine);
    const float knob = on ? float(pill + sw - 6) : float(pill + 6);
    adv::canvas::FillCircle(target, {knob, float(y) + 3.5f}, 4.0f, pge::WHITE);
    if (on) {
        adv::text::Draw(*this, pill + 4, y, value, kSwitchOnText);
    } else {
        adv::text::Draw(*this, pill + 13, y, value, kMuted);
    }
    buttons.push_back({x0 - 4, y - 4, total + 8, 15, id, 0});
}

} // namespace torvane
