#pragma once
// The application: owns everything that lives for the whole run, and runs the frame.
#include "game/content/LevelEditor.h"
#include "game/content/PackStorage.h"
#include "game/content/Highscores.h"
#include "game/content/Replay.h"
#include "game/PadControls.h"
#include "game/PadScript.h"
#include "game/rules/AutoPlayer.h"
#include "game/stage/RingCamera.h"
#include "game/rules/TorvaneGame.h"
#include "game/stage/TowerView.h"
#include "pge/PixelEngine.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace torvane {

// The colours of the game's panels.
inline constexpr pge::Pixel kBg{27, 34, 42};
inline constexpr pge::Pixel kPanel{35, 44, 54};
inline constexpr pge::Pixel kFg{238, 230, 214};
inline constexpr pge::Pixel kMuted{154, 166, 178};
inline constexpr pge::Pixel kLine{52, 64, 76};
inline constexpr pge::Pixel kSlate{142, 162, 182};
inline constexpr pge::Pixel kChestnut{208, 118, 74};
inline constexpr pge::Pixel kDanger{236, 90, 77};
inline constexpr pge::Pixel kOk{111, 191, 130};

// What a click on a button, or the key standing for it, does: Press(id, arg).
enum class ButtonId : int32_t {
    NewGame = 0,
    StartAttack,
    NextLevel,
    SaveScore,
    EndBuild,
    Resume,
    ToTitle,
    TitlePage,
    ToggleAutoRotate,
    ToggleRepairMode,
    ToggleLanguage,
    NextDifficulty,
    TogglePieceChoice,
    OpenSettings,
    CloseSettings,
    NextPack,
    OpenEditor,
    WatchReplay,       // arg: the row of the score table
    EndWatch,          // back from a replay
    CloseReplayError,  // the card of a replay that could not be played
};

// One clickable rectangle of the last drawn frame.
struct Button {
    int32_t x = 0;
    int32_t y = 0;
    int32_t w = 0;
    int32_t h = 0;
    ButtonId id = ButtonId::NewGame;
    int32_t arg = 0;
};

class TorvaneApp : public pge::PixelEngine {
public:
    TorvaneApp();

    bool OnUserCreate() override;
    // Step, then the picture of the frame.
    bool OnUserUpdate(float elapsed) override;
    bool OnUserDestroy() override;
    // A frame's work without its picture: sound, the logo's time, input, the rules and
    // their events. False once the player has quit.
    bool Step(float elapsed);

    // Members in this order; the packs, the editor, the scores and the buttons take
    // their places as they arrive.
    Game game;
    TowerView view;
    AutoPlayer autoPlayer;
    RingCamera camera;
    float clock = 0.0f; // real seconds since the start
    bool paused = false;
    bool quit = false;
    Phase lastPhase = Phase::Title;
    float phaseStart = -1.0f;
    int32_t lastLevel = 0;
    std::string message;
    float messageUntil = 0.0f;
    bool settingsOpen = false;
    PackStorage packStorage;
    std::vector<LevelPack> packs;
    LevelEditor editor;
    bool editorOpen = false;
    bool testing = false;
    float testHintAt = -1.0f;
    bool openEditorAtStart = false;
    std::string editorScript;
    std::string bannerText;
    float bannerUntil = -1.0f; // a value of the rules' clock
    int32_t titlePage = -1;
    bool attractScores = false;
    float lastInputAt = 0.0f;
    float attractSince = 0.0f;
    std::unique_ptr<pge::Sprite> titleImage; // the title picture at 640 by 400
    std::vector<highscores::Entry> scores;
    bool nameEntry = false;
    bool scoreSaved = false;
    int32_t highlightRow = -1;
    std::string playerName;
    uint64_t lastKeySerial = 0;
    std::vector<Button> buttons; // those of the frame before; input reads them
    pge::Key repeatKey = pge::NONE;
    float repeatTimer = 0.0f;
    float exitAt = 0.0f; // clock value at which to stop; 0 never
    bool autoplay = false;
    float autoTimer = 0.0f;
    int32_t startLevel = 0;
    std::string screenshotPath;
    std::string exitOnPhase;
    bool skipIntro = false;
    float logoTime = -1.0f; // seconds of the logo; negative when none is running
    bool logoFrame = false;  // the frame being made began with the logo
    // From "--pad-script=", a testing aid: played into a virtual pad from the first frame on.
    std::string padScriptText;
    std::unique_ptr<PadScript> padScript;
    bool hadFocus = false;                         // the window's keyboard focus in the frame before
    pge::PadButton padRepeat = pge::PAD_BUTTONS;   // the held D-pad button of the name field

    // ---- replays ----
    // Every game's inputs reach the rules through the recorder.
    replay::Recorder recorder;
    std::string recordPath;             // "--record=": each finished game is written there
    std::string replayPath;             // "--replay=": watched at the start
    std::string lastReplay;             // the stream of the game that ended last
    std::vector<bool> scoreReplays;     // which rows of `scores` have their replay
    int32_t scoreRow = -1;              // the chosen row of the score table, or -1
    replay::Error replayError;          // why a replay could not be played; its card stands

