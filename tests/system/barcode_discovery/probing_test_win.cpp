// SPDX-License-Identifier: Apache-2.0
// Looking for a Honeywell scanner: up to fifteen rounds, by its library's own list.
#include <algorithm>
#include <future>
#include <string>
#include <vector>

#include "barcode_discovery/discovery_test_win.h"
#include "support/machine_state_win.h"

namespace quarlin::test {
namespace {

const std::string kInitialize = R"(Initialize HKCU\SOFTWARE\Norvane\Barcode\Honeywell)";
const Texts kRoundWithout = {"Deinitialize", kInitialize, "LimitToHoneywellDevices 1 0", "GetNumberDevices"};

const std::vector<Listed> kMiniDb = {Engine("Honeywell MiniDB")};
const std::vector<Listed> kNothing;

class HoneywellProbe : public DiscoveryTest {
  protected:
    HoneywellProbe()
        : HoneywellProbe({ScannerHardware::kMiniDb, {}, SharedTurn::Use::kShared, SharedTurn::Use::kShared}) {}
    explicit HoneywellProbe(const ScannerSetup& setup) : DiscoveryTest(setup) {}

    static std::size_t Count(const Texts& calls, const std::string& call) {
        return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), call));
    }
    void PlugOut() { Honeywell().Use()->deviceCount = 0; }
    void PlugIn() { Honeywell().Use()->deviceCount = 1; }
    static bool IsLibraryLoaded() { return GetModuleHandleW(L"HEDC_RS.dll") != nullptr; }
};

TEST_F(HoneywellProbe, TakesTheFirstDeviceAndFreesTheLibrary) {
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kMiniDb);
    Texts wanted = kRoundWithout;
    wanted.insert(wanted.end(), {"GetDeviceFromList 0", "RegisterCallback 1", "Deinitialize"});
    EXPECT_EQ(Honeywell().TakeTexts(), wanted);
    EXPECT_FALSE(IsLibraryLoaded());
    EXPECT_EQ(Honeywell().Use()->initialized, 0U);
    // The list is kept.
    EXPECT_EQ(discoverer.List(), kMiniDb);
    EXPECT_EQ(Honeywell().TakeTexts(), Texts{});
}

TEST_F(HoneywellProbe, GivesTheListRoomForItsTexts) {
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kMiniDb);
    for (const EngineCall& call : Honeywell().TakeCalls()) {
        if (call.function == static_cast<std::uint32_t>(HoneywellFunction::kGetDeviceFromList)) {
            EXPECT_EQ(call.arguments[0], 0);
            EXPECT_EQ(call.arguments[1], 1024);
            EXPECT_EQ(call.arguments[2], 1024);
        }
    }
}

TEST_F(HoneywellProbe, GivesUpAfterFifteenRoundsAndBeginsAnewWithTheNextCall) {
    PlugOut();
    Discoverer discoverer;
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(discoverer.List(), kNothing);
        const std::vector<EngineCall> calls = Honeywell().TakeCalls();
        ASSERT_EQ(calls.size(), kRounds * kRoundWithout.size() + 1);
        for (std::size_t i = 0; i < calls.size(); ++i) {
            EXPECT_EQ(TextOf(static_cast<HoneywellFunction>(calls[i].function), calls[i]),
                      kRoundWithout[i % kRoundWithout.size()]);
            if (i != 0 && i % kRoundWithout.size() == 0 && i + 1 < calls.size()) {
                EXPECT_GE(calls[i].milliseconds - calls[i - 1].milliseconds + kTick, kBetweenRounds) << i;
                EXPECT_LT(calls[i].milliseconds - calls[i - 1].milliseconds, 20 * kBetweenRounds) << i;
            }
        }
        EXPECT_GE(calls.back().milliseconds - calls.front().milliseconds + kTick, (kRounds - 1) * kBetweenRounds);
        EXPECT_FALSE(IsLibraryLoaded());
    }
    PlugIn();
    EXPECT_EQ(discoverer.List(), kMiniDb);
}

TEST_F(HoneywellProbe, GoesOnAfterRoundsInWhichTheLibraryDoesNotStart) {
    Honeywell().Refuse(HoneywellFunction::kInitialize, 0x8000, 3);
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kMiniDb);
    const Texts calls = Honeywell().TakeTexts();
    EXPECT_EQ(Count(calls, kInitialize), 4U);
    EXPECT_EQ(Count(calls, "GetNumberDevices"), 1U);
}

TEST_F(HoneywellProbe, FindsNothingWhenTheLibraryNeverStarts) {
    Honeywell().Refuse(HoneywellFunction::kInitialize, 1);
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kNothing);
    const Texts calls = Honeywell().TakeTexts();
    EXPECT_EQ(Count(calls, kInitialize), std::size_t{kRounds});
    EXPECT_EQ(Count(calls, "GetNumberDevices"), 0U);
    EXPECT_FALSE(IsLibraryLoaded());
}

