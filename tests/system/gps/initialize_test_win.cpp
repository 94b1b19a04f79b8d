// SPDX-License-Identifier: Apache-2.0
// Choosing the port: the bounds, the check of the port, and what is known about the receiver afterwards.
#include <quarlin/gps.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "gps/gps_session_win.h"
#include "gps/port_watch_win.h"
#include "support/child_process_win.h"
#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/machine_state_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kNotInitialized = "GPS has not been initialized.";
constexpr const char* kOutOfBounds = "COM port value is out of bounds";
constexpr const char* kIncorrectPort = "Incorrect COM port";
constexpr const char* kProvider = "QLSIM_PORT_PROVIDER";

EnvironmentGuard ProviderSays(const std::wstring& setting) {
    return EnvironmentGuard(ToWide(kProvider), setting);
}

int ReceiverCount() {
    int count = -1;
    EXPECT_SUCCESS(QLGPS_GetGpsDevices(&count));
    return count;
}

void ExpectNoReceiver() {
    EXPECT_EQ(ReceiverCount(), 0);
    EXPECT_FAILURE(GPS_VerifyAvailable(), QLERR_OP_UNSUPPORTED, "Device Not available");
}

void ExpectOneReceiver() {
    EXPECT_EQ(ReceiverCount(), 1);
    EXPECT_SUCCESS(GPS_VerifyAvailable());
}

// The port check as the system sees it.
struct PortCheck {
    std::string name;
    COMMCONFIG config;
    DWORD size;
};
std::vector<PortCheck> checks;

BOOL WINAPI WatchedPortCheck(const char* name, COMMCONFIG* config, DWORD* size) {
    checks.push_back({name, *config, *size});
    return GetDefaultCommConfigA(name, config, size);
}

class GpsInitialize : public ::testing::Test {
  protected:
    void SetUp() override { checks.clear(); }

    const ImportHook hook_{"kernel32.dll", "GetDefaultCommConfigA", &WatchedPortCheck};
};

TEST_F(GpsInitialize, KnowsNoReceiverAtFirst) {
    ExpectNoReceiver();
    EXPECT_FAILURE(QLGPS_Uninitialize(), QLERR_INVALID_STATE, kNotInitialized);
}

TEST_F(GpsInitialize, RefusesNumbersThatNoPortHas) {
    for (const int number : {0, 256, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_FAILURE(QLGPS_Initialize(number), QLERR_INVALID_ARGUMENT, kOutOfBounds) << number;
    }
    EXPECT_TRUE(checks.empty());
    EXPECT_FAILURE(QLGPS_Disable(), QLERR_INVALID_STATE, kNotInitialized);
    ExpectNoReceiver();
}

TEST_F(GpsInitialize, ChecksThePortByItsPlainName) {
    const EnvironmentGuard provider = ProviderSays(L"COM1=rs232;COM12=rs232;COM99=rs232;COM100=rs232;COM255=rs232");
    for (const int number : {1, 12, 99, 100, 255}) {
        checks.clear();
        ASSERT_SUCCESS(QLGPS_Initialize(number));
        ASSERT_EQ(checks.size(), 1U);
        EXPECT_EQ(checks[0].name, "COM" + std::to_string(number));
        EXPECT_EQ(checks[0].size, sizeof(COMMCONFIG));
        COMMCONFIG expected{};
        expected.dwSize = sizeof expected;
        expected.wVersion = 1;
        EXPECT_EQ(std::memcmp(&checks[0].config, &expected, sizeof expected), 0);
        ASSERT_SUCCESS(QLGPS_Uninitialize());
    }
}

TEST_F(GpsInitialize, ChecksTheHighestPort) {
    EXPECT_FAILURE(QLGPS_Initialize(255), QLERR_INVALID_ARGUMENT, kIncorrectPort);
    ASSERT_EQ(checks.size(), 1U);
    EXPECT_EQ(checks[0].name, "COM255");
}

TEST_F(GpsInitialize, DoesNotOpenThePort) {
    const PortWatch watch;
    const GpsSession session(3);
    EXPECT_EQ(watch.calls, std::vector<std::string>{});
    EXPECT_FALSE(IsEnabled());
}

TEST_F(GpsInitialize, OpensATwoDigitPortByItsPlainName) {
    const EnvironmentGuard provider = ProviderSays(L"COM12=rs232");
    const PortWatch watch;
    const GpsSession session(12);
    EXPECT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, "CreateFile failed");
    ASSERT_EQ(watch.opened.size(), 1U);
    EXPECT_EQ(watch.opened[0].name, "COM12");
}

