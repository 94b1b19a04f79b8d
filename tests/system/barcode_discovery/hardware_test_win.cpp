// SPDX-License-Identifier: Apache-2.0
// Which scanner the machine reports through its device-check library.
#include <optional>
#include <string>
#include <vector>

#include "barcode_discovery/discovery_test_win.h"
#include "support/import_hook_win.h"
#include "support/machine_library_win.h"
#include "support/machine_state_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kNoDevice = "The barcode device is not found.";
constexpr const char* kNotInitialized = "The device is not initialized";

class ScannerHardwareTest : public DiscoveryTest {
  protected:
    // Nobody may plug a scanner in or change the model's name meanwhile.
    ScannerHardwareTest()
        : DiscoveryTest({ScannerHardware::kNone, {}, SharedTurn::Use::kShared, SharedTurn::Use::kShared}) {}
    // A probe library that does not start stays loaded.
    ~ScannerHardwareTest() override { UnloadWholly(L"HwProbeLib.dll"); }

    static void ExpectNoDevice(Discoverer& discoverer) {
        LoadedLibrary& library = discoverer.library;
        EXPECT_EQ(discoverer.List(), std::vector<Listed>{});
        int count = 5;
        EXPECT_SUCCESS_IN(library, QLBCR_dotNet_GetNoOfDevices(&count));
        EXPECT_EQ(count, 0);
        EXPECT_FAILURE_IN(library, QLBCR_Initialize(), QLERR_OP_UNSUPPORTED, kNoDevice);
        EXPECT_FAILURE_IN(library, QLBCR_SelectDevice(0), QLERR_INVALID_STATE, kNotInitialized);
        EXPECT_FAILURE_IN(library, QLBCR_Enable(), QLERR_INVALID_STATE, kNotInitialized);
    }
};

struct Reported {
    const char* name;
    bool builtIn;  // device 1
    bool engine;   // device 14
    bool miniDb;   // device 15
    std::optional<Listed> listed;
    Texts calls;
};

std::ostream& operator<<(std::ostream& out, const Reported& reported) {
    return out << reported.name;
}

std::string NameOfReported(const ::testing::TestParamInfo<Reported>& info) {
    return info.param.name;
}

Texts Asked(std::initializer_list<int> devices) {
    Texts calls{"Initialize"};
    for (const int device : devices) {
        calls.push_back("GetDeviceInfo " + std::to_string(device));
    }
    calls.emplace_back("Uninitialize");
    return calls;
}

// The model of a desk computer, whose device 14 is no scanner of ours.
class ReportedHardware : public ScannerHardwareTest, public ::testing::WithParamInterface<Reported> {};

TEST_P(ReportedHardware, DecidesWhichScannerIsListed) {
    const Reported& reported = GetParam();
    Report(1, reported.builtIn);
    Report(14, reported.engine);
    Report(15, reported.miniDb);
    Discoverer discoverer;
    const std::vector<Listed> wanted(reported.listed ? 1 : 0, reported.listed.value_or(Listed{}));
    EXPECT_EQ(discoverer.List(), wanted);
    EXPECT_EQ(TakeProbeCalls(), reported.calls);
    EXPECT_EQ(machine_.Probe()->started, 0);
    EXPECT_EQ(GetModuleHandleW(L"HwProbeLib.dll"), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"HEDC_RS.dll"), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Devices, ReportedHardware,
    ::testing::Values(Reported{"None", false, false, false, {}, Asked({15, 14, 1})},
                      Reported{"Device1", true, false, false, BuiltIn(), Asked({15, 14, 1})},
                      Reported{"Device14", false, true, false, {}, Asked({15, 14})},
                      Reported{"Devices1And14", true, true, false, {}, Asked({15, 14})},
                      Reported{"Device15", false, false, true, Engine("Honeywell MiniDB"), Asked({15})},
                      Reported{"Devices1And15", true, false, true, Engine("Honeywell MiniDB"), Asked({15})},
                      Reported{"Devices14And15", false, true, true, Engine("Honeywell MiniDB"), Asked({15})},
                      Reported{"All", true, true, true, Engine("Honeywell MiniDB"), Asked({15})}),
    NameOfReported);

TEST_F(ScannerHardwareTest, IsNoneWhenTheProbeDoesNotStart) {
    Report(15, true);
    for (const int status : {-1, -2, -3, -10, 2, 99}) {
        ProbeAnswers(sim::ProbeFunction::kInitialize, status);
        Discoverer discoverer;
        ExpectNoDevice(discoverer);
        EXPECT_EQ(TakeProbeCalls(), Texts{"Initialize"}) << status;
        // Once for all.
        ProbeAnswers(sim::ProbeFunction::kInitialize, 0);
        ExpectNoDevice(discoverer);
        EXPECT_EQ(TakeProbeCalls(), Texts{}) << status;
    }
}

TEST_F(ScannerHardwareTest, IsNoneWhenTheProbeTellsNothing) {
    Report(15, true);
    for (const int status : {-11, -12, -2, 2}) {
        ProbeAnswers(sim::ProbeFunction::kGetDeviceInfo, status);
        Discoverer discoverer;
        ExpectNoDevice(discoverer);
        const Texts calls = TakeProbeCalls();
        ASSERT_GE(calls.size(), 3U);
        EXPECT_EQ(calls.front(), "Initialize");
        EXPECT_EQ(calls[1], "GetDeviceInfo 15");
        EXPECT_EQ(calls.back(), "Uninitialize");
        EXPECT_EQ(machine_.Probe()->started, 0);
        ProbeAnswers(sim::ProbeFunction::kGetDeviceInfo, 0);
        ExpectNoDevice(discoverer);
        EXPECT_EQ(TakeProbeCalls(), Texts{});
    }
}

