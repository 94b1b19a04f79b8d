// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertSame;

import java.io.IOException;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.EnumSource;
import org.junit.jupiter.params.provider.ValueSource;

class ResultCodeTest {
    @Test
    void namesAndNumbersAreThoseOfTheHeader() throws IOException {
        Map<String, Integer> header = new LinkedHashMap<>();
        Matcher line = Pattern.compile("^\\s+(QLERR_\\w+) = (\\w+),?$", Pattern.MULTILINE)
                .matcher(Sources.read("include/quarlin/error.h"));
        while (line.find()) {
            header.put(line.group(1), Integer.decode(line.group(2)));
        }
        Map<String, Integer> java = new LinkedHashMap<>();
        for (ResultCode code : ResultCode.values()) {
            if (code != ResultCode.UNSPECIFIED) {
                java.put(code.nativeName(), code.value());
            }
        }
        assertEquals(header, java);
        assertEquals(37, java.size());
    }

    @ParameterizedTest
    @EnumSource
    void aCodeIsFoundByItsNumber(ResultCode code) {
        assertSame(code, ResultCode.of(code.value()));
    }

    @ParameterizedTest
    @ValueSource(ints = {7, -2, 0x10000, 0x100fd, Integer.MAX_VALUE, Integer.MIN_VALUE})
    void aNumberWithoutACodeIsUnspecified(int value) {
        assertSame(ResultCode.UNSPECIFIED, ResultCode.of(value));
    }
}
