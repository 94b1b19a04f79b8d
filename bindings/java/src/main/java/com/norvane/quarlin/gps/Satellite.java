// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.gps;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/** A satellite in view. Immutable; may be used on any thread. */
public final class Satellite {
    private final int number;
    private final int elevation;
    private final int azimuth;
    private final int signal;
    private final boolean used;

    /**
     * Makes a satellite.
     *
     * @param number    its number; -1 when the receiver gives none
     * @param elevation degrees above the horizon
     * @param azimuth   degrees from true north
     * @param signal    carrier to noise ratio in dB-Hz
     * @param used      whether it is used for the fix
     */
    public Satellite(int number, int elevation, int azimuth, int signal, boolean used) {
        this.number = number;
        this.elevation = elevation;
        this.azimuth = azimuth;
        this.signal = signal;
        this.used = used;
    }

    /**
     * How many were filled is not told: those behind the last one are all 0, which no satellite is.
     */
    static List<Satellite> published(GpsGlonassSatellite[] records) {
        int count = records.length;
        while (count > 0 && isEmpty(records[count - 1])) {
            --count;
        }
        List<Satellite> satellites = new ArrayList<>(count);
        for (int i = 0; i < count; ++i) {
            GpsGlonassSatellite record = records[i];
            satellites.add(
                    new Satellite(record.PRN, record.Elevation, record.Azimuth, record.SNR, record.used == 1));
        }
        return Collections.unmodifiableList(satellites);
    }

    private static boolean isEmpty(GpsGlonassSatellite record) {
        return (record.PRN | record.Elevation | record.Azimuth | record.SNR | record.used) == 0;
    }

    /**
     * The satellite's number.
     *
     * @return the number; -1 when the receiver gave none
     */
    public int number() {
        return number;
    }

    /**
     * The satellite's elevation.
     *
     * @return degrees above the horizon; 0 when not given
     */
    public int elevation() {
        return elevation;
    }

    /**
     * The satellite's azimuth.
     *
     * @return degrees from true north; 0 when not given
     */
    public int azimuth() {
        return azimuth;
    }

    /**
     * The strength of the satellite's signal.
     *
     * @return carrier to noise ratio in dB-Hz; 0 when not given
     */
    public int signal() {
        return signal;
    }

    /**
     * Whether the satellite was among those used for the fix as the receiver told of it.
     *
     * @return whether it was
     */
    public boolean isUsed() {
        return used;
    }

    /**
     * Compares with another satellite.
     *
     * @param other any object, or null
     * @return whether it is a satellite with the same values
     */
    @Override
    public boolean equals(Object other) {
        if (!(other instanceof Satellite)) {
            return false;
        }
        Satellite that = (Satellite) other;
        return number == that.number && elevation == that.elevation && azimuth == that.azimuth
                && signal == that.signal && used == that.used;
    }

    /**
     * A hash of the values.
     *
     * @return the hash
     */
    @Override
    public int hashCode() {
        int hash = number;
        hash = 31 * hash + elevation;
        hash = 31 * hash + azimuth;
        hash = 31 * hash + signal;
        return 31 * hash + (used ? 1 : 0);
    }

    /**
     * The satellite as text.
     *
     * @return such as {@code "satellite 10: elevation 63, azimuth 137, 17 dB-Hz, used"}
     */
    @Override
    public String toString() {
        return "satellite " + number + ": elevation " + elevation + ", azimuth " + azimuth + ", " + signal + " dB-Hz"
                + (used ? ", used" : "");
    }
}
