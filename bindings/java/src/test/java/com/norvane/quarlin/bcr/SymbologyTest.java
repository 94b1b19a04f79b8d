// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import static org.junit.jupiter.api.Assertions.assertEquals;

import com.norvane.quarlin.Sources;
import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import org.junit.jupiter.api.Test;

/** Enumerations, which have to be those of the header. */
class SymbologyTest {
    private static List<String> header(String pattern) throws IOException {
        Matcher line = Pattern.compile(pattern).matcher(Sources.read("include/quarlin/barcode.h"));
        List<String> rows = new ArrayList<>();
        while (line.find()) {
            StringBuilder row = new StringBuilder(line.group(1));
            for (int group = 2; group <= line.groupCount(); ++group) {
                row.append('|').append(line.group(group));
            }
            rows.add(row.toString());
        }
        return rows;
    }

    @Test
    void symbologiesAreThoseOfTheHeader() throws IOException {
        List<String> java = new ArrayList<>();
        for (Symbology symbology : Symbology.values()) {
            java.add(symbology.name() + "|" + symbology.value() + "|" + symbology.nativeName());
        }
        assertEquals(header("BARCODE_SYMBOLOGY_(\\w+) = (\\d+),?\\s*/\\*\\*< \"([^\"]+)\""), java);
        assertEquals(47, java.size());
    }

    @Test
    void editModesAreThoseOfTheHeader() throws IOException {
        List<String> java = new ArrayList<>();
        for (EditMode mode : EditMode.values()) {
            java.add(mode.name() + "|" + mode.value());
        }
        assertEquals(header("QLBCR_EDIT_(\\w+) = (\\d+)"), java);
        assertEquals(4, java.size());
    }
}
