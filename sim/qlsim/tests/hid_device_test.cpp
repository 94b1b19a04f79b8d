// SPDX-License-Identifier: Apache-2.0
// Other devices on the HID bus.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/simulation.h"
#include "hid/hex.h"
#include "hid/hid_plan.h"
#include "hid/report_descriptor.h"
#include "memory_hid_socket.h"

namespace quarlin::sim {
namespace {

using testing::HidPlace;
using Report = HidPlace::Report;
using Json = nlohmann::json;

std::string Device(const std::string& keys = "") {
    return "[[device]]\nkind = \"hid\"\nvendor = 0x046A\nproduct = 0x0023\n" + keys;
}

class PlainHid : public ::testing::Test {
  protected:
    void Start(const std::string& text) {
        SimulationOptions options;
        options.makeHidSocket = bus.Maker();
        simulation_.emplace(ReadScenario(text, "test.toml"), options, log_);
        simulation_->Start();
    }
    HidPlace& Place() { return bus[0]; }
    HidIdentity Identity() {
        return Place().With([](const HidPlace& place) { return place.identity.value(); });
    }
    void Expect(const std::string& line, const std::string& reply) {
        EXPECT_EQ(reply, simulation_->Execute(line).Line()) << line;
    }
    Json Status() { return Json::parse(simulation_->Execute("status hid").text); }

    testing::MemoryHidBus bus;

  private:
    Log log_;
    std::optional<Simulation> simulation_;
};

TEST_F(PlainHid, IsWhatTheScenarioSays) {
    Start(Device("version = 0x0203\ninstance = \"7&1&0&0000\"\ninput_report_length = 65\noutput_report_length = 0\n"));
    EXPECT_EQ(0x046A, Identity().vendor);
    EXPECT_EQ(0x0023, Identity().product);
    EXPECT_EQ(0x0203, Identity().version);
    EXPECT_EQ("7&1&0&0000", Identity().instance);
    const auto lengths = MeasureReportDescriptor(Identity().reportDescriptor);
    ASSERT_TRUE(lengths);
    EXPECT_EQ(65u, lengths->input);
    EXPECT_EQ(0u, lengths->output);
    EXPECT_EQ(9u, lengths->feature);
}

TEST_F(PlainHid, AKeyboardSendsKeysAndTakesItsLamps) {
    Start(Device("descriptor = \"keyboard\"\n"));
    Expect("hid input 00 00 00 04 00 00 00 00 00", "ok sent 9 bytes");
    EXPECT_EQ((std::vector<Report>{{0, 0, 0, 4, 0, 0, 0, 0, 0}}), Place().TakeInputs());
    EXPECT_TRUE(Place().SetOutput({0, 2}));
    EXPECT_EQ("0002", Status()["last_output"]);
    Expect("hid input 00", "error hid: an input report of the device has 9 bytes");
}

TEST_F(PlainHid, GivesTheLastFeatureReportBack) {
    Start(Device());
    EXPECT_EQ(Report(9), Place().GetFeature());
    EXPECT_TRUE(Place().SetFeature({0, 1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ((Report{0, 1, 2, 3, 4, 5, 6, 7, 8}), Place().GetFeature());
    EXPECT_EQ("000102030405060708", Status()["last_feature"]);
    EXPECT_EQ(1, Status()["set_features"]);
    EXPECT_EQ(2, Status()["get_features"]);
}

TEST_F(PlainHid, FailsAndVanishesOnRequest) {
    Start(Device());
    Expect("hid fail-request output starting 0A after 1", "ok such a request fails");
    const auto lamp = [](std::uint8_t first) { return Report{0, first, 0, 0, 0, 0, 0, 0, 0}; };
    EXPECT_TRUE(Place().SetOutput(lamp(0x0A)));
    EXPECT_TRUE(Place().SetOutput(lamp(0x0B)));
    EXPECT_FALSE(Place().SetOutput(lamp(0x0A)));
    EXPECT_TRUE(Place().SetOutput(lamp(0x0A)));
    Expect("hid unplug-on set", "ok unplugged on such a request");
    EXPECT_FALSE(Place().SetFeature(Report(9)));
    EXPECT_EQ(false, Status()["plugged"]);
    Expect("hid input 000000000000000000", "error hid: the device is unplugged");
    Expect("hid plug", "ok plugged in");
    Expect("hid fail-request always", "ok such a request fails");
    EXPECT_FALSE(Place().GetFeature());
    EXPECT_FALSE(Place().GetFeature());
    Expect("hid no-faults", "ok no faults");
    EXPECT_TRUE(Place().GetFeature());
    Expect("hid unplug", "ok unplugged");
    Expect("hid unplug", "ok unplugged already");
}

TEST_F(PlainHid, RefusesWhatIsWrongWithASentence) {
    Start(Device("plugged = false\n"));
    Expect("hid plugg", "error hid: there is no command \"plugg\"; did you mean \"plug\"?");
    Expect("hid plug in", "error hid: the command has to be: plug");
    Expect("hid input xyz", "error hid: the command has to be: input HEX, with the report ID in front");
    EXPECT_EQ(0, Place().With([](const HidPlace& place) { return place.plugged; }));
}

TEST(HidKind, ReportsWhatIsWrong) {
    for (const char* const keys : {"descriptor = \"mouse\"\n", "descriptor = \"A101\"\n", "input_report_length = 1\n",
                                   "version = 65536\n", "descriptor = \"keyboard\"\ninput_report_length = 4\n"}) {
        try {
            ReadScenario(Device(keys), "test.toml");
            FAIL() << "accepted " << keys;
        } catch (const ScenarioError& error) {
            EXPECT_EQ(1u, error.Problems().size()) << error.what();
        }
    }
    EXPECT_THROW(ReadScenario("[[device]]\nkind = \"hid\"\n", "test.toml"), ScenarioError);
}

TEST(Hex, GoesBothWays) {
    EXPECT_EQ((std::vector<std::uint8_t>{0x00, 0xFF, 0xA5}), ParseHex("00 ff\r\n\tA5"));
    EXPECT_EQ("00FFA5", HexText(std::vector<std::uint8_t>{0x00, 0xFF, 0xA5}));
    EXPECT_EQ("0801", HexText(std::uint16_t{0x0801}));
    for (const char* const wrong : {"0", "0 0", "0g", "0x00", "-1"}) {
        EXPECT_FALSE(ParseHex(wrong)) << wrong;
    }
}

}  // namespace
}  // namespace quarlin::sim
