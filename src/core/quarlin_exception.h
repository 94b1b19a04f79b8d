// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/error.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace quarlin {

// How an expected failure travels inside the library: the code and the text that the caller will get.
class QuarlinException : public std::runtime_error {
  public:
    QuarlinException(QLerr failureCode, const std::string& message) : std::runtime_error(message), code(failureCode) {}

    QLerr code;
};

// Out of line, so that a check costs its callers one comparison and no more registers.
[[noreturn, gnu::cold, gnu::noinline]] inline void Fail(QLerr code, const char* message) {
    throw QuarlinException(code, message);
}

// The check of an argument or a state at the head of a body.
inline void Require(bool condition, QLerr code, const char* message) {
    if (!condition) {
        Fail(code, message);
    }
}

// Throws QLERR_INTERNAL_ERROR with "context", a line end, "Win32 Error 0x", the code and the system's text for it. When
// the system has no text for the code, a diagnostic is printed on standard output and the call RETURNS: callers carry
// on as if the operation had succeeded.
void ThrowWin32Error(const char* context, std::uint32_t win32Code);

// Throws QLERR_INTERNAL_ERROR with "context", a line end, "Win32 HRESULT: " and the value. No system text is looked up.
[[noreturn]] void ThrowHResultError(const char* context, std::int32_t hresult);

}  // namespace quarlin
