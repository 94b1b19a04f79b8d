// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.device;

import static org.junit.jupiter.api.Assertions.assertDoesNotThrow;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class BatteryTest {
    private static BatteryInfo record() {
        BatteryInfo info = new BatteryInfo();
        info.BatteryName = "MAIN-6CELL-A";
        info.BatteryID = "0027182818\0\0";
        info.Chemistry = 1;
        info.PowerState = 2;
        info.RemainingCapacity = 3;
        info.FullChargedCapacity = 4;
        info.DesignedCapacity = 5;
        info.Voltage = 6;
        info.Rate = -7;
        info.TotalChargeIndex = 8;
        info.Temperature = 9;
        info.BatteryHealth = 10;
        info.LastRecalibrationDate = 11;
        info.EnvironmentStatus = 12;
        return info;
    }

    @Test
    void everyValueOfTheRecordPassesThrough() {
        Battery battery = Battery.of(record());
        assertEquals(1, battery.chemistry());
        assertEquals(2, battery.powerState());
        assertEquals(3, battery.remainingCapacity());
        assertEquals(4, battery.fullChargedCapacity());
        assertEquals(5, battery.designedCapacity());
        assertEquals(6, battery.voltage());
        assertEquals(-7, battery.rate());
        assertEquals(8, battery.totalChargeIndex());
        assertEquals(9, battery.temperature());
        assertEquals(10, battery.health());
        assertEquals(11, battery.lastRecalibrationDate());
        assertEquals(12, battery.environmentStatus());
    }

    @Test
    void textsEndBeforeTheFirstZero() {
        BatteryInfo info = record();
        assertEquals("MAIN-6CELL-A", Battery.of(info).name());
        assertEquals("0027182818", Battery.of(info).id());
        info.BatteryName = "A\0garbage\0\0\0";
        info.BatteryID = "\0\0\0\0\0\0\0\0\0\0\0\0";
        assertEquals("A", Battery.of(info).name());
        assertEquals("", Battery.of(info).id());
        info.BatteryName = null;
        assertEquals("", Battery.of(info).name());
    }

    @Test
    void aBatteryDoesNotChangeWithTheRecord() {
        BatteryInfo info = record();
        Battery battery = Battery.of(info);
        info.RemainingCapacity = 99;
        info.BatteryName = "other";
        assertEquals(3, battery.remainingCapacity());
        assertEquals("MAIN-6CELL-A", battery.name());
        assertEquals("MAIN-6CELL-A (0027182818): 3 of 4", battery.toString());
    }

    @ParameterizedTest(name = "code {0} is {1}")
    @CsvSource({"1, INVALID_ARGUMENT", "2, INVALID_STATE", "3, IO_ERROR", "4, OP_UNSUPPORTED", "5, INTERNAL_ERROR"})
    void aCodeOfTheLastCallIsThrown(int code, ResultCode expected) {
        QuarlinException failure =
                assertThrows(QuarlinException.class, () -> DeviceInventory.refuseFailure(code));
        assertEquals(expected, failure.code());
        assertEquals("The device-check library did not stop properly.", failure.getMessage());
    }

    @Test
    void successOfTheLastCallIsNotThrown() {
        assertDoesNotThrow(() -> DeviceInventory.refuseFailure(0));
    }
}
