// SPDX-License-Identifier: Apache-2.0
// Reports between programs and a device on the virtual HID bus.
#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <thread>

#include "hid_program_win.h"
#include "hidbus/hid_socket_win.h"

namespace quarlin::sim {
namespace {

using testing::HidProgram;
using testing::MakeReport;
using testing::NumberedIdentity;
using testing::PlainIdentity;
using testing::Report;
using testing::ScriptedDevice;
using testing::WindowsHandle;

// How many reports the tests of loss send: more than a test has time for when the environment says so.
int ManyReports() {
    char text[16] = {};
    const DWORD length = GetEnvironmentVariableA("QLSIM_HID_REPORTS", text, sizeof(text));
    return length > 0 && length < sizeof(text) ? std::atoi(text) : 1000;
}

class HidReports : public ::testing::Test {
  protected:
    const HidIdentity plain = PlainIdentity("6&2f9a1b0c&0&0000");
    const HidIdentity numbered = NumberedIdentity("7&13c8e02&0&0000");
    ScriptedDevice device;
    const std::unique_ptr<HidSocket> socket = MakeHidSocket();
};

// ---- feature and output reports ----

TEST_F(HidReports, CarriesFeatureReportsWithoutIds) {
    socket->Plug(plain, device);
    const HidProgram program(plain);
    EXPECT_EQ(program.SetFeature(MakeReport(0, 25, 7)), 0u);
    EXPECT_EQ(device.Features(), std::vector<Report>{MakeReport(0, 25, 7)});

    device.HoldFeature(MakeReport(0, 25, 9));
    Report report(25, 0);
    EXPECT_EQ(program.GetFeature(report), 0u);
    EXPECT_EQ(report, MakeReport(0, 25, 9));
    EXPECT_EQ(device.Asked(), std::vector<Report>{Report(25, 0)});
}

TEST_F(HidReports, CarriesFeatureReportsWithIds) {
    socket->Plug(numbered, device);
    const HidProgram program(numbered);
    EXPECT_EQ(program.SetFeature(MakeReport(4, 11, 7)), 0u);
    EXPECT_EQ(device.Features(), std::vector<Report>{MakeReport(4, 11, 7)});

    device.HoldFeature(MakeReport(4, 11, 9));
    Report report = {4, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    EXPECT_EQ(program.GetFeature(report), 0u);
    EXPECT_EQ(report, MakeReport(4, 11, 9));
    const Report asked = {4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(device.Asked(), std::vector<Report>{asked});
}

TEST_F(HidReports, KeepsUnknownIdsAndShortReportsFromTheDevice) {
    socket->Plug(numbered, device);
    HidProgram program(numbered);
    EXPECT_NE(program.SetFeature(MakeReport(5, 11, 7)), 0u);
    EXPECT_NE(program.SetFeature(MakeReport(4, 10, 7)), 0u);
    EXPECT_NE(program.SetOutput(MakeReport(4, 17, 7)), 0u);
    EXPECT_NE(program.Write(MakeReport(3, 16, 7)), 0u);
    Report report(11, 0);
    EXPECT_NE(program.GetFeature(report), 0u);
    EXPECT_TRUE(device.Features().empty());
    EXPECT_TRUE(device.Outputs().empty());
    EXPECT_TRUE(device.Asked().empty());
}

TEST_F(HidReports, CarriesOutputReports) {
    socket->Plug(plain, device);
    HidProgram program(plain);
    DWORD written = 0;
    EXPECT_EQ(program.SetOutput(MakeReport(0, 64, 1)), 0u);
    EXPECT_EQ(program.Write(MakeReport(0, 64, 2), &written), 0u);
    EXPECT_EQ(written, 64u);
    EXPECT_EQ(device.Outputs(), (std::vector<Report>{MakeReport(0, 64, 1), MakeReport(0, 64, 2)}));
}

TEST_F(HidReports, CarriesOutputReportsWithIds) {
    socket->Plug(numbered, device);
    HidProgram program(numbered);
    DWORD written = 0;
    EXPECT_EQ(program.SetOutput(MakeReport(3, 17, 1)), 0u);
    EXPECT_EQ(program.Write(MakeReport(3, 17, 2), &written), 0u);
    EXPECT_EQ(written, 17u);
    EXPECT_EQ(device.Outputs(), (std::vector<Report>{MakeReport(3, 17, 1), MakeReport(3, 17, 2)}));
}

// ---- input reports ----

TEST_F(HidReports, AReadWaitsForInput) {
    socket->Plug(plain, device);
    HidProgram program(plain);
    Report report;
    EXPECT_EQ(program.Read(888, report, 50), HidProgram::kStillPending);
    EXPECT_TRUE(socket->SendInput(MakeReport(0, 888, 3)));
    EXPECT_EQ(program.EndRead(report), 0u);
    EXPECT_EQ(report, MakeReport(0, 888, 3));
}

TEST_F(HidReports, InputWaitsForAReadInOrder) {
    socket->Plug(plain, device);
    HidProgram program(plain);
    for (std::uint8_t i = 0; i < 30; ++i) {
        ASSERT_TRUE(socket->SendInput(MakeReport(0, 888, i)));
    }
    for (std::uint8_t i = 0; i < 30; ++i) {
        Report report;
        ASSERT_EQ(program.Read(888, report), 0u);
        ASSERT_EQ(report, MakeReport(0, 888, i));
    }
    Report report;
    EXPECT_EQ(program.Read(888, report, 50), HidProgram::kStillPending);
}

TEST_F(HidReports, FillsShorterInputReportsUpToTheLongest) {
    socket->Plug(numbered, device);
    HidProgram program(numbered);
    EXPECT_TRUE(socket->SendInput(MakeReport(1, 9, 3)));
    EXPECT_TRUE(socket->SendInput(MakeReport(2, 21, 4)));
    Report report;
    Report expected = MakeReport(1, 9, 3);
    expected.resize(21);
    EXPECT_EQ(program.Read(21, report), 0u);
    EXPECT_EQ(report, expected);
    EXPECT_EQ(program.Read(21, report), 0u);
    EXPECT_EQ(report, MakeReport(2, 21, 4));
}

TEST_F(HidReports, EveryHandleGetsEveryReport) {
    socket->Plug(plain, device);
    HidProgram first(plain);
    HidProgram second(plain);
    first.BeginRead(888);
    for (std::uint8_t i = 0; i < 5; ++i) {
        ASSERT_TRUE(socket->SendInput(MakeReport(0, 888, i)));
    }
    for (std::uint8_t i = 0; i < 5; ++i) {
        Report one;
        Report two;
        ASSERT_EQ(first.Read(888, one), 0u);
        ASSERT_EQ(second.Read(888, two), 0u);
        EXPECT_EQ(one, MakeReport(0, 888, i));
        EXPECT_EQ(two, MakeReport(0, 888, i));
    }
}

TEST_F(HidReports, InputFromBeforeAHandleWasOpenedIsNotSeen) {
    socket->Plug(plain, device);
    EXPECT_TRUE(socket->SendInput(MakeReport(0, 888, 1)));
    HidProgram program(plain);
    // The handle counts from the moment at which its opening has been looked at, as a transfer shows.
    ASSERT_EQ(program.SetFeature(MakeReport(0, 25, 1)), 0u);
    EXPECT_TRUE(socket->SendInput(MakeReport(0, 888, 2)));
    Report report;
    ASSERT_EQ(program.Read(888, report), 0u);
    EXPECT_EQ(report, MakeReport(0, 888, 2));
}

TEST_F(HidReports, CompletesReadsThroughACompletionPort) {
    socket->Plug(plain, device);
    const HidProgram program(plain);
    const WindowsHandle port(CreateIoCompletionPort(program.Handle(), nullptr, 0x77, 0));
    ASSERT_TRUE(port.IsOpen());
    for (std::uint8_t i = 0; i < 5; ++i) {
        OVERLAPPED reading = {};
        Report report(888, 0xee);
        ASSERT_FALSE(ReadFile(program.Handle(), report.data(), 888, nullptr, &reading));
        ASSERT_EQ(GetLastError(), static_cast<DWORD>(ERROR_IO_PENDING));
        ASSERT_TRUE(socket->SendInput(MakeReport(0, 888, i)));
        DWORD count = 0;
        ULONG_PTR key = 0;
        OVERLAPPED* done = nullptr;
        ASSERT_TRUE(GetQueuedCompletionStatus(port.Get(), &count, &key, &done, HidProgram::kPatience));
        EXPECT_EQ(done, &reading);
        EXPECT_EQ(key, 0x77u);
        EXPECT_EQ(count, 888u);
        EXPECT_EQ(report, MakeReport(0, 888, i));
    }
}

TEST_F(HidReports, ClosingAHandleEndsItsPendingRead) {
    socket->Plug(plain, device);
    HidProgram other(plain);
    HidProgram program(plain);
    const WindowsHandle port(CreateIoCompletionPort(program.Handle(), nullptr, 0, 0));
    OVERLAPPED reading = {};
    Report report(888, 0xee);
    ASSERT_FALSE(ReadFile(program.Handle(), report.data(), 888, nullptr, &reading));
    program.Close();
    DWORD count = 0;
    ULONG_PTR key = 0;
    OVERLAPPED* done = nullptr;
    EXPECT_FALSE(GetQueuedCompletionStatus(port.Get(), &count, &key, &done, HidProgram::kPatience));
    EXPECT_EQ(done, &reading);

    ASSERT_TRUE(socket->SendInput(MakeReport(0, 888, 6)));
    ASSERT_EQ(other.Read(888, report), 0u);
    EXPECT_EQ(report, MakeReport(0, 888, 6));
}

TEST_F(HidReports, SendsInputOnlyAsTheDescriptorSays) {
    EXPECT_FALSE(socket->SendInput(MakeReport(1, 9, 0)));
    socket->Plug(numbered, device);
    EXPECT_TRUE(socket->SendInput(MakeReport(1, 9, 0)));
    EXPECT_THROW(socket->SendInput(MakeReport(1, 8, 0)), HidBusError);
    EXPECT_THROW(socket->SendInput(MakeReport(1, 10, 0)), HidBusError);
    EXPECT_THROW(socket->SendInput(MakeReport(3, 17, 0)), HidBusError);
    EXPECT_THROW(socket->SendInput({}), HidBusError);
    socket->Unplug();
    EXPECT_FALSE(socket->SendInput(MakeReport(1, 9, 0)));
}

// ---- both ways ----

TEST_F(HidReports, InputSentDuringATransferArrivesInOrder) {
    socket->Plug(plain, device);
    HidProgram program(plain);
    device.Run([&] {
        for (std::uint8_t i = 0; i < 10; ++i) {
            EXPECT_TRUE(socket->SendInput(MakeReport(0, 888, i)));
        }
        return HidAnswer::kDone;
    });
    ASSERT_EQ(program.Write(MakeReport(0, 64, 1)), 0u);
    ASSERT_TRUE(socket->SendInput(MakeReport(0, 888, 10)));
    // The last one was sent from this thread, and may have overtaken those that come with the answer.
    std::vector<int> marks;
    for (int i = 0; i < 11; ++i) {
        Report report;
        ASSERT_EQ(program.Read(888, report), 0u);
        marks.push_back(report.back());
    }
    std::erase(marks, 10);
    EXPECT_EQ(marks, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST_F(HidReports, TwoDevicesHaveTrafficOfTheirOwn) {
    ScriptedDevice other;
    const std::unique_ptr<HidSocket> otherSocket = MakeHidSocket();
    socket->Plug(plain, device);
    otherSocket->Plug(numbered, other);
    HidProgram program(plain);
    HidProgram otherProgram(numbered);
    ASSERT_EQ(program.SetFeature(MakeReport(0, 25, 1)), 0u);
    ASSERT_EQ(otherProgram.SetFeature(MakeReport(4, 11, 2)), 0u);
    ASSERT_TRUE(otherSocket->SendInput(MakeReport(2, 21, 3)));
    ASSERT_TRUE(socket->SendInput(MakeReport(0, 888, 4)));
    Report report;
    ASSERT_EQ(program.Read(888, report), 0u);
    EXPECT_EQ(report, MakeReport(0, 888, 4));
    ASSERT_EQ(otherProgram.Read(21, report), 0u);
    EXPECT_EQ(report, MakeReport(2, 21, 3));
    EXPECT_EQ(device.Features(), std::vector<Report>{MakeReport(0, 25, 1)});
    EXPECT_EQ(other.Features(), std::vector<Report>{MakeReport(4, 11, 2)});

    otherSocket->Unplug();
    EXPECT_NE(otherProgram.SetFeature(MakeReport(4, 11, 2)), 0u);
    EXPECT_EQ(program.SetFeature(MakeReport(0, 25, 5)), 0u);
}

// Writes a number into a report, behind the ID and at the end.
void SetNumber(Report& report, int number) {
    for (std::size_t i = 0; i < 4; ++i) {
        report[1 + i] = static_cast<std::uint8_t>(number >> (8 * i));
        report[report.size() - 1 - i] = report[1 + i];
    }
}

// -1 when the two numbers differ.
int NumberOf(const Report& report) {
    int number = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        number |= report.at(1 + i) << (8 * i);
        if (report.at(report.size() - 1 - i) != report[1 + i]) {
            return -1;
        }
    }
    return number;
}

TEST_F(HidReports, LosesAndDoublesNothingInManyExchanges) {
    const int count = ManyReports();
    socket->Plug(plain, device);
    HidProgram program(plain);
    int exchanges = 0;
    Report answer(888, 0);
    device.RunWithOutput([&](const Report& output) {
        EXPECT_EQ(NumberOf(output), exchanges++);
        SetNumber(answer, NumberOf(output));
        EXPECT_TRUE(socket->SendInput(answer));
        return HidAnswer::kDone;
    });
    Report output(64, 0);
    for (int i = 0; i < count; ++i) {
        program.BeginRead(888);
        SetNumber(output, i);
        ASSERT_EQ(program.Write(output), 0u) << i;
        Report report;
        ASSERT_EQ(program.EndRead(report), 0u) << i;
        ASSERT_EQ(NumberOf(report), i);
    }
    EXPECT_EQ(exchanges, count);
}

// A device that comes or goes stops input for a moment.
TEST_F(HidReports, LosesAndDoublesNothingWhileOtherDevicesComeAndGo) {
    socket->Plug(plain, device);
    HidProgram program(plain);
    ASSERT_EQ(program.SetFeature(MakeReport(0, 25, 1)), 0u);
    std::atomic<bool> stop = false;
    std::thread others([&] {
        ScriptedDevice other;
        const std::unique_ptr<HidSocket> otherSocket = MakeHidSocket();
        while (!stop) {
            otherSocket->Plug(numbered, other);
            otherSocket->Unplug();
        }
    });
    device.RunWithOutput([&](const Report& output) {
        Report answer(888, 0);
        SetNumber(answer, NumberOf(output));
        EXPECT_TRUE(socket->SendInput(answer));
        return HidAnswer::kDone;
    });
    Report output(64, 0);
    for (int i = 0; i < 300; ++i) {
        program.BeginRead(888);
        SetNumber(output, i);
        EXPECT_EQ(program.Write(output), 0u);
        Report report;
        EXPECT_EQ(program.EndRead(report), 0u);
        EXPECT_EQ(NumberOf(report), i);
        SetNumber(report, i);
        EXPECT_TRUE(socket->SendInput(report));
        EXPECT_EQ(program.Read(888, report), 0u);
        EXPECT_EQ(NumberOf(report), i);
    }
    stop = true;
    others.join();
}

TEST_F(HidReports, LosesAndDoublesNothingInAStreamOfInput) {
    const int count = ManyReports();
    socket->Plug(plain, device);
    HidProgram program(plain);
    ASSERT_EQ(program.SetFeature(MakeReport(0, 25, 1)), 0u);
    // The system keeps 31 reports for a handle: the sender stays less than that ahead.
    const WindowsHandle ahead(CreateSemaphoreW(nullptr, 16, 16, nullptr));
    std::thread sender([&] {
        Report report(888, 0);
        for (int i = 0; i < count && WaitForSingleObject(ahead.Get(), HidProgram::kPatience) == WAIT_OBJECT_0; ++i) {
            SetNumber(report, i);
            EXPECT_TRUE(socket->SendInput(report));
        }
    });
    int wrong = 0;
    for (int i = 0; i < count && wrong < 10; ++i) {
        Report report;
        if (program.Read(888, report) != 0 || NumberOf(report) != i) {
            ++wrong;
        }
        ReleaseSemaphore(ahead.Get(), 1, nullptr);
    }
    sender.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace quarlin::sim
