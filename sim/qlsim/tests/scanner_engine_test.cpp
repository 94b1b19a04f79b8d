// SPDX-License-Identifier: Apache-2.0
// Codes in front of an engine, and an engine that is told to misbehave.
#include "scanner_fixture.h"

namespace quarlin::sim::testing {
namespace {

using namespace std::string_literals;

using ScannerEngine = ScannerTest;

TEST_F(ScannerEngine, AnIntermecEngineReadsACode) {
    Play(kIntermec);
    Intermec().connected = 42;
    EXPECT_EQ("ok read 13 bytes, EAN_13 ]E0", Do("scanner scan 4006381333931 EAN_13"));
    const auto scan = Take(Intermec());
    ASSERT_TRUE(scan);
    EXPECT_EQ(BytesOf(*scan), "\x01\0\0\0\0\0\0\0\x0D\0\0\0\x05"s + "4006381333931]E0\0\0"s);
    EXPECT_EQ(scan->claimed, scan->length);
    EXPECT_EQ(scan->eventType, 100u);
    EXPECT_EQ(scan->flags, 0u);
    EXPECT_EQ(machine_.announcedScans, 1);
}

TEST_F(ScannerEngine, AHoneywellEngineReadsACode) {
    Play(kHoneywell);
    Honeywell().connected = 42;
    EXPECT_EQ("ok read 3 bytes, QR ]Q1", Do("scanner scan \"a b\" QR"));
    const auto scan = Take(Honeywell());
    ASSERT_TRUE(scan);
    EXPECT_EQ(BytesOf(*scan), "a b\0]Q1\0\0"s);
    EXPECT_EQ(scan->claimed, 3u);
    EXPECT_EQ(scan->eventType, 1u);
    EXPECT_EQ(machine_.announcedScans, 1);
}

TEST_F(ScannerEngine, ACodeMayHoldAnyBytes) {
    Play(kHoneywell);
    Honeywell().connected = 42;
    EXPECT_EQ("ok read 7 bytes, EAN_128 ]C1", Do(R"(scanner scan "01\x1D\\\r\n\xFF" EAN_128)"));
    EXPECT_EQ(BytesOf(Take(Honeywell()).value_or(ScanSlot{})), "01\x1D\\\r\n\xFF\0]C1\0\0"s);
    EXPECT_EQ("ok read 0 bytes, Code128 ]C0", Do("scanner scan \"\""));
}

TEST_F(ScannerEngine, NobodyReadsWithoutAProgram) {
    Play(kIntermec);
    EXPECT_EQ("error scanner: not read: no program is connected to the engine", Do("scanner scan 1"));
    EXPECT_FALSE(Take(Intermec()));
    EXPECT_EQ(machine_.announcedScans, 0);
    EXPECT_EQ(Status("scanner")["missed"], 1);
    EXPECT_EQ(Status("scanner")["read"], 0);
}

TEST_F(ScannerEngine, NobodyReadsWhenTheProgramWasKilled) {
    Play(kHoneywell);
    Honeywell().connected = 42;
    machine_.endedProcess = 42;
    EXPECT_EQ("error scanner: not read: no program is connected to the engine", Do("scanner scan 1"));
    Honeywell().connected = 43;
    EXPECT_EQ("ok read 1 bytes, Code128 ]C0", Do("scanner scan 1"));
}

TEST_F(ScannerEngine, AnUnpluggedEngineReadsNothing) {
    Play(kIntermec);
    Intermec().connected = 42;
    EXPECT_EQ("ok unplugged", Do("scanner unplug"));
    EXPECT_EQ("ok unplugged already", Do("scanner unplug"));
    EXPECT_EQ(Intermec().plugged, 0u);
    EXPECT_EQ("error scanner: not read: the engine is unplugged", Do("scanner scan 1"));
    EXPECT_EQ("ok plugged in", Do("scanner plug"));
    EXPECT_EQ("ok plugged in already", Do("scanner plug"));
    EXPECT_EQ(Intermec().plugged, 1u);
    EXPECT_EQ("ok read 1 bytes, Code128 ]C0", Do("scanner scan 1"));
}

TEST_F(ScannerEngine, AnIntermecEngineReadsWhileItDecodesOrHasItsTrigger) {
    Play(kIntermec + "hardware_trigger = false\n"s);
    Intermec().connected = 42;
    const std::string dark = "error scanner: not read: neither decoding nor the hardware trigger is on";
    EXPECT_EQ(dark, Do("scanner scan 1"));
    // As a program does it.
    Intermec().decoding = 1;
    EXPECT_EQ("ok read 1 bytes, Code128 ]C0", Do("scanner scan 1"));
    Intermec().decoding = 0;
    EXPECT_EQ(dark, Do("scanner scan 1"));
    Intermec().Set(kIntermecHardwareTrigger, 1);
    EXPECT_EQ("ok read 1 bytes, Code128 ]C0", Do("scanner scan 1"));
    EXPECT_EQ("ok hardware trigger off", Do("scanner hardware-trigger off"));
    EXPECT_EQ(Intermec().Value(kIntermecHardwareTrigger), 0);
    EXPECT_EQ(dark, Do("scanner scan 1"));
}

TEST_F(ScannerEngine, AHoneywellEngineReadsInASessionOrByItsTrigger) {
    Play(kHoneywell);
    Honeywell().connected = 42;
    EXPECT_EQ("ok read 1 bytes, Code128 ]C0", Do("scanner scan 1"));
    EXPECT_EQ("ok hardware trigger off", Do("scanner hardware-trigger off"));
    EXPECT_EQ("error scanner: not read: neither decoding nor the hardware trigger is on", Do("scanner scan 1"));
    Honeywell().reading = 1;
    EXPECT_EQ("ok read 1 bytes, Code128 ]C0", Do("scanner scan 1"));
}

TEST_F(ScannerEngine, AFullEngineReadsNoMore) {
    Play(kIntermec);
    Intermec().connected = 42;
    for (std::uint64_t i = 0; i < ScanInbox::kRoom; ++i) {
        ASSERT_EQ("ok read 1 bytes, Code128 ]C0", Do("scanner scan 1"));
    }
    EXPECT_EQ("error scanner: not read: the engine has more scans than it can hold", Do("scanner scan 1"));
    EXPECT_EQ("error scanner: the engine has more scans than it can hold", Do("scanner scan-raw 00"));
    EXPECT_EQ(Status("scanner")["waiting"], ScanInbox::kRoom);
}

TEST_F(ScannerEngine, ACodeTooLongIsRefused) {
    Play(kIntermec);
    Intermec().connected = 42;
    const std::string tooLong(ScanSlot::kRoom, '7');
    EXPECT_EQ("error scanner: a scan has 4608 bytes at most", Do("scanner scan " + tooLong));
    EXPECT_EQ("error scanner: a scan has 4608 bytes at most", Do("scanner present 1 0 " + tooLong));
}

TEST_F(ScannerEngine, RawBytesGoAsTheyAre) {
    Play(kIntermec);
    // Nobody is connected: they wait in the engine.
    EXPECT_EQ("ok 3 bytes on their way", Do("scanner scan-raw 010203 event=7 claimed=4000 silent"));
    EXPECT_EQ("ok 0 bytes on their way", Do("scanner scan-raw - no-data while-disconnecting"));
    const auto first = Take(Intermec());
    ASSERT_TRUE(first);
    EXPECT_EQ(BytesOf(*first), "\x01\x02\x03");
    EXPECT_EQ(first->claimed, 4000u);
    EXPECT_EQ(first->eventType, 7u);
    EXPECT_EQ(first->flags, kScanSilent);
    const auto second = Take(Intermec());
    ASSERT_TRUE(second);
    EXPECT_EQ(second->length, 0u);
    EXPECT_EQ(second->eventType, 100u);
    EXPECT_EQ(second->flags, kScanNoData | kScanWhileDisconnecting);
    EXPECT_EQ(machine_.announcedScans, 2);
}

TEST_F(ScannerEngine, ACodeIsShownAgainAndAgain) {
    Play("speed_factor = 0\nduration = 60\n"s + kHoneywell + "[[event]]\nat = 1\ndevice = \"scanner\"\n" +
         "command = \"scan-raw 41\"\n" + "[[event]]\nat = 2\ndevice = \"scanner\"\ncommand = \"present 4 500 77\"\n" +
         "[[event]]\nat = 3.2\ndevice = \"scanner\"\ncommand = \"present 0\"\n");
    simulation_->WaitForEnd();
    // At 2.0, 2.5 and 3.0 seconds, to nobody.
    EXPECT_EQ(Status("scanner")["missed"], 3);
    EXPECT_EQ(Status("scanner")["pending"], 0);
    EXPECT_EQ(Honeywell().inbox.added, 1u);
}

TEST_F(ScannerEngine, AShownCodeWaitsForRoom) {
    Honeywell().connected = 42;
    for (std::uint64_t i = 1; i < ScanInbox::kRoom; ++i) {
        Honeywell().inbox.Add({});
    }
    Play("speed_factor = 0\nduration = 1\n"s + kHoneywell +
         "[[event]]\nat = 0.1\ndevice = \"scanner\"\ncommand = \"present 3 100 77\"\n");
    simulation_->WaitForEnd();
    EXPECT_EQ(Status("scanner")["read"], 1);
    EXPECT_EQ(Status("scanner")["missed"], 0);
    EXPECT_EQ(Status("scanner")["pending"], 2);
}

TEST_F(ScannerEngine, FunctionsRefuse) {
    Play(kIntermec);
    EXPECT_EQ("ok Connect refuses with 4660", Do("scanner refuse Connect 0x1234 3 1"));
    EXPECT_EQ("ok SetupWrite refuses with 9", Do("scanner refuse SetupWrite 9 always 0 7340"));
    const Refusal& connect = Intermec().refusals[static_cast<std::size_t>(IntermecFunction::kConnect)];
    EXPECT_EQ(connect.status, 0x1234);
    EXPECT_EQ(connect.count, 3u);
    EXPECT_EQ(connect.skip, 1u);
    EXPECT_EQ(connect.beginning, 0);
    EXPECT_EQ(Status("scanner")["refusals"],
              Json::parse(R"({"Connect":{"status":4660,"count":3,"skip":1},)"
                          R"("SetupWrite":{"status":9,"count":"always","skip":0,"beginning":"7340"}})"));
    EXPECT_EQ("ok Connect does their work", Do("scanner accept Connect"));
    EXPECT_EQ(connect.count, 0u);
    EXPECT_EQ("ok all functions do their work", Do("scanner accept"));
    EXPECT_EQ(Status("scanner")["refusals"], Json::object());
}

TEST_F(ScannerEngine, FunctionsAnswerSomethingElse) {
    Play(kHoneywell);
    EXPECT_EQ("ok HEDC_GetFirmwareVersion answers 2 bytes", Do("scanner answer HEDC_GetFirmwareVersion 4142"));
    EXPECT_EQ("ok HEDC_SendMenuCommand answers 0 bytes", Do("scanner answer HEDC_SendMenuCommand - always 70000"));
    const AnswerInstead& first = Honeywell().answersInstead[0];
    EXPECT_EQ(first.function, static_cast<std::uint32_t>(HoneywellFunction::kGetFirmwareVersion));
    EXPECT_EQ(first.count, 1u);
    EXPECT_EQ(first.length, 2u);
    EXPECT_EQ(first.claimed, 2u);
    EXPECT_EQ(first.bytes[1], 0x42);
    const AnswerInstead& second = Honeywell().answersInstead[1];
    EXPECT_EQ(second.count, Refusal::kAlways);
    EXPECT_EQ(second.length, 0u);
    EXPECT_EQ(second.claimed, 70000u);
    Do("scanner answer HEDC_Connect 00");
    Do("scanner answer HEDC_Connect 00");
    EXPECT_EQ("error scanner: no more than 4 answers can be waiting", Do("scanner answer HEDC_Connect 00"));
    EXPECT_EQ("ok HEDC_SendMenuCommand does their work", Do("scanner accept HEDC_SendMenuCommand"));
    EXPECT_EQ(second.count, 0u);
    EXPECT_EQ(first.count, 1u);
}

TEST_F(ScannerEngine, TheLogHasTheLastCalls) {
    Play(kHoneywell);
    EXPECT_EQ("ok []", Do("scanner log"));
    Menu("C39ENA1");
    Menu("QRCENA0", 7);
    const Json calls = Json::parse(Do("scanner log").substr(3));
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0]["function"], "HEDC_SendMenuCommand");
    EXPECT_EQ(calls[0]["status"], 0);
    EXPECT_EQ(calls[0]["request"], "433339454E4131");
    EXPECT_EQ(calls[0]["request_length"], 7);
    EXPECT_EQ(calls[1]["status"], 7);
    EXPECT_EQ(Json::parse(Do("scanner log 1").substr(3))[0]["status"], 7);
    EXPECT_EQ(Status("scanner")["calls"], 2);
    EXPECT_EQ("ok the log is empty", Do("scanner clear-log"));
    EXPECT_EQ("ok []", Do("scanner log"));
}

