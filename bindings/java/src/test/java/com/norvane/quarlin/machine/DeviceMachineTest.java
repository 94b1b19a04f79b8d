// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import static com.norvane.quarlin.machine.Failures.assertFails;
import static com.norvane.quarlin.machine.Failures.assertRaises;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.device.Battery;
import com.norvane.quarlin.device.BatteryInfo;
import com.norvane.quarlin.device.DeviceInventory;
import com.norvane.quarlin.device.DeviceManager;
import java.io.IOException;
import java.util.Arrays;
import org.junit.jupiter.api.AfterAll;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Tag;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

/** Built-in devices and batteries, and every exception that the generic raiser makes of a code. */
@Tag("machine")
class DeviceMachineTest {
    private static final String NOT_INITIALIZED = "Device API has not been initialized.";

    private static Machine machine;

    @BeforeAll
    static void play() throws IOException {
        machine = new Machine();
        machine.play(
                "[[device]]",
                "kind = \"probe\"",
                "[[device.built_in]]",
                "number = 2",
                "available = false",
                "[[device.built_in]]",
                "number = 4",
                "available = true",
                "power = 0",
                "bios = 1",
                "[[device.built_in]]",
                "number = 9",
                "available = true",
                "power = 1",
                "bios = 0",
                "[[device.battery]]",
                "number = 1",
                "name = \"MAIN-6CELL-A\"",
                "id = \"0027182818\"",
                "chemistry = 4",
                "power_state = 2",
                "remaining_capacity = 900",
                "full_charged_capacity = 5120",
                "designed_capacity = 5200",
                "voltage = 11418",
                "rate = -1200",
                "total_charge_index = 137",
                "temperature = 304",
                "battery_health = 98",
                "last_recalibration_date = 20260131",
                "environment_status = 3");
    }

    @AfterAll
    static void end() throws IOException {
        machine.close();
    }

    @AfterEach
    void reset() {
        machine.command("probe reset");
    }

    @Test
    void nativeMethodsTellOfDevices() throws IOException {
        assertEquals(0, DeviceManager.QLDEVICE_Initialize());
        try {
            assertTrue(DeviceManager.QLDEVICE_GetDeviceAvailable(1));
            assertFalse(DeviceManager.QLDEVICE_GetDeviceAvailable(2));
            assertTrue(DeviceManager.QLDEVICE_GetDevicePoweredOn(9));
            assertFalse(DeviceManager.QLDEVICE_GetDevicePoweredOn(4));
            assertTrue(DeviceManager.QLDEVICE_GetDeviceEnabledInBios(1));
            assertFalse(DeviceManager.QLDEVICE_GetDeviceEnabledInBios(9));
        } finally {
            assertEquals(0, DeviceManager.QLDEVICE_Uninitialize());
        }
    }

    @Test
    void nativeMethodsFillABatterysRecord() throws IOException {
        assertEquals(0, DeviceManager.QLDEVICE_Initialize());
        try {
            BatteryInfo info = new BatteryInfo();
            assertEquals(0, DeviceManager.QLDEVICE_GetBatteryInfo(1, info));
            assertEquals("MAIN-6CELL-A", info.BatteryName);
            assertEquals("0027182818\0\0", info.BatteryID);
            assertEquals(Arrays.asList(4, 2, 900, 5120, 5200, 11418, -1200, 137, 304, 98, 20260131, 3),
                    Arrays.asList(info.Chemistry, info.PowerState, info.RemainingCapacity, info.FullChargedCapacity,
                            info.DesignedCapacity, info.Voltage, info.Rate, info.TotalChargeIndex, info.Temperature,
                            info.BatteryHealth, info.LastRecalibrationDate, info.EnvironmentStatus));

            BatteryInfo untouched = new BatteryInfo();
            untouched.BatteryName = "mine";
            untouched.Voltage = 7;
            assertRaises(IllegalArgumentException.class, "The argument device is invalid.",
                    () -> DeviceManager.QLDEVICE_GetBatteryInfo(3, untouched));
            assertEquals("mine", untouched.BatteryName);
            assertEquals(7, untouched.Voltage);
        } finally {
            DeviceManager.QLDEVICE_Uninitialize();
        }
    }