TEST_F(GpsInitialize, AgainChangesNothingWhateverThePort) {
    ASSERT_SUCCESS(QLGPS_Initialize(3));
    checks.clear();
    for (const int number : {3, 5, 9, 0, 256, -1}) {
        ASSERT_EQ(QLGPS_GetGpsDevices(nullptr), QLERR_BUFFER_OVERFLOW);
        EXPECT_SUCCESS(QLGPS_Initialize(number)) << number;
    }
    EXPECT_TRUE(checks.empty());
    PortWatch watch;
    watch.failing = "CreateFileA";
    EXPECT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, "CreateFile failed");
    ASSERT_EQ(watch.opened.size(), 1U);
    EXPECT_EQ(watch.opened[0].name, "COM3");
    EXPECT_SUCCESS(QLGPS_Uninitialize());
}

TEST_F(GpsInitialize, TakesAnotherPortAfterUninitialize) {
    ASSERT_SUCCESS(QLGPS_Initialize(3));
    ASSERT_SUCCESS(QLGPS_Uninitialize());
    const GpsSession session(5);
    PortWatch watch;
    watch.failing = "CreateFileA";
    EXPECT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, "CreateFile failed");
    ASSERT_EQ(watch.opened.size(), 1U);
    EXPECT_EQ(watch.opened[0].name, "COM5");
}

TEST_F(GpsInitialize, LeavesTheReceiverKnownAfterUninitialize) {
    ASSERT_SUCCESS(QLGPS_Initialize(3));
    ExpectOneReceiver();
    ASSERT_SUCCESS(QLGPS_Uninitialize());
    ExpectOneReceiver();
    EXPECT_FAILURE(QLGPS_Uninitialize(), QLERR_INVALID_STATE, kNotInitialized);
    ExpectOneReceiver();
}

// A number out of bounds is refused before there is a check that could fail.
TEST_F(GpsInitialize, LeavesTheReceiverKnownAfterANumberOutOfBounds) {
    ASSERT_SUCCESS(QLGPS_Initialize(3));
    ASSERT_SUCCESS(QLGPS_Uninitialize());
    EXPECT_FAILURE(QLGPS_Initialize(256), QLERR_INVALID_ARGUMENT, kOutOfBounds);
    ExpectOneReceiver();
}

TEST_F(GpsInitialize, ForgetsTheReceiverWhenALaterCheckFails) {
    ASSERT_SUCCESS(QLGPS_Initialize(3));
    ASSERT_SUCCESS(QLGPS_Uninitialize());
    EXPECT_FAILURE(QLGPS_Initialize(9), QLERR_INVALID_ARGUMENT, kIncorrectPort);
    ExpectNoReceiver();
    EXPECT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, kNotInitialized);
    const GpsSession session(3);
    ExpectOneReceiver();
}

TEST_F(GpsInitialize, ForgetsTheReceiverWhenALaterCheckEndsWithAnError) {
    ASSERT_SUCCESS(QLGPS_Initialize(3));
    ASSERT_SUCCESS(QLGPS_Uninitialize());
    const EnvironmentGuard provider = ProviderSays(L"COM5=error:5");
    EXPECT_EQ(QLGPS_Initialize(5), QLERR_INTERNAL_ERROR);
    ExpectNoReceiver();
}

TEST_F(GpsInitialize, DeviceCountNeedsAPointer) {
    EXPECT_FAILURE(QLGPS_GetGpsDevices(nullptr), QLERR_BUFFER_OVERFLOW, "buffer pointer is NULL");
    const GpsSession session(3);
    EXPECT_FAILURE(QLGPS_GetGpsDevices(nullptr), QLERR_BUFFER_OVERFLOW, "buffer pointer is NULL");
}

