// SPDX-License-Identifier: Apache-2.0
#include "touch_bytes.h"

namespace quarlin::bench {

std::uint64_t TouchBytes(const char* bytes, std::size_t size) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < size; ++i) {
        sum += static_cast<unsigned char>(bytes[i]);
    }
    return sum;
}

}  // namespace quarlin::bench
