#include "game/TorvaneApp.h"

#include "engine/Assets.h"
#include "engine/Mixer.h"
#include "game/content/ReplayFiles.h"
#include "game/rules/FrameSteps.h"
#include "game/rules/Level.h"
#include "pge/Headless.h"
#include "tests/ScratchPath.h"

#include <stb_image_write.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cmath>
#include <filesystem>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

using torvane::ApplyRunOptions;
using torvane::TorvaneApp;

namespace {

// Music and effects on a mixer without a device, for the tests that read the error stream:
// a device opens in the background and may report its absence in the middle of a capture.
struct OfflineAudio {
    OfflineAudio() { adv::mixer::UseOffline(44100); }
    ~OfflineAudio() { adv::mixer::UseOffline(0); }
};

torvane::WindowOptions Apply(TorvaneApp& app, std::vector<const char*> args) {
    args.insert(args.begin(), "torvane");
    return ApplyRunOptions(app, int(args.size()), args.data());
}

template <typename E>
std::string ThrowMessage(std::vector<const char*> args) {
    TorvaneApp app;
    try {
        Apply(app, args);
    } catch (const E& e) {
        return e.what();
    }
    return "(nothing thrown)";
}

// An asset tree of its own, found as the bundle beside a program in bin/, whose logo
// `write` puts at the path it is given; returns the tree's root.
std::string LogoAssets(const std::string& name, const std::function<bool(const std::string&)>& write) {
    const std::string root = scratch::Path("app_test_" + name);
    std::filesystem::create_directories(root + "/bin");
    std::filesystem::create_directories(root + "/Resources/assets/logo");
    EXPECT_TRUE(write(root + "/Resources/assets/logo/logo.jpg"));
    adv::Assets::Init(root + "/bin/torvane");
    return root;
}

} // namespace

TEST(TorvaneAppRunOptions, DefaultsTheWindowAndTheFlags) {
    TorvaneApp app;
    EXPECT_EQ(app.sAppName, "Torvane");
    const torvane::WindowOptions plain = Apply(app, {});
    EXPECT_FALSE(plain.windowed || plain.pixelPerfect || plain.vsync || app.skipIntro);
    EXPECT_EQ(std::tuple(plain.scale, plain.fps, app.titlePage, app.exitAt), std::tuple(2, 0, -1, 0.0f));
    EXPECT_TRUE(Apply(app, {"--windowed"}).windowed);
    const torvane::WindowOptions window = Apply(app, {"--scale=5", "--pixel-perfect", "--vsync", "--fps=30"});
    EXPECT_EQ(std::tuple(window.scale, window.fps, window.pixelPerfect, window.vsync), std::tuple(5, 30, true, true));
    // The scale is held to 1 to 8; a cap below 1 is no cap.
    EXPECT_EQ(Apply(app, {"--scale=0"}).scale, 1);
    EXPECT_EQ(Apply(app, {"--scale=12"}).scale, 8);
    EXPECT_EQ(Apply(app, {"--fps=-4"}).fps, 0);
    Apply(app, {"--pad-script=a,wait:1", "--settings", "--screenshot=out/a b.png", "--exit-on=over", "--log-keys"});
    EXPECT_TRUE(app.settingsOpen && app.skipIntro);
    EXPECT_EQ(std::tie(app.padScriptText, app.screenshotPath, app.exitOnPhase),
              std::tuple("a,wait:1", "out/a b.png", "over"));
    // Near misses and empty arguments are ignored without a word.
    TorvaneApp other;
    const torvane::WindowOptions missed = Apply(other, {"", "--windowed=1", "-windowed", "--WINDOWED", "--autoplay=x",
                                                       "--skip-intro ", "--vsync=1", "--pixel-perfect=no"});
    EXPECT_FALSE(missed.windowed || missed.vsync || missed.pixelPerfect || other.autoplay || other.skipIntro);

    TorvaneApp editor;
    Apply(editor, {"--editor=abc", "--editor"});
    EXPECT_TRUE(editor.openEditorAtStart && editor.skipIntro && editor.editorScript.empty());
    Apply(editor, {"--editor=L R X"});
    EXPECT_EQ(editor.editorScript, "L R X");
    Apply(editor, {"--editor="}); // as --editor
    EXPECT_TRUE(editor.openEditorAtStart && editor.editorScript.empty());

    TorvaneApp bot;
    Apply(bot, {"--autoplay=lazy", "--autoplay"});
    EXPECT_EQ(std::tuple(bot.autoplay, bot.autoPlayer.repairs, bot.skipIntro), std::tuple(true, true, false));
    Apply(bot, {"--autoplay=lazy"});
    EXPECT_EQ(std::tuple(bot.autoplay, bot.autoPlayer.repairs), std::tuple(true, false));

    torvane::GetSettings().classic = 0;
    TorvaneApp classic;
    Apply(classic, {"--classic"});
    EXPECT_EQ(torvane::GetSettings().classic, 1);
    torvane::GetSettings().classic = 0;
}

