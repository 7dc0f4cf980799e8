// The frame's steps without a window: the rules, the camera, the bot's timers, the phase watch.
#include "AttackFixture.h"

#include "game/AutoPlayer.h"
#include "game/FrameSteps.h"

namespace torvane::testing {
namespace {

class FrameStepsFixture : public AttackFixture {
protected:
    AutoPlayer bot;
    float timer = 0.0f;
    Phase lastPhase = Phase::Build;
    int32_t lastLevel = 1;
    std::vector<std::pair<Phase, Phase>> changes;
    int restarts = 0;
    float cameraTime = 0.0f;
    frame::Hooks hooks;

    void SetUp() override {
        AttackFixture::SetUp();
        lastPhase = game.phase;
        lastLevel = game.level;
        hooks.phaseChanged = [this](Phase from, Phase to) { changes.emplace_back(from, to); };
        hooks.beforeRestart = [this] { ++restarts; };
        hooks.camera = [this](float dt) { cameraTime += dt; };
    }
    bool Run(float dt, bool paused = false) {
        return frame::RunRules(frame::Refs{game, bot, timer, lastPhase, lastLevel, true, paused}, dt, hooks);
    }
};

using FrameSteps = FrameStepsFixture;

TEST_F(FrameSteps, TheStepIsCutToAFiftieth) {
    EXPECT_FLOAT_EQ(frame::RulesStep(0.2f), 0.05f);
    EXPECT_FLOAT_EQ(frame::RulesStep(0.01f), 0.01f);
}

TEST_F(FrameSteps, ThePauseStopsRulesAndBotButNotTheCamera) {
    const float clock = game.clock;
    timer = 0.05f;
    EXPECT_FALSE(Run(0.05f, true));
    EXPECT_EQ(game.clock, clock);
    EXPECT_FLOAT_EQ(timer, 0.05f);
    EXPECT_FLOAT_EQ(cameraTime, 0.05f);
    Run(0.05f);
    EXPECT_FLOAT_EQ(game.clock, clock + 0.05f);
}

TEST_F(FrameSteps, TheBotStepsOnItsTimer) {
    timer = 0.1f;
    const std::vector<char> supply = game.supply;
    game.supply = {'I', 'O'};
    game.cursorX = 20;
    Run(0.05f);
    EXPECT_EQ(game.cursorX, 20);
    Run(0.05f); // the timer runs out: one act, then 0.11 s to the next
    EXPECT_NE(game.cursorX, 20);
    EXPECT_FLOAT_EQ(timer, 0.11f);
}

TEST_F(FrameSteps, ACardHoldsTheBotForTwoSeconds) {
    game.phase = Phase::Inspect;
    lastPhase = Phase::Inspect;
    game.inspectEndAt = game.clock + 0.01f;
    timer = 1.0f;
    EXPECT_TRUE(Run(0.05f));
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0], std::make_pair(Phase::Inspect, Phase::Announce));
    EXPECT_EQ(lastPhase, Phase::Announce);
    EXPECT_FLOAT_EQ(timer, 2.0f);
    for (int i = 0; i < 39; ++i) Run(0.05f);
    EXPECT_EQ(game.phase, Phase::Announce);
    Run(0.06f);
    EXPECT_EQ(game.phase, Phase::Attack);
    EXPECT_FLOAT_EQ(timer, 0.09f);
}

TEST_F(FrameSteps, ANewLevelInTheSamePhaseIsAChange) {
    timer = 5.0f;
    EXPECT_FALSE(Run(0.0f));
    game.level = 2;
    EXPECT_TRUE(Run(0.0f));
    EXPECT_EQ(lastLevel, 2);
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0], std::make_pair(Phase::Build, Phase::Build));
}

TEST_F(FrameSteps, ALostGameStartsAgainAfterTheCard) {
    game.phase = Phase::Over;
    game.level = 3;
    timer = 1.0f;
    Run(0.0f); // the change to the card
    EXPECT_FLOAT_EQ(timer, 2.0f);
    for (int i = 0; i < 50 && restarts == 0; ++i) Run(0.05f);
    EXPECT_EQ(restarts, 1);
    EXPECT_EQ(game.phase, Phase::Build);
    EXPECT_EQ(game.level, 1);
    EXPECT_FLOAT_EQ(timer, 0.2f);
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
    std::vector<Sfx> sounds;
    for (const Event& e : game.TakeEvents()) {
        kinds.push_back(e.kind);
        if (e.kind == Event::Sound) sounds.push_back(e.sfx);
    }
    // The shot at the load comes first, then the impact, its burst and text, then the bell.
    EXPECT_EQ(sounds, (std::vector<Sfx>{Sfx::Cannon, Sfx::Whistle, Sfx::Impact, Sfx::Bell}));
    EXPECT_EQ(kinds, (std::vector<Event::Kind>{Event::Sound, Event::Sound, Event::Sound, Event::Burst, Event::Float,
                                               Event::Sound}));
    ASSERT_EQ(game.targets.size(), 1u);
    EXPECT_EQ(game.targets[0].piece, load);
}

} // namespace
} // namespace torvane::testing
