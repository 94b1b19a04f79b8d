// SPDX-License-Identifier: Apache-2.0
#include "gps/receiver_model.h"

#include <gtest/gtest.h>

namespace quarlin::gps {
namespace {

class KnownModel : public testing::TestWithParam<const char*> {};

TEST_P(KnownModel, CarriesTheLeadtekReceiver) {
    EXPECT_STREQ(ReceiverName(GetParam()), "LEADTEK Mod:LR9101");
}

INSTANTIATE_TEST_SUITE_P(Exact, KnownModel,
                         testing::Values("JR-51", "JR-52", "JR-53", "JR-54", "JR-55", "JR-56", "JR-57", "JR-58"));
INSTANTIATE_TEST_SUITE_P(WithSomethingBehind, KnownModel,
                         testing::Values("JR-56SIM", "JR-56 ", "JR-560", "JR-51-A very long model name", "JR-58JR-99"));

class UnknownModel : public testing::TestWithParam<const char*> {};

TEST_P(UnknownModel, CarriesNoKnownReceiver) {
    EXPECT_EQ(ReceiverName(GetParam()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Values, UnknownModel,
                         testing::Values("", "J", "JR-5", "JR-50", "JR-59", "JR-61", "jr-56", " JR-56", "JR_56",
                                         "XJR-56", "JR56", "LEADTEK Mod:LR9101"));

}  // namespace
}  // namespace quarlin::gps
