// The .tpack format: reading by hand-written files, bounds, writing and reading back, file names.
#include "game/content/PackFormat.h"
#include "game/rules/Level.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

using testing_support::RulesTest;
using PackFormatTest = RulesTest;

const std::string kHeader = "torvane-levelpack 1\n";

LevelPack Parsed(const std::string& text) {
    LevelPack pack;
    EXPECT_TRUE(ParsePack(text, pack)) << text;
    return pack;
}

PackLevel OneLevel(const std::string& keys) {
    const LevelPack pack = Parsed(kHeader + "[level]\n" + keys);
    EXPECT_EQ(pack.levels.size(), 1u);
    return pack.levels.empty() ? PackLevel{} : pack.levels[0];
}

TEST_F(PackFormatTest, RefusesWhatIsNoPackAndLeavesTheTargetAlone) {
    LevelPack out;
    out.name = "vorher";
    out.file = "vorher.tpack";
    for (const std::string& text : {std::string(), std::string("\n\n# nur ein Kommentar\n"), kHeader + "name=Leer\n",
                                    std::string("levelpack 1\n[level]\n"), "[level]\n" + kHeader})
        EXPECT_FALSE(ParsePack(text, out));
    EXPECT_EQ(out.name, "vorher");
    EXPECT_EQ(out.file, "vorher.tpack");
}

TEST_F(PackFormatTest, HeaderCommentsAndDefaults) {
    // Comments and blank lines may stand before the header; only its beginning counts.
    const LevelPack pack = Parsed("# mein Pack\n\n  torvane-levelpackage 7\r\nname = Burg am See \r\n"
                                  "background=4\n[level]\r\nname=X\n# background=2\n");
    EXPECT_EQ(pack.name, "Burg am See");
    EXPECT_TRUE(pack.file.empty());
    ASSERT_EQ(pack.levels.size(), 1u);
    const PackLevel& l = pack.levels[0];
    EXPECT_EQ(l.name, "X");
    // Keys before the first level are the pack's, and only its name counts there.
    EXPECT_EQ(std::tie(l.background, l.build, l.pieces, l.line, l.need, l.shots, l.interval, l.directions),
              std::make_tuple(1, 70, 16, 5, 50, 6, 50, std::string("N")));
    EXPECT_TRUE(l.waves && l.prep && !l.newTower);
    EXPECT_EQ(Parsed(kHeader + "[level]\n").name, "Levelpack");
}

TEST_F(PackFormatTest, ValuesAreReadWithinTheirBoundsAndFallBack) {
    // Numbers are read like strtol and clamped to their bounds.
    EXPECT_EQ(OneLevel("build=5").build, 20);
    EXPECT_EQ(OneLevel("build=999").build, 240);
    EXPECT_EQ(OneLevel("build=99999999999999999999").build, 240);
    EXPECT_EQ(OneLevel("build=-99999999999999999999").build, 20);
    EXPECT_EQ(OneLevel("pieces=12abc").pieces, 12);
    EXPECT_EQ(OneLevel("pieces=abc").pieces, 4);
    EXPECT_EQ(OneLevel("need=100").need, 100);
    EXPECT_EQ(OneLevel("line=1").line, 2);
    EXPECT_EQ(OneLevel("shots=61").shots, 60);
    EXPECT_EQ(OneLevel("background=0").background, 1);
    EXPECT_EQ(OneLevel("background=6").background, 5);
    EXPECT_EQ(OneLevel("interval=0.1").interval, 5);
    EXPECT_EQ(OneLevel("interval=99").interval, 150);
    EXPECT_EQ(OneLevel("interval=1,5").interval, 15);
    EXPECT_EQ(OneLevel("interval=2.79").interval, 27);
    EXPECT_EQ(OneLevel("interval=2,").interval, 20);
    EXPECT_EQ(OneLevel("interval=2.x").interval, 20);
    EXPECT_EQ(OneLevel("interval=99999999999.9").interval, 150);
    // A repeated key overwrites; an unknown key is ignored.
    EXPECT_EQ(OneLevel("shots=3\nfarbe=rot\nshots=9").shots, 9);
    // Words other than the format's fall back to their defaults.
    EXPECT_FALSE(OneLevel("order=mixed").waves);
    EXPECT_TRUE(OneLevel("order=Mixed").waves);
    EXPECT_FALSE(OneLevel("prep=no").prep);
    EXPECT_TRUE(OneLevel("prep=nein").prep);
    EXPECT_TRUE(OneLevel("new_tower=yes").newTower);
    EXPECT_FALSE(OneLevel("new_tower=ja").newTower);
    // Directions are rebuilt from the letters they name, in the order of first appearance.
    EXPECT_EQ(OneLevel("directions=ewEn").directions, "OWN");
    EXPECT_EQ(OneLevel("directions=xyz").directions, "N");
    EXPECT_EQ(OneLevel("directions=").directions, "N");
    EXPECT_EQ(OneLevel("directions=S Ö, N;w").directions, "SNW");
    EXPECT_EQ(OneLevel("directions=WN").directions, "WN");
    // A thirty-first level overwrites the thirtieth.
    std::string text = kHeader;
    for (int i = 1; i <= 31; ++i) text += "[level]\nshots=" + std::to_string(i) + "\n";
    const LevelPack pack = Parsed(text);
    ASSERT_EQ(pack.levels.size(), 30u);
    EXPECT_EQ(pack.levels[28].shots, 29);
    EXPECT_EQ(pack.levels[29].shots, 31);
}

