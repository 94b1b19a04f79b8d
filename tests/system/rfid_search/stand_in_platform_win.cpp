// SPDX-License-Identifier: Apache-2.0
#include "rfid_search/stand_in_platform_win.h"

#include <setupapi.h>
extern "C" {
#include <hidsdi.h>
}

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>

namespace quarlin::test {
namespace {

constexpr GUID kHidClass{0x4D1E55B2, 0xF16F, 0x11CF, {0x88, 0xCB, 0x00, 0x11, 0x11, 0x00, 0x00, 0x30}};
// No handle of the system looks like these.
constexpr uintptr_t kFirstHandle = 0x7E5700000;

StandInPlatform* platform;
std::mutex mutex;
std::vector<std::string> calls;
std::map<HANDLE, const StandInInterface*> openHandles;
uintptr_t handlesGiven;
int inUse;
char listToken;

void Log(const std::string& call) {
    const std::lock_guard lock(mutex);
    calls.push_back(call);
}

std::string NumberOf(HANDLE handle) {
    return std::to_string(reinterpret_cast<uintptr_t>(handle) - kFirstHandle);
}

const StandInInterface* DeviceOf(HANDLE handle) {
    const std::lock_guard lock(mutex);
    const auto device = openHandles.find(handle);
    return device == openHandles.end() ? nullptr : device->second;
}

BOOL Refuse(DWORD error) {
    SetLastError(error);
    return FALSE;
}

void NTAPI GetHidGuid(GUID* guid) {
    *guid = kHidClass;
}

HDEVINFO WINAPI GetClassDevs(const GUID* interfaceClass, PCSTR enumerator, HWND parent, DWORD flags) {
    Log("list");
    const bool asExpected = IsEqualGUID(*interfaceClass, kHidClass) && enumerator == nullptr && parent == nullptr &&
                            flags == (DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    if (!platform->lists || !asExpected) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    ++inUse;
    return &listToken;
}

BOOL WINAPI EnumDeviceInterfaces(HDEVINFO list, SP_DEVINFO_DATA*, const GUID* interfaceClass, DWORD index,
                                 SP_DEVICE_INTERFACE_DATA* data) {
    if (list != &listToken || !IsEqualGUID(*interfaceClass, kHidClass) || data->cbSize != sizeof *data ||
        index >= platform->interfaces.size()) {
        return Refuse(ERROR_NO_MORE_ITEMS);
    }
    data->Reserved = index;
    return TRUE;
}

BOOL WINAPI GetInterfaceDetail(HDEVINFO, SP_DEVICE_INTERFACE_DATA* data, SP_DEVICE_INTERFACE_DETAIL_DATA_A* detail,
                               DWORD size, DWORD* needed, SP_DEVINFO_DATA*) {
    const StandInInterface& device = platform->interfaces[data->Reserved];
    const auto bytes =
        static_cast<DWORD>(offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath) + device.path.size() + 1);
    if (detail == nullptr && size == 0) {
        *needed = bytes;
        SetLastError(device.sizeQueryError);
        return device.sizeQueryError == ERROR_SUCCESS;
    }
    if (!device.tellsPath || size < bytes || detail->cbSize != sizeof *detail) {
        return Refuse(ERROR_INVALID_DATA);
    }
    std::memcpy(detail->DevicePath, device.path.c_str(), device.path.size() + 1);
    return TRUE;
}

BOOL WINAPI DestroyList(HDEVINFO list) {
    Log("destroy list");
    inUse -= list == &listToken ? 1 : 0;
    return list == &listToken;
}

HANDLE WINAPI Open(LPCSTR path, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES*, DWORD disposition, DWORD, HANDLE) {
    const bool both = access == (GENERIC_READ | GENERIC_WRITE);
    Log(std::string("open ") + path + (both ? " rw" : access == GENERIC_READ ? " r" : " ?"));
    const auto device = std::ranges::find(platform->interfaces, std::string(path), &StandInInterface::path);
    if (device == platform->interfaces.end() || sharing != 0 || disposition != OPEN_EXISTING ||
        !(both ? device->opensForBoth : device->opensForReading)) {
        SetLastError(ERROR_SHARING_VIOLATION);
        return INVALID_HANDLE_VALUE;
    }
    const std::lock_guard lock(mutex);
    auto* const handle = reinterpret_cast<HANDLE>(kFirstHandle + ++handlesGiven);
    openHandles.emplace(handle, &*device);
    return handle;
}

BOOL WINAPI Close(HANDLE handle) {
    Log("close " + NumberOf(handle));
    const std::lock_guard lock(mutex);
    if (!platform->closes || openHandles.erase(handle) == 0) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    return TRUE;
}

BOOLEAN NTAPI GetAttributes(HANDLE handle, HIDD_ATTRIBUTES* attributes) {
    const StandInInterface* const device = DeviceOf(handle);
    if (device == nullptr || !device->tellsAttributes || attributes->Size != sizeof *attributes) {
        return FALSE;
    }
    attributes->VendorID = device->vendor;
    attributes->ProductID = device->product;
    return TRUE;
}

BOOLEAN NTAPI GetPreparsedData(HANDLE handle, PHIDP_PREPARSED_DATA* data) {
    const StandInInterface* const device = DeviceOf(handle);
    if (device == nullptr || !device->tellsReports) {
        return FALSE;
    }
    ++inUse;
    *data = reinterpret_cast<PHIDP_PREPARSED_DATA>(const_cast<StandInInterface*>(device));
    return TRUE;
}

NTSTATUS NTAPI GetCaps(PHIDP_PREPARSED_DATA data, HIDP_CAPS* capabilities) {
    const auto* const device = reinterpret_cast<const StandInInterface*>(data);
    if (!device->tellsCapabilities) {
        return HIDP_STATUS_INVALID_PREPARSED_DATA;
    }
    capabilities->OutputReportByteLength = device->outputReportLength;
    return HIDP_STATUS_SUCCESS;
}

BOOLEAN NTAPI FreePreparsedData(PHIDP_PREPARSED_DATA) {
    --inUse;
    return TRUE;
}

// The frame alone; zeros that fill the report up are not worth a line.
BOOLEAN NTAPI SetOutputReport(HANDLE handle, void* report, ULONG size) {
    const auto* const bytes = static_cast<const unsigned char*>(report);
    std::string text = "send " + std::to_string(size) + ':';
    for (ULONG i = 0; i < bytes[1] && i < size; ++i) {
        char byte[4];
        std::snprintf(byte, sizeof byte, " %02X", bytes[i]);
        text += byte;
    }
    const bool filledUp = std::all_of(bytes + std::min<ULONG>(bytes[1], size), bytes + size,
                                      [](unsigned char byte) { return byte == 0; });
    Log(text + (filledUp ? "" : " and rubbish"));
    return DeviceOf(handle) != nullptr && platform->sends;
}

BOOL WINAPI Read(HANDLE handle, void* buffer, DWORD size, DWORD* received, OVERLAPPED* overlapped) {
    Log("read " + std::to_string(size));
    platform->onRead();
    if (DeviceOf(handle) == nullptr || overlapped != nullptr || platform->replies.empty() ||
        platform->replies.front().size() > size) {
        return Refuse(ERROR_DEVICE_NOT_CONNECTED);
    }
    std::ranges::copy(platform->replies.front(), static_cast<unsigned char*>(buffer));
    *received = static_cast<DWORD>(platform->replies.front().size());
    platform->replies.pop_front();
    Log("reply");
    return TRUE;
}

}  // namespace

StandInPlatform::StandInPlatform() {
    platform = this;
    calls.clear();
    openHandles.clear();
    handlesGiven = 0;
    inUse = 0;
    const auto hook = [this](const char* dll, const char* function, auto* replacement) {
        hooks_.push_back(std::make_unique<ImportHook>(dll, function, replacement));
    };
    hook("HID.DLL", "HidD_GetHidGuid", &GetHidGuid);
    hook("HID.DLL", "HidD_GetAttributes", &GetAttributes);
    hook("HID.DLL", "HidD_GetPreparsedData", &GetPreparsedData);
    hook("HID.DLL", "HidD_FreePreparsedData", &FreePreparsedData);
    hook("HID.DLL", "HidP_GetCaps", &GetCaps);
    hook("HID.DLL", "HidD_SetOutputReport", &SetOutputReport);
    hook("SETUPAPI.dll", "SetupDiGetClassDevsA", &GetClassDevs);
    hook("SETUPAPI.dll", "SetupDiEnumDeviceInterfaces", &EnumDeviceInterfaces);
    hook("SETUPAPI.dll", "SetupDiGetDeviceInterfaceDetailA", &GetInterfaceDetail);
    hook("SETUPAPI.dll", "SetupDiDestroyDeviceInfoList", &DestroyList);
    hook("KERNEL32.dll", "CreateFileA", &Open);
    hook("KERNEL32.dll", "CloseHandle", &Close);
    hook("KERNEL32.dll", "ReadFile", &Read);
}

StandInPlatform::~StandInPlatform() {
    hooks_.clear();
    platform = nullptr;
}

std::vector<std::string> StandInPlatform::Calls() const {
    const std::lock_guard lock(mutex);
    return calls;
}

void StandInPlatform::ForgetCalls() {
    const std::lock_guard lock(mutex);
    calls.clear();
}

std::set<HANDLE> StandInPlatform::OpenHandles() const {
    const std::lock_guard lock(mutex);
    std::set<HANDLE> handles;
    for (const auto& [handle, device] : openHandles) {
        handles.insert(handle);
    }
    return handles;
}

int StandInPlatform::ListsAndReportsInUse() const {
    return inUse;
}

}  // namespace quarlin::test
