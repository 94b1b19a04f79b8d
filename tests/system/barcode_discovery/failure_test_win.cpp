// SPDX-License-Identifier: Apache-2.0
// Looking for the machine's scanner fails half-way: what was begun for it is ended, and it can be looked for again.
#include <string>
#include <vector>

#include "barcode_discovery/discovery_test_win.h"
#include "support/failing_allocation_win.h"
#include "support/machine_library_win.h"

namespace quarlin::test {
namespace {

constexpr int kMostAllocations = 400;

class ScannerSearchFailure : public DiscoveryTest {
  protected:
    ScannerSearchFailure()
        : DiscoveryTest({ScannerHardware::kNone, {}, SharedTurn::Use::kShared, SharedTurn::Use::kShared}) {}
    // A probe library that refuses to end has not ended.
    ~ScannerSearchFailure() override { UnloadWholly(L"HwProbeLib.dll"); }

    // Both libraries were ended before they were freed.
    void ExpectNothingBegun() {
        EXPECT_EQ(GetModuleHandleW(L"HEDC_RS.dll"), nullptr);
        EXPECT_EQ(Honeywell().Use()->initialized, 0U);
        const Texts calls = Honeywell().TakeTexts();
        EXPECT_TRUE(calls.empty() || calls.back() == "Deinitialize") << ::testing::PrintToString(calls);
        EXPECT_EQ(GetModuleHandleW(L"HwProbeLib.dll"), nullptr);
        EXPECT_EQ(machine_.Probe()->started, 0);
    }
};

TEST_F(ScannerSearchFailure, OfTheProbesEndIsNobodysBusiness) {
    Report(1, true);
    for (const int status : {-1, -2, -10, 2, 99}) {
        for (const bool worksAllTheSame : {false, true}) {
            machine_.Probe()->started = 0;
            machine_.Probe()->workWhenFailing = worksAllTheSame ? 1 : 0;
            ProbeAnswers(sim::ProbeFunction::kUninitialize, status);
            Discoverer discoverer;
            EXPECT_EQ(discoverer.List(), std::vector<Listed>{BuiltIn()}) << status;
            EXPECT_EQ(discoverer.library.FetchLastError(), Failure{}) << status;
            const Texts wanted{"Initialize", "GetDeviceInfo 15", "GetDeviceInfo 14", "GetDeviceInfo 1", "Uninitialize"};
            EXPECT_EQ(TakeProbeCalls(), wanted) << status;
            EXPECT_EQ(machine_.Probe()->started, worksAllTheSame ? 0 : 1);
            EXPECT_EQ(GetModuleHandleW(L"HwProbeLib.dll"), nullptr);
            // Once for all.
            discoverer.Forget();
            EXPECT_EQ(discoverer.List(), std::vector<Listed>{BuiltIn()}) << status;
            EXPECT_EQ(TakeProbeCalls(), Texts{}) << status;
        }
    }
}

TEST_F(ScannerSearchFailure, OfTheProbesEndLeavesItsFunctionsUsable) {
    Report(1, true);
    ProbeAnswers(sim::ProbeFunction::kUninitialize, -1);
    machine_.Probe()->workWhenFailing = 1;
    Discoverer discoverer;
    LoadedLibrary& library = discoverer.library;
    EXPECT_EQ(discoverer.List(), std::vector<Listed>{BuiltIn()});
    ProbeAnswers(sim::ProbeFunction::kUninitialize, 0);
    TakeProbeCalls();
    EXPECT_SUCCESS_IN(library, QLDEVICE_Initialize());
    bool available = false;
    EXPECT_SUCCESS_IN(library, QLDEVICE_GetDeviceAvailable(1, &available));
    EXPECT_TRUE(available);
    EXPECT_SUCCESS_IN(library, QLDEVICE_Uninitialize());
    EXPECT_EQ(TakeProbeCalls(), (Texts{"Initialize", "GetDeviceInfo 1", "Uninitialize"}));
    EXPECT_EQ(machine_.Probe()->started, 0);
}

// The first list of a process: each allocation on the way to it fails once.
class ScannerSearchMemory : public ScannerSearchFailure, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(ScannerSearchMemory, ThatIsShortLeavesNothingBegun) {
    Report(GetParam(), true);
    const Listed wanted = GetParam() == 1 ? BuiltIn() : Engine("Honeywell MiniDB");
    for (int number = 1;; ++number) {
        ASSERT_LT(number, kMostAllocations) << "there is no end to its allocations";
        Discoverer discoverer;
        LoadedLibrary& library = discoverer.library;
        QLerr result = QLERR_OK;
        bool hasFailed = false;
        int count = 0;
        {
            const FailingAllocation failing(number);
            result = library.QLBCR_GetBarcodeDevices(nullptr, &count);
            hasFailed = failing.HasFailed();
        }
        const Failure failure = library.FetchLastError();
        EXPECT_TRUE(result == QLERR_OK || result == QLERR_INTERNAL_ERROR) << number << ": " << failure;
        EXPECT_EQ(count, result == QLERR_OK ? 1 : 0) << number;
        ExpectNothingBegun();
        // What could not be found out for want of memory is found out now.
        EXPECT_EQ(discoverer.List(), std::vector<Listed>{wanted}) << number;
        ExpectNothingBegun();
        discoverer.Forget();
        ExpectNothingBegun();
        ASSERT_FALSE(HasFailure()) << number;
        if (!hasFailed) {
            EXPECT_EQ(result, QLERR_OK) << failure;
            return;
        }
    }
}

std::string NameOfDevice(const ::testing::TestParamInfo<std::size_t>& info) {
    return info.param == 1 ? "Intermec" : "Honeywell";
}

INSTANTIATE_TEST_SUITE_P(Devices, ScannerSearchMemory, ::testing::Values(1, 15), NameOfDevice);

// An external scanner is looked for in fifteen rounds, of which any may fail.
TEST_F(ScannerSearchFailure, ForWantOfMemoryInALaterRoundEndsTheEnginesLibrary) {
    Honeywell().Use()->deviceCount = 0;
    Discoverer discoverer;
    LoadedLibrary& library = discoverer.library;
    EXPECT_SUCCESS_IN(library, QLBCR_SetAllowExternalBarcodeDevice(1));
    int failures = 0;
    // Each round allocates, so that these lie in several of them.
    for (const int number : {1, 2, 3, 5, 8, 13, 21, 34, 55, 89}) {
        QLerr result = QLERR_OK;
        int count = 0;
        {
            const FailingAllocation failing(number);
            result = library.QLBCR_GetBarcodeDevices(nullptr, &count);
        }
        EXPECT_TRUE(result == QLERR_OK || result == QLERR_INTERNAL_ERROR) << number;
        failures += result == QLERR_OK ? 0 : 1;
        EXPECT_EQ(count, 0);
        library.FetchLastError();
        ExpectNothingBegun();
    }
    EXPECT_GE(failures, 1);
    Honeywell().Use()->deviceCount = 1;
    EXPECT_EQ(discoverer.List(), std::vector<Listed>{External()});
    ExpectNothingBegun();
    EXPECT_SUCCESS_IN(library, QLBCR_SetAllowExternalBarcodeDevice(0));
}

}  // namespace
}  // namespace quarlin::test
