// SPDX-License-Identifier: Apache-2.0
#include "hid_bench_win.h"

#include <psapi.h>
#include <setupapi.h>
extern "C" {
#include <hidsdi.h>
}

#include <quarlin/error.h>

#include <array>
#include <cwchar>
#include <stdexcept>

namespace quarlin::bench {

namespace {

std::wstring Lower(std::wstring text) {
    for (wchar_t& character : text) {
        character = static_cast<wchar_t>(std::towlower(character));
    }
    return text;
}

std::wstring PathOf(HDEVINFO list, SP_DEVICE_INTERFACE_DATA& entry) {
    std::array<std::uint8_t, 1024> buffer{};
    auto* const detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(buffer.data());
    detail->cbSize = sizeof *detail;
    if (!SetupDiGetDeviceInterfaceDetailW(list, &entry, detail, buffer.size(), nullptr, nullptr)) {
        return {};
    }
    return detail->DevicePath;
}

std::wstring FindPath(const wchar_t* vendorAndProduct) {
    GUID hid;
    HidD_GetHidGuid(&hid);
    const HDEVINFO list = SetupDiGetClassDevsW(&hid, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    std::wstring found;
    SP_DEVICE_INTERFACE_DATA entry{};
    entry.cbSize = sizeof entry;
    for (DWORD i = 0; found.empty() && SetupDiEnumDeviceInterfaces(list, nullptr, &hid, i, &entry); ++i) {
        const std::wstring path = PathOf(list, entry);
        if (Lower(path).find(vendorAndProduct) != std::wstring::npos) {
            found = path;
        }
    }
    SetupDiDestroyDeviceInfoList(list);
    return found;
}

}  // namespace

BareDevice::BareDevice(const wchar_t* vendorAndProduct, DWORD flags)
    : handle_(CreateFileW(FindPath(vendorAndProduct).c_str(), GENERIC_READ | GENERIC_WRITE,
                          FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, flags, nullptr)) {
    if (handle_ == INVALID_HANDLE_VALUE) {
        throw std::runtime_error("the virtual device cannot be opened");
    }
}

BareDevice::~BareDevice() {
    CloseHandle(handle_);
}

void Arrivals::Add() {
    AcquireSRWLockExclusive(&lock_);
    ++count_;
    ReleaseSRWLockExclusive(&lock_);
    WakeConditionVariable(&added_);
}

std::uint64_t Arrivals::Count() const {
    AcquireSRWLockShared(&lock_);
    const std::uint64_t count = count_;
    ReleaseSRWLockShared(&lock_);
    return count;
}

void Arrivals::WaitFor(std::uint64_t count) {
    constexpr DWORD kPatience = 30'000;  // milliseconds
    AcquireSRWLockExclusive(&lock_);
    bool inTime = true;
    while (inTime && count_ < count) {
        inTime = SleepConditionVariableSRW(&added_, &lock_, kPatience, 0);
    }
    ReleaseSRWLockExclusive(&lock_);
    if (!inTime) {
        throw std::runtime_error("a report has not come");
    }
}

std::int64_t Now() {
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return now.QuadPart;
}

double MicrosecondsOf(std::int64_t ticks) {
    constexpr double kMicroseconds = 1e6;
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(ticks) * kMicroseconds / static_cast<double>(frequency.QuadPart);
}

Holdings HoldingsNow() {
    constexpr std::uintptr_t kHandleStep = 4;
    constexpr std::uintptr_t kHandleEnd = 0x10000;
    Holdings holdings;
    for (std::uintptr_t value = kHandleStep; value < kHandleEnd; value += kHandleStep) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) {
            ++holdings.handles;
        }
    }
    PROCESS_MEMORY_COUNTERS memory{};
    if (K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory)) {
        constexpr std::size_t kKilobyte = 1024;
        holdings.workingSetKb = memory.WorkingSetSize / kKilobyte;
    }
    return holdings;
}

Turn::Turn(const wchar_t* mutexName) : mutex_(CreateMutexW(nullptr, FALSE, mutexName)) {
    WaitForSingleObject(mutex_, INFINITE);
}

Turn::~Turn() {
    ReleaseMutex(mutex_);
    CloseHandle(mutex_);
}

void Check(std::int32_t code, const char* call) {
    if (code != QLERR_OK) {
        std::array<char, 1024> text{};
        QLAPI_GetLastError(text.data(), static_cast<int>(text.size()));
        throw std::runtime_error(std::string(call) + ": " + text.data());
    }
}

}  // namespace quarlin::bench
