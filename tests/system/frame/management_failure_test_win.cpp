// SPDX-License-Identifier: Apache-2.0
// QLMISC_GetModelNumber when a step of COM or of Windows management fails: the text, what is released, the retry, and
// the lock that the failing thread keeps.
#include <quarlin/library.h>

#include <gtest/gtest.h>

#include <objbase.h>
#include <wbemidl.h>
#include <windows.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "frame/management_stand_in_win.h"
#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/owners_win.h"
#include "support/resource_count_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

constexpr int kUntouched = -4711;

// COM as the DLL uses it: calls are counted and watched, answers may be replaced.
struct ComWatch {
    int initialized = 0;
    int uninitialized = 0;
    int created = 0;
    DWORD mode = 0;
    HRESULT initializeAnswer = S_OK;
    HRESULT securityAnswer = S_OK;
    bool securityAsked = false;
    // Objects of management that were still held when COM was released.
    int objectsLeft = 0;
};
ComWatch com;
const ManagementStandIn* management;

HRESULT WINAPI WatchInitialize(LPVOID reserved, DWORD mode) {
    EXPECT_EQ(reserved, nullptr);
    ++com.initialized;
    com.mode = mode;
    if (FAILED(com.initializeAnswer)) {
        return com.initializeAnswer;
    }
    return CoInitializeEx(reserved, mode);
}

void WINAPI WatchUninitialize() {
    ++com.uninitialized;
    com.objectsLeft += management->LiveObjects();
    CoUninitialize();
}

HRESULT WINAPI WatchSecurity(PSECURITY_DESCRIPTOR descriptor, LONG services, SOLE_AUTHENTICATION_SERVICE* service,
                             void* reserved1, DWORD authentication, DWORD impersonation, void* list, DWORD capabilities,
                             void* reserved3) {
    com.securityAsked = true;
    EXPECT_EQ(descriptor, nullptr);
    EXPECT_EQ(services, -1);
    EXPECT_EQ(service, nullptr);
    EXPECT_EQ(reserved1, nullptr);
    EXPECT_EQ(authentication, DWORD{RPC_C_AUTHN_LEVEL_DEFAULT});
    EXPECT_EQ(impersonation, DWORD{RPC_C_IMP_LEVEL_IMPERSONATE});
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(capabilities, DWORD{EOAC_NONE});
    EXPECT_EQ(reserved3, nullptr);
    return com.securityAnswer;
}

HRESULT WINAPI WatchCreate(REFCLSID classId, LPUNKNOWN outer, DWORD context, REFIID interfaceId, LPVOID* object) {
    ++com.created;
    EXPECT_TRUE(IsEqualGUID(classId, CLSID_WbemLocator));
    EXPECT_EQ(outer, nullptr);
    EXPECT_EQ(context, DWORD{CLSCTX_INPROC_SERVER});
    EXPECT_TRUE(IsEqualGUID(interfaceId, IID_IWbemLocator));
    return CoCreateInstance(classId, outer, context, interfaceId, object);
}

class ManagementFailure : public ::testing::Test {
  protected:
    ManagementFailure() {
        com = ComWatch{};
        management = &management_;
        management_.SetModel(L"JR-56SIM");
    }

    void ExpectTheModel() {
        std::array<char, 250> buffer{};
        int length = kUntouched;
        EXPECT_SUCCESS(QLMISC_GetModelNumber(buffer.data(), 250, &length));
        EXPECT_STREQ(buffer.data(), "JR-56SIM");
        EXPECT_EQ(length, 8);
    }

    void ExpectFailure(const std::string& text) {
        std::array<char, 250> buffer{'?'};
        int length = kUntouched;
        EXPECT_FAILURE(QLMISC_GetModelNumber(buffer.data(), 250, &length), QLERR_INTERNAL_ERROR, text);
        EXPECT_EQ(buffer[0], '?');
        EXPECT_EQ(length, kUntouched);
    }

    ManagementStandIn management_;

  private:
    ImportHook initialize_{"ole32.dll", "CoInitializeEx", &WatchInitialize};
    ImportHook uninitialize_{"ole32.dll", "CoUninitialize", &WatchUninitialize};
    ImportHook security_{"ole32.dll", "CoInitializeSecurity", &WatchSecurity};
    ImportHook create_{"ole32.dll", "CoCreateInstance", &WatchCreate};
};

struct FailingStep {
    const char* name;
    const wchar_t* fault;
    std::string text;
    // What management sees of one attempt.
    std::string calls;
    std::string released;
};

