// SPDX-License-Identifier: Apache-2.0
#include "uhfrfid/result_text.h"

#include "core/error_table.h"

#include <algorithm>

namespace quarlin::uhfrfid {

const char* CodeName(QLerr code) {
    const auto row = std::ranges::find(QlErrorNameTable, static_cast<std::int32_t>(code), &QlErrorNameRow::code);
    return row == QlErrorNameTable.end() ? "UNKNOWN" : row->name;
}

const char* ReaderMessage(QLerr code) {
    constexpr const char* kUnknown = "Unknown Error";
    switch (code) {
        case QLERR_INVALID_ARGUMENT:
            return "Invalid Argument";
        case QLERR_INVALID_STATE:
            return "Invalid State";
        case QLERR_IO_ERROR:
            return "I/O Error";
        case QLERR_OP_UNSUPPORTED:
            return "Operation Not Supported";
        case QLERR_INTERNAL_ERROR:
            return "An internal error has occurred";
        case QLERR_BUFFER_OVERFLOW:
            return "Buffer too small";
        case QLERR_UHFRFID_REQ_NOT_ALLOWED:
            // Has a name, but no text: callers rely on it.
            return kUnknown;
        // Callers rely on the blanks at the end, too.
        case QLERR_UHFRFID_READ:
            return "QLERR_UHFRFID_READ ";
        case QLERR_UHFRFID_OTHER:
            return "QLERR_UHFRFID_OTHER ";
        case QLERR_UHFRFID_SYSTEM:
            return "QLERR_UHFRFID_SYSTEM ";
        default: {
            const auto row =
                std::ranges::find(QlErrorNameTable, static_cast<std::int32_t>(code), &QlErrorNameRow::code);
            return row == QlErrorNameTable.end() ? kUnknown : row->name;
        }
    }
}

}  // namespace quarlin::uhfrfid
