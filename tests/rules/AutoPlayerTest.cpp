// The auto player: where it builds, how it repairs, and whole games through the frame steps.
#include "RulesTestSupport.h"

#include "game/AutoPlayer.h"
#include "game/FrameSteps.h"
#include "game/Pieces.h"

using namespace torvane;
using namespace torvane::testing_support;

namespace {

using AutoPlayerBuild = AttackFixture;

TEST_F(AutoPlayerBuild, PlacementsStayInsideTheSectorAndAFullSectorEndsTheBuild) {
    game.phase = Phase::Build;
    AutoPlayer bot;
    for (char letter : std::string(kTetrominoes)) {
        game.supply = {letter};
        const Placement p = bot.BestPlacement(game);
        ASSERT_TRUE(p.found) << letter;
        for (const Cell& c : Rotated(letter, p.rotation))
            EXPECT_TRUE(game.IsAttackedColumn(game.WrapX(p.x + c.x))) << letter;
    }
    for (int x = -4; x < 4; ++x) FillColumn(game, 0, game.WrapX(x), 0, game.config.height);
    game.supply = {'O', 'T'};
    EXPECT_FALSE(bot.BestPlacement(game).found);
    bot.Step(game);
    EXPECT_EQ(game.phase, Phase::Inspect);
}

TEST_F(AutoPlayerBuild, TheLazyPlayerLeavesHolesAndWithoutAFitItTriesAllThenMovesOn) {
    QuietAttack();
    game.supply = {'O', 'T', 'S'};
    game.holes.push_back(Hole{50, 0, {{0, 0}}, 0.0f, 3.0f, 0});
    game.holes.push_back(Hole{51, 0, {{1, 0}}, 0.0f, 4.0f, 0});
    game.focus = Focus{Focus::Hole, 50};
    AutoPlayer bot;
    bot.repairs = false;
    bot.Step(game);
    EXPECT_TRUE(game.TakeEvents().empty());
    bot.repairs = true;
    for (int i = 0; i < 3; ++i) bot.Step(game);
    EXPECT_EQ(bot.tries, 3);
    bot.Step(game);
    EXPECT_EQ(game.focus.id, 51);
    game.supply = {'1'};
    bot.Step(game);
    EXPECT_TRUE(Occupied(game, 0, 1, 0));
}

struct GameRun {
    bool ended = false, passed = false, outsideSector = false;
    Phase phase = Phase::Title;
};

// Plays level 1 through the frame steps, as the unattended run does, until it is judged.
GameRun PlayLevelOne(unsigned seed, bool repairs) {
    Game game(seed);
    game.NewGame();
    AutoPlayer bot;
    bot.repairs = repairs;
    float timer = 0.0f;
    Phase lastPhase = game.phase;
    int32_t lastLevel = game.level;
    GameRun run;
    frame::Hooks hooks;
    hooks.rulesStepped = [&] {
        if (run.ended || (game.phase != Phase::Eval && game.phase != Phase::Over)) return;
        run = GameRun{true, game.stats.passed, run.outsideSector, game.phase};
    };
    const frame::Refs refs{game, bot, timer, lastPhase, lastLevel, true, false};
    for (int frame = 0; frame < 60 * 60 * 10 && !run.ended; ++frame) {
        frame::RunRules(refs, 1.0f / 60.0f, hooks);
        game.TakeEvents();
        if (run.ended || game.phase != Phase::Build) continue;  // the bot may go on in the judging frame
        for (const auto& [id, piece] : game.pieces)
            for (const Cell& c : piece.cells) run.outsideSector |= !piece.ruin && !game.IsAttackedColumn(c.x);
    }
    return run;
}

class AutoPlayerGames : public RulesTest {};

TEST_F(AutoPlayerGames, MostGamesPassTheFirstLevelBuildingOnlyInTheSectorAndAllEnd) {
    GetSettings() = Settings{};
    GetSettings().difficulty = 0;
    int passed = 0;
    for (unsigned seed = 1; seed <= 50; ++seed) {
        const GameRun run = PlayLevelOne(seed, true);
        EXPECT_TRUE(run.ended) << "seed " << seed;
        EXPECT_FALSE(run.outsideSector) << "seed " << seed;
        passed += run.passed ? 1 : 0;
    }
    EXPECT_GT(passed, 25);
    const GameRun lazy = PlayLevelOne(3, false);
    ASSERT_TRUE(lazy.ended);
    EXPECT_EQ(lazy.phase, Phase::Over);
}

} // namespace
