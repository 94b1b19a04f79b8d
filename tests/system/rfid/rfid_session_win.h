// SPDX-License-Identifier: Apache-2.0
// A simulated reader and the handle by which the library under test has opened it.
#pragma once

#include "rfid/rfid_reader_win.h"
#include "support/last_error.h"

// A success of this family leaves a record, as a failure does.
#define EXPECT_DONE(call) EXPECT_FAILURE(call, QLERR_OK, "QLERR_OK")
#define ASSERT_DONE(call) ASSERT_FAILURE(call, QLERR_OK, "QLERR_OK")

namespace quarlin::test {

// What the library has opened; closed at the end of the scope. Throws std::runtime_error when nothing opens.
class OpenedReader {
  public:
    OpenedReader() { Open(); }
    OpenedReader(const OpenedReader&) = delete;
    OpenedReader& operator=(const OpenedReader&) = delete;
    ~OpenedReader();

    operator void*() const { return handle_; }
    // Closes what is open; fails the test when the library does not.
    void Reopen();
    // The handle is somebody else's from now on.
    void* Release();

  private:
    void Open();

    void* handle_ = nullptr;
};

// A reader, plugged in and opened.
struct RfidSession {
    explicit RfidSession(const UhfSettings& settings = TwoTags()) : reader(settings) {}

    RfidReaderTurn turn;
    TestReader reader;
    OpenedReader handle;
};

}  // namespace quarlin::test
