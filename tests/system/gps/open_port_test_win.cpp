// SPDX-License-Identifier: Apache-2.0
// Enabling and disabling: which calls are made to the port, with what settings, and what happens when one fails.
#include <quarlin/gps.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include "gps/gps_session_win.h"
#include "gps/port_watch_win.h"
#include "gps/sentences.h"
#include "support/last_error.h"
#include "support/resource_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

using Calls = std::vector<std::string>;

const Calls kAllSteps{"CreateFileA", "GetCommState", "SetCommState", "SetCommTimeouts", "PurgeComm", "CreateThread"};

// The settings that the receiver needs, on top of others. The bits that no member names stay as they were.
DCB WithReceiverSettings(DCB state) {
    state.DCBlength = sizeof(DCB);
    state.BaudRate = 9600;
    state.fBinary = 1;
    state.fParity = 0;
    state.fOutxCtsFlow = 1;
    state.fOutxDsrFlow = 0;
    state.fDtrControl = 2;
    state.fDsrSensitivity = 0;
    state.fTXContinueOnXoff = 1;
    state.fOutX = 0;
    state.fInX = 0;
    state.fErrorChar = 0;
    state.fNull = 0;
    state.fRtsControl = 2;
    state.fAbortOnError = 0;
    state.ByteSize = 8;
    state.Parity = 0;
    state.StopBits = 0;
    return state;
}

// Settings in which no member is what the receiver needs, and each other member has a value of its own.
DCB ForeignState() {
    DCB state{};
    state.DCBlength = sizeof(DCB);
    state.BaudRate = 1200;
    state.fBinary = 0;
    state.fParity = 1;
    state.fOutxCtsFlow = 0;
    state.fOutxDsrFlow = 1;
    state.fDtrControl = 1;
    state.fDsrSensitivity = 1;
    state.fTXContinueOnXoff = 0;
    state.fOutX = 1;
    state.fInX = 1;
    state.fErrorChar = 1;
    state.fNull = 1;
    state.fRtsControl = 1;
    state.fAbortOnError = 1;
    state.fDummy2 = 0x1555;
    state.XonLim = 1111;
    state.XoffLim = 2222;
    state.ByteSize = 7;
    state.Parity = 2;
    state.StopBits = 2;
    state.XonChar = 'a';
    state.XoffChar = 'b';
    state.ErrorChar = 'c';
    state.EofChar = 'd';
    state.EvtChar = 'e';
    return state;
}

std::string Bytes(const DCB& state) {
    return {reinterpret_cast<const char*>(&state), sizeof state};
}

bool CanBeUsed(HANDLE port) {
    COMMTIMEOUTS timeouts{};
    return GetCommTimeouts(port, &timeouts) != 0;
}

TEST(GpsEnable, MakesItsStepsInOrder) {
    const SerialPair cable;
    const GpsSession session(cable.Port());
    PortWatch watch;
    ASSERT_SUCCESS(QLGPS_Enable());
    EXPECT_EQ(watch.calls, kAllSteps);

    watch.calls.clear();
    ASSERT_SUCCESS(QLGPS_Disable());
    EXPECT_EQ(watch.calls, (Calls{"CloseHandle port", "WaitForSingleObject thread", "CloseHandle thread"}));
    EXPECT_EQ(watch.waits, std::vector<DWORD>{INFINITE});
}

