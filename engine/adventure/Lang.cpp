#include "engine/adventure/Lang.h"

#include <cstdio>

namespace adv {

namespace {

Language s_language = Language::English;
std::set<std::string> s_missing;

// German key to English text: the framework's own texts, then those an adventure adds.
std::map<std::string, std::string>& English() {
    static std::map<std::string, std::string> table = {
        // The verbs and what they join.
        {"Gehe zu", "Walk to"},
        {"Oeffne", "Open"},
        {"Nimm", "Pick up"},
        {"Benutze", "Use"},
        {"Schliesse", "Close"},
        {"Schau an", "Look at"},
        {"Druecke", "Push"},
        {"Gib", "Give"},
        {"Rede mit", "Talk to"},
        {"Ziehe", "Pull"},
        {"mit", "with"},
        {"an", "to"},
        // What the player says when nothing fits.
        {"Das laesst sich nicht oeffnen.", "It won't open."},
        {"Das kann ich nicht mitnehmen.", "I can't take that with me."},
        {"So funktioniert das nicht.", "It doesn't work that way."},
        {"Das laesst sich nicht schliessen.", "It won't close."},
        {"Da ist nichts Besonderes dran.", "There's nothing special about it."},
        {"Da bewegt sich nichts.", "Nothing moves."},
        {"Das will bestimmt niemand haben.", "Nobody would want that."},
        {"Damit kann ich schlecht reden.", "I can hardly talk to that."},
        {"Das gibt keinen Millimeter nach.", "It won't budge an inch."},
        {"Das bringt nichts.", "That won't help."},
        {"Ein ganz normaler Gegenstand.", "A perfectly ordinary thing."},
        {"Die beiden passen nicht zusammen.", "Those two don't go together."},
        // The menu.
        {"SPIELMENUE", "GAME MENU"},
        {"SPIEL SPEICHERN", "SAVE GAME"},
        {"SPIEL LADEN", "LOAD GAME"},
        {"Spiel fortsetzen", "Resume game"},
        {"Spiel speichern", "Save game"},
        {"Spiel laden", "Load game"},
        {"Neues Spiel", "New game"},
        {"Spiel beenden", "Quit game"},
        {"Zurueck", "Back"},
        {"Ja", "Yes"},
        {"Nein", "No"},
        {"  - leer -", "  - empty -"},
        {"Texttempo {0} / {1}", "Text speed {0} / {1}"},
        {"Sprache / Language:", "Language / Sprache:"},
        {"Deutsch", "English"},
        {"Neues Spiel starten? Der aktuelle Fortschritt geht verloren.",
         "Start a new game? The progress so far will be lost."},
        {"Das Spiel neu starten?", "Start the game again?"},
        {"Das Spiel wirklich beenden?", "Really quit the game?"},
        {"Feld {0} ueberschreiben?", "Overwrite slot {0}?"},
        {"In Feld {0} gespeichert", "Saved in slot {0}"},
        {"Speichern fehlgeschlagen", "Saving failed"},
        {"Spielstand geladen", "Game loaded"},
        {"Laden fehlgeschlagen", "Loading failed"},
        // Pause and end.
        {"PAUSE", "PAUSED"},
        {"Leertaste zum Fortsetzen", "Space to resume"},
        {"ENDE", "THE END"},
        {"Esc: beenden   F5: Menue", "Esc: quit   F5: menu"},
    };
    return table;
}

} // namespace

Language CurrentLanguage() { return s_language; }

void SetLanguage(Language language) { s_language = language; }

void AddEnglish(const std::map<std::string, std::string>& pairs) { English().insert(pairs.begin(), pairs.end()); }

std::string Tr(const std::string& key) {
    if (s_language == Language::German || key.empty()) return key;
    const auto& table = English();
    const auto found = table.find(key);
    if (found != table.end()) return found->second;
    if (s_missing.insert(key).second) std::fprintf(stderr, "[abenteuer] keine Uebersetzung: \"%s\"\n", key.c_str());
    return key;
}

std::string Trf(const std::string& key, const std::vector<std::string>& args) {
    std::string result = Tr(key);
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string placeholder = "{" + std::to_string(i) + "}";
        // Search on behind each insertion, so an argument never meets its own placeholder.
        for (size_t at = result.find(placeholder); at != std::string::npos;
             at = result.find(placeholder, at + args[i].size()))
            result.replace(at, placeholder.size(), args[i]);
    }
    return result;
}

const std::set<std::string>& MissingTranslations() { return s_missing; }

} // namespace adv
