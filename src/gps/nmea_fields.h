// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

namespace quarlin::gps {

inline unsigned DigitValue(char c) {
    return static_cast<unsigned char>(c) - unsigned{'0'};
}

// Walks over the fields of one NUL-terminated sentence. Numbers are read as far as they go: whatever follows, the
// checksum's asterisk included, ends them. No number depends on the process's locale.
//
// Every byte of every sentence passes through here, so that the common ways are short and inline, and the cursor stays
// in a register: what is not inline gets and returns values.
class FieldCursor {
  public:
    explicit FieldCursor(const char* at) : at_(at) {}

    // To the start of the next field, behind the next comma. False at the end of the line.
    bool Next() {
        for (;; ++at_) {
            // One comparison for what fields are made of: digits, letters, point and minus lie above the comma.
            if (const auto c = static_cast<unsigned char>(*at_); c <= ',') {
                if (c == ',') {
                    ++at_;
                    return true;
                }
                if (c == '\0') {
                    return false;
                }
            }
        }
    }

    bool Skip(int fields) {
        while (fields-- > 0) {
            if (!Next()) {
                return false;
            }
        }
        return true;
    }

    // Only a field that begins with a comma is empty: the last field of a line never is.
    bool IsEmpty() const { return *at_ == ','; }
    // For a satellite's number alone: the end of the line is as good as a comma.
    bool HoldsNothing() const { return *at_ == ',' || *at_ == '\0'; }
    bool NextFilled() { return Next() && !IsEmpty(); }

    char First() const { return *at_; }

    // 0 where there is no number; the nearest limit where it does not fit.
    std::int32_t Integer() {
        if (IsEmpty()) {
            return 0;
        }
        const char* end = at_;
        std::uint32_t value = 0;
        for (unsigned digit = DigitValue(*end); digit <= 9; digit = DigitValue(*++end)) {
            value = value * 10 + digit;
        }
        // Unless it is a plain number that certainly fits, begin again.
        constexpr std::ptrdiff_t kFittingDigits = 9;
        if (const std::ptrdiff_t digits = end - at_; digits >= 1 && digits <= kFittingDigits) {
            at_ = end;
            return static_cast<std::int32_t>(value);
        }
        const auto number = AnyInteger(at_);
        at_ = number.end;
        return number.value;
    }

    // The next field's number. False, and nothing given, at the end of the line.
    bool NextInteger(std::int32_t& value) {
        if (!Next()) {
            return false;
        }
        value = Integer();
        return true;
    }

    // Sign, digits, point, digits; 0 where there is no number.
    double Real() {
        if (IsEmpty()) {
            return 0;
        }
        const auto number = AnyReal(at_);
        at_ = number.end;
        return number.value;
    }

  private:
    template <typename Value>
    struct Number {
        Value value;
        const char* end;
    };

    static Number<std::int32_t> AnyInteger(const char* at);
    static Number<double> AnyReal(const char* at);

    const char* at_;
};

}  // namespace quarlin::gps
