#include "game/rules/Pieces.h"

#include "game/rules/Lang.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace torvane {

const std::vector<Cell>& BaseShape(char letter) {
    static const std::vector<Cell> kI = {{0, 0}, {1, 0}, {2, 0}, {3, 0}};
    static const std::vector<Cell> kO = {{0, 0}, {1, 0}, {0, 1}, {1, 1}};
    static const std::vector<Cell> kT = {{0, 0}, {1, 0}, {2, 0}, {1, 1}};
    static const std::vector<Cell> kL = {{0, 0}, {1, 0}, {2, 0}, {2, 1}};
    static const std::vector<Cell> kJ = {{0, 0}, {1, 0}, {2, 0}, {0, 1}};
    static const std::vector<Cell> kS = {{0, 0}, {1, 0}, {1, 1}, {2, 1}};
    static const std::vector<Cell> kZ = {{1, 0}, {2, 0}, {0, 1}, {1, 1}};
    static const std::vector<Cell> kTwo = {{0, 0}, {1, 0}};
    static const std::vector<Cell> kOne = {{0, 0}};
    switch (letter) {
    case 'I': return kI;
    case 'O': return kO;
    case 'T': return kT;
    case 'L': return kL;
    case 'J': return kJ;
    case 'S': return kS;
    case 'Z': return kZ;
    case '2': return kTwo;
    default: return kOne;
    }
}

std::vector<Cell> Rotated(char letter, int quarterTurns) {
    std::vector<Cell> cells = BaseShape(letter);
    const int turns = ((quarterTurns % 4) + 4) % 4;
    for (int i = 0; i < turns; ++i)
        for (Cell& c : cells) c = Cell{c.y, -c.x};
    int minX = INT_MAX, minY = INT_MAX;
    for (const Cell& c : cells) {
        minX = std::min(minX, c.x);
        minY = std::min(minY, c.y);
    }
    for (Cell& c : cells) {
        c.x -= minX;
        c.y -= minY;
    }
    return cells;
}

int ShapeWidth(const std::vector<Cell>& cells) {
    int w = 0;
    for (const Cell& c : cells) w = std::max(w, c.x + 1);
    return w;
}

int ShapeHeight(const std::vector<Cell>& cells) {
    int h = 0;
    for (const Cell& c : cells) h = std::max(h, c.y + 1);
    return h;
}

char Game::SelectedType() const {
    if (selected < 0 || selected >= static_cast<int>(supply.size())) return 0;
    return supply[selected];
}

void Game::DrawSupply(int count) {
    std::vector<char> bag;
    for (int i = 0; i < count; ++i) {
        if (bag.empty()) {
            bag.assign(kTetrominoes, kTetrominoes + std::strlen(kTetrominoes));
            Shuffle(bag);
        }
        supply.push_back(bag.back());
        bag.pop_back();
    }
}

void Game::TakeSelected() {
    if (selected < 0 || selected >= static_cast<int>(supply.size())) return;
    supply.erase(supply.begin() + selected);
    if (selected >= static_cast<int>(supply.size())) selected = 0;
}

void Game::Cycle() {
    if (!GetSettings().piece_choice && phase == Phase::Build) {
        Say(Tr("Teile aussuchen ist ausgeschaltet"));
        Sound(Sfx::Deny, 0.0f);
        return;
    }
    if (supply.size() < 2) return;
    rotation = 0;
    selected = (selected + 1) % static_cast<int>(supply.size());
    ClampCursor();
    Sound(Sfx::Tick, 0.0f);
}

void Game::SelectStep(int delta) {
    if (supply.size() < 2) return;
    const int size = static_cast<int>(supply.size());
    selected = (((selected + delta) % size) + size) % size;
    Sound(Sfx::Tick, 0.0f);
}

void Game::GiveBack(const std::vector<char>& letters) {
    if (letters.empty()) return;
    if (supply.empty()) {
        supply = letters;
        selected = 0;
        return;
    }
    const int at = std::min(selected + 1, static_cast<int>(supply.size()));
    supply.insert(supply.begin() + at, letters.begin(), letters.end());
}

bool Game::PiecesLimited() const {
    return phase == Phase::Build && !GetSettings().piece_choice;
}

} // namespace torvane