TEST_F(PackFormatTest, WritesTheDocumentedTextAndReadsItBack) {
    LevelPack pack{"Burg am See", "",
                   {PackLevel{}, {"Von zwei Seiten", 2, 60, 18, 6, 55, 8, 35, "NO", false, false, true}}};
    pack.levels[0].name = "Erster Angriff";
    EXPECT_EQ(SerialisePack(pack),
              "torvane-levelpack 1\nname=Burg am See\n\n"
              "[level]\nname=Erster Angriff\nbackground=1\nbuild=70\npieces=16\nline=5\nneed=50\nshots=6\n"
              "interval=5.0\ndirections=N\norder=waves\nprep=yes\nnew_tower=no\n\n"
              "[level]\nname=Von zwei Seiten\nbackground=2\nbuild=60\npieces=18\nline=6\nneed=55\nshots=8\n"
              "interval=3.5\ndirections=NO\norder=mixed\nprep=no\nnew_tower=yes\n");
    // Reading back what was written gives it again: the bounds of every number, a tenth, the
    // directions' order, and names with the format's own signs and bytes beyond ASCII.
    pack.name = "#[level]=\xc3\x84\xff";
    pack.levels = {{"[x]=#", 1, 20, 4, 2, 10, 1, 5, "WN", false, false, true},
                   {"\xe2\x80\xa2 a=b", 5, 240, 60, 12, 100, 60, 150, "SNOW", true, true, false},
                   {"", 3, 99, 17, 7, 55, 23, 37, "O", true, false, false}};
    LevelPack back;
    ASSERT_TRUE(ParsePack(SerialisePack(pack), back));
    EXPECT_EQ(back.name, pack.name);
    ASSERT_EQ(back.levels.size(), pack.levels.size());
    for (size_t i = 0; i < pack.levels.size(); ++i) {
        const PackLevel &a = pack.levels[i], &b = back.levels[i];
        EXPECT_EQ(std::tie(a.name, a.background, a.build, a.pieces, a.line, a.need, a.shots, a.interval,
                           a.directions, a.waves, a.prep, a.newTower),
                  std::tie(b.name, b.background, b.build, b.pieces, b.line, b.need, b.shots, b.interval,
                           b.directions, b.waves, b.prep, b.newTower))
            << "level " << i;
    }
}

TEST_F(PackFormatTest, DefaultLevelsAreTheRingCampaignsWhateverIsActive) {
    LevelPack active;
    active.levels.resize(3);
    active.levels[1].shots = 60;
    SetActivePack(&active);
    GetSettings().classic = 1;
    const PackLevel seven = DefaultPackLevel(7), far = DefaultPackLevel(32), first = DefaultPackLevel(0);
    EXPECT_EQ(GetSettings().classic, 1);  // both are restored afterwards
    ASSERT_NE(ActivePack(), nullptr);
    EXPECT_EQ(ActivePack()->levels[1].shots, 60);
    // The build time and the interval in tenths rounded; the far level's 62 shots clamped.
    EXPECT_EQ(std::tie(seven.background, seven.build, seven.shots, seven.interval, seven.directions),
              std::make_tuple(2, 106, 12, 18, std::string("NSOW")));
    EXPECT_EQ(std::tie(far.background, far.shots, far.line, far.need, far.interval), std::make_tuple(2, 60, 12, 70, 11));
    EXPECT_EQ(std::tie(first.background, first.build, first.pieces, first.line, first.need, first.shots,
                       first.interval, first.directions),
              std::make_tuple(1, 70, 16, 5, 50, 6, 50, std::string("N")));
    EXPECT_TRUE(first.name.empty() && first.waves && first.prep && !first.newTower);
}

TEST_F(PackFormatTest, FileNamesFromTitles) {
    EXPECT_EQ(PackFileName("  Burg am  See! "), "Burg_am_See.tpack");
    EXPECT_EQ(PackFileName(""), "Levelpack.tpack");
    EXPECT_EQ(PackFileName("Süd-Wall_2"), "Sd-Wall_2.tpack");
    EXPECT_EQ(PackFileName("abcdefghijklmnopqrstuvwxyzabcd"), "abcdefghijklmnopqrst.tpack");
    // The limit counts while building, so a blank at the twentieth place is then cut.
    EXPECT_EQ(PackFileName("abcdefghijklmnopqrs tuv"), "abcdefghijklmnopqrs.tpack");
    EXPECT_EQ(PackFileName("a/../../b"), "ab.tpack");
}

} // namespace
} // namespace torvane
