// SPDX-License-Identifier: Apache-2.0
// What the device-check library says, as an application gets it.
#include <array>
#include <cstring>
#include <limits>

#include "device/probe_machine_win.h"

namespace quarlin::test {
namespace {

using Calls = std::vector<std::string>;

constexpr int kHighest = std::numeric_limits<int>::max();
constexpr int kLowest = std::numeric_limits<int>::min();

class DeviceValues : public DeviceTest {
  protected:
    static bool Ask(QLerr (*question)(int, bool*), int device) {
        bool answer = false;
        EXPECT_SUCCESS(question(device, &answer));
        return answer;
    }
};

TEST_F(DeviceValues, AvailableIsAnythingButZero) {
    for (const std::uint32_t value : {0U, 1U, 2U, 0x100U, 0xFFFFFFFFU}) {
        Device(4) = {value, 0, 0};
        EXPECT_EQ(Ask(QLDEVICE_GetDeviceAvailable, 4), value != 0) << value;
    }
}

TEST_F(DeviceValues, PoweredOnIsOneAlone) {
    for (const std::uint32_t value : {0U, 1U, 2U, 0x101U, 0xFFFFFFFFU}) {
        Device(4) = {0, value, 0};
        EXPECT_EQ(Ask(QLDEVICE_GetDevicePoweredOn, 4), value == 1) << value;
    }
}

TEST_F(DeviceValues, EnabledInBiosIsOneOrTwoWithPower) {
    for (const std::uint32_t power : {0U, 1U, 2U}) {
        for (const std::uint32_t bios : {0U, 1U, 2U, 3U, 0x101U, 0xFFFFFFFFU}) {
            Device(4) = {1, power, bios};
            EXPECT_EQ(Ask(QLDEVICE_GetDeviceEnabledInBios, 4), power == 1 && (bios == 1 || bios == 2))
                << "power " << power << ", BIOS " << bios;
        }
    }
}

TEST_F(DeviceValues, EnabledInBiosAsksOnce) {
    Ask(QLDEVICE_GetDeviceEnabledInBios, 4);
    EXPECT_EQ(machine_.Calls(), Calls{"GetDeviceInfo 4 20 1"});
}

constexpr DeviceStatusEntry kUntouched{77, 77, 77, 77};

class DeviceList : public DeviceTest {
  protected:
    DeviceList() { entries_.fill(kUntouched); }

    static void ExpectUntouched(const DeviceStatusEntry& entry) {
        EXPECT_EQ(std::memcmp(&entry, &kUntouched, sizeof(entry)), 0);
    }

