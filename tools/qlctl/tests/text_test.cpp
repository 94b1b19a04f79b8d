// SPDX-License-Identifier: Apache-2.0
#include "view/text.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

TEST(Printable, ReplacesWhatATerminalWouldObey) {
    EXPECT_EQ(Printable("A\x1b[2J\n~\x7f\xE9"), "A.[2J.~..");
}

}  // namespace
}  // namespace quarlin::qlctl
