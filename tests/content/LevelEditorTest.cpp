// The level editor's pages driven by keys and typed text, against a store in memory.
#include "game/content/LevelEditor.h"
#include "game/content/PackFormat.h"
#include "tests/content/ContentTestSupport.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace torvane {
namespace {

using Key = LevelEditor::Key;
using testing_support::MemoryStore;

class LevelEditorTest : public testing_support::RulesTest {
protected:
    MemoryStore store;
    LevelEditor editor;

    // A pack of `levels` levels in the store, opened on page 2.
    void OpenPack(int levels, const std::string& name = "Burg") {
        LevelPack pack;
        pack.name = name;
        for (int i = 1; i <= levels; ++i) pack.levels.push_back(DefaultPackLevel(i));
        (*store.files)[PackFileName(name)] = SerialisePack(pack);
        editor.page = 0;
        editor.Open(store.Storage());
        for (size_t i = 0; i < editor.packs.size(); ++i)
            if (editor.packs[i].name == name) editor.row = static_cast<int32_t>(i) + 1;
        ASSERT_EQ(editor.Handle(Key::Enter), 0);
        ASSERT_EQ(editor.page, 2);
    }
    // Opens level `index` (from 0) of the open pack on page 3, at field `field`.
    void OpenLevel(int index, int field) {
        editor.row = index + 1;
        editor.Handle(Key::Enter);
        editor.row = field;
    }
    PackLevel& Level() { return editor.pack.levels[static_cast<size_t>(editor.level)]; }
    void Press(std::initializer_list<Key> keys) {
        for (Key k : keys) editor.Handle(k);
    }
    LevelPack Stored(const std::string& file) {
        LevelPack pack;
        EXPECT_TRUE(ParsePack((*store.files)[file], pack)) << file;
        return pack;
    }
};

TEST_F(LevelEditorTest, NewPackIsNamedCountedAndSaved) {
    editor.Open(store.Storage());
    EXPECT_EQ(editor.RowCount(), 1); // an empty list is a normal page
    EXPECT_EQ(editor.Handle(Key::T), 0); // nothing to play on the new-pack row
    editor.Handle(Key::Enter);
    EXPECT_EQ(editor.page, 1);
    EXPECT_TRUE(editor.Typing());
    editor.row = 1;
    for (int i = 0; i < 7; ++i) editor.Handle(Key::Left);
    EXPECT_EQ(editor.newCount, 1);
    for (int i = 0; i < 40; ++i) editor.Handle(Key::Right);
    EXPECT_EQ(editor.newCount, 30);
    editor.Handle(Key::Left);
    editor.row = 2;
    editor.Handle(Key::Enter);
    EXPECT_EQ(editor.message, "Bitte einen Namen eingeben");
    EXPECT_TRUE(editor.GetView().warning);
    EXPECT_EQ(editor.row, 0);
    editor.Type("??\x01?\x7f");
    EXPECT_EQ(editor.newName, "???");
    editor.Handle(Key::Enter);
    EXPECT_EQ(std::make_tuple(editor.page, editor.row), std::make_tuple(2, 1));
    EXPECT_EQ(editor.pack.file, "Levelpack.tpack");
    EXPECT_EQ(editor.message, "Gespeichert");
    EXPECT_FALSE(editor.GetView().warning);
    const LevelPack saved = Stored("Levelpack.tpack");
    EXPECT_EQ(std::make_tuple(saved.name, saved.levels.size(), editor.packs.size()), std::make_tuple("???", 29u, 1u));
    EXPECT_EQ(saved.levels[6].shots, DefaultPackLevel(7).shots);
    // The same title again gets the next free file name.
    editor.Handle(Key::Esc);
    editor.row = 0;
    editor.Handle(Key::Enter);
    editor.Type("?!?");
    editor.Handle(Key::Enter);
    EXPECT_EQ(editor.pack.file, "Levelpack_2.tpack");
    EXPECT_EQ(store.files->size(), 2u);
}

TEST_F(LevelEditorTest, RowsWrapKeepTheMessageAndAppendingStopsAtThirty) {
    OpenPack(2);
    EXPECT_EQ(editor.RowCount(), 4);
    editor.message = "Gespeichert";
    editor.row = 0;
    editor.Handle(Key::Up);
    EXPECT_EQ(editor.row, 3);
    editor.Handle(Key::Down);
    EXPECT_EQ(std::make_tuple(editor.row, editor.message), std::make_tuple(0, "Gespeichert"));
    editor.Handle(Key::Left); // any other key clears it
    EXPECT_EQ(editor.message, "");
    // Appending stops at thirty levels.
    OpenPack(29);
    EXPECT_EQ(editor.RowCount(), 31);
    editor.row = 30;
    editor.Handle(Key::Enter); // appends, and stands on the new level
    EXPECT_EQ(std::make_tuple(editor.pack.levels.size(), editor.row, editor.RowCount()), std::make_tuple(30u, 30, 31));
    EXPECT_EQ(editor.pack.levels[29].shots, DefaultPackLevel(30).shots);
    EXPECT_EQ(editor.GetView().rows.back().label, "Level 30");
    editor.Handle(Key::Enter); // now opens level 30
    EXPECT_EQ(std::make_tuple(editor.page, editor.level), std::make_tuple(3, 29));
}

TEST_F(LevelEditorTest, DeletingALevelAsksFirst) {
    OpenPack(1);
    Press({Key::Del, Key::Del});
    EXPECT_EQ(editor.pack.levels.size(), 1u);
    EXPECT_EQ(editor.message, "");

    OpenPack(3, "Drei");
    editor.row = 3;
    editor.Handle(Key::Del);
    EXPECT_EQ(editor.message, "Nochmal Del: Level löschen");
    Press({Key::Up, Key::Down, Key::Del}); // moving away and back asks again
    EXPECT_EQ(std::make_tuple(editor.message, editor.pack.levels.size(), editor.GetView().warning),
              std::make_tuple("Nochmal Del: Level löschen", 3u, true));
    editor.Handle(Key::Del);
    EXPECT_EQ(std::make_tuple(editor.message, editor.pack.levels.size(), editor.GetView().warning, editor.row,
                              editor.confirmDelete),
              std::make_tuple("Level gelöscht", 2u, false, 2, false));
}

TEST_F(LevelEditorTest, FieldsStepWithinTheirBounds) {
    OpenPack(2);
    OpenLevel(0, 1);
    Level().background = 5;
    editor.Handle(Key::Right);
    EXPECT_EQ(Level().background, 1);
    editor.Handle(Key::Left);
    EXPECT_EQ(Level().background, 5);
    editor.row = 2;
    Level().build = 240;
    editor.Handle(Key::Right);
    EXPECT_EQ(Level().build, 240);
    editor.Handle(Key::Left);
    EXPECT_EQ(Level().build, 235);
    editor.row = 7;
    Level().interval = 10;
    Press({Key::Left, Key::Left});
    EXPECT_EQ(Level().interval, 5);
    editor.row = 11;
    Level().need = 100;
    editor.Handle(Key::Right);
    EXPECT_EQ(Level().need, 100);

    // The first level always starts fresh.
    editor.row = 5;
    editor.Handle(Key::Right);
    EXPECT_FALSE(Level().newTower);
    const LevelEditor::Row fresh = editor.GetView().rows[5];
    EXPECT_EQ(fresh.value, "ja (erstes Level)");
    EXPECT_FALSE(fresh.changeable);
    // Enter goes to the same field of the next level, and past the last back to the list.
    editor.Handle(Key::Enter);
    EXPECT_EQ(std::make_tuple(editor.level, editor.row), std::make_tuple(1, 5));
    editor.Handle(Key::Right);
    EXPECT_TRUE(Level().newTower);
    EXPECT_EQ(editor.GetView().rows[5].value, "ja, neue Ruine");
    editor.Handle(Key::Enter);
    EXPECT_EQ(std::make_tuple(editor.page, editor.row), std::make_tuple(2, 2));
}

TEST_F(LevelEditorTest, DirectionsStepThroughTheTable) {
    OpenPack(1);
    OpenLevel(0, 8);
    Level().directions = "NSOW";
    editor.Handle(Key::Right);
    EXPECT_EQ(Level().directions, "N");
    editor.Handle(Key::Left);
    EXPECT_EQ(Level().directions, "NSOW");
    // A hand-written order is shown as it stands until the first step.
    Level().directions = "WN";
    EXPECT_EQ(editor.GetView().rows[8].value, "W · N");
    editor.Handle(Key::Right);
    EXPECT_EQ(Level().directions, "SO");
    Level().directions = "WN";
    editor.Handle(Key::Left);
    EXPECT_EQ(Level().directions, "NO");
    SetLanguage(Language::English);
    EXPECT_EQ(ShowDirections("NOSW"), "N · E · S · W");
}

TEST_F(LevelEditorTest, TypingCountsCharactersNotBytes) {
    OpenPack(1);
    OpenLevel(0, 0);
    editor.Type("ÄÖÜäöüßabcdefghijklm"); // 20 characters
    EXPECT_EQ(Level().name, "ÄÖÜäöüßabcdefghijklm");
    editor.Type("x");
    EXPECT_EQ(Level().name, "ÄÖÜäöüßabcdefghijklm");
    // When full, a lead byte is refused before a continuation byte is looked at.
    editor.Type("é");
    EXPECT_EQ(Level().name, "ÄÖÜäöüßabcdefghijklm\xA9");
    editor.Handle(Key::Del); // the stray byte and the character before it
    EXPECT_EQ(Level().name, "ÄÖÜäöüßabcdefghijkl");
    editor.Type("é");
    EXPECT_EQ(Level().name, "ÄÖÜäöüßabcdefghijklé");
    EXPECT_EQ(editor.GetView().rows[0].value, "ÄÖÜäöüßabcdefghijklé_");
    editor.row = 1; // not typing: text goes nowhere
    editor.Type("z");
    EXPECT_EQ(Level().name, "ÄÖÜäöüßabcdefghijklé");
    Level().name.clear();
    EXPECT_EQ(editor.GetView().rows[0].value, "Wüstenpass");
}

TEST_F(LevelEditorTest, TestingSavesAndTellsWhere) {
    OpenPack(3);
    editor.pack.name.clear();
    editor.row = 2;
    EXPECT_EQ(editor.Handle(Key::T), 2);
    EXPECT_EQ(std::make_tuple(editor.level, editor.pack.name), std::make_tuple(1, "Levelpack"));
    EXPECT_EQ(Stored("Burg.tpack").name, "Levelpack");
    OpenLevel(2, 4);
    Level().line = 9;
    EXPECT_EQ(editor.Handle(Key::T), 2);
    EXPECT_EQ(Stored("Burg.tpack").levels[2].line, 9);
    // Back from the test: the same page and row.
    editor.Open(store.Storage());
    EXPECT_EQ(std::make_tuple(editor.page, editor.level, editor.row), std::make_tuple(3, 2, 4));
    // T on a pack of the list plays its first level, from the list.
    Press({Key::Esc, Key::Esc});
    EXPECT_EQ(std::make_tuple(editor.page, editor.row), std::make_tuple(0, 1)); // on the pack just left
    EXPECT_EQ(editor.Handle(Key::T), 2);
    EXPECT_EQ(std::make_tuple(editor.page, editor.level), std::make_tuple(0, 0));
    EXPECT_EQ(editor.Handle(Key::Esc), 1);
}

TEST_F(LevelEditorTest, APackDeletedWhileShownIsKeptAndSavedAgain) {
    OpenPack(2);
    OpenLevel(1, 6);
    Level().shots = 17;
    store.files->clear();
    editor.Open(store.Storage()); // as after a test
    EXPECT_EQ(std::make_tuple(editor.packs.empty(), editor.page, Level().shots), std::make_tuple(true, 3, 17));
    Press({Key::Esc, Key::Esc});
    EXPECT_EQ(Stored("Burg.tpack").levels[1].shots, 17);
    EXPECT_EQ(editor.row, 1);
    // Page 1 is never returned to.
    editor.row = 0;
    editor.Handle(Key::Enter);
    editor.Open(store.Storage());
    EXPECT_EQ(editor.page, 0);
}

// The pages' pictures show the German texts; the English forms and numbers are checked here.
TEST_F(LevelEditorTest, EnglishViewsTakeTheSingularAndAPoint) {
    OpenPack(2);
    SetLanguage(Language::English);
    editor.pack.levels[1].name = "Sturm";
    editor.pack.levels[1].shots = 1;
    EXPECT_EQ(editor.GetView().rows[2].value, "Sturm · N · 1 shot");
    OpenLevel(1, 7);
    editor.pack.levels[1].interval = 35;
    const LevelEditor::View level = editor.GetView();
    EXPECT_EQ(std::make_tuple(level.rows[7].value, level.hints.size()), std::make_tuple("3.5 s", 5u));
    editor.Handle(Key::Esc);
    editor.row = 1;
    Press({Key::Del, Key::Del, Key::Esc});
    EXPECT_EQ(editor.GetView().rows[1].value, "1 level");
}

} // namespace
} // namespace torvane
