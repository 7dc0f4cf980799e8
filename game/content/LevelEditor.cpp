#include "game/content/LevelEditor.h"

#include "game/content/PackFormat.h"
#include "game/rules/Lang.h"

#include <algorithm>
#include <array>

namespace torvane {

namespace {

constexpr int kMaxLevels = 30;
constexpr size_t kPackNameLimit = 24;
constexpr size_t kLevelNameLimit = 20;
constexpr int kLevelRows = 12;

// In the order of a level's `background` field, as keys of the language table.
constexpr std::array<const char*, 5> kBackgrounds = {"Wüstenpass", "Tal am Bergsee", "Bergfeste im Schnee",
                                                     "Klippen im Sturm", "Vulkanhang"};

// The order in which left and right step through the sets of directions.
constexpr std::array<const char*, 15> kDirections = {"N",  "S",  "O",  "W",   "NS",  "OW",  "NO",  "NW",
                                                     "SO", "SW", "NSO", "NSW", "NOW", "SOW", "NSOW"};

std::string BackgroundName(int32_t background) {
    return Tr(kBackgrounds[static_cast<size_t>(std::clamp(background, 1, 5) - 1)]);
}

std::string Tenths(int32_t tenths) { return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10); }

// The index in kDirections of the same set of letters, or -1.
int DirectionIndex(const std::string& directions) {
    for (size_t i = 0; i < kDirections.size(); ++i) {
        const std::string entry = kDirections[i];
        if (entry.size() == directions.size() &&
            std::all_of(directions.begin(), directions.end(),
                        [&](char c) { return entry.find(c) != std::string::npos; }))
            return static_cast<int>(i);
    }
    return -1;
}

// A text field shows a cursor while it is being typed in.
std::string Field(const std::string& text, bool typing) { return typing ? text + "_" : text; }

} // namespace

std::string ShowDirections(const std::string& directions) {
    std::string out;
    for (char c : directions) {
        if (!out.empty()) out += " · ";
        out += DirectionLetter(c);
    }
    return out;
}

void LevelEditor::Open(const PackStorage& store) {
    storage = store;
    message.clear();
    confirmDelete = false;
    RefreshList();
    // A return from a test finds the page it left, as far as there is still something on it.
    if (page == 1 || ((page == 2 || page == 3) && pack.levels.empty())) page = 0;
    if (page == 3) level = std::clamp(level, 0, static_cast<int32_t>(pack.levels.size()) - 1);
    row = std::clamp(row, 0, RowCount() - 1);
}

bool LevelEditor::Typing() const { return page >= 1 && page <= 3 && row == 0; }

int LevelEditor::RowCount() const {
    const int levels = static_cast<int>(pack.levels.size());
    switch (page) {
    case 0: return static_cast<int>(packs.size()) + 1;
    case 1: return 3;
    case 2: return levels + 1 + (levels < kMaxLevels ? 1 : 0);
    default: return kLevelRows;
    }
}

void LevelEditor::RefreshList() { packs = LoadPacks(storage); }

bool LevelEditor::Save() {
    const bool ok = storage.write && storage.write(pack.file, SerialisePack(pack));
    Tell(Tr(ok ? "Gespeichert" : "Speichern fehlgeschlagen"), !ok);
    return ok;
}

void LevelEditor::Tell(const std::string& text, bool warns) {
    message = text;
    warning = warns;
}

int LevelEditor::Handle(Key key) {
    if (key != Key::Del) confirmDelete = false;
    if (key == Key::Up || key == Key::Down) {
        const int n = RowCount();
        row = ((row + (key == Key::Up ? -1 : 1)) % n + n) % n;
        return kStay;
    }
    message.clear();
    switch (page) {
    case 0: return HandleList(key);
    case 1: HandleNewPack(key); return kStay;
    case 2: return HandlePack(key);
    case 3: return HandleLevel(key);
    default: return kStay;
    }
}

int LevelEditor::HandleList(Key key) {
    if (key == Key::Esc) return kLeave;
    const bool onPack = row >= 1 && row <= static_cast<int>(packs.size());
    if (key == Key::Enter && row == 0) {
        page = 1;
        row = 0;
        newName.clear();
        newCount = 5;
    } else if ((key == Key::Enter || key == Key::T) && onPack) {
        pack = packs[static_cast<size_t>(row - 1)];
        level = 0;
        if (key == Key::T) return kTest;
        page = 2;
        row = 1;
    }
    return kStay;
}

