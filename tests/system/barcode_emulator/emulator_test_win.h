// SPDX-License-Identifier: Apache-2.0
// A Honeywell scanner and the emulator program that lends it.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "barcode_honeywell/honeywell_test_win.h"
#include "emulator/emulator_control_win.h"

namespace quarlin::test {

using sim::EmulatorCall;
using sim::EmulatorMessage;
using sim::EmulatorNotice;
using sim::EmulatorOrder;
using sim::EmulatorSettings;
using sim::EmulatorState;

// The messages by their names, with the values that matter.
inline constexpr const char* kAsked = "CONNECT 3";
inline constexpr const char* kPolled = "GET_CONNECT_STATE";
inline constexpr const char* kRegistered = "STATE_REGIST";
inline constexpr const char* kNoticed = "ON_CONNECT_STATE";

inline std::string TextOf(const EmulatorCall& call) {
    switch (call.message) {
        case EmulatorMessage::kConnect:
            return "CONNECT " + std::to_string(call.wParam);
        case EmulatorMessage::kGetConnectState:
            return kPolled;
        case EmulatorMessage::kStateRegist:
            return kRegistered;
        default:
            return std::string(kNoticed) + (call.failed != 0 ? " failed" : "");
    }
}

// No other test has an emulator meanwhile. It ends with the test.
class EmulatorTest : public HoneywellTest {
  protected:
    EmulatorTest() : HoneywellTest(SharedTurn::Use::kExclusive) {
        emulator_.Use([](EmulatorState& state) { state.SetDefaults(); });
    }
    ~EmulatorTest() override { Finish(); }

    void Start(const std::wstring& arguments = {}) { emulator_.Start(L"SCN2D_Emu_USB.exe", arguments); }
    void Set(const std::function<void(EmulatorSettings&)>& change) {
        emulator_.Use([&](EmulatorState& state) { change(state.settings); });
    }

    // The messages that came and went since the last time.
    std::vector<EmulatorCall> TakeMessages() {
        const EmulatorState state = emulator_.Read();
        std::vector<EmulatorCall> messages;
        for (; taken_ < state.log.count; ++taken_) {
            messages.push_back(state.log.At(taken_));
        }
        return messages;
    }
    Texts TakeMessageTexts() {
        Texts texts;
        for (const EmulatorCall& message : TakeMessages()) {
            texts.push_back(TextOf(message));
        }
        return texts;
    }
    void AwaitMessages(std::size_t count) {
        ASSERT_TRUE(emulator_.WaitUntil([&](const EmulatorState& state) { return state.log.count >= taken_ + count; }));
    }

    // Initialised, with the emulator knowing the listener.
    void InitializeAndRegister() {
        ASSERT_SUCCESS(QLBCR_Initialize());
        AwaitMessages(1);
        ASSERT_EQ(TakeMessageTexts(), Texts{kRegistered});
        TakeAll();
    }
    // In state 2, with the log's callback 0 and the scanner lent.
    void Borrow() {
        InitializeAndRegister();
        ASSERT_SUCCESS(QLBCR_Enable());
        ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback()));
        TakeMessages();
        TakeAll();
    }

    sim::EmulatorControl emulator_;

  private:
    std::uint64_t taken_ = 0;
};

}  // namespace quarlin::test
