// SPDX-License-Identifier: Apache-2.0
// The machine's own Intermec scanner, in the states that tests begin with.
#pragma once

#include "barcode_support/barcode_session_win.h"

namespace quarlin::test {

class IntermecTest : public BarcodeTest {
  protected:
    IntermecTest() : BarcodeTest(ScannerSetup::IntermecBuiltIn()) {}

    IntermecEngine& Engine() { return machine_.Intermec(); }
};

// In state 2, with the log's callback 0.
class EnabledIntermec : public IntermecTest {
  protected:
    void SetUp() override { Enable(); }
};

// What the engine is sent from state 0 on, and what takes it back.
inline const Texts kConnectCalls = {
    "ConfigurationDialog", "Connect",         "MessageIdentify 1", "ControlCommand 50 40 00",
    "SetupWrite 73 40 01", "SetupRead 73 4E", "GetBarcodeDataEx"};
inline const Texts kDisconnectCalls = {"SetupWrite 73 40 00", "ControlCommand 30 02", "Disconnect"};
inline const Texts kInitializeCalls = {"Initialize HKCU\\SOFTWARE\\Norvane\\Barcode\\Intermec"};

}  // namespace quarlin::test
