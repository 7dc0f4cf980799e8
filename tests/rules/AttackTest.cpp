// The start of the attack, the waves, the choice of targets and the end.
#include "AttackFixture.h"

namespace torvane::testing {
namespace {

using AttackStart = AttackFixture;

TEST_F(AttackStart, DoesNothingOutsideTheAnnouncement) {
    game.phase = Phase::Build;
    game.BeginAttack();
    EXPECT_EQ(game.phase, Phase::Build);
    EXPECT_EQ(game.wave, -1);
    EXPECT_TRUE(game.TakeEvents().empty());
}

TEST_F(AttackStart, SparesGoRightAfterTheSelectedPiece) {
    game.supply = {'I', 'O', 'T'};
    game.selected = 1;
    game.config.spareOnes = 2;
    game.config.spareTwos = 1;
    game.phase = Phase::Announce;
    game.BeginAttack();
    ASSERT_EQ(game.supply.size(), 6u);
    EXPECT_EQ(game.selected, 1);
    EXPECT_EQ(game.supply[0], 'I');
    EXPECT_EQ(game.supply[1], 'O');
    EXPECT_EQ(game.supply[5], 'T');
    std::vector<char> spares(game.supply.begin() + 2, game.supply.begin() + 5);
    std::sort(spares.begin(), spares.end());
    EXPECT_EQ(spares, (std::vector<char>{'1', '1', '2'}));
    EXPECT_EQ(game.phase, Phase::Attack);
    EXPECT_EQ(game.shotsLeft, game.config.shots);
    EXPECT_EQ(game.wave, 0);
}

TEST_F(AttackStart, SparesBecomeAnEmptySupply) {
    game.selected = 3;
    game.phase = Phase::Announce;
    game.BeginAttack();
    EXPECT_EQ(game.supply.size(), static_cast<size_t>(game.config.spareOnes + game.config.spareTwos));
    EXPECT_EQ(game.selected, 0);
}

TEST_F(AttackStart, MixedDirectionsStartAfterOnePointTwoSeconds) {
    GetSettings().difficulty = 1;
    game.phase = Phase::Announce;
    game.clock = 10.0f;
    game.BeginAttack();
    EXPECT_FLOAT_EQ(game.nextShotAt, 11.2f);
    EXPECT_EQ(game.waveShotsLeft, game.config.shots);
    const auto events = game.TakeEvents();
    EXPECT_TRUE(HasText(events, "Angriff!"));
    EXPECT_EQ(CountSound(events, Sfx::Horn), 1);
}

TEST_F(AttackStart, AWaveIsAnnouncedWithItsDirection) {
    game.phase = Phase::Announce;
    game.BeginAttack();
    EXPECT_FLOAT_EQ(game.nextShotAt, GetSettings().waveBanner);
    const auto events = game.TakeEvents();
    const auto banner = std::find_if(events.begin(), events.end(), [](const Event& e) { return e.kind == Event::Banner; });
    ASSERT_NE(banner, events.end());
    EXPECT_EQ(banner->text, "Angriffe kommen aus Norden!");
    EXPECT_FLOAT_EQ(banner->value, 3.0f);
    game.StartWave(0);
    game.TakeEvents();
    game.config.sectors.push_back(CompassSector('S', GetSettings()));
    game.StartWave(1);
    EXPECT_TRUE(HasText(game.TakeEvents(), "Angriffe kommen jetzt aus Süden!"));
}

TEST_F(AttackStart, APackLevelInMixedOrderIgnoresTheEasyDifficulty) {
    game.config.fromPack = true;
    game.config.waves = false;
    game.phase = Phase::Announce;
    game.BeginAttack();
    EXPECT_EQ(game.waveShotsLeft, game.config.shots);
    EXPECT_TRUE(HasText(game.TakeEvents(), "Angriff!"));
}

// Shots of each wave for S sectors and n shots, one StartWave at a time.
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

using AttackWaves = AttackFixture;

TEST_F(AttackWaves, ShotsAreSharedByRunningShares) {
    // Wave i takes floor(n(i+1)/S) - floor(ni/S).
    EXPECT_EQ(WaveShots(game, 2, 5), (std::vector<int>{2, 3}));
    EXPECT_EQ(WaveShots(game, 4, 2), (std::vector<int>{0, 1, 0, 1}));
    EXPECT_EQ(WaveShots(game, 3, 10), (std::vector<int>{3, 3, 4}));
    EXPECT_EQ(WaveShots(game, 4, 14), (std::vector<int>{3, 4, 3, 4}));
}

TEST_F(AttackWaves, EmptyWavesPassOneFrameAfterAnother) {
    game.config.sectors.clear();
    for (char c : std::string("NSOW")) game.config.sectors.push_back(CompassSector(c, GetSettings()));
    game.config.shots = 2;
    game.phase = Phase::Announce;
    game.BeginAttack();
    EXPECT_EQ(game.waveShotsLeft, 0);
    EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Horn), 1);
    game.Update(0.01f); // the empty first wave gives way at once
    EXPECT_EQ(game.wave, 1);
    EXPECT_EQ(game.waveShotsLeft, 1);
    EXPECT_EQ(CountSound(game.TakeEvents(), Sfx::Horn), 1);
    game.Update(0.01f);
    EXPECT_EQ(game.wave, 1); // this wave has a shot to fire first
}

