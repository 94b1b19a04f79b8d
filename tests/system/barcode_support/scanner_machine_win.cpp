// SPDX-License-Identifier: Apache-2.0
#include "barcode_support/scanner_machine_win.h"

namespace quarlin::test {
namespace {

constexpr std::size_t kIntermecDevice = 1;
constexpr std::size_t kEngineDevice = 14;
constexpr std::size_t kMiniDbDevice = 15;

// The turns of this process. They are kept to its end: passing them to and fro with each test would hold up everybody.
class ProcessTurns {
  public:
    using Wanted = std::optional<SharedTurn::Use>;

    // Throws std::runtime_error when others do not let go in time.
    void Take(const Wanted& devices, const Wanted& emulator) {
        if (devices_.Serves(devices) && emulator_.Serves(emulator)) {
            return;
        }
        const Wanted wantedDevices = devices_.Widened(devices);
        const Wanted wantedEmulator = emulator_.Widened(emulator);
        // Everybody takes them in this order, and none while holding the other.
        emulator_.LetGo();
        devices_.LetGo();
        devices_.Take(kScannerDevicesTurn, wantedDevices);
        emulator_.Take(kScannerEmulatorTurn, wantedEmulator);
    }

  private:
    class Turn {
      public:
        bool Serves(const Wanted& wanted) const {
            return !wanted || use_ == wanted || use_ == SharedTurn::Use::kExclusive;
        }
        Wanted Widened(const Wanted& wanted) const { return Serves(wanted) ? use_ : wanted; }
        void Take(const wchar_t* name, const Wanted& wanted) {
            if (wanted) {
                turn_.emplace(name, *wanted, kPatience);
                use_ = wanted;
            }
        }
        void LetGo() {
            turn_.reset();
            use_.reset();
        }

      private:
        // Programs of many tests have their turn for a minute or more.
        static constexpr DWORD kPatience = 200000;

        std::optional<SharedTurn> turn_;
        Wanted use_;
    };

    Turn devices_;
    Turn emulator_;
};

ProcessTurns processTurns;

void Report(sim::ProbeState& probe, ScannerHardware hardware) {
    probe.SetDefaults();
    const auto report = [&probe](std::size_t device, bool isThere) {
        probe.devices[device - 1] = isThere ? sim::ProbeDeviceState{1, 1, 1} : sim::ProbeDeviceState{0, 0, 0};
    };
    report(kIntermecDevice, hardware == ScannerHardware::kIntermecBuiltIn);
    report(kEngineDevice, hardware == ScannerHardware::kEngine);
    report(kMiniDbDevice, hardware == ScannerHardware::kMiniDb);
}

sim::ScanSlot Slot(std::string_view bytes, std::uint32_t claimed, std::uint32_t eventType, std::uint32_t flags) {
    sim::ScanSlot slot{};
    slot.length = static_cast<std::uint32_t>(bytes.copy(reinterpret_cast<char*>(slot.bytes), sim::ScanSlot::kRoom));
    slot.claimed = claimed;
    slot.eventType = eventType;
    slot.flags = flags;
    return slot;
}

void AppendNumber(std::string& bytes, std::uint16_t number) {
    bytes += static_cast<char>(number >> 8);
    bytes += static_cast<char>(number & 0xFF);
}

}  // namespace

void UseOwnInstance() {
    SetEnvironmentVariableW(L"QLSIM_INSTANCE", std::to_wstring(GetCurrentProcessId()).c_str());
}

std::string IntermecScan::Bytes() const {
    std::string bytes(1, static_cast<char>(type));
    AppendNumber(bytes, number);
    for (std::size_t i = 0; i < std::size(fields); ++i) {
        AppendNumber(bytes, lengths[i].value_or(static_cast<std::uint16_t>(fields[i].size())));
    }
    for (const std::string& field : fields) {
        bytes += field;
    }
    return bytes;
}

ScannerMachine::ScannerMachine(const ScannerSetup& setup) {
    UseOwnInstance();
    processTurns.Take(setup.devices, setup.emulator);
    if (!setup.productName.empty()) {
        machineState_.emplace();
        productName_.emplace(HKEY_LOCAL_MACHINE, L"HARDWARE\\Description\\System\\BIOS", L"SystemProductName");
        productName_->SetText(setup.productName);
    }
    engines_ = std::make_unique<Engines>();
    Report(*Probe(), setup.hardware);
}

void ScannerMachine::ScanIntermecRecord(std::string_view bytes, std::optional<std::uint32_t> claimed,
                                        std::uint32_t wParam, std::uint32_t flags) {
    const auto length = static_cast<std::uint32_t>(bytes.size());
    Intermec().Send(Slot(bytes, claimed.value_or(length), wParam, flags));
}

void ScannerMachine::ScanHoneywell(std::string_view text, std::string_view symbologyId, std::uint32_t eventType,
                                   std::uint32_t flags) {
    constexpr std::size_t kIdentifier = 5;
    std::string bytes(text);
    bytes += '\0';
    bytes += symbologyId.substr(0, kIdentifier);
    bytes.resize(text.size() + 1 + kIdentifier);
    Honeywell().Send(Slot(bytes, static_cast<std::uint32_t>(text.size()), eventType, flags));
}

}  // namespace quarlin::test
