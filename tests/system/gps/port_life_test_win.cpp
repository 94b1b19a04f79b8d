// SPDX-License-Identifier: Apache-2.0
// A port over time: silence, stale input, far ends that go and come back, receivers that are unplugged; and what stays
// of the values.
#include <quarlin/gps.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "gps/gps_session_win.h"
#include "gps/read_watch_win.h"
#include "gps/sentences.h"
#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

// Bytes that came and that nobody has read.
DWORD BytesWaiting(HANDLE port) {
    DWORD errors = 0;
    COMSTAT state{};
    return ClearCommError(port, &errors, &state) ? state.cbInQue : 0;
}

// Sends while nobody reads, and returns when the bytes wait at the near end.
void SendStale(SerialPair& cable, HANDLE nearEnd, const std::string& bytes) {
    PurgeComm(nearEnd, PURGE_RXCLEAR);
    cable.Send(bytes);
    Await("stale input", [&] { return BytesWaiting(nearEnd) == bytes.size(); });
}

BOOL WINAPI PurgeNothing(HANDLE, DWORD) {
    return TRUE;
}

TEST(GpsSilence, DoesNotKeepDisableFromReturning) {
    SerialPair cable;
    const GpsSession session(cable.Port());
    for (const bool hasSent : {false, true}) {
        ASSERT_SUCCESS(QLGPS_Enable());
        if (hasSent) {
            cable.Send(SpeedOnly(1));
            ASSERT_TRUE(WaitUntil([] { return IsEnabled(); }));
        }
        const ULONGLONG start = GetTickCount64();
        EXPECT_SUCCESS(QLGPS_Disable());
        EXPECT_LT(GetTickCount64() - start, 5000U);
        EXPECT_FALSE(IsEnabled());
    }
}

TEST(GpsSilence, LeavesTheReceiverEnabled) {
    const ReadWatch watch;
    ReadingGps gps;
    gps.SettleBySpeed(2);
    const size_t before = watch.EmptyReads();
    // A read of the port has timed out.
    ASSERT_TRUE(WaitUntil([&] { return watch.EmptyReads() > before; }));
    EXPECT_TRUE(IsEnabled());
    EXPECT_EQ(ReadSpeed(), 2);
    gps.SettleBySpeed(3);
}

TEST(GpsEnabling, DropsWhatCameBefore) {
    SerialPair cable;
    const UniqueHandle other = cable.OpenNearEnd();
    SendStale(cable, other.Get(), FullReport() + SpeedOnly(4) + "$GPRMC,,,,,,,5");
    const GpsSession session(cable.Port());
    ASSERT_SUCCESS(QLGPS_Enable());
    EXPECT_FALSE(IsEnabled());
    // The next line stands alone: the stale beginning of a line does not spoil it.
    cable.Send("$GPRMC,,,,,,,,6,010203\n");
    ASSERT_TRUE(WaitUntil([] { return IsEnabled(); }));
    GpsValues expected;
    expected.bearing = 6;
    expected.timeStamp = " 01/02/2003";
    EXPECT_EQ(ReadValues(), expected);
    EXPECT_SUCCESS(DisableWithoutSilence(cable));
}

// The test before would show it if stale input were read.
TEST(GpsEnabling, WouldReadStaleInputIfItDidNotDropIt) {
    SerialPair cable;
    const UniqueHandle other = cable.OpenNearEnd();
    SendStale(cable, other.Get(), SpeedOnly(4));
    const GpsSession session(cable.Port());
    const ImportHook hook("kernel32.dll", "PurgeComm", &PurgeNothing);
    ASSERT_SUCCESS(QLGPS_Enable());
    EXPECT_TRUE(WaitUntil([] { return ReadSpeed() == 4; }));
    EXPECT_SUCCESS(DisableWithoutSilence(cable));
}

TEST(GpsEnabling, IsSeenOnlyWithTheFirstLine) {
    SerialPair cable;
    const GpsSession session(cable.Port());
    for (int round = 0; round < 3; ++round) {
        EXPECT_FALSE(IsEnabled());
        ASSERT_SUCCESS(QLGPS_Enable());
        EXPECT_FALSE(IsEnabled());
        cable.Send("x\n");
        EXPECT_TRUE(WaitUntil([] { return IsEnabled(); }));
        EXPECT_SUCCESS(DisableWithoutSilence(cable));
    }
    EXPECT_FALSE(IsEnabled());
}

// A line that was begun when the receiver was disabled does not go on when it is enabled again.
TEST(GpsEnabling, BeginsANewLine) {
    const ReadWatch watch;
    SerialPair cable;
    const GpsSession session(cable.Port());
    ASSERT_SUCCESS(QLGPS_Enable());
    cable.Send("$GPRMC,,,,,,,7");
    ASSERT_TRUE(WaitUntil([&] { return watch.DoneBytes() == 14; }));
    ASSERT_SUCCESS(QLGPS_Disable());
    ASSERT_SUCCESS(QLGPS_Enable());
    cable.Send(",8,010203\n$GPRMC,,,,,,,9\n");
    ASSERT_TRUE(WaitUntil([] { return ReadSpeed() == 9; }));
    EXPECT_EQ(ReadValues().bearing, 0);
    EXPECT_SUCCESS(DisableWithoutSilence(cable));
}