TEST_F(ScannerHardwareTest, IsThereWithAStatusOfOne) {
    Report(1, true);
    ProbeAnswers(sim::ProbeFunction::kInitialize, 1);
    ProbeAnswers(sim::ProbeFunction::kGetDeviceInfo, 1);
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), std::vector<Listed>{BuiltIn()});
}

TEST_F(ScannerHardwareTest, IsThereWhateverItsNumberOfAvailability) {
    for (const std::uint32_t available : {2U, 0x80000000U, 0xFFFFFFFFU}) {
        machine_.Probe()->devices[0].available = available;
        Discoverer discoverer;
        EXPECT_EQ(discoverer.List(), std::vector<Listed>{BuiltIn()}) << available;
    }
}

TEST_F(ScannerHardwareTest, IsNoneWithoutTheProbeLibrary) {
    Report(1, true);
    Discoverer discoverer;
    {
        const EnvironmentGuard path(L"PATH", L"C:\\windows\\system32");
        ExpectNoDevice(discoverer);
    }
    // Once for all.
    ExpectNoDevice(discoverer);
    EXPECT_EQ(TakeProbeCalls(), Texts{});
}

TEST_F(ScannerHardwareTest, NoneMakesAnEmptyList) {
    Discoverer discoverer;
    LoadedLibrary& library = discoverer.library;
    QLBCR_DEVICE_INFO devices[2]{};
    devices[0].index = 77;
    for (const int room : {0, 1, 2, 1000}) {
        int count = room;
        EXPECT_SUCCESS_IN(library, QLBCR_GetBarcodeDevices(devices, &count));
        EXPECT_EQ(count, 0) << room;
        count = room;
        EXPECT_SUCCESS_IN(library, QLBCR_GetBarcodeDevices(nullptr, &count));
        EXPECT_EQ(count, 0) << room;
    }
    EXPECT_EQ(devices[0].index, 77);
    int count = -1;
    EXPECT_FAILURE_IN(library, QLBCR_GetBarcodeDevices(devices, &count), QLERR_BUFFER_OVERFLOW,
                      "Buffer size too small");
    EXPECT_EQ(count, -1);
}

TEST_F(ScannerHardwareTest, NoneMakesAnEmptyListForDotNet) {
    Discoverer discoverer;
    LoadedLibrary& library = discoverer.library;
    auto* const freeByRuntime = SystemFunction<void(void*)>("msvcrt.dll", "free");
    int result = 77;
    int count = 3;
    QLBCR_DEVICE_INFO* const list = library.QLBCR_dotNet_GetBarcodeDevices(&result, &count);
    EXPECT_EQ(library.FetchLastError(), Failure{});
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(count, 0);
    constexpr QLBCR_DEVICE_INFO kZero[3]{};
    EXPECT_EQ(std::memcmp(list, kZero, sizeof kZero), 0);
    freeByRuntime(list);

    result = 77;
    count = -1;
    EXPECT_EQ(library.QLBCR_dotNet_GetBarcodeDevices(&result, &count), nullptr);
    EXPECT_EQ(library.FetchLastError(), (Failure{QLERR_BUFFER_OVERFLOW, "Buffer size too small"}));
    EXPECT_EQ(result, 77);
    EXPECT_EQ(count, 0);
}

class MissingProbeFunction : public ScannerHardwareTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(MissingProbeFunction, MeansThatThereIsNoScanner) {
    Report(1, true);
    Discoverer discoverer;
    {
        const LibraryFolder folder(FolderWithout(GetParam()));
        ExpectNoDevice(discoverer);
    }
    EXPECT_EQ(TakeProbeCalls(), Texts{});
}

std::string NameOfFunction(const ::testing::TestParamInfo<const char*>& info) {
    return info.param;
}

INSTANTIATE_TEST_SUITE_P(Functions, MissingProbeFunction, ::testing::ValuesIn(sim::kProbeFunctionNames),
                         NameOfFunction);

TEST_F(ScannerHardwareTest, IsAskedForOncePerProcess) {
    Report(1, true);
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), std::vector<Listed>{BuiltIn()});
    TakeProbeCalls();
    Report(1, false);
    Report(15, true);
    for (int round = 0; round < 3; ++round) {
        discoverer.Forget();
        EXPECT_EQ(discoverer.List(), std::vector<Listed>{BuiltIn()});
    }
    EXPECT_EQ(TakeProbeCalls(), Texts{});
}

TEST_F(ScannerHardwareTest, LeavesTheApplicationsOwnUseOfTheProbeAlone) {
    Report(1, true);
    Discoverer discoverer;
    LoadedLibrary& library = discoverer.library;
    EXPECT_SUCCESS_IN(library, QLDEVICE_Initialize());
    EXPECT_EQ(discoverer.List(), std::vector<Listed>{BuiltIn()});
    bool available = false;
    EXPECT_SUCCESS_IN(library, QLDEVICE_GetDeviceAvailable(1, &available));
    EXPECT_TRUE(available);
    EXPECT_EQ(TakeProbeCalls(),
              (Texts{"Initialize", "GetDeviceInfo 15", "GetDeviceInfo 14", "GetDeviceInfo 1", "GetDeviceInfo 1"}));
    EXPECT_SUCCESS_IN(library, QLDEVICE_Uninitialize());
    EXPECT_EQ(machine_.Probe()->started, 0);
}

}  // namespace
}  // namespace quarlin::test
