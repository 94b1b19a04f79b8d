// SPDX-License-Identifier: Apache-2.0
// The three forms of text that meet at the Java interface.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quarlin::test {

// Java's own form: U+0000 as two bytes, a supplementary character as two surrogates of three bytes each.
std::string ToModifiedUtf8(std::u16string_view text);
// Nothing when the bytes are not valid: a zero byte, a byte of four-byte UTF-8, a longer form than needed, a form cut
// short. Surrogates may stand alone, as they may in a Java string.
std::optional<std::u16string> FromModifiedUtf8(std::string_view bytes);

// Plain UTF-8. What has no counterpart becomes U+FFFD.
std::string ToUtf8(std::u16string_view text);
std::u16string FromUtf8(std::string_view text);

// Wide text of the flat interface, whichever width wchar_t has here.
std::wstring Widen(std::string_view utf8);
std::string Narrow(std::wstring_view wide);

}  // namespace quarlin::test
