// SPDX-License-Identifier: Apache-2.0
#include "bcr/scanner_choice.h"

#include <array>

namespace quarlin::bcr {

namespace {

struct NameOfModel {
    std::wstring_view beginning;
    ComputerModel model;
};

constexpr std::array kModels{
    NameOfModel{L"HXT7", ComputerModel::kHxt7}, NameOfModel{L"HX-T7", ComputerModel::kHxt7},
    NameOfModel{L"HXT8", ComputerModel::kHxt8}, NameOfModel{L"HX-T8", ComputerModel::kHxt8},
    NameOfModel{L"JR41", ComputerModel::kJr41}, NameOfModel{L"JR-41", ComputerModel::kJr41},
    NameOfModel{L"JR42", ComputerModel::kJr42}, NameOfModel{L"JR-42", ComputerModel::kJr42},
};

constexpr std::int32_t kExternal = 0;
constexpr std::int32_t kOwn = 1;

ScannerChoice Choice(const char* name, std::int32_t deviceType, BarcodeEngineKind kind) {
    QLBCR_DEVICE_INFO info{};
    info.iDeviceType = deviceType;
    info.deviceName = name;
    return {info, kind};
}

// Which of the two engine families it is, the search finds out; it begins with the USB one.
std::optional<ScannerChoice> EngineOfModel(ComputerModel model) {
    switch (model) {
        case ComputerModel::kJr41:
        case ComputerModel::kJr42:
            return Choice("Honeywell N6603", kOwn, BarcodeEngineKind::kIntermecUsb0801);
        case ComputerModel::kHxt8:
            return Choice("Intermec EA30", kOwn, BarcodeEngineKind::kIntermecUsb0801);
        case ComputerModel::kHxt7:
        case ComputerModel::kOther:
            break;
    }
    return std::nullopt;
}

}  // namespace

ComputerModel ModelOf(std::wstring_view productName) {
    for (const NameOfModel& row : kModels) {
        if (productName.starts_with(row.beginning)) {
            return row.model;
        }
    }
    return ComputerModel::kOther;
}

std::optional<ScannerChoice> ChooseScanner(ComputerModel model, ScannerHardware hardware) {
    switch (hardware) {
        case ScannerHardware::kIntermecBuiltIn: {
            ScannerChoice choice = Choice("Intermec EA15/EA21", kOwn, BarcodeEngineKind::kIntermecBuiltIn);
            choice.info.linkKind = 2;
            choice.info.linkFlag = 1;
            return choice;
        }
        case ScannerHardware::kEngine:
            return EngineOfModel(model);
        case ScannerHardware::kMiniDb:
            return Choice("Honeywell MiniDB", kOwn, BarcodeEngineKind::kHoneywell);
        case ScannerHardware::kNone:
            break;
    }
    return std::nullopt;
}

ScannerChoice ExternalScanner() {
    return Choice("Barcode Reader", kExternal, BarcodeEngineKind::kNone);
}

}  // namespace quarlin::bcr
