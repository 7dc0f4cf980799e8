#include "RulesTestSupport.h"

#include <set>

using namespace torvane;
using namespace torvane::testing_support;

namespace {

std::string Letters(const LevelConfig& c) {
    std::string s;
    for (const Sector& sector : c.sectors) s += sector.letter;
    return s;
}

void ExpectSameConfig(const LevelConfig& a, const LevelConfig& b) {
    EXPECT_EQ(a.towers, b.towers);
    EXPECT_EQ(a.width, b.width);
    EXPECT_EQ(a.height, b.height);
    EXPECT_EQ(a.line, b.line);
    EXPECT_EQ(a.ring, b.ring);
    EXPECT_EQ(a.buildTime, b.buildTime);
    EXPECT_EQ(a.shots, b.shots);
    EXPECT_EQ(a.flightTime, b.flightTime);
    EXPECT_EQ(a.interval, b.interval);
    EXPECT_EQ(a.pieces, b.pieces);
    EXPECT_EQ(a.need, b.need);
    EXPECT_EQ(a.spareOnes, b.spareOnes);
    EXPECT_EQ(a.spareTwos, b.spareTwos);
    EXPECT_EQ(a.ruinRows, b.ruinRows);
    EXPECT_EQ(Letters(a), Letters(b));
    EXPECT_EQ(a.fromPack, b.fromPack);
}

} // namespace

class LevelConfigRing : public RulesTest {};

TEST_F(LevelConfigRing, LevelsBelowOneCountAsOne) {
    ExpectSameConfig(ConfigFor(0), ConfigFor(1));
    ExpectSameConfig(ConfigFor(-5), ConfigFor(1));
}

TEST_F(LevelConfigRing, FirstLevel) {
    const LevelConfig c = ConfigFor(1);
    EXPECT_TRUE(c.ring);
    EXPECT_EQ(c.towers, 1);
    EXPECT_EQ(c.width, 32);
    EXPECT_EQ(c.height, 14);
    EXPECT_EQ(c.ruinRows, 4);
    ASSERT_EQ(c.sectors.size(), 1u);
    EXPECT_EQ(c.sectors[0].label, "Norden");
    EXPECT_EQ(c.sectors[0].centre, 0);
    EXPECT_EQ(c.sectors[0].width, 8);
    EXPECT_EQ(c.shots, 6);
    EXPECT_FLOAT_EQ(c.flightTime, 4.0f);
    EXPECT_FLOAT_EQ(c.interval, 5.0f);
    EXPECT_EQ(c.line, 5);
    EXPECT_EQ(c.need, 50);
    EXPECT_EQ(c.pieces, 16);
    EXPECT_FLOAT_EQ(c.buildTime, 70.0f);
    EXPECT_EQ(c.spareOnes, 4);  // the row's minimum; the formula alone gives 2
    EXPECT_EQ(c.spareTwos, 4);
    EXPECT_FALSE(c.fromPack);
}

TEST_F(LevelConfigRing, SeventhLevelHasAllFourDirections) {
    const LevelConfig c = ConfigFor(7);
    EXPECT_EQ(Letters(c), "NSOW");
    EXPECT_EQ(c.shots, 12);
    EXPECT_EQ(c.spareOnes, 7);
    EXPECT_FLOAT_EQ(c.buildTime, 106.0f);
    EXPECT_NEAR(c.interval, 3.2f / 1.75f, 1e-5);
    EXPECT_EQ(c.sectors[1].centre, 16);
    EXPECT_EQ(c.sectors[2].centre, 24);
    EXPECT_EQ(c.sectors[3].centre, 8);
}

TEST_F(LevelConfigRing, NinthLevelGrowsBeyondTheTable) {
    const LevelConfig c = ConfigFor(9);
    EXPECT_EQ(c.shots, 16);
    EXPECT_FLOAT_EQ(c.flightTime, 2.5f);
    EXPECT_EQ(c.line, 9);
    EXPECT_EQ(c.need, 70);
    EXPECT_EQ(c.pieces, 22);
    EXPECT_FLOAT_EQ(c.buildTime, 100.0f);
    // 16 shots over 4 sectors: ((17 * 4 / 5 + 2) / 3) = 5, below the row's 7.
    EXPECT_EQ(c.spareOnes, 7);
}

TEST_F(LevelConfigRing, ThirtiethLevelStopsAtItsLimits) {
    const LevelConfig c = ConfigFor(30);
    EXPECT_EQ(c.shots, 58);
    EXPECT_EQ(c.line, 12);
    EXPECT_EQ(c.need, 70);
    EXPECT_FLOAT_EQ(c.flightTime, 1.2f);
    EXPECT_FLOAT_EQ(c.interval, 1.1f);
    EXPECT_FLOAT_EQ(c.buildTime, 100.0f);
    EXPECT_EQ(c.spareOnes, 16);
    EXPECT_EQ(c.spareTwos, 16);
}

