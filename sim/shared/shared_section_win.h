// SPDX-License-Identifier: Apache-2.0
// A record that all programs of the machine share: a named section of memory, and a mutex of the same name with "Lock"
// behind it. The first program fills it with defaults, and it lives as long as any program has it open.
#pragma once

#include <windows.h>

namespace quarlin::sim {

// The name of something that programs share, for one set of programs among several: with "-" and the environment
// variable QLSIM_INSTANCE behind it, unless that is not set or empty. A test that sets it has the machine's libraries
// for itself.
class InstanceName {
  public:
    explicit InstanceName(const wchar_t* name);
    const wchar_t* Text() const { return text_; }

  private:
    wchar_t text_[MAX_PATH];
};

class SharedSection {
  public:
    using Fill = void (*)(void* record);

    constexpr SharedSection() = default;
    SharedSection(const SharedSection&) = delete;
    SharedSection& operator=(const SharedSection&) = delete;
    ~SharedSection() { Close(); }

    // Under its InstanceName. Does nothing when it is open. False when the system refuses; GetLastError says why.
    bool Open(const wchar_t* name, SIZE_T size, Fill fillWithDefaults);
    void Close();
    // For what programs read and write without being alone; null when it is not open.
    void* Record() const { return record_; }

    // The record, alone among all programs until Unlock; null when nobody let it go within ten seconds.
    void* Lock();
    void Unlock();

  private:
    SRWLOCK opening_ = SRWLOCK_INIT;  // a library's first calls may come from several threads
    HANDLE mutex_ = nullptr;
    HANDLE section_ = nullptr;
    void* record_ = nullptr;
};

// The record of a machine library. State names its section (kSection) and fills itself (SetDefaults).
template <typename State>
class SharedState {
  public:
    bool Open() {
        return section_.Open(State::kSection, sizeof(State),
                             [](void* record) { static_cast<State*>(record)->SetDefaults(); });
    }
    void Close() { section_.Close(); }
    // The record for fields that need no lock, opened when it is not open yet; null when it is not to be had.
    State* Unlocked() { return Open() ? static_cast<State*>(section_.Record()) : nullptr; }

    // Opens the record when it is not open yet, and holds it to the end of the scope.
    class Access {
      public:
        explicit Access(SharedState& shared)
            : section_(shared.section_), state_(shared.Open() ? static_cast<State*>(section_.Lock()) : nullptr) {}
        Access(const Access&) = delete;
        Access& operator=(const Access&) = delete;
        ~Access() {
            if (state_ != nullptr) {
                section_.Unlock();
            }
        }
        explicit operator bool() const { return state_ != nullptr; }
        State* operator->() const { return state_; }
        State& operator*() const { return *state_; }

      private:
        SharedSection& section_;
        State* state_;
    };

  private:
    SharedSection section_;
};

}  // namespace quarlin::sim
