#include "RulesTestSupport.h"

#include <climits>

using namespace torvane;
using namespace torvane::testing_support;

namespace {

std::string Letters(const LevelConfig& c) {
    std::string s;
    for (const Sector& sector : c.sectors) s += sector.letter;
    return s;
}

// The stated values of a level, -1 where nothing is stated; spares are the same
// count of ones and twos.
struct Row {
    int level, towers, width, height, line, shots, pieces, need, spares;
    float build, flight, interval;
};

void ExpectRow(const Row& r) {
    SCOPED_TRACE(r.level);
    const LevelConfig c = ConfigFor(r.level);
    // A double holds every int exactly; the times are compared to a hundred-thousandth.
    const auto expect = [](double actual, double stated) {
        if (stated >= 0) { EXPECT_NEAR(actual, stated, 1e-5); }
    };
    expect(c.towers, r.towers), expect(c.width, r.width), expect(c.height, r.height), expect(c.line, r.line);
    expect(c.shots, r.shots), expect(c.pieces, r.pieces), expect(c.need, r.need);
    expect(c.spareOnes, r.spares), expect(c.spareTwos, r.spares), expect(c.buildTime, r.build);
    expect(c.flightTime, r.flight), expect(c.interval, r.interval);
    EXPECT_FALSE(c.fromPack);
}

} // namespace

using LevelConfigTest = RulesTest;

TEST_F(LevelConfigTest, RingLevelsAsStated) {
    // Level 1 takes the row's minimum of four spares (the formula gives 2); from
    // level 8 two shots more a level, the line stops two below the top.
    ExpectRow({1, 1, 32, 14, 5, 6, 16, 50, 4, 70.0f, 4.0f, 5.0f});
    ExpectRow({7, 1, -1, -1, -1, 12, -1, -1, 7, 106.0f, -1, 3.2f / 1.75f});
    ExpectRow({9, 1, -1, -1, 9, 16, 22, 70, 7, 100.0f, 2.5f, -1});
    ExpectRow({30, 1, -1, -1, 12, 58, -1, 70, 16, 100.0f, 1.2f, 1.1f});
    // Far levels follow the same rules: 2 * (L - 7) more shots, spares from the rounded-up shots.
    ExpectRow({536870912, 1, -1, -1, 12, 1073741822, 22, 70, 286331154, 100.0f, 1.2f, 1.1f});
    // The shots would pass the range of int and stop at its end; the spares follow from them.
    ExpectRow({INT_MAX, 1, -1, -1, 12, INT_MAX, 22, 70, 572662307, 100.0f, 1.2f, 1.1f});
    EXPECT_EQ(Letters(ConfigFor(1)), "N");
    EXPECT_EQ(Letters(ConfigFor(7)), "NSOW");
    EXPECT_EQ(ConfigFor(7).sectors[3].centre, 8);  // west a quarter round
    EXPECT_EQ(Letters(ConfigFor(3)), "NS");
    EXPECT_EQ(ConfigFor(-5).pieces, ConfigFor(1).pieces);  // levels below one count as one
}

TEST_F(LevelConfigTest, ClassicLevelsAsStated) {
    GetSettings().classic = 1;
    ExpectRow({1, 1, 8, 14, 6, 6, 17, -1, 4, 70.0f, 4.0f, 5.0f});
    // 2 towers of 10 by 16: 62 percent of 320 cells, a quarter, is 49.6 -> 50 pieces.
    ExpectRow({3, 2, 10, 16, 7, 15, 50, -1, -1, 83.0f, 4.0f * 0.86f * 0.86f, 4.1f / 1.25f});
    ExpectRow({7, 5, 8, 14, -1, 54, 87, 80, 9, 135.0f, -1, -1});
    EXPECT_TRUE(ConfigFor(1).sectors.empty());
    EXPECT_EQ(ConfigFor(8).shots, 60);
    // Six shots a level for five towers would pass the range of int: they stop at its end.
    ExpectRow({357913943, 5, 8, 14, 6, INT_MAX, 87, 85, 9, 135.0f, 1.0f, 1.1f});
    EXPECT_EQ(ConfigFor(8).need, 85);
    EXPECT_EQ(ConfigFor(10).shots, 72);
    EXPECT_FLOAT_EQ(ConfigFor(10).interval, 1.1f);
    LevelPack pack;  // packs are for the ring only
    pack.levels.resize(1);
    pack.levels[0].shots = 40;
    SetActivePack(&pack);
    EXPECT_EQ(ConfigFor(1).shots, 6);
}

TEST_F(LevelConfigTest, ALevelOfTheActivePackReplacesTheRingValuesAndTheDifficulty) {
    LevelPack pack;
    pack.levels.resize(1);
    PackLevel& first = pack.levels[0];
    first.build = 60;
    first.line = 13;
    first.shots = 7;
    first.interval = 35;
    first.directions = "NO";
    first.waves = false;
    first.prep = true;
    SetActivePack(&pack);
    pack.levels.clear();  // the active pack is a copy
    const LevelConfig c1 = ConfigFor(1);
    EXPECT_TRUE(c1.fromPack);
    EXPECT_FLOAT_EQ(c1.buildTime, 60.0f);
    EXPECT_EQ(c1.line, 12);  // limited to two below the top
    EXPECT_FLOAT_EQ(c1.interval, 3.5f);
    EXPECT_EQ(Letters(c1), "NO");
    EXPECT_EQ(c1.spareOnes, 3);            // (8 * 4 / 5 + 2) / 3, no row minimum in a pack
    EXPECT_FLOAT_EQ(c1.flightTime, 4.0f);  // a pack cannot set the flight
    EXPECT_FALSE(ConfigFor(3).fromPack);   // beyond the pack the built-in levels apply
    GetSettings().classic = 0;
    GetSettings().difficulty = 3;
    GetSettings().repair_mode = 0;
    Game g(1);
    EXPECT_FALSE(g.Waves());
    EXPECT_TRUE(g.PrepAllowed());
    EXPECT_FALSE(g.BuildsInAttack());
    EXPECT_TRUE(g.FreeRepair());
    LevelPack empty;
    SetActivePack(&empty);
    EXPECT_EQ(ActivePack(), nullptr);
}
