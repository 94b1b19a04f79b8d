// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import java.util.Objects;

/** A scanner in the list. Immutable; two are equal when all of their values are. */
public final class BarcodeDevice {
    private final int index;
    private final String name;
    private final BarcodeDeviceType type;

    BarcodeDevice(int index, String name, BarcodeDeviceType type) {
        this.index = index;
        this.name = Objects.requireNonNull(name);
        this.type = Objects.requireNonNull(type);
    }

    static BarcodeDevice of(BarcodeDeviceInfo info) {
        return new BarcodeDevice(info.index, info.deviceName == null ? "" : info.deviceName,
                BarcodeDeviceType.of(info.iDeviceType));
    }

    /**
     * The scanner's place in the list.
     *
     * @return 0 for the first
     */
    public int index() {
        return index;
    }

    /**
     * The scanner's name.
     *
     * @return such as {@code "Intermec EA30"}; never null
     */
    public String name() {
        return name;
    }

    /**
     * Whose the scanner is.
     *
     * @return the type; never null
     */
    public BarcodeDeviceType type() {
        return type;
    }

    @Override
    public boolean equals(Object other) {
        return other instanceof BarcodeDevice && index == ((BarcodeDevice) other).index
                && name.equals(((BarcodeDevice) other).name) && type == ((BarcodeDevice) other).type;
    }

    @Override
    public int hashCode() {
        return Objects.hash(index, name, type);
    }

    /**
     * For people: place, name and type.
     *
     * @return such as {@code "0: Intermec EA30 (BUILT_IN)"}
     */
    @Override
    public String toString() {
        return index + ": " + name + " (" + type + ")";
    }
}