TEST_F(AttackWaves, TheNextWaveWaitsForTheBannerAfterTheLastImpact) {
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
    ASSERT_GT(secondShot, 0.0f);
    EXPECT_GE(secondShot - lastImpact, GetSettings().waveBanner - 1e-4f);
}

using AttackShots = AttackFixture;

TEST_F(AttackShots, AnEmptyWallSpendsTheShotsSilently) {
    game.phase = Phase::Announce;
    game.BeginAttack();
    // Only the time of each next shot draws a number.
    std::mt19937 expected = game.rng;
    expected.discard(static_cast<unsigned long long>(game.config.shots));
    int cannons = 0;
    for (int frame = 0; frame < 4000 && game.shotsLeft > 0; ++frame) {
        game.Update(0.05f);
        cannons += CountSound(game.TakeEvents(), Sfx::Cannon);
    }
    EXPECT_EQ(game.shotsLeft, 0);
    EXPECT_EQ(cannons, 0);
    EXPECT_TRUE(game.rng == expected);
}

TEST_F(AttackShots, APieceUnderFireIsNotChosenAgain) {
    const int a = Put('I', Row(0, 0, 4));
    const int b = Put('2', Row(0, 1, 2));
    game.phase = Phase::Attack;
    game.wave = 0;
    game.FireAt(a);
    game.FireShot();
    ASSERT_EQ(game.targets.size(), 2u);
    EXPECT_EQ(game.targets[1].piece, b);
    game.FireShot(); // no candidate left: nothing fires
    EXPECT_EQ(game.targets.size(), 2u);
}

TEST_F(AttackShots, OnlyPiecesReachingIntoTheActiveSectorAreCandidates) {
    Put('I', Row(12, 0, 4));  // in the south, not under attack
    const int edge = Put('I', Row(4, 0, 4)); // columns 4..7, outside the north arc
    const int reach = Put('I', Row(2, 1, 4)); // columns 2..5 reach in
    game.phase = Phase::Attack;
    game.wave = 0;
    game.FireShot();
    ASSERT_EQ(game.targets.size(), 1u);
    EXPECT_EQ(game.targets[0].piece, reach);
    EXPECT_NE(game.targets[0].piece, edge);
}

TEST_F(AttackShots, FireAtRecordsTheFlight) {
    const int id = Put('O', {{0, 0}, {1, 0}, {0, 1}, {1, 1}});
    game.phase = Phase::Attack;
    game.clock = 2.0f;
    const int shot = game.nextShotId;
    game.FireAt(id);
    game.FireAt(999); // unknown piece: nothing
    ASSERT_EQ(game.targets.size(), 1u);
    const Target& t = game.targets[0];
    EXPECT_EQ(t.id, shot);
    EXPECT_EQ(game.nextShotId, shot + 1);
    EXPECT_FLOAT_EQ(t.hitAt, 2.0f + game.config.flightTime);
    EXPECT_EQ(t.cells, game.pieces.at(id).cells);
    const auto events = game.TakeEvents();
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].sfx, Sfx::Cannon);
    EXPECT_EQ(events[1].sfx, Sfx::Whistle);
    EXPECT_FLOAT_EQ(events[1].value, game.config.flightTime);
}

TEST_F(AttackShots, AtMostOneShotPerFrameTimedFromNow) {
    Put('I', Row(0, 0, 4));
    Put('I', Row(0, 1, 4));
    game.phase = Phase::Attack;
    game.wave = 0;
    game.shotsLeft = game.waveShotsLeft = 2;
    game.nextShotAt = 0.0f;
    game.config.interval = 4.0f;
    game.Update(0.05f);
    EXPECT_EQ(game.targets.size(), 1u);
    EXPECT_EQ(game.shotsLeft, 1);
    EXPECT_GE(game.nextShotAt, game.clock + 3.0f);
    EXPECT_LE(game.nextShotAt, game.clock + 5.0f);
}

using AttackEnd = AttackFixture;

TEST_F(AttackEnd, EndsOnePointFourSecondsAfterTheLastBall) {
    QuietAttack();
    game.shotsLeft = 0;
    const int top = Put('I', Row(0, 0, 4));
    HitNow(top);
    const float impact = game.clock;
    EXPECT_FLOAT_EQ(game.attackEndAt, impact + 1.4f);
    AdvanceTo(impact + 1.3f);
    EXPECT_EQ(game.phase, Phase::Attack);
    AdvanceTo(impact + 1.41f);
    EXPECT_EQ(game.phase, Phase::Over); // nothing stands at the line
}

} // namespace
} // namespace torvane::testing