TEST(GpsEnable, OpensThePortForReadingOnly) {
    const SerialPair cable;
    const GpsSession session(cable.Port());
    const PortWatch watch;
    ASSERT_SUCCESS(QLGPS_Enable());
    ASSERT_EQ(watch.opened.size(), 1U);
    const PortWatch::FileOpening& opening = watch.opened[0];
    EXPECT_EQ(opening.name, cable.PortName());
    EXPECT_EQ(opening.access, GENERIC_READ);
    EXPECT_EQ(opening.sharing, static_cast<DWORD>(FILE_SHARE_READ));
    EXPECT_EQ(opening.security, nullptr);
    EXPECT_EQ(opening.disposition, static_cast<DWORD>(OPEN_EXISTING));
    EXPECT_EQ(opening.flags, static_cast<DWORD>(FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(opening.templateFile, nullptr);
    EXPECT_SUCCESS(QLGPS_Disable());
}

TEST(GpsEnable, SetsTheReceiversSettingsAndKeepsTheOthers) {
    const SerialPair cable;
    const GpsSession session(cable.Port());
    PortWatch watch;
    watch.toldState = ForeignState();
    ASSERT_SUCCESS(QLGPS_Enable());
    ASSERT_EQ(watch.states.size(), 1U);
    const DCB& state = watch.states[0];
    EXPECT_EQ(state.DCBlength, sizeof(DCB));
    EXPECT_EQ(state.BaudRate, 9600U);
    EXPECT_EQ(state.fBinary, 1U);
    EXPECT_EQ(state.fParity, 0U);
    EXPECT_EQ(state.fOutxCtsFlow, 1U);
    EXPECT_EQ(state.fOutxDsrFlow, 0U);
    EXPECT_EQ(state.fDtrControl, 2U);
    EXPECT_EQ(state.fDsrSensitivity, 0U);
    EXPECT_EQ(state.fTXContinueOnXoff, 1U);
    EXPECT_EQ(state.fOutX, 0U);
    EXPECT_EQ(state.fInX, 0U);
    EXPECT_EQ(state.fErrorChar, 0U);
    EXPECT_EQ(state.fNull, 0U);
    EXPECT_EQ(state.fRtsControl, 2U);
    EXPECT_EQ(state.fAbortOnError, 0U);
    EXPECT_EQ(state.ByteSize, 8);
    EXPECT_EQ(state.Parity, 0);
    EXPECT_EQ(state.StopBits, 0);
    EXPECT_EQ(state.fDummy2, 0x1555U);
    EXPECT_EQ(state.XonLim, 1111);
    EXPECT_EQ(state.XoffLim, 2222);
    EXPECT_EQ(state.XonChar, 'a');
    EXPECT_EQ(state.XoffChar, 'b');
    EXPECT_EQ(state.ErrorChar, 'c');
    EXPECT_EQ(state.EofChar, 'd');
    EXPECT_EQ(state.EvtChar, 'e');
    EXPECT_EQ(Bytes(state), Bytes(WithReceiverSettings(ForeignState())));
    EXPECT_SUCCESS(QLGPS_Disable());
}

TEST(GpsEnable, SetsTheTimeoutsDropsStaleInputAndStartsOneThread) {
    const SerialPair cable;
    const GpsSession session(cable.Port());
    const PortWatch watch;
    ASSERT_SUCCESS(QLGPS_Enable());

    ASSERT_EQ(watch.timeouts.size(), 1U);
    EXPECT_EQ(watch.timeouts[0].ReadIntervalTimeout, 1000U);
    EXPECT_EQ(watch.timeouts[0].ReadTotalTimeoutMultiplier, 0U);
    EXPECT_EQ(watch.timeouts[0].ReadTotalTimeoutConstant, 1500U);
    EXPECT_EQ(watch.timeouts[0].WriteTotalTimeoutMultiplier, 0U);
    EXPECT_EQ(watch.timeouts[0].WriteTotalTimeoutConstant, 1000U);

    EXPECT_EQ(watch.purges, std::vector<DWORD>{PURGE_RXCLEAR});

    ASSERT_EQ(watch.threads.size(), 1U);
    const PortWatch::ThreadStart& start = watch.threads[0];
    EXPECT_EQ(start.security, nullptr);
    EXPECT_EQ(start.stackSize, 0U);
    EXPECT_TRUE(start.hasProcedure);
    EXPECT_TRUE(start.hasArgument);
    EXPECT_EQ(start.flags, 0U);
    EXPECT_TRUE(start.wantsId);
    EXPECT_SUCCESS(QLGPS_Disable());
}

// Seen by another program that has the port open too. The ports of the simulated machine have 8 data bits without
// parity whatever they are told.
TEST(GpsEnable, LeavesThePortAt9600Baud8DataBitsWithHardwareHandshake) {
    const SerialPair cable;
    const UniqueHandle port = cable.OpenNearEnd();
    DCB state{};
    state.DCBlength = sizeof state;
    ASSERT_TRUE(GetCommState(port.Get(), &state));
    state.BaudRate = 19200;
    state.ByteSize = 7;
    state.Parity = EVENPARITY;
    state.fParity = 1;
    state.StopBits = TWOSTOPBITS;
    state.fOutxCtsFlow = 0;
    state.fRtsControl = RTS_CONTROL_ENABLE;
    state.fOutX = 1;
    state.fInX = 1;
    ASSERT_TRUE(SetCommState(port.Get(), &state));
    ASSERT_TRUE(GetCommState(port.Get(), &state));
    ASSERT_EQ(state.BaudRate, 19200U);
    ASSERT_EQ(state.StopBits, TWOSTOPBITS);
    ASSERT_EQ(state.fOutX, 1U);
    ASSERT_EQ(state.fOutxCtsFlow, 0U);

    const GpsSession session(cable.Port());
    ASSERT_SUCCESS(QLGPS_Enable());
    ASSERT_TRUE(GetCommState(port.Get(), &state));
    EXPECT_EQ(state.BaudRate, 9600U);
    EXPECT_EQ(state.ByteSize, 8);
    EXPECT_EQ(state.Parity, NOPARITY);
    EXPECT_EQ(state.StopBits, ONESTOPBIT);
    EXPECT_EQ(state.fOutxCtsFlow, 1U);
    EXPECT_EQ(state.fOutX, 0U);
    EXPECT_EQ(state.fInX, 0U);
}

TEST(GpsEnable, AgainDoesNothing) {
    ReadingGps gps;
    gps.SettleBySpeed(4);
    const PortWatch watch;
    EXPECT_SUCCESS(QLGPS_Enable());
    EXPECT_EQ(watch.calls, Calls{});
    EXPECT_TRUE(IsEnabled());
    gps.SettleBySpeed(5);
}

TEST(GpsDisable, IsHarmlessWithoutEnableAndTwice) {
    const SerialPair cable;
    const GpsSession session(cable.Port());
    const PortWatch watch;
    EXPECT_SUCCESS(QLGPS_Disable());
    EXPECT_EQ(watch.calls, Calls{});
    ASSERT_SUCCESS(QLGPS_Enable());
    EXPECT_SUCCESS(QLGPS_Disable());
    const size_t count = watch.calls.size();
    EXPECT_SUCCESS(QLGPS_Disable());
    EXPECT_EQ(watch.calls.size(), count);
}

TEST(GpsUninitialize, DisablesAReceiverThatIsEnabled) {
    const SerialPair cable;
    ASSERT_SUCCESS(QLGPS_Initialize(cable.Port()));
    ASSERT_SUCCESS(QLGPS_Enable());
    PortWatch watch;
    // The watch did not see the port being opened.
    EXPECT_SUCCESS(QLGPS_Uninitialize());
    EXPECT_EQ(watch.calls, (Calls{"CloseHandle", "WaitForSingleObject", "CloseHandle"}));
}

TEST(GpsEnableFailure, OfAPortThatIsAbsent) {
    const GpsSession session(2);
    const PortWatch watch;
    EXPECT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, "CreateFile failed");
    EXPECT_EQ(watch.calls, Calls{"CreateFileA"});
    EXPECT_FALSE(IsEnabled());
    EXPECT_SUCCESS(QLGPS_Disable());
}

TEST(GpsEnableFailure, OfADeviceThatTakesNoSettings) {
    const GpsSession session(1);
    const PortWatch watch;
    EXPECT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, "SetCommState failed");
    EXPECT_EQ(watch.calls, (Calls{"CreateFileA", "GetCommState", "SetCommState"}));
    EXPECT_FALSE(IsEnabled());
}

