// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <utility>

#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/wait_win.h"

namespace quarlin::test {

// A call on a thread of its own, and the record that it leaves there.
class OtherThread {
  public:
    explicit OtherThread(std::function<QLerr()> call)
        : thread_([this, call = std::move(call)] {
              returned_ = call();
              record_ = FetchLastError();
              ended_ = true;
          }) {}
    OtherThread(const OtherThread&) = delete;
    OtherThread& operator=(const OtherThread&) = delete;
    ~OtherThread() { Join(); }

    bool HasEnded() const { return ended_; }
    // Waits for the end; gives the code and its text.
    Failure Outcome() {
        Join();
        EXPECT_EQ(returned_, record_.code);
        return record_;
    }

  private:
    void Join() {
        if (thread_.joinable()) {
            thread_.join();
        }
    }

    QLerr returned_ = QLERR_INTERNAL_ERROR;
    Failure record_;
    std::atomic<bool> ended_ = false;
    std::thread thread_;
};

// Tells when the library goes to wait for a reply: its command has been sent then. One watch at a time.
class ReplyWatch {
  public:
    ReplyWatch() { waits_ = 0; }

    // Throws std::runtime_error when it never waits for so many.
    void AwaitWaits(int count) const {
        Await("the library's wait for a reply", [&] { return waits_ >= count; });
    }

  private:
    static BOOL WINAPI WatchedRead(HANDLE file, void* buffer, DWORD size, DWORD* read, OVERLAPPED* overlapped) {
        ++waits_;
        return ReadFile(file, buffer, size, read, overlapped);
    }

    inline static std::atomic<int> waits_ = 0;
    ImportHook hook_{"KERNEL32.dll", "ReadFile", &WatchedRead};
};

}  // namespace quarlin::test
