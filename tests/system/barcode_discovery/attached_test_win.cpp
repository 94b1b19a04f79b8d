// SPDX-License-Identifier: Apache-2.0
// Looking for an Intermec scanner among what is plugged in, and handing its address to its engine.
#include <windows.h>

#include <setupapi.h>

#include <atomic>
#include <cstring>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "barcode_discovery/discovery_test_win.h"
#include "barcode_discovery/plugged_scanner_win.h"
#include "barcode_support/scan_log_win.h"
#include "edge/computer_parts_win.h"
#include "support/import_hook_win.h"
#include "support/machine_state_win.h"

namespace quarlin::test {
namespace {

constexpr const wchar_t* kHidLibrary = L"ISDC_HID.dll";
constexpr const wchar_t* kSerialLibrary = L"ISDC_RS.dll";
constexpr const char* kPortName = "Intermec EA30 VID_067E Scanner (COM9)";

const std::vector<Listed> kEa30 = {Engine("Intermec EA30")};
const std::vector<Listed> kNothing;

bool IsLoaded(const wchar_t* library) {
    return GetModuleHandleW(library) != nullptr;
}

// A machine whose model names an engine on USB or a serial port, or one that takes any scanner.
class AttachedTest : public DiscoveryTest {
  protected:
    explicit AttachedTest(const ScannerSetup& setup = ScannerSetup::Engine(L"HXT8")) : DiscoveryTest(setup) {}

    static std::unique_ptr<sim::ListedPort> PlugPort(const std::string& name) { return sim::ListPort(name); }

    // Initialises, and gives what the engine is told of its address when it is enabled.
    EngineCall Address(LoadedLibrary& library) {
        EXPECT_SUCCESS_IN(library, QLBCR_Initialize());
        Intermec().TakeCalls();
        EXPECT_SUCCESS_IN(library, QLBCR_Enable());
        const std::vector<EngineCall> calls = Intermec().TakeCalls();
        if (calls.size() < 2) {
            ADD_FAILURE() << "the engine was not connected";
            return {};
        }
        EXPECT_EQ(calls[0].function, static_cast<std::uint32_t>(IntermecFunction::kDeviceIOControl));
        EXPECT_EQ(calls[1].function, static_cast<std::uint32_t>(IntermecFunction::kConnect));
        EXPECT_EQ(calls[0].status, 0U);
        return calls[0];
    }
    void ExpectPath(LoadedLibrary& library, const std::string& part) {
        const EngineCall call = Address(library);
        EXPECT_EQ(call.arguments[0], 260);
        ASSERT_GT(call.requestBytes, 1U);
        const std::string path(reinterpret_cast<const char*>(call.request), call.requestBytes - 1);
        EXPECT_TRUE(path.starts_with("\\\\?\\hid#" + part)) << path;
        EXPECT_EQ(path.find('\0'), std::string::npos);
        // With its terminator.
        EXPECT_EQ(call.requestLength, path.size() + 1);
        EXPECT_EQ(call.request[call.requestBytes - 1], 0);
        EXPECT_EQ(call.arguments[1], 0);
        EXPECT_EQ(call.arguments[2], 0);
        EXPECT_TRUE(IsLoaded(kHidLibrary));
        EXPECT_FALSE(IsLoaded(kSerialLibrary));
    }
    void ExpectPort(LoadedLibrary& library, std::int32_t number) {
        const EngineCall call = Address(library);
        EXPECT_EQ(call.arguments[0], 525);
        EXPECT_NE(call.arguments[1], 0);
        EXPECT_EQ(call.arguments[2], 4);
        ASSERT_EQ(call.requestLength, 4U);
        std::int32_t given = 0;
        std::memcpy(&given, call.request, sizeof given);
        EXPECT_EQ(given, number);
        EXPECT_TRUE(IsLoaded(kSerialLibrary));
        EXPECT_FALSE(IsLoaded(kHidLibrary));
    }
    void ExpectHoneywellUntouched() { EXPECT_EQ(Honeywell().TakeTexts(), Texts{}); }
};

// The library's looks at the list of HID devices, and at that of serial ports.
class LookCount {
  public:
    LookCount() { hid_ = ports_ = 0; }

    static int Hid() { return hid_; }
    static int Ports() { return ports_; }

  private:
    static HDEVINFO WINAPI Look(const GUID* type, PCWSTR enumerator, HWND parent, DWORD flags) {
        ++((flags & DIGCF_DEVICEINTERFACE) != 0 ? hid_ : ports_);
        EXPECT_NE(flags & DIGCF_PRESENT, 0U);
        return SetupDiGetClassDevsW(type, enumerator, parent, flags);
    }

