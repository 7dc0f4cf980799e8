// Same seed, same calls: the same game. Compared by the state hash, which must see every field.
#include "RulesTestSupport.h"

#include "game/rules/StateHash.h"

#include <random>

using namespace torvane;
using namespace torvane::testing_support;

namespace {

// One step of play through the application's ways into the rules.
void Step(Game& g, int choice, float dt) {
    if (g.phase == Phase::Title || g.phase == Phase::Over) return g.NewGame();
    if (g.phase == Phase::Announce) return g.BeginAttack();
    if (g.phase == Phase::Eval) return g.NextLevel();
    if (g.phase == Phase::Build && choice % 16 < 8) {
        switch (choice % 16) {
        case 0: g.Move(-1); break;
        case 1: g.Move(1); break;
        case 2: g.Rotate(); break;
        case 3: g.Drop(); break;
        case 4: g.Cycle(); break;
        case 5: g.Undo(); break;
        case 6: g.SwitchTower(1); break;
        default: g.EndBuild(choice % 5 == 0); break;
        }
    } else {
        g.Act(static_cast<Action>(choice % 8));
    }
    g.Update(dt);
}

} // namespace

class GameDeterminism : public RulesTest {};

TEST_F(GameDeterminism, GamesWithTheSameSeedAndCallsStayIdenticalInEveryMode) {
    for (int mode = 0; mode < 8; ++mode) {
        SCOPED_TRACE(mode);
        GetSettings().classic = mode / 4;
        GetSettings().difficulty = mode % 4;
        GetSettings().repair_mode = mode % 2;
        GetSettings().piece_choice = mode % 4 >= 2;
        // The towers' stamps come from one counter of the process: each twin starts from the same.
        const uint32_t stamp = Tower::PeekRevision();
        Game a(100 + mode);
        Tower::SetNextRevision(stamp);
        Game b(100 + mode);
        std::mt19937 chooser(mode * 31 + 7);
        for (int i = 0; i < 3000; ++i) {
            const int choice = static_cast<int>(chooser() % 1000);
            const float dt = 0.01f + 0.04f * static_cast<float>(chooser() % 100) / 100.0f;
            const uint32_t before = Tower::PeekRevision();
            Step(a, choice, dt);
            Tower::SetNextRevision(before);
            Step(b, choice, dt);
            if (i % 50 == 0) {
                ASSERT_EQ(StateHash(a), StateHash(b)) << "step " << i;
                ASSERT_TRUE(GridMatchesPieces(a)) << "step " << i;
                a.TakeEvents();
                b.TakeEvents();
            }
        }
    }
}

TEST_F(GameDeterminism, TheStateHashSeesEveryKindOfField) {
    const uint32_t stamp = Tower::PeekRevision();
    const Game game(1);
    const uint64_t hash = StateHash(game);
    Tower::SetNextRevision(stamp);
    EXPECT_EQ(StateHash(Game(1)), hash);
    EXPECT_NE(StateHash(Game(2)), hash);
    Game later = game;
    later.clock += 0.25f;  // a number of seconds
    EXPECT_NE(StateHash(later), hash);
    Game renamed = game;
    ASSERT_FALSE(renamed.config.sectors.empty());
    renamed.config.sectors[0].label[0] ^= 1;  // a text of the same length
    EXPECT_NE(StateHash(renamed), hash);
    Game moved = game;
    moved.cursorX ^= 1;
    EXPECT_NE(StateHash(moved), hash);
}
