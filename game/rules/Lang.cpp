#include "game/rules/Lang.h"

#include <cstdio>
#include <cstdlib>
#include <map>

namespace torvane {

namespace {

Language s_language = Language::English;
std::set<std::string> s_missing;

// German key to English text, the whole of the game's translated texts.
const std::map<std::string, std::string>& English() {
    static const std::map<std::string, std::string> table = {
        {"Aufbau – der Angriff kommt gleich", "Build – the attack is coming"},
        {"Keine Bauteile mehr – Enter startet den Angriff", "No pieces left – Enter starts the attack"},
        {"Kein Platz mehr in dieser Spalte", "No room left in this column"},
        {"+{0} Reihe!", "+{0} row!"},
        {"Alle Teile verbaut", "All pieces placed"},
        {"Nur ein Turm in diesem Level", "Only one tower in this level"},
        {"Bauabnahme: {0} Feld eingestürzt|Bauabnahme: {0} Felder eingestürzt", "Inspection: {0} block collapsed|Inspection: {0} blocks collapsed"},
        {"Bauabnahme bestanden", "Inspection passed"},
        {"Bauabnahme: sauber gemauert!", "Inspection: solid masonry!"},
        {"Angriff!", "Attack!"},
        {"Angriff von {0}!", "Attack from the {0}!"},
        {"Sofort ersetzt! +150", "Replaced at once! +150"},
        {"Teil zurück", "Piece returned"},
        {"Eingestürzt: {0} Feld|Eingestürzt: {0} Felder", "Collapsed: {0} block|Collapsed: {0} blocks"},
        {"Gerade nichts zu reparieren", "Nothing to repair right now"},
        {"Keine Teile mehr", "No pieces left"},
        {"Turm dreht noch", "Tower still turning"},
        {"Ersatz liegt schon bereit", "Replacement already in place"},
        {"Dieses Teil passt hier nicht", "This piece doesn't fit here"},
        {"Gehalten! +100", "Held! +100"},
        {"Passt hier nicht", "Doesn't fit here"},
        {"Zu spät zum Zurücklegen", "Too late to take it back"},
        {"Das Teil steht nicht mehr", "That piece is gone"},
        {"Zurückgelegt", "Taken back"},
        {"Norden", "North"},
        {"Westen", "West"},
        {"Süden", "South"},
        {"Osten", "East"},
        {"Wüstenpass", "Desert Pass"},
        {"Sandstein", "sandstone"},
        {"Tal am Bergsee", "Mountain Lake Valley"},
        {"Eichenholz", "oak"},
        {"Bergfeste im Schnee", "Snowbound Fortress"},
        {"Granit", "granite"},
        {"Klippen im Sturm", "Stormy Cliffs"},
        {"Feldstein", "fieldstone"},
        {"Vulkanhang", "Volcanic Slope"},
        {"Basalt", "basalt"},
        {"Aufbau", "Build"},
        {"Bauabnahme", "Inspection"},
        {"Angriff naht", "Attack incoming"},
        {"Verteidigung", "Defence"},
        {"Bewertung", "Results"},
        {"Ende", "Game over"},
        {"Level", "Level"},
        {"Phase", "Phase"},
        {"Schüsse", "Shots"},
        {"Zeit", "Time"},
        {"Punkte", "Score"},
        {"Turm", "Tower"},
        {"Linie", "Line"},
        {"{0} % / Ziel {1} %", "{0} % / goal {1} %"},
        {"Ziel {0} %", "Goal {0} %"},
        {"Aufbau beenden", "Finish building"},
        {"↑↓ mehr", "↑↓ more"},
        {"Lädt ...", "Loading ..."},
        {"Joystick in Port 2: Richtungen wie die Pfeiltasten, FB1 = Feuerknopf, FB2 = zweiter Knopf.", "Joystick in port 2: directions like the arrow keys, FB1 = fire button, FB2 = second button."},
        {"{0} % / {1} %", "{0} % / {1} %"},
        {"Joystick am Gameport: Richtungen wie die Pfeiltasten, FB1 = Feuerknopf, FB2 = zweiter Knopf.", "Joystick in the game port: directions like the arrow keys, FB1 = fire button, FB2 = second button."},
        {"Joystick am Joystick-Port: Richtungen wie die Pfeiltasten, FB = Feuerknopf.", "Joystick in the joystick port: directions like the arrow keys, FB = fire button."},
        {"weiter", "resume"},
        {"zurück zum Titel", "back to title"},
        {"bewegen", "move"},
        {"absetzen", "drop"},
        {"einsetzen", "place"},
        {"drehen", "rotate"},
        {"nächstes Teil", "next piece"},
        {"zurücklegen ({0} s)", "take back ({0} s)"},
        {"fertig", "done"},
        {"anderes Ziel", "next target"},
        {"Verteidigungslinie steht!", "Defence complete!"},
        {"Ziele", "next target"},
        {"Turm wechseln", "switch tower"},
        {"Turm drehen", "turn tower"},
        {"Pause", "Pause"},
        {"Space – Spiel starten", "Space – Start game"},
        {"Geschichte · Ablauf · Steuerung · Bestenliste", "Story · How to play · Controls · High scores"},
        {"Geschichte · Ablauf · Steuerung · Credits", "Story · How to play · Controls · Credits"},
        {"Credits", "Credits"},
        {"Das Torvane-Team", "The Torvane team"},
        {"Der Vellmark – ein Spiel des Torvane-Teams", "The Vellmark – a game by the Torvane team"},
        {"Idee & Umsetzung", "Idea & realisation"},
        {"Programmierung", "Programming"},
        {"Grafik", "Graphics"},
        {"Musik", "Music"},
        {"Besonderer Dank an", "Special thanks to"},
        {kCreditProgramming, "C++17, X11 and OpenGL"},
        {kCreditGraphics, "Every picture painted by tools/paint-world"},
        {kCreditMusic, "Sound synthesis, SDL2 and mpg123"},
        {kCreditThanks, "GoogleTest, Google Benchmark and Debian"},
        {"Leveleditor", "Level editor"},
        {"Levelpacks", "Level packs"},
        {"Levelpack", "Level pack"},
        {"Neues Levelpack", "New level pack"},
        {"{0} Level", "{0} level|{0} levels"},
        {"Name", "Name"},
        {"Anzahl Level", "Number of levels"},
        {"Anlegen", "Create"},
        {"anlegen", "create"},
        {"abbrechen", "cancel"},
        {"wählen", "select"},
        {"öffnen", "open"},
        {"spielen", "play"},
        {"zurück", "back"},
        {"ändern", "change"},
        {"bearbeiten", "edit"},
        {"testen", "test"},
        {"löschen", "delete"},
        {"speichern", "save"},
        {"nächstes Level", "next level"},
        {"Level anhängen", "Add level"},
        {"Level gelöscht", "Level deleted"},
        {"Nochmal Del: Level löschen", "Del again: delete level"},
        {"Gespeichert", "Saved"},
        {"Speichern fehlgeschlagen", "Saving failed"},
        {"Bitte einen Namen eingeben", "Please enter a name"},
        {"Hintergrund", "Background"},
        {"Aufbauzeit", "Build time"},
        {"Bauteile", "Pieces"},
        {"Defence Line", "Defence line"},
        {"Reihe {0}", "row {0}"},
        {"{0} Schuss|{0} Schüsse", "{0} shot|{0} shots"},
        {"Abstand der Schüsse", "Time between shots"},
        {"Richtungen", "Directions"},
        {"Reihenfolge", "Order"},
        {"nacheinander, angekündigt", "one after another, announced"},
        {"gemischt", "mixed"},
        {"Ersatz vorab bereitlegen", "Pre-place replacements"},
        {"erlaubt", "allowed"},
        {"nicht erlaubt", "not allowed"},
        {"Levels: {0}", "Levels: {0}"},
        {"Test: Esc führt zurück in den Editor", "Test: Esc returns to the editor"},
        {"AUFBAU", "BUILD"},
        {"VERTEIDIGUNG", "DEFENCE"},
        {"Neuer Turm", "New tower"},
        {"ja (erstes Level)", "yes (first level)"},
        {"ja, neue Ruine", "yes, fresh ruin"},
        {"nein, weiterbauen", "no, keep building"},
        {"Eigene Levels: E öffnet im Titelbild den Leveleditor, P wählt ein Levelpack.", "Your own levels: E on the title screen opens the level editor, P picks a level pack."},
        {"Standard", "Standard"},
        {"{0} von {1}", "{0} of {1}"},
        {"Levelpack „{0}“ geschafft!", "Level pack “{0}” completed!"},
        {"Beenden", "Quit"},
        {"Reparieren:", "Repair:"},
        {"frei", "free"},
        {"automatisch", "automatic"},
        {"Turm dreht bei Angriffen automatisch mit:", "Tower turns towards attacks automatically:"},
        {"an", "on"},
        {"aus", "off"},
        {"Sprache / Language:", "Language / Sprache:"},
        {"Deutsch", "English"},
        {"Der Vellmark", "The Vellmark"},
        {"Geschichte", "Story"},
        {"Ablauf", "How to play"},
        {"Steuerung", "Controls"},
        {"Bestenliste", "High scores"},
        {"Die Grenzfesten des Reiches stehen unter Belagerung. Die Kanonen des Feindes reichen weiter als jeder Bogen, und die Waffenkammern sind leer.", "The border fortresses of the realm are under siege. The enemy's cannons reach farther than any bow, and the armouries are empty."},
        {"Geblieben ist Torvane, der schnellste Soldat der Garnison. Man nennt ihn den Vellmarken, weil er über die Mauern flitzt, als hätte er Flügel. Waffen hat er keine. Nur Steine, Holz und seine Hände.", "What remains is Torvane, the fastest soldier of the garrison. They call him the Vellmark, because he darts across the walls as if he had wings. He has no weapons. Only stones, timber and his own two hands."},
        {"Seine Aufgabe ist einfach und unmöglich zugleich: Die Türme müssen stehen bleiben. Bau sie hoch, bevor der Feind anrückt. Und wenn die Kugeln fliegen, flick jedes Loch, bevor die Mauer über dir zusammenbricht.", "His task is simple and impossible at once: the towers must stand. Build them high before the enemy arrives. And when the cannonballs fly, patch every hole before the wall above you comes crashing down."},
        {"1. Aufbau.", "1. Build."},
        {"Setz die Bauteile aus der Liste über dem Turm in die Mauer. Volle Reihen geben Bonuspunkte. Der Aufbau endet, wenn alle Teile verbaut sind, die Zeit abläuft oder du ihn mit Enter beendest.", "Place the pieces from the list into the wall. Full rows earn bonus points. Building ends when all pieces are placed, time runs out or you finish it with Enter."},
        {"2. Bauabnahme.", "2. Inspection."},
        {"Lücken im Mauerwerk sind rot markiert. Bei der Abnahme stürzt alles ein, was über einer Lücke steht. Sauberes Mauern lohnt sich also.", "Gaps in the masonry are marked red. At inspection, everything standing above a gap collapses. Clean masonry pays off."},
        {"3. Verteidigung.", "3. Defence."},
        {"Blinkende Teile werden gleich getroffen. Weggeschossene Teile kommen zurück in deine Liste, dazu gibt es Ein- und Zweifeldsteine. Du kannst Ersatz schon vor dem Einschlag bereitlegen. Nach einem Treffer bleiben dir drei Sekunden, sonst stürzt alles darüber ein.", "Flashing pieces are about to be hit. Pieces that are shot away return to your list, along with single and double blocks. You can lay out a replacement before the impact. After a hit you have three seconds, otherwise everything above it collapses."},
        {"4. Bewertung.", "4. Results."},
        {"Ein Mindestanteil der angegriffenen Spalten muss bis zur roten Defence Line reichen: 50 % in Level 1, danach 5 Punkte mehr pro Level. Der Turm ist rund - schiebst du ein Teil über den Rand, dreht er sich mit. Ab Level 2 greift der Feind aus weiteren Richtungen an; die Karte links zeigt, woher.", "A minimum share of the attacked columns must reach the red Defence Line: 50 % in level 1, then 5 points more per level. The tower is round - push a piece over the edge and it turns along. From level 2 the enemy attacks from more directions; the map on the left shows where from."},
        {"Ein Mindestanteil aller Spalten muss bis zur roten Defence Line reichen, bei mehreren Türmen zusammengerechnet: 50 % in Level 1, danach 5 Punkte mehr pro Level. Ab Level 2 verteidigst du mehrere Türme mit einer gemeinsamen Teileliste.", "A minimum share of all columns must reach the red Defence Line, added up across towers: 50 % in level 1, then 5 points more per level. From level 2 you defend several towers with a shared piece list."},
        {"AUFBAU UND FREIES REPARIEREN", "BUILD AND FREE REPAIR"},
        {"bewegen, Turm dreht mit", "move, tower turns along"},
        {"bewegen, am Rand: Nachbarturm", "move, at the edge: next tower"},
        {"zurücklegen (bis 5 s danach)", "take back (within 5 s)"},
        {"AUTOMATISCH REPARIEREN", "AUTOMATIC REPAIR"},
        {"einsetzen / bereitlegen", "place / lay out"},
        {"Schwierigkeit, Reparieren, automatisches Drehen und Teile aussuchen stellst du unter Einstellungen (S) ein, die Sprache mit L. Esc hält das Spiel an.", "Set difficulty, repair, automatic turning and piece choice under Settings (S), the language with L. Esc pauses the game."},
        {"Einstellungen", "Settings"},
        {"Einstellungen (S)", "Settings (S)"},
        {"Zurück (Esc)", "Back (Esc)"},
        {"Schwierigkeit:", "Difficulty:"},
        {"Leicht", "Easy"},
        {"Mittel", "Medium"},
        {"Schwer", "Hard"},
        {"Torvane", "Torvane"},
        {"Wie Schwer, aber in der Verteidigung wird einfach weitergebaut, während die Kanonen schießen. Teile frei aus der Liste wählen.", "Like Hard, but during the defence you simply keep building while the cannons fire. Pick any piece from the list."},
        {"Angriffe kommen in Wellen aus je einer Richtung. Jeder Wechsel wird angekündigt, danach bleiben 3 Sekunden Zeit.", "Attacks come in waves from one direction at a time. Every change is announced, then you have 3 seconds."},
        {"Angriffe kommen gemischt aus allen Richtungen des Levels, ohne Ankündigung.", "Attacks come mixed from all directions of the level, without warning."},
        {"Wie Mittel, aber Ersatz lässt sich nicht vor dem Einschlag bereitlegen.", "Like Medium, but you cannot lay out a replacement before the impact."},
        {"Das Teil selbst über die Mauer führen und mit ↓ einsetzen.", "Guide the piece across the wall yourself and place it with ↓."},
        {"Mit ↑ ein Ziel wählen, das Spiel sucht die passende Lage.", "Choose a target with ↑, the game finds the right position."},
        {"Der Turm dreht selbst zum dringendsten Ziel.", "The tower turns to the most urgent target by itself."},
        {"Den Turm mit ← → selbst zum Ziel drehen.", "Turn the tower to the target yourself with ← →."},
        {"Teile beim Aufbau aussuchen:", "Choose pieces while building:"},
        {"Musik:", "Music:"},
        {"Musik und Geräusche.", "Music and sound effects."},
        {"Nur Geräusche, keine Musik.", "Sound effects only, no music."},
        {"Torvane als Hardware-Sprite:", "Torvane as hardware sprite:"},
        {"Grafik:", "Graphics:"},
        {"256 Farben", "256 colours"},
        {"64 Farben", "64 colours"},
        {"Sprite auf 68020/030, gezeichnet ab 68040 (PiStorm).", "Sprite on 68020/030, drawn on 68040 and up (PiStorm)."},
        {"Hardware-Sprite - am schnellsten auf dem A1200.", "Hardware sprite - fastest on the A1200."},
        {"Torvane wird ins Bild gezeichnet.", "Torvane is drawn into the picture."},
        {"Mit Tab ein anderes Teil aus der Liste nehmen.", "Take a different piece from the list with Tab."},
        {"Die Teile kommen in fester Reihenfolge.", "Pieces come in a fixed order."},
        {"Teile aussuchen ist ausgeschaltet", "Choosing pieces is switched off"},
        {"Angriffe kommen aus {0}!", "Attacks are coming from the {0}!"},
        {"Angriffe kommen jetzt aus {0}!", "Attacks now come from the {0}!"},
        {"Spiel starten (Space)", "Start game (Space)"},
        {"← → blättern · Esc zurück", "← → browse · Esc back"},
        {"← → blättern", "← → browse"},
        {"Der Angriff naht", "The attack is coming"},
        {"Kanonen werden in Stellung gebracht. Gleich fliegen die ersten Kugeln.", "Cannons are being moved into position. The first shots are about to fly."},
        {"Lückenfelder bei der Bauabnahme", "Gaps at inspection"},
        {"Dadurch eingestürzt", "Collapsed as a result"},
        {"Turm {0}", "Tower {0}"},
        {"Zuerst aus {0}", "First from the {0}"},
        {"Dann aus {0}", "Then from the {0}"},
        {"Gesamt über der Linie", "Total above the line"},
        {"Über der Linie", "Above the line"},
        {"Ziel", "Goal"},
        {"Erwartete Kanonenschüsse", "Expected cannon shots"},
        {"Nachschub", "Supplies"},
        {"{0}× Einfeld, {1}× Zweifeld", "{0}× single, {1}× double"},
        {"Tipp: Blinkende Teile kannst du schon vor dem Einschlag ersetzen.", "Tip: you can replace flashing pieces before they are hit."},
        {"Angriff starten (Space)", "Start attack (Space)"},
        {" Stand je Richtung: ", " By direction: "},
        {" Stand je Turm: ", " By tower: "},
        {"Gehalten", "Held"},
        {"Level {0} überstanden mit {1} % über der Linie (Ziel {2} %).", "Level {0} survived with {1} % above the line (goal {2} %)."},
        {" Der nächste Angriff wird härter: weniger Vorwarnung, mehr Schüsse.", " The next attack will be harder: less warning, more shots."},
        {" Das war das letzte Level des Levelpacks.", " That was the last level of the level pack."},
        {"Baupunkte", "Build points"},
        {"Zeitbonus", "Time bonus"},
        {"Lücken bei der Bauabnahme", "Gaps at inspection"},
        {"Reparaturpunkte", "Repair points"},
        {"Gehaltene Treffer", "Hits held"},
        {"Zerstörte Felder", "Blocks destroyed"},
        {"Levelbonus", "Level bonus"},
        {"Gesamtpunkte", "Total score"},
        {"Weiter zu Level {0} (Space)", "On to level {0} (Space)"},
        {"Der Turm ist gefallen", "The tower has fallen"},
        {"Insgesamt reichen nur {0} % der Spalten bis zur Defence Line, nötig waren {1} %.", "In total only {0} % of the columns reach the Defence Line, {1} % were needed."},
        {"Nur {0} % der Spalten reichen bis zur Defence Line, nötig waren {1} %.", "Only {0} % of the columns reach the Defence Line, {1} % were needed."},
        {"Eintrag in die Bestenliste", "Enter the high score list"},
        {"Dein Name", "Your name"},
        {"Eintragen (Enter)", "Save (Enter)"},
        {"Zum Titelbild (Space)", "To title screen (Space)"},
        {"Noch keine Einträge. Deiner wird der erste.", "No entries yet. Yours will be the first."},
        {"Level {0}", "Level {0}"},
        {"Das Spiel ist angehalten.", "The game is paused."},
        {"Weiter (Esc)", "Resume (Esc)"},
        {"Zurück zum Titel (Q)", "Back to title (Q)"},
        {"Turm {0}: {1} %", "Tower {0}: {1} %"},
        {"Nach Abnahme {0} %", "After inspection {0} %"},
        {"{0} %", "{0} %"},
        {"Nach Abnahme {0} % / Ziel {1} %", "After inspection {0} % / goal {1} %"},
        {"Gesamt {0} % / Ziel {1} %", "Total {0} % / goal {1} %"},
        {"✓ Ersatz bereit", "✓ replacement ready"},
        {"✓ teilweise bereit", "✓ partly ready"},
        {"passt nicht", "doesn't fit"},
        {"Alle Teile", "All pieces"},
        {"verbaut", "placed"},
        {"Keine Teile", "No pieces"},
        {"mehr", "left"},
        {"{0} Sp", "{0} col|{0} cols"},
    };
    return table;
}

} // namespace

Language CurrentLanguage() { return s_language; }

void SetLanguage(Language language) { s_language = language; }

std::string Tr(const std::string& key) {
    if (s_language == Language::German) return key;
    const auto& table = English();
    const auto found = table.find(key);
    if (found != table.end()) return found->second;
    if (s_missing.insert(key).second)
        std::fprintf(stderr, "[torvane] keine Uebersetzung: \"%s\"\n", key.c_str());
    return key;
}

namespace {

// {0}, {1}, ... in text replaced by the arguments in turn.
std::string Fill(std::string result, const std::vector<std::string>& args) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string placeholder = "{" + std::to_string(i) + "}";
        // Search on behind each insertion, so an argument never meets its own placeholder.
        for (size_t at = result.find(placeholder); at != std::string::npos;
             at = result.find(placeholder, at + args[i].size())) {
            result.replace(at, placeholder.size(), args[i]);
        }
    }
    return result;
}

} // namespace

std::string Trf(const std::string& key, const std::vector<std::string>& args) { return Fill(Tr(key), args); }

std::string Trn(const std::string& key, long long count) {
    const std::string forms = Tr(key);
    const size_t bar = forms.find('|');
    const std::string form =
        bar == std::string::npos ? forms : count == 1 ? forms.substr(0, bar) : forms.substr(bar + 1);
    return Fill(form, {std::to_string(count)});
}

std::string Decimal(float value) {
    // The tenfold in single precision, as the value is held, so 0.35 shows as 0.4.
    const double scaled = static_cast<double>(value * 10.0f);
    const long long n = value >= 0.0f ? static_cast<long long>(scaled + 0.5)
                                      : static_cast<long long>(scaled - 0.5);
    const long long a = std::llabs(n);
    const char* separator = s_language == Language::German ? "," : ".";
    return (n < 0 ? "-" : "") + std::to_string(a / 10) + separator + std::to_string(a % 10);
}

char DirectionLetter(char letter) {
    return letter == 'O' && s_language == Language::English ? 'E' : letter;
}

const std::set<std::string>& MissingTranslations() { return s_missing; }

} // namespace torvane
