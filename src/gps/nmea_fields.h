// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace quarlin::gps {

// Walks over the fields of one NUL-terminated sentence. Numbers are read as far as they go: whatever follows, the
// checksum's asterisk included, ends them. No number depends on the process's locale.
class FieldCursor {
  public:
    explicit FieldCursor(const char* at) : at_(at) {}

    // To the start of the next field, behind the next comma. False at the end of the line.
    bool Next() {
        while (*at_ != ',') {
            if (*at_ == '\0') {
                return false;
            }
            ++at_;
        }
        ++at_;
        return true;
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
    bool IsAtEnd() const { return *at_ == '\0'; }
    bool NextFilled() { return Next() && !IsEmpty(); }

    char First() const { return *at_; }

    // 0 where there is no number; the nearest limit where it does not fit.
    std::int32_t Integer();
    // Sign, digits, point, digits; 0 where there is no number.
    double Real();

  private:
    void SkipBlanks() {
        while (*at_ == ' ' || (*at_ >= '\t' && *at_ <= '\r')) {
            ++at_;
        }
    }

    bool TakeSign() {
        const bool negative = *at_ == '-';
        if (negative || *at_ == '+') {
            ++at_;
        }
        return negative;
    }

    const char* at_;
};

inline unsigned DigitValue(char c) {
    return static_cast<unsigned char>(c) - unsigned{'0'};
}

}  // namespace quarlin::gps
