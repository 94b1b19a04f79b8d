// SPDX-License-Identifier: Apache-2.0
#include "bcr/intermec_engine.h"

#include <utility>

namespace quarlin::bcr {
namespace {

constexpr char kRegistryPath[] = R"(HKCU\SOFTWARE\Norvane\Barcode\Intermec)";

// Control codes of the engine's library.
constexpr std::uint32_t kSetHidPath = 260;
constexpr std::uint32_t kSetPort = 525;

constexpr int kConnectTries = 9;
constexpr std::uint32_t kBetweenTries = 500;

// In the answer to a query the parameter's identifier is followed by its value.
constexpr std::size_t kValueAt = 2;
// In the answer to a status query the identifier is followed by two more bytes.
constexpr std::size_t kStatusTextAt = 4;

// An engine's memory is small: whatever still answers after this many scans is not one.
constexpr int kMostPendingScans = 1000;

constexpr std::uint8_t kDataModeWanted = 1;
constexpr std::uint8_t kDataModeOff = 0;
constexpr std::uint8_t kDataModeOther = 2;

constexpr const char* kSetupFailed = "Error setting up barcode connection.";

bool IsUsb(BarcodeEngineKind kind) {
    return kind == BarcodeEngineKind::kIntermecUsb0801 || kind == BarcodeEngineKind::kIntermecUsb0809;
}

}  // namespace

IntermecEngine::IntermecEngine(LibrarySource& source, EngineShare& share, BarcodeEngineKind kind, EngineAddress address)
    : share_(share), library_(source), kind_(kind), address_(std::move(address)), dataModeBefore_(kDataModeWanted) {
}

void IntermecEngine::Load() {
    library_.Load(IsUsb(kind_) ? L"ISDC_HID.dll" : L"ISDC_RS.dll", "Unable to load ISDC.dll.");
}

void IntermecEngine::Start() {
    const EngineHold hold(share_.system);
    std::uint32_t value = 0;
    share_.lastStatus = library_->initialize(kRegistryPath, &value);
    Require(share_.lastStatus == kEngineOk, QLERR_INTERNAL_ERROR, "Unable to initialize Intermec barcode.");
    started_ = true;
}

void IntermecEngine::ShutDown() {
    const EngineHold hold(share_.system);
    if (std::exchange(started_, false)) {
        share_.lastStatus = library_->deinitialize();
    }
    library_.Free();
}

void IntermecEngine::Address() {
    const EngineHold hold(share_.system);
    if (IsUsb(kind_)) {
        share_.lastStatus = library_->deviceIoControl(kSetHidPath, address_.name.c_str(),
                                                      static_cast<std::uint32_t>(address_.name.size() + 1), nullptr, 0);
    } else if (address_.port) {
        const std::int32_t port = *address_.port;
        std::int32_t answer = 0;
        share_.lastStatus = library_->deviceIoControl(kSetPort, &port, sizeof port, &answer, sizeof answer);
    } else {
        share_.lastStatus = library_->configurationDialog();
    }
}

void IntermecEngine::Connect(void* listener) {
    Address();
    for (int attempt = 1;; ++attempt) {
        {
            const EngineHold hold(share_.system);
            share_.lastStatus = library_->connect();
            if (share_.lastStatus == kEngineOk) {
                break;
            }
        }
        Require(attempt < kConnectTries, QLERR_INTERNAL_ERROR, "Unable to connect barcode.");
        share_.system.Pause(kBetweenTries);
    }
    try {
        OpenLink(listener);
    } catch (...) {
        const EngineHold hold(share_.system);
        share_.lastStatus = library_->disconnect();
        throw;
    }
}

void IntermecEngine::OpenLink(void* listener) {
    const EngineHold hold(share_.system);
    share_.lastStatus = library_->messageIdentify(listener, 1);
    Require(share_.lastStatus == kEngineOk, QLERR_INTERNAL_ERROR, "Unable to register barcode event messages.");
    Require(
        Send(&IntermecFunctions::controlCommand, kPrepareLink) && Send(&IntermecFunctions::setupWrite, LinkFrame(true)),
        QLERR_INTERNAL_ERROR, kSetupFailed);
    const std::optional<std::uint8_t> dataMode = ReadSetting(kDataModeQuery);
    Require(dataMode.has_value(), QLERR_INTERNAL_ERROR, kSetupFailed);
    dataModeBefore_ = kDataModeWanted;
    if (*dataMode != kDataModeWanted) {
        Require(Send(&IntermecFunctions::setupWrite, DataModeFrame(kDataModeWanted)), QLERR_INTERNAL_ERROR,
                kSetupFailed);
        dataModeBefore_ = *dataMode == kDataModeOff ? kDataModeOff : kDataModeOther;
    }
}

void IntermecEngine::DropPendingScans() {
    const EngineHold hold(share_.system);
    for (int dropped = 0; dropped < kMostPendingScans; ++dropped) {
        const auto scan = ReadScan();
        if (!scan || scan->empty()) {
            return;
        }
    }
}

void IntermecEngine::Disconnect() {
    const EngineHold hold(share_.system);
    if (dataModeBefore_ != kDataModeWanted) {
        Require(Send(&IntermecFunctions::setupWrite, DataModeFrame(dataModeBefore_)), QLERR_INTERNAL_ERROR,
                kSetupFailed);
    }
    Require(Send(&IntermecFunctions::setupWrite, LinkFrame(false)), QLERR_INTERNAL_ERROR, kSetupFailed);
    Require(Send(&IntermecFunctions::controlCommand, kResetLink), QLERR_INTERNAL_ERROR,
            "Error resetting barcode connection.");
    share_.lastStatus = library_->disconnect();
    Require(share_.lastStatus == kEngineOk, QLERR_INTERNAL_ERROR, "Unable to disconnect barcode.");
}

ReceivedScan IntermecEngine::TakeScan(const TextSettings& settings, std::uintptr_t /*length*/, const void* /*data*/) {
    const EngineHold hold(share_.system);
    const auto record = ReadScan();
    Require(record.has_value(), QLERR_INTERNAL_ERROR, "Unable retrieve barcode extended data.");
    const ExtendedData scan = SplitExtendedData(*record);
    return {IntermecText(scan, settings), std::string(scan.fields.back())};
}

bool IntermecEngine::SetDecoding(bool on) {
    return Send(&IntermecFunctions::controlCommand, DecodingFrame(on));
}

bool IntermecEngine::EnableSymbology(std::int32_t symbology, bool enable) {
    const std::optional<SetupFrame> frame = SymbologyFrame(symbology, enable);
    return frame && Send(&IntermecFunctions::setupWrite, *frame);
}

bool IntermecEngine::SetTriggerMode(std::uint32_t mode) {
    return Send(&IntermecFunctions::setupWrite, TriggerModeFrame(mode));
}

bool IntermecEngine::SetHardwareTrigger(bool on) {
    return Send(&IntermecFunctions::setupWrite, HardwareTriggerFrame(on));
}

std::optional<bool> IntermecEngine::HardwareTrigger() {
    const std::optional<std::uint8_t> value = ReadSetting(kHardwareTriggerQuery);
    return value ? std::optional(*value != 0) : std::nullopt;
}

std::optional<std::string> IntermecEngine::FirmwareVersion() {
    const EngineHold hold(share_.system);
    if (!Send(&IntermecFunctions::statusRead, kFirmwareQuery)) {
        return std::nullopt;
    }
    const std::span<const std::uint8_t> answer = share_.Answer();
    if (answer.size() <= kStatusTextAt) {
        return std::string();
    }
    return std::string(answer.begin() + kStatusTextAt, answer.end());
}

std::optional<std::span<const std::uint8_t>> IntermecEngine::ReadScan() {
    share_.answerLength = 0;
    share_.lastStatus = library_->getBarcodeDataEx(share_.answer.data(), EngineShare::kRoom, &share_.answerLength);
    if (share_.lastStatus != kEngineOk) {
        return std::nullopt;
    }
    return share_.Answer();
}

bool IntermecEngine::Send(IntermecFunctions::Frame IntermecFunctions::*procedure, const SetupFrame& frame) {
    const EngineHold hold(share_.system);
    share_.SetRequest(frame.Bytes());
    share_.answerLength = 0;
    share_.lastStatus = (library_.Functions().*procedure)(
        share_.request.data(), share_.requestLength, share_.answer.data(), EngineShare::kRoom, &share_.answerLength);
    return share_.lastStatus == kEngineOk;
}

std::optional<std::uint8_t> IntermecEngine::ReadSetting(const SetupFrame& query) {
    const EngineHold hold(share_.system);
    if (!Send(&IntermecFunctions::setupRead, query)) {
        return std::nullopt;
    }
    const std::span<const std::uint8_t> answer = share_.Answer();
    return answer.size() > kValueAt ? std::optional(answer[kValueAt]) : std::nullopt;
}

}  // namespace quarlin::bcr
