// The start of the attack, the waves, the choice of targets and the end.
#include "RulesTestSupport.h"

#include <set>

using namespace torvane;
using namespace torvane::testing_support;

namespace {

using AttackTest = AttackFixture;

TEST_F(AttackTest, OnlyFromTheAnnouncementAndTheSparesGoRightAfterTheSelectedPiece) {
    game.BeginAttack();  // still building
    EXPECT_EQ(game.phase, Phase::Build);
    game.supply = {'I', 'O', 'T'};
    game.selected = 1;
    game.config.spareOnes = 2;
    game.config.spareTwos = 1;
    game.phase = Phase::Announce;
    game.BeginAttack();
    ASSERT_EQ(game.supply.size(), 6u);
    EXPECT_EQ(std::make_tuple(game.supply[1], game.supply[5]), std::make_tuple('O', 'T'));
    EXPECT_EQ(std::multiset<char>(game.supply.begin() + 2, game.supply.begin() + 5),
              (std::multiset<char>{'1', '1', '2'}));
    EXPECT_FLOAT_EQ(game.nextShotAt, GetSettings().waveBanner);
    const auto events = game.TakeEvents();
    EXPECT_EQ(Texts(events, Event::Banner), std::vector<std::string>{"Angriffe kommen aus Norden!"});
    EXPECT_EQ(CountSound(events, Sfx::Horn), 1);
    game.supply.clear();  // nothing left from the build: the spares are the supply
    game.phase = Phase::Announce;
    game.BeginAttack();
    EXPECT_EQ(std::multiset<char>(game.supply.begin(), game.supply.end()), (std::multiset<char>{'1', '1', '2'}));
    EXPECT_EQ(game.selected, 0);
}

// Shots of each wave for `sectors` sectors and `shots` shots.
std::vector<int> WaveShots(Game& game, int sectors, int shots) {
    game.config.sectors.clear();
    for (int i = 0; i < sectors; ++i) game.config.sectors.push_back(CompassSector("NSOW"[i], GetSettings()));
    game.config.shots = shots;
    game.phase = Phase::Attack;
    std::vector<int> split;
    for (int i = 0; i < sectors; ++i) {
        game.StartWave(i);
        split.push_back(game.waveShotsLeft);
    }
    return split;
}

TEST_F(AttackTest, ShotsAreSharedByRunningSharesAndEmptyWavesPassAtOnce) {
    // Wave i takes floor(n(i+1)/S) - floor(ni/S).
    EXPECT_EQ(WaveShots(game, 2, 5), (std::vector<int>{2, 3}));
    EXPECT_EQ(WaveShots(game, 4, 2), (std::vector<int>{0, 1, 0, 1}));
    EXPECT_TRUE(HasText(game.TakeEvents(), "Angriffe kommen jetzt aus Süden!"));
    game.phase = Phase::Announce;
    game.BeginAttack();
    EXPECT_EQ(game.waveShotsLeft, 0);
    game.TakeEvents();
    game.Update(0.01f);
    EXPECT_EQ(std::make_tuple(game.wave, CountSound(game.TakeEvents(), Sfx::Horn)), std::make_tuple(1, 1));
}

TEST_F(AttackTest, TheNextWaveWaitsForTheBannerAfterTheLastImpact) {
    game.config.sectors = {CompassSector('N', GetSettings()), CompassSector('S', GetSettings())};
    game.config.shots = 2;
    Put('I', Row(0, 0, 4));
    Put('I', Row(14, 0, 4));
    game.phase = Phase::Announce;
    game.BeginAttack();
    float lastImpact = -1.0f, secondShot = -1.0f;
    for (int frame = 0; frame < 2000 && secondShot < 0.0f; ++frame) {
        game.Update(0.05f);
        const auto events = game.TakeEvents();
        if (CountSound(events, Sfx::Impact) > 0 && game.wave == 0) lastImpact = game.clock;
        if (game.wave == 1 && CountSound(events, Sfx::Cannon) > 0) secondShot = game.clock;
    }
    ASSERT_GT(lastImpact, 0.0f);
    EXPECT_GE(secondShot - lastImpact, GetSettings().waveBanner - 1e-4f);
}

TEST_F(AttackTest, CandidatesReachIntoTheActiveSectorAndAreNotUnderFire) {
    Put('I', Row(12, 0, 4));                   // in the south, not under attack
    Put('I', Row(4, 0, 4));                    // columns 4..7, outside the north arc
    const int reach = Put('I', Row(2, 1, 4));  // columns 2..5 reach in
    const int top = Put('2', Row(2, 2, 2));
    game.phase = Phase::Attack;
    game.wave = 0;
    game.clock = 2.0f;
    game.FireAt(top);
    game.FireAt(999);  // unknown piece: nothing
    ASSERT_EQ(game.targets.size(), 1u);
    EXPECT_FLOAT_EQ(game.targets[0].hitAt, 2.0f + game.config.flightTime);
    EXPECT_EQ(Sounds(game.TakeEvents()), (std::vector<Sfx>{Sfx::Cannon, Sfx::Whistle}));
    game.FireShot();
    ASSERT_EQ(game.targets.size(), 2u);
    EXPECT_EQ(game.targets[1].piece, reach);
    game.FireShot();  // no candidate left
    EXPECT_EQ(game.targets.size(), 2u);
}

TEST_F(AttackTest, TheAttackEndsOnePointFourSecondsAfterTheLastBall) {
    QuietAttack();
    game.shotsLeft = 0;
    HitNow(Put('I', Row(0, 0, 4)));
    const float impact = game.clock;
    AdvanceTo(impact + 1.39f);
    EXPECT_EQ(game.phase, Phase::Attack);
    AdvanceTo(impact + 1.41f);
    EXPECT_EQ(game.phase, Phase::Over);  // nothing stands at the line
}

} // namespace
