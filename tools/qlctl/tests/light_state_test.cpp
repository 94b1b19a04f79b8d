// SPDX-License-Identifier: Apache-2.0
#include "view/light_state.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

TEST(LightText, ShowsTheLightAndItsTimer) {
    EXPECT_EQ(LightText({true, 255}),
              "Light         on\n"
              "Timer         255\n");
    EXPECT_EQ(LightText({false, 0}),
              "Light         off\n"
              "Timer         0\n");
}

TEST(LightJson, IsOneObject) {
    EXPECT_EQ(LightJson({true, 12}), "{\"on\":true,\"timer\":12}\n");
}

}  // namespace
}  // namespace quarlin::qlctl
