// SPDX-License-Identifier: Apache-2.0
#include "support/machine_state_win.h"

#include <cstdint>
#include <stdexcept>

namespace quarlin::test {
namespace {

void Require(LSTATUS status, const char* what) {
    if (status != ERROR_SUCCESS) {
        throw std::runtime_error(std::string(what) + " failed, error " + std::to_string(status));
    }
}

UniqueKey OpenKey(HKEY root, const std::wstring& path, REGSAM access) {
    HKEY key = nullptr;
    return UniqueKey(RegOpenKeyExW(root, path.c_str(), 0, access, &key) == ERROR_SUCCESS ? key : nullptr);
}

}  // namespace

MachineStateLock::MachineStateLock() : mutex_(CreateMutexW(nullptr, FALSE, L"Global\\QuarlinTestMachineState")) {
    const DWORD result = WaitForSingleObject(mutex_.Get(), 60000);
    // Abandoned: another test program ended in the middle; its guards cannot have run, but ours set what they need.
    if (result != WAIT_OBJECT_0 && result != WAIT_ABANDONED) {
        throw std::runtime_error("another test holds the machine");
    }
}

MachineStateLock::~MachineStateLock() {
    ReleaseMutex(mutex_.Get());
}

RegistryValueGuard::RegistryValueGuard(HKEY root, std::wstring key, std::wstring value)
    : root_(root), key_(std::move(key)), value_(std::move(value)) {
    const UniqueKey existing = OpenKey(root_, key_, KEY_QUERY_VALUE);
    keyWasThere_ = existing.Valid();
    if (!keyWasThere_) {
        return;
    }
    DWORD type = 0;
    DWORD size = 0;
    if (RegQueryValueExW(existing.Get(), value_.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS) {
        return;
    }
    Value before{type, std::vector<std::byte>(size)};
    Require(RegQueryValueExW(existing.Get(), value_.c_str(), nullptr, &before.type,
                             reinterpret_cast<BYTE*>(before.data.data()), &size),
            "RegQueryValueExW");
    before_ = std::move(before);
}

RegistryValueGuard::~RegistryValueGuard() {
    if (!keyWasThere_) {
        RegDeleteTreeW(root_, key_.c_str());
        return;
    }
    const UniqueKey existing = OpenKey(root_, key_, KEY_SET_VALUE);
    if (before_) {
        RegSetValueExW(existing.Get(), value_.c_str(), 0, before_->type,
                       reinterpret_cast<const BYTE*>(before_->data.data()), static_cast<DWORD>(before_->data.size()));
    } else {
        RegDeleteValueW(existing.Get(), value_.c_str());
    }
}

UniqueKey RegistryValueGuard::Create() {
    HKEY key = nullptr;
    Require(RegCreateKeyExW(root_, key_.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr),
            "RegCreateKeyExW");
    return UniqueKey(key);
}

void RegistryValueGuard::Set(DWORD type, std::span<const std::byte> data) {
    const UniqueKey key = Create();
    Require(RegSetValueExW(key.Get(), value_.c_str(), 0, type, reinterpret_cast<const BYTE*>(data.data()),
                           static_cast<DWORD>(data.size())),
            "RegSetValueExW");
}

void RegistryValueGuard::SetDword(DWORD number) {
    Set(REG_DWORD, std::as_bytes(std::span(&number, 1)));
}

void RegistryValueGuard::SetText(const std::wstring& text, DWORD type) {
    Set(type, std::as_bytes(std::span(text.c_str(), text.size() + 1)));
}

void RegistryValueGuard::SetTextWithoutTerminator(const std::wstring& text, DWORD type) {
    // RegSetValueExW adds a terminator that it finds right behind the data.
    const std::wstring followed = text + L'!';
    Set(type, std::as_bytes(std::span(followed.data(), text.size())));
}

void RegistryValueGuard::Remove() {
    const UniqueKey existing = OpenKey(root_, key_, KEY_SET_VALUE);
    if (existing.Valid()) {
        RegDeleteValueW(existing.Get(), value_.c_str());
    }
}

void RegistryValueGuard::RemoveKey() {
    if (keyWasThere_) {
        throw std::runtime_error("the key was there before the test");
    }
    RegDeleteTreeW(root_, key_.c_str());
}

EnvironmentGuard::EnvironmentGuard(std::wstring name) : name_(std::move(name)) {
    std::wstring text(32768, L'\0');
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetEnvironmentVariableW(name_.c_str(), text.data(), static_cast<DWORD>(text.size()));
    if (length != 0 || GetLastError() != ERROR_ENVVAR_NOT_FOUND) {
        text.resize(length);
        before_ = text;
    }
}

EnvironmentGuard::~EnvironmentGuard() {
    SetEnvironmentVariableW(name_.c_str(), before_ ? before_->c_str() : nullptr);
}

void EnvironmentGuard::Set(const std::wstring& value) {
    SetEnvironmentVariableW(name_.c_str(), value.c_str());
}

void EnvironmentGuard::Remove() {
    SetEnvironmentVariableW(name_.c_str(), nullptr);
}

}  // namespace quarlin::test
