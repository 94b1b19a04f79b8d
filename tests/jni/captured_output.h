// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace quarlin::test {

// Takes what the process writes to its standard output, from the stream or beside it, while this lives. What stays in
// the stream's buffer has not been written: a text that is not flushed is not seen.
class CapturedOutput {
  public:
    CapturedOutput();
    ~CapturedOutput();
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    // Ends the capture.
    std::string Take();

  private:
    void Restore();

    int saved_;
    int readEnd_;
};

}  // namespace quarlin::test
