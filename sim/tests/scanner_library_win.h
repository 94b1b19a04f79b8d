// SPDX-License-Identifier: Apache-2.0
// The stand-in engine libraries as a program has them, and their records, for tests. This program has a set of records
// for itself.
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "scanner/scan_bytes.h"
#include "scanner/scan_sender_win.h"
#include "shared/shared_section_win.h"

namespace quarlin::sim {

inline constexpr DWORD kScannerDeadline = 20000;

// Until it is so, at most until the deadline. Between two looks the processor is others'.
inline bool WaitUntil(const std::function<bool()>& isSo) {
    const ULONGLONG end = GetTickCount64() + kScannerDeadline;
    while (!isSo()) {
        if (GetTickCount64() > end) {
            return false;
        }
        SwitchToThread();
    }
    return true;
}

inline std::wstring VariantPath(const std::string& missing, const wchar_t* file) {
    std::wstring folder(MAX_PATH, L'\0');
    folder.resize(GetModuleFileNameW(nullptr, folder.data(), MAX_PATH));
    for (int i = 0; i < 2; ++i) {
        folder.resize(folder.find_last_of(L"\\/"));
    }
    return folder + L"\\sim\\without\\" + std::wstring(missing.begin(), missing.end()) + L"\\" + file;
}

class ScannerLibrary {
  public:
    explicit ScannerLibrary(const wchar_t* name) : module_(LoadLibraryW(name)) { EXPECT_NE(module_, nullptr); }
    ScannerLibrary(const ScannerLibrary&) = delete;
    ScannerLibrary& operator=(const ScannerLibrary&) = delete;
    ~ScannerLibrary() { Unload(); }

    // The whole register, dirt and all.
    template <typename... Arguments>
    std::uint32_t CallRaw(const char* name, Arguments... arguments) const {
        const auto function =
            reinterpret_cast<std::uint32_t (*)(Arguments...)>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
        if (function == nullptr) {
            ADD_FAILURE() << name;
            return 0xFFFFFFFF;
        }
        return function(arguments...);
    }
    template <typename... Arguments>
    std::uint16_t Call(const char* name, Arguments... arguments) const {
        return static_cast<std::uint16_t>(CallRaw(name, arguments...));
    }
    bool Has(const char* name) const { return GetProcAddress(module_, name) != nullptr; }
    void Unload() {
        if (module_ != nullptr) {
            FreeLibrary(std::exchange(module_, nullptr));
        }
    }

  private:
    HMODULE module_;
};

// The record, as on a machine that nobody has touched.
template <typename State>
class ScannerRecord {
  public:
    using Access = typename SharedState<State>::Access;

    ScannerRecord() { Use()->SetDefaults(); }

    Access Use() { return Access(shared_); }
    SharedState<State>& Shared() { return shared_; }
    State& Unlocked() { return *shared_.Unlocked(); }
    std::vector<EngineCall> Calls() {
        const Access state(shared_);
        std::vector<EngineCall> calls;
        for (std::uint64_t number = state->log.First(); number < state->log.Count(); ++number) {
            if (const EngineCall* const call = state->log.At(number); call != nullptr) {
                calls.push_back(*call);
            }
        }
        return calls;
    }

  private:
    SharedState<State> shared_;
};

inline std::string RequestOf(const EngineCall& call) {
    return {reinterpret_cast<const char*>(&call.request[0]), call.requestBytes};
}

}  // namespace quarlin::sim
