#include "engine/PlatformKeys.h"

#include "pge/Headless.h"

#include <gtest/gtest.h>

namespace {

class Idle : public pge::PixelEngine {
public:
    bool OnUserCreate() override { return true; }
    bool OnUserUpdate(float) override { return true; }
};

} // namespace

// Each test runs in a process of its own (ctest), so this one sees no Install.
TEST(PlatformKeysCurrent, BeforeInstallBothOff) {
    const adv::platformkeys::Modifiers m = adv::platformkeys::Current();
    EXPECT_FALSE(m.shift);
    EXPECT_FALSE(m.ctrl);
}

TEST(PlatformKeysCurrent, FollowsTheHeldModifierKeys) {
    Idle app;
    pge::Headless run(app);
    ASSERT_TRUE(run.Create());
    adv::platformkeys::Install(&app);
    run.SetKey(pge::SHIFT, true);
    run.Frame(0.01f);
    EXPECT_TRUE(adv::platformkeys::Current().shift);
    EXPECT_FALSE(adv::platformkeys::Current().ctrl);
    run.Frame(0.01f); // held, no longer pressed: still counts
    EXPECT_TRUE(adv::platformkeys::Current().shift);
    run.SetKey(pge::SHIFT, false);
    run.SetKey(pge::CTRL, true);
    run.Frame(0.01f);
    EXPECT_FALSE(adv::platformkeys::Current().shift);
    EXPECT_TRUE(adv::platformkeys::Current().ctrl);
}

TEST(PlatformKeysLastPress, AlwaysTheZeroRecord) {
    Idle app;
    pge::Headless run(app);
    ASSERT_TRUE(run.Create());
    adv::platformkeys::Install(&app);
    adv::platformkeys::IgnoreKeyRepeat(true);
    adv::platformkeys::SetLogging(true);
    for (int i = 0; i < 3; ++i) {
        run.SetKey(pge::A, i % 2 == 0);
        run.Frame(0.01f);
        const adv::platformkeys::KeyPress p = adv::platformkeys::LastPress();
        EXPECT_EQ(p.serial, 0u);
        EXPECT_EQ(p.code, 0);
        EXPECT_FALSE(p.ctrl || p.command);
    }
}
