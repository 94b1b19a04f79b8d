// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertSame;

import com.norvane.quarlin.ResultCode;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class BarcodeExceptionTest {
    @ParameterizedTest
    @CsvSource({
        "'QLERR_BUFFER_OVERFLOW,Buffer size too small', BUFFER_OVERFLOW, Buffer size too small",
        "'Unknown,Unable to connect barcode.', INTERNAL_ERROR, Unable to connect barcode.",
        "'Unknown,Java Wrapper: Unable to return device name', INTERNAL_ERROR, "
            + "Java Wrapper: Unable to return device name",
        "'', UNSPECIFIED, QLERR_UNSPECIFIED",
    })
    void codeAndMessageAreThoseOfTheNativeLibrary(String raised, ResultCode code, String message) {
        assertSame(code, new BarcodeException(raised).code());
        assertEquals(message, new BarcodeException(raised).getMessage());
    }
}
