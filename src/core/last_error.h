// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/error.h>

namespace quarlin {

// The calling thread's last error. Each thread has one record at most, and sees no other.

// Stores a code and a text, over an older record; a null text is made from the code. With QLERR_OK and no text nothing
// is stored and an older record stays. Returns the code.
QLerr SetQlLastError(QLerr code, const char* message);

// Forgets the record. Returns QLERR_OK.
QLerr ClearQlLastError();

// The same for a thread, or a library, that ends: raises nothing.
void ForgetQlLastError() noexcept;

// Copies the text out and forgets the record. Raises the copy's failure, and then keeps the record.
QLerr TakeQlLastError(char* buffer, int bufferSize);

}  // namespace quarlin
