// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;

import java.io.ByteArrayInputStream;
import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.io.ObjectInputStream;
import java.io.ObjectOutputStream;
import org.junit.jupiter.api.Test;

class QuarlinExceptionTest {
    @Test
    void codeMessageAndCauseAreKept() {
        Exception cause = new IOException("inner");
        QuarlinException exception = new QuarlinException(ResultCode.IO_ERROR, "outer", cause);
        assertSame(ResultCode.IO_ERROR, exception.code());
        assertEquals("outer", exception.getMessage());
        assertSame(cause, exception.getCause());
    }

    @Test
    void aMissingMessageIsTheNameOfTheCode() {
        assertEquals("QLERR_IO_ERROR", new QuarlinException(ResultCode.IO_ERROR, null).getMessage());
        assertEquals("QLERR_IO_ERROR", new QuarlinException(ResultCode.IO_ERROR, "").getMessage());
        assertNull(new QuarlinException(ResultCode.IO_ERROR, "").getCause());
    }

    @Test
    void aCodeIsNeeded() {
        assertThrows(NullPointerException.class, () -> new QuarlinException(null, "text"));
    }

    @Test
    void theCodeSurvivesSerialisation() throws IOException, ClassNotFoundException {
        ByteArrayOutputStream bytes = new ByteArrayOutputStream();
        try (ObjectOutputStream out = new ObjectOutputStream(bytes)) {
            out.writeObject(new QuarlinException(ResultCode.UHFRFID_NO_TAGS, "text"));
        }
        try (ObjectInputStream in = new ObjectInputStream(new ByteArrayInputStream(bytes.toByteArray()))) {
            assertSame(ResultCode.UHFRFID_NO_TAGS, ((QuarlinException) in.readObject()).code());
        }
    }
}
