// The title screen: the picture with its foot of key hints, or one of the cards over
// it; and the title card with its four pages, which also stands alone over the tower
// view when there is no title picture.
#include "engine/Canvas.h"
#include "engine/Text.h"
#include "game/rules/Lang.h"
#include "game/rules/Level.h"
#include "game/TorvaneApp.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace torvane {
namespace {

constexpr pge::Pixel kShade{8, 10, 14};
constexpr pge::Pixel kGlowFill{255, 200, 96};
constexpr pge::Pixel kGlowOutline{40, 16, 6};
constexpr pge::Pixel kVersionText{255, 236, 200};
constexpr const char* kVersion = "V 1.4";
constexpr const char* kTabs[] = {"Geschichte", "Ablauf", "Steuerung", "Credits"};
// Gap between the key hints of a row of the foot.
constexpr int kHintGap = 20;
// The least room left and right of a row of key hints on the title foot.
constexpr int kFootMargin = 8;

pge::Pixel Shade(int alpha) { return pge::Pixel(kShade.r, kShade.g, kShade.b, uint8_t(alpha)); }

} // namespace

void TorvaneApp::DrawCardOf(void (TorvaneApp::*content)(Card&), int width, int minHeight) {
    DrawCard([this, content](Card& card) { (this->*content)(card); }, width, minHeight);
}

void TorvaneApp::DrawTitleScreen() {
    pge::Sprite* target = GetDrawTarget();
    std::copy(titleImage->pColData.begin(), titleImage->pColData.end(), target->pColData.begin());
    if (editorOpen) DrawEditorBackdrop();
    struct Choice {
        bool when;
        int alpha;
        void (TorvaneApp::*content)(Card&);
        int width, minHeight;
    };
    for (const Choice& c : {Choice{!replayError.what.empty(), 170, &TorvaneApp::DrawReplayErrorCard, 420, 0},
                            Choice{editorOpen, 170, &TorvaneApp::DrawEditorCard, 520, 336},
                            Choice{settingsOpen, 150, &TorvaneApp::DrawSettingsCard, 440, 0},
                            Choice{titlePage >= 0, 150, &TorvaneApp::DrawTitleCard, 470, 336},
                            Choice{attractScores, 215, &TorvaneApp::DrawTitleScoresCard, 520, 336}}) {
        if (!c.when) continue;
        adv::canvas::FillRect(target, 0, 0, 640, 400, Shade(c.alpha));
        DrawCardOf(c.content, c.width, c.minHeight);
        return;
    }
    DrawTitleFoot();
}

void TorvaneApp::DrawTitleFoot() {
    pge::Sprite* target = GetDrawTarget();
    adv::canvas::VerticalGradient(target, 0, 304, 640, 24, Shade(0), Shade(170));
    adv::canvas::FillRect(target, 0, 328, 640, 72, Shade(170));
    if (std::fmod(clock, 1.2f) < 0.8f)
        adv::text::DrawOutlined(*this, 320, 336, WithShownKeys(Tr("Space – Spiel starten")), kGlowFill,
                                kGlowOutline, 2, adv::text::Align::Centre);

    // Row one: the pages, the settings, the way out.
    const std::vector<std::pair<std::string, std::string>> first = {
        {"← →", Tr("Geschichte · Ablauf · Steuerung · Credits")}, {"S", Tr("Einstellungen")}, {"Esc", Tr("Beenden")}};
    int total = kHintGap * int(first.size() - 1);
    for (const auto& [key, label] : first) total += KeyHintWidth(key, label);
    int x = 320 - total / 2;
    const ButtonId firstIds[] = {ButtonId::TitlePage, ButtonId::OpenSettings};
    for (size_t i = 0; i < first.size(); ++i) {
        const int width = DrawKeyHint(x, 359, first[i].first, first[i].second);
        if (i < 2) buttons.push_back({x - 4, 355, width + 8, 15, firstIds[i], 0});
        x += width + kHintGap;
    }
    // Over the blinking line, lit or not.
    buttons.push_back({210, 332, 220, 22, ButtonId::NewGame, 0});

    // Row two: the language, the level pack, the editor.
    const std::string language = Tr("Sprache / Language:"), german = Tr("Deutsch"), editor = Tr("Leveleditor");
    const int switchWidth = SwitchWidth("L", language, german);
    // A pack's name takes what room the row leaves on the screen, and is cut there.
    const std::string pack =
        adv::text::Fit(*this, PackLabel(),
                       640 - 2 * kFootMargin - switchWidth - KeyHintWidth("P", "") - KeyHintWidth("E", editor) -
                           2 * kHintGap);
    total = switchWidth + KeyHintWidth("P", pack) + KeyHintWidth("E", editor) + 2 * kHintGap;
    x = 320 - total / 2;
    DrawSwitch(x + switchWidth / 2, 373, "L", language, german, true, ButtonId::ToggleLanguage);
    x += switchWidth + kHintGap;
    for (const auto& [key, label, id] : {std::tuple{"P", pack, ButtonId::NextPack},
                                         std::tuple{"E", editor, ButtonId::OpenEditor}}) {
        const int width = DrawKeyHint(x, 373, key, label);
        buttons.push_back({x - 4, 369, width + 8, 15, id, 0});
        x += width + kHintGap;
    }

    adv::text::Draw(*this, 320, 389, Tr("Der Vellmark – ein Spiel des Torvane-Teams"), kMuted, 1,
                    adv::text::Align::Centre);
    const int tag = adv::text::Width(*this, kVersion) + 12;
    adv::canvas::FillRoundRect(target, float(632 - tag), 8.0f, float(tag), 16.0f, 4.0f, Shade(190));
    adv::text::Draw(*this, 626, 12, kVersion, kVersionText, 1, adv::text::Align::Right);
}

