#pragma once
// The nine shapes and their rotation.
#include "game/rules/TorvaneGame.h"

#include <vector>

namespace torvane {

// The seven four-cell letters, in the order of the supply bag.
inline constexpr const char* kTetrominoes = "IOTLJSZ";

// The unturned shape of a letter, row 0 at the bottom; unknown letters give the
// single cell.
const std::vector<Cell>& BaseShape(char letter);
// The shape turned by `quarterTurns` (any integer, taken modulo 4) and moved so
// that its bounding box starts at (0, 0); cells keep the order of the table.
std::vector<Cell> Rotated(char letter, int quarterTurns);
int ShapeWidth(const std::vector<Cell>& cells);
int ShapeHeight(const std::vector<Cell>& cells);

} // namespace torvane
