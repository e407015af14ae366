// Every test program runs in a process with German numbers: the library must not care what locale
// its host has set.

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

// Before main(), whichever that is.
[[maybe_unused]] const testing::Environment* const g_environment =
    testing::AddGlobalTestEnvironment(new CGermanEnvironment);

}  // namespace
