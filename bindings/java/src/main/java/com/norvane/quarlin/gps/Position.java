// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.gps;

import java.util.Locale;

/**
 * A position on the earth, as the receiver gives it: latitude, longitude and height of one moment. Immutable; may be
 * used on any thread.
 */
public final class Position {
    private final double latitude;
    private final double longitude;
    private final double altitude;

    /**
     * Makes a position.
     *
     * @param latitude  degrees, south negative
     * @param longitude degrees, west negative
     * @param altitude  metres above mean sea level
     */
    public Position(double latitude, double longitude, double altitude) {
        this.latitude = latitude;
        this.longitude = longitude;
        this.altitude = altitude;
    }

    static Position of(Coordinates coordinates) {
        return new Position(coordinates.d_fld_1, coordinates.d_fld_2, coordinates.d_fld_3);
    }

    /**
     * The latitude.
     *
     * @return degrees, south negative; 0 before the receiver's first position
     */
    public double latitude() {
        return latitude;
    }

    /**
     * The longitude.
     *
     * @return degrees, west negative; 0 before the receiver's first position
     */
    public double longitude() {
        return longitude;
    }

    /**
     * The height of the antenna.
     *
     * @return metres above mean sea level; 0 before the receiver's first position
     */
    public double altitude() {
        return altitude;
    }

    /**
     * Compares with another position.
     *
     * @param other any object, or null
     * @return whether it is a position with exactly these three numbers
     */
    @Override
    public boolean equals(Object other) {
        if (!(other instanceof Position)) {
            return false;
        }
        Position that = (Position) other;
        return Double.compare(latitude, that.latitude) == 0 && Double.compare(longitude, that.longitude) == 0
                && Double.compare(altitude, that.altitude) == 0;
    }

    /**
     * A hash of the three numbers.
     *
     * @return the hash
     */
    @Override
    public int hashCode() {
        return 31 * (31 * Double.hashCode(latitude) + Double.hashCode(longitude)) + Double.hashCode(altitude);
    }

    /**
     * The position as text, the same in every language.
     *
     * @return such as {@code "53.361337 -6.505620, 61.7 m"}
     */
    @Override
    public String toString() {
        return String.format(Locale.ROOT, "%.6f %.6f, %.1f m", latitude, longitude, altitude);
    }
}
