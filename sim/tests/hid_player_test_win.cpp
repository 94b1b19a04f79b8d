// SPDX-License-Identifier: Apache-2.0
// Programs that play devices on the virtual HID bus, end badly, or talk nonsense to it.
#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>
#include <random>
#include <thread>

#include "hid_player_win.h"
#include "hid_program_win.h"
#include "hidbus/bus_protocol.h"
#include "hidbus/hid_socket_win.h"
#include "port_win.h"

namespace quarlin::sim {
namespace {

using qlsim::ComesTrue;
using testing::Gate;
using testing::HidProgram;
using testing::IsPresent;
using testing::kBusyEvent;
using testing::kPlayersInstance;
using testing::kReadyEvent;
using testing::MakeReport;
using testing::NumberedIdentity;
using testing::PlainIdentity;
using testing::Report;
using testing::ScriptedDevice;
using testing::WindowsHandle;

const HidIdentity kDevice = PlainIdentity(kPlayersInstance);

class HidPlayer : public ::testing::Test {
  protected:
    ScriptedDevice device;
    const std::unique_ptr<HidSocket> socket = MakeHidSocket();
};

// A second process, which does what its role says.
class Process {
  public:
    explicit Process(const std::string& role)
        : ready_(CreateEventA(nullptr, TRUE, FALSE, kReadyEvent)),
          busy_(CreateEventA(nullptr, TRUE, FALSE, kBusyEvent)) {
        ResetEvent(ready_.Get());
        ResetEvent(busy_.Get());
        char path[MAX_PATH];
        GetModuleFileNameA(nullptr, path, MAX_PATH);
        std::string program = path;
        program.replace(program.rfind('\\') + 1, std::string::npos, "machine_hid_player.exe");
        std::string command = '"' + program + "\" " + role;
        STARTUPINFOA startup = {};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process = {};
        if (CreateProcessA(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                           &process) != FALSE) {
            CloseHandle(process.hThread);
            process_ = WindowsHandle(process.hProcess);
        }
    }
    ~Process() { Kill(); }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool IsReady() const { return WaitForSingleObject(ready_.Get(), HidProgram::kPatience) == WAIT_OBJECT_0; }
    bool IsBusy() const { return WaitForSingleObject(busy_.Get(), HidProgram::kPatience) == WAIT_OBJECT_0; }
    void Kill() {
        if (process_.IsOpen()) {
            TerminateProcess(process_.Get(), 1);
            WaitForSingleObject(process_.Get(), HidProgram::kPatience);
            process_.Close();
        }
    }

