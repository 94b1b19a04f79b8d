// SPDX-License-Identifier: Apache-2.0
#include "barcode_support/scanner_machine_win.h"
#include "emulator/emulator_control_win.h"
#include "output_text.h"
#include "own_console_win.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::json;
using sim::HoneywellFunction;
using sim::IntermecFunction;
using test::ScannerMachine;
using test::ScannerSetup;
using test::SharedTurn;
using test::Texts;

constexpr const char* kDecodingOn = "ControlCommand 20 40 01";
constexpr const char* kDecodingOff = "ControlCommand 20 40 00";

std::string ErrorOf(const ChildResult& result) {
    return WithoutReturns(result.err);
}

size_t CountIn(const Texts& calls, const std::string& call) {
    return static_cast<size_t>(std::ranges::count(calls, call));
}

// The last calls of a program that has given the scanner back.
bool IsGivenBack(const Texts& calls) {
    return calls.size() >= 2 && calls[calls.size() - 2] == "Disconnect" && calls.back() == "Deinitialize";
}

// A command that waits for scans.
class Waiting {
  public:
    explicit Waiting(const std::string& arguments, const char* sign = "waiting for scans") : child_(arguments) {
        EXPECT_TRUE(child_.Err().WaitFor(sign, kDeadline));
    }
    ChildProcess& Child() { return child_; }
    ChildResult Finish() { return child_.Finish(); }

  private:
    ChildProcess child_;
};

class BarcodeCommands : public testing::Test {
  protected:
    ScannerMachine machine_{ScannerSetup::IntermecBuiltIn()};
};

TEST_F(BarcodeCommands, ListTheMachinesOwnScanner) {
    const ChildResult text = Qlctl("barcode list");
    EXPECT_EQ(text.exitStatus, 0);
    EXPECT_EQ(text.err, "");
    EXPECT_EQ(text.out,
              "Index  Name                Kind\n"
              "0      Intermec EA15/EA21  built in\n");
    EXPECT_EQ(Json::parse(Qlctl("barcode list --json").out), Json::parse(R"({"scanners": [
        {"index": 0, "name": "Intermec EA15/EA21", "built_in": true, "link_kind": 2, "link_flag": 1}]})"));
}

TEST_F(BarcodeCommands, ShowEveryScanAndEndAfterTheirCount) {
    Waiting watch("barcode watch --count 2");
    machine_.ScanIntermec("4006381333931", "]E0");
    machine_.ScanIntermec("01\x1D", std::string("]C1\0\0", 5));
    const ChildResult result = watch.Finish();
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(ErrorOf(result), "qlctl: waiting for scans, Intermec EA15/EA21\n");
    EXPECT_EQ(result.out,
              "Scan 1  EAN-13, UPC-A or UPC-E (]E0)\n"
              "  Text    4006381333931\n"
              "  Bytes   34303036333831333333393331\n"
              "Scan 2  GS1-128 (]C1), FNC1 in the first position\n"
              "  Text    01\\x1D\n"
              "  Bytes   30311D\n");
    EXPECT_TRUE(IsGivenBack(machine_.Intermec().TakeTexts()));
}

TEST_F(BarcodeCommands, ShowScansAsJsonLines) {
    Waiting watch("barcode watch --json --count 2");
    machine_.ScanIntermec("ABC", "]C0");
    machine_.ScanIntermec("\xFC");
    const std::vector<Json> scans = JsonLines(watch.Finish().out);
    ASSERT_EQ(scans.size(), 2U);
    EXPECT_EQ(scans[0], Json::parse(R"({"scan": 1, "device": 0, "text": "ABC", "data_hex": "414243",
        "symbology_id": "]C0", "symbology_id_hex": "5D4330", "symbology": "Code 128", "symbology_detail": null})"));
    EXPECT_EQ(scans[1]["data_hex"], "FC");
    EXPECT_EQ(scans[1]["symbology_id"], nullptr);
}

TEST_F(BarcodeCommands, EditWhatIsScanned) {
    Waiting watch("barcode watch --json --count 1 --prefix \"\xE2\x82\xAC<\" --suffix \">\\r\\n\" --insert 2:\\x2D");
    machine_.ScanIntermec("1234", "]C0");
    const std::vector<Json> scans = JsonLines(watch.Finish().out);
    ASSERT_EQ(scans.size(), 1U);
    EXPECT_EQ(scans[0]["text"], "\xE2\x82\xAC<12-34>\r\n");
}

