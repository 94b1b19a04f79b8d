// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/honeywell_engine.h"
#include "bcr/scanner_choice.h"

namespace quarlin::bcr {

// Looks for the scanner that drives a device, for up to 15 rounds, and writes down its kind and its address. False when
// no round finds one. Raises when the library of a kind that has to be asked is not there. What was started for the
// search is ended again.
bool FindScanner(BarcodeEngineKind& kind, EngineAddress& address, AttachedDevices& attached, HoneywellEngine& honeywell,
                 EngineSystem& system);

}  // namespace quarlin::bcr
