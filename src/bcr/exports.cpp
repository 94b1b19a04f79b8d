// SPDX-License-Identifier: Apache-2.0
#include "bcr/barcode_family_win.h"
#include "bcr/settings_change.h"
#include "bcr/symbology_table.h"
#include "core/export_frame.h"
#include "core/text_out.h"

#include <quarlin/barcode.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

using namespace quarlin;
using namespace quarlin::bcr;

namespace {

template <typename Body>
QLerr ExportBarcode(Body&& body) noexcept {
    return ExportLocked(barcodeFamily.Lock(), std::forward<Body>(body));
}

constexpr const char* kNotInsideCallback = "The call is not allowed inside the callback.";

// The thread is in a message loop of an engine's dialogue, and one of its windows calls in.
void RequireOutsideEnable() {
    Require(!barcodeFamily.IsInEnable(), QLERR_INVALID_STATE, kNotInsideCallback);
}

void RequireOutsideCallback() {
    Require(!barcodeFamily.IsInCallback(), QLERR_INVALID_STATE, kNotInsideCallback);
    RequireOutsideEnable();
}

// The turn, for functions that make or free the device list, or start or end an engine.
class Turn {
  public:
    Turn() : isTaken_(Take()) {}
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn() {
        if (isTaken_) {
            barcodeFamily.Turn().Leave();
        }
    }

    // In a callback that somebody waits for who has the turn, there is none, and soon no device either.
    void RequireTaken() const {
        RequireOutsideEnable();
        Require(isTaken_, QLERR_INVALID_STATE, "The device is not initialized");
    }

  private:
    static bool Take() {
        if (barcodeFamily.IsInEnable()) {
            return false;
        }
        if (barcodeFamily.IsInCallback()) {
            return barcodeFamily.Turn().EnterUnless(barcodeFamily.IsEnding());
        }
        barcodeFamily.Turn().Enter();
        return true;
    }

    bool isTaken_;
};

// For the two functions that work without the family's lock: they enter it and leave it at once.
template <typename Body>
QLerr ExportUnlocked(Body&& body) noexcept {
    const QLerr entered = ExportBarcode([] {});
    if (entered != QLERR_OK) {
        return entered;
    }
    return Export([&] {
        const Turn turn;
        turn.RequireTaken();
        std::forward<Body>(body)();
    });
}

template <typename Body>
QLerr ExportInTurn(Body&& body) noexcept {
    const Turn turn;
    return ExportBarcode([&] {
        turn.RequireTaken();
        std::forward<Body>(body)();
    });
}

void RequirePointer(const void* pointer, const char* message) {
    Require(pointer != nullptr, QLERR_INVALID_ARGUMENT, message);
}

constexpr const char* kEnabledNull = "pEnable cannot be NULL";
constexpr const char* kCountNull = "pNumDevices cannot be NULL";

std::string TextOrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

void SwitchSymbology(ScannerDevice& device, std::int32_t symbology, bool enable) {
    Require(device.engine->EnableSymbology(symbology, enable), QLERR_INTERNAL_ERROR,
            "Symbology could not enabled/disabled");
}

using FixedTextSetting = FixedText TextSettings::*;

QLerr SetFixedText(FixedTextSetting which, unsigned int asTop, const char* text) {
    return ExportBarcode([&] {
        ScannerDevice& device = barcodeFamily.EnabledDevice();
        ChangeSettings(device, [&](DeliverySettings& settings) {
            settings.text.*which = {TextOrEmpty(text), static_cast<std::uint8_t>(asTop)};
        });
    });
}

QLerr GetFixedText(FixedTextSetting which, unsigned int* asTop, char* text) {
    return ExportBarcode([&] {
        const auto settings = barcodeFamily.EnabledDevice().settings.load();
        const FixedText& fixed = settings->text.*which;
        RequirePointer(asTop, "pAsTop cannot be NULL");
        unsigned int size = QLBCR_TEXT_SIZE;
        CopyTextOut(text, &size, fixed.text);
        *asTop = fixed.asTop;
    });
}

}  // namespace

QLerr QLBCR_GetBarcodeDevices(QLBCR_DEVICE_INFO* devices, int* count) {
    return ExportUnlocked([&] {
        RequirePointer(count, kCountNull);
        barcodeFamily.ListDevices(devices, *count);
    });
}

QLerr QLBCR_SelectDevice(int index) {
    return ExportInTurn([&] { barcodeFamily.Select(index); });
}

QLerr QLBCR_SetAllowExternalBarcodeDevice(unsigned int allow) {
    return ExportBarcode([&] { barcodeFamily.AllowExternal(allow != 0); });
}

