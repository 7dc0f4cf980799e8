#pragma once
// Included by a test program of the adventure: its music and sounds play on an audio engine
// without a device, never on the machine's.
#include "engine/Mixer.h"

#include <gtest/gtest.h>

namespace adv::testing {

struct OfflineAudio : ::testing::Environment {
    void SetUp() override { mixer::UseOffline(44100); }
    void TearDown() override { mixer::UseOffline(0); }
};

inline ::testing::Environment* const g_offlineAudio = ::testing::AddGlobalTestEnvironment(new OfflineAudio);

} // namespace adv::testing
