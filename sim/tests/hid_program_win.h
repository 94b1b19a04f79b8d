// SPDX-License-Identifier: Apache-2.0
// A program that uses HID devices, and a device for it to use.
#pragma once

#include <windows.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "hidbus/hid_device.h"

namespace quarlin::sim::testing {

using Report = std::vector<std::uint8_t>;

// The interface paths of all HID devices that are there.
std::vector<std::string> PresentPaths();
std::string PathOf(const HidIdentity& identity);
bool IsPresent(const HidIdentity& identity);
// The count of paths that contain a text.
std::size_t CountPresent(const std::string& part);

class WindowsHandle {
  public:
    explicit WindowsHandle(HANDLE handle = nullptr) : handle_(handle) {}
    WindowsHandle(WindowsHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    WindowsHandle& operator=(WindowsHandle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~WindowsHandle() { Close(); }

    void Close() {
        if (IsOpen()) {
            CloseHandle(std::exchange(handle_, nullptr));
        }
    }
    bool IsOpen() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle_; }

  private:
    HANDLE handle_;
};

// An open HID device. Transfers say the Windows error, 0 when they went well. Nothing waits for more than ten seconds.
class HidProgram {
  public:
    static constexpr DWORD kPatience = 10'000;
    static constexpr DWORD kStillPending = WAIT_TIMEOUT;

    explicit HidProgram(const std::string& path);
    explicit HidProgram(const HidIdentity& identity) : HidProgram(PathOf(identity)) {}
    ~HidProgram();

    bool IsOpen() const { return file_.IsOpen(); }
    HANDLE Handle() const { return file_.Get(); }
    void Close() { file_.Close(); }

    DWORD SetFeature(Report report) const;
    // The report begins with the wanted ID.
    DWORD GetFeature(Report& report) const;
    DWORD SetOutput(Report report) const;
    DWORD Write(const Report& report, DWORD* written = nullptr);

    // Begins to read, unless a read is pending already, and ends it. Without a pending read a report that is there is
    // read at once.
    void BeginRead(std::size_t length);
    DWORD EndRead(Report& report, DWORD patience = kPatience);
    DWORD Read(std::size_t length, Report& report, DWORD patience = kPatience);

  private:
    WindowsHandle file_;
    WindowsHandle readDone_;
    WindowsHandle writeDone_;
    OVERLAPPED reading_ = {};
    Report buffer_;
    bool pending_ = false;
    DWORD readError_ = 0;
};

// A device that keeps what it is told and answers as it is told to.
class ScriptedDevice final : public HidFunction {
  public:
    using Script = std::function<HidAnswer()>;
    using OutputScript = std::function<HidAnswer(const Report&)>;

    HidAnswer SetFeature(std::span<const std::uint8_t> report) override;
    HidAnswer GetFeature(std::span<std::uint8_t> report) override;
    HidAnswer SetOutput(std::span<const std::uint8_t> report) override;

    // Called for each transfer, after it has been noted.
    void Run(Script script);
    // Called for each output report, which is not kept.
    void RunWithOutput(OutputScript script);
    void HoldFeature(Report report);
    std::vector<Report> Features() const;
    std::vector<Report> Outputs() const;
    // The reports that were to be filled, as they came.
    std::vector<Report> Asked() const;

  private:
    HidAnswer Next();

    mutable std::mutex mutex_;
    Script script_;
    OutputScript outputScript_;
    Report feature_;
    std::vector<Report> features_;
    std::vector<Report> outputs_;
    std::vector<Report> asked_;
};

// A gate that a device waits at in the middle of a transfer.
class Gate {
  public:
    // Waits until it is open.
    void Pass();
    void Open();
    // Whether somebody comes and waits.
    bool IsReached();

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool open_ = false;
    bool reached_ = false;
};

// One input report of 888 bytes, one output report of 64, one feature report of 25, each with the ID byte, which is 0:
// the descriptor names no IDs.
HidIdentity PlainIdentity(const std::string& instance);
// Input reports 1 (9 bytes) and 2 (21), output report 3 (17), feature report 4 (11).
HidIdentity NumberedIdentity(const std::string& instance);

// A report of a length that begins with an ID and ends with a mark.
Report MakeReport(std::uint8_t id, std::size_t length, std::uint8_t mark);

}  // namespace quarlin::sim::testing
