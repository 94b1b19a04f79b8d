// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/error.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace quarlin {

struct QlErrorNameRow {
    std::int32_t code;
    const char* name;
};

// Every code that has a name, in the order of the public enumeration.
extern const std::span<const QlErrorNameRow> QlErrorNameTable;

// The name routines write into a caller's buffer of this many characters, terminator included.
inline constexpr int kErrorNameSize = 100;

// "QLERR_OK" for every code of the table, whichever it is, and "UNKNOWN" for all others. Callers rely on telling known
// codes from unknown ones this way, not on the name. Always true.
bool QlErrorName(QLerr code, char* out);

// The name of a general code (0 to 6), "UNKNOWN" for all others. Always true.
bool QlGeneralErrorName(QLerr code, char* out);

// The text that stands for a code when none is given. QLERR_OK has none.
std::optional<std::string> GeneratedMessage(QLerr code);

}  // namespace quarlin
