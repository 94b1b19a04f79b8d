// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.bcr.BarcodeException;
import com.norvane.quarlin.uhfrfid.RfidException;
import java.io.FileNotFoundException;
import java.io.IOException;
import java.nio.BufferOverflowException;
import java.util.stream.Stream;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.Arguments;
import org.junit.jupiter.params.provider.MethodSource;

class FailuresTest {
    static Stream<Arguments> thrownByNativeMethods() {
        return Stream.of(
            Arguments.of(new IllegalArgumentException("text"), ResultCode.INVALID_ARGUMENT, "text"),
            Arguments.of(new IllegalStateException("text"), ResultCode.INVALID_STATE, "text"),
            Arguments.of(new IOException("text"), ResultCode.IO_ERROR, "text"),
            Arguments.of(new FileNotFoundException("text"), ResultCode.IO_ERROR, "text"),
            Arguments.of(new UnsupportedOperationException("text"), ResultCode.OP_UNSUPPORTED, "text"),
            Arguments.of(new RuntimeException("text"), ResultCode.INTERNAL_ERROR, "text"),
            Arguments.of(new BufferOverflowException(), ResultCode.BUFFER_OVERFLOW, "QLERR_BUFFER_OVERFLOW"),
            Arguments.of(new BufferOverflowException().initCause(new RuntimeException("text")),
                ResultCode.BUFFER_OVERFLOW, "text"));
    }

    @ParameterizedTest
    @MethodSource("thrownByNativeMethods")
    void javasOwnExceptionsBecomeTheCause(Throwable thrown, ResultCode code, String message) {
        QuarlinException failure = assertThrows(QuarlinException.class, () -> Failures.translate(() -> raise(thrown)));
        assertSame(code, failure.code());
        assertEquals(message, failure.getMessage());
        assertSame(thrown, failure.getCause());
    }

    static Stream<Throwable> thatPass() {
        return Stream.of(
            new BarcodeException("Unknown,text"),
            new RfidException("Unexpected behaviour encountered,QLERR_UHFRFID_NO_TAGS"),
            new QuarlinException(ResultCode.INVALID_STATE, "text"),
            new UnsatisfiedLinkError("text"),
            new NoSuchMethodError("text"),
            new NoSuchMethodError(),
            new OutOfMemoryError());
    }

    @ParameterizedTest
    @MethodSource("thatPass")
    void familiesExceptionsAndErrorsPass(Throwable thrown) {
        assertSame(thrown, assertThrows(Throwable.class, () -> Failures.translate(() -> raise(thrown))));
    }

    @Test
    void aResultIsReturned() {
        assertEquals(Integer.valueOf(3), Failures.translate(() -> 3));
    }

    private static Void raise(Throwable thrown) throws IOException {
        if (thrown instanceof Error) {
            throw (Error) thrown;
        }
        if (thrown instanceof IOException) {
            throw (IOException) thrown;
        }
        throw (RuntimeException) thrown;
    }
}
