#pragma once
// The in-game menu: resume, save and load in six slots, new game, text speed, quit,
// and a page that asks before anything is lost.
#include "engine/adventure/SaveGame.h"
#include "pge/PixelEngine.h"

#include <cstdint>
#include <string>
#include <vector>

namespace adv {

// Colours of the adventure's panels, shared by the menu and the verb panel.
namespace ui {
inline constexpr pge::Pixel kPanel{34, 26, 22};
inline constexpr pge::Pixel kFrame{120, 92, 58};
inline constexpr pge::Pixel kText{214, 196, 160};
inline constexpr pge::Pixel kMuted{130, 116, 96};
inline constexpr pge::Pixel kHighlight{255, 222, 120};
inline constexpr pge::Pixel kShadow{0, 0, 0, 150};
} // namespace ui

class GameMenu {
public:
    enum Page : int32_t { Closed = 0, Main = 1, Save = 2, Load = 3, Confirm = 4 };

    // The menu's answer to a frame.
    struct Request {
        enum Kind : int32_t {
            None = 0, Resume = 1, SaveSlot = 2, LoadSlot = 3, NewGame = 4, Quit = 5, SpeedUp = 6, SpeedDown = 7,
            SwitchLanguage = 8,
        };
        int32_t kind = None;
        int32_t slot = -1;
    };

    // Row actions; slot n is kSlotRow + n.
    enum RowAction : int32_t {
        kResume = 1, kSaveGame = 2, kLoadGame = 3, kNewGame = 4, kQuit = 5, kSpeedLeft = 6, kSpeedRight = 7,
        kBack = 8, kYes = 9, kNo = 10, kLanguage = 11, kSlotRow = 100,
    };

    struct Row {
        int32_t action = 0;
        std::string text;
        int x = 0, y = 0, w = 0, h = 0;
        bool Contains(pge::vi2d p) const { return p.x >= x && p.x < x + w && p.y >= y && p.y < y + h; }
    };

    bool IsOpen() const { return page != Closed; }
    void Open();
    void Close();
    void GoTo(Page to);
    void AskConfirm(const std::string& text, int32_t kind, int32_t slot = -1);
    // Shown for kMessageSeconds.
    void ShowMessage(const std::string& text);
    void RefreshSlots();
    // On the main page the key L switches the language, as its row does.
    Request Update(pge::PixelEngine& engine, float dt, bool clicked, bool escape);
    Request Activate(int32_t action);
    void Draw(pge::PixelEngine& engine, int textSpeed);
    // The rows of the present page, and which one the mouse is over.
    void BuildRows(pge::vi2d mouse);

    static constexpr float kMessageSeconds = 2.2f;

    Page page = Closed;
    Page previousPage = Closed;
    std::vector<Row> rows;
    int hovered = -1;
    savegame::SlotInfo slots[savegame::kSlots];
    std::string question;
    int32_t pendingKind = Request::None;
    int32_t pendingSlot = -1;
    std::string message;
    float messageTime = 0.0f;
};

} // namespace adv
