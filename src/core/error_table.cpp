// SPDX-License-Identifier: Apache-2.0
#include "core/error_table.h"

#include "core/bounded_text.h"

#include <algorithm>
#include <array>

namespace quarlin {
namespace {

#define QL_ROW(code) \
    QlErrorNameRow { \
        code, #code  \
    }
constexpr std::array kRows{
    QL_ROW(QLERR_OK),
    QL_ROW(QLERR_INVALID_ARGUMENT),
    QL_ROW(QLERR_INVALID_STATE),
    QL_ROW(QLERR_IO_ERROR),
    QL_ROW(QLERR_OP_UNSUPPORTED),
    QL_ROW(QLERR_INTERNAL_ERROR),
    QL_ROW(QLERR_BUFFER_OVERFLOW),
    QL_ROW(QLERR_UHFRFID_REQ_NOT_ALLOWED),
    QL_ROW(QLERR_UHFRFID_ACCESS),
    QL_ROW(QLERR_UHFRFID_KILL),
    QL_ROW(QLERR_UHFRFID_NOREPLY),
    QL_ROW(QLERR_UHFRFID_LOCK),
    QL_ROW(QLERR_UHFRFID_WRITE),
    QL_ROW(QLERR_UHFRFID_ERASE),
    QL_ROW(QLERR_UHFRFID_READ),
    QL_ROW(QLERR_UHFRFID_SELECT),
    QL_ROW(QLERR_UHFRFID_CHANNEL_TIMEOUT),
    QL_ROW(QLERR_UHFRFID_INVALID_PARAMETER2),
    QL_ROW(QLERR_UHFRFID_EASCODE),
    QL_ROW(QLERR_UHFRFID_OTHER),
    QL_ROW(QLERR_UHFRFID_MEMORY_OVERRUN),
    QL_ROW(QLERR_UHFRFID_MEMORY_LOCKED),
    QL_ROW(QLERR_UHFRFID_INSUFFICIENT_POWER),
    QL_ROW(QLERR_UHFRFID_NONSPECIFIC),
    QL_ROW(QLERR_UHFRFID_READONLY_ADDRESS),
    QL_ROW(QLERR_UHFRFID_PCIE_RADIO_DISABLED),
    QL_ROW(QLERR_UHFRFID_SECURITY_FAILURE),
    QL_ROW(QLERR_UHFRFID_HW_FAILURE),
    QL_ROW(QLERR_UHFRFID_INVALID_HANDLE),
    QL_ROW(QLERR_UHFRFID_NO_TAGS),
    QL_ROW(QLERR_UHFRFID_COMMAND_SEND),
    QL_ROW(QLERR_UHFRFID_COMMAND_RECEIVE),
    QL_ROW(QLERR_UHFRFID_BUFFERTOOSMALL),
    QL_ROW(QLERR_UHFRFID_BUFFERTOOBIG),
    QL_ROW(QLERR_UHFRFID_SYSTEM),
    QL_ROW(QLERR_UHFRFID_DEVICENOTFOUND),
    QL_ROW(QLERR_UHFRFID_UNCLASSIFIED),
};
#undef QL_ROW
static_assert(kRows.size() == 37);

const QlErrorNameRow* FindRow(QLerr code) {
    const auto row = std::ranges::find(kRows, static_cast<std::int32_t>(code), &QlErrorNameRow::code);
    return row == kRows.end() ? nullptr : &*row;
}

constexpr const char* kUnknownName = "UNKNOWN";

}  // namespace

const std::span<const QlErrorNameRow> QlErrorNameTable{kRows};

bool QlErrorName(QLerr code, char* out) {
    BoundedCopy(out, kErrorNameSize, FindRow(code) ? kRows.front().name : kUnknownName);
    return true;
}

bool QlGeneralErrorName(QLerr code, char* out) {
    const QlErrorNameRow* row = code <= QLERR_BUFFER_OVERFLOW ? FindRow(code) : nullptr;
    BoundedCopy(out, kErrorNameSize, row ? row->name : kUnknownName);
    return true;
}

std::optional<std::string> GeneratedMessage(QLerr code) {
    switch (code) {
        case QLERR_OK:
            return std::nullopt;
        case QLERR_INVALID_ARGUMENT:
            return "Invalid Argument";
        case QLERR_INVALID_STATE:
            return "Invalid State";
        case QLERR_IO_ERROR:
            return "I/O Error";
        case QLERR_OP_UNSUPPORTED:
            return "Operation Not Supported";
        case QLERR_BUFFER_OVERFLOW:
            return "Buffer too small";
        case QLERR_UHFRFID_REQ_NOT_ALLOWED:
            // Has a name, but its text is that of a code without one: callers rely on it.
            break;
        default:
            if (FindRow(code)) {
                return "An internal error has occurred";
            }
    }
    return "Unknown Error: " + std::to_string(static_cast<std::int32_t>(code));
}

}  // namespace quarlin
