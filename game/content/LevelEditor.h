#pragma once
// The level editor's logic: four pages fed with abstract keys and typed text, which
// describe themselves as plain rows. No drawing, no keyboard, no game.
#include "game/content/PackStorage.h"
#include "game/rules/LevelPack.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace torvane {

class LevelEditor {
public:
    enum class Key : int32_t { Up = 0, Down, Left, Right, Enter, Esc, Del, T };

    struct Row {
        std::string label;
        std::string value;
        bool selected = false;
        bool changeable = false;
        std::string heading;
    };

    struct View {
        std::string title;
        std::string subtitle;
        std::vector<Row> rows;
        std::vector<std::pair<std::string, std::string>> hints;
        std::string message;
        bool warning = false; // the message tells of an error or a danger, not of a success
        int32_t background = -1;
    };

    // Handle's results.
    static constexpr int kStay = 0;
    static constexpr int kLeave = 1;
    static constexpr int kTest = 2;

    PackStorage storage;
    std::vector<LevelPack> packs;
    LevelPack pack;
    int32_t page = 0; // 0 pack list, 1 new pack, 2 pack, 3 level
    int32_t row = 0;
    int32_t level = 0;
    std::string newName;
    int32_t newCount = 5;
    std::string message;
    bool warning = false; // the message tells of an error or a danger
    bool confirmDelete = false;

    void Open(const PackStorage& store);
    int Handle(Key key);
    void Type(const std::string& text);
    bool Typing() const;
    int RowCount() const;
    void RefreshList();
    bool Save();
    void ChangeField(int field, int delta);
    View GetView() const;

private:
    int HandleList(Key key);
    void HandleNewPack(Key key);
    int HandlePack(Key key);
    int HandleLevel(Key key);
    void CreatePack();
    void Tell(const std::string& text, bool warns);
};

// The letters of `directions` joined by " · ", with "O" shown as "E" in English.
std::string ShowDirections(const std::string& directions);

} // namespace torvane
