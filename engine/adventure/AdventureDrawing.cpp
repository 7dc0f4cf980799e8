// The adventure's picture: the scene with its figures and lines of speech, the panel of
// verbs and items, the debug overlay, the end and the toast.
#include "engine/adventure/AdventureGame.h"

#include "engine/Canvas.h"
#include "engine/Text.h"
#include "engine/adventure/Lang.h"
#include "engine/adventure/PanelLayout.h"

#include <algorithm>
#include <cmath>

namespace adv {

using namespace panel;

void AdventureGame::DrawWorld() {
    Clear(pge::BLACK);
    if (state == Intro) {
        if (introIndex < introScreens.size()) introScreens[introIndex]->Draw(*this, introClock);
        return;
    }
    if (state == Ended) {
        DrawEnd();
        return;
    }
    DrawScene();
    if (debugOverlay) DrawDebug();
    DrawPanel();
    if (fade > 0.0f)
        canvas::FillRect(GetDrawTarget(), 0, 0, kViewWidth, kViewHeight, canvas::WithAlpha(pge::BLACK, fade));
}

void AdventureGame::DrawScene() {
    if (!current) return;
    pge::Sprite* target = GetDrawTarget();
    const int cx = int(std::floor(camera.x)), cy = int(std::floor(camera.y));
    if (const pge::Sprite* bg = current->Background())
        canvas::DrawSprite(target, bg, 0, 0, cx, cy, std::min(bg->width - cx, kViewWidth),
                           std::min(bg->height - cy, kPlayHeight), false, 1.0f);
    for (const SceneObject& o : current->objects)
        if (o.sprite && current->ObjectShown(o))
            canvas::DrawSprite(target, o.sprite.get(), int(o.position.x) - cx, int(o.position.y) - cy, 0, 0,
                               o.sprite->width, o.sprite->height, false, 1.0f);
    // Nearer figures, lower on the screen, are drawn over farther ones.
    // Only figures near the view: one far outside it, say from an edited save, is never drawn.
    std::vector<const Actor*> shown;
    for (const auto& [id, a] : actors)
        if (a.visible && a.scene == current->id && std::fabs(a.position.x - camera.x) < 2.0f * kViewWidth &&
            std::fabs(a.position.y - camera.y) < 2.0f * kViewHeight)
            shown.push_back(&a);
    std::stable_sort(shown.begin(), shown.end(),
                     [](const Actor* a, const Actor* b) { return a->position.y < b->position.y; });
    for (const Actor* a : shown) DrawActor(*a);
    // Lines of speech over the heads, clear of the screen's edges.
    for (const Actor* a : shown) {
        if (a->speech.empty()) continue;
        const std::vector<std::string> lines = text::Wrap(*this, a->speech, 220);
        int y = int(a->position.y - float(a->spriteHeight) * a->scale - camera.y) - 6 - 10 * int(lines.size());
        y = std::max(y, 2);
        for (const std::string& line : lines) {
            const int half = text::Width(*this, line) / 2;
            const int x = std::clamp(int(a->position.x - camera.x), half + 3, kViewWidth - half - 3);
            text::DrawOutlined(*this, x, y, line, a->look.speech, pge::BLACK, 1, text::Align::Centre);
            y += 10;
        }
    }
    if (!narration.empty()) {
        const std::vector<std::string> lines = text::Wrap(*this, narration, 320);
        const int h = 10 * int(lines.size()) + 8;
        canvas::FillRect(target, 0, 6, kViewWidth, h, canvas::WithAlpha(ui::kPanel, 0.8f));
        int y = 10;
        for (const std::string& line : lines) {
            text::Draw(*this, kViewWidth / 2, y, line, ui::kText, 1, text::Align::Centre);
            y += 10;
        }
    }
}

void AdventureGame::DrawActor(const Actor& a) {
    pge::Sprite* target = GetDrawTarget();
    const float s = a.scale;
    const float x = a.position.x - camera.x, feet = a.position.y - camera.y;
    const float h = float(a.spriteHeight) * s, w = float(a.spriteWidth) * s;
    const ActorLook& c = a.look;
    canvas::FillEllipse(target, {x, feet}, w * 0.55f, std::max(1.5f, 2.5f * s), pge::Pixel(0, 0, 0, 90));
    // Legs swing while walking.
    const float swing = a.Walking() ? std::sin(a.walkClock * Actor::kStrideRate) * w * 0.18f : 0.0f;
    const float legTop = feet - h * 0.42f;
    canvas::Line(target, {x - w * 0.14f, legTop}, {x - w * 0.14f + swing, feet - 1}, c.legs, std::max(1.0f, w * 0.2f));
    canvas::Line(target, {x + w * 0.14f, legTop}, {x + w * 0.14f - swing, feet - 1}, c.legs, std::max(1.0f, w * 0.2f));
    // A coat, wider at the hem.
    const float shoulder = feet - h * 0.80f;
    canvas::FillPolygon(target,
                        {{x - w * 0.36f, shoulder}, {x + w * 0.36f, shoulder}, {x + w * 0.5f, legTop + h * 0.08f},
                         {x - w * 0.5f, legTop + h * 0.08f}},
                        c.coat);
    canvas::FillRect(target, int(x - w * 0.4f), int(feet - h * 0.5f), int(std::ceil(w * 0.8f)), std::max(1, int(h * 0.04f)),
                     canvas::Shade(c.coat, 0.55f, 255));
    const float armSwing = a.Walking() ? -swing * 0.6f : 0.0f;
    const pge::Pixel sleeve = canvas::Shade(c.coat, 0.8f, 255);
    canvas::Line(target, {x - w * 0.38f, shoulder + 1}, {x - w * 0.48f + armSwing, feet - h * 0.45f}, sleeve, std::max(1.0f, w * 0.16f));
    canvas::Line(target, {x + w * 0.38f, shoulder + 1}, {x + w * 0.48f - armSwing, feet - h * 0.45f}, sleeve, std::max(1.0f, w * 0.16f));
    // Head and hair; the hair shows which way the figure looks.
    const float r = w * 0.3f;
    const vf2d head{x, shoulder - r * 0.9f};
    canvas::FillCircle(target, head, r, c.skin);
    switch (a.facing) {
    case Facing::Back: canvas::FillCircle(target, head, r + 0.3f, c.hair); break;
    case Facing::Left:
        canvas::FillEllipse(target, {head.x + r * 0.35f, head.y - r * 0.3f}, r * 0.8f, r * 0.75f, c.hair);
        break;
    case Facing::Right:
        canvas::FillEllipse(target, {head.x - r * 0.35f, head.y - r * 0.3f}, r * 0.8f, r * 0.75f, c.hair);
        break;
    case Facing::Front:
        canvas::FillEllipse(target, {head.x, head.y - r * 0.55f}, r * 1.02f, r * 0.5f, c.hair);
        if (s > 0.6f) {
            canvas::Blend(target, int(head.x - r * 0.35f), int(head.y), pge::Pixel(30, 20, 20));
            canvas::Blend(target, int(head.x + r * 0.35f), int(head.y), pge::Pixel(30, 20, 20));
        }
        break;
    }
}

void AdventureGame::DrawPanel() {
    pge::Sprite* target = GetDrawTarget();
    canvas::FillRect(target, 0, kPlayHeight, kViewWidth, kViewHeight - kPlayHeight, ui::kPanel);
    canvas::FillRect(target, 0, kPlayHeight, kViewWidth, 1, ui::kFrame);
    // A dialogue's options take the place of the verbs, below the figures.
    if (!dialogue.empty()) {
        DrawDialogue();
        return;
    }
    text::Draw(*this, kViewWidth / 2, kSentenceY, sentence, ui::kHighlight, 1, text::Align::Centre);
    for (int i = 0; i < 9; ++i) {
        const int x = kVerbX + kVerbW * (i % 3), y = kVerbY + kVerbH * (i / 3);
        const bool chosen = kVerbGrid[i] == verb;
        if (chosen) canvas::FillRect(target, x + 1, y + 1, kVerbW - 2, kVerbH - 2, canvas::WithAlpha(ui::kFrame, 0.5f));
        const pge::Pixel colour = (i == hoveredVerb || chosen) ? ui::kHighlight : ui::kText;
        text::Draw(*this, x + kVerbW / 2, y + 4, Tr(VerbName(kVerbGrid[i])), colour, 1, text::Align::Centre);
    }
    // The scroll arrows, dim when there is nowhere to go.
    const pge::Pixel up = inventory.scroll > 0 ? ui::kText : ui::kMuted;
    const pge::Pixel down = inventory.scroll < inventory.MaxScroll() ? ui::kText : ui::kMuted;
    const float ax = (kArrowX0 + kArrowX1 + 1) / 2.0f;
    canvas::FillPolygon(target, {{ax, 198}, {ax + 5, 208}, {ax - 5, 208}}, up);
    canvas::FillPolygon(target, {{ax - 5, 224}, {ax + 5, 224}, {ax, 234}}, down);
    for (int i = 0; i < Inventory::kCells; ++i) {
        const int x = kInvX + kInvW * (i % 4), y = kInvY + kInvH * (i / 4);
        const std::string id = inventory.At(i);
        const bool hot = !id.empty() && (id == hoveredItem || id == heldItem);
        canvas::FillRect(target, x + 1, y + 1, kInvW - 2, kInvH - 2, hot ? pge::Pixel(70, 54, 40) : pge::Pixel(48, 38, 31));
        if (id.empty()) continue;
        const auto it = items.find(id);
        const pge::Sprite* icon = it != items.end() ? it->second.sprite.get() : nullptr;
        if (icon)
            canvas::DrawSprite(target, icon, x + (kInvW - icon->width) / 2, y + (kInvH - icon->height) / 2, 0, 0,
                               icon->width, icon->height, false, 1.0f);
        else
            text::Draw(*this, x + kInvW / 2, y + 8, Tr(ItemName(id)).substr(0, 3), ui::kText, 1, text::Align::Centre);
    }
}

void AdventureGame::DrawDebug() {
    if (!current) return;
    pge::Sprite* target = GetDrawTarget();
    auto shift = [&](const Polygon& p) {
        std::vector<vf2d> v;
        for (const vf2d& q : p.vertices) v.push_back(q - camera);
        return v;
    };
    const WalkArea& area = current->walkArea;
    canvas::Polyline(target, shift(area.outer), pge::GREEN, 1, true);
    for (const Polygon& hole : area.holes) canvas::Polyline(target, shift(hole), pge::RED, 1, true);
    for (const vf2d& n : area.nodes) canvas::FillRect(target, int(n.x - camera.x) - 1, int(n.y - camera.y) - 1, 3, 3, pge::YELLOW);
    for (const Hotspot& h : current->hotspots)
        if (h.enabled) canvas::Polyline(target, shift(h.shape), pge::CYAN, 1, true, 3, 2);
    const Actor& p = Player();
    vf2d from = p.position - camera;
    for (const vf2d& q : p.path) {
        canvas::Line(target, from, q - camera, pge::MAGENTA);
        from = q - camera;
    }
    const pge::vi2d m = GetMousePos();
    text::DrawOutlined(*this, 2, 2,
                       current->id + "  " + std::to_string(int(m.x + camera.x)) + "," + std::to_string(m.y) +
                           "  FPS " + std::to_string(GetFPS()),
                       pge::WHITE, pge::BLACK);
}

void AdventureGame::DrawEnd() {
    int y = 80;
    for (const std::string& line : text::Wrap(*this, Tr(endText), 320)) {
        text::Draw(*this, kViewWidth / 2, y, line, ui::kText, 1, text::Align::Centre);
        y += 12;
    }
    text::Draw(*this, kViewWidth / 2, 200, Tr("ENDE"), ui::kHighlight, 2, text::Align::Centre);
    text::Draw(*this, kViewWidth / 2, 224, Tr("Esc: beenden   F5: Menue"), ui::kMuted, 1, text::Align::Centre);
}

void AdventureGame::DrawToast() {
    if (toast.empty()) return;
    const int w = text::Width(*this, toast) + 16;
    const int x = (kViewWidth - w) / 2;
    canvas::FillRoundRect(GetDrawTarget(), x, 150, w, 16, 4, canvas::WithAlpha(ui::kPanel, 0.92f));
    text::Draw(*this, kViewWidth / 2, 154, toast, ui::kHighlight, 1, text::Align::Centre);
}


} // namespace adv
