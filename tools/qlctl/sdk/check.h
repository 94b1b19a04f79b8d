// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "failure.h"

#include <string>

namespace quarlin::qlctl {

// The calling thread's last error, for a call that has just answered with this code.
LibraryError TakeError(QLerr code);

// Throws a Failure when a call of the library did not succeed.
void Check(QLerr result);

// Wide text of the library as UTF-8.
std::string ToUtf8(const wchar_t* text);

// UTF-8 as wide text for the library.
std::wstring ToWide(const std::string& text);

}  // namespace quarlin::qlctl