QLerr QLBCR_Initialize() {
    return ExportUnlocked([] { barcodeFamily.Initialize(); });
}

QLerr QLBCR_Uninitialize() {
    if (const QLerr allowed = Export([] { RequireOutsideCallback(); }); allowed != QLERR_OK) {
        return allowed;
    }
    return ExportInTurn([] { barcodeFamily.Uninitialize(); });
}

QLerr QLBCR_Enable() {
    return ExportBarcode([] {
        RequireOutsideEnable();
        barcodeFamily.Enable();
    });
}

QLerr QLBCR_Disable() {
    return ExportBarcode([] {
        RequireOutsideCallback();
        barcodeFamily.Disable();
    });
}

QLerr QLBCR_IsEnabled(unsigned int* enabled) {
    return ExportBarcode([&] {
        RequirePointer(enabled, kEnabledNull);
        *enabled = barcodeFamily.InitializedDevice().state == DeviceState::kEnabled ? 1 : 0;
    });
}

QLerr QLBCR_GetDeviceType(unsigned int* type) {
    return ExportBarcode([&] {
        RequirePointer(type, "pType cannot be NULL");
        *type = static_cast<unsigned int>(barcodeFamily.InitializedDevice().info.iDeviceType);
    });
}

QLerr QLBCR_GetDeviceName(char* buffer, unsigned int* size) {
    return ExportBarcode([&] { CopyTextOut(buffer, size, barcodeFamily.InitializedDevice().info.deviceName); });
}

QLerr QLBCR_GetDeviceFirmwareVersion(char* buffer, unsigned int* size) {
    return ExportBarcode([&] {
        const std::optional<std::string> version = barcodeFamily.EnabledDevice().engine->FirmwareVersion();
        Require(version.has_value(), QLERR_INTERNAL_ERROR, "Unable get firmware version.");
        CopyTextOut(buffer, size, *version);
    });
}

QLerr QLBCR_SetCallback(QLBCR_Callback callback) {
    return ExportBarcode([&] {
        RequirePointer(reinterpret_cast<const void*>(callback), "Callback cannot be NULL");
        ChangeSettings(barcodeFamily.EnabledDevice(),
                       [&](DeliverySettings& settings) { settings.callback = callback; });
    });
}

QLerr QLBCR_StartScanning() {
    return ExportBarcode([] { barcodeFamily.StartScanning(); });
}

QLerr QLBCR_StopScanning() {
    return ExportBarcode([] { barcodeFamily.StopScanning(); });
}

QLerr QLBCR_EnableSymbology(unsigned char enable, const wchar_t* name) {
    return ExportBarcode([&] {
        RequirePointer(name, "Symbology cannot be NULL");
        ScannerDevice& device = barcodeFamily.EnabledDevice();
        const std::optional<std::int32_t> symbology = FindSymbologyByName(name);
        Require(symbology.has_value(), QLERR_INVALID_ARGUMENT, "The argument of symbology is invalid");
        SwitchSymbology(device, *symbology, enable != 0);
    });
}

QLerr QLBCR_EnableSymbologies(unsigned char enable, unsigned int symbology) {
    return ExportBarcode(
        [&] { SwitchSymbology(barcodeFamily.EnabledDevice(), static_cast<std::int32_t>(symbology), enable != 0); });
}

QLerr QLBCR_SetTriggerMode(unsigned int mode) {
    return ExportBarcode([&] {
        const ScannerDevice& device = barcodeFamily.InitializedDevice();
        Require(device.state == DeviceState::kEnabled, QLERR_INVALID_STATE, "Not connected.");
        Require(device.engine->SetTriggerMode(mode), QLERR_INTERNAL_ERROR, "Unable set trigger mode.");
    });
}

QLerr QLBCR_SetHardwareTriggerEnabled(unsigned int enable) {
    return ExportBarcode([&] {
        Require(barcodeFamily.EnabledDevice().engine->SetHardwareTrigger(enable != 0), QLERR_INTERNAL_ERROR,
                enable != 0 ? "Unable enable hardware trigger." : "Unable disable hardware trigger.");
    });
}

QLerr QLBCR_IsHardwareTriggerEnabled(unsigned char* enabled) {
    return ExportBarcode([&] {
        RequirePointer(enabled, kEnabledNull);
        const std::optional<bool> on = barcodeFamily.EnabledDevice().engine->HardwareTrigger();
        Require(on.has_value(), QLERR_INTERNAL_ERROR, "Unable get hardware trigger status.");
        *enabled = *on ? 1 : 0;
    });
}

