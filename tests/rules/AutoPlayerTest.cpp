// The auto player: where it builds, how it repairs, and whole games through the frame steps.
#include "AttackFixture.h"

#include "game/AutoPlayer.h"
#include "game/FrameSteps.h"
#include "game/Pieces.h"

namespace torvane::testing {
namespace {

using AutoPlayerBuild = AttackFixture;

TEST_F(AutoPlayerBuild, PlacementsStayInsideTheSectorAndAvoidGaps) {
    game.phase = Phase::Build;
    AutoPlayer bot;
    for (char letter : std::string("IOTLJSZ")) {
        game.supply = {letter};
        const Placement p = bot.BestPlacement(game);
        ASSERT_TRUE(p.found) << letter;
        for (const Cell& c : Rotated(letter, p.rotation))
            EXPECT_TRUE(game.IsAttackedColumn(game.WrapX(p.x + c.x))) << letter;
    }
    // An I laid flat on empty ground costs 3; upright 12.
    game.supply = {'I'};
    EXPECT_EQ(bot.BestPlacement(game).rotation, 0);
}

TEST_F(AutoPlayerBuild, AFullSectorEndsALimitedBuild) {
    for (int x = -4; x < 4; ++x) {
        std::vector<Cell> column;
        for (int y = 0; y < game.config.height; ++y) column.push_back(Cell{game.WrapX(x), y});
        Put('I', column);
    }
    game.phase = Phase::Build;
    game.buildLeft = 30.0f;
    game.supply = {'O', 'T'};
    AutoPlayer bot;
    EXPECT_FALSE(bot.BestPlacement(game).found);
    bot.Step(game);
    EXPECT_EQ(game.phase, Phase::Inspect);
}

TEST_F(AutoPlayerBuild, ItStepsTheShortWayRoundThenDrops) {
    game.phase = Phase::Build;
    game.supply = {'I'};
    game.cursorX = 20;
    game.cursorY = game.config.height;
    AutoPlayer bot;
    const Placement p = bot.BestPlacement(game);
    int steps = 0;
    while (game.pieces.empty() && steps < 64) {
        bot.Step(game);
        ++steps;
    }
    ASSERT_EQ(game.pieces.size(), 1u);
    const Piece& placed = game.pieces.begin()->second;
    EXPECT_EQ(placed.cells.front().x, game.WrapX(p.x));
    // Shortest way round the ring from 20 to the target column, then the drop.
    EXPECT_EQ(steps, static_cast<int>(std::abs(game.WrapDiff(static_cast<float>(p.x - 20)))) + 1);
}

using AutoPlayerAttack = AttackFixture;

TEST_F(AutoPlayerAttack, ALazyPlayerDoesNothingInTheAttack) {
    QuietAttack();
    game.supply = {'1'};
    Hole hole;
    hole.id = 99;
    hole.cells = {{0, 0}};
    hole.collapseAt = 3.0f;
    game.holes.push_back(hole);
    game.focus = Focus{Focus::Hole, 99};
    AutoPlayer bot;
    bot.repairs = false;
    bot.Step(game);
    EXPECT_EQ(game.CellAt(0, 0, 0), 0);
    EXPECT_TRUE(game.TakeEvents().empty());
    bot.repairs = true;
    bot.Step(game);
    EXPECT_NE(game.CellAt(0, 0, 0), 0);
}

TEST_F(AutoPlayerAttack, WithoutAFittingPieceItTriesAllThenMovesOn) {
    QuietAttack();
    game.supply = {'O', 'T', 'S'};
    for (int id : {50, 51}) {
        Hole hole;
        hole.id = id;
        hole.cells = {{id - 50, 0}};
        hole.collapseAt = static_cast<float>(id);
        game.holes.push_back(hole);
    }
    game.focus = Focus{Focus::Hole, 50};
    AutoPlayer bot;
    for (int i = 0; i < 3; ++i) bot.Step(game);
    EXPECT_EQ(bot.tries, 3);
    EXPECT_EQ(game.focus.id, 50);
    bot.Step(game);
    EXPECT_EQ(bot.tries, 0);
    EXPECT_EQ(game.focus.id, 51);
}

// Plays one game from its first level through the frame steps, as the application's
// unattended run does, until level 1 is judged or `maxFrames` have passed.
struct GameRun {
    bool ended = false;
    bool passed = false;
    Phase phase = Phase::Title;
    bool outsideSector = false;
    std::vector<Event> events;
};

GameRun PlayLevelOne(unsigned seed, bool repairs, int maxFrames = 60 * 60 * 10) {
    Game game(seed);
    game.NewGame();
    game.TakeEvents();
    AutoPlayer bot;
    bot.repairs = repairs;
    float timer = 0.0f;
    Phase lastPhase = game.phase;
    int32_t lastLevel = game.level;
    GameRun run;
    frame::Hooks hooks;
    hooks.rulesStepped = [&] {
        if (run.ended || (game.phase != Phase::Eval && game.phase != Phase::Over)) return;
        run.ended = true;
        run.passed = game.stats.passed;
        run.phase = game.phase;
    };
    const frame::Refs refs{game, bot, timer, lastPhase, lastLevel, true, false};
    for (int frame = 0; frame < maxFrames && !run.ended; ++frame) {
        frame::RunRules(refs, 1.0f / 60.0f, hooks);
        auto taken = game.TakeEvents();
        run.events.insert(run.events.end(), taken.begin(), taken.end());
        if (run.ended || (game.phase != Phase::Build && game.phase != Phase::Inspect)) continue;
        // Everything the player has built stands in counted columns.
        for (const auto& [id, piece] : game.pieces)
            for (const Cell& c : piece.cells)
                run.outsideSector = run.outsideSector || (!piece.ruin && !game.IsAttackedColumn(c.x));
    }
    return run;
}

class AutoPlayerGames : public AttackFixture {};

TEST_F(AutoPlayerGames, MostGamesPassTheFirstLevelAndAllEnd) {
    int passed = 0;
    for (unsigned seed = 1; seed <= 50; ++seed) {
        const GameRun run = PlayLevelOne(seed, true);
        EXPECT_TRUE(run.ended) << "seed " << seed;
        EXPECT_FALSE(run.outsideSector) << "seed " << seed;
        passed += run.passed ? 1 : 0;
    }
    RecordProperty("passedOf50", passed);
    EXPECT_GT(passed, 25);
}

TEST_F(AutoPlayerGames, ALazyPlayerLosesTheTower) {
    const GameRun run = PlayLevelOne(3, false);
    ASSERT_TRUE(run.ended);
    EXPECT_EQ(run.phase, Phase::Over);
    EXPECT_FALSE(run.passed);
}

TEST_F(AutoPlayerGames, TheSameSeedPlaysTheSameGame) {
    const GameRun a = PlayLevelOne(11, true);
    const GameRun b = PlayLevelOne(11, true);
    const GameRun c = PlayLevelOne(12, true);
    ASSERT_EQ(a.events.size(), b.events.size());
    bool same = true;
    for (size_t i = 0; i < a.events.size(); ++i)
        same = same && a.events[i].kind == b.events[i].kind && a.events[i].sfx == b.events[i].sfx &&
               a.events[i].cells == b.events[i].cells && a.events[i].text == b.events[i].text;
    EXPECT_TRUE(same);
    bool differs = a.events.size() != c.events.size();
    for (size_t i = 0; !differs && i < a.events.size(); ++i) differs = a.events[i].cells != c.events[i].cells;
    EXPECT_TRUE(differs);
}

} // namespace
} // namespace torvane::testing