void LevelEditor::HandleNewPack(Key key) {
    if (key == Key::Esc) {
        page = 0;
        row = 0;
    } else if (key == Key::Del && row == 0) {
        PopChar(newName);
    } else if ((key == Key::Left || key == Key::Right) && row == 1) {
        newCount = std::clamp(newCount + (key == Key::Left ? -1 : 1), 1, kMaxLevels);
    } else if (key == Key::Enter) {
        if (newName.empty()) {
            Tell(Tr("Bitte einen Namen eingeben"), true);
            row = 0;
        } else {
            CreatePack();
        }
    }
}

void LevelEditor::CreatePack() {
    pack = LevelPack{};
    pack.name = newName;
    // Only the listed packs count: a file that did not parse may be overwritten.
    const std::string first = PackFileName(newName);
    const std::string base = first.substr(0, first.size() - 6);
    pack.file = first;
    for (int counter = 2; std::any_of(packs.begin(), packs.end(), [&](const LevelPack& p) { return p.file == pack.file; });
         ++counter)
        pack.file = base + "_" + std::to_string(counter) + ".tpack";
    for (int i = 1; i <= newCount; ++i) pack.levels.push_back(DefaultPackLevel(i));
    Save();
    RefreshList();
    page = 2;
    row = 1;
}

int LevelEditor::HandlePack(Key key) {
    const int n = static_cast<int>(pack.levels.size());
    const bool onLevel = row >= 1 && row <= n;
    switch (key) {
    case Key::Esc: {
        // The only way off this page, so a pack is never left unsaved.
        Save();
        RefreshList();
        page = 0;
        row = 0;
        for (size_t i = 0; i < packs.size(); ++i)
            if (packs[i].file == pack.file) row = static_cast<int32_t>(i) + 1;
        return kStay;
    }
    case Key::T:
        level = onLevel ? row - 1 : 0;
        if (pack.name.empty()) pack.name = "Levelpack";
        Save();
        return kTest;
    case Key::Enter:
        if (onLevel) {
            level = row - 1;
            page = 3;
            row = 0;
        } else if (row == n + 1 && n < kMaxLevels) {
            pack.levels.push_back(DefaultPackLevel(n + 1));
        }
        return kStay;
    case Key::Del:
        if (row == 0) {
            PopChar(pack.name);
        } else if (onLevel && n >= 2) {
            if (!confirmDelete) {
                confirmDelete = true;
                Tell(Tr("Nochmal Del: Level löschen"), true);
            } else {
                pack.levels.erase(pack.levels.begin() + (row - 1));
                confirmDelete = false;
                Tell(Tr("Level gelöscht"), false);
                row = std::min(row, n - 1);
            }
        }
        return kStay;
    default: return kStay;
    }
}

int LevelEditor::HandleLevel(Key key) {
    const int n = static_cast<int>(pack.levels.size());
    switch (key) {
    case Key::Esc:
        page = 2;
        row = level + 1;
        return kStay;
    case Key::Del:
        if (row == 0) PopChar(pack.levels[static_cast<size_t>(level)].name);
        return kStay;
    case Key::Left:
    case Key::Right: ChangeField(row, key == Key::Left ? -1 : 1); return kStay;
    case Key::Enter:
        // The same field, one level on: one value can be compared down the levels.
        if (level + 1 < n) {
            ++level;
        } else {
            page = 2;
            row = level + 1;
        }
        return kStay;
    case Key::T: Save(); return kTest;
    default: return kStay;
    }
}

void LevelEditor::Type(const std::string& text) {
    if (!Typing()) return;
    std::string* target = &newName;
    size_t limit = kPackNameLimit;
    if (page == 2) {
        target = &pack.name;
    } else if (page == 3) {
        if (level < 0 || level >= static_cast<int>(pack.levels.size())) return;
        target = &pack.levels[static_cast<size_t>(level)].name;
        limit = kLevelNameLimit;
    }
    for (char c : text) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte < 32 || byte == 127) continue;
        // A continuation byte always belongs to the character before it.
        if (!IsContinuation(c) && CodePoints(*target) >= limit) continue;
        *target += c;
    }
}

void LevelEditor::ChangeField(int field, int delta) {
    if (level < 0 || level >= static_cast<int>(pack.levels.size())) return;
    PackLevel& l = pack.levels[static_cast<size_t>(level)];
    switch (field) {
    case 1: l.background = ((l.background - 1 + delta) % 5 + 5) % 5 + 1; break;
    case 2: l.build += 5 * delta; break;
    case 3: l.pieces += delta; break;
    case 4: l.line += delta; break;
    case 5:
        // The first level always starts from a fresh ruin.
        if (level > 0) l.newTower = !l.newTower;
        break;
    case 6: l.shots += delta; break;
    case 7: l.interval += 5 * delta; break;
    case 8: {
        const int i = DirectionIndex(l.directions);
        l.directions = i < 0 ? "N" : kDirections[static_cast<size_t>((i + delta % 15 + 15) % 15)];
        break;
    }
    case 9: l.waves = !l.waves; break;
    case 10: l.prep = !l.prep; break;
    case 11: l.need += 5 * delta; break;
    default: break;
    }
    Clamp(l);
}

