#pragma once
// The items the player carries, in order of finding, and the scroll of the panel's
// eight cells (two rows of four).
#include "engine/adventure/Script.h"
#include "pge/Sprite.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace adv {

struct Item {
    std::string id;
    std::string name;     // shown to the player
    std::string lookText;
    Script lookScript;    // used instead of the look text when not empty
    std::shared_ptr<pge::Sprite> sprite;
};

struct Inventory {
    static constexpr int kColumns = 4;
    static constexpr int kCells = 8;

    std::vector<std::string> items;
    int32_t scroll = 0;

    bool Has(const std::string& id) const;
    // An item is carried once; adding it again does nothing.
    void Add(const std::string& id);
    void Remove(const std::string& id);
    // By whole rows, limited so that the last row stays in view.
    void Scroll(int delta);
    int MaxScroll() const;
    // The item in visible cell i, or empty.
    std::string At(int cell) const;
};

} // namespace adv
