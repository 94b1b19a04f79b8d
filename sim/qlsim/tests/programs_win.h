// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "edge/handle_win.h"

namespace quarlin::sim::testing {

// How long anything may take before a test gives up on it.
inline constexpr DWORD kPatience = 20000;  // milliseconds

// A program of the build's sim folder, started with its output in a file.
class Program {
  public:
    Program(const std::wstring& name, const std::vector<std::string>& arguments);
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    // Ends it when it still runs.
    ~Program();

    // Its exit status; nothing when it does not end.
    std::optional<DWORD> Wait();
    // What it has written to standard output and standard error, after Wait.
    std::string Output() const;

  private:
    std::wstring outputFile_;
    OwnedHandle process_;
};

// A text file in the temporary folder that goes away with the object.
class TemporaryFile {
  public:
    TemporaryFile(const std::wstring& name, const std::string& text);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    std::string Path() const;

  private:
    std::wstring path_;
};

// The application's end of a cable.
class ApplicationPort {
  public:
    // Opens it, waiting for it to be there; IsOpen tells whether that came true.
    explicit ApplicationPort(const std::wstring& name);

    bool IsOpen() const { return static_cast<bool>(handle_); }
    // The next line without its end; nothing when none comes or the port is gone.
    std::optional<std::string> ReadLine();
    // Reads on until a line contains the text; that line, or nothing.
    std::optional<std::string> ReadUntil(const std::string& text);
    // Waits until the open port has no device behind it any more.
    bool WaitForLoss();

  private:
    // Reads for a short while, perhaps nothing; false when the port is gone.
    bool ReadMore();

    OwnedHandle handle_;
    std::string received_;
};

// Waits until the port cannot be opened any more.
bool WaitUntilAbsent(const std::wstring& name);

}  // namespace quarlin::sim::testing
