// The application's level packs and the editor around them: loading, choosing and
// cycling packs, and the keys of the open editor with its test runs.
#include "engine/Assets.h"
#include "engine/PlatformKeys.h"
#include "game/content/PackStorage.h"
#include "game/content/Preferences.h"
#include "game/rules/Lang.h"
#include "game/rules/Level.h"
#include "game/TorvaneApp.h"
#include "game/Typing.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace torvane {
namespace {

// The editor repeats a held arrow more slowly at first and faster afterwards than the game.
constexpr float kEditorRepeatDelay = 0.35f;
constexpr float kEditorRepeatStep = 0.07f;
// Seconds after the start of a test before its hint shows.
constexpr float kTestHintAfter = 1.9f;

// The tokens of an "--editor=" script and the editor keys they stand for.
constexpr std::pair<const char*, LevelEditor::Key> kKeys[] = {
    {"up", LevelEditor::Key::Up},     {"down", LevelEditor::Key::Down}, {"left", LevelEditor::Key::Left},
    {"right", LevelEditor::Key::Right}, {"enter", LevelEditor::Key::Enter}, {"esc", LevelEditor::Key::Esc},
    {"del", LevelEditor::Key::Del},   {"t", LevelEditor::Key::T}};

const LevelPack* PackWithKey(const std::vector<LevelPack>& packs) {
    const std::string& key = GetSettings().level_pack;
    const auto it = std::find_if(packs.rbegin(), packs.rend(), [&](const LevelPack& p) { return p.file == key; });
    return it == packs.rend() ? nullptr : &*it;
}

} // namespace

void TorvaneApp::SetUpPacks() {
    const std::string directory = preferences::Directory();
    // Without a data folder there is nowhere to keep packs: the store stays empty.
    if (directory.empty()) return;
    const std::string folder = directory + "/levelpacks";
    packStorage = FolderPackStorage(folder);
    // The packs that come with the game are offered once: a pack the player deletes
    // stays deleted as long as the folder stands. A first start that could not copy
    // them all (a full disk) takes the folder away again, so that the next start copies
    // anew; a copy that a full disk left empty is made again at any start.
    std::error_code error;
    const bool first = !std::filesystem::exists(folder, error) && !error;
    if (!CopyPacks(FolderPackStorage(adv::Assets::Root() + "/torvane/levelpacks"), packStorage, first) && first)
        std::filesystem::remove_all(folder, error);
}

void TorvaneApp::RefreshPacks() {
    packs = LoadPacks(packStorage);
    // A chosen pack that has gone away is forgotten, in memory only.
    if (PackWithKey(packs) == nullptr) GetSettings().level_pack.clear();
}

void TorvaneApp::ApplyPack() { SetActivePack(PackWithKey(packs)); }

void TorvaneApp::CyclePack() {
    RefreshPacks();
    const LevelPack* current = PackWithKey(packs);
    const size_t next = current == nullptr ? 0 : static_cast<size_t>(current - packs.data()) + 1;
    // Standard levels, then each pack in the order of the list.
    GetSettings().level_pack = next < packs.size() ? packs[next].file : std::string();
    preferences::Save();
    ApplyPack();
    game.StartLevel(1);
    game.phase = Phase::Title;
    game.TakeEvents();
}

void TorvaneApp::NewGame() {
    ApplyPack();
    game.NewGame();
    nameEntry = scoreSaved = attractScores = false;
}

std::string TorvaneApp::PackLabel() const {
    const LevelPack* pack = PackWithKey(packs);
    return pack ? Trf("Levels: {0}", {pack->name}) : Tr("Standard");
}

void TorvaneApp::OpenEditor() {
    editor.Open(packStorage);
    editorOpen = true;
    // The key that opened the editor is not taken as typed.
    lastKeySerial = adv::platformkeys::LastPress().serial;
}

void TorvaneApp::HandleEditorInput() {
    using Key = LevelEditor::Key;
    int result = LevelEditor::kStay;
    // Once the editor has answered something else, no further key of this frame counts.
    const auto send = [&](Key key) {
        if (result == LevelEditor::kStay) result = editor.Handle(key);
    };
    const auto type = [&](const std::string& text) {
        if (result == LevelEditor::kStay) editor.Type(text);
    };
    const auto pressed = [this](pge::Key k) { return GetKey(k).bPressed; };

    if (!editorScript.empty()) {
        // One token a frame.
        const size_t comma = editorScript.find(',');
        const std::string token = editorScript.substr(0, comma);
        editorScript = comma == std::string::npos ? std::string() : editorScript.substr(comma + 1);
        if (token.compare(0, 5, "type:") == 0) type(token.substr(5));
        for (const auto& [word, key] : kKeys)
            if (token == word) send(key);
    }
    if (pressed(pge::UP)) send(Key::Up);
    if (pressed(pge::DOWN)) send(Key::Down);
    for (const pge::Key k : {pge::LEFT, pge::RIGHT}) {
        const Key key = k == pge::LEFT ? Key::Left : Key::Right;
        if (pressed(k)) {
            repeatKey = k;
            repeatTimer = kEditorRepeatDelay;
            send(key);
        } else if (GetKey(k).bHeld && repeatKey == k && (repeatTimer -= GetElapsedTime()) <= 0.0f) {
            repeatTimer = kEditorRepeatStep;
            send(key);
        }
    }
    if (!editor.Typing()) {
        lastKeySerial = adv::platformkeys::LastPress().serial;
        if (pressed(pge::ENTER) || pressed(pge::SPACE)) send(Key::Enter);
        if (pressed(pge::ESCAPE)) send(Key::Esc);
        if (pressed(pge::BACK) || pressed(pge::DEL)) send(Key::Del);
        if (pressed(pge::T)) send(Key::T);
    } else {
        const typing::Keys keys = typing::Read(*this, lastKeySerial);
        if (keys.enter) send(Key::Enter);
        if (keys.escape) send(Key::Esc);
        if (keys.erase) send(Key::Del);
        type(keys.text);
    }

    if (result == LevelEditor::kLeave) {
        editorOpen = false;
        RefreshPacks();
        ApplyPack();
    } else if (result == LevelEditor::kTest) {
        // The working pack is played as it stands, from the level the editor points at.
        editorOpen = false;
        RefreshPacks();
        SetActivePack(&editor.pack);
        game.NewGame();
        if (editor.level >= 1) game.StartLevel(editor.level + 1);
        attractScores = nameEntry = scoreSaved = false;
        testing = true;
        testHintAt = clock + kTestHintAfter;
    }
}

} // namespace torvane
