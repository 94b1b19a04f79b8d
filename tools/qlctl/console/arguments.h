// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace quarlin::qlctl {

// The command line behind the program's name, in UTF-8. What main gets is in the system's code page and lacks
// characters that this does not have.
std::vector<std::string> Utf8Arguments();

}  // namespace quarlin::qlctl
