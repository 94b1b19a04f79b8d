// SPDX-License-Identifier: Apache-2.0
// The read that waits for a swipe: packets of others on its completion port, and its memory when the reader is closed
// or vanishes under it.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

extern "C" {
#include <hidsdi.h>
}

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

#include "card/card_session_win.h"
#include "card/freed_memory_win.h"
#include "card/port_watch_win.h"
#include "card/read_count_win.h"
#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

// The waits at the port that have returned, each for one packet.
std::atomic<int> packets = 0;

BOOL WINAPI CountedWait(HANDLE port, LPDWORD bytes, PULONG_PTR key, LPOVERLAPPED* overlapped, DWORD milliseconds) {
    const BOOL result = GetQueuedCompletionStatus(port, bytes, key, overlapped, milliseconds);
    ++packets;
    return result;
}

TEST(CardPendingRead, IsNotEndedByPacketsOfOthers) {
    const PortWatch watch;
    const ReadCount reads;
    const ImportHook wait("KERNEL32.dll", "GetQueuedCompletionStatus", &CountedWait);
    EnabledReader enabled;
    reads.AwaitReads(1);
    OVERLAPPED other{};
    for (const DWORD bytes : {888, 0, 64}) {
        const int before = packets;
        ASSERT_TRUE(PostQueuedCompletionStatus(watch.Port(), bytes, 0, &other));
        ASSERT_TRUE(WaitUntil([&] { return packets > before; }));
    }
    const Report report = enabled.Reader().Swipe();
    EXPECT_EQ(enabled.Log().AwaitCount(1).raw, report);
    reads.AwaitReads(2);
    // One read for the swipe, one for the next: the packets of others have started none.
    EXPECT_EQ(reads.Reads(), 2);
    EXPECT_TRUE(IsEnabled());
    Disable();
    EXPECT_EQ(enabled.Log().Count(), 1U);
}

TEST(CardPendingRead, SurvivesFeatureTransfersOnItsHandle) {
    constexpr int kRounds = 50;
    const PortWatch watch;
    const ReadCount reads;
    EnabledReader enabled;
    for (int i = 1; i <= kRounds; ++i) {
        std::array<std::uint8_t, 25> feature{0x00, 0x15};
        ASSERT_TRUE(HidD_SetFeature(watch.File(), feature.data(), feature.size()));
        ASSERT_TRUE(HidD_GetFeature(watch.File(), feature.data(), feature.size()));
        EXPECT_EQ(feature[3], 3);
        const Report report = enabled.Reader().Swipe();
        ASSERT_EQ(enabled.Log().AwaitCount(static_cast<std::size_t>(i)).raw, report);
    }
    reads.AwaitReads(kRounds + 1);
    EXPECT_EQ(reads.Reads(), kRounds + 1);
}

// What a wait at the port answers instead of the system; the packet stays where it is.
enum class WaitFault {
    kNone,
    kNoPacket,
};
std::atomic<WaitFault> waitFault = WaitFault::kNone;

BOOL WINAPI FaultyWait(HANDLE port, LPDWORD bytes, PULONG_PTR key, LPOVERLAPPED* overlapped, DWORD milliseconds) {
    const BOOL result = GetQueuedCompletionStatus(port, bytes, key, overlapped, milliseconds);
    if (milliseconds == INFINITE && waitFault == WaitFault::kNoPacket && *overlapped == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return result;
}

TEST(CardPendingRead, WhoseWaitFailsEndsTheReading) {
    const PortWatch watch;
    const ImportHook wait("KERNEL32.dll", "GetQueuedCompletionStatus", &FaultyWait);
    EnabledReader enabled;
    waitFault = WaitFault::kNoPacket;
    PostQueuedCompletionStatus(watch.Port(), 0, 0, nullptr);
    ASSERT_TRUE(WaitUntil([] { return !IsEnabled(); }));
    waitFault = WaitFault::kNone;
    EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, "fail device enabled.");
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_SUCCESS(QLMSR_Enable());
    const Report report = enabled.Reader().Swipe();
    EXPECT_EQ(enabled.Log().AwaitCount(1).raw, report);
}