TEST_F(LevelConfigRing, InvariantsOverThirtyLevels) {
    LevelConfig previous = ConfigFor(1);
    for (int level = 1; level <= 30; ++level) {
        SCOPED_TRACE(level);
        const LevelConfig c = ConfigFor(level);
        EXPECT_TRUE(c.ring);
        EXPECT_EQ(c.towers, 1);
        EXPECT_GE(c.line, 5);
        EXPECT_LE(c.line, c.height - 2);
        EXPECT_GE(c.need, 50);
        EXPECT_LE(c.need, 70);
        EXPECT_GE(c.flightTime, 1.2f);
        EXPECT_LE(c.flightTime, 4.0f);
        EXPECT_GE(c.interval, 1.1f);
        EXPECT_GE(c.buildTime, 40.0f);
        EXPECT_EQ(c.sectors.size(), static_cast<size_t>(std::min((level + 1) / 2, 4)));
        EXPECT_GE(c.spareOnes, 4);
        EXPECT_EQ(c.spareOnes, c.spareTwos);
        // Every shot has a spare of each kind within four fifths.
        EXPECT_GE(3 * c.spareOnes, (c.shots + 1) * 4 / 5);
        if (level > 1) {
            EXPECT_GE(c.shots, previous.shots);
            EXPECT_LE(c.flightTime, previous.flightTime);
            EXPECT_GE(c.need, previous.need);
            EXPECT_GE(c.line, previous.line);
            EXPECT_GE(c.spareOnes, previous.spareOnes);
        }
        if (level > 7) {
            EXPECT_EQ(c.shots, previous.shots + 2);
        }
        previous = c;
    }
}

TEST_F(LevelConfigRing, RingSizeAndRuinComeFromTheSettings) {
    GetSettings().ringWidth = 40;
    GetSettings().ringHeight = 18;
    GetSettings().ruinRows = 6;
    const LevelConfig c = ConfigFor(30);
    EXPECT_EQ(c.width, 40);
    EXPECT_EQ(c.height, 18);
    EXPECT_EQ(c.ruinRows, 6);
    EXPECT_EQ(c.line, 16);
    EXPECT_EQ(c.sectors[1].centre, 20);  // south at half the ring
}

class LevelConfigClassic : public RulesTest {
protected:
    void SetUp() override {
        RulesTest::SetUp();
        GetSettings().classic = 1;
    }
};

TEST_F(LevelConfigClassic, FirstLevel) {
    const LevelConfig c = ConfigFor(1);
    EXPECT_FALSE(c.ring);
    EXPECT_EQ(c.towers, 1);
    EXPECT_EQ(c.width, 8);
    EXPECT_EQ(c.height, 14);
    EXPECT_EQ(c.line, 6);
    EXPECT_EQ(c.shots, 6);
    EXPECT_EQ(c.spareOnes, 4);
    EXPECT_EQ(c.spareTwos, 4);
    EXPECT_EQ(c.pieces, 17);
    EXPECT_FLOAT_EQ(c.buildTime, 70.0f);
    EXPECT_FLOAT_EQ(c.flightTime, 4.0f);
    EXPECT_FLOAT_EQ(c.interval, 5.0f);
    EXPECT_EQ(c.ruinRows, 2);
    EXPECT_TRUE(c.sectors.empty());
}

TEST_F(LevelConfigClassic, SeventhAndEighthLevels) {
    const LevelConfig c7 = ConfigFor(7);
    EXPECT_EQ(c7.towers, 5);
    EXPECT_EQ(c7.width, 8);
    EXPECT_EQ(c7.height, 14);
    EXPECT_EQ(c7.shots, 54);
    EXPECT_FLOAT_EQ(c7.buildTime, 135.0f);
    EXPECT_EQ(c7.pieces, 87);
    EXPECT_EQ(c7.need, 80);
    EXPECT_EQ(c7.spareOnes, 9);
    EXPECT_EQ(c7.spareTwos, 9);
    const LevelConfig c8 = ConfigFor(8);
    EXPECT_EQ(c8.shots, 60);
    EXPECT_EQ(c8.need, 85);
    EXPECT_EQ(c8.pieces, 87);
    EXPECT_EQ(c8.spareOnes, 9);
}

TEST_F(LevelConfigClassic, WideTowersAreTallerWithAHigherLine) {
    const LevelConfig c3 = ConfigFor(3);
    EXPECT_EQ(c3.towers, 2);
    EXPECT_EQ(c3.width, 10);
    EXPECT_EQ(c3.height, 16);
    EXPECT_EQ(c3.line, 7);
    // 2 * 10 * 16 cells, 62 percent, a quarter: 49.6 -> 50.
    EXPECT_EQ(c3.pieces, 50);
    // 2 * 5 * 1.5 = 15 shots; build 58 + 25.
    EXPECT_EQ(c3.shots, 15);
    EXPECT_FLOAT_EQ(c3.buildTime, 83.0f);
    EXPECT_NEAR(c3.interval, 4.1f / 1.25f, 1e-5);
    EXPECT_NEAR(c3.flightTime, 4.0f * 0.86f * 0.86f, 1e-5);
}

