// SPDX-License-Identifier: Apache-2.0
// Waiting for what another thread, or another program, brings about.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

#include "support/owners_win.h"

namespace quarlin::test {

// Far longer than anything takes on a busy machine: a wait that ends here has failed.
constexpr DWORD kDeadline = 20000;  // milliseconds

// Looks until the condition holds. False when the deadline has passed without.
template <typename Condition>
bool WaitUntil(Condition condition, DWORD deadline = kDeadline) {
    const UniqueHandle timer(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const ULONGLONG end = GetTickCount64() + deadline;
    while (!condition()) {
        if (GetTickCount64() > end) {
            return false;
        }
        // Never set: hands the processor to those we wait for.
        WaitForSingleObject(timer.Get(), 1);
    }
    return true;
}

// The same where the test cannot go on without.
template <typename Condition>
void Await(const char* what, Condition condition) {
    if (!WaitUntil(condition)) {
        throw std::runtime_error(std::string("gave up waiting for ") + what);
    }
}

}  // namespace quarlin::test