TEST_F(ScannerEngine, AResetMakesItAsTheScenarioHasIt) {
    Play(kIntermec + "firmware = \"F 1\"\ndata_mode = 2\nsymbologies = [\"QR\"]\n"s);
    Intermec().connected = 42;
    Intermec().inbox.Add({});
    EXPECT_EQ("ok firmware F 2", Do("scanner firmware \"F 2\""));
    EXPECT_EQ(std::string(Intermec().version, Intermec().versionLength), "F 2");
    EXPECT_EQ("ok 734E is 1", Do("scanner parameter 734E 1"));
    EXPECT_EQ("ok 9999 was never written", Do("scanner parameter 9999"));
    Do("scanner refuse Connect 1");
    Do("scanner answer Connect 00");
    Do("scanner symbology Code39 on");
    Do("scanner unplug");
    Intermec().log.Add({});
    EXPECT_EQ("ok as the scenario has it", Do("scanner reset"));
    EXPECT_EQ(std::string(Intermec().version, Intermec().versionLength), "F 1");
    EXPECT_EQ("ok 734E is 2", Do("scanner parameter 734E"));
    EXPECT_EQ(Intermec().plugged, 1u);
    EXPECT_EQ("ok [\"QR\"]", Do("scanner symbologies"));
    EXPECT_EQ(Intermec().refusals[static_cast<std::size_t>(IntermecFunction::kConnect)].count, 0u);
    EXPECT_EQ(Intermec().answersInstead[0].count, 0u);
    EXPECT_EQ("ok []", Do("scanner log"));
    // Programs go on, and so does what is on its way to them.
    EXPECT_EQ(Intermec().connected, 42u);
    EXPECT_EQ(Intermec().inbox.added, 1u);
}

TEST_F(ScannerEngine, AHoneywellLibraryListsItsDevices) {
    Play(kHoneywell + "devices = [\"ONE\", \"TWO\"]\n"s);
    EXPECT_EQ(Honeywell().deviceCount, 2u);
    EXPECT_STREQ(Honeywell().devices[1].name, "TWO");
    EXPECT_EQ("ok 1 devices in the list", Do("scanner devices THREE"));
    EXPECT_STREQ(Honeywell().devices[0].name, "THREE");
    EXPECT_EQ("ok unplugged", Do("scanner unplug"));
    EXPECT_EQ(Honeywell().deviceCount, 0u);
    EXPECT_EQ(Status("scanner")["plugged"], false);
    EXPECT_EQ("ok plugged in", Do("scanner plug"));
    EXPECT_EQ(Honeywell().deviceCount, 1u);
    EXPECT_STREQ(Honeywell().devices[0].name, "THREE");
    EXPECT_EQ("ok 0 devices in the list", Do("scanner devices"));
    EXPECT_EQ("ok as the scenario has it", Do("scanner reset"));
    EXPECT_EQ(Honeywell().deviceCount, 2u);
}

}  // namespace
}  // namespace quarlin::sim::testing
