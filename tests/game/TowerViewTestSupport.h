#pragma once
// Shared set-up for the tower view's tests: a private asset tree, a headless engine
// to draw into, a paletted PNG writer for test backgrounds, and comparison with the
// reference pictures in tests/reference.
#include "engine/Assets.h"
#include "engine/Screenshot.h"
#include "game/TowerView.h"
#include "pge/Headless.h"
#include "pge/PixelEngine.h"
#include "tests/rules/RulesTestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace torvane::testing_support {

// A fresh asset tree below the build folder, made the asset root.
inline std::string MakeAssetRoot(const std::string& name) {
    namespace fs = std::filesystem;
    const fs::path base = fs::path(TORVANE_BINARY_DIR) / "tower_view_tests" / name;
    fs::remove_all(base);
    fs::create_directories(base / "bin");
    fs::create_directories(base / "Resources" / "assets" / "torvane");
    adv::Assets::Init((base / "bin" / "torvane").string());
    return adv::Assets::Root();
}

inline void WriteText(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

// An 8-bit paletted PNG with stored deflate blocks; `pixels` row-major indices.
inline void WritePalettedPng(const std::string& path, int w, int h, const std::vector<uint8_t>& pixels,
                             const std::vector<pge::Pixel>& palette) {
    using Bytes = std::vector<uint8_t>;
    const auto u32 = [](Bytes& out, uint32_t v) {
        for (int s = 24; s >= 0; s -= 8) out.push_back(static_cast<uint8_t>(v >> s));
    };
    const auto crc = [](const Bytes& data) {
        uint32_t c = 0xFFFFFFFFu;
        for (uint8_t b : data) {
            c ^= b;
            for (int k = 0; k < 8; ++k) c = (c >> 1) ^ (0xEDB88320u & (0u - (c & 1u)));
        }
        return c ^ 0xFFFFFFFFu;
    };
    const auto chunk = [&](Bytes& out, const char* type, const Bytes& data) {
        u32(out, static_cast<uint32_t>(data.size()));
        Bytes body(type, type + 4);
        body.insert(body.end(), data.begin(), data.end());
        out.insert(out.end(), body.begin(), body.end());
        u32(out, crc(body));
    };
    Bytes raw;
    for (int y = 0; y < h; ++y) {
        raw.push_back(0); // filter: none
        raw.insert(raw.end(), pixels.begin() + y * w, pixels.begin() + (y + 1) * w);
    }
    Bytes z{0x78, 0x01};
    uint32_t a = 1, b = 0;
    for (uint8_t v : raw) {
        a = (a + v) % 65521u;
        b = (b + a) % 65521u;
    }
    for (size_t at = 0; at < raw.size() || at == 0; at += 65535) {
        const size_t n = std::min<size_t>(65535, raw.size() - at);
        z.push_back(at + n >= raw.size() ? 1 : 0);
        z.push_back(static_cast<uint8_t>(n));
        z.push_back(static_cast<uint8_t>(n >> 8));
        z.push_back(static_cast<uint8_t>(~n));
        z.push_back(static_cast<uint8_t>(~n >> 8));
        z.insert(z.end(), raw.begin() + static_cast<long>(at), raw.begin() + static_cast<long>(at + n));
        if (at + n >= raw.size()) break;
    }
    u32(z, (b << 16) | a);
    Bytes header;
    u32(header, static_cast<uint32_t>(w));
    u32(header, static_cast<uint32_t>(h));
    header.insert(header.end(), {8, 3, 0, 0, 0});
    Bytes pal;
    for (const pge::Pixel& p : palette) pal.insert(pal.end(), {p.r, p.g, p.b});
    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    chunk(file, "IHDR", header);
    chunk(file, "PLTE", pal);
    chunk(file, "IDAT", z);
    chunk(file, "IEND", {});
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(file.data()),
                                                static_cast<std::streamsize>(file.size()));
}

// The whole draw target against tests/reference/<name>.png, colour channels only,
// each within 2. A failure writes <name>-actual.png and <name>-diff.png (differing
// pixels in red) into the build folder. With TORVANE_UPDATE_REFERENCES set the
// reference is written instead, to be looked at before it is committed.
inline void ExpectMatchesReference(const pge::Sprite& actual, const std::string& name) {
    namespace fs = std::filesystem;
    const fs::path reference = fs::path(TORVANE_SOURCE_DIR) / "tests" / "reference" / (name + ".png");
    if (std::getenv("TORVANE_UPDATE_REFERENCES")) {
        fs::create_directories(reference.parent_path());
        ASSERT_TRUE(adv::screenshot::SavePng(actual, reference.string()));
        return;
    }
    const pge::Sprite expected(reference.string());
    ASSERT_EQ(expected.width, actual.width) << reference;
    ASSERT_EQ(expected.height, actual.height) << reference;
    pge::Sprite diff(actual.width, actual.height);
    int differing = 0;
    for (int y = 0; y < actual.height; ++y)
        for (int x = 0; x < actual.width; ++x) {
            const pge::Pixel a = actual.GetPixel(x, y), e = expected.GetPixel(x, y);
            const bool same = std::abs(a.r - e.r) <= 2 && std::abs(a.g - e.g) <= 2 && std::abs(a.b - e.b) <= 2;
            differing += same ? 0 : 1;
            diff.SetPixel(x, y, same ? pge::Pixel(e.r / 4, e.g / 4, e.b / 4) : pge::Pixel(255, 0, 0));
        }
    if (differing > 0) {
        const fs::path out = fs::path(TORVANE_BINARY_DIR) / "tower_view_tests";
        fs::create_directories(out);
        adv::screenshot::SavePng(actual, (out / (name + "-actual.png")).string());
        adv::screenshot::SavePng(diff, (out / (name + "-diff.png")).string());
    }
    EXPECT_EQ(differing, 0) << name << ": see " << TORVANE_BINARY_DIR << "/tower_view_tests";
}

// An engine that only offers its draw target.
struct DrawOnlyEngine : pge::PixelEngine {
    bool OnUserCreate() override { return true; }
};

// A headless engine with its 640 by 400 draw target, for the span of a test.
class TowerViewTest : public RulesTest {
protected:
    void SetUp() override {
        RulesTest::SetUp();
        run = std::make_unique<pge::Headless>(engine);
        ASSERT_TRUE(run->Create());
    }
    void TearDown() override {
        run.reset();
        RulesTest::TearDown();
    }
    pge::Sprite& Screen() { return *engine.GetDrawTarget(); }

    DrawOnlyEngine engine;
    std::unique_ptr<pge::Headless> run;
    TowerView view;
    const StageRect stage{0, 18, 640, 368};
};

} // namespace torvane::testing_support
