// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "quarlin/error.h"

#include <optional>
#include <span>
#include <stdexcept>
#include <string>

namespace quarlin::qlctl {

// What the process answers to whoever started it. The values are part of qlctl's interface: add, never renumber.
enum class ExitStatus {
    kDone = 0,
    kUsage = 1,
    kInvalidArgument = 2,
    kInvalidState = 3,
    kUnsupported = 4,
    kSystem = 5,
    kTimedOut = 6,
    kDevice = 7,
    kRfidReader = 8,
    kInterrupted = 9,
    kOutput = 10,
    kNoDevice = 11,
};

struct ExitStatusRow {
    ExitStatus status;
    const char* meaning;
};

// Every exit status with its meaning, as --help prints them.
std::span<const ExitStatusRow> ExitStatuses();

// The name of a result code ("QLERR_INVALID_STATE"); "unknown code" for one that this release does not know.
const char* CodeName(QLerr code);

// The class of failure that a result code belongs to; kDone for QLERR_OK.
ExitStatus StatusOf(QLerr code);

// What a failed call of the library left: its code, and its text as it is, line ends included.
struct LibraryError {
    QLerr code = QLERR_OK;
    std::string message;
};

// "error 2 (QLERR_INVALID_STATE): GPS has not been initialized.", in one line whatever the text holds.
std::string Describe(const LibraryError& error);

// Ends the command: main shows the text and answers with the status.
class Failure : public std::runtime_error {
  public:
    Failure(ExitStatus status, const std::string& text);
    explicit Failure(const LibraryError& error);

    ExitStatus Status() const { return status_; }
    // The library's own error, when the failure came from there.
    const std::optional<LibraryError>& Cause() const { return cause_; }

  private:
    ExitStatus status_;
    std::optional<LibraryError> cause_;
};

// A call of the library is still at work and cannot be ended: neither may the process clean up behind its back.
class AbandonedCall : public Failure {
  public:
    using Failure::Failure;
};

}  // namespace quarlin::qlctl
