// SPDX-License-Identifier: Apache-2.0
// Devices on the virtual HID bus that refuse, vanish or are pulled out.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "hid_program_win.h"
#include "hidbus/hid_socket_win.h"
#include "port_win.h"

namespace quarlin::sim {
namespace {

using qlsim::ComesTrue;
using testing::Gate;
using testing::HidProgram;
using testing::IsPresent;
using testing::MakeReport;
using testing::PlainIdentity;
using testing::Report;
using testing::ScriptedDevice;

const HidIdentity kDevice = PlainIdentity("6&2f9a1b0c&0&0000");

struct Transfer {
    const char* name;
    DWORD (*run)(HidProgram&);
};

const Transfer kTransfers[] = {
    {"SetFeature", [](HidProgram& program) { return program.SetFeature(MakeReport(0, 25, 1)); }},
    {"GetFeature",
     [](HidProgram& program) {
         Report report(25, 0);
         return program.GetFeature(report);
     }},
    {"SetOutput", [](HidProgram& program) { return program.SetOutput(MakeReport(0, 64, 1)); }},
    {"Write", [](HidProgram& program) { return program.Write(MakeReport(0, 64, 1)); }},
};

class HidTransfer : public ::testing::TestWithParam<Transfer> {
  protected:
    ScriptedDevice device;
    const std::unique_ptr<HidSocket> socket = MakeHidSocket();

