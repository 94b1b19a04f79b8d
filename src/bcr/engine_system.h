// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quarlin::bcr {

// What the engines and those who look for them need of the system. Windows are the system's handles, untyped here.

// Waiting, looking before it reads, and taking turns: an engine's call and the buffers that it uses belong to one
// thread at a time.
class EngineSystem {
  public:
    virtual void Pause(std::uint32_t milliseconds) = 0;
    // Recursive.
    virtual void EnterEngine() = 0;
    virtual void LeaveEngine() = 0;
    // Whether that much memory can be read there.
    virtual bool IsReadable(const void* memory, std::uintptr_t size) = 0;
    // Whether a scan's text, its terminator and so much behind it can be read.
    virtual bool IsScanReadable(const char* text, std::uintptr_t length, std::uintptr_t behind) {
        return IsReadable(text, length + 1 + behind);
    }

  protected:
    constexpr EngineSystem() = default;
    constexpr ~EngineSystem() = default;
};

// Has the engines for the calling thread while it lives. Taken after the family's lock, never before it.
class EngineHold {
  public:
    explicit EngineHold(EngineSystem& system) : system_(&system) { system_->EnterEngine(); }
    EngineHold(const EngineHold&) = delete;
    EngineHold& operator=(const EngineHold&) = delete;
    ~EngineHold() { system_->LeaveEngine(); }

  private:
    EngineSystem* system_;
};

// What is plugged in now.
class AttachedDevices {
  public:
    // Paths of the HID interfaces, at most that many.
    virtual std::vector<std::wstring> HidPaths(std::uint32_t most) = 0;
    // The serial ports by the names that the system shows.
    virtual std::vector<std::wstring> PortNames() = 0;

  protected:
    constexpr AttachedDevices() = default;
    constexpr ~AttachedDevices() = default;
};

// The 2-D barcode emulator program, which may hold a Honeywell scanner for itself.
class EmulatorProgram {
  public:
    virtual bool IsRunning() = 0;
    // Null when there is none.
    virtual void* Window() = 0;
    // What the window answers; nothing when it does not.
    virtual std::optional<std::intptr_t> AskForScanner(void* window) = 0;
    virtual std::optional<std::intptr_t> ConnectState(void* window) = 0;
    // Says where notices about the scanner go.
    virtual void Register(void* window, void* listener) = 0;

  protected:
    constexpr EmulatorProgram() = default;
    constexpr ~EmulatorProgram() = default;
};

// The emulator's connect states.
inline constexpr std::intptr_t kTakenByEmulator = 1;
inline constexpr std::intptr_t kHandedOver = 3;

}  // namespace quarlin::bcr
