// SPDX-License-Identifier: Apache-2.0
#include "camera_light/light_state.h"
#include "output_text.h"
#include "probe/probe_state.h"
#include "support/machine_library_win.h"

#include "child_process_win.h"

#include <gtest/gtest.h>

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::json;
using sim::LightFunction;
using sim::ProbeFunction;

class DeviceCommands : public testing::Test {
  protected:
    test::MachineLibrary<sim::ProbeState> machine_;
};

TEST_F(DeviceCommands, ListDevices) {
    const ChildResult text = Qlctl("device list");
    EXPECT_EQ(text.exitStatus, 0);
    EXPECT_EQ(text.err, "");
    EXPECT_NE(text.out.find("     4  yes        no       no\n"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("     7            1           2\n"), std::string::npos) << text.out;

    machine_.Use()->listed = 3;
    const Json list = Json::parse(Qlctl("device list --json").out);
    ASSERT_EQ(list["devices"].size(), 15U);
    EXPECT_EQ(list["devices"][8],
              Json::parse(R"({"device": 9, "available": true, "powered": true, "enabled_in_bios": false})"));
    EXPECT_EQ(list["devices"][14]["available"], false);
    ASSERT_EQ(list["listed"].size(), 3U);
    EXPECT_EQ(list["listed"][2], Json::parse(R"({"device": 3, "power_state": 1, "bios_state": 1})"));
    EXPECT_EQ(list["errors"], Json::array());
    EXPECT_EQ(machine_.Use()->started, 0) << "every initialisation is undone";
}

TEST_F(DeviceCommands, ShowWhatFailsInItsPlaceAndTheRest) {
    machine_.Answer(ProbeFunction::kGetDeviceInfo, -2);
    const ChildResult result = Qlctl("device list");
    EXPECT_EQ(result.exitStatus, 4);
    EXPECT_NE(result.out.find("     1  error      error    error\n"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("The machine's own list has 15 devices\n"), std::string::npos) << result.out;
    EXPECT_EQ(WithoutReturns(result.err),
              "qlctl: error 4 (QLERR_OP_UNSUPPORTED): Incompatable or missing misc driver\n");
}

TEST_F(DeviceCommands, ShowBatteries) {
    const ChildResult text = Qlctl("device battery");
    EXPECT_EQ(text.exitStatus, 0);
    EXPECT_EQ(text.out.find("Battery 1\n  Name                   MAIN-6CELL-A\n"), 0U) << text.out;
    const Json batteries = Json::parse(Qlctl("device battery --json").out)["batteries"];
    ASSERT_EQ(batteries.size(), 2U);
    EXPECT_EQ(batteries[0]["rate"], -962);
    EXPECT_EQ(batteries[1]["id"], "0031415926");

    machine_.Answer(ProbeFunction::kGetBatteryCurrentInfo, -12);
    const ChildResult failed = Qlctl("device battery");
    EXPECT_EQ(failed.exitStatus, 7);
    EXPECT_EQ(CountOf(failed.out, "  error 3 (QLERR_IO_ERROR): Buffer overflow error\n"), 2U) << failed.out;
}

TEST_F(DeviceCommands, ShowTheLibrarysErrorWhenTheProbeDoesNotStart) {
    machine_.Answer(ProbeFunction::kInitialize, -1);
    const ChildResult result = Qlctl("device list --json");
    EXPECT_EQ(result.exitStatus, 4);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(WithoutReturns(result.err), "qlctl: error 4 (QLERR_OP_UNSUPPORTED): Unsupported OS\n");
}

class LightCommands : public testing::Test {
  protected:
    int Timer() { return machine_.Use()->Timer(GetTickCount64()); }

    test::MachineLibrary<sim::LightState> machine_;
};

TEST_F(LightCommands, SwitchTheLight) {
    EXPECT_EQ(Qlctl("light on").out,
              "Light         on\n"
              "Timer         255\n");
    EXPECT_EQ(Timer(), 255) << "it stays on";
    EXPECT_EQ(Qlctl("light off --json").out, "{\"on\":false,\"timer\":0}\n");
    EXPECT_EQ(Timer(), 0);
}

TEST_F(LightCommands, SwitchTheLightOnForATime) {
    machine_.Use()->stoppedClock = 5000;
    EXPECT_EQ(Qlctl("light timer 20 --json").out, "{\"on\":true,\"timer\":20}\n");
    EXPECT_EQ(Timer(), 20);
    EXPECT_EQ(Qlctl("light timer 300 --json").out, "{\"on\":true,\"timer\":254}\n");
    EXPECT_EQ(Qlctl("light timer 0").exitStatus, 1);
    EXPECT_EQ(Timer(), 254) << "a wrong command line touches nothing";
}

TEST_F(LightCommands, ShowTheLight) {
    machine_.Use()->KeepOn();
    EXPECT_EQ(Qlctl("light status --json").out, "{\"on\":false,\"timer\":0}\n") << "opening it switches it off";
}

TEST_F(LightCommands, SayWhenThereIsNoLight) {
    machine_.Answer(LightFunction::kInitialize, 1);
    machine_.Answer(LightFunction::kGetVersion, 1);
    const ChildResult result = Qlctl("light on");
    EXPECT_EQ(result.exitStatus, 4);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(WithoutReturns(result.err), "qlctl: error 4 (QLERR_OP_UNSUPPORTED): Camera light API is unsupported .\n");
}

}  // namespace
}  // namespace quarlin::qlctl