TEST_F(HoneywellProbe, GoesOnAfterARoundWithoutANumber) {
    Honeywell().Refuse(HoneywellFunction::kGetNumberDevices, 0xFFFF, 2);
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kMiniDb);
    EXPECT_EQ(Count(Honeywell().TakeTexts(), "GetNumberDevices"), 3U);
}

TEST_F(HoneywellProbe, GoesOnWhenTheListIsShorterThanItsNumber) {
    Honeywell().Use()->claimedCount = 3;
    PlugOut();
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kNothing);
    const Texts calls = Honeywell().TakeTexts();
    for (int number = 0; number < 3; ++number) {
        EXPECT_EQ(Count(calls, "GetDeviceFromList " + std::to_string(number)), std::size_t{kRounds}) << number;
    }
    EXPECT_EQ(Count(calls, "GetDeviceFromList 3"), 0U);
}

TEST_F(HoneywellProbe, AsksNoFurtherThanItsNumber) {
    Honeywell().Use()->claimedCount = 0;
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kNothing);
    EXPECT_EQ(Count(Honeywell().TakeTexts(), "GetDeviceFromList 0"), 0U);
}

TEST_F(HoneywellProbe, FindsADeviceThatComesInALaterRound) {
    PlugOut();
    Discoverer discoverer;
    std::future<std::vector<Listed>> list = std::async(std::launch::async, [&] { return discoverer.List(); });
    Honeywell().AwaitCalls("GetNumberDevices", 3);
    PlugIn();
    EXPECT_EQ(list.get(), kMiniDb);
    const std::size_t rounds = Count(Honeywell().TakeTexts(), "GetNumberDevices");
    EXPECT_GE(rounds, 4U);
    EXPECT_LT(rounds, std::size_t{kRounds});
}

TEST_F(HoneywellProbe, SkipsDevicesThatDoNotAnswer) {
    {
        const auto state = Honeywell().Use();
        state->deviceCount = 3;
        state->devices[0].status = 5;
        state->devices[1].SetName("another");
        state->devices[1].status = 0x8000;
        state->devices[2].SetName("the third");
    }
    Discoverer discoverer;
    LoadedLibrary& library = discoverer.library;
    EXPECT_EQ(discoverer.List(), kMiniDb);
    Texts wanted = kRoundWithout;
    wanted.insert(wanted.end(), {"GetDeviceFromList 0", "GetDeviceFromList 1", "GetDeviceFromList 2",
                                 "RegisterCallback 1", "Deinitialize"});
    EXPECT_EQ(Honeywell().TakeTexts(), wanted);
    EXPECT_SUCCESS_IN(library, QLBCR_Initialize());
    Honeywell().TakeCalls();
    EXPECT_SUCCESS_IN(library, QLBCR_Enable());
    EXPECT_EQ(Honeywell().TakeTexts(), (Texts{"SetPathName the third", "Connect"}));
    // The engine knows the device by its number in the list.
    EXPECT_SUCCESS_IN(library, QLBCR_Disable());
    EXPECT_EQ(Honeywell().TakeTexts(), Texts{"Disconnect 2"});
}

TEST_F(HoneywellProbe, AsksForHoneywellDevicesOnly) {
    {
        const auto state = Honeywell().Use();
        state->deviceCount = 2;
        state->devices[0].foreign = 1;
        state->devices[1].SetName("ours");
    }
    Discoverer discoverer;
    LoadedLibrary& library = discoverer.library;
    EXPECT_SUCCESS_IN(library, QLBCR_Initialize());
    Honeywell().TakeCalls();
    EXPECT_SUCCESS_IN(library, QLBCR_Enable());
    EXPECT_EQ(Honeywell().TakeTexts(), (Texts{"SetPathName ours", "Connect"}));
}

// One of the two functions that may take long.
class LongProbe : public HoneywellProbe, public ::testing::WithParamInterface<bool> {};

TEST_P(LongProbe, KeepsNobodyWaiting) {
    PlugOut();
    Discoverer discoverer;
    LoadedLibrary& library = discoverer.library;
    std::future<QLerr> listing = std::async(std::launch::async, [&] {
        int count = 0;
        return GetParam() ? library.QLBCR_Initialize() : library.QLBCR_GetBarcodeDevices(nullptr, &count);
    });
    Honeywell().AwaitCalls("GetNumberDevices", 2);
    unsigned int value = 0;
    EXPECT_FAILURE_IN(library, QLBCR_IsEnabled(&value), QLERR_INVALID_STATE, "The device is not initialized");
    EXPECT_FAILURE_IN(library, QLBCR_Enable(), QLERR_INVALID_STATE, "The device is not initialized");
    EXPECT_FAILURE_IN(library, QLBCR_GetDeviceType(&value), QLERR_INVALID_STATE, "The device is not initialized");
    EXPECT_SUCCESS_IN(library, QLBCR_SetAllowExternalBarcodeDevice(0));
    EXPECT_EQ(listing.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    EXPECT_EQ(listing.get(), GetParam() ? QLERR_OP_UNSUPPORTED : QLERR_OK);
}

INSTANTIATE_TEST_SUITE_P(Functions, LongProbe, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& parameter) {
                             return parameter.param ? "Initialize" : "GetBarcodeDevices";
                         });