void PrintTo(const FailingStep& step, std::ostream* stream) {
    *stream << step.name;
}
#define BLANKET " blanket(10,0,3,3,0)"
#define QUERY " query(0x20)"
#define NEXT " next(0xffffffff,1)"
const FailingStep kFailingSteps[] = {
    {"Create", L"create=0x80040154", "Failed to create WMI Locator\nWin32 HRESULT: 80040154", "create", ""},
    {"Connect", L"connect=0x8004100E", "Could not connect to WMI\nWin32 HRESULT: 8004100e", "create connect",
     "locator"},
    {"ConnectAccessDenied", L"connect=0x80070005", "Could not connect to WMI\nWin32 HRESULT: 80070005",
     "create connect", "locator"},
    {"NoService", L"connect=null", "WMI Service not initialized", "create connect", "locator"},
    {"Blanket", L"blanket=0x80004002", "Could not set proxy blanket\nWin32 HRESULT: 80004002", "create connect" BLANKET,
     "service locator"},
    {"Query", L"query=0x80041017", "Failed to query model number\nWin32 HRESULT: 80041017",
     "create connect" BLANKET QUERY, "service locator"},
    {"Next", L"next=0x80041032", "Failed to retrieve model number\nWin32 HRESULT: 80041032",
     "create connect" BLANKET QUERY NEXT, "enumerator service locator"},
    {"NextAtTheEnd", L"next=none", "Failed to retrieve model number\nWin32 HRESULT: 1",
     "create connect" BLANKET QUERY NEXT, "enumerator service locator"},
    {"NextWithoutObject", L"next=null", "Failed to retrieve model number\nWin32 HRESULT: 0",
     "create connect" BLANKET QUERY NEXT, "enumerator service locator"},
    {"Get", L"get=0x80041002", "Failed to retrieve WMI value\nWin32 HRESULT: 80041002",
     "create connect" BLANKET QUERY NEXT " get", "object enumerator service locator"},
};

TEST_F(ManagementFailure, NoneMeansOneBalancedUseOfCom) {
    ExpectTheModel();
    EXPECT_EQ(management_.Calls(), "create connect" BLANKET QUERY NEXT " get");
    EXPECT_EQ(management_.Released(), "object enumerator service locator");
    EXPECT_EQ(com.objectsLeft, 0);
    EXPECT_EQ(com.mode, DWORD{COINIT_MULTITHREADED});
    EXPECT_TRUE(com.securityAsked);
    EXPECT_EQ(com.initialized, 1);
    EXPECT_EQ(com.uninitialized, 1);
    EXPECT_EQ(com.created, 1);
    // The remembered answer needs none of it.
    ExpectTheModel();
    EXPECT_EQ(com.initialized, 1);
    EXPECT_EQ(com.created, 1);
}

class ManagementStep : public ManagementFailure, public ::testing::WithParamInterface<FailingStep> {};

TEST_P(ManagementStep, IsToldReleasedAndTriedAgain) {
    management_.SetFaults(GetParam().fault);
    for (int attempt = 1; attempt <= 2; ++attempt) {
        management_.ClearLogs();
        ExpectFailure(GetParam().text);
        EXPECT_EQ(management_.Calls(), GetParam().calls);
        EXPECT_EQ(management_.Released(), GetParam().released);
        EXPECT_EQ(com.initialized, attempt);
        EXPECT_EQ(com.uninitialized, attempt);
    }
    management_.ClearFaults();
    ExpectTheModel();
    EXPECT_EQ(com.initialized, 3);
    EXPECT_EQ(com.uninitialized, 3);
    EXPECT_EQ(com.objectsLeft, 0);
}

TEST_P(ManagementStep, LeavesNothingBehind) {
    management_.SetFaults(GetParam().fault);
    const auto rounds = [](int count) {
        for (int i = 0; i < count; ++i) {
            QLMISC_GetModelNumber(nullptr, 0, nullptr);
        }
        FetchLastError();
        return CountResources();
    };
    // COM stays initialised meanwhile, so that the system does not build it up and tear it down each time.
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
    const ResourceCount before = rounds(100);
    EXPECT_EQ(rounds(200), before);
    CoUninitialize();
}