    void SetUp() override { socket->Plug(kDevice, device); }
};

INSTANTIATE_TEST_SUITE_P(All, HidTransfer, ::testing::ValuesIn(kTransfers),
                         [](const auto& transfer) { return std::string(transfer.param.name); });

TEST_P(HidTransfer, FailsWhenTheDeviceRefuses) {
    HidProgram program(kDevice);
    device.Run([] { return HidAnswer::kRefuse; });
    EXPECT_EQ(GetParam().run(program), static_cast<DWORD>(ERROR_GEN_FAILURE));
    EXPECT_TRUE(socket->IsPlugged());
    device.Run(nullptr);
    EXPECT_EQ(GetParam().run(program), 0u);
}

TEST_P(HidTransfer, FailsWhenTheDeviceVanishes) {
    HidProgram program(kDevice);
    program.BeginRead(888);
    device.Run([] { return HidAnswer::kUnplug; });
    EXPECT_EQ(GetParam().run(program), static_cast<DWORD>(ERROR_DEVICE_NOT_CONNECTED));
    EXPECT_FALSE(socket->IsPlugged());
    EXPECT_TRUE(ComesTrue([] { return !IsPresent(kDevice); }));
    Report report;
    const DWORD error = program.EndRead(report);
    EXPECT_NE(error, 0u);
    EXPECT_NE(error, HidProgram::kStillPending);
    EXPECT_NE(GetParam().run(program), 0u);
    EXPECT_FALSE(socket->SendInput(MakeReport(0, 888, 1)));

    device.Run(nullptr);
    socket->Plug(kDevice, device);
    HidProgram again(kDevice);
    EXPECT_EQ(GetParam().run(again), 0u);
    EXPECT_NE(GetParam().run(program), 0u);
}

TEST_P(HidTransfer, FailsWhenTheDeviceIsPulledOutMeanwhile) {
    HidProgram program(kDevice);
    Gate gate;
    device.Run([&] {
        gate.Pass();
        return HidAnswer::kDone;
    });
    DWORD error = 0;
    std::thread user([&] { error = GetParam().run(program); });
    EXPECT_TRUE(gate.IsReached());
    std::thread puller([&] { socket->Unplug(); });
    // The program does not have to wait for the device, which still works on the request.
    user.join();
    EXPECT_EQ(error, static_cast<DWORD>(ERROR_DEVICE_NOT_CONNECTED));
    gate.Open();
    puller.join();
    EXPECT_FALSE(IsPresent(kDevice));
}

TEST_P(HidTransfer, FailsAfterTheDeviceWasPulledOut) {
    HidProgram program(kDevice);
    EXPECT_EQ(GetParam().run(program), 0u);
    socket->Unplug();
    EXPECT_NE(GetParam().run(program), 0u);
}

TEST_P(HidTransfer, OfOneHandleWaitsWhileTheDeviceIsBusyWithAnother) {
    HidProgram program(kDevice);
    HidProgram other(kDevice);
    Gate gate;
    device.Run([&] {
        gate.Pass();
        return HidAnswer::kDone;
    });
    DWORD error = 1;
    DWORD otherError = 1;
    std::thread user([&] { error = GetParam().run(program); });
    EXPECT_TRUE(gate.IsReached());
    std::thread otherUser([&] { otherError = GetParam().run(other); });
    // Input passes meanwhile.
    EXPECT_TRUE(socket->SendInput(MakeReport(0, 888, 5)));
    Report report;
    EXPECT_EQ(other.Read(888, report), 0u);
    EXPECT_EQ(report, MakeReport(0, 888, 5));
    gate.Open();
    user.join();
    otherUser.join();
    EXPECT_EQ(error, 0u);
    EXPECT_EQ(otherError, 0u);
}

class HidUnplug : public ::testing::Test {
  protected:
    ScriptedDevice device;
    const std::unique_ptr<HidSocket> socket = MakeHidSocket();
};

TEST_F(HidUnplug, EndsPendingReadsOfAllHandles) {
    socket->Plug(kDevice, device);
    HidProgram first(kDevice);
    HidProgram second(kDevice);
    first.BeginRead(888);
    second.BeginRead(888);
    socket->Unplug();
    for (HidProgram* program : {&first, &second}) {
        Report report;
        const DWORD error = program->EndRead(report);
        EXPECT_NE(error, 0u);
        EXPECT_NE(error, HidProgram::kStillPending);
        EXPECT_NE(program->Read(888, report), 0u);
    }
}

TEST_F(HidUnplug, LeavesHandlesDeadWhenTheDeviceComesBack) {
    socket->Plug(kDevice, device);
    HidProgram old(kDevice);
    socket->Unplug();
    socket->Plug(kDevice, device);
    HidProgram fresh(kDevice);
    EXPECT_NE(old.SetFeature(MakeReport(0, 25, 1)), 0u);
    EXPECT_EQ(fresh.SetFeature(MakeReport(0, 25, 2)), 0u);
    EXPECT_EQ(device.Features(), std::vector<Report>{MakeReport(0, 25, 2)});
}

// Programs that list, open, read and write all the time see each state of the device.
TEST_F(HidUnplug, GoesWellWhileProgramsUseTheDevice) {
    std::atomic<bool> stop = false;
    std::atomic<int> worked = 0;
    const auto use = [&] {
        while (!stop) {
            HidProgram program(kDevice);
            if (!program.IsOpen()) {
                SwitchToThread();
                continue;
            }
            program.BeginRead(888);
            Report report(25, 0);
            while (!stop && program.SetFeature(MakeReport(0, 25, 1)) == 0 && program.GetFeature(report) == 0 &&
                   program.Write(MakeReport(0, 64, 1)) == 0) {
                if (program.EndRead(report, 0) == 0) {
                    program.BeginRead(888);
                }
                report.resize(25);
                ++worked;
            }
        }
    };
    std::thread one(use);
    std::thread two(use);
    try {
        for (int i = 0; i < 20; ++i) {
            const int before = worked;
            socket->Plug(kDevice, device);
            EXPECT_TRUE(ComesTrue([&] {
                socket->SendInput(MakeReport(0, 888, 1));
                return worked > before + 3;
            })) << "round "
                << i;
            socket->Unplug();
        }
    } catch (const HidBusError& error) {
        ADD_FAILURE() << error.what();
    }
    stop = true;
    one.join();
    two.join();
}

}  // namespace
}  // namespace quarlin::sim
