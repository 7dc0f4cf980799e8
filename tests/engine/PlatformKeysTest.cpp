#include "engine/PlatformKeys.h"

#include "pge/Headless.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

namespace {

class Idle : public pge::PixelEngine {
public:
    bool OnUserCreate() override { return true; }
    bool OnUserUpdate(float) override { return true; }
};

} // namespace

// Off before Install (each test runs in a process of its own under ctest), then as the keys are held.
TEST(PlatformKeysCurrent, FollowsTheHeldModifierKeys) {
    const auto held = [] { return std::pair(adv::platformkeys::Current().shift, adv::platformkeys::Current().ctrl); };
    EXPECT_EQ(held(), std::pair(false, false));
    Idle app;
    pge::Headless run(app);
    ASSERT_TRUE(run.Create());
    adv::platformkeys::Install(&app);
    run.SetKey(pge::SHIFT, true);
    run.Frame(0.01f);
    EXPECT_EQ(held(), std::pair(true, false));
    run.Frame(0.01f); // held, no longer pressed: still counts
    EXPECT_EQ(held(), std::pair(true, false));
    run.SetKey(pge::SHIFT, false);
    run.SetKey(pge::CTRL, true);
    run.Frame(0.01f);
    EXPECT_EQ(held(), std::pair(false, true));
}

TEST(PlatformKeysLastPress, EachTypedPressInItsTurnOneAFrame) {
    Idle app;
    pge::Headless run(app);
    ASSERT_TRUE(run.Create());
    adv::platformkeys::Install(&app);
    adv::platformkeys::IgnoreKeyRepeat(true);
    adv::platformkeys::SetLogging(true);
    // The key state alone types nothing.
    run.SetKey(pge::A, true);
    run.Frame(0.01f);
    EXPECT_EQ(adv::platformkeys::LastPress().serial, 0u);
    // Three presses quicker than a frame wait for theirs, in order; then nothing is new.
    run.Type('J');
    run.Type(0xFC);
    run.Type(1, true);
    const std::vector<std::pair<uint16_t, bool>> seen = {{'J', false}, {0xFC, false}, {1, true}, {1, true}};
    for (size_t i = 0; i < seen.size(); ++i) {
        run.Frame(0.01f);
        const adv::platformkeys::KeyPress p = adv::platformkeys::LastPress();
        EXPECT_EQ(std::tuple(p.code, p.ctrl, p.command, p.serial), std::tuple(seen[i].first, seen[i].second, false, std::min<uint64_t>(i + 1, 3))) << i;
    }
    // A character beyond 16 bits is a press of its own, of code 0.
    run.Type(0x1F600);
    run.Frame(0.01f);
    EXPECT_EQ(std::pair(adv::platformkeys::LastPress().code, adv::platformkeys::LastPress().serial), std::pair(uint16_t(0), uint64_t(4)));
}
