// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace quarlin::sim {

// The program's arguments in UTF-8, without its name. In reverse order, as CLI::App::parse takes them.
std::vector<std::string> ReversedArguments();

}  // namespace quarlin::sim
