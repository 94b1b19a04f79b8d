// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/error.h>

#include <atomic>
#include <cstdint>

namespace quarlin {

// The calling thread's last error. Each thread has one record at most, and sees no other.

// Stores a code and a text, over an older record; a null text is made from the code. With QLERR_OK and no text nothing
// is stored and an older record stays. Returns the code.
QLerr SetQlLastError(QLerr code, const char* message);

// Records of all threads, those of ended threads included. A thread that has one sees at least 1 here, so that 0 tells
// a successful call without a look at the slot that there is nothing to erase.
extern std::atomic<std::int32_t> lastErrorCount;

// What ClearQlLastError does when there may be a record.
QLerr EraseQlLastError();

// Forgets the record. Returns QLERR_OK. Every call that succeeds ends with it, and usually it is one comparison.
inline QLerr ClearQlLastError() {
    return lastErrorCount.load(std::memory_order_relaxed) == 0 ? QLERR_OK : EraseQlLastError();
}

// The same for a thread, or a library, that ends: raises nothing.
void ForgetQlLastError() noexcept;

// Copies the text out and forgets the record. Raises the copy's failure, and then keeps the record.
QLerr TakeQlLastError(char* buffer, int bufferSize);

}  // namespace quarlin
