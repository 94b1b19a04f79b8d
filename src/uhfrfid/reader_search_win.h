// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace quarlin::uhfrfid {

// A reader that was opened: its handle, and the size of its output report in bytes.
struct FoundReader {
    void* handle;
    std::size_t reportSize;
};

// Looks through the HID devices that are present and opens the first reader. Raises QLERR_UHFRFID_SYSTEM when they
// cannot be listed, QLERR_UHFRFID_DEVICENOTFOUND when there is no reader, and QLERR_UHFRFID_INVALID_HANDLE when there
// is one that cannot be used. The handle is the caller's to close.
FoundReader OpenFirstReader();

}  // namespace quarlin::uhfrfid
