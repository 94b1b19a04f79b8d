// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/last_error.h"
#include "core/quarlin_exception.h"
#include "core/smart_critical_win.h"

#include <utility>

namespace quarlin {

// The border between the library and the application, written once. No exception leaves it: what a body throws becomes
// the call's code and the calling thread's last error.

// What becomes of a call's outcome. A family that records its successes too hands over a type of its own.
struct ClearOnSuccess {
    static QLerr Succeeded() { return ClearQlLastError(); }

    static QLerr Failed(QLerr code, const char* message) noexcept {
        try {
            SetQlLastError(code, message);
        } catch (...) {
            // No memory for the record, or no slot to keep it in: the code alone has to do.
        }
        return code;
    }
};

template <typename Outcome = ClearOnSuccess, typename Body>
QLerr Export(Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
        return Outcome::Succeeded();
    } catch (const QuarlinException& failure) {
        return Outcome::Failed(failure.code, failure.what());
    } catch (...) {
        return Outcome::Failed(QLERR_INTERNAL_ERROR, "An unknown error occurred");
    }
}

// For a family that serialises its calls. The lock is left last, after the outcome has been recorded.
template <typename Outcome = ClearOnSuccess, typename Body>
QLerr ExportLocked(CSmartCritical& lock, Body&& body) noexcept {
    const CSmartCriticalWrapper held(lock);
    return Export<Outcome>([&] {
        if (!lock.IsInitialized()) {
            throw QuarlinException(QLERR_INTERNAL_ERROR, "Could not initialize critical section.");
        }
        std::forward<Body>(body)();
    });
}

}  // namespace quarlin
