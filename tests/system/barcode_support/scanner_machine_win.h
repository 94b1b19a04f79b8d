// SPDX-License-Identifier: Apache-2.0
// The machine's scanner and the libraries of its engine under the test's hand.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "barcode_support/engine_texts.h"
#include "probe/probe_state.h"
#include "scanner/honeywell_state.h"
#include "scanner/intermec_state.h"
#include "scanner/scan_sender_win.h"
#include "shared/shared_section_win.h"
#include "support/machine_state_win.h"
#include "support/shared_turn_win.h"
#include "support/wait_win.h"

namespace quarlin::test {

using sim::EngineCall;
using sim::HoneywellFunction;
using sim::HoneywellState;
using sim::IntermecFunction;
using sim::IntermecState;
using sim::Refusal;

using Texts = std::vector<std::string>;

// What a test process uses of the machine is its own from here on: other test processes have other engines.
void UseOwnInstance();

// One engine's record.
template <typename State, typename Function>
class TestEngine {
  public:
    using Access = typename sim::SharedState<State>::Access;

    TestEngine() {
        if (!shared_.Open()) {
            throw std::runtime_error("the engine's record is not to be had");
        }
        SetDefaults();
    }

    // The record, held to the end of the expression or scope. The library's calls wait meanwhile.
    Access Use() { return Access(shared_); }

    // The engine of a machine that nobody has touched. Not while it is connected.
    void SetDefaults() {
        Use()->SetDefaults();
        held_.Wait(0);
        goOn_.Wait(0);
        taken_ = 0;
    }

    // A function refuses: after `skip` more calls, the next `count` do. `beginning`: only frames that begin with these
    // two bytes, 0x7340 for 73 40.
    void Refuse(Function function, std::uint16_t status = 1, std::uint32_t count = Refusal::kAlways,
                std::uint32_t skip = 0, std::uint16_t beginning = 0) {
        Use()->Refuse(function, status, count, skip, beginning);
    }
    // Nothing refuses any more.
    void Obey() {
        const Access state(shared_);
        for (Refusal& refusal : state->refusals) {
            refusal = {};
        }
    }

    // The next `count` calls of a function get this answer, and are told that it is so long.
    void AnswerInstead(Function function, std::string_view bytes, std::optional<std::uint32_t> claimed = {},
                       std::uint32_t count = Refusal::kAlways) {
        const Access state(shared_);
        for (sim::AnswerInstead& answer : state->answersInstead) {
            if (answer.count == 0 || answer.function == static_cast<std::uint32_t>(function)) {
                answer.function = static_cast<std::uint32_t>(function);
                answer.count = count;
                answer.length = static_cast<std::uint32_t>(
                    bytes.copy(reinterpret_cast<char*>(answer.bytes), sim::AnswerInstead::kRoom));
                answer.claimed = claimed.value_or(answer.length);
                return;
            }
        }
        throw std::runtime_error("no room for one more answer");
    }
    void AnswerHonestly() {
        const Access state(shared_);
        for (sim::AnswerInstead& answer : state->answersInstead) {
            answer.count = 0;
        }
    }

    // The next call of a function stays inside the engine's library until LetGo.
    void HoldNext(Function function) { Use()->hold.function = static_cast<std::uint32_t>(function); }
    void AwaitHeld() const {
        if (!held_.Wait(kDeadline)) {
            throw std::runtime_error("no call came that could be held");
        }
    }
    void LetGo() const { goOn_.Set(); }

    // The calls since the last time, in order.
    std::vector<EngineCall> TakeCalls() {
        std::vector<EngineCall> calls = CallsFrom(taken_);
        taken_ += calls.size();
        return calls;
    }
    // The same as texts: "SetupWrite 43 41 01"; see engine_texts.h.
    Texts TakeTexts() { return TextsOf(TakeCalls()); }
    // Those that a Take would give, without taking them.
    Texts Peek() { return TextsOf(CallsFrom(taken_)); }
    // Waits until so many calls of a function have come since the last Take.
    void AwaitCalls(std::string_view text, std::size_t count = 1) {
        Await("calls of the engine's library", [&] {
            const Texts texts = Peek();
            return static_cast<std::size_t>(std::count(texts.begin(), texts.end(), text)) >= count;
        });
    }

    // A scan goes into the engine, which announces it as the slot says.
    void Send(const sim::ScanSlot& scan) {
        if (!sim::AddScan(shared_, scan)) {
            throw std::runtime_error("the engine does not take the scan");
        }
    }
    // Waits until the library has fetched all scans.
    void AwaitFetched() {
        Await("the engine to fetch its scans", [&] { return Use()->inbox.IsEmpty(); });
    }

