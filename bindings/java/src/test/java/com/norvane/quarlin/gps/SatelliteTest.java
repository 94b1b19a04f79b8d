// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.gps;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;

import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import org.junit.jupiter.api.Test;

class SatelliteTest {
    private static GpsGlonassSatellite record(int prn, int elevation, int azimuth, int snr, int used) {
        GpsGlonassSatellite record = new GpsGlonassSatellite();
        record.PRN = prn;
        record.Elevation = elevation;
        record.Azimuth = azimuth;
        record.SNR = snr;
        record.used = used;
        return record;
    }

    private static GpsGlonassSatellite empty() {
        return new GpsGlonassSatellite();
    }

    @Test
    void recordsBehindTheLastSatelliteAreLeftOut() {
        List<Satellite> satellites = Satellite.published(new GpsGlonassSatellite[] {
            record(10, 63, 137, 17, 1), record(65, 40, 157, 19, 0), empty(), empty()});
        assertEquals(Arrays.asList(new Satellite(10, 63, 137, 17, true), new Satellite(65, 40, 157, 19, false)),
                satellites);
    }

    @Test
    void aSatelliteOfWhichNothingButTheNumberIsKnownCounts() {
        GpsGlonassSatellite[] records = {record(-1, 0, 0, 0, 0), empty(), record(7, 0, 0, 0, 0), empty()};
        List<Satellite> satellites = Satellite.published(records);
        assertEquals(3, satellites.size());
        assertEquals(-1, satellites.get(0).number());
        assertEquals(7, satellites.get(2).number());
    }

    @Test
    void noSatelliteIsAnEmptyList() {
        assertEquals(Collections.emptyList(), Satellite.published(new GpsGlonassSatellite[] {empty(), empty()}));
        assertEquals(Collections.emptyList(), Satellite.published(new GpsGlonassSatellite[0]));
    }

    @Test
    void theListIsNotToBeChanged() {
        List<Satellite> satellites = Satellite.published(new GpsGlonassSatellite[] {record(1, 2, 3, 4, 1)});
        assertThrows(UnsupportedOperationException.class, satellites::clear);
    }

    @Test
    void satellitesAreEqualWhenEveryValueIs() {
        Satellite one = new Satellite(10, 63, 137, 17, true);
        assertEquals(one, new Satellite(10, 63, 137, 17, true));
        assertEquals(one.hashCode(), new Satellite(10, 63, 137, 17, true).hashCode());
        assertNotEquals(one, new Satellite(11, 63, 137, 17, true));
        assertNotEquals(one, new Satellite(10, 64, 137, 17, true));
        assertNotEquals(one, new Satellite(10, 63, 138, 17, true));
        assertNotEquals(one, new Satellite(10, 63, 137, 18, true));
        assertNotEquals(one, new Satellite(10, 63, 137, 17, false));
        assertNotEquals(one, null);
    }

    @Test
    void aSatelliteIsReadable() {
        assertEquals("satellite 10: elevation 63, azimuth 137, 17 dB-Hz, used",
                new Satellite(10, 63, 137, 17, true).toString());
        assertEquals("satellite 2: elevation 0, azimuth 0, 0 dB-Hz", new Satellite(2, 0, 0, 0, false).toString());
    }
}
