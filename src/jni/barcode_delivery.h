// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/barcode.h>

namespace quarlin::jni {

// Calls the registered class's static method with a scan, on the calling thread, which must not be attached to the VM:
// an attached one gets nothing. Failures are told on standard output.
void DeliverBarcodeEvent(const QLBCR_BARCODE_DATA* scan);

}  // namespace quarlin::jni