void TorvaneApp::DrawTitleCard(Card& card) {
    const std::string name = Tr("Torvane");
    if (card.draw) adv::text::Draw(*this, card.x + 14, card.y, name, kChestnut, 3);
    card.y += 29;
    if (card.draw)
        adv::text::Draw(*this, card.x + 14 + adv::text::Width(*this, name, 3) + 10, card.y - 15, Tr("Der Vellmark"),
                        kSlate);

    if (card.draw) {
        int x = card.x + 14;
        for (int i = 0; i < 4; ++i) {
            const std::string tab = Tr(kTabs[i]);
            const int width = adv::text::Width(*this, tab);
            adv::text::Draw(*this, x, card.y, tab, i == titlePage ? kFg : kMuted);
            if (i == titlePage) adv::canvas::FillRect(GetDrawTarget(), x, card.y + 10, width, 2, kChestnut);
            buttons.push_back({x - 4, card.y - 3, width + 8, 16, ButtonId::TitlePage, i});
            x += width + 16;
        }
    }
    card.y += 14;
    if (card.draw) adv::canvas::FillRect(GetDrawTarget(), card.x + 14, card.y, card.w - 28, 1, kLine);
    card.y += 8;

    switch (titlePage) {
    case 0: DrawStoryPage(card); break;
    case 1: DrawFlowPage(card); break;
    case 2: DrawControlsPage(card); break;
    case 3: DrawCreditsPage(card); break;
    default: break; // a page number from the command line that no page has
    }

    // The button stays in place from page to page.
    card.y = std::max(card.y, card.top + 298);
    card.Button(Tr("Spiel starten (Space)"), ButtonId::NewGame);
    if (card.draw)
        adv::text::Draw(*this, card.x + card.w - 14, card.y - 12,
                        WithShownKeys(titleImage ? Tr("← → blättern · Esc zurück") : Tr("← → blättern")), kMuted,
                        1, adv::text::Align::Right);
}

void TorvaneApp::DrawStoryPage(Card& card) {
    card.Story(Tr("Die Grenzfesten des Reiches stehen unter Belagerung. Die Kanonen des Feindes reichen weiter als jeder Bogen, und die Waffenkammern sind leer."));
    card.y += 8;
    card.Story(Tr("Geblieben ist Torvane, der schnellste Soldat der Garnison. Man nennt ihn den Vellmarken, weil er über die Mauern flitzt, als hätte er Flügel. Waffen hat er keine. Nur Steine, Holz und seine Hände."));
    card.y += 8;
    card.Story(Tr("Seine Aufgabe ist einfach und unmöglich zugleich: Die Türme müssen stehen bleiben. Bau sie hoch, bevor der Feind anrückt. Und wenn die Kugeln fliegen, flick jedes Loch, bevor die Mauer über dir zusammenbricht."));
}

