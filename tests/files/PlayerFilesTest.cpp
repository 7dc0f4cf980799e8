// Every kind of file that the game and the adventure write: it reaches the disk whole or
// not at all, and whatever else lies in its place is refused at once, never waited on.
#include "engine/Screenshot.h"
#include "engine/adventure/SaveGame.h"
#include "game/content/Highscores.h"
#include "game/content/PackFormat.h"
#include "game/content/PackStorage.h"
#include "game/content/Preferences.h"
#include "game/rules/Level.h"
#include "pge/Files.h"
#include "pge/ImageLoader.h"
#include "tests/ChildProcess.h"
#include "tests/ScratchPath.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using namespace torvane;

std::string Slurp(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void Put(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

// Left behind by a write: a file whose name starts with a dot.
int Hidden(const fs::path& folder) {
    int n = 0;
    for (const auto& entry : fs::directory_iterator(folder)) n += entry.path().filename().string()[0] == '.';
    return n;
}

// One kind of file: where it lies, a text of that kind, how the program saves it anew,
// whether what lies there now reads as that text, and how much of it is read at most.
struct Kind {
    const char* name;
    fs::path path;
    std::string text;
    std::function<bool()> save;
    std::function<bool()> reads;
    size_t limit;
};

class PlayerFilesTest : public ::testing::Test {
protected:
    void SetUp() override {
        base = scratch::Path("player_files");
        fs::remove_all(base);
        fs::create_directories(base / "elsewhere");
        setenv("XDG_DATA_HOME", base.c_str(), 1);
        adv::savegame::SetFolderName("Abenteuer");
    }
    void TearDown() override {
        fs::remove_all(base);
        GetSettings() = Settings();
    }

    std::vector<Kind> Kinds() const {
        const std::string data = preferences::Directory(), packs = data + "/levelpacks";
        pge::Sprite picture(2, 2);
        const fs::path model = base / "model.png";
        adv::screenshot::SavePng(picture, model.string());
        adv::SaveData game;
        game.scene = "hof";
        return {
            {"settings", data + "/settings.txt", "difficulty=hard\n", [] { return preferences::Save(); },
             [] { return GetSettings() = Settings(), preferences::Load(), GetSettings().difficulty == 2; },
             pge::files::kMaxDataBytes},
            {"scores", data + "/highscores.txt", "300\t3\t0\tAnna\n200\t2\t0\tJo\n100\t1\t0\tEva\n",
             [] { return highscores::Save({{"Neu", 5, 1, 0}}); }, [] { return highscores::Load().size() == 3; },
             pge::files::kMaxDataBytes},
            {"pack", packs + "/Burg.tpack", SerialisePack({"Burg", "", {DefaultPackLevel(1)}}),
             [packs] {
                 return FolderPackStorage(packs).write("Burg.tpack", SerialisePack({"Neu", "", {DefaultPackLevel(1)}}));
             },
             [packs] { return LoadPacks(FolderPackStorage(packs)).size() == 1; }, pge::files::kMaxDataBytes},
            {"save", adv::savegame::SlotPath(0), adv::savegame::Serialise(game),
             [] { adv::SaveData later; later.scene = "zinne"; return adv::savegame::Write(0, later); },
             [] {
                 adv::SaveData read;
                 return adv::savegame::Read(0, read) && read.scene == "hof";
             },
             pge::files::kMaxDataBytes},
            {"screenshot", base / "shot.png", Slurp(model),
             [this] { return adv::screenshot::SavePng(pge::Sprite(3, 3), (base / "shot.png").string()); },
             [this] {
                 pge::Sprite read;
                 return pge::LoadImage(&read, (base / "shot.png").string(), nullptr) == pge::OK && read.width == 2;
             },
             pge::kMaxImageFileBytes},
        };
    }

    fs::path base;
};

TEST_F(PlayerFilesTest, ASaveReplacesTheFileWholeOrNotAtAll) {
    for (const Kind& k : Kinds()) {
        SCOPED_TRACE(k.name);
        // The file is a link to one elsewhere, which only its owner may read.
        const fs::path real = base / "elsewhere" / k.name;
        fs::create_directories(k.path.parent_path());
        Put(real, k.text);
        const fs::perms mine = fs::perms::owner_read | fs::perms::owner_write;
        fs::permissions(real, mine);
        fs::create_symlink(real, k.path);
        // Under a file-size limit the save fails, the program lives on, the old file stays.
        EXPECT_EQ(child::Run(k.save, 10, 8), 1);
        EXPECT_EQ(Slurp(real), k.text);
        EXPECT_TRUE(k.reads());
        // Without one the file that the link names is replaced, with its permissions.
        EXPECT_TRUE(k.save());
        EXPECT_TRUE(fs::is_symlink(k.path));
        EXPECT_NE(Slurp(real), k.text);
        EXPECT_EQ(fs::status(real).permissions(), mine);
        EXPECT_EQ(Hidden(k.path.parent_path()) + Hidden(real.parent_path()), 0);
    }
}

TEST_F(PlayerFilesTest, AFifoADeviceOrAHugeFileInTheirPlaceIsRefusedAtOnce) {
    for (const Kind& k : Kinds()) {
        fs::create_directories(k.path.parent_path());
        // A FIFO without a writer, a link to /dev/zero, and a good file made too long.
        for (int hostile = 0; hostile < 3; ++hostile) {
            SCOPED_TRACE(std::string(k.name) + " " + std::to_string(hostile));
            fs::remove(k.path);
            if (hostile == 0) {
                ASSERT_EQ(mkfifo(k.path.c_str(), 0600), 0);
            }
            if (hostile == 1) fs::create_symlink("/dev/zero", k.path);
            if (hostile == 2) {
                Put(k.path, k.text);
                fs::resize_file(k.path, k.limit + 1);
            }
            EXPECT_EQ(child::Run(k.reads, 10), 1);
            // Saving does not wait on them either, and leaves them as they are.
            if (hostile < 2) {
                EXPECT_EQ(child::Run(k.save, 10), 1);
                EXPECT_FALSE(fs::is_regular_file(k.path));
            }
        }
    }
}

TEST_F(PlayerFilesTest, AFileIsReadUpToItsLimitAndNoFurther) {
    const std::string path = (base / "three").string();
    Put(path, "abc");
    std::string out = "x";
    EXPECT_TRUE(pge::files::ReadAll(path, out, 3));
    EXPECT_EQ(out, "abc");
    EXPECT_FALSE(pge::files::ReadAll(path, out, 2));
    EXPECT_EQ(out, "");
    EXPECT_FALSE(pge::files::ReadAll(base.string(), out, 100)); // a folder
    EXPECT_FALSE(pge::files::ReadAll(path + "x", out, 100));
}

} // namespace
