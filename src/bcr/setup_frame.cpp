// SPDX-License-Identifier: Apache-2.0
#include "bcr/setup_frame.h"

#include "bcr/symbology_table.h"

namespace quarlin::bcr {

std::optional<SetupFrame> SymbologyFrame(std::int32_t symbology, bool enable) {
    const SymbologyRow* const row = FindSymbology(symbology);
    if (row == nullptr) {
        return std::nullopt;
    }
    if (symbology == BARCODE_SYMBOLOGY_ISBT && enable) {
        // The engine tells ISBT from its relatives only while they are off: Code 128 and EAN 128 go with it.
        return SetupFrame{0x43, 0x41, 0x01, 0x43, 0x40, 0x00, 0x43, 0x42, 0x00};
    }
    return SetupFrame{row->intermecId[0], row->intermecId[1], SwitchByte(enable)};
}

}  // namespace quarlin::bcr
