// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertSame;

import com.norvane.quarlin.ResultCode;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import org.junit.jupiter.params.provider.EnumSource;
import org.junit.jupiter.params.provider.EnumSource.Mode;

class RaisedTextTest {
    @ParameterizedTest
    @CsvSource(delimiter = '|', ignoreLeadingAndTrailingWhitespace = false, value = {
        "QLERR_BUFFER_OVERFLOW,Buffer size too small|BUFFER_OVERFLOW|Buffer size too small",
        "QLERR_INVALID_ARGUMENT,one, two|INVALID_ARGUMENT|one, two",
        "Unknown,Unable to connect barcode.|INTERNAL_ERROR|Unable to connect barcode.",
        "Unknown,a, b, c|INTERNAL_ERROR|a, b, c",
        "Unknown,|INTERNAL_ERROR|''",
        "Unexpected behaviour encountered,QLERR_UHFRFID_READ |UHFRFID_READ|QLERR_UHFRFID_READ ",
        "Unexpected behaviour encountered,Unknown Error|UNSPECIFIED|Unknown Error",
        "Unexpected behaviour encountered,|UNSPECIFIED|''",
        "UNKNOWN,text|UNSPECIFIED|UNKNOWN,text",
        "no beginning, but a comma|UNSPECIFIED|no beginning, but a comma",
        "QLERR_OK|UNSPECIFIED|QLERR_OK",
    })
    void aTextIsTakenApart(String raised, ResultCode code, String message) {
        assertSame(code, RaisedText.of(raised).code());
        assertEquals(message, RaisedText.of(raised).message());
    }

    @Test
    void nullIsEmptyAndUnspecified() {
        assertSame(ResultCode.UNSPECIFIED, RaisedText.of(null).code());
        assertEquals("", RaisedText.of(null).message());
    }

    @ParameterizedTest
    @EnumSource(mode = Mode.EXCLUDE, names = "UNSPECIFIED")
    void eachCodeIsFoundByItsNameBehindTheComma(ResultCode code) {
        assertSame(code, RaisedText.of("Unexpected behaviour encountered," + code.nativeName()).code());
    }
}
