#pragma once
// Which pieces of the supply the carousel shows.
#include <vector>

namespace torvane {

// Offsets from the selected piece, first to last, for a supply of `count` pieces; with
// `limited` only the piece in hand and the next. The supply is a ring and a short one
// does not repeat.
std::vector<int> CarouselOffsets(int count, bool limited);

} // namespace torvane