INSTANTIATE_TEST_SUITE_P(Steps, ManagementStep, ::testing::ValuesIn(kFailingSteps),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(ManagementFailure, OfComItselfIsNotReleased) {
    com.initializeAnswer = E_OUTOFMEMORY;
    ExpectFailure("Failed to initialize COM\nWin32 HRESULT: 8007000e");
    EXPECT_EQ(com.uninitialized, 0);
    EXPECT_FALSE(com.securityAsked);
    com.initializeAnswer = S_OK;
    ExpectTheModel();
    EXPECT_EQ(com.uninitialized, 1);
}

TEST_F(ManagementFailure, OfComSecurityIsTold) {
    com.securityAnswer = E_ACCESSDENIED;
    ExpectFailure("Failed to initialize COM security\nWin32 HRESULT: 80070005");
    EXPECT_EQ(com.created, 0);
    com.securityAnswer = S_OK;
    ExpectTheModel();
    // No COM state is held between calls.
    EXPECT_EQ(com.initialized, 2);
    EXPECT_EQ(com.uninitialized, 2);
}

TEST_F(ManagementFailure, SecurityThatTheApplicationHasSetIsNone) {
    com.securityAnswer = RPC_E_TOO_LATE;
    ExpectTheModel();
    EXPECT_EQ(com.uninitialized, 1);
}

// An application's thread that holds COM in the other mode, as every thread with a window does. Asking works, and takes
// COM from it. (The system's answer is given by the hook: a real single-threaded apartment would have Wine start a
// desktop, which outlives the test and keeps its output open.)
TEST_F(ManagementFailure, OtherModeOfTheCallersComIsNone) {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    com.initializeAnswer = RPC_E_CHANGED_MODE;
    ExpectTheModel();
    EXPECT_EQ(com.initialized, 1);
    EXPECT_EQ(com.uninitialized, 1);
    // The caller's own initialisation is gone: this is a first one again.
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    CoUninitialize();
}

// A thread that asks for the model. It may never come back, so what it uses outlives the test.
struct Asker {
    Asker() : thread(CreateThread(nullptr, 0, &Ask, this, 0, nullptr)) {}

    bool EndsWithin(DWORD milliseconds) const {
        return WaitForSingleObject(thread.Get(), milliseconds) == WAIT_OBJECT_0;
    }

    UniqueHandle aboutToAsk{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::array<char, 250> model{};
    int length = kUntouched;
    QLerr result = QLERR_INVALID_STATE;
    UniqueHandle thread;

  private:
    static DWORD WINAPI Ask(void* context) {
        auto& self = *static_cast<Asker*>(context);
        SetEvent(self.aboutToAsk.Get());
        self.result = QLMISC_GetModelNumber(self.model.data(), 250, &self.length);
        return 0;
    }
};

TEST_F(ManagementFailure, KeepsTheLockForItsThread) {
    management_.SetFaults(L"query=0x80041017");
    ExpectFailure("Failed to query model number\nWin32 HRESULT: 80041017");

    auto& other = *new Asker;
    ASSERT_EQ(WaitForSingleObject(other.aboutToAsk.Get(), 10000), WAIT_OBJECT_0);
    EXPECT_FALSE(other.EndsWithin(500));

    // Its own retry works, and does not undo what the failure left: the other thread still waits.
    management_.ClearFaults();
    ExpectTheModel();
    EXPECT_FALSE(other.EndsWithin(500));
    EXPECT_EQ(other.length, kUntouched);
    ExpectTheModel();
    // The process ends with the other thread in its call.
}

TEST_F(ManagementFailure, OfAnEarlyStepKeepsTheLockToo) {
    com.initializeAnswer = E_OUTOFMEMORY;
    ExpectFailure("Failed to initialize COM\nWin32 HRESULT: 8007000e");
    com.initializeAnswer = S_OK;
    auto& other = *new Asker;
    ASSERT_EQ(WaitForSingleObject(other.aboutToAsk.Get(), 10000), WAIT_OBJECT_0);
    EXPECT_FALSE(other.EndsWithin(500));
}

// The copy comes after the lock has been left.
TEST_F(ManagementFailure, OfTheCopyKeepsNoLock) {
    std::array<char, 9> buffer{};
    EXPECT_FAILURE(QLMISC_GetModelNumber(buffer.data(), 8, nullptr), QLERR_INTERNAL_ERROR,
                   Win32Message("Failed to copy string", 0x8007007A));
    Asker other;
    ASSERT_TRUE(other.EndsWithin(10000));
    EXPECT_EQ(other.result, QLERR_OK);
    EXPECT_STREQ(other.model.data(), "JR-56SIM");
}

TEST_F(ManagementFailure, NoneLetsManyThreadsAskAtOnceAndAsksManagementOnce) {
    constexpr int kThreads = 8;
    std::vector<std::thread> threads;
    std::atomic<int> right = 0;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&right] {
            std::array<char, 250> buffer{};
            int length = 0;
            const bool ok = QLMISC_GetModelNumber(buffer.data(), 250, &length) == QLERR_OK && length == 8 &&
                            std::string(buffer.data()) == "JR-56SIM";
            right += ok ? 1 : 0;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, kThreads);
    EXPECT_EQ(com.created, 1);
}

}  // namespace
}  // namespace quarlin::test
