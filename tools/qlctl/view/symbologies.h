// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quarlin::qlctl {

struct Symbology {
    unsigned value;
    const char* name;  // to the letter, as the library takes it
    const char* remark;
};

// All that the library knows, in the order of their values.
std::span<const Symbology> Symbologies();

// By value ("37"), or by name; letter case and whatever is no letter or digit do not matter ("micropdf417"). Null when
// there is none.
const Symbology* FindSymbology(std::string_view nameOrValue);

std::string SymbologyTable();
std::string SymbologiesJson();

}  // namespace quarlin::qlctl
