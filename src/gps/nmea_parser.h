// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "gps/fix_state.h"

namespace quarlin::gps {

// Takes one line, NUL-terminated and without its line end, into the state. Never fails: a line of no known type changes
// nothing, and a sentence that ends early keeps what came before. Checksums are not verified. Always 0.
int ParseSentence(FixState& fix, const char* line);

}  // namespace quarlin::gps
