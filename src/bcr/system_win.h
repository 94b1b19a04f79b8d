// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bcr/attached_devices_win.h"
#include "bcr/device_list.h"
#include "bcr/emulator_program_win.h"
#include "bcr/scan_delivery.h"
#include "core/smart_critical_win.h"

#include <array>
#include <atomic>
#include <cstdint>

namespace quarlin::bcr {

class WindowsEngineSystem final : public EngineSystem {
  public:
    void Pause(std::uint32_t milliseconds) override;
    void EnterEngine() override { lock_.Enter(); }
    void LeaveEngine() override { lock_.Leave(); }
    bool IsReadable(const void* memory, std::uintptr_t size) override;
    // A scan that an engine's library has announced is not looked at: asking the system for its memory would take as
    // long as all the rest of its way.
    bool IsScanReadable(const char* text, std::uintptr_t length, std::uintptr_t behind) override;
    void Announce(const void* text, std::uintptr_t length);

  private:
    bool TakeAnnouncement(const void* text, std::uintptr_t length);

    CSmartCritical lock_;
    // The last announcements that have not been taken, 0 for none. One that is overwritten is asked for after all.
    std::array<std::atomic<std::uint64_t>, 64> announced_{};
    std::atomic<std::uint32_t> announcements_ = 0;
};

class ThisMachine final : public MachineFacts {
  public:
    ComputerModel Model() override;
    ScannerHardware Hardware() override;
};

// The sound is the system's multimedia library's, which is loaded with the first one: most programs never play any.
class WaveSound final : public ReadSound {
  public:
    WaveSound() = default;
    WaveSound(const WaveSound&) = delete;
    WaveSound& operator=(const WaveSound&) = delete;
    ~WaveSound();

    void Play(const std::wstring& file) override;

  private:
    LoadedLibrary library_;
};

// Everything of the system that the family lives on.
struct SystemServices {
    WindowsEngineSystem engines;
    RunningEmulator emulator;
    SystemDevices attached;
    ThisMachine machine;
    WaveSound sound;
};

// The sound that a device begins with.
std::wstring DefaultSoundFile();
// The path as it is kept; nothing when there is no such file.
std::optional<std::wstring> ExistingSoundFile(const wchar_t* path);

}  // namespace quarlin::bcr
