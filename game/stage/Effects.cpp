// Short-lived visuals from the rules' events: debris, rising text, flashing cells and
// the runner's stoop. They live in grid positions and age with the game's clock, so
// they turn with a ring and stand still when the game does.
#include "engine/Canvas.h"
#include "engine/Text.h"
#include "game/stage/TowerView.h"

#include <algorithm>
#include <cmath>

namespace torvane {

namespace {

constexpr float kParticleLife = 1.2f;
constexpr float kFloaterLife = 1.4f;
constexpr float kFlashLife = 1.2f;
constexpr float kGravity = 9.0f; // rows per second squared

// Drops the finished ones, keeping the order of the rest.
template <typename T, typename Done>
void Sweep(std::vector<T>& list, Done done) {
    list.erase(std::remove_if(list.begin(), list.end(), done), list.end());
}

} // namespace

void TowerView::OnEvent(const Event& event, const Game& game) {
    const float now = game.clock;
    switch (event.kind) {
    case Event::Burst:
        if (event.cells.empty()) return;
        for (int i = 0; i < event.count; ++i) {
            const Cell& c = event.cells[static_cast<size_t>(i) % event.cells.size()];
            Particle p;
            // The draws in this order, one each.
            p.x = static_cast<float>(c.x) + Random();
            p.y = static_cast<float>(c.y) + Random();
            p.vx = (Random() - 0.5f) * 6.0f;
            p.vy = 1.0f + Random() * 5.0f;
            p.size = 0.15f + Random() * 0.35f;
            p.life = kParticleLife;
            p.born = now;
            p.tower = event.tower;
            particles.push_back(p);
        }
        break;
    case Event::Float: {
        const pge::vf2d centre = CentreOf(game, event.cells);
        floaters.push_back({event.text, centre.x - 0.5f, centre.y - 0.5f, now, event.tower});
        break;
    }
    case Event::Flash:
        flashes.push_back({event.cells, now, event.tower});
        break;
    case Event::Placed:
        dropTime = lastTime; // the view's time, not the game's
        break;
    default:
        break;
    }
}

void TowerView::DrawEffects(pge::PixelEngine& engine, const Game& game, const Layout& lay) {
    namespace cv = adv::canvas;
    pge::Sprite* target = engine.GetDrawTarget();
    const float t = game.clock;
    const float cell = lay.cell;
    const pge::Pixel stone = ThemeFor(game.level).stone;

    for (const Particle& p : particles) {
        const float a = t - p.born;
        const Geo g = TowerGeo(lay, p.tower);
        // Their own speed counts by 0.4; gravity pulls them down by 4.5 a² rows.
        const float px = p.x + a * p.vx * 0.4f;
        const float py = p.y + a * p.vy * 0.4f - a * kGravity * a * 0.5f;
        if (g.ring && std::fabs(g.Angle(px)) > g.halfAngle) continue;
        const pge::vf2d at = g.P(px, py, 1.0f);
        const float fade = (1.0f - a / p.life) * 255.0f;
        const uint8_t alpha = fade > 0.0f ? static_cast<uint8_t>(std::min(fade, 255.0f)) : 0;
        const int n = cell * p.size > 1.0f ? static_cast<int>(cell * p.size) : 1;
        cv::FillRect(target, static_cast<int>(at.x), static_cast<int>(at.y), n, n, cv::Shade(stone, 0.7f, alpha));
    }
    Sweep(particles, [t](const Particle& p) { return t - p.born >= p.life; });

    for (const Floater& f : floaters) {
        const float a = t - f.born;
        const float fade = std::max(1.0f - a / kFloaterLife, 0.0f);
        const Geo g = TowerGeo(lay, f.tower);
        if (g.ring && std::fabs(g.Angle(f.x + 0.5f)) > g.halfAngle) continue;
        const pge::vf2d p = g.P(f.x + 0.5f, f.y + 0.5f, 1.0f);
        const float y = p.y - cell * a * 1.2f;
        adv::text::DrawOutlined(engine, static_cast<int>(p.x), static_cast<int>(y) - 4, f.text,
                                cv::WithAlpha(pge::Pixel(255, 255, 255), fade),
                                cv::WithAlpha(pge::Pixel(0, 0, 0), fade * 0.45f), 1, adv::text::Align::Centre);
    }
    Sweep(floaters, [t](const Floater& f) { return t - f.born >= kFloaterLife; });

    // Flashes are drawn on the wall; here they only die.
    Sweep(flashes, [t](const Flash& f) { return t - f.born >= kFlashLife; });
}

} // namespace torvane