    inline static std::atomic<int> hid_ = 0;
    inline static std::atomic<int> ports_ = 0;
    ImportHook hook_{"SETUPAPI.dll", "SetupDiGetClassDevsW", &Look};
};

TEST_F(AttachedTest, NothingIsGivenUpAfterFifteenRoundsAndLookedForAgain) {
    Discoverer discoverer;
    const LookCount looks;
    for (int time = 1; time <= 2; ++time) {
        const ULONGLONG before = GetTickCount64();
        EXPECT_EQ(discoverer.List(), kNothing);
        EXPECT_GE(GetTickCount64() - before + kTick, (kRounds - 1) * kBetweenRounds);
        EXPECT_EQ(LookCount::Hid(), time * kRounds);
        EXPECT_EQ(LookCount::Ports(), time * kRounds);
    }
    // Where no Honeywell scanner can be, its library is neither loaded nor shut down.
    ExpectHoneywellUntouched();
}

TEST_F(AttachedTest, UsbScannerIsItsSecondCollection) {
    const PluggedScanner keyboard(kIntermecVendor, 0x0801, 1);
    const PluggedScanner scanner(kIntermecVendor, 0x0801, 2);
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kEa30);
    ExpectPath(discoverer.library, "vid_067e&pid_0801&col02#");
    ExpectHoneywellUntouched();
}

TEST_F(AttachedTest, UsbScannerOfTheOtherProductHasNoNumber) {
    const PluggedScanner scanner(kIntermecVendor, 0x0809);
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kEa30);
    ExpectPath(discoverer.library, "vid_067e&pid_0809#");
    ExpectHoneywellUntouched();
}

TEST_F(AttachedTest, OtherUsbDevicesAreNone) {
    const PluggedScanner keyboard(kIntermecVendor, 0x0801, 1);
    const PluggedScanner whole(kIntermecVendor, 0x0801);
    const PluggedScanner otherProduct(kIntermecVendor, 0x0802, 2);
    const PluggedScanner otherVendor(0x067F, 0x0809);
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kNothing);
}

TEST_F(AttachedTest, UsbScannerIsFoundInALaterRound) {
    Discoverer discoverer;
    const LookCount looks;
    std::future<std::vector<Listed>> list = std::async(std::launch::async, [&] { return discoverer.List(); });
    Await("some rounds", [] { return LookCount::Hid() >= 3; });
    const PluggedScanner scanner(kIntermecVendor, 0x0809);
    EXPECT_EQ(list.get(), kEa30);
    EXPECT_LE(LookCount::Hid(), kRounds);
}

TEST_F(AttachedTest, SerialScannerIsKnownByItsPortsName) {
    const auto port = PlugPort(kPortName);
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kEa30);
    ExpectPort(discoverer.library, 9);
    ExpectHoneywellUntouched();
}

TEST_F(AttachedTest, SerialScannerMayHaveAnyNumber) {
    for (const int number : {1, 12, 256}) {
        const auto port = PlugPort("VID_067 (COM" + std::to_string(number) + ")");
        Discoverer discoverer;
        EXPECT_EQ(discoverer.List(), kEa30) << number;
        ExpectPort(discoverer.library, number);
    }
}

TEST_F(AttachedTest, OtherPortsAreNone) {
    const auto noNumber = PlugPort("Intermec VID_067E Scanner");
    const auto otherVendor = PlugPort("Printer VID_068A (COM7)");
    const auto smallLetters = PlugPort("Scanner vid_067e (COM8)");
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kNothing);
}

// For the library, a port has no friendly name, and what it has is its description.
BOOL WINAPI DescriptionOnly(HDEVINFO list, PSP_DEVINFO_DATA device, DWORD property, PDWORD type, PBYTE buffer,
                            DWORD size, PDWORD needed) {
    if (property == SPDRP_FRIENDLYNAME) {
        SetLastError(ERROR_INVALID_DATA);
        return FALSE;
    }
    return SetupDiGetDeviceRegistryPropertyW(
        list, device, property == SPDRP_DEVICEDESC ? DWORD{SPDRP_FRIENDLYNAME} : property, type, buffer, size, needed);
}

TEST_F(AttachedTest, SerialScannerWithoutAFriendlyNameIsKnownByItsDescription) {
    const auto port = PlugPort(kPortName);
    Discoverer discoverer;
    const ImportHook hook("SETUPAPI.dll", "SetupDiGetDeviceRegistryPropertyW", &DescriptionOnly);
    EXPECT_EQ(discoverer.List(), kEa30);
    ExpectPort(discoverer.library, 9);
}

