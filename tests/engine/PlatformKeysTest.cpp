#include "engine/PlatformKeys.h"

#include "pge/Headless.h"

#include <gtest/gtest.h>

#include <utility>

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

