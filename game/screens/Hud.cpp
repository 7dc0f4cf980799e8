// The strips around the stage: the HUD line at the top, the wave banner across the
// middle, and the help bar at the foot with the keys of this moment.
#include "engine/Canvas.h"
#include "engine/Text.h"
#include "game/rules/Lang.h"
#include "game/rules/Level.h"
#include "game/rules/LevelPack.h"
#include "game/stage/Theme.h"
#include "game/TorvaneApp.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace torvane {
namespace {

constexpr pge::Pixel kBannerBack{8, 10, 14};
constexpr pge::Pixel kBannerFill{255, 200, 96};
constexpr pge::Pixel kBannerOutline{40, 16, 6};
// The help bar's hints end before this x.
constexpr int kHelpRight = 632;

std::string PhaseWord(Phase phase) {
    switch (phase) {
    case Phase::Title: return "–";
    case Phase::Build: return Tr("Aufbau");
    case Phase::Inspect: return Tr("Bauabnahme");
    case Phase::Announce: return Tr("Angriff naht");
    case Phase::Attack: return Tr("Verteidigung");
    case Phase::Eval: return Tr("Bewertung");
    case Phase::Over: return Tr("Ende");
    }
    return "–";
}

std::string Seconds(float seconds) { return std::to_string(int(std::ceil(std::max(seconds, 0.0f)))); }

} // namespace

void TorvaneApp::DrawHud() {
    pge::Sprite* target = GetDrawTarget();
    adv::canvas::FillRect(target, 0, 0, 640, 18, kBg);
    adv::canvas::FillRect(target, 0, 17, 640, 1, kChestnut);
    // Bold from two strikes.
    adv::text::Draw(*this, 8, 5, "TORVANE", kChestnut);
    adv::text::Draw(*this, 9, 5, "TORVANE", kChestnut);
    int pen = adv::text::Width(*this, "TORVANE") + 24;
    auto field = [&](const std::string& label, const std::string& value, pge::Pixel colour) {
        adv::text::Draw(*this, pen, 5, label, kMuted);
        pen += adv::text::Width(*this, label) + 4;
        adv::text::Draw(*this, pen, 5, value, colour);
        pen += adv::text::Width(*this, value) + 12;
    };

    const Phase phase = game.phase;
    const bool attack = phase == Phase::Attack;
    field(Tr("Level"), std::to_string(game.level), kFg);
    field(Tr("Phase"), PhaseWord(phase), attack ? kDanger : kChestnut);
    if (attack) {
        // Shots still to come and those in the air: 0 only once the last ball has landed.
        field(Tr("Schüsse"), std::to_string(game.shotsLeft + int(game.targets.size())), kFg);
    } else {
        field(Tr("Zeit"), phase == Phase::Build ? Seconds(game.buildLeft) + " s" : "–", kFg);
    }
    field(Tr("Punkte"), std::to_string(game.score), kFg);
    if (game.towers.size() > 1)
        field(Tr("Turm"), std::to_string(game.activeTower + 1) + "/" + std::to_string(game.towers.size()), kFg);
    const std::string need = std::to_string(game.config.need);
    if (phase == Phase::Build || attack) {
        const int pct = game.OverallPct();
        field(Tr("Linie"), Trf("{0} % / Ziel {1} %", {std::to_string(pct), need}),
              pct >= game.config.need ? kOk : kDanger);
    } else {
        field(Tr("Linie"), Trf("Ziel {0} %", {need}), kFg);
    }

    if (phase != Phase::Build || paused) return;
    const std::string label = Tr("Aufbau beenden");
    const int width = adv::text::Width(*this, label) + 14;
    const int x = 634 - width;
    // Gives way to the fields when there is no room; ENTER still ends the build.
    if (pen - 4 > x) return;
    adv::canvas::FillRoundRect(target, float(x), 2.0f, float(width), 13.0f, 3.0f, kChestnut);
    adv::text::Draw(*this, x + width / 2, 5, label, pge::WHITE, 1, adv::text::Align::Centre);
    buttons.push_back({x, 2, width, 13, ButtonId::EndBuild, 0});
}

