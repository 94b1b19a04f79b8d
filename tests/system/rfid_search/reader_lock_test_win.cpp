// SPDX-License-Identifier: Apache-2.0
// The one lock of the family: when it comes into being, and who waits for it.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "rfid_search/stand_in_platform_win.h"
#include "support/last_error.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

using Calls = std::vector<std::string>;

const StandInInterface kReader{.path = "reader"};

// Every function but opening, with arguments that would fail each check: which text it has for a lock that is not there
// tells its wording, too.
struct Call {
    const char* name;
    QLerr (*call)(void* handle);
    bool usesNames;
};

void PrintTo(const Call& call, std::ostream* out) {
    *out << call.name;
}

const Call kCalls[] = {
    {"CloseReader", [](void* h) { return QLUHFRFID_CloseReader(h); }, true},
    {"GetFirstTag", [](void* h) { return QLUHFRFID_GetFirstTag(h, nullptr, nullptr, nullptr); }, false},
    {"GetNextTag", [](void* h) { return QLUHFRFID_GetNextTag(h, nullptr, nullptr, nullptr); }, false},
    {"SelectTag", [](void* h) { return QLUHFRFID_SelectTag(h, nullptr, 0); }, true},
    {"ReadTag", [](void* h) { return QLUHFRFID_ReadTag(h, 256, 256, nullptr, 0, nullptr, -1); }, true},
    {"WriteTag", [](void* h) { return QLUHFRFID_WriteTag(h, 256, 256, nullptr, 0, nullptr, -1); }, true},
    {"LockTag", [](void* h) { return QLUHFRFID_LockTag(h, 256, 256, nullptr, 0); }, true},
    {"KillTag", [](void* h) { return QLUHFRFID_KillTag(h, nullptr, 0); }, true},
    {"SetPower", [](void* h) { return QLUHFRFID_SetPower(h, 256); }, true},
    {"GetPower", [](void* h) { return QLUHFRFID_GetPower(h, nullptr); }, true},
    {"SetLinkFreqForQuery", [](void* h) { return QLUHFRFID_SetLinkFreqForQuery(h, nullptr); }, false},
    {"SetMillerForQuery", [](void* h) { return QLUHFRFID_SetMillerForQuery(h, nullptr); }, false},
    {"SetSessionForQuery", [](void* h) { return QLUHFRFID_SetSessionForQuery(h, nullptr); }, false},
    {"SetQBeginForQuery", [](void* h) { return QLUHFRFID_SetQBeginForQuery(h, nullptr); }, false},
    {"SetSensitivityForQuery", [](void* h) { return QLUHFRFID_SetSensitivityForQuery(h, nullptr); }, false},
    {"GetLinkFreqForQuery", [](void* h) { return QLUHFRFID_GetLinkFreqForQuery(h, nullptr); }, false},
    {"GetMillerForQuery", [](void* h) { return QLUHFRFID_GetMillerForQuery(h, nullptr); }, false},
    {"GetSessionForQuery", [](void* h) { return QLUHFRFID_GetSessionForQuery(h, nullptr); }, false},
    {"GetQBeginForQuery", [](void* h) { return QLUHFRFID_GetQBeginForQuery(h, nullptr); }, false},
    {"GetSensitivityForQuery", [](void* h) { return QLUHFRFID_GetSensitivityForQuery(h, nullptr); }, false},
};

class RfidChecks : public testing::TestWithParam<Call> {};

TEST_P(RfidChecks, ComeInTheOrderLockOpenReaderHandleArguments) {
    StandInPlatform platform;
    platform.interfaces = {kReader};
    const Call& call = GetParam();
    void* const someHandle = &platform;
    const char* const noLock = call.usesNames ? "QLERR_UHFRFID_SYSTEM" : "QLERR_UHFRFID_SYSTEM ";
    EXPECT_FAILURE(call.call(nullptr), QLERR_UHFRFID_SYSTEM, noLock);
    EXPECT_FAILURE(call.call(someHandle), QLERR_UHFRFID_SYSTEM, noLock);
    // The lock is there from here on.
    QLUHFRFID_OpenReader(nullptr);
    const char* const noReader = "QLERR_UHFRFID_INVALID_HANDLE";
    EXPECT_FAILURE(call.call(someHandle), QLERR_UHFRFID_INVALID_HANDLE, noReader);
    void* handle = nullptr;
    ASSERT_EQ(QLUHFRFID_OpenReader(&handle), QLERR_OK);
    EXPECT_FAILURE(call.call(nullptr), QLERR_UHFRFID_INVALID_HANDLE, noReader);
    EXPECT_FAILURE(call.call(INVALID_HANDLE_VALUE), QLERR_UHFRFID_INVALID_HANDLE, noReader);
    platform.ForgetCalls();
    if (call.call != kCalls[0].call) {
        EXPECT_FAILURE(call.call(handle), QLERR_INVALID_ARGUMENT,
                       call.usesNames ? "QLERR_INVALID_ARGUMENT" : "Invalid Argument");
        EXPECT_EQ(platform.Calls(), Calls{});
    }
    EXPECT_EQ(QLUHFRFID_CloseReader(handle), QLERR_OK);
    EXPECT_FAILURE(call.call(handle), QLERR_UHFRFID_INVALID_HANDLE, noReader);
}

INSTANTIATE_TEST_SUITE_P(Functions, RfidChecks, testing::ValuesIn(kCalls),
                         [](const auto& test) { return test.param.name; });

std::atomic<int> attempts{0};
DWORD givenSpin = 77;
DWORD givenFlags = 77;

