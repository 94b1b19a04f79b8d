// SPDX-License-Identifier: Apache-2.0
#include "gps/serial_pair_win.h"

#include <array>
#include <stdexcept>

#include "support/wait_win.h"

namespace quarlin::test {
namespace {

// Each cable is named by its near end; the far end has the next number. COM3 has the mutex QuarlinTestCable3.
constexpr std::array<int, 2> kNullModemPorts{3, 5};
constexpr int kUsbPort = 7;

UniqueHandle CableMutex(int port) {
    const std::wstring name = L"Global\\QuarlinTestCable" + std::to_wstring(port);
    return UniqueHandle(CreateMutexW(nullptr, FALSE, name.c_str()));
}

HANDLE Open(int port, DWORD access) {
    const std::wstring name = L"COM" + std::to_wstring(port);
    return CreateFileW(name.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
}

}  // namespace

SerialPair::SerialPair(Cable cable) : cable_(cable) {
    std::array<int, 2> ports = kNullModemPorts;
    DWORD count = 2;
    if (cable == Cable::kUsb) {
        ports[0] = kUsbPort;
        count = 1;
    }
    std::array<UniqueHandle, 2> mutexes;
    std::array<HANDLE, 2> handles{};
    for (DWORD i = 0; i < count; ++i) {
        mutexes[i] = CableMutex(ports[i]);
        handles[i] = mutexes[i].Get();
    }
    const DWORD result = WaitForMultipleObjects(count, handles.data(), FALSE, 60000);
    DWORD taken = result - WAIT_OBJECT_0;
    if (result >= WAIT_ABANDONED_0 && result < WAIT_ABANDONED_0 + count) {
        // Another test program ended in the middle; the system has closed its ends of the cable.
        taken = result - WAIT_ABANDONED_0;
    }
    if (taken >= count) {
        throw std::runtime_error("no serial cable became free");
    }
    turn_ = std::move(mutexes[taken]);
    port_ = ports[taken];
    try {
        OpenFarEnd();
    } catch (...) {
        ReleaseMutex(turn_.Get());
        throw;
    }
}

SerialPair::~SerialPair() {
    farEnd_.Reset();
    ReleaseMutex(turn_.Get());
}

void SerialPair::Send(std::string_view bytes) {
    while (!bytes.empty()) {
        DWORD written = 0;
        if (!WriteFile(farEnd_.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) {
            throw std::runtime_error("writing at the far end failed with error " + std::to_string(GetLastError()));
        }
        if (written == 0) {
            throw std::runtime_error("nobody reads at the near end");
        }
        bytes.remove_prefix(written);
    }
}

void SerialPair::OpenFarEnd() {
    farEnd_.Reset(Open(port_ + 1, GENERIC_READ | GENERIC_WRITE));
    if (!farEnd_.Valid()) {
        throw std::runtime_error("COM" + std::to_string(port_ + 1) + " does not open");
    }
    COMMTIMEOUTS timeouts{};
    timeouts.WriteTotalTimeoutConstant = kDeadline;
    if (!SetCommTimeouts(farEnd_.Get(), &timeouts)) {
        throw std::runtime_error("the far end takes no time-outs");
    }
    if (cable_ == Cable::kUsb) {
        Await("the USB receiver to be plugged in", [this] { return OpenNearEnd().Valid(); });
    }
}

void SerialPair::CloseFarEnd() {
    farEnd_.Reset();
    if (cable_ == Cable::kUsb) {
        Await("the USB receiver to be unplugged", [this] { return !OpenNearEnd().Valid(); });
    }
}

UniqueHandle SerialPair::OpenNearEnd() const {
    return UniqueHandle(Open(port_, GENERIC_READ));
}

}  // namespace quarlin::test
