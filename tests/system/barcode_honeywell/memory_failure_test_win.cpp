// SPDX-License-Identifier: Apache-2.0
// Memory runs out in the middle of a call: each of its allocations fails once, one after the other.
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "barcode_honeywell/honeywell_test_win.h"
#include "support/failing_allocation_win.h"
#include "support/import_hook_win.h"

namespace quarlin::test {
namespace {

constexpr int kMostAllocations = 400;
constexpr const char* kLong = "a text that is longer than any small one";

class HoneywellMemory : public HoneywellTest {
  protected:
    // `afterwards` is told each time whether the call has succeeded.
    template <typename Call, typename Afterwards>
    void WithEachAllocationFailing(Call&& call, Afterwards&& afterwards) {
        for (int number = 1; number < kMostAllocations; ++number) {
            QLerr result = QLERR_OK;
            bool hasFailed = false;
            {
                const FailingAllocation failing(number);
                result = call();
                hasFailed = failing.HasFailed();
            }
            const Failure failure = FetchLastError();
            EXPECT_TRUE(result == QLERR_OK || result == QLERR_INTERNAL_ERROR) << number << ": " << failure;
            if (result == QLERR_OK) {
                EXPECT_EQ(failure, Failure{}) << number;
            } else if (failure.code != QLERR_OK) {
                // Without memory for the record there is none.
                EXPECT_EQ(failure, (Failure{QLERR_INTERNAL_ERROR, "An unknown error occurred"})) << number;
            }
            afterwards(result == QLERR_OK);
            ASSERT_FALSE(HasFatalFailure()) << number;
            if (!hasFailed) {
                EXPECT_EQ(result, QLERR_OK) << failure;
                return;
            }
        }
        FAIL() << "there is no end to its allocations";
    }
    void ExpectDelivering() {
        const std::size_t count = log_.Count();
        Scan("text", "]A0");
        EXPECT_NE(log_.AwaitCount(count + 1).text.find("text"), std::string::npos);
    }
    // The engine's library was ended before it was freed, as often as it was begun.
    void ExpectEnded() {
        EXPECT_EQ(GetModuleHandleW(kHoneywellLibrary), nullptr);
        EXPECT_EQ(Engine().Use()->initialized, 0U);
        const Texts calls = Engine().TakeTexts();
        EXPECT_TRUE(calls.empty() || calls.back() == "Deinitialize") << ::testing::PrintToString(calls);
        EXPECT_EQ(FindListenerWindow(), nullptr);
    }
};

TEST_F(HoneywellMemory, ThatIsShortFailsInitializeWhichCanBeTriedAgain) {
    WithEachAllocationFailing([] { return QLBCR_Initialize(); },
                              [this](bool succeeded) {
                                  ASSERT_EQ(BarcodeState(), succeeded ? 1 : 0);
                                  if (!succeeded) {
                                      ExpectEnded();
                                  }
                                  Enable();
                                  ExpectDelivering();
                                  ASSERT_SUCCESS(QLBCR_Disable());
                                  ASSERT_SUCCESS(QLBCR_Uninitialize());
                                  ExpectEnded();
                              });
}

TEST_F(HoneywellMemory, ThatIsShortFailsSelecting) {
    WithEachAllocationFailing([] { return QLBCR_SelectDevice(0); },
                              [this](bool succeeded) {
                                  ASSERT_EQ(BarcodeState(), succeeded ? 1 : 0);
                                  if (!succeeded) {
                                      ExpectEnded();
                                  }
                                  ASSERT_SUCCESS(QLBCR_SelectDevice(0));
                                  ASSERT_SUCCESS(QLBCR_Uninitialize());
                                  ExpectEnded();
                              });
}

TEST_F(HoneywellMemory, ThatIsShortFailsTheListOfDevices) {
    WithEachAllocationFailing(
        [] {
            QLBCR_DEVICE_INFO info{};
            int count = 1;
            const QLerr result = QLBCR_GetBarcodeDevices(&info, &count);
            EXPECT_STREQ(info.deviceName, result == QLERR_OK ? "Honeywell MiniDB" : nullptr);
            return result;
        },
        [this](bool) {
            ExpectEnded();
            ASSERT_SUCCESS(QLBCR_Initialize());
            ASSERT_SUCCESS(QLBCR_Uninitialize());
            ExpectEnded();
        });
}

TEST_F(HoneywellMemory, ThatIsShortFailsTheListForDotNet) {
    WithEachAllocationFailing(
        [] {
            int result = 77;
            int count = 1;
            QLBCR_DEVICE_INFO* const list = QLBCR_dotNet_GetBarcodeDevices(&result, &count);
            EXPECT_EQ(count, list != nullptr ? 1 : 0);
            EXPECT_EQ(result, list != nullptr ? 0 : 77);
            SystemFunction<void(void*)>("msvcrt.dll", "free")(list);
            return list != nullptr ? QLERR_OK : QLERR_INTERNAL_ERROR;
        },
        [this](bool) {
            ExpectEnded();
            ASSERT_SUCCESS(QLBCR_Initialize());
            ASSERT_SUCCESS(QLBCR_Uninitialize());
        });
}

TEST_F(HoneywellMemory, ThatIsShortFailsEnable) {
    ASSERT_SUCCESS(QLBCR_Initialize());
    WithEachAllocationFailing([] { return QLBCR_Enable(); },
                              [this](bool succeeded) {
                                  ASSERT_EQ(BarcodeState(), succeeded ? 2 : 1);
                                  if (!succeeded) {
                                      ASSERT_SUCCESS(QLBCR_Enable());
                                  }
                                  ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback()));
                                  ExpectDelivering();
                                  ASSERT_SUCCESS(QLBCR_Disable());
                              });
}

