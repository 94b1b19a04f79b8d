// SPDX-License-Identifier: Apache-2.0
// What a failure leaves and what a success takes away: memory that runs out, records that are half filled, older
// errors.
#include <array>
#include <functional>
#include <ostream>

#include "device/probe_machine_win.h"
#include "support/failing_allocation_win.h"

namespace quarlin::test {
namespace {

using Calls = std::vector<std::string>;

using DeviceMemory = DeviceTest;

// The list needs memory for what the library says about each device; each time another allocation fails.
TEST_F(DeviceMemory, ThatIsShortFailsTheListAndTouchesNothing) {
    std::array<DeviceStatusEntry, 15> entries{};
    int failures = 0;
    for (int number = 1;; ++number) {
        int count = 15;
        entries[0].device = 77;
        QLerr result = QLERR_OK;
        bool hasFailed = false;
        {
            const FailingAllocation failing(number);
            result = QLDEVICE_GetDevices(entries.data(), &count);
            hasFailed = failing.HasFailed();
        }
        if (!hasFailed) {
            EXPECT_SUCCESS(result);
            EXPECT_EQ(entries[0].device, 1U);
            break;
        }
        ++failures;
        EXPECT_FAILURE(result, QLERR_INTERNAL_ERROR, "An unknown error occurred") << number;
        EXPECT_EQ(count, 15);
        EXPECT_EQ(entries[0].device, 77U);
        EXPECT_EQ(machine_.Calls(), Calls{"GetNumberOfDevices 1"});
    }
    EXPECT_GE(failures, 1);
}

using DeviceBatteryFailure = DeviceTest;

// The library writes into the caller's record itself.
TEST_F(DeviceBatteryFailure, LeavesWhatTheLibraryWrote) {
    constexpr const char* kText = "Incompatable or missing misc driver";
    BatteryInfo battery{};
    battery.Voltage = 77;
    battery.Rate = 78;
    machine_.Answer(ProbeFunction::kGetBatteryCurrentInfo, -2);
    EXPECT_FAILURE(QLDEVICE_GetBatteryInfo(1, &battery), QLERR_OP_UNSUPPORTED, kText);
    EXPECT_EQ(battery.Voltage, 77);
    EXPECT_EQ(battery.Rate, 78);

    machine_.Use()->workWhenFailing = 1;
    machine_.Use()->batteries[0].voltage = 1234;
    EXPECT_FAILURE(QLDEVICE_GetBatteryInfo(1, &battery), QLERR_OP_UNSUPPORTED, kText);
    EXPECT_EQ(battery.Voltage, 1234);
    EXPECT_EQ(battery.Rate, -962);
}

struct Call {
    const char* name;
    std::function<QLerr()> call;
};

std::ostream& operator<<(std::ostream& out, const Call& call) {
    return out << call.name;
}

class DeviceSuccess : public DeviceTest, public ::testing::WithParamInterface<Call> {};

TEST_P(DeviceSuccess, ErasesAnOlderError) {
    ASSERT_EQ(QLDEVICE_GetDeviceAvailable(0, nullptr), QLERR_INVALID_ARGUMENT);
    EXPECT_SUCCESS(GetParam().call());
}

template <QLerr (*Question)(int, bool*)>
QLerr Ask() {
    bool answer = false;
    return Question(1, &answer);
}

INSTANTIATE_TEST_SUITE_P(Of, DeviceSuccess,
                         ::testing::Values(Call{"InitializeAndUninitialize",
                                                [] {
                                                    EXPECT_SUCCESS(QLDEVICE_Initialize());
                                                    QLDEVICE_GetDeviceAvailable(0, nullptr);
                                                    return QLDEVICE_Uninitialize();
                                                }},
                                           Call{"GetDeviceAvailable", Ask<QLDEVICE_GetDeviceAvailable>},
                                           Call{"GetDevicePoweredOn", Ask<QLDEVICE_GetDevicePoweredOn>},
                                           Call{"GetDeviceEnabledInBios", Ask<QLDEVICE_GetDeviceEnabledInBios>},
                                           Call{"GetDevices",
                                                [] {
                                                    int count = 0;
                                                    return QLDEVICE_GetDevices(nullptr, &count);
                                                }},
                                           Call{"GetBatteryInfo",
                                                [] {
                                                    BatteryInfo battery{};
                                                    return QLDEVICE_GetBatteryInfo(1, &battery);
                                                }}),
                         [](const auto& test) { return std::string(test.param.name); });

// The whole life, whose first and last calls are asked for by no other test here.
TEST(DeviceSuccessOfTheFirstAndTheLast, ErasesAnOlderError) {
    const ProbeMachine machine;
    const auto fail = [] { ASSERT_NE(QLDEVICE_GetDevices(nullptr, nullptr), QLERR_OK); };
    fail();
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    fail();
    EXPECT_SUCCESS(QLDEVICE_Uninitialize());
}

}  // namespace
}  // namespace quarlin::test
