// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace quarlin::qlctl {

// A number with a fixed count of decimals and a decimal point, whatever the process locale.
std::string Fixed(double value, int decimals);

// Text filled up with spaces to a width; longer text stays as it is. Counts bytes: for ASCII.
std::string PadLeft(std::string_view text, size_t width);
std::string PadRight(std::string_view text, size_t width);

// Text of a device for people: characters that a terminal would obey, and bytes that are not ASCII, become '.'.
std::string Printable(std::string_view bytes);

// One "Label        value" line of a report.
std::string Row(std::string_view label, std::string_view value);

}  // namespace quarlin::qlctl
