// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import java.io.IOException;
import java.nio.BufferOverflowException;

/** Turns what native methods throw into {@link QuarlinException}. */
public final class Failures {
    private Failures() {
    }

    /**
     * A call of a native method.
     *
     * @param <T> what it returns
     */
    @FunctionalInterface
    public interface NativeCall<T> {
        /**
         * Makes the call.
         *
         * @return what the native method returns
         * @throws IOException as the native method does
         */
        T make() throws IOException;
    }

    /**
     * Makes a call of a native method.
     *
     * @param call the call
     * @param <T>  what it returns
     * @return what the native method returned
     * @throws QuarlinException when it threw; the family's own exceptions leave as they are, all others become the
     *                          cause. Errors pass.
     */
    public static <T> T translate(NativeCall<T> call) {
        try {
            return call.make();
        } catch (QuarlinException ready) {
            throw ready;
        } catch (IOException | RuntimeException thrown) {
            throw new QuarlinException(codeOf(thrown), messageOf(thrown), thrown);
        }
    }

    private static ResultCode codeOf(Exception thrown) {
        if (thrown instanceof IllegalArgumentException) {
            return ResultCode.INVALID_ARGUMENT;
        }
        if (thrown instanceof IllegalStateException) {
            return ResultCode.INVALID_STATE;
        }
        if (thrown instanceof IOException) {
            return ResultCode.IO_ERROR;
        }
        if (thrown instanceof UnsupportedOperationException) {
            return ResultCode.OP_UNSUPPORTED;
        }
        if (thrown instanceof BufferOverflowException) {
            return ResultCode.BUFFER_OVERFLOW;
        }
        return ResultCode.INTERNAL_ERROR;
    }

    // BufferOverflowException has no constructor with a message: the native library gives it a cause that has.
    private static String messageOf(Exception thrown) {
        Throwable cause = thrown.getCause();
        if (thrown instanceof BufferOverflowException && cause != null) {
            return cause.getMessage();
        }
        return thrown.getMessage();
    }
}
