// The adventure's dialogues: the options of the present node, choosing one, and the list
// of options drawn in the panel.
#include "engine/adventure/AdventureGame.h"

#include "engine/Canvas.h"
#include "engine/Text.h"
#include "engine/adventure/Lang.h"
#include "engine/adventure/PanelLayout.h"

#include <algorithm>

namespace adv {

namespace {

constexpr const char* kExitNode = "$exit";

} // namespace

using panel::kOptionH;

void AdventureGame::BeginDialogue(const std::string& id) {
    const auto it = dialogues.find(id);
    if (it == dialogues.end()) return;
    dialogue = id;
    dialogueNode = it->second.startNode;
    hoveredOption = -1;
    ResetInteraction();
}

void AdventureGame::EndDialogue() {
    dialogue.clear();
    dialogueNode.clear();
    hoveredOption = -1;
}

void AdventureGame::SetDialogueNode(const std::string& name) {
    dialogueNode = name;
    hoveredOption = -1;
}

std::vector<int> AdventureGame::VisibleDialogueOptions() const {
    std::vector<int> visible;
    const auto d = dialogues.find(dialogue);
    if (d == dialogues.end()) return visible;
    const auto node = d->second.nodes.find(dialogueNode);
    if (node == d->second.nodes.end()) return visible;
    for (size_t i = 0; i < node->second.size(); ++i) {
        const DialogueOption& o = node->second[i];
        if (o.once && o.used) continue;
        if (!o.requiresFlag.empty() && Flag(o.requiresFlag) == 0) continue;
        if (!o.forbidsFlag.empty() && Flag(o.forbidsFlag) != 0) continue;
        visible.push_back(int(i));
    }
    return visible;
}

void AdventureGame::SelectDialogueOption(int index) {
    const auto d = dialogues.find(dialogue);
    if (d == dialogues.end()) return;
    const auto node = d->second.nodes.find(dialogueNode);
    if (node == d->second.nodes.end() || index < 0 || index >= int(node->second.size())) return;
    DialogueOption& o = node->second[size_t(index)];
    o.used = true;
    Script s;
    s.Say(playerId, o.text).Append(o.script);
    if (o.next == kExitNode)
        s.EndDialogue();
    else if (!o.next.empty())
        s.Do([next = o.next](AdventureGame& g) { g.SetDialogueNode(next); });
    hoveredOption = -1;
    runner.Start(s);
}

std::vector<pge::vi2d> AdventureGame::DialogueRows() const {
    const std::vector<int> visible = VisibleDialogueOptions();
    std::vector<pge::vi2d> rows; // option index, top row
    // In the panel; only more options than it holds reach up into the scene.
    int y = std::min(kPlayHeight + 4, kViewHeight - 2 - kOptionH * int(visible.size()));
    for (int i : visible) {
        rows.push_back({i, y});
        y += kOptionH;
    }
    return rows;
}

void AdventureGame::DrawDialogue() {
    // While a line is spoken the panel stays empty.
    if (runner.Running()) return;
    const std::vector<pge::vi2d> rows = DialogueRows();
    if (rows.empty()) return;
    const auto& options = dialogues.at(dialogue).nodes.at(dialogueNode);
    const int top = rows.front().y - 3;
    if (top < kPlayHeight) {
        pge::Sprite* target = GetDrawTarget();
        canvas::FillRect(target, 0, top, kViewWidth, kPlayHeight - top, ui::kPanel);
        canvas::FillRect(target, 0, top, kViewWidth, 1, ui::kFrame);
    }
    for (const pge::vi2d& row : rows) {
        const bool hot = row.x == hoveredOption;
        text::Draw(*this, 10, row.y + 1, "\u2022 " + Tr(options[size_t(row.x)].text), hot ? ui::kHighlight : ui::kText);
    }
}

} // namespace adv
