// SPDX-License-Identifier: Apache-2.0
// Memory, or the system, runs out in the middle: each allocation of a call fails once, one after the other.
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "barcode/intermec_test_win.h"
#include "support/failing_allocation_win.h"
#include "support/import_hook_win.h"

namespace quarlin::test {
namespace {

constexpr int kMostAllocations = 200;

class IntermecMemory : public IntermecTest {
  protected:
    // Fails the call's allocations one by one until there are no more. `afterwards` is told each time whether the call
    // has succeeded.
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
            EXPECT_TRUE(result == QLERR_OK || result == QLERR_INTERNAL_ERROR) << failure;
            afterwards(result == QLERR_OK);
            ASSERT_FALSE(HasFatalFailure());
            if (!hasFailed) {
                EXPECT_EQ(result, QLERR_OK) << failure;
                return;
            }
        }
        FAIL() << "there is no end to its allocations";
    }
    void ExpectDelivering() {
        const std::size_t count = log_.Count();
        machine_.ScanIntermec("text");
        log_.AwaitCount(count + 1);
    }
};

TEST_F(IntermecMemory, ThatIsShortFailsInitializeWhichCanBeTriedAgain) {
    WithEachAllocationFailing([] { return QLBCR_Initialize(); },
                              [this](bool succeeded) {
                                  EXPECT_EQ(BarcodeState(), succeeded ? 1 : 0);
                                  ASSERT_SUCCESS(QLBCR_Initialize());
                                  ASSERT_EQ(BarcodeState(), 1);
                                  ASSERT_SUCCESS(QLBCR_Enable());
                                  ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback()));
                                  ExpectDelivering();
                                  ASSERT_SUCCESS(QLBCR_Disable());
                                  ASSERT_SUCCESS(QLBCR_Uninitialize());
                                  EXPECT_EQ(FindListenerWindow(), nullptr);
                              });
}

TEST_F(IntermecMemory, ThatIsShortFailsTheListOfDevices) {
    WithEachAllocationFailing(
        [] {
            int count = 0;
            const QLerr result = QLBCR_GetBarcodeDevices(nullptr, &count);
            EXPECT_EQ(count, result == QLERR_OK ? 1 : 0);
            return result;
        },
        [](bool) {
            ASSERT_SUCCESS(QLBCR_Initialize());
            ASSERT_SUCCESS(QLBCR_Uninitialize());
        });
}

