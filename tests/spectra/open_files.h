#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tessel/spectra/input.h"
#include "tests/support/system.h"

namespace tessel::test {

/// Counting a file again and again leaves none of before open. The reader is closed.
inline void expect_counting_again_closes(CInput& reader, const std::string& path) {
    const int free = free_descriptor(path);
    for (int round = 0; round < 3; ++round)
        reader.Count(path);
    reader.Close();
    EXPECT_EQ(free_descriptor(path), free);
}

}  // namespace tessel::test
