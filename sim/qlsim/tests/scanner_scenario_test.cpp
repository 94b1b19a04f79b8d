// SPDX-License-Identifier: Apache-2.0
// Scanners, the emulator program and the computer as scenarios describe them and as commands move them.
#include "scanner_fixture.h"

namespace quarlin::sim::testing {
namespace {

using namespace std::string_literals;

using ScannerScenario = ScannerTest;

constexpr const char* kEmulator = "[[device]]\nkind = \"emulator\"\n";
constexpr const char* kComputer = "[[device]]\nkind = \"computer\"\n";

TEST_F(ScannerScenario, ABuiltInEngineIsNotToBeSeen) {
    Play(kIntermec);
    EXPECT_TRUE(places_.empty());
    EXPECT_TRUE(computer_.ports.empty());
    EXPECT_EQ(Intermec().plugged, 1u);
    EXPECT_EQ(Status("scanner")["link"], "built-in");
    simulation_->Stop();
    EXPECT_EQ(Intermec().plugged, 0u);
}

TEST_F(ScannerScenario, AUsbEngineOfTheFirstProductIsTwoDevices) {
    Play(kIntermec + "link = \"usb\"\ninstance = \"7&1&0\"\n"s);
    ASSERT_EQ(places_.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        const auto identity = places_[i].With([](const HidPlace& place) { return place.identity; });
        ASSERT_TRUE(identity);
        EXPECT_EQ(identity->vendor, 0x067E);
        EXPECT_EQ(identity->product, 0x0801);
        EXPECT_EQ(identity->collection, i + 1);
        EXPECT_EQ(identity->instance, "7&1&0");
    }
    EXPECT_EQ("ok unplugged", Do("scanner unplug"));
    for (HidPlace& place : places_) {
        EXPECT_FALSE(place.With([](const HidPlace& p) { return p.identity; }));
    }
    EXPECT_EQ("ok plugged in", Do("scanner plug"));
    EXPECT_TRUE(places_[1].With([](const HidPlace& p) { return p.identity; }));
}

TEST_F(ScannerScenario, AUsbEngineOfTheOtherProductIsOne) {
    Play(kIntermec + "link = \"usb\"\nproduct = 0x0809\nplugged = false\n"s);
    ASSERT_EQ(places_.size(), 1u);
    EXPECT_FALSE(places_[0].With([](const HidPlace& p) { return p.identity; }));
    EXPECT_EQ(Intermec().plugged, 0u);
    Do("scanner plug");
    const auto identity = places_[0].With([](const HidPlace& place) { return place.identity; });
    ASSERT_TRUE(identity);
    EXPECT_EQ(identity->product, 0x0809);
    EXPECT_EQ(identity->collection, 0);
}

TEST_F(ScannerScenario, ASerialEngineIsAPortInTheList) {
    Play(kIntermec + "link = \"serial\"\nport = 12\n"s);
    EXPECT_EQ(computer_.ports, std::vector{"Intermec VID_067E scanner (COM12)"s});
    Do("scanner unplug");
    EXPECT_TRUE(computer_.ports.empty());
    Do("scanner plug");
    Do("scanner plug");
    EXPECT_EQ(computer_.ports.size(), 1u);
    simulation_->Stop();
    EXPECT_TRUE(computer_.ports.empty());
}

TEST_F(ScannerScenario, APortMayHaveAnyName) {
    Play(kIntermec + "link = \"serial\"\nport_name = \"Modem (COM3)\"\n"s);
    EXPECT_EQ(computer_.ports, std::vector{"Modem (COM3)"s});
}

TEST_F(ScannerScenario, TheExampleIsPlayed) {
    Scenario scenario = LoadScenario(QLSIM_SCENARIO_DIR "/scanner.toml");
    SimulationOptions options;
    options.machineRecords = machine_.Makers();
    options.computer = computer_.Parts();
    options.makeHidSocket = [this] { return std::make_unique<MemoryHidSocket>(places_.emplace_back()); };
    scenario.speedFactor = 0;
    options.duration = 200;
    log_.AddSink(logText_);
    simulation_.emplace(std::move(scenario), options, log_);
    simulation_->Start();
    EXPECT_EQ(computer_.productName, "HX-T8S100");
    simulation_->WaitForEnd();
    // The two codes in front of nobody.
    EXPECT_EQ(Status("scanner")["missed"], 25);
    EXPECT_EQ(Status("built-in")["missed"], 60);
    EXPECT_EQ(machine_.probe.devices[13].available, 0u);
    EXPECT_EQ(machine_.probe.devices[14].available, 1u);
    EXPECT_EQ(computer_.emulatorStarts, std::vector{"SCN2D_Emu_USB.exe"s});
    EXPECT_EQ(computer_.emulatorOrders, std::vector{EmulatorOrder::kTakeBack});
    EXPECT_FALSE(computer_.emulatorRuns);
    EXPECT_EQ(logText_.str().find("refused"), std::string::npos) << logText_.str();
    simulation_->Stop();
    EXPECT_EQ(computer_.productName, "TEST-1");
}

TEST_F(ScannerScenario, AComputerSaysWhatItIsTold) {
    Play(kComputer + "product_name = \"JR-42\"\n"s);
    EXPECT_EQ(computer_.productName, "JR-42");
    EXPECT_EQ("ok product name HX T8", Do("computer product-name \"HX T8\""));
    EXPECT_EQ(computer_.productName, "HX T8");
    EXPECT_EQ("ok no product name", Do("computer no-product-name"));
    EXPECT_EQ(computer_.productName, std::nullopt);
    EXPECT_EQ(Status("computer")["product_name"], nullptr);
    EXPECT_EQ(Status("computer")["before"], "TEST-1");
    EXPECT_EQ("ok as the scenario has it", Do("computer reset"));
    EXPECT_EQ(computer_.productName, "JR-42");
    simulation_->Stop();
    EXPECT_EQ(computer_.productName, "TEST-1");
}

TEST_F(ScannerScenario, AComputerWithoutANameHasNoneAgain) {
    computer_.productName.reset();
    Play(kComputer + "product_name = \"JR-42\"\n"s);
    simulation_->Stop();
    EXPECT_EQ(computer_.productName, std::nullopt);
}

TEST_F(ScannerScenario, TheEmulatorIsStartedAsTheScenarioSays) {
    computer_.emulator.log.count = 9;
    Play(kEmulator +
         "window = false\nhanded_over = true\nanswer = 7\nhand_over_at = 0\nstate_before = 2\n"
         "connect_delay = 10\nstate_delay = 20\nnotice = \"none\"\nnotice_in_connect = \"sent\"\n"s);
    EXPECT_EQ(computer_.emulatorStarts, std::vector{"SCN2D_Emu_USB.exe --no-window --handed-over"s});
    const EmulatorSettings& settings = computer_.emulator.settings;
    EXPECT_EQ(settings.connectAnswer, 7u);
    EXPECT_EQ(settings.handOverAtPoll, EmulatorSettings::kNever);
    EXPECT_EQ(settings.stateBefore, 2u);
    EXPECT_EQ(settings.connectDelay, 10u);
    EXPECT_EQ(settings.stateDelay, 20u);
    EXPECT_EQ(settings.notice, EmulatorNotice::kNone);
    EXPECT_EQ(settings.noticeInConnect, EmulatorNotice::kSent);
    EXPECT_EQ(computer_.emulator.log.count, 0u);
    EXPECT_EQ(Status("emulator")["hand_over_at"], "never");
    simulation_->Stop();
    EXPECT_FALSE(computer_.emulatorRuns);
}

TEST_F(ScannerScenario, TheEmulatorDoesWhatItIsTold) {
    Play(kEmulator + "running = false\n"s);
    EXPECT_FALSE(computer_.emulatorRuns);
    EXPECT_EQ("error emulator: the emulator does not run", Do("emulator take-back"));
    EXPECT_EQ("ok SCN2D_Emu_USB.exe is running", Do("emulator start no-window"));
    EXPECT_EQ("error emulator: the emulator is running already", Do("emulator start"));
    for (const char* const order : {"take-back", "hand-over", "notify", "open-window", "close-window"}) {
        EXPECT_EQ("ok "s + order + " is done", Do("emulator "s + order));
    }
    EXPECT_EQ(computer_.emulatorOrders,
              (std::vector{EmulatorOrder::kTakeBack, EmulatorOrder::kHandOver, EmulatorOrder::kNotify,
                           EmulatorOrder::kOpenWindow, EmulatorOrder::kCloseWindow}));
    const EmulatorSettings& settings = computer_.emulator.settings;
    EXPECT_EQ("ok refuse", Do("emulator refuse"));
    EXPECT_EQ(settings.connectAnswer, 1u);
    EXPECT_EQ("ok refuse 77", Do("emulator refuse 77"));
    EXPECT_EQ(settings.connectAnswer, 77u);
    EXPECT_EQ("ok accept", Do("emulator accept"));
    EXPECT_EQ(settings.connectAnswer, 0u);
    EXPECT_EQ("ok hand-over-at 5", Do("emulator hand-over-at 5"));
    EXPECT_EQ(settings.handOverAtPoll, 5u);
    EXPECT_EQ("ok hand-over-at never", Do("emulator hand-over-at never"));
    EXPECT_EQ(settings.handOverAtPoll, EmulatorSettings::kNever);
    EXPECT_EQ("ok state-before 0", Do("emulator state-before 0"));
    EXPECT_EQ(settings.stateBefore, 0u);
    EXPECT_EQ("ok connect-delay 300", Do("emulator connect-delay 300"));
    EXPECT_EQ(settings.connectDelay, 300u);
    EXPECT_EQ("ok state-delay 400", Do("emulator state-delay 400"));
    EXPECT_EQ(settings.stateDelay, 400u);
    EXPECT_EQ("ok notice sent", Do("emulator notice sent"));
    EXPECT_EQ(settings.notice, EmulatorNotice::kSent);
    EXPECT_EQ("ok notice-in-connect posted", Do("emulator notice-in-connect posted"));
    EXPECT_EQ(settings.noticeInConnect, EmulatorNotice::kPosted);
    EXPECT_EQ("ok ended", Do("emulator end"));
    EXPECT_FALSE(computer_.emulatorRuns);
    EXPECT_EQ("ok SCN2D_Emu_USB.exe is running", Do("emulator start"));
    EXPECT_EQ("ok killed", Do("emulator kill"));
    EXPECT_EQ(computer_.emulatorKills, 1);
    EXPECT_EQ("ok as the scenario has it", Do("emulator reset"));
    EXPECT_EQ(settings.handOverAtPoll, 1u);
    EXPECT_FALSE(computer_.emulatorRuns);
}

TEST_F(ScannerScenario, TheEmulatorTellsItsMessages) {
    Play(kEmulator);
    EmulatorState& state = computer_.emulator;
    state.log.calls[state.log.count++] = {EmulatorMessage::kConnect, 0, 3, -4, 0, 100, 130};
    state.log.calls[state.log.count++] = {EmulatorMessage::kOnConnectState, 1, 0, 0, 0, 200, 200};
    state.log.calls[state.log.count++].message = static_cast<EmulatorMessage>(99);
    const Json calls = Json::parse(Do("emulator log").substr(3));
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0], Json::parse(R"({"message":"CONNECT","wparam":3,"lparam":-4,"answer":0,"failed":false,)"
                                    R"("milliseconds":30})"));
    EXPECT_EQ(calls[1]["message"], "ON_CONNECT_STATE");
    EXPECT_EQ(calls[1]["failed"], true);
    EXPECT_EQ(calls[2]["message"], "?");
    EXPECT_EQ(Status("emulator")["messages"], 3);
    EXPECT_EQ("ok the log is empty", Do("emulator clear-log"));
    EXPECT_EQ("ok []", Do("emulator log"));
}

