// SPDX-License-Identifier: Apache-2.0
// Calls of the engines' libraries as texts to read and to compare.
#pragma once

#include <string>
#include <string_view>

#include "scanner/honeywell_state.h"
#include "scanner/intermec_state.h"

namespace quarlin::test {

// "43 41 01".
std::string HexText(std::string_view bytes);

// The function's name, then what it was given in words or bytes: "SetupWrite 43 41 01", "Connect",
// "Initialize HKCU\...", "DeviceIOControl 525 09 00 00 00", "MessageIdentify 1" (the window is left out).
std::string TextOf(sim::IntermecFunction function, const sim::EngineCall& call);

// The same, without "HEDC_": "SendMenuCommand 128ENA1 1500", "StartReadingSession 0 1", "SetPathName N6603 on USB 1".
std::string TextOf(sim::HoneywellFunction function, const sim::EngineCall& call);

}  // namespace quarlin::test