TEST_F(HoneywellMemory, ThatIsShortDoesNotKeepTheScanner) {
    Enable();
    WithEachAllocationFailing(
        [] {
            const QLerr disabled = QLBCR_Disable();
            return disabled == QLERR_OK ? QLBCR_Uninitialize() : disabled;
        },
        [this](bool succeeded) {
            ASSERT_TRUE(succeeded);
            ExpectEnded();
            Enable();
            ExpectDelivering();
        });
}

// A refusal takes memory for its text.
TEST_F(HoneywellMemory, ThatIsShortMakesNoRefusalASuccess) {
    Enable();
    for (int number = 1; number <= 5; ++number) {
        const FailingAllocation failing(number);
        for (const auto call : {&QLBCR_Uninitialize, &QLBCR_Enable}) {
            const QLerr result = call();
            EXPECT_TRUE(result == QLERR_INVALID_STATE || result == QLERR_INTERNAL_ERROR) << result;
        }
        EXPECT_NE(QLBCR_SetHardwareTriggerEnabled(1), QLERR_OK);
    }
    FetchLastError();
    EXPECT_EQ(BarcodeState(), 2);
    ExpectDelivering();
}

struct Setting {
    const char* name;
    std::function<QLerr()> call;
};

const std::vector<Setting> kWhileEnabled = {
    {"AllowExternal", [] { return QLBCR_SetAllowExternalBarcodeDevice(0); }},
    {"IsEnabled",
     [] {
         unsigned int enabled = 0;
         return QLBCR_IsEnabled(&enabled);
     }},
    {"GetDeviceType",
     [] {
         unsigned int type = 0;
         return QLBCR_GetDeviceType(&type);
     }},
    {"GetDeviceName",
     [] {
         std::array<char, 128> text{};
         unsigned int size = text.size();
         return QLBCR_GetDeviceName(text.data(), &size);
     }},
    {"GetDeviceFirmwareVersion",
     [] {
         std::array<char, 128> text{};
         unsigned int size = text.size();
         return QLBCR_GetDeviceFirmwareVersion(text.data(), &size);
     }},
    {"SetCallback", [] { return QLBCR_SetCallback(ScanLog::Callback()); }},
    {"StartScanning", [] { return QLBCR_StartScanning(); }},
    {"StopScanning", [] { return QLBCR_StopScanning(); }},
    {"EnableSymbology", [] { return QLBCR_EnableSymbology(1, L"EAN_ISSN"); }},
    {"EnableSymbologies", [] { return QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_EAN_ISSN); }},
    {"SetTriggerMode", [] { return QLBCR_SetTriggerMode(1); }},
    {"IsHardwareTriggerEnabled",
     [] {
         unsigned char enabled = 0;
         return QLBCR_IsHardwareTriggerEnabled(&enabled);
     }},
    {"SetSoundEnabled", [] { return QLBCR_SetSoundEnabled(0); }},
    {"IsSoundEnabled",
     [] {
         unsigned char enabled = 0;
         return QLBCR_IsSoundEnabled(&enabled);
     }},
    {"SetReadSuccessSoundFile", [] { return QLBCR_SetReadSuccessSoundFile(L"C:\\windows"); }},
    {"SetPrefixData", [] { return QLBCR_SetPrefixData(1, kLong); }},
    {"SetSuffixData", [] { return QLBCR_SetSuffixData(1, kLong); }},
    {"GetPrefixData",
     [] {
         unsigned int asTop = 0;
         std::array<char, QLBCR_TEXT_SIZE> text{};
         return QLBCR_GetPrefixData(&asTop, text.data());
     }},
    {"GetSuffixData",
     [] {
         unsigned int asTop = 0;
         std::array<char, QLBCR_TEXT_SIZE> text{};
         return QLBCR_GetSuffixData(&asTop, text.data());
     }},
    {"SetDataEditingMode", [] { return QLBCR_SetDataEditingMode(QLBCR_EDIT_REPLACE, kLong, kLong, 1, 1); }},
    {"GetDataEditingMode",
     [] {
         unsigned int mode = 0;
         std::array<char, QLBCR_TEXT_SIZE> target{};
         std::array<char, QLBCR_TEXT_SIZE> content{};
         int start = 0;
         int end = 0;
         return QLBCR_GetDataEditingMode(&mode, target.data(), content.data(), &start, &end);
     }},
    {"GetNoOfDevices",
     [] {
         int count = 0;
         return QLBCR_dotNet_GetNoOfDevices(&count);
     }},
    {"Initialize", [] { return QLBCR_Initialize(); }},
    {"SelectDevice", [] { return QLBCR_SelectDevice(0); }},
};

