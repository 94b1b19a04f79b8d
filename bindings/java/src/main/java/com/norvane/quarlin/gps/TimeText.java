// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.gps;

import java.time.DateTimeException;
import java.time.Instant;
import java.time.LocalDateTime;
import java.time.ZoneOffset;
import java.util.Optional;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** The library's text of time and date: {@code "9:27:50 19/11/2094"}, UTC. */
final class TimeText {
    private static final Pattern WHOLE = Pattern.compile("(\\d{1,2}):(\\d\\d):(\\d\\d) (\\d\\d)/(\\d\\d)/(\\d{4})");

    private TimeText() {
    }

    /** Nothing for a text of which a half is missing, or that no clock and no calendar has. */
    static Optional<Instant> parse(String text) {
        Matcher matcher = WHOLE.matcher(text);
        if (!matcher.matches()) {
            return Optional.empty();
        }
        int[] part = new int[matcher.groupCount()];
        for (int i = 0; i < part.length; ++i) {
            part[i] = Integer.parseInt(matcher.group(i + 1));
        }
        try {
            LocalDateTime time = LocalDateTime.of(part[5], part[4], part[3], part[0], part[1], part[2]);
            return Optional.of(time.toInstant(ZoneOffset.UTC));
        } catch (DateTimeException noSuchTime) {
            // Receivers send what they like; a leap second is among it.
            return Optional.empty();
        }
    }
}
