// The main function of all test programs. The library must not care what locale its host has set,
// so every test runs in one that writes numbers as differently as possible.

#include <gtest/gtest.h>

#include "tests/support/german_host.h"

namespace {

class CGermanEnvironment : public testing::Environment {
    void SetUp() override {
        ASSERT_TRUE(tessel::test::become_german())
            << "the locale " << tessel::test::kGermanHost.m_szLocale
            << " is missing; on Debian scripts/install_german_locale.sh installs it";
    }
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new CGermanEnvironment);
    return RUN_ALL_TESTS();
}
