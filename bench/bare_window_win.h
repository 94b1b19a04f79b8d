// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include "machine_bench_win.h"

#include <cstdint>
#include <thread>

namespace quarlin::bench {

// The yardstick: a hidden window on a thread of its own, with the plainest message loop there is. It takes down when
// registered messages arrive.
class BareWindow {
  public:
    BareWindow();
    BareWindow(const BareWindow&) = delete;
    BareWindow& operator=(const BareWindow&) = delete;
    ~BareWindow();

    HWND Window() const { return window_; }

    Arrivals arrivals;
    std::int64_t at = 0;  // the last one's

  private:
    void Listen();
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND window_ = nullptr;
    Arrivals started_;
    std::thread thread_;
};

}  // namespace quarlin::bench
