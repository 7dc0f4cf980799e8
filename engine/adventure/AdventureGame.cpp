#include "engine/adventure/AdventureGame.h"

#include "engine/Canvas.h"
#include "engine/Music.h"
#include "engine/Text.h"

#include <algorithm>
#include <cmath>

namespace adv {

namespace {

constexpr float kMaxStep = 0.1f;
constexpr float kFadePerSecond = 2.5f;
constexpr float kCameraEase = 6.0f;
constexpr float kMusicFade = 1.2f;
constexpr int kSentenceY = 179;
constexpr int kVerbX = 8, kVerbY = 192, kVerbW = 72, kVerbH = 16;
constexpr int kInvX = 246, kInvY = 192, kInvW = 33, kInvH = 24;
constexpr int kArrowX0 = 228, kArrowX1 = 239, kArrowMid = 216;
constexpr int kOptionH = 11;
constexpr const char* kExitNode = "$exit";

bool InRect(pge::vi2d p, int x, int y, int w, int h) { return p.x >= x && p.x < x + w && p.y >= y && p.y < y + h; }

int VerbCellAt(pge::vi2d p) {
    for (int i = 0; i < 9; ++i)
        if (InRect(p, kVerbX + kVerbW * (i % 3), kVerbY + kVerbH * (i / 3), kVerbW, kVerbH)) return i;
    return -1;
}

int InventoryCellAt(pge::vi2d p) {
    for (int i = 0; i < Inventory::kCells; ++i)
        if (InRect(p, kInvX + kInvW * (i % 4), kInvY + kInvH * (i / 4), kInvW, kInvH)) return i;
    return -1;
}

} // namespace

AdventureGame::AdventureGame() { sAppName = "Abenteuer"; }

// Building.

void AdventureGame::SetContentBuilder(std::function<void(AdventureGame&)> builder) { contentBuilder = std::move(builder); }

void AdventureGame::RegisterScene(const std::string& id, std::unique_ptr<SceneDefinition> definition) {
    scenes.Register(id, std::move(definition));
}

Actor& AdventureGame::AddActor(const Actor& actor) { return actors[actor.id] = actor; }

Item& AdventureGame::AddItem(const Item& item) { return items[item.id] = item; }

Dialogue& AdventureGame::AddDialogue(const Dialogue& d) { return dialogues[d.id] = d; }

void AdventureGame::AddIntroScreen(std::unique_ptr<ScreenDefinition> screen) { introScreens.push_back(std::move(screen)); }

void AdventureGame::BuildContent() {
    scenes = SceneManager();
    actors.clear();
    items.clear();
    dialogues.clear();
    introScreens.clear();
    flags.clear();
    inventory = Inventory();
    runner.Clear();
    current = nullptr;
    ResetInteraction();
    dialogue.clear();
    narration.clear();
    narrationTime = 0.0f;
    paused = false;
    endText.clear();
    if (contentBuilder) contentBuilder(*this);
    if (!actors.count(playerId)) {
        Actor p;
        p.id = playerId;
        AddActor(p);
    }
}

// Running.

bool AdventureGame::OnUserCreate() {
    BuildContent();
    state = Intro;
    introIndex = 0;
    introClock = 0.0f;
    if (!introScreens.empty()) introScreens[0]->OnEnter(*this);
    return true;
}

void AdventureGame::BeginPlay() {
    state = Playing;
    ChangeScene(startScene, "default");
}

void AdventureGame::RestartGame() {
    BuildContent();
    BeginPlay();
}

void AdventureGame::FinishGame(const std::string& text) {
    state = Ended;
    endText = text;
    runner.Clear();
    dialogue.clear();
}

void AdventureGame::EnterScene(Scene& scene) {
    current = &scene;
    scene.walkArea.Bake();
    Actor& p = Player();
    p.scene = scene.id;
    p.scale = scene.scaleZone.At(p.position.y);
    SnapCameraToPlayer();
    fade = 1.0f;
    if (!scene.music.empty() && Music::Available()) Music::Play(scene.music, true, kMusicFade);
}

void AdventureGame::ChangeScene(const std::string& sceneId, const std::string& entry) {
    Scene* next = scenes.Load(*this, sceneId);
    if (!next) return;
    if (current)
        if (SceneDefinition* old = scenes.Definition(current->id)) old->OnExit(*this);
    ResetInteraction();
    EndDialogue();
    Actor& p = Player();
    const SceneEntry* e = next->Entry(entry);
    if (!e) e = next->Entry("default");
    if (e) p.Teleport(e->position, e->facing);
    p.path.clear();
    EnterScene(*next);

    Script script;
    const std::string visited = "__visited_" + sceneId;
    if (Flag(visited) == 0) {
        flags[visited] = 1;
        script.Append(next->firstVisitScript);
    }
    script.Append(next->enterScript);
    if (SceneDefinition* def = scenes.Definition(sceneId)) script.Append(def->OnEnter(*this, entry));
    if (!script.Empty()) runner.Start(script);
}

void AdventureGame::RunScript(const Script& script) { runner.Start(script); }

void AdventureGame::PushScript(const Script& script) { runner.Push(script); }

void AdventureGame::WalkPlayerTo(vf2d point) {
    if (!current) return;
    Actor& p = Player();
    p.SetPath(current->walkArea.FindPath(p.position, point));
}

void AdventureGame::Narrate(const std::string& text, float seconds) {
    narration = text;
    narrationTime = seconds;
}

void AdventureGame::ShowToast(const std::string& text, float seconds) {
    toast = text;
    toastTime = seconds;
}

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

void AdventureGame::SelectVerb(Verb v) {
    verb = v;
    heldItem.clear();
}

void AdventureGame::ResetInteraction() {
    verb = Verb::Walk;
    heldItem.clear();
}

void AdventureGame::SetPaused(bool on) { paused = on; }

void AdventureGame::OpenMenu() { menu.Open(); }

void AdventureGame::AdjustTextSpeed(int delta) {
    Actor::SetTextSpeed(Actor::TextSpeed() + delta);
    ShowToast("Texttempo " + std::to_string(Actor::TextSpeed()) + " / " + std::to_string(Actor::kTopTextSpeed));
}

Actor* AdventureGame::FindActor(const std::string& id) {
    const auto it = actors.find(id);
    return it == actors.end() ? nullptr : &it->second;
}

Actor& AdventureGame::Player() { return actors[playerId]; }

std::string AdventureGame::ItemName(const std::string& id) const {
    const auto it = items.find(id);
    return it == items.end() ? id : it->second.name;
}

int32_t AdventureGame::Flag(const std::string& name) const {
    const auto it = flags.find(name);
    return it == flags.end() ? 0 : it->second;
}

void AdventureGame::UpdateIntro(float dt) {
    if (introIndex >= introScreens.size()) {
        BeginPlay();
        return;
    }
    introClock += dt;
    const ScreenDefinition& screen = *introScreens[introIndex];
    const bool pressed = GetMouse(0).bPressed || GetKey(pge::SPACE).bPressed || GetKey(pge::RETURN).bPressed ||
                         GetKey(pge::ENTER).bPressed || GetKey(pge::ESCAPE).bPressed;
    if (pressed || (screen.Duration() > 0.0f && introClock >= screen.Duration())) {
        ++introIndex;
        introClock = 0.0f;
        if (introIndex < introScreens.size())
            introScreens[introIndex]->OnEnter(*this);
        else
            BeginPlay();
    }
}

void AdventureGame::HandleGlobalKeys() {
    const bool ctrl = GetKey(pge::CTRL).bHeld;
    if (GetKey(pge::F1).bPressed || GetKey(pge::F5).bPressed) {
        if (menu.IsOpen())
            menu.Close();
        else
            menu.Open();
        return;
    }
    if (menu.IsOpen()) return;
    if (GetKey(pge::F8).bPressed) menu.AskConfirm("Das Spiel neu starten?", GameMenu::Request::NewGame);
    if (ctrl && GetKey(pge::C).bPressed) menu.AskConfirm("Das Spiel wirklich beenden?", GameMenu::Request::Quit);
    if (ctrl && GetKey(pge::D).bPressed) debugOverlay = !debugOverlay;
    if (GetKey(pge::EQUALS).bPressed || GetKey(pge::NP_ADD).bPressed) AdjustTextSpeed(1);
    if (GetKey(pge::MINUS).bPressed || GetKey(pge::NP_SUB).bPressed) AdjustTextSpeed(-1);
    if (GetKey(pge::SPACE).bPressed && state == Playing) paused = !paused;
}

bool AdventureGame::OnUserUpdate(float elapsed) {
    const float dt = std::min(elapsed, kMaxStep);
    if (quitTimer > 0.0f) {
        quitTimer -= dt;
        if (quitTimer <= 0.0f) return false;
    }
    if (Music::Available()) Music::Update(dt);
    if (toastTime > 0.0f) {
        toastTime -= dt;
        if (toastTime <= 0.0f) toast.clear();
    }
    if (state == Intro && !menu.IsOpen()) {
        UpdateIntro(dt);
        // The key that ends the last screen is not also a key of the game.
        if (state != Intro) {
            DrawWorld();
            return true;
        }
    }
    HandleGlobalKeys();
    if (menu.IsOpen()) {
        const GameMenu::Request r = menu.Update(*this, dt, GetMouse(0).bPressed, GetKey(pge::ESCAPE).bPressed);
        if (!ApplyMenuRequest(r)) return false;
        DrawWorld();
        menu.Draw(*this, Actor::TextSpeed());
        DrawToast();
        return true;
    }
    if (state == Intro) {
        DrawWorld();
        return true;
    }
    if (paused) {
        DrawWorld();
        pge::Sprite* target = GetDrawTarget();
        canvas::FillRect(target, 0, 0, kViewWidth, kViewHeight, ui::kShadow);
        text::DrawOutlined(*this, kViewWidth / 2, 100, "PAUSE", ui::kHighlight, pge::BLACK, 2, text::Align::Centre);
        text::Draw(*this, kViewWidth / 2, 124, "Leertaste zum Fortsetzen", ui::kText, 1, text::Align::Centre);
        return true;
    }
    if (GetKey(pge::ESCAPE).bPressed) {
        if (state == Ended) return false;
        if (!dialogue.empty() && !runner.Running()) EndDialogue();
    }
    if (narrationTime > 0.0f) {
        narrationTime -= dt;
        if (narrationTime <= 0.0f) narration.clear();
    }
    if (state == Playing) {
        runner.Update(*this, dt);
        UpdateHover();
        HandleInput();
        for (auto& [id, actor] : actors) {
            actor.Update(dt);
            if (current && actor.scene == current->id) actor.scale = current->scaleZone.At(actor.position.y);
        }
        if (current)
            if (SceneDefinition* def = scenes.Definition(current->id)) def->OnUpdate(*this, dt);
        UpdateCamera(dt);
    }
    fade = std::max(0.0f, fade - kFadePerSecond * dt);
    DrawWorld();
    DrawToast();
    return true;
}

// Interaction.

void AdventureGame::HandleInput() {
    const bool left = GetMouse(0).bPressed;
    const bool right = GetMouse(1).bPressed;
    if (!left && !right) return;
    if (runner.Running()) {
        if (left) runner.Skip(*this);
        return;
    }
    const pge::vi2d mouse = GetMousePos();
    if (mouse.y < kPlayHeight) {
        if (!dialogue.empty()) {
            if (left && hoveredOption >= 0) SelectDialogueOption(hoveredOption);
            return;
        }
        HandlePlayAreaClick({float(mouse.x) + camera.x, float(mouse.y) + camera.y}, right);
    } else {
        HandleUiClick(mouse, right);
    }
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

std::string AdventureGame::BuildSentence() const {
    std::string s = VerbName(verb);
    if (!heldItem.empty()) {
        s += " " + ItemName(heldItem);
        const std::string prep = Preposition(verb);
        if (!prep.empty()) s += " " + prep;
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
    if (!name.empty()) s += " " + name;
    return s;
}

std::vector<pge::vi2d> AdventureGame::DialogueRows() const {
    const std::vector<int> visible = VisibleDialogueOptions();
    std::vector<pge::vi2d> rows; // option index, top row
    int y = kPlayHeight - 4 - kOptionH * int(visible.size());
    for (int i : visible) {
        rows.push_back({i, y});
        y += kOptionH;
    }
    return rows;
}

void AdventureGame::UpdateHover() {
    const pge::vi2d mouse = GetMousePos();
    hoveredActor.clear();
    hoveredHotspot.clear();
    hoveredItem.clear();
    hoveredVerb = -1;
    hoveredOption = -1;
    if (mouse.y >= kPlayHeight) {
        hoveredVerb = VerbCellAt(mouse);
        const int slot = InventoryCellAt(mouse);
        if (slot >= 0) hoveredItem = inventory.At(slot);
    } else if (!dialogue.empty()) {
        for (const pge::vi2d& row : DialogueRows())
            if (mouse.y >= row.y && mouse.y < row.y + kOptionH) hoveredOption = row.x;
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

void AdventureGame::UpdateCamera(float dt) {
    if (!current) return;
    const float maxX = float(std::max(0, current->Width() - kViewWidth));
    const float target = std::clamp(Player().position.x - kViewWidth / 2.0f, 0.0f, maxX);
    const float k = std::min(kCameraEase * dt, 1.0f);
    camera.x += (target - camera.x) * k;
    camera.y += (0.0f - camera.y) * k;
}

void AdventureGame::SnapCameraToPlayer() {
    if (!current) return;
    const float maxX = float(std::max(0, current->Width() - kViewWidth));
    camera = {std::clamp(Player().position.x - kViewWidth / 2.0f, 0.0f, maxX), 0.0f};
}

// Saving.

SaveData AdventureGame::CaptureState() const {
    SaveData d;
    if (current) {
        d.scene = current->id;
        const auto def = scenes.definitions.find(current->id);
        d.label = def != scenes.definitions.end() ? def->second->DisplayName() : "";
        if (d.label.empty()) d.label = current->id;
    }
    d.saved = savegame::Timestamp();
    d.textSpeed = Actor::TextSpeed();
    d.inventoryScroll = inventory.scroll;
    d.flags = flags;
    d.items = inventory.items;
    for (const auto& [id, a] : actors)
        d.actors.push_back({id, a.scene, a.position.x, a.position.y, int32_t(a.facing), a.visible ? 1 : 0});
    for (const auto& [sceneId, scene] : scenes.scenes)
        for (const Hotspot& h : scene.hotspots) d.hotspots.push_back({sceneId, h.id, h.enabled ? 1 : 0});
    for (const auto& [dialogueId, dl] : dialogues)
        for (const auto& [node, options] : dl.nodes)
            for (size_t i = 0; i < options.size(); ++i)
                if (options[i].used) d.usedOptions.push_back({dialogueId, node, int32_t(i)});
    return d;
}

bool AdventureGame::RestoreState(const SaveData& d) {
    if (!scenes.Exists(d.scene)) return false;
    // Everyone stands inside the scene he comes back to, the player in the save's scene:
    // within its picture (at least the view) and above the verbs. A position beyond that
    // is a damaged save, and the far numbers in it would overflow the walking.
    for (const auto& r : d.actors) {
        const Actor* a = FindActor(r.id);
        const Scene* s = a ? scenes.Load(*this, r.id == playerId ? d.scene : r.scene) : nullptr;
        if (s && !(r.x >= 0.0f && r.x <= float(std::max(s->Width(), kViewWidth)) && r.y >= 0.0f &&
                   r.y <= float(kPlayHeight)))
            return false;
    }
    runner.Clear();
    EndDialogue();
    ResetInteraction();
    narration.clear();
    narrationTime = 0.0f;
    paused = false;
    Actor::SetTextSpeed(d.textSpeed);
    flags = d.flags;
    inventory.items = d.items;
    // A scroll out of range, however it came into the file, is limited as a click would be.
    inventory.scroll = 0;
    inventory.Scroll(d.inventoryScroll);
    // Scenes built since the save was made are built afresh, so that only the save's
    // records change them.
    scenes.Reset();
    current = nullptr;
    for (const auto& r : d.hotspots)
        if (Scene* s = scenes.Load(*this, r.scene))
            if (Hotspot* h = s->Find(r.id)) h->enabled = r.enabled != 0;
    for (const auto& r : d.actors) {
        Actor* a = FindActor(r.id);
        if (!a) continue;
        a->visible = r.visible != 0;
        a->scene = r.scene;
        // Exactly where it stood: figures may stand off the floor, behind a counter or a wall.
        a->Teleport({r.x, r.y}, Facing(std::clamp(r.facing, 0, 3)));
    }
    for (auto& [id, dl] : dialogues)
        for (auto& [node, options] : dl.nodes)
            for (DialogueOption& o : options) o.used = false;
    for (const auto& r : d.usedOptions) {
        const auto dl = dialogues.find(r.dialogue);
        if (dl == dialogues.end()) continue;
        const auto node = dl->second.nodes.find(r.node);
        if (node == dl->second.nodes.end() || r.option < 0 || r.option >= int32_t(node->second.size())) continue;
        node->second[size_t(r.option)].used = true;
    }
    state = Playing;
    endText.clear();
    RestoreSceneWithoutScripts(d.scene);
    return true;
}

void AdventureGame::RestoreSceneWithoutScripts(const std::string& sceneId) {
    if (Scene* s = scenes.Load(*this, sceneId)) EnterScene(*s);
}

bool AdventureGame::SaveToSlot(int slot) { return savegame::Write(slot, CaptureState()); }

bool AdventureGame::LoadFromSlot(int slot) {
    SaveData d;
    return savegame::Read(slot, d) && RestoreState(d);
}

bool AdventureGame::ApplyMenuRequest(const GameMenu::Request& r) {
    switch (r.kind) {
    case GameMenu::Request::Resume: paused = false; break;
    case GameMenu::Request::SaveSlot:
        if (r.slot >= 0 && r.slot < savegame::kSlots && SaveToSlot(r.slot)) {
            menu.RefreshSlots();
            menu.ShowMessage("In Feld " + std::to_string(r.slot + 1) + " gespeichert");
        } else {
            menu.ShowMessage("Speichern fehlgeschlagen");
        }
        break;
    case GameMenu::Request::LoadSlot:
        ShowToast(LoadFromSlot(r.slot) ? "Spielstand geladen" : "Laden fehlgeschlagen", kToastSeconds);
        break;
    case GameMenu::Request::NewGame: RestartGame(); break;
    case GameMenu::Request::Quit: return false;
    case GameMenu::Request::SpeedUp: AdjustTextSpeed(1); break;
    case GameMenu::Request::SpeedDown: AdjustTextSpeed(-1); break;
    default: break;
    }
    return true;
}

// Drawing.

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
    if (!dialogue.empty() && !runner.Running()) DrawDialogue();
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
    const float swing = a.Walking() ? std::sin(a.walkClock * 11.0f) * w * 0.18f : 0.0f;
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

void AdventureGame::DrawDialogue() {
    pge::Sprite* target = GetDrawTarget();
    const std::vector<pge::vi2d> rows = DialogueRows();
    if (rows.empty()) return;
    const auto& options = dialogues.at(dialogue).nodes.at(dialogueNode);
    canvas::FillRect(target, 0, rows.front().y - 3, kViewWidth, kPlayHeight - rows.front().y + 3,
                     canvas::WithAlpha(ui::kPanel, 0.85f));
    for (const pge::vi2d& row : rows) {
        const bool hot = row.x == hoveredOption;
        text::Draw(*this, 10, row.y + 1, "\u2022 " + options[size_t(row.x)].text, hot ? ui::kHighlight : ui::kText);
    }
}

void AdventureGame::DrawPanel() {
    pge::Sprite* target = GetDrawTarget();
    canvas::FillRect(target, 0, kPlayHeight, kViewWidth, kViewHeight - kPlayHeight, ui::kPanel);
    canvas::FillRect(target, 0, kPlayHeight, kViewWidth, 1, ui::kFrame);
    text::Draw(*this, kViewWidth / 2, kSentenceY, sentence, ui::kHighlight, 1, text::Align::Centre);
    for (int i = 0; i < 9; ++i) {
        const int x = kVerbX + kVerbW * (i % 3), y = kVerbY + kVerbH * (i / 3);
        const bool chosen = kVerbGrid[i] == verb;
        if (chosen) canvas::FillRect(target, x + 1, y + 1, kVerbW - 2, kVerbH - 2, canvas::WithAlpha(ui::kFrame, 0.5f));
        const pge::Pixel colour = (i == hoveredVerb || chosen) ? ui::kHighlight : ui::kText;
        text::Draw(*this, x + kVerbW / 2, y + 4, VerbName(kVerbGrid[i]), colour, 1, text::Align::Centre);
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
            text::Draw(*this, x + kInvW / 2, y + 8, ItemName(id).substr(0, 3), ui::kText, 1, text::Align::Centre);
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
    for (const std::string& line : text::Wrap(*this, endText, 320)) {
        text::Draw(*this, kViewWidth / 2, y, line, ui::kText, 1, text::Align::Centre);
        y += 12;
    }
    text::Draw(*this, kViewWidth / 2, 200, "ENDE", ui::kHighlight, 2, text::Align::Centre);
    text::Draw(*this, kViewWidth / 2, 224, "Esc: beenden   F5: Menue", ui::kMuted, 1, text::Align::Centre);
}

void AdventureGame::DrawToast() {
    if (toast.empty()) return;
    const int w = text::Width(*this, toast) + 16;
    const int x = (kViewWidth - w) / 2;
    canvas::FillRoundRect(GetDrawTarget(), x, 150, w, 16, 4, canvas::WithAlpha(ui::kPanel, 0.92f));
    text::Draw(*this, kViewWidth / 2, 154, toast, ui::kHighlight, 1, text::Align::Centre);
}

} // namespace adv
