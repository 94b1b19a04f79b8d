// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace quarlin::qlctl {

// Ends the process without a word to any DLL: for when a thread of ours is inside one and holds its locks.
[[noreturn]] void EndProcessAtOnce(int status);

}  // namespace quarlin::qlctl
