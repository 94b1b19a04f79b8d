// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.gps;

/** A position, as the native library hands it out. {@link Position} is easier to read. */
public final class Coordinates {
    /** Latitude in degrees, south negative. */
    public double d_fld_1;

    /** Longitude in degrees, west negative. */
    public double d_fld_2;

    /** The antenna's height in metres above mean sea level. */
    public double d_fld_3;

    /** Makes a record of zeros. */
    public Coordinates() {
    }
}
