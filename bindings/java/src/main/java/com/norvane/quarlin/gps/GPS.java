// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.gps;

import com.norvane.quarlin.internal.NativeLoader;
import java.io.IOException;

/**
 * The native methods of the GPS receiver, one for each function of the library's C interface. {@link GpsReceiver} is
 * made of them and is what an application wants.
 *
 * <p>A method that returns an {@code int} without further meaning returns 0 when it has done what its name says. A
 * failure is thrown: {@link IllegalArgumentException}, {@link IllegalStateException}, {@link IOException},
 * {@link UnsupportedOperationException}, {@link java.nio.BufferOverflowException} (its message is that of its cause),
 * or {@link RuntimeException} for all others.
 *
 * <p>Values are those of the receiver, as its sentences give them: 0 until the first sentence, then the last value that
 * was sent, also when the receiver has lost its fix.
 *
 * <p>Call QLGPS_Initialize, QLGPS_Uninitialize, QLGPS_Enable and QLGPS_Disable on one thread. All others may be called
 * on any thread while the receiver is read, also at once, but not while QLGPS_Initialize or QLGPS_Uninitialize runs.
 */
public final class GPS {
    static {
        NativeLoader.load();
    }

    private GPS() {
    }

    /**
     * Chooses the port and checks that it is a serial port. The port is not opened. While the family is initialised, a
     * further call succeeds and changes nothing, whatever the port.
     *
     * @param port 1 to 255, 7 for COM7; Windows opens by these names COM1 to COM9 only
     * @return 0
     * @throws IllegalArgumentException when the number is out of range or the machine has no such serial port
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLGPS_Initialize(int port) throws IOException;

    /**
     * Disables the receiver when it is enabled, and forgets all that was received.
     *
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLGPS_Uninitialize() throws IOException;

    /**
     * Opens the port and begins to read on a thread of the library. Succeeds at once when already enabled.
     *
     * @return 0
     * @throws IllegalStateException when the port is not there, is taken, or refuses its settings
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLGPS_Enable() throws IOException;

    /**
     * Closes the port and waits until the reading thread has ended, up to 1.5 s while the line is silent. Values stay.
     *
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLGPS_Disable() throws IOException;

    /**
     * Asks whether the receiver is sending.
     *
     * @return true once any line, even a bad one, has come since it was enabled; false after it was disabled
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native boolean QLGPS_IsEnabled() throws IOException;

    /**
     * Asks for the quality of the fix.
     *
     * @return 0 no fix, 1 GPS, 2 differential GPS, 3 any other
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLGPS_GetFixQuality() throws IOException;

    /**
     * Asks whether there is a fix now.
     *
     * @return 1 with a fix of two or three dimensions, else 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLGPS_GetFixStatus() throws IOException;

    /**
     * Asks how many satellites are in view, GPS and GLONASS, as counted at this moment. It may be ahead of what
     * {@link #QLGPS_GetSatellites} gives.
     *
     * @return 0 to 150
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLGPS_GetMaxSat() throws IOException;

    /**
     * Asks how many satellites the fix is made of.
     *
     * @return 0 to 24
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLGPS_GetSatellitesUsedForFix() throws IOException;

    /**
     * Asks for the course over ground.
     *
     * @return degrees from true north
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native double QLGPS_GetBearing() throws IOException;

    /**
     * Asks for the speed over ground.
     *
     * @return knots
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native double QLGPS_GetSpeed() throws IOException;

    /**
     * Asks for the horizontal dilution of precision.
     *
     * @return the dilution, without unit
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native double QLGPS_GetHDOP() throws IOException;

    /**
     * Asks for the dilution of precision of the position.
     *
     * @return the dilution, without unit
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native double QLGPS_GetPDOP() throws IOException;

    /**
     * Asks for the vertical dilution of precision.
     *
     * @return the dilution, without unit
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native double QLGPS_GetVDOP() throws IOException;

    /**
     * Asks for time and date, UTC.
     *
     * @return such as {@code "9:27:50 19/11/2094"}, the hour without leading zero; a half that has not come yet is
     *         missing, and the text is empty before the first
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native String QLGPS_GetTimeStamp() throws IOException;

    /**
     * Asks for the position.
     *
     * @param coordinates receives it; unchanged when the call fails; not null
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLGPS_GetCoordinates(Coordinates coordinates) throws IOException;

    /**
     * Asks for the satellites in view: the GPS satellites, then the GLONASS satellites.
     *
     * @param count how many there is room for; 150 are always enough, and a negative number counts as 0
     * @return {@code count} satellites; those beyond the published ones are all 0
     * @throws java.nio.BufferOverflowException when there are more than {@code count}
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native GpsGlonassSatellite[] QLGPS_GetSatellites(int count) throws IOException;
}
