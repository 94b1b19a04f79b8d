// SPDX-License-Identifier: Apache-2.0
// The engine's library from loading to freeing: what it is called for, in which order, and what its refusals do.
#include <vector>

#include "barcode_honeywell/honeywell_test_win.h"
#include "support/loader_watch_win.h"
#include "support/machine_library_win.h"

namespace quarlin::test {
namespace {

constexpr std::uint16_t kStatuses[] = {1, 0x0206, 0x8000, 0xFFFF};
// The clock ticks every 16 ms, and on a busy machine it is late.
constexpr std::uint64_t kTick = 100;
constexpr std::size_t kNameRoom = sim::HoneywellDevice::kRoom;

class HoneywellLife : public HoneywellTest {
  protected:
    static Texts OfHoneywell(const std::vector<std::string>& loads) {
        Texts texts;
        bool isLoading = false;
        for (const std::string& load : loads) {
            if (load.starts_with("LoadLibrary ")) {
                isLoading = load == "LoadLibrary HEDC_RS.dll";
            }
            if (isLoading && load != "FreeLibrary") {
                texts.push_back(load);
            }
        }
        return texts;
    }
    void Initialize() {
        ASSERT_SUCCESS(QLBCR_Initialize());
        Engine().TakeCalls();
    }
};

TEST_F(HoneywellLife, LooksForAllFunctionsInOrder) {
    int count = 0;
    ASSERT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
    Texts wanted{"LoadLibrary HEDC_RS.dll"};
    for (const char* const name : sim::kHoneywellFunctionNames) {
        wanted.push_back(std::string("GetProcAddress ") + name);
    }
    const LoaderWatch watch;
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_EQ(OfHoneywell(watch.Take()), wanted);
}

TEST_F(HoneywellLife, EndsWhatAnotherLeftBeforeItStarts) {
    int count = 0;
    ASSERT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
    ASSERT_EQ(count, 1);
    EXPECT_EQ(Engine().TakeTexts(), kProbeCalls);
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_EQ(Engine().TakeTexts(), kStartCalls);
    EXPECT_EQ(BarcodeState(), 1);
}

TEST_F(HoneywellLife, IsWholeFromBeginningToEnd) {
    Initialize();
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(Engine().TakeTexts(), kConnectCalls);
    EXPECT_EQ(BarcodeState(), 2);
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_EQ(Engine().TakeTexts(), Texts{"Disconnect 0"});
    EXPECT_EQ(BarcodeState(), 1);
    EXPECT_SUCCESS(QLBCR_Uninitialize());
    EXPECT_EQ(Engine().TakeTexts(), Texts{"Deinitialize"});
    EXPECT_EQ(GetModuleHandleW(kHoneywellLibrary), nullptr);
    EXPECT_EQ(FindListenerWindow(), nullptr);
}

TEST_F(HoneywellLife, CanBeRepeated) {
    for (int round = 0; round < 3; ++round) {
        EXPECT_SUCCESS(QLBCR_Initialize());
        Engine().TakeCalls();
        for (int i = 0; i < 3; ++i) {
            EXPECT_SUCCESS(QLBCR_Enable());
            EXPECT_SUCCESS(QLBCR_Disable());
        }
        Texts wanted;
        for (int i = 0; i < 3; ++i) {
            wanted.insert(wanted.end(), kConnectCalls.begin(), kConnectCalls.end());
            wanted.emplace_back("Disconnect 0");
        }
        EXPECT_EQ(Engine().TakeTexts(), wanted);
        EXPECT_SUCCESS(QLBCR_Uninitialize());
    }
}

TEST_F(HoneywellLife, DoesNotMindThatThereIsNothingToEnd) {
    Engine().Refuse(HoneywellFunction::kDeinitialize);
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_EQ(BarcodeState(), 1);
    EXPECT_SUCCESS(QLBCR_Uninitialize());
    EXPECT_EQ(GetModuleHandleW(kHoneywellLibrary), nullptr);
}

TEST_F(HoneywellLife, FailsWhenTheLibraryDoesNotStart) {
    int count = 0;
    ASSERT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
    for (const std::uint16_t status : kStatuses) {
        Engine().TakeCalls();
        Engine().Refuse(HoneywellFunction::kInitialize, status);
        EXPECT_FAILURE(QLBCR_Initialize(), QLERR_INTERNAL_ERROR, kNoHoneywellStart) << status;
        const Texts calls = Engine().TakeTexts();
        ASSERT_GE(calls.size(), 2U);
        EXPECT_EQ(calls[0], "Deinitialize");
        EXPECT_EQ(calls[1], kHoneywellInitialize);
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "RegisterCallback 1"), 0);
        EXPECT_EQ(GetModuleHandleW(kHoneywellLibrary), nullptr);
        EXPECT_EQ(BarcodeState(), 0);
        EXPECT_FAILURE(QLBCR_Uninitialize(), QLERR_INVALID_STATE, "The device is already un-initialized");
        EXPECT_EQ(FindListenerWindow(), nullptr);
    }
    Engine().Obey();
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_EQ(BarcodeState(), 1);
}

