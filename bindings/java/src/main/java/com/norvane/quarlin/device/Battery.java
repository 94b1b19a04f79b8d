// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.device;

/**
 * A battery as it was when it was asked for. Immutable; may be used on any thread.
 *
 * <p>The numbers are those of the maker's device-check library, unchanged. In which units and encodings it gives them
 * is its own affair: ask the maker's papers for the model.
 */
public final class Battery {
    private final String name;
    private final String id;
    private final int chemistry;
    private final int powerState;
    private final int remainingCapacity;
    private final int fullChargedCapacity;
    private final int designedCapacity;
    private final int voltage;
    private final int rate;
    private final int totalChargeIndex;
    private final int temperature;
    private final int health;
    private final int lastRecalibrationDate;
    private final int environmentStatus;

    private Battery(BatteryInfo info) {
        name = cut(info.BatteryName);
        id = cut(info.BatteryID);
        chemistry = info.Chemistry;
        powerState = info.PowerState;
        remainingCapacity = info.RemainingCapacity;
        fullChargedCapacity = info.FullChargedCapacity;
        designedCapacity = info.DesignedCapacity;
        voltage = info.Voltage;
        rate = info.Rate;
        totalChargeIndex = info.TotalChargeIndex;
        temperature = info.Temperature;
        health = info.BatteryHealth;
        lastRecalibrationDate = info.LastRecalibrationDate;
        environmentStatus = info.EnvironmentStatus;
    }

    static Battery of(BatteryInfo info) {
        return new Battery(info);
    }

    /** The record's texts have 12 characters, and those that are not in use are not always U+0000. */
    private static String cut(String text) {
        if (text == null) {
            return "";
        }
        int end = text.indexOf('\0');
        return end < 0 ? text : text.substring(0, end);
    }

    /**
     * The battery's name.
     *
     * @return at most 12 characters; never null
     */
    public String name() {
        return name;
    }

    /**
     * The battery's identifier.
     *
     * @return at most 12 characters; never null
     */
    public String id() {
        return id;
    }

    /**
     * Chemistry of the cells.
     *
     * @return the device-check library's number for it
     */
    public int chemistry() {
        return chemistry;
    }

    /**
     * Whether it charges or discharges.
     *
     * @return the device-check library's number for it
     */
    public int powerState() {
        return powerState;
    }

    /**
     * What is left in the battery.
     *
     * @return the capacity, in the device-check library's unit
     */
    public int remainingCapacity() {
        return remainingCapacity;
    }

    /**
     * What the battery holds when it is full.
     *
     * @return the capacity, in the device-check library's unit
     */
    public int fullChargedCapacity() {
        return fullChargedCapacity;
    }

    /**
     * What the battery held when it was new.
     *
     * @return the capacity, in the device-check library's unit
     */
    public int designedCapacity() {
        return designedCapacity;
    }

    /**
     * The battery's voltage.
     *
     * @return the voltage, in the device-check library's unit
     */
    public int voltage() {
        return voltage;
    }

    /**
     * How fast the battery charges or discharges.
     *
     * @return the rate, in the device-check library's unit
     */
    public int rate() {
        return rate;
    }

    /**
     * Index of the battery's charges so far.
     *
     * @return the device-check library's number for it
     */
    public int totalChargeIndex() {
        return totalChargeIndex;
    }

    /**
     * The battery's temperature.
     *
     * @return the temperature, in the device-check library's unit
     */
    public int temperature() {
        return temperature;
    }

    /**
     * How worn the battery is.
     *
     * @return the device-check library's number for it
     */
    public int health() {
        return health;
    }

    /**
     * When the battery was last recalibrated.
     *
     * @return the date, as the device-check library encodes it
     */
    public int lastRecalibrationDate() {
        return lastRecalibrationDate;
    }

    /**
     * State of the battery's surroundings.
     *
     * @return the device-check library's number for it
     */
    public int environmentStatus() {
        return environmentStatus;
    }

    /**
     * The battery as text.
     *
     * @return name, identifier, what is left and what it holds when it is full
     */
    @Override
    public String toString() {
        return name + " (" + id + "): " + remainingCapacity + " of " + fullChargedCapacity;
    }
}