TEST(TorvaneAppRunOptions, NumbersFollowTheStandardParsers) {
    TorvaneApp app;
    Apply(app, {"--level=3x", "--page=  +2"});
    EXPECT_EQ(std::tuple(app.startLevel, app.titlePage, app.skipIntro), std::tuple(3, 2, true));
    // A game starts at the millionth level at most.
    Apply(app, {"--level=2147483647"});
    EXPECT_EQ(app.startLevel, 1000000);
    Apply(app, {"--exit-after=0x10"});
    EXPECT_FLOAT_EQ(app.exitAt, 16.0f);
    // The later of two options wins; the seed is narrowed to 32 bits: 2^32 + 8 is seed 8.
    Apply(app, {"--level=7", "--level=1"});
    EXPECT_EQ(app.startLevel, 1);
    Apply(app, {"--seed=7", "--seed=4294967304"});
    EXPECT_TRUE(app.game.rng == torvane::Game(8).rng);
    EXPECT_FALSE(app.game.rng == torvane::Game(7).rng);
    EXPECT_NO_THROW(Apply(app, {"--seed=4294967295", "--seed=99999999999"}));
}

TEST(TorvaneAppRunOptions, MalformedNumbersThrowNamedExceptions) {
    for (const auto& [option, parser] : {std::pair{"--seed=", "stoul"}, {"--level=x3", "stoi"}, {"--page=", "stoi"},
                                         {"--exit-after=soon", "stof"}, {"--scale=big", "stoi"}, {"--fps=", "stoi"}})
        EXPECT_EQ(ThrowMessage<std::invalid_argument>({option}), parser);
    for (const auto& [option, parser] : {std::pair{"--level=99999999999", "stoi"},
                                         {"--seed=999999999999999999999999", "stoul"}, {"--exit-after=1e999", "stof"}})
        EXPECT_EQ(ThrowMessage<std::out_of_range>({option}), parser);
    // Options before the bad one have already been applied; the run never starts anyway.
    TorvaneApp app;
    EXPECT_THROW(Apply(app, {"--windowed", "--skip-intro", "--level=", "--settings"}), std::invalid_argument);
    EXPECT_TRUE(app.skipIntro);
    EXPECT_FALSE(app.settingsOpen);
}

TEST(TorvaneAppStart, LevelOptionDecidesBetweenTitleAndGame) {
    using torvane::Phase;
    // Level 0 is none: the logo runs as without the option. Any other, like the bot, leaves it out.
    const struct {
        const char* option;
        Phase phase;
        int level;
        bool logo;
    } cases[] = {{"--level=0", Phase::Title, 1, true},   {"--level=-5", Phase::Title, 1, false},
                 {"--level=1", Phase::Build, 1, false},  {"--level=3", Phase::Build, 3, false},
                 {"--autoplay", Phase::Title, 1, false}};
    for (const auto& c : cases) {
        TorvaneApp app;
        Apply(app, {c.option});
        pge::Headless run(app);
        ASSERT_TRUE(run.Create());
        // The towers are laid out behind the title card too.
        EXPECT_EQ(std::tuple(app.game.phase, app.lastPhase, app.game.level, app.lastLevel, app.game.towers.empty(),
                             app.logoTime >= 0.0f),
                  std::tuple(c.phase, c.phase, c.level, c.level, false, c.logo))
            << c.option;
    }
}

TEST(TorvaneAppFrame, RulesGetTheCutStepAndTheClockTheRawTime) {
    TorvaneApp app;
    Apply(app, {"--level=1"});
    pge::Headless run(app);
    ASSERT_TRUE(run.Create());
    EXPECT_EQ(run.Title(), "Torvane");
    const float gameBefore = app.game.clock;
    run.Frame(0.2f);
    EXPECT_NEAR(app.game.clock - gameBefore, 0.05f, 1e-6);
    EXPECT_NEAR(app.clock, 0.2f, 1e-6); // (the pause holds the one and not the other: InputTest)
}

