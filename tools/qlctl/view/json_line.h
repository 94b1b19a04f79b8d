// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace quarlin::qlctl {

// One object as one line. Text that is not UTF-8 is shown with replacement characters: a device may send anything.
inline std::string JsonLine(const nlohmann::ordered_json& object) {
    return object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace quarlin::qlctl
