// SPDX-License-Identifier: Apache-2.0
// The one read that is in flight: who ends the wait for it, what is taken for it, and how long its memory lives.
#include "usb_hid_dev_reader_win.h"

#include <array>
#include <atomic>

namespace quarlin::msr {
namespace {

using test::Report;

// The reads that the object has begun, and where the system was asked to write for the last of them.
int reads;
std::array<std::atomic<const void*>, 2> targets;
// Of the last packet that came.
std::atomic<const OVERLAPPED*> lastOverlapped;
// Which of the targets have been freed, and whether the read's own packet had not come by then.
std::array<std::atomic<bool>, 2> freed;
std::atomic<bool> freedEarly;

void Watch(const void* buffer, const void* overlapped) {
    targets[0] = buffer;
    targets[1] = overlapped;
    freed[0] = false;
    freed[1] = false;
    freedEarly = false;
}

BOOL WINAPI NotedRead(HANDLE file, void* buffer, DWORD size, DWORD* read, OVERLAPPED* overlapped) {
    ++reads;
    Watch(buffer, overlapped);
    return test::SystemFunction<decltype(ReadFile)>("kernel32.dll", "ReadFile")(file, buffer, size, read, overlapped);
}

void WatchedFree(void* block) {
    for (std::size_t i = 0; i < targets.size(); ++i) {
        if (block != nullptr && block == targets[i]) {
            freed[i] = true;
            freedEarly = freedEarly || lastOverlapped != targets[1];
        }
    }
    test::SystemFunction<void(void*)>("msvcrt.dll", "free")(block);
}

// What a wait for a packet answers instead of the system, which keeps its packets.
struct FalseAnswer {
    OVERLAPPED* overlapped;
    DWORD error;
};
const FalseAnswer* falseAnswer;
DWORD lastTimeout;

BOOL WINAPI Wait(HANDLE port, LPDWORD bytes, PULONG_PTR key, LPOVERLAPPED* overlapped, DWORD milliseconds) {
    lastTimeout = milliseconds;
    if (falseAnswer != nullptr) {
        *overlapped = falseAnswer->overlapped;
        SetLastError(falseAnswer->error);
        return FALSE;
    }
    const BOOL result = test::SystemFunction<decltype(GetQueuedCompletionStatus)>(
        "kernel32.dll", "GetQueuedCompletionStatus")(port, bytes, key, overlapped, milliseconds);
    lastOverlapped = *overlapped;
    return result;
}

class UsbHidDevRead : public OpenUsbHidDev {
  protected:
    UsbHidDevRead() {
        reads = 0;
        Watch(nullptr, nullptr);
        falseAnswer = nullptr;
    }

    // One read is begun and not waited for. What transfers have left on the port is gone.
    void BeginRead() {
        const int before = reads;
        const std::size_t delivered = listener_.reports.size();
        ASSERT_TRUE(device_.CancelRead());
        do {
            ASSERT_TRUE(device_.ReadInputReport());
        } while (lastOverlapped != nullptr);
        ASSERT_EQ(listener_.reports.size(), delivered);
        ASSERT_EQ(reads, before + 1);
    }

    // The read that is pending delivers; no other one has been begun for it.
    void ExpectDelivers(int expectedReads = 1) {
        const Report report = reader_.Swipe();
        const std::size_t before = listener_.reports.size();
        while (listener_.reports.size() == before) {
            ASSERT_TRUE(device_.ReadInputReport());
        }
        EXPECT_EQ(listener_.reports.size(), before + 1);
        EXPECT_EQ(listener_.reports.back(), report);
        EXPECT_EQ(reads, expectedReads);
    }

