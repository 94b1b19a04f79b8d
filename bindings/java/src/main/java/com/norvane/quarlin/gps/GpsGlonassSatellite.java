// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.gps;

/** A satellite in view, as the native library hands it out. {@link Satellite} is easier to read. */
public final class GpsGlonassSatellite {
    /** Satellite number; -1 for a block that the receiver sent without one. */
    public int PRN;

    /** Degrees above the horizon; 0 when not given. */
    public int Elevation;

    /** Degrees from true north; 0 when not given. */
    public int Azimuth;

    /** Carrier to noise ratio in dB-Hz; 0 when not given. */
    public int SNR;

    /** 1 when it was among those used for the fix as its block arrived, else 0. */
    public int used;

    /** Made by the native library. */
    public GpsGlonassSatellite() {
    }
}
