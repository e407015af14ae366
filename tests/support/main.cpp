#include <gtest/gtest.h>

#include "tests/support/system.h"

int main(int argc, char** argv) {
    tessel::test::prepare_process();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
