// The application's input: keys and clicks, read once a frame from the key state.
#include "game/content/PackFormat.h"
#include "game/content/Highscores.h"
#include "game/content/Preferences.h"
#include "game/content/ReplayFiles.h"
#include "game/rules/Lang.h"
#include "game/rules/Level.h"
#include "game/TorvaneApp.h"
#include "game/Typing.h"

#include <chrono>
#include <cstdint>

namespace torvane {
namespace {

// Keys meant for the card before can't skip the next one within this time.
constexpr float kConfirmLock = 0.6f;
// Seconds of a held cursor key before it starts repeating.
constexpr float kRepeatDelay = 0.22f;
// Seconds without input before the title picture gives way to the high scores, and
// how long they stay.
constexpr float kAttractAfter = 15.0f;
constexpr float kAttractFor = 10.0f;
constexpr int kTitlePages = 4;
// Code points the name field takes.
constexpr size_t kNameLength = 14;

// Appends typed text a character at a time: one is refused when the field is full, and a
// blank in the first place.
void AppendToName(std::string& name, const std::string& text) {
    for (size_t at = 0; at < text.size();) {
        size_t next = at + 1;
        while (next < text.size() && (uint8_t(text[next]) & 0xC0) == 0x80) ++next;
        if (CodePoints(name) < kNameLength && !(name.empty() && text[at] == ' ')) name.append(text, at, next - at);
        at = next;
    }
}

// The repeat of a held arrow or D-pad button: whether it acts again in this frame. `timer`
// was set to the delay at the press, and counts down in the frame of the press already.
bool RepeatDue(float& timer, float dt) {
    if ((timer -= dt) > 0.0f) return false;
    timer += GetSettings().keyRepeat;
    return true;
}

} // namespace

bool TorvaneApp::AnyInput() {
    for (int k = pge::A; k <= pge::CAPS_LOCK; ++k)
        if (GetKey(pge::Key(k)).bPressed) return true;
    return GetMouse(0).bPressed || GetMouse(1).bPressed;
}

void TorvaneApp::Press(ButtonId id, int arg) {
    Settings& settings = GetSettings();
    switch (id) {
    case ButtonId::NewGame: NewGame(); return;
    case ButtonId::StartAttack: Do({replay::Op::BeginAttack}); return;
    case ButtonId::NextLevel:
        if (game.LastLevel()) {
            Press(ButtonId::ToTitle, 0);
        } else {
            Do({replay::Op::NextLevel});
        }
        return;
    case ButtonId::SaveScore: {
        const int64_t now = std::chrono::duration_cast<std::chrono::seconds>(
                                std::chrono::system_clock::now().time_since_epoch())
                                .count();
        const highscores::Entry entry{playerName.empty() ? "Torvane" : playerName, game.score, game.level, now};
        // Added to what is on disk now, not to the list read at the start of the card.
        scores = highscores::Load();
        highlightRow = highscores::Insert(scores, entry);
        // The entry keeps the game's replay, and a replay whose entry fell off goes.
        if (highscores::Save(scores)) {
            if (highlightRow >= 0 && !lastReplay.empty()) replay::Keep(entry, lastReplay);
            replay::Prune(scores);
        }
        const int row = highlightRow;
        LoadScores();
        highlightRow = row;
        nameEntry = false;
        scoreSaved = true;
        return;
    }
    case ButtonId::EndBuild: Do({replay::Op::EndBuild}); return;
    case ButtonId::Resume: paused = false; return;
    case ButtonId::ToTitle:
        // Leaving the game ends its recording.
        recorder.End(Session());
        paused = nameEntry = scoreSaved = attractScores = false;
        lastInputAt = clock;
        ApplyPack();
        game.StartLevel(1);
        game.phase = Phase::Title;
        game.TakeEvents();
        // A test of the editor always returns to it.
        if (testing) {
            testing = false;
            OpenEditor();
        }
        return;
    case ButtonId::TitlePage: titlePage = arg; return;
    case ButtonId::ToggleAutoRotate:
        if (settings.classic) return;
        settings.auto_rotate = !settings.auto_rotate;
        break;
    case ButtonId::ToggleRepairMode: settings.repair_mode = settings.repair_mode == 0 ? 1 : 0; break;
    case ButtonId::ToggleLanguage:
        SetLanguage(CurrentLanguage() == Language::German ? Language::English : Language::German);
        break;
    case ButtonId::NextDifficulty: settings.difficulty = (settings.difficulty + 1) % kDifficulties; break;
    case ButtonId::TogglePieceChoice: settings.piece_choice = !settings.piece_choice; break;
    case ButtonId::OpenSettings: settingsOpen = true; return;
    case ButtonId::CloseSettings: settingsOpen = false; return;
    case ButtonId::NextPack: CyclePack(); return;
    case ButtonId::OpenEditor: OpenEditor(); return;
    case ButtonId::WatchReplay:
        if (arg >= 0 && arg < int(scores.size()) && arg < int(scoreReplays.size()) && scoreReplays[size_t(arg)])
            StartWatching(replay::Folder() + "/" + replay::FileOf(scores[size_t(arg)]));
        return;
    case ButtonId::EndWatch:
        if (watching) StopWatching();
        return;
    case ButtonId::CloseReplayError: replayError = {}; return;
    }
    // Only the settings' changes get here; each is kept at once.
    preferences::Save();
}

pad::Context TorvaneApp::PadContext() const {
    if (editorOpen) return editor.Typing() ? pad::Context::EditorTyping : pad::Context::Editor;
    if (settingsOpen) return pad::Context::Settings;
    if (paused) return pad::Context::Pause;
    if (logoTime >= 0.0f) return pad::Context::Play;
    if (game.phase == Phase::Title) return pad::Context::Title;
    if (game.phase == Phase::Over && nameEntry) return pad::Context::NameEntry;
    return pad::Context::Play;
}

void TorvaneApp::HandleInput(float dt) {
    // A window that loses the keyboard focus in the middle of play pauses, as Esc does there;
    // the focus coming back leaves the pause to the player.
    const bool focused = IsFocused();
    if (hadFocus && !focused && (game.phase == Phase::Build || game.phase == Phase::Attack)) paused = true;
    hadFocus = focused;

    if (GetMouse(0).bPressed) {
        const pge::vi2d m = GetMousePos();
        for (const Button& b : buttons) {
            if (b.x <= m.x && m.x < b.x + b.w && b.y <= m.y && m.y < b.y + b.h) {
                Press(b.id, b.arg);
                return;
            }
        }
    }
    const bool confirm =
        clock >= phaseStart + kConfirmLock && (GetKey(pge::SPACE).bPressed || GetKey(pge::ENTER).bPressed);
    auto pressed = [this](pge::Key k) { return GetKey(k).bPressed; };

    // The card of a replay that could not be played stands until it is closed.
    if (!replayError.what.empty()) {
        if (pressed(pge::ESCAPE) || pressed(pge::ENTER) || pressed(pge::SPACE)) Press(ButtonId::CloseReplayError, 0);
        return;
    }

    if (editorOpen) {
        lastInputAt = clock;
        HandleEditorInput();
        return;
    }
    if (settingsOpen) {
        lastInputAt = clock;
        if (pressed(pge::ESCAPE) || pressed(pge::S)) {
            Press(ButtonId::CloseSettings, 0);
        } else if (pressed(pge::D)) {
            Press(ButtonId::NextDifficulty, 0);
        } else if (pressed(pge::R)) {
            Press(ButtonId::ToggleRepairMode, 0);
        } else if (pressed(pge::A)) {
            Press(ButtonId::ToggleAutoRotate, 0);
        } else if (pressed(pge::T)) {
            Press(ButtonId::TogglePieceChoice, 0);
        }
        return;
    }
    if (paused) {
        if (pressed(pge::ESCAPE)) {
            Press(ButtonId::Resume, 0);
        } else if (pressed(pge::Q)) {
            Press(ButtonId::ToTitle, 0);
        } else if (pressed(pge::S)) {
            Press(ButtonId::OpenSettings, 0);
        } else if (pressed(pge::L)) {
            Press(ButtonId::ToggleLanguage, 0);
        }
        return;
    }

    // Outside a test, ESCAPE at a card does nothing: there is no pause there.
    const bool leaveTest = testing && pressed(pge::ESCAPE);
    switch (game.phase) {
    case Phase::Title: HandleTitleInput(confirm); return;
    case Phase::Announce:
    case Phase::Eval:
        if (leaveTest) {
            Press(ButtonId::ToTitle, 0);
        } else if (confirm) {
            Press(game.phase == Phase::Announce ? ButtonId::StartAttack : ButtonId::NextLevel, 0);
        }
        return;
    case Phase::Over:
        if (leaveTest) {
            Press(ButtonId::ToTitle, 0);
        } else if (nameEntry) {
            if (!HandlePadName(dt)) HandleNameEntry();
        } else if (!HandleScoreTableKeys() && confirm) {
            Press(ButtonId::ToTitle, 0);
        }
        return;
    case Phase::Inspect:
    case Phase::Build:
    case Phase::Attack:
        if (pressed(pge::ESCAPE)) {
            if (testing) {
                Press(ButtonId::ToTitle, 0);
            } else {
                paused = true;
            }
            return;
        }
        if (game.phase != Phase::Inspect) HandlePlayInput(dt);
        return;
    }
}

void TorvaneApp::HandleTitleInput(bool confirm) {
    auto pressed = [this](pge::Key k) { return GetKey(k).bPressed; };
    const bool any = AnyInput();
    if (attractScores) {
        if (HandleScoreTableKeys()) {
            // Choosing a row keeps the list up.
            attractSince = clock;
        } else if (confirm) {
            Press(ButtonId::NewGame, 0);
        } else if (any || clock >= attractSince + kAttractFor) {
            attractScores = false;
            lastInputAt = clock;
        }
        return;
    }
    if (any) {
        lastInputAt = clock;
    } else if (titlePage == -1 && titleImage && clock >= lastInputAt + kAttractAfter) {
        attractScores = true;
        attractSince = clock;
        return;
    }
    if (pressed(pge::ESCAPE)) {
        if (titlePage >= 0 && titleImage) {
            titlePage = -1;
        } else {
            quit = true;
        }
        return;
    }
    if (pressed(pge::S)) Press(ButtonId::OpenSettings, 0);
    if (pressed(pge::L)) Press(ButtonId::ToggleLanguage, 0);
    if (pressed(pge::P)) Press(ButtonId::NextPack, 0);
    if (pressed(pge::E)) {
        Press(ButtonId::OpenEditor, 0);
    } else if (pressed(pge::LEFT)) {
        titlePage = titlePage <= 0 ? kTitlePages - 1 : titlePage - 1;
    } else if (pressed(pge::RIGHT)) {
        // Counted in 64 bits: "--page=" may have set the largest int.
        titlePage = int((int64_t(titlePage) + 1) % kTitlePages);
    } else if (confirm) {
        Press(ButtonId::NewGame, 0);
    }
}

void TorvaneApp::HandlePlayInput(float dt) {
    auto pressed = [this](pge::Key k) { return GetKey(k).bPressed; };
    auto held = [this](pge::Key k) { return GetKey(k).bHeld; };
    auto sideways = [](pge::Key k) { return k == pge::LEFT ? Action::Left : Action::Right; };
    const Settings& settings = GetSettings();
    const bool handCursor = game.phase == Phase::Build || game.FreeRepair() || game.BuildsInAttack();
    // The automatic repair on a ring with the turn by hand: the arrows drive the camera.
    const bool manualCamera = !handCursor && game.config.ring && !settings.auto_rotate;

    const auto act = [&](Action action) { Do({replay::Op::Act, int32_t(action)}, dt); };
    if (handCursor) {
        for (pge::Key k : {pge::LEFT, pge::RIGHT}) {
            if (!pressed(k)) continue;
            act(sideways(k));
            repeatKey = k;
            repeatTimer = kRepeatDelay;
        }
        if (repeatKey != pge::NONE) {
            if (!held(repeatKey)) {
                repeatKey = pge::NONE;
            } else if (RepeatDue(repeatTimer, dt)) {
                act(sideways(repeatKey));
            }
        }
    } else if (manualCamera) {
        if (held(pge::LEFT)) Do({replay::Op::TurnLeft}, dt);
        if (held(pge::RIGHT)) Do({replay::Op::TurnRight}, dt);
    } else if (!game.config.ring) {
        if (pressed(pge::LEFT)) act(Action::Left);
        if (pressed(pge::RIGHT)) act(Action::Right);
    }

    if (pressed(pge::DOWN)) act(Action::Place);
    if (pressed(pge::UP)) {
        act(Action::Undo);
        // A new goal brings the camera to it once, even with the automatic turn off.
        if (manualCamera && game.focus.kind != Focus::None) Do({replay::Op::AimAtFocus}, dt);
    }
    if (pressed(pge::SPACE)) act(Action::Rotate);
    if (pressed(pge::TAB)) act(Action::Cycle);
    if (pressed(pge::ENTER)) act(Action::Done);
}

} // namespace torvane

