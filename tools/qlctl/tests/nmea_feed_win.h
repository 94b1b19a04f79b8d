// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "child_process_win.h"

#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quarlin::qlctl {

// A receiver at the far end of COM3's cable: sends the same burst of sentences again and again, as receivers do.
class NmeaFeed {
  public:
    explicit NmeaFeed(const std::vector<std::string>& sentences);
    ~NmeaFeed();
    NmeaFeed(const NmeaFeed&) = delete;
    NmeaFeed& operator=(const NmeaFeed&) = delete;

    // What to send from the next burst on.
    void Change(const std::vector<std::string>& sentences);

  private:
    void Send();

    UniqueHandle port_;
    UniqueHandle stop_;
    std::mutex mutex_;
    std::string burst_;
    std::thread thread_;
};

// Eleven GPS satellites and two GLONASS satellites, a 3-D fix at 53.361337 N 6.505620 W, 10 knots.
std::vector<std::string> SampleBurst();

// A receiver that has just been switched on: no fix, no position, no satellites.
std::vector<std::string> ColdBurst();

}  // namespace quarlin::qlctl
