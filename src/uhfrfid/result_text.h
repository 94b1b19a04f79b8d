// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/quarlin_exception.h"

namespace quarlin::uhfrfid {

// Two wordings exist for one code, and programs compare texts: which of them a function uses is part of it.
using Wording = const char* (*)(QLerr);

// The text of a code; "Unknown Error" for a code without one.
const char* ReaderMessage(QLerr code);

// The bare name of a code, as the checks before an exchange give it; "UNKNOWN" for a code without one.
const char* CodeName(QLerr code);

[[noreturn]] inline void Fail(QLerr code, Wording wording) {
    quarlin::Fail(code, wording(code));
}

inline void Require(bool condition, QLerr code, Wording wording) {
    if (!condition) {
        Fail(code, wording);
    }
}

}  // namespace quarlin::uhfrfid
