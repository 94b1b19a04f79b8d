// SPDX-License-Identifier: Apache-2.0
// The first opening of a process, when two threads try it at once and when memory is short.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "rfid_search/stand_in_platform_win.h"
#include "support/failing_allocation_win.h"
#include "support/last_error.h"
#include "support/owners_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

using Calls = std::vector<std::string>;
using Sections = std::set<CRITICAL_SECTION*>;

std::mutex sectionsLock;
Sections made;
Sections entered;
Sections deleted;
HANDLE bothMakeOne;

// Whoever is here has found no lock. None goes on before both are here.
BOOL WINAPI MakeTogether(CRITICAL_SECTION* section, DWORD spin, DWORD flags) {
    {
        const std::lock_guard held(sectionsLock);
        made.insert(section);
        if (made.size() == 2) {
            SetEvent(bothMakeOne);
        }
    }
    EXPECT_EQ(WaitForSingleObject(bothMakeOne, kDeadline), DWORD{WAIT_OBJECT_0});
    return InitializeCriticalSectionEx(section, spin, flags);
}

void Note(Sections& sections, CRITICAL_SECTION* section) {
    const std::lock_guard held(sectionsLock);
    if (made.contains(section)) {
        sections.insert(section);
    }
}

void WINAPI NotedEnter(CRITICAL_SECTION* section) {
    Note(entered, section);
    EnterCriticalSection(section);
}

void WINAPI NotedDelete(CRITICAL_SECTION* section) {
    Note(deleted, section);
    DeleteCriticalSection(section);
}

TEST(RfidFirstOpening, OfTwoThreadsAtOnceLeavesOneLockAndOneReaderOpen) {
    StandInPlatform platform;
    platform.interfaces = {{.path = "reader"}};
    const UniqueHandle both(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    bothMakeOne = both.Get();
    std::array<QLerr, 2> results{};
    std::array<void*, 2> handles{};
    {
        const ImportHook make("KERNEL32.dll", "InitializeCriticalSectionEx", &MakeTogether);
        const ImportHook enter("KERNEL32.dll", "EnterCriticalSection", &NotedEnter);
        const ImportHook remove("KERNEL32.dll", "DeleteCriticalSection", &NotedDelete);
        std::thread other([&] { results[1] = QLUHFRFID_OpenReader(&handles[1]); });
        results[0] = QLUHFRFID_OpenReader(&handles[0]);
        other.join();
    }
    ASSERT_EQ(made.size(), 2U);
    ASSERT_EQ(entered.size(), 1U);
    ASSERT_EQ(deleted.size(), 1U);
    EXPECT_NE(entered, deleted);
    const std::size_t opener = results[0] == QLERR_OK ? 0 : 1;
    EXPECT_EQ(results[opener], QLERR_OK);
    EXPECT_EQ(results[1 - opener], QLERR_UHFRFID_INVALID_HANDLE);
    EXPECT_EQ(handles[1 - opener], nullptr) << "the reader was open already";
    EXPECT_EQ(platform.OpenHandles(), std::set<HANDLE>{handles[opener]});
    EXPECT_EQ(QLUHFRFID_CloseReader(handles[opener]), QLERR_OK);
}

// Another device comes first; only the reader's path is as long as this.
constexpr std::size_t kLongPath = 3000;
const std::vector<StandInInterface> kOtherAndReader{{.path = "other", .product = 1},
                                                    {.path = std::string(kLongPath, 'r')}};

TEST(RfidOpeningMemory, ThatIsShortForAPathGivesBackWhatWasPassedOver) {
    StandInPlatform platform;
    platform.interfaces = kOtherAndReader;
    void* handle = nullptr;
    {
        const FailingAllocation failing(1, kLongPath);
        EXPECT_FAILURE(QLUHFRFID_OpenReader(&handle), QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM");
        EXPECT_TRUE(failing.HasFailed());
    }
    EXPECT_EQ(handle, INVALID_HANDLE_VALUE);
    EXPECT_EQ(platform.Calls(), (Calls{"list", "open other r", "close 1", "destroy list"}));
    EXPECT_TRUE(platform.OpenHandles().empty());
    EXPECT_EQ(platform.ListsAndReportsInUse(), 0);
    EXPECT_EQ(QLUHFRFID_OpenReader(&handle), QLERR_OK);
    EXPECT_EQ(QLUHFRFID_CloseReader(handle), QLERR_OK);
}

TEST(RfidOpeningMemory, ThatIsShortForTheLockFailsTheOpeningAlone) {
    StandInPlatform platform;
    platform.interfaces = kOtherAndReader;
    void* handle = nullptr;
    {
        const FailingAllocation failing(1);
        EXPECT_FAILURE(QLUHFRFID_OpenReader(&handle), QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM");
        EXPECT_TRUE(failing.HasFailed());
    }
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(platform.Calls(), Calls{});
    EXPECT_EQ(QLUHFRFID_OpenReader(&handle), QLERR_OK);
    EXPECT_EQ(QLUHFRFID_CloseReader(handle), QLERR_OK);
}

// Each allocation fails once.
TEST(RfidOpeningMemory, ThatIsShortAnywhereOpensOrLeavesNothingOpen) {
    StandInPlatform platform;
    platform.interfaces = kOtherAndReader;
    // The lock is there from here on.
    ASSERT_EQ(QLUHFRFID_OpenReader(nullptr), QLERR_INVALID_ARGUMENT);
    int failures = 0;
    bool hasFailed = true;
    for (int number = 1; hasFailed; ++number) {
        void* handle = nullptr;
        QLerr result = QLERR_OK;
        {
            const FailingAllocation failing(number);
            result = QLUHFRFID_OpenReader(&handle);
            hasFailed = failing.HasFailed();
        }
        EXPECT_EQ(platform.ListsAndReportsInUse(), 0) << number;
        if (result == QLERR_OK) {
            // At most the record of the success is missing.
            EXPECT_EQ(platform.OpenHandles(), std::set<HANDLE>{handle}) << number;
            EXPECT_EQ(QLUHFRFID_CloseReader(handle), QLERR_OK);
        } else {
            ++failures;
            EXPECT_EQ(result, QLERR_UHFRFID_SYSTEM) << number;
            EXPECT_EQ(handle, INVALID_HANDLE_VALUE) << number;
            EXPECT_TRUE(platform.OpenHandles().empty()) << number;
        }
    }
    EXPECT_EQ(failures, 2) << "the two paths";
}

}  // namespace
}  // namespace quarlin::test
