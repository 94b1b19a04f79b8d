// SPDX-License-Identifier: Apache-2.0
// Which HID devices are card readers: the text of their interface's path decides.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <setupapi.h>

#include <algorithm>
#include <atomic>
#include <cwctype>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "card/card_session_win.h"
#include "hid/report_descriptor.h"
#include "hidbus/hid_socket_win.h"
#include "support/import_hook_win.h"
#include "support/last_error.h"

namespace quarlin::test {
namespace {

// A HID device with the reports of a reader and an identity of its own. Whoever asks it anything is counted.
class OtherDevice : private sim::HidFunction {
  public:
    OtherDevice(std::uint16_t vendor, std::uint16_t product, std::string instance = {})
        : socket_(sim::MakeHidSocket()) {
        sim::HidIdentity identity = sim::magnesafe::MagneSafeReader(ReaderSettings{}).Identity();
        identity.vendor = vendor;
        identity.product = product;
        identity.instance = std::move(instance);
        socket_->Plug(identity, *this);
    }

    int Requests() const { return requests_; }

  private:
    sim::HidAnswer SetFeature(std::span<const std::uint8_t>) override { return Count(); }
    sim::HidAnswer GetFeature(std::span<std::uint8_t>) override { return Count(); }
    sim::HidAnswer SetOutput(std::span<const std::uint8_t>) override { return Count(); }
    sim::HidAnswer Count() {
        ++requests_;
        return sim::HidAnswer::kDone;
    }

