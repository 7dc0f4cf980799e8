// Loading level packs, and a frame of the application with the editor card open.
#include "engine/Assets.h"
#include "game/content/PackFormat.h"
#include "game/content/PackStorage.h"
#include "game/rules/Level.h"
#include "game/TorvaneApp.h"
#include "pge/Headless.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// 100 packs of 30 levels each, as file texts.
std::map<std::string, std::string> HundredPacks() {
    std::map<std::string, std::string> files;
    for (int p = 0; p < 100; ++p) {
        torvane::LevelPack pack;
        pack.name = "Pack " + std::to_string(p);
        for (int l = 1; l <= 30; ++l) {
            pack.levels.push_back(torvane::DefaultPackLevel(l));
            pack.levels.back().name = "Level " + std::to_string(l);
        }
        files["pack" + std::to_string(p) + ".tpack"] = torvane::SerialisePack(pack);
    }
    return files;
}

// The parsing and sorting alone: the texts are held in memory.
void BM_LoadPacksInMemory(benchmark::State& state) {
    const std::map<std::string, std::string> files = HundredPacks();
    torvane::PackStorage store;
    store.list = [&] {
        std::vector<std::string> names;
        for (const auto& f : files) names.push_back(f.first);
        return names;
    };
    store.read = [&](const std::string& name, std::string& text) {
        text = files.at(name);
        return true;
    };
    for (auto _ : state) benchmark::DoNotOptimize(torvane::LoadPacks(store));
}
BENCHMARK(BM_LoadPacksInMemory)->Unit(benchmark::kMillisecond);

// The same packs read from a folder, as the game does at each refresh.
void BM_LoadPacksFromFolder(benchmark::State& state) {
    const fs::path folder = fs::temp_directory_path() / ("torvane_bench_packs_" + std::to_string(getpid()));
    const torvane::PackStorage store = torvane::FolderPackStorage(folder.string());
    for (const auto& [name, text] : HundredPacks()) store.write(name, text);
    for (auto _ : state) benchmark::DoNotOptimize(torvane::LoadPacks(store));
    fs::remove_all(folder);
}
BENCHMARK(BM_LoadPacksFromFolder)->Unit(benchmark::kMillisecond);

// One frame of the title screen with no title picture, with and without the editor
// card open on a level's page; the data folder is a scratch one.
void AppFrame(benchmark::State& state, bool editor) {
    const fs::path data = fs::temp_directory_path() / ("torvane_bench_data_" + std::to_string(getpid()));
    fs::remove_all(data);
    setenv("XDG_DATA_HOME", data.c_str(), 1);
    // The game's own packs are copied into it at the first start.
    adv::Assets::Init(fs::read_symlink("/proc/self/exe").string());
    torvane::TorvaneApp app;
    const char* args[] = {"torvane", "--skip-intro",
                          "--editor=down,enter,down,down,enter,down,down,down,down,down,down,down,down"};
    torvane::ApplyRunOptions(app, editor ? 3 : 2, args);
    pge::Headless run(app);
    if (!run.Create()) state.SkipWithError("OnUserCreate declined");
    if (editor) {
        for (int i = 0; i < 20; ++i) run.Frame(0.016f);
        if (!app.editorOpen || app.editor.page != 3) state.SkipWithError("the editor is not on a level's page");
    }
    for (auto _ : state) run.Frame(0.016f);
    fs::remove_all(data);
}
void BM_TitleFrame(benchmark::State& state) { AppFrame(state, false); }
void BM_EditorCardFrame(benchmark::State& state) { AppFrame(state, true); }
BENCHMARK(BM_TitleFrame)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_EditorCardFrame)->Unit(benchmark::kMicrosecond);

// The editor on a level's page of the only pack, whose name, shown behind the title, is as
// long as the argument: a frame costs the same for a name of a megabyte as for a short one.
void BM_EditorCardFrameByNameLength(benchmark::State& state) {
    const fs::path data = fs::temp_directory_path() / ("torvane_bench_data_" + std::to_string(getpid()));
    fs::remove_all(data);
    fs::create_directories(data / "Torvane" / "levelpacks");
    setenv("XDG_DATA_HOME", data.c_str(), 1);
    adv::Assets::Init(fs::read_symlink("/proc/self/exe").string());
    torvane::LevelPack pack;
    pack.name = std::string(size_t(state.range(0)), 'W');
    pack.levels.push_back(torvane::DefaultPackLevel(1));
    std::ofstream(data / "Torvane" / "levelpacks" / "Lang.tpack", std::ios::binary) << torvane::SerialisePack(pack);
    torvane::TorvaneApp app;
    const char* args[] = {"torvane", "--skip-intro", "--editor=down,enter,enter"};
    torvane::ApplyRunOptions(app, 3, args);
    pge::Headless run(app);
    if (!run.Create()) state.SkipWithError("OnUserCreate declined");
    for (int i = 0; i < 10; ++i) run.Frame(0.016f);
    if (!app.editorOpen || app.editor.page != 3) state.SkipWithError("the editor is not on a level's page");
    for (auto _ : state) run.Frame(0.016f);
    fs::remove_all(data);
}
BENCHMARK(BM_EditorCardFrameByNameLength)->Arg(16)->Arg(1 << 20)->Unit(benchmark::kMicrosecond);

} // namespace
