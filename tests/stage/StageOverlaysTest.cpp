// What the stage tells the player over the towers: the runner, the carousel, the edge
// arrows and the effects of the rules' events; over the towers' labels, the pictures.
#include "game/stage/Carousel.h"
#include "tests/stage/StageTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

namespace torvane {
namespace {

using namespace testing_support;
using RunnerTest = TowerViewFrameTest;
using OverlayPictureTest = TowerViewFrameTest;
using EdgeArrowTest = TowerViewFrameTest;
using EffectsTest = TowerViewFrameTest;

TEST(CarouselTest, ShowsAShortListOnceAndAtMostFive) {
    // Limited: the piece in hand and the next one only.
    const std::vector<int> five = {-2, -1, 0, 1, 2};
    const std::vector<std::tuple<int, bool, std::vector<int>>> cases = {
        {0, false, {}},  {1, false, {0}}, {2, false, {0, 1}}, {3, false, {-1, 0, 1}}, {4, false, {-1, 0, 1, 2}},
        {5, false, five}, {9, false, five}, {1, true, {0}},    {2, true, {0, 1}},      {6, true, {0, 1}}};
    for (const auto& [n, limited, offsets] : cases) EXPECT_EQ(CarouselOffsets(n, limited), offsets) << n << limited;
}

TEST_F(RunnerTest, JumpsFromTowerZeroToTwoInAThirdOfASecondMoreAndStaysAtTheGoal) {
    Game g = Started(true, 3, 7);
    ASSERT_GE(g.config.towers, 3);
    ASSERT_NE(g.SelectedType(), 0);
    // The runner's tower, and whether he jumps or runs, after an update at `time`.
    const auto at = [&](float time, float dt) {
        view.lastTime = time;
        view.UpdateRunner(g, dt, 0.0f);
        return std::tuple(view.runnerTower, view.jumping, view.running);
    };
    EXPECT_EQ(at(5.0f, 0.02f), std::tuple(0, false, false)); // put in place at the first update
    g.activeTower = 2;
    g.cursorX = 3;
    const float goal = 3.0f + static_cast<float>(ShapeWidth(Rotated(g.SelectedType(), g.rotation))) * 0.5f;
    EXPECT_EQ(at(6.0f, 0.02f), std::tuple(2, true, false));
    EXPECT_FLOAT_EQ(view.jumpDuration, 0.62f); // 0.5 + 0.12 for the tower in between
    EXPECT_FLOAT_EQ(view.runnerColumn, goal);
    // In the air he does not run, even when the piece moves.
    g.cursorX = 0;
    EXPECT_EQ(at(6.61f, 0.05f), std::tuple(2, true, false));
    EXPECT_FLOAT_EQ(view.runnerColumn, goal);
    EXPECT_EQ(at(6.63f, 0.05f), std::tuple(2, false, true));
    EXPECT_FLOAT_EQ(view.runnerColumn, goal - 0.9f); // 18 columns a second
    view.runnerColumn = goal - 3.5f; // half a column short of the goal at column 0: on towards it
    view.UpdateRunner(g, 0.02f, 0.0f);
    EXPECT_NEAR(view.runnerColumn, goal - 3.5f + 0.36f, 1e-4f);
}

// A ring under fire, seen from column 0.5: a ball on its way to a piece in view, a
// replacement laid out for another, the focus on a hole with the piece in hand fitting
// it, a ball behind the tower at the right and a hole behind it at the left.
TEST_F(OverlayPictureTest, RingUnderFire) {
    Game g = Started(false, 11, 5);
    const int top = WalledUnderFire(g);
    const int hit = Lay(g, 0, 'O', 0, 30, top + 2), flying = Lay(g, 0, 'T', 0, 3, top + 2);
    const int prepped = Lay(g, 0, 'I', 1, 1, top + 2), behind = Lay(g, 0, 'O', 0, 12, top + 2);
    const int lost = Lay(g, 0, 'O', 0, 22, top + 2);
    for (const int piece : {hit, lost}) {
        const std::vector<Cell> cells = g.pieces.at(piece).cells;
        for (const Cell& c : cells) g.RemoveCell(0, c.x, c.y);
        g.pieces.erase(piece);
        g.holes.push_back(Hole{piece, 0, cells, 8.0f, piece == hit ? 12.5f : 11.2f, 0});
    }
    const std::vector<Cell>& prep = g.pieces.at(prepped).cells;
    g.targets.push_back(Target{1, flying, 0, 7.9f, 10.9f, g.pieces.at(flying).cells, {}}); // 70 % of its way
    g.targets.push_back(Target{2, prepped, 0, 9.0f, 14.0f, prep, {Prep{'I', prep}}});
    g.targets.push_back(Target{3, behind, 0, 9.0f, 11.5f, g.pieces.at(behind).cells, {}});
    g.focus = {Focus::Hole, hit};
    g.supply = {'O', 'I', 'T', 'S', 'Z', 'L'};
    g.selected = 0;
    DrawAt(g, 2.1f, 0.5f);
    ExpectMatchesReference(Screen(), "ring_under_fire");
}

// Two targets side by side with their replacements laid out, under the focus on a hole
// just above them that the piece in hand fits: the chips give way upwards, the one over
// the other, and stand free of the focus's corners (as the picture was checked to show).
TEST_F(OverlayPictureTest, ChipsGiveWayToEachOtherAndToTheFocus) {
    Game g = Started(false, 11, 5);
    const int top = WalledUnderFire(g);
    const int left = Lay(g, 0, 'O', 0, 0, top + 2), right = Lay(g, 0, 'O', 0, 2, top + 2);
    for (const int piece : {left, right}) {
        const std::vector<Cell>& cells = g.pieces.at(piece).cells;
        g.targets.push_back(Target{piece, piece, 0, 9.0f, 14.0f, cells, {Prep{'O', cells}}});
    }
    g.holes.push_back(Hole{99, 0, {{1, top + 5}, {2, top + 5}}, 9.0f, 12.0f, 0});
    g.focus = {Focus::Hole, 99};
    g.supply = {'2'};
    g.selected = 0;
    DrawAt(g, 2.0f, 1.0f);
    ExpectMatchesReference(Screen(), "ring_chips");
}

// Three classic towers in the attack: the full carousel, the towers' shares, and the
// alarm over the third, where a ball is on its way while the player works on the first.
TEST_F(OverlayPictureTest, ClassicThreeTowersWithAlarm) {
    Game g = Started(true, 5, 4);
    ASSERT_EQ(g.config.towers, 3);
    for (int t = 0; t < 3; ++t) Lay(g, t, 'O', 0, 2 * t, g.ColumnTop(t, 2 * t));
    g.phase = Phase::Attack;
    g.clock = 7.5f;
    const int piece = g.CellAt(2, 4, g.ColumnTop(2, 4) - 1);
    ASSERT_NE(piece, 0);
    g.targets.push_back(Target{1, piece, 2, 4.0f, 9.0f, g.pieces.at(piece).cells, {}});
    DrawAt(g, 0.2f, 0.0f);
    ExpectMatchesReference(Screen(), "classic_three_towers");
}

// Debris of a hit and the points for a repair, a third of a second after the events.
TEST_F(OverlayPictureTest, DebrisAndPointsInMidFlight) {
    Game g = Started(false, 7, 1);
    g.phase = Phase::Attack;
    g.clock = 5.0f;
    const int top = g.ColumnTop(0, 0);
    DrawAt(g, 1.0f, 0.5f);
    view.OnEvent(Effect(Event::Burst, {{0, top + 3}, {1, top + 3}, {2, top + 3}}, 14), g);
    view.OnEvent(Effect(Event::Float, {{30, top}, {31, top}}, 0, "Sofort ersetzt! +150"), g);
    g.clock = 5.35f;
    DrawAt(g, 1.35f, 0.5f);
    ExpectMatchesReference(Screen(), "effects_mid_flight");
}

// The message line over a classic stage, below the carousel, fading out.
TEST_F(OverlayPictureTest, MessageLineBelowTheCarousel) {
    Game g = Started(true, 5, 2);
    DrawAt(g, 1.0f, 0.0f);
    view.DrawMessage(engine, "Kein Platz mehr in dieser Spalte", 0.6f);
    ExpectMatchesReference(Screen(), "message_line");
}

TEST_F(EdgeArrowTest, DangersBehindTheRingAreListedMostUrgentFirst) {
    Game g = EmptyGame(false, 2);
    g.phase = Phase::Attack;
    g.clock = 20.0f;
    const int near = Lay(g, 0, 'O', 0, 12, 0), far = Lay(g, 0, 'O', 0, 10, 0), seen = Lay(g, 0, 'O', 0, 1, 0);
    g.targets.push_back(Target{1, near, 0, 18.0f, 23.0f, g.pieces.at(near).cells, {}});   // 3 s to go
    g.targets.push_back(Target{2, far, 0, 18.0f, 21.0f, g.pieces.at(far).cells, {}});     // 1 s to go
    g.targets.push_back(Target{3, seen, 0, 18.0f, 20.5f, g.pieces.at(seen).cells, {}});   // in view
    g.holes.push_back(Hole{1, 0, {{22, 0}}, 17.0f, 22.0f, 0});                           // 9.5 columns left
    DrawAt(g, 0.0f, 0.5f);
    const std::vector<TowerView::EdgeArrow> arrows = view.EdgeArrows(g, view.layout);
    ASSERT_EQ(arrows.size(), 3u); // the target in view has none
    // Half view 80 / 360 * 32 = 7.11 columns; the base row 18 + 368 * 0.42. (Where the first
    // arrow on each side stands, the picture of the ring under fire shows.)
    const float base = 18.0f + 368.0f * 0.42f;
    EXPECT_FLOAT_EQ(arrows[0].left, 1.0f);
    EXPECT_FLOAT_EQ(arrows[0].d, 11.0f - 0.5f);
    EXPECT_TRUE(arrows[1].isHole);
    EXPECT_FLOAT_EQ(arrows[1].tip.y, base); // the first on the left
    EXPECT_FLOAT_EQ(arrows[2].left, 3.0f);
    EXPECT_EQ(arrows[2].tip.x, arrows[0].tip.x);
    EXPECT_FLOAT_EQ(arrows[2].tip.y, base + 22.0f); // the second on the right, below the first
}

// A burst's debris starts in its cells, four to a cell in turn, drawn from the view's own
// generator; a floater starts at the middle of its cells, across the seam too. Debris
// lives 1.2 seconds, a floater 1.4, a flash 1.2. How they fly is in the picture of the
// effects in mid-flight.
TEST_F(EffectsTest, EventsLeaveEffectsThatGoWhenTheirTimeIsUp) {
    Game g = EmptyGame(false, 1);
    DrawAt(g, 1.0f, 0.0f);
    g.clock = 7.0f;
    Event burst = Effect(Event::Burst, {{1, 2}, {5, 0}, {3, 9}}, 12);
    const std::mt19937 before = view.rng;
    view.OnEvent(burst, g);
    ASSERT_EQ(view.particles.size(), 12u);
    EXPECT_FALSE(view.rng == before);
    for (size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(static_cast<int>(std::floor(view.particles[i].x)), burst.cells[i % 3].x) << i;
        EXPECT_EQ(static_cast<int>(std::floor(view.particles[i].y)), burst.cells[i % 3].y) << i;
    }
    // No cells, or no count: nothing, and no number drawn.
    const std::mt19937 after = view.rng;
    burst.count = 0;
    view.OnEvent(burst, g);
    burst.count = 5;
    burst.cells.clear();
    view.OnEvent(burst, g);
    EXPECT_EQ(view.particles.size(), 12u);
    EXPECT_TRUE(view.rng == after);
    view.OnEvent(Effect(Event::Float, {{31, 4}, {0, 4}, {0, 5}, {31, 5}}, 0, "+150"), g); // across the seam
    ASSERT_EQ(view.floaters.size(), 1u);
    // Column centre 0 at the seam and mean row 5, each less 0.5.
    EXPECT_EQ(std::pair(view.floaters[0].x, view.floaters[0].y), std::pair(-0.5f, 4.5f));
    view.flashes.push_back({{{1, 1}}, 7.0f, 0});
    // Debris and flashes, and floaters, left at each moment.
    for (const auto& [clock, left] : {std::pair{8.19f, std::pair{13u, 1u}}, std::pair{8.21f, std::pair{0u, 1u}},
                                      std::pair{8.39f, std::pair{0u, 1u}}, std::pair{8.41f, std::pair{0u, 0u}}}) {
        g.clock = clock;
        view.DrawEffects(engine, g, view.layout);
        EXPECT_EQ(std::pair(unsigned(view.particles.size() + view.flashes.size()), unsigned(view.floaters.size())),
                  left)
            << clock;
    }
    // A new game's view starts with no debris and no runner, least of all one in mid-jump.
    view.runnerTower = 0;
    view.jumping = true;
    view.particles.push_back({});
    view.Reset();
    EXPECT_EQ(std::tuple(view.particles.empty(), view.runnerTower, view.jumping), std::tuple(true, -1, false));
}

} // namespace
} // namespace torvane
