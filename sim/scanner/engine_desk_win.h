// SPDX-License-Identifier: Apache-2.0
// How a call of an engine library is answered, whatever it is for: held, refused or done, and logged.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "scanner/engine_record.h"
#include "shared/shared_section_win.h"

namespace quarlin::sim {

// What a caller gave.
struct Given {
    std::int64_t arguments[4] = {};
    const void* request = nullptr;
    std::uint32_t length = 0;
};

inline std::int64_t Address(const void* pointer) {
    return static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(pointer));
}

inline std::uint32_t TextLength(const char* text) {
    return text != nullptr ? static_cast<std::uint32_t>(std::strlen(text)) : 0;
}

inline void CopyText(char* to, std::size_t room, const char* text) {
    lstrcpynA(to, text, static_cast<int>(room));
}

template <typename State, typename Function>
class EngineDesk {
  public:
    constexpr EngineDesk() = default;

    SharedState<State>& Shared() { return shared_; }
    State* Unlocked() { return shared_.Unlocked(); }
    void Close() { shared_.Close(); }
    void SetLibrary(std::uint32_t library) { library_ = library; }

    // work(state, call) gives the status, alone with the record.
    template <typename Work>
    std::uint32_t Answer(Function function, const Given& given, std::uint16_t noRecord, Work&& work) {
        State* const record = shared_.Unlocked();
        if (record == nullptr) {
            return kStatusDirt | noRecord;
        }
        WaitWhileHeld(*record, function);
        EngineCall call = Begin(function, given);
        {
            const typename SharedState<State>::Access state(shared_);
            if (!state) {
                return kStatusDirt | noRecord;
            }
            std::uint16_t status = 0;
            if (!Refuses(state->refusals[static_cast<std::size_t>(function)], given, status)) {
                status = work(*state, call);
            }
            call.status = status;
        }
        record->log.Add(call);
        return kStatusDirt | call.status;
    }

    // The same without the record's lock and without any other system call, unless the function is to be held or
    // refused.
    template <typename Work>
    std::uint32_t AnswerUnlocked(Function function, const Given& given, std::uint16_t noRecord, Work&& work) {
        State* const record = shared_.Unlocked();
        if (record == nullptr || IsHeld(*record, function) ||
            std::atomic_ref(record->refusals[static_cast<std::size_t>(function)].count).load() != 0) {
            return Answer(function, given, noRecord, work);
        }
        EngineCall call = Begin(function, given);
        call.status = work(*record, call);
        record->log.Add(call);
        return kStatusDirt | call.status;
    }

    // What the caller of `function` is told instead of `length` bytes at `answer`; false when nothing is.
    static bool TellInstead(State& state, Function function, std::uint8_t* to, std::uint32_t capacity,
                            std::uint32_t& told) {
        for (AnswerInstead& instead : state.answersInstead) {
            if (instead.count == 0 || instead.function != static_cast<std::uint32_t>(function)) {
                continue;
            }
            const std::size_t length = instead.length < capacity ? instead.length : capacity;
            std::memcpy(to, &instead.bytes[0], length < AnswerInstead::kRoom ? length : AnswerInstead::kRoom);
            told = instead.claimed;
            TakeOne(instead.count);
            return true;
        }
        return false;
    }

  private:
    static constexpr DWORD kLongestHold = 30000;

    static void TakeOne(std::uint32_t& count) {
        if (count != Refusal::kAlways) {
            --count;
        }
    }

    static bool IsHeld(State& record, Function function) {
        return std::atomic_ref(record.hold.function).load() == static_cast<std::uint32_t>(function);
    }

    void WaitWhileHeld(State& record, Function function) {
        if (!IsHeld(record, function)) {
            return;
        }
        HANDLE const goOn = CreateEventW(nullptr, FALSE, FALSE, InstanceName(State::kGoOnEvent).Text());
        HANDLE const held = CreateEventW(nullptr, FALSE, FALSE, InstanceName(State::kHeldEvent).Text());
        bool mine = false;
        if (const typename SharedState<State>::Access state(shared_); state && IsHeld(*state, function)) {
            std::atomic_ref(state->hold.function).store(Hold::kNone);
            ++state->hold.held;
            mine = true;
        }
        if (mine) {
            SetEvent(held);
            WaitForSingleObject(goOn, kLongestHold);
        }
        CloseHandle(held);
        CloseHandle(goOn);
    }

    EngineCall Begin(Function function, const Given& given) const {
        EngineCall call{};
        call.function = static_cast<std::uint32_t>(function);
        call.library = library_;
        call.process = GetCurrentProcessId();
        call.thread = GetCurrentThreadId();
        call.milliseconds = GetTickCount64();
        std::memcpy(&call.arguments[0], &given.arguments[0], sizeof(call.arguments));
        call.requestLength = given.length;
        if (given.request != nullptr) {
            call.requestBytes = given.length < EngineCall::kRoom ? given.length : std::uint32_t{EngineCall::kRoom};
            std::memcpy(&call.request[0], given.request, call.requestBytes);
        }
        return call;
    }

    static bool Refuses(Refusal& refusal, const Given& given, std::uint16_t& status) {
        if (refusal.count == 0) {
            return false;
        }
        if (refusal.beginning != 0) {
            const auto* const bytes = static_cast<const std::uint8_t*>(given.request);
            if (bytes == nullptr || given.length < 2 || bytes[0] != refusal.beginning >> 8 ||
                bytes[1] != (refusal.beginning & 0xFF)) {
                return false;
            }
        }
        if (refusal.skip != 0) {
            --refusal.skip;
            return false;
        }
        TakeOne(refusal.count);
        status = refusal.status;
        return true;
    }

    SharedState<State> shared_;
    std::uint32_t library_ = 0;
};

}  // namespace quarlin::sim
