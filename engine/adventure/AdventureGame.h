#pragma once
// The frame of a point-and-click adventure: a scrolling scene above, nine verbs and the
// inventory below, and a sentence line that says what the mouse would do. A concrete game
// supplies scenes, actors, items, dialogues and intro screens through its content builder.
#include "engine/adventure/Actor.h"
#include "engine/adventure/GameMenu.h"
#include "engine/adventure/Inventory.h"
#include "engine/adventure/Lang.h"
#include "engine/adventure/SaveGame.h"
#include "engine/adventure/SceneManager.h"
#include "engine/adventure/Script.h"
#include "engine/adventure/Verb.h"
#include "pge/PixelEngine.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace adv {

struct DialogueOption {
    std::string text;
    Script script;
    std::string next; // "$exit" ends the dialogue, empty stays at the node
    bool once = false;
    bool used = false;
    std::string requiresFlag; // shown only while this flag is set
    std::string forbidsFlag;  // hidden while this flag is set
};

struct Dialogue {
    std::string id;
    std::string startNode = "start";
    std::map<std::string, std::vector<DialogueOption>> nodes;
};

class AdventureGame : public pge::PixelEngine {
public:
    enum State : int32_t { Intro = 0, Playing = 1, Ended = 2 };

    static constexpr int kViewWidth = 384;
    static constexpr int kViewHeight = 240;
    static constexpr int kPlayHeight = 176;

    AdventureGame();

    // Building; the builder runs at the start and at every new game.
    void SetContentBuilder(std::function<void(AdventureGame&)> builder);
    // Called with the new language whenever the player switches it, so that it can be kept.
    void SetLanguageKeeper(std::function<void(Language)> keeper) { languageKeeper = std::move(keeper); }
    void SetStartScene(const std::string& id) { startScene = id; }
    void RegisterScene(const std::string& id, std::unique_ptr<SceneDefinition> definition);
    Actor& AddActor(const Actor& actor);
    void SetPlayer(const std::string& id) { playerId = id; }
    Item& AddItem(const Item& item);
    Dialogue& AddDialogue(const Dialogue& dialogue);
    void AddIntroScreen(std::unique_ptr<ScreenDefinition> screen);
    // A sound by name, mono samples at 44100 a second; a name keeps its first sound, also
    // through a new game.
    void AddSound(const std::string& id, std::vector<float> samples);

    // Running.
    bool OnUserCreate() override;
    bool OnUserUpdate(float elapsed) override;
    bool OnUserDestroy() override;
    void BeginPlay();
    void RestartGame();
    void FinishGame(const std::string& text);
    void ChangeScene(const std::string& scene, const std::string& entry);
    void RunScript(const Script& script);
    void PushScript(const Script& script);
    void WalkPlayerTo(vf2d point);
    void Narrate(const std::string& text, float seconds);
    void ShowToast(const std::string& text, float seconds = kToastSeconds);
    // Silence for a name without a sound, or without an audio device.
    void PlaySound(const std::string& id, float volume = 1.0f);
    void BeginDialogue(const std::string& id);
    void EndDialogue();
    void SetDialogueNode(const std::string& name);
    void SelectVerb(Verb v);
    void ResetInteraction();
    void SetPaused(bool on);
    void OpenMenu();
    void AdjustTextSpeed(int delta);
    // Ends the program once so many seconds of frames have passed; 0 or less never ends it.
    void QuitAfter(float seconds) { quitTimer = seconds; }

    // Interaction, reachable for tests and scripted play.
    // Whether mouse button b (0 left, 1 right) was clicked since the last frame, however
    // quickly it came up again.
    bool Clicked(uint32_t b) const { return GetMousePresses(b) > 0; }
    void HandlePlayAreaClick(vf2d point, bool secondary);
    void HandleUiClick(pge::vi2d point, bool secondary);
    void InteractWithHotspot(Hotspot& hotspot, Verb v, vf2d point);
    // point, where the click was, is not needed: an actor is always approached from beside.
    void InteractWithActor(Actor& actor, Verb v, vf2d point);
    void InteractWithItem(const std::string& item, Verb v);
    void SelectDialogueOption(int index);
    std::vector<int> VisibleDialogueOptions() const;
    std::string BuildSentence() const;
    Script FallbackScript(Verb v, const std::string& name) const;
    void UpdateHover();
    void UpdateCamera(float dt);
    void SnapCameraToPlayer();
    // The visible dialogue options as (option index, top row on the screen).
    std::vector<pge::vi2d> DialogueRows() const;

    // Saving.
    SaveData CaptureState() const;
    bool RestoreState(const SaveData& data);
    bool SaveToSlot(int slot);
    bool LoadFromSlot(int slot);
    // False only for a quit.
    bool ApplyMenuRequest(const GameMenu::Request& request);

    // Lookups.
    Actor* FindActor(const std::string& id);
    Actor& Player();
    std::string ItemName(const std::string& id) const;
    int32_t Flag(const std::string& name) const;
    void SetFlag(const std::string& name, int32_t value) { flags[name] = value; }

    // Drawing.
    void DrawWorld();
    void DrawToast();

    static constexpr float kToastSeconds = 1.6f;

    SceneManager scenes;
    std::map<std::string, Actor> actors;
    std::string playerId = "player";
    Scene* current = nullptr;
    std::map<std::string, Item> items;
    std::map<std::string, Dialogue> dialogues;
    std::vector<std::unique_ptr<ScreenDefinition>> introScreens;
    Inventory inventory;
    ScriptRunner runner;
    Verb verb = Verb::Walk;
    std::string heldItem;
    // What the mouse is over: an actor, a hotspot, an inventory item or a verb cell.
    std::string hoveredActor;
    std::string hoveredHotspot;
    std::string hoveredItem;
    int hoveredVerb = -1;
    std::string sentence;
    std::string dialogue; // empty when none runs
    std::string dialogueNode;
    int hoveredOption = -1;
    GameMenu menu;
    bool paused = false;
    bool debugOverlay = false;
    std::map<std::string, int32_t> flags;
    State state = Intro;
    std::string endText;
    std::string startScene;
    vf2d camera;
    float fade = 0.0f;
    std::string toast;
    float toastTime = 0.0f;
    std::string narration;
    float narrationTime = 0.0f;
    size_t introIndex = 0;
    float introClock = 0.0f;

private:
    void BuildContent();
    void UpdateIntro(float dt);
    void HandleGlobalKeys();
    void HandleInput();
    Script ApproachScript(vf2d point, Facing facing) const;
    void RestoreSceneWithoutScripts(const std::string& scene);
    void EnterScene(Scene& scene);
    void DrawScene();
    void DrawActor(const Actor& actor);
    void DrawPanel();
    void DrawDialogue();
    void DrawDebug();
    void DrawEnd();
    std::function<void(AdventureGame&)> contentBuilder;
    std::function<void(Language)> languageKeeper;
    std::map<std::string, int> soundClips; // by name, the clips of adv::Sound
    float quitTimer = 0.0f; // of a timed quit, counting down
};

} // namespace adv
