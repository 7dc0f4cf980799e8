#include "game/PadScript.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <utility>

namespace torvane {
namespace {

// A tap's time down, and the pause after each release.
constexpr float kTap = 0.1f;
constexpr float kGap = 0.1f;

constexpr std::pair<const char*, pge::PadButton> kNames[] = {
    {"a", pge::PAD_A},       {"b", pge::PAD_B},       {"x", pge::PAD_X},         {"y", pge::PAD_Y},
    {"back", pge::PAD_BACK}, {"start", pge::PAD_START}, {"lb", pge::PAD_LB},     {"rb", pge::PAD_RB},
    {"lt", pge::PAD_LT},     {"rt", pge::PAD_RT},     {"up", pge::PAD_UP},       {"down", pge::PAD_DOWN},
    {"left", pge::PAD_LEFT}, {"right", pge::PAD_RIGHT}};

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::stringstream in(text);
    for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
    return parts;
}

// A number that is all of `text`.
bool Number(const std::string& text, float& value) {
    char* end = nullptr;
    value = std::strtof(text.c_str(), &end);
    return !text.empty() && end == text.c_str() + text.size();
}

} // namespace

PadScript::PadScript(const std::string& script) {
    for (const std::string& text : Split(script, ',')) {
        const std::vector<std::string> parts = Split(text, ':');
        const std::string word = parts.empty() ? std::string() : parts[0];
        Token token;
        bool known = true;
        if (word == "wait" && parts.size() == 2) {
            known = Number(parts[1], token.seconds);
        } else if (word == "until" && parts.size() == 2) {
            token.kind = Kind::Until;
            token.phase = parts[1];
        } else if (word == "unplug" || word == "plug") {
            token.kind = word == "plug" ? Kind::Plug : Kind::Unplug;
            known = parts.size() == 1;
        } else if (word == "stick" && parts.size() == 4) {
            token.kind = Kind::Stick;
            known = Number(parts[1], token.x) && Number(parts[2], token.y) && Number(parts[3], token.seconds);
        } else {
            token.kind = Kind::Press;
            token.seconds = kTap;
            known = false;
            for (const auto& [name, button] : kNames)
                if (word == name) {
                    token.button = button;
                    known = parts.size() == 1 || (parts.size() == 2 && Number(parts[1], token.seconds));
                }
        }
        if (known) {
            steps.push_back(token);
        } else {
            std::fprintf(stderr, "[torvane] Unbekannter Gamepad-Befehl: %s\n", text.c_str());
        }
    }
}

void PadScript::Step(float seconds, const std::string& phase) {
    if (!started) {
        started = true;
        if (!pad.Plug()) std::fprintf(stderr, "[torvane] Kein virtuelles Gamepad\n");
        return;
    }
    left -= seconds;
    for (;;) {
        if (current) {
            if (current->kind == Kind::Until && phase != current->phase) return;
            if (left > 0.0f) return;
            if (down) {
                if (current->kind == Kind::Stick) {
                    pad.Stick(0.0f, 0.0f);
                } else {
                    pad.Set(current->button, false);
                }
                down = false;
                left = kGap;
                return;
            }
            current = nullptr;
        }
        if (next >= steps.size()) return;
        current = &steps[next++];
        left = current->seconds;
        switch (current->kind) {
        case Kind::Press:
            pad.Set(current->button, true);
            down = true;
            return;
        case Kind::Stick:
            pad.Stick(current->x, current->y);
            down = true;
            return;
        case Kind::Unplug: pad.Unplug(); return;
        case Kind::Plug: pad.Plug(); return;
        case Kind::Wait:
        case Kind::Until: break;
        }
    }
}

} // namespace torvane
