// SPDX-License-Identifier: Apache-2.0
// Listing device paths, opening and closing, and feature reports. What a swipe needs is in
// usb_hid_dev_read_test_win.cpp.
#include "usb_hid_dev_reader_win.h"

#include <array>
#include <chrono>
#include <cwctype>
#include <memory>

#include "support/resource_count_win.h"

namespace quarlin::msr {
namespace {

using test::FeatureRequest;
using test::Report;

BOOL WINAPI DetailInCapitals(HDEVINFO set, PSP_DEVICE_INTERFACE_DATA data, PSP_DEVICE_INTERFACE_DETAIL_DATA_W detail,
                             DWORD size, PDWORD needed, PSP_DEVINFO_DATA device) {
    const BOOL result = test::SystemFunction<decltype(SetupDiGetDeviceInterfaceDetailW)>(
        "setupapi.dll", "SetupDiGetDeviceInterfaceDetailW")(set, data, detail, size, needed, device);
    if (result && detail != nullptr) {
        for (wchar_t* c = detail->DevicePath; *c != 0; ++c) {
            *c = static_cast<wchar_t>(std::towupper(*c));
        }
    }
    return result;
}

HDEVINFO WINAPI NoList(const GUID*, PCWSTR, HWND, DWORD) {
    return nullptr;
}

TEST_F(UsbHidDevReader, HasItsPathAppendedInSmallLetters) {
    const OwnHook hook("SETUPAPI.dll", "SetupDiGetDeviceInterfaceDetailW", &DetailInCapitals);
    std::vector<std::wstring> paths{L"BEFORE"};
    EXPECT_TRUE(device_.EnumerateDevicePaths(paths));
    const std::size_t found = paths.size() - 1;
    EXPECT_EQ(std::count_if(paths.begin() + 1, paths.end(), &IsMagneSafePath), 1);
    for (auto path = paths.begin() + 1; path != paths.end(); ++path) {
        EXPECT_EQ(std::count_if(path->begin(), path->end(), [](wchar_t c) { return std::iswupper(c); }), 0);
    }
    EXPECT_TRUE(device_.EnumerateDevicePaths(paths));
    ASSERT_EQ(paths.size(), 1 + 2 * found);
    EXPECT_EQ(paths[0], L"BEFORE");
    EXPECT_TRUE(std::equal(paths.begin() + 1, paths.begin() + 1 + static_cast<std::ptrdiff_t>(found),
                           paths.begin() + 1 + static_cast<std::ptrdiff_t>(found)));
}

TEST(UsbHidDevPaths, AreNoneAndThatIsASuccessOnAMachineWithoutDevices) {
    const OwnHook hook("SETUPAPI.dll", "SetupDiGetClassDevsW", &NoList);
    CUsbHidDev device;
    std::vector<std::wstring> paths{L"before"};
    EXPECT_TRUE(device.EnumerateDevicePaths(paths));
    EXPECT_EQ(paths, std::vector<std::wstring>{L"before"});
    EXPECT_TRUE(device.UpdateDeviceList());
}

DWORD lastSleep;

void WINAPI CountedSleep(DWORD milliseconds) {
    lastSleep = milliseconds;
    test::SystemFunction<decltype(Sleep)>("kernel32.dll", "Sleep")(milliseconds);
}

TEST(UsbHidDevClosed, RefusesEverythingButCloseAndCancelRead) {
    const OwnHook hook("KERNEL32.dll", "Sleep", &CountedSleep);
    CUsbHidDev device;
    std::array<std::uint8_t, 25> report{};
    std::vector<std::uint8_t> reply;
    HIDP_CAPS caps{};
    PHIDP_PREPARSED_DATA data = nullptr;
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(device.IsOpen());
        EXPECT_FALSE(device.SetFeatureReport(report.data(), 0));
        EXPECT_FALSE(device.GetFeatureReport(reply));
        EXPECT_FALSE(device.GetFeatureReportRaw(report.data(), 0));
        EXPECT_FALSE(device.GetCaps(&caps));
        EXPECT_FALSE(device.GetPreparsedData(&data));
        EXPECT_FALSE(device.ReadInputReport());
        EXPECT_TRUE(device.CancelRead());
        EXPECT_TRUE(device.Close());
        EXPECT_TRUE(device.Uninitialize());
    }
    EXPECT_EQ(lastSleep, 0U);
}

TEST_F(OpenUsbHidDev, TakesAtLeastAFifthOfASecondToClose) {
    EXPECT_TRUE(device_.IsOpen());
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(device_.Close());
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(200));
    EXPECT_FALSE(device_.IsOpen());
    HIDP_CAPS caps{};
    EXPECT_FALSE(device_.GetCaps(&caps));
    ASSERT_TRUE(device_.Open(ReaderPath()));
    EXPECT_TRUE(device_.GetCaps(&caps));
    EXPECT_EQ(caps.FeatureReportByteLength, kFeatureLength);
    EXPECT_EQ(caps.InputReportByteLength, 888);
}

