// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quarlin::sim {

// The system's text for an error, with its number: "The system cannot find the file specified (error 2)".
std::string SystemMessage(std::uint32_t error);

std::wstring Wide(std::string_view utf8);
std::string Narrow(std::wstring_view wide);  // UTF-8

}  // namespace quarlin::sim