void TorvaneApp::DrawBanner() {
    const float fade = std::min((bannerUntil - game.clock) / 0.4f, 1.0f);
    pge::Sprite* target = GetDrawTarget();
    pge::Pixel back = kBannerBack;
    back.a = uint8_t(std::clamp(int(fade * 170.0f), 0, 255));
    adv::canvas::FillRect(target, 0, 180, 640, 40, back);
    const pge::Pixel rule = adv::canvas::WithAlpha(kChestnut, fade);
    adv::canvas::FillRect(target, 0, 180, 640, 2, rule);
    adv::canvas::FillRect(target, 0, 218, 640, 2, rule);
    adv::text::DrawOutlined(*this, 320, 192, bannerText, adv::canvas::WithAlpha(kBannerFill, fade),
                            adv::canvas::WithAlpha(kBannerOutline, fade), 2, adv::text::Align::Centre);
}

std::string TorvaneApp::PartList(const RoundStats& stats, const LevelConfig& config) {
    std::string out;
    auto add = [&out](const std::string& part) { out += (out.empty() ? "" : ", ") + part; };
    if (!stats.sectorPct.empty()) {
        const size_t n = std::min(stats.sectorPct.size(), config.sectors.size());
        for (size_t i = 0; i < n; ++i)
            add(Tr(config.sectors[i].label) + " " + std::to_string(stats.sectorPct[i]) + " %");
        return Tr(" Stand je Richtung: ") + out + ".";
    }
    if (stats.towerPct.size() <= 1) return "";
    for (int32_t pct : stats.towerPct) add(std::to_string(pct) + " %");
    return Tr(" Stand je Turm: ") + out + ".";
}

std::vector<std::pair<std::string, std::string>> TorvaneApp::HelpPairs() {
    const Phase phase = game.phase;
    std::vector<std::pair<std::string, std::string>> pairs;
    if (settingsOpen) {
        // Over the pause: the settings' own keys, A only where the tower turns.
        pairs = {{GetSettings().classic ? "D R T" : "D R A T", Tr("ändern")}, {"Esc", Tr("zurück")}};
    } else if (paused) {
        pairs = {{"Esc", Tr("weiter")}, {"Q", Tr("zurück zum Titel")}};
    } else if (game.Building() || (phase == Phase::Attack && game.FreeRepair())) {
        pairs = {{"← →", Tr("bewegen")}, {"↓", game.Building() ? Tr("absetzen") : Tr("einsetzen")}, {"Space", Tr("drehen")}};
        if (!game.PiecesLimited()) pairs.push_back({"Tab", Tr("nächstes Teil")});
        if (game.UndoTimeLeft() > 0.0f)
            pairs.insert(pairs.begin() + 2, {"↑", Trf("zurücklegen ({0} s)", {Seconds(game.UndoTimeLeft())})});
        if (phase == Phase::Build) pairs.push_back({"Enter", Tr("fertig")});
    } else if (phase == Phase::Attack) {
        if (game.config.ring && !GetSettings().auto_rotate) pairs.push_back({"← →", Tr("Turm drehen")});
        if (!game.config.ring) pairs.push_back({"← →", Tr("Turm wechseln")});
        pairs.push_back({"↑", Tr("Ziele")});
        pairs.push_back({"↓ Space Enter", Tr("einsetzen")});
        pairs.push_back({"Tab", Tr("nächstes Teil")});
    }
    return pairs;
}

TorvaneApp::HelpLine TorvaneApp::LayOutHelp() {
    HelpLine line;
    int x = 8;
    int end = 0; // right end of the last hint
    for (const auto& pair : HelpPairs()) {
        const int hintEnd = x + KeyHintWidth(pair.first, pair.second, kHelpHint);
        if (hintEnd > kHelpRight) break;
        line.pairs.push_back(pair);
        line.xs.push_back(x);
        end = hintEnd;
        x = hintEnd + 10;
    }
    const std::string packName = PackLevelName(game.level);
    line.name = packName.empty() ? Tr(ThemeFor(game.level).name) : packName;
    // Measured only as far as the room goes: a pack's level name may be of any length.
    line.nameFits = adv::text::Fits(*this, line.name, kHelpRight - end - 1);
    return line;
}

void TorvaneApp::DrawHelp() {
    pge::Sprite* target = GetDrawTarget();
    adv::canvas::FillRect(target, 0, 386, 640, 14, kPanel);
    adv::canvas::FillRect(target, 0, 386, 640, 1, kLine);
    // The title leaves the bar empty, without even the level's name.
    if (game.phase == Phase::Title) return;

    const HelpLine line = LayOutHelp();
    for (size_t i = 0; i < line.pairs.size(); ++i)
        DrawKeyHint(line.xs[i], 389, line.pairs[i].first, line.pairs[i].second, kHelpHint);
    if (line.nameFits) adv::text::Draw(*this, kHelpRight, 389, line.name, kSlate, 1, adv::text::Align::Right);
}

} // namespace torvane
