// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.device;

/**
 * All that is known of a battery, as the native library hands it out. {@link Battery} is easier to read.
 *
 * <p>The numbers are those of the maker's device-check library, unchanged. In which units and encodings it gives them
 * is its own affair: ask the maker's papers for the model.
 */
public final class BatteryInfo {
    /** The name: always 12 characters, of which those from the first U+0000 on mean nothing. */
    public String BatteryName;

    /** Chemistry of the cells. */
    public int Chemistry;

    /** Whether it charges or discharges. */
    public int PowerState;

    /** What is left in it now. */
    public int RemainingCapacity;

    /** What it holds when it is full. */
    public int FullChargedCapacity;

    /** What it held when it was new. */
    public int DesignedCapacity;

    /** Its voltage. */
    public int Voltage;

    /** How fast it charges or discharges. */
    public int Rate;

    /** Index of its charges so far. */
    public int TotalChargeIndex;

    /** Its temperature. */
    public int Temperature;

    /** How worn it is. */
    public int BatteryHealth;

    /** The identifier: always 12 characters, of which those from the first U+0000 on mean nothing. */
    public String BatteryID;

    /** When it was last recalibrated. */
    public int LastRecalibrationDate;

    /** State of its surroundings. */
    public int EnvironmentStatus;

    /** Makes an empty record. */
    public BatteryInfo() {
    }
}
