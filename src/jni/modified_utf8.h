// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace quarlin::jni {

// Java's own form of UTF-8, which is all that a VM takes for a text: U+0000 has two bytes, and a character beyond
// U+FFFF is two surrogates of three bytes each.
bool IsModifiedUtf8(std::string_view bytes) noexcept;

// The same text in that form, whatever the bytes are. What is modified UTF-8 stays as it is, a character in UTF-8's
// form of four bytes gets its six, and each byte that is neither becomes U+FFFD.
std::string ToModifiedUtf8(std::string_view bytes);

}  // namespace quarlin::jni
