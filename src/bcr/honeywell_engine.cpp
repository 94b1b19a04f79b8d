// SPDX-License-Identifier: Apache-2.0
#include "bcr/honeywell_engine.h"

#include "bcr/setup_frame.h"
#include "bcr/symbology_table.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <utility>

namespace quarlin::bcr {
namespace {

constexpr char kRegistryPath[] = R"(HKCU\SOFTWARE\Norvane\Barcode\Honeywell)";

// The texts of the library's device list have this much room.
constexpr std::uint32_t kListTextRoom = 1024;
// A list that claims to be longer than this is not looked at any further.
constexpr std::uint32_t kMostDevices = 256;

constexpr int kConnectRounds = 9;
constexpr int kEmulatorPolls = 10;
constexpr std::uint32_t kBetweenTries = 500;

constexpr std::uint32_t kMenuCommandTimeout = 1500;

// Behind a scan's terminator.
constexpr std::size_t kSymbologyIdSize = 5;
// No code holds anything near it.
constexpr std::uintptr_t kLongestScan = 0x1000000;
// How far behind the length of its event a scan's terminator is looked for.
constexpr std::uintptr_t kFurthestTerminator = 0x10000;

}  // namespace

HoneywellEngine::HoneywellEngine(LibrarySource& source, EngineShare& share, EmulatorProgram& emulator,
                                 HoneywellEventCallback onEvent, EngineAddress address)
    : share_(share), emulator_(emulator), onEvent_(onEvent), library_(source), address_(std::move(address)) {
}

void HoneywellEngine::Load() {
    library_.Load(L"HEDC_RS.dll", "Unable to load HEDC_RS.dll.");
}

bool HoneywellEngine::StartLibrary() {
    // What an earlier user of the library has left behind is ended first; it may be nothing.
    share_.lastStatus = library_->deinitialize();
    std::uint32_t value = 0;
    share_.lastStatus = library_->initialize(kRegistryPath, &value, 0);
    return share_.lastStatus == kEngineOk;
}

void HoneywellEngine::RegisterForEvents() {
    share_.lastStatus = library_->registerCallback(1, onEvent_);
}

std::optional<EngineAddress> HoneywellEngine::FindDevice() {
    const EngineHold hold(share_.system);
    if (!library_.IsLoaded()) {
        Load();
    }
    if (!StartLibrary()) {
        return std::nullopt;
    }
    share_.lastStatus = library_->limitToHoneywellDevices(1, 0);
    std::uint32_t count = 0;
    share_.lastStatus = library_->getNumberDevices(&count);
    if (share_.lastStatus != kEngineOk) {
        return std::nullopt;
    }
    for (std::uint32_t number = 0; number < std::min(count, kMostDevices); ++number) {
        if (std::optional<EngineAddress> device = AskForDevice(number)) {
            RegisterForEvents();
            return device;
        }
    }
    return std::nullopt;
}

std::optional<EngineAddress> HoneywellEngine::AskForDevice(std::uint32_t number) {
    std::array<char, kListTextRoom> name{};
    std::array<char, kListTextRoom> text{};
    std::uint32_t value = 0;
    std::uint32_t textValue = 0;
    share_.lastStatus =
        library_->getDeviceFromList(number, name.data(), kListTextRoom, &value, text.data(), kListTextRoom, &textValue);
    if (share_.lastStatus != kEngineOk) {
        return std::nullopt;
    }
    // A library that fills its buffer leaves no terminator.
    const auto end = std::find(name.begin(), name.end() - 1, '\0');
    return EngineAddress{std::string(name.begin(), end), number, std::nullopt};
}

void HoneywellEngine::Start() {
    const EngineHold hold(share_.system);
    Require(StartLibrary(), QLERR_INTERNAL_ERROR, "Unable to initialize Honeywell barcode.");
    RegisterForEvents();
}

void HoneywellEngine::ListenerRuns(void* listener) {
    if (void* const window = emulator_.Window()) {
        emulator_.Register(window, listener);
    }
}

void HoneywellEngine::ShutDown() {
    const EngineHold hold(share_.system);
    if (library_.IsLoaded()) {
        share_.lastStatus = library_->deinitialize();
        library_.Free();
    }
}

void HoneywellEngine::Connect(void* /*listener*/) {
    {
        const EngineHold hold(share_.system);
        share_.lastStatus =
            library_->setPathName(address_.name.c_str(), static_cast<std::uint32_t>(address_.name.size()));
    }
    for (int round = 0; round < kConnectRounds; ++round) {
        if (emulator_.IsRunning()) {
            TakeScannerFromEmulator();
        }
        {
            const EngineHold hold(share_.system);
            share_.lastStatus = library_->connect();
            if (share_.lastStatus == kEngineOk) {
                return;
            }
        }
        share_.system.Pause(kBetweenTries);
    }
    Fail(QLERR_INTERNAL_ERROR, "Unable to connect barcode.");
}

void HoneywellEngine::TakeScannerFromEmulator() {
    void* const window = emulator_.Window();
    if (window != nullptr && emulator_.AskForScanner(window) == 0) {
        for (int poll = 0; poll < kEmulatorPolls; ++poll) {
            const std::optional<std::intptr_t> state = emulator_.ConnectState(window);
            if (state == kHandedOver) {
                return;
            }
            if (!state) {
                break;
            }
            share_.system.Pause(kBetweenTries);
        }
    }
    Fail(QLERR_INTERNAL_ERROR, "Unable to connect barcode.");
}

void HoneywellEngine::Disconnect() {
    const EngineHold hold(share_.system);
    share_.lastStatus = library_->disconnect(address_.number);
    Require(share_.lastStatus == kEngineOk, QLERR_INTERNAL_ERROR, "Unable to disconnect barcode.");
}

ReceivedScan HoneywellEngine::TakeScan(const TextSettings& settings, std::uintptr_t length, const void* data) {
    // Any program can post the event's message, with any length and address.
    Require(data != nullptr && length <= kLongestScan, QLERR_INTERNAL_ERROR, "Invalid barcode data");
    const char* const text = static_cast<const char*>(data);
    // Nearly every scan has both text and identifier: one question for both.
    const bool reachesIdentifier = share_.system.IsScanReadable(text, length, kSymbologyIdSize);
    Require(reachesIdentifier || share_.system.IsReadable(text, length + 1), QLERR_INTERNAL_ERROR,
            "Invalid barcode data");
    ReceivedScan scan{HoneywellText({text, TextLength(text, length)}, settings), {}};
    const char* const symbologyId = text + length + 1;
    if (reachesIdentifier && *symbologyId == ']') {
        scan.symbologyId.assign(symbologyId, kSymbologyIdSize);
    }
    return scan;
}

// The text ends at its terminator, and the length is for finding the identifier; without one it ends there after all.
std::uintptr_t HoneywellEngine::TextLength(const char* text, std::uintptr_t length) const {
    const std::uintptr_t told = strnlen(text, length + 1);
    if (told <= length) {
        return told;
    }
    for (std::uintptr_t i = told; i < told + kFurthestTerminator && share_.system.IsReadable(text + i, 1); ++i) {
        if (text[i] == '\0') {
            return i;
        }
    }
    return length;
}

bool HoneywellEngine::SetDecoding(bool on) {
    const EngineHold hold(share_.system);
    const HoneywellFunctions::Session session = on ? library_->startReadingSession : library_->stopReadingSession;
    share_.lastStatus = session(address_.number, SwitchByte(on));
    return share_.lastStatus == kEngineOk;
}

bool HoneywellEngine::EnableSymbology(std::int32_t symbology, bool enable) {
    const HoneywellRow* const row = FindHoneywellSymbology(symbology);
    if (row == nullptr) {
        return false;
    }
    const EngineHold hold(share_.system);
    EngineStatus status = kEngineOk;
    if (const std::optional<HoneywellCommandPair> pair = FindHoneywellPair(symbology, enable)) {
        for (const char* const command : pair->commands) {
            status = SendMenuCommand(command);
            // What stops a pair is a call that failed before it: its own statuses count when it is through.
            if (share_.lastStatus != kEngineOk) {
                break;
            }
        }
    } else {
        const std::string_view command(enable ? row->enable : row->disable);
        Require(!command.empty(), QLERR_OP_UNSUPPORTED, "Not Supported.");
        status = SendMenuCommand(command);
    }
    share_.lastStatus = status;
    return status == kEngineOk;
}

bool HoneywellEngine::SetTriggerMode(std::uint32_t mode) {
    const EngineHold hold(share_.system);
    share_.lastStatus = SendMenuCommand(TriggerModeCommand(mode));
    return share_.lastStatus == kEngineOk;
}

bool HoneywellEngine::SetHardwareTrigger(bool /*on*/) {
    Fail(QLERR_OP_UNSUPPORTED, "Not Supported.");
}

std::optional<std::string> HoneywellEngine::FirmwareVersion() {
    const EngineHold hold(share_.system);
    share_.answerLength = 0;
    share_.lastStatus = library_->getFirmwareVersion(share_.answer.data(), EngineShare::kRoom, &share_.answerLength);
    if (share_.lastStatus != kEngineOk) {
        return std::nullopt;
    }
    const std::span<const std::uint8_t> answer = share_.Answer();
    return std::string(answer.begin(), answer.end());
}

EngineStatus HoneywellEngine::SendMenuCommand(std::string_view command) {
    share_.SetRequest({reinterpret_cast<const std::uint8_t*>(command.data()), command.size()});
    share_.answerLength = 0;
    return library_->sendMenuCommand(share_.request.data(), share_.requestLength, share_.answer.data(),
                                     EngineShare::kRoom, &share_.answerLength, kMenuCommandTimeout);
}

}  // namespace quarlin::bcr