TEST_F(ScannerScenario, AnEmulatorThatCannotStartIsReported) {
    computer_.emulatorCannotStart = true;
    EXPECT_THROW(Play(kEmulator), DeviceError);
}

TEST_F(ScannerScenario, AnEmulatorThatDoesNotEndIsKilled) {
    Play(kEmulator);
    computer_.emulatorDoesNotEnd = true;
    simulation_->Stop();
    EXPECT_EQ(computer_.emulatorKills, 1);
}

class WithoutAComputer : public ::testing::TestWithParam<const char*> {};

TEST_P(WithoutAComputer, ADeviceCannotBegin) {
    Log log;
    const auto play = [&log] {
        Simulation simulation(ReadScenario(GetParam(), "test.toml"), {}, log);
        simulation.Start();
    };
    EXPECT_THROW(play(), DeviceError);
}

constexpr const char* kKindNames[] = {"Intermec", "Honeywell", "Emulator", "Computer"};

INSTANTIATE_TEST_SUITE_P(Kinds, WithoutAComputer, ::testing::Values(kIntermec, kHoneywell, kEmulator, kComputer),
                         [](const auto& kind) { return kKindNames[kind.index]; });

struct Refused {
    const char* line;
    const char* sentence;
};

void PrintTo(const Refused& refused, std::ostream* stream) {
    *stream << ::testing::PrintToString(refused.line);
}

