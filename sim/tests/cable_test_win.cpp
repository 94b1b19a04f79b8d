// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <numeric>
#include <thread>

#include "port_win.h"

namespace qlsim {
namespace {

std::string EveryByte() {
    std::string bytes(256, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    return bytes;
}

// ---- null-modem cables ----

// More than all buffers of a cable hold: when it has been written, the cable has taken what came before.
const std::string kFlood(1 << 20, 'x');

struct Ends {
    const char* sender;
    const char* receiver;
};

void PrintTo(const Ends& ends, std::ostream* out) {
    *out << ends.sender << " to " << ends.receiver;
}

class NullModemCable : public testing::TestWithParam<Ends> {
  protected:
    Port sender{GetParam().sender};
    Port receiver{GetParam().receiver};

    void SetUp() override {
        ASSERT_TRUE(sender.IsOpen()) << sender.Error();
        ASSERT_TRUE(receiver.IsOpen()) << receiver.Error();
    }
};

TEST_P(NullModemCable, CarriesEveryByteValue) {
    ASSERT_TRUE(sender.Write(EveryByte()));
    EXPECT_EQ(receiver.Read(256), EveryByte());
}

TEST_P(NullModemCable, CarriesAMegabyteToASlowReaderWithoutLoss) {
    std::string sent(kFlood.size(), '\0');
    for (size_t i = 0; i < sent.size(); ++i) {
        sent[i] = static_cast<char>('a' + i % 23);
    }
    bool written = false;
    std::thread writer([&] { written = sender.Write(sent); });
    const std::string received = receiver.Read(sent.size());
    writer.join();
    EXPECT_TRUE(written);
    EXPECT_TRUE(received == sent) << received.size() << " bytes received";
}

TEST_P(NullModemCable, DropsBytesWhileNobodyHasTheOtherEndOpen) {
    receiver.Close();
    ASSERT_TRUE(sender.Write("lost"));
    ASSERT_TRUE(sender.Write(kFlood));
    receiver = Port(GetParam().receiver);
    receiver.SetPatience(50);
    // The end of the flood may still be on its way when the port is opened.
    EXPECT_EQ(receiver.Read(kFlood.size()).find("lost"), std::string::npos);
    ASSERT_TRUE(sender.Write("kept"));
    EXPECT_EQ(receiver.Read(4), "kept");
}

TEST_P(NullModemCable, DropsUnreadBytesWhenTheirEndIsClosed) {
    ASSERT_TRUE(sender.Write("unread"));
    EXPECT_EQ(receiver.Read(1), "u");
    receiver.Close();
    ASSERT_TRUE(sender.Write(kFlood));
    receiver = Port(GetParam().receiver);
    receiver.SetPatience(50);
    EXPECT_EQ(receiver.Read(kFlood.size()).find("nread"), std::string::npos);
}

TEST_P(NullModemCable, WorksAgainAfterEachOf300Reopenings) {
    for (int i = 0; i < 300; ++i) {
        receiver.Close();
        receiver = Port(GetParam().receiver);
        ASSERT_TRUE(receiver.IsOpen()) << "round " << i;
        const std::string mark(1, static_cast<char>('A' + i % 26));
        ASSERT_TRUE(sender.Write(mark));
        ASSERT_EQ(receiver.Read(1), mark) << "round " << i;
    }
}

TEST_P(NullModemCable, WorksAgainAfterEachOf300ReopeningsOfTheSender) {
    for (int i = 0; i < 300; ++i) {
        sender.Close();
        sender = Port(GetParam().sender);
        ASSERT_TRUE(sender.IsOpen()) << "round " << i;
        const std::string mark(1, static_cast<char>('A' + i % 26));
        ASSERT_TRUE(sender.Write(mark));
        ASSERT_EQ(receiver.Read(1), mark) << "round " << i;
    }
}

TEST_P(NullModemCable, BytesWrittenJustBeforeTheSenderClosesArrive) {
    ASSERT_TRUE(sender.Write(EveryByte()));
    sender.Close();
    EXPECT_EQ(receiver.Read(256), EveryByte());
}

TEST_P(NullModemCable, ASecondHandleSeesTheSettings) {
    DCB settings = {};
    settings.DCBlength = sizeof(settings);
    ASSERT_TRUE(GetCommState(receiver.Handle(), &settings));
    settings.BaudRate = 4800;
    settings.fOutxCtsFlow = TRUE;
    ASSERT_TRUE(SetCommState(receiver.Handle(), &settings));

    Port second(GetParam().receiver);
    DCB seen = {};
    seen.DCBlength = sizeof(seen);
    ASSERT_TRUE(GetCommState(second.Handle(), &seen));
    EXPECT_EQ(seen.BaudRate, 4800u);
    EXPECT_TRUE(seen.fOutxCtsFlow);

    seen.BaudRate = 19200;
    seen.fOutxCtsFlow = FALSE;
    ASSERT_TRUE(SetCommState(second.Handle(), &seen));
    ASSERT_TRUE(GetCommState(receiver.Handle(), &settings));
    EXPECT_EQ(settings.BaudRate, 19200u);
    EXPECT_FALSE(settings.fOutxCtsFlow);
}

INSTANTIATE_TEST_SUITE_P(Ports, NullModemCable,
                         testing::Values(Ends{"COM3", "COM4"}, Ends{"COM4", "COM3"}, Ends{"COM5", "COM6"},
                                         Ends{"COM6", "COM5"}));

TEST(NullModemCables, AreApartFromEachOther) {
    Port sender("COM4");
    Port receiver("COM3");
    Port stranger("COM5");
    stranger.SetPatience(50);
    ASSERT_TRUE(sender.Write("for COM3"));
    EXPECT_EQ(receiver.Read(8), "for COM3");
    EXPECT_EQ(stranger.Read(1), "");
}

// ---- the USB receiver ----

TEST(UsbReceiver, IsAbsentUntilItsFarEndIsOpened) {
    ASSERT_TRUE(IsGoneSoon("COM7"));
    EXPECT_EQ(Port("COM7").Error(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    const Port plug("COM8");
    ASSERT_TRUE(plug.IsOpen());
    EXPECT_TRUE(OpenWhenThere("COM7").IsOpen());
}

TEST(UsbReceiver, CarriesBytesBothWays) {
    Port plug("COM8");
    Port receiver = OpenWhenThere("COM7");
    ASSERT_TRUE(receiver.IsOpen());
    ASSERT_TRUE(plug.Write(EveryByte()));
    EXPECT_EQ(receiver.Read(256), EveryByte());
    ASSERT_TRUE(receiver.Write("back"));
    EXPECT_EQ(plug.Read(4), "back");
}

TEST(UsbReceiver, ReadsGiveNothingAndSettingsFailAfterUnplugging) {
    Port plug("COM8");
    Port receiver = OpenWhenThere("COM7");
    ASSERT_TRUE(receiver.IsOpen());
    plug.Close();
    ASSERT_TRUE(IsGoneSoon("COM7"));
    receiver.SetPatience(50);
    EXPECT_EQ(receiver.Read(1), "");
    DCB settings = {};
    settings.DCBlength = sizeof(settings);
    EXPECT_TRUE(ComesTrue([&] { return !GetCommState(receiver.Handle(), &settings); }));
}

TEST(UsbReceiver, IsANewDeviceEachOf50TimesItIsPluggedInAgain) {
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(IsGoneSoon("COM7")) << "round " << i;
        Port plug("COM8");
        Port receiver = OpenWhenThere("COM7");
        ASSERT_TRUE(receiver.IsOpen()) << "round " << i;
        ASSERT_TRUE(plug.Write("here"));
        ASSERT_EQ(receiver.Read(4), "here") << "round " << i;
    }
}

TEST(UsbReceiver, StaysWhileAnyHandleOfItsFarEndIsOpen) {
    Port first("COM8");
    Port receiver = OpenWhenThere("COM7");
    Port second("COM8");
    first.Close();
    ASSERT_TRUE(second.Write("still here"));
    EXPECT_EQ(receiver.Read(10), "still here");
}

// ---- the other ports ----

TEST(OtherPorts, Com1OpensAndRefusesEverySetting) {
    const Port port("COM1");
    ASSERT_TRUE(port.IsOpen()) << port.Error();
    DCB settings = {};
    settings.DCBlength = sizeof(settings);
    EXPECT_FALSE(SetCommState(port.Handle(), &settings));
}

TEST(OtherPorts, Com2AndCom9CannotBeOpened) {
    EXPECT_EQ(Port("COM2").Error(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(Port("COM9").Error(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

}  // namespace
}  // namespace qlsim
