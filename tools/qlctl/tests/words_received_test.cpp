// SPDX-License-Identifier: Apache-2.0
#include "view/words_received.h"

#include <gtest/gtest.h>
#include <vector>

namespace quarlin::qlctl {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(WordsWithout, CountsWordsUpToTheLastThatIsNotAllFill) {
    EXPECT_EQ(WordsWithout(0x5A, Bytes{}), 0U);
    EXPECT_EQ(WordsWithout(0x5A, Bytes{0x5A, 0x5A}), 0U);
    EXPECT_EQ(WordsWithout(0x5A, Bytes{0x01, 0x5A, 0x5A, 0x5A}), 1U);
    EXPECT_EQ(WordsWithout(0x5A, Bytes{0x5A, 0x5A, 0x5A, 0x01, 0x5A, 0x5A}), 2U);
    EXPECT_EQ(WordsWithout(0x5A, Bytes{0xA5, 0xA5}), 1U);
}

}  // namespace
}  // namespace quarlin::qlctl