    // A replay being watched, and what it put aside.
    struct Watching {
        Watching(replay::Player p, const Game& g) : player(std::move(p)), saved(g) {}
        replay::Player player;
        float speed = 1.0f;
        bool held = false;   // stopped by Space
        double time = 0.0;   // recorded seconds that should have been played
        replay::Members saved;
        Settings settings;
        Language language = Language::German;
        std::optional<LevelPack> pack;
        uint32_t revision = 0;
    };
    std::unique_ptr<Watching> watching;

    // What clicks and keys have in common: everything around the rules.
    void Press(ButtonId id, int arg);
    // The members that a frame of the rules touches, for the recorder and the player.
    replay::Session Session();
    // An input for the rules, through the recorder; dt is the frame's step.
    void Do(replay::Op op, float dt = 0.0f);
    // Plays a replay file in the window; a file that can't be played gets the card saying why.
    void StartWatching(const std::string& path);
    // Back from the replay to where it was chosen.
    void StopWatching();
    // A key from A to CAPS_LOCK, or the left or right mouse button, pressed in this frame.
    bool AnyInput();

    // ---- the card toolkit ----
    //
    // A card is a centred panel over the picture. Its content is one function that takes
    // a Card and moves `y` down as it goes; DrawCard runs it twice, first to measure
    // (draw false: nothing drawn, no buttons) and then to draw. Content code therefore
    // exists once, and a card's height follows its text in either language:
    //
    //     DrawCard([&](Card& card) {
    //         card.Title(Tr("Pause"), kChestnut);
    //         card.Para(Tr("Das Spiel ist angehalten."));
    //         card.Button(Tr("Weiter (Esc)"), ButtonId::Resume);
    //     }, 320, 0);
    //
    // Anything the content draws by itself must be drawn only when `draw` is set, and must
    // move `y` the same way in both passes. Texts are at size 1 unless told.
    struct Card {
        TorvaneApp* app = nullptr;
        bool draw = false; // false in the measuring pass
        int32_t x = 0;     // left edge
        int32_t w = 0;     // width
        int32_t top = 0;   // top of the panel
        int32_t y = 0;     // the running position

        // A card's title: size 2 at x + 14; y += 21.
        void Title(const std::string& text, pge::Pixel colour);
        // Label left in kFg, value right-aligned in `colour`; y += 11.
        void Row(const std::string& label, const std::string& value, pge::Pixel colour);
        // Wrapped text, 11 pixels a line and 3 after the last; a `lead` opens the text in
        // its own colour.
        void Para(const std::string& text, pge::Pixel colour = kFg, const std::string& lead = "",
                  pge::Pixel leadColour = kFg, int indent = 0);
        // A paragraph of the story, indented behind a chestnut rule.
        void Story(const std::string& text);
        // A chestnut button 18 high that registers itself in the drawing pass.
        void Button(const std::string& label, ButtonId id);
    };
    using CardContent = std::function<void(Card&)>;

    // Measures the content, places the panel centred on the stage (from 360 pixels up cut
    // to 360 at top 22), draws shadow, panel and stripe, then the content.
    void DrawCard(const CardContent& content, int width, int minHeight);
    // DrawCard with a member of the application as its content.
    void DrawCardOf(void (TorvaneApp::*content)(Card&), int width, int minHeight);
    // How a key hint looks where it stands: the cap's height (its foot 9 below the text's
    // top), the room between cap and label, and the label's colour.
    struct HintStyle {
        int capHeight;
        int gap;
        pge::Pixel labelColour;
    };
    static constexpr HintStyle kCardHint{11, 6, kFg};
    static constexpr HintStyle kHelpHint{10, 3, kMuted};
    int KeyHintWidth(const std::string& key, const std::string& label, const HintStyle& style = kCardHint);
    // The caps a hint's keys are drawn on: the keys in one cap, or, while the pad was used
    // last, the buttons that stand for them on this screen, each in a round cap (the D-pad's
    // directions in one, behind its cross); keys no button stands for keep their names.
    struct HintCap {
        std::string text;
        bool pad;
    };
    std::vector<HintCap> HintCaps(const std::string& keys) const;
    // The caps' texts in a line.
    std::string ShownKeys(const std::string& keys) const;
    // A text with the keys it names as ShownKeys names them: those in brackets at its end,
    // "Weiter (Esc)", else those that open it or a part of it behind " · ", "Space – ...",
    // "← → blättern · Esc zurück".
    std::string WithShownKeys(const std::string& text) const;
    // Caps (text width + 6 wide, 2 apart) with their texts 3 right of their edges at y, and
    // the keys' meaning behind them; returns KeyHintWidth. Every key hint of the game is
    // drawn here.
    int DrawKeyHint(int x, int y, const std::string& key, const std::string& label,
                    const HintStyle& style = kCardHint);
    // A labelled toggle centred at centreX whose whole line is one button.
    void DrawSwitch(int centreX, int y, const std::string& key, const std::string& label, const std::string& value,
                    bool on, ButtonId id);
    // The width DrawSwitch gives its line.
    int SwitchWidth(const std::string& key, const std::string& label, const std::string& value);

