// SPDX-License-Identifier: Apache-2.0
#include "core/scenario.h"

#include <gtest/gtest.h>

namespace quarlin::sim {
namespace {

std::string ErrorsOf(const std::string& text) {
    try {
        ReadScenario(text, "s.toml");
    } catch (const ScenarioError& error) {
        return error.what();
    }
    return "";
}

const std::string kGps = "[[device]]\nkind = \"gps\"\nport = \"COM8\"\n";

struct Bad {
    std::string text;
    const char* errors;
};

void PrintTo(const Bad& bad, std::ostream* stream) {
    *stream << ::testing::PrintToString(bad.text);
}

class BadScenario : public ::testing::TestWithParam<Bad> {};

TEST_P(BadScenario, IsReportedWithPlaceAndSentence) {
    EXPECT_EQ(GetParam().errors, ErrorsOf(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Roots, BadScenario,
    ::testing::Values(Bad{"", "s.toml:1:1: the scenario has no device: add a [[device]] table"},
                      Bad{"sed = 1\n" + kGps, "s.toml:1:1: the scenario has no key \"sed\"; did you mean \"seed\"?"},
                      Bad{"seed = \"x\"\n" + kGps, "s.toml:1:8: \"seed\" has to be a whole number"},
                      Bad{"seed = 1.5\n" + kGps, "s.toml:1:8: \"seed\" has to be a whole number"},
                      Bad{"speed_factor = -1\n" + kGps,
                          "s.toml:1:16: \"speed_factor\" has to be a number from 0 to 1000"},
                      Bad{"start = \"soon\"\n" + kGps,
                          "s.toml:1:9: \"start\" has to be a date and time such as 2026-05-12T08:30:00Z, or \"now\""},
                      Bad{"[device]\nkind = \"gps\"\n",
                          "s.toml:1:1: \"device\" has to be a list of tables: write [[device]] with double brackets"}));

INSTANTIATE_TEST_SUITE_P(
    Devices, BadScenario,
    ::testing::Values(
        Bad{"[[device]]\nport = \"COM8\"\n", "s.toml:1:1: a device needs the key \"kind\""},
        Bad{"[[device]]\nkind = \"gsp\"\n", "s.toml:2:8: there is no kind of device \"gsp\"; did you mean \"gps\"?"},
        Bad{"[[device]]\nkind = 7\n", "s.toml:2:8: \"kind\" has to be a text in quotes"},
        Bad{"[[device]]\nkind = \"gps\"\n", "s.toml:1:1: a device needs the key \"port\""},
        Bad{"[[device]]\nkind = \"gps\"\nport = \"8\"\n",
            "s.toml:3:8: \"port\" has to be a port's name such as \"COM8\""},
        Bad{kGps + "rat = 2\n", "s.toml:4:1: a device has no key \"rat\"; did you mean \"rate\"?"},
        Bad{kGps + "rate = 50\n", "s.toml:4:8: \"rate\" has to be a number from 0 to 20"},
        Bad{kGps + "talker = \"GA\"\n", "s.toml:4:10: \"talker\" has to be \"GN\" or \"GP\""},
        Bad{kGps + "sentences = [\"GGA\", \"GLL\"]\n",
            "s.toml:4:13: there is no sentence \"GLL\"; there are GGA, GSA, GSV, RMC and VTG"},
        Bad{kGps + "glonass = 1\n", "s.toml:4:11: \"glonass\" has to be true or false"},
        Bad{kGps + "name = \"GPS 1\"\n", "s.toml:4:8: a device's name has small letters, digits, \"-\" and \"_\" only"},
        Bad{kGps + "name = \"quit\"\n", "s.toml:4:8: \"quit\" is a command and cannot be a device's name"},
        Bad{kGps + kGps, "s.toml:4:1: two devices have the name \"gps\"; give each a \"name\" of its own"},
        Bad{kGps + "[device.track]\nstart = [91, 0]\n",
            "s.toml:5:9: \"start\" has to be a latitude from -89 to 89 and a longitude from -180 to 180"},
        Bad{kGps + "[device.track]\nstart = 5\n", "s.toml:5:9: \"start\" has to be a pair of numbers in brackets"},
        Bad{kGps + "[device.track]\nwaypoints = [[1, 2], [3]]\nspeed_kmh = 5\n",
            "s.toml:5:22: \"waypoints\" has to be a list of pairs of numbers"},
        Bad{kGps + "[device.track]\nwaypoints = [[1, 2]]\nspeed_kmh = 5\ncourse = 3\n",
            "s.toml:7:10: a track with \"waypoints\" takes no \"course\""},
        Bad{kGps + "[device.track]\nwaypoints = [[1, 2]]\n",
            "s.toml:4:1: a track with waypoints needs a \"speed_kmh\" above 0"},
        Bad{kGps + "[device.track]\n[[device.track.turn]]\nat = 5\n",
            "s.toml:6:6: a turn needs \"course\", \"speed_kmh\" or both"},
        Bad{kGps + "[device.faults]\nnoise = 2\n", "s.toml:5:9: \"noise\" has to be a number from 0 to 1"},
        Bad{kGps + "[device.faults]\nnose = 0\n",
            "s.toml:5:1: a table of faults has no key \"nose\"; did you mean \"noise\"?"}));

INSTANTIATE_TEST_SUITE_P(
    Events, BadScenario,
    ::testing::Values(Bad{kGps + "[[event]]\n",
                          "s.toml:4:1: an event needs the key \"at\"\n"
                          "s.toml:4:1: an event needs the key \"device\"\n"
                          "s.toml:4:1: an event needs the key \"command\""},
                      Bad{kGps + "[[event]]\nat = 1\ndevice = \"gos\"\ncommand = \"plug\"\n",
                          "s.toml:6:10: the scenario has no device \"gos\"; did you mean \"gps\"?"},
                      Bad{kGps + "[[event]]\nat = 1\ndevice = \"gps\"\ncommand = \"plugg\"\n",
                          "s.toml:7:11: there is no command \"plugg\"; did you mean \"plug\"?"},
                      Bad{kGps + "[[event]]\nat = -1\ndevice = \"gps\"\ncommand = \"plug\"\nwhy = 1\n",
                          "s.toml:5:6: \"at\" has to be a number from 0 to 1000000\n"
                          "s.toml:8:1: an event has no key \"why\""}));

TEST(Scenario, ASyntaxErrorHasItsPlace) {
    try {
        ReadScenario("seed = 1\nspeed_factor = = 2\n", "s.toml");
        FAIL() << "accepted";
    } catch (const ScenarioError& error) {
        ASSERT_EQ(1u, error.Problems().size());
        EXPECT_EQ(2u, error.Problems()[0].place.line);
        EXPECT_EQ(0u, std::string(error.what()).find("s.toml:2:"));
    }
}

TEST(Scenario, EverythingWrongIsReportedAtOnceInTheOrderOfTheFile) {
    const std::string errors = ErrorsOf("colour = 1\n" + kGps + "rate = true\nbuad = 9600\n");
    EXPECT_EQ(
        "s.toml:1:1: the scenario has no key \"colour\"\n"
        "s.toml:5:8: \"rate\" has to be a number\n"
        "s.toml:6:1: a device has no key \"buad\"; did you mean \"baud\"?",
        errors);
}

TEST(Scenario, ReadsWhatItSays) {
    const Scenario scenario =
        ReadScenario("seed = 9\nstart = 2026-05-12T10:30:00+02:00\nspeed_factor = 0\nduration = 12.5\n" + kGps +
                         "name = \"roof\"\n[[event]]\nat = 5\ndevice = \"roof\"\ncommand = \"unplug\"\n"
                         "[[event]]\nat = 2\ndevice = \"roof\"\ncommand = \"noise 0.5\"\n",
                     "s.toml");
    EXPECT_EQ(9u, scenario.seed);
    EXPECT_EQ(1778574600000, scenario.startUtc);
    EXPECT_EQ(0, scenario.speedFactor);
    EXPECT_EQ(12.5, scenario.duration);
    ASSERT_EQ(1u, scenario.devices.size());
    EXPECT_EQ("roof", scenario.devices[0].name);
    ASSERT_EQ(2u, scenario.devices[0].timeline.size());
    EXPECT_EQ(2, scenario.devices[0].timeline[0].at);
    EXPECT_EQ((Words{"unplug"}), scenario.devices[0].timeline[1].words);
}

TEST(Scenario, AMissingFileIsAnError) {
    EXPECT_THROW(LoadScenario("there-is-no-such-scenario.toml"), ScenarioError);
}

class ShippedScenario : public ::testing::TestWithParam<const char*> {};

TEST_P(ShippedScenario, IsWithoutFault) {
    EXPECT_EQ(1u, LoadScenario(std::string(QLSIM_SCENARIO_DIR) + "/" + GetParam()).devices.size());
}

INSTANTIATE_TEST_SUITE_P(Files, ShippedScenario, ::testing::Values("patrol.toml", "faults.toml"));

}  // namespace
}  // namespace quarlin::sim
