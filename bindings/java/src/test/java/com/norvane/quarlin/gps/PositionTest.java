// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.gps;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;

import java.util.Locale;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class PositionTest {
    @Test
    void theNativeRecordIsLatitudeLongitudeAltitude() {
        Coordinates coordinates = new Coordinates();
        coordinates.d_fld_1 = 53.361337;
        coordinates.d_fld_2 = -6.50562;
        coordinates.d_fld_3 = 61.7;
        Position position = Position.of(coordinates);
        assertEquals(53.361337, position.latitude());
        assertEquals(-6.50562, position.longitude());
        assertEquals(61.7, position.altitude());
        assertEquals(new Position(53.361337, -6.50562, 61.7), position);
        assertEquals(new Position(53.361337, -6.50562, 61.7).hashCode(), position.hashCode());
    }

    @Test
    void positionsDifferInEveryNumber() {
        Position position = new Position(1, 2, 3);
        assertNotEquals(position, new Position(9, 2, 3));
        assertNotEquals(position, new Position(1, 9, 3));
        assertNotEquals(position, new Position(1, 2, 9));
        assertNotEquals(position, null);
    }

    @Test
    void theTextIsTheSameInEveryLanguage() {
        Locale before = Locale.getDefault();
        Locale.setDefault(Locale.GERMANY);
        try {
            assertEquals("53.361337 -6.505620, 61.7 m", new Position(53.361337, -6.50562, 61.7).toString());
        } finally {
            Locale.setDefault(before);
        }
    }

    @ParameterizedTest(name = "quality {0} is {1}")
    @CsvSource({"0, NONE", "1, GPS", "2, DIFFERENTIAL", "3, OTHER", "4, OTHER", "-1, OTHER", "2147483647, OTHER"})
    void everyQualityHasAName(int number, FixQuality quality) {
        assertEquals(quality, FixQuality.of(number));
    }
}
