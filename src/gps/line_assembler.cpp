// SPDX-License-Identifier: Apache-2.0
#include "gps/line_assembler.h"

namespace quarlin::gps {
namespace {

constexpr unsigned char kLineFeed = 10;
constexpr unsigned char kCarriageReturn = 13;
constexpr unsigned char kLowest = 32;
// Without the tilde and DEL.
constexpr unsigned char kHighest = 125;

}  // namespace

bool LineAssembler::Take(unsigned char byte) {
    if (byte == kLineFeed) {
        if (bad_) {
            buffer_[0] = static_cast<char>(kLineFeed);
            buffer_[1] = '\0';
        } else {
            buffer_[position_] = '\0';
        }
        position_ = 0;
        bad_ = false;
        return true;
    }
    if (byte == kCarriageReturn) {
        return false;
    }
    if (byte < kLowest || byte > kHighest) {
        bad_ = true;
        return false;
    }
    buffer_[position_] = static_cast<char>(byte);
    // A line longer than the buffer loses its beginning.
    position_ = (position_ + 1) % kCapacity;
    return false;
}

}  // namespace quarlin::gps
