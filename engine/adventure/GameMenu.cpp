#include "engine/adventure/GameMenu.h"

#include "engine/Canvas.h"
#include "engine/Text.h"
#include "engine/adventure/Actor.h"
#include "engine/adventure/Lang.h"

namespace adv {

namespace {

constexpr int kPanelX = 62, kPanelY = 22, kPanelW = 260, kPanelH = 196;
constexpr int kRowH = 16;
constexpr int kFirstRowY = kPanelY + 30;
constexpr int kSlotTextX = kPanelX + 26; // right of the slot's number

// A used slot's row: its label and the time of saving.
std::string SlotLine(const savegame::SlotInfo& slot, const std::string& label) { return label + "  " + slot.saved; }

} // namespace

void GameMenu::Open() {
    page = Main;
    previousPage = Closed;
    hovered = -1;
}

void GameMenu::Close() {
    page = Closed;
    hovered = -1;
}

void GameMenu::GoTo(Page to) {
    previousPage = page;
    page = to;
    hovered = -1;
}

void GameMenu::AskConfirm(const std::string& text, int32_t kind, int32_t slot) {
    question = text;
    pendingKind = kind;
    pendingSlot = slot;
    GoTo(Confirm);
}

void GameMenu::ShowMessage(const std::string& text) {
    message = text;
    messageTime = kMessageSeconds;
}

void GameMenu::RefreshSlots() {
    for (int i = 0; i < savegame::kSlots; ++i) slots[i] = savegame::Inspect(i);
}

GameMenu::Request GameMenu::Activate(int32_t action) {
    Request r;
    switch (action) {
    case kResume:
        Close();
        r.kind = Request::Resume;
        break;
    case kSaveGame:
        RefreshSlots();
        GoTo(Save);
        break;
    case kLoadGame:
        RefreshSlots();
        GoTo(Load);
        break;
    case kNewGame:
        AskConfirm(Tr("Neues Spiel starten? Der aktuelle Fortschritt geht verloren."), Request::NewGame);
        break;
    case kQuit: AskConfirm(Tr("Das Spiel wirklich beenden?"), Request::Quit); break;
    case kSpeedLeft: r.kind = Request::SpeedDown; break;
    case kSpeedRight: r.kind = Request::SpeedUp; break;
    case kLanguage: r.kind = Request::SwitchLanguage; break;
    case kBack: GoTo(Main); break;
    case kYes:
        r.kind = pendingKind;
        r.slot = pendingSlot;
        if (pendingKind == Request::SaveSlot) {
            page = Save;
            previousPage = Main;
        } else {
            Close();
        }
        break;
    case kNo:
        if (previousPage == Closed)
            Close();
        else
            page = previousPage, previousPage = Main;
        break;
    default:
        if (action >= kSlotRow && action < kSlotRow + savegame::kSlots) {
            const int slot = action - kSlotRow;
            if (page == Load) {
                Close();
                r = {Request::LoadSlot, slot};
            } else if (page == Save && !slots[slot].exists) {
                r = {Request::SaveSlot, slot};
            } else if (page == Save) {
                AskConfirm(Trf("Feld {0} ueberschreiben?", {std::to_string(slot + 1)}), Request::SaveSlot, slot);
            }
        }
    }
    return r;
}

void GameMenu::BuildRows(pge::vi2d mouse) {
    rows.clear();
    const int x = kPanelX + 12, w = kPanelW - 24;
    auto add = [&](int32_t action, const std::string& text, int y, int rx = kPanelX + 12, int rw = kPanelW - 24) {
        rows.push_back(Row{action, text, rx, y, rw, kRowH - 2});
    };
    int y = kFirstRowY;
    switch (page) {
    case Main:
        add(kResume, Tr("Spiel fortsetzen"), y);
        add(kSaveGame, Tr("Spiel speichern"), y += kRowH);
        add(kLoadGame, Tr("Spiel laden"), y += kRowH);
        add(kNewGame, Tr("Neues Spiel"), y += kRowH);
        y += kRowH;
        // The speed row: its two ends are the buttons.
        add(kSpeedLeft, "<", y, x, 24);
        add(kSpeedRight, ">", y, x + w - 24, 24);
        add(kLanguage, "L  " + Tr("Sprache / Language:") + " " + Tr("Deutsch"), y += kRowH);
        add(kQuit, Tr("Spiel beenden"), y += kRowH);
        break;
    case Save:
    case Load:
        for (int i = 0; i < savegame::kSlots; ++i) {
            const savegame::SlotInfo& s = slots[i];
            // The slot's number stands before the row, drawn on its own.
            add(kSlotRow + i, s.exists ? SlotLine(s, s.label) : Tr("  - leer -"), y, kSlotTextX, kPanelX + kPanelW - 12 - kSlotTextX);
            y += kRowH;
        }
        add(kBack, Tr("Zurueck"), y + kRowH / 2);
        break;
    case Confirm:
        add(kYes, Tr("Ja"), kPanelY + 110, x, w / 2 - 4);
        add(kNo, Tr("Nein"), kPanelY + 110, x + w / 2 + 4, w / 2 - 4);
        break;
    case Closed: break;
    }
    hovered = -1;
    for (size_t i = 0; i < rows.size(); ++i)
        if (rows[i].Contains(mouse)) hovered = int(i);
}

GameMenu::Request GameMenu::Update(pge::PixelEngine& engine, float dt, bool clicked, bool escape) {
    if (messageTime > 0.0f) {
        messageTime -= dt;
        if (messageTime <= 0.0f) message.clear();
    }
    BuildRows(engine.GetMousePos());
    if (page == Main && engine.GetKey(pge::L).bPressed) return Activate(kLanguage);
    if (escape) {
        if (page == Main) return Activate(kResume);
        return Activate(page == Confirm ? kNo : kBack);
    }
    if (clicked && hovered >= 0) {
        const Request r = Activate(rows[size_t(hovered)].action);
        BuildRows(engine.GetMousePos());
        return r;
    }
    return {};
}

void GameMenu::Draw(pge::PixelEngine& engine, int textSpeed) {
    if (!IsOpen()) return;
    pge::Sprite* target = engine.GetDrawTarget();
    canvas::FillRect(target, 0, 0, engine.ScreenWidth(), engine.ScreenHeight(), ui::kShadow);
    canvas::FillRoundRect(target, kPanelX, kPanelY, kPanelW, kPanelH, 5, ui::kPanel);
    canvas::StrokeRoundRect(target, kPanelX + 0.5f, kPanelY + 0.5f, kPanelW - 1, kPanelH - 1, 5, ui::kFrame, 1);
    const int cx = kPanelX + kPanelW / 2;
    const std::string heading = Tr(page == Save ? "SPIEL SPEICHERN" : page == Load ? "SPIEL LADEN" : "SPIELMENUE");
    text::Draw(engine, cx, kPanelY + 10, heading, ui::kHighlight, 1, text::Align::Centre);
    canvas::FillRect(target, kPanelX + 12, kPanelY + 22, kPanelW - 24, 1, ui::kFrame);
    if (page == Confirm) {
        int y = kPanelY + 50;
        for (const std::string& line : text::Wrap(engine, question, kPanelW - 32)) {
            text::Draw(engine, cx, y, line, ui::kText, 1, text::Align::Centre);
            y += 11;
        }
    }
    if (page == Main) {
        const std::string speed = Trf("Texttempo {0} / {1}", {std::to_string(textSpeed), std::to_string(Actor::kTopTextSpeed)});
        text::Draw(engine, cx, kFirstRowY + 4 * kRowH + 3, speed, ui::kText, 1, text::Align::Centre);
    }
    for (size_t i = 0; i < rows.size(); ++i) {
        const Row& r = rows[i];
        const bool hot = int(i) == hovered;
        if (hot) canvas::FillRect(target, r.x, r.y, r.w, r.h, canvas::WithAlpha(ui::kFrame, 0.45f));
        const bool centred = page != Save && page != Load;
        const pge::Pixel colour = hot ? ui::kHighlight : ui::kText;
        if (centred) {
            text::Draw(engine, r.x + r.w / 2, r.y + 3, r.text, colour, 1, text::Align::Centre);
        } else {
            std::string shown = r.text;
            if (r.action >= kSlotRow) {
                const int slot = r.action - kSlotRow;
                text::Draw(engine, kPanelX + 16, r.y + 3, std::to_string(slot + 1) + ".", ui::kMuted);
                // A label too long for the row is cut short; the time of saving stays whole.
                const savegame::SlotInfo& s = slots[slot];
                if (s.exists) shown = SlotLine(s, text::Fit(engine, s.label, r.w - 8 - text::Width(engine, SlotLine(s, ""))));
            }
            text::Draw(engine, r.x + 4, r.y + 3, shown, colour);
        }
    }
    if (!message.empty())
        text::Draw(engine, cx, kPanelY + kPanelH - 14, message, ui::kHighlight, 1, text::Align::Centre);
}

} // namespace adv
