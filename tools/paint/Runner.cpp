// Torvane, the runner: a small soldier without weapons, steel cap, red tunic, in six
// frames per sheet. Limbs are drawn as material shapes with the engine's canvas, then
// shaded with light from the left and outlined, whichever way he faces.
#include "tools/paint/World.h"

#include <algorithm>
#include <cmath>

namespace paint {

namespace {

constexpr float kPi = 3.1415927f;
enum Material { Skin, Tunic, Trousers, Leather, Steel, kMaterials };
constexpr int kFar = 16; // added to a material drawn behind the body

// A pose: angles from straight down (positive swings forward), lengths in pixels.
struct Stance {
    float lean = 0.0f;              // torso, forward
    float hipDrop = 0.0f;           // how far the hip sinks below standing height
    float nearThigh = 0.0f, nearKnee = 0.0f, farThigh = 0.0f, farKnee = 0.0f; // knee: bend backwards
    float nearArm = 0.0f, nearElbow = 0.0f, farArm = 0.0f, farElbow = 0.0f;   // elbow: bend forwards
    float chest = 0.0f;             // breathing
};

constexpr float kThigh = 8.0f, kShin = 8.5f, kUpper = 6.0f, kFore = 6.0f, kBody = 12.0f;

Stance RunPose(int f) {
    const float a = static_cast<float>(f) / 6.0f * 2.0f * kPi;
    Stance p;
    p.lean = 0.28f;
    p.hipDrop = 1.0f - std::fabs(std::cos(a)) * 1.2f;
    p.nearThigh = 0.85f * std::sin(a);
    p.farThigh = -0.85f * std::sin(a);
    p.nearKnee = 0.3f + 1.1f * std::max(0.0f, std::cos(a));
    p.farKnee = 0.3f + 1.1f * std::max(0.0f, -std::cos(a));
    p.nearArm = -0.8f * std::sin(a);
    p.farArm = 0.8f * std::sin(a);
    p.nearElbow = p.farElbow = 1.5f;
    return p;
}

Stance IdlePose(int f) {
    const float a = static_cast<float>(f) / 6.0f * 2.0f * kPi;
    Stance p;
    p.chest = 0.5f - 0.5f * std::cos(a);
    p.nearThigh = 0.12f;
    p.farThigh = -0.12f;
    p.nearKnee = p.farKnee = 0.05f;
    p.nearArm = 0.1f + 0.04f * p.chest;
    p.farArm = -0.1f;
    p.nearElbow = p.farElbow = 0.25f;
    return p;
}

// Bending down to set the piece and straightening up again.
Stance StoopPose(int f) {
    static const float kDepth[6] = {0.25f, 0.7f, 1.0f, 1.0f, 0.6f, 0.2f};
    const float d = kDepth[f];
    Stance p;
    p.lean = 1.05f * d;
    p.hipDrop = 5.0f * d;
    p.nearThigh = 0.9f * d + 0.1f;
    p.farThigh = 0.6f * d - 0.1f;
    p.nearKnee = 1.6f * d;
    p.farKnee = 1.3f * d;
    p.nearArm = 0.2f + 1.3f * d;
    p.farArm = 1.2f * d;
    p.nearElbow = p.farElbow = 0.3f;
    return p;
}

// Crouch, take-off, flight with knees drawn up, reaching down, landing crouch.
Stance JumpPose(int f) {
    static const Stance kFrames[6] = {
        {0.5f, 5.0f, 1.0f, 2.0f, 0.8f, 1.9f, -0.6f, 0.4f, -0.8f, 0.4f, 0.0f},
        {0.2f, -1.0f, -0.1f, 0.1f, -0.4f, 0.3f, 2.4f, 0.3f, 2.1f, 0.3f, 0.0f},
        {0.15f, 0.0f, 1.3f, 2.2f, 0.7f, 1.9f, 2.7f, 0.6f, 2.4f, 0.6f, 0.0f},
        {0.1f, 0.0f, 1.1f, 1.6f, 0.4f, 1.4f, 1.9f, 0.8f, 1.6f, 0.8f, 0.0f},
        {0.1f, 0.0f, 0.5f, 0.4f, -0.2f, 0.6f, 1.2f, 0.9f, 1.0f, 0.9f, 0.0f},
        {0.45f, 4.0f, 1.0f, 1.9f, 0.7f, 1.8f, 0.9f, 0.6f, 0.7f, 0.6f, 0.0f},
    };
    return kFrames[f];
}

pge::vf2d Swing(pge::vf2d from, float angle, float length, float dir) {
    return {from.x + std::sin(angle) * length * dir, from.y + std::cos(angle) * length};
}

} // namespace

Palette RunnerPalette() {
    Palette pal;
    pal.Add(pge::Pixel(0, 0, 0));        // transparent
    pal.Add(pge::Pixel(26, 16, 14));     // outline
    pal.Ramp({{150, 90, 66}, {226, 160, 120}, {252, 206, 164}}, 3);  // skin
    pal.Ramp({{110, 28, 26}, {178, 54, 40}, {230, 104, 70}}, 3);     // tunic
    pal.Ramp({{70, 62, 58}, {122, 110, 96}, {172, 160, 138}}, 3);    // trousers
    pal.Ramp({{52, 32, 20}, {96, 62, 36}, {146, 100, 60}}, 3);       // leather
    pal.Ramp({{84, 92, 104}, {150, 160, 172}, {226, 232, 240}}, 3);  // steel
    return pal;
}

void PaintRunner(Picture& out, int firstInk, Pose pose, int frame, bool facingLeft, int x0, int feetY) {
    const Stance st = pose == Pose::Run     ? RunPose(frame)
                      : pose == Pose::Idle  ? IdlePose(frame)
                      : pose == Pose::Stoop ? StoopPose(frame)
                                            : JumpPose(frame);
    const float dir = facingLeft ? -1.0f : 1.0f;
    // Joints relative to the standing feet at (32, 59) of a 64 by 64 cell.
    pge::vf2d hip{32.0f, 59.0f - kThigh - kShin + st.hipDrop};
    const auto legs = [&](float thigh, float knee) {
        const pge::vf2d k = Swing(hip, thigh, kThigh, dir);
        return std::make_pair(k, Swing(k, thigh - knee, kShin, dir));
    };
    // Feet on the ground: the lowest foot stands on row 59 (row 54 in the jump's landing), to
    // the pixel below; in flight the hip keeps its height.
    const bool grounded = pose != Pose::Jump || frame == 0 || frame == 5;
    if (grounded) {
        const float low = std::max(legs(st.nearThigh, st.nearKnee).second.y, legs(st.farThigh, st.farKnee).second.y);
        hip.y += (pose == Pose::Jump && frame == 5 ? 54.0f : 59.0f) - low;
    }
    const pge::vf2d shoulder{hip.x + std::sin(st.lean) * kBody * dir, hip.y - std::cos(st.lean) * kBody - st.chest};
    const pge::vf2d head{shoulder.x + std::sin(st.lean) * 4.5f * dir, shoulder.y - std::cos(st.lean) * 4.5f};

    pge::Sprite mat(64, 64);
    for (pge::Pixel& px : mat.pColData) px = pge::Pixel(0, 0, 0, 255);
    const auto ink = [](int m) { return Ink(m + 1); };
    const auto limb = [&](pge::vf2d a, pge::vf2d b, float w, int m) {
        adv::canvas::Line(&mat, a, b, ink(m), w);
        adv::canvas::FillCircle(&mat, a, w * 0.5f, ink(m));
        adv::canvas::FillCircle(&mat, b, w * 0.5f, ink(m));
    };
    const auto leg = [&](float thigh, float knee, int far) {
        const auto [k, f] = legs(thigh, knee);
        limb(hip, k, 3.2f, Trousers + far);
        limb(k, f, 2.8f, Trousers + far);
        adv::canvas::FillRect(&mat, static_cast<int>(std::min(f.x, f.x + 3.0f * dir) - 0.5f), static_cast<int>(f.y - 1.5f), 4, 2,
                              ink(Leather + far));
    };
    const auto arm = [&](float upper, float elbow, int far) {
        const pge::vf2d e = Swing(shoulder, upper, kUpper, dir);
        const pge::vf2d h = Swing(e, upper + elbow, kFore, dir);
        limb(shoulder, e, 2.6f, Tunic + far);
        limb(e, h, 2.0f, Skin + far);
        adv::canvas::FillCircle(&mat, h, 1.3f, ink(Skin + far));
    };
    arm(st.farArm, st.farElbow, kFar);
    leg(st.farThigh, st.farKnee, kFar);
    limb(hip, shoulder, 5.5f, Tunic);
    adv::canvas::FillCircle(&mat, {hip.x, hip.y - 0.5f}, 2.9f, ink(Tunic));
    limb({hip.x - 2.5f, hip.y - 2.0f}, {hip.x + 2.5f, hip.y - 2.0f}, 1.2f, Leather);
    adv::canvas::FillCircle(&mat, head, 3.3f, ink(Skin));
    // The steel cap over the upper half of the head, with a brim.
    adv::canvas::FillPolygon(&mat, Ellipse(head.x, head.y - 0.8f, 3.6f, 3.6f), ink(Steel),
                             [&](int, int y) { return static_cast<float>(y) + 0.5f < head.y - 0.6f; });
    adv::canvas::Line(&mat, {head.x - 4.2f, head.y - 0.5f}, {head.x + 4.2f, head.y - 0.5f}, ink(Steel));
    leg(st.nearThigh, st.nearKnee, 0);
    arm(st.nearArm, st.nearElbow, 0);

    const auto at = [&](int x, int y) { return x < 0 || y < 0 || x >= 64 || y >= 64 ? 0 : mat.GetData()[y * 64 + x].r; };
    // On the ground the outline under the soles lies on the feet row itself.
    int lowest = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            if (at(x, y)) lowest = y;
    const int ox = x0 - 32;
    const int oy = grounded ? feetY - (pose == Pose::Jump && frame == 5 ? 5 : 0) - (lowest + 1)
                            : feetY - 59 - std::max(lowest + 1 - 59, 0); // in flight never below the feet row
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            const int v = at(x, y);
            if (v == 0) {
                if (at(x - 1, y) || at(x + 1, y) || at(x, y - 1) || at(x, y + 1)) out.Set(ox + x, oy + y, firstInk + 1);
                continue;
            }
            const bool far = v - 1 >= kFar;
            const int m = (v - 1) % kFar;
            int tone = far ? 0 : 1;
            if (!far && (at(x - 1, y) == 0 || at(x, y - 1) == 0)) tone = 2; // lit from the upper left
            if (at(x + 1, y) == 0 && !far) tone = 0;
            if (!far && at(x - 1, y) - 1 >= kFar) tone = 2;                 // near edge over a far limb
            out.Set(ox + x, oy + y, firstInk + 2 + m * 3 + tone);
        }
    // An eye under the cap's brim.
    out.Set(ox + static_cast<int>(head.x + 1.6f * dir), oy + static_cast<int>(head.y + 0.6f), firstInk + 1);
}

std::vector<Sheet> PaintRunnerSheets() {
    struct Kind {
        const char* name;
        Pose pose;
        bool left;
    };
    const Kind kinds[5] = {{"torvane-run-right-pixel-sheet", Pose::Run, false},
                           {"torvane-run-left-pixel-sheet", Pose::Run, true},
                           {"torvane-idle-right-stabilized-pixel-sheet", Pose::Idle, false},
                           {"torvane-drop-down-empty-pixel-sheet", Pose::Stoop, false},
                           {"torvane-jump-right-pixel-sheet", Pose::Jump, false}};
    std::vector<Sheet> sheets;
    for (const Kind& k : kinds) {
        Sheet s;
        s.name = k.name;
        for (int f = 0; f < 6; ++f) PaintRunner(s.picture, 0, k.pose, f, k.left, (f % 3) * 64 + 32, (f / 3) * 64 + 59);
        sheets.push_back(std::move(s));
    }
    return sheets;
}

} // namespace paint
