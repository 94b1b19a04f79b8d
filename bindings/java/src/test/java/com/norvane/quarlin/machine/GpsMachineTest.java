// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import static com.norvane.quarlin.machine.Failures.assertFails;
import static com.norvane.quarlin.machine.Failures.assertRaises;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.gps.Coordinates;
import com.norvane.quarlin.gps.FixQuality;
import com.norvane.quarlin.gps.GPS;
import com.norvane.quarlin.gps.GpsGlonassSatellite;
import com.norvane.quarlin.gps.GpsReceiver;
import com.norvane.quarlin.gps.Position;
import com.norvane.quarlin.gps.Satellite;
import java.io.IOException;
import java.nio.BufferOverflowException;
import java.time.Instant;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import org.junit.jupiter.api.AfterAll;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Tag;
import org.junit.jupiter.api.Test;

/** The GPS receiver at the far end of a serial cable. */
@Tag("machine")
class GpsMachineTest {
    private static final String NOT_INITIALIZED = "GPS has not been initialized.";
    // A port that is known and not there.
    private static final int ABSENT_PORT = 2;
    private static final int UNKNOWN_PORT = 9;

    private static Machine machine;
    private static int port;

    @BeforeAll
    static void play() throws IOException {
        machine = new Machine();
        port = machine.turns().cable();
        machine.play(
                "start = 2026-05-12T08:30:00Z",
                "[[device]]",
                "kind = \"gps\"",
                "port = \"COM" + (port + 1) + "\"",
                "rate = 20",
                "cold_start = 0",
                "only_2d = 0",
                "position_noise = 0",
                "[device.track]",
                "start = [-33.8568, 151.2153]",
                "altitude = 50",
                "speed_kmh = 0");
    }

    @AfterAll
    static void end() throws IOException {
        machine.close();
    }

    @AfterEach
    void speakAgain() {
        machine.command("gps silence off");
    }

    /** The GPS read by native methods. A receiver that sends something lets it be disabled without delay. */
    private static final class Reading implements AutoCloseable {
        Reading() throws IOException {
            machine.command("gps silence on");
            assertEquals(0, GPS.QLGPS_Initialize(port));
            assertEquals(0, GPS.QLGPS_Enable());
        }

        void send(String text) {
            int checksum = 0;
            for (char character : text.toCharArray()) {
                checksum ^= character;
            }
            machine.command(String.format(Locale.ROOT, "gps send $%s*%02X", text, checksum));
        }

        /** Returns when everything that was sent before has been taken in. */
        void settle(double speed) throws Exception {
            send(String.format(Locale.ROOT, "GPRMC,,,,,,,%.3f", speed));
            Wait.until("the speed " + speed, () -> GPS.QLGPS_GetSpeed() == speed);
        }

        void sendFullReport() {
            send("GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,");
            send("GPGSA,A,3,10,07,05,02,29,04,08,13,,,,,1.72,1.03,1.38");
            send("GPGSV,2,1,06,10,63,137,17,07,61,098,15,05,59,290,20,08,54,157,30");
            send("GPGSV,2,2,06,02,39,223,19,13,28,070,17");
            send("GLGSV,1,1,02,65,40,157,19,,,,");
            send("GPRMC,092750.000,A,5321.6802,N,00630.3372,W,0.5,54.7,191194,,,A");
        }

        @Override
        public void close() throws IOException {
            machine.command("gps silence off");
            assertEquals(0, GPS.QLGPS_Disable());
            assertEquals(0, GPS.QLGPS_Uninitialize());
        }
    }

    private static String text(GpsGlonassSatellite[] satellites) {
        List<String> texts = new ArrayList<>();
        for (GpsGlonassSatellite one : satellites) {
            texts.add(one.PRN + " " + one.Elevation + " " + one.Azimuth + " " + one.SNR + " " + one.used);
        }
        return texts.toString();
    }

    @Test
    void nativeMethodsGiveEveryValueThatTheReceiverSends() throws Exception {
        try (Reading reading = new Reading()) {
            reading.sendFullReport();
            reading.settle(12);
            Coordinates coordinates = new Coordinates();
            assertEquals(0, GPS.QLGPS_GetCoordinates(coordinates));
            assertEquals(53.361337, coordinates.d_fld_1, 5e-7);
            assertEquals(-6.505620, coordinates.d_fld_2, 5e-7);
            assertEquals(61.7, coordinates.d_fld_3);
            assertEquals(1, GPS.QLGPS_GetFixQuality());
            assertEquals(1, GPS.QLGPS_GetFixStatus());
            assertEquals(8, GPS.QLGPS_GetSatellitesUsedForFix());
            assertEquals(8, GPS.QLGPS_GetMaxSat());
            assertEquals(1.72, GPS.QLGPS_GetPDOP());
            assertEquals(1.03, GPS.QLGPS_GetHDOP());
            assertEquals(1.38, GPS.QLGPS_GetVDOP());
            assertEquals(12, GPS.QLGPS_GetSpeed());
            assertEquals(54.7, GPS.QLGPS_GetBearing());
            assertEquals("9:27:50 19/11/2094", GPS.QLGPS_GetTimeStamp());
            assertTrue(GPS.QLGPS_IsEnabled());
        }
    }

