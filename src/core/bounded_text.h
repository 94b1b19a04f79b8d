// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace quarlin {

// Results of the bounded text primitives, as the system's HRESULTs have them.
inline constexpr std::int32_t kTextOk = 0;
inline constexpr std::int32_t kTextInvalidArgument = static_cast<std::int32_t>(0x80070057);
inline constexpr std::int32_t kTextInsufficientBuffer = static_cast<std::int32_t>(0x8007007A);

// The rules for counts that every bounded primitive shares: a count below 1 is refused; a negative one also leaves a
// terminator, as a count beyond the largest accepted one does.
template <typename Char>
std::int32_t CheckCount(Char* dst, std::int32_t dstCount) {
    if (dstCount >= 1 && dst != nullptr) {
        return kTextOk;
    }
    if (dstCount < 0 && dst != nullptr) {
        *dst = Char{};
    }
    return kTextInvalidArgument;
}

// Copies up to dstCount - 1 characters and a terminator. A text that does not fit is cut and reported as
// kTextInsufficientBuffer. A null pointer is reported as kTextInvalidArgument.
std::int32_t BoundedCopy(char* dst, std::int32_t dstCount, const char* src);
std::int32_t BoundedCopy(wchar_t* dst, std::int32_t dstCount, const wchar_t* src);

}  // namespace quarlin
