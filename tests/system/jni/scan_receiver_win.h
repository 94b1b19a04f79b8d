// SPDX-License-Identifier: Apache-2.0
// The Java class that scans are delivered to.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include "stand_in_vm.h"

namespace quarlin::test {

// What the static method was given.
struct JavaScan {
    jint device = 0;
    std::string text;
    jint length = 0;
    std::string bytes;
    std::string symbology;
    jint symbologyLength = 0;
    std::string symbologyBytes;

    bool operator==(const JavaScan&) const = default;
};

std::ostream& operator<<(std::ostream& out, const JavaScan& scan);

// A scan of bytes that are a text of Java's as they are.
JavaScan PlainScan(const std::string& text, const std::string& symbology = {});

// Has to outlive the library's deliveries.
class ScanReceiver {
  public:
    static constexpr const char* kClass = "com/norvane/quarlin/bcr/ScanReceiver";

    explicit ScanReceiver(StandInVm& vm);
    ScanReceiver(const ScanReceiver&) = delete;
    ScanReceiver& operator=(const ScanReceiver&) = delete;

    // Called in each delivery after the scan has been kept; it may throw JavaThrow.
    void DoInside(std::function<void()> action);
    void Clear();
    std::size_t Count() const;
    std::vector<JavaScan> Scans() const;
    // On which threads the deliveries came.
    std::vector<DWORD> Threads() const;
    // Waits until so many have come and their threads are detached again; throws std::runtime_error when they do not.
    // Gives the last of them.
    JavaScan AwaitCount(std::size_t count) const;

  private:
    void Take(const JavaCall& call);

    StandInVm& vm_;
    mutable std::mutex lock_;
    std::function<void()> inside_;
    std::vector<JavaScan> scans_;
    std::vector<DWORD> threads_;
};

}  // namespace quarlin::test
