// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

/** A scanner in the list, as the native library hands it out. {@link BarcodeDevice} is easier to read. */
public final class BarcodeDeviceInfo {
    /** The scanner's name. */
    public String deviceName;

    /** The scanner's place in the list, 0 for the first. */
    public int index;

    /** 1 the machine's own scanner, 0 an external one. */
    public int iDeviceType;

    /** How many scanners the list has. */
    public int iInternalNoofDevices;

    /** Made by the native library. */
    public BarcodeDeviceInfo() {
    }
}