TEST_F(OpenUsbHidDev, RefusesNullDestinations) {
    EXPECT_FALSE(device_.GetCaps(nullptr));
    EXPECT_FALSE(device_.GetPreparsedData(nullptr));
    EXPECT_FALSE(device_.SetFeatureReport(nullptr, kFeatureLength));
    EXPECT_FALSE(device_.GetFeatureReportRaw(nullptr, kFeatureLength));
    EXPECT_TRUE(reader_.TakeFeatureRequests().empty());
}

TEST_F(OpenUsbHidDev, FillsAShorterFeatureReportUpAndRefusesALongerOne) {
    Report bytes(kFeatureLength + 1, 0xA5);
    bytes[0] = 0;
    for (const std::uint32_t length : {kFeatureLength + 1, 2 * kFeatureLength, 0xFFFFFFFFU}) {
        EXPECT_FALSE(device_.SetFeatureReport(bytes.data(), length)) << length;
    }
    EXPECT_TRUE(reader_.TakeFeatureRequests().empty());
    for (const std::uint32_t length : {0U, 1U, 4U, kFeatureLength - 1, kFeatureLength}) {
        Report expected(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
        expected.resize(kFeatureLength);
        EXPECT_TRUE(device_.SetFeatureReport(bytes.data(), length)) << length;
        EXPECT_EQ(reader_.TakeFeatureRequests(), (std::vector<FeatureRequest>{{FeatureRequest::Kind::kSet, expected}}));
    }
}

TEST_F(OpenUsbHidDev, GetsAFeatureReportOfItsExactLengthAloneAndAsksTheDeviceForNoOther) {
    const Report command{0x00, 0x15, 0x00};
    ASSERT_TRUE(device_.SetFeatureReport(command.data(), static_cast<std::uint32_t>(command.size())));
    reader_.TakeFeatureRequests();
    Report buffer(kFeatureLength + 1);
    const Report untouched = buffer;
    for (const std::uint32_t length : {0U, 1U, kFeatureLength - 1, kFeatureLength + 1, 0xFFFFFFFFU}) {
        EXPECT_FALSE(device_.GetFeatureReportRaw(buffer.data(), length)) << length;
    }
    EXPECT_EQ(buffer, untouched);
    EXPECT_TRUE(reader_.TakeFeatureRequests().empty());
    EXPECT_TRUE(device_.GetFeatureReportRaw(buffer.data(), kFeatureLength));
    EXPECT_EQ(buffer[3], 3) << "the security level";
    EXPECT_EQ(reader_.TakeFeatureRequests().size(), 1U);
    // The report takes its length from the device, whatever it was before.
    Report whole(3, 0xA5);
    EXPECT_TRUE(device_.GetFeatureReport(whole));
    EXPECT_EQ(whole, Report(buffer.begin(), buffer.end() - 1));
}

TEST_F(OpenUsbHidDev, TellsWhenTheDeviceRefusesATransfer) {
    const Report command{0x00, 0x15, 0x00};
    const auto refuse = [&](sim::HidRequest request) {
        reader_.Device().AddFault({.answer = sim::HidAnswer::kRefuse, .request = request});
    };
    refuse(sim::HidRequest::kSetFeature);
    EXPECT_FALSE(device_.SetFeatureReport(command.data(), static_cast<std::uint32_t>(command.size())));
    refuse(sim::HidRequest::kGetFeature);
    Report reply;
    EXPECT_FALSE(device_.GetFeatureReport(reply));
    EXPECT_TRUE(device_.SetFeatureReport(command.data(), static_cast<std::uint32_t>(command.size())));
    EXPECT_TRUE(device_.GetFeatureReport(reply));
}

// The steps of opening: which call of a function fails, counted from 1.
struct Step {
    const char* name;
    const char* dll;
    const char* function;
    void (*replacement)();
    int call;
};

int callsUntilFailure;
int filesOpened;

bool FailsNow() {
    return callsUntilFailure > 0 && --callsUntilFailure == 0;
}

HANDLE WINAPI FailingPort(HANDLE file, HANDLE existing, ULONG_PTR key, DWORD threads) {
    return FailsNow() ? nullptr
                      : test::SystemFunction<decltype(CreateIoCompletionPort)>(
                            "kernel32.dll", "CreateIoCompletionPort")(file, existing, key, threads);
}

HANDLE WINAPI CountedFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                          DWORD flags, HANDLE pattern) {
    ++filesOpened;
    return test::SystemFunction<decltype(CreateFileW)>("kernel32.dll", "CreateFileW")(path, access, share, security,
                                                                                      disposition, flags, pattern);
}

HANDLE WINAPI FailingFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                          DWORD flags, HANDLE pattern) {
    return FailsNow() ? INVALID_HANDLE_VALUE : CountedFile(path, access, share, security, disposition, flags, pattern);
}