TEST_F(AttachedTest, UsbScannerComesBeforeASerialOne) {
    const auto port = PlugPort(kPortName);
    const PluggedScanner scanner(kIntermecVendor, 0x0809);
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kEa30);
    ExpectPath(discoverer.library, "vid_067e&pid_0809#");
}

TEST_F(AttachedTest, UsbScannerNeedsItsOwnLibrary) {
    const PluggedScanner scanner(kIntermecVendor, 0x0809);
    Discoverer discoverer;
    LoadedLibrary& library = discoverer.library;
    EXPECT_EQ(discoverer.List(), kEa30);
    {
        const EnvironmentGuard path(L"PATH", L"C:\\windows\\system32");
        for (int i = 0; i < 2; ++i) {
            EXPECT_FAILURE_IN(library, QLBCR_Initialize(), QLERR_INTERNAL_ERROR, "Unable to load ISDC.dll.");
            EXPECT_FAILURE_IN(library, QLBCR_Enable(), QLERR_INVALID_STATE, "The device is not initialized");
            EXPECT_FAILURE_IN(library, QLBCR_Uninitialize(), QLERR_INVALID_STATE,
                              "The device is already un-initialized");
            EXPECT_EQ(discoverer.List(), kEa30);
        }
    }
    ExpectPath(library, "vid_067e&pid_0809#");
}

TEST_F(AttachedTest, UsbScannerReadsCodes) {
    const PluggedScanner scanner(kIntermecVendor, 0x0801, 2);
    Discoverer discoverer;
    LoadedLibrary& library = discoverer.library;
    ScanLog log;
    EXPECT_SUCCESS_IN(library, QLBCR_Initialize());
    EXPECT_SUCCESS_IN(library, QLBCR_Enable());
    EXPECT_SUCCESS_IN(library, QLBCR_SetCallback(ScanLog::Callback()));
    machine_.ScanIntermec("4006381333931", "]E0");
    const ReceivedScan scan = log.AwaitCount(1);
    EXPECT_EQ(scan.text, "4006381333931");
    EXPECT_EQ(scan.symbologyId, "]E0");
    EXPECT_SUCCESS_IN(library, QLBCR_Disable());
    EXPECT_SUCCESS_IN(library, QLBCR_Uninitialize());
}

class AnyAttachedTest : public AttachedTest {
  protected:
    AnyAttachedTest() : AttachedTest(ScannerSetup::External(SharedTurn::Use::kExclusive)) {
        EXPECT_SUCCESS_IN(discoverer_.library, QLBCR_SetAllowExternalBarcodeDevice(1));
    }
    void ExpectExternal() {
        EXPECT_EQ(discoverer_.List(), std::vector<Listed>{External()});
        EXPECT_EQ(TakeProbeCalls(), Texts{});
    }

    Discoverer discoverer_;
};

TEST_F(AnyAttachedTest, UsbScannerIsTakenBeforeAHoneywellOne) {
    const PluggedScanner scanner(kIntermecVendor, 0x0801, 2);
    ExpectExternal();
    ExpectHoneywellUntouched();
    ExpectPath(discoverer_.library, "vid_067e&pid_0801&col02#");
}

TEST_F(AnyAttachedTest, SerialScannerIsTakenBeforeAHoneywellOne) {
    const auto port = PlugPort(kPortName);
    ExpectExternal();
    ExpectHoneywellUntouched();
    ExpectPort(discoverer_.library, 9);
}

TEST_F(AnyAttachedTest, HoneywellLibraryIsNotNeededForAnother) {
    const PluggedScanner scanner(kIntermecVendor, 0x0809);
    const EnvironmentGuard path(L"PATH", L"C:\\windows\\system32");
    ExpectExternal();
}

TEST_F(AnyAttachedTest, LaterScannerIsFoundAfterRoundsOfTheHoneywellLibrary) {
    Honeywell().Use()->deviceCount = 0;
    std::future<std::vector<Listed>> list = std::async(std::launch::async, [&] { return discoverer_.List(); });
    Honeywell().AwaitCalls("GetNumberDevices", 2);
    const PluggedScanner scanner(kIntermecVendor, 0x0809);
    EXPECT_EQ(list.get(), std::vector<Listed>{External()});
    // What was loaded for it is shut down again.
    EXPECT_EQ(Honeywell().TakeTexts().back(), "Deinitialize");
    EXPECT_FALSE(IsLoaded(L"HEDC_RS.dll"));
    ExpectPath(discoverer_.library, "vid_067e&pid_0809#");
}

}  // namespace
}  // namespace quarlin::test
