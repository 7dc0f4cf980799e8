#pragma once
// Where the parts of the adventure's panel lie on the screen, shared by the drawing and the
// clicks: the sentence line, the nine verb cells, the scroll arrows and the inventory cells.
#include "engine/adventure/Inventory.h"
#include "pge/PixelEngine.h"

namespace adv::panel {

constexpr int kSentenceY = 179;
constexpr int kVerbX = 8, kVerbY = 192, kVerbW = 72, kVerbH = 16;
constexpr int kInvX = 246, kInvY = 192, kInvW = 33, kInvH = 24;
constexpr int kArrowX0 = 228, kArrowX1 = 239, kArrowMid = 216;
constexpr int kOptionH = 11;

inline bool InRect(pge::vi2d p, int x, int y, int w, int h) { return p.x >= x && p.x < x + w && p.y >= y && p.y < y + h; }

// The verb cell under p, 0..8 in reading order, or -1.
inline int VerbCellAt(pge::vi2d p) {
    for (int i = 0; i < 9; ++i)
        if (InRect(p, kVerbX + kVerbW * (i % 3), kVerbY + kVerbH * (i / 3), kVerbW, kVerbH)) return i;
    return -1;
}

// The inventory cell under p, or -1.
inline int InventoryCellAt(pge::vi2d p) {
    for (int i = 0; i < Inventory::kCells; ++i)
        if (InRect(p, kInvX + kInvW * (i % 4), kInvY + kInvH * (i / 4), kInvW, kInvH)) return i;
    return -1;
}

} // namespace adv::panel
