// SPDX-License-Identifier: Apache-2.0
// Every function that exchanges a command with the reader, in the order of the header.
#pragma once

#include <quarlin/error.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "uhf/frames.h"

namespace quarlin::test {

struct ReaderFunction {
    const char* name;
    // With arguments that are all right for the first of two tags. Sees to it that a failure writes nothing. Killing
    // comes after all that needs the tag.
    QLerr (*call)(void* handle);
    sim::UhfCode command;
    // What the call sends.
    std::string frame;
    // How many bytes of the reply it looks at when it succeeds.
    std::size_t replyBytes;
    // Its own checks fail with the bare names of the codes.
    bool usesNames;
};

const std::vector<ReaderFunction>& ReaderFunctions();
// One for each command of the reader, for tests that take their time with each.
std::vector<ReaderFunction> OneFunctionPerCommand();

inline std::ostream& operator<<(std::ostream& out, const ReaderFunction& function) {
    return out << function.name;
}

inline std::string NameOfFunction(const ::testing::TestParamInfo<ReaderFunction>& info) {
    return info.param.name;
}

// A password as the functions take it.
class Password {
  public:
    explicit Password(std::vector<unsigned char> bytes) : bytes_(std::move(bytes)) {}

    unsigned char* Data() { return bytes_.data(); }
    int Length() const { return static_cast<int>(bytes_.size()); }

  private:
    std::vector<unsigned char> bytes_;
};

// The tag's passwords are BBAA0000, of which the last bytes are not given, and 1A2B3C4D.
inline Password AccessPassword() {
    return Password({0xAA, 0xBB});
}
inline Password KillPassword() {
    return Password({0x4D, 0x3C, 0x2B, 0x1A});
}

}  // namespace quarlin::test
