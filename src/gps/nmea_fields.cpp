// SPDX-License-Identifier: Apache-2.0
#include "gps/nmea_fields.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>

namespace quarlin::gps {
namespace {

// Powers of ten that a double holds exactly.
constexpr std::array kPowersOfTen{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                  1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
// 18 digits fit into 64 bits, and a double holds every integer up to 2^53.
constexpr std::ptrdiff_t kMaxFastDigits = 18;
constexpr std::uint64_t kMaxExactInteger = std::uint64_t{1} << 53;

// Numbers longer than any receiver sends: correctly rounded, at leisure.
double LongReal(const char* begin, const char* end) {
    double value = 0;
    if (std::from_chars(begin, end, value, std::chars_format::fixed).ec == std::errc::result_out_of_range) {
        const bool tooLarge = std::any_of(begin, std::find(begin, end, '.'), [](char c) { return c != '0'; });
        return tooLarge ? std::numeric_limits<double>::infinity() : 0;
    }
    return value;
}

// True for a minus.
bool TakeBlanksAndSign(const char*& at) {
    while (*at == ' ' || (*at >= '\t' && *at <= '\r')) {
        ++at;
    }
    const bool negative = *at == '-';
    if (negative || *at == '+') {
        ++at;
    }
    return negative;
}

}  // namespace

FieldCursor::Number<std::int32_t> FieldCursor::AnyInteger(const char* at) {
    const bool negative = TakeBlanksAndSign(at);
    // Held at a value beyond the limits, so that no count of digits overflows.
    constexpr std::int64_t kBeyond = std::int64_t{1} << 40;
    std::int64_t value = 0;
    for (unsigned digit = DigitValue(*at); digit <= 9; digit = DigitValue(*++at)) {
        value = std::min(value * 10 + digit, kBeyond);
    }
    if (negative) {
        value = -value;
    }
    using Limits = std::numeric_limits<std::int32_t>;
    return {static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max())), at};
}

FieldCursor::Number<double> FieldCursor::AnyReal(const char* at) {
    const bool negative = TakeBlanksAndSign(at);
    const char* const begin = at;
    std::uint64_t mantissa = 0;
    for (unsigned digit = DigitValue(*at); digit <= 9; digit = DigitValue(*++at)) {
        mantissa = mantissa * 10 + digit;
    }
    std::ptrdiff_t digits = at - begin;
    std::ptrdiff_t fraction = 0;
    if (*at == '.') {
        const char* const point = at++;
        for (unsigned digit = DigitValue(*at); digit <= 9; digit = DigitValue(*++at)) {
            mantissa = mantissa * 10 + digit;
        }
        fraction = at - point - 1;
        digits += fraction;
    }
    if (digits == 0) {
        return {0, at};
    }
    // Exact integer divided by exact power of ten: the result is rounded once, that is correctly.
    const double value = digits <= kMaxFastDigits && mantissa <= kMaxExactInteger
                             ? static_cast<double>(static_cast<std::int64_t>(mantissa)) /
                                   kPowersOfTen[static_cast<std::size_t>(fraction)]
                             : LongReal(begin, at);
    return {negative ? -value : value, at};
}

}  // namespace quarlin::gps