struct FailingStep {
    const char* call;
    const char* text;
    size_t callsMade;
};

std::ostream& operator<<(std::ostream& out, const FailingStep& step) {
    return out << step.call;
}

std::string NameOfStep(const ::testing::TestParamInfo<FailingStep>& step) {
    return step.param.call;
}

class GpsEnableStep : public ::testing::TestWithParam<FailingStep> {};
INSTANTIATE_TEST_SUITE_P(Every, GpsEnableStep,
                         ::testing::Values(FailingStep{"SetCommState", "SetCommState failed", 3},
                                           FailingStep{"SetCommTimeouts", "SetComTimeouts failed", 4},
                                           FailingStep{"CreateThread", "CreateThread Failed", 6}),
                         NameOfStep);

// The port stays taken, whatever follows: applications rely on it.
TEST_P(GpsEnableStep, ThatFailsIsToldAndKeepsThePortOpen) {
    const SerialPair cable;
    PortWatch watch;
    HANDLE kept = nullptr;
    {
        const GpsSession session(cable.Port());
        watch.failing = GetParam().call;
        const size_t before = CountOpenHandles();
        EXPECT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, GetParam().text);
        EXPECT_EQ(CountOpenHandles(), before + 1);
        EXPECT_EQ(watch.calls, Calls(kAllSteps.begin(), kAllSteps.begin() + static_cast<int>(GetParam().callsMade)));
        EXPECT_FALSE(IsEnabled());
        ASSERT_EQ(watch.opened.size(), 1U);
        kept = watch.opened[0].result;
        EXPECT_TRUE(CanBeUsed(kept));
        watch.calls.clear();
        EXPECT_SUCCESS(QLGPS_Disable());
    }
    EXPECT_EQ(watch.calls, Calls{});
    EXPECT_TRUE(CanBeUsed(kept));
}