TEST_F(IntermecMemory, ThatIsShortFailsEnable) {
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

TEST_F(IntermecMemory, ThatIsShortDoesNotKeepTheDeviceEnabled) {
    Enable();
    WithEachAllocationFailing(
        [] { return BarcodeState() == 2 && QLBCR_Disable() != QLERR_OK ? QLERR_INTERNAL_ERROR : QLBCR_Uninitialize(); },
        [this](bool succeeded) {
            EXPECT_TRUE(succeeded);
            Enable();
        });
}

struct Setting {
    const char* name;
    std::function<QLerr()> set;
};

TEST_F(IntermecMemory, ThatIsShortLeavesTheSettingsAsTheyWere) {
    Enable();
    constexpr const char* kLong = "a text that is longer than any small one";
    const std::vector<Setting> settings = {
        {"prefix", [] { return QLBCR_SetPrefixData(1, kLong); }},
        {"suffix", [] { return QLBCR_SetSuffixData(1, kLong); }},
        {"edit", [] { return QLBCR_SetDataEditingMode(QLBCR_EDIT_REPLACE, kLong, kLong, 1, 1); }},
        {"sound", [] { return QLBCR_SetReadSuccessSoundFile(L"C:\\windows"); }},
        {"sound on", [] { return QLBCR_SetSoundEnabled(0); }},
        {"callback", [] { return QLBCR_SetCallback(ScanLog::Callback()); }},
        {"symbology", [] { return QLBCR_EnableSymbology(1, L"QR"); }},
        {"trigger", [] { return QLBCR_SetTriggerMode(1); }},
        {"start", [] { return QLBCR_StartScanning(); }},
        {"stop", [] { return QLBCR_StopScanning(); }},
        {"firmware",
         [] {
             std::array<char, 128> text{};
             unsigned int size = text.size();
             return QLBCR_GetDeviceFirmwareVersion(text.data(), &size);
         }},
        {"name",
         [] {
             std::array<char, 128> text{};
             unsigned int size = text.size();
             return QLBCR_GetDeviceName(text.data(), &size);
         }},
        {"dotNet",
         [] {
             int result = 0;
             int count = 1;
             QLBCR_DEVICE_INFO* const list = QLBCR_dotNet_GetBarcodeDevices(&result, &count);
             SystemFunction<void(void*)>("msvcrt.dll", "free")(list);
             return list != nullptr ? QLERR_OK : QLERR_INTERNAL_ERROR;
         }},
    };
    for (const Setting& setting : settings) {
        SCOPED_TRACE(setting.name);
        WithEachAllocationFailing(setting.set, [](bool) { ASSERT_EQ(BarcodeState(), 2); });
    }
    ASSERT_SUCCESS(QLBCR_SetPrefixData(1, "before "));
    WithEachAllocationFailing([] { return QLBCR_SetPrefixData(1, kLong); },
                              [](bool succeeded) {
                                  std::array<char, QLBCR_TEXT_SIZE> text{};
                                  unsigned int flag = 0;
                                  EXPECT_SUCCESS(QLBCR_GetPrefixData(&flag, text.data()));
                                  EXPECT_STREQ(text.data(), succeeded ? kLong : "before ");
                              });
}

// On the listener's thread nobody can be told: the scan is lost, and the next one comes.
TEST_F(IntermecMemory, ThatIsShortLosesNoMoreThanItsScan) {
    Enable();
    const std::string text(200, 't');
    ASSERT_SUCCESS(QLBCR_SetPrefixData(1, "<"));
    // Made by the callback, on the thread that it is to fail on, and ended by its next one.
    std::unique_ptr<FailingAllocation> failing;
    for (int number = 1;; ++number) {
        ASSERT_LT(number, kMostAllocations);
        log_.DoInside([&](const QLBCR_BARCODE_DATA&) { failing = std::make_unique<FailingAllocation>(number); });
        machine_.ScanIntermec("begin");
        log_.AwaitCount(1);
        log_.AwaitQuiet();
        log_.DoInside({});
        Engine().TakeCalls();
        machine_.ScanIntermec(text);
        // Fetched is not yet delivered; what comes behind it is.
        Engine().AwaitCalls("GetBarcodeDataEx");
        Await("the scan, or its loss",
              [&] { return failing->HasFailed() || (log_.Count() == 2 && log_.Running() == 0); });
        const bool hasFailed = failing->HasFailed();
        failing.reset();
        machine_.ScanIntermec("end");
        Await("the last scan", [&] { return log_.Texts().back() == "<end"; });
        log_.AwaitQuiet();
        const Texts received = log_.Texts();
        log_.Clear();
        EXPECT_EQ(received.front(), "<begin");
        if (received.size() == 3) {
            EXPECT_EQ(received[1], "<" + text);
        } else {
            EXPECT_EQ(received.size(), 2U);
            EXPECT_TRUE(hasFailed);
        }
        EXPECT_EQ(BarcodeState(), 2);
        if (!hasFailed) {
            break;
        }
    }
}

uintptr_t __cdecl StartNoThread(void*, unsigned, unsigned(__stdcall*)(void*), void*, unsigned, unsigned*) {
    return 0;
}

TEST_F(IntermecMemory, IsNotEnoughForAThread) {
    for (int round = 0; round < 2; ++round) {
        const ImportHook hook("msvcrt.dll", "_beginthreadex", &StartNoThread);
        EXPECT_FAILURE(QLBCR_Initialize(), QLERR_INTERNAL_ERROR, "Unable to create Windows message receiving window.");
        EXPECT_EQ(BarcodeState(), 0);
        EXPECT_EQ(GetModuleHandleW(L"ISDC_RS.dll"), nullptr);
    }
    Enable();
    ExpectDelivering();
}

}  // namespace
}  // namespace quarlin::test
