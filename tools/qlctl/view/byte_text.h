// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quarlin::qlctl {

// Bytes as a line for people that loses nothing: characters of UTF-8 as they are; control characters and bytes that are
// no UTF-8 as \n, \r, \t or \x1D; a backslash as \\.
std::string Escaped(std::string_view bytes);

// The bytes that such a line stands for, as a user types it. Nothing when a backslash is followed by something else, or
// when a byte is zero: the library's texts end there.
std::optional<std::string> Unescaped(std::string_view line);

}  // namespace quarlin::qlctl
