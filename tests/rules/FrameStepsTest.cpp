// The frame's steps without a window: the rules, the camera, the bot's timers, the phase watch.
#include "RulesTestSupport.h"

#include "game/rules/AutoPlayer.h"
#include "game/rules/FrameSteps.h"

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

} // namespace
