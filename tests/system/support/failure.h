// SPDX-License-Identifier: Apache-2.0
// What a failed call leaves: its code and its exact text, looked at together. The functions take the address of
// QLAPI_GetLastError, so that they serve programs that are linked with the DLL and programs that load it by name.
#pragma once

#include <quarlin/error.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>

namespace quarlin::test {

struct Failure {
    QLerr code = QLERR_OK;
    std::string text;

    bool operator==(const Failure&) const = default;
};

// Codes print as numbers: the library's own name routine is among the things under test.
std::ostream& operator<<(std::ostream& out, const Failure& failure);

using GetLastErrorFunction = QLerr (*)(char* buffer, int bufferSize);

// Fetches, and so consumes, the calling thread's record.
Failure FetchLastErrorBy(GetLastErrorFunction getLastError);

// The call returned the code, the record holds the same code and exactly this text, and is gone once fetched.
::testing::AssertionResult FailedWith(GetLastErrorFunction getLastError, const char* call, QLerr returned, QLerr code,
                                      std::string_view text);

// The call returned QLERR_OK and left no record, not even an older one.
::testing::AssertionResult Succeeded(GetLastErrorFunction getLastError, const char* call, QLerr returned);

}  // namespace quarlin::test
