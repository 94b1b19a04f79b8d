// SPDX-License-Identifier: Apache-2.0
// What the RFID family asks of the system, answered by the test: device interfaces that exist only here, each of which
// can go wrong at each step. No device of the machine is touched.
#pragma once

#include <windows.h>

#include <deque>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "support/import_hook_win.h"

namespace quarlin::test {

struct StandInInterface {
    std::string path{};
    USHORT vendor = 0x24E9;
    USHORT product = 0x3993;
    USHORT outputReportLength = 64;

    DWORD sizeQueryError = ERROR_INSUFFICIENT_BUFFER;  // ERROR_SUCCESS: the query for the size succeeds
    bool tellsPath = true;
    bool opensForReading = true;
    bool tellsAttributes = true;
    bool opensForBoth = true;
    bool tellsReports = true;
    bool tellsCapabilities = true;
};

// One at a time.
class StandInPlatform {
  public:
    StandInPlatform();
    StandInPlatform(const StandInPlatform&) = delete;
    StandInPlatform& operator=(const StandInPlatform&) = delete;
    ~StandInPlatform();

    std::vector<StandInInterface> interfaces;
    bool lists = true;
    bool closes = true;
    bool sends = true;
    // What the next reads give; a read that finds none fails.
    std::deque<std::vector<unsigned char>> replies;
    // Runs at the beginning of each read.
    std::function<void()> onRead = [] {};

    // The calls, in order: "open PATH r", "open PATH rw", "close 1", "send 64: C0 03 17", ...
    std::vector<std::string> Calls() const;
    void ForgetCalls();
    // Handles that are open now; device lists and descriptions of reports that have not been given back.
    std::set<HANDLE> OpenHandles() const;
    int ListsAndReportsInUse() const;

  private:
    std::vector<std::unique_ptr<ImportHook>> hooks_;
};

}  // namespace quarlin::test
