// SPDX-License-Identifier: Apache-2.0
#include "device/device_queries.h"

#include "core/quarlin_exception.h"
#include "machine_libraries.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace quarlin::test {
namespace {

using namespace quarlin::device;

constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

// The failure that a call raises; QLERR_OK when it raises none.
template <typename Call>
std::pair<QLerr, std::string> FailureOf(Call&& call) {
    try {
        call();
    } catch (const QuarlinException& failure) {
        return {failure.code, failure.what()};
    }
    return {QLERR_OK, ""};
}

const std::pair<QLerr, std::string> kUnknown{QLERR_INTERNAL_ERROR, "Unknown device check error"};

class DeviceQueries : public ::testing::Test {
  protected:
    const ProbeFunctions functions_ = ProbeOfTheTest();
};

TEST_F(DeviceQueries, HandOverARecordWithItsSizeAndNothingElse) {
    IsDeviceAvailable(functions_, 7);
    EXPECT_EQ(probe.calls, std::vector<std::string>{"GetDeviceInfo 7 20"});
    ASSERT_EQ(probe.given.size(), 1U);
    EXPECT_EQ(probe.given[0].size, 20U);
    EXPECT_EQ(probe.given[0].device, 0U);
    EXPECT_EQ(probe.given[0].available, 0U);
    EXPECT_EQ(probe.given[0].powerState, 0U);
    EXPECT_EQ(probe.given[0].biosState, 0U);
}

TEST_F(DeviceQueries, ADeviceIsThereForAnyValueButZero) {
    for (const std::uint32_t value : {0U, 1U, 2U, 256U, 0x80000000U, 0xFFFFFFFFU}) {
        probe.available = value;
        EXPECT_EQ(IsDeviceAvailable(functions_, 1), value != 0) << value;
    }
}

TEST_F(DeviceQueries, ADeviceIsPoweredForOneAlone) {
    for (const std::uint32_t value : {0U, 1U, 2U, 257U, 0xFFFFFFFFU}) {
        probe.power = value;
        EXPECT_EQ(IsDevicePoweredOn(functions_, 1), value == 1) << value;
    }
}

TEST_F(DeviceQueries, ADeviceIsEnabledWithPowerAndOneOfTwoBiosStates) {
    for (const std::uint32_t power : {0U, 1U, 2U}) {
        for (const std::uint32_t bios : {0U, 1U, 2U, 3U, 257U, 0xFFFFFFFFU}) {
            probe.power = power;
            probe.bios = bios;
            EXPECT_EQ(IsDeviceEnabledInBios(functions_, 1), power == 1 && (bios == 1 || bios == 2))
                << power << " " << bios;
        }
    }
}

TEST_F(DeviceQueries, EachRaisesTheProbesFailure) {
    probe.status = -12;
    const std::pair<QLerr, std::string> failure{QLERR_IO_ERROR, "Buffer overflow error"};
    EXPECT_EQ(FailureOf([&] { IsDeviceAvailable(functions_, 1); }), failure);
    EXPECT_EQ(FailureOf([&] { IsDevicePoweredOn(functions_, 1); }), failure);
    EXPECT_EQ(FailureOf([&] { IsDeviceEnabledInBios(functions_, 1); }), failure);
    EXPECT_EQ(FailureOf([&] { CountDevices(functions_); }), failure);
    BatteryInfo battery{};
    EXPECT_EQ(FailureOf([&] { ReadBattery(functions_, 2, &battery); }), failure);
}

TEST_F(DeviceQueries, ReadABatteryIntoTheCallersRecord) {
    BatteryInfo battery{};
    ReadBattery(functions_, 2, &battery);
    EXPECT_EQ(probe.calls, std::vector<std::string>{"GetBatteryCurrentInfo 2"});
    EXPECT_EQ(battery.Voltage, 7400);
}

TEST_F(DeviceQueries, ListZeroedRecordsOfTheirSize) {
    std::array<DeviceStatusEntry, 3> entries{};
    EXPECT_EQ(ListDevices(functions_, entries.data(), 3), 3);
    EXPECT_EQ(probe.calls, (std::vector<std::string>{"GetNumberOfDevices", "GetDeviceList 20 3"}));
    ASSERT_EQ(probe.given.size(), 3U);
    for (const ProbeDevice& record : probe.given) {
        EXPECT_EQ(record.size, 20U);
        EXPECT_EQ(record.device, 0U);
        EXPECT_EQ(record.available, 0U);
        EXPECT_EQ(record.powerState, 0U);
        EXPECT_EQ(record.biosState, 0U);
    }
    for (std::uint32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(entries[i].size, 16U);
        EXPECT_EQ(entries[i].device, i + 1);
        EXPECT_EQ(entries[i].powerState, i + 11);
        EXPECT_EQ(entries[i].biosState, i + 21);
    }
}

TEST_F(DeviceQueries, FillAsManyEntriesAsThereAreAndFit) {
    for (const std::int32_t capacity : {-1, 0, 1, 2, 3, 4, kLowest, kHighest}) {
        std::array<DeviceStatusEntry, 4> entries{};
        EXPECT_EQ(ListDevices(functions_, entries.data(), capacity), 3);
        for (std::int32_t i = 0; i < 4; ++i) {
            EXPECT_EQ(entries[static_cast<std::size_t>(i)].size, i < capacity && i < 3 ? 16U : 0U)
                << "capacity " << capacity << ", entry " << i;
        }
    }
}

TEST_F(DeviceQueries, ListNoDeviceWhenThereIsNone) {
    probe.devices = 0;
    DeviceStatusEntry entry{};
    EXPECT_EQ(ListDevices(functions_, &entry, 1), 0);
    EXPECT_EQ(probe.calls.back(), "GetDeviceList 20 0");
    EXPECT_EQ(entry.size, 0U);
}

TEST_F(DeviceQueries, BelieveNoAbsurdNumberOfDevices) {
    DeviceStatusEntry entry{};
    for (const std::int32_t count : {-1, kLowest, 1025, kHighest}) {
        probe.calls.clear();
        probe.devices = count;
        EXPECT_EQ(FailureOf([&] { CountDevices(functions_); }), kUnknown) << count;
        EXPECT_EQ(FailureOf([&] { ListDevices(functions_, &entry, 1); }), kUnknown) << count;
        EXPECT_EQ(probe.calls, (std::vector<std::string>{"GetNumberOfDevices", "GetNumberOfDevices"}));
    }
    probe.devices = 1024;
    EXPECT_EQ(CountDevices(functions_), 1024);
    EXPECT_EQ(ListDevices(functions_, &entry, 1), 1024);
    EXPECT_EQ(entry.size, 16U);
}

}  // namespace
}  // namespace quarlin::test
