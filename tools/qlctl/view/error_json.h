// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "failure.h"

#include <nlohmann/json.hpp>

namespace quarlin::qlctl {

// An error of the library as every command's JSON shows it.
inline nlohmann::ordered_json ErrorJson(const LibraryError& error) {
    return {
        {"code", static_cast<int32_t>(error.code)},
        {"name", CodeName(error.code)},
        {"message", error.message},
    };
}

}  // namespace quarlin::qlctl
