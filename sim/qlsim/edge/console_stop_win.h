// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

namespace quarlin::sim {

// Calls a function when the user ends the program from outside: Ctrl-C, Ctrl-Break, the console's close button,
// log-off. The function is called on a thread of the system's. One object at a time; it outlives the program's
// clean-up, for which the system waits a few seconds.
class ConsoleStop {
  public:
    explicit ConsoleStop(std::function<void()> stop);
    ConsoleStop(const ConsoleStop&) = delete;
    ConsoleStop& operator=(const ConsoleStop&) = delete;
    ~ConsoleStop();
};

}  // namespace quarlin::sim
