// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace quarlin::qlctl {

// The camera light as the library tells it. Whether the timer's number is seconds is the light's own affair.
struct LightState {
    bool on = false;
    int timer = 0;
};

std::string LightText(const LightState& state);
std::string LightJson(const LightState& state);

}  // namespace quarlin::qlctl
