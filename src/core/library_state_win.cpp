// SPDX-License-Identifier: Apache-2.0
#include "core/library_state.h"

#include "core/bounded_text.h"
#include "core/registry_win.h"

#include <shlobj.h>
#include <shlwapi.h>
#include <windows.h>
#include <array>
#include <cwchar>

namespace quarlin {
namespace {

constexpr const wchar_t* kSettingsKey = L"Software\\Norvane\\QLSDK";
constexpr const wchar_t* kLogFolder = L"\\Norvane\\QLSDK";
constexpr const wchar_t* kLogFile = L"\\qlsdk.log";

using Path = std::array<wchar_t, 260>;

bool Append(Path& path, const wchar_t* piece) {
    const std::size_t length = std::wcslen(path.data());
    return BoundedCopy(path.data() + length, static_cast<int>(path.size() - length), piece) == kTextOk;
}

bool IsLogEnabled() {
    DWORD enabled = 0;
    CReg registry;
    return registry.ReadDword(HKEY_LOCAL_MACHINE, kSettingsKey, L"EnableLog", &enabled) && enabled != 0;
}

// Empty when the system does not tell where common application data lie, or when the path is too long: opening it then
// fails, and logging stays off.
Path PrepareLogPath() {
    Path folder{};
    Path path{};
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, 0, folder.data())) ||
        !Append(folder, kLogFolder)) {
        return path;
    }
    if (!PathIsDirectoryW(folder.data())) {
        // One level only: a missing parent makes the opening of the file fail.
        CreateDirectoryW(folder.data(), nullptr);
    }
    return Append(path, folder.data()) && Append(path, kLogFile) ? path : Path{};
}

// The log is reserved: its file is kept open, positioned at its end, and nothing writes to it yet.
class LogFile {
  public:
    LogFile() = default;
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    ~LogFile() { Close(); }

    void Open(const wchar_t* path) {
        handle_ =
            CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle_ != INVALID_HANDLE_VALUE) {
            SetFilePointer(handle_, 0, nullptr, FILE_END);
        }
    }

    void Close() {
        if (handle_ != INVALID_HANDLE_VALUE) {
            CloseHandle(handle_);
            handle_ = INVALID_HANDLE_VALUE;
        }
    }

  private:
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

class AutoResetEvent {
  public:
    AutoResetEvent() = default;
    AutoResetEvent(const AutoResetEvent&) = delete;
    AutoResetEvent& operator=(const AutoResetEvent&) = delete;
    ~AutoResetEvent() { Close(); }

    void Create() { handle_ = CreateEventW(nullptr, FALSE, FALSE, nullptr); }

    void Close() {
        if (handle_ != nullptr) {
            CloseHandle(handle_);
            handle_ = nullptr;
        }
    }

    HANDLE get() const { return handle_; }

  private:
    HANDLE handle_ = nullptr;
};

LogFile logFile;
void* moduleHandle = nullptr;
AutoResetEvent emulatorEvent;

}  // namespace

void LoadLibraryState(void* loadedModule) {
    if (IsLogEnabled()) {
        logFile.Open(PrepareLogPath().data());
    }
    moduleHandle = loadedModule;
    emulatorEvent.Create();
}

void UnloadLibraryState() {
    logFile.Close();
    emulatorEvent.Close();
}

void* ModuleHandle() {
    return moduleHandle;
}

void* EmulatorEvent() {
    return emulatorEvent.get();
}

}  // namespace quarlin