  private:
    WindowsHandle ready_;
    WindowsHandle busy_;
    WindowsHandle process_;
};

TEST_F(HidPlayer, UnplugsWhenItIsKilled) {
    Process player("play");
    ASSERT_TRUE(player.IsReady());
    ASSERT_TRUE(IsPresent(kDevice));
    HidProgram program(kDevice);
    program.BeginRead(888);
    player.Kill();
    EXPECT_TRUE(ComesTrue([] { return !IsPresent(kDevice); }));
    Report report;
    const DWORD error = program.EndRead(report);
    EXPECT_NE(error, 0u);
    EXPECT_NE(error, HidProgram::kStillPending);
}

TEST_F(HidPlayer, UnplugsWhenItIsKilledInTheMiddleOfATransfer) {
    Process player("play");
    ASSERT_TRUE(player.IsReady());
    HidProgram program(kDevice);
    DWORD error = 0;
    std::thread user([&] { error = program.SetFeature(MakeReport(0, 25, 1)); });
    EXPECT_TRUE(player.IsBusy());
    player.Kill();
    user.join();
    EXPECT_EQ(error, static_cast<DWORD>(ERROR_DEVICE_NOT_CONNECTED));
    EXPECT_TRUE(ComesTrue([] { return !IsPresent(kDevice); }));

    // The name is free for another player.
    socket->Plug(kDevice, device);
    HidProgram again(kDevice);
    EXPECT_EQ(again.SetFeature(MakeReport(0, 25, 1)), 0u);
}

TEST_F(HidPlayer, UnplugsWhenItEndsWithoutUnplugging) {
    Process player("end");
    ASSERT_TRUE(player.IsReady());
    EXPECT_TRUE(ComesTrue([] { return !IsPresent(kDevice); }));
}

TEST_F(HidPlayer, WaitsForAKilledOneOfTheSameName) {
    for (int i = 0; i < 3; ++i) {
        Process player("play");
        ASSERT_TRUE(player.IsReady());
        player.Kill();
        socket->Plug(kDevice, device);
        HidProgram program(kDevice);
        EXPECT_EQ(program.SetFeature(MakeReport(0, 25, 1)), 0u);
        socket->Unplug();
    }
}

TEST_F(HidPlayer, OutlivesAProgramThatIsKilledInTheMiddleOfATransfer) {
    Gate gate;
    device.Run([&] {
        gate.Pass();
        return HidAnswer::kDone;
    });
    socket->Plug(kDevice, device);
    Process user("use");
    EXPECT_TRUE(gate.IsReached());
    user.Kill();
    gate.Open();
    HidProgram program(kDevice);
    EXPECT_EQ(program.SetFeature(MakeReport(0, 25, 2)), 0u);
    EXPECT_TRUE(socket->SendInput(MakeReport(0, 888, 3)));
    Report report;
    EXPECT_EQ(program.Read(888, report), 0u);
    EXPECT_EQ(report, MakeReport(0, 888, 3));
}

// ---- the driver itself ----

// Whatever a program sends to the bus, the bus goes on.
TEST_F(HidPlayer, FindsTheBusWellAfterNonsenseWasSentToIt) {
    std::mt19937 random(20);
    const auto number = [&](std::uint32_t below) { return static_cast<std::uint32_t>(random() % below); };
    const WindowsHandle done(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    for (int i = 0; i < 300; ++i) {
        const WindowsHandle bus(CreateFileW(bus::kPath, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                            FILE_FLAG_OVERLAPPED, nullptr));
        ASSERT_TRUE(bus.IsOpen());
        for (int j = 0; j < 4; ++j) {
            std::vector<std::uint8_t> in(number(200));
            for (std::uint8_t& byte : in) {
                byte = static_cast<std::uint8_t>(number(4) == 0 ? number(256) : 0);
            }
            if (in.size() > sizeof(bus::PlugRequest) && number(2) == 0) {
                const auto rest = static_cast<std::uint16_t>(in.size() - sizeof(bus::PlugRequest));
                std::memcpy(in.data() + offsetof(bus::PlugRequest, descriptorLength), &rest, sizeof(rest));
            }
            std::vector<std::uint8_t> out(number(2) == 0 ? 0 : 8192);
            OVERLAPPED overlapped = {};
            overlapped.hEvent = done.Get();
            DWORD count = 0;
            if (DeviceIoControl(bus.Get(), bus::ControlCode(0x800 + number(6)), in.data(),
                                static_cast<DWORD>(in.size()), out.data(), static_cast<DWORD>(out.size()), nullptr,
                                &overlapped) == FALSE &&
                GetLastError() == ERROR_IO_PENDING &&
                WaitForSingleObject(done.Get(), HidProgram::kPatience) != WAIT_OBJECT_0) {
                ADD_FAILURE() << "a request of round " << i << " hangs";
            }
            GetOverlappedResult(bus.Get(), &overlapped, &count, FALSE);
        }
    }
    socket->Plug(kDevice, device);
    HidProgram program(kDevice);
    EXPECT_EQ(program.SetFeature(MakeReport(0, 25, 1)), 0u);
}

// A plugged device whose player sends nonsense: wrong answers, wrong reports, several exchanges at once.
TEST_F(HidPlayer, FindsTheBusWellAfterOneThatAnsweredNonsense) {
    std::mt19937 random(21);
    const auto number = [&](std::uint32_t below) { return static_cast<std::uint32_t>(random() % below); };
    const HidIdentity identity = NumberedIdentity("7&13c8e02&0&0000");
    for (int i = 0; i < 10; ++i) {
        const WindowsHandle done(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        WindowsHandle bus(CreateFileW(bus::kPath, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_OVERLAPPED, nullptr));
        const auto call = [&](std::uint32_t code, std::vector<std::uint8_t>& in, std::vector<std::uint8_t>& out,
                              OVERLAPPED& overlapped) {
            overlapped = {};
            overlapped.hEvent = done.Get();
            DeviceIoControl(bus.Get(), code, in.data(), static_cast<DWORD>(in.size()), out.data(),
                            static_cast<DWORD>(out.size()), nullptr, &overlapped);
        };
        bus::PlugRequest request = {};
        request.vendor = identity.vendor;
        request.product = identity.product;
        request.descriptorLength = static_cast<std::uint16_t>(identity.reportDescriptor.size());
        std::memcpy(request.instance, identity.instance.data(), identity.instance.size());
        std::vector<std::uint8_t> in(sizeof(request));
        std::memcpy(in.data(), &request, sizeof(request));
        in.insert(in.end(), identity.reportDescriptor.begin(), identity.reportDescriptor.end());
        std::vector<std::uint8_t> nothing;
        OVERLAPPED plugging;
        call(bus::kPlug, in, nothing, plugging);
        ASSERT_EQ(WaitForSingleObject(done.Get(), HidProgram::kPatience), WAIT_OBJECT_0);

        HidProgram program(identity);
        ASSERT_TRUE(program.IsOpen());
        DWORD error = 0;
        std::thread user([&] {
            Report report = {4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
            error = program.GetFeature(report);
        });
        std::vector<std::unique_ptr<OVERLAPPED>> pending;
        std::vector<std::vector<std::uint8_t>> outs(12, std::vector<std::uint8_t>(8192));
        for (std::vector<std::uint8_t>& out : outs) {
            bus::Answer answer = {};
            answer.id = number(4);
            answer.verdict = static_cast<bus::Verdict>(number(2) * 7);
            answer.length = number(3) == 0 ? number(30) : 0;
            answer.inputs = number(3) == 0 ? 0xffffffff : number(3);
            std::vector<std::uint8_t> message(sizeof(answer) + number(40));
            for (std::uint8_t& byte : message) {
                byte = static_cast<std::uint8_t>(number(20));
            }
            std::memcpy(message.data(), &answer, sizeof(answer));
            pending.push_back(std::make_unique<OVERLAPPED>());
            call(number(4) == 0 ? bus::kSendInput : bus::kExchange, message, out, *pending.back());
        }
        bus.Close();
        user.join();
        EXPECT_TRUE(ComesTrue([&] { return !IsPresent(identity); })) << "round " << i;
    }
    socket->Plug(kDevice, device);
    EXPECT_EQ(HidProgram(kDevice).SetFeature(MakeReport(0, 25, 1)), 0u);
}

}  // namespace
}  // namespace quarlin::sim
