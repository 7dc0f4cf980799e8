#include "game/rules/Lang.h"
#include "game/rules/TorvaneGame.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace torvane {

std::vector<Cell> Game::GapCells(int tower) const {
    std::vector<Cell> gaps;
    for (int x = 0; x < config.width; ++x) {
        const int top = ColumnTop(tower, x);
        for (int y = 0; y < top; ++y)
            if (CellAt(tower, x, y) == 0) gaps.push_back({x, y});
    }
    return gaps;
}

std::vector<std::vector<Cell>> Game::GapGroups(int tower) const {
    const std::vector<Cell> gaps = GapCells(tower);
    std::set<Cell> rest(gaps.begin(), gaps.end());
    static constexpr Cell kNeighbours[4] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
    std::vector<std::vector<Cell>> groups;
    while (!rest.empty()) {
        std::vector<Cell> stack{*rest.begin()};
        rest.erase(rest.begin());
        std::vector<Cell> group;
        while (!stack.empty()) {
            const Cell c = stack.back();
            stack.pop_back();
            group.push_back(c);
            for (const Cell& d : kNeighbours) {
                const auto found = rest.find(Cell{WrapX(c.x + d.x), c.y + d.y});
                if (found == rest.end()) continue;
                stack.push_back(*found);
                rest.erase(found);
            }
        }
        groups.push_back(std::move(group));
    }
    return groups;
}

bool Game::Loaded(int tower, int x, int y) const {
    for (int above = y + 1; above < config.height; ++above)
        if (CellAt(tower, x, above) != 0) return true;
    return false;
}

void Game::EndBuild(bool early) {
    if (phase != Phase::Build) return;
    // A second or less to go earns nothing.
    if (early && buildLeft > 1.0f) {
        stats.timeBonus = 2 * static_cast<int>(std::trunc(buildLeft));
        score += stats.timeBonus;
    }
    focus = Focus{};
    phase = Phase::Inspect;
    autoEndAt = -1.0f;

    int gapCells = 0, dropped = 0;
    for (int t = 0; t < static_cast<int>(towers.size()); ++t) {
        for (const std::vector<Cell>& group : GapGroups(t)) {
            gapCells += static_cast<int>(group.size());
            // One gap brings down everything above it in its column.
            std::vector<Cell> fallen;
            for (const Cell& gap : group)
                for (int y = gap.y + 1; y < config.height; ++y)
                    if (RemoveCell(t, gap.x, y)) fallen.push_back({gap.x, y});
            const int count = static_cast<int>(fallen.size());
            if (count > 0) Burst(t, fallen, std::min(3 * count, 40));
            dropped += count;
        }
    }
    stats.lost += dropped;
    stats.gapCells = gapCells;
    stats.dropped = dropped;

    if (dropped > 0) {
        Sound(Sfx::Collapse, 0.0f);
        Say(Trn("Bauabnahme: {0} Feld eingestürzt|Bauabnahme: {0} Felder eingestürzt", dropped));
        inspectEndAt = clock + 1.8f;
    } else {
        inspectEndAt = clock + 0.9f;
        Say(gapCells == 0 ? Tr("Bauabnahme: sauber gemauert!") : Tr("Bauabnahme bestanden"));
    }
}

} // namespace torvane
