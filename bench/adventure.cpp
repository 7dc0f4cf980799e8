// The adventure's costs: a path through the most cornered room, and one frame of the game.
#include "engine/adventure/AdventureGame.h"
#include "pge/Headless.h"
#include "vorabend/Story.h"

#include <benchmark/benchmark.h>

namespace {

// The smithy: five obstacles, 25 corners. A walk from the door to behind the forge
// has no straight line and must go round the barrel, the bench and the coal box.
void BM_FindPathSmithy(benchmark::State& state) {
    adv::AdventureGame game;
    pge::Headless run(game, adv::AdventureGame::kViewWidth, adv::AdventureGame::kViewHeight);
    game.SetContentBuilder(vorabend::BuildStory);
    run.Create();
    adv::Scene* smithy = game.scenes.Load(game, "werkstatt");
    adv::WalkArea& area = smithy->walkArea;
    size_t points = 0;
    for (auto _ : state) {
        const std::vector<adv::vf2d> path = area.FindPath({366, 140}, {60, 140});
        points = path.size();
        benchmark::DoNotOptimize(path.data());
    }
    state.counters["waypoints"] = double(area.nodes.size());
    state.counters["path_points"] = double(points);
}
BENCHMARK(BM_FindPathSmithy)->Unit(benchmark::kMicrosecond);

// One frame in the courtyard, the widest scene, while the player walks across it.
void BM_AdventureFrame(benchmark::State& state) {
    adv::AdventureGame game;
    pge::Headless run(game, adv::AdventureGame::kViewWidth, adv::AdventureGame::kViewHeight);
    game.SetContentBuilder(vorabend::BuildStory);
    run.Create();
    game.BeginPlay();
    game.runner.Clear();
    bool east = true;
    for (auto _ : state) {
        if (!game.Player().Walking()) {
            game.WalkPlayerTo(east ? adv::vf2d{540, 165} : adv::vf2d{40, 165});
            east = !east;
        }
        run.Frame(0.016f);
    }
}
BENCHMARK(BM_AdventureFrame)->Unit(benchmark::kMicrosecond);

} // namespace
