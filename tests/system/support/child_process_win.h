// SPDX-License-Identifier: Apache-2.0
// This test program started again as another process, with an environment of its own, its output captured. Needed
// where the library reads something once per process, writes to standard output, or loads under other conditions.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quarlin::test {

// Changes to the environment that the child inherits: a text sets a variable, nullopt removes it.
using EnvironmentChanges = std::map<std::wstring, std::optional<std::wstring>>;

struct ChildResult {
    DWORD exitCode = 0;
    // What the child wrote; a line ends with "\n" alone, whatever the runtime's text mode makes of it.
    std::string out;
    std::string err;
};

// Starts this program with the arguments and waits for its end. Throws std::runtime_error when it does not start, or
// does not end in time (it is then terminated).
ChildResult RunThisProgram(const std::vector<std::wstring>& arguments, const EnvironmentChanges& environment = {},
                           DWORD timeoutMs = 60000);

// Runs a child mode, see QUARLIN_CHILD_MODE, in a process of its own.
ChildResult RunChild(const std::string& mode, const EnvironmentChanges& environment = {},
                     const std::vector<std::wstring>& arguments = {}, DWORD timeoutMs = 60000);

using ChildFunction = int (*)(const std::vector<std::string>& arguments);

// Makes a function known under a name; what it returns is the child's exit code.
struct ChildMode {
    ChildMode(const char* name, ChildFunction function);
};

// The child mode that the program was started for, bound to its arguments; empty for an ordinary test run. An unknown
// mode is told on standard error and ends with exit code 125.
std::function<int()> RequestedChildMode(int argc, char** argv);

}  // namespace quarlin::test

// Defines what a child process does. Modes are looked up before GoogleTest starts.
//   QUARLIN_CHILD_MODE(report_log) { ...; return 0; }      RunChild("report_log")
#define QUARLIN_CHILD_MODE(name)                                                           \
    static int name##_ChildMode(const std::vector<std::string>& arguments);                \
    static const ::quarlin::test::ChildMode name##_registration(#name, &name##_ChildMode); \
    static int name##_ChildMode([[maybe_unused]] const std::vector<std::string>& arguments)