TEST_F(BarcodeCommands, PutPrefixAndSuffixInsideTheEnginesFields) {
    test::IntermecScan scan = test::IntermecScan::Of("A0B0", "]C0");
    scan.fields[0] = "1";
    scan.fields[1] = "2";
    scan.fields[3] = "4";
    for (const auto& [options, text] : {std::pair("", "<12AB4>"), std::pair("--inside", "1<2AB>4")}) {
        Waiting watch(std::string("barcode watch --json --count 1 --delete 0 --prefix \"<\" --suffix \">\" ") +
                      options);
        machine_.ScanIntermec(scan);
        const std::vector<Json> scans = JsonLines(watch.Finish().out);
        ASSERT_EQ(scans.size(), 1U);
        EXPECT_EQ(scans[0]["text"], text);
    }
}

TEST_F(BarcodeCommands, EndAWatchWhenTheTimeIsUp) {
    const ChildResult open = Qlctl("barcode watch --for 0.2");
    EXPECT_EQ(open.exitStatus, 0);
    EXPECT_EQ(open.out, "");
    EXPECT_TRUE(IsGivenBack(machine_.Intermec().TakeTexts()));
    const ChildResult counted = Qlctl("barcode watch --timeout 0.2 --count 2");
    EXPECT_EQ(counted.exitStatus, 6);
    EXPECT_TRUE(ErrorOf(counted).ends_with("qlctl: error: 0 of 2 scans came within 0.2 s\n")) << counted.err;
}

TEST_F(BarcodeCommands, ReadOneCodeWithoutTheTrigger) {
    ChildProcess scan("barcode scan --replace \"A=AA\"");
    machine_.Intermec().AwaitCalls(kDecodingOn);
    machine_.ScanIntermec("ABA", "]C0");
    const ChildResult result = scan.Finish();
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.out,
              "Scan 1  Code 128 (]C0)\n"
              "  Text    AABAA\n"
              "  Bytes   4141424141\n");
    EXPECT_TRUE(IsGivenBack(machine_.Intermec().TakeTexts()));
}

TEST_F(BarcodeCommands, StopReadingWhenNoCodeCameInTime) {
    const ChildResult result = Qlctl("barcode scan --timeout 0.2");
    EXPECT_EQ(result.exitStatus, 6);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(ErrorOf(result).ends_with("qlctl: error: no code was read within 0.2 s\n")) << result.err;
    const Texts calls = machine_.Intermec().TakeTexts();
    EXPECT_EQ(CountIn(calls, kDecodingOn), 1U);
    EXPECT_EQ(CountIn(calls, kDecodingOff), 1U);
    EXPECT_TRUE(IsGivenBack(calls));
}

TEST_F(BarcodeCommands, ShowACodeWithoutAndWithARule) {
    ChildProcess edit("barcode edit delete 0 1 0");
    machine_.Intermec().AwaitCalls(kDecodingOn, 1);
    machine_.ScanIntermec("0000", "]C0");
    machine_.Intermec().AwaitCalls(kDecodingOn, 2);
    machine_.ScanIntermec("0000", "]C0");
    const ChildResult result = edit.Finish();
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_EQ(result.out,
              "Edit          delete 0 from behind character 1 to the end\n"
              "Symbology     Code 128 (]C0)\n"
              "Before        0000\n"
              "After         0\n");
}

TEST_F(BarcodeCommands, ShowARulesEffectAsJson) {
    ChildProcess edit("barcode edit insert -1 \\x2D --json");
    machine_.Intermec().AwaitCalls(kDecodingOn, 1);
    machine_.ScanIntermec("1234");
    machine_.Intermec().AwaitCalls(kDecodingOn, 2);
    machine_.ScanIntermec("1234");
    const Json json = Json::parse(edit.Finish().out);
    EXPECT_EQ(json["edit"], Json::parse(R"({"mode": "insert", "target": "", "content": "-", "start": -1, "end": 0})"));
    EXPECT_EQ(json["before"]["text"], "1234");
    EXPECT_EQ(json["after"]["text"], "123-4");
}

TEST_F(BarcodeCommands, SwitchSymbologiesByNameAndByValue) {
    const ChildResult enabled = Qlctl("barcode symbology enable qr \"MicroPDF 417\" 3");
    EXPECT_EQ(enabled.exitStatus, 0) << enabled.err;
    EXPECT_EQ(enabled.out,
              "QR                     enabled\n"
              "MicroPDF 417           enabled\n"
              "ISBT                   enabled\n");
    const Texts calls = machine_.Intermec().TakeTexts();
    EXPECT_EQ(CountIn(calls, "SetupWrite 55 40 01"), 1U);
    EXPECT_EQ(CountIn(calls, "SetupWrite 4C 42 01"), 1U);
    EXPECT_EQ(CountIn(calls, "SetupWrite 43 41 01 43 40 00 43 42 00"), 1U);
    EXPECT_EQ(Qlctl("barcode symbology disable Code39 --json").out,
              "{\"symbologies\":[{\"value\":5,\"name\":\"Code39\",\"enabled\":false,\"error\":null}]}\n");
    EXPECT_EQ(CountIn(machine_.Intermec().TakeTexts(), "SetupWrite 42 40 00"), 1U);
}