    // ---- the screens ----
    void DrawHud();
    void DrawBanner();
    // " Stand je Richtung: N 60 %, ..." or " Stand je Turm: ...", or empty.
    static std::string PartList(const RoundStats& stats, const LevelConfig& config);
    // The held card's account: the share reached, the parts, and what comes next, a
    // harder attack or, after a pack's last level, nothing more.
    static std::string HeldText(const Game& game);
    // The dimmed picture and the one card that stands over it, if any.
    void DrawOverlay();
    void DrawPauseCard(Card& card);
    void DrawAnnounceCard(Card& card);
    void DrawEvalCard(Card& card);
    void DrawOverCard(Card& card);
    void DrawScoresCard(Card& card);
    void DrawTitleScoresCard(Card& card);
    // The list of `scores`; rows with a replay are marked and can be chosen.
    void DrawScoreTable(Card& card, int highlight);
    // Minutes and seconds, "m:ss".
    static std::string ClockText(double seconds);
    // Where a watched replay stands: its time, its length and its speed.
    std::string WatchStatus() const;
    // The end of a watched replay: whether it reached the recorded score and state.
    void DrawReplayEndCard(Card& card);
    // A replay that could not be played.
    void DrawReplayErrorCard(Card& card);
    // The whole frame of the title phase over the title picture.
    void DrawTitleScreen();
    void DrawTitleCard(Card& card);
    void DrawSettingsCard(Card& card);
    // The level editor, worked by keyboard only, and the landscape of its level behind it.
    void DrawEditorCard(Card& card);
    void DrawEditorBackdrop();
    // The key hints of this moment at the foot, and the level's name.
    void DrawHelp();
    // The help bar's key texts and their meanings, left to right.
    std::vector<std::pair<std::string, std::string>> HelpPairs();
    // The hints that fit into the help bar, each with its x, and the level's name, which
    // is left out (nameFits false) where it would meet the last hint.
    struct HelpLine {
        std::vector<std::pair<std::string, std::string>> pairs;
        std::vector<int> xs;
        std::string name;
        bool nameFits = false;
    };
    HelpLine LayOutHelp();

private:
    // Reads the keys and the mouse once a frame; the overlays take them first.
    void HandleInput(float dt);
    void HandleTitleInput(bool confirm);
    // The over card's name field: raw presses first, else the key state.
    void HandleNameEntry();
    // The name field on a pad, arcade style; whether it saved or left the field.
    bool HandlePadName(float dt);
    // What the pad's buttons stand for after this frame.
    pad::Context PadContext() const;
    // Build and attack: the cursor with key repeat, or the camera, then the acts.
    void HandlePlayInput(float dt);

    // Up, Down and Enter on a score table: choose a row with a replay, watch it. True if
    // they did something.
    bool HandleScoreTableKeys();
    // Space, Left, Right and Esc while a replay plays, then its frames for the time passed.
    void StepWatching(float elapsed);
    // `scores` from the file, with the marks of their replays; no row chosen.
    void LoadScores();

    void PlayMusicFor(Phase phase);
    // What a level's start and its first shot would otherwise open or make in their frame:
    // while a card stands, the landscape of the level that comes next and the runner's sheets;
    // before the attack, the whistle of its balls' flight.
    void PrepareAhead();
    void OnPhaseChanged(Phase from, Phase to);
    // Hands the rules' events on: messages, the banner, sounds and the view.
    void ProcessEvents(const std::vector<Event>& events);
    // The picture of the frame that Step has just advanced.
    void DrawFrame();
    // What OnUserUpdate returns: false once exitAt has come, after the screenshot.
    bool FinishFrame();
    void UpdateLogo(float dt);
    void DrawLogo();

    // The player's pack folder, filled from the game's packs on the first start.
    void SetUpPacks();
    void RefreshPacks();
    void ApplyPack();
    // Standard levels, then each pack in turn; back to the title at level 1.
    void CyclePack();
    void NewGame();
    std::string PackLabel() const;
    void OpenEditor();
    // All keys while the editor is open, and the "--editor=" script, one token a frame.
    void HandleEditorInput();
    // The title pages' contents, below the tabs.
    void DrawStoryPage(Card& card);
    void DrawFlowPage(Card& card);
    void DrawControlsPage(Card& card);
    void DrawCreditsPage(Card& card);
    // The bare title picture's blinking line, key hints, credit and version tag.
    void DrawTitleFoot();
};

// How main makes the window and runs its frames.
struct WindowOptions {
    bool windowed = false;
    int32_t scale = 2;         // window pixels per logical pixel, 1 to 8
    bool pixelPerfect = false; // whole-number scales only, centred, black around
    bool vsync = false;        // one swap per refresh of the screen
    int32_t fps = 0;           // frames a second at most; 0 as fast as they go
};

// Applies the run options argv[1..argc-1] to the application, left to right; unknown
// ones are ignored. Returns what they say of the window. A malformed number throws
// what std::stoi, std::stoul or std::stof throw.
WindowOptions ApplyRunOptions(TorvaneApp& app, int argc, const char* const* argv);

} // namespace torvane