BOOLEAN WINAPI FailingPreparsedData(HANDLE file, PHIDP_PREPARSED_DATA* data) {
    return FailsNow()
               ? FALSE
               : test::SystemFunction<decltype(HidD_GetPreparsedData)>("hid.dll", "HidD_GetPreparsedData")(file, data);
}

NTSTATUS WINAPI FailingCaps(PHIDP_PREPARSED_DATA data, PHIDP_CAPS caps) {
    return FailsNow() ? HIDP_STATUS_INVALID_PREPARSED_DATA
                      : test::SystemFunction<decltype(HidP_GetCaps)>("hid.dll", "HidP_GetCaps")(data, caps);
}

template <typename Function>
Step MakeStep(const char* name, const char* dll, const char* function, Function* replacement, int call = 1) {
    return {name, dll, function, reinterpret_cast<void (*)()>(replacement), call};
}

void PrintTo(const Step& step, std::ostream* out) {
    *out << step.name;
}

class UsbHidDevOpening : public UsbHidDevReader, public ::testing::WithParamInterface<Step> {
  protected:
    const OwnHook hook_{GetParam().dll, GetParam().function, GetParam().replacement};
};

TEST_P(UsbHidDevOpening, FailsAndLeavesTheObjectClosedAndNothingBehind) {
    const std::wstring path = ReaderPath();
    const auto expectFails = [&] {
        callsUntilFailure = GetParam().call;
        EXPECT_FALSE(device_.Open(path));
        EXPECT_EQ(callsUntilFailure, 0);
        EXPECT_FALSE(device_.IsOpen());
    };
    expectFails();
    test::CountOpenHandles();
    const std::size_t handles = test::CountOpenHandles();
    expectFails();
    EXPECT_EQ(test::CountOpenHandles(), handles);
    HIDP_CAPS caps{};
    EXPECT_FALSE(device_.GetCaps(&caps));
    EXPECT_FALSE(device_.ReadInputReport());
    EXPECT_TRUE(reader_.TakeFeatureRequests().empty());
    EXPECT_TRUE(device_.Open(path));
    Report reply;
    EXPECT_TRUE(device_.GetFeatureReport(reply));
}

INSTANTIATE_TEST_SUITE_P(
    Without, UsbHidDevOpening,
    ::testing::Values(MakeStep("Port", "KERNEL32.dll", "CreateIoCompletionPort", &FailingPort),
                      MakeStep("File", "KERNEL32.dll", "CreateFileW", &FailingFile),
                      MakeStep("Binding", "KERNEL32.dll", "CreateIoCompletionPort", &FailingPort, 2),
                      MakeStep("PreparsedData", "HID.DLL", "HidD_GetPreparsedData", &FailingPreparsedData),
                      MakeStep("Capabilities", "HID.DLL", "HidP_GetCaps", &FailingCaps)),
    [](const auto& test) { return test.param.name; });

TEST_F(OpenUsbHidDev, WithoutAPortForAnotherOpeningStaysAsItWas) {
    const OwnHook port("KERNEL32.dll", "CreateIoCompletionPort", &FailingPort);
    const OwnHook file("KERNEL32.dll", "CreateFileW", &CountedFile);
    filesOpened = 0;
    callsUntilFailure = 1;
    EXPECT_FALSE(device_.Open(ReaderPath()));
    EXPECT_EQ(filesOpened, 0);
    EXPECT_TRUE(device_.IsOpen());
    Report reply;
    EXPECT_TRUE(device_.GetFeatureReport(reply));
}

TEST_F(UsbHidDevReader, IsNotOpenedByThePathOfNoDevice) {
    test::CountOpenHandles();
    const std::size_t handles = test::CountOpenHandles();
    EXPECT_FALSE(device_.Open(ReaderPath() + L"x"));
    EXPECT_FALSE(device_.Open(L""));
    EXPECT_FALSE(device_.IsOpen());
    EXPECT_EQ(test::CountOpenHandles(), handles);
}

BOOL WINAPI NoLock(LPCRITICAL_SECTION, DWORD, DWORD) {
    return FALSE;
}

TEST_F(UsbHidDevReader, WorksUnlockedWithoutALockButKeepsNoList) {
    std::unique_ptr<CUsbHidDev> unlocked;
    {
        const OwnHook hook("KERNEL32.dll", "InitializeCriticalSectionEx", &NoLock);
        unlocked = std::make_unique<CUsbHidDev>();
    }
    EXPECT_FALSE(unlocked->UpdateDeviceList());
    EXPECT_TRUE(device_.UpdateDeviceList());
    EXPECT_TRUE(unlocked->SetListener(&listener_));
    ASSERT_TRUE(unlocked->Open(ReaderPath()));
    EXPECT_TRUE(unlocked->IsOpen());
    const Report report = reader_.Swipe();
    // What opening has left on the port may come first.
    while (listener_.reports.empty()) {
        ASSERT_TRUE(unlocked->ReadInputReport());
    }
    EXPECT_EQ(listener_.reports, std::vector<Report>{report});
    EXPECT_TRUE(unlocked->Close());
}

}  // namespace
}  // namespace quarlin::msr