void TorvaneApp::DrawFlowPage(Card& card) {
    const bool classic = GetSettings().classic != 0;
    const std::pair<std::string, std::string> steps[] = {
        {Tr("1. Aufbau."),
         Tr("Setz die Bauteile aus der Liste über dem Turm in die Mauer. Volle Reihen geben Bonuspunkte. Der Aufbau endet, wenn alle Teile verbaut sind, die Zeit abläuft oder du ihn mit Enter beendest.")},
        {Tr("2. Bauabnahme."), Tr("Lücken im Mauerwerk sind rot markiert. Bei der Abnahme stürzt alles ein, was über einer Lücke steht. Sauberes Mauern lohnt sich also.")},
        {Tr("3. Verteidigung."),
         Tr("Blinkende Teile werden gleich getroffen. Weggeschossene Teile kommen zurück in deine Liste, dazu gibt es Ein- und Zweifeldsteine. Du kannst Ersatz schon vor dem Einschlag bereitlegen. Nach einem Treffer bleiben dir drei Sekunden, sonst stürzt alles darüber ein.")},
        {Tr("4. Bewertung."),
         classic ? Tr("Ein Mindestanteil aller Spalten muss bis zur roten Defence Line reichen, bei mehreren Türmen zusammengerechnet: 50 % in Level 1, danach 5 Punkte mehr pro Level. Ab Level 2 verteidigst du mehrere Türme mit einer gemeinsamen Teileliste.")
                 : Tr("Ein Mindestanteil der angegriffenen Spalten muss bis zur roten Defence Line reichen: 50 % in Level 1, danach 5 Punkte mehr pro Level. Der Turm ist rund - schiebst du ein Teil über den Rand, dreht er sich mit. Ab Level 2 greift der Feind aus weiteren Richtungen an; die Karte links zeigt, woher.")},
    };
    for (size_t i = 0; i < std::size(steps); ++i) {
        if (i > 0) card.y += 8;
        card.Para(steps[i].second, kFg, steps[i].first, kChestnut);
    }
}

void TorvaneApp::DrawControlsPage(Card& card) {
    const bool classic = GetSettings().classic != 0;
    using Rows = std::vector<std::pair<std::string, std::string>>;
    const Rows left = {{"← →", classic ? Tr("bewegen, am Rand: Nachbarturm") : Tr("bewegen, Turm dreht mit")},
                       {"↓", Tr("absetzen")},
                       {"↑", Tr("zurücklegen (bis 5 s danach)")},
                       {"Space", Tr("drehen")},
                       {"Tab", Tr("nächstes Teil")},
                       {"Enter", Tr("Aufbau beenden")}};
    const Rows right = {{"← →", classic ? Tr("Turm wechseln") : Tr("Turm drehen")},
                        {"↑", Tr("anderes Ziel")},
                        {"↓ Space Enter", Tr("einsetzen / bereitlegen")},
                        {"Tab", Tr("nächstes Teil")}};
    auto column = [&](int x, const std::string& heading, const Rows& rows) {
        if (!card.draw) return;
        adv::text::Draw(*this, x, card.y, heading, kChestnut);
        int keys = 0;
        for (const auto& row : rows) keys = std::max(keys, adv::text::Width(*this, row.first));
        int y = card.y + 14;
        for (const auto& [key, meaning] : rows) {
            adv::text::Draw(*this, x, y, key, kFg);
            adv::text::Draw(*this, x + keys + 8, y, meaning, kMuted);
            y += 12;
        }
    };
    column(card.x + 14, Tr("AUFBAU UND FREIES REPARIEREN"), left);
    column(card.x + 14 + (card.w - 28) / 2, Tr("AUTOMATISCH REPARIEREN"), right);
    card.y += 14 + 12 * int(std::max(left.size(), right.size())) + 8;
    card.Para(Tr("Schwierigkeit, Reparieren, automatisches Drehen und Teile aussuchen stellst du unter Einstellungen (S) ein, die Sprache mit L. Esc hält das Spiel an."),
              kMuted);
    card.Para(Tr("Eigene Levels: E öffnet im Titelbild den Leveleditor, P wählt ein Levelpack."), kMuted);
}

void TorvaneApp::DrawCreditsPage(Card& card) {
    const std::pair<std::string, std::string> rows[] = {{Tr("Idee & Umsetzung"), Tr("Das Torvane-Team")},
                                                        {Tr("Programmierung"), Tr(kCreditProgramming)},
                                                        {Tr("Grafik"), Tr(kCreditGraphics)},
                                                        {Tr("Musik"), Tr(kCreditMusic)}};
    int roles = 0;
    for (const auto& row : rows) roles = std::max(roles, adv::text::Width(*this, row.first));
    for (const auto& [role, persons] : rows) {
        if (card.draw) {
            adv::text::Draw(*this, card.x + 14, card.y, role, kChestnut);
            adv::text::Draw(*this, card.x + 14 + roles + 14, card.y, persons, kFg);
        }
        card.y += 17;
    }
    if (card.draw) {
        adv::text::Draw(*this, card.x + 14, card.y + 10, Tr("Besonderer Dank an"), kChestnut);
        adv::text::Draw(*this, card.x + 14, card.y + 25, Tr(kCreditThanks), kFg);
    }
    card.y += 36;
}

} // namespace torvane
