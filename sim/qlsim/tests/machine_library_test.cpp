// SPDX-License-Identifier: Apache-2.0
// The kinds "probe" and "camera-light" in a simulation.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "core/simulation.h"
#include "memory_record.h"

namespace quarlin::sim {
namespace {

using Json = nlohmann::json;

class MachineLibrary : public ::testing::Test {
  protected:
    void Play(const std::string& scenario) {
        SimulationOptions options;
        options.machineRecords = machine_.Makers();
        simulation_.emplace(ReadScenario(scenario, "test.toml"), options, log_);
        simulation_->Start();
    }
    std::string Do(const std::string& command) { return simulation_->Execute(command).Line(); }
    Json Status(const std::string& device) {
        const Reply reply = simulation_->Execute("status " + device);
        EXPECT_TRUE(reply.ok) << reply.text;
        return Json::parse(reply.text);
    }
    void AddCall(CallLog& log, std::uint32_t function, std::int64_t first, std::int32_t status) {
        log.Add({function, 42, {first, 20, 1}, status, 0});
    }

    Log log_;
    testing::MemoryMachine machine_;
    std::optional<Simulation> simulation_;
};

constexpr const char* kProbe = "[[device]]\nkind = \"probe\"\n";
constexpr const char* kLight = "[[device]]\nkind = \"camera-light\"\nname = \"light\"\n";

TEST_F(MachineLibrary, AProbeBeginsAsItsScenarioSays) {
    machine_.probe.started = 2;
    machine_.probe.devices[0].power = 77;
    AddCall(machine_.probe.log, 0, 0, 0);
    Play(std::string(kProbe) +
         "listed = 9\n"
         "[[device.built_in]]\nnumber = 15\navailable = true\npower = 1\nbios = 2\n"
         "[[device.built_in]]\nnumber = 3\npower = 4294967295\n"
         "[[device.battery]]\nnumber = 2\nname = \"TWELVE CHARS\"\nid = \"A-1\"\nvoltage = -5\n"
         "[device.answers]\nHwProbe_GetDeviceInfo = -10\n");
    const ProbeState& state = machine_.probe;
    EXPECT_EQ(state.listed, 9);
    EXPECT_EQ(state.devices[14].available, 1u);
    EXPECT_EQ(state.devices[14].power, 1u);
    EXPECT_EQ(state.devices[14].bios, 2u);
    EXPECT_EQ(state.devices[2].power, 4294967295u);
    EXPECT_EQ(state.devices[2].available, 1u);
    EXPECT_EQ(std::u16string(state.batteries[1].name, 12), u"TWELVE CHARS");
    EXPECT_EQ(std::u16string(state.batteries[1].id, 12), std::u16string(u"A-1\0\0\0\0\0\0\0\0\0", 12));
    EXPECT_EQ(state.batteries[1].voltage, -5);
    EXPECT_EQ(state.batteries[0].voltage, 11418);
    EXPECT_EQ(state.answers[2], -10);
    // What is not in the scenario is as on a machine that nobody has touched; programs go on running.
    EXPECT_EQ(state.devices[0].power, 1u);
    EXPECT_EQ(state.log.count, 0u);
    EXPECT_EQ(state.started, 2);
}

TEST_F(MachineLibrary, AProbeDoesWhatItIsTold) {
    Play(kProbe);
    EXPECT_EQ("ok device 14: available on", Do("probe device 14 available on"));
    EXPECT_EQ("ok device 14: power 1", Do("probe device 14 power 1"));
    EXPECT_EQ("ok device 14: bios 2", Do("probe device 14 bios 2"));
    EXPECT_EQ("ok battery 2: voltage 7100", Do("probe battery 2 voltage 7100"));
    EXPECT_EQ("ok battery 1: name PACK 7", Do("probe battery 1 name \"PACK 7\""));
    EXPECT_EQ("ok 20 devices in the list", Do("probe listed 20"));
    EXPECT_EQ("ok HwProbe_Initialize answers -1", Do("probe answer HwProbe_Initialize -1"));
    const Json status = Status("probe");
    EXPECT_EQ(status["kind"], "probe");
    EXPECT_EQ(status["listed"], 20);
    EXPECT_EQ(status["devices"].size(), 15u);
    EXPECT_EQ(status["devices"][13], Json::parse(R"({"number":14,"available":true,"power":1,"bios":2})"));
    EXPECT_EQ(status["batteries"][0]["name"], "PACK 7");
    EXPECT_EQ(status["batteries"][1]["voltage"], 7100);
    EXPECT_EQ(status["answers"], Json::parse(R"({"HwProbe_Initialize":-1})"));
    EXPECT_EQ(machine_.probe.answers[0], -1);

    EXPECT_EQ("ok HwProbe_Initialize answers what it finds", Do("probe answer HwProbe_Initialize 0"));
    EXPECT_EQ("ok as the scenario has it", Do("probe reset"));
    EXPECT_EQ(machine_.probe.listed, 15);
    EXPECT_EQ(machine_.probe.devices[13].available, 0u);
}

TEST_F(MachineLibrary, AProbeTellsTheCallsThatItGot) {
    Play(kProbe);
    EXPECT_EQ("ok []", Do("probe log"));
    AddCall(machine_.probe.log, 2, 7, -11);
    EXPECT_EQ(R"(ok [{"function":"HwProbe_GetDeviceInfo","arguments":[7,20,1],"status":-11,"process":42}])",
              Do("probe log"));
    EXPECT_EQ(Status("probe")["calls"], 1);
    EXPECT_EQ("ok the log is empty", Do("probe clear-log"));
    EXPECT_EQ("ok []", Do("probe log"));
}

TEST_F(MachineLibrary, ALogHasTheLastCallsWhenThereWereMany) {
    Play(kProbe);
    for (int i = 0; i < 300; ++i) {
        AddCall(machine_.probe.log, i == 299 ? 1000u : 2u, i, 0);
    }
    const Json calls = Json::parse(Do("probe log").substr(3));
    ASSERT_EQ(calls.size(), 256u);
    EXPECT_EQ(calls[0]["arguments"][0], 44);
    EXPECT_EQ(calls[255]["arguments"][0], 299);
    EXPECT_EQ(calls[255]["function"], "?");
}

TEST_F(MachineLibrary, EventsReachTheRecord) {
    Play("speed_factor = 0\nduration = 2\n" + std::string(kProbe) +
         "[[event]]\nat = 1\ndevice = \"probe\"\ncommand = \"device 1 power 0\"\n");
    simulation_->WaitForEnd();
    EXPECT_EQ(machine_.probe.devices[0].power, 0u);
}

TEST_F(MachineLibrary, ALightBeginsAsItsScenarioSays) {
    machine_.light.SwitchOnFor(9, machine_.clock);
    Play(std::string(kLight) +
         "on = true\nversion = \"EIGHTEEN LETTERS !\"\nversion_number = 7\n"
         "[device.answers]\nCameraLight_TurnOff = 1\n");
    EXPECT_EQ(machine_.light.Timer(machine_.clock), 255);
    EXPECT_EQ(machine_.light.answers[2], 1);
    EXPECT_EQ(machine_.light.versionNumber, 7u);
    const Json status = Status("light");
    EXPECT_EQ(status["kind"], "camera-light");
    EXPECT_EQ(status["version"], "EIGHTEEN LETTERS !");
    EXPECT_EQ(status["answers"], Json::parse(R"({"CameraLight_TurnOff":1})"));
}

TEST_F(MachineLibrary, ALightIsOffUnlessItsScenarioSaysOtherwise) {
    machine_.light.KeepOn();
    Play(kLight);
    EXPECT_EQ(machine_.light.Timer(machine_.clock), 0);
}

TEST_F(MachineLibrary, ALightDoesWhatItIsTold) {
    Play(kLight);
    EXPECT_EQ("ok on", Do("light on"));
    EXPECT_EQ(Status("light")["timer"], 255);
    EXPECT_EQ(Status("light")["kept_on"], true);
    EXPECT_EQ("ok off", Do("light off"));
    EXPECT_EQ(Status("light")["on"], false);
    EXPECT_EQ("ok the timer's value is left untouched", Do("light timer-readable off"));
    EXPECT_EQ(machine_.light.timerUnreadable, 1u);
    EXPECT_EQ("ok the timer can be read", Do("light timer-readable on"));
    EXPECT_EQ("ok CameraLight_GetTimerStatus answers 3", Do("light answer CameraLight_GetTimerStatus 3"));
    EXPECT_EQ(machine_.light.answers[7], 3);
    EXPECT_EQ("ok as the scenario has it", Do("light reset"));
    EXPECT_EQ(machine_.light.answers[7], 0);
}

TEST_F(MachineLibrary, ALightCountsDown) {
    Play(kLight);
    EXPECT_EQ("ok on for 3 seconds", Do("light timer 3"));
    EXPECT_EQ(Status("light")["timer"], 3);
    machine_.clock += 1000;
    EXPECT_EQ(Status("light")["timer"], 2);
    machine_.clock += 1999;
    EXPECT_EQ(Status("light")["timer"], 1);
    machine_.clock += 1;
    EXPECT_EQ(Status("light")["timer"], 0);
    EXPECT_EQ(Status("light")["on"], false);
}

TEST(MachineLibraryWithoutAMachine, CannotBegin) {
    Log log;
    Simulation simulation(ReadScenario(kProbe, "test.toml"), {}, log);
    EXPECT_THROW(simulation.Start(), DeviceError);
}

struct Refused {
    const char* line;
    const char* sentence;
};

void PrintTo(const Refused& refused, std::ostream* stream) {
    *stream << ::testing::PrintToString(refused.line);
}

class RefusedByALibrary : public MachineLibrary, public ::testing::WithParamInterface<Refused> {};

TEST_P(RefusedByALibrary, SaysWhy) {
    Play(std::string(kProbe) + kLight);
    EXPECT_EQ(std::string("error ") + GetParam().sentence, Do(GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(
    Sentences, RefusedByALibrary,
    ::testing::Values(
        Refused{"probe", "probe: a command is missing; \"help\" lists what there is"},
        Refused{"probe devise 1 power 1", "probe: there is no command \"devise\"; did you mean \"device\"?"},
        Refused{"probe device 1 power", "probe: the command has to be: device NUMBER available|power|bios VALUE"},
        Refused{"probe device 16 power 1", "probe: \"16\" is no device from 1 to 15"},
        Refused{"probe device x power 1", "probe: \"x\" is no device from 1 to 15"},
        Refused{"probe device 1 colour 1", "probe: \"colour\" is none of available, power and bios"},
        Refused{"probe device 1 power -1", "probe: \"-1\" is no state from 0 to 4294967295"},
        Refused{"probe device 1 available 1", "probe: \"1\" is neither on nor off"},
        Refused{"probe battery 3 voltage 1", "probe: \"3\" is no battery from 1 to 2"},
        Refused{"probe battery 1 voltag 1", "probe: a battery has no \"voltag\"; did you mean \"voltage\"?"},
        Refused{"probe battery 1 voltage 2147483648",
                "probe: \"2147483648\" is no value from -2147483648 to 2147483647"},
        Refused{"probe battery 1 name THIRTEEN-CHAR",
                "probe: \"THIRTEEN-CHAR\" is no text of at most 12 plain characters"},
        Refused{"probe answer HwProbe_Initialise 1",
                "probe: there is no function \"HwProbe_Initialise\"; did you mean \"HwProbe_Initialize\"?"},
        Refused{"probe answer HwProbe_Initialize x", "probe: \"x\" is no status from -2147483648 to 2147483647"},
        Refused{"probe status now", "probe: the command has to be: status"},
        Refused{"probe reset all", "probe: the command has to be: reset"},
        Refused{"light timer 0", "light: \"0\" is no number of seconds from 1 to 254"},
        Refused{"light timer 255", "light: \"255\" is no number of seconds from 1 to 254"},
        Refused{"light timer-readable maybe", "light: \"maybe\" is neither on nor off"},
        Refused{"light blink", "light: there is no command \"blink\""}));

struct Bad {
    const char* keys;
    const char* errors;
};

void PrintTo(const Bad& bad, std::ostream* stream) {
    *stream << ::testing::PrintToString(bad.keys);
}

class BadLibrary : public ::testing::TestWithParam<Bad> {};

TEST_P(BadLibrary, IsReportedWithPlaceAndSentence) {
    try {
        ReadScenario(std::string("[[device]]\nkind = ") + GetParam().keys, "s.toml");
        FAIL() << "read";
    } catch (const ScenarioError& error) {
        EXPECT_STREQ(GetParam().errors, error.what());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Keys, BadLibrary,
    ::testing::Values(
        Bad{"\"probe\"\nlised = 3\n", "s.toml:3:1: a device has no key \"lised\"; did you mean \"listed\"?"},
        Bad{"\"probe\"\n[[device.built_in]]\npower = 1\n", "s.toml:3:1: a built-in device needs the key \"number\""},
        Bad{"\"probe\"\n[[device.built_in]]\nnumber = 16\n",
            "s.toml:4:10: \"number\" has to be a whole number from 1 to 15"},
        Bad{"\"probe\"\n[[device.built_in]]\nnumber = 1\ncolour = 3\n",
            "s.toml:5:1: a built-in device has no key \"colour\""},
        Bad{"\"probe\"\n[[device.battery]]\nnumber = 1\nname = \"THIRTEEN-CHAR\"\n",
            "s.toml:5:8: \"name\" has to be a text of at most 12 plain characters"},
        Bad{"\"probe\"\n[device.answers]\nHwProbe_Init = 1\n",
            "s.toml:4:1: a table of answers has no key \"HwProbe_Init\""},
        Bad{"\"camera-light\"\non = 1\n", "s.toml:3:6: \"on\" has to be true or false"},
        Bad{"\"camera-light\"\nversion = \"NINETEEN LETTERS !!\"\n",
            "s.toml:3:11: \"version\" has to be a text of at most 18 plain characters"},
        Bad{"\"probe\"\n[[event]]\nat = 1\ndevice = \"probe\"\ncommand = \"device 1 power on\"\n",
            "s.toml:6:11: \"on\" is no state from 0 to 4294967295"}));

TEST(MachineLibraryCommands, AreListed) {
    Log log;
    testing::MemoryMachine machine;
    SimulationOptions options;
    options.machineRecords = machine.Makers();
    Simulation simulation(ReadScenario(std::string(kProbe) + kLight, "test.toml"), options, log);
    simulation.Start();
    const std::string help = simulation.Execute("help").text;
    for (const char* const line :
         {"probe device NUMBER available|power|bios VALUE", "probe battery NUMBER FIELD VALUE", "probe listed NUMBER",
          "probe answer FUNCTION STATUS", "probe log", "probe clear-log", "probe reset", "probe status", "light on",
          "light off", "light timer SECONDS", "light timer-readable on|off", "light answer FUNCTION STATUS",
          "light log", "light clear-log", "light reset", "light status"}) {
        EXPECT_NE(help.find("\"" + std::string(line) + "\""), std::string::npos) << line;
    }
}

}  // namespace
}  // namespace quarlin::sim
