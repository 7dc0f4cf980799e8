#include "RulesTestSupport.h"

using namespace torvane;
using namespace torvane::testing_support;

class InspectionGaps : public RulesTest {};

TEST_F(InspectionGaps, GapsAreEmptyCellsUnderMasonry) {
    Game g = ClassicGame(1);
    FillColumn(g, 0, 2, 0, 2);
    Fill(g, 0, 2, 4);
    Fill(g, 0, 5, 3);  // a lone cell over three gaps
    EXPECT_EQ(g.GapCells(0), (std::vector<Cell>{{2, 2}, {2, 3}, {5, 0}, {5, 1}, {5, 2}}));
    const auto groups = g.GapGroups(0);
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0], (std::vector<Cell>{{5, 0}, {5, 1}, {5, 2}}));  // the lowest row first
    EXPECT_EQ(groups[1], (std::vector<Cell>{{2, 2}, {2, 3}}));
    EXPECT_TRUE(g.Loaded(0, 2, 2));
    EXPECT_TRUE(g.Loaded(0, 2, 3));
    EXPECT_FALSE(g.Loaded(0, 2, 4));
    EXPECT_FALSE(g.Loaded(0, 2, 13));
    EXPECT_FALSE(g.Loaded(0, 0, 0));
}

TEST_F(InspectionGaps, GroupsFollowNeighboursInTheirOrder) {
    Game g = ClassicGame(1);
    // An L of gaps under a roof: (1,0) (2,0) (2,1), covered by row 2.
    for (int x = 0; x < 4; ++x) Fill(g, 0, x, 2);
    Fill(g, 0, 0, 0);
    Fill(g, 0, 0, 1);
    Fill(g, 0, 3, 0);
    Fill(g, 0, 3, 1);
    Fill(g, 0, 1, 1);
    const auto groups = g.GapGroups(0);
    ASSERT_EQ(groups.size(), 1u);
    // From (1,0): push (2,0); pop (2,0): push (2,1); pop (2,1).
    EXPECT_EQ(groups[0], (std::vector<Cell>{{1, 0}, {2, 0}, {2, 1}}));
}

TEST_F(InspectionGaps, TheRingSeamJoinsGroupsAndTheClassicEdgeDoesNot) {
    Game ring = RingGame(1);
    Fill(ring, 0, 31, 1);
    Fill(ring, 0, 0, 1);
    const auto joined = ring.GapGroups(0);
    ASSERT_EQ(joined.size(), 1u);
    EXPECT_EQ(joined[0].size(), 2u);

    Game classic = ClassicGame(1);
    Fill(classic, 0, 7, 1);
    Fill(classic, 0, 0, 1);
    EXPECT_EQ(classic.GapGroups(0).size(), 2u);
}

class InspectionEndBuild : public RulesTest {};

TEST_F(InspectionEndBuild, EverythingOverAGapFalls) {
    Game g = ClassicGame(1);
    FillColumn(g, 0, 2, 0, 2);
    Fill(g, 0, 2, 4);
    g.EndBuild(false);
    EXPECT_EQ(g.phase, Phase::Inspect);
    EXPECT_EQ(g.stats.gapCells, 2);
    EXPECT_EQ(g.stats.dropped, 1);
    EXPECT_EQ(g.stats.lost, 1);
    EXPECT_EQ(g.stats.timeBonus, 0);
    EXPECT_FALSE(Occupied(g, 0, 2, 4));
    EXPECT_TRUE(Occupied(g, 0, 2, 1));
    const std::vector<Event> events = g.TakeEvents();
    ASSERT_EQ(events.size(), 3u);  // burst, then sound and message
    EXPECT_EQ(events[0].kind, Event::Burst);
    EXPECT_EQ(events[0].count, 3);
    EXPECT_EQ(events[0].cells, (std::vector<Cell>{{2, 4}}));
    EXPECT_EQ(events[1].sfx, Sfx::Collapse);
    EXPECT_EQ(events[2].text, "Bauabnahme: 1 Felder eingestürzt");
    EXPECT_FLOAT_EQ(g.inspectEndAt, 1.8f);
    EXPECT_TRUE(GridMatchesPieces(g));
}

