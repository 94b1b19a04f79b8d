// SPDX-License-Identifier: Apache-2.0
// A Honeywell scanner, in the states that tests begin with.
#pragma once

#include <string>

#include "barcode_support/barcode_session_win.h"

namespace quarlin::test {

inline constexpr const char* kNoHoneywellLibrary = "Unable to load HEDC_RS.dll.";
inline constexpr const char* kNoHoneywellStart = "Unable to initialize Honeywell barcode.";
inline constexpr const char* kNoConnection = "Unable to connect barcode.";
inline constexpr const char* kNoDisconnection = "Unable to disconnect barcode.";
inline constexpr const wchar_t* kHoneywellLibrary = L"HEDC_RS.dll";

// What the engine's library is called for, and what the scanner is called there.
inline const std::string kHoneywellInitialize = R"(Initialize HKCU\SOFTWARE\Norvane\Barcode\Honeywell)";
inline const Texts kProbeCalls = {"Deinitialize",     kHoneywellInitialize,  "LimitToHoneywellDevices 1 0",
                                  "GetNumberDevices", "GetDeviceFromList 0", "RegisterCallback 1",
                                  "Deinitialize"};
inline const Texts kStartCalls = {"Deinitialize", kHoneywellInitialize, "RegisterCallback 1"};
inline const Texts kConnectCalls = {"SetPathName N6603 on USB 1", "Connect"};

class HoneywellTest : public BarcodeTest {
  protected:
    explicit HoneywellTest(SharedTurn::Use emulator = SharedTurn::Use::kShared)
        : BarcodeTest(ScannerSetup::MiniDb(emulator)) {}

    HoneywellEngine& Engine() { return machine_.Honeywell(); }
    void Scan(std::string_view text, std::string_view symbologyId = {},
              std::uint32_t eventType = HoneywellState::kScanType, std::uint32_t flags = 0) {
        machine_.ScanHoneywell(text, symbologyId, eventType, flags);
    }
};

// In state 2, with the log's callback 0.
class EnabledHoneywell : public HoneywellTest {
  protected:
    using HoneywellTest::HoneywellTest;
    void SetUp() override { Enable(); }
};

// The bytes that a call was given.
inline std::string RequestOf(const EngineCall& call) {
    return {reinterpret_cast<const char*>(call.request), call.requestBytes};
}

}  // namespace quarlin::test
