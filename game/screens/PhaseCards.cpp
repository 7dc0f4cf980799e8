// The cards between the phases (briefing, result, defeat with the name field, the
// score list) and the pause, put up by DrawOverlay in a fixed order of priority.
#include "engine/Canvas.h"
#include "engine/Text.h"
#include "game/rules/Lang.h"
#include "game/rules/LevelPack.h"
#include "game/TorvaneApp.h"

#include <cmath>
#include <string>

namespace torvane {
namespace {

constexpr pge::Pixel kDim{8, 10, 14, 168};

std::string Pct(int value) { return std::to_string(value) + " %"; }

// The figures that the result and the defeat have in common, down to the total.
void StatsRows(TorvaneApp::Card& card, const Game& game, bool levelBonus) {
    const RoundStats& s = game.stats;
    card.Row(Tr("Baupunkte"), std::to_string(s.buildScore), kFg);
    card.Row(Tr("Zeitbonus"), std::to_string(s.timeBonus), kFg);
    card.Row(Tr("Lücken bei der Bauabnahme"), std::to_string(s.gapCells), kFg);
    card.Row(Tr("Dadurch eingestürzt"), std::to_string(s.dropped), kFg);
    card.Row(Tr("Reparaturpunkte"), std::to_string(s.repairScore), kFg);
    card.Row(Tr("Gehaltene Treffer"), std::to_string(s.held), kFg);
    card.Row(Tr("Zerstörte Felder"), std::to_string(s.lost), kFg);
    if (levelBonus) card.Row(Tr("Levelbonus"), std::to_string(s.levelBonus), kFg);
    card.Row(Tr("Gesamtpunkte"), std::to_string(game.score), kChestnut);
}

} // namespace

void TorvaneApp::DrawOverlay() {
    const Phase phase = game.phase;
    const bool cardPhase =
        phase == Phase::Title || phase == Phase::Announce || phase == Phase::Eval || phase == Phase::Over;
    if (!editorOpen && !settingsOpen && !paused && !cardPhase) return;
    // Without a title picture the editor stands over the tower view, as the title card does.
    if (editorOpen) DrawEditorBackdrop();
    adv::canvas::FillRect(GetDrawTarget(), 0, 18, 640, 368, kDim);
    if (editorOpen) {
        DrawCardOf(&TorvaneApp::DrawEditorCard, 520, 336);
    } else if (settingsOpen) {
        DrawCardOf(&TorvaneApp::DrawSettingsCard, 440, 0);
    } else if (paused) {
        DrawCardOf(&TorvaneApp::DrawPauseCard, 320, 0);
    } else if (phase == Phase::Title) {
        DrawCardOf(&TorvaneApp::DrawTitleCard, 470, 336);
    } else if (phase == Phase::Announce) {
        DrawCardOf(&TorvaneApp::DrawAnnounceCard, 400, 0);
    } else if (phase == Phase::Eval) {
        DrawCardOf(&TorvaneApp::DrawEvalCard, 420, 0);
    } else if (scoreSaved) {
        DrawCardOf(&TorvaneApp::DrawScoresCard, 380, 0);
    } else {
        DrawCardOf(&TorvaneApp::DrawOverCard, 420, 0);
    }
}

void TorvaneApp::DrawPauseCard(Card& card) {
    card.Title(Tr("Pause"), kChestnut);
    card.Para(Tr("Das Spiel ist angehalten."));
    card.y += 4;
    if (card.draw)
        DrawSwitch(card.x + card.w / 2, card.y, "L", Tr("Sprache / Language:"), Tr("Deutsch"), true,
                   ButtonId::ToggleLanguage);
    card.y += 12;
    card.Button(Tr("Weiter (Esc)"), ButtonId::Resume);
    card.Button(Tr("Einstellungen (S)"), ButtonId::OpenSettings);
    card.Button(Tr("Zurück zum Titel (Q)"), ButtonId::ToTitle);
}

void TorvaneApp::DrawAnnounceCard(Card& card) {
    const RoundStats& s = game.stats;
    const LevelConfig& config = game.config;
    card.Title(Tr("Der Angriff naht"), kChestnut);
    card.Para(Tr("Kanonen werden in Stellung gebracht. Gleich fliegen die ersten Kugeln."));
    card.y += 2;
    card.Row(Tr("Lückenfelder bei der Bauabnahme"), std::to_string(s.gapCells), kFg);
    card.Row(Tr("Dadurch eingestürzt"), std::to_string(s.dropped), kFg);
    bool parts = false;
    if (game.towers.size() >= 2) {
        for (size_t t = 0; t < game.towers.size(); ++t)
            card.Row(Trf("Turm {0}", {std::to_string(t + 1)}), Pct(game.PctAbove(int(t))), kFg);
        parts = true;
    }
    for (size_t i = 0; i < config.sectors.size(); ++i) {
        const std::string from = Tr(config.sectors[i].label);
        const int pct = game.SectorPct(int(i));
        card.Row(i == 0 ? Trf("Zuerst aus {0}", {from}) : Trf("Dann aus {0}", {from}), Pct(pct),
                 pct < config.need ? kDanger : kOk);
        parts = true;
    }
    const int overall = game.OverallPct();
    card.Row(parts ? Tr("Gesamt über der Linie") : Tr("Über der Linie"), Pct(overall),
             overall < config.need ? kDanger : kOk);
    card.Row(Tr("Ziel"), Pct(config.need), kFg);
    card.Row(Tr("Erwartete Kanonenschüsse"), std::to_string(config.shots), kFg);
    card.Row(Tr("Nachschub"),
             Trf("{0}× Einfeld, {1}× Zweifeld", {std::to_string(config.spareOnes), std::to_string(config.spareTwos)}),
             kFg);
    card.y += 4;
    card.Para(Tr("Tipp: Blinkende Teile kannst du schon vor dem Einschlag ersetzen."), kMuted);
    card.Button(Tr("Angriff starten (Space)"), ButtonId::StartAttack);
}

void TorvaneApp::DrawEvalCard(Card& card) {
    card.Title(Tr("Gehalten"), kOk);
    card.Para(HeldText(game));
    card.y += 2;
    StatsRows(card, game, true);
    if (game.LastLevel()) {
        card.y += 4;
        const LevelPack* pack = ActivePack();
        // A name longer than a line is cut before the paragraph is laid out.
        card.Para(Trf("Levelpack „{0}“ geschafft!", {adv::text::Fit(*this, pack ? pack->name : "", card.w - 28)}),
                  kOk);
        card.Button(Tr("Zum Titelbild (Space)"), ButtonId::NextLevel);
    } else {
        card.Button(Trf("Weiter zu Level {0} (Space)", {std::to_string(game.level + 1)}), ButtonId::NextLevel);
    }
}

std::string TorvaneApp::HeldText(const Game& game) {
    const RoundStats& s = game.stats;
    return Trf("Level {0} überstanden mit {1} % über der Linie (Ziel {2} %).",
               {std::to_string(game.level), std::to_string(s.overallPct), std::to_string(game.config.need)}) +
           PartList(s, game.config) +
           (game.LastLevel() ? Tr(" Das war das letzte Level des Levelpacks.")
                             : Tr(" Der nächste Angriff wird härter: weniger Vorwarnung, mehr Schüsse."));
}

void TorvaneApp::DrawOverCard(Card& card) {
    const RoundStats& s = game.stats;
    const std::vector<std::string> args = {std::to_string(s.overallPct), std::to_string(game.config.need)};
    card.Title(Tr("Der Turm ist gefallen"), kDanger);
    const bool parts = s.towerPct.size() > 1 || !s.sectorPct.empty();
    card.Para((parts ? Trf("Insgesamt reichen nur {0} % der Spalten bis zur Defence Line, nötig waren {1} %.", args)
                     : Trf("Nur {0} % der Spalten reichen bis zur Defence Line, nötig waren {1} %.", args)) +
              PartList(s, game.config));
    card.y += 2;
    StatsRows(card, game, false);
    card.y += 6;
    if (!nameEntry) {
        if (card.draw) adv::text::Draw(*this, card.x + 14, card.y, Tr("Bestenliste"), kFg);
        card.y += 13;
        DrawScoreTable(card, -1);
        card.y += 8;
        card.Button(Tr("Zum Titelbild (Space)"), ButtonId::ToTitle);
        return;
    }
    if (card.draw) adv::text::Draw(*this, card.x + 14, card.y, Tr("Eintrag in die Bestenliste"), kFg);
    card.y += 13;
    if (card.draw) {
        pge::Sprite* target = GetDrawTarget();
        const int x = card.x, y = card.y;
        adv::canvas::FillRect(target, x + 14, y, card.w - 28, 16, kBg);
        adv::canvas::StrokeRoundRect(target, float(x + 14), float(y), float(card.w - 28), 16.0f, 2.0f, kSlate, 1.0f);
        // The placeholder stands behind the cursor, which waits where the first letter goes.
        if (playerName.empty()) adv::text::Draw(*this, x + 24, y + 4, Tr("Dein Name"), kMuted);
        adv::text::Draw(*this, x + 20, y + 4, playerName, kFg);
        if (std::fmod(clock, 1.0f) < 0.55f)
            adv::canvas::FillRect(target, x + 21 + adv::text::Width(*this, playerName), y + 3, 1, 10, kFg);
    }
    card.y += 16;
    card.Button(Tr("Eintragen (Enter)"), ButtonId::SaveScore);
}

void TorvaneApp::DrawScoreTable(Card& card, int highlight) {
    if (scores.empty()) {
        card.Para(Tr("Noch keine Einträge. Deiner wird der erste."), kMuted);
        return;
    }
    for (size_t i = 0; i < scores.size(); ++i) {
        if (card.draw) {
            const highscores::Entry& e = scores[i];
            const pge::Pixel colour = int(i) == highlight ? kChestnut : kFg;
            const int x = card.x, y = card.y;
            const std::string level = Trf("Level {0}", {std::to_string(e.level)}), score = std::to_string(e.score);
            // A name too long for the row is cut where "Level" and the score still follow it.
            const int scoreLeft = x + card.w - 14 - adv::text::Width(*this, score);
            const std::string name =
                adv::text::Fit(*this, e.name, scoreLeft - 8 - adv::text::Width(*this, level) - 8 - (x + 36));
            adv::text::Draw(*this, x + 28, y, std::to_string(i + 1) + ".", colour, 1, adv::text::Align::Right);
            adv::text::Draw(*this, x + 36, y, name, colour);
            adv::text::Draw(*this, x + 36 + adv::text::Width(*this, name) + 8, y, level, kMuted);
            adv::text::Draw(*this, x + card.w - 14, y, score, colour, 1, adv::text::Align::Right);
        }
        card.y += 11;
    }
    card.y += 3;
}

void TorvaneApp::DrawScoresCard(Card& card) {
    card.Title(Tr("Bestenliste"), kChestnut);
    DrawScoreTable(card, highlightRow);
    card.y += 8;
    card.Button(Tr("Zum Titelbild (Space)"), ButtonId::ToTitle);
}

void TorvaneApp::DrawTitleScoresCard(Card& card) {
    card.Title(Tr("Bestenliste"), kChestnut);
    DrawScoreTable(card, -1);
    card.y += 8;
    card.Button(Tr("Spiel starten (Space)"), ButtonId::NewGame);
}

} // namespace torvane
