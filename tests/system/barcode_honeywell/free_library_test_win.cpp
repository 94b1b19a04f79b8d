// SPDX-License-Identifier: Apache-2.0
// Freeing the library, or ending the process, while a Honeywell scanner is in use: its engine calls us on a thread of
// its own.
#include <quarlin/barcode.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <thread>

#include "barcode_support/listener_window_win.h"
#include "barcode_support/scan_log_win.h"
#include "barcode_support/scanner_machine_win.h"
#include "support/child_process_win.h"
#include "support/loaded_library_win.h"
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

class FreedWithHoneywell : public ::testing::Test {
  protected:
    void TearDown() override {
        EXPECT_TRUE(WaitUntil([] { return !IsLoaded(); }));
        EXPECT_FALSE(IsLoaded(L"HEDC_RS.dll"));
        EXPECT_EQ(FindListenerWindow(), nullptr);
    }

    ScanLog log_;
    ScannerMachine machine_{ScannerSetup::MiniDb()};
};

TEST_F(FreedWithHoneywell, GoesWhenItIsNotInitialised) {
    LoadedLibrary library;
    int count = 0;
    EXPECT_SUCCESS_IN(library, QLBCR_GetBarcodeDevices(nullptr, &count));
    EXPECT_EQ(count, 1);
    library.Unload();
    EXPECT_FALSE(IsLoaded());
}

TEST_F(FreedWithHoneywell, GoesAfterTheEnd) {
    const std::size_t threads = CountThreads();
    for (std::size_t round = 1; round <= 3; ++round) {
        LoadedLibrary library;
        ASSERT_TRUE(Enable(library));
        machine_.ScanHoneywell("text");
        log_.AwaitCount(round);
        ASSERT_TRUE(DisableAndUninitialize(library));
        library.Unload();
        EXPECT_TRUE(WaitUntil([] { return !IsLoaded(); }));
        EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads; }));
    }
}

TEST_F(FreedWithHoneywell, StaysWhileItIsInitialised) {
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

TEST_F(FreedWithHoneywell, GoesOnDeliveringUntilItIsDisabled) {
    LoadedLibrary library;
    ASSERT_TRUE(Enable(library));
    library.Unload();
    EXPECT_TRUE(IsLoaded());
    machine_.ScanHoneywell("one");
    EXPECT_EQ(log_.AwaitCount(1).text, "one");
    LoadedLibrary again;
    machine_.ScanHoneywell("two");
    EXPECT_EQ(log_.AwaitCount(2).text, "two");
    EXPECT_TRUE(DisableAndUninitialize(again));
}

// The callback is the last one to use it.
TEST_F(FreedWithHoneywell, StaysUntilItsCallbackHasReturned) {
    LoadedLibrary library;
    ASSERT_TRUE(Enable(library));
    HeldCallback callback(log_);
    machine_.ScanHoneywell("text");
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
    ScannerMachine machine(ScannerSetup::MiniDb());
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
    machine.ScanHoneywell("text");
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
    // The engine's thread is still at them when the process ends.
    for (int i = 0; i < 50; ++i) {
        machine.ScanHoneywell("more");
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
    const ScannerMachine machine(ScannerSetup::MiniDb());
    const LoadedLibrary library;
    std::puts(Initialize(library) ? "ends" : "does not begin");
    std::fflush(stdout);
    ExitProcess(7);
}

class HoneywellProcessEnd : public ::testing::TestWithParam<const char*> {};

TEST_P(HoneywellProcessEnd, IsInOrder) {
    const ChildResult child = RunChild(GetParam());
    EXPECT_EQ(child.exitCode, 7U);
    EXPECT_EQ(child.out, "ends\n");
    EXPECT_EQ(child.err, "");
}

std::string NameOfMode(const ::testing::TestParamInfo<const char*>& mode) {
    return mode.param;
}

INSTANTIATE_TEST_SUITE_P(Modes, HoneywellProcessEnd,
                         ::testing::Values("return_while_scanning", "exit_while_scanning", "exit_after_freeing",
                                           "exit_inside_callback", "exit_during_callback", "exit_when_initialized"),
                         NameOfMode);

}  // namespace
}  // namespace quarlin::test
