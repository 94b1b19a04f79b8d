// SPDX-License-Identifier: Apache-2.0
#include "view/light_state.h"

#include "view/json_line.h"
#include "view/text.h"

namespace quarlin::qlctl {

std::string LightText(const LightState& state) {
    return Row("Light", state.on ? "on" : "off") + Row("Timer", std::to_string(state.timer));
}

std::string LightJson(const LightState& state) {
    return JsonLine({{"on", state.on}, {"timer", state.timer}});
}

}  // namespace quarlin::qlctl