LevelEditor::View LevelEditor::GetView() const {
    View view;
    view.message = message;
    view.warning = warning;
    const auto addRow = [&](const std::string& label, const std::string& value, bool changeable = false,
                            const std::string& heading = {}) {
        const bool selected = static_cast<int32_t>(view.rows.size()) == row;
        view.rows.push_back({label, value, selected, changeable, heading});
    };
    const bool typing = Typing();
    if (page == 0) {
        view.title = Tr("Leveleditor");
        view.subtitle = Tr("Levelpacks");
        addRow("+ " + Tr("Neues Levelpack"), "");
        for (const LevelPack& p : packs) addRow(p.name, Trn("{0} Level", static_cast<long long>(p.levels.size())));
        view.hints = {{"↑↓", Tr("wählen")}, {"Enter", Tr("öffnen")}, {"T", Tr("spielen")}, {"Esc", Tr("zurück")}};
    } else if (page == 1) {
        view.title = Tr("Neues Levelpack");
        addRow(Tr("Name"), Field(newName, typing));
        addRow(Tr("Anzahl Level"), std::to_string(newCount), true);
        addRow(Tr("Anlegen"), "");
        view.hints = {{"↑↓", Tr("wählen")}, {"← →", Tr("ändern")}, {"Enter", Tr("anlegen")}, {"Esc", Tr("abbrechen")}};
    } else if (page == 2) {
        view.title = Tr("Levelpack");
        view.subtitle = pack.file;
        addRow(Tr("Name"), Field(pack.name, typing));
        for (size_t i = 0; i < pack.levels.size(); ++i) {
            const PackLevel& l = pack.levels[i];
            addRow(Trf("Level {0}", {std::to_string(i + 1)}),
                   (l.name.empty() ? BackgroundName(l.background) : l.name) + " · " + ShowDirections(l.directions) +
                       " · " + Trn("{0} Schuss|{0} Schüsse", l.shots));
        }
        if (pack.levels.size() < kMaxLevels) addRow("+ " + Tr("Level anhängen"), "");
        if (row >= 1 && row <= static_cast<int>(pack.levels.size()))
            view.background = pack.levels[static_cast<size_t>(row - 1)].background - 1;
        view.hints = {{"Enter", Tr("bearbeiten")}, {"T", Tr("testen")}, {"Del", Tr("löschen")}, {"Esc", Tr("speichern")}};
    } else if (level >= 0 && level < static_cast<int>(pack.levels.size())) {
        const PackLevel& l = pack.levels[static_cast<size_t>(level)];
        const bool first = level == 0;
        view.title = Trf("Level {0}", {std::to_string(level + 1)});
        view.subtitle = pack.name;
        view.background = l.background - 1;
        addRow(Tr("Name"), typing ? Field(l.name, true) : (l.name.empty() ? BackgroundName(l.background) : l.name));
        addRow(Tr("Hintergrund"), BackgroundName(l.background), true);
        addRow(Tr("Aufbauzeit"), std::to_string(l.build) + " s", true, Tr("AUFBAU"));
        addRow(Tr("Bauteile"), std::to_string(l.pieces), true);
        addRow(Tr("Defence Line"), Trf("Reihe {0}", {std::to_string(l.line)}), true);
        addRow(Tr("Neuer Turm"),
               first ? Tr("ja (erstes Level)") : Tr(l.newTower ? "ja, neue Ruine" : "nein, weiterbauen"), !first);
        addRow(Tr("Schüsse"), std::to_string(l.shots), true, Tr("VERTEIDIGUNG"));
        addRow(Tr("Abstand der Schüsse"), Tenths(l.interval) + " s", true);
        addRow(Tr("Richtungen"), ShowDirections(l.directions), true);
        addRow(Tr("Reihenfolge"), Tr(l.waves ? "nacheinander, angekündigt" : "gemischt"), true);
        addRow(Tr("Ersatz vorab bereitlegen"), Tr(l.prep ? "erlaubt" : "nicht erlaubt"), true);
        addRow(Tr("Ziel"), std::to_string(l.need) + " %", true);
        view.hints = {{"↑↓", Tr("wählen")}, {"← →", Tr("ändern")}, {"Enter", Tr("nächstes Level")},
                      {"T", Tr("testen")}, {"Esc", Tr("zurück")}};
    }
    return view;
}

} // namespace torvane
