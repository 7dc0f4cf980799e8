// The adventure's interaction: clicks in the scene and on the panel, verbs on hotspots,
// actors and items, the fallback lines, and the sentence line under the mouse.
#include "engine/adventure/AdventureGame.h"

#include "engine/adventure/Lang.h"
#include "engine/adventure/PanelLayout.h"

namespace adv {

using namespace panel;

void AdventureGame::HandleInput() {
    const bool left = Clicked(0);
    const bool right = Clicked(1);
    if (!left && !right) return;
    if (runner.Running()) {
        if (left) runner.Skip(*this);
        return;
    }
    // In a dialogue the panel holds the options, and only they answer.
    if (!dialogue.empty()) {
        if (left && hoveredOption >= 0) SelectDialogueOption(hoveredOption);
        return;
    }
    const pge::vi2d mouse = GetMousePos();
    if (mouse.y < kPlayHeight)
        HandlePlayAreaClick({float(mouse.x) + camera.x, float(mouse.y) + camera.y}, right);
    else
        HandleUiClick(mouse, right);
}

void AdventureGame::HandlePlayAreaClick(vf2d point, bool secondary) {
    if (Actor* a = hoveredActor.empty() ? nullptr : FindActor(hoveredActor)) {
        InteractWithActor(*a, secondary ? a->defaultVerb : verb, point);
        return;
    }
    if (Hotspot* h = current && !hoveredHotspot.empty() ? current->Find(hoveredHotspot) : nullptr) {
        InteractWithHotspot(*h, secondary ? h->defaultVerb : verb, point);
        return;
    }
    WalkPlayerTo(point);
    ResetInteraction();
}

void AdventureGame::HandleUiClick(pge::vi2d point, bool secondary) {
    const int cell = VerbCellAt(point);
    if (cell >= 0) {
        SelectVerb(kVerbGrid[cell]);
        return;
    }
    if (point.x >= kArrowX0 && point.x <= kArrowX1 && point.y >= kVerbY) {
        inventory.Scroll(point.y < kArrowMid ? -Inventory::kColumns : Inventory::kColumns);
        return;
    }
    const int slot = InventoryCellAt(point);
    const std::string item = slot >= 0 ? inventory.At(slot) : std::string();
    if (!item.empty()) InteractWithItem(item, secondary ? Verb::Look : verb);
}

Script AdventureGame::ApproachScript(vf2d point, Facing facing) const {
    Script s;
    s.WalkTo(playerId, point).Face(playerId, facing);
    return s;
}

Script AdventureGame::FallbackScript(Verb v, const std::string&) const {
    Script s;
    s.Say(playerId, FallbackText(v));
    return s;
}

namespace {

// The script for a verb, or for a held item with a two-object verb; null when none.
const Script* ScriptFor(const std::map<Verb, Script>& byVerb, const std::map<std::string, Script>& byItem, Verb v,
                        const std::string& held) {
    if (NeedsSecondObject(v) && !held.empty()) {
        const auto it = byItem.find(held);
        return it == byItem.end() ? nullptr : &it->second;
    }
    const auto it = byVerb.find(v);
    return it == byVerb.end() ? nullptr : &it->second;
}

} // namespace

void AdventureGame::InteractWithHotspot(Hotspot& hotspot, Verb v, vf2d point) {
    // Walking only walks: a way out is taken by its scene when the player arrives there.
    if (v == Verb::Walk) {
        WalkPlayerTo(hotspot.hasApproach ? hotspot.approach : point);
        ResetInteraction();
        return;
    }
    Script script;
    if (hotspot.hasApproach) script.Append(ApproachScript(hotspot.approach, hotspot.approachFacing));
    const Script* body = ScriptFor(hotspot.scripts, hotspot.useScripts, v, heldItem);
    script.Append(body ? *body : FallbackScript(v, hotspot.name));
    if (!script.Empty()) runner.Start(script);
    ResetInteraction();
}

void AdventureGame::InteractWithActor(Actor& actor, Verb v, vf2d) {
    const vf2d approach = actor.ApproachPoint(Player().position);
    if (v == Verb::Walk) {
        WalkPlayerTo(approach);
        ResetInteraction();
        return;
    }
    Script script = ApproachScript(approach, approach.x < actor.position.x ? Facing::Right : Facing::Left);
    const Script* body = ScriptFor(actor.scripts, actor.useScripts, v, heldItem);
    script.Append(body ? *body : FallbackScript(v, actor.name));
    runner.Start(script);
    ResetInteraction();
}

void AdventureGame::InteractWithItem(const std::string& item, Verb v) {
    if (NeedsSecondObject(v) && heldItem.empty()) {
        heldItem = item;
        return;
    }
    if (v == Verb::Look) {
        const auto it = items.find(item);
        if (it != items.end() && !it->second.lookScript.Empty()) {
            runner.Start(it->second.lookScript);
        } else {
            const std::string look = it == items.end() ? "" : it->second.lookText;
            runner.Start(Script().Say(playerId, look.empty() ? "Ein ganz normaler Gegenstand." : look));
        }
    } else if (NeedsSecondObject(v) && heldItem != item) {
        runner.Start(Script().Say(playerId, "Die beiden passen nicht zusammen."));
    } else {
        runner.Start(FallbackScript(v, ItemName(item)));
    }
    ResetInteraction();
}

std::string AdventureGame::BuildSentence() const {
    std::string s = Tr(VerbName(verb));
    if (!heldItem.empty()) {
        s += " " + Tr(ItemName(heldItem));
        const std::string prep = Preposition(verb);
        if (!prep.empty()) s += " " + Tr(prep);
    }
    std::string name;
    if (!hoveredActor.empty()) {
        const auto it = actors.find(hoveredActor);
        if (it != actors.end()) name = it->second.name;
    } else if (!hoveredHotspot.empty() && current) {
        for (const Hotspot& h : current->hotspots)
            if (h.id == hoveredHotspot) name = h.name;
    } else if (!hoveredItem.empty()) {
        name = ItemName(hoveredItem);
    }
    if (!name.empty()) s += " " + Tr(name);
    return s;
}

void AdventureGame::UpdateHover() {
    const pge::vi2d mouse = GetMousePos();
    hoveredActor.clear();
    hoveredHotspot.clear();
    hoveredItem.clear();
    hoveredVerb = -1;
    hoveredOption = -1;
    if (!dialogue.empty()) {
        for (const pge::vi2d& row : DialogueRows())
            if (mouse.y >= row.y && mouse.y < row.y + kOptionH) hoveredOption = row.x;
    } else if (mouse.y >= kPlayHeight) {
        hoveredVerb = VerbCellAt(mouse);
        const int slot = InventoryCellAt(mouse);
        if (slot >= 0) hoveredItem = inventory.At(slot);
    } else if (current) {
        const vf2d p{float(mouse.x) + camera.x, float(mouse.y) + camera.y};
        for (const auto& [id, a] : actors) {
            if (id == playerId || a.scene != current->id || !a.visible || !a.clickable) continue;
            if (a.ContainsPoint(p)) {
                hoveredActor = id;
                break;
            }
        }
        if (hoveredActor.empty())
            if (const Hotspot* h = current->HotspotAt(p)) hoveredHotspot = h->id;
    }
    // While a script runs the sentence stays as it was.
    if (!runner.Running()) sentence = BuildSentence();
}

} // namespace adv
