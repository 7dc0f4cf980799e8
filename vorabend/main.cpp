// "Der Vorabend", a short point-and-click adventure of the Vellmark.
//   vorabend [--fullscreen] [--skip-intro] [--no-sound] [--play=FILE] [--exit-after=SECONDS]
#include "engine/Assets.h"
#include "engine/Music.h"
#include "engine/adventure/AdventureGame.h"
#include "engine/adventure/SaveGame.h"
#include "vorabend/GameLanguage.h"
#include "vorabend/PlayScript.h"
#include "vorabend/Story.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// A played run goes at a fixed pace, so that it is the same on every machine.
constexpr float kPlayStep = 0.05f;

class VorabendApp : public adv::AdventureGame {
public:
    bool OnUserCreate() override {
        AdventureGame::OnUserCreate();
        if (skipIntro) BeginPlay();
        return true;
    }
    bool OnUserUpdate(float elapsed) override {
        if (!play) return AdventureGame::OnUserUpdate(elapsed);
        play->Step(*this, kPlayStep);
        if (play->Failed()) {
            failed = true;
            return false;
        }
        return AdventureGame::OnUserUpdate(kPlayStep) && !play->Finished();
    }

    vorabend::PlayScript* play = nullptr;
    bool skipIntro = false;
    bool failed = false;
};

} // namespace

int main(int argc, char** argv) {
    // The music lies in the asset tree beside the program's real path, as the game's does.
    adv::Assets::Init(adv::Assets::ProgramPath(argc > 0 ? argv[0] : nullptr));

    VorabendApp app;
    app.sAppName = "Der Vorabend";
    vorabend::PlayScript play;
    bool fullScreen = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--fullscreen") {
            fullScreen = true;
        } else if (arg == "--skip-intro") {
            app.skipIntro = true;
        } else if (arg == "--no-sound") {
            adv::Music::Disable();
        } else if (arg.rfind("--exit-after=", 0) == 0) {
            char* end = nullptr;
            const float seconds = std::strtof(arg.c_str() + 13, &end);
            if (end == arg.c_str() + 13 || *end != '\0')
                std::fprintf(stderr, "[vorabend] Keine Zahl: %s\n", arg.c_str());
            else
                app.QuitAfter(seconds);
        } else if (arg.rfind("--play=", 0) == 0) {
            if (!play.Load(arg.substr(7))) return 1;
            app.play = &play;
        } else {
            std::fprintf(stderr, "[vorabend] Unbekannte Option: %s\n", arg.c_str());
        }
    }
    adv::savegame::SetFolderName("Vorabend");
    vorabend::FollowGameLanguage();
    app.SetLanguageKeeper([](adv::Language language) { vorabend::KeepLanguage(language); });
    app.SetContentBuilder(vorabend::BuildStory);
    if (app.Construct(adv::AdventureGame::kViewWidth, adv::AdventureGame::kViewHeight, 3, 3, fullScreen) && !app.Start())
        return 1;
    return app.failed ? 1 : 0;
}
