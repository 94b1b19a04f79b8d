// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

namespace quarlin::bench {

// The yardstick: one step a byte. Compiled without vectorisation, in a file of its own, so that neither the compiler
// nor the caller's loop can do better.
std::uint64_t TouchBytes(const char* bytes, std::size_t size);

}  // namespace quarlin::bench
