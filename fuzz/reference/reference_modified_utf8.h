// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quarlin::reference {

// The units of UTF-16 that bytes stand for in Java's form of UTF-8, with U+FFFD for each byte that stands for none, and
// with both forms of a character beyond U+FFFF.
std::vector<std::uint16_t> ReferenceUnits(const std::string& bytes);

// Each unit in Java's form of UTF-8.
std::string ReferenceModifiedUtf8(const std::vector<std::uint16_t>& units);

}  // namespace quarlin::reference
