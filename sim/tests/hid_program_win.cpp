// SPDX-License-Identifier: Apache-2.0
#include "hid_program_win.h"

#include <setupapi.h>
extern "C" {
#include <hidsdi.h>
}

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>

namespace quarlin::sim::testing {
namespace {

DWORD Result(BOOL done) {
    return done != FALSE ? 0 : GetLastError();
}

std::string Narrow(const wchar_t* text) {
    std::string narrow;
    for (; *text != 0; ++text) {
        narrow += static_cast<char>(*text);
    }
    return narrow;
}

// What the two descriptors begin with: a collection of a maker's own usage page, bytes from 0 to 255.
std::vector<std::uint8_t> BeginDescriptor() {
    return {0x06, 0x00, 0xff, 0x09, 0x01, 0xa1, 0x01, 0x15, 0x00, 0x26, 0xff, 0x00, 0x75, 0x08};
}

void AppendField(std::vector<std::uint8_t>& descriptor, std::uint8_t item, std::uint16_t bytes, std::uint8_t id = 0) {
    if (id != 0) {
        descriptor.insert(descriptor.end(), {0x85, id});
    }
    descriptor.insert(descriptor.end(), {0x96, static_cast<std::uint8_t>(bytes & 0xff),
                                         static_cast<std::uint8_t>(bytes >> 8), 0x09, 0x20, item, 0x02});
}

}  // namespace

std::vector<std::string> PresentPaths() {
    std::vector<std::string> paths;
    GUID hid;
    HidD_GetHidGuid(&hid);
    const HDEVINFO set = SetupDiGetClassDevsW(&hid, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    SP_DEVICE_INTERFACE_DATA interfaceData = {};
    interfaceData.cbSize = sizeof(interfaceData);
    for (DWORD i = 0; SetupDiEnumDeviceInterfaces(set, nullptr, &hid, i, &interfaceData) != FALSE; ++i) {
        DWORD size = 0;
        SetupDiGetDeviceInterfaceDetailW(set, &interfaceData, nullptr, 0, &size, nullptr);
        const auto bytes = std::make_unique<std::byte[]>(size);
        auto* const detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(bytes.get());
        detail->cbSize = sizeof(*detail);
        if (SetupDiGetDeviceInterfaceDetailW(set, &interfaceData, detail, size, nullptr, nullptr) != FALSE) {
            paths.push_back(Narrow(detail->DevicePath));
        }
    }
    SetupDiDestroyDeviceInfoList(set);
    return paths;
}

std::string PathOf(const HidIdentity& identity) {
    char collection[16] = "";
    if (identity.collection != 0) {
        std::snprintf(collection, sizeof(collection), "&col%02u", unsigned{identity.collection});
    }
    char path[200];
    std::snprintf(path, sizeof(path), R"(\\?\hid#vid_%04x&pid_%04x%s#%s#{4d1e55b2-f16f-11cf-88cb-001111000030})",
                  identity.vendor, identity.product, collection, identity.instance.c_str());
    return path;
}

bool IsPresent(const HidIdentity& identity) {
    const std::vector<std::string> paths = PresentPaths();
    return std::find(paths.begin(), paths.end(), PathOf(identity)) != paths.end();
}

std::size_t CountPresent(const std::string& part) {
    const std::vector<std::string> paths = PresentPaths();
    return static_cast<std::size_t>(std::count_if(
        paths.begin(), paths.end(), [&](const std::string& path) { return path.find(part) != std::string::npos; }));
}

HidProgram::HidProgram(const std::string& path)
    : file_(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                        OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr)),
      readDone_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      writeDone_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
}

HidProgram::~HidProgram() {
    file_.Close();
    if (pending_) {
        // The system writes to the buffer until then.
        WaitForSingleObject(readDone_.Get(), kPatience);
    }
}

DWORD HidProgram::SetFeature(Report report) const {
    return Result(HidD_SetFeature(file_.Get(), report.data(), static_cast<ULONG>(report.size())));
}

DWORD HidProgram::GetFeature(Report& report) const {
    return Result(HidD_GetFeature(file_.Get(), report.data(), static_cast<ULONG>(report.size())));
}

DWORD HidProgram::SetOutput(Report report) const {
    return Result(HidD_SetOutputReport(file_.Get(), report.data(), static_cast<ULONG>(report.size())));
}

DWORD HidProgram::Write(const Report& report, DWORD* written) {
    OVERLAPPED writing = {};
    writing.hEvent = writeDone_.Get();
    if (WriteFile(file_.Get(), report.data(), static_cast<DWORD>(report.size()), nullptr, &writing) == FALSE &&
        GetLastError() != ERROR_IO_PENDING) {
        return GetLastError();
    }
    DWORD count = 0;
    const DWORD error = Result(GetOverlappedResult(file_.Get(), &writing, &count, TRUE));
    if (written != nullptr) {
        *written = count;
    }
    return error;
}

