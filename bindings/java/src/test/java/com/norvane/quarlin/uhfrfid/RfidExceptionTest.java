// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.uhfrfid;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertSame;

import com.norvane.quarlin.ResultCode;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import org.junit.jupiter.params.provider.EnumSource;
import org.junit.jupiter.params.provider.EnumSource.Mode;

class RfidExceptionTest {
    @ParameterizedTest
    @EnumSource(mode = Mode.MATCH_ALL, names = "UHFRFID_.*")
    void eachCodeOfTheReaderIsFoundByItsText(ResultCode code) {
        String text = code.nativeName();
        switch (code) {
            case UHFRFID_READ:
            case UHFRFID_OTHER:
            case UHFRFID_SYSTEM:
                text += " ";
                break;
            default:
                break;
        }
        RfidException exception = new RfidException("Unexpected behaviour encountered," + text);
        assertSame(code, exception.code());
        assertEquals(text, exception.getMessage());
    }

    @ParameterizedTest
    @CsvSource({
        "'Unknown,An internal error has occurred', INTERNAL_ERROR, An internal error has occurred",
        "'QLERR_BUFFER_OVERFLOW,Buffer too small', BUFFER_OVERFLOW, Buffer too small",
        "'Unexpected behaviour encountered,Unknown Error', UNSPECIFIED, Unknown Error",
    })
    void theOthersAreFoundByTheirKind(String raised, ResultCode code, String message) {
        assertSame(code, new RfidException(raised).code());
        assertEquals(message, new RfidException(raised).getMessage());
    }

    @Test
    void itIsMadeWithoutATextToo() {
        assertSame(ResultCode.UNSPECIFIED, new RfidException(null).code());
    }
}
