// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace quarlin::qlctl {

struct CloseHandlePolicy {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using UniqueHandle = std::unique_ptr<void, CloseHandlePolicy>;

struct ChildResult {
    // Nothing when it did not end in time; it has been ended by force then.
    std::optional<int> exitStatus;
    std::string out;
    std::string err;
};

// Reads a pipe to its end on a thread of its own.
class PipeReader {
  public:
    enum class Reading {
        kAll,
        kRefused
    };
    // kRefused: nobody takes what is written, as after a reader that ended early.
    explicit PipeReader(Reading reading = Reading::kAll);
    ~PipeReader();

    // The end that the writer inherits.
    HANDLE WriteEnd() const { return writeEnd_.get(); }
    // To be called when the writer has its copy: the pipe ends with the last one.
    void CloseWriteEnd() { writeEnd_.reset(); }
    bool WaitFor(const std::string& text, std::chrono::milliseconds atMost);
    // Everything, once the pipe has ended.
    std::string Finish();

  private:
    void Read();

    UniqueHandle readEnd_;
    UniqueHandle writeEnd_;
    std::mutex mutex_;
    std::condition_variable grown_;
    std::string text_;
    std::thread thread_;
};

// qlctl.exe as its user starts it: the program of this test's own build with both outputs piped.
class ChildProcess {
  public:
    explicit ChildProcess(const std::string& arguments, PipeReader::Reading output = PipeReader::Reading::kAll);
    // With its standard output on an inheritable handle of the test's.
    ChildProcess(const std::string& arguments, HANDLE output);
    ~ChildProcess();

    PipeReader& Out() { return out_; }
    PipeReader& Err() { return err_; }
    bool HasEndedWithin(std::chrono::milliseconds time) const;
    ChildResult Finish();

  private:
    void Start(const std::string& arguments, HANDLE output);

    PipeReader out_;
    PipeReader err_;
    UniqueHandle process_;
};

// Runs qlctl to its end.
ChildResult Qlctl(const std::string& arguments);

// Path of the program under test.
std::wstring QlctlPath();

// An environment variable for the programs started during its life; empty removes it.
class ScopedVariable {
  public:
    ScopedVariable(const char* name, const char* value) : name_(name) { SetEnvironmentVariableA(name, value); }
    ~ScopedVariable() { SetEnvironmentVariableA(name_, nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

  private:
    const char* name_;
};

// Longer than any of the tested commands takes.
inline constexpr std::chrono::milliseconds kDeadline{20000};

}  // namespace quarlin::qlctl
