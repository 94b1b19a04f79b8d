// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <functional>
#include <thread>
#include <utility>

#include "support/owners_win.h"
#include "support/wait_win.h"

namespace quarlin::test {

// A thread that has to end within the deadline. One that does not is what the test is about to find: the program ends
// there, since nothing can be done about the thread.
class Worker {
  public:
    explicit Worker(std::function<void()> body)
        : thread_([this, body = std::move(body)] {
              body();
              SetEvent(ended_.Get());
          }) {}
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() { Join(); }

    HANDLE Ended() const { return ended_.Get(); }

    void Join() {
        if (!thread_.joinable()) {
            return;
        }
        if (WaitForSingleObject(ended_.Get(), kDeadline) != WAIT_OBJECT_0) {
            ADD_FAILURE() << "a thread waits for the lock for ever";
            std::_Exit(1);
        }
        thread_.join();
    }

  private:
    UniqueHandle ended_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::thread thread_;
};

}  // namespace quarlin::test
