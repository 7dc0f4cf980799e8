// The frame's steps without a window (the rules, the camera, the bot's timers, the phase watch),
// and the auto player: where it builds, how it repairs, and whole games through the frame steps.
#include "RulesTestSupport.h"

#include "game/rules/Pieces.h"

using namespace torvane;
using namespace torvane::testing_support;

namespace {

class FrameSteps : public AttackFixture {
protected:
    AutoPlayer bot;
    float timer = 0.0f;
    Phase lastPhase = Phase::Build;
    int32_t lastLevel = 1;
    std::vector<std::pair<Phase, Phase>> changes;
    float cameraTime = 0.0f;
    frame::Hooks hooks;

    void SetUp() override {
        AttackFixture::SetUp();
        hooks.phaseChanged = [this](Phase from, Phase to) { changes.emplace_back(from, to); };
        hooks.camera = [this](float dt) { cameraTime += dt; };
    }
    bool Run(float dt, bool paused = false) {
        return frame::RunRules(frame::Refs{game, bot, timer, lastPhase, lastLevel, true, paused}, dt, hooks);
    }
};

TEST_F(FrameSteps, ThePauseStopsRulesAndBotButNotTheCameraAndACardHoldsTheBot) {
    EXPECT_FLOAT_EQ(frame::RulesStep(0.2f), 0.05f);
    timer = 0.05f;
    EXPECT_FALSE(Run(0.05f, true));
    EXPECT_EQ(game.clock, 0.0f);
    EXPECT_FLOAT_EQ(timer, 0.05f);
    EXPECT_FLOAT_EQ(cameraTime, 0.05f);
    game.phase = lastPhase = Phase::Inspect;
    game.inspectEndAt = game.clock + 0.01f;
    timer = 0.05f; // runs out in the very frame that puts up the card: the card holds it
    EXPECT_TRUE(Run(0.05f));
    EXPECT_EQ(changes, (std::vector<std::pair<Phase, Phase>>{{Phase::Inspect, Phase::Announce}}));
    EXPECT_FLOAT_EQ(timer, 2.0f);
    Run(1.95f);
    EXPECT_EQ(game.phase, Phase::Announce);
    Run(0.06f);
    EXPECT_EQ(game.phase, Phase::Attack);
}

TEST_F(FrameSteps, AnAttackFrameQueuesShotImpactAndBellInOrder) {
    const int base = Put('I', Row(0, 0, 4));
    const int load = Put('O', {{0, 1}, {1, 1}, {0, 2}, {1, 2}});
    QuietAttack();
    game.FireAt(base);
    game.shotsLeft = game.waveShotsLeft = 1;
    game.nextShotAt = game.targets[0].hitAt;
    game.TakeEvents();
    timer = 100.0f;
    Run(game.targets[0].hitAt - game.clock);
    std::vector<Event::Kind> kinds;
    for (const Event& e : game.TakeEvents()) kinds.push_back(e.kind);
    // The new shot (at the load) first, then the impact with its burst and text, then the bell.
    EXPECT_EQ(kinds, (std::vector<Event::Kind>{Event::Sound, Event::Sound, Event::Sound, Event::Burst, Event::Float,
                                               Event::Sound}));
    ASSERT_EQ(game.targets.size(), 1u);
    EXPECT_EQ(game.targets[0].piece, load);
}


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

// Plays level 1 through the application's frame steps at 60 frames a second, as the
// unattended run does, until it is judged right after a frame's rules.
GameRun PlayLevelOne(unsigned seed, bool repairs) {
    Game game(seed);
    game.NewGame();
    AutoPlayer bot;
    bot.repairs = repairs;
    GameRun run;
    float timer = 0.0f;
    Phase lastPhase = game.phase;
    int32_t lastLevel = game.level;
    frame::Hooks hooks;
    hooks.rulesStepped = [&] {
        if (game.phase == Phase::Build)
            for (const auto& [id, piece] : game.pieces)
                for (const Cell& c : piece.cells) run.outsideSector |= !piece.ruin && !game.IsAttackedColumn(c.x);
        if (!run.ended && (game.phase == Phase::Eval || game.phase == Phase::Over))
            run = GameRun{true, game.stats.passed, run.outsideSector, game.phase};
    };
    const frame::Refs refs{game, bot, timer, lastPhase, lastLevel, true, false};
    for (int n = 0; n < 60 * 60 * 10 && !run.ended; ++n) {
        frame::RunRules(refs, 1.0f / 60.0f, hooks);
        game.TakeEvents();
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
