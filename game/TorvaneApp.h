#pragma once
// The application: owns everything that lives for the whole run, and runs the frame.
#include "game/content/LevelEditor.h"
#include "game/content/PackStorage.h"
#include "game/rules/AutoPlayer.h"
#include "game/stage/RingCamera.h"
#include "game/rules/TorvaneGame.h"
#include "game/stage/TowerView.h"
#include "pge/PixelEngine.h"

#include <cstdint>
#include <memory>
#include <string>
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
    bool OnUserUpdate(float elapsed) override;
    bool OnUserDestroy() override;

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

    // What clicks and keys have in common: everything around the rules.
    void Press(ButtonId id, int arg);
    // A key from A to CAPS_LOCK, or the left or right mouse button, pressed in this frame.
    bool AnyInput();

private:
    // Reads the keys and the mouse once a frame; the overlays take them first.
    void HandleInput(float dt);
    void HandleTitleInput(bool confirm);
    // Build and attack: the cursor with key repeat, or the camera, then the acts.
    void HandlePlayInput(float dt);

    void PlayMusicFor(Phase phase);
    void OnPhaseChanged(Phase from, Phase to);
    // Hands the rules' events on: messages, the banner, and later sounds and the view.
    void ProcessEvents();
    // What OnUserUpdate returns: false once exitAt has come, after the screenshot.
    bool FinishFrame();
    void UpdateLogo(float dt);

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
};

// Applies the run options argv[1..argc-1] to the application, left to right; unknown
// ones are ignored. Returns whether "--windowed" was given. A malformed number throws
// what std::stoi, std::stoul or std::stof throw.
bool ApplyRunOptions(TorvaneApp& app, int argc, const char* const* argv);

} // namespace torvane
