// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quarlin::qlctl {

// A scanner as `barcode list` shows it.
struct BarcodeScanner {
    int index = 0;
    std::string name;
    bool isOwn = false;  // the machine's own, not one that somebody plugged in
    int linkKind = 0;
    int linkFlag = 0;
};

// One scan, copied out of the library's record.
struct BarcodeScan {
    int device = 0;
    std::vector<std::uint8_t> symbologyId;  // empty when there is none
    std::vector<std::uint8_t> data;
};

}  // namespace quarlin::qlctl
