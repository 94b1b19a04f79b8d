// SPDX-License-Identifier: Apache-2.0
// Calls that are wrong in two ways while there is no manager: which of the two is told.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <limits>
#include <ostream>
#include <string>

#include "support/import_hook_win.h"
#include "support/last_error.h"

namespace quarlin::test {
namespace {

struct Pointers {
    const char* name;
    bool hasResult;
    bool hasCount;
};

std::ostream& operator<<(std::ostream& out, const Pointers& pointers) {
    return out << pointers.name;
}

class CardDotNetListWithoutManager : public ::testing::TestWithParam<Pointers> {};

TEST_P(CardDotNetListWithoutManager, TellsOfTheNullAndReturnsABuffer) {
    constexpr const char* kNull = "1st or 2nd parameter is invalid.(NULL)";
    QLerr result = QLERR_IO_ERROR;
    int count = 77;
    MagStripeReaderInfo* const list = QLMSR_GetMagStripeDevices_DotNET(GetParam().hasResult ? &result : nullptr,
                                                                       GetParam().hasCount ? &count : nullptr);
    ASSERT_NE(list, nullptr);
    EXPECT_FAILURE(GetParam().hasResult ? result : QLERR_INVALID_ARGUMENT, QLERR_INVALID_ARGUMENT, kNull);
    EXPECT_EQ(count, GetParam().hasCount ? 3 : 77);
    EXPECT_EQ(SystemFunction<std::size_t(void*)>("msvcrt.dll", "_msize")(list), 3 * sizeof(MagStripeReaderInfo));
    SystemFunction<void(void*)>("msvcrt.dll", "free")(list);
}

INSTANTIATE_TEST_SUITE_P(Without, CardDotNetListWithoutManager,
                         ::testing::Values(Pointers{"Result", false, true}, Pointers{"Count", true, false},
                                           Pointers{"Both", false, false}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(CardSelectWithoutManager, TellsOfTheManagerWhateverTheIndex) {
    for (const int index : {-2, -1, 0, 1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_FAILURE(QLMSR_SelectDevice(index), QLERR_INVALID_STATE, "No exist manager instance.") << index;
    }
}

TEST(CardRemoveWithoutManager, TellsOfTheManagerWhateverTheNumber) {
    for (const unsigned int id : {0U, 77U, 0xFFFFFFFFU}) {
        EXPECT_FAILURE(QLMSR_RemoveCallback(id), QLERR_INVALID_STATE, "No exist manager instance.") << id;
    }
}

}  // namespace
}  // namespace quarlin::test