// Whatever is plugged in, and nothing is but what the Honeywell library lists.
class ExternalProbe : public HoneywellProbe {
  protected:
    ExternalProbe() : HoneywellProbe(ScannerSetup::External()) {
        discoverer_.library.QLBCR_SetAllowExternalBarcodeDevice(1);
    }

    Discoverer discoverer_;
};

TEST_F(ExternalProbe, AsksTheMachineNothing) {
    Report(1, true);
    Report(15, true);
    EXPECT_EQ(discoverer_.List(), std::vector<Listed>{External()});
    EXPECT_EQ(TakeProbeCalls(), Texts{});
    Texts wanted = kRoundWithout;
    wanted.insert(wanted.end(), {"GetDeviceFromList 0", "RegisterCallback 1", "Deinitialize"});
    EXPECT_EQ(Honeywell().TakeTexts(), wanted);
    EXPECT_FALSE(IsLibraryLoaded());
}

TEST_F(ExternalProbe, FindsAHoneywellScannerThatWorks) {
    LoadedLibrary& library = discoverer_.library;
    EXPECT_SUCCESS_IN(library, QLBCR_Initialize());
    unsigned int type = 77;
    EXPECT_SUCCESS_IN(library, QLBCR_GetDeviceType(&type));
    EXPECT_EQ(type, 0U);
    char name[32] = "";
    unsigned int size = sizeof name;
    EXPECT_SUCCESS_IN(library, QLBCR_GetDeviceName(name, &size));
    EXPECT_STREQ(name, "Barcode Reader");
}

TEST_F(ExternalProbe, CountsAnyFlagThatIsNotZero) {
    LoadedLibrary& library = discoverer_.library;
    for (const unsigned int flag : {2U, 256U, 0x80000000U}) {
        EXPECT_SUCCESS_IN(library, QLBCR_SetAllowExternalBarcodeDevice(0));
        EXPECT_SUCCESS_IN(library, QLBCR_SetAllowExternalBarcodeDevice(flag));
        EXPECT_EQ(discoverer_.List(), std::vector<Listed>{External()}) << flag;
        discoverer_.Forget();
    }
}

TEST_F(ExternalProbe, GivesUpAfterFifteenRounds) {
    PlugOut();
    EXPECT_EQ(discoverer_.List(), kNothing);
    EXPECT_EQ(Count(Honeywell().TakeTexts(), "GetNumberDevices"), std::size_t{kRounds});
    EXPECT_EQ(TakeProbeCalls(), Texts{});
}

TEST_F(ExternalProbe, NeedsTheHoneywellLibrary) {
    LoadedLibrary& library = discoverer_.library;
    {
        const EnvironmentGuard path(L"PATH", L"C:\\windows\\system32");
        int count = 7;
        EXPECT_FAILURE_IN(library, QLBCR_GetBarcodeDevices(nullptr, &count), QLERR_INTERNAL_ERROR,
                          "Unable to load HEDC_RS.dll.");
        EXPECT_EQ(count, 7);
    }
    EXPECT_EQ(discoverer_.List(), std::vector<Listed>{External()});
}

TEST_F(ExternalProbe, IsDecidedWithEachListAnew) {
    Report(1, true);
    LoadedLibrary& library = discoverer_.library;
    EXPECT_EQ(discoverer_.List(), std::vector<Listed>{External()});
    EXPECT_SUCCESS_IN(library, QLBCR_SetAllowExternalBarcodeDevice(0));
    // Not before the list is made again.
    EXPECT_EQ(discoverer_.List(), std::vector<Listed>{External()});
    discoverer_.Forget();
    EXPECT_EQ(discoverer_.List(), std::vector<Listed>{BuiltIn()});
    EXPECT_SUCCESS_IN(library, QLBCR_SetAllowExternalBarcodeDevice(1));
    EXPECT_EQ(discoverer_.List(), std::vector<Listed>{BuiltIn()});
    discoverer_.Forget();
    EXPECT_EQ(discoverer_.List(), std::vector<Listed>{External()});
    // The flag outlives the list.
    discoverer_.Forget();
    EXPECT_EQ(discoverer_.List(), std::vector<Listed>{External()});
}

}  // namespace
}  // namespace quarlin::test
