// SPDX-License-Identifier: Apache-2.0
// Freeing the library, or ending the process, while the scanner is in use.
#include <quarlin/barcode.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <optional>
#include <set>
#include <string>
#include <thread>

#include "barcode_support/listener_window_win.h"
#include "barcode_support/scan_log_win.h"
#include "barcode_support/scanner_machine_win.h"
#include "frame/leak_rounds_win.h"
#include "support/child_process_win.h"
#include "support/import_hook_win.h"
#include "support/loaded_library_win.h"
#include "support/machine_state_win.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

bool IsLoaded(const wchar_t* library = L"qlsdk.dll") {
    return GetModuleHandleW(library) != nullptr;
}

bool Initialize(const LoadedLibrary& library) {
    return library.QLBCR_Initialize() == QLERR_OK;
}

bool Enable(const LoadedLibrary& library) {
    return Initialize(library) && library.QLBCR_Enable() == QLERR_OK &&
           library.QLBCR_SetCallback(ScanLog::Callback()) == QLERR_OK;
}

bool DisableAndUninitialize(const LoadedLibrary& library) {
    return library.QLBCR_Disable() == QLERR_OK && library.QLBCR_Uninitialize() == QLERR_OK;
}

class FreedWithScanner : public ::testing::Test {
  protected:
    void TearDown() override {
        EXPECT_TRUE(WaitUntil([] { return !IsLoaded(); }));
        EXPECT_FALSE(IsLoaded(L"ISDC_RS.dll"));
    }

    ScanLog log_;
    ScannerMachine machine_;
};

TEST_F(FreedWithScanner, GoesWhenItIsNotInitialised) {
    LoadedLibrary library;
    int count = 0;
    EXPECT_SUCCESS_IN(library, QLBCR_GetBarcodeDevices(nullptr, &count));
    EXPECT_EQ(count, 1);
    library.Unload();
    EXPECT_FALSE(IsLoaded());
}

// Neither a list nor a beginning that failed stays when the library goes.
TEST_F(FreedWithScanner, TakesItsListWithIt) {
    KeepImportsLoaded();
    const auto rounds = [](int count) {
        for (int i = 0; i < count; ++i) {
            LoadedLibrary library;
            int devices = 0;
            EXPECT_SUCCESS_IN(library, QLBCR_GetBarcodeDevices(nullptr, &devices));
            ASSERT_EQ(devices, 1);
            {
                const EnvironmentGuard withoutEngine(L"PATH", L"C:\\windows\\system32");
                EXPECT_FAILURE_IN(library, QLBCR_Initialize(), QLERR_INTERNAL_ERROR, "Unable to load ISDC.dll.");
            }
            // Its record is not fetched: it goes with the library.
            EXPECT_EQ(library.QLBCR_Enable(), QLERR_INVALID_STATE);
            library.Unload();
            ASSERT_TRUE(WaitUntil([] { return !IsLoaded(); }));
        }
    };
    rounds(40);
    CountResources();
    const ResourceCount before = CountResources();
    rounds(100);
    const ResourceCount after = CountResources();
    constexpr std::size_t kOnce = 8;
    EXPECT_LE(after.handles, before.handles + kOnce);
    EXPECT_LE(after.heapBlocks, before.heapBlocks + kOnce);
    EXPECT_EQ(after.freeTlsSlots, before.freeTlsSlots);
}

TEST_F(FreedWithScanner, GoesAfterTheEnd) {
    const std::size_t threads = CountThreads();
    LoadedLibrary library;
    ASSERT_TRUE(Enable(library));
    machine_.ScanIntermec("text");
    log_.AwaitCount(1);
    ASSERT_TRUE(DisableAndUninitialize(library));
    library.Unload();
    EXPECT_TRUE(WaitUntil([] { return !IsLoaded(); }));
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads; }));
}

TEST_F(FreedWithScanner, StaysWhileItIsInitialised) {
    LoadedLibrary library;
    ASSERT_TRUE(Initialize(library));
    library.Unload();
    EXPECT_TRUE(IsLoaded());
    EXPECT_NE(FindListenerWindow(), nullptr);
    LoadedLibrary again;
    unsigned int enabled = 77;
    EXPECT_SUCCESS_IN(again, QLBCR_IsEnabled(&enabled));
    EXPECT_EQ(enabled, 0U);
    EXPECT_SUCCESS_IN(again, QLBCR_Uninitialize());
}

TEST_F(FreedWithScanner, GoesOnDeliveringUntilItIsDisabled) {
    LoadedLibrary library;
    ASSERT_TRUE(Enable(library));
    library.Unload();
    EXPECT_TRUE(IsLoaded());
    machine_.ScanIntermec("one");
    EXPECT_EQ(log_.AwaitCount(1).text, "one");
    LoadedLibrary again;
    machine_.ScanIntermec("two");
    EXPECT_EQ(log_.AwaitCount(2).text, "two");
    EXPECT_TRUE(DisableAndUninitialize(again));
}

// The callback is the last one to use it.
TEST_F(FreedWithScanner, StaysUntilItsCallbackHasReturned) {
    LoadedLibrary library;
    ASSERT_TRUE(Enable(library));
    HeldCallback callback(log_);
    machine_.ScanIntermec("text");
    callback.AwaitHeld();
    ASSERT_EQ(library.QLBCR_Disable(), QLERR_OK);
    std::thread ending([&] {
        EXPECT_EQ(library.QLBCR_Uninitialize(), QLERR_OK);
        library.Unload();
    });
    EXPECT_TRUE(IsLoaded());
    callback.LetGo();
    ending.join();
}

