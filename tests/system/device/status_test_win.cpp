// SPDX-License-Identifier: Apache-2.0
// Every status of the device-check library, from every function of it.
#include <array>
#include <functional>
#include <limits>
#include <ostream>

#include "device/probe_machine_win.h"

namespace quarlin::test {
namespace {

struct Status {
    int status;
    QLerr code;
    const char* text;
};

std::ostream& operator<<(std::ostream& out, const Status& status) {
    return out << status.status;
}

std::string NameOf(const ::testing::TestParamInfo<Status>& info) {
    const std::string number = std::to_string(info.param.status);
    return number[0] == '-' ? "Minus" + number.substr(1) : "Plus" + number;
}

// A call that asks one function of the library.
struct Asking {
    ProbeFunction function;
    std::function<QLerr()> call;
};

QLerr List() {
    std::array<DeviceStatusEntry, 15> entries{};
    int count = 15;
    return QLDEVICE_GetDevices(entries.data(), &count);
}

QLerr Count() {
    int count = 0;
    return QLDEVICE_GetDevices(nullptr, &count);
}

QLerr Battery() {
    BatteryInfo battery{};
    return QLDEVICE_GetBatteryInfo(1, &battery);
}

template <QLerr (*Question)(int, bool*)>
QLerr Ask() {
    bool answer = false;
    return Question(1, &answer);
}

const std::array<Asking, 8> kAskings{{
    {ProbeFunction::kGetDeviceInfo, Ask<QLDEVICE_GetDeviceAvailable>},
    {ProbeFunction::kGetDeviceInfo, Ask<QLDEVICE_GetDevicePoweredOn>},
    {ProbeFunction::kGetDeviceInfo, Ask<QLDEVICE_GetDeviceEnabledInBios>},
    {ProbeFunction::kGetNumberOfDevices, Count},
    {ProbeFunction::kGetNumberOfDevices, List},
    {ProbeFunction::kGetDeviceList, List},
    {ProbeFunction::kGetBatteryCurrentInfo, Battery},
    // Last, because it ends what the others need.
    {ProbeFunction::kUninitialize, QLDEVICE_Uninitialize},
}};

class ProbeFailure : public ::testing::TestWithParam<Status> {
  protected:
    ProbeMachine machine_;
};

TEST_P(ProbeFailure, HasItsCodeAndTextInEveryCall) {
    const Status& expected = GetParam();
    machine_.Answer(ProbeFunction::kInitialize, expected.status);
    EXPECT_FAILURE(QLDEVICE_Initialize(), expected.code, expected.text);
    machine_.Answer(ProbeFunction::kInitialize, 0);
    ASSERT_SUCCESS(QLDEVICE_Initialize());
    for (const Asking& asking : kAskings) {
        machine_.Answer(asking.function, expected.status);
        EXPECT_FAILURE(asking.call(), expected.code, expected.text)
            << sim::kProbeFunctionNames[static_cast<std::size_t>(asking.function)];
        machine_.Answer(asking.function, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, ProbeFailure,
    ::testing::Values(Status{-1, QLERR_OP_UNSUPPORTED, "Unsupported OS"},
                      Status{-2, QLERR_OP_UNSUPPORTED, "Incompatable or missing misc driver"},
                      Status{-3, QLERR_OP_UNSUPPORTED, "Invalid device check library operation"},
                      Status{-10, QLERR_INVALID_STATE, "Device check library has not been initialized"},
                      Status{-11, QLERR_INVALID_ARGUMENT, "Invalid device check library parameter"},
                      Status{-12, QLERR_IO_ERROR, "Buffer overflow error"}),
    NameOf);

constexpr const char* kUnknown = "Unknown device check error";

INSTANTIATE_TEST_SUITE_P(
    AnyOther, ProbeFailure,
    ::testing::Values(Status{2, QLERR_INTERNAL_ERROR, kUnknown}, Status{10, QLERR_INTERNAL_ERROR, kUnknown},
                      Status{-4, QLERR_INTERNAL_ERROR, kUnknown}, Status{-9, QLERR_INTERNAL_ERROR, kUnknown},
                      Status{-13, QLERR_INTERNAL_ERROR, kUnknown}, Status{256, QLERR_INTERNAL_ERROR, kUnknown},
                      Status{std::numeric_limits<int>::max(), QLERR_INTERNAL_ERROR, kUnknown},
                      Status{std::numeric_limits<int>::min(), QLERR_INTERNAL_ERROR, kUnknown}),
    NameOf);

TEST(ProbeSuccess, IsAStatusOfOneToo) {
    ProbeMachine machine;
    for (int& answer : machine.Use()->answers) {
        answer = 1;
    }
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    for (const Asking& asking : kAskings) {
        EXPECT_SUCCESS(asking.call()) << sim::kProbeFunctionNames[static_cast<std::size_t>(asking.function)];
    }
    EXPECT_EQ(machine.Use()->started, 0);
    EXPECT_EQ(GetModuleHandleW(kProbeLibrary), nullptr);
}

}  // namespace
}  // namespace quarlin::test
