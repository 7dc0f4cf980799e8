#pragma once
// Shared set-up for the rules tests: settings that are restored after each
// test, towers laid by hand, and views of the event queue.
#include "game/Lang.h"
#include "game/Level.h"
#include "game/LevelPack.h"
#include "game/TorvaneGame.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace torvane::testing_support {

// Restores the global settings, language and active pack after each test; the
// texts of the game are checked in German, its source language.
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

// Empties every tower and the piece map, keeping sizes and ids running.
inline void ClearTowers(Game& g) {
    g.pieces.clear();
    for (Tower& t : g.towers) std::fill(t.cells.begin(), t.cells.end(), 0);
}

// A game in the classic rule set at `level`, its towers emptied and its events taken.
inline Game ClassicGame(int level, unsigned seed = 1) {
    GetSettings().classic = 1;
    Game g(seed);
    g.StartLevel(level);
    ClearTowers(g);
    g.TakeEvents();
    return g;
}

// A ring game at `level` with empty walls and no events.
inline Game RingGame(int level, unsigned seed = 1) {
    GetSettings().classic = 0;
    Game g(seed);
    g.StartLevel(level);
    ClearTowers(g);
    g.TakeEvents();
    return g;
}

inline void Fill(Game& g, int tower, int x, int y) { g.AddPiece(tower, '1', {{x, y}}, false); }

// Fills rows [y0, y1) of column x.
inline void FillColumn(Game& g, int tower, int x, int y0, int y1) {
    for (int y = y0; y < y1; ++y) Fill(g, tower, x, y);
}

inline bool Occupied(const Game& g, int tower, int x, int y) { return g.CellAt(tower, x, y) != 0; }

inline int CountCells(const Game& g, int tower) {
    int n = 0;
    for (int id : g.towers[tower].cells) n += id != 0;
    return n;
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

// Grid and piece map agree: a cell holds id n exactly when pieces[n] lists it.
inline ::testing::AssertionResult GridMatchesPieces(const Game& g) {
    size_t listed = 0;
    for (const auto& [id, piece] : g.pieces) {
        if (piece.cells.empty()) return ::testing::AssertionFailure() << "piece " << id << " has no cells";
        for (const Cell& c : piece.cells) {
            if (g.CellAt(piece.tower, c.x, c.y) != id)
                return ::testing::AssertionFailure()
                       << "piece " << id << " lists (" << c.x << "," << c.y << ") but the grid disagrees";
        }
        listed += piece.cells.size();
    }
    size_t occupied = 0;
    for (int t = 0; t < static_cast<int>(g.towers.size()); ++t) occupied += CountCells(g, t);
    if (occupied != listed)
        return ::testing::AssertionFailure() << occupied << " grid cells, " << listed << " listed";
    return ::testing::AssertionSuccess();
}

} // namespace torvane::testing_support
