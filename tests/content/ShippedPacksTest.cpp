// The packs that come with the game: they parse, are complete and named, and the bot plays each to its end.
#include "game/content/PackStorage.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <set>

namespace torvane {
namespace {

using ShippedPacksTest = testing_support::RulesTest;
using testing_support::PlayFrames;

const LevelPack* Find(const std::vector<LevelPack>& packs, const std::string& file) {
    for (const LevelPack& p : packs)
        if (p.file == file) return &p;
    return nullptr;
}

struct PackRun {
    int held = 0;
    bool finished = false; // the last level of the pack was held
};

// The bot plays the active pack through the application's frame steps.
PackRun PlayActivePack(unsigned seed) {
    GetSettings().auto_rotate = true;
    GetSettings().repair_mode = 1;
    Game game(seed);
    game.NewGame();
    AutoPlayer bot;
    PackRun run;
    bool ended = false;
    PlayFrames(game, bot, 60L * 60 * 60, [&](Phase before) {
        if (before != Phase::Attack) return false;
        if (game.phase == Phase::Over) return ended = true;
        if (game.phase != Phase::Eval) return false;
        ++run.held;
        return ended = run.finished = game.LastLevel();
    });
    EXPECT_TRUE(ended) << "seed " << seed;
    return run;
}

TEST_F(ShippedPacksTest, ParseCompleteAndNamed) {
    const std::vector<LevelPack> packs =
        LoadPacks(FolderPackStorage(std::string(TORVANE_SOURCE_DIR) + "/assets/torvane/levelpacks"));
    ASSERT_EQ(packs.size(), 3u);
    const LevelPack* gentle = Find(packs, "Erste_Schritte.tpack");
    const LevelPack* campaign = Find(packs, "Durch_die_Vellmark.tpack");
    const LevelPack* hard = Find(packs, "Die_Feuerprobe.tpack");
    ASSERT_TRUE(gentle && campaign && hard);
    EXPECT_EQ(gentle->name, "Erste Schritte");
    EXPECT_EQ(campaign->name, "Durch die Vellmark");
    EXPECT_EQ(hard->name, "Die Feuerprobe");
    EXPECT_GE(gentle->levels.size(), 7u);
    EXPECT_LE(gentle->levels.size(), 9u);
    EXPECT_GE(campaign->levels.size(), 15u);
    EXPECT_LE(campaign->levels.size(), 20u);
    EXPECT_EQ(hard->levels.size(), 30u);
    std::set<int> landscapes;
    for (const PackLevel& l : campaign->levels) landscapes.insert(l.background);
    EXPECT_EQ(landscapes.size(), 5u);
    for (const LevelPack& pack : packs) {
        std::set<std::string> names;
        for (const PackLevel& l : pack.levels) {
            EXPECT_FALSE(l.name.empty()) << pack.file;
            names.insert(l.name);
        }
        EXPECT_EQ(names.size(), pack.levels.size()) << pack.file << ": every level has its own name";
        // Each pack is played to its end, or to the end of the game.
        SetActivePack(&pack);
        for (unsigned seed : {1u, 2u}) {
            const PackRun run = PlayActivePack(seed);
            EXPECT_LE(run.held, static_cast<int>(pack.levels.size()));
            // The gentle pack is gentle: the bot holds it all.
            if (&pack == gentle) EXPECT_TRUE(run.finished) << "seed " << seed;
            else EXPECT_GE(run.held, 1) << pack.file << " seed " << seed;
        }
    }
}

} // namespace
} // namespace torvane
