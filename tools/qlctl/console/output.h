// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quarlin::qlctl {

// Standard output: UTF-8, line ends as they are, every piece written out at once so that a pipe's reader sees it.
class Output {
  public:
    Output();
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // Throws a Failure (kOutput) when nobody takes the text any more.
    void Write(std::string_view text);

    // Whether a person looks at it, on a console that understands the sequences of a redrawn screen.
    bool CanRedraw() const { return canRedraw_; }
    // Lines that the console shows; without a console what the variable LINES says, or 24.
    int Rows() const;

  private:
    void* handle_;
    unsigned long modeBefore_ = 0;
    unsigned int codePageBefore_ = 0;
    bool isConsole_ = false;
    bool canRedraw_ = false;
};

// A screen that is drawn again and again. The destructor gives the cursor back, whatever ended the drawing.
class Screen {
  public:
    explicit Screen(Output& output);
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    void Draw(const std::vector<std::string>& lines);

  private:
    Output& output_;
};

}  // namespace quarlin::qlctl