TEST(CardPendingRead, IsWokenByAnEmptyPacketWithoutACallback) {
    const PortWatch watch;
    const ReadCount reads;
    const ImportHook wait("KERNEL32.dll", "GetQueuedCompletionStatus", &CountedWait);
    EnabledReader enabled;
    reads.AwaitReads(1);
    const int before = packets;
    PostQueuedCompletionStatus(watch.Port(), 0, 0, nullptr);
    ASSERT_TRUE(WaitUntil([&] { return packets > before; }));
    const Report report = enabled.Reader().Swipe();
    EXPECT_EQ(enabled.Log().AwaitCount(1).raw, report);
    EXPECT_EQ(enabled.Log().Count(), 1U);
}

// Where the system was asked to write.
std::mutex targetsLock;
std::vector<const void*> buffers;
std::vector<const void*> records;

BOOL WINAPI NotedRead(HANDLE file, void* buffer, DWORD size, DWORD* read, OVERLAPPED* overlapped) {
    {
        const std::lock_guard held(targetsLock);
        buffers.push_back(buffer);
        records.push_back(overlapped);
    }
    return ReadFile(file, buffer, size, read, overlapped);
}

class CardReadMemory : public ::testing::Test {
  protected:
    // Every target of a read has been freed by now, and is as it was left then.
    static void ExpectNobodyWroteToFreedMemory(const FreedMemory& freed) {
        const std::lock_guard held(targetsLock);
        ASSERT_FALSE(buffers.empty());
        for (const void* const buffer : buffers) {
            EXPECT_TRUE(freed.Contains(buffer));
        }
        for (const void* const record : records) {
            EXPECT_TRUE(freed.Contains(record));
        }
        EXPECT_EQ(freed.WrittenBlocks(), 0U);
    }

    const ImportHook read_{"KERNEL32.dll", "ReadFile", &NotedRead};
};

TEST_F(CardReadMemory, OutlivesClosingTheReader) {
    OneReader one;
    const FreedMemory freed;
    for (std::size_t round = 1; round <= 6; ++round) {
        Enable();
        one.Reader().Swipe();
        one.Log().AwaitCount(round);
        Disable();
        // Nobody reads it; it would land in the buffer of a read that is still pending somewhere.
        one.Reader().Swipe();
    }
    ExpectNobodyWroteToFreedMemory(freed);
}

TEST_F(CardReadMemory, OutlivesTheReadersVanishing) {
    ReaderSettings settings;
    settings.instance = "6&2f9a1b0c&0&0000";
    OneReader one(settings);
    const FreedMemory freed;
    for (std::size_t round = 1; round <= 6; ++round) {
        Enable();
        one.Reader().Swipe();
        one.Log().AwaitCount(round);
        one.Reader().Unplug();
        // In every other round the handle is closed first.
        if (round % 2 == 0) {
            ASSERT_TRUE(WaitUntil([] { return !IsEnabled(); }));
        }
        Disable();
        one.Reader().Plug();
    }
    ExpectNobodyWroteToFreedMemory(freed);
}

TEST_F(CardReadMemory, OutlivesTheFamily) {
    OneReader one;
    const FreedMemory freed;
    for (int round = 0; round < 4; ++round) {
        ASSERT_SUCCESS(QLMSR_Initialize());
        ASSERT_EQ(ListReaders().size(), 1U);
        AddCallback();
        Enable();
        const std::size_t count = one.Log().Count();
        one.Reader().Swipe();
        one.Log().AwaitCount(count + 1);
        one.Reader().Swipe();
        ASSERT_SUCCESS(QLMSR_Uninitialize());
        one.Reader().Swipe();
    }
    ExpectNobodyWroteToFreedMemory(freed);
}

}  // namespace
}  // namespace quarlin::test
