// SPDX-License-Identifier: Apache-2.0
// Engines that refuse a step of connecting or disconnecting.
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "barcode/intermec_test_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kNoConnect = "Unable to connect barcode.";
constexpr const char* kNoMessages = "Unable to register barcode event messages.";
constexpr const char* kNoSetup = "Error setting up barcode connection.";
constexpr const char* kNoReset = "Error resetting barcode connection.";
constexpr const char* kNoDisconnect = "Unable to disconnect barcode.";

// One refused step: by which call, which frame of it, and what is said.
struct Step {
    const char* name;
    IntermecFunction function;
    std::uint16_t beginning;  // 0: any
    std::uint8_t dataMode;    // before it is enabled
    Texts calls;              // up to and with the refused one
    const char* text;
};

std::ostream& operator<<(std::ostream& out, const Step& step) {
    return out << step.name;
}

std::string NameOfStep(const ::testing::TestParamInfo<Step>& info) {
    return info.param.name;
}

const std::vector<Step> kConnectSteps = {
    {"MessageIdentify",
     IntermecFunction::kMessageIdentify,
     0,
     1,
     {"ConfigurationDialog", "Connect", "MessageIdentify 1"},
     kNoMessages},
    {"PrepareLink",
     IntermecFunction::kControlCommand,
     0x5040,
     1,
     {"ConfigurationDialog", "Connect", "MessageIdentify 1", "ControlCommand 50 40 00"},
     kNoSetup},
    {"LinkOn",
     IntermecFunction::kSetupWrite,
     0x7340,
     1,
     {"ConfigurationDialog", "Connect", "MessageIdentify 1", "ControlCommand 50 40 00", "SetupWrite 73 40 01"},
     kNoSetup},
    {"ReadDataMode",
     IntermecFunction::kSetupRead,
     0x734E,
     1,
     {"ConfigurationDialog", "Connect", "MessageIdentify 1", "ControlCommand 50 40 00", "SetupWrite 73 40 01",
      "SetupRead 73 4E"},
     kNoSetup},
    {"WriteDataMode",
     IntermecFunction::kSetupWrite,
     0x734E,
     0,
     {"ConfigurationDialog", "Connect", "MessageIdentify 1", "ControlCommand 50 40 00", "SetupWrite 73 40 01",
      "SetupRead 73 4E", "SetupWrite 73 4E 01"},
     kNoSetup},
};

class IntermecConnectStep : public IntermecTest, public ::testing::WithParamInterface<Step> {};

TEST_P(IntermecConnectStep, IsTakenBackWhenItIsRefused) {
    const Step& step = GetParam();
    ASSERT_SUCCESS(QLBCR_Initialize());
    Engine().Use()->Set(sim::kIntermecDataMode, step.dataMode);
    for (const std::uint16_t status : {std::uint16_t{1}, std::uint16_t{0xFFFF}}) {
        Engine().Refuse(step.function, status, Refusal::kAlways, 0, step.beginning);
        Engine().TakeCalls();
        EXPECT_FAILURE(QLBCR_Enable(), QLERR_INTERNAL_ERROR, step.text);
        Texts expected = step.calls;
        expected.emplace_back("Disconnect");
        EXPECT_EQ(Engine().TakeTexts(), expected);
        EXPECT_EQ(BarcodeState(), 1);
        EXPECT_EQ(Engine().Use()->connected, 0U);
    }
    Engine().Obey();
    EXPECT_SUCCESS(QLBCR_Enable());
    ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback()));
    machine_.ScanIntermec("after all");
    EXPECT_EQ(log_.AwaitCount(1).text, "after all");
}

TEST_P(IntermecConnectStep, IsTakenBackEvenIfDisconnectingIsRefusedToo) {
    const Step& step = GetParam();
    ASSERT_SUCCESS(QLBCR_Initialize());
    Engine().Use()->Set(sim::kIntermecDataMode, step.dataMode);
    Engine().Refuse(step.function, 1, 1, 0, step.beginning);
    Engine().Refuse(IntermecFunction::kDisconnect, 1, 1);
    EXPECT_FAILURE(QLBCR_Enable(), QLERR_INTERNAL_ERROR, step.text);
    EXPECT_EQ(BarcodeState(), 1);
    EXPECT_SUCCESS(QLBCR_Uninitialize());
    EXPECT_EQ(Engine().Use()->initialized, 0U);
}

INSTANTIATE_TEST_SUITE_P(Steps, IntermecConnectStep, ::testing::ValuesIn(kConnectSteps), NameOfStep);

const std::vector<Step> kDisconnectSteps = {
    {"RestoreDataMode", IntermecFunction::kSetupWrite, 0x734E, 0, {"SetupWrite 73 4E 00"}, kNoSetup},
    {"RestoreOtherDataMode", IntermecFunction::kSetupWrite, 0x734E, 7, {"SetupWrite 73 4E 02"}, kNoSetup},
    {"LinkOff", IntermecFunction::kSetupWrite, 0x7340, 1, {"SetupWrite 73 40 00"}, kNoSetup},
    {"ResetLink",
     IntermecFunction::kControlCommand,
     0x3002,
     1,
     {"SetupWrite 73 40 00", "ControlCommand 30 02"},
     kNoReset},
    {"Disconnect",
     IntermecFunction::kDisconnect,
     0,
     1,
     {"SetupWrite 73 40 00", "ControlCommand 30 02", "Disconnect"},
     kNoDisconnect},
};

