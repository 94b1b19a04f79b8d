// SPDX-License-Identifier: Apache-2.0
#include "barcode_parts.h"

#include "bcr/honeywell_engine.h"

#include <quarlin/barcode.h>

#include <gtest/gtest.h>

namespace quarlin::test {
namespace {

using Calls = std::vector<std::string>;

class HoneywellEngineTest : public ::testing::Test {
  protected:
    HoneywellEngineTest() {
        engine = {};
        listedDevices.clear();
        libraries_.Offer(HoneywellOfTheTest());
        scanner_.Load();
    }
    ~HoneywellEngineTest() override { EXPECT_EQ(system_.held, 0); }

    std::string FailureOfConnect() {
        try {
            scanner_.Connect(nullptr);
        } catch (const QuarlinException& failure) {
            EXPECT_EQ(failure.code, QLERR_INTERNAL_ERROR);
            return failure.what();
        }
        return {};
    }
    static std::ptrdiff_t Count(const Calls& calls, const char* call) {
        return std::count(calls.begin(), calls.end(), call);
    }

    MemoryLibraries libraries_;
    ScriptedSystem system_;
    bcr::EngineShare share_{system_};
    ScriptedEmulator emulator_;
    bcr::HoneywellEngine scanner_{libraries_, share_, emulator_, nullptr, {"COM4", 3, std::nullopt}};
};

TEST_F(HoneywellEngineTest, APairGoesOnAfterACommandThatFailed) {
    engine.statuses["Menu"] = {9, 0};
    EXPECT_TRUE(scanner_.EnableSymbology(BARCODE_SYMBOLOGY_EAN_ISSN, true));
    EXPECT_EQ(TakeCalls(), (Calls{"Menu E13ISR1 1500", "Menu E13ISS1 1500"}));
    EXPECT_EQ(share_.lastStatus, bcr::kEngineOk);
}

TEST_F(HoneywellEngineTest, APairEndsAfterItsFirstCommandWhenTheCallBeforeItFailed) {
    share_.lastStatus = 4;
    EXPECT_TRUE(scanner_.EnableSymbology(BARCODE_SYMBOLOGY_BPO_CODE, false));
    EXPECT_EQ(TakeCalls(), Calls{"Menu POSTAL0 1500"});
    // It has succeeded, and that is what counts for the next one.
    EXPECT_EQ(share_.lastStatus, bcr::kEngineOk);
    EXPECT_TRUE(scanner_.EnableSymbology(BARCODE_SYMBOLOGY_BPO_CODE, false));
    EXPECT_EQ(TakeCalls(), (Calls{"Menu POSTAL0 1500", "Menu RMMISC0 1500"}));
}

TEST_F(HoneywellEngineTest, APairIsAsGoodAsItsLastCommand) {
    engine.statuses["Menu"] = {0, 9};
    EXPECT_FALSE(scanner_.EnableSymbology(BARCODE_SYMBOLOGY_EAN_ISSN, true));
    EXPECT_EQ(share_.lastStatus, 9);
}

TEST_F(HoneywellEngineTest, ConnectingGivesUpAfterNineRounds) {
    engine.statuses["Connect"] = std::deque<bcr::EngineStatus>(20, 7);
    EXPECT_EQ(FailureOfConnect(), "Unable to connect barcode.");
    const Calls calls = TakeCalls();
    EXPECT_EQ(calls.front(), "SetPathName COM4 4");
    EXPECT_EQ(Count(calls, "Connect"), 9);
    EXPECT_EQ(Count(calls, "pause 500"), 9);
}

TEST_F(HoneywellEngineTest, EachRoundAsksTheEmulatorThatRuns) {
    emulator_.running = true;
    emulator_.hasWindow = true;
    emulator_.states = {3, 3};
    engine.statuses["Connect"] = {7};
    EXPECT_EQ(FailureOfConnect(), "");
    EXPECT_EQ(TakeCalls(), (Calls{"SetPathName COM4 4", "ask emulator", "poll emulator", "Connect", "pause 500",
                                  "ask emulator", "poll emulator", "Connect"}));
}

TEST_F(HoneywellEngineTest, AnEmulatorThatHandsNothingOverEndsTheAttemptAfterTenPolls) {
    emulator_.running = true;
    emulator_.hasWindow = true;
    emulator_.states = std::deque<std::intptr_t>(20, 1);
    EXPECT_EQ(FailureOfConnect(), "Unable to connect barcode.");
    const Calls calls = TakeCalls();
    EXPECT_EQ(Count(calls, "poll emulator"), 10);
    EXPECT_EQ(Count(calls, "pause 500"), 10);
    EXPECT_EQ(Count(calls, "Connect"), 0);
}

TEST_F(HoneywellEngineTest, AnEmulatorThatRefusesOrIsStuckOrHasNoWindowEndsTheAttemptAtOnce) {
    emulator_.running = true;
    EXPECT_EQ(FailureOfConnect(), "Unable to connect barcode.");
    emulator_.hasWindow = true;
    emulator_.answer = 1;
    EXPECT_EQ(FailureOfConnect(), "Unable to connect barcode.");
    emulator_.answer = std::nullopt;
    EXPECT_EQ(FailureOfConnect(), "Unable to connect barcode.");
    EXPECT_EQ(TakeCalls(), (Calls{"SetPathName COM4 4", "SetPathName COM4 4", "ask emulator", "SetPathName COM4 4",
                                  "ask emulator"}));
}

TEST_F(HoneywellEngineTest, AnEmulatorThatDoesNotAnswerAPollEndsTheAttemptAtOnce) {
    emulator_.running = true;
    emulator_.hasWindow = true;
    emulator_.states = {1};
    EXPECT_EQ(FailureOfConnect(), "Unable to connect barcode.");
    EXPECT_EQ(TakeCalls(),
              (Calls{"SetPathName COM4 4", "ask emulator", "poll emulator", "pause 500", "poll emulator"}));
}

TEST_F(HoneywellEngineTest, TheFirstDeviceThatAnswersIsTaken) {
    listedDevices = {"COM1", "COM2", "COM3"};
    engine.statuses["GetDeviceFromList"] = {5, 0};
    const auto device = scanner_.FindDevice();
    ASSERT_TRUE(device);
    EXPECT_EQ(device->name, "COM2");
    EXPECT_EQ(device->number, 1U);
    EXPECT_EQ(TakeCalls(), (Calls{"Deinitialize", "Initialize HKCU\\SOFTWARE\\Norvane\\Barcode\\Honeywell 0 0",
                                  "Limit 1 0", "GetNumberDevices", "GetDeviceFromList 0 1024 1024",
                                  "GetDeviceFromList 1 1024 1024", "RegisterCallback 1"}));
}

TEST_F(HoneywellEngineTest, ANameThatFillsItsRoomIsCut) {
    listedDevices = {std::string(5000, 'n')};
    const auto device = scanner_.FindDevice();
    ASSERT_TRUE(device);
    EXPECT_EQ(device->name, std::string(1023, 'n'));
}

TEST_F(HoneywellEngineTest, AListThatClaimsToBeEndlessIsNotFollowedToItsEnd) {
    listedDevices = std::vector<std::string>(100000);
    engine.statuses["GetDeviceFromList"] = std::deque<bcr::EngineStatus>(100000, 1);
    EXPECT_FALSE(scanner_.FindDevice());
    EXPECT_EQ(TakeCalls().size(), 4U + 256);
}

TEST_F(HoneywellEngineTest, AFailingStartOrCountFindsNothing) {
    listedDevices = {"COM1"};
    engine.statuses["Initialize"] = {1};
    EXPECT_FALSE(scanner_.FindDevice());
    engine.statuses["GetNumberDevices"] = {1};
    EXPECT_FALSE(scanner_.FindDevice());
    EXPECT_TRUE(scanner_.FindDevice());
}

TEST_F(HoneywellEngineTest, AnAnswerThatClaimsToBeLongerThanTheBufferIsNotReadBeyondIt) {
    engine.answer = "v9";
    engine.claimed = 70000;
    const auto version = scanner_.FirmwareVersion();
    ASSERT_TRUE(version);
    EXPECT_EQ(version->size(), 4096U);
}

TEST_F(HoneywellEngineTest, SessionsAreForTheDeviceOfTheList) {
    EXPECT_TRUE(scanner_.SetDecoding(true));
    EXPECT_TRUE(scanner_.SetDecoding(false));
    scanner_.Disconnect();
    EXPECT_EQ(TakeCalls(), (Calls{"Start 3 1", "Stop 3 0", "Disconnect 3"}));
}

std::string TakenId(bcr::HoneywellEngine& scanner, std::string_view memory, std::uintptr_t length) {
    return scanner.TakeScan({}, length, memory.data()).symbologyId;
}

TEST_F(HoneywellEngineTest, TheIdentifierStandsBehindTheTerminator) {
    static constexpr std::string_view kMemory("ABC\0]C0xy", 9);
    system_.MakeReadable(kMemory);
    EXPECT_EQ(TakenId(scanner_, kMemory, 3), "]C0xy");
    EXPECT_EQ(scanner_.TakeScan({}, 3, kMemory.data()).text, "ABC");
}

TEST_F(HoneywellEngineTest, WhatDoesNotBeginWithABracketIsNoIdentifier) {
    static constexpr std::string_view kMemory("ABC\0x]C0y", 9);
    system_.MakeReadable(kMemory);
    EXPECT_EQ(TakenId(scanner_, kMemory, 3), "");
}

TEST_F(HoneywellEngineTest, AnIdentifierThatCannotBeReadWholeIsNone) {
    static constexpr std::string_view kMemory("ABC\0]C0x", 8);
    system_.MakeReadable(kMemory);
    EXPECT_EQ(TakenId(scanner_, kMemory, 3), "");
}

TEST_F(HoneywellEngineTest, TextEndsAtItsTerminatorAndAtItsLength) {
    static constexpr std::string_view kMemory("A\0B\0]C0xy", 9);
    system_.MakeReadable(kMemory);
    EXPECT_EQ(scanner_.TakeScan({}, 3, kMemory.data()).text, "A");
    static constexpr std::string_view kLonger("ABCDEF\0]C0xy", 12);
    system_.MakeReadable(kLonger);
    EXPECT_EQ(scanner_.TakeScan({}, 3, kLonger.data()).text, "ABCDEF");
    static constexpr std::string_view kEndless("ABCDEFGHIJKL");
    system_.MakeReadable(kEndless);
    EXPECT_EQ(scanner_.TakeScan({}, 2, kEndless.data()).text, "AB");
}

TEST_F(HoneywellEngineTest, WhatCannotBeReadIsRefused) {
    static constexpr std::string_view kMemory("ABC\0]C0xy", 9);
    system_.MakeReadable(kMemory);
    EXPECT_THROW(scanner_.TakeScan({}, 9, kMemory.data()), QuarlinException);
    EXPECT_THROW(scanner_.TakeScan({}, UINTPTR_MAX, kMemory.data()), QuarlinException);
    EXPECT_THROW(scanner_.TakeScan({}, 3, nullptr), QuarlinException);
    EXPECT_THROW(scanner_.TakeScan({}, 3, kMemory.data() - 1), QuarlinException);
}

}  // namespace
}  // namespace quarlin::test
