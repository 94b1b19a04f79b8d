// SPDX-License-Identifier: Apache-2.0
// Card readers as scenarios and commands play them.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "core/simulation.h"
#include "magnesafe/swipe_report.h"
#include "memory_hid_socket.h"

namespace quarlin::sim {
namespace {

using testing::HidPlace;
using testing::MemoryHidBus;
using Json = nlohmann::json;

const std::string kReader =
    "[[device]]\nkind = \"card-reader\"\nname = \"reader\"\n"
    "[[device.card]]\nid = \"staff\"\ntrack2 = \";9000012345=000042?\"\n"
    "[[device.card]]\nid = \"torn\"\nbad_tracks = \"1,2\"\n";

std::string Reader(const std::string& keys) {
    return "[[device]]\nkind = \"card-reader\"\nname = \"reader\"\n" + keys;
}

// A scenario at work on a bus in memory, as if its file lay among the scenarios.
class Stage {
  public:
    explicit Stage(const std::string& text) : Stage(ReadScenario(text, QLSIM_SCENARIO_DIR "/test.toml")) {}
    explicit Stage(Scenario scenario) {
        log_.AddSink(logText_);
        SimulationOptions options;
        options.makeHidSocket = bus.Maker();
        simulation.emplace(std::move(scenario), options, log_);
    }
    ~Stage() { simulation.reset(); }

    Reply Do(const std::string& line) { return simulation->Execute(line); }
    void Expect(const std::string& line, const std::string& reply) { EXPECT_EQ(reply, Do(line).Line()) << line; }
    Json Status(const std::string& name = "reader") {
        const Reply reply = Do("status " + name);
        EXPECT_TRUE(reply.ok) << reply.text;
        return Json::parse(reply.text);
    }
    std::string LogText() const { return logText_.str(); }

    MemoryHidBus bus;
    std::optional<Simulation> simulation;

  private:
    std::ostringstream logText_;
    Log log_;
};

class RunningReader : public ::testing::Test {
  protected:
    RunningReader() { stage.simulation->Start(); }
    HidPlace& Place() { return stage.bus[0]; }
    HidPlace::Report TakeOne() {
        EXPECT_TRUE(Place().WaitForInputs(1));
        const auto inputs = Place().TakeInputs();
        EXPECT_EQ(1u, inputs.size());
        return inputs.at(0);
    }
    static std::string TextAt(const HidPlace::Report& report, std::size_t at, std::size_t length) {
        return {report.begin() + static_cast<std::ptrdiff_t>(at),
                report.begin() + static_cast<std::ptrdiff_t>(at + length)};
    }

