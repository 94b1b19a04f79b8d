// SPDX-License-Identifier: Apache-2.0
// Owners of system objects for tests: what a test opens is closed when the test ends, however it ends.
#pragma once

#include <windows.h>

#include <utility>

namespace quarlin::test {

// A handle whose "none" is null or INVALID_HANDLE_VALUE; the system uses both, depending on the call.
class UniqueHandle {
  public:
    UniqueHandle() = default;
    explicit UniqueHandle(HANDLE handle) : handle_(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        Reset(std::exchange(other.handle_, nullptr));
        return *this;
    }
    ~UniqueHandle() { Reset(); }

    bool Valid() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle_; }
    void Reset(HANDLE handle = nullptr) {
        if (Valid()) {
            CloseHandle(handle_);
        }
        handle_ = handle;
    }

  private:
    HANDLE handle_ = nullptr;
};

// A registry key.
class UniqueKey {
  public:
    UniqueKey() = default;
    explicit UniqueKey(HKEY key) : key_(key) {}
    UniqueKey(UniqueKey&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
    UniqueKey& operator=(UniqueKey&& other) noexcept {
        Reset(std::exchange(other.key_, nullptr));
        return *this;
    }
    ~UniqueKey() { Reset(); }

    bool Valid() const { return key_ != nullptr; }
    HKEY Get() const { return key_; }
    void Reset(HKEY key = nullptr) {
        if (Valid()) {
            RegCloseKey(key_);
        }
        key_ = key;
    }

  private:
    HKEY key_ = nullptr;
};

// A loaded library.
class UniqueModule {
  public:
    UniqueModule() = default;
    explicit UniqueModule(HMODULE module) : module_(module) {}
    UniqueModule(UniqueModule&& other) noexcept : module_(std::exchange(other.module_, nullptr)) {}
    UniqueModule& operator=(UniqueModule&& other) noexcept {
        Reset(std::exchange(other.module_, nullptr));
        return *this;
    }
    ~UniqueModule() { Reset(); }

    bool Valid() const { return module_ != nullptr; }
    HMODULE Get() const { return module_; }
    void Reset(HMODULE module = nullptr) {
        if (Valid()) {
            FreeLibrary(module_);
        }
        module_ = module;
    }

  private:
    HMODULE module_ = nullptr;
};

}  // namespace quarlin::test
