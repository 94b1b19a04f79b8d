// SPDX-License-Identifier: Apache-2.0
// What every function checks before it asks the device-check library, and in which order.
#include <functional>
#include <limits>
#include <ostream>

#include "device/probe_machine_win.h"

namespace quarlin::test {
namespace {

using Calls = std::vector<std::string>;

constexpr int kHighest = std::numeric_limits<int>::max();
constexpr int kLowest = std::numeric_limits<int>::min();

struct Call {
    const char* name;
    std::function<QLerr()> call;
};

std::ostream& operator<<(std::ostream& out, const Call& call) {
    return out << call.name;
}

std::string NameOf(const ::testing::TestParamInfo<Call>& info) {
    return info.param.name;
}

class DeviceNotInitialized : public ::testing::TestWithParam<Call> {
  protected:
    ProbeMachine machine_;
};

// Every argument is wrong as well: the state comes first.
TEST_P(DeviceNotInitialized, IsTheFirstCheck) {
    EXPECT_FAILURE(GetParam().call(), QLERR_INVALID_STATE, kDeviceNotInitialized);
    ASSERT_SUCCESS(QLDEVICE_Initialize());
    ASSERT_SUCCESS(QLDEVICE_Uninitialize());
    machine_.Calls();
    EXPECT_FAILURE(GetParam().call(), QLERR_INVALID_STATE, kDeviceNotInitialized);
    EXPECT_EQ(machine_.Calls(), Calls{});
}

INSTANTIATE_TEST_SUITE_P(
    Functions, DeviceNotInitialized,
    ::testing::Values(Call{"Uninitialize", [] { return QLDEVICE_Uninitialize(); }},
                      Call{"GetDeviceAvailable", [] { return QLDEVICE_GetDeviceAvailable(0, nullptr); }},
                      Call{"GetDevicePoweredOn", [] { return QLDEVICE_GetDevicePoweredOn(0, nullptr); }},
                      Call{"GetDeviceEnabledInBios", [] { return QLDEVICE_GetDeviceEnabledInBios(0, nullptr); }},
                      Call{"GetDevices", [] { return QLDEVICE_GetDevices(nullptr, nullptr); }},
                      Call{"GetBatteryInfo", [] { return QLDEVICE_GetBatteryInfo(0, nullptr); }}),
    NameOf);

TEST(DeviceNotInitializedOutputs, AreUntouched) {
    ProbeMachine machine;
    bool answer = true;
    EXPECT_FAILURE(QLDEVICE_GetDeviceAvailable(12, &answer), QLERR_INVALID_STATE, kDeviceNotInitialized);
    EXPECT_FAILURE(QLDEVICE_GetDevicePoweredOn(12, &answer), QLERR_INVALID_STATE, kDeviceNotInitialized);
    EXPECT_FAILURE(QLDEVICE_GetDeviceEnabledInBios(12, &answer), QLERR_INVALID_STATE, kDeviceNotInitialized);
    EXPECT_TRUE(answer);
    int count = 77;
    EXPECT_FAILURE(QLDEVICE_GetDevices(nullptr, &count), QLERR_INVALID_STATE, kDeviceNotInitialized);
    EXPECT_EQ(count, 77);
    BatteryInfo battery{};
    battery.Voltage = 77;
    EXPECT_FAILURE(QLDEVICE_GetBatteryInfo(1, &battery), QLERR_INVALID_STATE, kDeviceNotInitialized);
    EXPECT_EQ(battery.Voltage, 77);
}

// A question that a bool answers.
struct Question {
    const char* name;
    QLerr (*ask)(int device, bool* answer);
    const char* nullText;
};

std::ostream& operator<<(std::ostream& out, const Question& question) {
    return out << question.name;
}

std::string NameOfQuestion(const ::testing::TestParamInfo<Question>& info) {
    return info.param.name;
}

class DeviceQuestion : public DeviceTest, public ::testing::WithParamInterface<Question> {};

TEST_P(DeviceQuestion, RefusesDevicesThatThereAreNot) {
    for (const int device : {0, 16, -1, 257, kLowest, kHighest}) {
        bool answer = true;
        EXPECT_FAILURE(GetParam().ask(device, &answer), QLERR_INVALID_ARGUMENT, kUnknownDevice) << device;
        EXPECT_TRUE(answer) << device;
        EXPECT_FAILURE(GetParam().ask(device, nullptr), QLERR_INVALID_ARGUMENT, kUnknownDevice) << device;
    }
    EXPECT_EQ(machine_.Calls(), Calls{});
}

TEST_P(DeviceQuestion, RefusesANullPointer) {
    for (int device = 1; device <= 15; ++device) {
        EXPECT_FAILURE(GetParam().ask(device, nullptr), QLERR_INVALID_ARGUMENT, GetParam().nullText);
    }
    EXPECT_EQ(machine_.Calls(), Calls{});
}

TEST_P(DeviceQuestion, AsksTheLibraryForEveryDevice) {
    for (int device = 1; device <= 15; ++device) {
        Device(device) = {1, 1, 1};
        bool answer = false;
        EXPECT_SUCCESS(GetParam().ask(device, &answer));
        EXPECT_TRUE(answer);
        EXPECT_EQ(machine_.Calls(), Calls{"GetDeviceInfo " + std::to_string(device) + " 20 1"});
        Device(device) = {0, 0, 0};
        EXPECT_SUCCESS(GetParam().ask(device, &answer));
        EXPECT_FALSE(answer);
        machine_.Calls();
    }
}

// The library has filled the record when it fails: the answer is false all the same.
TEST_P(DeviceQuestion, AnswersFalseWhenTheLibraryFails) {
    Device(5) = {1, 1, 1};
    machine_.Answer(ProbeFunction::kGetDeviceInfo, -2);
    for (const std::uint32_t work : {0U, 1U}) {
        machine_.Use()->workWhenFailing = work;
        bool answer = true;
        EXPECT_FAILURE(GetParam().ask(5, &answer), QLERR_OP_UNSUPPORTED, "Incompatable or missing misc driver");
        EXPECT_FALSE(answer);
    }
}

TEST_P(DeviceQuestion, TakesAStatusOfOneForASuccess) {
    Device(5) = {1, 1, 1};
    machine_.Answer(ProbeFunction::kGetDeviceInfo, 1);
    bool answer = false;
    EXPECT_SUCCESS(GetParam().ask(5, &answer));
    EXPECT_TRUE(answer);
}

INSTANTIATE_TEST_SUITE_P(Functions, DeviceQuestion,
                         ::testing::Values(Question{"GetDeviceAvailable", QLDEVICE_GetDeviceAvailable,
                                                    "The argument available cannot be NULL."},
                                           Question{"GetDevicePoweredOn", QLDEVICE_GetDevicePoweredOn,
                                                    "The argument enabled cannot be NULL."},
                                           Question{"GetDeviceEnabledInBios", QLDEVICE_GetDeviceEnabledInBios,
                                                    "The argument enabled cannot be NULL."}),
                         NameOfQuestion);

using DeviceArguments = DeviceTest;

TEST_F(DeviceArguments, OfGetDevicesNeedACount) {
    DeviceStatusEntry entry{};
    EXPECT_FAILURE(QLDEVICE_GetDevices(&entry, nullptr), QLERR_INVALID_ARGUMENT, "The argument count cannot be NULL.");
    EXPECT_FAILURE(QLDEVICE_GetDevices(nullptr, nullptr), QLERR_INVALID_ARGUMENT, "The argument count cannot be NULL.");
    EXPECT_EQ(machine_.Calls(), Calls{});
}

// The same words for both, and for both at once.
TEST_F(DeviceArguments, OfGetBatteryInfoNeedABatteryAndARecord) {
    constexpr const char* kInvalid = "The argument device is invalid.";
    BatteryInfo battery{};
    battery.Voltage = 77;
    for (const int number : {0, 3, -1, 257, kLowest, kHighest}) {
        EXPECT_FAILURE(QLDEVICE_GetBatteryInfo(number, &battery), QLERR_INVALID_ARGUMENT, kInvalid) << number;
        EXPECT_FAILURE(QLDEVICE_GetBatteryInfo(number, nullptr), QLERR_INVALID_ARGUMENT, kInvalid) << number;
    }
    EXPECT_FAILURE(QLDEVICE_GetBatteryInfo(1, nullptr), QLERR_INVALID_ARGUMENT, kInvalid);
    EXPECT_FAILURE(QLDEVICE_GetBatteryInfo(2, nullptr), QLERR_INVALID_ARGUMENT, kInvalid);
    EXPECT_EQ(battery.Voltage, 77);
    EXPECT_EQ(machine_.Calls(), Calls{});
}

}  // namespace
}  // namespace quarlin::test
