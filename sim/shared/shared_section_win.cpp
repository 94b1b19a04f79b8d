// SPDX-License-Identifier: Apache-2.0
#include "shared/shared_section_win.h"

#include <initializer_list>

namespace quarlin::sim {
namespace {

constexpr DWORD kPatience = 10000;

bool Take(HANDLE mutex) {
    const DWORD result = WaitForSingleObject(mutex, kPatience);
    // A program that was ended while it held the record leaves nothing half done that anybody would notice.
    return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}

class Opening {
  public:
    explicit Opening(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;
    ~Opening() { ReleaseSRWLockExclusive(&lock_); }

  private:
    SRWLOCK& lock_;
};

}  // namespace

InstanceName::InstanceName(const wchar_t* name) {
    constexpr int kRoomBehind = 8;  // for whoever puts a word behind the name
    lstrcpynW(text_, name, MAX_PATH - kRoomBehind);
    wchar_t instance[MAX_PATH];
    const DWORD length = GetEnvironmentVariableW(L"QLSIM_INSTANCE", instance, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return;
    }
    const int used = lstrlenW(text_);
    if (MAX_PATH - kRoomBehind - used > 1) {
        text_[used] = L'-';
        lstrcpynW(text_ + used + 1, instance, MAX_PATH - kRoomBehind - used - 1);
    }
}

bool SharedSection::Open(const wchar_t* name, SIZE_T size, Fill fillWithDefaults) {
    const Opening alone(opening_);
    if (record_ != nullptr) {
        return true;
    }
    const InstanceName own(name);
    wchar_t lockName[MAX_PATH];
    lstrcpynW(lockName, own.Text(), MAX_PATH);
    lstrcatW(lockName, L"Lock");
    mutex_ = CreateMutexW(nullptr, FALSE, lockName);
    if (mutex_ == nullptr || !Take(mutex_)) {
        Close();
        return false;
    }
    // Under the mutex, so that nobody sees the record before it has been filled.
    section_ =
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, static_cast<DWORD>(size), own.Text());
    const bool isNew = section_ != nullptr && GetLastError() != ERROR_ALREADY_EXISTS;
    record_ = section_ != nullptr ? MapViewOfFile(section_, FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, size) : nullptr;
    if (record_ != nullptr && isNew) {
        fillWithDefaults(record_);
    }
    ReleaseMutex(mutex_);
    if (record_ == nullptr) {
        Close();
        return false;
    }
    return true;
}

void SharedSection::Close() {
    if (record_ != nullptr) {
        UnmapViewOfFile(record_);
        record_ = nullptr;
    }
    for (HANDLE* const handle : {&section_, &mutex_}) {
        if (*handle != nullptr) {
            CloseHandle(*handle);
            *handle = nullptr;
        }
    }
}

void* SharedSection::Lock() {
    return Take(mutex_) ? record_ : nullptr;
}

void SharedSection::Unlock() {
    ReleaseMutex(mutex_);
}

}  // namespace quarlin::sim
