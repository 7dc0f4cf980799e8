#include "vorabend/Painting.h"

#include "engine/Canvas.h"
#include "engine/Text.h"
#include "engine/adventure/Lang.h"

#include <cmath>
#include <random>

namespace vorabend::painting {

namespace c = adv::canvas;
using pge::Pixel;
using pge::vf2d;

namespace {

constexpr Pixel kMortar{52, 44, 40};
constexpr Pixel kStone{118, 106, 96};
constexpr Pixel kWood{104, 70, 42};
constexpr Pixel kDarkWood{64, 42, 26};
constexpr Pixel kIron{46, 46, 52};
constexpr Pixel kFire{255, 170, 60};

std::shared_ptr<pge::Sprite> Blank(int w, int h) {
    auto s = std::make_shared<pge::Sprite>(w, h);
    std::fill(s->pColData.begin(), s->pColData.end(), pge::BLANK);
    return s;
}

// Courses of stone: each block a shade of base, joined by mortar.
void Masonry(pge::Sprite* s, int x, int y, int w, int h, Pixel base, std::mt19937& rng, int course = 8) {
    c::FillRect(s, x, y, w, h, kMortar);
    std::uniform_int_distribution<int> len(12, 22);
    std::uniform_real_distribution<float> shade(0.82f, 1.12f);
    for (int row = 0; y + row * course < y + h; ++row) {
        int bx = x - (row % 2) * 7;
        const int by = y + row * course;
        while (bx < x + w) {
            const int bw = len(rng);
            const int x0 = std::max(bx + 1, x), x1 = std::min(bx + bw, x + w);
            const int y1 = std::min(by + course - 1, y + h);
            if (x1 > x0) {
                const Pixel p = c::Shade(base, shade(rng), 255);
                c::FillRect(s, x0, by + 1, x1 - x0, y1 - by - 1, p);
                c::FillRect(s, x0, by + 1, x1 - x0, 1, c::Shade(p, 1.15f, 255)); // the lit top edge
            }
            bx += bw;
        }
    }
}

// A column of stone that is round: lit from the left, dark to the right.
void RoundShade(pge::Sprite* s, int x, int y, int w, int h) {
    for (int i = 0; i < w; ++i) {
        const float t = (float(i) + 0.5f) / float(w) * 2.0f - 1.0f;
        const float light = 0.35f + 0.65f * std::sqrt(std::max(0.0f, 1.0f - t * t)) * (t < 0.2f ? 1.0f : 0.8f);
        c::FillRect(s, x + i, y, 1, h, Pixel(0, 0, 0, uint8_t(std::clamp(1.0f - light, 0.0f, 1.0f) * 170)));
    }
}

void Battlements(pge::Sprite* s, int x, int y, int w, int merlon, int gap, int height, Pixel colour) {
    for (int mx = x; mx < x + w; mx += merlon + gap) {
        c::FillRect(s, mx, y - height, std::min(merlon, x + w - mx), height, colour);
        c::FillRect(s, mx, y - height, std::min(merlon, x + w - mx), 1, c::Shade(colour, 1.2f, 255));
    }
}

void Hills(pge::Sprite* s, int w, int base, float amplitude, float phase, Pixel colour) {
    for (int x = 0; x < w; ++x) {
        const float top = float(base) - amplitude * (0.6f + 0.4f * std::sin(float(x) * 0.021f + phase)) -
                          amplitude * 0.3f * std::sin(float(x) * 0.057f + phase * 2.0f);
        c::FillRect(s, x, int(top), 1, base - int(top) + 30, colour);
    }
}

void CampFires(pge::Sprite* s, int x0, int x1, int y, int count, std::mt19937& rng) {
    std::uniform_int_distribution<int> px(x0, x1), py(-3, 3);
    for (int i = 0; i < count; ++i) {
        const vf2d at{float(px(rng)), float(y + py(rng))};
        c::RadialGradient(s, at, 0.5f, 3.5f, Pixel(255, 120, 40, 200), Pixel(255, 80, 20, 0));
        c::Blend(s, int(at.x), int(at.y), Pixel(255, 230, 140));
    }
}

void Torch(pge::Sprite* s, vf2d at) {
    c::RadialGradient(s, at, 2.0f, 26.0f, Pixel(255, 170, 70, 110), Pixel(255, 140, 50, 0));
    c::FillRect(s, int(at.x) - 1, int(at.y) + 2, 3, 9, kDarkWood);
    c::FillEllipse(s, {at.x, at.y}, 2.5f, 4.0f, kFire);
    c::FillEllipse(s, {at.x, at.y + 1}, 1.2f, 2.0f, Pixel(255, 240, 170));
}

void Cobbles(pge::Sprite* s, int x, int y, int w, int h, Pixel base, std::mt19937& rng) {
    c::VerticalGradient(s, x, y, w, h, c::Shade(base, 0.7f, 255), base);
    std::uniform_real_distribution<float> fx(float(x), float(x + w)), shade(0.75f, 1.1f);
    for (int i = 0; i < w * h / 40; ++i) {
        const float cy = float(y) + float(h) * std::pow(float(i % 97) / 97.0f, 0.8f);
        const float depth = 0.5f + 0.5f * (cy - float(y)) / float(h);
        const vf2d at{fx(rng), cy};
        c::FillEllipse(s, at, 3.5f * depth, 1.6f * depth, c::Shade(base, shade(rng) * (0.8f + 0.3f * depth), 255));
    }
}

void Planks(pge::Sprite* s, int x, int y, int w, int h, Pixel base, int plank, bool horizontal, std::mt19937& rng) {
    std::uniform_real_distribution<float> shade(0.85f, 1.1f);
    if (horizontal) {
        for (int py = y; py < y + h; py += plank) {
            c::FillRect(s, x, py, w, std::min(plank, y + h - py), c::Shade(base, shade(rng), 255));
            c::FillRect(s, x, py, w, 1, c::Shade(base, 0.55f, 255));
        }
    } else {
        for (int px = x; px < x + w; px += plank) {
            c::FillRect(s, px, y, std::min(plank, x + w - px), h, c::Shade(base, shade(rng), 255));
            c::FillRect(s, px, y, 1, h, c::Shade(base, 0.55f, 255));
        }
    }
}

void ClosedDoor(pge::Sprite* s, int x, int y, int w, int h) {
    c::FillEllipse(s, {float(x + w / 2), float(y + w / 2)}, float(w) / 2.0f + 3, float(w) / 2.0f + 3, kMortar);
    c::FillRect(s, x - 3, y + w / 2, w + 6, h - w / 2, kMortar);
    const c::Mask arch = [=](int px, int py) {
        const float dx = float(px) + 0.5f - float(x) - float(w) / 2.0f, dy = float(py) + 0.5f - float(y + w / 2);
        return py >= y + w / 2 || dx * dx + dy * dy <= float(w * w) / 4.0f;
    };
    for (int px = x; px < x + w; px += 6)
        c::FillPolygon(s, {{float(px), float(y)}, {float(px + 6), float(y)}, {float(px + 6), float(y + h)}, {float(px), float(y + h)}},
                       c::Shade(kWood, px % 12 ? 0.9f : 1.0f, 255), arch);
    for (int px = x; px < x + w; px += 6) c::Line(s, {float(px) + 0.5f, float(y)}, {float(px) + 0.5f, float(y + h)}, kDarkWood, 1, arch);
    c::FillRect(s, x, y + h / 3, w, 3, kIron);
    c::FillRect(s, x, y + 2 * h / 3, w, 3, kIron);
    c::FillCircle(s, {float(x + w - 7), float(y + h / 2 + 4)}, 2.5f, Pixel(150, 130, 60));
}

} // namespace

std::shared_ptr<pge::Sprite> Courtyard() {
    auto bg = std::make_shared<pge::Sprite>(kCourtyardWidth, kPlayHeight);
    pge::Sprite* s = bg.get();
    std::mt19937 rng(1);
    c::VerticalGradient(s, 0, 0, kCourtyardWidth, 50, Pixel(44, 34, 72), Pixel(196, 106, 78));
    c::VerticalGradient(s, 0, 50, kCourtyardWidth, 30, Pixel(196, 106, 78), Pixel(232, 160, 96));
    c::RadialGradient(s, {110, 44}, 7, 30, Pixel(255, 200, 140, 120), Pixel(255, 180, 120, 0));
    c::FillCircle(s, {110, 44}, 8, Pixel(250, 214, 150));
    Hills(s, kCourtyardWidth, 66, 14, 0.3f, Pixel(92, 64, 84));
    Hills(s, kCourtyardWidth, 72, 9, 2.0f, Pixel(70, 50, 70));
    CampFires(s, 250, 420, 66, 14, rng);
    // The curtain wall behind the yard, with a wall walk.
    Masonry(s, 0, 76, kCourtyardWidth, 50, Pixel(120, 104, 94), rng);
    Battlements(s, 0, 76, kCourtyardWidth, 10, 6, 8, Pixel(130, 114, 102));
    c::VerticalGradient(s, 0, 96, kCourtyardWidth, 30, Pixel(0, 0, 0, 0), Pixel(0, 0, 0, 90));
    // The gateway to the smithy on the left, with warm light inside.
    c::FillRect(s, 6, 84, 40, 42, kMortar);
    c::FillEllipse(s, {26, 86}, 20, 10, kMortar);
    c::VerticalGradient(s, 10, 86, 32, 40, Pixel(60, 36, 24), Pixel(150, 84, 40));
    c::FillEllipse(s, {26, 88}, 16, 7, Pixel(60, 36, 24));
    c::RadialGradient(s, {26, 118}, 2, 22, Pixel(255, 150, 60, 120), Pixel(255, 120, 40, 0));
    // Ground.
    Cobbles(s, 0, 118, kCourtyardWidth, kPlayHeight - 118, Pixel(112, 98, 84), rng);
    // The round tower on the right, with its door.
    const int tx = 446, tw = 96;
    Masonry(s, tx, 8, tw, 142, kStone, rng, 9);
    RoundShade(s, tx, 8, tw, 142);
    Battlements(s, tx - 4, 14, tw + 8, 12, 7, 10, Pixel(126, 114, 104));
    c::FillRect(s, tx - 4, 14, tw + 8, 4, Pixel(96, 86, 78));
    c::FillRect(s, tx + 40, 40, 8, 16, Pixel(24, 18, 20)); // an arrow slit
    ClosedDoor(s, 474, 98, 30, 50);
    Torch(s, {462, 96});
    Torch(s, {120, 86});
    Torch(s, {300, 86});
    // The well.
    c::FillEllipse(s, {155, 144}, 26, 8, Pixel(60, 52, 48));
    Masonry(s, 129, 128, 52, 16, Pixel(128, 120, 112), rng, 6);
    c::FillEllipse(s, {155, 128}, 26, 6, Pixel(96, 90, 86));
    c::FillEllipse(s, {155, 128}, 21, 4, Pixel(20, 22, 30));
    c::FillRect(s, 132, 96, 3, 32, kDarkWood);
    c::FillRect(s, 175, 96, 3, 32, kDarkWood);
    c::FillPolygon(s, {{124, 98}, {155, 84}, {186, 98}}, Pixel(120, 62, 44));
    c::Line(s, {133, 104}, {177, 104}, kDarkWood, 2);
    c::Line(s, {155, 104}, {155, 122}, Pixel(170, 150, 110));
    // The bench where the bread lies.
    c::FillRect(s, 228, 130, 64, 4, kWood);
    c::FillRect(s, 228, 130, 64, 1, Pixel(150, 110, 70));
    c::FillRect(s, 232, 134, 3, 12, kDarkWood);
    c::FillRect(s, 285, 134, 3, 12, kDarkWood);
    // A hay cart.
    c::FillPolygon(s, {{342, 118}, {352, 104}, {400, 104}, {410, 118}}, Pixel(196, 164, 84));
    for (int i = 0; i < 30; ++i)
        c::Line(s, {float(346 + i * 2), 118}, {float(352 + i * 2 + (i % 3) - 1), 106}, Pixel(160, 128, 60));
    Planks(s, 338, 118, 76, 16, kWood, 5, true, rng);
    c::FillCircle(s, {352, 142}, 10, kDarkWood);
    c::FillCircle(s, {352, 142}, 7, Pixel(92, 80, 68));
    c::FillCircle(s, {400, 142}, 10, kDarkWood);
    c::FillCircle(s, {400, 142}, 7, Pixel(92, 80, 68));
    for (int k = 0; k < 4; ++k) {
        const float a = float(k) * 0.785f;
        c::Line(s, {352 - 8 * std::cos(a), 142 - 8 * std::sin(a)}, {352 + 8 * std::cos(a), 142 + 8 * std::sin(a)}, kDarkWood);
        c::Line(s, {400 - 8 * std::cos(a), 142 - 8 * std::sin(a)}, {400 + 8 * std::cos(a), 142 + 8 * std::sin(a)}, kDarkWood);
    }
    c::Line(s, {414, 128}, {436, 150}, kDarkWood, 2);
    return bg;
}

std::shared_ptr<pge::Sprite> Smithy() {
    auto bg = std::make_shared<pge::Sprite>(kRoomWidth, kPlayHeight);
    pge::Sprite* s = bg.get();
    std::mt19937 rng(2);
    // Timber walls over a stone footing, the floor of beaten earth and boards.
    Planks(s, 0, 0, kRoomWidth, 96, Pixel(86, 60, 42), 11, false, rng);
    c::FillRect(s, 0, 22, kRoomWidth, 5, kDarkWood);
    Masonry(s, 0, 86, kRoomWidth, 24, Pixel(100, 90, 82), rng, 8);
    Planks(s, 0, 110, kRoomWidth, kPlayHeight - 110, Pixel(92, 68, 48), 7, true, rng);
    c::VerticalGradient(s, 0, 110, kRoomWidth, 20, Pixel(0, 0, 0, 110), Pixel(0, 0, 0, 0));
    // The forge with its glowing coals and hood.
    Masonry(s, 18, 70, 82, 52, Pixel(110, 92, 84), rng, 7);
    c::FillPolygon(s, {{26, 8}, {92, 8}, {102, 62}, {16, 62}}, Pixel(60, 54, 52));
    c::FillRect(s, 16, 60, 86, 4, Pixel(40, 36, 34));
    c::FillRect(s, 28, 72, 62, 10, Pixel(40, 20, 16));
    c::RadialGradient(s, {59, 77}, 3, 44, Pixel(255, 140, 40, 160), Pixel(255, 100, 30, 0));
    for (int i = 0; i < 12; ++i) c::FillCircle(s, {float(32 + i * 5), float(76 + (i % 3))}, 2.5f, i % 2 ? Pixel(255, 190, 80) : Pixel(230, 90, 30));
    // Tools on the wall.
    for (int i = 0; i < 4; ++i) {
        const float x = 130 + float(i) * 16;
        c::Line(s, {x, 30}, {x, 62}, kDarkWood, 2);
        c::FillRect(s, int(x) - 4, 60, 9, 5, kIron);
    }
    c::StrokeRoundRect(s, 196, 34, 28, 28, 14, kIron, 2); // a cart wheel's iron tyre
    // The anvil on its block.
    c::FillRect(s, 160, 132, 26, 18, kDarkWood);
    c::FillPolygon(s, {{146, 120}, {196, 120}, {192, 128}, {182, 132}, {164, 132}, {154, 128}}, Pixel(70, 72, 80));
    c::FillRect(s, 146, 120, 50, 2, Pixel(130, 132, 140));
    // The workbench at the right, and the oil barrel beside the door.
    c::FillRect(s, 246, 102, 96, 6, kWood);
    c::FillRect(s, 246, 102, 96, 1, Pixel(150, 110, 70));
    c::FillRect(s, 250, 108, 4, 24, kDarkWood);
    c::FillRect(s, 334, 108, 4, 24, kDarkWood);
    c::FillRect(s, 254, 116, 80, 3, kDarkWood);
    c::FillEllipse(s, {300, 150}, 14, 4, Pixel(0, 0, 0, 80));
    c::FillRoundRect(s, 288, 118, 26, 32, 6, Pixel(98, 66, 40));
    c::FillRect(s, 288, 124, 26, 2, kIron);
    c::FillRect(s, 288, 142, 26, 2, kIron);
    c::FillEllipse(s, {301, 119}, 12, 3, Pixel(40, 34, 30));
    c::FillEllipse(s, {301, 119}, 10, 2, Pixel(30, 26, 14));
    // The coal box.
    Planks(s, 80, 146, 38, 20, Pixel(84, 58, 38), 5, true, rng);
    for (int i = 0; i < 9; ++i) c::FillCircle(s, {float(84 + i * 4), float(145 + (i % 2))}, 2.5f, Pixel(28, 26, 30));
    // The door back to the yard.
    c::FillRect(s, 358, 56, 26, 70, Pixel(40, 28, 20));
    c::VerticalGradient(s, 362, 60, 22, 66, Pixel(120, 74, 70), Pixel(170, 120, 84));
    c::RadialGradient(s, {120, 30}, 2, 70, Pixel(255, 160, 60, 40), Pixel(255, 140, 40, 0));
    return bg;
}

std::shared_ptr<pge::Sprite> Battlement() {
    auto bg = std::make_shared<pge::Sprite>(kRoomWidth, kPlayHeight);
    pge::Sprite* s = bg.get();
    std::mt19937 rng(3);
    c::VerticalGradient(s, 0, 0, kRoomWidth, 110, Pixel(10, 12, 34), Pixel(60, 40, 78));
    std::uniform_int_distribution<int> sx(0, kRoomWidth - 1), sy(0, 80), bright(120, 255);
    for (int i = 0; i < 90; ++i) {
        // One draw after the other, named: the order of a call's arguments is the compiler's.
        const uint8_t b = uint8_t(bright(rng));
        const int y = sy(rng);
        const int x = sx(rng);
        c::Blend(s, x, y, Pixel(b, b, uint8_t(std::min(255, b + 20))));
    }
    c::FillCircle(s, {320, 30}, 10, Pixel(236, 232, 210));
    c::FillCircle(s, {325, 27}, 9, Pixel(14, 16, 40));
    Hills(s, kRoomWidth, 90, 16, 1.1f, Pixel(36, 30, 54));
    Hills(s, kRoomWidth, 96, 10, 3.0f, Pixel(26, 22, 40));
    CampFires(s, 150, 380, 92, 36, rng);
    // The tower's top: a ring of merlons in front of the view, the stone floor, the hatch.
    Masonry(s, 0, 108, kRoomWidth, 14, Pixel(100, 92, 96), rng, 7);
    Battlements(s, 0, 108, kRoomWidth, 16, 10, 10, Pixel(110, 100, 104));
    c::VerticalGradient(s, 0, 122, kRoomWidth, kPlayHeight - 122, Pixel(78, 72, 78), Pixel(112, 104, 108));
    for (int y = 126; y < kPlayHeight; y += 9) c::FillRect(s, 0, y, kRoomWidth, 1, Pixel(60, 56, 62));
    for (int y = 126, row = 0; y < kPlayHeight; y += 9, ++row)
        for (int x = (row % 2) * 14; x < kRoomWidth; x += 28) c::FillRect(s, x, y, 1, 9, Pixel(60, 56, 62));
    c::FillPolygon(s, {{26, 146}, {84, 146}, {92, 172}, {18, 172}}, Pixel(30, 24, 24));
    for (int i = 0; i < 4; ++i) c::FillRect(s, 26 + i * 3, 150 + i * 6, 58 - i * 2, 2, Pixel(70, 60, 56));
    // The beacon: an iron basket on a stone plinth, piled with wood.
    Masonry(s, 250, 124, 64, 18, Pixel(120, 110, 112), rng, 6);
    for (int i = 0; i < 7; ++i) c::Line(s, {float(258 + i * 8), 92}, {float(266 + i * 5.3f), 124}, kIron, 2);
    c::FillRect(s, 256, 92, 52, 3, kIron);
    c::FillRect(s, 264, 110, 36, 2, kIron);
    for (int i = 0; i < 9; ++i)
        c::Line(s, {float(262 + i * 5), 94}, {float(266 + (i * 7) % 36), 84 + float(i % 3) * 2}, Pixel(120, 84, 50), 2);
    return bg;
}

std::shared_ptr<pge::Sprite> OpenDoor() {
    auto s = Blank(30, 50);
    const c::Mask arch = [](int px, int py) {
        const float dx = float(px) + 0.5f - 15.0f, dy = float(py) + 0.5f - 15.0f;
        return py >= 15 || dx * dx + dy * dy <= 225.0f;
    };
    c::FillPolygon(s.get(), {{0, 0}, {30, 0}, {30, 50}, {0, 50}}, Pixel(18, 12, 10), arch);
    // Stairs going up inside, in the light of a lamp.
    for (int i = 0; i < 5; ++i) c::FillRect(s.get(), 6 + i * 3, 44 - i * 7, 24 - i * 3, 2, Pixel(90, 70, 50));
    c::RadialGradient(s.get(), {18, 20}, 1, 16, Pixel(255, 170, 80, 90), Pixel(255, 140, 60, 0));
    c::FillPolygon(s.get(), {{0, 14}, {5, 16}, {5, 50}, {0, 50}}, kWood);
    return s;
}

std::shared_ptr<pge::Sprite> Bread() {
    auto s = Blank(18, 9);
    c::FillEllipse(s.get(), {9, 5}, 8.5f, 4, Pixel(166, 104, 46));
    c::FillEllipse(s.get(), {8, 4}, 6, 2.5f, Pixel(206, 146, 74));
    for (int i = 0; i < 3; ++i) c::Line(s.get(), {float(5 + i * 4), 3}, {float(7 + i * 4), 6}, Pixel(120, 70, 30));
    return s;
}

std::shared_ptr<pge::Sprite> Rag() {
    auto s = Blank(16, 6);
    c::FillPolygon(s.get(), {{0, 5}, {3, 0}, {12, 1}, {16, 5}}, Pixel(190, 182, 160));
    c::Line(s.get(), {4, 2}, {11, 3}, Pixel(140, 130, 110));
    return s;
}

std::shared_ptr<pge::Sprite> FireSteel() {
    auto s = Blank(14, 6);
    c::StrokeRoundRect(s.get(), 0.5f, 0.5f, 9, 5, 2, Pixel(170, 172, 180), 1);
    c::FillPolygon(s.get(), {{9, 5}, {11, 1}, {14, 2}, {13, 6}}, Pixel(150, 140, 120));
    return s;
}

std::shared_ptr<pge::Sprite> Flames() {
    auto s = Blank(70, 60);
    c::RadialGradient(s.get(), {35, 40}, 4, 34, Pixel(255, 170, 60, 150), Pixel(255, 120, 40, 0));
    c::FillPolygon(s.get(), {{16, 50}, {22, 22}, {28, 34}, {35, 6}, {42, 30}, {48, 18}, {54, 50}}, Pixel(240, 110, 30));
    c::FillPolygon(s.get(), {{24, 50}, {28, 32}, {33, 38}, {36, 18}, {40, 38}, {45, 30}, {47, 50}}, Pixel(255, 190, 70));
    c::FillPolygon(s.get(), {{30, 50}, {34, 36}, {38, 50}}, Pixel(255, 244, 190));
    return s;
}

std::shared_ptr<pge::Sprite> Icon(const std::string& item) {
    auto s = Blank(28, 20);
    pge::Sprite* p = s.get();
    if (item == "brot") {
        c::FillEllipse(p, {14, 11}, 12, 6, Pixel(166, 104, 46));
        c::FillEllipse(p, {13, 9}, 9, 4, Pixel(214, 150, 76));
        for (int i = 0; i < 4; ++i) c::Line(p, {float(6 + i * 5), 7}, {float(9 + i * 5), 12}, Pixel(120, 70, 30));
    } else if (item == "schluessel") {
        c::StrokeRoundRect(p, 3.5f, 5.5f, 9, 9, 4.5f, Pixel(200, 170, 80), 2);
        c::FillRect(p, 12, 9, 13, 2, Pixel(200, 170, 80));
        c::FillRect(p, 20, 11, 2, 4, Pixel(200, 170, 80));
        c::FillRect(p, 24, 11, 2, 3, Pixel(200, 170, 80));
    } else if (item == "lappen" || item == "oellappen") {
        const bool oily = item == "oellappen";
        const Pixel cloth = oily ? Pixel(96, 80, 44) : Pixel(196, 188, 166);
        c::FillPolygon(p, {{3, 16}, {7, 4}, {20, 3}, {25, 15}, {14, 18}}, cloth);
        c::Line(p, {8, 8}, {19, 7}, c::Shade(cloth, 0.7f, 255));
        c::Line(p, {7, 12}, {21, 12}, c::Shade(cloth, 0.7f, 255));
        if (oily) c::FillEllipse(p, {17, 10}, 3, 1.5f, Pixel(200, 190, 120, 160));
    } else if (item == "feuerstahl") {
        c::StrokeRoundRect(p, 3.5f, 6.5f, 14, 8, 3, Pixel(170, 172, 184), 2);
        c::FillPolygon(p, {{17, 15}, {20, 5}, {26, 7}, {24, 16}}, Pixel(150, 140, 120));
        c::Line(p, {20, 6}, {23, 14}, Pixel(190, 180, 160));
    }
    return s;
}

void DrawTitle(pge::PixelEngine& engine, float elapsed) {
    static std::shared_ptr<pge::Sprite> s_backdrop;
    if (!s_backdrop) {
        s_backdrop = std::make_shared<pge::Sprite>(engine.ScreenWidth(), engine.ScreenHeight());
        pge::Sprite* s = s_backdrop.get();
        std::mt19937 rng(4);
        c::VerticalGradient(s, 0, 0, s->width, 140, Pixel(24, 20, 52), Pixel(206, 110, 74));
        c::VerticalGradient(s, 0, 140, s->width, 40, Pixel(206, 110, 74), Pixel(236, 170, 100));
        Hills(s, s->width, 170, 22, 0.7f, Pixel(78, 52, 74));
        Hills(s, s->width, 184, 14, 2.4f, Pixel(50, 36, 56));
        CampFires(s, 200, 370, 176, 18, rng);
        c::FillRect(s, 0, 196, s->width, s->height - 196, Pixel(30, 24, 34));
        // The tower in silhouette, its beacon still cold.
        c::FillRect(s, 60, 70, 56, 130, Pixel(36, 28, 40));
        Battlements(s, 56, 78, 64, 9, 5, 9, Pixel(36, 28, 40));
        c::FillRect(s, 84, 110, 6, 12, Pixel(255, 180, 90));
    }
    pge::Sprite* target = engine.GetDrawTarget();
    c::DrawSprite(target, s_backdrop.get(), 0, 0, 0, 0, s_backdrop->width, s_backdrop->height, false, 1.0f);
    const int cx = engine.ScreenWidth() / 2 + 40;
    adv::text::DrawOutlined(engine, cx, 40, "Der Vorabend", Pixel(255, 226, 150), Pixel(40, 20, 20), 3,
                            adv::text::Align::Centre);
    int y = 80;
    for (const std::string& line : adv::text::Wrap(engine,
             adv::Tr("Eine Geschichte aus der Vellmark, am Abend vor der ersten Belagerung. "
                     "Im Osten brennen die Feuer des Feindes, und auf dem Turm wartet das Leuchtfeuer."), 230)) {
        adv::text::DrawOutlined(engine, cx, y, line, Pixel(240, 224, 200), Pixel(30, 20, 30), 1, adv::text::Align::Centre);
        y += 11;
    }
    if (std::fmod(elapsed, 1.2f) < 0.8f)
        adv::text::DrawOutlined(engine, cx, 218, adv::Tr("Klick oder Leertaste: Beginnen"), Pixel(255, 226, 150),
                                Pixel(30, 20, 30), 1, adv::text::Align::Centre);
}

} // namespace vorabend::painting
