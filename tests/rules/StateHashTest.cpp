// The state hash, by which replays and the simulator compare games, must see every field.
#include "RulesTestSupport.h"

#include "game/rules/StateHash.h"

using namespace torvane;
using namespace torvane::testing_support;

class GameStateHash : public RulesTest {};

TEST_F(GameStateHash, SeesNumbersTextsAndTheGameOfAnotherSeed) {
    // The towers' stamps come from one counter of the process: both games start from the same.
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