TEST_F(HoneywellLife, ConnectsByTheListedNameWithoutItsTerminator) {
    const std::string name = "HID\\VID_0C2E&PID_0B61 #7 (\xC3\xA4)";
    Engine().Use()->devices[0].SetName(name.c_str());
    Initialize();
    EXPECT_SUCCESS(QLBCR_Enable());
    const std::vector<EngineCall> calls = Engine().TakeCalls();
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(RequestOf(calls[0]), name);
    EXPECT_EQ(calls[0].requestLength, name.size());
    EXPECT_EQ(std::string(Engine().Use()->path), name);
}

TEST_F(HoneywellLife, ConnectsByANameThatFillsItsBuffer) {
    Engine().Use()->devices[0].SetName(std::string(kNameRoom, 'n').c_str());
    Initialize();
    // No device has the name as it was understood.
    Engine().Refuse(HoneywellFunction::kConnect, 0);
    Engine().Refuse(HoneywellFunction::kDisconnect, 0);
    EXPECT_SUCCESS(QLBCR_Enable());
    const std::vector<EngineCall> calls = Engine().TakeCalls();
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_GE(calls[0].requestLength, kNameRoom - 1);
    EXPECT_LE(calls[0].requestLength, kNameRoom);
    EXPECT_EQ(RequestOf(calls[0]), std::string(EngineCall::kRoom, 'n'));
    EXPECT_SUCCESS(QLBCR_Disable());
}

TEST_F(HoneywellLife, DoesNotMindARefusedName) {
    Initialize();
    // The engine takes the name all the same.
    {
        const auto state = Engine().Use();
        state->Refuse(HoneywellFunction::kSetPathName, 7);
        state->pathLength = static_cast<std::uint32_t>(std::string("N6603 on USB 1").copy(state->path, 1024));
    }
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(Engine().TakeTexts(), kConnectCalls);
}

TEST_F(HoneywellLife, TriesToConnectAgainUntilItGoes) {
    Initialize();
    Engine().Refuse(HoneywellFunction::kConnect, 0x8000, 2);
    EXPECT_SUCCESS(QLBCR_Enable());
    const std::vector<EngineCall> calls = Engine().TakeCalls();
    ASSERT_EQ(calls.size(), 4U);
    for (std::size_t i = 2; i < 4; ++i) {
        EXPECT_GE(calls[i].milliseconds - calls[i - 1].milliseconds + kTick, 500U);
    }
    EXPECT_EQ(BarcodeState(), 2);
}

TEST_F(HoneywellLife, GivesUpConnectingAfterNineTimes) {
    Initialize();
    Engine().Refuse(HoneywellFunction::kConnect, 0xFFFF);
    EXPECT_FAILURE(QLBCR_Enable(), QLERR_INTERNAL_ERROR, kNoConnection);
    const std::vector<EngineCall> calls = Engine().TakeCalls();
    ASSERT_EQ(calls.size(), 10U);
    EXPECT_EQ(calls[0].function, static_cast<std::uint32_t>(HoneywellFunction::kSetPathName));
    for (std::size_t i = 1; i < calls.size(); ++i) {
        EXPECT_EQ(calls[i].function, static_cast<std::uint32_t>(HoneywellFunction::kConnect));
        const std::uint64_t pause = i > 1 ? calls[i].milliseconds - calls[i - 1].milliseconds : 500;
        EXPECT_GE(pause + kTick, 500U) << i;
        EXPECT_LT(pause, 3000U) << i;
    }
    EXPECT_EQ(BarcodeState(), 1);
    Engine().Obey();
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(BarcodeState(), 2);
}

TEST_F(HoneywellLife, ConnectsInTheNinthRound) {
    Initialize();
    Engine().Refuse(HoneywellFunction::kConnect, 1, 8);
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(Engine().TakeCalls().size(), 10U);
    EXPECT_EQ(BarcodeState(), 2);
}

TEST_F(HoneywellLife, StaysEnabledWhenTheEngineDoesNotDisconnect) {
    Enable();
    for (const std::uint16_t status : kStatuses) {
        Engine().Refuse(HoneywellFunction::kDisconnect, status);
        EXPECT_FAILURE(QLBCR_Disable(), QLERR_INTERNAL_ERROR, kNoDisconnection) << status;
        EXPECT_EQ(Engine().TakeTexts(), Texts{"Disconnect 0"});
        EXPECT_EQ(BarcodeState(), 2);
    }
    Scan("still here");
    EXPECT_EQ(log_.AwaitCount(1).text, "still here");
    Engine().Obey();
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_EQ(BarcodeState(), 1);
}

TEST_F(HoneywellLife, RefusesToEndWhileEnabled) {
    Enable();
    EXPECT_FAILURE(QLBCR_Uninitialize(), QLERR_INVALID_STATE,
                   "The device is not disabled. Please disable before further use");
    EXPECT_FAILURE(QLBCR_Enable(), QLERR_INVALID_STATE, "The device is already enabled");
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_EQ(BarcodeState(), 2);
}

}  // namespace
}  // namespace quarlin::test