  private:
    const OwnHook read_{"KERNEL32.dll", "ReadFile", &NotedRead};
    const OwnHook free_{"msvcrt.dll", "free", &WatchedFree};
    const OwnHook wait_{"KERNEL32.dll", "GetQueuedCompletionStatus", &Wait};
};

TEST_F(UsbHidDevRead, DeliversOneReportForEachCall) {
    BeginRead();
    for (int i = 1; i <= 3; ++i) {
        const Report report = reader_.Swipe();
        EXPECT_TRUE(device_.ReadInputReport());
        ASSERT_EQ(listener_.reports.size(), static_cast<std::size_t>(i));
        EXPECT_EQ(listener_.reports.back(), report);
        EXPECT_EQ(reads, i);
        EXPECT_EQ(lastTimeout, DWORD{INFINITE});
    }
}

TEST_F(UsbHidDevRead, IsLeftPendingByCancelReadAndDeliversLater) {
    BeginRead();
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(device_.CancelRead());
        EXPECT_TRUE(device_.ReadInputReport());
    }
    EXPECT_TRUE(listener_.reports.empty());
    ExpectDelivers();
    ExpectDelivers(2);
}

// The report has come when the wait is ended: neither is lost.
TEST_F(UsbHidDevRead, IsNotLostWhenCancelReadComesFirst) {
    BeginRead();
    EXPECT_TRUE(device_.CancelRead());
    const Report report = reader_.Swipe();
    EXPECT_TRUE(device_.ReadInputReport());
    EXPECT_TRUE(device_.ReadInputReport());
    EXPECT_EQ(listener_.reports, std::vector<Report>{report});
    EXPECT_EQ(reads, 1);
}

TEST_F(UsbHidDevRead, IsNotEndedByAFailedPacketOfAnother) {
    BeginRead();
    OVERLAPPED other{};
    const FalseAnswer answer{&other, ERROR_OPERATION_ABORTED};
    for (int i = 0; i < 3; ++i) {
        falseAnswer = &answer;
        EXPECT_TRUE(device_.ReadInputReport());
        falseAnswer = nullptr;
    }
    EXPECT_TRUE(listener_.reports.empty());
    EXPECT_FALSE(freed[0] || freed[1]);
    ExpectDelivers();
}

// The system leaves packets of feature transfers on the port, of those that succeed and of those that fail.
TEST_F(UsbHidDevRead, IsNotEndedByTransfersOnItsHandle) {
    const Report command{0x00, 0x15, 0x00};
    const auto length = static_cast<std::uint32_t>(command.size());
    for (int i = 1; i <= 10; ++i) {
        BeginRead();
        EXPECT_TRUE(device_.SetFeatureReport(command.data(), length));
        reader_.Device().AddFault({.answer = sim::HidAnswer::kRefuse, .request = sim::HidRequest::kGetFeature});
        Report reply;
        EXPECT_FALSE(device_.GetFeatureReport(reply));
        EXPECT_TRUE(device_.GetFeatureReport(reply));
        ExpectDelivers(i);
    }
}

TEST_F(UsbHidDevRead, FailsWithItsOwnFailedPacket) {
    BeginRead();
    reader_.Unplug();
    EXPECT_FALSE(device_.ReadInputReport());
    EXPECT_TRUE(listener_.reports.empty());
    EXPECT_TRUE(freed[0] && freed[1]);
    EXPECT_FALSE(device_.ReadInputReport());
}

TEST_F(UsbHidDevRead, FailsWhenTheWaitFails) {
    BeginRead();
    const FalseAnswer answer{nullptr, ERROR_INVALID_HANDLE};
    falseAnswer = &answer;
    EXPECT_FALSE(device_.ReadInputReport());
    falseAnswer = nullptr;
    EXPECT_FALSE(freed[0] || freed[1]);
    ExpectDelivers();
}

TEST_F(UsbHidDevRead, IsDroppedWithoutAListener) {
    BeginRead();
    EXPECT_TRUE(device_.ClearListener());
    reader_.Swipe();
    EXPECT_TRUE(device_.ReadInputReport());
    EXPECT_TRUE(listener_.reports.empty());
    EXPECT_TRUE(device_.SetListener(&listener_));
    ExpectDelivers(2);
}

TEST_F(UsbHidDevRead, GoesToTheOldListenerWhenNullWasRefused) {
    EXPECT_FALSE(device_.SetListener(nullptr));
    ExpectDelivers();
    KeepingListener other;
    EXPECT_TRUE(device_.SetListener(&other));
    EXPECT_FALSE(device_.SetListener(nullptr));
    const Report report = reader_.Swipe();
    EXPECT_TRUE(device_.ReadInputReport());
    EXPECT_EQ(other.reports, std::vector<Report>{report});
    EXPECT_EQ(listener_.reports.size(), 1U);
    EXPECT_TRUE(device_.ClearListener());
}

TEST_F(UsbHidDevRead, IsFreedByCloseOnceItsPacketHasComeBack) {
    BeginRead();
    // Packets of others are before it.
    const Report command{0x00, 0x15, 0x00};
    ASSERT_TRUE(device_.SetFeatureReport(command.data(), static_cast<std::uint32_t>(command.size())));
    ASSERT_TRUE(device_.CancelRead());
    EXPECT_FALSE(freed[0] || freed[1]);
    EXPECT_TRUE(device_.Close());
    EXPECT_TRUE(freed[0] && freed[1]);
    EXPECT_FALSE(freedEarly);
    EXPECT_TRUE(listener_.reports.empty());
}

// The system may still write there.
TEST_F(UsbHidDevRead, IsGivenUpByCloseWhenItsPacketNeverComes) {
    BeginRead();
    const FalseAnswer answer{nullptr, WAIT_TIMEOUT};
    falseAnswer = &answer;
    EXPECT_TRUE(device_.Close());
    falseAnswer = nullptr;
    EXPECT_GT(lastTimeout, 0U);
    EXPECT_LE(lastTimeout, 2000U);
    EXPECT_FALSE(device_.IsOpen());
    EXPECT_FALSE(freed[0]);
    EXPECT_FALSE(freed[1]);
    // The object has forgotten it, and begins a new one for the next report.
    ASSERT_TRUE(device_.Open(ReaderPath()));
    ExpectDelivers(2);
}

}  // namespace
}  // namespace quarlin::msr