// A window of the freed library must not be taken over by a procedure that is gone.
TEST_F(FreedWithScanner, LeavesNoWindowClass) {
    for (int round = 0; round < 3; ++round) {
        LoadedLibrary library;
        ASSERT_TRUE(Enable(library));
        machine_.ScanIntermec("text");
        log_.AwaitCount(static_cast<std::size_t>(round) + 1);
        ASSERT_TRUE(DisableAndUninitialize(library));
        library.Unload();
        ASSERT_TRUE(WaitUntil([] { return !IsLoaded(); }));
        WNDCLASSEXW known{};
        known.cbSize = sizeof(known);
        EXPECT_FALSE(GetClassInfoExW(GetModuleHandleW(nullptr), kListenerClass, &known));
    }
}

TEST_F(FreedWithScanner, LeavesNothingOverManyRounds) {
    KeepImportsLoaded();
    const auto rounds = [this](int count) {
        for (int i = 0; i < count; ++i) {
            LoadedLibrary library;
            ASSERT_TRUE(Enable(library));
            machine_.ScanIntermec("text");
            log_.AwaitCount(1);
            ASSERT_TRUE(DisableAndUninitialize(library));
            library.Unload();
            ASSERT_TRUE(WaitUntil([] { return !IsLoaded(); }));
            log_.Clear();
        }
    };
    rounds(40);
    CountResources();
    const ResourceCount before = CountResources();
    rounds(60);
    const ResourceCount after = CountResources();
    // A lock of the test's own takes something when a thread has to wait for it for the first time.
    constexpr std::size_t kOnce = 8;
    EXPECT_LE(after.handles, before.handles + kOnce);
    EXPECT_LE(after.heapBlocks, before.heapBlocks + kOnce);
    EXPECT_EQ(after.freeTlsSlots, before.freeTlsSlots);
}

std::set<std::wstring> registeredMessages;

UINT WINAPI NoteMessage(const wchar_t* name) {
    registeredMessages.insert(name);
    return RegisterWindowMessageW(name);
}

TEST(BarcodeMessages, AreRegisteredWhenTheLibraryLoads) {
    registeredMessages.clear();
    LoadTimeHooks hooks;
    hooks.Add("USER32.dll", "RegisterWindowMessageW", &NoteMessage);
    const LoadedLibrary library;
    EXPECT_EQ(hooks.Loads(), 1);
    EXPECT_TRUE(hooks.Missing().empty());
    EXPECT_EQ(registeredMessages,
              (std::set<std::wstring>{L"WM_ISCP_FRAME", L"WM_RAW_DATA", L"WM_LOWLEVEL", L"WM_MULTIFRAME_IN_PROGRESS",
                                      L"WM_NORV_BCR_EMU_CONNECT", L"WM_NORV_BCR_EMU_GET_CONNECT_STATE",
                                      L"WM_NORV_BCR_EMU_STATE_REGIST", L"WM_NORV_BCR_EMU_ON_CONNECT_STATE"}));
}

// How the process of a child mode ends.
enum class End {
    kReturn,
    kExit,
    kExitAfterFreeing,
    kExitInsideCallback,
    kExitDuringCallback,
};

int EndWhileScanning(End end) {
    ScanLog log;
    ScannerMachine machine;
    std::optional<LoadedLibrary> library(std::in_place);
    if (!Enable(*library)) {
        return 1;
    }
    std::optional<HeldCallback> held;
    if (end == End::kExitDuringCallback) {
        held.emplace(log);
    } else if (end == End::kExitInsideCallback) {
        log.DoInside([](const QLBCR_BARCODE_DATA&) {
            std::puts("ends");
            std::fflush(stdout);
            ExitProcess(7);
        });
    }
    machine.ScanIntermec("text");
    log.AwaitCount(1);
    if (held) {
        held->AwaitHeld();
    }
    if (end == End::kExitInsideCallback) {
        WaitForSingleObject(GetCurrentThread(), kDeadline);
        return 2;
    }
    if (end == End::kExitAfterFreeing) {
        library.reset();
    }
    for (int i = 0; i < 20; ++i) {
        machine.ScanIntermec("more");
    }
    std::puts("ends");
    std::fflush(stdout);
    if (end == End::kReturn) {
        return 7;
    }
    // Without a return, so that nothing is released before the process ends.
    ExitProcess(7);
}

QUARLIN_CHILD_MODE(return_while_scanning) {
    return EndWhileScanning(End::kReturn);
}
QUARLIN_CHILD_MODE(exit_while_scanning) {
    return EndWhileScanning(End::kExit);
}
QUARLIN_CHILD_MODE(exit_after_freeing) {
    return EndWhileScanning(End::kExitAfterFreeing);
}
QUARLIN_CHILD_MODE(exit_inside_callback) {
    return EndWhileScanning(End::kExitInsideCallback);
}
QUARLIN_CHILD_MODE(exit_during_callback) {
    return EndWhileScanning(End::kExitDuringCallback);
}
QUARLIN_CHILD_MODE(exit_when_initialized) {
    const ScannerMachine machine;
    const LoadedLibrary library;
    std::puts(Initialize(library) ? "ends" : "does not begin");
    std::fflush(stdout);
    ExitProcess(7);
}

TEST(ProcessEnd, IsInOrderWithAScannerInUse) {
    for (const char* const mode : {"return_while_scanning", "exit_while_scanning", "exit_after_freeing",
                                   "exit_inside_callback", "exit_during_callback", "exit_when_initialized"}) {
        const ChildResult child = RunChild(mode);
        EXPECT_EQ(child.exitCode, 7U) << mode;
        EXPECT_EQ(child.out, "ends\n") << mode;
        EXPECT_EQ(child.err, "") << mode;
    }
}

}  // namespace
}  // namespace quarlin::test
