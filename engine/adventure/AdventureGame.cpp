// The adventure's frame: building the content, the order of a frame, scene changes, the camera
// and saving; interaction, dialogues and drawing have files of their own.
#include "engine/adventure/AdventureGame.h"

#include "engine/Canvas.h"
#include "engine/Music.h"
#include "engine/Sound.h"
#include "engine/Synth.h"
#include "engine/Text.h"
#include "engine/adventure/Lang.h"
#include "pge/WindowTitle.h"

#include <algorithm>

namespace adv {

namespace {

constexpr float kMaxStep = 0.1f;
constexpr float kFadePerSecond = 2.5f;
constexpr float kCameraEase = 6.0f;
constexpr float kMusicFade = 1.2f;

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
    // The window shows the adventure's name, not the frame rate.
    SetWindowTitle(sAppName);
    // The audio device opens in the background; music asked for before then starts once it is there.
    Music::InitInBackground();
    BuildContent();
    state = Intro;
    introIndex = 0;
    introClock = 0.0f;
    if (!introScreens.empty()) introScreens[0]->OnEnter(*this);
    return true;
}

bool AdventureGame::OnUserDestroy() {
    Music::Shutdown();
    Sound::Clear();
    soundClips.clear();
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
    if (!scene.music.empty()) Music::Play(scene.music, true, kMusicFade);
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

void AdventureGame::AddSound(const std::string& id, std::vector<float> samples) {
    if (!soundClips.count(id)) soundClips[id] = Sound::Add(std::move(samples), uint32_t(synth::kRate));
}

void AdventureGame::PlaySound(const std::string& id, float volume) {
    const auto it = soundClips.find(id);
    if (it != soundClips.end()) Sound::Play(it->second, volume);
}

void AdventureGame::ShowToast(const std::string& text, float seconds) {
    toast = text;
    toastTime = seconds;
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
    ShowToast(Trf("Texttempo {0} / {1}", {std::to_string(Actor::TextSpeed()), std::to_string(Actor::kTopTextSpeed)}));
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
    const bool pressed = Clicked(0) || GetKey(pge::SPACE).bPressed || GetKey(pge::RETURN).bPressed ||
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
    if (GetKey(pge::F8).bPressed) menu.AskConfirm(Tr("Das Spiel neu starten?"), GameMenu::Request::NewGame);
    if (ctrl && GetKey(pge::C).bPressed) menu.AskConfirm(Tr("Das Spiel wirklich beenden?"), GameMenu::Request::Quit);
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
    Sound::Update();
    Music::Update(dt);
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
        const GameMenu::Request r = menu.Update(*this, dt, Clicked(0), GetKey(pge::ESCAPE).bPressed);
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
        text::DrawOutlined(*this, kViewWidth / 2, 100, Tr("PAUSE"), ui::kHighlight, pge::BLACK, 2, text::Align::Centre);
        text::Draw(*this, kViewWidth / 2, 124, Tr("Leertaste zum Fortsetzen"), ui::kText, 1, text::Align::Centre);
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
            const float before = actor.walkClock;
            actor.Update(dt);
            if (!current || actor.scene != current->id) continue;
            actor.scale = current->scaleZone.At(actor.position.y);
            if (actor.visible && Actor::Footfalls(before, actor.walkClock) > 0) PlaySound(actor.stepSound);
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
        // The place's name as the player reads it when saving.
        d.label = def != scenes.definitions.end() ? Tr(def->second->DisplayName()) : "";
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
            menu.ShowMessage(Trf("In Feld {0} gespeichert", {std::to_string(r.slot + 1)}));
        } else {
            menu.ShowMessage(Tr("Speichern fehlgeschlagen"));
        }
        break;
    case GameMenu::Request::LoadSlot:
        ShowToast(Tr(LoadFromSlot(r.slot) ? "Spielstand geladen" : "Laden fehlgeschlagen"), kToastSeconds);
        break;
    case GameMenu::Request::NewGame: RestartGame(); break;
    case GameMenu::Request::Quit: return false;
    case GameMenu::Request::SpeedUp: AdjustTextSpeed(1); break;
    case GameMenu::Request::SpeedDown: AdjustTextSpeed(-1); break;
    case GameMenu::Request::SwitchLanguage:
        SetLanguage(CurrentLanguage() == Language::German ? Language::English : Language::German);
        if (languageKeeper) languageKeeper(CurrentLanguage());
        break;
    default: break;
    }
    return true;
}

} // namespace adv
