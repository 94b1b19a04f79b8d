// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>

namespace quarlin::gps {

// Makes lines of the bytes that a receiver sends.
class LineAssembler {
  public:
    static constexpr std::size_t kCapacity = 1024;

    // Takes one byte. True when it ended a line, which Line then gives until the next byte comes.
    bool Take(unsigned char byte);

    // The finished line, NUL-terminated and without its line end. A line that held a byte no sentence may hold reads as
    // a lone line feed, which is no sentence.
    const char* Line() const { return buffer_.data(); }

  private:
    std::array<char, kCapacity> buffer_{};
    std::size_t position_ = 0;
    bool bad_ = false;
};

}  // namespace quarlin::gps
