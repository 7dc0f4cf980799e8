// The settings card: the four rule settings, each with its key, a click on its line and
// a sentence on what the present choice means. Changes are saved by Press at once.
#include "engine/Text.h"
#include "game/rules/Lang.h"
#include "game/rules/Level.h"
#include "game/TorvaneApp.h"

#include <string>

namespace torvane {
namespace {

constexpr const char* kLevels[] = {"Leicht", "Mittel", "Schwer", "Torvane"};
constexpr const char* kLevelHints[] = {
    "Angriffe kommen in Wellen aus je einer Richtung. Jeder Wechsel wird angekündigt, danach bleiben 3 Sekunden Zeit.",
    "Angriffe kommen gemischt aus allen Richtungen des Levels, ohne Ankündigung.",
    "Wie Mittel, aber Ersatz lässt sich nicht vor dem Einschlag bereitlegen.",
    "Wie Schwer, aber in der Verteidigung wird einfach weitergebaut, während die Kanonen schießen. Teile frei aus der Liste wählen.",
};

} // namespace

void TorvaneApp::DrawSettingsCard(Card& card) {
    const Settings& s = GetSettings();
    card.Title(Tr("Einstellungen"), kChestnut);
    auto row = [&](const std::string& key, const std::string& label, const std::string& value, bool on, ButtonId id,
                   const std::string& hint) {
        if (card.draw) {
            // Its left edge at x + 14.
            const int total = SwitchWidth(key, label, value);
            DrawSwitch(card.x + 14 + total / 2, card.y, key, label, value, on, id);
        }
        card.y += 13;
        card.Para(hint, kMuted, "", kFg, 22);
        card.y += 3;
    };
    const int level = s.difficulty >= 0 && s.difficulty < kDifficulties ? s.difficulty : 0;
    row("D", Tr("Schwierigkeit:"), Tr(kLevels[level]), true, ButtonId::NextDifficulty, Tr(kLevelHints[level]));
    const bool free = s.repair_mode == 0;
    row("R", Tr("Reparieren:"), free ? Tr("frei") : Tr("automatisch"), free, ButtonId::ToggleRepairMode,
        free ? Tr("Das Teil selbst über die Mauer führen und mit ↓ einsetzen.")
             : Tr("Mit ↑ ein Ziel wählen, das Spiel sucht die passende Lage."));
    // Classic towers don't turn: no row, and the key does nothing.
    if (!s.classic)
        row("A", Tr("Turm dreht bei Angriffen automatisch mit:"), s.auto_rotate ? Tr("an") : Tr("aus"), s.auto_rotate,
            ButtonId::ToggleAutoRotate,
            s.auto_rotate ? Tr("Der Turm dreht selbst zum dringendsten Ziel.")
                          : Tr("Den Turm mit ← → selbst zum Ziel drehen."));
    row("T", Tr("Teile beim Aufbau aussuchen:"), s.piece_choice ? Tr("an") : Tr("aus"), s.piece_choice,
        ButtonId::TogglePieceChoice,
        s.piece_choice ? Tr("Mit Tab ein anderes Teil aus der Liste nehmen.")
                       : Tr("Die Teile kommen in fester Reihenfolge."));
    card.Button(Tr("Zurück (Esc)"), ButtonId::CloseSettings);
}

} // namespace torvane