class RefusedByAScanner : public ScannerTest, public ::testing::WithParamInterface<Refused> {};

TEST_P(RefusedByAScanner, SaysWhy) {
    Play(std::string(kIntermec) + "[[device]]\nkind = \"honeywell-scanner\"\nname = \"other\"\n" + kEmulator +
         kComputer);
    EXPECT_EQ(std::string("error ") + GetParam().sentence, Do(GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(
    Sentences, RefusedByAScanner,
    ::testing::Values(
        Refused{"scanner", "scanner: a command is missing; \"help\" lists what there is"},
        Refused{"scanner skan 1", "scanner: there is no command \"skan\"; did you mean \"scan\"?"},
        Refused{"scanner scan", "scanner: the command has to be: scan TEXT [SYMBOLOGY]"},
        Refused{"scanner scan 1 qr", "scanner: there is no symbology \"qr\""},
        Refused{"scanner scan 1 Code_39", "scanner: there is no symbology \"Code_39\"; did you mean \"Code39\"?"},
        Refused{"scanner scan \\q",
                "scanner: after a backslash come r, n, a second backslash, or x and two hexadecimal digits"},
        Refused{"scanner scan-raw 0G", "scanner: \"0G\" is not hexadecimal of at most 4608 bytes, nor - for none"},
        Refused{"scanner scan-raw 00 loud",
                "scanner: \"loud\" is none of event=N, claimed=N, no-data, silent, while-disconnecting"},
        Refused{"scanner scan-raw 00 event=x", "scanner: \"x\" is no event from 0 to 4294967295"},
        Refused{"scanner present 1",
                "scanner: the command has to be: present TIMES MILLISECONDS TEXT [SYMBOLOGY], or present 0"},
        Refused{"scanner present 1 100",
                "scanner: the command has to be: present TIMES MILLISECONDS TEXT [SYMBOLOGY], or present 0"},
        Refused{"scanner present -1 0 x", "scanner: \"-1\" is no number of times from 0 to 1000000000"},
        Refused{"scanner symbology QR yes", "scanner: \"yes\" is neither on nor off"},
        Refused{"scanner parameter 73", "scanner: \"73\" is no pair of bytes such as 7041"},
        Refused{"scanner parameter 7341 256", "scanner: \"256\" is no value from 0 to 255"},
        Refused{"scanner refuse Conect 1", "scanner: there is no function \"Conect\"; did you mean \"Connect\"?"},
        Refused{"scanner refuse HEDC_Connect 1", "scanner: there is no function \"HEDC_Connect\""},
        Refused{"scanner refuse Connect 0x10000", "scanner: \"0x10000\" is no status from 0 to 65535"},
        Refused{"scanner refuse Connect 1 often", "scanner: \"often\" is no number of calls from 0 to 4294967294"},
        Refused{"scanner answer Connect zz",
                "scanner: \"zz\" is not hexadecimal of at most 4096 bytes, nor - for none"},
        Refused{"scanner devices A", "scanner: there is no command \"devices\""},
        Refused{"scanner log 513", "scanner: \"513\" is no number of calls from 0 to 512"},
        Refused{"other parameter 7341", "other: there is no command \"parameter\""},
        Refused{"other refuse Connect 1", "other: there is no function \"Connect\""},
        Refused{"emulator refuse 0", "emulator: \"0\" is no answer from 1 to 4294967295"},
        Refused{"emulator hand-over-at 0", "emulator: \"0\" is no poll from 1 to 4294967294"},
        Refused{"emulator notice loud", "emulator: \"loud\" is none of none, posted and sent"},
        Refused{"emulator start quickly", "emulator: \"quickly\" is none of no-window and handed-over"},
        Refused{"emulator connect-delay 600001", "emulator: \"600001\" is no delay from 0 to 600000"},
        Refused{"computer product-name", "computer: the command has to be: product-name TEXT"}));

struct Bad {
    const char* text;
    const char* errors;
};

void PrintTo(const Bad& bad, std::ostream* stream) {
    *stream << ::testing::PrintToString(bad.text);
}

class BadScanner : public ::testing::TestWithParam<Bad> {};

TEST_P(BadScanner, IsReportedWithPlaceAndSentence) {
    try {
        ReadScenario(std::string("[[device]]\nkind = ") + GetParam().text, "s.toml");
        FAIL() << "read";
    } catch (const ScenarioError& error) {
        EXPECT_STREQ(GetParam().errors, error.what());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Keys, BadScanner,
    ::testing::Values(
        Bad{"\"intermec-scanner\"\nlink = \"air\"\n",
            "s.toml:3:8: \"link\" has to be \"built-in\", \"usb\" or \"serial\""},
        Bad{"\"intermec-scanner\"\nlink = \"usb\"\nproduct = 0x0802\n",
            "s.toml:4:11: \"product\" has to be 0x0801 or 0x0809"},
        Bad{"\"intermec-scanner\"\nlink = \"usb\"\nport = 9\n", "s.toml:4:1: a device has no key \"port\""},
        Bad{"\"intermec-scanner\"\nlink = \"serial\"\nport = 0\n",
            "s.toml:4:8: \"port\" has to be a whole number from 1 to 256"},
        Bad{"\"intermec-scanner\"\ndata_mode = 256\n",
            "s.toml:3:13: \"data_mode\" has to be a whole number from 0 to 255"},
        Bad{"\"intermec-scanner\"\nsymbologies = [\"QR\", \"EAN13\"]\n",
            "s.toml:3:15: there is no symbology \"EAN13\"; did you mean \"EAN_13\"?"},
        Bad{"\"honeywell-scanner\"\nlink = \"usb\"\n",
            "s.toml:3:1: a device has no key \"link\"; did you mean \"kind\"?"},
        Bad{"\"honeywell-scanner\"\ndevices = [\"1\",\"2\",\"3\",\"4\",\"5\",\"6\",\"7\",\"8\",\"9\"]\n",
            "s.toml:3:11: \"devices\" has to be a list of at most 8 names of at most 1023 bytes"},
        Bad{"\"emulator\"\nnotice = \"loud\"\n", "s.toml:3:10: \"notice\" has to be \"none\", \"posted\" or \"sent\""},
        Bad{"\"emulator\"\nanswer = -1\n", "s.toml:3:10: \"answer\" has to be a whole number from 0 to 4294967295"},
        Bad{"\"computer\"\nproduct = \"JR-42\"\n", "s.toml:3:1: a device has no key \"product\""},
        Bad{"\"honeywell-scanner\"\n[[event]]\nat = 1\ndevice = \"honeywell-scanner\"\ncommand = \"scan\"\n",
            "s.toml:6:11: the command has to be: scan TEXT [SYMBOLOGY]"}));

}  // namespace
}  // namespace quarlin::sim::testing