QLerr QLBCR_SetSoundEnabled(unsigned int enable) {
    return ExportBarcode([&] {
        ChangeSettings(barcodeFamily.EnabledDevice(),
                       [&](DeliverySettings& settings) { settings.soundEnabled = enable != 0; });
    });
}

QLerr QLBCR_IsSoundEnabled(unsigned char* enabled) {
    return ExportBarcode([&] {
        const auto settings = barcodeFamily.EnabledDevice().settings.load();
        RequirePointer(enabled, kEnabledNull);
        *enabled = settings->soundEnabled ? 1 : 0;
    });
}

QLerr QLBCR_SetReadSuccessSoundFile(const wchar_t* path) {
    return ExportBarcode([&] {
        ScannerDevice& device = barcodeFamily.EnabledDevice();
        std::optional<std::wstring> file = ExistingSoundFile(path);
        Require(file.has_value(), QLERR_INVALID_ARGUMENT, "Specified File does not exist");
        ChangeSettings(device, [&](DeliverySettings& settings) { settings.soundFile = *std::move(file); });
    });
}

QLerr QLBCR_SetPrefixData(unsigned int asTop, const char* text) {
    return SetFixedText(&TextSettings::prefix, asTop, text);
}

QLerr QLBCR_SetSuffixData(unsigned int asTop, const char* text) {
    return SetFixedText(&TextSettings::suffix, asTop, text);
}

QLerr QLBCR_GetPrefixData(unsigned int* asTop, char* text) {
    return GetFixedText(&TextSettings::prefix, asTop, text);
}

QLerr QLBCR_GetSuffixData(unsigned int* asTop, char* text) {
    return GetFixedText(&TextSettings::suffix, asTop, text);
}

QLerr QLBCR_SetDataEditingMode(unsigned int iEditMode, const char* strTarget, const char* strCont, int iStart,
                               int iEnd) {
    return ExportBarcode([&] {
        ChangeSettings(barcodeFamily.EnabledDevice(), [&](DeliverySettings& settings) {
            settings.text.edit = {iEditMode, TextOrEmpty(strTarget), TextOrEmpty(strCont), iStart, iEnd};
        });
    });
}

QLerr QLBCR_GetDataEditingMode(unsigned int* iEditMode, char* strTarget, char* strCont, int* iStart, int* iEnd) {
    return ExportBarcode([&] {
        const auto settings = barcodeFamily.EnabledDevice().settings.load();
        const EditSetting& edit = settings->text.edit;
        RequirePointer(iEditMode, "pEditMode cannot be NULL");
        unsigned int size = QLBCR_TEXT_SIZE;
        CheckTextOut(strTarget, &size, edit.target);
        CheckTextOut(strCont, &size, edit.content);
        RequirePointer(iStart, "pStart cannot be NULL");
        RequirePointer(iEnd, "pEnd cannot be NULL");
        unsigned int targetSize = QLBCR_TEXT_SIZE;
        CopyTextOut(strTarget, &targetSize, edit.target);
        CopyTextOut(strCont, &size, edit.content);
        *iEditMode = edit.mode;
        *iStart = edit.start;
        *iEnd = edit.end;
    });
}

QLerr QLBCR_dotNet_GetNoOfDevices(int* count) {
    return QLBCR_GetBarcodeDevices(nullptr, count);
}

QLBCR_DEVICE_INFO* QLBCR_dotNet_GetBarcodeDevices(int* result, int* count) {
    // The caller's, who releases it with the runtime's free.
    struct Free {
        void operator()(QLBCR_DEVICE_INFO* list) const { std::free(list); }
    };
    std::unique_ptr<QLBCR_DEVICE_INFO, Free> list;
    int listed = 0;
    const QLerr outcome = Export([&] {
        RequirePointer(result, "pResult cannot be NULL");
        RequirePointer(count, kCountNull);
        listed = *count;
        // One entry at least: a capacity of 0 is answered with the number of devices.
        const std::size_t entries = listed > 0 ? static_cast<std::size_t>(listed) : 1;
        list.reset(static_cast<QLBCR_DEVICE_INFO*>(std::calloc(entries, sizeof(QLBCR_DEVICE_INFO))));
        Require(list != nullptr, QLERR_INTERNAL_ERROR, "memory allocate error.");
    });
    if (outcome != QLERR_OK || QLBCR_GetBarcodeDevices(list.get(), &listed) != QLERR_OK) {
        if (count != nullptr) {
            *count = 0;
        }
        return nullptr;
    }
    *count = listed;
    *result = 0;
    return list.release();
}
