// SPDX-License-Identifier: Apache-2.0
// Turns between test processes that may be shared: many that need the machine as it is, or one that changes it. They
// are locks of files, which the system lets go when a process ends, however it ends.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

#include "support/owners_win.h"
#include "support/wait_win.h"

namespace quarlin::test {

// Held to the end of the scope, by one thread or another. Not to be taken twice by one process.
class SharedTurn {
  public:
    enum class Use {
        kShared,
        kExclusive
    };
    static constexpr DWORD kPatience = 120000;

    // Waits; throws std::runtime_error when the turn does not come in time.
    SharedTurn(const std::wstring& name, Use use, DWORD patience = kPatience) : file_(OpenFile(name)) {
        // Whoever waits for the turn holds the gate meanwhile, so that one who wants it alone is not passed for ever.
        const ULONGLONG end = GetTickCount64() + patience;
        const bool taken =
            WaitFor(kGate, Use::kExclusive, end) && (WaitFor(kTurn, use, end) || (Release(kGate), false));
        if (!taken) {
            throw std::runtime_error("another test does not let its turn go");
        }
        Release(kGate);
    }
    SharedTurn(const SharedTurn&) = delete;
    SharedTurn& operator=(const SharedTurn&) = delete;
    ~SharedTurn() { Release(kTurn); }

    // The file, which stays behind.
    static std::wstring PathOf(const std::wstring& name) {
        std::wstring path(MAX_PATH + 1, L'\0');
        path.resize(GetTempPathW(MAX_PATH + 1, path.data()));
        return path + L"quarlin-turn-" + name;
    }

  private:
    static constexpr DWORD kGate = 0;
    static constexpr DWORD kTurn = 1;

    static HANDLE OpenFile(const std::wstring& name) {
        HANDLE const file =
            CreateFileW(PathOf(name).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                        OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            throw std::runtime_error("no file for taking turns, error " + std::to_string(GetLastError()));
        }
        return file;
    }

    bool WaitFor(DWORD byte, Use use, ULONGLONG end) const {
        const DWORD flags = LOCKFILE_FAIL_IMMEDIATELY | (use == Use::kExclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
        const ULONGLONG now = GetTickCount64();
        return WaitUntil(
            [&] {
                OVERLAPPED place{};
                place.Offset = byte;
                return LockFileEx(file_.Get(), flags, 0, 1, 0, &place) != FALSE;
            },
            now < end ? static_cast<DWORD>(end - now) : 0);
    }

    void Release(DWORD byte) const {
        OVERLAPPED place{};
        place.Offset = byte;
        UnlockFileEx(file_.Get(), 0, 1, 0, &place);
    }

    UniqueHandle file_;
};

// What the whole machine has one of for all barcode tests. Shared: tests that expect no scanner on USB or a serial port
// and the computer's own model, or no emulator program; exclusive: tests that bring one, or another model.
inline constexpr const wchar_t* kScannerDevicesTurn = L"scanner-devices";
inline constexpr const wchar_t* kScannerEmulatorTurn = L"scanner-emulator";

}  // namespace quarlin::test