    std::atomic<int> requests_ = 0;
    std::unique_ptr<sim::HidSocket> socket_;
};

TEST(CardRecognition, LeavesOtherDevicesAlone) {
    const CardReaderTurn turn;
    const CardSession session;
    const OtherDevice otherProduct(0x0801, 0x0012);
    const OtherDevice otherVendor(0x0802, 0x0011);
    const OtherDevice swapped(0x0011, 0x0801);
    const OtherDevice nearly(0x0801, 0x1100);
    EXPECT_TRUE(ListReaders().empty());
    const TestReader reader;
    const OtherDevice later(0x1234, 0x5678);
    EXPECT_EQ(ListReaders().size(), 1U);
    for (const OtherDevice* const device : {&otherProduct, &otherVendor, &swapped, &nearly, &later}) {
        EXPECT_EQ(device->Requests(), 0);
    }
}

TEST(CardRecognition, GoesByThePathAloneNotByTheDevicesNumbers) {
    const CardReaderTurn turn;
    const CardSession session;
    // Its instance carries the text of a reader's path.
    const OtherDevice device(0x1234, 0x5678, "6&vid_0801&pid_0011&0");
    const std::vector<MagStripeReaderInfo> readers = ListReaders();
    ASSERT_EQ(readers.size(), 1U);
    EXPECT_STREQ(readers[0].name, L"MAGTEK(USB)");
    EXPECT_STREQ(readers[0].serialNumber, L"");
    EXPECT_EQ(device.Requests(), 6);
}

// What the system says about interfaces, turned into capitals; and the paths that are opened.
std::mutex openedLock;
std::vector<std::wstring> opened;
int spelledInCapitals = 0;

BOOL WINAPI DetailInCapitals(HDEVINFO set, PSP_DEVICE_INTERFACE_DATA data, PSP_DEVICE_INTERFACE_DETAIL_DATA_W detail,
                             DWORD size, PDWORD needed, PSP_DEVINFO_DATA device) {
    const BOOL result = SetupDiGetDeviceInterfaceDetailW(set, data, detail, size, needed, device);
    if (result && detail != nullptr) {
        for (wchar_t* c = detail->DevicePath; *c != 0; ++c) {
            *c = static_cast<wchar_t>(std::towupper(*c));
        }
        ++spelledInCapitals;
    }
    return result;
}

HANDLE WINAPI NotedOpen(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                        DWORD flags, HANDLE pattern) {
    EXPECT_EQ(access, DWORD{GENERIC_READ | GENERIC_WRITE});
    EXPECT_EQ(share, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE});
    EXPECT_EQ(security, nullptr);
    EXPECT_EQ(disposition, DWORD{OPEN_EXISTING});
    EXPECT_EQ(flags, DWORD{FILE_FLAG_OVERLAPPED});
    EXPECT_EQ(pattern, nullptr);
    const std::lock_guard held(openedLock);
    opened.emplace_back(path);
    return CreateFileW(path, access, share, security, disposition, flags, pattern);
}

TEST(CardRecognition, TakesAPathInCapitalsAndOpensItInSmallLetters) {
    const CardReaderTurn turn;
    const CardSession session;
    ReaderSettings settings;
    settings.instance = "6&2F9A1B0C&0&0000";
    const TestReader reader(settings);
    const ImportHook detail("SETUPAPI.dll", "SetupDiGetDeviceInterfaceDetailW", &DetailInCapitals);
    const ImportHook open("KERNEL32.dll", "CreateFileW", &NotedOpen);
    EXPECT_EQ(ListReaders().size(), 1U);
    EXPECT_GE(spelledInCapitals, 1);
    ASSERT_EQ(opened.size(), 1U);
    EXPECT_EQ(std::count_if(opened[0].begin(), opened[0].end(), [](wchar_t c) { return std::iswupper(c); }), 0);
    EXPECT_NE(opened[0].find(L"hid#vid_0801&pid_0011#6&2f9a1b0c&0&0000#"), std::wstring::npos);
}

// The system's list of interfaces breaks off at the first one, each time in another way.
enum class Break {
    kNone,
    kNoList,
    kSizeHasOtherError,
    kSizeIsZero,
    kSizeNeedsNoBuffer,
    kDetailFails,
};
Break howItBreaks = Break::kNone;

HDEVINFO WINAPI BrokenList(const GUID* interfaceClass, PCWSTR enumerator, HWND window, DWORD flags) {
    EXPECT_EQ(enumerator, nullptr);
    EXPECT_EQ(window, nullptr);
    EXPECT_EQ(flags, DWORD{0x12});
    return howItBreaks == Break::kNoList ? nullptr : SetupDiGetClassDevsW(interfaceClass, enumerator, window, flags);
}

BOOL WINAPI BrokenDetail(HDEVINFO set, PSP_DEVICE_INTERFACE_DATA data, PSP_DEVICE_INTERFACE_DETAIL_DATA_W detail,
                         DWORD size, PDWORD needed, PSP_DEVINFO_DATA device) {
    const BOOL result = SetupDiGetDeviceInterfaceDetailW(set, data, detail, size, needed, device);
    if (detail == nullptr) {
        switch (howItBreaks) {
            case Break::kSizeHasOtherError:
                SetLastError(ERROR_ACCESS_DENIED);
                return FALSE;
            case Break::kSizeIsZero:
                *needed = 0;
                return FALSE;
            case Break::kSizeNeedsNoBuffer:
                return TRUE;
            default:
                return result;
        }
    }
    EXPECT_EQ(detail->cbSize, 8U);
    return howItBreaks == Break::kDetailFails ? FALSE : result;
}

TEST(CardRecognition, EndsTheListWhereTheSystemsOwnListBreaksOff) {
    const CardReaderTurn turn;
    const CardSession session;
    const TestReader reader;
    const ImportHook list("SETUPAPI.dll", "SetupDiGetClassDevsW", &BrokenList);
    const ImportHook detail("SETUPAPI.dll", "SetupDiGetDeviceInterfaceDetailW", &BrokenDetail);
    for (const Break broken : {Break::kNoList, Break::kSizeHasOtherError, Break::kSizeIsZero, Break::kSizeNeedsNoBuffer,
                               Break::kDetailFails}) {
        SCOPED_TRACE(static_cast<int>(broken));
        howItBreaks = broken;
        MagStripeReaderInfo info{};
        int count = 1;
        EXPECT_SUCCESS(QLMSR_GetMagStripeDevices(&info, &count));
        EXPECT_EQ(count, 0);
    }
    howItBreaks = Break::kNone;
    EXPECT_EQ(ListReaders().size(), 1U);
}

}  // namespace
}  // namespace quarlin::test
