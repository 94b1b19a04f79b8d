// SPDX-License-Identifier: Apache-2.0
#include "child_process_win.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

constexpr DWORD kPatienceMs = 120000;

// The cable from COM3 to COM4 belongs to one test program at a time: whoever holds its mutex.
class CableTurn : public testing::Environment {
  public:
    void SetUp() override {
        mutex_.reset(CreateMutexW(nullptr, FALSE, L"Global\\QuarlinTestCable3"));
        ASSERT_TRUE(mutex_) << GetLastError();
        // Abandoned: another test program ended in the middle, and the system has closed its ends of the cable.
        const DWORD result = WaitForSingleObject(mutex_.get(), kPatienceMs);
        taken_ = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
        ASSERT_TRUE(taken_) << "the serial cable did not become free: " << result;
    }

    void TearDown() override {
        if (taken_) {
            ReleaseMutex(mutex_.get());
        }
        mutex_.reset();
    }

  private:
    UniqueHandle mutex_;
    bool taken_ = false;
};

// GoogleTest owns and ends it.
const testing::Environment* const cableTurn = testing::AddGlobalTestEnvironment(new CableTurn);

}  // namespace
}  // namespace quarlin::qlctl