    @ParameterizedTest(name = "{0}")
    @CsvSource({
        "java.lang.IllegalArgumentException, -11, Invalid device check library parameter",
        "java.lang.IllegalStateException, -10, Device check library has not been initialized",
        "java.io.IOException, -12, Buffer overflow error",
        "java.lang.UnsupportedOperationException, -1, Unsupported OS",
        "java.lang.RuntimeException, -99, Unknown device check error"})
    void aFailureIsRaisedAsTheClassOfItsCode(Class<? extends Throwable> type, int status, String message)
            throws IOException {
        DeviceManager.QLDEVICE_Initialize();
        try {
            machine.command("probe answer HwProbe_GetDeviceInfo " + status);
            assertRaises(type, message, () -> DeviceManager.QLDEVICE_GetDeviceAvailable(1));
            // The next call has nothing of it.
            machine.command("probe answer HwProbe_GetDeviceInfo 0");
            assertTrue(DeviceManager.QLDEVICE_GetDeviceAvailable(1));
        } finally {
            DeviceManager.QLDEVICE_Uninitialize();
        }
    }

    @ParameterizedTest(name = "{0}")
    @CsvSource({
        "INVALID_ARGUMENT, -11, Invalid device check library parameter",
        "INVALID_STATE, -10, Device check library has not been initialized",
        "IO_ERROR, -12, Buffer overflow error",
        "OP_UNSUPPORTED, -3, Invalid device check library operation",
        "INTERNAL_ERROR, -99, Unknown device check error"})
    void anInventoryFailsWithCodeAndMessage(ResultCode code, int status, String message) {
        try (DeviceInventory inventory = DeviceInventory.open()) {
            machine.command("probe answer HwProbe_GetBatteryCurrentInfo " + status);
            assertFails(code, message, () -> inventory.battery(1));
        }
    }

    @Test
    void withoutInitialisationGettersAreRefusedAndTheEndIsQuiet() {
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, () -> DeviceManager.QLDEVICE_GetDeviceAvailable(1));
        assertRaises(IllegalStateException.class, NOT_INITIALIZED,
                () -> DeviceManager.QLDEVICE_GetBatteryInfo(1, new BatteryInfo()));
        assertEquals(ResultCode.INVALID_STATE.value(), DeviceManager.QLDEVICE_Uninitialize());
    }

    @Test
    void anInventoryTellsOfDevicesAndBatteries() {
        try (DeviceInventory inventory = DeviceInventory.open()) {
            assertEquals(Arrays.asList(1, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13), inventory.availableDevices());
            assertFalse(inventory.isPoweredOn(4));
            assertFalse(inventory.isEnabledInBios(9));
            assertTrue(inventory.isEnabledInBios(7));
            machine.command("probe device 2 available on");
            assertTrue(inventory.isAvailable(2));

            Battery battery = inventory.battery(1);
            assertEquals("MAIN-6CELL-A", battery.name());
            assertEquals("0027182818", battery.id());
            assertEquals(-1200, battery.rate());
            machine.command("probe battery 1 remaining_capacity 850");
            assertEquals(900, battery.remainingCapacity());
            assertEquals(850, inventory.battery(1).remainingCapacity());
            assertFails(ResultCode.INVALID_ARGUMENT, "The argument device is invalid. Unknown device.",
                    () -> inventory.isAvailable(16));
        }
    }

    @Test
    void severalInventoriesMayBeOpenAndAClosedOneRefuses() {
        DeviceInventory one = DeviceInventory.open();
        try (DeviceInventory other = DeviceInventory.open()) {
            one.close();
            one.close();
            assertTrue(other.isAvailable(1));
        }
        assertEquals(ResultCode.INVALID_STATE,
                assertThrows(QuarlinException.class, () -> one.isAvailable(1)).code());
    }
}