    @Test
    void nativeMethodsListTheSatellitesInView() throws Exception {
        try (Reading reading = new Reading()) {
            reading.sendFullReport();
            reading.settle(13);
            String published = "10 63 137 17 1, 7 61 98 15 1, 5 59 290 20 1, 8 54 157 30 1, 2 39 223 19 1, "
                    + "13 28 70 17 1, 65 40 157 19 0, -1 0 0 0 0";
            assertEquals("[" + published + "]", text(GPS.QLGPS_GetSatellites(8)));
            assertEquals("[" + published + ", 0 0 0 0 0, 0 0 0 0 0]", text(GPS.QLGPS_GetSatellites(10)));

            // Java's own exception has no constructor with a message: its cause has it.
            for (int tooFew : new int[] {7, 0, -1}) {
                BufferOverflowException thrown =
                        assertThrows(BufferOverflowException.class, () -> GPS.QLGPS_GetSatellites(tooFew));
                assertEquals("Buffer size too small", thrown.getCause().getMessage());
            }
            // More than an array can have: the VM refuses it, and the library needs no memory for it.
            assertThrows(OutOfMemoryError.class, () -> GPS.QLGPS_GetSatellites(Integer.MAX_VALUE));
            assertEquals("[" + published + "]", text(GPS.QLGPS_GetSatellites(8)));
        }
    }

    @Test
    void withoutInitialisationEveryNativeMethodIsRefused() {
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_Uninitialize);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_Enable);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_Disable);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_IsEnabled);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_GetFixQuality);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_GetFixStatus);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_GetMaxSat);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_GetSatellitesUsedForFix);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_GetBearing);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_GetSpeed);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_GetHDOP);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_GetPDOP);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_GetVDOP);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, GPS::QLGPS_GetTimeStamp);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED,
                () -> GPS.QLGPS_GetCoordinates(new Coordinates()));
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, () -> GPS.QLGPS_GetSatellites(10));
    }

    @Test
    void aPortThatIsNoneIsRefused() {
        assertRaises(IllegalArgumentException.class, "COM port value is out of bounds",
                () -> GPS.QLGPS_Initialize(300));
        assertRaises(IllegalArgumentException.class, "Incorrect COM port", () -> GPS.QLGPS_Initialize(UNKNOWN_PORT));
        assertFails(ResultCode.INVALID_ARGUMENT, "Incorrect COM port", () -> GpsReceiver.open(UNKNOWN_PORT));
    }

    @Test
    void aPortThatIsAbsentCannotBeEnabled() {
        try (GpsReceiver receiver = GpsReceiver.open(ABSENT_PORT)) {
            QuarlinException thrown = assertThrows(QuarlinException.class, receiver::enable);
            assertEquals(ResultCode.INVALID_STATE, thrown.code());
            assertEquals(IllegalStateException.class, thrown.getCause().getClass());
            assertTrue(thrown.getMessage().startsWith("CreateFile failed"), thrown::toString);
            assertFalse(receiver.isEnabled());
        }
    }

    @Test
    void aReceiverTellsWhereTheScenarioIs() throws Exception {
        try (GpsReceiver receiver = GpsReceiver.open(port)) {
            receiver.enable();
            Wait.until("a fix", receiver::fixStatus);
            Wait.until("satellites", () -> !receiver.satellites().isEmpty());
            Wait.until("a time", () -> receiver.time().isPresent());
            Position position = receiver.position();
            assertEquals(-33.8568, position.latitude(), 1e-4);
            assertEquals(151.2153, position.longitude(), 1e-4);
            assertEquals(50, position.altitude(), 5);
            assertEquals(FixQuality.GPS, receiver.fixQuality());
            assertTrue(receiver.isEnabled());
            assertTrue(receiver.satellitesUsed() >= 4);
            for (Satellite satellite : receiver.satellites()) {
                assertTrue(satellite.elevation() >= 0 && satellite.elevation() <= 90, satellite::toString);
                assertTrue(satellite.azimuth() >= 0 && satellite.azimuth() < 360, satellite::toString);
            }
            assertTrue(receiver.satellites().stream().anyMatch(Satellite::isUsed));
            assertEquals(0, receiver.speed(), 0.1);
            Instant start = Instant.parse("2026-05-12T08:30:00Z");
            Instant time = receiver.time().get();
            assertTrue(!time.isBefore(start) && time.isBefore(start.plusSeconds(3600)), time::toString);
            receiver.disable();
            assertFalse(receiver.isEnabled());
            // What came last stays.
            assertEquals(-33.8568, receiver.position().latitude(), 1e-4);
        }
    }

    @Test
    void aClosedReceiverRefusesAndItsPortCanBeOpenedAgain() throws Exception {
        GpsReceiver first = GpsReceiver.open(port);
        first.enable();
        first.close();
        first.close();
        assertEquals(ResultCode.INVALID_STATE,
                assertThrows(QuarlinException.class, first::position).code());
        try (GpsReceiver second = GpsReceiver.open(port)) {
            second.enable();
            Wait.until("the first line", second::isEnabled);
        }
    }
}
