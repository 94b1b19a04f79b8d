// SPDX-License-Identifier: Apache-2.0
// The barcode family of the library under test, through its exported functions. For programs that are linked with it.
#pragma once

#include <quarlin/barcode.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "barcode_support/listener_window_win.h"
#include "barcode_support/scan_log_win.h"
#include "barcode_support/scanner_machine_win.h"
#include "support/last_error.h"
#include "support/wait_win.h"

namespace quarlin::test {

inline constexpr const char* kNotInitialized = "The device is not initialized";
inline constexpr const char* kNotEnabled = "The device is not enabled";
inline constexpr const char* kInsideCallback = "The call is not allowed inside the callback.";
inline constexpr const char* kMisplaced =
    "Unable to load internal functions. Possibly due to misplaced or incorrect dlls.";

// 0 not initialised (or without its library), 1 initialised, 2 enabled. Leaves no record.
inline int BarcodeState() {
    unsigned int enabled = 0;
    if (QLBCR_IsEnabled(&enabled) != QLERR_OK) {
        FetchLastError();
        return 0;
    }
    return enabled != 0 ? 2 : 1;
}

// A machine with a scanner, and nothing of the family left at the end of the test.
class BarcodeTest : public ::testing::Test {
  protected:
    explicit BarcodeTest(const ScannerSetup& setup) : machine_(setup) {}
    ~BarcodeTest() override { Finish(); }

    // Initialises and enables, with the log's callback 0; the calls of it are taken.
    void Enable() {
        ASSERT_SUCCESS(QLBCR_Initialize());
        ASSERT_SUCCESS(QLBCR_Enable());
        ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback()));
        TakeAll();
    }
    void TakeAll() {
        machine_.Intermec().TakeCalls();
        machine_.Honeywell().TakeCalls();
    }
    // Whatever state the test has left. The engines obey again, so that they let go.
    void Finish() {
        log_.DoInside({});
        machine_.Intermec().LetGo();
        machine_.Honeywell().LetGo();
        machine_.Intermec().Obey();
        machine_.Honeywell().Obey();
        const int state = BarcodeState();
        EXPECT_TRUE(state != 2 || QLBCR_Disable() == QLERR_OK) << FetchLastError();
        EXPECT_TRUE(state == 0 || QLBCR_Uninitialize() == QLERR_OK) << FetchLastError();
        QLBCR_SetAllowExternalBarcodeDevice(0);
        machine_.Intermec().SetDefaults();
        machine_.Honeywell().SetDefaults();
    }

    ScanLog log_;
    ScannerMachine machine_;
};

}  // namespace quarlin::test