void HidProgram::BeginRead(std::size_t length) {
    if (pending_) {
        return;
    }
    buffer_.assign(length, 0xee);
    reading_ = {};
    reading_.hEvent = readDone_.Get();
    readError_ = 0;
    pending_ = true;
    if (ReadFile(file_.Get(), buffer_.data(), static_cast<DWORD>(length), nullptr, &reading_) == FALSE &&
        GetLastError() != ERROR_IO_PENDING) {
        readError_ = GetLastError();
        pending_ = false;
    }
}

DWORD HidProgram::EndRead(Report& report, DWORD patience) {
    if (!pending_) {
        return readError_;
    }
    if (WaitForSingleObject(readDone_.Get(), patience) != WAIT_OBJECT_0) {
        return kStillPending;
    }
    pending_ = false;
    DWORD count = 0;
    const DWORD error = Result(GetOverlappedResult(file_.Get(), &reading_, &count, FALSE));
    report = buffer_;
    report.resize(count);
    return error;
}

DWORD HidProgram::Read(std::size_t length, Report& report, DWORD patience) {
    BeginRead(length);
    return EndRead(report, patience);
}

HidAnswer ScriptedDevice::Next() {
    Script script;
    {
        const std::lock_guard lock(mutex_);
        script = script_;
    }
    return script ? script() : HidAnswer::kDone;
}

HidAnswer ScriptedDevice::SetFeature(std::span<const std::uint8_t> report) {
    {
        const std::lock_guard lock(mutex_);
        features_.emplace_back(report.begin(), report.end());
    }
    return Next();
}

HidAnswer ScriptedDevice::GetFeature(std::span<std::uint8_t> report) {
    {
        const std::lock_guard lock(mutex_);
        asked_.emplace_back(report.begin(), report.end());
        std::copy_n(feature_.begin(), std::min(feature_.size(), report.size()), report.begin());
    }
    return Next();
}

HidAnswer ScriptedDevice::SetOutput(std::span<const std::uint8_t> report) {
    OutputScript script;
    {
        const std::lock_guard lock(mutex_);
        script = outputScript_;
        if (!script) {
            outputs_.emplace_back(report.begin(), report.end());
        }
    }
    return script ? script(Report(report.begin(), report.end())) : Next();
}

void ScriptedDevice::RunWithOutput(OutputScript script) {
    const std::lock_guard lock(mutex_);
    outputScript_ = std::move(script);
}

void ScriptedDevice::Run(Script script) {
    const std::lock_guard lock(mutex_);
    script_ = std::move(script);
}

void ScriptedDevice::HoldFeature(Report report) {
    const std::lock_guard lock(mutex_);
    feature_ = std::move(report);
}

std::vector<Report> ScriptedDevice::Features() const {
    const std::lock_guard lock(mutex_);
    return features_;
}

std::vector<Report> ScriptedDevice::Outputs() const {
    const std::lock_guard lock(mutex_);
    return outputs_;
}

std::vector<Report> ScriptedDevice::Asked() const {
    const std::lock_guard lock(mutex_);
    return asked_;
}

void Gate::Pass() {
    std::unique_lock lock(mutex_);
    reached_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return open_; });
}

void Gate::Open() {
    const std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
}

bool Gate::IsReached() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(10), [this] { return reached_; });
}

HidIdentity PlainIdentity(const std::string& instance) {
    HidIdentity identity{0x51a1, 0x0001, 0x0203, BeginDescriptor(), instance};
    AppendField(identity.reportDescriptor, 0x81, 887);
    AppendField(identity.reportDescriptor, 0x91, 63);
    AppendField(identity.reportDescriptor, 0xb1, 24);
    identity.reportDescriptor.push_back(0xc0);
    return identity;
}

HidIdentity NumberedIdentity(const std::string& instance) {
    HidIdentity identity{0x51a1, 0x0002, 0x0100, BeginDescriptor(), instance};
    AppendField(identity.reportDescriptor, 0x81, 8, 1);
    AppendField(identity.reportDescriptor, 0x81, 20, 2);
    AppendField(identity.reportDescriptor, 0x91, 16, 3);
    AppendField(identity.reportDescriptor, 0xb1, 10, 4);
    identity.reportDescriptor.push_back(0xc0);
    return identity;
}

Report MakeReport(std::uint8_t id, std::size_t length, std::uint8_t mark) {
    Report report(length, static_cast<std::uint8_t>(mark ^ 0x5a));
    report[0] = id;
    report[length - 1] = mark;
    return report;
}

}  // namespace quarlin::sim::testing