TEST_F(BarcodeCommands, ShowTheSymbologyThatTheEngineRefusesAndSwitchTheOthers) {
    machine_.Intermec().Refuse(IntermecFunction::kSetupWrite, 7, test::Refusal::kAlways, 0, 0x4240);
    const ChildResult result = Qlctl("barcode symbology enable Code39 QR");
    EXPECT_EQ(result.exitStatus, 5);
    const std::string error = "error 5 (QLERR_INTERNAL_ERROR): Symbology could not enabled/disabled\n";
    EXPECT_EQ(result.out, "Code39                 " + error + "QR                     enabled\n");
    EXPECT_EQ(ErrorOf(result), "qlctl: Code39: " + error);
    EXPECT_EQ(CountIn(machine_.Intermec().TakeTexts(), "SetupWrite 55 40 01"), 1U);
}

TEST_F(BarcodeCommands, ShowAndSetTheTrigger) {
    EXPECT_EQ(Qlctl("barcode trigger --hardware off").out,
              "Hardware      off\nMode          the scanner does not tell\n");
    EXPECT_EQ(CountIn(machine_.Intermec().TakeTexts(), "SetupWrite 70 41 00"), 1U);
    EXPECT_EQ(Qlctl("barcode trigger --json").out, "{\"hardware_trigger\":false,\"mode_set\":null}\n");
    EXPECT_EQ(Qlctl("barcode trigger --hardware on --mode 2 --json").out,
              "{\"hardware_trigger\":true,\"mode_set\":2}\n");
    EXPECT_EQ(CountIn(machine_.Intermec().TakeTexts(), "SetupWrite 70 40 01"), 1U);
}

TEST_F(BarcodeCommands, ShowTheFirmware) {
    machine_.Intermec().AnswerInstead(IntermecFunction::kStatusRead, std::string("\x30\xC0\0\0EA15 1.2", 12));
    EXPECT_EQ(Qlctl("barcode firmware").out, "Scanner       Intermec EA15/EA21\nFirmware      EA15 1.2\n");
    EXPECT_EQ(Qlctl("barcode firmware --json").out, "{\"scanner\":\"Intermec EA15/EA21\",\"firmware\":\"EA15 1.2\"}\n");
}

TEST_F(BarcodeCommands, ShowTheLibrarysErrorAndGiveTheScannerBack) {
    machine_.Intermec().Refuse(IntermecFunction::kStatusRead);
    const ChildResult firmware = Qlctl("barcode firmware");
    EXPECT_EQ(firmware.exitStatus, 5);
    EXPECT_EQ(ErrorOf(firmware), "qlctl: error 5 (QLERR_INTERNAL_ERROR): Unable get firmware version.\n");
    EXPECT_TRUE(IsGivenBack(machine_.Intermec().TakeTexts()));
    const ChildResult sound = Qlctl("barcode scan --sound-file C:\\no\\such.wav");
    EXPECT_EQ(sound.exitStatus, 2);
    EXPECT_EQ(ErrorOf(sound), "qlctl: error 1 (QLERR_INVALID_ARGUMENT): Specified File does not exist\n");
}

TEST(BarcodeCommandsWithoutScanner, SaySo) {
    const ScannerMachine machine(ScannerSetup::None());
    const ChildResult list = Qlctl("barcode list");
    EXPECT_EQ(list.exitStatus, 0);
    EXPECT_EQ(list.out, "no barcode scanner is there\n");
    const ChildResult watch = Qlctl("barcode watch");
    EXPECT_EQ(watch.exitStatus, 11);
    EXPECT_EQ(ErrorOf(watch), "qlctl: error: no barcode scanner is there\n");
}

TEST(BarcodeCommandsWithAHoneywellEngine, ShowScansWithWhatTheEngineKnows) {
    ScannerMachine machine(ScannerSetup::MiniDb());
    Waiting watch("barcode watch --count 1 --inside --prefix \"<\"");
    machine.ScanHoneywell("HELLO", "]Q1");
    EXPECT_EQ(watch.Finish().out,
              "Scan 1  QR Code (]Q1)\n"
              "  Text    <HELLO\n"
              "  Bytes   3C48454C4C4F\n");
}

