// SPDX-License-Identifier: Apache-2.0
#include "bcr/device_list.h"

#include "bcr/intermec_engine.h"
#include "core/quarlin_exception.h"

#include <utility>

namespace quarlin::bcr {

std::span<const std::unique_ptr<ScannerDevice>> DeviceList::Make() {
    if (!devices_.empty()) {
        return devices_;
    }
    const std::optional<ScannerChoice> choice = Choose();
    if (!choice) {
        return {};
    }
    auto device = std::make_unique<ScannerDevice>(*choice);
    HoneywellEngine honeywell(parts_.libraries, parts_.share, parts_.emulator, parts_.onHoneywellEvent, {});
    if (FindScanner(device->kind, device->address, parts_.attached, honeywell, parts_.share.system)) {
        devices_.push_back(std::move(device));
    }
    return devices_;
}

std::optional<ScannerChoice> DeviceList::Choose() {
    if (allowExternal_) {
        return ExternalScanner();
    }
    if (!model_) {
        model_ = parts_.machine.Model();
    }
    if (!hardware_) {
        hardware_ = parts_.machine.Hardware();
    }
    return ChooseScanner(*model_, *hardware_);
}

void DeviceList::Abandon() {
    for (std::unique_ptr<ScannerDevice>& device : devices_) {
        static_cast<void>(device.release());
    }
}

std::unique_ptr<BarcodeEngine> DeviceList::MakeEngine(const ScannerDevice& device) const {
    switch (device.kind) {
        case BarcodeEngineKind::kIntermecBuiltIn:
        case BarcodeEngineKind::kIntermecUsb0801:
        case BarcodeEngineKind::kIntermecUsb0809:
        case BarcodeEngineKind::kIntermecSerial:
            return std::make_unique<IntermecEngine>(parts_.libraries, parts_.share, device.kind, device.address);
        case BarcodeEngineKind::kHoneywell:
            return std::make_unique<HoneywellEngine>(parts_.libraries, parts_.share, parts_.emulator,
                                                     parts_.onHoneywellEvent, device.address);
        default:
            Fail(QLERR_OP_UNSUPPORTED, "The barcode device is nothing.");
    }
}

}  // namespace quarlin::bcr