TEST_F(InspectionEndBuild, GapsAreFoundOnEveryTower) {
    Game g = ClassicGame(2);
    Fill(g, 0, 0, 1);
    FillColumn(g, 1, 4, 2, 5);
    g.EndBuild(false);
    EXPECT_EQ(g.stats.gapCells, 1 + 2);
    EXPECT_EQ(g.stats.dropped, 1 + 3);
    EXPECT_EQ(CountCells(g, 0) + CountCells(g, 1), 0);
    const std::vector<Event> events = g.TakeEvents();
    ASSERT_GE(events.size(), 2u);
    EXPECT_EQ(events[0].tower, 0);
    EXPECT_EQ(events[1].tower, 1);
    EXPECT_EQ(events[1].count, 9);
}

TEST_F(InspectionEndBuild, ACleanWallIsPraisedAndShortlyInspected) {
    Game g = ClassicGame(1);
    FillColumn(g, 0, 0, 0, 5);
    g.clock = 10.0f;
    g.EndBuild(false);
    const std::vector<Event> events = g.TakeEvents();
    EXPECT_EQ(Texts(events, Event::Say), std::vector<std::string>{"Bauabnahme: sauber gemauert!"});
    EXPECT_TRUE(Sounds(events).empty());
    EXPECT_FLOAT_EQ(g.inspectEndAt, 10.9f);
    EXPECT_EQ(g.stats.gapCells, 0);
    g.Update(0.85f);
    EXPECT_EQ(g.phase, Phase::Inspect);
    g.Update(0.1f);
    EXPECT_EQ(g.phase, Phase::Announce);
}

TEST_F(InspectionEndBuild, EarlyEndEarnsTwoPerWholeSecondOverOne) {
    struct Case {
        float left;
        int bonus;
    };
    for (const Case& c : {Case{1.0f, 0}, Case{1.5f, 2}, Case{10.9f, 20}, Case{0.5f, 0}}) {
        Game g = ClassicGame(1);
        g.score = 100;
        g.buildLeft = c.left;
        g.EndBuild(true);
        EXPECT_EQ(g.stats.timeBonus, c.bonus) << c.left;
        EXPECT_EQ(g.score, 100 + c.bonus) << c.left;
    }
    Game late = ClassicGame(1);
    late.buildLeft = 30.0f;
    late.EndBuild(false);  // the clock ran out or the last piece was used: no bonus
    EXPECT_EQ(late.stats.timeBonus, 0);
}

TEST_F(InspectionEndBuild, OnlyTheBuildPhaseCanEnd) {
    for (Phase p : {Phase::Title, Phase::Inspect, Phase::Announce, Phase::Attack, Phase::Eval, Phase::Over}) {
        Game g = ClassicGame(1);
        Fill(g, 0, 0, 3);
        g.phase = p;
        g.buildLeft = 20.0f;
        g.autoEndAt = 4.0f;
        g.EndBuild(true);
        EXPECT_EQ(g.phase, p);
        EXPECT_EQ(g.score, 0);
        EXPECT_EQ(g.autoEndAt, 4.0f);
        EXPECT_TRUE(Occupied(g, 0, 0, 3));
        EXPECT_TRUE(g.TakeEvents().empty());
    }
}

TEST_F(InspectionEndBuild, BurstsAreCappedAtForty) {
    for (int count : {13, 14, 20}) {
        Game g = ClassicGame(1);
        // Gaps at row 0 of columns 0 and 1 form one group; 13 rows fit over each.
        FillColumn(g, 0, 0, 1, 1 + std::min(count, 13));
        FillColumn(g, 0, 1, 1, 1 + count - std::min(count, 13));
        g.EndBuild(false);
        EXPECT_EQ(g.stats.dropped, count);
        const std::vector<Event> events = g.TakeEvents();
        ASSERT_EQ(events[0].kind, Event::Burst);
        EXPECT_EQ(events[0].count, std::min(3 * count, 40)) << count;
        EXPECT_EQ(events[1].kind, Event::Sound);
    }
}

TEST_F(InspectionEndBuild, NoTowersGiveTheCleanVerdict) {
    Game g = ClassicGame(1);
    g.towers.clear();
    g.EndBuild(false);
    EXPECT_EQ(Texts(g.TakeEvents(), Event::Say), std::vector<std::string>{"Bauabnahme: sauber gemauert!"});
}