BOOL WINAPI RefuseSection(LPCRITICAL_SECTION, DWORD, DWORD) {
    return FALSE;
}

TEST(GpsInitializeWithoutACriticalSection, FailsAndMayBeTriedAgain) {
    {
        const ImportHook hook("kernel32.dll", "InitializeCriticalSectionEx", &RefuseSection);
        EXPECT_FAILURE(QLGPS_Initialize(3), QLERR_INTERNAL_ERROR, "Could not initialize critical section.");
    }
    EXPECT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, kNotInitialized);
    EXPECT_FAILURE(QLGPS_Uninitialize(), QLERR_INVALID_STATE, kNotInitialized);

    const GpsSession session(3);
    EXPECT_SUCCESS(QLGPS_Disable());
}

// What the port provider answers.

TEST(GpsPortCheck, RefusesAPortThatTheMachineHasNot) {
    EXPECT_FAILURE(QLGPS_Initialize(9), QLERR_INVALID_ARGUMENT, kIncorrectPort);
    ExpectNoReceiver();
    EXPECT_FAILURE(QLGPS_Uninitialize(), QLERR_INVALID_STATE, kNotInitialized);
}

TEST(GpsPortCheck, TellsAnyOtherErrorInTheSystemsWords) {
    for (const DWORD error : {ERROR_ACCESS_DENIED, ERROR_INSUFFICIENT_BUFFER, ERROR_CANTOPEN}) {
        const EnvironmentGuard provider = ProviderSays(L"COM3=error:" + std::to_wstring(error));
        EXPECT_FAILURE(QLGPS_Initialize(3), QLERR_INTERNAL_ERROR,
                       Win32Message("Failed to check COM port availability!", error));
        ExpectNoReceiver();
        EXPECT_FAILURE(QLGPS_Enable(), QLERR_INVALID_STATE, kNotInitialized);
    }
}

TEST(GpsPortCheck, RefusesAPortOfAnotherKind) {
    // 0 unspecified, 2 parallel, 6 modem, 0x21 fax, 0x101 a network bridge.
    for (const char* const kind : {"0", "2", "6", "0x21", "0x101", "0xFFFFFFFF"}) {
        const EnvironmentGuard provider = ProviderSays(L"COM3=subtype:" + ToWide(kind));
        EXPECT_FAILURE(QLGPS_Initialize(3), QLERR_INVALID_ARGUMENT, kIncorrectPort) << kind;
        ExpectNoReceiver();
    }
}

TEST(GpsPortCheck, TakesAnyPortThatIsASerialPort) {
    const EnvironmentGuard provider = ProviderSays(L"COM9=subtype:1");
    const GpsSession session(9);
    ExpectOneReceiver();
}

QUARLIN_CHILD_MODE(check_port_without_error_text) {
    if (QLGPS_Initialize(3) != QLERR_INVALID_ARGUMENT) {
        return 1;
    }
    if (!(FetchLastError() == Failure{QLERR_INVALID_ARGUMENT, kIncorrectPort})) {
        return 2;
    }
    int count = -1;
    return QLGPS_GetGpsDevices(&count) == QLERR_OK && count == 0 ? 0 : 3;
}

// The system has no words for the error: a diagnostic is printed, and the check goes on and finds no serial port.
TEST(GpsPortCheck, PrintsADiagnosticForAnErrorWithoutText) {
    const bool hasText = HasSystemText(0xE0001234);
    const DWORD formatError = GetLastError();
    ASSERT_FALSE(hasText);
    std::array<char, 64> diagnostic{};
    std::snprintf(diagnostic.data(), diagnostic.size(), "Error in FormatMessage: %lx\n", formatError);

    const ChildResult child =
        RunChild("check_port_without_error_text", {{ToWide(kProvider), L"COM3=error:0xE0001234"}});
    EXPECT_EQ(child.exitCode, 0U);
    EXPECT_EQ(child.out, diagnostic.data());
    EXPECT_EQ(child.err, "");
}

}  // namespace
}  // namespace quarlin::test
