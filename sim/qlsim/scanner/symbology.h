// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace quarlin::sim::scanner {

// One sort of code, and what the two families of engines know of it.
struct Symbology {
    const char* name;
    const char* identifier;        // as both put it behind the data; three characters
    std::uint16_t intermecSwitch;  // the parameter that switches it, both bytes
    const char* honeywellOn;       // the menu command that switches it on; empty: it cannot be switched
    const char* honeywellOff;      // and off
};

inline constexpr std::size_t kSymbologies = 47;

std::span<const Symbology, kSymbologies> Symbologies();

// Its place in the list. Throws CommandError when there is none of this name.
std::size_t SymbologyArgument(const std::string& name);

// What an engine reads before anybody tells it anything else.
const std::vector<std::string>& UsualSymbologies();

}  // namespace quarlin::sim::scanner
