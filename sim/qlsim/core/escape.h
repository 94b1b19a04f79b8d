// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace quarlin::sim {

// Text with \r \n \\ and \x with two hexadecimal digits, as bytes. Throws CommandError for another backslash.
std::string Unescape(std::string_view text);

}  // namespace quarlin::sim
