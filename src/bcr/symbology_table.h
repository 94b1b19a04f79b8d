// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/barcode.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace quarlin::bcr {

inline constexpr std::size_t kSymbologyCount = 47;

// One symbology: its engine-neutral name and the Intermec parameter of its enable switch.
struct SymbologyRow {
    std::int32_t value;
    const wchar_t* name;  // null in the row that closes the table
    std::array<std::uint8_t, 2> intermecId;
};

// The menu commands of the same symbology on a Honeywell engine.
struct HoneywellRow {
    std::int32_t value;
    const char* enable;  // null in the row that closes the table
    const char* disable;
    const char* factoryDefault;  // what brings the engine's own setting back; nothing sends it
};

// Two commands, one after the other, for a symbology that has no single one.
struct HoneywellCommandPair {
    std::array<const char*, 2> commands;
};

// In the same order of values, each closed by a row whose text is null.
extern const std::array<SymbologyRow, kSymbologyCount + 1> kSymbologyTable;
extern const std::array<HoneywellRow, kSymbologyCount + 1> kHoneywellTable;

// The value of the first row of that name, to the letter.
std::optional<std::int32_t> FindSymbologyByName(std::wstring_view name);

// Null when there is none.
const SymbologyRow* FindSymbology(std::int32_t value);
const HoneywellRow* FindHoneywellSymbology(std::int32_t value);

// The pair of commands that switches the symbology; nothing when it is not one that needs two.
std::optional<HoneywellCommandPair> FindHoneywellPair(std::int32_t value, bool enable);

}  // namespace quarlin::bcr
