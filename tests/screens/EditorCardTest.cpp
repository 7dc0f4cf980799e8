// The editor card and the packs on screen, against reference pictures: the pages of
// the editor, the title foot with a pack chosen, the help bar with a pack level's name.
#include "engine/Screenshot.h"
#include "tests/stage/ReferencePicture.h"
#include "tests/screens/PackFixture.h"

#include <algorithm>
#include <utility>

namespace torvane {
namespace {

using testing_support::ExpectMatchesReference;

constexpr float kDt = 1.0f / 60.0f;

class EditorCardTest : public testing_support::PackScreensTest {
protected:
    void SetUp() override {
        PackScreensTest::SetUp();
        // A title picture of soft diagonal bands, so that the screens stand over it.
        pge::Sprite title(640, 400);
        for (int y = 0; y < 400; ++y)
            for (int x = 0; x < 640; ++x)
                title.SetPixel(x, y, pge::Pixel(uint8_t(60 + (x + y) / 16 % 2 * 30), uint8_t(90 + y / 5), 120));
        adv::screenshot::SavePng(title, testing_support::TestAssets() + "/torvane/title.png");
    }
    void Start(std::vector<const char*> args) {
        ScreensTest::Start(std::move(args));
        SetLanguage(Language::German);
    }
    void Frames(int n) {
        for (int i = 0; i < n; ++i) ASSERT_TRUE(Frame(kDt));
    }
    // Rows [y0, y1) of the screen.
    pge::Sprite Band(int y0, int y1) {
        pge::Sprite band(640, y1 - y0);
        const pge::Sprite& screen = *app.GetDrawTarget();
        std::copy(screen.pColData.begin() + y0 * 640, screen.pColData.begin() + y1 * 640, band.pColData.begin());
        return band;
    }
};

TEST_F(EditorCardTest, ScrolledListWithItsCounter) {
    for (char c = 'A'; c <= 'Q'; ++c) AddPack(std::string("Burg ") + c, 1 + (c - 'A') % 3);
    Start({"--editor=up"}); // from the new-pack row up to the last pack
    Frames(3);
    ASSERT_TRUE(app.editorOpen);
    EXPECT_EQ(app.editor.row, 17);
    ExpectMatchesReference(*app.GetDrawTarget(), "editor_list");
}

TEST_F(EditorCardTest, NewPackPage) {
    Start({"--editor=enter,type:Neue Burg,down"});
    Frames(5);
    ExpectMatchesReference(*app.GetDrawTarget(), "editor_new");
}

TEST_F(EditorCardTest, PackPageAndLevelPageOverTheirLandscape) {
    AddPack("Vellmark", 6);
    Start({"--editor=down,enter,down,down"});
    Frames(6);
    ASSERT_EQ(app.editor.page, 2);
    ExpectMatchesReference(*app.GetDrawTarget(), "editor_pack");
    app.editorScript = "enter,down,down,down,down,down,down,down,down";
    Frames(10);
    ASSERT_EQ(app.editor.page, 3);
    ExpectMatchesReference(*app.GetDrawTarget(), "editor_level");
}

TEST_F(EditorCardTest, TitleFootWithAPackAndTheHelpBarWithItsLevelName) {
    AddPack("Vellmark", 3);
    Start({});
    Frames(2);
    ASSERT_TRUE(Tap(pge::P, kDt));
    EXPECT_EQ(GetSettings().level_pack, "Vellmark.tpack");
    Frames(1);
    ExpectMatchesReference(Band(300, 400), "title_foot_pack");
    Frames(40); // past the lock on keys after the phase change
    ASSERT_TRUE(Tap(pge::SPACE, kDt));
    ASSERT_EQ(app.game.phase, Phase::Build);
    ASSERT_NE(ActivePack(), nullptr);
    Frames(1);
    ExpectMatchesReference(Band(386, 400), "help_bar_pack_level");
}

TEST_F(EditorCardTest, ErrorsInTheDangerColourSuccessesInTheOkColour) {
    const auto count = [this](pge::Pixel colour) {
        const std::vector<pge::Pixel>& pixels = app.GetDrawTarget()->pColData;
        return std::count(pixels.begin(), pixels.end(), colour);
    };
    const auto expect = [&](const std::string& message, pge::Pixel shown, pge::Pixel absent) {
        ASSERT_EQ(app.editor.message, message);
        EXPECT_GT(count(shown), 20) << message;
        EXPECT_EQ(count(absent), 0) << message;
    };
    Start({"--editor=enter,enter"}); // a new pack without a name
    Frames(4);
    expect("Bitte einen Namen eingeben", kDanger, kOk);
    app.editorScript = "type:Burg,enter";
    Frames(3);
    expect("Gespeichert", kOk, kDanger);
    SetLanguage(Language::English);
    app.editorScript = "esc";
    Frames(2);
    expect("Saved", kOk, kDanger);
    app.editorScript = "up,enter,enter";
    Frames(4);
    expect("Please enter a name", kDanger, kOk);
}

TEST_F(EditorCardTest, AHugePacksNameIsCutToItsRowAndBehindItsTitle) {
    AddPack(std::string(1 << 20, 'W'), 1);
    Start({"--editor"});
    // Text drawn right of where the rows' values end, x + w - 14 of the card of 520.
    const auto beyond = [this] {
        int n = 0;
        for (int y = 40; y < 380; ++y)
            for (int x = (640 - 520) / 2 + 520 - 14; x < 640; ++x) {
                const pge::Pixel p = app.GetDrawTarget()->GetPixel(x, y);
                n += p == kFg || p == kMuted || p == kSlate || p == kChestnut ? 1 : 0;
            }
        return n;
    };
    Frames(3);
    EXPECT_EQ(beyond(), 0) << "the list";
    app.editorScript = "down,enter"; // the pack's page, its name on the top row
    Frames(3);
    ASSERT_EQ(app.editor.page, 2);
    EXPECT_EQ(beyond(), 0) << "the pack's page";
    app.editorScript = "enter"; // the level's page, the pack's name behind the title
    Frames(2);
    ASSERT_EQ(app.editor.page, 3);
    EXPECT_EQ(beyond(), 0) << "the level's page";
}

} // namespace
} // namespace torvane
