// SPDX-License-Identifier: Apache-2.0
#include "bcr/system_win.h"

#include "core/firmware_model.h"
#include "core/quarlin_exception.h"
#include "device/device_family.h"
#include "device/device_queries.h"

#include <windows.h>

#include <mmsystem.h>
#include <shlwapi.h>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <cwchar>

namespace quarlin::bcr {
namespace {

constexpr std::size_t kPathSize = 260;
constexpr std::uintptr_t kPageSize = 4096;

// Never 0: no scan lies there.
std::uint64_t AnnouncementOf(const void* text, std::uintptr_t length) {
    return reinterpret_cast<std::uintptr_t>(text) ^ (std::uint64_t{length} << 48 | std::uint64_t{length} >> 16);
}

// The machine's numbers for its scanners.
constexpr std::int32_t kBuiltInIntermec = 1;
constexpr std::int32_t kScannerEngine = 14;
constexpr std::int32_t kMiniDb = 15;

bool IsAvailable(std::int32_t device) {
    try {
        return device::IsDeviceAvailable(device::deviceFamily.Probe(), device);
    } catch (const QuarlinException&) {
        return false;
    }
}

ScannerHardware AvailableScanner() {
    if (IsAvailable(kMiniDb)) {
        return ScannerHardware::kMiniDb;
    }
    if (IsAvailable(kScannerEngine)) {
        return ScannerHardware::kEngine;
    }
    return IsAvailable(kBuiltInIntermec) ? ScannerHardware::kIntermecBuiltIn : ScannerHardware::kNone;
}

// Ends what Initialize of the device family began.
class DeviceCheckUse {
  public:
    DeviceCheckUse() = default;
    DeviceCheckUse(const DeviceCheckUse&) = delete;
    DeviceCheckUse& operator=(const DeviceCheckUse&) = delete;
    ~DeviceCheckUse() {
        try {
            device::deviceFamily.Uninitialize();
        } catch (...) {
            // It is ended all the same; what the library says of its end is nobody's business here.
        }
    }
};

}  // namespace

void WindowsEngineSystem::Pause(std::uint32_t milliseconds) {
    Sleep(milliseconds);
}

bool WindowsEngineSystem::IsReadable(const void* memory, std::uintptr_t size) {
    constexpr DWORD kUnreadable = PAGE_NOACCESS | PAGE_GUARD;
    auto next = reinterpret_cast<std::uintptr_t>(memory);
    if (size > UINTPTR_MAX - next) {
        return false;
    }
    const std::uintptr_t end = next + size;
    while (next < end) {
        MEMORY_BASIC_INFORMATION region{};
        // NOLINTNEXTLINE(performance-no-int-to-ptr): addresses are what this is about
        if (VirtualQuery(reinterpret_cast<const void*>(next), &region, sizeof region) == 0 ||
            region.State != MEM_COMMIT || (region.Protect & kUnreadable) != 0) {
            return false;
        }
        next = reinterpret_cast<std::uintptr_t>(region.BaseAddress) + region.RegionSize;
    }
    return true;
}

bool WindowsEngineSystem::IsScanReadable(const char* text, std::uintptr_t length, std::uintptr_t behind) {
    if (!TakeAnnouncement(text, length)) {
        return EngineSystem::IsScanReadable(text, length, behind);
    }
    // The library vouches for the text and its terminator; what follows it in the same page can be read as well.
    const auto terminator = reinterpret_cast<std::uintptr_t>(text) + length;
    return terminator / kPageSize == (terminator + behind) / kPageSize || IsReadable(text + length, 1 + behind);
}

void WindowsEngineSystem::Announce(const void* text, std::uintptr_t length) {
    announced_[announcements_++ % announced_.size()] = AnnouncementOf(text, length);
}

bool WindowsEngineSystem::TakeAnnouncement(const void* text, std::uintptr_t length) {
    return std::ranges::any_of(announced_, [key = AnnouncementOf(text, length)](std::atomic<std::uint64_t>& announced) {
        std::uint64_t expected = key;
        return announced == key && announced.compare_exchange_strong(expected, 0);
    });
}

ComputerModel ThisMachine::Model() {
    try {
        return ModelOf(FirmwareProductName());
    } catch (const QuarlinException&) {
        // A machine without a name is none of ours.
        return ComputerModel::kOther;
    }
}

ScannerHardware ThisMachine::Hardware() {
    try {
        device::deviceFamily.Initialize();
    } catch (const QuarlinException&) {
        // Without the device-check library no scanner is reported.
        return ScannerHardware::kNone;
    }
    const DeviceCheckUse use;
    return AvailableScanner();
}

WaveSound::~WaveSound() {
    // What it plays goes on by itself.
    library_.KeepLoaded();
}

void WaveSound::Play(const std::wstring& file) {
    if (!library_.IsLoaded()) {
        library_ = LoadedLibrary(systemLibraries, L"winmm.dll");
    }
    BOOL (*playSound)(const wchar_t* file, HMODULE module, DWORD flags) = nullptr;
    if (library_.IsLoaded() && library_.Find("PlaySoundW", playSound)) {
        playSound(file.c_str(), nullptr, SND_FILENAME | SND_ASYNC | SND_NODEFAULT);
    }
}

std::wstring DefaultSoundFile() {
    std::array<wchar_t, kPathSize> folder{};
    GetWindowsDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
    return std::wstring(folder.data()) + L"\\media\\chimes.wav";
}

std::optional<std::wstring> ExistingSoundFile(const wchar_t* path) {
    // A path that fits has parts that fit.
    if (path == nullptr || wcsnlen(path, kPathSize) == kPathSize) {
        return std::nullopt;
    }
    std::array<wchar_t, kPathSize> drive{};
    std::array<wchar_t, kPathSize> folder{};
    std::array<wchar_t, kPathSize> name{};
    std::array<wchar_t, kPathSize> extension{};
    std::array<wchar_t, kPathSize> joined{};
    if (_wsplitpath_s(path, drive.data(), drive.size(), folder.data(), folder.size(), name.data(), name.size(),
                      extension.data(), extension.size()) != 0 ||
        _wmakepath_s(joined.data(), joined.size(), drive.data(), folder.data(), name.data(), extension.data()) != 0 ||
        !PathFileExistsW(joined.data())) {
        return std::nullopt;
    }
    return joined.data();
}

}  // namespace quarlin::bcr