    Stage stage{kReader};
};

TEST_F(RunningReader, AnswersEveryCommand) {
    stage.Expect("reader plug", "ok plugged in already");
    stage.Expect("reader swipe", "ok swiped staff, encrypted, number 1");
    stage.Expect("reader swipe staff clear", "ok swiped staff, clear, number 2");
    stage.Expect("reader swipe torn masked tracks 2 bad 3 with 495=06", "ok swiped torn, masked, number 3");
    stage.Expect("reader swipe-raw 00 0102", "ok sent 888 bytes");
    stage.Expect("reader swipe-many 0 staff", "ok swiping staff 0 times");
    stage.Expect("reader security-level 2", "ok security level 2");
    stage.Expect("reader swipe", "ok swiped staff, clear, number 4");
    stage.Expect("reader fail-feature set starting 000103 after 1 times 2", "ok 1 faults wait for their requests");
    stage.Expect("reader unplug-on get", "ok 2 faults wait for their requests");
    stage.Expect("reader result 05", "ok result 05");
    stage.Expect("reader result normal", "ok result normal");
    stage.Expect("reader short-answer 3", "ok short-answer 3");
    stage.Expect("reader short-answer off", "ok short-answer off");
    stage.Expect("reader no-faults", "ok no faults");
    stage.Expect("reader unplug", "ok unplugged");
    stage.Expect("reader unplug", "ok unplugged already");
    stage.Expect("reader swipe", "error reader: the device is unplugged");
    stage.Expect("reader swipe-raw 00", "error reader: the device is unplugged");
    stage.Expect("reader swipe-many 3", "error reader: the device is unplugged");
    stage.Expect("reader plug", "ok plugged in");
    EXPECT_TRUE(stage.Do("reader status").ok);
    EXPECT_EQ(5u, Place().TakeInputs().size());
}

TEST_F(RunningReader, RefusesWhatIsWrongWithASentence) {
    stage.Expect("reader swype", "error reader: there is no command \"swype\"; did you mean \"swipe\"?");
    stage.Expect("reader swipe stuff", "error reader: there is no card \"stuff\"; did you mean \"staff\"?");
    stage.Expect("reader swipe staff plain",
                 "error reader: \"plain\" is none of clear, masked, encrypted, tracks, bad and with");
    stage.Expect("reader swipe staff tracks 5", "error reader: \"5\" is no list of tracks such as 1,3 or all or none");
    stage.Expect("reader swipe staff with 888=00",
                 "error reader: \"888=00\" has to be a place from 0 to 887 and hexadecimal bytes, such as 495=06");
    stage.Expect("reader swipe no-such.toml", "error reader: the file cannot be read (\"no-such.toml\")");
    stage.Expect("reader swipe wallet.toml", "error reader: the file has several cards: name one after a #");
    stage.Expect("reader swipe wallet.toml#wisa", "error reader: the file has no card \"wisa\"");
    stage.Expect("reader swipe-raw 0",
                 "error reader: the report has to be hexadecimal, with the report ID 00 in front");
    stage.Expect("reader swipe-many many", "error reader: \"many\" is no whole number up to 10000000");
    stage.Expect("reader result 100", "error reader: \"100\" is no hexadecimal number up to 255");
    stage.Expect("reader fail-feature sometimes",
                 "error reader: the command has to be: fail-feature [set|get|output|any] [starting HEX] [after N] "
                 "[times N|always]");
    stage.Expect("reader fail-feature after some", "error reader: \"some\" is no whole number");
    stage.Expect("reader fail-feature starting xy", "error reader: \"xy\" is not hexadecimal");
    stage.Expect("reader swipe-raw " + std::string(2 * 889, '0'),
                 "error reader: the report has 889 bytes, the device sends 888");
    stage.Expect("reader plug now", "error reader: the command has to be: plug");
    EXPECT_TRUE(Place().TakeInputs().empty());
}

TEST_F(RunningReader, ACardOfAFileIsSwiped) {
    stage.Expect("reader swipe wallet.toml#visa clear", "ok swiped visa, clear, number 1");
    EXPECT_EQ("%B4111111111111111^MUSTERMANN/ERIKA^2812101", TextAt(TakeOne(), 8, 43));
}

TEST_F(RunningReader, ARawReportArrivesAsItIs) {
    std::string hex = "00";
    for (int i = 1; i < 888; ++i) {
        hex += i % 2 == 0 ? "5a" : "A5";
    }
    stage.Expect("reader swipe-raw " + hex, "ok sent 888 bytes");
    const auto report = TakeOne();
    EXPECT_EQ(0x00, report[0]);
    EXPECT_EQ(0xA5, report[887]);
    EXPECT_EQ(0x5A, report[886]);
}

TEST_F(RunningReader, ManySwipesAreNumberedInTheirOrderAndCommandsComeThrough) {
    stage.Expect("reader swipe-many 5000 staff", "ok swiping staff 5000 times");
    EXPECT_LE(stage.Status()["pending"], 5000);
    ASSERT_TRUE(Place().WaitForInputs(5000));
    std::uint32_t number = 0;
    for (const auto& report : Place().TakeInputs()) {
        ASSERT_EQ(++number, magnesafe::NumberOf(report));
    }
    EXPECT_EQ(5000u, number);
    EXPECT_EQ(0, stage.Status()["pending"]);
    EXPECT_EQ(5000, stage.Status()["swipes"]);
}

TEST_F(RunningReader, UnpluggingEndsManySwipes) {
    stage.Expect("reader swipe-many 10000000", "ok swiping staff 10000000 times");
    ASSERT_TRUE(Place().WaitForInputs(10));
    stage.Expect("reader unplug", "ok unplugged");
    EXPECT_EQ(0, stage.Status()["pending"]);
    EXPECT_LT(Place().TakeInputs().size(), 10000000u);
}

TEST_F(RunningReader, ADeviceThatVanishesInATransferGivesUpItsSwipes) {
    stage.Expect("reader unplug-on set", "ok 1 faults wait for their requests");
    stage.Expect("reader swipe-many 10000000", "ok swiping staff 10000000 times");
    EXPECT_FALSE(Place().SetFeature(HidPlace::Report(25)));
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (stage.Status()["pending"] != 0) {
        ASSERT_LT(std::chrono::steady_clock::now(), deadline);
    }
    EXPECT_EQ(false, stage.Status()["plugged"]);
    EXPECT_NE(std::string::npos, stage.LogText().find("swipes are given up: ")) << stage.LogText();
    Place().TakeInputs();
    stage.Expect("reader plug", "ok plugged in");
    stage.Expect("reader swipe torn",
                 "ok swiped torn, encrypted, number " + std::to_string(stage.Status()["swipes"].get<int>() + 1));
    EXPECT_EQ("%E?", TextAt(TakeOne(), 8, 3));
}

TEST_F(RunningReader, StatusTellsWhatAProgramDid) {
    Place().SetFeature(HidPlace::Report(25));
    Place().GetFeature();
    Place().GetFeature();
    Place().SetOutput(HidPlace::Report(64));
    const Json status = stage.Status();
    EXPECT_EQ("card-reader", status["kind"]);
    EXPECT_EQ(true, status["plugged"]);
    EXPECT_EQ("B30A5C7", status["serial"]);
    EXPECT_EQ("21088812D01", status["software_id"]);
    EXPECT_EQ(3, status["security_level"]);
    EXPECT_EQ((Json{"staff", "torn"}), status["cards"]);
    EXPECT_EQ(1, status["set_features"]);
    EXPECT_EQ(2, status["get_features"]);
    EXPECT_EQ(1, status["outputs"]);
}

TEST(CardReaderKind, TakesItsKeys) {
    Stage stage(
        Reader("serial = \"K\u00F6\"\nsoftware_id = \"S\"\nsecurity_level = 2\ninstance = \"6&1&0&0007\"\n"
               "input_report_length = 64\nfeature_report_length = 40\nplugged = true\nform = \"masked\"\n"
               "mask = \"*\"\nmask_first = 6\nmask_last = 2\nkey_serial = \"00112233445566778899\"\n"
               "card_files = [\"wallet.toml\"]\n"));
    stage.simulation->Start();
    const HidIdentity identity = stage.bus[0].With([](const HidPlace& place) { return place.identity.value(); });
    EXPECT_EQ("6&1&0&0007", identity.instance);
    const auto lengths = MeasureReportDescriptor(identity.reportDescriptor);
    EXPECT_EQ(64u, lengths->input);
    EXPECT_EQ(40u, lengths->feature);
    HidPlace::Report ask(40);
    ask[2] = 1;
    ask[3] = 3;
    EXPECT_TRUE(stage.bus[0].SetFeature(ask));
    const auto serial = stage.bus[0].GetFeature();
    ASSERT_TRUE(serial);
    EXPECT_EQ((HidPlace::Report{0, 0, 2, 'K', 0xF6, 0}), HidPlace::Report(serial->begin(), serial->begin() + 6));
    stage.Expect("reader swipe visa", "ok swiped visa, masked, number 1");
    const auto inputs = stage.bus[0].TakeInputs();
    ASSERT_EQ(1u, inputs.size());
    EXPECT_EQ("%B411111********11^", std::string(inputs[0].begin() + 8, inputs[0].begin() + 27));
    EXPECT_EQ(9u, stage.Status()["cards"].size());
}

TEST(CardReaderKind, ReportsWhatIsWrong) {
    try {
        ReadScenario(Reader("mask = \"ab\"\nform = \"plain\"\nkey_serial = \"00\"\nserial = \"\u0100\"\n"
                            "input_report_length = 1\n[[device.card]]\nid = \"x\"\nexpiry = \"1\"\n"),
                     "test.toml");
        FAIL() << "accepted";
    } catch (const ScenarioError& error) {
        EXPECT_EQ(7u, error.Problems().size()) << error.what();
    }
}

TEST(CardReaderKind, ABusThatRefusesOrAMissingWalletEndsTheStart) {
    Stage missing(Reader("card_files = [\"no-such.toml\"]\n"));
    EXPECT_THROW(missing.simulation->Start(), DeviceError);

    Scenario scenario = ReadScenario(Reader(""), "test.toml");
    MemoryHidBus bus;
    Log log;
    SimulationOptions options;
    options.makeHidSocket = [&bus] {
        auto socket = bus.Maker()();
        bus[0].With([](HidPlace& place) { place.refusePlug = true; });
        return socket;
    };
    Simulation simulation(std::move(scenario), options, log);
    try {
        simulation.Start();
        FAIL() << "started";
    } catch (const DeviceError& error) {
        EXPECT_STREQ("reader: the bus does not run", error.what());
    }
}

TEST(CardReaderKind, AMachineWithoutABusEndsTheStart) {
    Log log;
    SimulationOptions options;
    options.makeHidSocket = []() -> std::unique_ptr<HidSocket> { throw HidBusError("this machine has no bus"); };
    Simulation simulation(ReadScenario(Reader(""), "test.toml"), options, log);
    try {
        simulation.Start();
        FAIL() << "started";
    } catch (const DeviceError& error) {
        EXPECT_STREQ("reader: this machine has no bus", error.what());
    }
}

TEST(CardReaderKind, TheScenarioOfCardsPlaysThrough) {
    Scenario scenario = LoadScenario(QLSIM_SCENARIO_DIR "/cards.toml");
    scenario.speedFactor = 0;
    scenario.duration = 30;
    Stage stage(std::move(scenario));
    stage.simulation->Start();
    stage.simulation->WaitForEnd();
    EXPECT_EQ(3u, stage.bus[0].TakeInputs().size());
    EXPECT_EQ(2u, stage.bus[1].TakeInputs().size());
    EXPECT_EQ(1, stage.bus[1].With([](const HidPlace& place) { return place.plugged; }));
    EXPECT_EQ(10u, stage.Status("left")["cards"].size());
    EXPECT_EQ(std::string::npos, stage.LogText().find("refused")) << stage.LogText();
    EXPECT_EQ("0801", stage.Status("pin-pad")["vendor"]);
}

}  // namespace
}  // namespace quarlin::sim
