// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.device;

import com.norvane.quarlin.internal.NativeLoader;
import java.io.IOException;

/**
 * The native methods of the device inventory, one for each function of the library's C interface.
 * {@link DeviceInventory} is made of them and is what an application wants.
 *
 * <p>A method that returns an {@code int} without further meaning returns 0 when it has done what its name says. A
 * failure is thrown: {@link IllegalArgumentException}, {@link IllegalStateException}, {@link IOException},
 * {@link UnsupportedOperationException}, {@link java.nio.BufferOverflowException} (its message is that of its cause),
 * or {@link RuntimeException} for all others.
 *
 * <p>Which device each number stands for is the affair of the maker's device-check library.
 *
 * <p>No method takes a lock. Call QLDEVICE_Initialize and QLDEVICE_Uninitialize on one thread, and not while another
 * method runs; the others may be called on any thread as far as the device-check library allows.
 */
public final class DeviceManager {
    static {
        NativeLoader.load();
    }

    private DeviceManager() {
    }

    /**
     * Loads the maker's device-check library and starts it. While initialised, a further call only counts.
     *
     * @return 0
     * @throws IOException when the device-check library reports an overflow of its buffer
     */
    public static native int QLDEVICE_Initialize() throws IOException;

    /**
     * Undoes one initialisation; the last one stops and unloads the device-check library. Throws nothing: the failure's
     * text stays with the thread, where Java has no way to it.
     *
     * @return 0, or the code of the failure
     */
    public static native int QLDEVICE_Uninitialize();

    /**
     * Asks whether the computer has a device.
     *
     * @param device 1 to 15
     * @return whether it is
     * @throws IOException when the device-check library reports an overflow of its buffer
     */
    public static native boolean QLDEVICE_GetDeviceAvailable(int device) throws IOException;

    /**
     * Asks whether a device is enabled in the BIOS. A device without power counts as not enabled, whatever the BIOS
     * says.
     *
     * @param device 1 to 15
     * @return whether it is
     * @throws IOException when the device-check library reports an overflow of its buffer
     */
    public static native boolean QLDEVICE_GetDeviceEnabledInBios(int device) throws IOException;

    /**
     * Asks whether a device is powered on.
     *
     * @param device 1 to 15
     * @return whether it is
     * @throws IOException when the device-check library reports an overflow of its buffer
     */
    public static native boolean QLDEVICE_GetDevicePoweredOn(int device) throws IOException;

    /**
     * Asks for all that is known of a battery.
     *
     * @param battery 1 or 2
     * @param info    receives it; unchanged when the call fails; not null
     * @return 0
     * @throws IOException when the device-check library reports an overflow of its buffer
     */
    public static native int QLDEVICE_GetBatteryInfo(int battery, BatteryInfo info) throws IOException;
}
