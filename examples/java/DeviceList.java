// SPDX-License-Identifier: Apache-2.0

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.device.Battery;
import com.norvane.quarlin.device.DeviceInventory;

/** Lists the built-in devices and the batteries. */
public final class DeviceList {
    private DeviceList() {
    }

    /**
     * Exit status: 0 after the list, 1 after an error.
     *
     * @param arguments none
     */
    public static void main(String[] arguments) {
        try (DeviceInventory inventory = DeviceInventory.open()) {
            for (int device : inventory.availableDevices()) {
                System.out.println("Device " + device + ": " + (inventory.isPoweredOn(device) ? "on" : "off")
                        + (inventory.isEnabledInBios(device) ? "" : ", not enabled in the BIOS"));
            }
            for (int number = DeviceInventory.FIRST_BATTERY; number <= DeviceInventory.LAST_BATTERY; number++) {
                // Which units these are is the affair of the machine's maker.
                Battery battery = inventory.battery(number);
                System.out.println("Battery " + number + ": " + battery + ", " + battery.designedCapacity()
                        + " when it was new");
            }
        } catch (QuarlinException failure) {
            System.err.println(failure.code() + ": " + failure.getMessage());
            System.exit(1);
        }
    }
}