    std::array<DeviceStatusEntry, 24> entries_;
};

TEST_F(DeviceList, WithoutEntriesOnlyCounts) {
    for (const int before : {0, -5, 3, 77}) {
        int count = before;
        EXPECT_SUCCESS(QLDEVICE_GetDevices(nullptr, &count));
        EXPECT_EQ(count, 15);
        EXPECT_EQ(machine_.Calls(), Calls{"GetNumberOfDevices 1"});
    }
    machine_.Use()->listed = 4;
    int count = 0;
    EXPECT_SUCCESS(QLDEVICE_GetDevices(nullptr, &count));
    EXPECT_EQ(count, 4);
}

TEST_F(DeviceList, HasTheDevicesInTheLibrarysOrder) {
    for (std::uint32_t i = 0; i < 15; ++i) {
        machine_.Use()->devices[i] = {i % 2, 100 + i, 200 + i};
    }
    int count = 15;
    EXPECT_SUCCESS(QLDEVICE_GetDevices(entries_.data(), &count));
    EXPECT_EQ(count, 15);
    for (std::uint32_t i = 0; i < 15; ++i) {
        EXPECT_EQ(entries_[i].size, 16U);
        EXPECT_EQ(entries_[i].device, i + 1);
        EXPECT_EQ(entries_[i].powerState, 100 + i);
        EXPECT_EQ(entries_[i].biosState, 200 + i);
    }
    ExpectUntouched(entries_[15]);
    EXPECT_EQ(machine_.Calls(), (Calls{"GetNumberOfDevices 1", "GetDeviceList 20 1 15"}));
}

TEST_F(DeviceList, LowersALargerCount) {
    int count = 24;
    EXPECT_SUCCESS(QLDEVICE_GetDevices(entries_.data(), &count));
    EXPECT_EQ(count, 15);
    EXPECT_EQ(entries_[14].device, 15U);
    ExpectUntouched(entries_[15]);
}

TEST_F(DeviceList, CopiesAsManyAsFit) {
    for (const int room : {1, 7, 14}) {
        entries_.fill(kUntouched);
        int count = room;
        EXPECT_SUCCESS(QLDEVICE_GetDevices(entries_.data(), &count));
        EXPECT_EQ(count, room);
        const auto filled = static_cast<std::size_t>(room);
        EXPECT_EQ(entries_[filled - 1].device, filled);
        ExpectUntouched(entries_[filled]);
        // The library is asked for all of them all the same.
        EXPECT_EQ(machine_.Calls(), (Calls{"GetNumberOfDevices 1", "GetDeviceList 20 1 15"}));
    }
}

TEST_F(DeviceList, CopiesNothingForACountOfZeroOrLess) {
    for (const int room : {0, -1, kLowest}) {
        int count = room;
        EXPECT_SUCCESS(QLDEVICE_GetDevices(entries_.data(), &count));
        EXPECT_EQ(count, room);
        ExpectUntouched(entries_[0]);
    }
}

TEST_F(DeviceList, IsEmptyWhenThereIsNoDevice) {
    machine_.Use()->listed = 0;
    int count = 24;
    EXPECT_SUCCESS(QLDEVICE_GetDevices(entries_.data(), &count));
    EXPECT_EQ(count, 0);
    ExpectUntouched(entries_[0]);
    EXPECT_EQ(machine_.Calls(), (Calls{"GetNumberOfDevices 1", "GetDeviceList 20 1 0"}));
}

// The library counts more devices than it fills: what it leaves is zero, and not what was in memory before.
TEST_F(DeviceList, HasZeroesForRecordsThatTheLibraryDoesNotFill) {
    machine_.Use()->listed = 20;
    int count = 24;
    EXPECT_SUCCESS(QLDEVICE_GetDevices(entries_.data(), &count));
    EXPECT_EQ(count, 20);
    EXPECT_EQ(entries_[14].device, 15U);
    for (std::size_t i = 15; i < 20; ++i) {
        EXPECT_EQ(entries_[i].size, 16U);
        EXPECT_EQ(entries_[i].device, 0U);
        EXPECT_EQ(entries_[i].powerState, 0U);
        EXPECT_EQ(entries_[i].biosState, 0U);
    }
    ExpectUntouched(entries_[20]);
}

TEST_F(DeviceList, BelievesNoAbsurdNumber) {
    for (const int listed : {-1, kLowest, 1025, kHighest}) {
        machine_.Use()->listed = listed;
        int count = 24;
        EXPECT_FAILURE(QLDEVICE_GetDevices(nullptr, &count), QLERR_INTERNAL_ERROR, "Unknown device check error");
        EXPECT_FAILURE(QLDEVICE_GetDevices(entries_.data(), &count), QLERR_INTERNAL_ERROR,
                       "Unknown device check error");
        EXPECT_EQ(count, 24);
        EXPECT_EQ(machine_.Calls(), (Calls{"GetNumberOfDevices 1", "GetNumberOfDevices 1"}));
    }
    ExpectUntouched(entries_[0]);
    machine_.Use()->listed = 1024;
    int count = 1;
    EXPECT_SUCCESS(QLDEVICE_GetDevices(entries_.data(), &count));
    EXPECT_EQ(entries_[0].device, 1U);
}

TEST_F(DeviceList, TouchesNothingWhenTheLibraryFails) {
    machine_.Use()->workWhenFailing = 1;
    for (const ProbeFunction function : {ProbeFunction::kGetDeviceList, ProbeFunction::kGetNumberOfDevices}) {
        machine_.Answer(function, -11);
        int count = 24;
        EXPECT_FAILURE(QLDEVICE_GetDevices(entries_.data(), &count), QLERR_INVALID_ARGUMENT,
                       "Invalid device check library parameter");
        EXPECT_EQ(count, 24);
        ExpectUntouched(entries_[0]);
    }
    int count = 24;
    EXPECT_FAILURE(QLDEVICE_GetDevices(nullptr, &count), QLERR_INVALID_ARGUMENT,
                   "Invalid device check library parameter");
    EXPECT_EQ(count, 24);
}

TEST_F(DeviceList, TakesStatusesOfOneForSuccesses) {
    machine_.Answer(ProbeFunction::kGetNumberOfDevices, 1);
    machine_.Answer(ProbeFunction::kGetDeviceList, 1);
    int count = 24;
    EXPECT_SUCCESS(QLDEVICE_GetDevices(entries_.data(), &count));
    EXPECT_EQ(count, 15);
    EXPECT_EQ(entries_[14].device, 15U);
}

using DeviceBattery = DeviceTest;

// 96 bytes of different values in, the same 96 bytes out: no terminator among the twelve characters of a text.
TEST_F(DeviceBattery, ComesAsTheLibraryDescribesIt) {
    for (const int number : {1, 2}) {
        std::array<unsigned char, sizeof(BatteryInfo)> expected{};
        for (std::size_t i = 0; i < expected.size(); ++i) {
            expected[i] = static_cast<unsigned char>(static_cast<std::size_t>(number) * 100 + i);
        }
        std::memcpy(&machine_.Use()->batteries[number - 1], expected.data(), expected.size());
        struct {
            BatteryInfo info;
            std::uint32_t behind;
        } battery{{}, 0x77777777};
        EXPECT_SUCCESS(QLDEVICE_GetBatteryInfo(number, &battery.info));
        EXPECT_EQ(std::memcmp(&battery.info, expected.data(), expected.size()), 0);
        EXPECT_EQ(battery.behind, 0x77777777U);
        EXPECT_EQ(machine_.Calls(), Calls{"GetBatteryCurrentInfo " + std::to_string(number) + " 1"});
    }
}

TEST_F(DeviceBattery, HasItsFieldsInTheirPlaces) {
    BatteryInfo battery{};
    EXPECT_SUCCESS(QLDEVICE_GetBatteryInfo(1, &battery));
    EXPECT_EQ(std::wstring(battery.BatteryName, 12), L"MAIN-6CELL-A");
    EXPECT_EQ(battery.Chemistry, 4);
    EXPECT_EQ(battery.PowerState, 2);
    EXPECT_EQ(battery.RemainingCapacity, 4180);
    EXPECT_EQ(battery.FullChargedCapacity, 5120);
    EXPECT_EQ(battery.DesignedCapacity, 5200);
    EXPECT_EQ(battery.Voltage, 11418);
    EXPECT_EQ(battery.Rate, -962);
    EXPECT_EQ(battery.TotalChargeIndex, 137);
    EXPECT_EQ(battery.Temperature, 304);
    EXPECT_EQ(battery.BatteryHealth, 98);
    EXPECT_EQ(std::wstring(battery.BatteryID, 12), std::wstring(L"0027182818\0\0", 12));
    EXPECT_EQ(battery.LastRecalibrationDate, 20260311);
    EXPECT_EQ(battery.EnvironmentStatus, 0);
}

TEST_F(DeviceBattery, IsReadAnewEachTime) {
    BatteryInfo battery{};
    for (const int voltage : {11400, 11350, -1}) {
        machine_.Use()->batteries[1].voltage = voltage;
        EXPECT_SUCCESS(QLDEVICE_GetBatteryInfo(2, &battery));
        EXPECT_EQ(battery.Voltage, voltage);
    }
}

TEST_F(DeviceBattery, TakesAStatusOfOneForASuccess) {
    machine_.Answer(ProbeFunction::kGetBatteryCurrentInfo, 1);
    BatteryInfo battery{};
    EXPECT_SUCCESS(QLDEVICE_GetBatteryInfo(1, &battery));
    EXPECT_EQ(battery.Voltage, 11418);
}

}  // namespace
}  // namespace quarlin::test
