// SPDX-License-Identifier: Apache-2.0
// Changes to the machine and to the process that end with the test: registry values, environment variables; and the
// lock that keeps tests that change the machine apart.
#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "support/owners_win.h"

namespace quarlin::test {

// Held by every test that changes what all processes see (registry, common folders). Waits for its turn, at most a
// minute; throws std::runtime_error when it does not come.
class MachineStateLock {
  public:
    MachineStateLock();
    MachineStateLock(const MachineStateLock&) = delete;
    MachineStateLock& operator=(const MachineStateLock&) = delete;
    ~MachineStateLock();

  private:
    UniqueHandle mutex_;
};

// One value of the registry. It, and its key, are as before at the end of the scope; throws std::runtime_error when the
// registry refuses.
class RegistryValueGuard {
  public:
    RegistryValueGuard(HKEY root, std::wstring key, std::wstring value);
    RegistryValueGuard(const RegistryValueGuard&) = delete;
    RegistryValueGuard& operator=(const RegistryValueGuard&) = delete;
    ~RegistryValueGuard();

    // The bytes are stored as they are: a text without terminator stays without.
    void Set(DWORD type, std::span<const std::byte> data);
    void SetDword(DWORD number);
    // With its terminator.
    void SetText(const std::wstring& text, DWORD type = REG_SZ);
    void SetTextWithoutTerminator(const std::wstring& text, DWORD type = REG_SZ);
    // Removes the value; the key stays.
    void Remove();
    // Removes the key with all that is in it. Only a key that was not there before can be removed.
    void RemoveKey();

  private:
    struct Value {
        DWORD type;
        std::vector<std::byte> data;
    };
    UniqueKey Create();

    HKEY root_;
    std::wstring key_;
    std::wstring value_;
    bool keyWasThere_;
    std::optional<Value> before_;
};

// One variable of this process's environment; as before at the end of the scope.
class EnvironmentGuard {
  public:
    explicit EnvironmentGuard(std::wstring name);
    EnvironmentGuard(std::wstring name, const std::wstring& value) : EnvironmentGuard(std::move(name)) { Set(value); }
    EnvironmentGuard(const EnvironmentGuard&) = delete;
    EnvironmentGuard& operator=(const EnvironmentGuard&) = delete;
    ~EnvironmentGuard();

    void Set(const std::wstring& value);
    void Remove();

  private:
    std::wstring name_;
    std::optional<std::wstring> before_;
};

}  // namespace quarlin::test
