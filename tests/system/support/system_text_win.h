// SPDX-License-Identifier: Apache-2.0
// Texts that the library builds from the system's own: what a test expects to the last character.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace quarlin::test {

std::string ToUtf8(std::wstring_view text);
std::wstring ToWide(std::string_view text);

// The system's text for an error, with its trailing line end; throws std::runtime_error when there is none, because a
// test that expects an empty text would show nothing.
std::string SystemText(DWORD code);

// Whether the system has a text for an error at all.
bool HasSystemText(DWORD code);

// "context", line end, "Win32 Error 0x0000007A: " and the system's text.
std::string Win32Message(std::string_view context, DWORD code);

// "context", line end, "Win32 HRESULT: 80041003".
std::string HResultMessage(std::string_view context, HRESULT hr);

}  // namespace quarlin::test