TEST_F(HoneywellMemory, ThatIsShortLeavesTheConnectionAsItIs) {
    Enable();
    for (const Setting& setting : kWhileEnabled) {
        SCOPED_TRACE(setting.name);
        WithEachAllocationFailing(setting.call, [](bool) { ASSERT_EQ(BarcodeState(), 2); });
        ExpectDelivering();
    }
}

// On the listener's thread nobody can be told: the scan is lost, and the next one comes.
TEST_F(HoneywellMemory, ThatIsShortLosesNoMoreThanItsScan) {
    Enable();
    ASSERT_SUCCESS(QLBCR_SetPrefixData(1, "<"));
    const std::string text(200, 't');
    bool hasFailed = true;
    for (int number = 1; hasFailed; ++number) {
        ASSERT_LT(number, kMostAllocations);
        // Made by the callback, on the thread that it is to fail on.
        std::unique_ptr<FailingAllocation> failing;
        log_.Clear();
        log_.DoInside([&](const QLBCR_BARCODE_DATA&) { failing = std::make_unique<FailingAllocation>(number); });
        Scan("begin");
        log_.AwaitCount(1);
        log_.AwaitQuiet();
        log_.DoInside({});
        Scan(text, "]Q1000");
        Await("the scan, or its loss", [&] { return failing->HasFailed() || log_.Count() == 2; });
        log_.AwaitQuiet();
        hasFailed = failing->HasFailed();
        failing.reset();
        Scan("end");
        Await("the last scan", [&] { return log_.Texts().back() == "<end"; });
        log_.AwaitQuiet();
        if (log_.Count() == 3) {
            EXPECT_EQ(log_.Scans()[1].text, "<" + text);
            EXPECT_EQ(log_.Scans()[1].symbologyId, "]Q100");
        } else {
            EXPECT_EQ(log_.Count(), 2U);
            EXPECT_TRUE(hasFailed);
        }
        EXPECT_EQ(BarcodeState(), 2);
    }
}

}  // namespace
}  // namespace quarlin::test
