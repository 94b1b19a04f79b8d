// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.gps;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.internal.Family;
import com.norvane.quarlin.internal.NativeLoader;
import com.norvane.quarlin.internal.Session;
import java.time.Instant;
import java.util.List;
import java.util.Optional;

/**
 * The GPS receiver on a serial port.
 *
 * <pre>{@code
 * try (GpsReceiver receiver = GpsReceiver.open(3)) {
 *     receiver.enable();
 *     ...
 *     if (receiver.fixQuality() != FixQuality.NONE) {
 *         System.out.println(receiver.position());
 *     }
 * }
 * }</pre>
 *
 * <p>Values are those of the receiver, from the last sentence that carried them: 0 or empty before the first, and no
 * newer when the receiver has lost its fix or is unplugged. Compare {@link #timeStamp()} with what it was some seconds
 * ago to see whether the receiver is still there; when it is not, {@link #disable()}, then {@link #enable()} once a
 * second until it succeeds. Nothing is called back: ask once or twice a second.
 *
 * <p>May be used on any thread. Questions may overlap; opening, enabling, disabling and closing wait for the questions
 * in progress and keep others waiting. One question sees a sentence of the receiver wholly or not at all; two questions
 * may see two sentences.
 *
 * <p>Every method but {@link #close()} throws {@link QuarlinException} with result code 2 (invalid state) when the
 * receiver is closed.
 */
public final class GpsReceiver implements AutoCloseable {
    /** More than the library ever tells of. */
    private static final int MOST_SATELLITES = 150;

    private static final Family FAMILY = Family.single("GPS receiver");

    private final Session session;

    private GpsReceiver(Session session) {
        this.session = session;
    }

    /**
     * Chooses the port and checks that it is a serial port. The port is not opened before {@link #enable()}.
     *
     * @param port 1 to 255, 7 for COM7; Windows opens by these names COM1 to COM9 only
     * @return the receiver, disabled; to be closed
     * @throws QuarlinException 1 when the number is out of range or the machine has no such serial port; 2 when a
     *                          receiver is open in this process already; 5 when the system cannot tell
     * @throws UnsatisfiedLinkError when the native library cannot be loaded; the message says where it was looked for
     */
    public static GpsReceiver open(int port) {
        NativeLoader.load();
        return new GpsReceiver(FAMILY.open(() -> GPS.QLGPS_Initialize(port)));
    }

    /**
     * Opens the port and begins to read. Does nothing when already enabled.
     *
     * @throws QuarlinException 2 when the port is not there, is taken by another program or refuses its settings
     */
    public void enable() {
        session.change(GPS::QLGPS_Enable);
    }

    /**
     * Closes the port, which takes up to 1.5 s while the line is silent. Values stay. Does nothing when not enabled.
     *
     * @throws QuarlinException 2 when closed
     */
    public void disable() {
        session.change(GPS::QLGPS_Disable);
    }

    /**
     * Asks whether the receiver is sending.
     *
     * @return true once any line, even a bad one, has come since it was enabled, also when it has fallen silent since
     * @throws QuarlinException 2 when closed
     */
    public boolean isEnabled() {
        return session.ask(GPS::QLGPS_IsEnabled);
    }

    /**
     * Asks for the position. It came in the same sentence as {@link #fixQuality()}.
     *
     * @return the position; never null, all 0 before the first
     * @throws QuarlinException 2 when closed
     */
    public Position position() {
        return session.ask(() -> {
            Coordinates coordinates = new Coordinates();
            GPS.QLGPS_GetCoordinates(coordinates);
            return Position.of(coordinates);
        });
    }

    /**
     * Asks for the quality of the position.
     *
     * @return the quality; never null
     * @throws QuarlinException 2 when closed
     */
    public FixQuality fixQuality() {
        return FixQuality.of(session.<Integer>ask(GPS::QLGPS_GetFixQuality));
    }

    /**
     * Asks whether the receiver has a fix now.
     *
     * @return true with a fix of two or three dimensions
     * @throws QuarlinException 2 when closed
     */
    public boolean fixStatus() {
        return session.<Integer>ask(GPS::QLGPS_GetFixStatus) != 0;
    }

    /**
     * Asks for the speed over ground.
     *
     * @return knots
     * @throws QuarlinException 2 when closed
     */
    public double speed() {
        return session.ask(GPS::QLGPS_GetSpeed);
    }

    /**
     * Asks for the course over ground.
     *
     * @return degrees from true north
     * @throws QuarlinException 2 when closed
     */
    public double bearing() {
        return session.ask(GPS::QLGPS_GetBearing);
    }

    /**
     * Asks for the horizontal dilution of precision.
     *
     * @return the dilution, without unit; the smaller, the better
     * @throws QuarlinException 2 when closed
     */
    public double hdop() {
        return session.ask(GPS::QLGPS_GetHDOP);
    }

    /**
     * Asks for the dilution of precision of the position.
     *
     * @return the dilution, without unit; the smaller, the better
     * @throws QuarlinException 2 when closed
     */
    public double pdop() {
        return session.ask(GPS::QLGPS_GetPDOP);
    }

    /**
     * Asks for the vertical dilution of precision.
     *
     * @return the dilution, without unit; the smaller, the better
     * @throws QuarlinException 2 when closed
     */
    public double vdop() {
        return session.ask(GPS::QLGPS_GetVDOP);
    }

    /**
     * Asks how many satellites are in view, GPS and GLONASS, as counted at this moment. It may be ahead of
     * {@link #satellites()} while a new list arrives.
     *
     * @return 0 to 150
     * @throws QuarlinException 2 when closed
     */
    public int satellitesInView() {
        return session.ask(GPS::QLGPS_GetMaxSat);
    }

    /**
     * Asks how many satellites the fix is made of.
     *
     * @return 0 to 24
     * @throws QuarlinException 2 when closed
     */
    public int satellitesUsed() {
        return session.ask(GPS::QLGPS_GetSatellitesUsedForFix);
    }

    /**
     * Asks for the satellites in view.
     *
     * @return the GPS satellites, then the GLONASS satellites; never null, not to be changed
     * @throws QuarlinException 2 when closed
     */
    public List<Satellite> satellites() {
        return Satellite.published(session.ask(() -> GPS.QLGPS_GetSatellites(MOST_SATELLITES)));
    }

    /**
     * Asks for time and date as text.
     *
     * @return UTC, such as {@code "9:27:50 19/11/2094"}, the hour without leading zero; a half that has not come yet is
     *         missing; never null, and empty before the first
     * @throws QuarlinException 2 when closed
     */
    public String timeStamp() {
        return session.ask(GPS::QLGPS_GetTimeStamp);
    }

    /**
     * Asks for time and date.
     *
     * @return the time; nothing while a half of it has not come, or when the receiver's clock or calendar gives what
     *         there is not, a leap second included
     * @throws QuarlinException 2 when closed
     */
    public Optional<Instant> time() {
        return TimeText.parse(timeStamp());
    }

    /**
     * Disables the receiver when it is enabled and forgets all that was received. Does nothing when closed already.
     *
     * @throws QuarlinException when the library reports a failure; the receiver is closed all the same
     */
    @Override
    public void close() {
        session.close(GPS::QLGPS_Uninitialize);
    }
}
