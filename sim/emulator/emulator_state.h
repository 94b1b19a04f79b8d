// SPDX-License-Identifier: Apache-2.0
// What the barcode emulator program does and has been asked. The program, whoever steers it and tests open the same
// record (shared/shared_section_win.h). The record may be made before the program starts, so that it finds its
// settings; options of its command line come on top of them.
//
// Settings are simply written; the program reads them with each message. What it is to do by itself is ordered: put in
// with Add, then kOrderEvent is set. When it has carried an order out, or has answered a message, it sets kChangeEvent:
// look at the record again. Both events are auto-reset, are named like the section (with "-" and the variable
// QLSIM_INSTANCE behind, when that is set), and kChangeEvent wakes one waiter only, so that nobody waits for it long.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quarlin::sim {

inline constexpr char kEmulatorProgram[] = "SCN2D_Emu_USB.exe";
inline constexpr wchar_t kEmulatorWindowClass[] = L"Norvane_SCN2D_Emu_Class";

// The registered messages, in the order of kEmulatorMessageNames.
enum class EmulatorMessage : std::uint32_t {
    kConnect,
    kGetConnectState,
    kStateRegist,
    kOnConnectState,  // the emulator's own, logged with what the listener window answered
};

inline constexpr std::size_t kEmulatorMessageCount = 4;
inline constexpr const wchar_t* kEmulatorMessageNames[kEmulatorMessageCount] = {
    L"WM_NORV_BCR_EMU_CONNECT", L"WM_NORV_BCR_EMU_GET_CONNECT_STATE", L"WM_NORV_BCR_EMU_STATE_REGIST",
    L"WM_NORV_BCR_EMU_ON_CONNECT_STATE"};

// What the emulator answers about the scanner.
inline constexpr std::uint32_t kEmulatorTookBack = 1;
inline constexpr std::uint32_t kEmulatorHandedOver = 3;

// How the listener window is told of a change.
enum class EmulatorNotice : std::uint32_t {
    kNone,
    kPosted,
    kSent,  // waits for the answer, and answers messages meanwhile
};

enum class EmulatorOrder : std::uint32_t {
    kTakeBack,     // state 1, the scanner held again, and the notice
    kHandOver,     // state 3, the scanner let go, and the notice; nobody has to ask
    kNotify,       // the notice, with no change
    kOpenWindow,   // the window, when there is none
    kCloseWindow,  // the window goes, the program stays
    kEnd,          // the program ends
};

inline constexpr std::size_t kEmulatorOrderCount = 6;

struct EmulatorSettings {
    static constexpr std::uint32_t kNever = 0xFFFFFFFF;

    std::uint32_t connectAnswer;  // to kConnect; 0: accepted
    // The poll after an accepted kConnect that is the first to be answered 3: 1 for the very first, kNever for none.
    std::uint32_t handOverAtPoll;
    std::uint32_t stateBefore;       // what polls before that one are told
    std::uint32_t connectDelay;      // milliseconds before kConnect is answered; no other message is answered meanwhile
    std::uint32_t stateDelay;        // likewise of kGetConnectState
    EmulatorNotice notice;           // of kTakeBack, kHandOver and kNotify
    EmulatorNotice noticeInConnect;  // from inside the answer to kConnect
    std::uint32_t noticeTimeout;     // milliseconds after which a sent notice counts as unanswered
};

struct EmulatorCall {
    EmulatorMessage message;
    std::uint32_t failed;  // kOnConnectState: the listener was gone, or did not answer in time
    std::uint64_t wParam;
    std::int64_t lParam;
    std::int64_t answer;
    std::uint64_t milliseconds;  // of the machine's clock (GetTickCount64), when it came or was sent
    std::uint64_t answered;      // likewise, when it had been answered
};

struct EmulatorCalls {
    static constexpr std::uint64_t kRoom = 256;

    std::uint64_t count;
    EmulatorCall calls[kRoom];  // the last ones: call n is at n modulo kRoom

    std::uint64_t First() const { return count < kRoom ? 0 : count - kRoom; }
    const EmulatorCall& At(std::uint64_t number) const { return calls[number % kRoom]; }
};

struct EmulatorOrders {
    static constexpr std::uint64_t kRoom = 32;

    std::uint64_t added;
    std::uint64_t carriedOut;
    EmulatorOrder orders[kRoom];  // order n is at n modulo kRoom

    // False when the program is so far behind that it would be lost. The order is done when carriedOut has gone beyond
    // `number`.
    bool Add(EmulatorOrder order, std::uint64_t& number) {
        if (added - carriedOut >= kRoom) {
            return false;
        }
        number = added;
        orders[added++ % kRoom] = order;
        return true;
    }
};

struct EmulatorState {
    static constexpr wchar_t kSection[] = L"Global\\QlsimEmulator";
    static constexpr wchar_t kOrderEvent[] = L"Global\\QlsimEmulatorOrder";
    static constexpr wchar_t kChangeEvent[] = L"Global\\QlsimEmulatorChange";

    EmulatorSettings settings;
    EmulatorOrders orders;

    // What the program is. It sets these, and clears them when it ends.
    std::uint32_t process;       // 0: none runs
    std::uint32_t ready;         // it has come up: its window is there, when it has one
    std::uint64_t window;        // 0: none
    std::uint64_t listener;      // the window that was registered
    std::uint32_t connectState;  // what a poll is told, unless it is waiting to hand over
    std::uint32_t connecting;    // an accepted kConnect waits for its poll
    std::uint32_t polls;         // since the last accepted kConnect
    std::uint32_t reserved;
    EmulatorCalls log;

    // An emulator that accepts and hands over at the first poll, and tells of changes by posting.
    void SetDefaults();
    static constexpr EmulatorSettings DefaultSettings() {
        return {0, 1, kEmulatorTookBack, 0, 0, EmulatorNotice::kPosted, EmulatorNotice::kNone, 10000};
    }
};

inline void EmulatorState::SetDefaults() {
    *this = {};
    settings = DefaultSettings();
    connectState = kEmulatorTookBack;
}

}  // namespace quarlin::sim
