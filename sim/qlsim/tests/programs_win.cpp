// SPDX-License-Identifier: Apache-2.0
#include "programs_win.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "edge/system_error_win.h"

namespace quarlin::sim::testing {
namespace {

std::filesystem::path SimFolder() {
    std::array<wchar_t, MAX_PATH> self{};
    GetModuleFileNameW(nullptr, self.data(), static_cast<DWORD>(self.size()));
    return std::filesystem::path(self.data()).parent_path().parent_path() / "sim";
}

std::wstring Temporary(const std::wstring& name) {
    std::array<wchar_t, MAX_PATH> folder{};
    GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
    return folder.data() + (L"qlsim-test-" + std::to_wstring(GetCurrentProcessId()) + L"-" + name);
}

HANDLE OpenPort(const std::wstring& name) {
    return CreateFileW(name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
}

// The host's folder in which a link stands for each port that is there, as the machine names the device of a port that
// always is.
std::wstring PortsFolder() {
    std::array<wchar_t, MAX_PATH> device{};
    DWORD size = sizeof device;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, L"Software\\Wine\\Ports", L"COM8", RRF_RT_REG_SZ, nullptr, device.data(),
                     &size) != ERROR_SUCCESS) {
        throw std::runtime_error("the machine does not tell the device of COM8");
    }
    return L"Z:" + std::filesystem::path(device.data()).parent_path().wstring();
}

// Tells when ports come and go.
class PortsChange {
  public:
    PortsChange() {
        if (notification_ == INVALID_HANDLE_VALUE) {
            throw std::runtime_error("the folder of the ports cannot be watched: " + SystemMessage(GetLastError()));
        }
    }
    PortsChange(const PortsChange&) = delete;
    PortsChange& operator=(const PortsChange&) = delete;
    ~PortsChange() { FindCloseChangeNotification(notification_); }

    // Looks until the condition holds, at once and after each change. False when it does not come true in time.
    template <typename Condition>
    bool WaitUntil(Condition condition) {
        const ULONGLONG deadline = GetTickCount64() + kPatience;
        while (!condition()) {
            const ULONGLONG now = GetTickCount64();
            if (now >= deadline ||
                WaitForSingleObject(notification_, static_cast<DWORD>(deadline - now)) != WAIT_OBJECT_0 ||
                !FindNextChangeNotification(notification_)) {
                return condition();
            }
        }
        return true;
    }

  private:
    HANDLE notification_ = FindFirstChangeNotificationW(PortsFolder().c_str(), FALSE, FILE_NOTIFY_CHANGE_FILE_NAME);
};

}  // namespace

Program::Program(const std::wstring& name, const std::vector<std::string>& arguments) {
    static int count = 0;
    outputFile_ = Temporary(L"output-" + std::to_wstring(++count));
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const OwnedHandle output(CreateFileW(outputFile_.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                         &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    std::wstring line = L"\"" + (SimFolder() / name).wstring() + L"\"";
    for (const std::string& argument : arguments) {
        line += L" \"" + Wide(argument) + L"\"";
    }
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output.get();
    startup.hStdError = output.get();
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &started)) {
        throw std::runtime_error(Narrow(line) + " cannot be started: " + SystemMessage(GetLastError()));
    }
    CloseHandle(started.hThread);
    process_ = OwnedHandle(started.hProcess);
}

Program::~Program() {
    if (WaitForSingleObject(process_.get(), 0) != WAIT_OBJECT_0) {
        TerminateProcess(process_.get(), 99);
        WaitForSingleObject(process_.get(), kPatience);
    }
    DeleteFileW(outputFile_.c_str());
}

std::optional<DWORD> Program::Wait() {
    DWORD status = 0;
    if (WaitForSingleObject(process_.get(), kPatience) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(process_.get(), &status)) {
        return std::nullopt;
    }
    return status;
}

std::string Program::Output() const {
    std::ifstream stream(std::filesystem::path(outputFile_), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

TemporaryFile::TemporaryFile(const std::wstring& name, const std::string& text) : path_(Temporary(name)) {
    std::ofstream(std::filesystem::path(path_), std::ios::binary) << text;
}

TemporaryFile::~TemporaryFile() {
    DeleteFileW(path_.c_str());
}

std::string TemporaryFile::Path() const {
    return Narrow(path_);
}

ApplicationPort::ApplicationPort(const std::wstring& name) {
    PortsChange().WaitUntil([&] {
        handle_ = OwnedHandle(OpenPort(name));
        return IsOpen();
    });
    COMMTIMEOUTS timeouts{};
    timeouts.ReadIntervalTimeout = 5;
    timeouts.ReadTotalTimeoutConstant = 50;
    SetCommTimeouts(handle_.get(), &timeouts);
}

bool ApplicationPort::ReadMore() {
    std::array<char, 512> buffer;
    DWORD count = 0;
    if (!ReadFile(handle_.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr)) {
        return false;
    }
    received_.append(buffer.data(), count);
    return true;
}

std::optional<std::string> ApplicationPort::ReadLine() {
    const ULONGLONG deadline = GetTickCount64() + kPatience;
    std::size_t end = received_.find("\r\n");
    for (; end == std::string::npos; end = received_.find("\r\n")) {
        if (GetTickCount64() >= deadline || !ReadMore()) {
            return std::nullopt;
        }
    }
    std::string line = received_.substr(0, end);
    received_.erase(0, end + 2);
    return line;
}

std::optional<std::string> ApplicationPort::ReadUntil(const std::string& text) {
    const ULONGLONG deadline = GetTickCount64() + kPatience;
    while (GetTickCount64() < deadline) {
        std::optional<std::string> line = ReadLine();
        if (!line || line->find(text) != std::string::npos) {
            return line;
        }
    }
    return std::nullopt;
}

bool ApplicationPort::WaitForLoss() {
    const ULONGLONG deadline = GetTickCount64() + kPatience;
    DCB settings{};
    settings.DCBlength = sizeof settings;
    while (GetCommState(handle_.get(), &settings)) {
        if (GetTickCount64() >= deadline) {
            return false;
        }
        // Waits for the device to say something or to go.
        ReadMore();
    }
    return true;
}

bool WaitUntilAbsent(const std::wstring& name) {
    return PortsChange().WaitUntil([&] { return !OwnedHandle(OpenPort(name)); });
}

}  // namespace quarlin::sim::testing
