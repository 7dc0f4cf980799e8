#include "vorabend/PlayScript.h"

#include "engine/Screenshot.h"
#include "engine/adventure/Lang.h"
#include "engine/adventure/PanelLayout.h"
#include "pge/Platform.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace vorabend {

using adv::operator-;

namespace {

constexpr float kQuietSeconds = 1.0f;  // long enough for the camera to settle
constexpr float kIdleTimeout = 120.0f; // of game time

bool StartsWith(const std::string& text, const std::string& prefix) { return text.compare(0, prefix.size(), prefix) == 0; }

// Nothing runs, walks, speaks or is narrated.
bool Quiet(adv::AdventureGame& game) {
    if (game.runner.Running() || !game.narration.empty()) return false;
    for (const auto& [id, actor] : game.actors)
        if (actor.Walking() || actor.Talking()) return false;
    return true;
}

const std::map<std::string, pge::Key> kKeys = {
    {"F1", pge::F1}, {"F5", pge::F5}, {"F8", pge::F8}, {"ESCAPE", pge::ESCAPE}, {"SPACE", pge::SPACE},
    {"RETURN", pge::RETURN}, {"MINUS", pge::MINUS}, {"EQUALS", pge::EQUALS}, {"CTRL", pge::CTRL},
    {"C", pge::C}, {"D", pge::D}, {"L", pge::L},
};

} // namespace

bool PlayScript::Load(const std::string& path) {
    std::ifstream in(path);
    if (!in) {
        std::fprintf(stderr, "[vorabend] Ablauf %s nicht lesbar\n", path.c_str());
        return false;
    }
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        lines.push_back(line);
        numbers.push_back(number);
    }
    return true;
}

bool PlayScript::Fail(const std::string& why) {
    std::fprintf(stderr, "[vorabend] Ablauf, Zeile %d (%s): %s\n", numbers[next], lines[next].c_str(), why.c_str());
    failed = true;
    return false;
}

bool PlayScript::MoveMouse(adv::AdventureGame& game, pge::vf2d screen) {
    if (!(screen.x >= 0 && screen.y >= 0 && screen.x < game.ScreenWidth() && screen.y < game.ScreenHeight()))
        return Fail("liegt außerhalb des Bildes");
    const pge::vi2d pos = game.GetViewPos(), size = game.GetViewSize();
    const float wx = float(pos.x) + (screen.x + 0.5f) * float(size.x) / float(game.ScreenWidth());
    const float wy = float(pos.y) + (screen.y + 0.5f) * float(size.y) / float(game.ScreenHeight());
    game.pge_UpdateMouse(int32_t(wx), int32_t(wy));
    return true;
}

bool PlayScript::Click(adv::AdventureGame& game, pge::vf2d screen, bool right) {
    if (!MoveMouse(game, screen)) return false;
    button = right ? 1 : 0;
    nativeKeys.clear();
    game.pge_UpdateMouseState(button, true);
    phase = 1;
    return false;
}

void PlayScript::Step(adv::AdventureGame& game, float dt) {
    if (failed) return;
    if (phase == 1) {
        if (nativeKeys.empty()) game.pge_UpdateMouseState(button, false);
        for (int native : nativeKeys) game.pge_UpdateKeyState(native, false);
        phase = 2;
        return;
    }
    if (phase == 2) {
        phase = 0;
        ++next;
        return;
    }
    while (next < lines.size() && !failed && Run(game, lines[next], dt)) ++next;
}

