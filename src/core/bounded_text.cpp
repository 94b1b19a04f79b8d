// SPDX-License-Identifier: Apache-2.0
#include "core/bounded_text.h"

namespace quarlin {
namespace {

template <typename Char>
std::int32_t Copy(Char* dst, std::int32_t dstCount, const Char* src) {
    if (const std::int32_t refused = CheckCount(dst, dstCount); refused < 0) {
        return refused;
    }
    if (src == nullptr) {
        *dst = Char{};
        return kTextInvalidArgument;
    }
    // The source alone decides how far the destination is written: a count far larger than the buffer is legal.
    Char* const last = dst + (dstCount - 1);
    while (dst != last && *src != Char{}) {
        *dst++ = *src++;
    }
    *dst = Char{};
    return *src == Char{} ? kTextOk : kTextInsufficientBuffer;
}

}  // namespace

std::int32_t BoundedCopy(char* dst, std::int32_t dstCount, const char* src) {
    return Copy(dst, dstCount, src);
}

std::int32_t BoundedCopy(wchar_t* dst, std::int32_t dstCount, const wchar_t* src) {
    return Copy(dst, dstCount, src);
}

}  // namespace quarlin