BOOL WINAPI RefuseSection(CRITICAL_SECTION*, DWORD spin, DWORD flags) {
    ++attempts;
    givenSpin = spin;
    givenFlags = flags;
    return FALSE;
}

TEST(RfidLock, ThatCannotBeMadeIsTriedAgainByTheNextOpening) {
    StandInPlatform platform;
    platform.interfaces = {kReader};
    void* handle = &platform;
    {
        const ImportHook hook("KERNEL32.dll", "InitializeCriticalSectionEx", &RefuseSection);
        for (int i = 1; i <= 2; ++i) {
            EXPECT_FAILURE(QLUHFRFID_OpenReader(&handle), QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM");
            EXPECT_FAILURE(QLUHFRFID_OpenReader(nullptr), QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM");
            EXPECT_EQ(attempts, 2 * i);
        }
        EXPECT_EQ(givenSpin, 0U);
        EXPECT_EQ(givenFlags, 0U);
        EXPECT_EQ(handle, &platform);
        EXPECT_FAILURE(QLUHFRFID_CloseReader(handle), QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM");
        EXPECT_EQ(platform.Calls(), Calls{});
    }
    EXPECT_EQ(QLUHFRFID_OpenReader(&handle), QLERR_OK);
    const ImportHook hook("KERNEL32.dll", "InitializeCriticalSectionEx", &RefuseSection);
    EXPECT_EQ(QLUHFRFID_CloseReader(handle), QLERR_OK);
    EXPECT_EQ(QLUHFRFID_OpenReader(&handle), QLERR_OK);
    EXPECT_EQ(attempts, 4) << "it is made once";
}

std::atomic<int> arrivals{0};

void WINAPI CountArrival(CRITICAL_SECTION* section) {
    ++arrivals;
    EnterCriticalSection(section);
}

// One thread waits for a reply that is held back; another one calls.
class RfidBlockedCaller : public testing::Test {
  protected:
    RfidBlockedCaller() : enter_("KERNEL32.dll", "EnterCriticalSection", &CountArrival) {
        platform_.interfaces = {kReader};
        EXPECT_EQ(QLUHFRFID_OpenReader(&handle_), QLERR_OK);
        platform_.ForgetCalls();
        platform_.onRead = [this] {
            if (reads_++ == 0) {
                WaitForSingleObject(answer_.Get(), kDeadline);
            }
        };
    }

    // Runs both calls, lets the reader answer once the second has reached the lock, and gives their results.
    std::pair<QLerr, QLerr> Run(const std::function<QLerr()>& second) {
        QLerr firstResult{};
        QLerr secondResult{};
        std::thread first([&] { firstResult = QLUHFRFID_SetPower(handle_, 1); });
        EXPECT_TRUE(WaitUntil([&] { return reads_ > 0; }));
        const int before = arrivals;
        std::thread other([&] { secondResult = second(); });
        EXPECT_TRUE(WaitUntil([&] { return arrivals > before; }));
        atRelease_ = platform_.Calls();
        SetEvent(answer_.Get());
        first.join();
        other.join();
        return {firstResult, secondResult};
    }

    StandInPlatform platform_;
    ImportHook enter_;
    UniqueHandle answer_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::atomic<int> reads_{0};
    void* handle_ = nullptr;
    Calls atRelease_;
};

const Calls kWaiting{"send 64: C0 03 01", "read 1024"};

TEST_F(RfidBlockedCaller, KeepsAnotherCommandBackUntilItsReplyHasCome) {
    platform_.replies = {{0xC1, 3, 0}, {0xC3, 4, 0, 99}};
    unsigned int power = 0;
    EXPECT_EQ(Run([&] { return QLUHFRFID_GetPower(handle_, &power); }), std::pair(QLERR_OK, QLERR_OK));
    EXPECT_EQ(power, 99U);
    EXPECT_EQ(atRelease_, kWaiting);
    EXPECT_EQ(platform_.Calls(),
              (Calls{"send 64: C0 03 01", "read 1024", "reply", "send 64: C2 02", "read 1024", "reply"}));
}

TEST_F(RfidBlockedCaller, KeepsAClosingBackUntilItsReplyHasCome) {
    platform_.replies = {{0xC1, 3, 0}};
    EXPECT_EQ(Run([&] { return QLUHFRFID_CloseReader(handle_); }), std::pair(QLERR_OK, QLERR_OK));
    EXPECT_EQ(atRelease_, kWaiting);
    EXPECT_EQ(platform_.Calls().at(2), "reply");
    EXPECT_TRUE(platform_.Calls().at(3).starts_with("close"));
}

TEST_F(RfidBlockedCaller, KeepsAnOpeningBackWhichThenFindsAReaderOpen) {
    platform_.replies = {{0xC1, 3, 0}};
    void* second = nullptr;
    EXPECT_EQ(Run([&] { return QLUHFRFID_OpenReader(&second); }), std::pair(QLERR_OK, QLERR_UHFRFID_INVALID_HANDLE));
    EXPECT_EQ(atRelease_, kWaiting);
    EXPECT_EQ(second, nullptr);
}

TEST_F(RfidBlockedCaller, IsLetGoByAnUnpluggedReaderAndSoIsTheClosing) {
    EXPECT_EQ(Run([&] { return QLUHFRFID_CloseReader(handle_); }), std::pair(QLERR_UHFRFID_COMMAND_RECEIVE, QLERR_OK));
    EXPECT_EQ(atRelease_, kWaiting);
    EXPECT_TRUE(platform_.OpenHandles().empty());
}

}  // namespace
}  // namespace quarlin::test
