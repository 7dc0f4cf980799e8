#pragma once
// A ring level 1 with an empty wall, the settings at their defaults, and helpers
// to build a wall, run the clock and read the event queue.
#include "game/Lang.h"
#include "game/Level.h"
#include "game/LevelPack.h"
#include "game/TorvaneGame.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace torvane::testing {

class AttackFixture : public ::testing::Test {
protected:
    Game game{7};

    void SetUp() override {
        GetSettings() = Settings{};
        SetLanguage(Language::German);
        SetActivePack(nullptr);
        game.NewGame();
        game.DebugClearTowers();
        game.supply.clear();
        game.selected = 0;
        game.TakeEvents();
    }
    void TearDown() override { GetSettings() = Settings{}; }

    // A horizontal run of `n` single-row cells from (x, y), wrapped on the ring.
    std::vector<Cell> Row(int x, int y, int n) const {
        std::vector<Cell> cells;
        for (int i = 0; i < n; ++i) cells.push_back(Cell{game.WrapX(x + i), y});
        return cells;
    }
    // Places a piece and returns its id.
    int Put(char type, const std::vector<Cell>& cells) {
        const int id = game.nextPieceId;
        game.DebugPlace(0, type, cells);
        return id;
    }
    // Starts the attack phase with no shots of its own, so that only FireAt fires.
    // One shot stays owed to a wave that never comes, so the attack does not end.
    void QuietAttack() {
        game.config.shots = 0;
        game.config.spareOnes = 0;
        game.config.spareTwos = 0;
        game.phase = Phase::Announce;
        game.BeginAttack();
        game.shotsLeft = 1;
        game.TakeEvents();
    }
    // Runs the rules until the level clock has reached `t`.
    void AdvanceTo(float t) { game.Update(std::max(t - game.clock, 0.0f)); }
    // Fires at a piece and runs the clock to the impact; returns the target's id.
    int HitNow(int piece) {
        const int id = game.nextShotId;
        game.FireAt(piece);
        AdvanceTo(game.targets.back().hitAt);
        return id;
    }

    static int CountSound(const std::vector<Event>& events, Sfx sfx) {
        return static_cast<int>(std::count_if(events.begin(), events.end(), [&](const Event& e) {
            return e.kind == Event::Sound && e.sfx == sfx;
        }));
    }
    static bool HasText(const std::vector<Event>& events, const std::string& text) {
        return std::any_of(events.begin(), events.end(), [&](const Event& e) { return e.text == text; });
    }
    static std::vector<Cell> Sorted(std::vector<Cell> cells) {
        std::sort(cells.begin(), cells.end());
        return cells;
    }
};

} // namespace torvane::testing
