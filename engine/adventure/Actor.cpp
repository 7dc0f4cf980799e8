#include "engine/adventure/Actor.h"

#include <algorithm>
#include <cmath>

namespace adv {

namespace {

constexpr float kSpeedFactors[Actor::kTopTextSpeed + 1] = {2.2f, 1.8f, 1.5f, 1.22f, 1.0f, 0.82f, 0.66f, 0.5f, 0.36f};
constexpr float kHoverMargin = 3.0f;
int g_textSpeed = 4;

} // namespace

float Actor::SpeechDuration(const std::string& text) {
    return std::max(0.9f + 0.055f * float(text.size()), 1.2f) * kSpeedFactors[g_textSpeed];
}

int Actor::Footfalls(float from, float to) {
    // Foot k lands at (pi / 2 + k pi) / kStrideRate seconds.
    const auto landed = [](float t) { return int(std::floor((t * kStrideRate - 1.5707964f) / 3.1415927f)); };
    return std::max(0, landed(to) - landed(from));
}

void Actor::SetTextSpeed(int speed) { g_textSpeed = std::clamp(speed, 0, kTopTextSpeed); }

int Actor::TextSpeed() { return g_textSpeed; }

void Actor::Say(const std::string& text, float seconds) {
    speech = text;
    speechTime = seconds > 0.0f ? seconds : SpeechDuration(text);
}

void Actor::StopTalking() {
    speech.clear();
    speechTime = 0.0f;
}

void Actor::Teleport(vf2d where, Facing newFacing) {
    position = where;
    facing = newFacing;
    path.clear();
}

void Actor::SetPath(const std::vector<vf2d>& points) { path = points; }

void Actor::Update(float dt) {
    if (speechTime > 0.0f) {
        speechTime -= dt;
        if (speechTime <= 0.0f) StopTalking();
    }
    if (path.empty()) {
        walkClock = 0.0f;
        return;
    }
    walkClock += dt;
    // Far figures step shorter, so the pace looks the same at every depth.
    float step = speed * std::max(scale, 0.35f) * dt;
    while (step > 0.0f && !path.empty()) {
        const vf2d to = path.front() - position;
        const float len = Length(to);
        if (std::fabs(to.x) > std::fabs(to.y))
            facing = to.x < 0.0f ? Facing::Left : Facing::Right;
        else if (len > 0.0f)
            facing = to.y < 0.0f ? Facing::Back : Facing::Front;
        if (len <= step) {
            position = path.front();
            path.erase(path.begin());
            step -= len;
        } else {
            position = position + to * (step / len);
            step = 0.0f;
        }
    }
}

bool Actor::ContainsPoint(vf2d p) const {
    const float half = float(spriteWidth) * scale * 0.5f + kHoverMargin;
    const float top = position.y - float(spriteHeight) * scale - kHoverMargin;
    return p.x >= position.x - half && p.x <= position.x + half && p.y >= top && p.y <= position.y + kHoverMargin;
}

vf2d Actor::ApproachPoint(vf2d from) const {
    const float offset = 0.9f * float(spriteWidth) * scale;
    return {from.x < position.x ? position.x - offset : position.x + offset, position.y};
}

} // namespace adv