TEST_P(GpsEnableStep, ThatFailedCanBeTriedAgain) {
    SerialPair cable;
    const GpsSession session(cable.Port());
    PortWatch watch;
    watch.failing = GetParam().call;
    EXPECT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, GetParam().text);
    EXPECT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, GetParam().text);
    watch.failing.clear();
    watch.calls.clear();
    EXPECT_SUCCESS(QLGPS_Enable());
    EXPECT_EQ(watch.calls, kAllSteps);
    ASSERT_EQ(watch.opened.size(), 3U);

    cable.Send(SpeedOnly(6));
    EXPECT_TRUE(WaitUntil([] { return ReadSpeed() == 6; }));
    EXPECT_TRUE(IsEnabled());
    EXPECT_SUCCESS(DisableWithoutSilence(cable));
    EXPECT_FALSE(CanBeUsed(watch.opened[2].result));
    EXPECT_TRUE(CanBeUsed(watch.opened[0].result));
}

std::string NameOfCall(const ::testing::TestParamInfo<std::string>& call) {
    return call.param;
}

class GpsEnableStepThatMayFail : public ::testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Every, GpsEnableStepThatMayFail, ::testing::Values("GetCommState", "PurgeComm"), NameOfCall);

TEST_P(GpsEnableStepThatMayFail, DoesNotKeepTheReceiverFromBeingRead) {
    SerialPair cable;
    const GpsSession session(cable.Port());
    PortWatch watch;
    watch.failing = GetParam();
    EXPECT_SUCCESS(QLGPS_Enable());
    EXPECT_EQ(watch.calls, kAllSteps);
    ASSERT_EQ(watch.states.size(), 1U);
    EXPECT_EQ(Bytes(watch.states[0]), Bytes(WithReceiverSettings(watch.states[0])));
    cable.Send(SpeedOnly(7));
    EXPECT_TRUE(WaitUntil([] { return ReadSpeed() == 7; }));
    EXPECT_SUCCESS(DisableWithoutSilence(cable));
}

}  // namespace
}  // namespace quarlin::test