TEST(TorvaneAppFrame, AMinuteAtAThousandFramesASecondKeepsItsReplayUnderAThirtiethOfAMegabyte) {
    // The bot's game with the camera, at frame times of the frame clock around 1 ms with a
    // jitter of 20 microseconds: half an hour of it is to fit into one megabyte.
    torvane::replay::Members members{torvane::Game(4)};
    members.autoplay = true;
    const torvane::replay::Session s = members.S();
    torvane::replay::Recorder recorder;
    std::string stream;
    recorder.finished = [&stream](std::string done) { stream = std::move(done); };
    recorder.Do(s, {torvane::replay::Op::NewGame}, 0.0f);
    std::mt19937 engine(1);
    std::normal_distribution<double> jitter(100.0, 2.0); // ticks of 10 microseconds
    for (int frame = 0; frame < 60000; ++frame)
        recorder.Frame(s, pge::FrameSeconds(std::llround(jitter(engine))), {});
    recorder.End(s);
    ASSERT_FALSE(stream.empty());
    EXPECT_LT(torvane::replay::Pack(stream).size(), (size_t(1) << 20) / 30);
    torvane::replay::Replay read;
    torvane::replay::Error error;
    EXPECT_TRUE(torvane::replay::Decode(stream, read, error)) << torvane::replay::Describe(error);

    // The simulator's fixed step lies off the grid and costs next to nothing; it still reads.
    stream.clear();
    recorder.Do(s, {torvane::replay::Op::NewGame}, 0.0f);
    for (int frame = 0; frame < 60000 && recorder.Recording(); ++frame) recorder.Frame(s, 1.0f / 1000.0f, {});
    recorder.End(s);
    EXPECT_TRUE(torvane::replay::Decode(stream, read, error)) << torvane::replay::Describe(error);
}


// "--level=N --exit-on=CARD" with the bot, on every seed: the application sees the first
// change to the card that the rules put up, in the frame in which it comes, and holds the
// bot there, so the run ends 0.3 s later on that card. Each seed's game is played without
// pictures, by the frame steps the application runs, up to the frame before the change;
// that frame is the application's own. One application serves all seeds, the last of
// which runs on to its end.
struct CardExit {
    torvane::Phase card;
    const char* name;
    int level; // where the bot's step and the change fell into one frame before
    bool lazy;
    bool classic;
};

class TorvaneAppCardExit : public testing::TestWithParam<CardExit> {};

TEST_P(TorvaneAppCardExit, EndsAtTheFirstCardOnEverySeed) {
    using torvane::Phase;
    const OfflineAudio audio;
    const CardExit c = GetParam();
    torvane::GetSettings().classic = c.classic;
    const std::string exitOn = std::string("--exit-on=") + c.name;
    const std::string level = "--level=" + std::to_string(c.level);
    TorvaneApp app;
    Apply(app, {"--seed=1", level.c_str(), c.lazy ? "--autoplay=lazy" : "--autoplay", exitOn.c_str()});
    pge::Headless run(app);
    ASSERT_TRUE(run.Create());

    // The application's frame without its pictures: the rules, its camera and the bot.
    const auto step = [&app](const std::function<void()>& stepped) {
        torvane::frame::Hooks hooks;
        hooks.camera = [&app](float dt) {
            app.camera.Update(app.game, dt);
            app.game.viewCentre = app.camera.angle;
            app.game.viewKnown = true;
        };
        hooks.rulesStepped = stepped;
        torvane::frame::RunRules({app.game, app.autoPlayer, app.autoTimer, app.lastPhase, app.lastLevel, true, false},
                                 0.05f, hooks);
        app.game.TakeEvents();
    };
    // What a frame without pictures changes, kept now and then to go back to.
    struct Course {
        torvane::Game game;
        torvane::AutoPlayer bot;
        float timer;
        Phase phase;
        int32_t level;
        torvane::RingCamera camera;
    };
    const auto keep = [&app] {
        return Course{app.game, app.autoPlayer, app.autoTimer, app.lastPhase, app.lastLevel, app.camera};
    };
    const auto restore = [&app](const Course& mark) {
        std::tie(app.game, app.autoPlayer, app.autoTimer, app.lastPhase, app.lastLevel, app.camera) =
            std::tie(mark.game, mark.bot, mark.timer, mark.phase, mark.level, mark.camera);
    };
    for (unsigned seed = 1; seed <= 200; ++seed) {
        if (seed > 1) { // the game that "--seed" and "--level" start
            torvane::Game game(seed);
            game.NewGame();
            if (c.level > 1) game.StartLevel(c.level);
            game.TakeEvents();
            torvane::AutoPlayer bot = app.autoPlayer;
            bot.tries = 0;
            restore(Course{game, bot, 0.0f, game.phase, game.level, torvane::RingCamera()});
            app.exitAt = 0.0f;
        }
        Course mark = keep();
        int frames = 0, marked = 0, cardLevel = 0;
        for (; cardLevel == 0 && frames < 20000; ++frames) {
            if (frames % 64 == 0) {
                mark = keep();
                marked = frames;
            }
            const Phase before = app.game.phase;
            step([&] {
                if (app.game.phase == c.card && before != c.card) cardLevel = app.game.level;
            });
        }
        ASSERT_NE(cardLevel, 0) << "seed " << seed << ": no " << c.name;
        restore(mark); // back to the frame before the change
        for (int i = marked; i < frames - 1; ++i) step(nullptr);

        ASSERT_TRUE(run.Frame(0.05f));
        EXPECT_EQ(std::tuple(app.lastPhase, app.game.phase, app.game.level, app.autoTimer),
                  std::tuple(c.card, c.card, cardLevel, 2.0f))
            << "seed " << seed;
        EXPECT_FLOAT_EQ(app.exitAt, app.clock + 0.3f) << "seed " << seed;
    }
    int frames = 0;
    while (run.Frame(0.05f) && frames < 20) ++frames;
    ASSERT_FALSE(run.Running());
    EXPECT_EQ(app.game.phase, c.card);
    EXPECT_NEAR(app.clock - app.phaseStart, 0.325f, 0.026f);
    EXPECT_FALSE(app.nameEntry);
    torvane::GetSettings().classic = 0;
}