TEST_F(LevelConfigClassic, InvariantsOverTenLevels) {
    LevelConfig previous = ConfigFor(1);
    for (int level = 1; level <= 10; ++level) {
        SCOPED_TRACE(level);
        const LevelConfig c = ConfigFor(level);
        EXPECT_FALSE(c.ring);
        EXPECT_TRUE(c.sectors.empty());
        EXPECT_GE(c.towers, 1);
        EXPECT_LE(c.towers, 5);
        EXPECT_TRUE(c.width == 8 || c.width == 10);
        EXPECT_LE(c.need, 85);
        EXPECT_GE(c.flightTime, 1.0f);
        EXPECT_GE(c.interval, 1.1f);
        EXPECT_GE(c.buildTime, 35.0f);
        EXPECT_EQ(c.spareOnes, c.spareTwos);
        EXPECT_EQ(c.ruinRows, 2);
        if (level > 1) {
            EXPECT_GT(c.shots, previous.shots);
            EXPECT_GE(c.need, previous.need);
            EXPECT_LE(c.flightTime, previous.flightTime);
        }
        previous = c;
    }
    const LevelConfig c10 = ConfigFor(10);
    EXPECT_EQ(c10.shots, 72);
    EXPECT_FLOAT_EQ(c10.interval, 1.1f);
    EXPECT_FLOAT_EQ(c10.buildTime, 135.0f);
}

TEST_F(LevelConfigClassic, PacksHaveNoEffect) {
    LevelPack pack;
    pack.levels.resize(3);
    pack.levels[0].shots = 40;
    SetActivePack(&pack);
    const LevelConfig c = ConfigFor(1);
    EXPECT_EQ(c.shots, 6);
    EXPECT_FALSE(c.fromPack);
}

class LevelConfigPack : public RulesTest {};

TEST_F(LevelConfigPack, ALevelOfTheActivePackReplacesTheRingValues) {
    LevelPack pack;
    pack.name = "Probe";
    PackLevel first;
    first.build = 60;
    first.pieces = 18;
    first.line = 13;
    first.need = 55;
    first.shots = 7;
    first.interval = 35;
    first.directions = "NO";
    first.waves = false;
    first.prep = false;
    first.newTower = true;
    PackLevel second;
    second.shots = 20;
    second.directions = "WSON";
    pack.levels = {first, second};
    SetActivePack(&pack);
    pack.levels.clear();  // the active pack is a copy

    const LevelConfig c1 = ConfigFor(1);
    EXPECT_TRUE(c1.fromPack);
    EXPECT_FALSE(c1.waves);
    EXPECT_FALSE(c1.prep);
    EXPECT_TRUE(c1.newTower);
    EXPECT_FLOAT_EQ(c1.buildTime, 60.0f);
    EXPECT_EQ(c1.pieces, 18);
    EXPECT_EQ(c1.line, 12);  // limited to two below the top
    EXPECT_EQ(c1.need, 55);
    EXPECT_EQ(c1.shots, 7);
    EXPECT_FLOAT_EQ(c1.interval, 3.5f);
    EXPECT_EQ(Letters(c1), "NO");
    EXPECT_EQ(c1.sectors[1].centre, 24);
    EXPECT_EQ(c1.spareOnes, 3);  // 8 shots: (8 + 1) * 4 = 36, below 50
    EXPECT_FLOAT_EQ(c1.flightTime, 4.0f);  // a pack cannot set the flight

    const LevelConfig c2 = ConfigFor(2);
    EXPECT_EQ(Letters(c2), "WSON");
    // 20 shots over 4 sectors: (21 * 4 / 5 + 2) / 3 = 6.
    EXPECT_EQ(c2.spareOnes, 6);
    EXPECT_EQ(c2.spareTwos, 6);
    EXPECT_FLOAT_EQ(c2.flightTime, 3.6f);

    // Beyond the pack the built-in levels apply.
    const LevelConfig c3 = ConfigFor(3);
    EXPECT_FALSE(c3.fromPack);
    SetActivePack(nullptr);
    ExpectSameConfig(c3, ConfigFor(3));
}

