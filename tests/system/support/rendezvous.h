// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <mutex>

namespace quarlin::test {

// Where a fixed number of threads wait for one another, again and again. (std::barrier of libstdc++ 12 loses wake-ups
// on Windows.)
class Rendezvous {
  public:
    explicit Rendezvous(int threads) : threads_(threads) {}

    void Arrive() {
        std::unique_lock lock(mutex_);
        const unsigned round = round_;
        if (++arrived_ == threads_) {
            arrived_ = 0;
            ++round_;
            allHere_.notify_all();
            return;
        }
        allHere_.wait(lock, [&] { return round_ != round; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable allHere_;
    const int threads_;
    int arrived_ = 0;
    unsigned round_ = 0;
};

}  // namespace quarlin::test
