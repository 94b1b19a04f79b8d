// SPDX-License-Identifier: Apache-2.0
// What the benchmarks on virtual HID devices share.
#pragma once

#include "machine_bench_win.h"

namespace quarlin::bench {

// A device, opened by its identity; throws std::runtime_error.
class BareDevice {
  public:
    // vendorAndProduct: as a path has it, "vid_0801&pid_0011".
    BareDevice(const wchar_t* vendorAndProduct, DWORD flags);
    BareDevice(const BareDevice&) = delete;
    BareDevice& operator=(const BareDevice&) = delete;
    ~BareDevice();

    HANDLE Get() const { return handle_; }

  private:
    HANDLE handle_;
};

}  // namespace quarlin::bench
