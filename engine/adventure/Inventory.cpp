#include "engine/adventure/Inventory.h"

#include <algorithm>

namespace adv {

bool Inventory::Has(const std::string& id) const { return std::find(items.begin(), items.end(), id) != items.end(); }

void Inventory::Add(const std::string& id) {
    if (!Has(id)) items.push_back(id);
}

void Inventory::Remove(const std::string& id) {
    items.erase(std::remove(items.begin(), items.end(), id), items.end());
    scroll = std::clamp(scroll, 0, MaxScroll());
}

int Inventory::MaxScroll() const {
    const int rows = (int(items.size()) + kColumns - 1) / kColumns;
    return std::max(0, (rows - kCells / kColumns) * kColumns);
}

void Inventory::Scroll(int delta) { scroll = std::clamp(scroll + delta, 0, MaxScroll()); }

std::string Inventory::At(int cell) const {
    const int i = scroll + cell;
    return cell >= 0 && cell < kCells && i >= 0 && i < int(items.size()) ? items[size_t(i)] : std::string();
}

} // namespace adv