namespace torvane {

bool TorvaneApp::HandlePadName(float dt) {
    const auto pressed = [this](pge::PadButton b) { return GetPadButton(b).bPressed; };
    if (pressed(pge::PAD_START)) {
        Press(ButtonId::SaveScore, 0);
        return true;
    }
    if (pressed(pge::PAD_B)) {
        nameEntry = false;
        return true;
    }
    // Left goes back a place, erasing the letter under the cursor; right (or A) goes on with
    // a new letter, which starts where up from nothing starts: at "A".
    if (pressed(pge::PAD_LEFT)) PopChar(playerName);
    if (pressed(pge::PAD_RIGHT) || pressed(pge::PAD_A)) AppendToName(playerName, pad::StepLetter({}, 1));
    // Up and down turn the letter under the cursor, the last one; held, they repeat as a
    // held arrow key does in the game.
    const auto way = [](pge::PadButton b) { return b == pge::PAD_UP ? 1 : -1; };
    int steps = 0;
    for (const pge::PadButton b : {pge::PAD_UP, pge::PAD_DOWN}) {
        if (!pressed(b)) continue;
        steps += way(b);
        padRepeat = b;
        repeatTimer = kRepeatDelay;
    }
    if (padRepeat != pge::PAD_BUTTONS) {
        if (!GetPadButton(padRepeat).bHeld) {
            padRepeat = pge::PAD_BUTTONS;
        } else if (RepeatDue(repeatTimer, dt)) {
            steps += way(padRepeat);
        }
    }
    if (steps != 0) {
        std::string letter;
        if (!playerName.empty()) {
            const std::string before = playerName;
            PopChar(playerName);
            letter = before.substr(playerName.size());
        }
        std::string turned = pad::StepLetter(letter, steps);
        // The first place takes no blank: turn on past it.
        if (playerName.empty() && turned == " ") turned = pad::StepLetter(turned, steps);
        AppendToName(playerName, turned);
    }
    return false;
}

void TorvaneApp::HandleNameEntry() {
    const typing::Keys keys = typing::Read(*this, lastKeySerial);
    if (keys.enter) {
        Press(ButtonId::SaveScore, 0);
        return;
    }
    if (keys.erase) PopChar(playerName);
    if (keys.escape) {
        nameEntry = false;
        return;
    }
    AppendToName(playerName, keys.text);
}

} // namespace torvane
