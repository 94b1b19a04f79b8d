// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace quarlin::test {

// Threads of this process.
size_t CountThreads();

}  // namespace quarlin::test