TEST(GpsValues, SurviveDisableAndEnable) {
    SerialPair cable;
    const GpsSession session(cable.Port());
    ASSERT_SUCCESS(QLGPS_Enable());
    cable.Send(FullReport() + SpeedOnly(10));
    ASSERT_TRUE(WaitUntil([] { return ReadSpeed() == 10; }));
    const GpsValues before = ReadValues();
    const std::string satellites = Text(ReadSatellites());
    ASSERT_EQ(before.used, 8);

    EXPECT_SUCCESS(DisableWithoutSilence(cable));
    EXPECT_EQ(ReadValues(), before);
    EXPECT_EQ(Text(ReadSatellites()), satellites);
    ASSERT_SUCCESS(QLGPS_Enable());
    EXPECT_EQ(ReadValues(), before);
    EXPECT_EQ(Text(ReadSatellites()), satellites);
    cable.Send("$GPRMC,,,,,,,11\n");
    ASSERT_TRUE(WaitUntil([] { return ReadSpeed() == 11; }));
    EXPECT_EQ(ReadValues().altitude, before.altitude);
    EXPECT_SUCCESS(DisableWithoutSilence(cable));
}

TEST(GpsValues, AreForgottenByUninitialize) {
    SerialPair cable;
    ASSERT_SUCCESS(QLGPS_Initialize(cable.Port()));
    ASSERT_SUCCESS(QLGPS_Enable());
    cable.Send(FullReport() + SpeedOnly(12));
    ASSERT_TRUE(WaitUntil([] { return ReadSpeed() == 12; }));
    EXPECT_SUCCESS(DisableWithoutSilence(cable));
    EXPECT_SUCCESS(QLGPS_Uninitialize());

    const GpsSession session(cable.Port());
    EXPECT_EQ(ReadValues(), GpsValues{});
    EXPECT_TRUE(ReadSatellites().empty());
    EXPECT_FALSE(IsEnabled());
}

TEST(GpsFarEnd, MayGoAndComeBack) {
    ReadingGps gps;
    gps.Send(FullReport());
    gps.SettleBySpeed(13);
    const GpsValues before = ReadValues();
    gps.Cable().CloseFarEnd();
    EXPECT_EQ(ReadValues(), before);
    EXPECT_TRUE(IsEnabled());
    gps.Cable().OpenFarEnd();
    EXPECT_TRUE(IsEnabled());
    gps.SettleBySpeed(14);
    EXPECT_EQ(ReadValues().altitude, before.altitude);
}

TEST(GpsFarEnd, MayBeAbsentWhileTheReceiverIsEnabledAndDisabled) {
    SerialPair cable;
    const GpsSession session(cable.Port());
    cable.CloseFarEnd();
    ASSERT_SUCCESS(QLGPS_Enable());
    EXPECT_FALSE(IsEnabled());
    EXPECT_SUCCESS(QLGPS_Disable());
    ASSERT_SUCCESS(QLGPS_Enable());
    cable.OpenFarEnd();
    cable.Send(SpeedOnly(15));
    EXPECT_TRUE(WaitUntil([] { return ReadSpeed() == 15; }));
    EXPECT_SUCCESS(DisableWithoutSilence(cable));
}

// From the moment of unplugging the reader gets no more bytes, and goes on trying.
class GpsUnplugged : public ::testing::Test {
  protected:
    void Unplug() {
        gps_.Send(FullReport());
        gps_.SettleBySpeed(20);
        values_ = ReadValues();
        const size_t before = watch_.EmptyReads();
        gps_.Cable().CloseFarEnd();
        Await("a read that gives nothing", [&] { return watch_.EmptyReads() > before; });
    }

    const ReadWatch watch_;
    ReadingGps gps_{SerialPair::Cable::kUsb};
    GpsValues values_;
};

TEST_F(GpsUnplugged, KeepsItsValuesAndStaysEnabledUntilItIsDisabled) {
    Unplug();
    EXPECT_EQ(ReadValues(), values_);
    EXPECT_TRUE(IsEnabled());
    EXPECT_SUCCESS(QLGPS_Enable());
    EXPECT_TRUE(IsEnabled());

    const ULONGLONG start = GetTickCount64();
    EXPECT_SUCCESS(QLGPS_Disable());
    EXPECT_LT(GetTickCount64() - start, 5000U);
    EXPECT_FALSE(IsEnabled());
    EXPECT_EQ(ReadValues(), values_);
    for (const DWORD pause : watch_.Pauses()) {
        EXPECT_EQ(pause, 10U);
    }
}

TEST_F(GpsUnplugged, CannotBeEnabled) {
    Unplug();
    ASSERT_SUCCESS(QLGPS_Disable());
    EXPECT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, "CreateFile failed");
    EXPECT_FALSE(IsEnabled());
    EXPECT_SUCCESS(QLGPS_Disable());
    EXPECT_EQ(ReadValues(), values_);
}

TEST_F(GpsUnplugged, IsReadAgainWhenItIsPluggedInAndEnabled) {
    Unplug();
    ASSERT_SUCCESS(QLGPS_Disable());
    gps_.Cable().OpenFarEnd();
    EXPECT_EQ(ReadValues(), values_);
    ASSERT_SUCCESS(QLGPS_Enable());
    EXPECT_FALSE(IsEnabled());
    gps_.SettleBySpeed(21);
    EXPECT_TRUE(IsEnabled());
    EXPECT_EQ(ReadValues().altitude, values_.altitude);
}

TEST_F(GpsUnplugged, CanBeUninitialized) {
    Unplug();
    EXPECT_SUCCESS(QLGPS_Uninitialize());
    gps_.Cable().OpenFarEnd();
    ASSERT_SUCCESS(QLGPS_Initialize(gps_.Cable().Port()));
    ASSERT_SUCCESS(QLGPS_Enable());
    gps_.SettleBySpeed(22);
}

TEST_F(GpsUnplugged, CanBePluggedInBeforeItIsDisabled) {
    Unplug();
    gps_.Cable().OpenFarEnd();
    ASSERT_SUCCESS(DisableWithoutSilence(gps_.Cable()));
    ASSERT_SUCCESS(QLGPS_Enable());
    gps_.SettleBySpeed(23);
}

}  // namespace
}  // namespace quarlin::test