TEST(BarcodeCommandsWithAHoneywellEngine, SayWhatItCannotDo) {
    ScannerMachine machine(ScannerSetup::MiniDb());
    const ChildResult enabled = Qlctl("barcode symbology enable EAN_128_Irregular EAN_ISSN");
    EXPECT_EQ(enabled.exitStatus, 4);
    EXPECT_EQ(enabled.out,
              "EAN_128_Irregular      error 4 (QLERR_OP_UNSUPPORTED): Not Supported.\n"
              "EAN_ISSN               enabled\n");
    const Texts calls = machine.Honeywell().TakeTexts();
    EXPECT_EQ(CountIn(calls, "SendMenuCommand E13ISR1"), 1U);
    EXPECT_EQ(CountIn(calls, "SendMenuCommand E13ISS1"), 1U);
    const ChildResult trigger = Qlctl("barcode trigger --hardware off");
    EXPECT_EQ(trigger.exitStatus, 4);
    EXPECT_EQ(ErrorOf(trigger), "qlctl: error 4 (QLERR_OP_UNSUPPORTED): Not Supported.\n");
    EXPECT_EQ(Qlctl("barcode trigger --mode 0").out, "Hardware      on\nMode          set to 0\n");
    EXPECT_EQ(CountIn(machine.Honeywell().TakeTexts(), "SendMenuCommand TRGMOD3"), 1U);
}

TEST(BarcodeCommandsWithAnExternalScanner, ShowIt) {
    ScannerMachine machine(ScannerSetup::External());
    EXPECT_EQ(Qlctl("barcode list --external").out,
              "Index  Name            Kind\n"
              "0      Barcode Reader  external\n");
    Waiting watch("barcode watch --external --count 1 --json");
    machine.ScanHoneywell("1", "]A0");
    EXPECT_EQ(JsonLines(watch.Finish().out).at(0)["symbology"], "Code 39");
}

std::wstring EmulatorProgram() {
    std::wstring path = QlctlPath();
    for (int folders = 0; folders < 2; ++folders) {
        path.resize(path.find_last_of(L"\\/"));
    }
    return path + L"\\sim\\SCN2D_Emu_USB.exe";
}

TEST(BarcodeCommandsWithTheEmulator, EndWhenItTakesTheScannerBack) {
    ScannerMachine machine(ScannerSetup::MiniDb(SharedTurn::Use::kExclusive));
    sim::EmulatorControl emulator;
    emulator.Start(EmulatorProgram());
    Waiting watch("barcode watch");
    machine.ScanHoneywell("BEFORE", "]C0");
    ASSERT_TRUE(watch.Child().Out().WaitFor("BEFORE", kDeadline));
    emulator.Give(sim::EmulatorOrder::kTakeBack);
    const ChildResult result = watch.Finish();
    EXPECT_EQ(result.exitStatus, 7);
    EXPECT_TRUE(ErrorOf(result).ends_with("qlctl: error: the scanner was taken away by the barcode emulator\n"))
        << result.err;
    emulator.End();
}

class BarcodeOnOwnConsole : public OwnConsole {
  protected:
    ScannerMachine machine_{ScannerSetup::IntermecBuiltIn()};
};

TEST_F(BarcodeOnOwnConsole, CtrlCEndsAWatchAndGivesTheScannerBack) {
    Waiting watch("barcode watch");
    machine_.ScanIntermec("1", "]C0");
    ASSERT_TRUE(watch.Child().Out().WaitFor("Bytes", kDeadline));
    PressCtrlC();
    EXPECT_EQ(watch.Finish().exitStatus, 0);
    EXPECT_TRUE(IsGivenBack(machine_.Intermec().TakeTexts()));
}

TEST_F(BarcodeOnOwnConsole, CtrlCEndsTheWaitForACode) {
    Waiting scan("barcode scan --timeout 3600", "hold a code");
    PressCtrlC();
    const ChildResult result = scan.Finish();
    EXPECT_EQ(result.exitStatus, 9);
    EXPECT_TRUE(ErrorOf(result).ends_with("qlctl: error: stopped before a code was read\n")) << result.err;
    const Texts calls = machine_.Intermec().TakeTexts();
    EXPECT_EQ(CountIn(calls, kDecodingOff), 1U);
    EXPECT_TRUE(IsGivenBack(calls));
}

}  // namespace
}  // namespace quarlin::qlctl
