// SPDX-License-Identifier: Apache-2.0
#include "machine_bench_win.h"

#include <psapi.h>

#include <quarlin/error.h>

#include <array>
#include <stdexcept>
#include <string>

namespace quarlin::bench {

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
        throw std::runtime_error("what was sent has not come");
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