class IntermecDisconnectStep : public IntermecTest, public ::testing::WithParamInterface<Step> {};

TEST_P(IntermecDisconnectStep, LeavesTheDeviceEnabledWhenItIsRefused) {
    const Step& step = GetParam();
    ASSERT_SUCCESS(QLBCR_Initialize());
    Engine().Use()->Set(sim::kIntermecDataMode, step.dataMode);
    ASSERT_SUCCESS(QLBCR_Enable());
    ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback()));
    for (std::size_t round = 1; round <= 2; ++round) {
        Engine().Refuse(step.function, 1, Refusal::kAlways, 0, step.beginning);
        Engine().TakeCalls();
        EXPECT_FAILURE(QLBCR_Disable(), QLERR_INTERNAL_ERROR, step.text);
        EXPECT_EQ(Engine().TakeTexts(), step.calls);
        EXPECT_EQ(BarcodeState(), 2);
        EXPECT_FAILURE(QLBCR_Uninitialize(), QLERR_INVALID_STATE,
                       "The device is not disabled. Please disable before further use");
        machine_.ScanIntermec("still here");
        EXPECT_EQ(log_.AwaitCount(round).text, "still here");
    }
    Engine().Obey();
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_EQ(BarcodeState(), 1);
    EXPECT_SUCCESS(QLBCR_Enable());
}

INSTANTIATE_TEST_SUITE_P(Steps, IntermecDisconnectStep, ::testing::ValuesIn(kDisconnectSteps), NameOfStep);

class IntermecStart : public IntermecTest {};

TEST_F(IntermecStart, FailsWhenTheEngineRefuses) {
    for (const std::uint16_t status : {std::uint16_t{1}, std::uint16_t{0x8000}}) {
        Engine().Refuse(IntermecFunction::kInitialize, status);
        EXPECT_FAILURE(QLBCR_Initialize(), QLERR_INTERNAL_ERROR, "Unable to initialize Intermec barcode.");
        EXPECT_FAILURE(QLBCR_SelectDevice(0), QLERR_INTERNAL_ERROR, "Unable to initialize Intermec barcode.");
        EXPECT_EQ(Engine().TakeTexts(), (Texts{kInitializeCalls[0], kInitializeCalls[0]}));
        EXPECT_EQ(BarcodeState(), 0);
        EXPECT_EQ(FindListenerWindow(), nullptr);
        EXPECT_EQ(GetModuleHandleW(L"ISDC_RS.dll"), nullptr);
        EXPECT_FAILURE(QLBCR_Uninitialize(), QLERR_INVALID_STATE, "The device is already un-initialized");
    }
    Engine().Obey();
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_SUCCESS(QLBCR_Enable());
}

// Waiting for a connection takes its time; nothing else does.
class IntermecConnect : public IntermecTest {
  protected:
    void SetUp() override {
        ASSERT_SUCCESS(QLBCR_Initialize());
        Engine().TakeCalls();
    }

    static std::uint64_t Between(const std::vector<EngineCall>& calls, std::size_t first, std::size_t second) {
        return calls.at(second).milliseconds - calls.at(first).milliseconds;
    }

    static constexpr std::size_t kTries = 9;
    // The pauses in between, less what the clock may take away: it ticks every 16 ms, and on a busy machine it is late.
    static constexpr std::uint64_t kLeast = 3900;
    static constexpr std::uint64_t kLeastPause = 400;
};

TEST_F(IntermecConnect, IsTriedNineTimes) {
    Engine().Refuse(IntermecFunction::kConnect);
    EXPECT_FAILURE(QLBCR_Enable(), QLERR_INTERNAL_ERROR, kNoConnect);
    EXPECT_EQ(BarcodeState(), 1);
    const auto calls = Engine().TakeCalls();
    ASSERT_EQ(calls.size(), 1 + kTries);
    EXPECT_EQ(calls[0].function, static_cast<std::uint32_t>(IntermecFunction::kConfigurationDialog));
    for (std::size_t i = 1; i <= kTries; ++i) {
        EXPECT_EQ(calls[i].function, static_cast<std::uint32_t>(IntermecFunction::kConnect));
        if (i > 1) {
            EXPECT_GE(Between(calls, i - 1, i), kLeastPause) << i;
        }
    }
    EXPECT_GE(Between(calls, 1, kTries), kLeast);
    Engine().Obey();
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(Engine().TakeTexts(), kConnectCalls);
}

TEST_F(IntermecConnect, SucceedsWithTheNinthTry) {
    Engine().Refuse(IntermecFunction::kConnect, 0xFFFF, kTries - 1);
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(BarcodeState(), 2);
    Texts expected = kConnectCalls;
    expected.insert(expected.begin() + 1, kTries - 1, "Connect");
    const auto calls = Engine().TakeCalls();
    ASSERT_EQ(calls.size(), expected.size());
    EXPECT_GE(Between(calls, 1, kTries), kLeast);
}

TEST_F(IntermecConnect, LooksForADeviceThatIsPluggedInLate) {
    Engine().Use()->plugged = 0;
    Engine().HoldNext(IntermecFunction::kConnect);
    std::thread enabling([] { EXPECT_SUCCESS(QLBCR_Enable()); });
    Engine().AwaitHeld();
    Engine().LetGo();
    Engine().AwaitCalls("Connect", 2);
    Engine().Use()->plugged = 1;
    enabling.join();
    EXPECT_EQ(BarcodeState(), 2);
}

}  // namespace
}  // namespace quarlin::test