bool PlayScript::Run(adv::AdventureGame& game, const std::string& line, float dt) {
    std::istringstream in(line);
    std::string command;
    in >> command;
    std::string rest;
    std::getline(in >> std::ws, rest);
    std::istringstream args(rest);
    const bool right = rest.size() > 6 && rest.compare(rest.size() - 6, 6, " right") == 0;
    const std::string target = right ? rest.substr(0, rest.size() - 6) : rest;
    const pge::vf2d camera = game.camera;

    // Where a thing is on the screen; false when it cannot be found.
    auto locate = [&](const std::string& kind, const std::string& id, pge::vf2d& at) {
        if (kind == "hotspot") {
            const adv::Hotspot* h = game.current ? game.current->Find(id) : nullptr;
            if (!h || !h->enabled) return Fail("kein solcher Hotspot");
            at = h->shape.Centroid() - camera;
        } else if (kind == "actor") {
            const adv::Actor* a = game.FindActor(id);
            if (!a || !game.current || a->scene != game.current->id) return Fail("keine solche Figur hier");
            at = pge::vf2d{a->position.x, a->position.y - float(a->spriteHeight) * a->scale * 0.5f} - camera;
        } else if (kind == "item") {
            const auto& items = game.inventory.items;
            const int i = int(std::find(items.begin(), items.end(), id) - items.begin()) - game.inventory.scroll;
            if (i < 0 || i >= adv::Inventory::kCells || !game.inventory.Has(id)) return Fail("nicht im sichtbaren Inventar");
            using namespace adv::panel;
            at = {float(kInvX + kInvW * (i % 4) + kInvW / 2), float(kInvY + kInvH * (i / 4) + kInvH / 2)};
        } else if (kind == "point") {
            std::istringstream xy(id);
            float x = 0, y = 0;
            if (!(xy >> x >> y)) return Fail("zwei Zahlen erwartet");
            at = pge::vf2d{x, y} - camera;
        } else {
            return Fail("unbekannte Art " + kind);
        }
        return true;
    };

    if (command == "wait") {
        char* end = nullptr;
        const float seconds = rest.empty() ? 0.0f : std::strtof(rest.c_str(), &end);
        if (end == rest.c_str()) return Fail("Sekunden erwartet");
        waited += dt;
        if (waited < seconds) return false;
        waited = 0.0f;
        return true;
    }
    if (command == "idle") {
        waited += dt;
        if (waited > kIdleTimeout) return Fail("wird nicht ruhig");
        if (!Quiet(game)) {
            quietFor = 0.0f;
            return false;
        }
        quietFor += dt;
        if (quietFor < kQuietSeconds) return false;
        waited = quietFor = 0.0f;
        return true;
    }
    if (command == "hotspot" || command == "actor" || command == "item" || command == "point") {
        pge::vf2d at;
        return locate(command, target, at) && Click(game, at, right);
    }
    if (command == "hover") {
        std::string kind;
        args >> kind;
        std::string id;
        std::getline(args >> std::ws, id);
        pge::vf2d at;
        return locate(kind, id, at) && MoveMouse(game, at);
    }
    if (command == "verb") {
        using namespace adv::panel;
        for (int i = 0; i < 9; ++i)
            if (adv::Tr(adv::VerbName(adv::kVerbGrid[i])) == rest)
                return Click(game, {float(kVerbX + kVerbW * (i % 3) + kVerbW / 2), float(kVerbY + kVerbH * (i / 3) + kVerbH / 2)}, false);
        return Fail("kein solches Verb");
    }
    if (command == "option") {
        if (game.runner.Running()) return false; // the options show once the line is spoken
        for (const pge::vi2d& row : game.DialogueRows()) {
            const auto& options = game.dialogues.at(game.dialogue).nodes.at(game.dialogueNode);
            if (StartsWith(adv::Tr(options[size_t(row.x)].text), rest)) return Click(game, {40.0f, float(row.y + 5)}, false);
        }
        return Fail("keine solche Antwort zu sehen");
    }
    if (command == "menu") {
        for (const adv::GameMenu::Row& row : game.menu.rows)
            if (StartsWith(row.text, rest))
                return Click(game, {float(row.x + row.w / 2), float(row.y + row.h / 2)}, false);
        return Fail("keine solche Zeile im Menü");
    }
    if (command == "slot") {
        for (const adv::GameMenu::Row& row : game.menu.rows)
            if (std::to_string(row.action - adv::GameMenu::kSlotRow + 1) == rest)
                return Click(game, {float(row.x + row.w / 2), float(row.y + row.h / 2)}, false);
        return Fail("kein solches Feld im Menü");
    }
    if (command == "key") {
        nativeKeys.clear();
        std::istringstream names(rest);
        for (std::string name; std::getline(names, name, '+');) {
            const auto key = kKeys.find(name);
            if (key == kKeys.end()) return Fail("unbekannte Taste " + name);
            // The key code of the window system that the frame maps to this key.
            int native = -1;
            for (const auto& [code, mapped] : pge::mapKeys)
                if (mapped == key->second) native = int(code);
            if (native < 0) return Fail("Taste ohne Tastencode");
            nativeKeys.push_back(native);
        }
        for (int native : nativeKeys) game.pge_UpdateKeyState(native, true);
        phase = 1;
        return false;
    }
    if (command == "shot") {
        if (!adv::screenshot::SavePng(*game.GetDrawTarget(), rest)) return Fail("Bild nicht geschrieben");
        std::fprintf(stderr, "[vorabend] Bildschirmfoto: %s\n", rest.c_str());
        return true;
    }
    if (command == "expect") {
        std::string what;
        args >> what;
        std::string value;
        std::getline(args >> std::ws, value);
        bool ok = false;
        if (what == "scene") {
            ok = game.current && game.current->id == value;
        } else if (what == "flag") {
            std::istringstream nv(value);
            std::string name;
            int32_t v = 0;
            nv >> name >> v;
            ok = game.Flag(name) == v;
        } else if (what == "item" || what == "noitem") {
            ok = game.inventory.Has(value) == (what == "item");
        } else if (what == "state") {
            ok = std::to_string(int(game.state)) == value;
        } else if (what == "option" || what == "nooption") {
            bool seen = false;
            for (const pge::vi2d& row : game.DialogueRows())
                seen = seen || StartsWith(adv::Tr(game.dialogues.at(game.dialogue).nodes.at(game.dialogueNode)[size_t(row.x)].text), value);
            ok = seen == (what == "option");
        } else if (what == "sentence") {
            ok = game.sentence == value;
        } else if (what == "message") {
            ok = game.menu.message == value;
        } else if (what == "toast") {
            ok = game.toast == value;
        } else {
            return Fail("unbekannte Erwartung");
        }
        return ok || Fail("Erwartung nicht erfüllt");
    }
    return Fail("unbekannter Befehl");
}

} // namespace vorabend