TEST_F(LevelConfigPack, EmptyPacksAreNotActivated) {
    LevelPack empty;
    empty.name = "Leer";
    SetActivePack(&empty);
    EXPECT_EQ(ActivePack(), nullptr);
    LevelPack one;
    one.levels.resize(1);
    one.levels[0].name = "Erster";
    SetActivePack(&one);
    ASSERT_NE(ActivePack(), nullptr);
    EXPECT_EQ(PackLevelName(1), "Erster");
    EXPECT_EQ(PackLevelName(0), "");
    EXPECT_EQ(PackLevelName(2), "");
    SetActivePack(nullptr);
    EXPECT_EQ(ActivePack(), nullptr);
    EXPECT_EQ(PackLevelName(1), "");
}

class LevelSectors : public RulesTest {};

TEST_F(LevelSectors, CompassLettersAndTheirCentres) {
    const Settings& s = GetSettings();
    EXPECT_EQ(CompassSector('N', s).centre, 0);
    EXPECT_EQ(CompassSector('W', s).centre, 8);
    EXPECT_EQ(CompassSector('W', s).label, "Westen");
    EXPECT_EQ(CompassSector('S', s).centre, 16);
    EXPECT_EQ(CompassSector('S', s).label, "Süden");
    const Sector east = CompassSector('x', s);
    EXPECT_EQ(east.letter, 'O');
    EXPECT_EQ(east.centre, 24);
    EXPECT_EQ(east.label, "Osten");
    EXPECT_EQ(east.width, 8);
}

TEST_F(LevelSectors, ContainsTakesEightColumnsAroundTheCentre) {
    const Sector north{0, 8, 'N', "Norden"};
    std::set<int> inside;
    for (int x = 0; x < 32; ++x)
        if (north.Contains(x, 32)) inside.insert(x);
    EXPECT_EQ(inside, (std::set<int>{28, 29, 30, 31, 0, 1, 2, 3}));
    EXPECT_EQ(north.First(32), 28);
    const Sector south{16, 8, 'S', "Süden"};
    inside.clear();
    for (int x = 0; x < 32; ++x)
        if (south.Contains(x, 32)) inside.insert(x);
    EXPECT_EQ(inside, (std::set<int>{12, 13, 14, 15, 16, 17, 18, 19}));
    EXPECT_EQ(south.First(32), 12);
    // Columns beyond the ring are taken around it.
    EXPECT_TRUE(north.Contains(-1, 32));
    EXPECT_TRUE(north.Contains(35, 32));
    EXPECT_FALSE(north.Contains(36, 32));
    const Sector odd{5, 3, 'W', "Westen"};
    EXPECT_TRUE(odd.Contains(4, 32));
    EXPECT_TRUE(odd.Contains(5, 32));
    EXPECT_FALSE(odd.Contains(6, 32));  // 3 half columns away
}

class LevelDifficulty : public RulesTest {};

TEST_F(LevelDifficulty, TheTableOfTheFourDifficulties) {
    GetSettings().classic = 0;
    Game g(1);
    g.StartLevel(3);  // two sectors
    struct Row {
        int difficulty;
        bool waves, prep, builds, freeRepair;
    };
    const Row rows[] = {{0, true, true, false, true},
                        {1, false, true, false, true},
                        {2, false, false, false, true},
                        {3, false, false, true, false}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.difficulty);
        GetSettings().difficulty = r.difficulty;
        GetSettings().repair_mode = 0;
        EXPECT_EQ(g.Waves(), r.waves);
        EXPECT_EQ(g.PrepAllowed(), r.prep);
        EXPECT_EQ(g.BuildsInAttack(), r.builds);
        EXPECT_EQ(g.FreeRepair(), r.freeRepair);
        GetSettings().repair_mode = 1;
        EXPECT_FALSE(g.FreeRepair());
    }
    EXPECT_STREQ(DifficultyWord(3), "torvane");
    EXPECT_STREQ(DifficultyLabel(1), "Mittel");
    EXPECT_STREQ(DifficultyWord(4), "");
}

TEST_F(LevelDifficulty, PackLevelsIgnoreTheDifficulty) {
    LevelPack pack;
    pack.levels.resize(1);
    pack.levels[0].directions = "NSOW";
    pack.levels[0].waves = false;
    pack.levels[0].prep = true;
    SetActivePack(&pack);
    GetSettings().classic = 0;
    GetSettings().difficulty = 3;
    GetSettings().repair_mode = 0;
    Game g(1);
    g.StartLevel(1);
    EXPECT_FALSE(g.Waves());
    EXPECT_TRUE(g.PrepAllowed());
    EXPECT_FALSE(g.BuildsInAttack());
    EXPECT_TRUE(g.FreeRepair());
}

TEST_F(LevelDifficulty, NoSectorsMeansNoWaves) {
    GetSettings().classic = 1;
    GetSettings().difficulty = 0;
    Game g(1);
    g.StartLevel(1);
    EXPECT_FALSE(g.Waves());
    EXPECT_TRUE(g.PrepAllowed());
}
