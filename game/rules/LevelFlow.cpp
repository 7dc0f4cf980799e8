// The verdict at the end of the attack, and the way from one level to the next.
#include "game/rules/LevelPack.h"
#include "game/rules/TorvaneGame.h"

namespace torvane {

void Game::EndAttack() {
    stats.towerPct.clear();
    for (int t = 0; t < static_cast<int>(towers.size()); ++t) stats.towerPct.push_back(PctAbove(t));
    stats.sectorPct.clear();
    for (int i = 0; i < static_cast<int>(config.sectors.size()); ++i) stats.sectorPct.push_back(SectorPct(i));
    stats.overallPct = OverallPct();
    stats.passed = stats.overallPct >= config.need;
    if (stats.passed) {
        stats.levelBonus = 100 * level;
        score += stats.levelBonus;
        Sound(Sfx::Reward, 0.0f);
        phase = Phase::Eval;
    } else {
        // No second try: the game is over.
        Sound(Sfx::Collapse, 0.0f);
        phase = Phase::Over;
    }
}

bool Game::LastLevel() const {
    const LevelPack* pack = ActivePack();
    return pack && level >= static_cast<int>(pack->levels.size());
}

void Game::NextLevel() {
    // One more piece for each four cells lost, rounded up.
    bonusPieces = (stats.lost + 3) / 4;
    StartLevel(level + 1, true);
    bonusPieces = 0;
}

void Game::NewGame() {
    score = 0;
    StartLevel(1, false);
}

void Game::DebugClearTowers() {
    pieces.clear();
    Tower empty;
    empty.width = config.width;
    empty.cells.assign(static_cast<size_t>(config.width) * static_cast<size_t>(std::max(config.height, 0)), 0);
    empty.revision = Tower::NextRevision();
    towers.assign(static_cast<size_t>(std::max(config.towers, 0)), empty);
}

void Game::DebugPlace(int tower, char type, const std::vector<Cell>& cells) { AddPiece(tower, type, cells, false); }

} // namespace torvane
