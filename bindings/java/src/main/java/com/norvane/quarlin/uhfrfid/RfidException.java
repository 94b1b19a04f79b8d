// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.uhfrfid;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.internal.RaisedText;

/**
 * A failure of the UHF RFID reader that no class of Java's own stands for: {@code INTERNAL_ERROR},
 * {@code BUFFER_OVERFLOW} and all {@code UHFRFID_} codes.
 *
 * <p>The native library hands over no number. {@link #code()} is found by the message, which is the code's own name for
 * most of them; {@link ResultCode#UNSPECIFIED} is left for the message {@code "Unknown Error"}, which
 * {@link ResultCode#UHFRFID_REQ_NOT_ALLOWED} and codes that are not known have in common.
 */
public class RfidException extends QuarlinException {
    private static final long serialVersionUID = 1L;

    /**
     * Made by the native library.
     *
     * @param raised the kind of failure, a comma, and what failed; null counts as empty
     */
    public RfidException(String raised) {
        this(RaisedText.of(raised));
    }

    private RfidException(RaisedText raised) {
        super(raised.code(), raised.message());
    }
}
