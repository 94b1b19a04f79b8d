// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin;

import java.util.Objects;

/**
 * A call of the library failed. {@link #code()} says why, {@link #getMessage()} is the native library's text: a fixed
 * English sentence, behind which the operating system's own words may follow in the user's language.
 *
 * <p>{@link #getCause()} is the exception that the native method threw, when that was one of Java's own.
 */
public class QuarlinException extends RuntimeException {
    private static final long serialVersionUID = 1L;

    /** Why the call failed. */
    private final ResultCode code;

    /**
     * Makes an exception.
     *
     * @param code    why the call failed; not null
     * @param message what a person may read; when null or empty, the name of the code
     * @param cause   what was thrown underneath; null when there is nothing
     */
    public QuarlinException(ResultCode code, String message, Throwable cause) {
        super(message == null || message.isEmpty() ? code.nativeName() : message, cause);
        this.code = Objects.requireNonNull(code);
    }

    /**
     * Makes an exception without a cause.
     *
     * @param code    why the call failed; not null
     * @param message what a person may read; when null or empty, the name of the code
     */
    public QuarlinException(ResultCode code, String message) {
        this(code, message, null);
    }

    /**
     * Why the call failed.
     *
     * @return the code; never null
     */
    public ResultCode code() {
        return code;
    }
}
