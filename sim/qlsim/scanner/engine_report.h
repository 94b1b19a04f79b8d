// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <nlohmann/json.hpp>
#include <span>
#include <string>

#include "hid/hex.h"
#include "machine_libraries/library_command.h"
#include "scanner/engine_record.h"

namespace quarlin::sim::scanner {

// The last calls that the log still has, oldest first, at most so many.
nlohmann::ordered_json EngineCallsOf(FunctionNames names, EngineCallLog& log, std::uint64_t most);

// The refusals that are set, by function.
nlohmann::ordered_json RefusalsOf(FunctionNames names, std::span<const Refusal> refusals);

}  // namespace quarlin::sim::scanner
