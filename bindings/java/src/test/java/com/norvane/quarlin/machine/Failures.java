// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import org.junit.jupiter.api.function.Executable;

/** Calls that are to fail. */
final class Failures {
    private Failures() {
    }

    /** The call throws an exception of exactly this class, with this message. */
    static void assertRaises(Class<? extends Throwable> type, String message, Executable call) {
        Throwable thrown = assertThrows(Throwable.class, call);
        assertEquals(type, thrown.getClass(), () -> "thrown: " + thrown);
        assertEquals(message, thrown.getMessage());
    }

    /** The call of a friendly class fails with this code and message. */
    static QuarlinException assertFails(ResultCode code, String message, Executable call) {
        QuarlinException thrown = assertThrows(QuarlinException.class, call);
        assertEquals(code, thrown.code(), () -> "thrown: " + thrown);
        assertEquals(message, thrown.getMessage());
        return thrown;
    }
}
