// SPDX-License-Identifier: Apache-2.0
#include "rfid/rfid_session_win.h"

#include <quarlin/uhf_rfid.h>

#include <stdexcept>
#include <utility>

namespace quarlin::test {

OpenedReader::~OpenedReader() {
    if (handle_ != nullptr) {
        QLUHFRFID_CloseReader(handle_);
    }
}

void OpenedReader::Reopen() {
    EXPECT_DONE(QLUHFRFID_CloseReader(std::exchange(handle_, nullptr)));
    Open();
}

void* OpenedReader::Release() {
    return std::exchange(handle_, nullptr);
}

void OpenedReader::Open() {
    if (QLUHFRFID_OpenReader(&handle_) != QLERR_OK) {
        handle_ = nullptr;
        throw std::runtime_error("the library opens no reader: " + FetchLastError().text);
    }
    FetchLastError();
}

}  // namespace quarlin::test
