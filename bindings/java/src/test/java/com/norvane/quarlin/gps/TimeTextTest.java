// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.gps;

import static org.junit.jupiter.api.Assertions.assertEquals;

import java.time.Instant;
import java.util.Optional;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import org.junit.jupiter.params.provider.ValueSource;

class TimeTextTest {
    @ParameterizedTest(name = "{0} is {1}")
    @CsvSource({
        "'9:27:50 19/11/2094', 2094-11-19T09:27:50Z",
        "'0:00:00 01/01/2000', 2000-01-01T00:00:00Z",
        "'23:59:59 31/12/2099', 2099-12-31T23:59:59Z",
        "'12:00:00 29/02/2024', 2024-02-29T12:00:00Z",
        "'09:27:50 19/11/2094', 2094-11-19T09:27:50Z",
    })
    void aWholeTextIsATime(String text, Instant time) {
        assertEquals(Optional.of(time), TimeText.parse(text));
    }

    @ParameterizedTest(name = "\"{0}\" is no time")
    @ValueSource(strings = {
        "", " ", "9:27:50", " 19/11/2094", "9:27:50 ", "24:00:00 19/11/2094", "9:60:00 19/11/2094",
        "23:59:60 30/06/2015", "9:27:50 00/11/2094", "9:27:50 19/13/2094", "12:00:00 29/02/2025",
        "9:27:50 19/11/20-5", "-1:27:50 19/11/2094", "214748:36:47 19/11/2094", "9:27:50 19/11/20123",
        "9:27:50 19/11/2094\n", "\u0669:27:50 19/11/2094",
    })
    void whatNoClockOrCalendarHasIsNothing(String text) {
        assertEquals(Optional.empty(), TimeText.parse(text));
    }
}
