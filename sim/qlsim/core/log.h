// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

namespace quarlin::sim {

// What happened and when, one line each, to any number of streams. Any thread may write.
class Log {
  public:
    void AddSink(std::ostream& sink);
    // seconds: of the simulation.
    void Write(double seconds, const std::string& who, const std::string& text);

  private:
    std::mutex lock_;
    std::vector<std::ostream*> sinks_;
};

}  // namespace quarlin::sim
