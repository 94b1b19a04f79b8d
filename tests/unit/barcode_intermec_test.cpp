// SPDX-License-Identifier: Apache-2.0
#include "barcode_parts.h"

#include "bcr/intermec_engine.h"

#include <gtest/gtest.h>

namespace quarlin::test {
namespace {

using bcr::BarcodeEngineKind;
using Calls = std::vector<std::string>;

class IntermecEngineTest : public ::testing::Test {
  protected:
    IntermecEngineTest() {
        engine = {};
        libraries_.Offer(IntermecOfTheTest());
        Load(BarcodeEngineKind::kIntermecBuiltIn, {});
    }
    ~IntermecEngineTest() override { EXPECT_EQ(system_.held, 0); }

    void Load(BarcodeEngineKind kind, bcr::EngineAddress address) {
        scanner_.emplace(libraries_, share_, kind, std::move(address));
        scanner_->Load();
    }
    std::string FailureOfConnect() {
        try {
            scanner_->Connect(nullptr);
        } catch (const QuarlinException& failure) {
            EXPECT_EQ(failure.code, QLERR_INTERNAL_ERROR);
            return failure.what();
        }
        return {};
    }

    MemoryLibraries libraries_;
    ScriptedSystem system_;
    bcr::EngineShare share_{system_};
    std::optional<bcr::IntermecEngine> scanner_;
};

TEST_F(IntermecEngineTest, AnAnswerThatClaimsToBeLongerThanTheBufferIsNotReadBeyondIt) {
    engine.answer = "1234version";
    engine.claimed = 0xFFFFFFFF;
    const auto version = scanner_->FirmwareVersion();
    ASSERT_TRUE(version);
    EXPECT_EQ(version->size(), 4096U - 4);
    EXPECT_EQ(version->substr(0, 7), "version");
}

TEST_F(IntermecEngineTest, TheFirmwareTextGoesByTheAnswersLength) {
    engine.answer = "1234a long version";
    ASSERT_EQ(scanner_->FirmwareVersion(), "a long version");
    engine.answer = "1234v2";
    EXPECT_EQ(scanner_->FirmwareVersion(), "v2");
    engine.answer = "1234";
    EXPECT_EQ(scanner_->FirmwareVersion(), "");
    engine.answer = "1";
    EXPECT_EQ(scanner_->FirmwareVersion(), "");
}

TEST_F(IntermecEngineTest, AnAnswerWithoutAValueByteIsNoAnswer) {
    engine.answer = "pA";
    EXPECT_EQ(scanner_->HardwareTrigger(), std::nullopt);
    engine.answer = std::string("pA\0", 3);
    EXPECT_EQ(scanner_->HardwareTrigger(), false);
    engine.answer = "pA\x02";
    EXPECT_EQ(scanner_->HardwareTrigger(), true);
}

TEST_F(IntermecEngineTest, ConnectingPausesBetweenItsNineTriesAlone) {
    engine.statuses["Connect"] = std::deque<bcr::EngineStatus>(20, 7);
    EXPECT_EQ(FailureOfConnect(), "Unable to connect barcode.");
    Calls expected = {"ConfigurationDialog"};
    for (int i = 0; i < 8; ++i) {
        expected.insert(expected.end(), {"Connect", "pause 500"});
    }
    expected.emplace_back("Connect");
    EXPECT_EQ(TakeCalls(), expected);
}

TEST_F(IntermecEngineTest, AUsbEngineIsToldItsPathWithTheTerminator) {
    Load(BarcodeEngineKind::kIntermecUsb0809, {"AB", 0, std::nullopt});
    engine.answer = "sN\x01";
    scanner_->Connect(nullptr);
    EXPECT_EQ(TakeCalls().front(), "DeviceIOControl 260 41 42 00 out 0");
    EXPECT_EQ(libraries_.asked.back(), L"ISDC_HID.dll");
}

TEST_F(IntermecEngineTest, ASerialEngineIsToldItsPort) {
    Load(BarcodeEngineKind::kIntermecSerial, {"", 0, 0x0A0B});
    engine.answer = "sN\x01";
    scanner_->Connect(nullptr);
    EXPECT_EQ(TakeCalls().front(), "DeviceIOControl 525 0B 0A 00 00 out 4");
    EXPECT_EQ(libraries_.asked.back(), L"ISDC_RS.dll");
}

struct DataMode {
    const char* name;
    std::uint8_t before;
    Calls atConnect;
    Calls atDisconnect;
};

class DataModeTest : public IntermecEngineTest, public ::testing::WithParamInterface<DataMode> {};

TEST_P(DataModeTest, IsPutBackByDisconnecting) {
    engine.answer = std::string("sN") + static_cast<char>(GetParam().before);
    scanner_->Connect(nullptr);
    Calls expected = {"ConfigurationDialog", "Connect",        "MessageIdentify 1", "ControlCommand 50 40 00",
                      "SetupWrite 73 40 01", "SetupRead 73 4E"};
    expected.insert(expected.end(), GetParam().atConnect.begin(), GetParam().atConnect.end());
    EXPECT_EQ(TakeCalls(), expected);

    scanner_->Disconnect();
    expected = GetParam().atDisconnect;
    expected.insert(expected.end(), {"SetupWrite 73 40 00", "ControlCommand 30 02", "Disconnect"});
    EXPECT_EQ(TakeCalls(), expected);
}

INSTANTIATE_TEST_SUITE_P(Values, DataModeTest,
                         ::testing::Values(DataMode{"One", 1, {}, {}},
                                           DataMode{"Zero", 0, {"SetupWrite 73 4E 01"}, {"SetupWrite 73 4E 00"}},
                                           DataMode{"Two", 2, {"SetupWrite 73 4E 01"}, {"SetupWrite 73 4E 02"}},
                                           DataMode{"Other", 0x80, {"SetupWrite 73 4E 01"}, {"SetupWrite 73 4E 02"}}),
                         [](const auto& row) { return row.param.name; });

struct LinkFailure {
    const char* name;
    const char* function;
    std::size_t before;  // calls of the function that succeed first
    const char* message;
};

class LinkFailureTest : public IntermecEngineTest, public ::testing::WithParamInterface<LinkFailure> {};

TEST_P(LinkFailureTest, AfterConnectEndsTheConnection) {
    engine.answer = std::string("sN\0", 3);
    engine.statuses[GetParam().function] = std::deque<bcr::EngineStatus>(GetParam().before, bcr::kEngineOk);
    engine.statuses[GetParam().function].push_back(0x8000);
    EXPECT_EQ(FailureOfConnect(), GetParam().message);
    EXPECT_EQ(TakeCalls().back(), "Disconnect");
}

INSTANTIATE_TEST_SUITE_P(
    Steps, LinkFailureTest,
    ::testing::Values(LinkFailure{"MessageIdentify", "MessageIdentify", 0,
                                  "Unable to register barcode event messages."},
                      LinkFailure{"PrepareLink", "ControlCommand", 0, "Error setting up barcode connection."},
                      LinkFailure{"EnableLink", "SetupWrite", 0, "Error setting up barcode connection."},
                      LinkFailure{"ReadDataMode", "SetupRead", 0, "Error setting up barcode connection."},
                      LinkFailure{"WriteDataMode", "SetupWrite", 1, "Error setting up barcode connection."}),
    [](const auto& row) { return row.param.name; });

TEST_F(IntermecEngineTest, DroppingEndsWithAnEngineThatNeverRunsDry) {
    engine.answer = "x";
    scanner_->DropPendingScans();
    EXPECT_EQ(TakeCalls().size(), 1000U);
}

TEST_F(IntermecEngineTest, DroppingEndsAtTheFirstEmptyOrRefusedRead) {
    scanner_->DropPendingScans();
    EXPECT_EQ(TakeCalls(), Calls{"GetBarcodeDataEx 0"});
    engine.answer = "x";
    engine.statuses["GetBarcodeDataEx"] = {0, 5};
    scanner_->DropPendingScans();
    EXPECT_EQ(TakeCalls().size(), 2U);
}

TEST_F(IntermecEngineTest, ARefusedScanIsRaised) {
    engine.statuses["GetBarcodeDataEx"] = {1};
    try {
        scanner_->TakeScan({}, 0, nullptr);
        FAIL();
    } catch (const QuarlinException& failure) {
        EXPECT_STREQ(failure.what(), "Unable retrieve barcode extended data.");
    }
}

TEST_F(IntermecEngineTest, ShuttingDownEndsWhatWasStartedAlone) {
    scanner_->ShutDown();
    EXPECT_EQ(TakeCalls(), Calls{});
    EXPECT_EQ(libraries_.frees, 1);

    scanner_->Load();
    scanner_->Start();
    scanner_->ShutDown();
    EXPECT_EQ(TakeCalls(), (Calls{"Initialize HKCU\\SOFTWARE\\Norvane\\Barcode\\Intermec 0", "Deinitialize"}));
    EXPECT_EQ(libraries_.frees, 2);
}

TEST_F(IntermecEngineTest, AFunctionThatIsMissingMakesTheWholeLibraryOneThatIsNotMeant) {
    libraries_.missing = "GetImageData";
    try {
        scanner_->Load();
        FAIL();
    } catch (const QuarlinException& failure) {
        EXPECT_EQ(failure.code, QLERR_INTERNAL_ERROR);
        EXPECT_STREQ(failure.what(), "Unable to load internal functions. Possibly due to misplaced or incorrect dlls.");
    }
    EXPECT_EQ(libraries_.looked.back(), "GetImageData");
    EXPECT_EQ(libraries_.loads, libraries_.frees);
}

}  // namespace
}  // namespace quarlin::test