  private:
    std::vector<EngineCall> CallsFrom(std::uint64_t first) {
        const Access state(shared_);
        std::vector<EngineCall> calls;
        const std::uint64_t count = state->log.Count();
        if (first < state->log.First()) {
            throw std::runtime_error("the engine's log does not go back so far");
        }
        for (std::uint64_t number = first; number < count; ++number) {
            const EngineCall* const call = state->log.At(number);
            if (call == nullptr) {
                break;  // still being written; so are those behind it
            }
            calls.push_back(*call);
        }
        return calls;
    }
    static Texts TextsOf(const std::vector<EngineCall>& calls) {
        Texts texts;
        for (const EngineCall& call : calls) {
            texts.push_back(TextOf(static_cast<Function>(call.function), call));
        }
        return texts;
    }

    sim::SharedState<State> shared_;
    sim::EngineEvent held_{State::kHeldEvent};
    sim::EngineEvent goOn_{State::kGoOnEvent};
    std::uint64_t taken_ = 0;
};

using IntermecEngine = TestEngine<IntermecState, IntermecFunction>;
using HoneywellEngine = TestEngine<HoneywellState, HoneywellFunction>;

// What the machine reports about its scanner. The library asks once per process.
enum class ScannerHardware {
    kNone,
    kIntermecBuiltIn,  // device 1
    kEngine,           // device 14: which one is up to the product name, see ScannerSetup
    kMiniDb            // device 15
};

struct ScannerSetup {
    ScannerHardware hardware = ScannerHardware::kIntermecBuiltIn;
    // The firmware's product name for this process; not changed when empty. Needs the devices for oneself.
    std::wstring productName;
    // Turns; see shared_turn_win.h.
    std::optional<SharedTurn::Use> devices;
    std::optional<SharedTurn::Use> emulator;

    // The built-in engine is neither looked for nor lent to the emulator: nothing of the machine is shared.
    static ScannerSetup IntermecBuiltIn() { return {}; }
    static ScannerSetup MiniDb(SharedTurn::Use emulator = SharedTurn::Use::kShared) {
        return {ScannerHardware::kMiniDb, {}, {}, emulator};
    }
    static ScannerSetup Engine(std::wstring productName, SharedTurn::Use emulator = SharedTurn::Use::kShared) {
        return {ScannerHardware::kEngine, std::move(productName), SharedTurn::Use::kExclusive, emulator};
    }
    static ScannerSetup None() { return {ScannerHardware::kNone, {}, {}, {}}; }
    // Whatever somebody plugs in; for QLBCR_SetAllowExternalBarcodeDevice.
    static ScannerSetup External(SharedTurn::Use devices = SharedTurn::Use::kShared,
                                 SharedTurn::Use emulator = SharedTurn::Use::kShared) {
        return {ScannerHardware::kNone, {}, devices, emulator};
    }
};

// One scan of an Intermec engine before it is put into the engine's record.
struct IntermecScan {
    std::uint8_t type = 1;
    std::uint16_t number = 0;
    // The third is the code's text, the fifth the symbology identifier.
    std::string fields[5];
    // Lengths that the record tells; those of the fields when not set.
    std::optional<std::uint16_t> lengths[5];

    static IntermecScan Of(std::string text, std::string symbologyId = {}) {
        IntermecScan scan;
        scan.fields[2] = std::move(text);
        scan.fields[4] = std::move(symbologyId);
        return scan;
    }
    std::string Bytes() const;
};

// A machine of this process alone, and its engines as nobody has touched them. The turns that it needs stay with the
// process. One at a time.
class ScannerMachine {
  public:
    explicit ScannerMachine(const ScannerSetup& setup = {});
    ScannerMachine(const ScannerMachine&) = delete;
    ScannerMachine& operator=(const ScannerMachine&) = delete;

    IntermecEngine& Intermec() { return engines_->intermec; }
    HoneywellEngine& Honeywell() { return engines_->honeywell; }
    // The probe library's record, held to the end of the expression or scope.
    sim::SharedState<sim::ProbeState>::Access Probe() {
        return sim::SharedState<sim::ProbeState>::Access(engines_->probe);
    }

    // Somebody shows the Intermec engine a code.
    void ScanIntermec(std::string text, std::string symbologyId = {}) {
        ScanIntermec(IntermecScan::Of(std::move(text), std::move(symbologyId)));
    }
    void ScanIntermec(const IntermecScan& scan) { ScanIntermecRecord(scan.Bytes()); }
    // Bytes as the engine's library gives them, of which it claims so many.
    void ScanIntermecRecord(std::string_view bytes, std::optional<std::uint32_t> claimed = {},
                            std::uint32_t wParam = IntermecState::kScanType, std::uint32_t flags = 0);

    // The same for the Honeywell engine; the identifier is cut or filled to five bytes.
    void ScanHoneywell(std::string_view text, std::string_view symbologyId = {},
                       std::uint32_t eventType = HoneywellState::kScanType, std::uint32_t flags = 0);

  private:
    struct Engines {
        sim::SharedState<sim::ProbeState> probe;
        IntermecEngine intermec;
        HoneywellEngine honeywell;
    };

    std::optional<MachineStateLock> machineState_;
    std::optional<RegistryValueGuard> productName_;
    std::unique_ptr<Engines> engines_;
};

}  // namespace quarlin::test
