// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.internal.RaisedText;

/**
 * A failure of the barcode scanner that no class of Java's own stands for: {@code INTERNAL_ERROR} and
 * {@code BUFFER_OVERFLOW}.
 */
public class BarcodeException extends QuarlinException {
    private static final long serialVersionUID = 1L;

    /**
     * Made by the native library.
     *
     * @param raised the kind of failure, a comma, and what failed; null counts as empty
     */
    public BarcodeException(String raised) {
        this(RaisedText.of(raised));
    }

    private BarcodeException(RaisedText raised) {
        super(raised.code(), raised.message());
    }
}