INSTANTIATE_TEST_SUITE_P(
    , TorvaneAppCardExit,
    testing::Values(CardExit{torvane::Phase::Announce, "announce", 1, false, false},
                    CardExit{torvane::Phase::Announce, "announce", 1, false, true},
                    CardExit{torvane::Phase::Eval, "eval", 3, false, false},
                    CardExit{torvane::Phase::Eval, "eval", 3, false, true},
                    CardExit{torvane::Phase::Over, "over", 3, true, false},
                    CardExit{torvane::Phase::Over, "over", 3, true, true}),
    [](const testing::TestParamInfo<CardExit>& info) {
        return std::string(info.param.name) + (info.param.classic ? "Classic" : "Ring");
    });

TEST(TorvaneAppFrame, LogoRunsForItsTimeOrUntilSkipped) {
    {
        TorvaneApp app;
        pge::Headless run(app);
        ASSERT_TRUE(run.Create());
        ASSERT_EQ(app.logoTime, 0.0f);
        // Each logo step counts at most 0.05 s, whatever the frame took.
        for (int i = 0; i < 65; ++i) run.Frame(0.5f);
        EXPECT_NEAR(app.logoTime, 3.25f, 1e-3);
        // The corner lies outside any logo picture.
        EXPECT_EQ(app.GetDrawTarget()->GetPixel(0, 0), pge::BLACK);
        // 3.3 s is the 66th step; the float sum may fall just short and need one more.
        run.Frame(0.05f);
        if (app.logoTime >= 0.0f) run.Frame(0.05f);
        EXPECT_LT(app.logoTime, 0.0f);
        EXPECT_NEAR(app.phaseStart, app.clock, 1e-3);
        run.Frame(0.05f);
        // The title follows (a picture fades in from black): the corner is black no more.
        EXPECT_NE(app.GetDrawTarget()->GetPixel(0, 0), pge::BLACK);
    }
    for (const int skip : {int(pge::SPACE), int(pge::ENTER), int(pge::ESCAPE), -1}) { // -1: a click
        TorvaneApp app;
        pge::Headless run(app);
        ASSERT_TRUE(run.Create());
        run.Frame(0.02f);
        if (skip < 0)
            run.SetMouseButton(0, true);
        else
            run.SetKey(pge::Key(skip), true);
        run.Frame(0.02f);
        EXPECT_LT(app.logoTime, 0.0f) << skip;
    }
}

