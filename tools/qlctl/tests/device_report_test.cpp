// SPDX-License-Identifier: Apache-2.0
#include "view/device_report.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::json;

const LibraryError kNoDriver{QLERR_OP_UNSUPPORTED, "Incompatable or missing misc driver"};
const LibraryError kUnknown{QLERR_INTERNAL_ERROR, "Unknown device check error"};

DeviceReport SampleReport() {
    return {{{1, true, true, true}, {2, false, kNoDriver, false}, {15, kNoDriver, kUnknown, kNoDriver}},
            std::vector<DeviceStatusEntry>{{16, 1, 1, 2}, {16, 11, 0, 1}}};
}

TEST(DeviceText, ShowsEveryDeviceAndTheList) {
    EXPECT_EQ(DeviceText(SampleReport()),
              "Device  Available  Powered  Enabled in the BIOS\n"
              "     1  yes        yes      yes\n"
              "     2  no         error    no\n"
              "    15  error      error    error\n"
              "The machine's own list has 2 devices\n"
              "Device  Power state  BIOS state\n"
              "     1            1           2\n"
              "    11            0           1\n");
}

TEST(DeviceText, ShowsAListThatFailsAsItsError) {
    EXPECT_EQ(DeviceText({{}, kNoDriver}),
              "Device  Available  Powered  Enabled in the BIOS\n"
              "The machine's own list: error 4 (QLERR_OP_UNSUPPORTED): Incompatable or missing misc driver\n");
}

TEST(DeviceText, ShowsAnEmptyList) {
    const std::string text = DeviceText({{}, std::vector<DeviceStatusEntry>{}});
    EXPECT_TRUE(text.ends_with("The machine's own list has 0 devices\n")) << text;
}

TEST(DeviceFailures, NameEachCauseOnceInTheOrderOfTheReport) {
    const std::vector<LibraryError> errors = Failures(SampleReport());
    ASSERT_EQ(errors.size(), 2U);
    EXPECT_EQ(errors[0].message, kNoDriver.message);
    EXPECT_EQ(errors[1].message, kUnknown.message);
    EXPECT_TRUE(Failures(DeviceReport{{{1, true, true, true}}, std::vector<DeviceStatusEntry>{}}).empty());
}

TEST(DeviceJson, HasNullForWhatFailed) {
    EXPECT_EQ(Json::parse(DeviceJson(SampleReport())), Json::parse(R"({"devices": [
        {"device": 1, "available": true, "powered": true, "enabled_in_bios": true},
        {"device": 2, "available": false, "powered": null, "enabled_in_bios": false},
        {"device": 15, "available": null, "powered": null, "enabled_in_bios": null}],
        "listed": [{"device": 1, "power_state": 1, "bios_state": 2}, {"device": 11, "power_state": 0, "bios_state": 1}],
        "errors": [{"code": 4, "name": "QLERR_OP_UNSUPPORTED", "message": "Incompatable or missing misc driver"},
                   {"code": 5, "name": "QLERR_INTERNAL_ERROR", "message": "Unknown device check error"}]})"));
    EXPECT_EQ(Json::parse(DeviceJson({{}, kUnknown}))["listed"], nullptr);
}

BatteryState SampleBattery() {
    BatteryState state{"PACK-4420", "000417", {}};
    state.info.Chemistry = 6;
    state.info.PowerState = 1;
    state.info.RemainingCapacity = 41230;
    state.info.FullChargedCapacity = 50100;
    state.info.DesignedCapacity = 54000;
    state.info.Voltage = 11874;
    state.info.Rate = -8712;
    state.info.TotalChargeIndex = 123;
    state.info.Temperature = 2982;
    state.info.BatteryHealth = 93;
    state.info.LastRecalibrationDate = 20260914;
    state.info.EnvironmentStatus = 2;
    return state;
}

TEST(BatteryText, ShowsARecordAndAnErrorInItsPlace) {
    EXPECT_EQ(BatteryText({{1, SampleBattery()}, {2, kUnknown}}),
              "Battery 1\n"
              "  Name                   PACK-4420\n"
              "  Identifier             000417\n"
              "  Chemistry              6\n"
              "  Power state            1\n"
              "  Remaining capacity     41230\n"
              "  Full charged capacity  50100\n"
              "  Designed capacity      54000\n"
              "  Voltage                11874\n"
              "  Rate                   -8712\n"
              "  Total charge index     123\n"
              "  Temperature            2982\n"
              "  Health                 93\n"
              "  Last recalibration     20260914\n"
              "  Environment            2\n"
              "Battery 2\n"
              "  error 5 (QLERR_INTERNAL_ERROR): Unknown device check error\n");
}

TEST(BatteryJson, HasTheFieldsOrTheError) {
    EXPECT_EQ(Json::parse(BatteryJson({{1, SampleBattery()}, {2, kUnknown}})), Json::parse(R"({"batteries": [
        {"battery": 1, "error": null, "name": "PACK-4420", "id": "000417", "chemistry": 6, "power_state": 1,
         "remaining_capacity": 41230, "full_charged_capacity": 50100, "designed_capacity": 54000, "voltage": 11874,
         "rate": -8712, "total_charge_index": 123, "temperature": 2982, "battery_health": 93,
         "last_recalibration_date": 20260914, "environment_status": 2},
        {"battery": 2,
         "error": {"code": 5, "name": "QLERR_INTERNAL_ERROR", "message": "Unknown device check error"}}]})"));
}

TEST(BatteryFailures, AreThoseOfTheRecords) {
    EXPECT_EQ(Failures({{1, kUnknown}, {2, kUnknown}}).size(), 1U);
    EXPECT_EQ(Failures({{1, SampleBattery()}, {2, kNoDriver}}).front().code, QLERR_OP_UNSUPPORTED);
}

}  // namespace
}  // namespace quarlin::qlctl
