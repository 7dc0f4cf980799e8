// The application's level packs: choosing and cycling them, a chosen pack that goes
// away, a test run from the editor and its return, and no scores for pack games.
#include "pge/Files.h"
#include "tests/screens/PackFixture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>

namespace torvane {
namespace {

namespace fs = std::filesystem;

class PacksTest : public testing_support::PackScreensTest {
protected:
    std::string ActiveName() const { return ActivePack() ? ActivePack()->name : std::string("-"); }
};

TEST_F(PacksTest, AChosenPackThatIsGoneIsForgottenPCyclesThroughThePacksAndTheirGamesAreNotScored) {
    AddPack("Beta", 2);
    AddPack("Alpha", 3);
    std::ofstream(dataFolder + "/settings.txt") << "level_pack=Weg.tpack\n";
    Start({});
    SetLanguage(Language::German);
    EXPECT_EQ(std::tuple(app.packs.size(), GetSettings().level_pack, ActiveName()), std::tuple(2u, "", "-"));
    ASSERT_TRUE(Tap(pge::P));
    EXPECT_EQ(std::tuple(GetSettings().level_pack, ActiveName(), app.game.phase),
              std::tuple("Alpha.tpack", "Alpha", Phase::Title));
    std::string settings;
    ASSERT_TRUE(pge::files::ReadAll(dataFolder + "/settings.txt", settings, pge::files::kMaxDataBytes));
    EXPECT_NE(settings.find("level_pack=Alpha.tpack\n"), std::string::npos); // kept at once
    ASSERT_TRUE(Tap(pge::P));
    EXPECT_EQ(ActiveName(), "Beta");
    // A pack that goes away is skipped over, and the cycle ends on the standard levels.
    fs::remove(packs + "/Alpha.tpack");
    ASSERT_TRUE(Tap(pge::P));
    EXPECT_EQ(std::tuple(GetSettings().level_pack, ActiveName()), std::tuple("", "-"));
    ASSERT_TRUE(Tap(pge::P));
    EXPECT_EQ(ActiveName(), "Beta");
    // A pack's games are never scored, and the row lit by an earlier entry is lit no more.
    app.highlightRow = 0;
    app.game.score = 999999;
    app.game.phase = Phase::Over;
    ASSERT_TRUE(Frame());
    EXPECT_EQ(std::tuple(app.nameEntry, app.highlightRow), std::tuple(false, -1));
}

TEST_F(PacksTest, ATestRunPlaysTheWorkingPackAndEscReturnsToTheEditor) {
    AddPack("Alpha", 3);
    Start({"--editor=down,enter,down,enter,t"});
    for (int i = 0; i < 8; ++i) ASSERT_TRUE(Frame());
    ASSERT_FALSE(app.editorOpen);
    ASSERT_TRUE(app.testing);
    EXPECT_EQ(std::tuple(app.game.phase, app.game.level, ActiveName()), std::tuple(Phase::Build, 2, "Alpha"));
    // The hint comes 1.9 seconds into the test.
    while (app.clock < app.testHintAt - 0.05f) ASSERT_TRUE(Frame());
    EXPECT_NE(app.message, Tr("Test: Esc führt zurück in den Editor"));
    for (int i = 0; i < 4; ++i) ASSERT_TRUE(Frame());
    EXPECT_EQ(app.message, Tr("Test: Esc führt zurück in den Editor"));
    ASSERT_TRUE(Tap(pge::ESCAPE));
    // Back on the editor's level page, the chosen pack (none) active again.
    EXPECT_EQ(std::tuple(app.editorOpen, app.testing, app.paused, app.game.phase, app.editor.page, app.editor.level,
                         ActiveName()),
              std::tuple(true, false, false, Phase::Title, 3, 1, "-"));
    // Esc three times more leaves the editor, back on the title.
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(Tap(pge::ESCAPE));
    EXPECT_EQ(std::tuple(app.editorOpen, app.game.phase), std::tuple(false, Phase::Title));
}

TEST_F(PacksTest, TheEditorsTextFieldsTakeLettersDigitsAndBlanksFromTheKeys) {
    Start({"--editor"});
    SetLanguage(Language::German);
    // Enter on the new-pack entry opens its page and is not also taken there.
    ASSERT_TRUE(Tap(pge::ENTER));
    ASSERT_EQ(app.editor.page, 1);
    EXPECT_EQ(app.editor.message, "");
    // While typing, T is a letter and not a test; SHIFT gives capitals.
    run->SetKey(pge::SHIFT, true);
    ASSERT_TRUE(Tap(pge::B));
    run->SetKey(pge::SHIFT, false);
    for (pge::Key k : {pge::U, pge::R, pge::G, pge::SPACE, pge::T, pge::K2, pge::X}) ASSERT_TRUE(Tap(k));
    EXPECT_EQ(app.editor.newName, "Burg t2x");
    EXPECT_TRUE(app.editorOpen);
    ASSERT_TRUE(Tap(pge::BACK));
    EXPECT_EQ(app.editor.newName, "Burg t2");
    // Off the name row the same keys are the editor's own: Space is Enter, which creates the pack.
    ASSERT_TRUE(Tap(pge::DOWN));
    ASSERT_TRUE(Tap(pge::SPACE));
    EXPECT_EQ(std::tuple(app.editor.page, app.editor.pack.file), std::tuple(2, "Burg_t2.tpack"));
    EXPECT_TRUE(fs::exists(packs + "/Burg_t2.tpack"));
}

TEST_F(PacksTest, AFailedSaveIsShownAndTheWorkGoesOn) {
    AddPack("Alpha", 2);
    // The pack's file is replaced by a folder of that name: writing it fails.
    Start({"--editor=down,enter"});
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(Frame());
    ASSERT_EQ(app.editor.page, 2);
    fs::remove(packs + "/Alpha.tpack");
    fs::create_directory(packs + "/Alpha.tpack");
    app.editorScript = "esc";
    ASSERT_TRUE(Frame());
    EXPECT_EQ(std::tuple(app.editor.message, app.editor.page), std::tuple(Tr("Speichern fehlgeschlagen"), 0));
    EXPECT_TRUE(fs::is_directory(packs + "/Alpha.tpack"));
}

} // namespace
} // namespace torvane