TEST(TorvaneAppFrame, LogoIsCentredScaledAndFadesInAndAnUndecodableOneStaysBlack) {
    const int w = 160, h = 60;
    std::vector<unsigned char> rgb(size_t(w * h * 3));
    for (int i = 0; i < w * h; ++i) {
        rgb[size_t(3 * i)] = uint8_t(i % w + 40);
        rgb[size_t(3 * i + 1)] = uint8_t(i / w * 4);
        rgb[size_t(3 * i + 2)] = 200;
    }
    // stb reads by content, so a PNG under the logo's name serves.
    const std::string root = LogoAssets("assets_root", [&](const std::string& path) {
        return stbi_write_png(path.c_str(), w, h, 3, rgb.data(), w * 3) != 0;
    });

    TorvaneApp app;
    pge::Headless run(app);
    ASSERT_TRUE(run.Create());
    // Scale: the smaller of 537.6 / 160 and 200 / 60, cut to 3; the picture is 480 by 180.
    const int scale = 3, left = (640 - w * scale) / 2, top = (400 - h * scale) / 2;
    auto image = [&](int x, int y) {
        const size_t i = size_t(y * w + x) * 3;
        return pge::Pixel(rgb[i], rgb[i + 1], rgb[i + 2]);
    };
    for (int i = 0; i < 9; ++i) run.Frame(0.05f); // 0.45 s: half way in
    const pge::Sprite& target = *app.GetDrawTarget();
    const pge::Pixel half = target.GetPixel(left + 3 * 10 + 1, top + 3 * 5 + 2);
    const pge::Pixel full = image(10, 5);
    for (const auto& [shown, whole] : {std::pair{half.r, full.r}, {half.g, full.g}, {half.b, full.b}})
        EXPECT_NEAR(shown, whole / 2.0, 1.5);

    for (int i = 0; i < 11; ++i) run.Frame(0.05f); // 1.0 s: fully there
    EXPECT_EQ(target.GetPixel(left, top), image(0, 0));
    EXPECT_EQ(target.GetPixel(left + scale - 1, top + scale - 1), image(0, 0));
    EXPECT_EQ(target.GetPixel(left + scale, top), image(1, 0));
    EXPECT_EQ(target.GetPixel(left + w * scale - 1, top + h * scale - 1), image(w - 1, h - 1));
    EXPECT_EQ(target.GetPixel(left - 1, top), pge::BLACK);
    EXPECT_EQ(target.GetPixel(left + w * scale, top + h * scale - 1), pge::BLACK);
    EXPECT_EQ(target.GetPixel(left, top - 1), pge::BLACK);

    // A logo that does not decode leaves the screen black, even when it would be fully there.
    LogoAssets("assets_root", [](const std::string& path) {
        std::FILE* logo = std::fopen(path.c_str(), "wb");
        return logo && std::fputs("\xFF\xD8 not a picture", logo) >= 0 && std::fclose(logo) == 0;
    });
    adv::Assets::Clear();
    TorvaneApp bad;
    pge::Headless badRun(bad);
    ASSERT_TRUE(badRun.Create());
    for (int i = 0; i < 30; ++i) badRun.Frame(0.05f); // 1.5 s
    ASSERT_GE(bad.logoTime, 0.0f);
    EXPECT_EQ(std::count(bad.GetDrawTarget()->pColData.begin(), bad.GetDrawTarget()->pColData.end(), pge::BLACK),
              640 * 400);
    adv::Assets::Clear();
    std::filesystem::remove_all(root);
}

TEST(TorvaneAppFrame, OnlyATimeAboveZeroEndsTheRunAndNoPathWritesNothing) {
    const OfflineAudio audio;
    for (const char* never : {"--exit-after=0", "--exit-after=nan", "--exit-after=-1"}) {
        TorvaneApp app;
        Apply(app, {"--skip-intro", never});
        pge::Headless run(app);
        ASSERT_TRUE(run.Create());
        for (int i = 0; i < 20; ++i) ASSERT_TRUE(run.Frame(1.0f)) << never;
    }
    TorvaneApp silent;
    Apply(silent, {"--skip-intro", "--exit-after=0.3"});
    pge::Headless r(silent);
    ASSERT_TRUE(r.Create());
    testing::internal::CaptureStderr();
    EXPECT_FALSE(r.Frame(0.5f));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(TorvaneAppStart, FarLevelsStartAndPlay) {
    for (const char* level : {"--level=2147483647", "--level=536870912"}) {
        for (int classic : {0, 1}) {
            torvane::GetSettings().classic = classic;
            TorvaneApp app;
            Apply(app, {level, "--autoplay"});
            pge::Headless run(app);
            ASSERT_TRUE(run.Create());
            for (int i = 0; i < 40; ++i) ASSERT_TRUE(run.Frame(0.05f)) << level << " " << classic;
            EXPECT_GE(app.game.config.shots, 1) << level << " " << classic;
        }
    }
    torvane::GetSettings().classic = 0;
}
