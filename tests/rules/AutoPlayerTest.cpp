// The auto player: where it builds, how it repairs, and whole games through the frame steps.
#include "RulesTestSupport.h"

#include "game/rules/Pieces.h"

using namespace torvane;
using namespace torvane::testing_support;

namespace {

using AutoPlayerBuild = AttackFixture;

TEST_F(AutoPlayerBuild, PlacementsStayInsideTheSectorAndAFullSectorEndsTheBuild) {
    game.phase = Phase::Build;
    AutoPlayer bot;
    game.supply = {'I'};
    const Placement p = bot.BestPlacement(game);
    ASSERT_TRUE(p.found);
    EXPECT_EQ(p.rotation, 0);  // flat on empty ground leaves no gap
    for (const Cell& c : Rotated('I', p.rotation)) EXPECT_TRUE(game.IsAttackedColumn(game.WrapX(p.x + c.x)));
    for (int x = -4; x < 4; ++x) FillColumn(game, 0, game.WrapX(x), 0, game.config.height);
    game.supply = {'O', 'T'};
    EXPECT_FALSE(bot.BestPlacement(game).found);
    GetSettings().piece_choice = true;  // the next piece is tried first
    bot.Step(game);
    EXPECT_EQ(game.selected, 1);
    GetSettings().piece_choice = false;
    bot.Step(game);
    EXPECT_EQ(game.phase, Phase::Inspect);
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
    GameRun run;
    PlayFrames(game, bot, 60L * 60 * 10, [&](Phase) {
        if (game.phase == Phase::Build)
            for (const auto& [id, piece] : game.pieces)
                for (const Cell& c : piece.cells) run.outsideSector |= !piece.ruin && !game.IsAttackedColumn(c.x);
        if (game.phase != Phase::Eval && game.phase != Phase::Over) return false;
        run = GameRun{true, game.stats.passed, run.outsideSector, game.phase};
        return true;
    });
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
