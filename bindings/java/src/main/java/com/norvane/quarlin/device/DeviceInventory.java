// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.device;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.internal.Family;
import com.norvane.quarlin.internal.NativeLoader;
import com.norvane.quarlin.internal.Session;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/**
 * The computer's built-in devices and its batteries.
 *
 * <pre>{@code
 * try (DeviceInventory inventory = DeviceInventory.open()) {
 *     for (int device : inventory.availableDevices()) {
 *         System.out.println(device + (inventory.isPoweredOn(device) ? " on" : " off"));
 *     }
 *     System.out.println(inventory.battery(1));
 * }
 * }</pre>
 *
 * <p>Devices are numbers from 1 to 15, batteries are 1 and 2. Which device a number stands for is the affair of the
 * maker's device-check library: ask the maker's papers for the model. Each question asks that library anew.
 *
 * <p>May be used on any thread; calls take turns, also with those that look for the barcode scanner, which can take two
 * seconds and more. Any number of inventories may be open at once, each to be closed.
 * Every method but {@link #close()} throws {@link QuarlinException} with result code 2 (invalid state) when its
 * inventory is closed. The questions throw it with 1 (invalid argument) when the number is out of range, and with 1 to
 * 5 for what the device-check library reports.
 */
public final class DeviceInventory implements AutoCloseable {
    /** Number of the first device. */
    public static final int FIRST_DEVICE = 1;

    /** Number of the last device that there may be. */
    public static final int LAST_DEVICE = 15;

    /** Number of the first battery. */
    public static final int FIRST_BATTERY = 1;

    /** Number of the last battery that there may be. */
    public static final int LAST_BATTERY = 2;

    private static final Family FAMILY = Family.DEVICE_INVENTORY;

    private final Session session;

    private DeviceInventory(Session session) {
        this.session = session;
    }

    /**
     * Loads the maker's device-check library and starts it, when that has not happened yet.
     *
     * @return the inventory; to be closed
     * @throws QuarlinException 5 when the device-check library is not found or lacks a function; 1 to 5 when it does
     *                          not start
     * @throws UnsatisfiedLinkError when the native library cannot be loaded; the message says where it was looked for
     */
    public static DeviceInventory open() {
        NativeLoader.load();
        return new DeviceInventory(FAMILY.open(DeviceManager::QLDEVICE_Initialize));
    }

    /**
     * Asks whether the computer has a device.
     *
     * @param device 1 to 15
     * @return whether it has
     * @throws QuarlinException as told above
     */
    public boolean isAvailable(int device) {
        return session.change(() -> DeviceManager.QLDEVICE_GetDeviceAvailable(device));
    }

    /**
     * Asks whether a device is powered on.
     *
     * @param device 1 to 15
     * @return whether it is
     * @throws QuarlinException as told above
     */
    public boolean isPoweredOn(int device) {
        return session.change(() -> DeviceManager.QLDEVICE_GetDevicePoweredOn(device));
    }

    /**
     * Asks whether a device is enabled in the BIOS. A device without power counts as not enabled, whatever the BIOS
     * says.
     *
     * @param device 1 to 15
     * @return whether it is
     * @throws QuarlinException as told above
     */
    public boolean isEnabledInBios(int device) {
        return session.change(() -> DeviceManager.QLDEVICE_GetDeviceEnabledInBios(device));
    }

    /**
     * Asks which devices the computer has.
     *
     * @return their numbers, from the lowest; never null, not to be changed
     * @throws QuarlinException as told above
     */
    public List<Integer> availableDevices() {
        return session.change(() -> {
            List<Integer> devices = new ArrayList<>();
            for (int device = FIRST_DEVICE; device <= LAST_DEVICE; ++device) {
                if (DeviceManager.QLDEVICE_GetDeviceAvailable(device)) {
                    devices.add(device);
                }
            }
            return Collections.unmodifiableList(devices);
        });
    }

    /**
     * Asks for the state of a battery now.
     *
     * @param battery 1 or 2
     * @return the battery; never null
     * @throws QuarlinException as told above
     */
    public Battery battery(int battery) {
        return session.change(() -> {
            BatteryInfo info = new BatteryInfo();
            DeviceManager.QLDEVICE_GetBatteryInfo(battery, info);
            return Battery.of(info);
        });
    }

    /**
     * Ends the inventory; the last one stops and unloads the device-check library. Does nothing when closed already.
     *
     * @throws QuarlinException 1 to 5 when the device-check library reports a failure as it is stopped; the inventory
     *                          is closed all the same
     */
    @Override
    public void close() {
        session.close(() -> refuseFailure(DeviceManager.QLDEVICE_Uninitialize()));
    }

    /** This one native method of the family returns its code and throws nothing. */
    static int refuseFailure(int code) {
        if (code != 0) {
            throw new QuarlinException(ResultCode.of(code), "The device-check library did not stop properly.");
        }
        return code;
    }
}
