// Points the whole test program at its own data folder before the first test.
#include "tests/app/DataFolder.h"

#include <gtest/gtest.h>

namespace {

class DataFolderEnvironment : public ::testing::Environment {
public:
    void SetUp() override { torvane::testing_support::FreshDataFolder(); }
    void TearDown() override { std::filesystem::remove_all(torvane::testing_support::TestDataHome()); }
};

const auto* const s_environment = ::testing::AddGlobalTestEnvironment(new DataFolderEnvironment);

} // namespace
