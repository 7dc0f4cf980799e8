#pragma once
// Saved games: what the rules of a game can change, as lines of text, in six slots in
// the user's data folder. Scenes and scripts are rebuilt from code on loading.
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace adv {

struct SaveData {
    struct ActorRecord {
        std::string id;
        std::string scene;
        float x = 0.0f;
        float y = 0.0f;
        int32_t facing = 0;
        int32_t visible = 1;
    };
    struct HotspotRecord {
        std::string scene;
        std::string id;
        int32_t enabled = 1;
    };
    struct OptionRecord {
        std::string dialogue;
        std::string node;
        int32_t option = 0;
    };

    std::string scene;
    std::string label;
    std::string saved;
    int32_t textSpeed = 4;
    int32_t inventoryScroll = 0;
    std::map<std::string, int32_t> flags;
    std::vector<std::string> items;
    std::vector<ActorRecord> actors;
    std::vector<HotspotRecord> hotspots;
    std::vector<OptionRecord> usedOptions;
};

namespace savegame {

constexpr int kSlots = 6;

struct SlotInfo {
    bool exists = false;
    std::string saved;
    std::string label;
};

// The game's folder below the data folder.
void SetFolderName(const std::string& name);
// ".../<game>/saves", or empty when neither XDG_DATA_HOME nor HOME is set.
std::string Directory();
// Empty for a slot outside 0..5.
std::string SlotPath(int slot);
// Now, as "%d.%m.%Y %H:%M".
std::string Timestamp();
std::string Serialise(const SaveData& data);
// False, with data untouched, for a missing or wrong first line.
bool Parse(const std::string& text, SaveData& data);
// Creates the folders when missing. The old save stays whole when writing fails.
bool Write(int slot, const SaveData& data);
// Only a regular file of at most 4 MB is read: nothing else is a save.
bool Read(int slot, SaveData& data);
bool Erase(int slot);
// A refused file counts as an empty slot.
SlotInfo Inspect(int slot);

} // namespace savegame
} // namespace adv
