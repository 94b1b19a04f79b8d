// SPDX-License-Identifier: Apache-2.0
// The engine's library missing, or another one in its place: when the scanner is looked for, and later.
#include <functional>
#include <vector>

#include "barcode_honeywell/honeywell_test_win.h"
#include "support/machine_library_win.h"
#include "support/machine_state_win.h"

namespace quarlin::test {
namespace {

constexpr ULONGLONG kAllRounds = 14ULL * 150;  // milliseconds between the first and the last look for a scanner

// Takes the folder of the simulated machine's libraries away from the system.
class WithoutLibraries {
    const EnvironmentGuard path_{L"PATH", L"C:\\windows\\system32"};
};

struct Listing {
    const char* name;
    std::function<QLerr()> call;
};

const std::vector<Listing> kListings = {
    {"GetBarcodeDevices",
     [] {
         int count = 5;
         QLBCR_DEVICE_INFO devices[5]{};
         const QLerr result = QLBCR_GetBarcodeDevices(devices, &count);
         EXPECT_EQ(count, 5);
         return result;
     }},
    {"GetNoOfDevices",
     [] {
         int count = 0;
         return QLBCR_dotNet_GetNoOfDevices(&count);
     }},
    {"SelectDevice", [] { return QLBCR_SelectDevice(0); }},
    {"Initialize", [] { return QLBCR_Initialize(); }},
};

class HoneywellLoading : public HoneywellTest {
  protected:
    void SetUp() override {
        // The hardware is asked for once, by another library.
        ASSERT_SUCCESS(QLBCR_Initialize());
        ASSERT_SUCCESS(QLBCR_Uninitialize());
        Engine().TakeCalls();
    }

    // Each of the functions that make the list fails at once, and nothing is left of it.
    void ExpectNoList(const char* text) {
        for (const Listing& listing : kListings) {
            const ULONGLONG before = GetTickCount64();
            EXPECT_FAILURE(listing.call(), QLERR_INTERNAL_ERROR, text) << listing.name;
            EXPECT_LT(GetTickCount64() - before, kAllRounds) << listing.name;
            EXPECT_EQ(BarcodeState(), 0) << listing.name;
        }
        EXPECT_EQ(Engine().TakeTexts(), Texts{});
    }
    void ExpectAllIsWell() {
        int count = 0;
        EXPECT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
        EXPECT_EQ(count, 1);
        EXPECT_SUCCESS(QLBCR_Initialize());
        EXPECT_EQ(BarcodeState(), 1);
    }
};

TEST_F(HoneywellLoading, FailsTheListWithoutTheLibrary) {
    {
        const WithoutLibraries without;
        ExpectNoList(kNoHoneywellLibrary);
    }
    // The next call tries again.
    ExpectAllIsWell();
}

TEST_F(HoneywellLoading, FailsInitialisingWithoutTheLibraryAndTriesAgain) {
    int count = 0;
    ASSERT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
    Engine().TakeCalls();
    {
        const WithoutLibraries without;
        for (int i = 0; i < 2; ++i) {
            EXPECT_FAILURE(QLBCR_Initialize(), QLERR_INTERNAL_ERROR, kNoHoneywellLibrary);
            EXPECT_FAILURE(QLBCR_SelectDevice(0), QLERR_INTERNAL_ERROR, kNoHoneywellLibrary);
            EXPECT_FAILURE(QLBCR_Enable(), QLERR_INVALID_STATE, kNotInitialized);
            EXPECT_FAILURE(QLBCR_Disable(), QLERR_INVALID_STATE, kNotInitialized);
            EXPECT_FAILURE(QLBCR_StartScanning(), QLERR_INVALID_STATE, kNotInitialized);
            EXPECT_FAILURE(QLBCR_SetTriggerMode(1), QLERR_INVALID_STATE, kNotInitialized);
            EXPECT_FAILURE(QLBCR_Uninitialize(), QLERR_INVALID_STATE, "The device is already un-initialized");
            // The list stays.
            EXPECT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
            EXPECT_EQ(count, 1);
        }
        EXPECT_FAILURE(QLBCR_SelectDevice(1), QLERR_INVALID_ARGUMENT, "Given device index is out of range");
    }
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_EQ(BarcodeState(), 1);
    EXPECT_SUCCESS(QLBCR_Enable());
}

class MissingHoneywellFunction : public HoneywellLoading, public ::testing::WithParamInterface<const char*> {};

TEST_P(MissingHoneywellFunction, FailsTheListAndInitialising) {
    {
        const LibraryFolder folder(FolderWithout(GetParam()));
        ExpectNoList(kMisplaced);
    }
    int count = 0;
    ASSERT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
    ASSERT_EQ(count, 1);
    Engine().TakeCalls();
    {
        const LibraryFolder folder(FolderWithout(GetParam()));
        EXPECT_FAILURE(QLBCR_Initialize(), QLERR_INTERNAL_ERROR, kMisplaced);
        EXPECT_FAILURE(QLBCR_Enable(), QLERR_INVALID_STATE, kNotInitialized);
    }
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    ExpectAllIsWell();
}

std::string NameOfFunction(const ::testing::TestParamInfo<const char*>& info) {
    return info.param;
}

INSTANTIATE_TEST_SUITE_P(Functions, MissingHoneywellFunction, ::testing::ValuesIn(sim::kHoneywellFunctionNames),
                         NameOfFunction);

}  // namespace
}  // namespace quarlin::test
