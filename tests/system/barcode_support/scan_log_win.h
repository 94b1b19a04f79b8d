// SPDX-License-Identifier: Apache-2.0
// A callback that keeps the scans that it receives.
#pragma once

#include <quarlin/barcode.h>

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include "support/owners_win.h"

namespace quarlin::test {

// A scan as the callback received it, with copies of all that it points to.
struct ReceivedScan {
    int callback = 0;
    DWORD thread = 0;
    std::int32_t deviceIndex = 0;
    std::string text;
    std::string symbologyId;
    bool hasSymbologyId = false;  // the pointer was not null
};

std::ostream& operator<<(std::ostream& out, const ReceivedScan& scan);

// The scans that callbacks 0 and 1 received, in order. One log at a time; make it before the library is initialised,
// because it has to outlive the callbacks' part in it.
class ScanLog {
  public:
    using Action = std::function<void(const QLBCR_BARCODE_DATA& scan)>;

    ScanLog();
    ScanLog(const ScanLog&) = delete;
    ScanLog& operator=(const ScanLog&) = delete;
    ~ScanLog();

    static QLBCR_Callback Callback(int number = 0);

    // Called in each callback after the scan has been logged; it may block, throw or call the library.
    void DoInside(Action action);

    // Forgets the scans.
    void Clear();
    std::size_t Count() const;
    std::vector<ReceivedScan> Scans() const;
    std::vector<std::string> Texts() const;
    // Waits until so many have come; throws std::runtime_error when they do not. Gives the last of them.
    ReceivedScan AwaitCount(std::size_t count) const;
    // Callbacks that are running now, and how many ran at the same moment, at most.
    int Running() const { return running_; }
    int MostAtOnce() const { return mostAtOnce_; }
    // Waits until no callback runs; throws std::runtime_error when one goes on.
    void AwaitQuiet() const;

  private:
    template <int number>
    static void Receive(const QLBCR_BARCODE_DATA* scan);
    void Take(int callback, const QLBCR_BARCODE_DATA& scan);

    mutable std::mutex lock_;
    Action inside_;
    std::vector<ReceivedScan> scans_;
    std::atomic<int> running_ = 0;
    std::atomic<int> mostAtOnce_ = 0;
};

// The next callback stays inside until it is let go, or until the end of the scope.
class HeldCallback {
  public:
    explicit HeldCallback(ScanLog& log);
    HeldCallback(const HeldCallback&) = delete;
    HeldCallback& operator=(const HeldCallback&) = delete;
    ~HeldCallback();

    // Waits until a callback is held; throws std::runtime_error when none comes.
    void AwaitHeld() const;
    void LetGo();

  private:
    ScanLog& log_;
    UniqueHandle held_;
    UniqueHandle goesOn_;
};

}  // namespace quarlin::test
