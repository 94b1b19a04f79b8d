// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "support/child_process_win.h"

int main(int argc, char** argv) {
    // No handler here: a child may look at what happens where nobody catches.
    if (const auto child = quarlin::test::RequestedChildMode(argc, argv)) {
        return child();
    }
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
