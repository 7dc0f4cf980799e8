#pragma once
// A headless application with its own data folder and an empty asset tree, so that
// what the screens show depends on nothing outside the test.
#include "engine/Assets.h"
#include "engine/Mixer.h"
#include "game/rules/Lang.h"
#include "game/rules/Level.h"
#include "game/TorvaneApp.h"
#include "pge/Headless.h"
#include "tests/app/DataFolder.h"

#include <gtest/gtest.h>
#include <stb_image_write.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace torvane::testing_support {

class ScreensTest : public ::testing::Test {
protected:
    void SetUp() override {
        saved = GetSettings();
        language = CurrentLanguage();
        dataFolder = FreshDataFolder();
        adv::mixer::UseOffline(44100);
    }
    void TearDown() override {
        run.reset();
        adv::mixer::UseOffline(0);
        adv::Assets::Clear();
        GetSettings() = saved;
        SetLanguage(language);
    }

    void Start(std::vector<const char*> args) {
        args.insert(args.begin(), {"torvane", "--seed=5", "--skip-intro"});
        ApplyRunOptions(app, int(args.size()), args.data());
        run = std::make_unique<pge::Headless>(app);
        ASSERT_TRUE(run->Create());
    }
    // A title picture of 320 by 200 in the asset tree, which the game scales to 640 by 400.
    void MakeTitlePicture() {
        std::vector<unsigned char> rgb(320 * 200 * 3);
        for (int i = 0; i < 320 * 200; ++i) {
            rgb[size_t(3 * i)] = uint8_t(60 + (i % 320) / 4);
            rgb[size_t(3 * i + 1)] = uint8_t(40 + (i / 320) / 2);
            rgb[size_t(3 * i + 2)] = 90;
        }
        ASSERT_NE(stbi_write_png((TestAssets() + "/torvane/title.png").c_str(), 320, 200, 3, rgb.data(),
                                 320 * 3),
                  0);
    }
    bool Frame(float dt = 0.033f) { return run->Frame(dt); }
    // Down for one frame, up for the next.
    bool Tap(pge::Key key, float dt = 0.033f) {
        run->SetKey(key, true);
        const bool alive = Frame(dt);
        run->SetKey(key, false);
        return Frame(dt) && alive;
    }
    // A left click at (x, y), with the button up again in the next frame.
    void Click(int x, int y) {
        run->MoveMouse(x, y);
        run->SetMouseButton(0, true);
        Frame();
        run->SetMouseButton(0, false);
        Frame();
    }
    bool HasButton(ButtonId id) const {
        for (const Button& b : app.buttons)
            if (b.id == id) return true;
        return false;
    }
    // The screens as the frame draws them, over a plain background in place of the
    // stage, so that their pictures change only when the screens do.
    void Compose() {
        app.buttons.clear();
        app.Clear(kBg);
        if (app.clock < app.messageUntil)
            app.view.DrawMessage(app, app.message, std::min((app.messageUntil - app.clock) / 0.3f, 1.0f));
        if (app.game.phase == Phase::Attack && app.bannerUntil > app.game.clock) app.DrawBanner();
        app.DrawHud();
        app.DrawHelp();
        app.DrawOverlay();
    }
    pge::Sprite& Screen() { return *app.GetDrawTarget(); }

    Settings saved;
    Language language = Language::English;
    std::string dataFolder;
    TorvaneApp app;
    std::unique_ptr<pge::Headless> run;
};

} // namespace torvane::testing_support
