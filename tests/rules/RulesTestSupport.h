#pragma once
// Shared set-up for the rules tests: settings restored, walls laid by hand, views of the event queue.
#include "game/rules/AutoPlayer.h"
#include "game/rules/FrameSteps.h"
#include "game/rules/Lang.h"
#include "game/rules/Level.h"
#include "game/rules/LevelPack.h"
#include "game/rules/TorvaneGame.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

namespace torvane::testing_support {

// Texts are checked in German, the source language.
class RulesTest : public ::testing::Test {
protected:
    void SetUp() override {
        saved_ = GetSettings();
        savedLanguage_ = CurrentLanguage();
        SetLanguage(Language::German);
        SetActivePack(nullptr);
    }
    void TearDown() override {
        GetSettings() = saved_;
        SetLanguage(savedLanguage_);
        SetActivePack(nullptr);
    }

private:
    Settings saved_;
    Language savedLanguage_ = Language::English;
};

// A game at `level` of the chosen rule set with empty towers and no events.
inline Game EmptyGame(bool classic, int level, unsigned seed = 1) {
    GetSettings().classic = classic ? 1 : 0;
    Game g(seed);
    g.StartLevel(level);
    g.DebugClearTowers();
    g.TakeEvents();
    return g;
}
inline Game ClassicGame(int level) { return EmptyGame(true, level); }
inline void Fill(Game& g, int tower, int x, int y) { g.AddPiece(tower, '1', {{x, y}}, false); }
// Fills rows [y0, y1) of column x.
inline void FillColumn(Game& g, int tower, int x, int y0, int y1) {
    for (int y = y0; y < y1; ++y) Fill(g, tower, x, y);
}
inline bool Occupied(const Game& g, int tower, int x, int y) { return g.CellAt(tower, x, y) != 0; }
inline int CountCells(const Game& g, int tower) {
    const std::vector<int32_t>& c = g.towers[tower].cells;
    return static_cast<int>(c.size() - static_cast<size_t>(std::count(c.begin(), c.end(), 0)));
}

inline std::vector<std::string> Texts(const std::vector<Event>& events, Event::Kind kind) {
    std::vector<std::string> out;
    for (const Event& e : events)
        if (e.kind == kind) out.push_back(e.text);
    return out;
}
inline std::vector<Sfx> Sounds(const std::vector<Event>& events) {
    std::vector<Sfx> out;
    for (const Event& e : events)
        if (e.kind == Event::Sound) out.push_back(e.sfx);
    return out;
}
inline int CountSound(const std::vector<Event>& events, Sfx sfx) {
    const std::vector<Sfx> s = Sounds(events);
    return static_cast<int>(std::count(s.begin(), s.end(), sfx));
}
inline bool HasText(const std::vector<Event>& events, const std::string& text) {
    return std::any_of(events.begin(), events.end(), [&](const Event& e) { return e.text == text; });
}
inline std::vector<Cell> Sorted(std::vector<Cell> c) { return std::sort(c.begin(), c.end()), c; }

// Grid and piece map agree: a cell holds id n exactly when pieces[n] lists it.
inline bool GridMatchesPieces(const Game& g) {
    int listed = 0, occupied = 0;
    for (const auto& [id, piece] : g.pieces)
        for (const Cell& c : piece.cells) {
            if (g.CellAt(piece.tower, c.x, c.y) != id) return false;
            ++listed;
        }
    for (int t = 0; t < static_cast<int>(g.towers.size()); ++t) occupied += CountCells(g, t);
    return occupied == listed;
}

// A ring level 1 at default settings with an empty wall and no supply.
class AttackFixture : public RulesTest {
protected:
    Game game{7};

    void SetUp() override {
        RulesTest::SetUp();
        GetSettings() = Settings{};
        game.NewGame();
        game.DebugClearTowers();
        game.supply.clear();
        game.TakeEvents();
    }
    std::vector<Cell> Row(int x, int y, int n) const {
        std::vector<Cell> cells;
        for (int i = 0; i < n; ++i) cells.push_back(Cell{game.WrapX(x + i), y});
        return cells;
    }
    int Put(char type, const std::vector<Cell>& cells) {
        const int id = game.nextPieceId;
        game.DebugPlace(0, type, cells);
        return id;
    }
    // Only FireAt fires; one shot stays owed to a wave that never comes, so the attack does not end.
    void QuietAttack() {
        game.config.shots = game.config.spareOnes = game.config.spareTwos = 0;
        game.phase = Phase::Announce;
        game.BeginAttack();
        game.shotsLeft = 1;
        game.TakeEvents();
    }
    void AdvanceTo(float t) { game.Update(std::max(t - game.clock, 0.0f)); }
    void HitNow(int piece) {
        game.FireAt(piece);
        AdvanceTo(game.targets.back().hitAt);
    }
};

} // namespace torvane::testing_support
