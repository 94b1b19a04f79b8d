// SPDX-License-Identifier: Apache-2.0
// The reader as a scenario describes it and as commands move it.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "core/simulation.h"
#include "memory_hid_socket.h"
#include "uhf/frames.h"

namespace quarlin::sim {
namespace {

using Json = nlohmann::json;
using testing::HidPlace;

const std::string kReader = "[[device]]\nkind = \"rfid-reader\"\nname = \"rfid\"\n";
const std::string kTag = "[[device.tag]]\nepc = \"3034 257B\"\n";

std::string ErrorsOf(const std::string& text) {
    try {
        ReadScenario(text, "s.toml");
    } catch (const ScenarioError& error) {
        return error.what();
    }
    return "";
}

struct Bad {
    std::string text;
    const char* errors;
};

void PrintTo(const Bad& bad, std::ostream* stream) {
    *stream << ::testing::PrintToString(bad.text);
}

class BadUhfScenario : public ::testing::TestWithParam<Bad> {};

TEST_P(BadUhfScenario, IsReportedWithPlaceAndSentence) {
    EXPECT_EQ(GetParam().errors, ErrorsOf(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Keys, BadUhfScenario,
    ::testing::Values(
        Bad{kReader + "powr = 5\n", "s.toml:4:1: a device has no key \"powr\"; did you mean \"power\"?"},
        Bad{kReader + "power = 256\n", "s.toml:4:9: \"power\" has to be a whole number from 0 to 255"},
        Bad{kReader + "input_report_length = 1\n",
            "s.toml:4:23: \"input_report_length\" has to be a whole number from 2 to 4096"},
        Bad{kReader + "vendor = 0x10000\n", "s.toml:4:10: \"vendor\" has to be a whole number from 0 to 65535"},
        Bad{kReader + "[device.query]\nmiler = 1\n",
            "s.toml:5:1: a table of query parameters has no key \"miler\"; did you mean \"miller\"?"},
        Bad{kReader + "[device.query]\nsensitivity = -129\n",
            "s.toml:5:15: \"sensitivity\" has to be a whole number from -128 to 127"},
        Bad{kReader + "[[device.tag]]\n", "s.toml:4:1: a tag needs the key \"epc\""},
        Bad{kReader + "[[device.tag]]\nepc = \"12G4\"\n", "s.toml:5:7: \"epc\" has to be a text of hexadecimal bytes"},
        Bad{kReader + "[[device.tag]]\nepc = \"123456\"\n",
            "s.toml:5:7: an EPC has whole words of two bytes, at most 31"},
        Bad{kReader + kTag + kTag, "s.toml:7:7: two tags have the same EPC"},
        Bad{kReader + kTag + "tid = 7\n", "s.toml:6:7: \"tid\" has to be a text in quotes"},
        Bad{kReader + kTag + "pc = \"10000\"\n", "s.toml:6:6: \"pc\" has to be a text of at most 4 hexadecimal digits"},
        Bad{kReader + kTag + "kill_password = \"x\"\n",
            "s.toml:6:17: \"kill_password\" has to be a text of at most 8 hexadecimal digits"},
        Bad{kReader + kTag + "rssi = 1\n", "s.toml:6:1: a tag has no key \"rssi\""},
        Bad{kReader + kTag + "locks = { user = \"shut\", bank = \"locked\" }\n",
            "s.toml:6:18: \"user\" has to be \"unlocked\", \"locked\", \"always_unlocked\" or \"always_locked\"\n"
            "s.toml:6:26: a table of locks has no key \"bank\""},
        Bad{kReader + "[[event]]\nat = 1\ndevice = \"rfid\"\ncommand = \"silense\"\n",
            "s.toml:7:11: there is no command \"silense\"; did you mean \"silence\"?"}));

// A scenario with a reader, and the program's end of its cable.
class Stage {
  public:
    explicit Stage(Scenario scenario, bool start = true) {
        log_.AddSink(logText_);
        SimulationOptions options;
        options.makeHidSocket = [this] { return std::make_unique<testing::MemoryHidSocket>(place); };
        simulation.emplace(std::move(scenario), options, log_);
        if (start) {
            simulation->Start();
        }
    }
    std::string Do(const std::string& line) { return simulation->Execute("rfid " + line).Line(); }
    Json Ask(const std::string& line) {
        const Reply reply = simulation->Execute("rfid " + line);
        EXPECT_TRUE(reply.ok) << reply.text;
        return Json::parse(reply.text);
    }
    // The reply without the zeros that fill it.
    std::string Exchange(const std::string& command) {
        Bytes report = ParseHex(command).value();
        report.resize(64);
        EXPECT_TRUE(place.SetOutput(report)) << command;
        const auto inputs = place.TakeInputs();
        return inputs.empty() ? "" : HexText(UhfFrameOf(inputs.back()));
    }
    std::string LogText() const { return logText_.str(); }

    HidPlace place;

  private:
    std::ostringstream logText_;
    Log log_;

  public:
    std::optional<Simulation> simulation;
};

Scenario OneTag(const std::string& keys = "", const std::string& tagKeys = "") {
    return ReadScenario("[[device]]\nkind = \"rfid-reader\"\nname = \"rfid\"\n" + keys + kTag + tagKeys, "s.toml");
}

TEST(UhfScenario, EverythingInItReachesTheReader) {
    Stage stage(
        OneTag("vendor = 0x1234\nproduct = 0x5678\nversion = 0x0203\ninstance = \"here\"\npower = 9\n"
               "most_power = 10\noutput_report_length = 64\ninput_report_length = 64\n"
               "query = { link_frequency = 7, miller = 1, session = 2, q_begin = 3, sensitivity = -90 }\n",
               "tid = \"E2 00\"\nuser = \"CAFE\"\npc = \"1015\"\naccess_password = \"7\"\n"
               "kill_password = \"0D15EA5E\"\nsignal = -1\npower = 9\nwrite_power = 10\n"
               "locks = { user = \"locked\", tid = \"unlocked\", kill_password = \"always_unlocked\" }\n"));
    const HidIdentity identity = stage.place.With([](const HidPlace& place) { return place.identity.value(); });
    EXPECT_EQ(0x1234, identity.vendor);
    EXPECT_EQ(0x5678, identity.product);
    EXPECT_EQ(0x0203, identity.version);
    EXPECT_EQ("here", identity.instance);
    EXPECT_EQ("44400001FF0000000610153034257B", stage.Exchange("430301").substr(0, 30));
    EXPECT_EQ("5A0F000007000100020000000300A6", stage.Exchange("590E"));
    EXPECT_EQ("C1030F", stage.Exchange("C0030B"));
    EXPECT_EQ("36048B00", stage.Exchange("350B030000000007011111"));
    const Json tag = stage.Ask("tags").at(0);
    EXPECT_EQ("3034257B", tag["epc"]);
    EXPECT_EQ("10153034257B", tag["identifier"]);
    EXPECT_EQ("E200", tag["tid"]);
    EXPECT_EQ("CAFE", tag["user"]);
    EXPECT_EQ("00000007", tag["access_password"]);
    EXPECT_EQ("0D15EA5E", tag["kill_password"]);
    EXPECT_EQ(-1, tag["signal"]);
    EXPECT_EQ(false, tag["selected"]);
    EXPECT_EQ(false, tag["killed"]);
    EXPECT_EQ(R"({"access_password":"unlocked","epc":"unlocked","kill_password":"always_unlocked","tid":"unlocked",)"
              R"("user":"locked"})",
              tag["locks"].dump());
}

TEST(UhfScenario, AReaderCanBeginUnplugged) {
    Stage stage(OneTag("plugged = false\n"));
    EXPECT_EQ(false, stage.Ask("status")["plugged"]);
    EXPECT_EQ("ok unplugged already", stage.Do("unplug"));
    EXPECT_EQ("error rfid: the reader is unplugged", stage.Do("send 3C03"));
    EXPECT_EQ("ok plugged in", stage.Do("plug"));
    EXPECT_EQ("ok plugged in already", stage.Do("plug"));
    EXPECT_EQ(true, stage.Ask("status")["plugged"]);
    EXPECT_EQ("ok unplugged", stage.Do("unplug"));
    stage.place.refusePlug = true;
    EXPECT_EQ("error rfid: the bus does not run", stage.Do("plug"));
}

TEST(UhfScenario, ABusThatDoesNotRunEndsTheStart) {
    Stage stage(OneTag(), false);
    stage.place.refusePlug = true;
    try {
        stage.simulation->Start();
        FAIL() << "started";
    } catch (const DeviceError& error) {
        EXPECT_STREQ("rfid: the bus does not run", error.what());
    }
}

TEST(UhfScenario, AMachineWithoutABusEndsTheStart) {
    Log log;
    SimulationOptions options;
    options.makeHidSocket = []() -> std::unique_ptr<HidSocket> { throw HidBusError("this machine has no bus"); };
    Simulation simulation(OneTag(), options, log);
    try {
        simulation.Start();
        FAIL() << "started";
    } catch (const DeviceError& error) {
        EXPECT_STREQ("rfid: this machine has no bus", error.what());
    }
}

TEST(UhfScenario, CommandsMoveTags) {
    Stage stage(OneTag());
    EXPECT_EQ("ok 2 tags", stage.Do("add-tag 1234 signal=-40"));
    EXPECT_EQ("error rfid: a tag with this EPC is there already", stage.Do("add-tag 1234"));
    EXPECT_EQ("44400002C4", stage.Exchange("430301").substr(0, 10));
    EXPECT_EQ("340300", stage.Exchange("3305021234"));
    EXPECT_EQ(true, stage.Ask("tags").at(1)["selected"]);
    EXPECT_EQ("1234", stage.Ask("status")["selected"]);
    EXPECT_EQ("ok signal -90", stage.Do("signal 3034257B -90"));
    EXPECT_EQ("error rfid: there is no tag with the EPC ABCD", stage.Do("signal ABCD -90"));
    EXPECT_EQ("44400002A6", stage.Exchange("430301").substr(0, 10));
    EXPECT_EQ("ok removed", stage.Do("remove-tag 3034257B"));
    EXPECT_EQ("error rfid: there is no tag with the EPC 3034257B", stage.Do("remove-tag 3034257B"));
    EXPECT_EQ("44400001D8", stage.Exchange("430301").substr(0, 10));
    EXPECT_EQ(1, stage.Ask("status")["tags"]);
}

TEST(UhfScenario, CommandsSetPowerAndParameters) {
    Stage stage(OneTag());
    EXPECT_EQ("ok power 200", stage.Do("power 200"));
    EXPECT_EQ("C30400C8", stage.Exchange("C202"));
    EXPECT_EQ(R"(ok {"link-frequency":9,"miller":2,"session":0,"q-begin":4,"sensitivity":-70})",
              stage.Do("parameters"));
    EXPECT_EQ(R"(ok {"link-frequency":99,"miller":2,"session":0,"q-begin":4,"sensitivity":-70})",
              stage.Do("parameters link-frequency 99"));
    EXPECT_EQ("5A0F000063000200000000000400BA", stage.Exchange("590E"));
}

TEST(UhfScenario, CommandsMakeFaultsAndEndThem) {
    Stage stage(OneTag());
    EXPECT_EQ("ok status-byte 0A read", stage.Do("status-byte a read"));
    EXPECT_EQ("ok byte 1 05", stage.Do("length-byte 5"));
    EXPECT_EQ("error rfid: no input report has the code 33", stage.Do("reply-code 33"));
    EXPECT_EQ("error rfid: an input report has 64 bytes only", stage.Do("byte 64 00"));
    EXPECT_EQ((std::vector<std::string>{"status-byte 0A read", "byte 1 05"}),
              stage.Ask("status")["faults"].get<std::vector<std::string>>());
    EXPECT_EQ("ok no faults", stage.Do("clear-faults"));
    EXPECT_EQ("C304001B", stage.Exchange("C202"));
}

TEST(UhfScenario, CommandsLetLateAnswersGo) {
    Stage stage(OneTag());
    EXPECT_EQ("ok late get-power", stage.Do("late get-power"));
    EXPECT_EQ("", stage.Exchange("C202"));
    EXPECT_EQ(1, stage.Ask("status")["waiting"]);
    EXPECT_EQ("ok 1 answer", stage.Do("answer-now"));
    EXPECT_EQ("ok 0 answers", stage.Do("answer-now"));
    EXPECT_EQ(1u, stage.place.TakeInputs().size());
}

TEST(UhfScenario, TheLogHasWhatCrossedTheBus) {
    Stage stage(OneTag());
    stage.Exchange("C202");
    EXPECT_EQ("ok sent", stage.Do("send 3C03"));
    EXPECT_EQ(R"(ok [{"from":"host","frame":"C202"},{"from":"reader","frame":"C304001B"},)"
              R"({"from":"reader","frame":"3C0300"}])",
              stage.Do("log"));
    EXPECT_EQ(R"(ok [{"from":"reader","frame":"3C0300"}])", stage.Do("log 1"));
    EXPECT_EQ("ok the log is empty", stage.Do("clear-log"));
    EXPECT_EQ("ok []", stage.Do("log 5"));
    const Json status = stage.Ask("status");
    EXPECT_EQ(1, status["received"]);
    EXPECT_EQ(2, status["sent"]);
    EXPECT_EQ(0, status["lost"]);
}

TEST(UhfScenario, TheWarehouseRunsToItsEnd) {
    Scenario scenario = LoadScenario(std::string(QLSIM_SCENARIO_DIR) + "/warehouse.toml");
    scenario.speedFactor = 0;
    Stage stage(std::move(scenario), false);
    stage.simulation->Start();
    stage.simulation->WaitForEnd();
    const Json status = stage.Ask("status");
    EXPECT_EQ(4, status["tags"]);
    EXPECT_EQ((std::vector<std::string>{"status-byte 0A times 2", "late 3"}),
              status["faults"].get<std::vector<std::string>>());
    EXPECT_EQ(2, stage.place.With([](const HidPlace& place) { return place.plugged; }));
    stage.simulation->Stop();
    EXPECT_EQ(2, stage.place.With([](const HidPlace& place) { return place.unplugged; }));
    EXPECT_EQ(std::string::npos, stage.LogText().find("refused")) << stage.LogText();
    EXPECT_EQ("error rfid: the device does not run", stage.Do("tags"));
}

}  // namespace
}  // namespace quarlin::sim
