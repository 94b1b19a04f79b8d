// SPDX-License-Identifier: Apache-2.0
#include "failure.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace quarlin::qlctl {
namespace {

constexpr std::array kExitStatuses{
    ExitStatusRow{ExitStatus::kDone, "done"},
    ExitStatusRow{ExitStatus::kUsage, "the command line is not understood"},
    ExitStatusRow{ExitStatus::kInvalidArgument, "a value was refused: no such port, port number out of range"},
    ExitStatusRow{ExitStatus::kInvalidState, "wrong state: the port cannot be opened or set up"},
    ExitStatusRow{ExitStatus::kUnsupported, "this machine or device cannot do it"},
    ExitStatusRow{ExitStatus::kSystem, "the system, the library or qlctl itself failed"},
    ExitStatusRow{ExitStatus::kTimedOut, "the device sent nothing in time"},
    ExitStatusRow{ExitStatus::kDevice, "the device answered wrongly or not at all"},
    ExitStatusRow{ExitStatus::kRfidReader, "the UHF RFID reader refused or failed"},
    ExitStatusRow{ExitStatus::kInterrupted, "stopped by Ctrl-C before there was anything to show"},
    ExitStatusRow{ExitStatus::kOutput, "the output could not be written"},
    ExitStatusRow{ExitStatus::kNoDevice, "no such reader or scanner is there"},
};

struct CodeRow {
    QLerr code;
    const char* name;
};

#define QLCTL_CODE(code) \
    CodeRow {            \
        code, #code      \
    }
constexpr std::array kCodes{
    QLCTL_CODE(QLERR_OK),
    QLCTL_CODE(QLERR_INVALID_ARGUMENT),
    QLCTL_CODE(QLERR_INVALID_STATE),
    QLCTL_CODE(QLERR_IO_ERROR),
    QLCTL_CODE(QLERR_OP_UNSUPPORTED),
    QLCTL_CODE(QLERR_INTERNAL_ERROR),
    QLCTL_CODE(QLERR_BUFFER_OVERFLOW),
    QLCTL_CODE(QLERR_UHFRFID_REQ_NOT_ALLOWED),
    QLCTL_CODE(QLERR_UHFRFID_ACCESS),
    QLCTL_CODE(QLERR_UHFRFID_KILL),
    QLCTL_CODE(QLERR_UHFRFID_NOREPLY),
    QLCTL_CODE(QLERR_UHFRFID_LOCK),
    QLCTL_CODE(QLERR_UHFRFID_WRITE),
    QLCTL_CODE(QLERR_UHFRFID_ERASE),
    QLCTL_CODE(QLERR_UHFRFID_READ),
    QLCTL_CODE(QLERR_UHFRFID_SELECT),
    QLCTL_CODE(QLERR_UHFRFID_CHANNEL_TIMEOUT),
    QLCTL_CODE(QLERR_UHFRFID_INVALID_PARAMETER2),
    QLCTL_CODE(QLERR_UHFRFID_EASCODE),
    QLCTL_CODE(QLERR_UHFRFID_OTHER),
    QLCTL_CODE(QLERR_UHFRFID_MEMORY_OVERRUN),
    QLCTL_CODE(QLERR_UHFRFID_MEMORY_LOCKED),
    QLCTL_CODE(QLERR_UHFRFID_INSUFFICIENT_POWER),
    QLCTL_CODE(QLERR_UHFRFID_NONSPECIFIC),
    QLCTL_CODE(QLERR_UHFRFID_READONLY_ADDRESS),
    QLCTL_CODE(QLERR_UHFRFID_PCIE_RADIO_DISABLED),
    QLCTL_CODE(QLERR_UHFRFID_SECURITY_FAILURE),
    QLCTL_CODE(QLERR_UHFRFID_HW_FAILURE),
    QLCTL_CODE(QLERR_UHFRFID_INVALID_HANDLE),
    QLCTL_CODE(QLERR_UHFRFID_NO_TAGS),
    QLCTL_CODE(QLERR_UHFRFID_COMMAND_SEND),
    QLCTL_CODE(QLERR_UHFRFID_COMMAND_RECEIVE),
    QLCTL_CODE(QLERR_UHFRFID_BUFFERTOOSMALL),
    QLCTL_CODE(QLERR_UHFRFID_BUFFERTOOBIG),
    QLCTL_CODE(QLERR_UHFRFID_SYSTEM),
    QLCTL_CODE(QLERR_UHFRFID_DEVICENOTFOUND),
    QLCTL_CODE(QLERR_UHFRFID_UNCLASSIFIED),
};
#undef QLCTL_CODE

constexpr int32_t kFirstRfidCode = 0x10000;

// System texts end in a line break and put one between the library's words and their own.
std::string InOneLine(const std::string& text) {
    constexpr const char* kBreaks = "\r\n";
    std::string line;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find_first_of(kBreaks, at), text.size());
        if (end > at) {
            if (!line.empty()) {
                line += "; ";
            }
            line.append(text, at, end - at);
        }
        at = end + 1;
    }
    return line;
}

}  // namespace

std::span<const ExitStatusRow> ExitStatuses() {
    return kExitStatuses;
}

const char* CodeName(QLerr code) {
    const auto row = std::find_if(kCodes.begin(), kCodes.end(), [code](const CodeRow& r) { return r.code == code; });
    return row == kCodes.end() ? "unknown code" : row->name;
}

ExitStatus StatusOf(QLerr code) {
    switch (code) {
        case QLERR_OK:
            return ExitStatus::kDone;
        case QLERR_INVALID_ARGUMENT:
            return ExitStatus::kInvalidArgument;
        case QLERR_INVALID_STATE:
            return ExitStatus::kInvalidState;
        case QLERR_IO_ERROR:
            return ExitStatus::kDevice;
        case QLERR_OP_UNSUPPORTED:
            return ExitStatus::kUnsupported;
        case QLERR_UHFRFID_DEVICENOTFOUND:
            return ExitStatus::kNoDevice;
        default:
            return code >= kFirstRfidCode ? ExitStatus::kRfidReader : ExitStatus::kSystem;
    }
}

std::string Describe(const LibraryError& error) {
    return "error " + std::to_string(static_cast<int32_t>(error.code)) + " (" + CodeName(error.code) +
           "): " + InOneLine(error.message);
}

Failure::Failure(ExitStatus status, const std::string& text) : std::runtime_error("error: " + text), status_(status) {
}

Failure::Failure(const LibraryError& error)
    : std::runtime_error(Describe(error)), status_(StatusOf(error.code)), cause_(error) {
}

}  // namespace quarlin::qlctl
